#include "actions/activate.h"

#include <poll.h>

#include <chrono>

#include "display/display.h"
#include "display/end_signals.h"
#include "display/window_manager.h"
#include "display/window_tree.h"

namespace gromlit {
namespace {

using Clock = std::chrono::steady_clock;

constexpr auto kPatience = std::chrono::milliseconds(500);
constexpr long kFromUser = 2;
constexpr int kMaxDepth = 64;

bool HasFocus(Window client) {
  Window focus = None;
  int revert;
  XGetInputFocus(dpy, &focus, &revert);
  if (focus == PointerRoot) return false;
  for (int depth = 0; depth < kMaxDepth && focus != None && focus != root; depth++) {
    if (focus == client) return true;
    focus = ParentOf(focus);
  }
  return false;
}

// The focus changes of a window, on top of what the program listens to there anyway.
class FocusWatch {
 public:
  explicit FocusWatch(Window window) : window_(window) {
    XWindowAttributes attributes;
    if (XGetWindowAttributes(dpy, window, &attributes) == 0) return;
    former_ = attributes.your_event_mask;
    watched_ = true;
    XSelectInput(dpy, window, former_ | FocusChangeMask);
  }
  ~FocusWatch() {
    if (!watched_) return;
    XSelectInput(dpy, window_, former_);
    XSync(dpy, False);
    Arrived();
  }
  FocusWatch(const FocusWatch&) = delete;
  FocusWatch& operator=(const FocusWatch&) = delete;

  bool watched() const { return watched_; }
  // Whether the focus has come to the window, or to one inside it, since the last question.
  bool Arrived() const {
    bool arrived = false;
    XEvent event;
    while (XCheckTypedWindowEvent(dpy, window_, FocusOut, &event) ||
           XCheckTypedWindowEvent(dpy, window_, FocusIn, &event)) {
      arrived |= event.type == FocusIn;
    }
    return arrived;
  }

 private:
  Window window_;
  long former_ = 0;
  bool watched_ = false;
};

}  // namespace

void Activate(Window client) {
  if (client == None || client == root || HasFocus(client)) return;
  const FocusWatch watch(client);
  if (!watch.watched()) return;
  if (ManagerSupports("_NET_ACTIVE_WINDOW")) {
    AskManager(client, "_NET_ACTIVE_WINDOW", {kFromUser, CurrentTime, 0, 0, 0});
  } else {
    XSetInputFocus(dpy, client, RevertToPointerRoot, CurrentTime);
  }
  XFlush(dpy);
  for (const auto deadline = Clock::now() + kPatience;;) {
    EndIfSignalled();
    if (watch.Arrived()) {
      // A menu that had the keyboard brings such events, too.
      if (HasFocus(client)) return;
      continue;
    }
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now()).count();
    if (left <= 0) return;
    pollfd connection{ConnectionNumber(dpy), POLLIN, 0};
    poll(&connection, 1, static_cast<int>(left));
  }
}

}  // namespace gromlit
