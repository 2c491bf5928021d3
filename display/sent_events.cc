#include "display/sent_events.h"

// The types of the protocol's own form; it must come behind Xlib.h.
#include <X11/Xlib.h>
#include <X11/Xlibint.h>
#undef min
#undef max

#include <algorithm>
#include <array>
#include <bitset>
#include <initializer_list>

#include "display/calls_xlib.h"
#include "display/display.h"

namespace gromlit {
namespace {

using Convert = Bool (*)(Display*, XEvent*, xEvent*);

constexpr int kSent = 0x80;   // in an event's type, on its way
constexpr int kTypes = 0x80;  // those of the protocol and of all extensions

// What Xlib or an extension's library does with an event of each type that passes here.
std::array<Convert, kTypes> converts{};
// Types that are forgotten wherever they were sent to; the others on the root window alone.
std::bitset<kTypes> everywhere;

// False: the event is dropped.
GROMLIT_CALLS_XLIB Bool ConvertUnlessSent(Display* display, XEvent* event, xEvent* wire) {
  const auto type = static_cast<size_t>(wire->u.u.type & ~kSent);
  if ((wire->u.u.type & kSent) != 0) {
    if (everywhere[type]) return False;
    if (wire->u.keyButtonPointer.event == root) return False;
  }
  return converts[type](display, event, wire);
}

void LetPass(int type) {
  const Convert former = XESetWireToEvent(dpy, type, ConvertUnlessSent);
  if (former != ConvertUnlessSent) converts[static_cast<size_t>(type)] = former;
}

}  // namespace

void ForgetSentInput() {
  for (const int type : {ButtonPress, ButtonRelease, MotionNotify}) LetPass(type);
  for (const int type : {EnterNotify, LeaveNotify, CreateNotify}) ForgetSentEvents(type, 1);
}

void ForgetSentEvents(int first, int count) {
  for (int type = first; type < std::min(first + count, kTypes); type++) {
    everywhere.set(static_cast<size_t>(type));
    LetPass(type);
  }
}

}  // namespace gromlit
