// Applications in the frames of window managers: whatever a frame is called, the application in it
// is the one that counts, for strokes, clicks, pointer tracking and picking, and so are the
// program's own windows.
//
// openbox, twm, icewm and i3 must be there. The others are tried where they are installed.
#include "tests/e2e/front_end.h"

#include <X11/Xatom.h>

#include <filesystem>

namespace gromlit {
namespace {

namespace fs = std::filesystem;
using testing::kDown;
using testing::kRight;
using testing::Point;
using testing::ProbeClient;
using testing::ReadText;
using testing::Title;
using testing::WaitFor;

const std::vector<std::string> kNeeded = {"openbox", "twm", "icewm", "i3"};

bool Installed(const std::string& name) {
  std::string path = std::getenv("PATH") != nullptr ? std::getenv("PATH") : "";
  for (size_t start = 0; start <= path.size();) {
    const size_t end = std::min(path.find(':', start), path.size());
    if (fs::exists(fs::path(path.substr(start, end - start)) / name)) return true;
    start = end + 1;
  }
  return false;
}

class WindowManagersTest : public testing::FrontEnd,
                           public ::testing::WithParamInterface<const char*> {
 protected:
  void SetUp() override {
    FrontEnd::SetUp();
    const std::string name = GetParam();
    const bool needed = std::find(kNeeded.begin(), kNeeded.end(), name) != kNeeded.end();
    if (!needed && !Installed(name)) GTEST_SKIP() << name << " is not installed";
    setenv("HOME", install->path().c_str(), 1);  // its configuration is the default one
    if (needed) {
      StartWindowManager(name, name == "i3" ? kIThree : "");
    } else {
      manager = testing::StartManager(player->display(), name, install->path());
      if (manager == nullptr)
        GTEST_SKIP() << name << " lacks something: " << ReadText(*install / "manager.log");
    }
    WritePlugin("Default", {{"right", kRight, {Touch("default")}}});
    // The plug-ins of what frames are called, for a program that takes them for applications.
    for (const char* frame : {"Frame", "Frame.Frame", "i3-frame.i3-frame"})
      WritePlugin(frame, {{"right", kRight, {Touch("frame")}}});
    WritePlugin("Upper.upper", {{"right", kRight, {Touch("upper")}}});
    WritePlugin("Lower.lower", {});
    upper_ = Client("Upper", "upper", "340x300+880+80");
    lower_ = Client("Lower", "lower", "340x300+880+500");
    LaunchInstalled();
    ASSERT_TRUE(WaitFor([this] { return (main_ = MainWindow()) != 0 && Viewable(main_); }));
  }
  void TearDown() override {
    const char* directory = std::getenv("GROMLIT_SCREENSHOTS");
    if (directory != nullptr && HasFailure()) {
      testing::SaveScreen(player->display(),
                          std::string(directory) + "/" + GetParam() + "-failed.png");
    }
    FrontEnd::TearDown();
  }

  std::unique_ptr<ProbeClient> Client(const char* classpart, const char* name,
                                      const char* geometry) {
    return std::make_unique<ProbeClient>(
        install->path(),
        std::vector<std::string>{"--class", classpart, name, "--geometry", geometry});
  }
  // The program's trail. The frames of the window manager may look like one.
  bool TrailShown() {
    const std::vector<Window> overlays = MappedOverlays();
    return std::any_of(overlays.begin(), overlays.end(), [this](Window window) {
      constexpr Window kClient = ~Window{0x1fffff};  // of an id: whose it is
      return (window & kClient) == (main_ & kClient);
    });
  }
  // From a point of a window's inside to the right.
  void Stroke(Window window, int x, int y) {
    const Point origin = OriginOf(window);
    Go({origin.x + x, origin.y + y});
    player->Press(3);
    Trace({{origin.x + x, origin.y + y}, {origin.x + x + 160, origin.y + y}});
    EXPECT_TRUE(WaitFor([this] { return TrailShown(); })) << "no trail";
    player->Release(3);
    EXPECT_TRUE(WaitFor([this] { return !TrailShown(); })) << "the trail stays";
    EXPECT_TRUE(PointerBecomesFree());
  }
  bool Happened(const char* name) { return testing::Exists(MarkFile(name)); }

  static constexpr const char* kIThree = "font fixed\nfocus_follows_mouse no\n";

  std::unique_ptr<ProbeClient> upper_;
  std::unique_ptr<ProbeClient> lower_;
  Window main_ = 0;
};

TEST_P(WindowManagersTest, StrokeIsTheApplicationsInTheFrame) {
  ASSERT_TRUE(Over(upper_->window(), 40, 100));
  Stroke(upper_->window(), 40, 100);
  EXPECT_TRUE(Appears("upper"));
  EXPECT_TRUE(upper_->Lines("Button").empty());
  EXPECT_FALSE(Happened("frame"));
  EXPECT_FALSE(Happened("default"));
}

TEST_P(WindowManagersTest, StrokeOnATitleIsTheApplications) {
  ASSERT_TRUE(Over(upper_->window(), 40, 100));  // it is at its place
  Stroke(upper_->window(), 60, -8);
  EXPECT_TRUE(Appears("upper"));
  EXPECT_FALSE(Happened("frame"));
  EXPECT_FALSE(Happened("default"));
}

TEST_P(WindowManagersTest, ClickReachesTheApplicationWhereItWasPressed) {
  ASSERT_TRUE(Over(upper_->window(), 40, 100));
  player->Click(3);
  const std::vector<std::string> lines = upper_->Wait(2, "Button");
  ASSERT_EQ(lines.size(), 2u);
  EXPECT_NE(lines[0].find("ButtonPress window=main button=3 state=0 x=40 y=100"), std::string::npos)
      << lines[0];
  EXPECT_NE(lines[1].find("ButtonRelease"), std::string::npos);
}

TEST_P(WindowManagersTest, StrokeOnTheProgramsOwnWindowRunsNothing) {
  ASSERT_TRUE(WaitFor([this] { return OriginOf(main_).x >= 0; }));
  Stroke(main_, 100, 300);
  Stroke(main_, 60, -8);  // its title
  ASSERT_TRUE(Over(upper_->window(), 40, 100));
  Stroke(upper_->window(), 40, 100);
  EXPECT_TRUE(Appears("upper"));
  EXPECT_FALSE(Happened("default"));
  EXPECT_FALSE(Happened("frame"));
  EXPECT_EQ(Dialog(), 0u) << "a plug-in is offered";
}

TEST_P(WindowManagersTest, TheMainWindowFollowsThePointer) {
  EXPECT_TRUE(PassOver(upper_->window(), [this] { return HasName(0); }));
  EXPECT_TRUE(PassOver(lower_->window(), [this] { return !HasName(0); }));
  EXPECT_TRUE(PassOver(upper_->window(), [this] { return HasName(0); }));
  // Over the program's own window it stays.
  ASSERT_TRUE(Over(main_, 1, 120));
  Go({OriginOf(main_).x + 5, OriginOf(main_).y + 125});
  EXPECT_TRUE(HasName(0));
}

TEST_P(WindowManagersTest, PickingTakesTheApplicationInTheFrame) {
  const auto other = Client("Other", "other", "340x140+880+850");
  StartPicking();
  ASSERT_TRUE(Over(other->window(), 40, 30));
  player->Click(1);
  EXPECT_TRUE(WaitFor([this] { return PickLabel() == 0; }));
  EXPECT_TRUE(WaitFor([this] { return fs::exists(*install / "plugins/Other.other.sla"); }));
}

// A window manager may take the unmapping of a window for its owner's withdrawing it, and act on
// that after the window has been mapped again.
TEST_P(WindowManagersTest, WindowsThatAreOpenStayWhenTheyAreShownAnew) {
  const auto unmapped = [this](Window window) {
    XSync(player->display(), False);
    int times = 0;
    XEvent event;
    while (XCheckTypedWindowEvent(player->display(), window, UnmapNotify, &event)) times++;
    return times;
  };
  Choose(Title::kOptions, testing::kPreferences);
  const Window preferences = WaitShown("Preferences");
  XSelectInput(player->display(), preferences, StructureNotifyMask);
  ClickChild(preferences, 320, 324);  // Defaults
  ClickChild(preferences, 480, 324);  // Cancel, which is read after it
  EXPECT_TRUE(WaitHidden("Preferences"));
  EXPECT_EQ(unmapped(preferences), 1);

  Choose(Title::kSymbol, testing::kSymbolNew);
  const Window editor = WaitShown("SymbolEditor");
  XSelectInput(player->display(), editor, StructureNotifyMask);
  XMoveWindow(player->display(), editor, 20, 500);  // away from the menu bar
  ASSERT_TRUE(WaitFor([&] { return OriginOf(editor).y > 450; }));
  Choose(Title::kSymbol, testing::kSymbolNew);
  ClickChild(editor, 480, BoxOf(editor).height - 40);  // Cancel
  EXPECT_TRUE(WaitHidden("SymbolEditor"));
  EXPECT_EQ(unmapped(editor), 1);
}

INSTANTIATE_TEST_SUITE_P(Over, WindowManagersTest,
                         ::testing::Values("openbox", "twm", "icewm", "i3", "fluxbox", "jwm",
                                           "marco", "metacity", "wmaker", "xfwm4"),
                         [](const auto& param) { return std::string(param.param); });

}  // namespace
}  // namespace gromlit
