// Drawings before they are strokes: points of any unit, and what hands and noise do to them.
#pragma once

#include <random>
#include <vector>

namespace gromlit {

struct PenPoint {
  double x;
  double y;
};

using PenPoints = std::vector<PenPoint>;

double Distance(PenPoint a, PenPoint b);

// The point at this part of the way from a to b.
PenPoint Between(PenPoint a, PenPoint b, double part);

// Of the bounding box. REQUIRES: at least one point.
double DiagonalOf(const PenPoints& points);

// `count` points at equal distances along the way. REQUIRES: two points, count > 1.
PenPoints EvenlySpaced(const PenPoints& points, int count);

// Adds waves of random phase, one to four over the length of the drawing, of this standard
// deviation along both axes.
void Tremble(double deviation, std::mt19937* random, PenPoints* points);

}  // namespace gromlit
