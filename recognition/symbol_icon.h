// The 32 x 32 icon of a symbol: its bits, and drawing it from the symbol's vector.
#pragma once

#include "core/gromlit.h"

namespace gromlit {

// Cell 0..31 of an editor coordinate. Coordinates from damaged files are snapped first, so that
// every cell lies inside the icon.
int CellOf(int v);

// Non-zero when bit (x, y) is set; x is taken modulo 32. REQUIRES: 0 <= y < kIconSize.
int iconGet(const GromlitSymbol* sym, int x, int y);
void iconSet(GromlitSymbol* sym, int x, int y);
void iconClr(GromlitSymbol* sym, int x, int y);

// Nearest multiple of 8 (remainders of 4 and more round up), clamped to kGridMin..kGridMax.
int grid(int v);

// Sets the bits of the line between two cells 0..31, both ends included (Bresenham 1965). A tie
// steps the minor axis. Either direction gives the same bits.
void IconLine(GromlitSymbol* sym, int x1, int y1, int x2, int y2);

// Redraws the whole icon from the vector; a symbol of fewer than two points gets an empty icon.
void VectorToBitmap(GromlitSymbol* sym);

// Adds the head of an arrow to the icon, at the vector's end, so that the icon says the way of the
// pen. Nothing for a symbol whose points all lie in one cell.
void AddArrowHead(GromlitSymbol* sym);

}  // namespace gromlit
