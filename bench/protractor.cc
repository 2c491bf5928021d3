#include "bench/protractor.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace gromlit {
namespace {

struct Point {
  float x;
  float y;
};

float Distance(const Stroke& s, int i) {
  return std::hypot(static_cast<float>(s.x[i + 1] - s.x[i]),
                    static_cast<float>(s.y[i + 1] - s.y[i]));
}

std::array<Point, kProtractorPoints> Resample(const Stroke& stroke) {
  std::array<Point, kProtractorPoints> points = {};
  float length = 0;
  for (int i = 0; i + 1 < stroke.count; i++) length += Distance(stroke, i);
  int i = 0;
  float begin = 0;
  for (int k = 0; k < kProtractorPoints; k++) {
    const float at = length * static_cast<float>(k) / (kProtractorPoints - 1);
    while (i + 2 < stroke.count && begin + Distance(stroke, i) < at) begin += Distance(stroke, i++);
    const float here = i + 1 < stroke.count ? Distance(stroke, i) : 0;
    const float part = here > 0 ? std::clamp((at - begin) / here, 0.0F, 1.0F) : 0;
    const int next = std::min(i + 1, stroke.count - 1);
    points[static_cast<size_t>(k)] = {
        static_cast<float>(stroke.x[i]) + part * static_cast<float>(stroke.x[next] - stroke.x[i]),
        static_cast<float>(stroke.y[i]) + part * static_cast<float>(stroke.y[next] - stroke.y[i])};
  }
  return points;
}

}  // namespace

ProtractorVector Vectorize(const Stroke& stroke) {
  ProtractorVector vector = {};
  if (stroke.count == 0) return vector;
  auto points = Resample(stroke);
  Point centre = {};
  for (const Point& p : points) {
    centre.x += p.x / kProtractorPoints;
    centre.y += p.y / kProtractorPoints;
  }
  for (Point& p : points) p = {p.x - centre.x, p.y - centre.y};
  constexpr float eighth = std::numbers::pi_v<float> / 4;
  const float indicative = std::atan2(points[0].y, points[0].x);
  const float base = eighth * std::floor((indicative + eighth / 2) / eighth);
  const float cosine = std::cos(base - indicative);
  const float sine = std::sin(base - indicative);
  float sum = 0;
  for (size_t i = 0; i < points.size(); i++) {
    vector[2 * i] = points[i].x * cosine - points[i].y * sine;
    vector[2 * i + 1] = points[i].y * cosine + points[i].x * sine;
    sum += vector[2 * i] * vector[2 * i] + vector[2 * i + 1] * vector[2 * i + 1];
  }
  if (sum > 0) {
    for (float& v : vector) v /= std::sqrt(sum);
  }
  return vector;
}

float OptimalCosine(const ProtractorVector& symbol, const ProtractorVector& stroke) {
  float a = 0;
  float b = 0;
  for (size_t i = 0; i < symbol.size(); i += 2) {
    a += symbol[i] * stroke[i] + symbol[i + 1] * stroke[i + 1];
    b += symbol[i] * stroke[i + 1] - symbol[i + 1] * stroke[i];
  }
  const float angle = std::atan2(b, a);
  return a * std::cos(angle) + b * std::sin(angle);
}

ProtractorResult RunProtractor(std::span<const ProtractorVector> symbols, const Stroke& stroke) {
  const ProtractorVector drawn = Vectorize(stroke);
  ProtractorResult result = {-1, -2};
  for (size_t i = 0; i < symbols.size(); i++) {
    const float cosine = OptimalCosine(symbols[i], drawn);
    if (cosine > result.cosine) result = {static_cast<int>(i), cosine};
  }
  return result;
}

}  // namespace gromlit
