#include "bench/bench_run.h"

#include <X11/Xutil.h>
#include <X11/extensions/XTest.h>
#include <X11/keysym.h>
#include <poll.h>
#include <signal.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <random>
#include <sstream>
#include <thread>

#include "core/option_files.h"
#include "core/plugin_files.h"
#include "core/strings.h"
#include "core/symbol_files.h"
#include "recognition/symbol_icon.h"
#include "tests/support/built.h"

namespace gromlit::bench {
namespace {

using std::chrono::microseconds;
using std::chrono::milliseconds;
using std::chrono::seconds;
using testing::WaitFor;

[[noreturn]] void Fail(const std::string& why) {
  std::fprintf(stderr, "bench: %s\n", why.c_str());
  std::exit(1);
}

int IgnoreError(Display*, XErrorEvent*) {
  return 0;
}

// The number behind a word at the beginning of a line of a file in /proc.
unsigned long FieldOf(const std::string& path, const std::string& word) {
  std::ifstream in(path);
  for (std::string line; std::getline(in, line);) {
    if (line.starts_with(word)) return std::strtoul(line.c_str() + word.size(), nullptr, 10);
  }
  return 0;
}

std::string ProcFile(pid_t pid, const char* name) {
  return "/proc/" + std::to_string(pid) + "/" + name;
}

GromlitCmd* MakeCommand(CommandType type, const std::string& text) {
  auto* cmd = new GromlitCmd{};
  cmd->type = type;
  if (type == kHotKey) {
    cmd->nkeys = 1;
    cmd->keycode[0] = 38;
  }
  cmd->text = StrDup(text.c_str());
  cmd->ntext = static_cast<uint32_t>(text.size());
  return cmd;
}

// An action for a stroke along these corners, in cells of the editor.
GromlitAction* MakeAction(const std::string& name, const std::vector<std::pair<int, int>>& cells) {
  auto* action = new GromlitAction{};
  CopyText(action->name, name);
  CopyText(action->sym.name, name);
  for (const auto& [x, y] : cells) {
    const int k = ++action->sym.npoints;
    action->sym.x[k] = static_cast<uint16_t>(kGridMin + 8 * x);
    action->sym.y[k] = static_cast<uint16_t>(kGridMin + 8 * y);
  }
  VectorToBitmap(&action->sym);
  return action;
}

void Save(GromlitPlugin* plugin, const std::string& classname) {
  CopyText(plugin->appname, classname);
  CopyText(plugin->classname, classname);
  if (UnLoadPlugin(plugin, classname.c_str()) == nullptr) Fail("a plug-in cannot be written");
}

}  // namespace

double Microseconds(Clock::duration time) {
  return std::chrono::duration<double, std::micro>(time).count();
}

double Median(std::vector<double> values) {
  if (values.empty()) return 0;
  std::sort(values.begin(), values.end());
  const size_t half = values.size() / 2;
  return values.size() % 2 != 0 ? values[half] : (values[half - 1] + values[half]) / 2;
}

void Pause(microseconds time) {
  std::this_thread::sleep_for(time);
}

void Put(const std::string& name, double value) {
  std::printf("%s %.10g\n", name.c_str(), value);
  std::fflush(stdout);
}

void WriteOptions() {
  GromlitUserOptions options{};
  DefaultUserOptions(&options);
  options.splash = 0;
  options.button = 3;
  if (SaveUserOptions(&options, defaultOptionFile) != 1) Fail("the options cannot be written");
}

void WritePlugin(const std::string& classname, int texts, int length, bool handsoff) {
  GromlitPlugin plugin{};
  plugin.spare1 = handsoff ? kHandsOff : 0;
  GromlitAction* action = MakeAction("Right", {{0, 15}, {31, 15}});
  std::string text;
  for (int i = 0; i < length; i++) text += static_cast<char>('a' + i % 26);
  for (int i = 0; i < std::max(texts, 1); i++)
    action->cmds[action->ncmds++] = texts > 0 ? MakeCommand(kText, text) : MakeCommand(kHotKey, "");
  plugin.actions[plugin.nactions++] = action;
  Save(&plugin, classname);
}

void FillLibrary(int plugins, int symbols) {
  for (int i = 0; i < plugins; i++) {
    GromlitPlugin plugin{};
    for (int k = 0; k < 3; k++) {
      GromlitAction* action = MakeAction("Action " + std::to_string(k),
                                         {{(i + k) % 32, 0}, {(i * 7 + k) % 32, 31}, {31, k * 9}});
      action->cmds[action->ncmds++] = MakeCommand(kHotKey, "");
      action->cmds[action->ncmds++] = MakeCommand(kRun, "true");
      plugin.actions[plugin.nactions++] = action;
    }
    Save(&plugin, "Class" + std::to_string(i) + ".name" + std::to_string(i));
  }
  for (int i = 0; i < symbols; i++) {
    const std::string name = "symbol" + std::to_string(i);
    GromlitAction* action = MakeAction(name, {{i % 32, i / 32}, {31, i % 31}, {i / 16 % 32, 31}});
    if (UnLoadSymbol(&action->sym, name.c_str(), GromlitSymbolFileExt) == nullptr)
      Fail("a symbol cannot be written");
  }
}

// --- An application
// -------------------------------------------------------------------------------

Application::Application(const std::string& display, int levels, int children, int nested,
                         bool chain)
    : display_(XOpenDisplay(display.c_str())) {
  if (display_ == nullptr) Fail("cannot open " + display);
  const Window root = DefaultRootWindow(display_);
  frame_ = XCreateSimpleWindow(display_, root, 100, 100, 1000, 800, 0, 0, 0x808080);
  Window parent = frame_;
  for (int i = 0; i < levels; i++) {
    const Window between = XCreateSimpleWindow(display_, parent, 0, 0, 1000, 800, 0, 0, 0);
    XMapWindow(display_, between);
    parent = between;
  }
  const Window client = XCreateSimpleWindow(display_, parent, 0, 20, 1000, 780, 0, 0, 0xffffff);
  const Atom state = XInternAtom(display_, "WM_STATE", False);
  XChangeProperty(display_, client, state, state, 32, PropModeReplace, nullptr, 0);
  testing::SetClass(display_, client, "Bench", "bench");
  XSelectInput(display_, client, KeyPressMask | ButtonPressMask);
  for (int i = 0; i < children; i++) {
    const Window child =
        XCreateSimpleWindow(display_, client, 50 + i % 7, 100 + i % 11, 300, 200, 0, 0, 0);
    XSelectInput(display_, child, KeyPressMask | ButtonPressMask);
    XMapWindow(display_, child);
  }
  std::mt19937 random(1);
  std::vector<Window> windows = {client};
  for (int i = 0; i < nested; i++) {
    const Window in = chain ? windows.back() : windows[random() % windows.size()];
    windows.push_back(XCreateSimpleWindow(display_, in, 0, 0, 1000, 780, 0, 0, 0));
    XSelectInput(display_, windows.back(), KeyPressMask | ButtonPressMask);
    XMapWindow(display_, windows.back());
  }
  XMapWindow(display_, client);
  XMapWindow(display_, frame_);
  XSync(display_, False);
}

Application::~Application() {
  XCloseDisplay(display_);
}

int Application::TakeKeys(milliseconds deadline) {
  const auto end = Clock::now() + deadline;
  int keys = 0;
  for (;;) {
    while (XPending(display_) > 0) {
      XEvent event;
      XNextEvent(display_, &event);
      keys += event.type == KeyPress ? 1 : 0;
    }
    const auto left = std::chrono::duration_cast<milliseconds>(end - Clock::now());
    if (keys > 0 || left.count() <= 0) return keys;
    pollfd waiting{ConnectionNumber(display_), POLLIN, 0};
    poll(&waiting, 1, static_cast<int>(left.count()));
  }
}

// --- The program
// ----------------------------------------------------------------------------------

BenchRun::BenchRun() {
  XSetErrorHandler(IgnoreError);  // windows that are looked at may just be gone
  WriteOptions();
  MoveTo(1, 1);
}

BenchRun::~BenchRun() {
  Stop();
}

void BenchRun::Start(const std::string& display) {
  std::vector<std::string> command;
  const char* through = std::getenv("GROMLIT_BENCH_THROUGH");
  std::istringstream words(through != nullptr ? through : "");
  for (std::string word; words >> word;) command.push_back(word);
  for (const std::string& word : {testing::Built("gromlit"), std::string("-path"), install.path()})
    command.push_back(word);
  program = std::make_unique<testing::Process>(command, install / "gromlit.log",
                                               std::vector<std::string>{"DISPLAY=" + display},
                                               install.path());
  const auto ready = [this] {
    XWindowAttributes attributes{};
    XGetWindowAttributes(player.display(), player.root(), &attributes);
    return (attributes.all_event_masks & SubstructureNotifyMask) != 0;
  };
  if (!WaitFor(ready, seconds(60))) Fail("the program does not come up");
  // Below the application, which was there before.
  const Window main = testing::FindClient(player.display(), "Gromlit.Application");
  if (main == 0) Fail("the main window is not shown");
  XLowerWindow(player.display(), main);
  XSync(player.display(), False);
  Pause(milliseconds(300));  // what it does behind its last step
}

void BenchRun::Stop() {
  if (program == nullptr) return;
  program->Kill(SIGTERM);
  program->Wait();
  program = nullptr;
}

void BenchRun::MoveTo(int x, int y) {
  XTestFakeMotionEvent(player.display(), -1, x, y, CurrentTime);
  XFlush(player.display());
}

void BenchRun::PressAndThaw() {
  player.MoveTo(kStrokeX, kStrokeY);
  player.Press(3);
  player.MoveTo(kStrokeX + 1, kStrokeY);
  if (!WaitFor([this] { return player.Where().x == kStrokeX + 1; }))
    Fail("the pointer stays frozen");
  traced_ = 0;
}

void BenchRun::Trace(int motions, microseconds period) {
  auto next = Clock::now();
  for (int i = 0; i < motions; i++) {
    MoveTo(kStrokeX + 2 * ++traced_, kStrokeY);
    next += period;
    std::this_thread::sleep_until(next);
  }
}

bool BenchRun::TrailIsShown() {
  for (const Window window : testing::ChildrenOf(player.display(), player.root())) {
    XWindowAttributes attributes{};
    if (XGetWindowAttributes(player.display(), window, &attributes) != 0 &&
        attributes.override_redirect && attributes.map_state != IsUnmapped)
      return true;
  }
  return false;
}

void BenchRun::WaitOver() {
  XSync(player.display(), False);
  if (!WaitFor([this] { return !TrailIsShown(); }, seconds(60))) Fail("a stroke does not end");
}

// --- What a process takes
// -------------------------------------------------------------------------

double CpuSeconds(pid_t pid) {
  std::ifstream in(ProcFile(pid, "schedstat"));
  double nanoseconds = 0;
  in >> nanoseconds;
  return nanoseconds / 1e9;
}

unsigned long Wakeups(pid_t pid) {
  return FieldOf(ProcFile(pid, "status"), "voluntary_ctxt_switches:");
}

unsigned long Writes(pid_t pid) {
  return FieldOf(ProcFile(pid, "io"), "syscw:");
}

double PrivateKilobytes(pid_t pid) {
  const std::string rollup = ProcFile(pid, "smaps_rollup");
  return static_cast<double>(FieldOf(rollup, "Private_Clean:") + FieldOf(rollup, "Private_Dirty:"));
}

double ResidentKilobytes(pid_t pid) {
  return static_cast<double>(FieldOf(ProcFile(pid, "smaps_rollup"), "Rss:"));
}

// --- What goes over the program's connection
// ------------------------------------------------------

RequestLog::RequestLog(testing::XProxy* proxy) : proxy_(proxy) {
  proxy_->BeforeRequest([this](const testing::XRequest& request) {
    const testing::XCounts counts = proxy_->Counts(request.connection);
    const std::lock_guard guard(lock_);
    const unsigned long answers = counts.replies + counts.errors;
    if (answers != answers_) trips_++;
    answers_ = answers;
    entries_.push_back({request.major, trips_});
  });
}

RequestLog::~RequestLog() {
  proxy_->BeforeRequest(nullptr);
}

void RequestLog::Mark() {
  const testing::XCounts counts = proxy_->Counts(0);
  const std::lock_guard guard(lock_);
  answers_ = counts.replies + counts.errors;
  trips_ = 0;
  entries_.clear();
}

std::vector<RequestLog::Entry> RequestLog::Entries() {
  const std::lock_guard guard(lock_);
  return entries_;
}

int RequestLog::TripsBefore(int major) {
  int trips = -1;
  WaitFor([&] {
    for (const Entry& entry : Entries()) {
      if (entry.major != major) continue;
      trips = static_cast<int>(entry.trips);
      return true;
    }
    return false;
  });
  return trips;
}

}  // namespace gromlit::bench
