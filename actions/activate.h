// Giving the keyboard to the window under the stroke before its action.
#pragma once

#include <X11/Xlib.h>

namespace gromlit {

// Activates a client's window and returns when it has the focus; after half a second without it:
// some windows take none, and the keys go to whoever has it, as they would without this. Nothing
// happens when it has the focus already, when it is the root window or None.
void Activate(Window client);

}  // namespace gromlit
