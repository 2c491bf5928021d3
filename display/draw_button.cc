#include "display/draw_button.h"

#include <X11/Xlib.h>

#include <cstdio>

#include "display/display.h"
#include "display/x_errors.h"

namespace gromlit {
namespace {

int grabbed = 0;  // INV-GRAB-1

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
  return true;
}

int GrabbedDrawButton() {
  return grabbed;
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
  if (!GrabDrawButton(button_)) std::printf("%s\n", kDrawButtonTaken);
}

}  // namespace gromlit
