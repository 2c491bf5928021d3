// Actions on the window under the stroke, and its activation, with several window managers.
#include "tests/e2e/shell_run.h"

#include <X11/Xatom.h>
#include <X11/Xutil.h>

#include <algorithm>

#include "core/option_files.h"

namespace gromlit {
namespace {

using testing::kDown;
using testing::kRight;
using testing::Point;
using testing::ProbeClient;
using testing::WaitFor;

constexpr int kKeyA = 38;  // key code of the usual keymap

class WindowActionsTest : public testing::ShellRun {
 protected:
  void Choose(int32_t behaviour, int32_t delivery = 0) {
    GromlitUserOptions options{};
    DefaultUserOptions(&options);
    options.splash = 0;
    options.temp1 = delivery;
    options.temp2 = behaviour;
    ASSERT_EQ(SaveUserOptions(&options, defaultOptionFile), 1);
  }
  std::unique_ptr<ProbeClient> StartProbe(const std::string& name = "Probe",
                                          const std::string& geometry = "600x400+300+250") {
    return std::make_unique<ProbeClient>(
        install->path(), std::vector<std::string>{"--class", name, name, "--geometry", geometry});
  }
  Display* display() { return player->display(); }
  Atom AtomOf(const char* name) { return XInternAtom(display(), name, False); }
  std::vector<unsigned long> Numbers(Window window, const char* name) {
    Atom type;
    int format;
    unsigned long count = 0;
    unsigned long left;
    unsigned char* data = nullptr;
    if (XGetWindowProperty(display(), window, AtomOf(name), 0, 1024, False, AnyPropertyType, &type,
                           &format, &count, &left, &data) != 0 ||
        format != 32)
      return {};
    const auto* numbers = reinterpret_cast<const unsigned long*>(data);
    std::vector<unsigned long> values(numbers, numbers + count);
    XFree(data);
    return values;
  }
  bool HasState(Window window, const char* state) {
    const auto states = Numbers(window, "_NET_WM_STATE");
    return std::find(states.begin(), states.end(), AtomOf(state)) != states.end();
  }
  unsigned long Number(Window window, const char* name) {
    const auto numbers = Numbers(window, name);
    return numbers.empty() ? 0xdead : numbers[0];
  }
  Window Focus() {
    Window focus;
    int revert;
    XGetInputFocus(display(), &focus, &revert);
    return focus;
  }
  // How many desktops the manager has, once it has told.
  unsigned long Desktops() {
    unsigned long count = 0;
    EXPECT_TRUE(WaitFor([&] {
      count = Number(player->root(), "_NET_NUMBER_OF_DESKTOPS");
      return count >= 2 && count < 100 && Number(player->root(), "_NET_CURRENT_DESKTOP") == 0;
    })) << manager_name;
    return count;
  }
  // Other managers than openbox have large windows of their own on the screen, and listen to the
  // root window as the program does.
  void Launch() {
    gromlit = Start({"-path", install->path()});
    ASSERT_TRUE(WaitFor([this] { return Shown(main_ = MainWindow()); }, std::chrono::seconds(60)));
    // Each manager puts it where it likes, over the probe, say. A manager that is still framing it
    // may miss that it goes, so it is asked until the frame is gone: the window is back on the
    // root.
    ASSERT_TRUE(WaitFor([this] {
      XWithdrawWindow(display(), main_, 0);
      return WaitFor(
          [this] {
            const auto children = testing::ChildrenOf(display(), player->root());
            return !Shown(main_) &&
                   std::find(children.begin(), children.end(), main_) != children.end();
          },
          std::chrono::seconds(1));
    }));
  }
  void Stop() {
    gromlit->Kill(SIGTERM);
    gromlit->Wait(std::chrono::seconds(60));
    EXPECT_TRUE(WaitFor([this] { return MainWindow() == 0; }));
  }
  Window main_ = 0;
  bool Shown(Window window) {
    XWindowAttributes attributes{};
    return window != 0 && XGetWindowAttributes(display(), window, &attributes) != 0 &&
           attributes.map_state == 2;
  }
  // Whether an overlay of the program's own, not of a window manager, is on the screen.
  bool TrailShows() {
    const std::vector<Window> overlays = MappedOverlays();
    return std::any_of(overlays.begin(), overlays.end(),
                       [this](Window window) { return window >> 21 == main_ >> 21; });
  }
  // Returns when the program is ready for the next stroke.
  void DrawHere(const std::vector<Point>& corners) {
    Go(corners[0]);
    player->Press(3);
    Trace(corners);
    EXPECT_TRUE(WaitFor([this] { return TrailShows(); })) << "no trail";
    player->Release(3);
    EXPECT_TRUE(WaitFor([this] { return !TrailShows(); })) << "the trail stays";
  }
  // A stroke over the probe whose action is this one Run command.
  void Do(const std::string& text) {
    WritePlugin("Probe.Probe", {{"right", kRight, {{kRun, text}}}});
    Launch();
    Again();
  }
  void Again() { DrawHere({{450, 450}, {700, 450}}); }

