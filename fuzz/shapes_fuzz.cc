// Matching by shape, and symbols made of strokes: every number is finite, the ranking agrees with
// one that computes the score of each action that it may look at and leaves nothing out, a symbol
// is most like itself, and what is learned of a stroke is drawable and found by it.
#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "fuzz/fake_server.h"
#include "fuzz/records.h"
#include "fuzz/require.h"
#include "fuzz/target.h"
#include "recognition/find_action.h"
#include "recognition/learn_symbol.h"
#include "recognition/shape_match.h"
#include "recognition/signature_match.h"

namespace gromlit::fuzz {
namespace {

constexpr float kRounding = 1e-4F;

void CheckShape(const Shape& shape) {
  if (!shape.drawable) return;
  float sum = 0;
  for (int i = 0; i < kShapePoints; i++) {
    Require(std::isfinite(shape.x[i]) && std::isfinite(shape.y[i]));
    sum += shape.x[i] * shape.x[i] + shape.y[i] * shape.y[i];
  }
  Require(std::abs(sum - 1) < 1e-3F);
  Require(shape.width > -kRounding && shape.width < 1 + kRounding);
  for (int i = 0; i < kShapeSegments; i++) {
    Require(std::abs(shape.dx[i] * shape.dx[i] + shape.dy[i] * shape.dy[i] - 1) < 1e-3F);
    Require(std::isfinite(shape.mx[i]) && std::isfinite(shape.my[i]));
  }
}

// The best of all by score alone. Not which of several with the same score: costs that differ may
// round to one score, and the cost decides.
void CheckRanking(GromlitPlugin* plugin, const Stroke& stroke) {
  const Shape drawn = ShapeOfPoints(stroke.count, stroke.x, stroke.y);
  CheckShape(drawn);
  const ShapeRanking ranking = RankByShape(plugin, stroke);
  std::vector<float> scores;
  int drawable = 0;
  for (int i = 0; i < plugin->nactions; i++) {
    const Shape& symbol = *SymbolShape(&plugin->actions[i]->sym);
    CheckShape(symbol);
    const float score = ShapeScore(drawn, symbol);
    Require(std::isfinite(score) && score <= 1 + kRounding);
    Require((score == -1) == !(drawn.drawable && symbol.drawable));
    drawable += symbol.drawable && drawn.drawable;
    scores.push_back(score);
    if (symbol.drawable) Require(ShapeScore(symbol, symbol) > 1 - kRounding);
  }
  Require((ranking.best >= 0) == (drawable > 0));
  Require((ranking.next >= 0) == (drawable > 1));
  if (ranking.best >= 0) Require(ranking.score == scores[static_cast<size_t>(ranking.best)]);
  if (ranking.next >= 0) {
    Require(ranking.nextscore == scores[static_cast<size_t>(ranking.next)]);
    Require(ranking.nextscore <= ranking.score && ranking.next != ranking.best);
  }
  // Up to so many nothing is left out before the warping.
  if (drawable > 0 && drawable <= kShapeCandidates) {
    Require(ranking.score == *std::max_element(scores.begin(), scores.end()));
    if (drawable > 1) {
      scores[static_cast<size_t>(ranking.best)] = -2;
      Require(ranking.nextscore == *std::max_element(scores.begin(), scores.end()));
    }
  }
  for (int32_t tolerance = -1; tolerance <= 6; tolerance++) {
    const int found = FindShape(plugin, stroke, tolerance);
    Require(found == -1 || found == ranking.best);
    Require((found >= 0) == (ranking.best >= 0 && ranking.score >= ShapeThreshold(tolerance)));
  }
}

void Learn(const std::vector<Stroke>& strokes) {
  std::vector<Shape> shapes;
  for (const Stroke& stroke : strokes)
    shapes.push_back(ShapeOfPoints(stroke.count, stroke.x, stroke.y));
  const int nearest = NearestSample(shapes);
  const bool any =
      std::any_of(shapes.begin(), shapes.end(), [](const Shape& s) { return s.drawable; });
  Require((nearest >= 0) == any);
  if (nearest < 0) return;
  GromlitSymbol sym{};
  Require(SimplifyStroke(strokes[static_cast<size_t>(nearest)], shapes, &sym));
  CheckSymbol(sym);
  Require(sym.npoints >= 2);
  for (int i = 1; i <= sym.npoints; i++) {
    for (const uint16_t c : {sym.x[i], sym.y[i]})
      Require(c >= kGridMin && c <= kGridMax && c % 8 == 0);
  }
  Require(SymbolShape(&sym)->drawable);
  CheckShape(*SymbolShape(&sym));
  DrawSymbol(sym);
  ForgetSignature(&sym);
}

}  // namespace

void Run(FuzzedDataProvider* data) {
  GromlitPlugin plugin{};
  const int n = data->ConsumeIntegralInRange(0, 12);
  for (int i = 0; i < n; i++) {
    auto* action = new GromlitAction{};
    plugin.actions[plugin.nactions++] = action;
    FillSymbol(data, &action->sym);
  }
  std::vector<Stroke> strokes;
  for (int k = data->ConsumeIntegralInRange(1, 4); k > 0; k--) {
    strokes.push_back(MakeAnyStroke(data));
    CheckRanking(&plugin, strokes.back());
  }
  Learn(strokes);
  GromlitUserOptions options{};
  options.temp3 = kByShape;
  options.temp2 = data->ConsumeBool() ? kFallBack : 0;
  options.tolerance = 5;
  const FoundAction found = FindActionToRun(&plugin, strokes[0], options);
  Require(found.plugin == &plugin && found.index < plugin.nactions);
  for (int i = 0; i < plugin.nactions; i++) {
    const int taker = FindTaker(&plugin, i, &plugin.actions[i]->sym, {kByShape, 3});
    Require(taker >= -1 && taker < i);
  }
  ReleasePlugin(&plugin);
}

}  // namespace gromlit::fuzz
