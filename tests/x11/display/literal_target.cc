#include "tests/x11/display/literal_target.h"

#include <X11/Xatom.h>
#include <X11/Xutil.h>

#include <vector>

namespace gromlit::testing {
namespace {

std::vector<Window> Children(Display* display, Window window) {
  Window root;
  Window parent;
  Window* list = nullptr;
  unsigned count = 0;
  if (XQueryTree(display, window, &root, &parent, &list, &count) == 0) return {};
  std::vector<Window> children(list, list + count);
  if (list != nullptr) XFree(list);
  return children;
}

bool Managed(Display* display, Window window) {
  const Atom state = XInternAtom(display, "WM_STATE", False);
  Atom type = 0;
  int format;
  unsigned long count;
  unsigned long left;
  unsigned char* data = nullptr;
  XGetWindowProperty(display, window, state, 0, 0, False, AnyPropertyType, &type, &format, &count,
                     &left, &data);
  if (data != nullptr) XFree(data);
  return type != 0;
}

bool Viewable(Display* display, Window window) {
  XWindowAttributes attributes;
  return XGetWindowAttributes(display, window, &attributes) != 0 &&
         attributes.map_state == IsViewable;
}

// By the corners on the screen, the border included.
bool Holds(Display* display, Window window, int rootx, int rooty) {
  XWindowAttributes a;
  if (XGetWindowAttributes(display, window, &a) == 0) return false;
  int left;
  int top;
  Window child;
  XTranslateCoordinates(display, window, a.root, -a.border_width, -a.border_width, &left, &top,
                        &child);
  return rootx >= left && rootx < left + a.width + 2 * a.border_width && rooty >= top &&
         rooty < top + a.height + 2 * a.border_width;
}

}  // namespace

Window LiteralClient(Display* display, Window rootchild, int rootx, int rooty) {
  struct Node {
    Window window;
    bool reached;
  };
  std::vector<Node> level = {{rootchild, true}};
  Window framed = 0;
  bool managed = false;
  for (int depth = 0; depth <= 8; depth++) {
    std::vector<Window> withstate;
    Window topmost = 0;
    std::vector<Node> next;
    for (const Node& node : level) {
      if (!Viewable(display, node.window)) continue;
      const bool reached = node.reached && Holds(display, node.window, rootx, rooty);
      if (Managed(display, node.window)) {
        withstate.push_back(node.window);
        if (reached) topmost = node.window;
      }
      for (const Window child : Children(display, node.window)) next.push_back({child, reached});
    }
    if (topmost != 0) return topmost;
    if (!managed && withstate.size() == 1) framed = withstate[0];
    managed = managed || !withstate.empty();
    level = next;
  }
  return framed != 0 ? framed : rootchild;
}

Window LiteralApp(Display* display, Window window, std::string* cname) {
  XClassHint hint{};
  if (XGetClassHint(display, window, &hint) != 0) {
    if (hint.res_class != nullptr) *cname = hint.res_class;
    if (hint.res_name != nullptr) {
      if (!cname->empty()) *cname += ".";
      *cname += hint.res_name;
    }
    const bool found = hint.res_class != nullptr || hint.res_name != nullptr;
    if (hint.res_class != nullptr) XFree(hint.res_class);
    if (hint.res_name != nullptr) XFree(hint.res_name);
    return found ? window : 0;
  }
  XTextProperty name{};
  if (const Status status = XGetWMName(display, window, &name); status != 0) {
    const bool plain = name.encoding == XA_STRING && name.format == 8;
    if (plain) *cname = reinterpret_cast<const char*>(name.value);
    XFree(name.value);
    return plain ? window : static_cast<Window>(status);
  }
  for (const Window child : Children(display, window)) {
    if (const Window found = LiteralApp(display, child, cname)) return found;
  }
  return 0;
}

Window LiteralSearch(Display* display, Window window, long mask, int* x, int* y) {
  for (const Window child : Children(display, window)) {
    if (const Window found = LiteralSearch(display, child, mask, x, y)) return found;
  }
  Window root;
  Window child;
  int rootx;
  int rooty;
  int winx;
  int winy;
  unsigned state;
  if (!XQueryPointer(display, window, &root, &child, &rootx, &rooty, &winx, &winy, &state)) {
    return window;
  }
  XWindowAttributes attributes;
  if (XGetWindowAttributes(display, window, &attributes) == 0) return 0;
  if (attributes.map_state != IsViewable || (attributes.all_event_masks & mask) == 0 || winx < 0 ||
      winx > attributes.width || winy < 0 || winy > attributes.height) {
    return 0;
  }
  *x = winx;
  *y = winy;
  return window;
}

LiteralTarget LiteralTargets(Display* display, Window rootchild, int rootx, int rooty) {
  LiteralTarget target;
  target.client = LiteralClient(display, rootchild, rootx, rooty);
  target.app = LiteralApp(display, target.client, &target.cname);
  if (target.app <= 1) return target;
  target.click = LiteralSearch(display, target.app, ButtonPressMask | ButtonReleaseMask,
                               &target.winx, &target.winy);
  target.key = LiteralSearch(display, target.app, ButtonPressMask, &target.winx, &target.winy);
  return target;
}

}  // namespace gromlit::testing
