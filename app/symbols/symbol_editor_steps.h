// What the symbol editor says about the step that it is in.
#pragma once

#include <X11/Xlib.h>

#include "app/symbols/symbol_editor_record.h"

namespace gromlit {

inline constexpr int kSymbolWorkX = 16;   // of the drawing area and of the name field, pixels
inline constexpr int kSymbolWorkY = 100;  // below the step's title

// Draws the title and the explanation of the step; an Expose handler that does not look at its
// event.
void DrawSymbolEditor(SymbolEditor* editor, XEvent* event = nullptr);

}  // namespace gromlit
