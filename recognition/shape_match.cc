#include "recognition/shape_match.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <limits>
#include <type_traits>

#include "recognition/lanes.h"
#include "recognition/shape_warp.h"

namespace gromlit {
namespace {

constexpr float kFar = std::numeric_limits<float>::infinity();

constexpr float kCosMaxTurn = 0.98480775F;  // 10 degrees: how far a stroke is turned to suit
constexpr float kSinMaxTurn = 0.17364818F;

// Thresholds by tolerance; docs/recognition.md has what each lets through.
constexpr float kThresholds[] = {0.965F, 0.957F, 0.950F, 0.934F, -1};
constexpr int kMedium = 3;

// --- Ranking ------------------------------------------------------------------------------------

Products Compare(const Shape& stroke, const Shape& symbol) {
  Lanes along{};
  Lanes across{};
  for (int i = 0; i < kShapePoints; i += kLanes) {
    const Lanes x = Load(stroke.x + i);
    const Lanes y = Load(stroke.y + i);
    const Lanes xsym = Load(symbol.x + i);
    const Lanes ysym = Load(symbol.y + i);
    along += x * xsym + y * ysym;
    across += x * ysym - y * xsym;
  }
  return {Sum(along), Sum(across)};
}

// Cosine at the best rotation of at most 10 degrees.
float BoundedCosine(Products p) {
  const float across = std::fabs(p.across);
  if (p.along > 0 && across * kCosMaxTurn <= p.along * kSinMaxTurn)
    return std::sqrt(p.along * p.along + across * across);
  return p.along * kCosMaxTurn + across * kSinMaxTurn;
}

// --- Scores --------------------------------------------------------------------------------------

float ScoreOfCost(float cost) {
  return 1 - cost / kShapeSegments;
}

struct Candidate {
  int index;
  float cosine;
  Products products;
};

// Keeps the best, earlier ones first among equals. Returns the new number.
int Insert(Candidate* candidates, int n, const Candidate& candidate) {
  int at = n;
  while (at > 0 && candidates[at - 1].cosine < candidate.cosine) --at;
  if (at == kShapeCandidates) return n;
  if (n < kShapeCandidates) ++n;
  std::copy_backward(candidates + at, candidates + n - 1, candidates + n);
  candidates[at] = candidate;
  return n;
}

}  // namespace

const Shape* SymbolShape(GromlitSymbol* sym) {
  if (sym->shape == nullptr) {
    int16_t x[kMaxPoints];
    int16_t y[kMaxPoints];
    const int n = std::min<int>(sym->npoints, kMaxPoints);
    for (int k = 1; k <= n; ++k) {
      // Damaged files can hold more than the 16 signed bits that points have elsewhere.
      x[k - 1] = static_cast<int16_t>(std::min<int>(sym->x[k], INT16_MAX));
      y[k - 1] = static_cast<int16_t>(std::min<int>(sym->y[k], INT16_MAX));
    }
    static_assert(std::is_trivially_destructible_v<Shape>);  // ReleaseFeatures counts on it
    sym->shape = new Shape(ShapeOfPoints(n, x, y));
  }
  return sym->shape;
}

float ShapeScore(const Shape& stroke, const Shape& symbol) {
  if (!stroke.drawable || !symbol.drawable) return -1;
  Warped warped = {&symbol, Compare(stroke, symbol), 0, 0};
  Warp(stroke, 1, kFar, &warped);
  return ScoreOfCost(warped.cost);
}

bool SameShape(const Shape& one, const Shape& other) {
  constexpr float kRounding = 1e-4F;
  if (!one.drawable || !other.drawable) return false;
  for (int i = 0; i < kShapePoints; i++) {
    if (std::abs(one.x[i] - other.x[i]) > kRounding || std::abs(one.y[i] - other.y[i]) > kRounding)
      return false;
  }
  return true;
}

ShapeRanking RankByShape(const GromlitPlugin* pin, const Stroke& stroke) {
  ShapeRanking ranking;
  const Shape drawn = ShapeOfPoints(stroke.count, stroke.x, stroke.y);
  if (!drawn.drawable) return ranking;
  Candidate candidates[kShapeCandidates];
  int n = 0;
  const int nactions = std::min<int>(pin->nactions, kMaxActions);
  for (int i = 0; i < nactions; ++i) {
    const Shape* symbol = SymbolShape(&pin->actions[i]->sym);
    if (!symbol->drawable) continue;
    const Products products = Compare(drawn, *symbol);
    n = Insert(candidates, n, {i, BoundedCosine(products), products});
  }
  Warped warped[kShapeCandidates];
  for (int k = 0; k < n; ++k) {
    GromlitSymbol* sym = &pin->actions[candidates[k].index]->sym;
    warped[k] = {SymbolShape(sym), candidates[k].products, kFar, kFar};
  }
  float best = kFar;
  float next = kFar;
  for (int k = 0; k < n; ++k) {
    if (k % kWarpedAtOnce == 0) {
      Warp(drawn, std::min(n - k, kWarpedAtOnce), next, warped + k);
    }
    const int index = candidates[k].index;
    const float cost = warped[k].most > next ? kFar : warped[k].cost;
    // The cosine may rank a later action first; the same cost still goes to the earlier one.
    if (cost < best || (cost == best && cost < kFar && index < ranking.best)) {
      next = best;
      ranking.next = ranking.best;
      best = cost;
      ranking.best = index;
    } else if (cost < next || (cost == next && cost < kFar && index < ranking.next)) {
      next = cost;
      ranking.next = index;
    }
  }
  if (ranking.best >= 0) ranking.score = ScoreOfCost(best);
  if (ranking.next >= 0) ranking.nextscore = ScoreOfCost(next);
  return ranking;
}

float ShapeThreshold(int32_t tolerance) {
  const bool known = tolerance >= 1 && tolerance <= static_cast<int32_t>(std::size(kThresholds));
  return kThresholds[(known ? tolerance : kMedium) - 1];
}

int FindShape(const GromlitPlugin* pin, const Stroke& stroke, int32_t tolerance) {
  const ShapeRanking ranking = RankByShape(pin, stroke);
  return ranking.score >= ShapeThreshold(tolerance) ? ranking.best : -1;
}

}  // namespace gromlit
