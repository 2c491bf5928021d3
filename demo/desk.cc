#include "demo/desk.h"

#include <X11/Xutil.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace gromlit::demo {
namespace {

constexpr int kStep = 6;  // pixels between two motions

// Windows come and go while the tree is searched; what has just gone is no reason to end.
int IgnoreError(Display*, XErrorEvent*) {
  return 0;
}

bool HasClass(Display* display, Window window, const std::string& classpart,
              const std::string& namepart) {
  XClassHint hint{};
  if (XGetClassHint(display, window, &hint) == 0) return false;
  const bool same = hint.res_class != nullptr && classpart == hint.res_class &&
                    hint.res_name != nullptr && namepart == hint.res_name;
  XFree(hint.res_class);
  XFree(hint.res_name);
  return same;
}

bool Viewable(Display* display, Window window) {
  XWindowAttributes attributes{};
  return XGetWindowAttributes(display, window, &attributes) != 0 &&
         attributes.map_state == IsViewable;
}

// NOLINTNEXTLINE(misc-no-recursion): the depth is that of the window tree.
Window Search(Display* display, Window window, const std::string& classpart,
              const std::string& namepart) {
  if (HasClass(display, window, classpart, namepart) && Viewable(display, window)) return window;
  for (const Window child : testing::ChildrenOf(display, window)) {
    const Window found = Search(display, child, classpart, namepart);
    if (found != None) return found;
  }
  return None;
}

bool IsInside(Display* display, Window window, Window ancestor) {
  while (window != None && window != ancestor) {
    Window root;
    Window parent = None;
    Window* list = nullptr;
    unsigned count = 0;
    if (XQueryTree(display, window, &root, &parent, &list, &count) == 0) return false;
    if (list != nullptr) XFree(list);
    window = parent;
  }
  return window == ancestor;
}

}  // namespace

Window FindClient(Display* display, const std::string& classpart, const std::string& namepart) {
  const auto former = XSetErrorHandler(IgnoreError);
  const Window found = Search(display, DefaultRootWindow(display), classpart, namepart);
  XSetErrorHandler(former);
  return found;
}

Window WaitForClient(Display* display, const std::string& classpart, const std::string& namepart) {
  Window found = None;
  testing::WaitFor(
      [&] {
        found = FindClient(display, classpart, namepart);
        return found != None;
      },
      std::chrono::seconds(30));
  return found;
}

Area AreaOf(Display* display, Window window) {
  Area area{};
  XWindowAttributes attributes{};
  if (XGetWindowAttributes(display, window, &attributes) == 0) return area;
  Window child;
  XTranslateCoordinates(display, window, DefaultRootWindow(display), 0, 0, &area.x, &area.y,
                        &child);
  area.width = attributes.width;
  area.height = attributes.height;
  return area;
}

void Place(Display* display, Window window, const Area& area) {
  XMoveResizeWindow(display, window, area.x, area.y, static_cast<unsigned>(area.width),
                    static_cast<unsigned>(area.height));
  XSync(display, False);
  // The frame moves the client by a border and a title; a size may be rounded to character cells.
  testing::WaitFor([&] {
    const Area now = AreaOf(display, window);
    return std::abs(now.x - area.x) < 40 && std::abs(now.y - area.y) < 40 &&
           std::abs(now.width - area.width) < 40 && std::abs(now.height - area.height) < 40;
  });
}

bool TakeFocus(testing::Player& player, Window window) {
  const Point centre = AreaOf(player.display(), window).At(0.5, 0.5);
  player.MoveTo(centre.x, centre.y);
  player.Click(1);
  return testing::WaitFor([&] {
    Window focus = None;
    int revert;
    XGetInputFocus(player.display(), &focus, &revert);
    return focus != None && focus != PointerRoot && IsInside(player.display(), focus, window);
  });
}

void Trace(testing::Player& player, const std::vector<Point>& corners) {
  for (size_t i = 1; i < corners.size(); i++) {
    const Point from = corners[i - 1];
    const Point to = corners[i];
    const int longest = std::max(std::abs(to.x - from.x), std::abs(to.y - from.y));
    const int steps = std::max(1, longest / kStep);
    for (int step = 1; step <= steps; step++) {
      const int x = from.x + (to.x - from.x) * step / steps;
      const int y = from.y + (to.y - from.y) * step / steps;
      player.MoveTo(x, y);
      testing::WaitFor([&] {
        const testing::Player::Pointer at = player.Where();
        return at.x == x && at.y == y;
      });
    }
  }
}

}  // namespace gromlit::demo
