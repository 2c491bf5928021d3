// The drawing area of the symbol editor: the symbol's vector in step 1, its icon in step 2.
//
// Positions are editor pixels. Every stored coordinate goes through `grid`, so that corner points
// lie on multiples of 8 between 16 and 264; what a damaged file left elsewhere is snapped before it
// is drawn or compared.
#pragma once

#include <X11/Xlib.h>

#include "core/gromlit.h"
#include "toolkit/window_object.h"

namespace gromlit {

struct SymbolEditor;

inline constexpr int kSymWindowSize = 280;  // pixels, both ways

// INV-SYM-1: in state 1 the rubber-band line, drawn inverting, runs from the last point to
// (lastx, lasty) and is on the screen unless both are the same.
// INV-SYM-2: the release that follows a press on a point gives the pointer back, whatever became of
// the editor's state in between; where the release is lost, the drag ends by itself.
struct SymWindow {
  WindowObj* wobj;
  GromlitSymbol* sym;   // the editor's working symbol; set by the owner
  SymbolEditor* owner;  // whose state decides what input does; set by the owner
  Window window;
  GC gc;      // its own
  GC linegc;  // for the lines of the vector
  int x;      // place in the editor, pixels
  int y;
  int width;  // kSymWindowSize, as is height
  int height;
  int onpt;   // point under the pointer, 1..npoints; 0 for none
  int lastx;  // end of the rubber-band line
  int lasty;
  int holding;  // 1 while the pointer is grabbed for dragging a point
};

// Makes the area, not mapped, with neither symbol nor owner.
SymWindow* MakeSymWindow(Window parent, int x, int y);

// Forgets the point under the pointer and the rubber-band line, as when another symbol comes in.
void ResetSymWindow(SymWindow* sw);

// Draw everything: the view that belongs to the owner's state, the vector, or the icon. The Expose
// handler does not look at its event.
void DrawSymWindow(SymWindow* sw, XEvent* event = nullptr);
void DrawSymAsVector(SymWindow* sw);
void DrawSymAsBitmap(SymWindow* sw);

// Handlers. A press on a point is one round trip (the grab); the others make none.
void SymWindowButtonPress(SymWindow* sw, XEvent* event);
void SymWindowButtonRelease(SymWindow* sw, XEvent* event);
void SymWindowMotionNotify(SymWindow* sw, XEvent* event);

}  // namespace gromlit
