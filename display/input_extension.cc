#include "display/input_extension.h"

// The types of the protocol's own form; it must come behind Xlib.h.
#include <X11/Xlib.h>
#include <X11/Xlibint.h>
#include <X11/extensions/XInput.h>
#undef min
#undef max

#include "display/calls_xlib.h"
#include "display/display.h"

namespace gromlit {
namespace {

using Convert = Bool (*)(Display*, XEvent*, xEvent*);

constexpr int kSent = 0x80;  // in an event's type, on its way
constexpr int kTypes = 17;   // of the extension's events

// What its library does with them.
Convert convert = nullptr;

GROMLIT_CALLS_XLIB Bool ConvertUnlessSent(Display* display, XEvent* event, xEvent* wire) {
  return (wire->u.u.type & kSent) == 0 && convert(display, event, wire) ? True : False;
}

}  // namespace

bool FindInputExtension(int* opcode) {
  int event;
  int error;
  *opcode = 0;
  if (!XQueryExtension(dpy, "XInputExtension", opcode, &event, &error)) return false;
  // The function of the library that asks the server for nothing but whether the extension is
  // there: with it the library takes charge of the events, and none has been read meanwhile.
  BadDevice(dpy, error);
  for (int type = event; type < event + kTypes; type++) {
    const Convert former = XESetWireToEvent(dpy, type, ConvertUnlessSent);
    // One and the same function for all of them.
    if (former != ConvertUnlessSent) convert = former;
  }
  return true;
}

}  // namespace gromlit
