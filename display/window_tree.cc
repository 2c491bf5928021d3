#include "display/window_tree.h"

#include "display/display.h"
#include "display/x_handles.h"

namespace gromlit {

Window ParentOf(Window window) {
  Window rootwin;
  Window parent = None;
  Window* list = nullptr;
  unsigned count;
  if (XQueryTree(dpy, window, &rootwin, &parent, &list, &count) == 0) return None;
  const XData<Window> children(list);
  return parent;
}

}  // namespace gromlit
