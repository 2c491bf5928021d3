// The check box: a square that a press turns over. Its caption is drawn by the owner; with today's
// manners a press on the caption counts, too.
#pragma once

#include <X11/Xlib.h>

#include "toolkit/window_object.h"

namespace gromlit {

inline constexpr int kCheckBoxSize = 12;  // pixels, both ways

struct XCheckBox {
  WindowObj* wobj;
  void* owner;  // who made it; not read here
  Window window;
  Window parent;
  GC gc;      // buttongc
  int width;  // pixels, as are the three below
  int height;
  int x;  // position in the parent
  int y;
  int state;                                // 1 checked, 0 unchecked
  int focused;                              // 1 while it has the keyboard
  void (*action)(void* arg, int newstate);  // or null
  void* arg;                                // the box itself unless the owner replaces it
  Window caption;                           // takes the presses on the caption; None before there
};                                          // was a use for it

// Makes and maps a checked box; owners set the real state and redraw.
XCheckBox* MakeCheckBox(void* owner, Window parent, void (*func)(void* arg, int newstate), int x,
                        int y);

// Says how far the caption reaches: from the box to x = right, and from y = top to y = bottom, in
// the parent. To be called whenever the owner draws it. Takes no request with plain manners.
void PlaceCaption(XCheckBox* box, int right, int top, int bottom);

// Takes the box from the screen, and with it the presses on its caption.
void HideCheckBox(XCheckBox* box);

// Handlers; the drawing does not look at its event. Every press counts, of any mouse button.
void DrawCheckBox(XCheckBox* box, XEvent* event = nullptr);
void CheckBoxDown(XCheckBox* box, XEvent* event);

// With today's manners Tab leads to a box, and Space or Return turns it over.
void CheckBoxKeyPress(XCheckBox* box, XEvent* event);
void CheckBoxFocus(XCheckBox* box, XEvent* event);

}  // namespace gromlit
