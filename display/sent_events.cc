#include "display/sent_events.h"

// The types of the protocol's own form; it must come behind Xlib.h.
#include <X11/Xlib.h>
#include <X11/Xlibint.h>
#undef min
#undef max

#include <initializer_list>

#include "display/calls_xlib.h"
#include "display/display.h"

namespace gromlit {
namespace {

using Convert = Bool (*)(Display*, XEvent*, xEvent*);

constexpr int kSent = 0x80;  // in an event's type, on its way

// What Xlib does with an event of these types.
Convert convert = nullptr;

// False: the event is dropped.
GROMLIT_CALLS_XLIB Bool ConvertUnlessSent(Display* display, XEvent* event, xEvent* wire) {
  if ((wire->u.u.type & kSent) != 0) {
    const int type = wire->u.u.type & ~kSent;
    if (type == EnterNotify || type == LeaveNotify || type == CreateNotify) return False;
    if (wire->u.keyButtonPointer.event == root) return False;
  }
  return convert(display, event, wire);
}

}  // namespace

void ForgetSentInput() {
  for (const int type :
       {ButtonPress, ButtonRelease, MotionNotify, EnterNotify, LeaveNotify, CreateNotify}) {
    const Convert former = XESetWireToEvent(dpy, type, ConvertUnlessSent);
    // One and the same function for every event of the core protocol.
    if (former != ConvertUnlessSent) convert = former;
  }
}

}  // namespace gromlit
