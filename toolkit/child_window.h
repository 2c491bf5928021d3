// Making the window and the graphics context of a widget.
#pragma once

#include <X11/Xlib.h>

namespace gromlit {

// Makes a window without border, of its parent's depth and visual, not mapped. Sizes below one
// pixel, which the server would refuse, count as one. `background` is a pixel, `eventmask` the
// events selected. `moremask` names the members of `more` (CWOverrideRedirect, CWSaveUnder,
// CWBackingStore, CWCursor, ...) that are wanted besides.
Window MakeChildWindow(Window parent, int x, int y, int width, int height, unsigned long background,
                       long eventmask, unsigned long moremask = 0,
                       const XSetWindowAttributes& more = {});

// Has a window and those right in it drawn anew, as when they had been covered. Those that are not
// on the screen are left alone. One round trip.
void ExposeAll(Window window);

// Whether a window and all those that it lies in are mapped. Two round trips.
bool CanBeSeen(Window window);

// Makes a graphics context, black on white, for a window; with a font of None it keeps the
// server's default font.
GC MakeWindowGC(Window window, Font font = None);

}  // namespace gromlit
