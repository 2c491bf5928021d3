#include "toolkit/event_loop.h"

#include <X11/Xlib.h>

#include "display/display.h"
#include "toolkit/window_object.h"

namespace gromlit {

void EventLoop() {
  for (;;) {
    XEvent event;
    XNextEvent(dpy, &event);
    DispatchEvent(&event);
  }
}

}  // namespace gromlit
