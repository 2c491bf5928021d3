#include "display/draw_button.h"

#include <X11/Xlib.h>

#include <algorithm>
#include <chrono>
#include <cstdio>

#include "core/option_files.h"
#include "display/display.h"
#include "display/input_focus.h"
#include "display/lock_modifiers.h"
#include "display/x_errors.h"

namespace gromlit {
namespace {

using Clock = std::chrono::steady_clock;

// Between two requests for a refused grab: while nothing happens, and at the least. A flood of
// events must not become a flood of requests.
constexpr auto kAskIdle = std::chrono::milliseconds(1000);
constexpr auto kAskBusy = std::chrono::milliseconds(50);

int grabbed = 0;  // INV-GRAB-1
int refused = 0;  // INV-GRAB-2: the button that is asked for again, or 0
// When; the time before the first request of all counts as long ago.
Clock::time_point asked;  // NOLINT(cert-err58-cpp): zero, a constant

unsigned locks = 0;  // modifiers with which the draw button is grabbed, too

void RequestGrab(int button, unsigned modifiers) {
  // Exactly these modifiers: with AnyModifier every click of a user with Num Lock on, and every
  // command that a window manager has on a button with Alt, would pass here.
  XGrabButton(dpy, static_cast<unsigned>(button), modifiers, root, False,
              static_cast<unsigned>(ButtonToMotionMask(button) | ButtonReleaseMask), GrabModeSync,
              GrabModeAsync, None, None);
}

// The next smaller combination of some of these modifiers; 0 is the last one.
unsigned NextCombination(unsigned combination, unsigned modifiers) {
  return (combination - 1) & modifiers;
}

void RequestUngrab(int button, unsigned combination) {
  XUngrabButton(dpy, static_cast<unsigned>(button), combination, root);
}

void RequestUngrab(int button) {
  for (unsigned with = locks; with != 0; with = NextCombination(with, locks)) {
    RequestUngrab(button, with);
  }
  RequestUngrab(button, 0);
}

// A combination that another client holds is left to it: the button alone decides whether the
// program draws at all.
void RequestGrabWithLocks(int button) {
  if (locks == 0) return;
  ErrorTrap trap;
  for (unsigned with = locks; with != 0; with = NextCombination(with, locks)) {
    RequestGrab(button, with);
  }
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
    RequestGrab(button, 0);
    if (trap.Finish() != Success) return false;
  }
  RequestGrabWithLocks(button);
  if (grabbed != 0 && grabbed != button) RequestUngrab(grabbed);
  grabbed = button;
  refused = 0;
  return true;
}

int GrabbedDrawButton() {
  return grabbed;
}

unsigned DrawLocks() {
  return locks;
}

void RenewDrawLocks() {
  const unsigned wanted = Chosen(user, kDrawWithLocks) ? ReadModifierMap().locks : 0;
  if (wanted == locks) return;
  // The button alone stays grabbed all the time.
  for (unsigned with = grabbed != 0 ? locks : 0; with != 0; with = NextCombination(with, locks)) {
    RequestUngrab(grabbed, with);
  }
  locks = wanted;
  if (grabbed != 0) RequestGrabWithLocks(grabbed);
  XFlush(dpy);
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

void LeaveDrawButton() {
  if (grabbed != 0) RequestUngrab(grabbed);
  grabbed = 0;
  refused = 0;
}

DrawButtonLifted::DrawButtonLifted() : button_(grabbed) {
  if (button_ == 0) return;
  RequestUngrab(button_);
  grabbed = 0;
  // What the grab caught before it was lifted is frozen and would stay so as long as the object
  // lives: those presses go where they would have gone without the grab.
  focus_ = FinishAndFindFocus();
  XEvent event;
  while (XCheckTypedWindowEvent(dpy, root, ButtonPress, &event)) {
    if (event.xbutton.send_event) continue;
    XAllowEvents(dpy, ReplayPointer, event.xbutton.time);
    focus_.reset();
  }
  if (!focus_) XFlush(dpy);
}

DrawButtonLifted::~DrawButtonLifted() {
  if (button_ == 0) return;
  if (GrabDrawButton(button_)) return;
  std::printf("%s\n", kDrawButtonTaken);
  refused = button_;
  asked = {};
}

}  // namespace gromlit
