// The pulldown button: a button that opens a menu in its place, to choose one of several values;
// with today's manners below it, ending where its mark ends.
//
// It is an XButton whose press opens the menu with the pointer grabbed; from then on the menu
// tracks the pointer and is chosen from by itself. The button never enters its pressed state. A
// caption that would reach into its mark is shown shortened.
#pragma once

#include <X11/Xlib.h>

#include "toolkit/button.h"
#include "toolkit/menu.h"

namespace gromlit {

// Makes and maps a pulldown button. The label is copied. `menu` may be null, then a press does
// nothing until SetPulldownMenu gives it one.
XButton* MakePulldownButton(void* owner, Window parent, const char* label, int x, int y, int width,
                            XMenu* menu);

// Hangs a menu, or none, on a button, which becomes a pulldown button if it was a plain one. The
// menu that hung there is detached, not released. Does not draw.
void SetPulldownMenu(XButton* button, XMenu* menu);

// Copies a new caption, cut to what the field holds, and draws the button; for the actions of the
// menu's items, which reach the button through the menu's `pulldown`.
void UpdatePulldownButton(XButton* button, const char* label);

// Handlers; the drawing does not look at its event.
void DrawPulldownButton(XButton* button, XEvent* event = nullptr);
void PulldownButtonPress(XButton* button, XEvent* event);

// With today's manners: Space, Return and Down open the menu.
void PulldownButtonKeyPress(XButton* button, XEvent* event);
void PulldownButtonFocus(XButton* button, XEvent* event);

}  // namespace gromlit
