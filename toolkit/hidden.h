// What a hand holds down when its window goes from the screen.
//
// The server takes the pointer from a window that can no longer be seen, without an event, and the
// release goes to whatever lies there then: a title would stay open with its menu, which no window
// manager can close, and a button sunken. A window is hidden by the program, by a window manager
// (which may unmap its own frame instead) or by anybody else; the root window is told of all of
// these.
#pragma once

#include <X11/Xlib.h>

namespace gromlit {

// UnmapNotify handler of the root window: lets go what is held and can no longer be seen. Round
// trips only while something is held.
void ReleaseHidden(void* obj, XEvent* event);

}  // namespace gromlit
