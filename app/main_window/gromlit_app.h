// The main window: the actions of one plug-in, that of the application the pointer is on. Here are
// its record, which is `app`, and its grid.
//
// From top to bottom: the menu bar, the logo, the pulldown button that names the plug-in, the grid
// of actions with its scrollbar.
//
//   press            on                       selected                    then
//   1, single        the selected action      -1                          -
//   1, single        another action           that action                 -
//   1, double        an action                that action                 `edit`
//   1                beside the actions       as before                   -
//   3                anywhere                 as before                   popup opens
//
// With today's manners keys do as much:
//
//   arrows, Home, End, Page_Up, Page_Down       move the selection
//   Return                                      `edit`, when an action is selected
//   F10                                         opens the first menu of the menu bar
//   Menu, Shift-F10                             opens the popup at the selected action
#pragma once

#include <X11/Xlib.h>

#include "app/plugins/plugin_view.h"
#include "core/gromlit.h"
#include "toolkit/menu.h"
#include "toolkit/window_object.h"

namespace gromlit {

struct XButton;
struct XDialog;
struct XLogo;
struct XMenuBar;
struct XScrollbar;

// INV-APP-1: icontop is a multiple of ncols, 0 or more; selected is -1 or an action of `plugin`.
// INV-APP-2: the records below `cut` belong to it alone: no plug-in and no editor points to them.
struct GromlitApp {
  WindowObj* wobj;
  Window window;
  GC gc;      // black on white, text font
  int width;  // of the window, as is height; pixels
  int height;
  int border;  // margin of the layout, pixels
  int iconx;   // top-left corner of the grid
  int icony;
  int nicons;     // actions of the shown plug-in at the last redraw
  int iconwidth;  // of an action's highlight, pixels; a cell is 8 wider
  int iconheight;
  int ncols;  // cells of the grid
  int nrows;
  int icontop;            // first action shown, a multiple of ncols
  int selected;           // selected action, -1 for none
  char icons[128];        // reserved
  XButton* txt;           // pulldown button that names the plug-in and opens the plug-in menu
  XLogo* logo;            // banner below the menu bar
  XMenuBar* mbar;         // null until there is one
  XScrollbar* sbar;       // of the grid
  XDialog* dlog;          // offers to download a plug-in; made by start-up
  XDialog* newdlog;       // offers to make a plug-in; made by start-up
  GromlitPlugin* plugin;  // whose actions are shown; null before the first
  GromlitAction cut;      // clipboard of Cut, Copy and Paste
  int validcut;           // non-zero when `cut` holds an action
  XMenu* popup;           // menu of button 3
  MenuAction edit;        // what a double click on an action does
  PluginView view;        // how the rooms below show plug-ins here
  GromlitPlugin* drawn;   // whose actions the grid has; differs from `plugin` until the next redraw
  unsigned long lifted;   // request that took a window from under the pointer; 0 for none
  int resting;            // non-zero from then on until the pointer moves; it was at
  int restx;              // (restx, resty) of the root window
  int resty;
  int keys;                // whether the window asks for keys; see AskForKeys
  EventHandler otherkeys;  // takes the keys that mean nothing here
  Window leftframe;        // top-level window that it was in and has not left since; None for none
};

extern GromlitApp* app;

// Server time of the last button press on the main window, milliseconds, as the 32 bits of it.
extern int AppLastClick;

// Size of a cell of the grid, and length of all rows of the shown plug-in, pixels.
int GridCellWidth(const GromlitApp* gromlit);
int GridCellHeight(const GromlitApp* gromlit);
int GridLength(const GromlitApp* gromlit);

// Redraws the window. No round trips.
void DrawGromlitApp(GromlitApp* gromlit);

// Redraws `app`; nothing when there is none yet.
void RefreshGromlitApp();

// Gives the scrollbar the number of rows that the shown plug-in of `app` needs. To be called when
// its actions have become more or fewer.
void UpdateGromlitScrollRange();

// Scrolls the grid so that the row at ypos, pixels from the first row's top, is the first one
// shown. Redraws only when that is another row than before.
void GromlitIconScroll(GromlitApp* gromlit, int ypos);

// What the main window asks for besides its keys.
inline constexpr long kGromlitAppEvents =
    ExposureMask | EnterWindowMask | LeaveWindowMask | ButtonPressMask;

// Handlers. The last event of an exposure stands for all of it: everything is drawn anew. What does
// nothing is asked for traces only.
void ExposeGromlitApp(GromlitApp* gromlit, XEvent* event);
void GromlitAppButtonPress(GromlitApp* gromlit, XEvent* event);
void GromlitAppButtonRelease(GromlitApp* gromlit, XEvent* event);
void GromlitAppMotionNotify(GromlitApp* gromlit, XEvent* event);
void GromlitAppEnter(GromlitApp* gromlit, XEvent* event);
void GromlitAppLeave(GromlitApp* gromlit, XEvent* event);
void GromlitAppResizeNotify(GromlitApp* gromlit, XEvent* event);
void GromlitAppKeyPress(GromlitApp* gromlit, XEvent* event);

// Asks for the window's keys, or no more, as the manners are now. Its handlers do; to be called
// besides when the manners have changed.
void FollowMannersInApp(GromlitApp* gromlit);

}  // namespace gromlit
