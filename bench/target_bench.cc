// The search for a press's target: the one that asks about whole levels of a window tree against
// the literal one, which asks one question at a time. Needs a display and starts one of its own.
//
// Before Xlib, whose macros would break GoogleTest.
#include "tests/support/x_server.h"

#include <benchmark/benchmark.h>

#include <chrono>
#include <memory>

#include "display/display.h"
#include "display/target.h"
#include "display/x_errors.h"
#include "tests/x11/display/literal_target.h"

namespace gromlit {
namespace {

constexpr int kX = 150;
constexpr int kY = 160;

// What the search by levels must reach at least, for this many windows.
constexpr int kMany = 1000;
constexpr double kTimesFaster = 3;

// A display of its own, with connections for the program and for another client.
struct Screen {
  testing::XServer server{"640x480x24"};
  std::unique_ptr<testing::Player> player;
};

Screen* TheScreen(benchmark::State& state) {
  static Screen* const screen_ = [] {
    static Screen made;
    if (made.server.name().empty() || !OpenDisplay(made.server.name().c_str())) {
      return static_cast<Screen*>(nullptr);
    }
    XSetErrorHandler(GromlitXErrorHandler);
    made.player = std::make_unique<testing::Player>(made.server.name());
    static const std::unique_ptr<Display, int (*)(Display*)> connection(dpy, XCloseDisplay);
    return &made;
  }();
  if (screen_ == nullptr) state.SkipWithError("no X server: Xvfb cannot be started");
  return screen_;
}

// A window in a frame, as a window manager leaves it, with `n` windows of its own beside the
// position.
Window MakeFramed(Display* other, int n) {
  const Window frame = XCreateSimpleWindow(other, root, 100, 100, 200, 200, 0, 0, 0);
  const Window client = XCreateSimpleWindow(other, frame, 0, 20, 200, 180, 0, 0, 0);
  const Atom wmstate = XInternAtom(other, "WM_STATE", False);
  XChangeProperty(other, client, wmstate, wmstate, 32, PropModeReplace, nullptr, 0);
  testing::SetClass(other, client, "Class", "name");
  XSelectInput(other, client, ButtonPressMask);
  for (int i = 0; i < n; i++) {
    const Window child = XCreateSimpleWindow(other, client, 150, 10 + i % 100, 5, 5, 0, 0, 0);
    XSelectInput(other, child, ButtonPressMask);
    XMapWindow(other, child);
  }
  XMapWindow(other, client);
  XMapWindow(other, frame);
  XSync(other, False);
  return frame;
}

void BM_FindTargets(benchmark::State& state) {
  Screen* const on = TheScreen(state);
  if (on == nullptr) return;
  const Window frame = MakeFramed(on->player->display(), static_cast<int>(state.range(0)));
  for (auto _ : state) benchmark::DoNotOptimize(FindTargets(frame, kX, kY));
  XDestroyWindow(on->player->display(), frame);
}
BENCHMARK(BM_FindTargets)->Arg(0)->Arg(200)->Arg(1000)->Unit(benchmark::kMicrosecond);

// What a press of a draw button waits for where an application is to be left alone.
void BM_FindApplication(benchmark::State& state) {
  Screen* const on = TheScreen(state);
  if (on == nullptr) return;
  const Window frame = MakeFramed(on->player->display(), static_cast<int>(state.range(0)));
  for (auto _ : state) benchmark::DoNotOptimize(FindApplication(frame, kX, kY));
  XDestroyWindow(on->player->display(), frame);
}
BENCHMARK(BM_FindApplication)->Arg(0)->Arg(1000)->Unit(benchmark::kMicrosecond);

void BM_LiteralTargets(benchmark::State& state) {
  Screen* const on = TheScreen(state);
  if (on == nullptr) return;
  const Window frame = MakeFramed(on->player->display(), static_cast<int>(state.range(0)));
  on->player->MoveTo(kX, kY);
  for (auto _ : state) benchmark::DoNotOptimize(testing::LiteralTargets(dpy, frame, kX, kY));
  XDestroyWindow(on->player->display(), frame);
}
BENCHMARK(BM_LiteralTargets)->Arg(0)->Arg(200)->Arg(1000)->Unit(benchmark::kMicrosecond);

// Both in turn, so that the ratio ("times_faster") comes from one run; an error below the bar or
// when they find different windows.
void BM_TargetsTimesFaster(benchmark::State& state) {
  using Clock = std::chrono::steady_clock;
  Screen* const on = TheScreen(state);
  if (on == nullptr) return;
  const Window frame = MakeFramed(on->player->display(), kMany);
  on->player->MoveTo(kX, kY);
  Clock::duration literal{};
  Clock::duration levels{};
  for (auto _ : state) {
    const auto start = Clock::now();
    const testing::LiteralTarget expected = testing::LiteralTargets(dpy, frame, kX, kY);
    const auto middle = Clock::now();
    const Target found = FindTargets(frame, kX, kY);
    const auto end = Clock::now();
    literal += middle - start;
    levels += end - middle;
    if (found.click == None || found.click != expected.click || found.key != expected.key) {
      state.SkipWithError("they find different windows");
      break;
    }
  }
  XDestroyWindow(on->player->display(), frame);
  const double ratio = static_cast<double>(literal.count()) / static_cast<double>(levels.count());
  state.counters["times_faster"] = ratio;
  if (ratio < kTimesFaster) state.SkipWithError("less than 3 times faster than the literal search");
}
BENCHMARK(BM_TargetsTimesFaster)->Unit(benchmark::kMicrosecond)->Iterations(20);

}  // namespace
}  // namespace gromlit
