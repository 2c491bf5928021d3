// Where the keyboard is.
#pragma once

#include <X11/Xlib.h>

namespace gromlit {

// The window that has the input focus, None or PointerRoot. The answer comes when the server has
// done all that it was asked before, so whoever waits for that need not ask for it as well.
Window FinishAndFindFocus();

}  // namespace gromlit
