// Dialogs with today's manners; with plain ones dialog.cc shows them.
//
// Where a window manager helps, the dialog is one of its windows: it belongs to the main window,
// has the question in its title, can be moved, and closing it refuses. Without one it is placed
// here and gets the keyboard. Return is the button that confirms, Escape the one that refuses. A
// careful dialog, which asks about something that cannot be undone, takes Return and Space only
// when it has been on the screen for kCareful, and never from a key that is held.
#pragma once

#include <X11/Xlib.h>

#include "toolkit/dialog_record.h"

namespace gromlit {

inline constexpr Time kCareful = 500;  // milliseconds

// Shows a dialog with its corner at (x, y) of the screen. With `keyboard` it gets the keyboard: its
// first text field, if it has one. Round trips.
void ShowDialogWithHands(XDialog* dlog, int x, int y, bool keyboard);

// Makes a dialog that was shown like that a plain one again, if it is not on the screen.
void TakeHandsOff(XDialog* dlog);

// Moves a place (x, y) for a dialog so that it does not cover the window of the program that
// `child`, the window of the screen that the pointer is on, is or holds; else the main window.
// Where there is no room beside it the place stays. Round trips.
void PlaceBeside(const XDialog* dlog, Window child, int* x, int* y);

// Handlers of a dialog's window.
void DialogKeyPress(XDialog* dlog, XEvent* event);
void DialogFocus(XDialog* dlog, XEvent* event);
void DialogMapped(XDialog* dlog, XEvent* event);
void DialogStamped(XDialog* dlog, XEvent* event);
void DialogMessage(XDialog* dlog, XEvent* event);

// Whether a key may confirm now; `dlog` is a dialog.
bool DialogTakesKey(void* dlog, const XKeyEvent& press);

}  // namespace gromlit
