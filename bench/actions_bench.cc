// The key tables: the one pass over states and key codes against the literal search, which goes
// through all of them for each character. Needs a display and starts one of its own.
//
// Before Xlib, whose macros would break GoogleTest.
#include "tests/support/x_server.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <memory>
#include <string>

#include "actions/keystrokes.h"
#include "display/display.h"
#include "tests/x11/actions/literal_key_tables.h"

namespace gromlit {
namespace {

constexpr double kTimesFaster = 50;  // what the one pass must reach at least

// A connection to an X server that lives until the program ends, made at the first call. False,
// and the benchmark skipped, where no server can be started.
bool Connected(benchmark::State& state) {
  static const bool connected = [] {
    static const testing::XServer server("640x480x24");
    if (server.name().empty() || !OpenDisplay(server.name().c_str())) return false;
    // Made after the server, so closed before it goes.
    static const std::unique_ptr<Display, int (*)(Display*)> connection(dpy, XCloseDisplay);
    return true;
  }();
  if (!connected) state.SkipWithError("no X server: Xvfb cannot be started");
  return connected;
}

void BM_BuildCharToKeycode(benchmark::State& state) {
  if (!Connected(state)) return;
  BuildCharToKeycode();  // reads the keyboard from the server, once
  for (auto _ : state) {
    BuildCharToKeycode();
    benchmark::DoNotOptimize(charTableKeycodes);
  }
}
BENCHMARK(BM_BuildCharToKeycode)->Unit(benchmark::kMicrosecond);

void BM_LiteralKeySearch(benchmark::State& state) {
  if (!Connected(state)) return;
  for (auto _ : state) benchmark::DoNotOptimize(testing::LiteralKeyTables(dpy));
}
BENCHMARK(BM_LiteralKeySearch)->Unit(benchmark::kMicrosecond);

// Both in turn, so that the ratio ("times_faster") comes from one run; an error below the bar or
// when the tables differ.
void BM_KeyTablesTimesFaster(benchmark::State& state) {
  using Clock = std::chrono::steady_clock;
  if (!Connected(state)) return;
  BuildCharToKeycode();
  Clock::duration literal{};
  Clock::duration onepass{};
  for (auto _ : state) {
    const auto start = Clock::now();
    const testing::KeyTables tables = testing::LiteralKeyTables(dpy);
    const auto middle = Clock::now();
    BuildCharToKeycode();
    const auto end = Clock::now();
    literal += middle - start;
    onepass += end - middle;
    if (!std::equal(tables.keycodes.begin(), tables.keycodes.end(), charTableKeycodes) ||
        !std::equal(tables.keystates.begin(), tables.keystates.end(), charTableKeystates)) {
      state.SkipWithError("the tables differ");
      return;
    }
  }
  const double ratio = static_cast<double>(literal.count()) / static_cast<double>(onepass.count());
  state.counters["times_faster"] = ratio;
  if (ratio < kTimesFaster)
    state.SkipWithError("less than 50 times faster than the literal search");
}
BENCHMARK(BM_KeyTablesTimesFaster)->Unit(benchmark::kMicrosecond)->Iterations(20);

}  // namespace
}  // namespace gromlit
