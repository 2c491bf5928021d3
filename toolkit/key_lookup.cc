#include "toolkit/key_lookup.h"

#include <X11/Xutil.h>

#include "display/display.h"

namespace gromlit {

int LookupKey(XKeyEvent* event, char* bytes, int size, KeySym* key) {
  int lowest;
  int highest;
  XDisplayKeycodes(dpy, &lowest, &highest);
  *key = NoSymbol;
  const auto keycode = static_cast<int>(event->keycode);
  if (keycode < lowest || keycode > highest) return 0;
  return XLookupString(event, bytes, size, key, nullptr);
}

}  // namespace gromlit
