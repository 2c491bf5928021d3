#include "demo/desk.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace gromlit::demo {
namespace {

constexpr int kStep = 6;  // pixels between two motions

}  // namespace

Window WaitForClient(Display* display, const std::string& classtext) {
  Window found = None;
  testing::WaitFor([&] { return (found = testing::FindClient(display, classtext)) != None; },
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
  return testing::WaitFor([&] { return testing::HasFocus(player.display(), window); });
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
