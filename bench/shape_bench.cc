// Matching by shape beside Protractor and beside template matching by angles, over the same 128
// symbols and the same strokes. The bar: at most 1.5 times as long as Protractor, whatever the
// symbols and the stroke; scripts/bench says whether it is met.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <random>
#include <vector>

#include "bench/angle_templates.h"
#include "bench/protractor.h"
#include "recognition/shape_match.h"
#include "recognition/signature_match.h"

namespace gromlit {
namespace {

constexpr size_t kStrokes = 32;
constexpr int kCorners = 7;

// How the symbols of a library differ. Where they are far apart most of the best five are given up
// early; where they are alike none is, and where they are sorted by likeness each is better than
// all before.
enum Library : int64_t { kApart, kAlike, kEqual, kSorted };

// A stroke of so many points along the symbol's vector, twice its size.
Stroke Trace(const GromlitSymbol& sym, int points) {
  Stroke stroke;
  stroke.count = points;
  for (int i = 0; i < stroke.count; i++) {
    const double at = static_cast<double>(i) * (sym.npoints - 1) / (stroke.count - 1);
    const int k = std::min(static_cast<int>(at), sym.npoints - 2) + 1;
    const double part = at - (k - 1);
    stroke.x[i] = static_cast<int16_t>(2 * (sym.x[k] + part * (sym.x[k + 1] - sym.x[k])));
    stroke.y[i] = static_cast<int16_t>(2 * (sym.y[k] + part * (sym.y[k + 1] - sym.y[k])));
  }
  return stroke;
}

// 128 symbols of seven corners, and strokes of so many points along some of them; where the symbols
// are not apart, many such libraries one after the other, with one stroke each.
class Shapes {
 public:
  Shapes(Library library, int points, unsigned seed) : actions_(kMaxActions) {
    std::mt19937 random(seed);
    const auto corner = [&random] { return static_cast<uint16_t>(kGridMin + random() % 32 * 8); };
    GromlitSymbol base = {};
    base.npoints = kCorners;
    for (size_t i = 0; i < kMaxActions; i++) {
      GromlitSymbol* sym = &actions_[i].sym;
      for (int k = 1; k <= kCorners && (i == 0 || library == kApart); k++) {
        base.x[k] = corner();
        base.y[k] = corner();
      }
      *sym = base;
      for (int k = 1; k <= kCorners; k++) {
        if (library == kAlike) {
          sym->x[k] = static_cast<uint16_t>(sym->x[k] + random() % 20);
          sym->y[k] = static_cast<uint16_t>(sym->y[k] + random() % 20);
        }
        if (library == kSorted) {
          const int off = static_cast<int>(kMaxActions - i) * (k % 3 - 1) / 8;
          sym->x[k] = static_cast<uint16_t>(std::max(sym->x[k] + off, 0));
        }
      }
      plugin.actions[plugin.nactions++] = &actions_[i];
      vectors.push_back(Vectorize(Trace(*sym, kMaxStrokePoints)));
      templates.push_back(MakeAngleTemplate(Trace(*sym, kMaxStrokePoints)));
    }
    for (size_t i = 0; i < (library == kApart ? kStrokes : 1); i++)
      strokes.push_back(Trace(library == kApart ? actions_[i].sym : base, points));
    RankByShape(&plugin, strokes[0]);  // computes the features of all
  }
  ~Shapes() {
    for (GromlitAction& action : actions_) ForgetSignature(&action.sym);
  }
  Shapes(const Shapes&) = delete;
  Shapes& operator=(const Shapes&) = delete;

  GromlitPlugin plugin = {};
  std::vector<ProtractorVector> vectors;
  std::vector<AngleTemplate> templates;
  std::vector<Stroke> strokes;

