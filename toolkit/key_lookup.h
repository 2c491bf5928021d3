// What a key press means.
#pragma once

#include <X11/Xlib.h>

namespace gromlit {

// XLookupString for events that anybody may have sent: the bytes of a key press, at most `size`,
// and its keysym. 0 bytes and NoSymbol for a key code that the keyboard does not have. The first
// call, and the first after a change of the keyboard mapping, take round trips.
int LookupKey(XKeyEvent* event, char* bytes, int size, KeySym* key);

}  // namespace gromlit
