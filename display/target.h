// Which application is under the pointer, and which of its windows takes clicks and keys.
//
// Everything here reads other clients' windows, which may vanish between any two requests and may
// carry any bytes. A query that fails gives "no target", never the window that failed.
#pragma once

#include <X11/Xlib.h>

#include <span>

namespace gromlit {

inline constexpr const char* labelRoot = "Desktop";

// The application of a window, found from the window downward: the first with a class hint or a
// name. Writes its class text into cname: class and name part of its class hint joined by ".", else
// its name when that is plain STRING text; "Desktop" for the root or 0. The text is cut to the
// buffer. A name in another encoding gives a non-zero result that is no window and leaves cname as
// it was. Returns 0 when nothing was found. REQUIRES: cname is not empty.
Window GetXApp(Window window, std::span<char> cname);

// The deepest window below `window`, the bottom-most among siblings, that is viewable, has the
// pointer within its bounds (right and bottom edge included) and on which some client selects
// button presses or releases. Writes the pointer position in that window, pixels. 0 when there is
// none. Only ButtonPress counts for GetXAppKey.
Window GetXAppClick(Window window, int* x, int* y);
Window GetXAppKey(Window window, int* x, int* y);

}  // namespace gromlit
