// Which application is under a position, and which of its windows takes clicks and keys.
//
// Everything here reads other clients' windows, which may vanish between any two requests and may
// carry any bytes. A query that fails gives "no target", never the window that failed.
//
// Positions are given, in pixels of the root window: by the time of the search the pointer is
// somewhere else. All calls expect a connection (display/display.h).
#pragma once

#include <X11/Xlib.h>

#include <array>
#include <span>

#include "core/gromlit.h"

namespace gromlit {

inline constexpr const char* labelRoot = "Desktop";

// What a position on the screen belongs to.
struct Target {
  Window client = None;  // where the search for the application began: the window that the window
                         // manager put into its frame, else the root's child; root on the desktop
  Window app = None;     // GetXApp's result: the application; 1 when its name is not plain text
  bool named = false;    // whether a class text was found; cname is "" otherwise
  std::array<char, kClassBuffer> cname{};  // class text, cut to the buffer
  Window click = None;                     // takes clicks
  Window key = None;                       // takes keys
  int winx = 0;  // the position in the key target, else in the click target, pixels
  int winy = 0;
};

// The application at a position, for a child of the root window that holds it; 0 is the desktop.
// Leaves click, key, winx and winy as they are. For a window whose application is its own only
// `client` says so: compare that, too.
Target FindApplication(Window rootchild, int rootx, int rooty);

// The application at a position and its windows for clicks and keys. On the desktop all of them are
// the root window. Without an application, or with one whose name is not plain text, there are
// none.
Target FindTargets(Window rootchild, int rootx, int rooty);

// The same where the application at the position has been found already: the result of
// FindApplication there.
Target FindTargetsIn(Target target, int rootx, int rooty);

// The application of a window, found from the window downward: the first with a class hint or a
// name. Writes its class text into cname: class and name part of its class hint joined by ".", else
// its name when that is plain STRING text; "Desktop" for the root or 0. The text is cut to the
// buffer. A name in another encoding gives a non-zero result that is no window and leaves cname as
// it was. Returns 0 when nothing was found. REQUIRES: cname is not empty.
Window GetXApp(Window window, std::span<char> cname);

// The deepest window below `window`, the bottom-most among siblings, that is viewable, has the
// position (rootx, rooty) within its bounds (right and bottom edge included) and on which some
// client selects button presses or releases. Writes the position in that window, pixels. 0 when
// there is none. Only ButtonPress counts for GetXAppKey.
Window GetXAppClick(Window window, int rootx, int rooty, int* x, int* y);
Window GetXAppKey(Window window, int rootx, int rooty, int* x, int* y);

}  // namespace gromlit
