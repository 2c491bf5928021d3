#include "tests/e2e/gromlit_run.h"

#include <X11/Xatom.h>
#include <X11/Xutil.h>
#include <signal.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <fstream>
#include <sstream>

#include "core/option_files.h"
#include "core/plugin_files.h"
#include "core/strings.h"
#include "recognition/symbol_icon.h"

namespace gromlit::testing {
namespace {

int IgnoreError(Display*, XErrorEvent*) {
  return 0;
}

std::vector<std::string> LinesOf(const std::string& path, const std::string& start) {
  std::istringstream in(ReadText(path));
  std::vector<std::string> lines;
  for (std::string line; std::getline(in, line);) {
    if (line.starts_with(start)) lines.push_back(line);
  }
  return lines;
}

GromlitCmd* MakeCommand(const Command& command) {
  auto* cmd = new GromlitCmd{};
  cmd->type = command.type;
  cmd->nkeys = command.keycode != 0 ? 1 : 0;
  cmd->keycode[0] = static_cast<uint16_t>(command.keycode);
  cmd->keystate[0] = static_cast<uint16_t>(command.keystate);
  cmd->checked = static_cast<uint8_t>(command.checked);
  cmd->text = StrDup(command.text.c_str());
  cmd->ntext = static_cast<uint32_t>(command.text.size());
  return cmd;
}

}  // namespace

ProbeClient::ProbeClient(const std::string& directory, std::vector<std::string> options) {
  static int number = 0;
  const std::string base = directory + "/probe" + std::to_string(number++);
  output_ = base + ".out";
  events_ = base + ".events";
  std::vector<std::string> argv = {Built("tests/probe"), "--output", events_};
  argv.insert(argv.end(), options.begin(), options.end());
  process_ = std::make_unique<Process>(argv, output_);
  const auto ready = [this] { return LinesOf(output_, "ready ").size() == 1; };
  if (!WaitFor(ready, std::chrono::seconds(60))) {
    ADD_FAILURE() << "the probe did not come up: " << ReadText(output_);
    return;
  }
  window_ = std::strtoul(LinesOf(output_, "ready ")[0].c_str() + 6, nullptr, 0);
}

std::vector<std::string> ProbeClient::Lines(const std::string& start) const {
  return LinesOf(events_, start);
}

std::vector<std::string> ProbeClient::Wait(size_t n, const std::string& start) const {
  if (!WaitFor([&] { return Lines(start).size() >= n; })) {
    ADD_FAILURE() << "expected " << n << " lines \"" << start << "\", got:\n" << ReadText(events_);
  }
  return Lines(start);
}

void GromlitRun::SetUp() {
  if (server == nullptr) server = std::make_unique<XServer>();
  install = std::make_unique<TempInstall>();
  player = std::make_unique<Player>(server->name());
  XSetErrorHandler(IgnoreError);  // the test looks at windows of others that may just be gone
  WriteOptions();
  player->MoveTo(1, 1);
}

void GromlitRun::TearDown() {
  if (gromlit != nullptr && gromlit->Running()) {
    EXPECT_TRUE(PointerBecomesFree()) << "the pointer stays grabbed";
    gromlit->Kill(SIGTERM);
    gromlit->Wait();
  }
  const std::string output = GromlitOutput();
  EXPECT_EQ(output.find("ERROR: AddressSanitizer"), std::string::npos) << output;
  EXPECT_EQ(output.find("runtime error:"), std::string::npos) << output;
  manager.reset();
  player.reset();
  gromlit.reset();
  install.reset();
  server.reset();
}

void GromlitRun::WritePlugin(const std::string& classname, const std::vector<Action>& actions,
                             const std::string& appname, uint8_t manners) {
  GromlitPlugin plugin{};
  plugin.spare1 = manners;
  CopyText(plugin.appname, appname.empty() ? classname : appname);
  CopyText(plugin.classname, classname);
  for (const Action& from : actions) {
    auto* action = new GromlitAction{};
    CopyText(action->name, from.name);
    CopyText(action->sym.name, from.name);
    for (const Point& point : from.shape) {
      const int k = ++action->sym.npoints;
      action->sym.x[k] = static_cast<uint16_t>(point.x);
      action->sym.y[k] = static_cast<uint16_t>(point.y);
    }
    VectorToBitmap(&action->sym);
    for (const Command& command : from.commands) {
      action->cmds[action->ncmds++] = MakeCommand(command);
    }
    plugin.actions[plugin.nactions++] = action;
  }
  ASSERT_NE(UnLoadPlugin(&plugin, classname.c_str()), nullptr);
  for (int i = 0; i < plugin.nactions; i++) {
    for (uint32_t j = 0; j < plugin.actions[i]->ncmds; j++) {
      std::free(plugin.actions[i]->cmds[j]->text);
      delete plugin.actions[i]->cmds[j];
    }
    delete plugin.actions[i];
  }
}

void GromlitRun::WriteOptions(int button, int sensitivity) {
  GromlitUserOptions options{};
  DefaultUserOptions(&options);
  options.splash = 0;
  options.button = button;
  options.sensitivity = sensitivity;
  CopyText(options.urlcmd, "recorder url %s");
  CopyText(options.sndcmd, "recorder sound %s");
  ASSERT_EQ(SaveUserOptions(&options, defaultOptionFile), 1);
}

void GromlitRun::StartWindowManager(const std::string& name, const std::string& configuration) {
  manager_name = name;
  manager_configuration = configuration;
  manager = StartManager(player->display(), name, install->path(), configuration);
  ASSERT_NE(manager, nullptr) << name << " does not manage the screen: "
                              << ReadText(*install / "manager.log");
}

void GromlitRun::RestartWindowManager() {
  manager = nullptr;  // ends it, if it has not ended
  manager = std::make_unique<Process>(
      ManagerCommand(manager_name, install->path(), manager_configuration),
      *install / "manager.log");
}

void GromlitRun::StartGromlit(bool ready, std::vector<std::string> arguments) {
  std::vector<std::string> argv = {Built("gromlit")};
  if (arguments.empty()) arguments = {"-path", install->path()};
  argv.insert(argv.end(), arguments.begin(), arguments.end());
  const char* path = std::getenv("PATH");
  std::vector<std::string> environment = {"PATH=" + Built("tests") + ":" +
                                          (path != nullptr ? path : "")};
  if (!display_name.empty()) environment.push_back("DISPLAY=" + display_name);
  gromlit = std::make_unique<Process>(argv, *install / "gromlit.log", environment, install->path());
  if (ready) {
    ASSERT_TRUE(WaitFor([this] { return GromlitIsReady(); }, std::chrono::seconds(30)))
        << GromlitOutput();
  }
}

bool GromlitRun::GromlitIsReady() {
  XWindowAttributes attributes{};
  XGetWindowAttributes(player->display(), player->root(), &attributes);
  return (attributes.all_event_masks & SubstructureNotifyMask) != 0;
}

bool GromlitRun::Settle() {
  constexpr auto kAskAgain = std::chrono::milliseconds(100);
  Display* asker = player->display();
  if (question_ == None)
    question_ = XCreateSimpleWindow(asker, player->root(), -5, -5, 1, 1, 0, 0, 0);
  // By the property the answer to this question is told from those to earlier ones.
  const Atom answer = XInternAtom(asker, ("ANSWER_" + std::to_string(questions_++)).c_str(), False);
  const auto ask = [&] {
    XConvertSelection(asker, XInternAtom(asker, "_GROMLIT_S0", False),
                      XInternAtom(asker, "TIMESTAMP", False), answer, question_, CurrentTime);
    XFlush(asker);
  };
  ask();
  auto again = std::chrono::steady_clock::now() + kAskAgain;
  return WaitFor([&] {
    XEvent event;
    while (XCheckTypedWindowEvent(asker, question_, SelectionNotify, &event))
      if (event.xselection.property == answer) return true;
    // Nobody was there, or another client, which is silent.
    if (std::chrono::steady_clock::now() > again) {
      ask();
      again += kAskAgain;
    }
    return false;
  });
}

long GromlitRun::Resident() const {
  const std::string statm = ReadText("/proc/" + std::to_string(gromlit->pid()) + "/statm");
  long size = 0;
  long resident = 0;
  std::sscanf(statm.c_str(), "%ld %ld", &size, &resident);
  return resident * (sysconf(_SC_PAGESIZE) / 1024);
}

std::string GromlitRun::WhereItStands() {
  const std::string pid = std::to_string(gromlit->pid());
  std::string text = "wchan " + ReadText("/proc/" + pid + "/wchan") + "\n" +
                     ReadText("/proc/" + pid + "/syscall") + ReadText("/proc/" + pid + "/stack");
  const std::string file = *install / "where";
  Process debugger({"gdb", "-q", "-batch", "-p", pid, "-ex", "bt"}, file);
  debugger.Wait(std::chrono::seconds(30));
  text += ReadText(file);
  const Player::Pointer at = player->Where();
  char line[200];
  std::snprintf(line, sizeof line, "pointer at (%d, %d), state 0x%x, child 0x%lx\n", at.x, at.y,
                at.state, at.child);
  text += line;
  for (const Window window : ChildrenOf(player->display(), player->root())) {
    XWindowAttributes attributes{};
    if (XGetWindowAttributes(player->display(), window, &attributes) == 0 ||
        attributes.map_state != IsViewable)
      continue;
    std::snprintf(line, sizeof line, "window 0x%lx %dx%d+%d+%d%s\n", window, attributes.width,
                  attributes.height, attributes.x, attributes.y,
                  attributes.override_redirect ? ", no frame" : "");
    text += line;
  }
  return text + GromlitOutput();
}

void GromlitRun::Go(Point to) {
  move_hand(to);
  EXPECT_TRUE(WaitFor([&] {
    const Player::Pointer at = player->Where();
    return at.x == to.x && at.y == to.y;
  })) << "the pointer does not move";
}

void GromlitRun::Trace(const std::vector<Point>& corners, int step) {
  for (size_t i = 1; i < corners.size(); i++) {
    const Point from = corners[i - 1];
    const Point to = corners[i];
    const int longest = std::max(std::abs(to.x - from.x), std::abs(to.y - from.y));
    const int steps = std::max(1, longest / step);
    for (int k = 1; k <= steps; k++) {
      Go({from.x + (to.x - from.x) * k / steps, from.y + (to.y - from.y) * k / steps});
    }
  }
}

void GromlitRun::DrawOnly(const std::vector<Point>& corners, int button, int step) {
  Go(corners[0]);
  player->Press(button);
  Trace(corners, step);
  EXPECT_TRUE(WaitFor([this] { return !MappedOverlays().empty(); })) << "no trail";
  player->Release(button);
}

void GromlitRun::Draw(const std::vector<Point>& corners, int button, int step) {
  DrawOnly(corners, button, step);
  EXPECT_TRUE(WaitFor([this] { return MappedOverlays().empty(); })) << "the trail stays";
}

bool GromlitRun::PointerBecomesFree() {
  return WaitFor([this] { return player->CanGrabPointer(); });
}

std::vector<Window> GromlitRun::Overlays() {
  std::vector<Window> overlays;
  for (const Window window : ChildrenOf(player->display(), player->root())) {
    XWindowAttributes attributes{};
    if (XGetWindowAttributes(player->display(), window, &attributes) != 0 &&
        attributes.override_redirect && attributes.map_state == IsViewable &&
        attributes.c_class == InputOutput) {
      overlays.push_back(window);
    }
  }
  return overlays;
}

std::vector<Window> GromlitRun::MappedOverlays() {
  std::vector<Window> overlays = Overlays();
  std::erase_if(overlays, [this](Window window) {
    XWindowAttributes attributes{};
    return XGetWindowAttributes(player->display(), window, &attributes) == 0 ||
           attributes.width < 500;
  });
  return overlays;
}

Window GromlitRun::MainWindow() {
  return FindClient(player->display(), "Gromlit.Application", false);
}

Window GromlitRun::HideMainWindow() {
  Window main = 0;
  // A window manager that just puts it into its frame hides it from a search.
  EXPECT_TRUE(WaitFor([&] { return (main = MainWindow()) != 0; }));
  const auto in_state = [&](int state) {
    XWindowAttributes attributes{};
    XGetWindowAttributes(player->display(), main, &attributes);
    return attributes.map_state == state;
  };
  // Not before it has come: a window manager takes its time.
  EXPECT_TRUE(WaitFor([&] { return in_state(IsViewable); }));
  XWithdrawWindow(player->display(), main, 0);
  // A window manager is done with it, and has given the keyboard to another window, when it is back
  // on the root window.
  EXPECT_TRUE(WaitFor([&] {
    const auto children = ChildrenOf(player->display(), player->root());
    return in_state(IsUnmapped) &&
           std::find(children.begin(), children.end(), main) != children.end();
  }));
  return main;
}

Command GromlitRun::Touch(const std::string& name) const {
  return {kRun, "touch " + MarkFile(name)};
}

bool GromlitRun::Appears(const std::string& name) {
  return WaitFor([&] { return Exists(MarkFile(name)); });
}

}  // namespace gromlit::testing
