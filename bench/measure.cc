// Measures the built program from outside, each kind of figure by a word of the command line;
// scripts/bench runs it, makes ratios of the figures and holds them against their bars.
//
//   measure [--quick | --long] WORD...
//
// Prints lines "name value": times in microseconds, memory in kilobytes.
#include "bench/bench_run.h"

#include <X11/Xproto.h>
#include <X11/extensions/XTest.h>
#include <poll.h>
#include <signal.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <map>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "tests/support/built.h"

namespace gromlit::bench {
namespace {

using std::chrono::microseconds;
using std::chrono::milliseconds;
using std::chrono::seconds;
using testing::Process;
using testing::WaitFor;
using testing::XProxy;

// Round trips are counted over a link that takes its time: there what is asked together is answered
// together, also where the machine is busy.
constexpr milliseconds kCountingDelay(10);

enum class Form { kQuick, kUsual, kLong };
Form form = Form::kUsual;

int Times(int quick, int usual) {
  return form == Form::kQuick ? quick : usual;
}

// --- Start
// ----------------------------------------------------------------------------------------

// Tells of windows that come on the screen, straight from the server.
class Watcher {
 public:
  explicit Watcher(const std::string& display) : display_(XOpenDisplay(display.c_str())) {
    XSelectInput(display_, DefaultRootWindow(display_),
                 SubstructureNotifyMask | StructureNotifyMask);
    XSync(display_, True);
  }
  ~Watcher() { XCloseDisplay(display_); }
  Watcher(const Watcher&) = delete;
  Watcher& operator=(const Watcher&) = delete;

  // Starts a command, waits for its first window on the screen, and ends it again. The time
  // between. With `serves`, waits before the end for the word that it can be called from now on,
  // too, and gives that time.
  double FirstWindow(const std::vector<std::string>& command, const std::string& display,
                     double* serves = nullptr) {
    XSync(display_, True);
    const auto start = Clock::now();
    Process process(command, "/dev/null", {"DISPLAY=" + display});
    Await(MapNotify, command[0]);
    const double time = Microseconds(Clock::now() - start);
    if (serves != nullptr) {
      Await(ClientMessage, command[0]);
      *serves = Microseconds(Clock::now() - start);
    }
    process.Kill(SIGTERM);
    process.Wait();
    return time;
  }

 private:
  void Await(int type, const std::string& command) {
    while (!Came(type)) {
      pollfd waiting{ConnectionNumber(display_), POLLIN, 0};
      if (poll(&waiting, 1, 30000) == 0) {
        std::fprintf(stderr, "bench: no window of %s\n", command.c_str());
        std::exit(1);
      }
    }
  }
  bool Came(int type) {
    while (XPending(display_) > 0) {
      XEvent event;
      XNextEvent(display_, &event);
      if (event.type == type) return true;
    }
    return false;
  }

