#include "display/input_extension.h"

#include <X11/Xlib.h>
#include <X11/extensions/XInput.h>

#include "display/display.h"
#include "display/sent_events.h"

namespace gromlit {

bool FindInputExtension(int* opcode) {
  constexpr int kTypes = 17;  // of the extension's events
  int event;
  int error;
  *opcode = 0;
  if (!XQueryExtension(dpy, "XInputExtension", opcode, &event, &error)) return false;
  // The function of the library that asks the server for nothing but whether the extension is
  // there: with it the library takes charge of the events, and none has been read meanwhile.
  BadDevice(dpy, error);
  ForgetSentEvents(event, kTypes);
  return true;
}

}  // namespace gromlit
