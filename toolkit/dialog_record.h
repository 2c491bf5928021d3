// The record of a dialog; see dialog.h.
#pragma once

#include <X11/Xlib.h>

#include "toolkit/button.h"
#include "toolkit/window_object.h"

namespace gromlit {

inline constexpr int kDialogTitleSize = 64;  // bytes of a title, its NUL included

// What a dialog's window is told of.
inline constexpr long kDialogEvents = ExposureMask | ButtonReleaseMask;

struct XDialog {
  WindowObj* wobj;
  Window window;
  GC gc;      // txtgc
  int width;  // pixels, as is height
  int height;
  char title[kDialogTitleSize];  // NUL-terminated; replaced by every pop-up
  const char* const* msgs;       // lines, ended by a null pointer; the owner's; or null
  Window show;                   // 0, or the owner's child window, shown in place of the lines
  XButton* yes;                  // the left button; null in a message dialog
  XButton* no;                   // the right button, which closes the dialog
  void* arg;                     // free for the owner
  void* child;                   // free for the owner, such as the widget shown
  void (*yesfn)(XDialog* dlog);  // what the left button does; owners may replace it; or null
  int careful;                   // 1: what the left button does cannot be undone

  // With today's manners.
  int hands;     // 1 once it was shown with them
  int managed;   // 1 while it is a window manager's to place
  int keyboard;  // 1 when it was to get the keyboard
  Time shown;    // server time at which it came on the screen; 0: not yet
};

}  // namespace gromlit
