#include "tests/unit/recognition/pen_points.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace gromlit {

double Distance(PenPoint a, PenPoint b) {
  return std::hypot(b.x - a.x, b.y - a.y);
}

PenPoint Between(PenPoint a, PenPoint b, double part) {
  return {a.x + part * (b.x - a.x), a.y + part * (b.y - a.y)};
}

double DiagonalOf(const PenPoints& points) {
  PenPoint low = points[0];
  PenPoint high = points[0];
  for (const PenPoint& p : points) {
    low = {std::min(low.x, p.x), std::min(low.y, p.y)};
    high = {std::max(high.x, p.x), std::max(high.y, p.y)};
  }
  return Distance(low, high);
}

PenPoints EvenlySpaced(const PenPoints& points, int count) {
  double length = 0;
  for (size_t i = 1; i < points.size(); i++) length += Distance(points[i - 1], points[i]);
  PenPoints spaced;
  size_t i = 0;
  double begin = 0;
  for (int k = 0; k < count; k++) {
    const double at = length * k / (count - 1);
    while (i + 2 < points.size() && begin + Distance(points[i], points[i + 1]) < at) {
      begin += Distance(points[i], points[i + 1]);
      i++;
    }
    const double here = Distance(points[i], points[i + 1]);
    const double part = here > 0 ? std::clamp((at - begin) / here, 0.0, 1.0) : 0;
    spaced.push_back(Between(points[i], points[i + 1], part));
  }
  return spaced;
}

void Tremble(double deviation, std::mt19937* random, PenPoints* points) {
  constexpr int kWaves = 4;
  constexpr double kTurn = 2 * std::numbers::pi;
  std::normal_distribution<double> normal;
  std::uniform_real_distribution<double> uniform(0, kTurn);
  for (int wave = 1; wave <= kWaves; wave++) {
    // The waves' variances, half the squares of their heights, add up.
    const double height = deviation * std::sqrt(2.0 / kWaves);
    const PenPoint high = {height * normal(*random), height * normal(*random)};
    const PenPoint phase = {uniform(*random), uniform(*random)};
    for (size_t i = 0; i < points->size(); i++) {
      const double at = kTurn * wave * static_cast<double>(i) / static_cast<double>(points->size());
      (*points)[i].x += high.x * std::cos(at + phase.x);
      (*points)[i].y += high.y * std::cos(at + phase.y);
    }
  }
}

}  // namespace gromlit
