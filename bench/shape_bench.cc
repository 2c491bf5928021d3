// Matching by shape beside Protractor, over the same 128 symbols and the same strokes of 256
// points. The bar: at most 1.5 times as long, in the same run.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <random>
#include <vector>

#include "bench/protractor.h"
#include "recognition/shape_match.h"
#include "recognition/signature_match.h"

namespace gromlit {
namespace {

constexpr double kTimesProtractor = 1.5;  // what a search may take at most
constexpr size_t kStrokes = 32;
constexpr int kCorners = 7;

// A stroke of 256 points along the symbol's vector, twice its size.
Stroke Trace(const GromlitSymbol& sym) {
  Stroke stroke;
  stroke.count = kMaxStrokePoints;
  for (int i = 0; i < stroke.count; i++) {
    const double at = static_cast<double>(i) * (sym.npoints - 1) / (stroke.count - 1);
    const int k = std::min(static_cast<int>(at), sym.npoints - 2) + 1;
    const double part = at - (k - 1);
    stroke.x[i] = static_cast<int16_t>(2 * (sym.x[k] + part * (sym.x[k + 1] - sym.x[k])));
    stroke.y[i] = static_cast<int16_t>(2 * (sym.y[k] + part * (sym.y[k + 1] - sym.y[k])));
  }
  return stroke;
}

// 128 symbols of seven corners at random, and strokes along 32 of them.
class Shapes {
 public:
  Shapes() : actions_(kMaxActions) {
    std::mt19937 random(1);
    for (size_t i = 0; i < kMaxActions; i++) {
      GromlitSymbol* sym = &actions_[i].sym;
      sym->npoints = kCorners;
      for (int k = 1; k <= kCorners; k++) {
        sym->x[k] = static_cast<uint16_t>(kGridMin + random() % 32 * 8);
        sym->y[k] = static_cast<uint16_t>(kGridMin + random() % 32 * 8);
      }
      plugin.actions[plugin.nactions++] = &actions_[i];
      vectors.push_back(Vectorize(Trace(*sym)));
      if (strokes.size() < kStrokes) strokes.push_back(Trace(*sym));
    }
    RankByShape(&plugin, strokes[0]);  // computes the features of all
  }
  ~Shapes() {
    for (GromlitAction& action : actions_) ForgetSignature(&action.sym);
  }
  Shapes(const Shapes&) = delete;
  Shapes& operator=(const Shapes&) = delete;

  GromlitPlugin plugin = {};
  std::vector<ProtractorVector> vectors;
  std::vector<Stroke> strokes;

 private:
  std::vector<GromlitAction> actions_;
};

void BM_FindShape_128(benchmark::State& state) {
  const Shapes shapes;
  size_t i = 0;
  for ([[maybe_unused]] auto _ : state)
    benchmark::DoNotOptimize(RankByShape(&shapes.plugin, shapes.strokes[i++ % kStrokes]));
}
BENCHMARK(BM_FindShape_128)->Unit(benchmark::kMicrosecond);

void BM_Protractor_128(benchmark::State& state) {
  const Shapes shapes;
  size_t i = 0;
  for ([[maybe_unused]] auto _ : state)
    benchmark::DoNotOptimize(RunProtractor(shapes.vectors, shapes.strokes[i++ % kStrokes]));
}
BENCHMARK(BM_Protractor_128)->Unit(benchmark::kMicrosecond);

// Both in turn, so that the ratio ("times_protractor") comes from one run; an error above the bar
// or when either does not find what was traced.
void BM_FindShapeTimesProtractor(benchmark::State& state) {
  using Clock = std::chrono::steady_clock;
  const Shapes shapes;
  Clock::duration shape{};
  Clock::duration protractor{};
  for ([[maybe_unused]] auto _ : state) {
    for (size_t i = 0; i < kStrokes; i++) {
      const auto start = Clock::now();
      const ShapeRanking ranking = RankByShape(&shapes.plugin, shapes.strokes[i]);
      const auto middle = Clock::now();
      const ProtractorResult result = RunProtractor(shapes.vectors, shapes.strokes[i]);
      const auto end = Clock::now();
      shape += middle - start;
      protractor += end - middle;
      if (ranking.best != static_cast<int>(i) || result.index != static_cast<int>(i)) {
        state.SkipWithError("a traced symbol is not found");
        return;
      }
    }
  }
  const double ratio = static_cast<double>(shape.count()) / static_cast<double>(protractor.count());
  state.counters["times_protractor"] = ratio;
  if (ratio > kTimesProtractor) state.SkipWithError("more than 1.5 times as long as Protractor");
}
BENCHMARK(BM_FindShapeTimesProtractor)->Unit(benchmark::kMicrosecond)->Iterations(200);

}  // namespace
}  // namespace gromlit