 private:
  std::vector<GromlitAction> actions_;
};

using Clock = std::chrono::steady_clock;

double Microseconds(Clock::duration time) {
  return std::chrono::duration<double, std::micro>(time).count();
}

// The lower quartile: what it takes where nothing else came between.
double Quartile(std::vector<double>* values) {
  const auto at = values->begin() + static_cast<std::ptrdiff_t>(values->size() / 4);
  std::nth_element(values->begin(), at, values->end());
  return *at;
}

// Both in turn, so that the ratio comes from one run: "times_protractor", for the library at which
// it is worst. An error when a traced symbol is not found where the symbols are far apart.
void BM_FindShapeTimesProtractor(benchmark::State& state) {
  constexpr unsigned kLibraries = 12;
  const auto library = static_cast<Library>(state.range(0));
  const auto points = static_cast<int>(state.range(1));
  const int rounds = library == kApart ? 20 : 200;
  double worst = 0;
  double worstshape = 0;
  for ([[maybe_unused]] auto _ : state) {
    for (unsigned seed = 1; seed <= (library == kApart ? 1 : kLibraries); seed++) {
      const Shapes shapes(library, points, seed);
      std::vector<double> shape;
      std::vector<double> protractor;
      for (int round = 0; round < rounds; round++) {
        for (size_t i = 0; i < shapes.strokes.size(); i++) {
          const auto start = Clock::now();
          const ShapeRanking ranking = RankByShape(&shapes.plugin, shapes.strokes[i]);
          const auto middle = Clock::now();
          const ProtractorResult result = RunProtractor(shapes.vectors, shapes.strokes[i]);
          const auto end = Clock::now();
          shape.push_back(Microseconds(middle - start));
          protractor.push_back(Microseconds(end - middle));
          if (library == kApart && points == kMaxStrokePoints &&
              (ranking.best != static_cast<int>(i) || result.index != static_cast<int>(i))) {
            state.SkipWithError("a traced symbol is not found");
            return;
          }
        }
      }
      const double quartile = Quartile(&shape);
      const double ratio = quartile / Quartile(&protractor);
      if (ratio > worst) {
        worst = ratio;
        worstshape = quartile;
      }
    }
  }
  state.counters["times_protractor"] = worst;
  state.counters["shape_us"] = worstshape;
}
BENCHMARK(BM_FindShapeTimesProtractor)
    ->Unit(benchmark::kMillisecond)
    ->Iterations(1)
    ->ArgNames({"library", "points"})
    ->ArgsProduct({{kApart, kAlike, kEqual, kSorted}, {3, 16, 64, kMaxStrokePoints}});

void BM_FindShape_128(benchmark::State& state) {
  const Shapes shapes(kApart, kMaxStrokePoints, 1);
  size_t i = 0;
  for ([[maybe_unused]] auto _ : state)
    benchmark::DoNotOptimize(RankByShape(&shapes.plugin, shapes.strokes[i++ % kStrokes]));
}
BENCHMARK(BM_FindShape_128)->Unit(benchmark::kMicrosecond);

void BM_Protractor_128(benchmark::State& state) {
  const Shapes shapes(kApart, kMaxStrokePoints, 1);
  size_t i = 0;
  for ([[maybe_unused]] auto _ : state)
    benchmark::DoNotOptimize(RunProtractor(shapes.vectors, shapes.strokes[i++ % kStrokes]));
}
BENCHMARK(BM_Protractor_128)->Unit(benchmark::kMicrosecond);

void BM_AngleTemplates_128(benchmark::State& state) {
  const Shapes shapes(kApart, kMaxStrokePoints, 1);
  size_t i = 0;
  for ([[maybe_unused]] auto _ : state) {
    const size_t drawn = i++ % kStrokes;
    const AngleResult result = RunAngleTemplates(shapes.templates, shapes.strokes[drawn]);
    if (result.index != static_cast<int>(drawn)) {
      state.SkipWithError("a traced symbol is not found");
      return;
    }
  }
}
BENCHMARK(BM_AngleTemplates_128)->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace gromlit
