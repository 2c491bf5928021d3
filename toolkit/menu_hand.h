// How menus answer to a hand, and to the keyboard, with today's manners (ModernManners).
//
// The manners at the opening count until the menus are closed. Every event of the pointer and of
// the keyboard goes to the first menu's window (both are grabbed for it) and is judged by its place
// on the screen; menus that a menu bar opens in turn take both over from each other.
//
//   state      event                                  next       function
//   closed     press on what opens a menu             held       OpenMenuByHand
//   closed     the same, by a key or a sent press     standing   OpenMenuByHand
//   closed     the pointer is refused                 closed     OpenMenuByHand
//   held       motion, less than 4 pixels so far      held       nothing is highlighted
//   held       motion farther than that               held       HandMotion, the item below
//   held       motion, no button is down (late)       standing   HandMotion
//   held       release soon and near the press        standing   HandRelease
//   held       release on an item                     closed     HandRelease, the item is run
//   held       release elsewhere                      closed     HandRelease
//   standing   motion                                 standing   HandMotion, the item below
//   standing   press on a menu                        standing   HandPress, its release counts
//   standing   press on another title of the bar      held       HandPress, the menus change
//   standing   press elsewhere                        leaving    HandPress
//   standing   release on an item, after a press      closed     HandRelease, the item is run
//   standing   Return, on an item                     closed     HandKey, the item is run
//   standing   Escape, F10                            closed     HandKey
//   leaving    release                                closed     the catcher's handler
//   leaving    no button is down (the release missed) closed     LookForRelease
//   any        the first menu is closed or filled     closed     EndMenuHand
//
//   A release or Return on an item that opens a submenu leaves that open. Motion opens it, too,
//   where it has room beside its menu: one that would cover the items there waits for a click.
//
// INV-HAND-1: the keyboard is grabbed for menus only while INV-MENU-1 lets the pointer be, and is
//   given back with it. Refused, it is not asked for again; the pointer does without it.
// INV-HAND-2: a press that closes menus reaches nobody else, and neither does its release: until
//   then the pointer is kept by a window that cannot be seen.
#pragma once

#include <X11/Xlib.h>

#include "toolkit/menu.h"
#include "toolkit/menu_place.h"

namespace gromlit {

struct XMenuBar;

// What a menu bar lends to the menus that hang on its titles.
struct MenuTitles {
  // Opens the menu of a title, by OpenMenuByHand.
  bool (*open)(XMenuBar* bar, int i, const XButtonEvent* press);
  // The open title; -1 for none.
  int (*selected)(const XMenuBar* bar);
  // The title at a position of the root window; -1 for none, and for one that opens nothing.
  int (*at)(const XMenuBar* bar, int x, int y);
  // The next title that opens something, to the right (1) or to the left (-1) of the open one,
  // round at the ends.
  int (*beside)(const XMenuBar* bar, int by);
  // Shows that no title is open.
  void (*letgo)(XMenuBar* bar);
};

// Opens a menu on an anchor, or at the pointer's place when that has no size. `press` is the event
// that opens it; null for a key: then the first item is highlighted. `bar` is the menu bar whose
// selected title opens it, with its `titles`; or null. Menus that held the pointer are closed
// first, but for those of the same bar, from which pointer and keyboard are taken over. Round
// trips: two for the grabs, one to three for the monitor. Returns false, with the menu closed, when
// the pointer is refused.
bool OpenMenuByHand(XMenu* menu, const MenuAnchor& anchor, const XButtonEvent* press,
                    XMenuBar* bar = nullptr, const MenuTitles* titles = nullptr);

// The bar that the open menus hang on; or null.
XMenuBar* BarInHand();

// While the pointer rests on an arrow: how long the event loop may wait until the next row,
// milliseconds, else -1; and the scrolling by a row, when it is due.
int MenuScrollWait();
void ScrollRestedMenu();

}  // namespace gromlit