  // Every keyword with one window manager.
  void Everything(const std::string& wm) {
    SCOPED_TRACE(wm);
    StartWindowManager(wm);
    const unsigned long last = Desktops() - 1;
    auto probe = StartProbe();
    const Window window = probe->window();
    struct Way {
      std::string text;
      std::vector<const char*> states;
    };
    for (const Way& way : std::vector<Way>{
             {"system:maximize", {"_NET_WM_STATE_MAXIMIZED_VERT", "_NET_WM_STATE_MAXIMIZED_HORZ"}},
             {"system:fullscreen", {"_NET_WM_STATE_FULLSCREEN"}},
             {"system:above", {"_NET_WM_STATE_ABOVE"}}}) {
      const auto& states = way.states;
      SCOPED_TRACE(way.text);
      for (const char* state : states) EXPECT_FALSE(HasState(window, state)) << state;
      Do(way.text);
      EXPECT_TRUE(WaitFor([&] {
        return std::all_of(states.begin(), states.end(),
                           [&](const char* state) { return HasState(window, state); });
      }));
      Again();
      EXPECT_TRUE(WaitFor([&] {
        return std::none_of(states.begin(), states.end(),
                            [&](const char* state) { return HasState(window, state); });
      }));
      Stop();
    }
    Do("system:window-to-desktop-previous");
    EXPECT_TRUE(WaitFor([&] { return Number(window, "_NET_WM_DESKTOP") == last; }))
        << Number(window, "_NET_WM_DESKTOP");
    EXPECT_EQ(Number(player->root(), "_NET_CURRENT_DESKTOP"), 0u);
    Stop();
    probe = StartProbe();
    Do("system:window-to-desktop-next");
    EXPECT_TRUE(WaitFor([&] { return Number(probe->window(), "_NET_WM_DESKTOP") == 1; }))
        << Number(probe->window(), "_NET_WM_DESKTOP");
    Stop();
    probe = StartProbe();
    const Window other = probe->window();
    Do("system:desktop-next");
    EXPECT_TRUE(WaitFor([&] { return Number(player->root(), "_NET_CURRENT_DESKTOP") == 1; }));
    Stop();
    // Over the bare desktop the desktop can be changed, too.
    WritePlugin("Desktop", {{"right", kRight, {{kRun, "system:desktop-previous"}}}});
    Launch();
    for (const unsigned long desktop : {0UL, last, last - 1}) {
      DrawHere({{1000, 900}, {1200, 900}});
      EXPECT_TRUE(WaitFor([&] {
        return Number(player->root(), "_NET_CURRENT_DESKTOP") == desktop;
      })) << desktop;
    }
    Stop();
    WritePlugin("Desktop", {{"right", kRight, {{kRun, "system:desktop-next"}}}});
    Launch();
    for (const unsigned long desktop : {last, 0UL}) {
      DrawHere({{1000, 900}, {1200, 900}});
      EXPECT_TRUE(WaitFor([&] {
        return Number(player->root(), "_NET_CURRENT_DESKTOP") == desktop;
      })) << desktop;
    }
    Stop();
    Do("system:minimize");
    EXPECT_TRUE(WaitFor([&] { return Number(other, "WM_STATE") == IconicState; }));
    Stop();
    probe = StartProbe();
    Do("system:close");
    EXPECT_TRUE(WaitFor(
        [&] { return !probe->process().Running() || !probe->Lines("ClientMessage").empty(); }));
    EXPECT_EQ(Err(), "");
  }
};

TEST_F(WindowActionsTest, Openbox) {
  Everything("openbox");
}

TEST_F(WindowActionsTest, Icewm) {
  Everything("icewm");
}

TEST_F(WindowActionsTest, Xfwm4) {
  Everything("xfwm4");
}

TEST_F(WindowActionsTest, ManagerThatCannotIsNamed) {
  StartWindowManager("twm");
  const auto probe = StartProbe();
  Do("system:above");
  EXPECT_TRUE(WaitFor([&] { return !Err().empty(); }));
  EXPECT_EQ(Err(), "The window manager cannot do system:above.\n");
}

TEST_F(WindowActionsTest, MinimizeNeedsNoneOfTheNewerConventions) {
  StartWindowManager("twm");
  const auto probe = StartProbe();
  Do("system:minimize");
  EXPECT_TRUE(WaitFor([&] { return Number(probe->window(), "WM_STATE") == IconicState; }));
  EXPECT_EQ(Err(), "");
}

// Behind the keywords that are older, which count anywhere, and only as the whole text.
TEST_F(WindowActionsTest, KeywordWithMoreTextIsACommandLine) {
  StartWindowManager("openbox");
  const auto probe = StartProbe();
  Do("system:maximize now");
  EXPECT_TRUE(WaitFor([&] { return !Err().empty(); }));
  EXPECT_EQ(Err(), "Error in System Command: No such file or directory\n");
  EXPECT_FALSE(HasState(probe->window(), "_NET_WM_STATE_MAXIMIZED_VERT"));
}

// --- Activate first ----------------------------------------------------------------------------

class ActivateTest : public WindowActionsTest {
 protected:
  // A key drawn over a window that has no focus goes to that window.
  void KeysGoToTheWindowUnderTheStroke(const std::string& wm, int32_t delivery) {
    SCOPED_TRACE(wm + " " + std::to_string(delivery));
    Choose(kActivateFirst, delivery);
    WritePlugin("Probe.Probe", {{"right", kRight, {{kHotKey, "a", kKeyA, 0}}}});
    if (!wm.empty()) StartWindowManager(wm);
    const auto probe = StartProbe();
    const auto other = StartProbe("Other", "200x150+950+650");
    Launch();
    for (int i = 1; i <= 3; i++) {
      XSetInputFocus(display(), other->window(), RevertToPointerRoot, CurrentTime);
      ASSERT_TRUE(WaitFor([&] { return Focus() == other->window(); }));
      Again();
      probe->Wait(2 * static_cast<size_t>(i), "Key");
      EXPECT_TRUE(WaitFor([&] { return Focus() == probe->window(); }));
    }
    EXPECT_TRUE(other->Lines("Key").empty());
    Stop();
  }
};

TEST_F(ActivateTest, Openbox) {
  KeysGoToTheWindowUnderTheStroke("openbox", 0);
}

TEST_F(ActivateTest, OpenboxRealInput) {
  KeysGoToTheWindowUnderTheStroke("openbox", 1);
}

TEST_F(ActivateTest, Icewm) {
  KeysGoToTheWindowUnderTheStroke("icewm", 1);
}

TEST_F(ActivateTest, Xfwm4) {
  KeysGoToTheWindowUnderTheStroke("xfwm4", 1);
}

TEST_F(ActivateTest, Twm) {
  KeysGoToTheWindowUnderTheStroke("twm", 1);
}

TEST_F(ActivateTest, NoWindowManager) {
  KeysGoToTheWindowUnderTheStroke("", 1);
}

TEST_F(ActivateTest, WindowThatTakesNoFocusHoldsNothingUp) {
  Choose(kActivateFirst);
  WritePlugin("Probe.Probe", {{"right", kRight, {{kHotKey, "a", kKeyA, 0}}}});
  StartWindowManager("openbox");
  const ProbeClient shy(install->path(), {"--class", "Probe", "Probe", "--geometry",
                                          "600x400+300+250", "--no-input"});
  const auto other = StartProbe("Other", "200x150+950+650");
  Launch();
  XSetInputFocus(display(), other->window(), RevertToPointerRoot, CurrentTime);
  ASSERT_TRUE(WaitFor([&] { return Focus() == other->window(); }));
  Again();
  EXPECT_EQ(other->Wait(2, "Key").size(), 2u) << "who has the keyboard gets the key";
}

TEST_F(ActivateTest, NotChosenNotDone) {
  Choose(0);
  WritePlugin("Probe.Probe", {{"right", kRight, {{kHotKey, "a", kKeyA, 0}}}});
  StartWindowManager("openbox");
  const auto probe = StartProbe();
  const auto other = StartProbe("Other", "200x150+950+650");
  Launch();
  XSetInputFocus(display(), other->window(), RevertToPointerRoot, CurrentTime);
  ASSERT_TRUE(WaitFor([&] { return Focus() == other->window(); }));
  Again();
  EXPECT_EQ(other->Wait(2, "Key").size(), 2u);
  EXPECT_TRUE(probe->Lines("Key").empty());
}

}  // namespace
}  // namespace gromlit
