// The preferences window: the options of core/gromlit.h that a user may change.
//
// It edits a working copy. Every opening takes the copy anew from the options in force, so that
// what was abandoned by Cancel, or by the window manager's close, is gone.
//
//   event          what happens                                                  function
//   -----          ------------                                                  --------
//   opened         copy taken from `user`, controls loaded, window mapped        mbPrefDraw
//   value chosen   into the copy                                                 optcmdButton, ...
//   box turned     into the copy                                                 optClickDoSplash
//   Defaults       copy and controls get the defaults; nothing is saved          optClickDefaults
//   OK             fields into the copy, draw button grabbed, copy into `user`,  optClickSave
//                  file written, window unmapped
//   Cancel         window unmapped                                               optClickCancel
//
// Two failures of OK keep the window open and are told in a dialog besides the line that they
// print:
// - The file could not be written. The changed options stay in force until the program ends.
// - Another client holds the chosen draw button. The former button goes on drawing and stays in the
//   options, everything else is taken over and saved: a start with a button that cannot be had
//   would end the program before its user could choose another.
#pragma once

#include <X11/Xlib.h>

#include "core/gromlit.h"
#include "toolkit/button.h"
#include "toolkit/check_box.h"
#include "toolkit/logo.h"
#include "toolkit/menu.h"
#include "toolkit/scrollbar.h"
#include "toolkit/text_editor.h"
#include "toolkit/window_object.h"

namespace gromlit {

struct UserOptions {
  WindowObj* wobj;
  Window window;
  GC gc;                   // its own: black on white, text font
  GromlitUserOptions usr;  // the working copy
  int width;               // pixels, as is height
  int height;
  XButton* bhelp;
  XButton* bcancel;
  XButton* bdefaults;
  XButton* bsave;  // "OK"
  XLogo* logo;
  TextEditor* txt;         // draw sensitivity, pixels
  TextEditor* url;         // browser command line
  TextEditor* snd;         // sound player command line
  XScrollbar* sbar;        // not used
  XButton* button;         // pulldown: draw button
  XButton* tolerance;      // pulldown: symbol match tolerance
  XButton* sensitivity;    // not used
  XCheckBox* dosplash;     // splash window at start
  XCheckBox* startup;      // not made
  XCheckBox* showactions;  // not made
};

extern UserOptions* opt;  // null until CreateUserOptions

// Called by OK when another draw button was grabbed, with `user` naming it already: whoever
// selected events for the former button renews them. Null: nobody.
extern void (*drawButtonChanged)();

// Makes the window, not mapped.
void CreateUserOptions();

// Sets every control from an options record. A draw button or a tolerance that is not offered is
// shown, and kept in the working copy, as the default.
void UpdateUserOptions(const GromlitUserOptions* usr);

// Menu commands that open the window; both arguments are not used. The last two are on no menu.
void mbPrefDraw(XMenu* menu, void* arg);
void mbPrefMisc(XMenu* menu, void* arg);
void mbPrefAdvanced(XMenu* menu, void* arg);

// Choose a value of a pulldown: draw button 1..3, tolerance 2..4; any other value gives 3. The menu
// (null when no menu was used) is not read.
void optcmdButton(XMenu* menu, int value);
void optcmdTolerance(XMenu* menu, int value);

// The check box and the buttons; the argument of the buttons is not used.
void optClickDoSplash(void* checkbox, int state);
void optClickSave(void* button);
void optClickCancel(void* button);
void optClickDefaults(void* button);
void optClickHelp(void* button);

// Expose handler.
void DrawUserOptions(UserOptions* options, XEvent* event = nullptr);

// Copies button, sensitivity, tolerance, showactions, urlcmd and sndcmd; splash and the reserved
// fields of dst stay.
void CopyUserOptions(GromlitUserOptions* dst, const GromlitUserOptions* src);

}  // namespace gromlit
