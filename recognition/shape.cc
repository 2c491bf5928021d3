#include "recognition/shape.h"

#include <algorithm>
#include <cmath>

#include "core/gromlit.h"
#include "recognition/lanes.h"

namespace gromlit {
namespace {

static_assert(kShapePoints % kLanes == 0);

float Distance(const int16_t* x, const int16_t* y, int i) {
  const auto dx = static_cast<float>(x[i + 1] - x[i]);
  const auto dy = static_cast<float>(y[i + 1] - y[i]);
  return std::sqrt(dx * dx + dy * dy);
}

// The way through n points, the lengths of its parts kept as far as a stroke has points.
class Way {
 public:
  Way(int n, const int16_t* x, const int16_t* y) : n_(n), x_(x), y_(y) {
    for (int i = 0; i + 1 < n; ++i) {
      const float here = Distance(x, y, i);
      if (i < kMaxStrokePoints) parts_[i] = here;
      length_ += here;
    }
  }
  float length() const { return length_; }

  // Points at equal distances. REQUIRES: length() > 0.
  void Resample(Shape* shape) const {
    int i = 0;  // the part in which the next point lies, and where it begins along the way
    float begin = 0;
    float here = Part(0);
    for (int k = 0; k < kShapePoints; ++k) {
      const float at = length_ * static_cast<float>(k) / kShapeSegments;
      while (i + 2 < n_ && begin + here < at) {
        begin += here;
        here = Part(++i);
      }
      const float part = here > 0 ? std::clamp((at - begin) / here, 0.0F, 1.0F) : 0;
      shape->x[k] = static_cast<float>(x_[i]) + part * static_cast<float>(x_[i + 1] - x_[i]);
      shape->y[k] = static_cast<float>(y_[i]) + part * static_cast<float>(y_[i + 1] - y_[i]);
    }
  }

 private:
  float Part(int i) const { return i < kMaxStrokePoints ? parts_[i] : Distance(x_, y_, i); }

  int n_;
  const int16_t* x_;
  const int16_t* y_;
  float length_ = 0;
  float parts_[kMaxStrokePoints];  // the first n - 1 are set
};

// Moves the points to their centre and scales them. False when all lie in one place.
bool Normalize(Shape* shape) {
  Lanes x{};
  Lanes y{};
  for (int i = 0; i < kShapePoints; i += kLanes) {
    x += Load(shape->x + i);
    y += Load(shape->y + i);
  }
  const float xcentre = Sum(x) / kShapePoints;
  const float ycentre = Sum(y) / kShapePoints;
  x = Lanes{};
  y = Lanes{};
  for (int i = 0; i < kShapePoints; i += kLanes) {
    const Lanes xhere = Load(shape->x + i) - xcentre;
    const Lanes yhere = Load(shape->y + i) - ycentre;
    x += xhere * xhere;
    y += yhere * yhere;
    Store(shape->x + i, xhere);
    Store(shape->y + i, yhere);
  }
  const float extent = Sum(x) + Sum(y);
  if (!(extent > 0)) return false;
  const float scale = 1 / std::sqrt(extent);
  for (int i = 0; i < kShapePoints; i += kLanes) {
    Store(shape->x + i, Load(shape->x + i) * scale);
    Store(shape->y + i, Load(shape->y + i) * scale);
  }
  shape->width = Sum(x) / extent;
  return true;
}

// A segment that is shorter than this part of the longest has no direction of its own.
constexpr float kStill = 0.1F;

// Directions and middles of the segments. Where the pen turns right back half-way between two
// points these lie in one place, or so near that rounding decides in which direction they follow
// each other: such a segment goes on as the one before, so that a shape is as like itself as can
// be.
void Segments(Shape* shape) {
  float xstep[kShapeSegments] = {};
  float ystep[kShapeSegments] = {};
  float square[kShapeSegments] = {};
  float longest = 0;
  for (int i = 0; i < kShapeSegments; ++i) {
    xstep[i] = shape->x[i + 1] - shape->x[i];
    ystep[i] = shape->y[i + 1] - shape->y[i];
    square[i] = xstep[i] * xstep[i] + ystep[i] * ystep[i];
    longest = std::max(longest, square[i]);
    shape->mx[i] = (shape->x[i] + shape->x[i + 1]) / 2;
    shape->my[i] = (shape->y[i] + shape->y[i + 1]) / 2;
  }
  const float least = longest * (kStill * kStill);
  int moving = 0;  // those before the first that moves go as that one does
  while (square[moving] < least) ++moving;
  float dx = xstep[moving] / std::sqrt(square[moving]);
  float dy = ystep[moving] / std::sqrt(square[moving]);
  for (int i = 0; i < kShapeSegments; ++i) {
    if (square[i] >= least) {
      const float inverse = 1 / std::sqrt(square[i]);
      dx = xstep[i] * inverse;
      dy = ystep[i] * inverse;
    }
    shape->dx[i] = dx;
    shape->dy[i] = dy;
  }
}

}  // namespace

Shape ShapeOfPoints(int n, const int16_t* x, const int16_t* y) {
  Shape shape = {};
  const Way way(n, x, y);
  if (way.length() <= 0) return shape;
  way.Resample(&shape);
  if (!Normalize(&shape)) return shape;
  Segments(&shape);
  shape.drawable = true;
  return shape;
}

}  // namespace gromlit
