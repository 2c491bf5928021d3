// The dialog box: the logo banner with a title, message lines or an owner's widget, and one or two
// buttons. Dialogs are built once and then only shown and hidden; they are not modal.
//
// The window manager does not frame a dialog (override-redirect), so it is shown where PopUpDialog
// puts it and is closed by its buttons only. With today's manners it does: see dialog_hands.h.
#pragma once

#include <X11/Xlib.h>

#include "toolkit/button.h"
#include "toolkit/window_object.h"

namespace gromlit {

inline constexpr int kDialogTitleSize = 64;  // bytes of a title, its NUL included

inline constexpr const char* labelYes = "Yes";
inline constexpr const char* labelNo = "No";
inline constexpr const char* labelOK = "OK";
inline constexpr const char* labelCancel = "Cancel";

// What a dialog's window is told of.
inline constexpr long kDialogEvents = ExposureMask | ButtonReleaseMask;

// The window that dialogs belong to, the program's main one; None until it is set.
inline Window dialogowner = None;

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

// Makes a dialog with two buttons, not mapped. A `wd` of 0 sizes it from `msgs`, which are kept by
// reference; otherwise wd and ht (pixels) are added to the size of an empty one. The title is cut
// to what the field holds, as it is in PopUpDialog.
XDialog* MakeDialogLabeled(const char* title, const char* const* msgs, void (*yesfn)(XDialog* dlog),
                           int wd, int ht, const char* ylabel, const char* nlabel);

// The same with "Yes" and "No".
XDialog* MakeDialog(const char* title, const char* const* msgs, void (*yesfn)(XDialog* dlog),
                    int wd, int ht);

// One button, "OK", which closes the dialog.
XDialog* MakeMsgDialog(const char* title, const char* const* msgs, int wd, int ht);

// Shows the dialog on top of everything, centred on root position (px, py) but kept on the screen;
// one that is larger than the screen ends at the screen's right or bottom edge. A dialog that is
// shown already moves and is drawn anew. With today's manners the keyboard stays where it is.
void PopUpDialog(XDialog* dlog, const char* title, int px, int py);

// The same, centred on the pointer, for what the user has asked for. One round trip. With today's
// manners it lies beside what it asks about, where there is room, and gets the keyboard.
void MousePopUpDialog(XDialog* dlog, const char* title);

// Hide the dialog. A yes-function ends with DialogYes when its work is done, and may be DialogYes.
void DialogYes(XDialog* dlog);
void DialogNo(XDialog* dlog);

// Resizes the dialog for a content area of width x height pixels below the banner, and moves the
// buttons with its corner.
void ResizeDialog(XDialog* dlog, int width, int height);

// Handlers; the drawing does not look at its event. A release on the dialog's own background gives
// the pointer back, whoever of the program's widgets holds it.
void DrawDialog(XDialog* dlog, XEvent* event = nullptr);
void DialogButtonUp(XDialog* dlog, XEvent* event);

}  // namespace gromlit
