#include "bench/angle_templates.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>

namespace gromlit {
namespace {

constexpr float kFar = std::numeric_limits<float>::infinity();
constexpr float kMaxApart = 0.2F;  // of the length: how far paired points may be apart
constexpr size_t kMaxAhead = 4;    // points of one stroke beside one piece of the other
constexpr float kLengthWeight = 4;

// The square of the difference of two directions, in half turns.
float SquareTurn(float a, float b) {
  float turn = std::fabs(a - b);
  if (turn > 1) turn = 2 - turn;
  return turn * turn;
}

// What it costs to lay the points one1 .. one2 beside other1 .. other2.
float PieceCost(const AngleTemplate& one, size_t one1, size_t one2, const AngleTemplate& other,
                size_t other1, size_t other2) {
  const float onelength = one.at[one2] - one.at[one1];
  const float otherlength = other.at[other2] - other.at[other1];
  float cost = 0;
  float from = 0;
  for (size_t i = one1, j = other1; i < one2 && j < other2;) {
    const float oneend = (one.at[i + 1] - one.at[one1]) / onelength;
    const float otherend = (other.at[j + 1] - other.at[other1]) / otherlength;
    const float to = std::min(oneend, otherend);
    cost += (to - from) * SquareTurn(one.direction[i], other.direction[j]);
    from = to;
    if (oneend <= to) i++;
    if (otherend <= to) j++;
  }
  const float apart = onelength - otherlength;
  return cost * (onelength + otherlength) / 2 + kLengthWeight * apart * apart;
}

}  // namespace

AngleTemplate MakeAngleTemplate(const Stroke& stroke) {
  AngleTemplate made;
  float length = 0;
  for (int i = 0; i + 1 < stroke.count; i++)
    length += std::hypot(static_cast<float>(stroke.x[i + 1] - stroke.x[i]),
                         static_cast<float>(stroke.y[i + 1] - stroke.y[i]));
  if (length <= 0) return made;
  std::vector<int> kept = {0};
  float at = 0;
  made.at.push_back(0);
  for (int i = 1; i < stroke.count; i++) {
    at += std::hypot(static_cast<float>(stroke.x[i] - stroke.x[i - 1]),
                     static_cast<float>(stroke.y[i] - stroke.y[i - 1])) /
          length;
    if (at - made.at.back() < kAngleSpacing) continue;
    kept.push_back(i);
    made.at.push_back(at);
  }
  if (kept.size() < 2) {
    kept.push_back(stroke.count - 1);
    made.at.push_back(1);
  }
  made.at.back() = 1;
  kept.back() = stroke.count - 1;
  for (size_t i = 0; i + 1 < kept.size(); i++) {
    const int dx = stroke.x[kept[i + 1]] - stroke.x[kept[i]];
    const int dy = stroke.y[kept[i + 1]] - stroke.y[kept[i]];
    made.direction.push_back(std::atan2(static_cast<float>(dy), static_cast<float>(dx)) /
                             std::numbers::pi_v<float>);
  }
  return made;
}

float AngleDistance(const AngleTemplate& one, const AngleTemplate& other) {
  const size_t n = one.at.size();
  const size_t m = other.at.size();
  if (n == 0 || m == 0) return kFar;
  std::vector<float> total(n * m, kFar);
  total[0] = 0;
  for (size_t i = 0; i + 1 < n; i++) {
    for (size_t j = 0; j + 1 < m; j++) {
      const float here = total[i * m + j];
      if (!(here < kFar)) continue;
      const auto take = [&](size_t toi, size_t toj) {
        if (toi >= n || toj >= m || std::fabs(one.at[toi] - other.at[toj]) > kMaxApart) return;
        // Both ends together or neither.
        if ((toi == n - 1) != (toj == m - 1)) return;
        float* const there = &total[toi * m + toj];
        *there = std::min(*there, here + PieceCost(one, i, toi, other, j, toj));
      };
      for (size_t ahead = 1; ahead <= kMaxAhead; ahead++) {
        take(i + 1, j + ahead);
        if (ahead > 1) take(i + ahead, j + 1);
      }
      // What is left of either may lie beside one piece of the other.
      if (i + 2 == n) take(n - 1, m - 1);
      if (j + 2 == m) take(n - 1, m - 1);
    }
  }
  return total[n * m - 1];
}

AngleResult RunAngleTemplates(std::span<const AngleTemplate> templates, const Stroke& stroke) {
  const AngleTemplate drawn = MakeAngleTemplate(stroke);
  AngleResult result = {-1, kFar};
  for (size_t i = 0; i < templates.size(); i++) {
    const float distance = AngleDistance(templates[i], drawn);
    if (distance < result.distance) result = {static_cast<int>(i), distance};
  }
  return result;
}

}  // namespace gromlit
