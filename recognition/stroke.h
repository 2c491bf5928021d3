// The points of a stroke as the hand drew it, from the capture or from a file.
#pragma once

#include <cstdint>

#include "core/gromlit.h"

namespace gromlit {

// Root-window pixels, y downwards, in the order of drawing.
struct Stroke {
  int count = 0;  // points in use, 0..kMaxStrokePoints
  int16_t x[kMaxStrokePoints];
  int16_t y[kMaxStrokePoints];
};

// A stroke of the first npts points of the two arrays; those beyond kMaxStrokePoints are dropped,
// a count below 0 gives an empty stroke.
Stroke MakeStroke(int npts, const int16_t* xbuf, const int16_t* ybuf);

}  // namespace gromlit
