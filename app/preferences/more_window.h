// The window behind the preferences' button "More...": a check box and a sentence for each choice
// beyond what a run without options does (core/choices.h), and one for starting with the desktop
// (places/autostart.h).
//
//   event          what happens                                                function
//   -----          ------------                                                --------
//   opened         boxes set from the options in force, window mapped          moreClickOpen
//   box turned     nothing but the box                                         -
//   Recommended    boxes of options set to what a new user starts with         moreClickRecommended
//   OK             boxes that differ from the options into `user` and into     moreClickSave
//                  the preferences' working copy; file written; the desktop
//                  told; unmapped
//   Cancel, close  window unmapped                                             moreClickCancel
//
// When the file cannot be written, the changed options stay in force until the program ends, the
// window stays open and a dialog gives the reason; the same when the desktop cannot be told.
#pragma once

#include <X11/Xlib.h>

#include <vector>

#include "core/gromlit.h"
#include "toolkit/button.h"
#include "toolkit/check_box.h"
#include "toolkit/logo.h"
#include "toolkit/window_object.h"

namespace gromlit {

struct MoreOptions {
  WindowObj* wobj;
  Window window;
  GC gc;      // black on light grey, text font
  int width;  // pixels, as is height
  int height;
  GromlitUserOptions* working;  // the preferences' copy, not owned
  void (*changed)();            // called by OK once the options are in force; or null
  XLogo* logo;
  std::vector<XCheckBox*> boxes;  // one for each of Choices(), in that order
  XCheckBox* autostart;           // below them: no option, but a file of the desktop's
  XButton* bhelp;
  XButton* brecommended;
  XButton* bsave;  // "OK"
  XButton* bcancel;
};

extern MoreOptions* more;  // null until CreateMoreOptions

// Makes the window, not mapped. OK writes into `working` besides the options in force: the
// preferences' own OK copies all fields of it and would undo what was chosen here.
void CreateMoreOptions(GromlitUserOptions* working);

// The buttons; the argument is not used. moreClickOpen is the preferences' "More...".
void moreClickOpen(void* button);
void moreClickRecommended(void* button);
void moreClickSave(void* button);
void moreClickCancel(void* button);
void moreClickHelp(void* button);

// Expose handler.
void DrawMoreOptions(MoreOptions* options, XEvent* event = nullptr);

}  // namespace gromlit
