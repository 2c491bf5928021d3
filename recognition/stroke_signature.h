// A stroke reduced to its signature: a short text over the letters a, b, c, d and -.
//
// The bounding box is divided into thirds both ways; the signature is the sequence of crossings of
// the two inner horizontal lines (a upper, b lower) and the two inner vertical ones (c left,
// d right). Strokes more than four times as long as wide get one of eight fixed signatures.
#pragma once

#include <cstddef>
#include <cstdint>

#include "core/gromlit.h"

namespace gromlit {

// Letters that the signature of n points can have at most: four for each step, and never fewer
// than the four of a straight stroke (one point with a negative coordinate already gives four).
constexpr size_t MaxSignature(int npoints) {
  return npoints > 1 ? 4 * (static_cast<size_t>(npoints) - 1) : 4;
}

// Bytes for the signature of any live stroke, its NUL included.
inline constexpr size_t kDrawnSignatureSize = 1024;
static_assert(MaxSignature(kMaxStrokePoints) + 1 <= kDrawnSignatureSize);

// Points of the densest symbol: 63 segments of at most 32 points each.
inline constexpr int kMaxDensePoints = 4096;

// Extent of a point list, pixels. Starts at top = left = 65535, bottom = right = 0.
struct BoundingRect {
  int32_t top;
  int32_t bottom;
  int32_t left;
  int32_t right;
};

// Writes the signature of the nPoints points (Xcoord[i], Ycoord[i]), y downwards, into `signature`
// (room for MaxSignature(nPoints) + 1 bytes). No points give an empty signature. Returns 1.
int StrokeSignature(char* signature, int nPoints, const int16_t* Xcoord, const int16_t* Ycoord);

// Appends the rasterised points of the segment from (x1, y1) to (x2, y2) to the arrays from index n
// on and returns the new count: one point per unit step along the major axis (DDA), minor
// coordinate truncated toward zero. The last point keeps the minor coordinate of the step before.
// The slope is accumulated step by step: multiplying instead would round to other cells.
int VectorLineToPoints(int n, int16_t* Xpoints, int16_t* Ypoints, int x1, int y1, int x2, int y2);

// Fills the arrays (kMaxDensePoints each) with the dense points of the symbol's vector, in cells
// 0..31, and returns their number; 0 for a symbol of fewer than two points.
int SymVectorToPoints(const GromlitSymbol* sym, int16_t* Xpoints, int16_t* Ypoints);

// 1 when both signatures are equal byte for byte, else 0.
int SignatureEqual(const char* a, const char* b);

// Copies src with its NUL into dst and returns dst.
char* SignatureCopy(char* dst, const char* src);

}  // namespace gromlit
