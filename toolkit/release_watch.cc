#include "toolkit/release_watch.h"

#include <X11/Xlib.h>

#include <algorithm>
#include <chrono>

#include "display/display.h"

namespace gromlit {
namespace {

using Clock = std::chrono::steady_clock;

constexpr auto kLook = std::chrono::milliseconds(250);

constexpr unsigned kButtons = Button1Mask | Button2Mask | Button3Mask | Button4Mask | Button5Mask;

void (*whenlost)() = nullptr;
Clock::time_point next;  // NOLINT(cert-err58-cpp): zero, a constant

bool AnyButtonDown() {
  Window rootwin;
  Window child;
  int rootx;
  int rooty;
  int x;
  int y;
  unsigned state = 0;
  // The state is told on other screens, too.
  XQueryPointer(dpy, root, &rootwin, &child, &rootx, &rooty, &x, &y, &state);
  return (state & kButtons) != 0;
}

// Whether a release waits to be read; which one is for its handler to say.
bool ReleaseHasArrived() {
  bool found = false;
  const auto look = [](Display*, XEvent* event, XPointer arg) -> Bool {
    if (event->type == ButtonRelease) *reinterpret_cast<bool*>(arg) = true;
    return False;  // every event stays where it is
  };
  XEvent event;
  XCheckIfEvent(dpy, &event, look, reinterpret_cast<XPointer>(&found));
  return found;
}

}  // namespace

void AwaitRelease(void (*lost)()) {
  whenlost = lost;
  next = Clock::now() + kLook;
}

void ForgetRelease() {
  whenlost = nullptr;
}

void ReleaseGoesElsewhere() {
  if (whenlost == nullptr) return;
  void (*const lost)() = whenlost;
  whenlost = nullptr;
  lost();
}

int ReleaseWait() {
  if (whenlost == nullptr) return -1;
  const auto left = std::chrono::ceil<std::chrono::milliseconds>(next - Clock::now()).count();
  return static_cast<int>(std::max<decltype(left)>(left, 0));
}

void LookForRelease() {
  if (whenlost == nullptr || Clock::now() < next) return;
  next = Clock::now() + kLook;
  // In this order: with the answer everything has arrived that the server reported before it.
  if (AnyButtonDown() || ReleaseHasArrived()) return;
  ReleaseGoesElsewhere();
}

}  // namespace gromlit
