#include "recognition/stroke.h"

#include <algorithm>

namespace gromlit {

Stroke MakeStroke(int npts, const int16_t* xbuf, const int16_t* ybuf) {
  Stroke stroke;
  stroke.count = std::clamp(npts, 0, kMaxStrokePoints);
  std::copy_n(xbuf, stroke.count, stroke.x);
  std::copy_n(ybuf, stroke.count, stroke.y);
  return stroke;
}

}  // namespace gromlit
