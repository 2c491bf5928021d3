#include "recognition/learn_symbol.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "recognition/signature_match.h"
#include "recognition/symbol_icon.h"

namespace gromlit {
namespace {

// How far, in editor pixels, the stroke may run from its corners' lines: tried from the coarsest.
// Finer than a quarter of a cell only follows the rounding to cells.
constexpr float kFineness[] = {24, 16, 12, 8, 6, 4, 3, 2};
constexpr float kCoarser = 1.25F;  // step by step, while there are too many corners

struct Fitted {
  int count;
  float x[kMaxStrokePoints];
  float y[kMaxStrokePoints];
};

// The stroke as large as fits into the grid, in its middle.
Fitted Fit(const Stroke& stroke) {
  Fitted fitted = {};
  fitted.count = stroke.count;
  const auto [left, right] = std::minmax_element(stroke.x, stroke.x + stroke.count);
  const auto [top, bottom] = std::minmax_element(stroke.y, stroke.y + stroke.count);
  const auto extent = static_cast<float>(std::max({*right - *left, *bottom - *top, 1}));
  const float scale = (kGridMax - kGridMin) / extent;
  const float xmiddle = static_cast<float>(*left + *right) / 2;
  const float ymiddle = static_cast<float>(*top + *bottom) / 2;
  for (int i = 0; i < stroke.count; ++i) {
    constexpr float middle = (kGridMin + kGridMax) / 2.0F;
    fitted.x[i] = middle + (static_cast<float>(stroke.x[i]) - xmiddle) * scale;
    fitted.y[i] = middle + (static_cast<float>(stroke.y[i]) - ymiddle) * scale;
  }
  return fitted;
}

// Square of the distance of point i from the line between the points a and b.
float SquareFromLine(const Fitted& points, int a, int b, int i) {
  const float dx = points.x[b] - points.x[a];
  const float dy = points.y[b] - points.y[a];
  const float x = points.x[i] - points.x[a];
  const float y = points.y[i] - points.y[a];
  const float square = dx * dx + dy * dy;
  const float at = square > 0 ? std::clamp((x * dx + y * dy) / square, 0.0F, 1.0F) : 0;
  return (x - at * dx) * (x - at * dx) + (y - at * dy) * (y - at * dy);
}

// Marks the points that have to stay so that no other is farther than `fineness` from the lines
// between them (Ramer 1972; Douglas and Peucker 1973).
void MarkCorners(const Fitted& points, float fineness, bool* corner) {
  std::fill_n(corner, points.count, false);
  corner[0] = corner[points.count - 1] = true;
  // Each range that is put aside ends at a corner of its own.
  std::pair<int, int> ranges[kMaxStrokePoints];
  int n = 0;
  ranges[n++] = {0, points.count - 1};
  while (n > 0) {
    const auto [a, b] = ranges[--n];
    int farthest = -1;
    float most = fineness * fineness;
    for (int i = a + 1; i < b; ++i) {
      const float square = SquareFromLine(points, a, b, i);
      if (square > most) {
        most = square;
        farthest = i;
      }
    }
    if (farthest < 0) continue;
    corner[farthest] = true;
    ranges[n++] = {a, farthest};
    ranges[n++] = {farthest, b};
  }
}

int GridOf(float v) {
  return grid(static_cast<int>(std::lround(v)));
}

// The corners as a vector on the grid. False when there are too many.
bool MakeVector(const Fitted& points, float fineness, GromlitSymbol* sym) {
  bool corner[kMaxStrokePoints];
  MarkCorners(points, fineness, corner);
  sym->npoints = 0;
  for (int i = 0; i < points.count; ++i) {
    if (!corner[i]) continue;
    const auto x = static_cast<uint16_t>(GridOf(points.x[i]));
    const auto y = static_cast<uint16_t>(GridOf(points.y[i]));
    const int n = sym->npoints;
    if (n > 0 && sym->x[n] == x && sym->y[n] == y) continue;
    if (n == kMaxPoints) return false;
    sym->npoints++;
    sym->x[n + 1] = x;
    sym->y[n + 1] = y;
  }
  return true;
}

float MeanScore(std::span<const Shape> samples, const Shape& symbol) {
  float sum = 0;
  int n = 0;
  for (const Shape& sample : samples) {
    if (!sample.drawable) continue;
    sum += ShapeScore(sample, symbol);
    n++;
  }
  return n > 0 ? sum / static_cast<float>(n) : -1;
}

}  // namespace

int NearestSample(std::span<const Shape> samples) {
  int nearest = -1;
  float best = -1;
  for (size_t i = 0; i < samples.size(); ++i) {
    if (!samples[i].drawable) continue;
    const float score = MeanScore(samples, samples[i]);
    if (score <= best) continue;
    best = score;
    nearest = static_cast<int>(i);
  }
  return nearest;
}

bool SimplifyStroke(const Stroke& stroke, std::span<const Shape> samples, GromlitSymbol* sym) {
  const Shape whole = ShapeOfPoints(stroke.count, stroke.x, stroke.y);
  if (!whole.drawable) return false;
  const Fitted points = Fit(stroke);
  const float wanted = std::min(MeanScore(samples, whole) - kSimplifyLoss, kNearEnough);
  // The best so far: finer is not always nearer, once the cells are coarser than the lines.
  GromlitSymbol best = {};
  float bestscore = -2;
  for (const float fineness : kFineness) {
    GromlitSymbol tried = {};
    if (!MakeVector(points, fineness, &tried)) break;
    const float score = MeanScore(samples, *SymbolShape(&tried));
    ForgetSignature(&tried);
    if (score > bestscore) {
      best = tried;
      bestscore = score;
    }
    if (bestscore >= wanted) break;
  }
  float fineness = kFineness[0];
  while (best.npoints == 0) {
    fineness *= kCoarser;
    if (!MakeVector(points, fineness, &best)) best.npoints = 0;
  }
  ForgetSignature(sym);
  sym->npoints = best.npoints;
  std::copy(std::begin(best.x), std::end(best.x), sym->x);
  std::copy(std::begin(best.y), std::end(best.y), sym->y);
  VectorToBitmap(sym);
  return true;
}

bool SimplifyStroke(const Stroke& stroke, GromlitSymbol* sym) {
  const Shape whole = ShapeOfPoints(stroke.count, stroke.x, stroke.y);
  return SimplifyStroke(stroke, std::span(&whole, 1), sym);
}

}  // namespace gromlit
