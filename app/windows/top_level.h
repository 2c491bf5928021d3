// The program's top-level windows: how they are made, what window managers are told of them, how
// they come and go. They live as long as the program and are only shown and hidden.
#pragma once

#include <X11/Xlib.h>

#include "toolkit/window_object.h"

namespace gromlit {

struct WindowIdentity {
  const char* title;      // window name
  const char* icontitle;  // icon name; null for none
  const char* name;       // name part of the class hint; the class part is always "Gromlit"
  int width;              // pixels; the window cannot be resized
  int height;
};

// Keeps the program's command line, which window managers find at each window made from now on
// (WM_COMMAND). argv must stay; without this call the windows have none.
void KeepCommandLine(int argc, char** argv);

// A top-level window of this size at the origin of the screen, not mapped: light grey, with a
// border of one pixel, selecting these events.
Window CreateTopLevel(int width, int height, long events);

// Sets names, command line, fixed size, class hint and the protocol that lets a window manager's
// close request hide the window.
void SetWindowManagerProperties(Window window, const WindowIdentity& identity);

// CreateTopLevel for exposures alone, and the properties: what the editors have in common.
Window MakeEditorWindow(const WindowIdentity& identity);

// The window's entry in the window-object table, with a handler that hides the window when a window
// manager closes it.
WindowObj* AllocTopLevelObj(Window window, void* owner);

// Shows a window above all others; MapTopLevel where it lies. With today's manners it is described
// to desktops first (window_hints.h), and takes Tab.
void ShowTopLevel(Window window);
void MapTopLevel(Window window);

// Shows a window above all others with everything in it drawn anew. One that is on the screen stays
// there: unmapped and mapped at once it would go where the window manager takes the first for its
// owner's withdrawing it, and answers that after the second.
void ShowTopLevelAnew(Window window);

// Takes a window from the screen.
void HideTopLevel(Window window);

}  // namespace gromlit
