// What the program's top-level windows tell window managers.
#pragma once

#include <X11/Xlib.h>

namespace gromlit {

struct WindowIdentity {
  const char* title;      // window name
  const char* icontitle;  // icon name; null for none
  const char* name;       // name part of the class hint; the class part is always "Gromlit"
  int width;              // pixels; the window cannot be resized
  int height;
  int argc;  // command line, for WM_COMMAND
  char** argv;
};

// Sets names, command line, fixed size, class hint and the protocol that lets a window manager's
// close request hide the window.
void SetWindowManagerProperties(Window window, const WindowIdentity& identity);

// A top-level window of this size at the origin of the screen, not mapped: light grey, with a
// border of one pixel, selecting these events.
Window CreateTopLevel(int width, int height, long events);

// CreateTopLevel for exposures alone, and the properties: what the editors have in common.
Window MakeEditorWindow(const WindowIdentity& identity);

}  // namespace gromlit
