// The shape of a stroke or of a symbol's vector: what matching by shape compares
// (recognition/shape_match.h).
#pragma once

#include <cstdint>

namespace gromlit {

inline constexpr int kShapePoints = 32;
inline constexpr int kShapeSegments = kShapePoints - 1;

// What the comparisons need of a shape. Points relative to their centre, the sum of the squares of
// all coordinates being 1.
// NOLINTNEXTLINE(clang-analyzer-optin.performance.Padding): its arrays are aligned for vectors.
struct Shape {
  bool drawable;  // false: all points in one place, or no points; then nothing else is set
  alignas(16) float x[kShapePoints];
  alignas(16) float y[kShapePoints];
  float width;  // sum of the squares of x: 0 upright line .. 1 level line
  // Segments: unit vector and middle. One that is hardly longer than a point, where the pen turns
  // back, has the direction of the one before.
  float dx[kShapeSegments];
  float dy[kShapeSegments];
  float mx[kShapeSegments];
  float my[kShapeSegments];
};

// The shape of n points, any number, in drawing order.
Shape ShapeOfPoints(int n, const int16_t* x, const int16_t* y);

}  // namespace gromlit