  Display* display_;
};

std::vector<std::string> Program(const testing::TempInstall& install) {
  return {testing::Built("gromlit"), "-path", install.path()};
}

// All in turn, so that what else the machine does meets them alike.
void MeasureStart() {
  const testing::XServer server("1280x1024x24");
  const testing::TempInstall full;
  WriteOptions();
  FillLibrary(1000, 512);
  const testing::TempInstall empty;  // GromlitPath is this one from now on
  WriteOptions();
  Watcher watcher(server.name());
  const std::map<std::string, std::vector<std::string>> commands = {
      {"gromlit", Program(empty)},
      {"gromlit_full", Program(full)},
      {"xclock", {"xclock"}},
      {"xterm", {"xterm", "-e", "sleep", "60"}}};
  std::map<std::string, std::vector<double>> times;
  for (int i = 0; i < Times(7, 31); i++) {
    for (const auto& [name, command] : commands) {
      const bool own = name.starts_with("gromlit");
      double serves = 0;
      const double time = watcher.FirstWindow(command, server.name(), own ? &serves : nullptr);
      if (i == 0) continue;  // the first finds nothing in memory
      times[name].push_back(time);
      if (own) times[name + "_serves"].push_back(serves);
    }
  }
  for (const auto& [name, all] : times) Put("start_" + name, Median(all));
}

void MeasureStartOverLink() {
  BenchRun run;
  {
    XProxy proxy(run.server.name());
    proxy.SetDelay(milliseconds(20), milliseconds(20));
    Watcher watcher(run.server.name());
    std::vector<double> times;
    for (int i = 0; i < Times(1, 5); i++)
      times.push_back(watcher.FirstWindow(Program(run.install), proxy.name()));
    Put("start_link", Median(times));
  }
  XProxy proxy(run.server.name());
  proxy.SetDelay(kCountingDelay, kCountingDelay);
  RequestLog log(&proxy);
  run.Start(proxy.name());
  const std::vector<RequestLog::Entry> entries = log.Entries();
  const auto first = std::find_if(entries.begin(), entries.end(),
                                  [](const auto& entry) { return entry.major == X_MapWindow; });
  Put("start_trips", static_cast<double>(entries.back().trips));
  Put("start_trips_to_window", static_cast<double>(first->trips));
  Put("start_requests", static_cast<double>(entries.size()));
}

// --- A stroke and its key
// -------------------------------------------------------------------------

// Before what is timed. What rests has to be woken, and finds less in the processor's caches.
constexpr milliseconds kRest(20);

// A round trip of a client that does nothing else.
double RoundTrip(Display* idle) {
  const auto start = Clock::now();
  XSync(idle, False);
  return Microseconds(Clock::now() - start);
}

enum class Hand { kRests, kSlows, kMoves };

// A stroke like BenchRun::Trace's, of a hand that comes to rest at its end.
void TraceToRest(BenchRun* run, int motions, milliseconds period) {
  auto next = Clock::now();
  for (int i = 1; i <= motions; i++) {
    const double left = 1.0 - static_cast<double>(i) / motions;
    run->MoveTo(kStrokeX + static_cast<int>(2 * motions * (1 - left * left)), kStrokeY);
    next += period;
    std::this_thread::sleep_until(next);
  }
}

// Times from the release of a stroke at the server to the first key at the application, after a
// rest, behind the last motion of a hand that slows down, or out of full motion.
std::vector<double> ReleaseToKey(BenchRun* run, Application* application, int times,
                                 microseconds settle, const std::function<void()>& before_release,
                                 Hand hand = Hand::kRests) {
  std::vector<double> all;
  for (int i = 0; i <= times; i++) {
    run->PressAndThaw();
    Pause(settle);  // until the application is known
    if (hand == Hand::kSlows) {
      TraceToRest(run, 50, milliseconds(1));
    } else {
      run->Trace(50, milliseconds(1));
    }
    if (hand == Hand::kRests) {
      XSync(run->player.display(), False);
      // Until all of it is drawn, and before the program asks whether the grab is still there, as
      // it does where a hand rests for a tenth of a second.
      Pause(kRest);
      before_release();
      Pause(kRest);
    }
    const auto start = Clock::now();
    XTestFakeButtonEvent(run->player.display(), 3, False, CurrentTime);
    XFlush(run->player.display());
    if (application->TakeKeys(seconds(20)) == 0) {
      std::fprintf(stderr, "bench: a stroke is lost\n");
      std::exit(1);
    }
    if (i > 0) all.push_back(Microseconds(Clock::now() - start));
    run->WaitOver();
    Pause(settle);  // until the draw button is grabbed again
  }
  return all;
}

void MeasureGesture() {
  BenchRun run;
  WritePlugin("Bench.bench", 0, 0);
  Application application(run.server.name(), 0, 0);
  {
    run.Start(run.server.name());
    Display* const idle = XOpenDisplay(run.server.name().c_str());
    std::vector<double> trips;
    std::vector<double> more;
    const auto times = ReleaseToKey(&run, &application, Times(30, 300), milliseconds(10), [&] {
      trips.push_back(RoundTrip(idle));
      for (int i = 0; i < 4; i++) more.push_back(RoundTrip(idle));
    });
    Put("key_time", Median(times));
    Put("key_time_least", *std::ranges::min_element(times));
    Put("idle_trip", Median(trips));
    Put("idle_trip_least", *std::ranges::min_element(trips));
    Put("busy_trip", Median(more));
    XCloseDisplay(idle);
    for (const auto& [name, hand] : {std::pair{"key_time_slowing", Hand::kSlows},
                                     std::pair{"key_time_moving", Hand::kMoves}}) {
      const auto released = ReleaseToKey(
          &run, &application, Times(30, 300), milliseconds(10), [] {}, hand);
      Put(name, Median(released));
      Put(std::string(name) + "_most", *std::ranges::max_element(released));
    }
    run.Stop();
  }
  XProxy proxy(run.server.name());
  {
    RequestLog log(&proxy);
    run.Start(proxy.name());
    proxy.SetDelay(kCountingDelay, kCountingDelay);
    int most = 0;
    bool marked = false;  // at the release of the stroke before
    const auto look = [&] {
      if (marked) most = std::max(most, log.TripsBefore(X_SendEvent));
    };
    ReleaseToKey(&run, &application, 4, milliseconds(300), [&] {
      look();
      log.Mark();
      marked = true;
    });
    look();
    Put("key_trips", most);
    proxy.SetDelay({}, {});
    run.Stop();
  }
  proxy.SetDelay(milliseconds(20), milliseconds(20));
  run.Start(proxy.name());
  const auto slow = ReleaseToKey(&run, &application, Times(3, 10), milliseconds(600), [] {});
  Put("key_time_link", Median(slow));
}

// --- A press
// --------------------------------------------------------------------------------------

// Round trips from the press until the pointer is let go, and until nothing more is asked.
void MeasurePress(const std::string& name, int levels, int children, bool handsoff, int nested = 0,
                  bool chain = false) {
  BenchRun run;
  WritePlugin("Bench.bench", 0, 0);
  if (handsoff) WritePlugin("Other.other", 0, 0, true);
  Application application(run.server.name(), levels, children, nested, chain);
  XProxy proxy(run.server.name());
  RequestLog log(&proxy);
  run.Start(proxy.name());
  run.player.MoveTo(kStrokeX, kStrokeY);
  proxy.SetDelay(kCountingDelay, kCountingDelay);
  Pause(milliseconds(500));
  log.Mark();
  run.player.Press(3);
  Put(name + "_thaw_trips", log.TripsBefore(X_AllowEvents));
  // When nothing happens the program asks where the pointer is, a while later.
  Put(name + "_trips", log.TripsBefore(X_QueryPointer) - 1);
  run.player.Release(3);
}

void MeasurePresses() {
  MeasurePress("press", 0, 0, false);
  MeasurePress("press_1000", 0, 1000, false);
  MeasurePress("press_nested", 0, 0, false, 1000);
  MeasurePress("press_chain", 0, 0, false, 1000, true);
  MeasurePress("press_hands_off", 0, 0, true);
  MeasurePress("press_hands_off_4", 4, 0, true);
}

// --- Texts
// ----------------------------------------------------------------------------------------

// Until all keys of the texts have come.
void TypeTexts(BenchRun* run, Application* application, int letters) {
  run->Trace(20, milliseconds(1));
  run->player.Release(3);
  for (int keys = 0; keys < letters;) {
    const int more = application->TakeKeys(seconds(60));
    if (more == 0) {
      std::fprintf(stderr, "bench: %d of %d keys have come\n", keys, letters);
      std::exit(1);
    }
    keys += more;
  }
  run->WaitOver();
}

// What an action of so many texts of so many letters takes; names begin with `name`.
void MeasureTexts(const std::string& name, int texts, int letters) {
  BenchRun run;
  WritePlugin("Bench.bench", texts, letters);
  Application application(run.server.name(), 0, 0);
  run.Start(run.server.name());
  std::vector<double> times;
  std::vector<double> writes;
  for (int i = 0; i <= Times(3, 7); i++) {
    run.PressAndThaw();
    // Until the application is known, and what is asked for it answered.
    Pause(milliseconds(50));
    const unsigned long before = Writes(run.program->pid());
    const auto start = Clock::now();
    TypeTexts(&run, &application, texts * letters);
    const double time = Microseconds(Clock::now() - start);
    Pause(milliseconds(50));  // what follows a stroke
    if (i == 0) continue;     // reads the plug-in
    times.push_back(time);
    writes.push_back(static_cast<double>(Writes(run.program->pid()) - before));
  }
  Put(name + "_time", Median(times));
  Put(name + "_writes", Median(writes));
  run.Stop();
  XProxy proxy(run.server.name());
  run.Start(proxy.name());
  proxy.SetDelay(kCountingDelay, kCountingDelay);
  run.PressAndThaw();
  const testing::XCounts before = proxy.Counts(0);
  TypeTexts(&run, &application, texts * letters);
  const testing::XCounts after = proxy.Counts(0);
  Put(name + "_trips", static_cast<double>(after.round_trips - before.round_trips));
  Put(name + "_bytes", static_cast<double>(after.bytes_to_server - before.bytes_to_server));
  Put(name + "_commands", texts);
  Put(name + "_letters", texts * letters);
}

void MeasureTexts() {
  MeasureTexts("text", 10, 1000);
  MeasureTexts("text_short", 10, 10);
  MeasureTexts("text_one", 1, 10);
}

// --- Drawing and doing nothing
// --------------------------------------------------------------------

constexpr int kMotions = 240;  // of one stroke, below the points that are kept

void MeasureDrawing() {
  BenchRun run;
  WritePlugin("Bench.bench", 0, 0);
  Application application(run.server.name(), 0, 0);
  run.Start(run.server.name());
  const auto draw = [&run] {
    run.PressAndThaw();
    run.Trace(10, milliseconds(1));
    const double before = CpuSeconds(run.program->pid());
    const auto start = Clock::now();
    run.Trace(kMotions, milliseconds(1));
    const double took = Microseconds(Clock::now() - start) / 1e6;
    const double cpu = CpuSeconds(run.program->pid()) - before;
    run.player.Release(3);
    run.WaitOver();
    Pause(milliseconds(20));
    return std::pair{cpu, took};
  };
  std::vector<double> permotion;
  std::vector<double> rates;
  for (int i = 0; i < Times(8, 40); i++) {
    const auto [cpu, took] = draw();
    permotion.push_back(cpu / kMotions * 1e6);
    rates.push_back(kMotions / took);
  }
  Put("draw_cpu_per_motion", Median(permotion));
  Put("draw_rate", Median(rates));
  run.Stop();
  XProxy proxy(run.server.name());
  run.Start(proxy.name());
  run.PressAndThaw();
  run.Trace(10, milliseconds(5));
  Pause(milliseconds(30));
  const testing::XCounts before = proxy.Counts(0);
  run.Trace(kMotions, milliseconds(2));
  Pause(milliseconds(50));
  const testing::XCounts after = proxy.Counts(0);
  Put("draw_requests", static_cast<double>(after.requests - before.requests) / kMotions);
  Put("draw_events", static_cast<double>(after.events - before.events) / kMotions);
  run.player.Release(3);
}

void MeasureIdle() {
  BenchRun run;
  WritePlugin("Bench.bench", 0, 0);
  Application application(run.server.name(), 0, 0);
  run.Start(run.server.name());
  run.player.MoveTo(kStrokeX, kStrokeY);
  Pause(seconds(2));
  const auto time = seconds(Times(3, 20));
  unsigned long before = Wakeups(run.program->pid());
  Pause(time);
  Put("idle_wakeups", static_cast<double>(Wakeups(run.program->pid()) - before));
  before = Wakeups(run.program->pid());
  const auto end = Clock::now() + time;
  int motions = 0;
  for (; Clock::now() < end; motions++) {
    run.player.MoveTo(kStrokeX + motions % 500, kStrokeY + motions % 300);
    Pause(milliseconds(2));
  }
  Put("moving_wakeups", static_cast<double>(Wakeups(run.program->pid()) - before));
  Put("moving_motions", motions);
  Put("idle_seconds", static_cast<double>(time.count()));
}

// --- Memory
// ---------------------------------------------------------------------------------------

// A client of the same server, once it has shown its window and come to rest.
double PrivateOf(const std::vector<std::string>& command, const std::string& display) {
  const testing::Player eyes(display);
  const size_t before = testing::ChildrenOf(eyes.display(), eyes.root()).size();
  Process process(command, "/dev/null", {"DISPLAY=" + display});
  WaitFor([&] { return testing::ChildrenOf(eyes.display(), eyes.root()).size() > before; });
  Pause(seconds(1));
  return PrivateKilobytes(process.pid());
}

void MeasureStrokes() {
  BenchRun run;
  WritePlugin("Bench.bench", 0, 0);
  Application application(run.server.name(), 0, 0);
  run.Start(run.server.name());
  Put("memory_idle", PrivateKilobytes(run.program->pid()));
  Put("memory_xclock", PrivateOf({"xclock"}, run.server.name()));
  Put("memory_xterm", PrivateOf({"xterm", "-e", "sleep", "60"}, run.server.name()));
  const int strokes = form == Form::kLong ? 100000 : Times(300, 2000);
  const auto start = Clock::now();
  for (int i = 0; i <= strokes; i++) {
    if (i == strokes / 20) Put("memory_before_strokes", PrivateKilobytes(run.program->pid()));
    run.PressAndThaw();
    run.Trace(10, microseconds(0));
    XTestFakeButtonEvent(run.player.display(), 3, False, CurrentTime);
    XFlush(run.player.display());
    if (application.TakeKeys(seconds(20)) == 0) {
      std::fprintf(stderr, "bench: stroke %d is lost\n", i);
      std::exit(1);
    }
    run.WaitOver();
  }
  Put("memory_after_strokes", PrivateKilobytes(run.program->pid()));
  Put("memory_strokes", strokes);
  Put("memory_stroke_time", Microseconds(Clock::now() - start) / strokes);
}

// --- Profiles
// -------------------------------------------------------------------------------------

// For a program that runs in callgrind, which scripts/bench puts in front of it.
void ProfileStart() {
  BenchRun run;
  run.Start(run.server.name());
}

void ProfileGesture() {
  BenchRun run;
  WritePlugin("Bench.bench", 0, 0);
  Application application(run.server.name(), 0, 0);
  run.Start(run.server.name());
  const auto draw = [&] {
    run.PressAndThaw();
    run.Trace(100, milliseconds(20));
    run.player.Release(3);
    application.TakeKeys(seconds(60));
    run.WaitOver();
    Pause(milliseconds(500));
  };
  draw();  // the first one reads the plug-in's actions
  const std::string pid = std::to_string(run.program->pid());
  Process({"callgrind_control", "-i", "on", pid}, "/dev/null").Wait();
  draw();
  Process({"callgrind_control", "-i", "off", pid}, "/dev/null").Wait();
}

int Run(const std::vector<std::string>& words) {
  const std::map<std::string, std::function<void()>> kinds = {{"start", MeasureStart},
                                                              {"link", MeasureStartOverLink},
                                                              {"gesture", MeasureGesture},
                                                              {"press", MeasurePresses},
                                                              {"text", [] { MeasureTexts(); }},
                                                              {"draw", MeasureDrawing},
                                                              {"idle", MeasureIdle},
                                                              {"strokes", MeasureStrokes},
                                                              {"profile_start", ProfileStart},
                                                              {"profile_gesture", ProfileGesture}};
  for (const std::string& word : words) {
    if (word == "--quick" || word == "--long") {
      form = word == "--quick" ? Form::kQuick : Form::kLong;
      continue;
    }
    const auto kind = kinds.find(word);
    if (kind == kinds.end()) {
      std::fprintf(stderr, "measure: no measurement \"%s\"\n", word.c_str());
      return 2;
    }
    kind->second();
  }
  return 0;
}

}  // namespace
}  // namespace gromlit::bench

int main(int argc, char** argv) {
  return gromlit::bench::Run({argv + 1, argv + argc});
}
