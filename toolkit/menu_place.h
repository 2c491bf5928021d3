// Where an open menu lies with today's manners: whole on the screen, on the monitor where it was
// opened. One that is longer than its room gets a row with an arrow at both ends, between which its
// items scroll.
#pragma once

#include <X11/Xlib.h>

#include "toolkit/menu.h"

namespace gromlit {

// What a menu hangs on: a title, a button; of size 0 for the pointer. Coordinates of the root
// window.
struct MenuAnchor {
  int x;
  int y;
  int width;
  int height;
  bool right;  // the menu ends where the anchor does, and does not begin where it does
};

// Set x, y, side, height and the rows of a menu that is about to open; the window is left alone.
// All of it goes into `area` (coordinates of the root window) where it is not wider.
//
// PlaceAtPoint: right of and below a point, else left of it or above it. PlaceBelow: below an
// anchor, else above it, else where there is more room. PlaceBeside: beside the menu whose item
// `item` opens it, on the side that its own menu went to, else on the other one; where it is too
// wide for both, below or above that item, which stays uncovered.
void PlaceAtPoint(XMenu* menu, int x, int y, const XRectangle& area);
void PlaceBelow(XMenu* menu, const MenuAnchor& anchor, const XRectangle& area);
void PlaceBeside(XMenu* menu, const XMenu* parent, int item, const XRectangle& area);

// Whether a menu has room on either side of the one that opens it. Without, it covers the items
// around the one that it belongs to.
bool FitsBeside(const XMenu* menu, const XMenu* parent, const XRectangle& area);

// Whether an item's row can be seen.
bool ShowsItem(const XMenu* menu, int item);

}  // namespace gromlit
