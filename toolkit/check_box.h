// The check box: a square that a press turns over. Its caption is drawn by the owner.
#pragma once

#include <X11/Xlib.h>

#include "toolkit/window_object.h"

namespace gromlit {

inline constexpr int kCheckBoxSize = 12;  // pixels, both ways

struct XCheckBox {
  WindowObj* wobj;
  void* owner;  // who made it; not read here
  Window window;
  GC gc;      // buttongc
  int width;  // pixels, as are the three below
  int height;
  int x;  // position in the parent
  int y;
  int state;                                // 1 checked, 0 unchecked
  void (*action)(void* arg, int newstate);  // or null
  void* arg;                                // the box itself unless the owner replaces it
};

// Makes and maps a checked box; owners set the real state and redraw.
XCheckBox* MakeCheckBox(void* owner, Window parent, void (*func)(void* arg, int newstate), int x,
                        int y);

// Handlers; the drawing does not look at its event. Every press counts, of any mouse button.
void DrawCheckBox(XCheckBox* box, XEvent* event = nullptr);
void CheckBoxDown(XCheckBox* box, XEvent* event);

}  // namespace gromlit
