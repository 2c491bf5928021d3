// The banner that heads the main window and the editors: the logo, and a picture or a title.
#pragma once

#include <X11/Xlib.h>
#include <X11/Xutil.h>

#include "toolkit/window_object.h"

namespace gromlit {

struct XLogo {
  WindowObj* wobj;
  Window window;
  XImage* left;       // not used
  XImage* mid;        // shown in the space right of the logo; or null
  XImage* right;      // not used
  const char* title;  // shown there in the logo font, not copied; or null
  GC gc;              // logogc
  int width;          // pixels, as is height
  int height;
};

// Makes and maps a banner; its height is that of logoImage + 4. The title must outlive it.
XLogo* MakeLogo(Window parent, int x, int y, int width, XImage* mid, const char* title);

// Handlers; the drawing does not look at its event. The other two only keep clicks on the banner
// from going anywhere else.
void DrawLogo(XLogo* logo, XEvent* event = nullptr);
void LogoButtonPress(XLogo* logo, XEvent* event);
void LogoButtonRelease(XLogo* logo, XEvent* event);

}  // namespace gromlit
