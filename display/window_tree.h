// How windows lie in each other.
#pragma once

#include <X11/Xlib.h>

namespace gromlit {

// The window that this one lies in; None for the root window, and when the window is gone. One
// round trip.
Window ParentOf(Window window);

}  // namespace gromlit
