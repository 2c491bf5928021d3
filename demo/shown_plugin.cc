#include "demo/shown_plugin.h"

#include <X11/Xutil.h>

#include <algorithm>
#include <memory>
#include <nlohmann/json.hpp>

#include "demo/desk.h"

namespace gromlit::demo {
namespace {

// The main window's layout, pixels.
constexpr int kBorder = 4;
constexpr int kButtonHeight = 24;
constexpr int kGridBelowButton = 26;  // from the top of the button to that of the grid
constexpr int kColumns = 6;
constexpr int kRows = 3;
constexpr int kCellWidth = 72;
constexpr int kIconX = kBorder + 4 + 16;  // of the first column's icons
constexpr int kIconY = 8;                 // from the top of a cell
constexpr int kIconSize = 32;

constexpr unsigned long kWhite = 0xffffff;
constexpr unsigned long kBlack = 0;

struct ImageFree {
  void operator()(XImage* image) const { XDestroyImage(image); }
};
using Picture = std::unique_ptr<XImage, ImageFree>;

unsigned long PixelAt(const Picture& picture, int x, int y) {
  return XGetPixel(picture.get(), x, y) & kWhite;
}

// A child window's place in its parent.
Area PlaceOf(Display* display, Window child) {
  Area area{};
  XWindowAttributes attributes{};
  if (XGetWindowAttributes(display, child, &attributes) == 0) return area;
  return {attributes.x, attributes.y, attributes.width, attributes.height};
}

Icon IconAt(const Picture& picture, int x, int y) {
  Icon icon(kIconSize, std::string(kIconSize, '.'));
  for (int row = 0; row < kIconSize; row++)
    for (int column = 0; column < kIconSize; column++)
      if (PixelAt(picture, x + column, y + row) != kWhite)
        icon[static_cast<size_t>(row)][static_cast<size_t>(column)] = '#';
  return icon;
}

bool IsBlank(const Icon& icon) {
  return std::all_of(icon.begin(), icon.end(),
                     [](const std::string& line) { return line.find('#') == std::string::npos; });
}

// The icons of the grid between its top and the window's lower edge.
std::vector<Icon> IconsIn(const Picture& picture, int top, int bottom) {
  const int cell_height = (bottom - top - 2 * kBorder) / kRows;
  std::vector<Icon> icons;
  size_t used = 0;
  for (int cell = 0; cell < kColumns * kRows; cell++) {
    icons.push_back(IconAt(picture, kIconX + kCellWidth * (cell % kColumns),
                           top + kIconY + cell_height * (cell / kColumns)));
    if (!IsBlank(icons.back())) used = icons.size();
  }
  icons.resize(used);
  return icons;
}

}  // namespace

ShownPlugin LookAtMainWindow(Display* display, Window main) {
  ShownPlugin shown;
  const Area area = AreaOf(display, main);
  if (area.x < 0 || area.y < 0 || area.x + area.width > DisplayWidth(display, 0) ||
      area.y + area.height > DisplayHeight(display, 0))
    return shown;
  // From the root window, so that whatever lies in front is seen too.
  const Picture picture(XGetImage(display, DefaultRootWindow(display), area.x, area.y,
                                  static_cast<unsigned>(area.width),
                                  static_cast<unsigned>(area.height), AllPlanes, ZPixmap));
  if (picture == nullptr) return shown;
  for (const Window child : testing::ChildrenOf(display, main)) {
    const Area place = PlaceOf(display, child);
    if (place.x == 0 && place.y == 0) {
      for (int x = 0; x < place.width; x++)
        shown.menus = shown.menus || PixelAt(picture, x, place.height / 2) == kBlack;
    } else if (place.x == kBorder && place.height == kButtonHeight) {
      for (int y = place.y; y < place.y + place.height; y++)
        for (int x = place.x; x < place.x + place.width; x++)
          shown.caption += PixelAt(picture, x, y) == kBlack ? '#' : '.';
      shown.icons = IconsIn(picture, place.y + kGridBelowButton, area.height);
    }
  }
  return shown;
}

std::vector<Icon> IconsOfActions(const std::string& shown) {
  const auto plugin = nlohmann::json::parse(shown);
  std::vector<Icon> icons;
  for (const auto& action : plugin.at("actions"))
    icons.push_back(action.at("symbol").at("icon").get<Icon>());
  return icons;
}

}  // namespace gromlit::demo
