// The keyboard focus that text fields take, and how it goes back to whoever had it.
//
// A field takes the focus with "revert to none": when its window is unmapped, or one that it lies
// in, the server leaves the keyboard with nobody, and where no window manager helps the user can
// type into nothing any more. The field is told by a FocusOut event, whoever unmapped whichever
// window, and then the earlier focus is put back.
//
// INV-FOCUS-1: the program never leaves the keyboard with nobody after a field of it had it.
// INV-FOCUS-2: the focus is never taken from a window that got it in some other way.
#pragma once

#include <X11/Xlib.h>

namespace gromlit {

// Gives the keyboard to a text field's window and remembers who had it, unless that was another
// text field: then the window before that one stays remembered. Does nothing when the window is
// not viewable. Two round trips.
void TakeFocus(Window window);

// Whether an event says that the focus window itself changed: not a keyboard grab of somebody, and
// not sent by another client.
bool IsFocusMove(const XFocusChangeEvent& event);

// To be called with each FocusOut event of a text field. When the keyboard is with nobody because
// of it, the earlier focus comes back, or PointerRoot when that window is gone or hidden. Round
// trips only when the field that had the focus loses it.
void FocusLost(const XFocusChangeEvent& event);

// Puts the earlier focus back at once if a text field has it. To be called before the program ends,
// since the end of the connection destroys the windows without an event.
void RestoreFocus();

}  // namespace gromlit
