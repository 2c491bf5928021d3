#include "display/target.h"

#include <X11/Xatom.h>
#include <X11/Xutil.h>

#include <string>
#include <string_view>

#include "core/strings.h"
#include "display/display.h"
#include "display/x_handles.h"

namespace gromlit {
namespace {

// Another client decides how deep and how wide its windows are nested, and the pointer stands still
// while they are searched. Beyond these bounds the search is cut short.
constexpr int kMaxDepth = 64;
constexpr int kMaxWindows = 2000;

struct Children {
  XData<Window> list;
  unsigned count = 0;
};

Children ChildrenOf(Window window) {
  Window rootwin;
  Window parent;
  Window* list = nullptr;
  Children children;
  if (XQueryTree(dpy, window, &rootwin, &parent, &list, &children.count) == 0) return {};
  children.list.reset(list);
  return children;
}

// Copies the class text of a window with a class hint: class part, ".", name part.
bool ClassHintText(Window window, std::span<char> cname) {
  XClassHint hint{};
  if (XGetClassHint(dpy, window, &hint) == 0) return false;
  const XData<char> name(hint.res_name);
  const XData<char> classpart(hint.res_class);
  if (name == nullptr && classpart == nullptr) return false;
  std::string text;
  if (classpart != nullptr) text = classpart.get();
  if (name != nullptr) {
    if (!text.empty()) text += '.';
    text += name.get();
  }
  CopyText(cname, text);
  return true;
}

Window FindApp(Window window, std::span<char> cname, int depth, int* budget) {
  if (depth == kMaxDepth || --*budget < 0) return None;
  if (ClassHintText(window, cname)) return window;
  XTextProperty name{};
  if (const Status status = XGetWMName(dpy, window, &name); status != 0) {
    const XData<unsigned char> text(name.value);
    if (name.encoding != XA_STRING || name.format != 8) return static_cast<Window>(status);
    CopyText(cname, {reinterpret_cast<const char*>(name.value), name.nitems});
    return window;
  }
  const Children children = ChildrenOf(window);
  for (unsigned i = 0; i < children.count; i++) {
    if (const Window found = FindApp(children.list.get()[i], cname, depth + 1, budget)) {
      return found;
    }
  }
  return None;
}

// Whether a window takes the press, by its attributes alone.
bool Takes(const XWindowAttributes& attributes, long mask) {
  return attributes.map_state == IsViewable && (attributes.all_event_masks & mask) != 0;
}

bool Inside(const XWindowAttributes& attributes, int x, int y) {
  return x >= 0 && x <= attributes.width && y >= 0 && y <= attributes.height;
}

// A position on the root window.
struct Position {
  int x;
  int y;
};

// Writes the position in a window, and which mapped child of it holds that. False when the window
// is gone.
bool Translate(Window window, Position at, int* x, int* y, Window* child) {
  return XTranslateCoordinates(dpy, root, window, at.x, at.y, x, y, child) != 0;
}

Window SearchDown(Window window, long mask, Position at, int* x, int* y, int depth, int* budget) {
  if (depth == kMaxDepth || --*budget < 0) return None;
  XWindowAttributes attributes;
  // Nothing below a window that is not viewable can be viewable.
  if (XGetWindowAttributes(dpy, window, &attributes) == 0 || attributes.map_state != IsViewable) {
    return None;
  }
  {
    const Children children = ChildrenOf(window);
    for (unsigned i = 0; i < children.count; i++) {
      const Window found = SearchDown(children.list.get()[i], mask, at, x, y, depth + 1, budget);
      if (found != None) return found;
    }
  }
  if (*budget < 0 || !Takes(attributes, mask)) return None;
  Window child;
  int winx;
  int winy;
  if (!Translate(window, at, &winx, &winy, &child) || !Inside(attributes, winx, winy)) return None;
  *x = winx;
  *y = winy;
  return window;
}

// For a client with more windows than may be searched: follows the position down instead, so that
// its click still has a target. The deepest window that takes the press is the answer.
Window FollowPosition(Window window, long mask, Position at, int* x, int* y) {
  Window best = None;
  for (int depth = 0; depth < kMaxDepth && window != None; depth++) {
    XWindowAttributes attributes;
    Window child;
    int winx;
    int winy;
    if (XGetWindowAttributes(dpy, window, &attributes) == 0 ||
        !Translate(window, at, &winx, &winy, &child)) {
      break;
    }
    if (Takes(attributes, mask) && Inside(attributes, winx, winy)) {
      best = window;
      *x = winx;
      *y = winy;
    }
    window = child;
  }
  return best;
}

Window FindTarget(Window window, long mask, Position at, int* x, int* y) {
  int budget = kMaxWindows;
  const Window found = SearchDown(window, mask, at, x, y, 0, &budget);
  if (found == None && budget < 0) return FollowPosition(window, mask, at, x, y);
  return found;
}

}  // namespace

Window GetXApp(Window window, std::span<char> cname) {
  if (window == None || window == root) {
    CopyText(cname, labelRoot);
    return root;
  }
  int budget = kMaxWindows;
  return FindApp(window, cname, 0, &budget);
}

Window GetXAppClick(Window window, int rootx, int rooty, int* x, int* y) {
  return FindTarget(window, ButtonPressMask | ButtonReleaseMask, {rootx, rooty}, x, y);
}

Window GetXAppKey(Window window, int rootx, int rooty, int* x, int* y) {
  return FindTarget(window, ButtonPressMask, {rootx, rooty}, x, y);
}

Target FindApplication(Window rootchild, int, int) {
  Target target;
  target.client = rootchild == None ? root : rootchild;
  target.app = GetXApp(rootchild, target.cname);
  target.named = target.app > 1;
  return target;
}

Target FindTargets(Window rootchild, int rootx, int rooty) {
  Target target = FindApplication(rootchild, rootx, rooty);
  if (target.app == root) {
    target.click = target.key = root;
    target.winx = rootx;
    target.winy = rooty;
  } else if (target.app != None) {
    target.click = GetXAppClick(target.app, rootx, rooty, &target.winx, &target.winy);
    // Second, so that its position wins where both searches find a window.
    target.key = GetXAppKey(target.app, rootx, rooty, &target.winx, &target.winy);
  }
  return target;
}

}  // namespace gromlit
