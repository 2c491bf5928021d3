#include "recognition/shape_warp.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "recognition/lanes.h"

namespace gromlit {
namespace {

// One float for each of the symbols.
static_assert(kWarpedAtOnce == kLanes);

constexpr float kFar = std::numeric_limits<float>::infinity();

constexpr float kMaxTurn = 0.17453293F;  // 10 degrees: how far a stroke is turned to suit
constexpr float kTurnShare = 0.5F;       // the part of it that is turned before warping
constexpr float kMaxStretch = 1.3F;      // how far proportions are made to suit
constexpr float kLeastExtent = 0.01F;    // keeps the proportions of a flat shape finite
constexpr float kSaturation = 6;         // see the header; a cell costs at most 1 / kSaturation
constexpr float kDirectionWeight = 0.5F;
// The mean squared distance of a shape's points from their centre is 1 / kShapePoints.
constexpr float kPositionWeight = 0.5F * kShapePoints / 2;

Lanes All(float value) {
  return Lanes{value, value, value, value};
}

Lanes Min(Lanes a, Lanes b) {
  return a < b ? a : b;
}

Lanes Max(Lanes a, Lanes b) {
  return a > b ? a : b;
}

Lanes Sqrt(Lanes a) {
  for (int lane = 0; lane < kLanes; ++lane) a[lane] = std::sqrt(a[lane]);
  return a;
}

// Segments of four shapes: unit vectors and middles.
struct FourShapes {
  Lanes dx[kShapeSegments];
  Lanes dy[kShapeSegments];
  Lanes mx[kShapeSegments];
  Lanes my[kShapeSegments];
};

void Gather(const Shape* const* symbols, FourShapes* four) {
  const auto lanes = [symbols](auto field, int k) {
    return Lanes{(symbols[0]->*field)[k], (symbols[1]->*field)[k], (symbols[2]->*field)[k],
                 (symbols[3]->*field)[k]};
  };
  for (int k = 0; k < kShapeSegments; ++k) {
    four->dx[k] = lanes(&Shape::dx, k);
    four->dy[k] = lanes(&Shape::dy, k);
    four->mx[k] = lanes(&Shape::mx, k);
    four->my[k] = lanes(&Shape::my, k);
  }
}

// How the stroke is stretched along both axes to come nearer to the symbols' proportions, given its
// own: sum of the squares of x.
void Stretch(const Shape* const* symbols, Lanes width, Lanes* xscale, Lanes* yscale) {
  const Lanes symbol = {symbols[0]->width, symbols[1]->width, symbols[2]->width, symbols[3]->width};
  const Lanes height = 1 - width;
  const Lanes want = (symbol + kLeastExtent) / (1 - symbol + kLeastExtent);
  const Lanes have = (width + kLeastExtent) / (height + kLeastExtent);
  const Lanes stretch = Max(All(1 / kMaxStretch), Min(All(kMaxStretch), Sqrt(want / have)));
  // Scaled as a whole again, so that the sum of the squares stays 1.
  const Lanes scale = 1 / Sqrt(width * stretch + height / stretch);
  *xscale = scale * Sqrt(stretch);
  *yscale = scale / Sqrt(stretch);
}

// The stroke, made to suit each of the symbols; those from n on have the products of the first.
void Suit(const Shape& stroke, const Shape* const* symbols, int n, const Warped* warped,
          FourShapes* suited) {
  Lanes cosine{};
  Lanes sine{};
  for (int lane = 0; lane < kLanes; ++lane) {
    if (lane >= n) {
      cosine[lane] = cosine[0];
      sine[lane] = sine[0];
      continue;
    }
    const Products& p = warped[lane].products;
    const float turn = std::clamp(std::atan2(p.across, p.along), -kMaxTurn, kMaxTurn) * kTurnShare;
    cosine[lane] = std::cos(turn);
    sine[lane] = std::sin(turn);
  }
  Lanes x[kShapePoints];
  Lanes y[kShapePoints];
  Lanes squares[4] = {};  // four sums, so that no addition waits for the one before
  for (int i = 0; i < kShapePoints; ++i) {
    x[i] = stroke.x[i] * cosine - stroke.y[i] * sine;
    y[i] = stroke.x[i] * sine + stroke.y[i] * cosine;
    squares[i % 4] += x[i] * x[i];
  }
  Lanes xscale{};
  Lanes yscale{};
  Stretch(symbols, (squares[0] + squares[1]) + (squares[2] + squares[3]), &xscale, &yscale);
  for (int i = 0; i < kShapePoints; ++i) {
    x[i] *= xscale;
    y[i] *= yscale;
  }
  for (int i = 0; i < kShapeSegments; ++i) {
    // From the direction, not from the points: a segment that has hardly a length has one, too.
    const Lanes xstep = (stroke.dx[i] * cosine - stroke.dy[i] * sine) * xscale;
    const Lanes ystep = (stroke.dx[i] * sine + stroke.dy[i] * cosine) * yscale;
    const Lanes inverse = 1 / Sqrt(xstep * xstep + ystep * ystep);
    suited->dx[i] = xstep * inverse;
    suited->dy[i] = ystep * inverse;
    suited->mx[i] = (x[i] + x[i + 1]) / 2;
    suited->my[i] = (y[i] + y[i + 1]) / 2;
  }
}

// What it costs to draw the strokes' segment i beside the symbols' segments j.
Lanes CellCost(const FourShapes& strokes, int i, const FourShapes& symbols, int j) {
  const Lanes cosine = symbols.dx[j] * strokes.dx[i] + symbols.dy[j] * strokes.dy[i];
  const Lanes x = symbols.mx[j] - strokes.mx[i];
  const Lanes y = symbols.my[j] - strokes.my[i];
  const Lanes cost = kDirectionWeight * (1 - cosine) + kPositionWeight * (x * x + y * y);
  return cost / (1 + kSaturation * cost);
}

bool AllAbove(Lanes a, float limit) {
  for (int lane = 0; lane < kLanes; ++lane) {
    if (!(a[lane] > limit)) return false;
  }
  return true;
}

}  // namespace

void Warp(const Shape& stroke, int n, float limit, Warped* warped) {
  const Shape* symbols[kLanes];
  // Lanes that nobody asked for repeat the first.
  for (int lane = 0; lane < kLanes; ++lane) symbols[lane] = warped[lane < n ? lane : 0].symbol;
  FourShapes strokes;
  FourShapes others;
  Suit(stroke, symbols, n, warped, &strokes);
  Gather(symbols, &others);

  Lanes total[kShapeSegments];  // cheapest way to each segment of the symbol, up to this row
  std::fill(total, total + kShapeSegments, All(kFar));
  Lanes most = All(-kFar);
  for (int i = 0; i < kShapeSegments; ++i) {
    const int first = std::max(0, i - kShapeBand);
    const int last = std::min(kShapeSegments - 1, i + kShapeBand);
    Lanes before = All(i == 0 ? 0 : kFar);  // in the row before, one segment earlier
    if (first > 0) before = total[first - 1];
    Lanes here = All(kFar);
    Lanes least = All(kFar);
    for (int j = first; j <= last; ++j) {
      const Lanes above = total[j];
      // In this order only one comparison waits for the cell before.
      here = Min(here, Min(above, before)) + CellCost(strokes, i, others, j);
      before = above;
      total[j] = here;
      least = Min(least, here);
    }
    most = Max(most, least);
    if (AllAbove(most, limit)) {
      most = total[kShapeSegments - 1] = All(kFar);
      break;
    }
  }
  for (int lane = 0; lane < n; ++lane) {
    warped[lane].cost = total[kShapeSegments - 1][lane];
    warped[lane].most = most[lane];
  }
}

}  // namespace gromlit
