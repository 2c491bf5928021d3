// The menu of all plug-ins, which hangs on the main window's pulldown button, and the deletion of a
// plug-in, which changes it.
#pragma once

#include "core/gromlit.h"

namespace gromlit {

struct XMenu;

inline constexpr const char* labelMenuMore = "more...";

// Builds the menu of allPlugins: a chain of menus of 20 items, each but the last of which begins
// with an item that leads to the next. Returns the first menu, null when there are no plug-ins. The
// menus of the call before are taken apart and used again, so that the number of windows follows
// the number of plug-ins and not that of the calls.
//
// The labels are the plug-ins' appnames themselves: records leave allPlugins but are not released,
// and whoever changes an appname builds the menu anew, because widths are measured here.
//
// With plain manners each menu of the chain opens to the right of the one before, and one that
// begins beyond the screen cannot be reached; with today's all can, whatever the names' width. On a
// screen 1,920 pixels wide, with the main window at its left edge, all of 200 plug-ins can be
// chosen while their names are at most 175 pixels wide (some 28 letters); of plug-ins with names of
// 63 wide letters 57 can.
XMenu* MakePluginsMenu();

// MakePluginsMenu, hung on the main window's pulldown button. To be called whenever allPlugins or
// an appname has changed. Nothing while plug-ins are shown nowhere yet.
void UpdatePluginsMenu();

// Action of an item that leads to the next menu; does nothing.
void MenuMore(XMenu* menu, void* arg);

// Action of a plug-in's item: the main window shows the plug-in, which is the argument. Closes the
// menu first.
void SelectPlugin(XMenu* menu, void* plugin);

// Deletes the plug-in's file and takes it out of allPlugins and of the menu; the main window shows
// the default plug-in; when that is the deleted one, a new and empty one. `fname` is the file's
// base name, which is the class. Returns 1; or 0 with everything as it was, after telling the user,
// when the file cannot be deleted.
int DeletePlugin(GromlitPlugin* killpin, const char* fname);

}  // namespace gromlit
