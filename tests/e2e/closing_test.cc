// What the main window shows after one of the program's windows has gone from the screen, and where
// the action editor says that an action goes.
#include "tests/e2e/front_end.h"

#include <X11/Xutil.h>
#include <signal.h>

namespace gromlit {
namespace {

using testing::Box;
using testing::kEll;
using testing::kRight;
using testing::Point;
using testing::ProbeClient;
using testing::Title;
using testing::WaitFor;

// The parameter is the window manager; empty for none.
class ClosingTest : public testing::FrontEnd, public ::testing::WithParamInterface<const char*> {
 protected:
  void SetUp() override {
    FrontEnd::SetUp();
    if (*GetParam() != '\0') StartWindowManager(GetParam());
    WriteOptions();
    WritePlugin("Probe.probe", {{"Below", kRight, {{kRun, "true"}}}}, "Below the windows");
    WritePlugin("Wanted", {{"Right", kRight, {{kRun, "true"}}}}, "The wanted one");
    WritePlugin("Default", {});
    // All of the screen but the main window's place.
    probe_ = std::make_unique<ProbeClient>(
        install->path(),
        std::vector<std::string>{"--class", "Probe", "probe", "--geometry", "700x900+560+60"});
    LaunchInstalled();
    main_ = WaitShown("Application");
    ASSERT_NE(main_, Window{0});
    XMoveWindow(player->display(), main_, 20, 40);
    ASSERT_TRUE(WaitFor([this] { return OriginOf(main_).y < 100; }));
    // A hand goes over the application before it chooses.
    ASSERT_TRUE(PassOver(probe_->window(), [this] { return HasIcon(0); }));
    ChoosePulldown(PluginButton(), "The wanted one");
    ASSERT_TRUE(WaitFor([this] { return Reads(PluginButton(), "The wanted one"); }));
  }
  void TearDown() override {
    if (HasFailure()) {
      if (const char* directory = std::getenv("GROMLIT_SCREENSHOTS"))
        testing::SaveScreen(player->display(), std::string(directory) + "/closing.png");
    }
    FrontEnd::TearDown();
  }

  // Opens a window and puts it over the application.
  Window Open(const char* name, Title title, int row) {
    Choose(title, row);
    const Window window = WaitShown(name);
    XMoveWindow(player->display(), window, 600, 200);
    EXPECT_TRUE(WaitFor([&] { return OriginOf(window).x > 560; }));
    return window;
  }
  // The main window must still show what was chosen when the application below has been uncovered
  // and its news has been read. A menu of the main window that comes up proves that.
  void ExpectTheWantedOne(const std::string& what) {
    EXPECT_TRUE(WaitFor([this] { return UnderPointer() == probe_->window(); }))
        << what << ": the application is not uncovered";
    EXPECT_TRUE(MenuBarAnswers()) << what;
    EXPECT_TRUE(Reads(PluginButton(), "The wanted one")) << what;
  }
  // Sends the main window a press and a release as a pointer on its menu bar would give, without
  // moving the pointer.
  bool MenuBarAnswers() {
    const Window bar = WaitChild(main_, 0, 0);
    XEvent event{};
    event.xbutton.type = ButtonPress;
    event.xbutton.window = bar;
    event.xbutton.root = player->root();
    event.xbutton.button = 1;
    event.xbutton.x = 12;
    event.xbutton.y = 8;
    XSendEvent(player->display(), bar, False, ButtonPressMask, &event);
    XSync(player->display(), False);
    Window menu = 0;
    const bool opened = WaitFor([&] { return (menu = Menu()) != 0; });
    event.xbutton.type = ButtonRelease;
    event.xbutton.state = Button1Mask;
    XSendEvent(player->display(), bar, False, ButtonReleaseMask, &event);
    XSync(player->display(), False);
    return opened && WaitFor([&] { return !Viewable(menu); });
  }

  // The lines below the help of the action editor.
  static constexpr const char* kNeverRuns = "This action will never run:";
  bool NoticeReads(Window editor, const std::string& text, int line = 0) {
    const int x = BoxOf(TabBar(editor)).width + 32;
    const int baseline = 2 * TextHeight() + 148 + (12 + line) * TextHeight();
    return LineReads(editor, x, baseline, text, x, x + TextWidth(text));
  }

