// The monitors that a screen is spread over.
#pragma once

#include <X11/Xlib.h>

namespace gromlit {

// The monitor that has a position of the root window, both in pixels; the first where none has it,
// and the whole screen where the server knows of no monitors (RandR 1.5). One round trip; two more
// the first time.
XRectangle MonitorAt(int x, int y);

// Whether a rectangle has a position.
bool Contains(const XRectangle& area, int x, int y);

}  // namespace gromlit
