#include "toolkit/event_loop.h"

#include <X11/Xlib.h>
#include <poll.h>

#include <chrono>
#include <iterator>

#include "display/display.h"
#include "display/draw_button.h"
#include "display/end_signals.h"
#include "toolkit/window_object.h"

namespace gromlit {
namespace {

using Clock = std::chrono::steady_clock;

// Looking for a press walks over everything that waits. While there is a backlog it is looked for
// this often, which is sooner than a hand notices.
constexpr auto kLook = std::chrono::milliseconds(5);

Bool IsOfAStroke(Display*, XEvent* event, XPointer) {
  return event->xany.window == root && event->xany.send_event == False &&
         (event->type == ButtonPress || event->type == ButtonRelease ||
          event->type == MotionNotify);
}

bool TakePress(XEvent* event) {
  static Clock::time_point looked;
  if (XEventsQueued(dpy, QueuedAlready) > 0 && Clock::now() - looked < kLook) return false;
  const bool found = XCheckIfEvent(dpy, event, IsOfAStroke, nullptr) != 0;
  looked = Clock::now();
  return found;
}

void WaitForInput() {
  pollfd inputs[] = {{ConnectionNumber(dpy), POLLIN, 0}, {EndSignalDescriptor(), POLLIN, 0}};
  // A descriptor below 0 is passed over.
  poll(inputs, std::size(inputs), DrawButtonWait());
}

}  // namespace

void TakeEvent(XEvent* event) {
  for (;;) {
    EndIfSignalled();
    AskForDrawButton();
    if (TakePress(event)) return;
    if (XPending(dpy) > 0) {
      XNextEvent(dpy, event);
      return;
    }
    WaitForInput();
  }
}

void EventLoop() {
  for (;;) {
    XEvent event;
    TakeEvent(&event);
    DispatchEvent(&event);
  }
}

}  // namespace gromlit
