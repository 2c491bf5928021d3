#include "display/draw_button.h"

#include <X11/Xlib.h>

#include <algorithm>
#include <chrono>
#include <cstdio>

#include "display/display.h"
#include "display/x_errors.h"

namespace gromlit {
namespace {

using Clock = std::chrono::steady_clock;

// Between two requests for a refused grab: while nothing happens, and at the least. A flood of
// events must not become a flood of requests.
constexpr auto kAskIdle = std::chrono::milliseconds(1000);
constexpr auto kAskBusy = std::chrono::milliseconds(50);

int grabbed = 0;          // INV-GRAB-1
int refused = 0;          // INV-GRAB-2: the button that is asked for again, or 0
Clock::time_point asked;  // when; the time before the first request of all counts as long ago

void RequestGrab(int button) {
  // Modifiers exactly 0: with AnyModifier every click of a user with Num Lock on would pass here.
  XGrabButton(dpy, static_cast<unsigned>(button), 0, root, False,
              static_cast<unsigned>(ButtonToMotionMask(button) | ButtonReleaseMask), GrabModeSync,
              GrabModeAsync, None, None);
}

void RequestUngrab(int button) {
  XUngrabButton(dpy, static_cast<unsigned>(button), 0, root);
}

}  // namespace

long ButtonToMotionMask(int button) {
  switch (button) {
    case 1:
      return Button1MotionMask;
    case 2:
      return Button2MotionMask;
    case 4:
      return Button4MotionMask;
    case 5:
      return Button5MotionMask;
    default:
      return Button3MotionMask;
  }
}

bool GrabDrawButton(int button) {
  {
    // A grab that another client holds is answered with BadAccess, not with a return value.
    ErrorTrap trap;
    RequestGrab(button);
    if (trap.Finish() != Success) return false;
  }
  if (grabbed != 0 && grabbed != button) RequestUngrab(grabbed);
  grabbed = button;
  refused = 0;
  return true;
}

int GrabbedDrawButton() {
  return grabbed;
}

int DrawButtonWait() {
  if (refused == 0) return -1;
  const auto left =
      std::chrono::ceil<std::chrono::milliseconds>(asked + kAskIdle - Clock::now()).count();
  return static_cast<int>(std::max<decltype(left)>(left, 0));
}

void AskForDrawButton() {
  if (refused == 0 || Clock::now() - asked < kAskBusy) return;
  asked = Clock::now();
  GrabDrawButton(refused);
}

DrawButtonLifted::DrawButtonLifted() : button_(grabbed) {
  if (button_ == 0) return;
  RequestUngrab(button_);
  grabbed = 0;
  // What the grab caught before it was lifted is frozen and would stay so as long as the object
  // lives: those presses go where they would have gone without the grab.
  XSync(dpy, False);
  XEvent event;
  while (XCheckTypedWindowEvent(dpy, root, ButtonPress, &event)) {
    if (!event.xbutton.send_event) XAllowEvents(dpy, ReplayPointer, event.xbutton.time);
  }
  XFlush(dpy);
}

DrawButtonLifted::~DrawButtonLifted() {
  if (button_ == 0) return;
  if (GrabDrawButton(button_)) return;
  std::printf("%s\n", kDrawButtonTaken);
  refused = button_;
  asked = {};
}

}  // namespace gromlit
