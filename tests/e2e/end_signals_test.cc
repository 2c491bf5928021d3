// A signal that ends the program, wherever it stands: the keyboard and the pointer are the user's
// again, and the parent sees which signal it was.
#include "tests/e2e/front_end.h"

namespace gromlit {
namespace {

using testing::kRight;
using testing::Point;
using testing::ProbeClient;
using testing::Title;
using testing::WaitFor;

struct Standing {
  const char* name;
  int signal;
};

void PrintTo(const Standing& standing, std::ostream* out) {
  *out << standing.name;
}

class EndSignalsTest : public testing::FrontEnd, public ::testing::WithParamInterface<Standing> {
 protected:
  // Who has the keyboard. A window that went while it had it leaves PointerRoot or nobody (0).
  Window Focus() {
    Window focus = 0;
    int revert;
    XGetInputFocus(player->display(), &focus, &revert);
    return focus;
  }
  // Takes the keyboard for a field of the preferences from the probe that has it.
  void EnterField() {
    Choose(Title::kOptions, testing::kPreferences);
    preferences_ = WaitShown("Preferences");
    ASSERT_NE(preferences_, 0u);
    // Off the main window; no window manager is there to do it.
    XMoveWindow(player->display(), preferences_, 650, 100);
    ASSERT_TRUE(WaitFor([this] { return OriginOf(preferences_).x >= 650; }));
    field_ = 0;
    for (const Window child : Children(preferences_)) {
      const testing::Box box = BoxOf(child);
      if (box.width == 50 || box.width > 200) field_ = child;
    }
    Enter(field_);
    ASSERT_TRUE(WaitFor([this] { return Focus() == field_; }));
  }
  void Reach(const std::string& standing) {
    if (standing == "Idle") return;
    if (standing == "Menu") {
      PressTitle(Title::kHelp);
    } else if (standing == "Stroke") {
      Go({800, 900});
      player->Press(3);
      Trace({{800, 900}, {900, 900}});
      EXPECT_TRUE(WaitFor([this] { return !MappedOverlays().empty(); }));
    } else if (standing == "Action") {
      DrawOnly({{800, 900}, {1100, 900}});
      EXPECT_TRUE(Appears("started"));
    } else if (standing == "Pick") {
      StartPicking();
    } else if (standing == "Pulldown") {
      PressPulldown(WaitChild(preferences_, 16, 100));
    } else if (standing == "Popup") {
      OpenPopup(0);
    } else if (standing == "Button") {
      const Window ok = WaitChild(preferences_, 560 - 160, BoxOf(preferences_).height - 40);
      EXPECT_TRUE(PressesAndSees(ok, {30, 12}));
    } else if (standing == "Thumb") {
      EXPECT_TRUE(PressesAndSees(Scrollbar(), {7, 20}, 10));
      EXPECT_TRUE(PressesAndSees(Scrollbar(), {7, 30}, 10));
    } else if (standing == "Arrow") {
      HoldBottom(7);
    } else if (standing == "Trough") {
      HoldBottom(20);
    }
  }
  // Of the main window.
  Window Scrollbar() {
    const Window main = MainWindow();
    return WaitChild(main, BoxOf(main).width - 15 - 4, Cell(0).y - 24);
  }
  // Presses where a widget is, unless button 1 is down there, goes so far down, and sees the widget
  // change.
  bool PressesAndSees(Window widget, Point at, int down = 0) {
    const std::string before = Look(widget);
    if ((player->Where().state & Button1Mask) == 0) {
      if (!Over(widget, at.x, at.y)) return false;
      player->Press(1);
    }
    const Point origin = OriginOf(widget);
    player->MoveTo(origin.x + at.x, origin.y + at.y + down);
    return WaitFor([&] { return Look(widget) != before; });
  }
  // Holds the scrollbar so far above its lower end, until it has begun to repeat.
  void HoldBottom(int above) {
    const Window bar = Scrollbar();
    EXPECT_TRUE(PressesAndSees(bar, {7, BoxOf(bar).height - above}));
    const std::string first = Look(bar);
    EXPECT_TRUE(WaitFor([&] { return Look(bar) != first; })) << "it does not repeat";
  }

