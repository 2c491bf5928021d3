// A symbol as people see how to draw it: the stroke with a dot where it begins and an arrow where
// it ends, in SVG.
#pragma once

#include <string>

#include "core/gromlit.h"

namespace gromlit {

// An <svg> element of this many pixels or units to a side; `place` is further attributes, such as
// x="3", and may be empty. The line has the current colour. A stroke that goes back on itself is
// drawn beside itself. A symbol of fewer than two points is drawn by its icon.
std::string SymbolDrawing(const GromlitSymbol& sym, double side, const std::string& place);

// The bytes of a PNG file of 32 x 32 pixels that shows the icon's bits, black on white; empty when
// memory runs out.
std::string IconPng(const GromlitSymbol& sym);

}  // namespace gromlit
