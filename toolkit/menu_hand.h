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

// Opens a menu on an anchor, or at the pointer's place when that has no size. `press` is the event
// that opens it; null for a key: then the first item is highlighted. `bar` is the menu bar whose
// title `bar->selected` opens it; or null. Menus that held the pointer are closed first, but for
// those of the same bar, from which pointer and keyboard are taken over. Round trips: two for the
// grabs, one to three for the monitor. Returns false, with the menu closed, when the pointer is
// refused.
bool OpenMenuByHand(XMenu* menu, const MenuAnchor& anchor, const XButtonEvent* press,
                    XMenuBar* bar = nullptr);

// The first of the menus that are open with today's manners; null for none.
XMenu* MenuInHand();

// The bar that they hang on; or null.
XMenuBar* BarInHand();

// Whether a press that closed menus still waits for its release, which holds the pointer.
bool HandIsLeaving();

// Gives the pointer back for which HandIsLeaving; nothing otherwise.
void EndLeaving();

// To be called by whoever gives the pointer of the first menu back: gives the keyboard back and
// lets the bar's title go.
void EndMenuHand(const XMenu* menu);

// The events of the first menu's window.
void HandPress(const XButtonEvent& press);
void HandRelease(const XButtonEvent& release);
void HandMotion(const XMotionEvent& motion);
void HandKey(XKeyEvent* key);

// Scrolls the menu under the pointer, or the last one that scrolls, by a number of rows, upwards
// when it is negative. `menu` is the one that has the pointer; nothing when it was opened with
// plain manners, or is closed.
void MenuWheel(XMenu* menu, int rows);

// While the pointer rests on an arrow: how long the event loop may wait until the next row,
// milliseconds, else -1; and the scrolling by a row, when it is due.
int MenuScrollWait();
void ScrollRestedMenu();

}  // namespace gromlit
