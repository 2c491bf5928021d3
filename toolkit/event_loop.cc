#include "toolkit/event_loop.h"

#include <X11/Xlib.h>
#include <poll.h>

#include <chrono>
#include <iterator>

#include "display/display.h"
#include "display/draw_button.h"
#include "display/end_signals.h"
#include "toolkit/menu_hand.h"
#include "toolkit/release_watch.h"
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

Deferred deferred{};

// The shorter of two waits, milliseconds, of which -1 is none.
int Sooner(int a, int b) {
  return a < 0 || (b >= 0 && b < a) ? b : a;
}

void WaitForInput() {
  const int due = deferred.wait != nullptr ? deferred.wait() : -1;
  if (due == 0) {
    deferred.run();
    return;
  }
  pollfd inputs[] = {{ConnectionNumber(dpy), POLLIN, 0}, {EndSignalDescriptor(), POLLIN, 0}};
  // A descriptor below 0 is passed over.
  const int watch = Sooner(Sooner(DrawButtonWait(), ReleaseWait()), MenuScrollWait());
  poll(inputs, std::size(inputs), Sooner(watch, due));
}

}  // namespace

void Defer(const Deferred& work) {
  deferred = work;
}

void TakeEvent(XEvent* event) {
  for (;;) {
    EndIfSignalled();
    AskForDrawButton();
    LookForRelease();
    ScrollRestedMenu();
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
