// The search for the target of a press as it is told, one question at a time: the judge of the one
// that asks about whole levels.
#pragma once

#include <X11/Xlib.h>

#include <string>

namespace gromlit::testing {

struct LiteralTarget {
  Window client = 0;
  Window app = 0;
  std::string cname;  // empty where nothing was written
  Window click = 0;
  Window key = 0;
  int winx = 0;
  int winy = 0;
};

// The window that the window manager manages at a position (root window, pixels).
Window LiteralClient(Display* display, Window rootchild, int rootx, int rooty);

// The application of a window; writes its whole class text, or nothing.
Window LiteralApp(Display* display, Window window, std::string* cname);

// The window that takes events of `mask` at the pointer, where that is now.
Window LiteralSearch(Display* display, Window window, long mask, int* x, int* y);

// All of it. REQUIRES: the pointer is at (rootx, rooty).
LiteralTarget LiteralTargets(Display* display, Window rootchild, int rootx, int rooty);

}  // namespace gromlit::testing
