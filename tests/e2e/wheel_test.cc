// The wheel over every window of the built program: a notch presses nothing.
#include "tests/e2e/front_end.h"

#include <map>

namespace gromlit {
namespace {

using testing::Box;
using testing::kEll;
using testing::kRight;
using testing::Point;
using testing::ProbeClient;
using testing::Title;
using testing::WaitFor;

class WheelTest : public testing::FrontEnd {
 protected:
  void SetUp() override {
    FrontEnd::SetUp();
    WriteOptions();
    for (int i = 0; i < 30; i++)
      WritePlugin("Class" + std::to_string(i), {{"right", kRight, {{kRun, "system:sync"}}}});
    std::vector<testing::Action> actions;
    for (int i = 0; i < 40; i++)
      actions.push_back({"A" + std::to_string(i), kEll, {{kRun, "touch " + MarkFile("ran")}}});
    WritePlugin("Default", actions);
    LaunchInstalled();
    main_ = WaitShown("Application");
    ASSERT_NE(main_, Window{0});
    ASSERT_TRUE(WaitFor([this] { return HasIcon(0); }));
  }
  void TearDown() override {
    if (HasFailure()) {
      if (const char* directory = std::getenv("GROMLIT_SCREENSHOTS"))
        testing::SaveScreen(player->display(), std::string(directory) + "/wheel.png");
    }
    FrontEnd::TearDown();
  }

  // A window with all windows in it that are on the screen.
  std::vector<Window> WithAllInside(Window window) {
    std::vector<Window> all = {window};
    for (size_t i = 0; i < all.size(); i++)
      for (const Window child : Children(all[i]))
        if (Viewable(child)) all.push_back(child);
    return all;
  }

  // Returns when the program has handled all input so far: a menu comes up and goes again.
  void Settle() {
    const Window menu = PressTitle(Title::kHelp);
    player->Release(1);
    EXPECT_TRUE(WaitFor([&] { return !Viewable(menu); }));
    Park();
  }
  void Park() { player->MoveTo(1270, 1015); }

  // Goes over a window and everything in it, to two places of each, and does something there.
  void GoOver(Window window, const std::function<void()>& act) {
    for (const Window part : WithAllInside(window)) {
      const Box box = BoxOf(part);
      const Point origin = OriginOf(part);
      for (const Point at : {Point{box.width / 2, box.height / 2}, Point{6, box.height / 3}}) {
        player->MoveTo(origin.x + at.x, origin.y + at.y);
        act();
      }
    }
    Park();
    Settle();
  }
  void TurnTheWheelOver(Window window) {
    // Fields answer the pointer alone.
    GoOver(window, [] {});
    const std::string mainlook = Look(main_);
    const std::string look = Look(window);
    const size_t overlays = Overlays().size();
    // An odd number: what turns over and back again would look untouched.
    GoOver(window, [this] {
      for (const int button : {4, 5, 6, 7, 8}) player->Click(button);
    });
    EXPECT_TRUE(Viewable(window));
    EXPECT_EQ(Overlays().size(), overlays);
    EXPECT_TRUE(Look(window) == look) << "the window has changed";
    EXPECT_TRUE(Look(main_) == mainlook) << "the main window has changed";
    EXPECT_EQ(Everything(), files_);
  }
  // Every file below the three directories, with its bytes.
  std::string Everything() {
    std::string all;
    for (const char* part : {"symbols", "plugins", "options"})
      for (const std::string& name : NamesIn(*install / part))
        all +=
            std::string(part) + "/" + name + ":" + testing::ReadText(*install / part + "/" + name);
    return all;
  }
  // Opens a window and puts it beside the main window.
  Window Open(const char* name, Title title, int row) {
    Choose(title, row);
    const Window window = WaitShown(name);
    XMoveWindow(player->display(), window, 640, 440);
    EXPECT_TRUE(WaitFor([&] { return OriginOf(window).y > 300; }));
    return window;
  }
  void Keep() { files_ = Everything(); }

  Window main_ = 0;
  std::string files_;
};

TEST_F(WheelTest, MainWindow) {
  Keep();
  TurnTheWheelOver(main_);
}

TEST_F(WheelTest, Editors) {
  MakeSymbol("Ell", kEll);
  MakeSymbol("Bar", kRight);
  Keep();
  const Window action = Open("ActionEditor", Title::kAction, testing::kActionNew);
  AddCommand(action, kText, "text");
  AddCommand(action, kRun, "true");
  TurnTheWheelOver(action);
  for (const int tab : {kHotKey, kText, kInternet}) {
    ClickTab(action, tab);
    TurnTheWheelOver(action);
  }
  Close(action);
  ASSERT_TRUE(WaitHidden("ActionEditor"));

  const Window preferences = Open("Preferences", Title::kOptions, testing::kPreferences);
  TurnTheWheelOver(preferences);
  ClickChild(preferences, BoxOf(preferences).width - 80, 100);  // More...
  const Window more = WaitShown("MorePreferences");
  XMoveWindow(player->display(), more, 640, 440);
  ASSERT_TRUE(WaitFor([&] { return OriginOf(more).y > 300; }));
  TurnTheWheelOver(more);
  Close(more);
  ASSERT_TRUE(WaitHidden("MorePreferences"));
  Close(preferences);
  ASSERT_TRUE(WaitHidden("Preferences"));

  const Window symbol = Open("SymbolEditor", Title::kSymbol, testing::kSymbolNew);
  TurnTheWheelOver(symbol);
  const Window area = WaitChild(symbol, 16, 100);
  for (const Point at : {Point{40, 40}, Point{40, 200}, Point{40, 200}}) ClickIn(area, at.x, at.y);
  for (int step = 1; step <= 3; step++) {
    SCOPED_TRACE(step);
    TurnTheWheelOver(symbol);
    if (step < 3) ClickChild(symbol, 400, 414);
  }
}

TEST_F(WheelTest, DialogsAndMenus) {
  MakeSymbol("Ell", kEll);
  MakeSymbol("Bar", kRight);
  Keep();
  const std::pair<Title, int> kDialogs[] = {
      {Title::kPlugIn, testing::kPlugInNew},    {Title::kPlugIn, testing::kPlugInEdit},
      {Title::kPlugIn, testing::kExit},         {Title::kSymbol, testing::kSymbolEdit},
      {Title::kSymbol, testing::kSymbolDelete}, {Title::kHelp, testing::kHelpAbout},
  };
  for (const auto& [title, row] : kDialogs) {
    SCOPED_TRACE(::testing::Message() << "menu " << static_cast<int>(title) << ", row " << row);
    Choose(title, row);
    const Window dialog = WaitDialog();
    XMoveWindow(player->display(), dialog, 640, 440);
    ASSERT_TRUE(WaitFor([&] { return OriginOf(dialog).y > 300; }));
    TurnTheWheelOver(dialog);
    DialogRight();
  }

  // A menu that has the pointer stays open, and nothing of it is run.
  const Window popup = OpenPopup(0);
  for (const int row : {testing::kPopupNew, testing::kPopupDelete, testing::kPopupCut}) {
    GoToRow(popup, row);
    player->Click(4);
    player->Click(5);
  }
  GoToRow(popup, testing::kPopupEdit);
  EXPECT_TRUE(Viewable(popup));
  Park();
  player->Click(1);
  EXPECT_TRUE(WaitFor([&] { return !Viewable(popup); }));
  Settle();
  EXPECT_EQ(Everything(), files_);
  EXPECT_EQ(Shown("ActionEditor"), Window{0});
}

}  // namespace
}  // namespace gromlit
