// The main window: the actions of one plug-in, that of the application the pointer is on.
#pragma once

#include <X11/Xlib.h>

#include "core/gromlit.h"
#include "toolkit/window_object.h"

namespace gromlit {

struct GromlitApp {
  WindowObj* wobj;
  Window window;
  GC gc;      // black on white, text font
  int width;  // of the window, as is height; pixels
  int height;
  int border;     // margin of the layout, pixels
  int nicons;     // actions of the shown plug-in
  int iconwidth;  // of a symbol in the grid, pixels
  int iconheight;
  int ncols;  // cells of the grid
  int nrows;
  int icontop;            // first action shown, a multiple of ncols
  int selected;           // selected action, -1 for none
  GromlitPlugin* plugin;  // whose actions are shown; null before the first
};

extern GromlitApp* app;

// Makes the main window, not mapped, with its window-manager properties. ncols x nrows is the grid
// of actions that it shows; argc and argv become its WM_COMMAND.
GromlitApp* MakeGromlitApp(int ncols, int nrows, int argc, char** argv);

// Redraws the window.
void DrawGromlitApp(GromlitApp* gromlit);

// Shows the plug-in of this class, its actions loaded on first use; the default plug-in when there
// is none. *updated (may be null) becomes 1 when another plug-in is shown than before, else it is
// left alone. Returns the plug-in's node; null when the class has no plug-in.
GromlitPluginList* UpdateGromlitApp(GromlitApp* gromlit, const char* classname, int* updated);

}  // namespace gromlit
