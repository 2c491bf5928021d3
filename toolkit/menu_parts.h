// What the parts of menus have for each other: toolkit/menu.cc draws, opens, closes and runs them,
// toolkit/menu_place.cc finds their place, toolkit/menu_hand.cc answers with today's manners, with
// toolkit/open_menus.cc and toolkit/menu_leaving.cc. For these alone.
#pragma once

#include <X11/Xlib.h>

namespace gromlit {

struct XMenu;

// --- toolkit/menu.cc ---

// The menu that has the pointer, or null (INV-MENU-1), and how it gets and loses it. `inherited`
// from the menu that has it: what was reported to that and is read later is the new one's.
// EndMenuGrab does nothing for a menu that has it not.
XMenu* MenuWithPointer();
bool GrabPointerFor(XMenu* menu, long events, bool inherited = false);
void EndMenuGrab(const XMenu* menu);

// Hands the record of who has the pointer over without giving it back; for whoever has grabbed it
// anew. Null: no menu.
void PassMenuGrab(XMenu* menu);

// Maps a menu at its place, above everything, without a highlight or a submenu.
void ShowMenu(XMenu* menu);

// Gives the window the size that the record has.
void ResizeMenu(XMenu* menu);

// Closes the submenu of a menu, if one is open.
void CloseSubmenu(XMenu* menu);

// Draws the bevel around a row of the window, or takes it away (kFlat).
void DrawMenuHighlight(XMenu* menu, int up, int row);

// Gives the pointer back, runs the highlighted items of an open menu and of its submenus, the
// deepest one's first, and closes them.
void RunMenu(XMenu* menu);

// --- toolkit/menu_place.cc ---

// Gives a menu all its rows again and forgets the arrows. Returns whether its height has changed.
bool UnfoldMenu(XMenu* menu);

// The row of the window in which an item is; may be none that can be seen.
int MenuRow(const XMenu* menu, int item);

// Draws the two arrows of a menu that scrolls; the one that leads nowhere is grey. The context's
// foreground is black afterwards.
void DrawMenuArrows(XMenu* menu);

// --- toolkit/menu_hand.cc ---

// The first of the menus that are open with today's manners; null for none.
XMenu* MenuInHand();

// OpenMenuByHand at a point.
bool PopUpMenuByHand(int x, int y, XMenu* menu, const XButtonEvent* press);

// The events of the first menu's window.
void HandPress(const XButtonEvent& press);
void HandRelease(const XButtonEvent& release);
void HandMotion(const XMotionEvent& motion);
void HandKey(XKeyEvent* key);

// To be called by whoever gives the pointer of the first menu back: gives the keyboard back and
// lets the bar's title go.
void EndMenuHand(const XMenu* menu);

}  // namespace gromlit
