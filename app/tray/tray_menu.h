// The menu of the tray icon, and the application that one of its items is about.
//
//   item                    then
//   Show/Hide Gromlit       the main window is shown, or hidden
//   Pause/Resume gestures   PauseGestures
//   No gestures in NAME     NAME's plug-in becomes hands off; one without actions is made for an
//                           application that has none
//   Gestures in NAME again  it no longer is; a plug-in that nobody has put anything into is
//                           deleted, so that the strokes reach the default one again
//   Preferences, Exit       as in the main window's menus
//
// NAME is the application that the pointer entered last, but for what it has to cross on its way to
// the menu: the one that holds the icon, the bare desktop and the program's own windows. The item
// is left out while there is none, or none with a class; and where gestures are off for all
// applications without a plug-in, as this is one, and has no switch of its own.
#pragma once

#include <X11/Xlib.h>

#include "display/target.h"

namespace gromlit {

struct XMenu;

// Opens the menu for a click at (x, y) of the root window, pixels: there, or as near as it has room
// on the monitor. Its items are made anew each time.
void OpenTrayMenu(int x, int y);

// To be called when the pointer has entered an application, none of the program's own, through this
// child of the root window. While the icon is in a tray some round trips, else none.
void NoteEntered(const Target& entered, Window rootchild);

// Actions of the items. The argument is not looked at; they do nothing where there is no `app`.
void trayShowOrHide(XMenu* menu, void* arg);
void trayPauseOrResume(XMenu* menu, void* arg);
void trayHandsOff(XMenu* menu, void* arg);
void trayPreferences(XMenu* menu, void* arg);
void trayExit(XMenu* menu, void* arg);

}  // namespace gromlit
