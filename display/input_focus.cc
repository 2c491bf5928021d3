#include "display/input_focus.h"

#include "display/display.h"

namespace gromlit {

Window FinishAndFindFocus() {
  Window focus = None;
  int revert;
  XGetInputFocus(dpy, &focus, &revert);
  return focus;
}

}  // namespace gromlit
