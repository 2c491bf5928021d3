// Pop-up menus with cascading submenus.
//
// A menu is a top-level window that no window manager frames, mapped only while it is open. There
// is no loop that follows the pointer: all motion goes to the window where the interaction began (a
// grabbed menu, or a menu bar while the button is held), which hands it on to the menu or submenu
// under the pointer with translated coordinates.
//
//   state       event                          next          function
//   closed      opened                         open          PopUpMenu, PullDownMenu
//   closed      opened with the pointer        open          PopUpMenuGrabbed
//   closed      the same, grab refused         closed        PopUpMenuGrabbed
//   closed      press, motion, release (late)  closed        the handlers drop it
//   open        pointer on an item             item          MenuTrackMouse
//   open        pointer on a submenu's item    cascade       MenuTrackMouse
//   item        pointer on the same item       item          MenuTrackMouse, nothing to do
//   item        pointer on another item        item/cascade  MenuTrackMouse, two rows repainted
//   item        pointer off the items          open          MenuTrackMouse
//   cascade     pointer on the same item       cascade       MenuTrackMouse, nothing to do
//   cascade     pointer on another item        item/cascade  MenuTrackMouse, submenus closed
//   cascade     pointer off the items          cascade       MenuTrackMouse of the submenu
//   any open    button released                closed        MenuButtonRelease, the item is run
//   any open    closed with its submenus       closed        PopDownMenu
//   any open    closed alone                   closed        PullUpMenu
//   any open    filled anew                    closed        RemakeMenu, SpareMenus
//
//   open: no item highlighted; item: one is; cascade: one is, and its submenu is open.
//
// With today's manners a click leaves a menu open, and the keyboard is answered, too: see
// toolkit/menu_hand.h. The rules below hold in both.
//
// INV-MENU-1: the pointer is grabbed for a menu only while that menu is open. All closing goes
//   through one function that gives the pointer back, whichever button was released.
// INV-MENU-2: events that reach a closed menu change nothing, unless they are those of what has the
//   pointer now, or lies there (toolkit/pointer_hold.h). Motion that was on its way when a
//   choice was made would open submenus that nobody closes; the release of a second button would
//   run the item again.
// INV-MENU-3: an action may rebuild the menu that it was chosen from, and the menus that led there.
//   Nothing is read from an item once an action has run, and no action of an item that a rebuild
//   took away is called.
#pragma once

#include <X11/Xlib.h>

#include <vector>

#include "toolkit/window_object.h"

namespace gromlit {

struct XButton;
struct XMenu;

inline constexpr int kMaxMenuItems = 256;

// Called with the menu that holds the item.
using MenuAction = void (*)(XMenu* menu, void* arg);

struct XMenuItem {
  const char* label;  // not copied: the owner keeps it until the item is released
  void* arg;          // for the action
  MenuAction action;  // or null
  XMenu* submenu;     // opened when the item is highlighted; or null
};

struct XMenu {
  WindowObj* wobj;
  Window window;
  GC gc;  // its own
  int x;  // where it was last popped up: coordinates of the root window
  int y;
  int width;  // pixels, as are height and itemheight
  int height;
  int itemheight;
  int selected;  // item highlighted; -1 for none
  int visible;   // rows drawn
  int top;       // item in the first row
  int scrolls;   // non-zero while it is longer than its room, with an arrow above and below
  int side;      // 1 where submenus go to the right first, -1 to the left; with today's manners
  int nitems;    // 0..kMaxMenuItems
  XMenuItem* items[kMaxMenuItems];  // owned by the menu
  XButton* pulldown;                // the pulldown button that it belongs to; or null
  XMenu* submenu;                   // open child; after a choice, until it pops up again, the last
  Window parent;
  int open;      // non-zero from popping up to closing
  int nremakes;  // times that the items were replaced
};

// An array of n null pointers, to be filled and handed to MakeMenu; released with delete[].
XMenuItem** MakeMenuItemArray(int n);

// A new item without a submenu; callers set `submenu` to make one cascade.
XMenuItem* MakeMenuItem(const char* label, MenuAction action, void* arg);

// A new menu, closed. `parent` is the root window wherever a user is to see the menu whole. The
// pointers are copied, and the menu owns the items: it releases those beyond kMaxMenuItems at once
// and the others when it is filled anew.
XMenu* MakeMenu(Window parent, int x, int y, XFontStruct* fontinfo, XMenuItem** items, int nitems);

// Closes a menu with its submenus, releases its items and fills it with new ones; window, graphics
// context and table entry stay, the window takes its new size. Submenus of the old items are not
// touched beyond that. An item may be in both lists.
void RemakeMenu(XMenu* menu, XFontStruct* fontinfo, XMenuItem** items, int nitems);

// Menus that are not in use, kept for chains of menus that shrink and grow again: windows, contexts
// and table entries cannot be given back, and must not grow with every rebuild.
struct XMenuPool {
  std::vector<XMenu*> spare;
};

// Closes a menu and all menus below it (the submenus of its items), releases their items, detaches
// them from their pulldown buttons and puts them into the pool. A null menu is none.
void SpareMenus(XMenuPool* pool, XMenu* menu);

// A menu of the root window with these items: a spare one, else a new one.
XMenu* TakeMenu(XMenuPool* pool, XFontStruct* fontinfo, XMenuItem** items, int nitems);

// Opens a menu at (x, y) of the root window, without a highlight or submenu.
void PopUpMenu(int x, int y, XMenu* menu);
void PullDownMenu(int x, int y, XMenu* menu);

// Opens a menu and grabs the pointer for it until a button is released; with today's manners as
// toolkit/menu_hand.h says, which needs the press that opens it, or null for a key. This is the one
// way of opening a menu at the pointer. A menu that held the pointer is closed first. Returns
// false, with the menu closed, when the server refuses the grab: without it the release would reach
// somebody else and the menu would stay.
bool PopUpMenuGrabbed(int x, int y, XMenu* menu, const XButtonEvent* press = nullptr);

// Whether an open menu has the pointer. The release that ends a press which is read only now will
// go to that menu, so that nothing may begin with it.
bool MenuHoldsPointer();

// Closes the menu that has the pointer, if any. For whoever gives the pointer back without knowing
// who has it: a menu that lost it unnoticed would stay open and hold everything up (INV-MENU-1).
void CloseGrabbedMenu();

// Closes a menu alone; its submenus stay as they are.
void PullUpMenu(XMenu* menu);

// Closes a menu and the chain of its open submenus.
void PopDownMenu(XMenu* menu);

// Handlers; the drawing does not look at its event. Keys count with today's manners alone.
void DrawMenu(XMenu* menu, XEvent* event = nullptr);
void MenuButtonPress(XMenu* menu, XEvent* event);
void MenuMotionNotify(XMenu* menu, XEvent* event);
void MenuKeyPress(XMenu* menu, XEvent* event);

// Runs the highlighted items, the deepest submenu's first, and closes the menu. An item that opened
// a submenu is run too, after the item that was chosen there.
void MenuButtonRelease(XMenu* menu, XEvent* event);

// Scrolls the menu under the pointer, or the last one that scrolls, by a number of rows, upwards
// when it is negative. `menu` is the one that has the pointer; nothing when it was opened with
// plain manners, or is closed.
void MenuWheel(XMenu* menu, int rows);

// Moves the highlight to the item under the pointer and opens and closes submenus. The event's
// position is in the menu's coordinates and is overwritten when a submenu takes it over.
void MenuTrackMouse(XMenu* menu, XEvent* event);

}  // namespace gromlit
