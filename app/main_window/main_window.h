// The main window put together: the grid with its menus and what they do.
#pragma once

#include "app/main_window/gromlit_app.h"

namespace gromlit {

// Makes the main window, not mapped, with its window-manager properties. ncols x nrows is the grid
// of actions that it shows.
GromlitApp* MakeGromlitApp(int ncols, int nrows);

// Action of the plug-in button; its menu does the work.
void appClickPlugins(void* button);

}  // namespace gromlit
