// Whether DISPLAY names a server that answers: status 0, otherwise 1. For scripts/run, so that it
// needs no package for it.
#include <X11/Xlib.h>

int main() {
  Display* display = XOpenDisplay(nullptr);
  if (display == nullptr) return 1;
  XCloseDisplay(display);
  return 0;
}
