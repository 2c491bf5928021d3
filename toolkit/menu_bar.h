// The menu bar: a row of titles, each of which opens a menu below it while a button is held.
//
//   state    event                                next     function
//   shut     press or motion on a title           open     MenuBarTrackMouse
//   shut     press, another menu has the pointer  shut     MenuBarButtonPress
//   shut     motion, the press was elsewhere      shut     MenuBarMotionNotify
//   shut     motion elsewhere                     shut     MenuBarTrackMouse
//   open     pointer on the same title            open     MenuBarTrackMouse, nothing to do
//   open     pointer on another title             open     MenuBarTrackMouse, the menus change
//   open     pointer in the bar, off the titles   shut     MenuBarTrackMouse
//   open     pointer below the bar                open     MenuTrackMouse of the menu
//   open     release below the bar                shut     MenuButtonRelease of the menu
//   open     release in the bar                   shut     MenuBarButtonRelease, nothing is run
//   open     the bar's window is hidden           shut     ShutHiddenMenuBar, nothing is run
//   open     another menu takes the pointer       shut     PopUpMenuGrabbed, nothing is run
//   open     no button is down (release missed)   shut     LookForRelease, nothing is run
//
// With today's manners a title's menu takes the pointer as all others do, and a click leaves it
// open: see toolkit/menu_hand.h. What follows is for the plain ones.
//
// The press itself makes the server send all motion and the release to the bar (an implicit grab),
// and the server ends that when the last button goes up: there is no grab to give back. It ends it
// as well when the bar can no longer be seen, and tells nobody. Motion that a press elsewhere
// brings along is dropped: its release may never come here.
#pragma once

#include <X11/Xlib.h>

#include "toolkit/menu.h"
#include "toolkit/title_row.h"
#include "toolkit/window_object.h"

namespace gromlit {

struct XPulldown {
  const char* label;  // not copied
  XMenu* menu;        // or null: the title opens nothing
};

struct XMenuBar {
  WindowObj* wobj;
  Window window;
  GC gc;  // its own
  int x;  // in the parent
  int y;
  int width;  // pixels, as are height and itemheight
  int height;
  int itemheight;
  int selected;                  // the open title; -1 for none
  int visible;                   // titles drawn
  int top;                       // 0
  int nitems;                    // 0..kMaxTitles
  int itemwidth[kMaxTitles];     // pixels of a title's text
  int itemx[kMaxTitles];         // x of a title's text
  XPulldown* items[kMaxTitles];  // owned by the bar
  int held;                      // non-zero from a press here until all buttons are up
  int rootx;                     // where the bar was on the screen when a title was opened last
  int rooty;                     // with today's manners
  void (*key)(void* arg, XEvent* event);  // takes key presses that come to the bar; or null
  void* keyarg;
};

// An array of n null pointers, to be filled and handed to MakeMenuBar; released with delete[].
XPulldown** MakePulldownArray(int n);

XPulldown* MakePulldown(const char* label, XMenu* menu);

// A new bar, not mapped. A width of 0 makes it as wide as its titles need. The pointers are copied,
// and the bar owns the titles; those beyond kMaxTitles are released at once, their menus are not.
XMenuBar* MakeMenuBar(Window parent, int x, int y, int width, XFontStruct* fontinfo,
                      XPulldown** items, int nitems);

// Handlers; the drawing does not look at its event.
void DrawMenuBar(XMenuBar* bar, XEvent* event = nullptr);
void MenuBarButtonPress(XMenuBar* bar, XEvent* event);
void MenuBarMotionNotify(XMenuBar* bar, XEvent* event);
void MenuBarButtonRelease(XMenuBar* bar, XEvent* event);

// Opens the title under the pointer and closes the one that was open. Only the x of the event's
// position is looked at.
void MenuBarTrackMouse(XMenuBar* mbar, XEvent* event);

// Keys that come to the bar's window, because the pointer is there, go to `key`.
void MenuBarKeyPress(XMenuBar* bar, XEvent* event);

// Opens the menu of a title with today's manners; `press` as for OpenMenuByHand. The title that was
// open is shut. False when there is no such menu, or the pointer is refused: then all is shut.
bool MenuBarOpenByHand(XMenuBar* bar, int i, const XButtonEvent* press);

// Shuts the bar that is held if it has gone from the screen, with the menu that is open. Round
// trips only while one is held.
void ShutHiddenMenuBar();

}  // namespace gromlit