  std::unique_ptr<ProbeClient> probe_;
  Window main_ = 0;
};

TEST_P(ClosingTest, ClosingAnEditorSwitchesNothing) {
  const Window action = Open("ActionEditor", Title::kAction, testing::kActionNew);
  ClickChild(action, 560 - 80, BoxOf(action).height - 40);
  ASSERT_TRUE(WaitHidden("ActionEditor"));
  ExpectTheWantedOne("Cancel of the action editor");

  Open("ActionEditor", Title::kAction, testing::kActionNew);
  ClickChild(action, 560 - 160, BoxOf(action).height - 40);
  ASSERT_TRUE(WaitHidden("ActionEditor"));
  ExpectTheWantedOne("OK of the action editor");
  EXPECT_TRUE(WaitFor([this] { return HasName(1); })) << "the new action went elsewhere";

  const Window symbol = Open("SymbolEditor", Title::kSymbol, testing::kSymbolNew);
  ClickChild(symbol, 480, 414);
  ASSERT_TRUE(WaitHidden("SymbolEditor"));
  ExpectTheWantedOne("Cancel of the symbol editor");

  const Window preferences = Open("Preferences", Title::kOptions, testing::kPreferences);
  const Box box = BoxOf(preferences);
  ClickChild(preferences, box.width - 80, box.height - 40);
  ASSERT_TRUE(WaitHidden("Preferences"));
  ExpectTheWantedOne("Cancel of the preferences");

  // Following is as before once the pointer goes on.
  ASSERT_TRUE(PassOver(probe_->window(), [this] {
    return Reads(PluginButton(), "Below the windows");
  })) << "the pointer is not followed any more";
}

// The manager stands still for a while.
class SlowManagerTest : public ClosingTest {};

TEST_P(SlowManagerTest, AFrameThatGoesLateSwitchesNothingAlthoughTheHandMoves) {
  const Window action = Open("ActionEditor", Title::kAction, testing::kActionNew);
  const Window cancel = WaitChild(action, 560 - 80, BoxOf(action).height - 40);
  ASSERT_TRUE(Over(cancel, 30, 12));
  const std::string raised = Look(cancel);
  player->Press(1);
  ASSERT_TRUE(WaitFor([&] { return Look(cancel) != raised; }));
  const Window frame = player->Where().child;
  manager->Kill(SIGSTOP);
  player->Release(1);
  ASSERT_TRUE(WaitFor([&] { return !Viewable(action); }));
  // Up and down within the empty frame, whose title is a window of its own, and back into it.
  const testing::Player::Pointer at = player->Where();
  const Point top = OriginOf(frame);
  Trace({{at.x, at.y}, {at.x - 60, top.y + 6}, {at.x - 90, at.y - 60}});
  ASSERT_EQ(player->Where().child, frame);
  EXPECT_TRUE(MenuBarAnswers());
  EXPECT_TRUE(Reads(PluginButton(), "The wanted one")) << "switched by the empty frame";
  manager->Kill(SIGCONT);
  ExpectTheWantedOne("the frame has gone");

  // Out of a frame that is still there the hand comes into the application by itself.
  Open("ActionEditor", Title::kAction, testing::kActionNew);
  ASSERT_TRUE(Over(cancel, 30, 12));
  player->Press(1);
  ASSERT_TRUE(WaitFor([&] { return Look(cancel) != raised; }));
  manager->Kill(SIGSTOP);
  player->Release(1);
  ASSERT_TRUE(WaitFor([&] { return !Viewable(action); }));
  const Point bottom = {player->Where().x, OriginOf(probe_->window()).y + 890};
  Trace({{bottom.x, player->Where().y}, bottom});
  ASSERT_EQ(UnderPointer(), probe_->window());
  // A manager that composes the screen's picture shows nothing new until it goes on.
  manager->Kill(SIGCONT);
  EXPECT_TRUE(WaitFor([this] { return Reads(PluginButton(), "Below the windows"); }));
}

TEST_P(ClosingTest, TheActionEditorNamesThePlugInAndAnEarlierActionThatTakesEverything) {
  Choose(Title::kAction, testing::kActionNew);
  const Window editor = WaitShown("ActionEditor");
  EXPECT_TRUE(WaitFor([&] {
    const int x = 16 + TextWidth("Edit PlugIn Action:") + 6;
    const std::string name = "The wanted one";
    return LineReads(editor, x, 96, name, x, x + TextWidth(name));
  }));
  EXPECT_FALSE(NoticeReads(editor, kNeverRuns)) << "no symbol, no stroke";
  ClickChild(editor, 560 - 80, BoxOf(editor).height - 40);
  ASSERT_TRUE(WaitHidden("ActionEditor"));

  MakeSymbol("Ell", kEll);
  MakeSymbol("Bar", kRight);
  Choose(Title::kAction, testing::kActionNew);
  ASSERT_EQ(WaitShown("ActionEditor"), editor);
  // The symbol made last comes first: that of the action that is there.
  EXPECT_TRUE(WaitFor([&] { return NoticeReads(editor, kNeverRuns); }));
  EXPECT_TRUE(NoticeReads(editor, "\"Right\"", 1));
  if (const char* directory = std::getenv("GROMLIT_SCREENSHOTS"))
    testing::SaveScreen(player->display(), std::string(directory) + "/never-runs.png");
  const int width = BoxOf(TabBar(editor)).width;
  ClickIn(WaitChild(editor, width + 128 + 48, 100), 20, 20);
  ChooseSymbol(1);
  EXPECT_TRUE(WaitFor([&] { return !NoticeReads(editor, kNeverRuns); }));
  ClickIn(WaitChild(editor, width + 128 + 48, 100), 20, 20);
  ChooseSymbol(0);
  EXPECT_TRUE(WaitFor([&] { return NoticeReads(editor, kNeverRuns); }));
}

INSTANTIATE_TEST_SUITE_P(Managers, ClosingTest, ::testing::Values("", "openbox", "twm"));
INSTANTIATE_TEST_SUITE_P(Managers, SlowManagerTest,
                         ::testing::Values("openbox", "twm", "icewm", "xfwm4"));

}  // namespace
}  // namespace gromlit
