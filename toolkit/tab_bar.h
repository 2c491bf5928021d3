// The tab bar: a row of titles above a bevelled panel, one of them always selected. Pressing a
// title, or dragging across the row with Button1 held, selects it and calls back; the owner shows
// the page that belongs to it. The selected tab is open towards the panel.
//
//   state          event                              next    function
//   tab i          press or drag on title j           tab j   TabBarTrackMouse, action with flag 1
//   tab i          press or drag on title i           tab i   TabBarTrackMouse, nothing to do
//   tab i          press or drag elsewhere            tab i   TabBarTrackMouse, nothing to do
//   tab i          uncovered                          tab i   DrawTabBar, action with flag 0
//   tab i          an arrow key, Home or End          tab j   TabBarKeyPress, action with flag 1
//
// Keys count with today's manners, where Tab leads to the titles; a line below the selected one
// shows that they have the keyboard.
#pragma once

#include <X11/Xlib.h>

#include "toolkit/title_row.h"
#include "toolkit/window_object.h"

namespace gromlit {

struct XTabBar;

// What made the bar call back; the page is to be shown in both cases.
inline constexpr int kTabRedrawn = 0;
inline constexpr int kTabSelected = 1;

using TabAction = void (*)(XTabBar* tbar, void* arg, int flag);

struct XTabItem {
  WindowObj* wobj;  // not used, as are the fields down to owner: a title has no window
  Window window;
  GC gc;
  int x;
  int y;
  int width;
  int height;
  void* owner;
  const char* label;  // not copied
  void* arg;          // for the action
  TabAction action;   // or null
};

struct XTabBar {
  WindowObj* wobj;
  Window window;
  GC gc;  // its own
  int x;  // not set, as is y
  int y;
  int width;       // pixels, as are height and itemheight
  int height;      // of titles and panel
  int itemheight;  // of the titles
  int selected;    // the selected tab
  int focused;     // 1 while the titles have the keyboard
  int visible;     // titles drawn
  int top;         // 0
  int nitems;      // 0..kMaxTitles
  int itemwidth[kMaxTitles];
  int itemx[kMaxTitles];
  XTabItem* items[kMaxTitles];  // owned by the bar
  void* owner;                  // set by the owner, not read here
};

// An array of n null pointers, to be filled and handed to MakeTabBar; released with delete[].
XTabItem** MakeTabItemArray(int n);

XTabItem* MakeTabItem(const char* label, TabAction action, void* arg);

// A new bar, not mapped, with the first tab selected; nothing is called back before it is drawn. A
// width of 0 makes it as wide as its titles with their margins. The pointers are copied, and the
// bar owns the titles; those beyond kMaxTitles are released at once.
XTabBar* MakeTabBar(Window parent, int x, int y, int width, int height, XFontStruct* fontinfo,
                    XTabItem** items, int nitems);

// Draws the outline of a tab and with it the panel's top edge at both sides: from the window's left
// edge, and to `fullw`, the x where that edge ends. `up` is kRaised, kSunken, or kFlat to erase.
// There is no line below the tab.
void XDrawTabBevel(int up, Window win, GC gc, int x, int y, int w, int h, int fullw);

// Handlers; the drawing does not look at its event.
void DrawTabBar(XTabBar* tbar, XEvent* event = nullptr);
void TabBarButtonPress(XTabBar* tbar, XEvent* event);
void TabBarButtonRelease(XTabBar* tbar, XEvent* event);
void TabBarMotionNotify(XTabBar* tbar, XEvent* event);
void TabBarKeyPress(XTabBar* tbar, XEvent* event);
void TabBarFocus(XTabBar* tbar, XEvent* event);

// Selects the title at the event's position, unless that lies below the titles.
void TabBarTrackMouse(XTabBar* tbar, XEvent* event);

}  // namespace gromlit
