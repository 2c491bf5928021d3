// The second step of matching by shape: one stroke compared with a few symbols by dynamic time
// warping; shape_match.h has the method.
//
// Each way through the band is one long chain of additions in which every step waits for the one
// before. So up to four symbols are compared at a time, one in each lane of a vector: four chains
// for the time of one.
#pragma once

#include "recognition/shape.h"

namespace gromlit {

inline constexpr int kShapeBand = 5;  // segments by which the pens may be apart
inline constexpr int kWarpedAtOnce = 4;

// Products of a stroke's and a symbol's coordinates, from which the best rotation follows: (1, 0)
// for the same shape, (cos a, sin a) for one that has to be turned by a to suit.
struct Products {
  float along;
  float across;
};

// A symbol that a stroke is compared with, and what comes of it.
struct Warped {
  const Shape* symbol;  // drawable
  Products products;    // of the stroke and this symbol
  float cost;           // of the cheapest way from both first segments to both last ones
  // What the cheapest way to some segment of the symbol costs, at that segment of the stroke where
  // this is most. All ways go by there: who compares with a limit may leave out what is above it.
  float most;
};

// Sets `cost` and `most` of the n first. Those that are sure to cost more than `limit` may get
// infinity as both. REQUIRES: stroke drawable, 1 <= n <= kWarpedAtOnce.
void Warp(const Shape& stroke, int n, float limit, Warped* warped);

}  // namespace gromlit
