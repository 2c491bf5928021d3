#include "capture/grab_events.h"

#include <poll.h>

#include <algorithm>
#include <optional>

#include "display/display.h"
#include "display/end_signals.h"

namespace gromlit {
namespace {

using Clock = QuickHand::Clock;

// How long to wait for the next event before asking whether the grab is still there.
constexpr auto kGrabCheck = std::chrono::milliseconds(100);

// How often what is drawn is sent to the server while the hand moves on: more often than any screen
// shows it.
constexpr auto kShow = std::chrono::milliseconds(4);

}  // namespace

GrabEvents::GrabEvents(const XButtonEvent& press, long mask)
    : button_(press.button),
      mask_(mask),
      lastroot_{press.x_root, press.y_root},
      hand_(Clock::now(), static_cast<uint32_t>(press.time), press.x_root, press.y_root) {}

bool GrabEvents::Next(XEvent* event) {
  for (std::optional<Clock::time_point> check;;) {
    EndIfSignalled();
    if (TakeQueued(event)) return true;
    const auto now = Clock::now();  // not read while there is something to take
    if (!check) check = now + kGrabCheck;
    if (now >= *check) {
      if (GrabIsGone()) return false;
      come_ = true;
      check = Clock::now() + kGrabCheck;
      continue;
    }
    const auto due = shown_ + kShow;
    if (unshown_ && now >= due) {
      XFlush(dpy);
      unshown_ = false;
      shown_ = now;
      continue;  // with what came meanwhile
    }
    const bool gather = hand_.MayGather(now);
    const auto until = gather ? now + kGather : unshown_ ? std::min(*check, due) : *check;
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(until - now);
    pollfd connection{ConnectionNumber(dpy), POLLIN, 0};
    // What has come is read by the search, which sends nothing when it finds something. A signal
    // ends either wait.
    const int ready = poll(&connection, gather ? 0 : 1, static_cast<int>(left.count()));
    come_ = come_ || gather || ready > 0;
  }
}

// What waits for others in the queue is looked at once, until something comes: a search that finds
// nothing costs several calls of the kernel.
bool GrabEvents::TakeQueued(XEvent* event) {
  if (!come_ && XEventsQueued(dpy, QueuedAlready) == others_) return false;
  come_ = false;
  while (XCheckWindowEvent(dpy, root, mask_, event)) {
    // Anybody may send events to the root window; only the server's count.
    if (event->xany.send_event) continue;
    if (event->type == MotionNotify) {
      lastroot_ = {event->xmotion.x_root, event->xmotion.y_root};
      hand_.MoveTo(static_cast<uint32_t>(event->xmotion.time), lastroot_.x, lastroot_.y);
    }
    return true;
  }
  others_ = XEventsQueued(dpy, QueuedAlready);
  unshown_ = false;  // the search has sent it
  return false;
}

bool GrabEvents::GrabIsGone() {
  Window rootwin;
  Window child;
  Position at{};
  int winx;
  int winy;
  unsigned state;
  if (!XQueryPointer(dpy, root, &rootwin, &child, &at.x, &at.y, &winx, &winy, &state)) return true;
  // With the answer everything has arrived that the server reported before it.
  XEvent event;
  if (XCheckWindowEvent(dpy, root, mask_, &event)) {
    XPutBackEvent(dpy, &event);
    return false;
  }
  const bool up = (state & (static_cast<unsigned>(Button1Mask) << (button_ - 1))) == 0;
  return up || at != lastroot_;
}

}  // namespace gromlit
