#include "toolkit/open_menus.h"

#include <algorithm>

#include "toolkit/bevel.h"
#include "toolkit/menu_parts.h"
#include "toolkit/menu_place.h"

namespace gromlit {

XMenu* OpenSubmenu(const XMenu* menu) {
  return menu->submenu != nullptr && menu->submenu->open != 0 ? menu->submenu : nullptr;
}

XMenu* DeepestMenu(XMenu* first) {
  XMenu* menu = first;
  while (OpenSubmenu(menu) != nullptr) menu = OpenSubmenu(menu);
  return menu;
}

XMenu* MenuOfKeys(XMenu* first) {
  XMenu* menu = first;
  while (OpenSubmenu(menu) != nullptr && OpenSubmenu(menu)->selected >= 0) {
    menu = OpenSubmenu(menu);
  }
  return menu;
}

XMenu* MenuAbove(XMenu* first, const XMenu* child) {
  XMenu* menu = first;
  while (menu != nullptr && menu->submenu != child) menu = OpenSubmenu(menu);
  return menu;
}

XMenuItem* SelectedItem(const XMenu* menu) {
  return menu->selected >= 0 && menu->selected < menu->nitems ? menu->items[menu->selected]
                                                              : nullptr;
}

namespace {

Spot SpotIn(XMenu* menu, int x, int y) {
  const int inx = x - menu->x;
  const int iny = y - menu->y;
  if (inx < 0 || inx >= menu->width || iny < 0 || iny >= menu->height) return {};
  Spot spot{menu, -1, 0};
  if (iny < 1) return spot;
  const int row = (iny - 4) / menu->itemheight;
  if (menu->scrolls != 0 && row == 0) {
    spot.arrow = -1;
  } else if (menu->scrolls != 0 && row == menu->visible + 1) {
    spot.arrow = 1;
  } else if (const int item = row - MenuRow(menu, 0); ShowsItem(menu, item)) {
    spot.item = item;
  }
  return spot;
}

}  // namespace

Spot SpotAt(XMenu* first, int x, int y) {
  Spot found{};
  for (XMenu* menu = first; menu != nullptr; menu = OpenSubmenu(menu)) {
    if (const Spot spot = SpotIn(menu, x, y); spot.menu != nullptr) found = spot;
  }
  return found;
}

void SelectItem(XMenu* menu, int item) {
  if (item == menu->selected) return;
  if (menu->selected >= 0) {
    if (ShowsItem(menu, menu->selected)) {
      DrawMenuHighlight(menu, kFlat, MenuRow(menu, menu->selected));
    }
    CloseSubmenu(menu);
  }
  menu->selected = item;
  if (item >= 0 && ShowsItem(menu, item)) DrawMenuHighlight(menu, kRaised, MenuRow(menu, item));
}

void ScrollMenu(XMenu* menu, int rows) {
  if (menu->scrolls == 0) return;
  const int top = std::clamp(menu->top + rows, 0, menu->nitems - menu->visible);
  if (top == menu->top) return;
  // The item that a submenu belongs to moves away from it.
  CloseSubmenu(menu);
  menu->selected = -1;
  menu->top = top;
  DrawMenu(menu);
}

void SelectByKey(XMenu* menu, int item) {
  if (menu->nitems == 0) return;
  if (item < menu->top) ScrollMenu(menu, item - menu->top);
  if (item >= menu->top + menu->visible) {
    ScrollMenu(menu, item - menu->top - menu->visible + 1);
  }
  SelectItem(menu, item);
}

}  // namespace gromlit
