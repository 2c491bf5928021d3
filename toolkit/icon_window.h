// A tile that shows a symbol's icon, and the drawing of such an icon.
#pragma once

#include <X11/Xlib.h>

#include "core/gromlit.h"
#include "toolkit/window_object.h"

namespace gromlit {

inline constexpr int kIconWindowSize = 40;  // pixels, both ways

struct IconWindow {
  WindowObj* wobj;
  GromlitSymbol* sym;  // whose icon is shown; null shows none
  Window window;
  GC gc;                           // its own
  int (*action)(void* buttonarg);  // set by the owner before a clickable tile is mapped
  void* buttonarg;                 // null: the tile is passive and selects no button events
  int focused;                     // 1 while it has the keyboard
};

// Makes a tile, not mapped.
IconWindow* MakeIconWindow(Window parent, int x, int y, GromlitSymbol* sym, void* buttonarg);

// Handlers; the drawing does not look at its event. Every release calls back, wherever the pointer
// is.
void DrawIconWindow(IconWindow* iw, XEvent* event = nullptr);
void IconWindowButtonRelease(IconWindow* iw, XEvent* event);

// With today's manners Tab leads to a clickable tile, and Space or Return calls back.
void IconWindowKeyPress(IconWindow* iw, XEvent* event);
void IconWindowFocus(IconWindow* iw, XEvent* event);

// Draws the set bits of a symbol's icon, 32 x 32 pixels, in gc's foreground with the top-left
// corner at (wx, wy). One request at most.
void DrawSymbolIcon(Window w, GC gc, const GromlitSymbol* sym, int wx, int wy);

}  // namespace gromlit
