// From a stroke to the action: the signature, the search, and the exhaustive search that the linear
// one replaces, on the same input. The bar: in each of the worst cases the exhaustive search takes
// at least 500 times as long in the same run.
#include <benchmark/benchmark.h>

#include <cmath>
#include <cstdint>
#include <memory>
#include <numbers>
#include <string>
#include <vector>

#include "recognition/signature_match.h"
#include "recognition/stroke_signature.h"
#include "tests/unit/recognition/literal.h"

namespace gromlit {
namespace {

// A drawn signature and the signatures of 128 symbols. `expected` is the index of the first that
// matches, -1 when none does.
struct Input {
  std::string drawn;
  std::vector<std::string> syms;
  int expected;
};

// Shapes as a library has them, among them many with the letters of a circle in another order; the
// stroke, drawn a little differently from its symbol, belongs to the 64th.
Input Typical() {
  const std::vector<std::string> shapes = {
      "aaaa", "bbbb", "cccc",     "dddd",     "abcd",     "bacd",     "acbd",   "bdac",
      "abdc", "cdab", "dcbaabcd", "cabddbac", "abcdab",   "cdcd",     "abab",   "dbacdb",
      "acab", "bdba", "abcddcba", "bdacbdac", "cdabcdab", "abbacddc", "adbccb", "badc"};
  Input input = {.drawn = "acbdacdb", .syms = {}, .expected = 63};
  for (size_t i = 0; i < kMaxActions; ++i) input.syms.push_back(shapes[i % shapes.size()]);
  input.syms[63] = "cabdcabd";
  return input;
}

// The same library without the symbol that was drawn.
Input None() {
  Input input = Typical();
  input.syms[63] = "abcd";
  input.expected = -1;
  return input;
}

// As many letters as a symbol's vector can have: 63 lines, each across all four.
constexpr size_t kLongest = 252;

// So many letters with ten positions to swap, and symbols that differ in one place only.
// `swapsAt` is where the ten positions begin, `differsAt` where the symbols differ.
Input Long(size_t swapsAt, size_t differsAt) {
  Input input = {.drawn = "", .syms = {}, .expected = -1};
  for (size_t i = 0; i < kLongest; ++i) {
    // Equal neighbours: every variant is the same text and has to be read to its end.
    const bool swappable = i >= swapsAt && i <= swapsAt + kMaxSwaps;
    input.drawn += swappable ? 'b' : "ab"[i % 2];
  }
  std::string sym = input.drawn;
  sym[differsAt] = '-';
  input.syms.assign(kMaxActions, sym);
  return input;
}

// The same with the ten positions spread over the whole length.
Input Spread(size_t differsAt) {
  Input input = {.drawn = "", .syms = {}, .expected = -1};
  for (size_t i = 0; i < kLongest; ++i) input.drawn += "ab"[i % 19 % 2];
  std::string sym = input.drawn;
  sym[differsAt] = '-';
  input.syms.assign(kMaxActions, sym);
  return input;
}

void RunFindSignature(benchmark::State& state, Input input) {
  const auto actions = std::make_unique<GromlitAction[]>(kMaxActions);
  const auto plugin = std::make_unique<GromlitPlugin>();
  for (size_t i = 0; i < kMaxActions; ++i) {
    actions[i].sym.signature = input.syms[i].data();
    plugin->actions[i] = &actions[i];
  }
  plugin->nactions = kMaxActions;
  if (FindSignature(plugin.get(), input.drawn.c_str()) != input.expected ||
      literal::FindAction(input.syms, input.drawn) != input.expected) {
    state.SkipWithError("the search does not find what the input was made for");
  }
  for ([[maybe_unused]] auto _ : state) {
    benchmark::DoNotOptimize(FindSignature(plugin.get(), input.drawn.c_str()));
    benchmark::ClobberMemory();
  }
}

void RunExhaustive(benchmark::State& state, const Input& input) {
  for ([[maybe_unused]] auto _ : state) {
    benchmark::DoNotOptimize(literal::FindAction(input.syms, input.drawn));
    benchmark::ClobberMemory();
  }
}

// The place of the difference that keeps the linear search longest is the first letter, with the
// swaps at the far end; the exhaustive search reads longest when it is the last.
void BM_FindSignature_typical(benchmark::State& state) {
  RunFindSignature(state, Typical());
}
void BM_FindSignature_none(benchmark::State& state) {
  RunFindSignature(state, None());
}
void BM_FindSignature_worst(benchmark::State& state) {
  RunFindSignature(state, Long(0, kLongest - 1));
}
void BM_FindSignature_worst_first_letter(benchmark::State& state) {
  RunFindSignature(state, Long(kLongest - kMaxSwaps - 1, 0));
}
void BM_FindSignature_worst_spread(benchmark::State& state) {
  RunFindSignature(state, Spread(0));
}
void BM_ExhaustiveSearch_typical(benchmark::State& state) {
  RunExhaustive(state, Typical());
}
void BM_ExhaustiveSearch_none(benchmark::State& state) {
  RunExhaustive(state, None());
}
void BM_ExhaustiveSearch_worst(benchmark::State& state) {
  RunExhaustive(state, Long(0, kLongest - 1));
}
void BM_ExhaustiveSearch_worst_first_letter(benchmark::State& state) {
  RunExhaustive(state, Long(kLongest - kMaxSwaps - 1, 0));
}
void BM_ExhaustiveSearch_worst_spread(benchmark::State& state) {
  RunExhaustive(state, Spread(0));
}

// A spiral of 256 points, three turns: as many crossings as a hand is likely to draw.
void BM_StrokeSignature_256(benchmark::State& state) {
  int16_t x[kMaxStrokePoints];
  int16_t y[kMaxStrokePoints];
  for (int i = 0; i < kMaxStrokePoints; ++i) {
    const double turn = 6 * std::numbers::pi * i / kMaxStrokePoints;
    x[i] = static_cast<int16_t>(500 + (100 + i) * std::cos(turn));
    y[i] = static_cast<int16_t>(500 + (100 + i) * std::sin(turn));
  }
  char signature[kDrawnSignatureSize];
  for ([[maybe_unused]] auto _ : state) {
    benchmark::DoNotOptimize(StrokeSignature(signature, kMaxStrokePoints, x, y));
    benchmark::ClobberMemory();
  }
}

// Every step crosses all four lines: 1020 letters.
void BM_StrokeSignature_256_zigzag(benchmark::State& state) {
  int16_t x[kMaxStrokePoints];
  int16_t y[kMaxStrokePoints];
  for (int i = 0; i < kMaxStrokePoints; ++i) x[i] = y[i] = static_cast<int16_t>(i % 2 * 300);
  char signature[kDrawnSignatureSize];
  for ([[maybe_unused]] auto _ : state) {
    benchmark::DoNotOptimize(StrokeSignature(signature, kMaxStrokePoints, x, y));
    benchmark::ClobberMemory();
  }
}

// The first use of a symbol: 63 segments across the whole grid, then their signature.
void BM_SymbolSignature_64_points(benchmark::State& state) {
  GromlitSymbol sym = {};
  sym.npoints = kMaxPoints;
  for (int k = 1; k <= kMaxPoints; ++k) {
    sym.x[k] = k % 2 == 0 ? kGridMax : kGridMin;
    sym.y[k] = static_cast<uint16_t>(kGridMin + k / 2 * 8 % (kGridMax - kGridMin));
  }
  for ([[maybe_unused]] auto _ : state) {
    benchmark::DoNotOptimize(SymbolSignature(&sym));
    ForgetSignature(&sym);
  }
}

void Medians(benchmark::internal::Benchmark* bench) {
  bench->Repetitions(7)->ReportAggregatesOnly(true)->Unit(benchmark::kMicrosecond)->MinTime(0.1);
}

BENCHMARK(BM_StrokeSignature_256)->Apply(Medians);
BENCHMARK(BM_StrokeSignature_256_zigzag)->Apply(Medians);
BENCHMARK(BM_SymbolSignature_64_points)->Apply(Medians);
BENCHMARK(BM_FindSignature_typical)->Apply(Medians);
BENCHMARK(BM_FindSignature_none)->Apply(Medians);
BENCHMARK(BM_FindSignature_worst)->Apply(Medians);
BENCHMARK(BM_FindSignature_worst_first_letter)->Apply(Medians);
BENCHMARK(BM_FindSignature_worst_spread)->Apply(Medians);
BENCHMARK(BM_ExhaustiveSearch_typical)->Apply(Medians);
BENCHMARK(BM_ExhaustiveSearch_none)->Apply(Medians);
BENCHMARK(BM_ExhaustiveSearch_worst)->Apply(Medians);
BENCHMARK(BM_ExhaustiveSearch_worst_first_letter)->Apply(Medians);
BENCHMARK(BM_ExhaustiveSearch_worst_spread)->Apply(Medians);

}  // namespace
}  // namespace gromlit
