// Drawing a symbol's vector as the gesture itself is drawn: with the draw button, in one go.
#pragma once

#include <X11/Xlib.h>

#include "recognition/stroke.h"

namespace gromlit {

// Makes the stroke the symbol editor's vector, of as few corners as still look like it, when
// `window` is the editor's empty drawing area (state 0); the editor is then in state 2, with the
// points to be dragged. False, and nothing changed, over any other window, in any other state and
// for a stroke without an extent.
bool TakeDrawnSymbol(Window window, const Stroke& stroke);

}  // namespace gromlit
