// The picture of a symbol as the main window and the symbol chooser show it.
#pragma once

#include <X11/Xlib.h>

#include "core/gromlit.h"

namespace gromlit {

// Draws the set bits of a symbol's icon, 32 x 32 pixels, in gc's foreground with the top-left
// corner at (x, y). One request at most.
void DrawSymbolBigIcon(Window window, GC gc, const GromlitSymbol* sym, int x, int y);

}  // namespace gromlit
