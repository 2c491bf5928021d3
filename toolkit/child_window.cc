#include "toolkit/child_window.h"

#include "display/display.h"
#include "display/scale.h"
#include "display/x_handles.h"

namespace gromlit {

Window MakeChildWindow(Window parent, int x, int y, int width, int height, unsigned long background,
                       long eventmask, unsigned long moremask, const XSetWindowAttributes& more) {
  XSetWindowAttributes attributes = more;
  attributes.background_pixel = background;
  attributes.event_mask = eventmask;
  return ScaledCreateWindow(parent, x, y, width, height, 0, InputOutput,
                            CWBackPixel | CWEventMask | moremask, &attributes);
}

void ExposeAll(Window window) {
  XClearArea(dpy, window, 0, 0, 0, 0, True);
  Window rootwin;
  Window parent;
  Window* list = nullptr;
  unsigned count = 0;
  if (XQueryTree(dpy, window, &rootwin, &parent, &list, &count) == 0) return;
  const XData<Window> children(list);
  for (unsigned i = 0; i < count; i++) XClearArea(dpy, list[i], 0, 0, 0, 0, True);
}

bool CanBeSeen(Window window) {
  XWindowAttributes attributes;
  return XGetWindowAttributes(dpy, window, &attributes) != 0 && attributes.map_state == IsViewable;
}

GC MakeWindowGC(Window window, Font font) {
  XGCValues values;
  values.foreground = black.pixel;
  values.background = white.pixel;
  values.font = font;
  const unsigned long mask = GCForeground | GCBackground | (font != None ? GCFont : 0UL);
  return XCreateGC(dpy, window, mask, &values);
}

}  // namespace gromlit
