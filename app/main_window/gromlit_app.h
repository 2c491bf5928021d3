// The main window: the actions of one plug-in, that of the application the pointer is on.
//
// From top to bottom: the menu bar, the logo, the pulldown button that names the plug-in, the grid
// of actions with its scrollbar.
//
//   press            on                       selected                    then
//   1, single        the selected action      -1                          -
//   1, single        another action           that action                 -
//   1, double        an action                that action                 popEditAction
//   1                beside the actions       as before                   -
//   3                anywhere                 as before                   popup opens
#pragma once

#include <X11/Xlib.h>

#include "core/gromlit.h"
#include "toolkit/window_object.h"

namespace gromlit {

struct XButton;
struct XDialog;
struct XLogo;
struct XMenu;
struct XMenuBar;
struct XScrollbar;
struct PluginMenus;

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
  PluginMenus* menus;     // windows of the plug-in menu; made and used by MakePluginsMenu
  GromlitPlugin* drawn;   // whose actions the grid has; differs from `plugin` until the next redraw
  unsigned long lifted;   // request that took a window from under the pointer; 0 for none
};

extern GromlitApp* app;

// Server time of the last button press on the main window, milliseconds, as the 32 bits of it.
extern int AppLastClick;

// Makes the main window, not mapped, with its window-manager properties. ncols x nrows is the grid
// of actions that it shows; argc and argv become its WM_COMMAND.
GromlitApp* MakeGromlitApp(int ncols, int nrows, int argc, char** argv);

// Redraws the window. No round trips.
void DrawGromlitApp(GromlitApp* gromlit);

// Redraws `app`; nothing when there is none yet.
void RefreshGromlitApp();

// Shows the plug-in of this class, its actions loaded on first use; the default plug-in when there
// is none. *updated (may be null) becomes 1 when another plug-in is shown than before, else it is
// left alone. Returns the plug-in's node; null when the class has no plug-in. Does not redraw the
// grid.
GromlitPluginList* UpdateGromlitApp(GromlitApp* gromlit, const char* classname, int* updated);

// To be called right before the request that takes a menu or a dialog from the screen after which
// the main window is to show a certain plug-in. The pointer is then on what was below, often
// another application, without having gone there; GromlitAppTrackEnter does not follow it.
void KeepShownPlugin();

// Gives the scrollbar the number of rows that the shown plug-in of `app` needs. To be called when
// its actions have become more or fewer.
void UpdateGromlitScrollRange();

// Scrolls the grid so that the row at ypos, pixels from the first row's top, is the first one
// shown. Redraws only when that is another row than before.
void GromlitIconScroll(GromlitApp* gromlit, int ypos);

// Handlers.
void GromlitAppButtonPress(GromlitApp* gromlit, XEvent* event);
void GromlitAppButtonRelease(GromlitApp* gromlit, XEvent* event);
void GromlitAppMotionNotify(GromlitApp* gromlit, XEvent* event);
void GromlitAppEnter(GromlitApp* gromlit, XEvent* event);
void GromlitAppLeave(GromlitApp* gromlit, XEvent* event);
void GromlitAppResizeNotify(GromlitApp* gromlit, XEvent* event);

// Action of the plug-in button; its menu does the work.
void appClickPlugins(void* button);

}  // namespace gromlit
