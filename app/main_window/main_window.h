// The main window put together: the grid with its menus and what they do.
#pragma once

#include "app/main_window/gromlit_app.h"

namespace gromlit {

// Makes the main window, not mapped, with its window-manager properties. ncols x nrows is the grid
// of actions that it shows.
GromlitApp* MakeGromlitApp(int ncols, int nrows);

// Whether the main window is on the screen; one that was made into an icon, or is on another
// desktop, is not. One round trip. False before it is made, as the two below then do nothing.
bool GromlitIsShown();

// Shows the main window above all others, wherever it was; takes it from the screen.
void ShowGromlit();
void HideGromlit();

// Action of the plug-in button; its menu does the work.
void appClickPlugins(void* button);

}  // namespace gromlit
