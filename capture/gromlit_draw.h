// The capture of a stroke: from the grabbed press of the draw button to the action, or to an
// ordinary click.
//
// States of one press, all inside GromlitDrawButtonPress:
//
//   state      event                         next       function
//   ---------  ----------------------------  ---------  -------------------------------------
//   idle       synthetic press               idle       ignored: nothing is frozen on its account
//   idle       press with a modifier that    idle       replayed to the window under the pointer
//              is no lock chosen to be drawn
//              with, or another button, or
//              while an action is being edited,
//              or while gestures are paused
//   idle       press over an application     idle       replayed, once its class is known
//              that is hands off
//   idle       press                         pressed    Thaw (widened grab), then Search
//   pressed    motion                        drawing    BeginDrawing, then as in drawing; over the
//                                                       tray icon pressed, and nothing is drawn
//   drawing    motion                        drawing    AddPoint, MoveTrail
//   pressed,   draw button released          idle       Click, Recognise, or TakeDrawnSymbol over
//   drawing                                             the symbol editor
//   pressed,   another button pressed        idle       nothing is recognised or sent
//   drawing
//   pressed,   the grab is gone              idle       nothing is recognised or sent
//   drawing
//
// INV-CAPTURE-1: the pointer is never left frozen: Capture::Run thaws it with the press or release
// that ends the stroke, or gives up the grab; the actions run after that.
// INV-CAPTURE-2: no trail window, and no label, stays mapped in the idle state (~Capture).
// INV-CAPTURE-3: at most kMaxStrokePoints points are kept, the press point included.
#pragma once

#include <X11/Xlib.h>

#include "app/main_window/gromlit_app.h"
#include "capture/stroke_label.h"
#include "capture/trail.h"
#include "toolkit/window_object.h"

namespace gromlit {

struct GromlitDraw {
  WindowObj* wobj;     // the root window's entry
  TrailWindows trail;  // not mapped between strokes
  StrokeLabel label;   // neither
  int drawmapped;      // kept in the record, never read
  GromlitApp* app;     // whose shown plug-in follows the strokes; set once it exists
};

// Makes the overlay for the draw button in force and registers it for the root window's presses
// (and for its crossing and creation events, which belong to the pointer tracking, and for windows
// that are hidden, which the toolkit wants to know).
GromlitDraw* MakeGromlitDraw();

// Gives the trail windows the event mask of another draw button.
void RenewDrawEvents(GromlitDraw* draw);

// Handler of the grabbed press; returns when the stroke is over and its action has run.
void GromlitDrawButtonPress(GromlitDraw* draw, XEvent* event);

}  // namespace gromlit
