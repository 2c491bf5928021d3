#include "display/pointer_click.h"

#include <X11/Xlib.h>
#include <X11/extensions/XTest.h>

#include "display/display.h"
#include "display/draw_button.h"

namespace gromlit {

bool ClickAtPointer(int button) {
  int opcode;
  int error;
  int major;
  int minor;
  if (!XTestQueryExtension(dpy, &opcode, &error, &major, &minor)) return false;
  // The grab would catch this click as it caught the one that it stands for.
  const DrawButtonLifted lifted;
  XTestFakeButtonEvent(dpy, static_cast<unsigned>(button), True, CurrentTime);
  XTestFakeButtonEvent(dpy, static_cast<unsigned>(button), False, CurrentTime);
  return true;
}

}  // namespace gromlit
