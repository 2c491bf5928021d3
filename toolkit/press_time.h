// When a mouse button was pressed, for telling double clicks.
#pragma once

#include <X11/Xlib.h>

#include <cstdint>

namespace gromlit {

// The press's server time, milliseconds, 32 bits wide: it starts again at 0 after 49 days, and so
// does a difference of two. A click that the capture hands on carries no time (CurrentTime); it
// gets that of its handling, by the clock that servers of the same machine use. Otherwise every
// click with the button that draws would be the second of a double click.
uint32_t PressTime(const XButtonEvent& press);

}  // namespace gromlit
