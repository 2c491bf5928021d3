// What menus show with today's manners: which of them are open, what a place on the screen is on,
// what is highlighted. For toolkit/menu_hand.cc alone, which has the first of them.
#pragma once

#include "toolkit/menu.h"

namespace gromlit {

// The open submenu of a menu; null for none.
XMenu* OpenSubmenu(const XMenu* menu);

// The last of the open menus.
XMenu* DeepestMenu(XMenu* first);

// The deepest menu that has a highlight, for which keys are meant; else the first.
XMenu* MenuOfKeys(XMenu* first);

// The open menu whose open submenu this one is; null for none.
XMenu* MenuAbove(XMenu* first, const XMenu* child);

// The highlighted item of a menu; null for none.
XMenuItem* SelectedItem(const XMenu* menu);

// What a position of the root window is on.
struct Spot {
  XMenu* menu = nullptr;
  int item = -1;
  int arrow = 0;  // rows that it scrolls by
};

// A submenu may cover what opened it: the last one counts.
Spot SpotAt(XMenu* first, int x, int y);

// Highlights an item, or none (-1), and closes the submenu of the one before.
void SelectItem(XMenu* menu, int item);

// Scrolls a menu by so many rows, as far as it goes.
void ScrollMenu(XMenu* menu, int rows);

// Highlights an item for the keyboard: where it can be seen.
void SelectByKey(XMenu* menu, int item);

}  // namespace gromlit