  Window preferences_ = 0;
  Window field_ = 0;
};

TEST_P(EndSignalsTest, GivesKeyboardAndPointerBack) {
  std::vector<testing::Command> commands = {Touch("started")};
  commands.insert(commands.end(), 40, {kRun, "system:wait"});
  // So many that the scrollbar has a way to go.
  std::vector<testing::Action> actions(60, {"up", testing::kUp, {}});
  actions[0] = {"right", kRight, commands};
  for (const char* name : {"Default", "Desktop"}) WritePlugin(name, actions);
  ProbeClient probe(install->path(),
                    {"--class", "Probe", "probe", "--geometry", "300x150+950+700"});
  LaunchInstalled();
  XSetInputFocus(player->display(), probe.window(), RevertToPointerRoot, CurrentTime);
  EnterField();
  if (HasFailure()) return;
  Reach(GetParam().name);
  if (HasFailure()) return;
  ASSERT_EQ(Focus(), field_) << "the field has lost the keyboard before";

  gromlit->Kill(GetParam().signal);
  // An action that is under way, ten seconds long, is not waited for.
  EXPECT_EQ(gromlit->Wait(std::chrono::seconds(8)), 128 + GetParam().signal);
  EXPECT_TRUE(WaitFor([this] { return !GromlitIsReady(); }));
  EXPECT_EQ(Focus(), probe.window());
  for (int button = 1; button <= 3; button++) player->Release(button);
  EXPECT_TRUE(PointerBecomesFree());
  Go({500, 500});
}

INSTANTIATE_TEST_SUITE_P(Everywhere, EndSignalsTest,
                         ::testing::Values(Standing{"Idle", SIGTERM}, Standing{"Idle", SIGINT},
                                           Standing{"Idle", SIGHUP}, Standing{"Menu", SIGTERM},
                                           Standing{"Stroke", SIGTERM}, Standing{"Action", SIGTERM},
                                           Standing{"Pick", SIGTERM}, Standing{"Pulldown", SIGTERM},
                                           Standing{"Popup", SIGTERM}, Standing{"Button", SIGTERM},
                                           Standing{"Thumb", SIGTERM}, Standing{"Thumb", SIGINT},
                                           Standing{"Thumb", SIGHUP}, Standing{"Arrow", SIGTERM},
                                           Standing{"Trough", SIGTERM}),
                         [](const ::testing::TestParamInfo<Standing>& standing) {
                           return std::string(standing.param.name) +
                                  std::to_string(standing.param.signal);
                         });

// A window manager that looks at presses on the program's windows before those get them, and has
// not come to this one yet: what the hand does meanwhile waits in the server, a press of the draw
// button too. The end of the program destroys the window, and all that comes out while the server
// still clears up behind the program.
class EndWhileAManagerLooksTest : public testing::FrontEnd,
                                  public ::testing::WithParamInterface<bool> {};

TEST_P(EndWhileAManagerLooksTest, APressThatWaitedDoesNotKeepThePointer) {
  DesktopTouches("acted");
  LaunchInstalled();
  const Window main = MainWindow();
  const Point origin = OriginOf(main);
  // The server clears up in an order of its own. Each action gives the grab another place in it,
  // and after so many it comes behind the window.
  for (int i = 0; i < 25; i++) ASSERT_TRUE(DesktopActs("acted"));
  XGrabButton(player->display(), 1, AnyModifier, main, False, ButtonPressMask, GrabModeSync,
              GrabModeAsync, None, None);
  Go({origin.x + 200, origin.y + 300});
  player->Click(1);
  player->Click(3);
  const Point last{origin.x + 500, origin.y + 350};
  player->MoveTo(last.x, last.y);
  ASSERT_EQ(player->Where().x, origin.x + 200) << "nothing waits";

  if (GetParam()) {
    gromlit->Kill(SIGTERM);
  } else {
    ASSERT_EQ(testing::Process({testing::Built("gromlit"), "-remote", "quit"}).Wait(), 0);
  }
  EXPECT_NE(gromlit->Wait(), -1);
  EXPECT_TRUE(WaitFor([&] { return player->Where().x == last.x; })) << "the pointer is frozen";
  EXPECT_EQ(player->Where().state, 0u);
  EXPECT_TRUE(PointerBecomesFree());
}

INSTANTIATE_TEST_SUITE_P(Ways, EndWhileAManagerLooksTest, ::testing::Values(false, true),
                         [](const ::testing::TestParamInfo<bool>& way) {
                           return way.param ? "BySignal" : "ByExit";
                         });

using EndSignalsIgnoredTest = testing::ShellRun;

TEST_F(EndSignalsIgnoredTest, ATerminalThatGoesDoesNotEndAProgramThatWasToldToSurviveIt) {
  DesktopTouches("acted");
  LaunchInstalled({.before = "trap '' HUP;"});
  gromlit->Kill(SIGHUP);
  EXPECT_TRUE(DesktopActs("acted"));
  EXPECT_TRUE(gromlit->Running());
}

TEST_F(EndSignalsIgnoredTest, AServerThatDoesNotAnswerKeepsTheProgramFromNothing) {
  DesktopTouches("acted");
  LaunchInstalled();
  XGrabServer(player->display());
  XSync(player->display(), False);
  gromlit->Kill(SIGTERM);
  EXPECT_EQ(gromlit->Wait(std::chrono::seconds(30)), 128 + SIGTERM);
  XUngrabServer(player->display());
  XSync(player->display(), False);
}

}  // namespace
}  // namespace gromlit
