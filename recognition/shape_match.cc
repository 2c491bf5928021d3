#include "recognition/shape_match.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <iterator>
#include <limits>
#include <type_traits>

namespace gromlit {
namespace {

// Four floats at a time, which both compilers turn into the instructions of whatever processor.
using Lanes = float __attribute__((vector_size(16)));
constexpr int kLanes = 4;
static_assert(kShapePoints % kLanes == 0 && kShapeRow % kLanes == 0);

constexpr float kFar = std::numeric_limits<float>::infinity();

constexpr float kMaxTurn = 0.17453293F;  // 10 degrees: how far a stroke is turned to suit
constexpr float kCosMaxTurn = 0.98480775F;
constexpr float kSinMaxTurn = 0.17364818F;
constexpr float kTurnShare = 0.5F;     // the part of it that is turned before warping
constexpr float kMaxStretch = 1.3F;    // how far proportions are made to suit
constexpr float kLeastExtent = 0.01F;  // keeps the proportions of a flat shape finite
constexpr float kSaturation = 6;       // see the header; a cell costs at most 1 / kSaturation
constexpr float kDirectionWeight = 0.5F;
// The mean squared distance of a shape's points from their centre is 1 / kShapePoints.
constexpr float kPositionWeight = 0.5F * kShapePoints / 2;

// Thresholds by tolerance; docs/recognition.md has what each lets through.
constexpr float kThresholds[] = {0.965F, 0.957F, 0.950F, 0.934F, -1};
constexpr int kMedium = 3;

Lanes Load(const float* from) {
  Lanes lanes;
  std::memcpy(&lanes, from, sizeof lanes);
  return lanes;
}

void Store(float* to, Lanes lanes) {
  std::memcpy(to, &lanes, sizeof lanes);
}

float Sum(Lanes lanes) {
  return (lanes[0] + lanes[1]) + (lanes[2] + lanes[3]);
}

// --- Features -----------------------------------------------------------------------------------

float Distance(int n, const int16_t* x, const int16_t* y, int i) {
  if (i + 1 >= n) return 0;
  const auto dx = static_cast<float>(x[i + 1] - x[i]);
  const auto dy = static_cast<float>(y[i + 1] - y[i]);
  return std::sqrt(dx * dx + dy * dy);
}

// Points at equal distances along the way. REQUIRES: length > 0.
void Resample(int n, const int16_t* x, const int16_t* y, float length, Shape* shape) {
  int i = 0;  // the segment in which the next point lies, and where it begins along the way
  float begin = 0;
  float here = Distance(n, x, y, 0);
  for (int k = 0; k < kShapePoints; ++k) {
    const float at = length * static_cast<float>(k) / kShapeSegments;
    while (i + 2 < n && begin + here < at) {
      begin += here;
      here = Distance(n, x, y, ++i);
    }
    const float part = here > 0 ? std::clamp((at - begin) / here, 0.0F, 1.0F) : 0;
    shape->x[k] = static_cast<float>(x[i]) + part * static_cast<float>(x[i + 1] - x[i]);
    shape->y[k] = static_cast<float>(y[i]) + part * static_cast<float>(y[i + 1] - y[i]);
  }
}

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

// Directions and middles of the segments, into arrays that begin at the first segment.
void Segments(const float* x, const float* y, float* dx, float* dy, float* mx, float* my) {
  for (int i = 0; i < kShapeSegments; ++i) {
    const float xstep = x[i + 1] - x[i];
    const float ystep = y[i + 1] - y[i];
    const float square = xstep * xstep + ystep * ystep;
    const float inverse = square > 0 ? 1 / std::sqrt(square) : 0;
    dx[i] = xstep * inverse;
    dy[i] = ystep * inverse;
    mx[i] = (x[i] + x[i + 1]) / 2;
    my[i] = (y[i] + y[i + 1]) / 2;
  }
}

// --- Ranking ------------------------------------------------------------------------------------

// The products from which the best rotation follows: (1, 0) for the same shape, (cos a, sin a) for
// one that has to be turned by a to suit.
struct Products {
  float along;
  float across;
};

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

// --- Warping ------------------------------------------------------------------------------------

// A stroke's segments, made to suit one symbol.
struct Suited {
  float dx[kShapeSegments];
  float dy[kShapeSegments];
  float mx[kShapeSegments];
  float my[kShapeSegments];
};

void Suit(const Shape& stroke, const Shape& symbol, Products p, Suited* suited) {
  const float turn = std::clamp(std::atan2(p.across, p.along), -kMaxTurn, kMaxTurn) * kTurnShare;
  const float cosine = std::cos(turn);
  const float sine = std::sin(turn);
  alignas(16) float x[kShapePoints];
  alignas(16) float y[kShapePoints];
  Lanes squares{};
  for (int i = 0; i < kShapePoints; i += kLanes) {
    const Lanes xhere = Load(stroke.x + i) * cosine - Load(stroke.y + i) * sine;
    Store(x + i, xhere);
    Store(y + i, Load(stroke.x + i) * sine + Load(stroke.y + i) * cosine);
    squares += xhere * xhere;
  }
  const float width = Sum(squares);
  const float height = 1 - width;
  const float want = (symbol.width + kLeastExtent) / (1 - symbol.width + kLeastExtent);
  const float have = (width + kLeastExtent) / (height + kLeastExtent);
  const float stretch = std::clamp(std::sqrt(want / have), 1 / kMaxStretch, kMaxStretch);
  // Scaled as a whole again, so that the sum of the squares stays 1.
  const float scale = 1 / std::sqrt(width * stretch + height / stretch);
  const float xscale = scale * std::sqrt(stretch);
  const float yscale = scale / std::sqrt(stretch);
  for (int i = 0; i < kShapePoints; i += kLanes) {
    Store(x + i, Load(x + i) * xscale);
    Store(y + i, Load(y + i) * yscale);
  }
  Segments(x, y, suited->dx, suited->dy, suited->mx, suited->my);
}

// What it costs to draw the stroke's segment i beside the symbol's segments i - kShapeBand .. .
void RowCosts(const Suited& stroke, const Shape& symbol, int i, float* costs) {
  for (int j = 0; j < kShapeRow; j += kLanes) {
    const int at = i + j;  // the margin of the stored arrays is as wide as the band
    const Lanes cosine = Load(symbol.dx + at) * stroke.dx[i] + Load(symbol.dy + at) * stroke.dy[i];
    const Lanes x = Load(symbol.mx + at) - stroke.mx[i];
    const Lanes y = Load(symbol.my + at) - stroke.my[i];
    const Lanes cost = kDirectionWeight * (1 - cosine) + kPositionWeight * (x * x + y * y);
    Store(costs + j, cost / (1 + kSaturation * cost));
  }
}

// Cost of the cheapest way from both first segments to both last ones; kFar as soon as it is sure
// to cost more than `limit`.
float Warp(const Suited& stroke, const Shape& symbol, float limit) {
  float total[kShapeSegments];  // cheapest way to each segment of the symbol, up to this row
  std::fill(total, total + kShapeSegments, kFar);
  alignas(16) float costs[kShapeRow];
  for (int i = 0; i < kShapeSegments; ++i) {
    RowCosts(stroke, symbol, i, costs);
    const int first = std::max(0, i - kShapeBand);
    const int last = std::min(kShapeSegments - 1, i + kShapeBand);
    float before = kFar;  // in the row before, one segment earlier
    if (i == 0) before = 0;
    if (first > 0) before = total[first - 1];
    float here = kFar;
    float least = kFar;
    for (int j = first; j <= last; ++j) {
      const float above = total[j];
      here = std::min(std::min(above, here), before) + costs[j - i + kShapeBand];
      before = above;
      total[j] = here;
      least = std::min(least, here);
    }
    if (least > limit) return kFar;
  }
  return total[kShapeSegments - 1];
}

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

Shape ShapeOfPoints(int n, const int16_t* x, const int16_t* y) {
  Shape shape = {};
  float length = 0;
  for (int i = 0; i + 1 < n; ++i) length += Distance(n, x, y, i);
  if (length <= 0) return shape;
  Resample(n, x, y, length, &shape);
  if (!Normalize(&shape)) return shape;
  Segments(shape.x, shape.y, shape.dx + kShapeBand, shape.dy + kShapeBand, shape.mx + kShapeBand,
           shape.my + kShapeBand);
  shape.drawable = true;
  return shape;
}

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
  Suited suited;
  Suit(stroke, symbol, Compare(stroke, symbol), &suited);
  return ScoreOfCost(Warp(suited, symbol, kFar));
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
  float best = kFar;
  float next = kFar;
  for (int k = 0; k < n; ++k) {
    const Candidate& candidate = candidates[k];
    const Shape* symbol = SymbolShape(&pin->actions[candidate.index]->sym);
    Suited suited;
    Suit(drawn, *symbol, candidate.products, &suited);
    const float cost = Warp(suited, *symbol, next);
    // The cosine may rank a later action first; the same cost still goes to the earlier one.
    if (cost < best || (cost == best && cost < kFar && candidate.index < ranking.best)) {
      next = best;
      ranking.next = ranking.best;
      best = cost;
      ranking.best = candidate.index;
    } else if (cost < next || (cost == next && cost < kFar && candidate.index < ranking.next)) {
      next = cost;
      ranking.next = candidate.index;
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
