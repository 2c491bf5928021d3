#include "toolkit/menu_place.h"

#include <algorithm>

#include "display/display.h"
#include "display/scale.h"
#include "toolkit/menu_parts.h"

namespace gromlit {
namespace {

constexpr int kFrame = 6;       // pixels that a menu is higher than its rows
constexpr int kFewestRows = 5;  // a menu with less room than for these takes it from elsewhere

struct Span {
  int from;
  int to;  // behind the last pixel
};

Span Across(const XRectangle& area) {
  return {area.x, area.x + area.width};
}

Span Down(const XRectangle& area) {
  return {area.y, area.y + area.height};
}

int Length(const Span& span) {
  return span.to - span.from;
}

int FullHeight(const XMenu* menu) {
  return menu->nitems * menu->itemheight + kFrame;
}

// Where something of `size` pixels begins that would like to begin at `at`. What is too long begins
// where the span does.
int Keep(int at, int size, const Span& span) {
  return std::max(std::min(at, span.to - size), span.from);
}

// Makes a menu as high as it has room.
void Fold(XMenu* menu, int room) {
  UnfoldMenu(menu);
  if (menu->height <= room || menu->nitems == 0) return;
  menu->scrolls = 1;
  menu->visible = std::clamp((room - kFrame) / menu->itemheight - 2, 1, menu->nitems);
  menu->height = (menu->visible + 2) * menu->itemheight + kFrame;
}

// Places a menu below a strip of the screen or above it.
void PlaceOffStrip(XMenu* menu, const Span& strip, const Span& down) {
  const int below = down.to - strip.to;
  const int above = strip.from - down.from;
  const int full = FullHeight(menu);
  if (std::max({below, above, 0}) < std::min(full, kFewestRows * menu->itemheight + kFrame)) {
    Fold(menu, Length(down));
    menu->y = Keep(strip.to, menu->height, down);
    return;
  }
  const bool hangs = full <= below || (full > above && below >= above);
  Fold(menu, hangs ? below : above);
  menu->y = hangs ? strip.to : strip.from - menu->height;
}

}  // namespace

void PlaceAtPoint(XMenu* menu, int x, int y, const XRectangle& area) {
  const Span across = Across(area);
  const Span down = Down(area);
  menu->side = x + menu->width <= across.to ? 1 : -1;
  menu->x = Keep(menu->side > 0 ? x : x - menu->width, menu->width, across);
  Fold(menu, Length(down));
  const bool above = y + menu->height > down.to && y - menu->height >= down.from;
  menu->y = Keep(above ? y - menu->height : y, menu->height, down);
}

void PlaceBelow(XMenu* menu, const MenuAnchor& anchor, const XRectangle& area) {
  const int x = anchor.right ? anchor.x + anchor.width - menu->width : anchor.x;
  menu->side = 1;
  menu->x = Keep(x, menu->width, Across(area));
  PlaceOffStrip(menu, {anchor.y, anchor.y + anchor.height}, Down(area));
}

bool FitsBeside(const XMenu* menu, const XMenu* parent, const XRectangle& area) {
  const Span across = Across(area);
  return parent->x + parent->width + menu->width <= across.to ||
         parent->x - menu->width >= across.from;
}

void PlaceBeside(XMenu* menu, const XMenu* parent, int item, const XRectangle& area) {
  const Span across = Across(area);
  const Span down = Down(area);
  const int right = parent->x + parent->width;
  const int left = parent->x - menu->width;
  const bool fitsright = right + menu->width <= across.to;
  const bool fitsleft = left >= across.from;
  if (fitsright || fitsleft) {
    menu->side = fitsright && (parent->side >= 0 || !fitsleft) ? 1 : -1;
    menu->x = menu->side > 0 ? right : left;
    Fold(menu, Length(down));
    menu->y = Keep(parent->y, menu->height, down);
    return;
  }
  menu->side = 1;
  menu->x = Keep(right, menu->width, across);
  const int row = parent->y + 4 + MenuRow(parent, item) * parent->itemheight;
  PlaceOffStrip(menu, {row, row + parent->itemheight}, down);
}

bool UnfoldMenu(XMenu* menu) {
  if (menu->scrolls == 0) return false;
  menu->scrolls = 0;
  menu->visible = menu->nitems;
  menu->top = 0;
  menu->height = FullHeight(menu);
  return true;
}

int MenuRow(const XMenu* menu, int item) {
  return item - menu->top + (menu->scrolls != 0 ? 1 : 0);
}

bool ShowsItem(const XMenu* menu, int item) {
  return item >= menu->top && item < std::min(menu->nitems, menu->top + menu->visible);
}

void DrawMenuArrows(XMenu* menu) {
  if (menu->scrolls == 0) return;
  const int middle = menu->width / 2;
  const int half = std::max(menu->itemheight / 4, 2);
  const auto draw = [&](int row, int up, bool leads) {
    const int centre = 3 + row * menu->itemheight + menu->itemheight / 2;
    const int tip = centre - up * half;
    const int base = centre + up * half;
    XPoint corners[] = {
        {static_cast<short>(middle), static_cast<short>(tip)},
        {static_cast<short>(middle - 2 * half), static_cast<short>(base)},
        {static_cast<short>(middle + 2 * half), static_cast<short>(base)},
    };
    XSetForeground(dpy, menu->gc, leads ? black.pixel : dgrey.pixel);
    ScaledFillPolygon(menu->window, menu->gc, corners, 3);
  };
  draw(0, 1, menu->top > 0);
  draw(menu->visible + 1, -1, menu->top + menu->visible < menu->nitems);
  XSetForeground(dpy, menu->gc, black.pixel);
}

}  // namespace gromlit
