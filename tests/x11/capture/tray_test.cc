// The icon in the system tray, in a tray of the test's own.
//
// First: the test library's headers cannot bear Xlib's macros.
#include "tests/x11/app/command_fixture.h"

#include <X11/Xatom.h>
#include <X11/Xutil.h>
#include <sys/stat.h>

#include <memory>
#include <string>
#include <vector>

#include "app/tray/tray_icon.h"
#include "capture/app_track.h"
#include "capture/gromlit_draw.h"
#include "core/plugin_files.h"
#include "display/draw_button.h"
#include "display/pause.h"
#include "display/scale.h"
#include "display/window_manager.h"
#include "tests/x11/capture/test_tray.h"

namespace gromlit {
namespace {

using Labels = std::vector<std::string>;
using testing::Exists;
using testing::ShownFailure;
using testing::TestTray;

class TrayTest : public testing::CommandFixture {
 protected:
  void SetUp() override {
    CommandFixture::SetUp();
    if (HasFatalFailure()) return;
    DefaultUserOptions(&options);
    Retire(trayicon);  // of the test before
    trayicon = nullptr;
    ASSERT_TRUE(GrabDrawButton(3));
    draw = MakeGromlitDraw();
    draw->app = app;
    player->MoveTo(700, 1000);
    CreateAppTrack();
    Pump();
  }
  void TearDown() override {
    PauseGestures(false);
    pauseChanged = nullptr;
    if (tray != nullptr) tray.reset();
    CommandFixture::TearDown();
  }

  // A tray comes, and the program has its icon there.
  void StartTray(bool saves = true, int depth = 24) {
    tray = std::make_unique<TestTray>(server->name(), saves, depth);
    EXPECT_TRUE(Docks());
  }
  bool Docks() {
    return PumpUntil([&] {
      return tray->Serve() && trayicon->docked != 0 && Viewable(trayicon->window) &&
             testing::ParentOf(player->display(), trayicon->window) == tray->window();
    });
  }
  // The tray goes, and the program has noticed.
  void EndTray() {
    tray.reset();
    EXPECT_TRUE(PumpUntil([&] { return trayicon->window == None; }));
  }
  void MoveToIcon() {
    player->MoveTo(TestTray::kX + TestTray::kIconX + 6, TestTray::kY + TestTray::kIconY + 6);
    Pump();
  }
  void ClickIcon(int button) {
    MoveToIcon();
    player->Click(button);
    Pump();
  }
  static Labels Items() {
    Labels labels;
    const XMenu* menu = trayicon->menu;
    for (int i = 0; menu != nullptr && menu->open != 0 && i < menu->nitems; i++) {
      labels.emplace_back(menu->items[i]->label);
    }
    return labels;
  }
  // Opens the menu by the draw button and chooses an item by the next click.
  void ChooseItem(const std::string& label) {
    ClickIcon(3);
    const Labels items = Items();
    const auto at = std::find(items.begin(), items.end(), label);
    if (at == items.end()) {
      ADD_FAILURE() << "no item " << label;
      player->MoveTo(700, 1000);
    } else {
      MoveToItem(trayicon->menu, static_cast<int>(at - items.begin()));
    }
    player->Click(1);
    Pump();
    EXPECT_EQ(trayicon->menu->open, 0);
  }
  void Go(int x, int y) {
    player->MoveTo(x, y);
    Pump();
  }
  // An application of this class, entered; the pointer leaves it by a jump.
  void Visit(const char* classpart, const char* name) {
    static int at = 0;
    at = at % 5 + 1;
    Client(560, 120 * at, 100, 100, classpart, name);
    Pump();
    Go(600, 120 * at + 50);
  }
  std::string PluginFile(const std::string& classname) {
    return *install / ("plugins/" + classname + GromlitPluginFileExt);
  }
  // The bits of a plug-in as its file has them; -1 without a file.
  int MannersInFile(const std::string& classname) {
    GromlitPlugin stored{};
    const std::string file = classname + GromlitPluginFileExt;
    return ReadPluginHeader(file.c_str(), &stored) == nullptr ? -1 : stored.spare1;
  }
  // The icon as the screen shows it.
  std::vector<unsigned long> Look(int side = 24) {
    std::vector<unsigned long> pixels;
    XSync(dpy, False);
    const testing::Picture picture =
        testing::TakeScreen(player->display(), TestTray::kX + TestTray::kIconX,
                            TestTray::kY + TestTray::kIconY, side, side);
    for (int y = 0; y < side; y++) {
      for (int x = 0; x < side; x++) pixels.push_back(picture.At(x, y) & 0xffffff);
    }
    return pixels;
  }
  static int Count(const std::vector<unsigned long>& pixels, bool (*is)(unsigned long)) {
    return static_cast<int>(std::count_if(pixels.begin(), pixels.end(), is));
  }
  static bool IsBlue(unsigned long pixel) {
    return (pixel & 0xff) > 40 + (pixel >> 8 & 0xff) && (pixel & 0xff) > 40 + (pixel >> 16);
  }
  static bool IsRed(unsigned long pixel) {
    return (pixel >> 16) > 80 + (pixel & 0xff) && (pixel >> 16) > 80 + (pixel >> 8 & 0xff);
  }

  GromlitDraw* draw = nullptr;
  std::unique_ptr<TestTray> tray;
};

// --- Docking ----------------------------------------------------------------------------------

TEST_F(TrayTest, NothingIsMadeWhereThereIsNoTray) {
  const int objects = nWindowObjects;
  const unsigned long before = NextRequest(dpy);
  WatchForTrays();
  EXPECT_LE(NextRequest(dpy) - before, 2u);
  EXPECT_EQ(nWindowObjects, objects);
  EXPECT_EQ(trayicon->window, None);
}

TEST_F(TrayTest, TrayThatIsThereGetsTheIcon) {
  tray = std::make_unique<TestTray>(server->name());
  WatchForTrays();
  ASSERT_TRUE(Docks());
  EXPECT_EQ(tray->asked(), 1);
  EXPECT_EQ(Numbers(trayicon->window, "_XEMBED_INFO"), (std::vector<unsigned long>{0, 1}));
  char* name = nullptr;
  ASSERT_NE(XFetchName(dpy, trayicon->window, &name), 0);
  EXPECT_STREQ(name, "Gromlit");
  XFree(name);
  EXPECT_TRUE(PumpUntil([&] { return Count(Look(), IsBlue) > 40; }));
  Shoot("icon");
}

TEST_F(TrayTest, TrayThatComesLaterGetsTheIconOnce) {
  WatchForTrays();
  StartTray();
  const auto selection = static_cast<long>(XInternAtom(dpy, "_NET_SYSTEM_TRAY_S0", False));
  tray->Tell(root, "MANAGER", StructureNotifyMask,
             {CurrentTime, selection, static_cast<long>(tray->window()), 0, 0});
  Pump();
  tray->Serve();
  EXPECT_EQ(tray->asked(), 1) << "it said that it had come twice";
}

TEST_F(TrayTest, WhoeverOwnsNothingIsNoTray) {
  WatchForTrays();
  tray = std::make_unique<TestTray>(server->name());
  const Atom selection = XInternAtom(tray->display(), "_NET_SYSTEM_TRAY_S0", False);
  XSetSelectionOwner(tray->display(), selection, None, CurrentTime);
  XSync(tray->display(), False);
  Pump();
  EXPECT_FALSE(tray->Serve());
  tray->Tell(root, "MANAGER", StructureNotifyMask,
             {CurrentTime, static_cast<long>(selection), static_cast<long>(tray->window()), 0, 0});
  Pump();
  EXPECT_FALSE(tray->Serve());
  EXPECT_EQ(trayicon->window, None);
}

TEST_F(TrayTest, IconComesBackWithEveryTray) {
  WatchForTrays();
  int objects = 0;
  for (int i = 0; i < 6; i++) {
    // Icons of a tray that keeps them in its save-set are put on the root when it dies, the others
    // go with it.
    StartTray(i % 2 == 0);
    const Window icon = trayicon->window;
    EndTray();
    EXPECT_EQ(testing::ParentOf(player->display(), icon), None) << "it was left behind";
    if (i == 0) objects = nWindowObjects;
  }
  EXPECT_EQ(nWindowObjects, objects) << "entries cannot be given back";
}

TEST_F(TrayTest, TrayThatDiesBeforeItTookTheIconIsForgotten) {
  WatchForTrays();
  tray = std::make_unique<TestTray>(server->name());
  ASSERT_TRUE(PumpUntil([&] { return trayicon->tray == tray->window(); }));
  tray.reset();
  ASSERT_TRUE(PumpUntil([&] { return trayicon->tray == None; }));
  StartTray();
}

TEST_F(TrayTest, IconThatATrayLetsGoOfIsNotLeftOnTheRoot) {
  WatchForTrays();
  StartTray();
  XReparentWindow(tray->display(), tray->icon(), root, 300, 900);
  XMapWindow(tray->display(), tray->icon());
  XSync(tray->display(), False);
  EXPECT_TRUE(PumpUntil([&] { return trayicon->window == None; }));
  EXPECT_EQ(testing::ParentOf(player->display(), tray->icon()), None);
  StartTray();
}

// The root window exposes the icon that a dying tray has put there; when that is read the icon has
// been destroyed for being there.
TEST_F(TrayTest, ExposureOfAnIconThatHasGoneDrawsNothing) {
  WatchForTrays();
  StartTray();
  static int exposed;
  static int into_none;
  exposed = into_none = 0;
  SetHandler(trayicon->wobj, Expose, [](void*, XEvent* event) {
    if (trayicon->window == None) exposed++;
    DrawTrayIcon(trayicon, event);
  });
  XSetErrorHandler([](Display*, XErrorEvent* error) {
    if (error->error_code == BadDrawable && error->resourceid == None) into_none++;
    return 0;
  });
  EndTray();
  EXPECT_TRUE(PumpUntil([] { return exposed > 0; })) << "nothing was exposed too late";
  EXPECT_EQ(into_none, 0);
}

TEST_F(TrayTest, AnotherTrayTakesTheIconOver) {
  WatchForTrays();
  StartTray();
  const std::unique_ptr<TestTray> former = std::move(tray);
  StartTray();
  EXPECT_EQ(testing::ParentOf(player->display(), former->icon()), None);
}

TEST_F(TrayTest, TrayOfAnotherDepthIsATrayToo) {
  WatchForTrays();
  StartTray(true, 32);
  EXPECT_TRUE(PumpUntil([&] { return Count(Look(), IsBlue) > 40; }));
}

TEST_F(TrayTest, MessagesOfTheEmbedderChangeNothing) {
  WatchForTrays();
  StartTray();
  for (long opcode = -1; opcode <= 14; opcode++) {
    tray->Tell(trayicon->window, "_XEMBED", NoEventMask, {CurrentTime, opcode, 1, 2, 3});
  }
  Pump();
  EXPECT_TRUE(Docks());
}

TEST_F(TrayTest, PictureFollowsTheSizeAndComesBackWhenCovered) {
  WatchForTrays();
  StartTray();
  for (const int side : {16, 22, 31}) {
    tray->Resize(side, side);
    ASSERT_TRUE(PumpUntil([&] { return trayicon->width == side; }));
    EXPECT_TRUE(PumpUntil([&] {
      const auto look = Look(side);
      return Count(look, IsBlue) > side * side / 12 && look[0] == kWhite && look.back() == kWhite;
    })) << side;
    Shoot("icon" + std::to_string(side));
  }
  const auto whole = Look(31);
  const Window cover = Client(TestTray::kX + TestTray::kIconX - 10, TestTray::kY, 60, 40);
  ASSERT_TRUE(PumpUntil([&] { return Count(Look(31), IsBlue) != Count(whole, IsBlue); }));
  XDestroyWindow(player->display(), cover);
  EXPECT_TRUE(PumpUntil([&] { return Look(31) == whole; }));
}

TEST_F(TrayTest, PausedItLooksDifferent) {
  WatchForTrays();
  StartTray();
  ASSERT_TRUE(PumpUntil([&] { return Count(Look(), IsBlue) > 40; }));
  const auto usual = Look();
  PauseGestures(true);
  EXPECT_TRUE(PumpUntil([&] {
    const auto look = Look();
    return Count(look, IsBlue) == 0 && Count(look, IsRed) > 20;
  }));
  Shoot("paused");
  PauseGestures(false);
  EXPECT_TRUE(PumpUntil([&] { return Look() == usual; }));
}

// --- Clicks and the menu ----------------------------------------------------------------------

TEST_F(TrayTest, ClickHidesAndShowsTheMainWindow) {
  WatchForTrays();
  StartTray();
  ASSERT_TRUE(Viewable(app->window));
  ClickIcon(1);
  EXPECT_FALSE(Viewable(app->window));
  ClickIcon(1);
  EXPECT_TRUE(Viewable(app->window));
  // Pressed here, released elsewhere: the user has thought better of it.
  MoveToIcon();
  player->Press(1);
  Pump();
  Go(700, 1000);
  player->Release(1);
  Pump();
  EXPECT_TRUE(Viewable(app->window));
}

TEST_F(TrayTest, DrawButtonOpensTheMenuHoweverTheHandShakes) {
  WatchForTrays();
  StartTray();
  MoveToIcon();
  player->Press(3);
  player->MoveTo(TestTray::kX + TestTray::kIconX - 30, TestTray::kY - 30);
  player->Release(3);
  Pump();
  EXPECT_EQ(Items(), (Labels{"Hide Gromlit", "Pause gestures", "Preferences", "Exit"}));
  const XMenu* menu = trayicon->menu;
  EXPECT_TRUE(Viewable(menu->window));
  tray->Serve();
  EXPECT_EQ(tray->buttons(), 0) << "there are trays that end when they get what is not for them";
  EXPECT_LE(menu->x + menu->width, screenwidth);
  EXPECT_LE(menu->y + menu->height, screenheight);
  EXPECT_FALSE(Viewable(app->dlog->window)) << "no plug-in is offered for the tray";
  Shoot("menu");
  Go(700, 900);
  player->Click(1);
  Pump();
  EXPECT_FALSE(Viewable(menu->window));
}

TEST_F(TrayTest, MenuShowsAndHides) {
  WatchForTrays();
  StartTray();
  ChooseItem("Hide Gromlit");
  EXPECT_FALSE(Viewable(app->window));
  ChooseItem("Show Gromlit");
  EXPECT_TRUE(Viewable(app->window));
}

TEST_F(TrayTest, MenuPausesAndResumes) {
  WatchForTrays();
  StartTray();
  ChooseItem("Pause gestures");
  EXPECT_NE(gesturesPaused, 0);
  // The press goes to the icon itself, now.
  ChooseItem("Resume gestures");
  EXPECT_EQ(gesturesPaused, 0);
}

TEST_F(TrayTest, MenuOpensThePreferencesAndAsksBeforeItEndsTheProgram) {
  WatchForTrays();
  StartTray();
  ChooseItem("Preferences");
  EXPECT_TRUE(Viewable(opt->window));
  ChooseItem("Exit");
  EXPECT_TRUE(Viewable(confirm->window));
}

TEST_F(TrayTest, ButtonThatDrawsOpensTheMenuWhicheverItIs) {
  options.button = 1;
  ASSERT_TRUE(GrabDrawButton(1));
  RenewDrawEvents(draw);
  WatchForTrays();
  StartTray();
  ClickIcon(1);
  EXPECT_EQ(Items().size(), 4u);
  EXPECT_TRUE(Viewable(app->window));
  Go(700, 900);
  player->Click(2);
  Pump();
  ClickIcon(3);
  EXPECT_EQ(Items().size(), 4u);
  Go(700, 900);
  player->Click(2);
  Pump();
}

// --- No gestures in NAME ----------------------------------------------------------------------

TEST_F(TrayTest, ApplicationWithoutAPluginGetsAnEmptyOneThatGoesAgain) {
  WatchForTrays();
  StartTray();
  Visit("Game", "game");
  ChooseItem("No gestures in Game.game");
  EXPECT_EQ(MannersInFile("Game.game"), kHandsOff);
  EXPECT_TRUE(IsHandsOffClass("Game.game"));
  EXPECT_EQ(Menu(), (Labels{"Game.game", "Default"}));
  EXPECT_STREQ(app->txt->label, "Hands off: Game.game");

  ChooseItem("Gestures in Game.game again");
  EXPECT_FALSE(Exists(PluginFile("Game.game")));
  EXPECT_EQ(FindPluginNode("Game.game"), nullptr) << "strokes would not reach Default";
  EXPECT_FALSE(IsHandsOffClass("Game.game"));
  EXPECT_EQ(Menu(), (Labels{"Default"}));
  EXPECT_EQ(app->plugin, DefaultPlugin);
  EXPECT_EQ(ShownFailure(), "");
}

TEST_F(TrayTest, PluginWithActionsKeepsThem) {
  const GromlitPlugin* plugin = Plugin("Editor", "Edit.edit", 2);
  UpdatePluginsMenu();
  WatchForTrays();
  StartTray();
  // What the menu uncovers when it goes is not what the user has gone to.
  Client(1000, 860, 250, 110, "Below", "below");
  Pump();
  Visit("Edit", "edit");
  ChooseItem("No gestures in Editor");
  EXPECT_EQ(MannersInFile("Edit.edit"), kHandsOff);
  EXPECT_EQ(NamesInFile(plugin), (Labels{"a0", "a1"}));
  ChooseItem("Gestures in Editor again");
  EXPECT_EQ(MannersInFile("Edit.edit"), 0);
  EXPECT_EQ(NamesInFile(plugin), (Labels{"a0", "a1"}));
  EXPECT_TRUE(IsListed(plugin));
}

TEST_F(TrayTest, EmptyPluginThatSomebodyNamedStays) {
  const GromlitPlugin* plugin = Plugin("My game", "Game.game", 0);
  UpdatePluginsMenu();
  WatchForTrays();
  StartTray();
  Visit("Game", "game");
  ChooseItem("No gestures in My game");
  ChooseItem("Gestures in My game again");
  EXPECT_TRUE(IsListed(plugin));
  EXPECT_EQ(MannersInFile("Game.game"), 0);
}

TEST_F(TrayTest, WhatLiesOnTheWayToTheIconIsNotTheApplication) {
  WatchForTrays();
  StartTray();
  Visit("Game", "game");
  Go(20, app->icony + 40);      // the main window
  Go(1275, 700);                // the desktop
  Go(TestTray::kX + 10, 1000);  // the tray beside the icon
  Client(1100, 10, 60, 60, "Panel", "panel");
  Pump();
  Go(1120, 30);  // another window of what holds the icon
  ClickIcon(3);
  EXPECT_EQ(Items(), (Labels{"Hide Gromlit", "Pause gestures", "No gestures in Game.game",
                             "Preferences", "Exit"}));
  Shoot("menu-name");
  Go(700, 900);
  player->Click(1);
  Pump();
}

TEST_F(TrayTest, UnknownApplicationHasNoItem) {
  WatchForTrays();
  StartTray();
  Visit("Game", "game");
  Client(900, 300, 60, 60);
  Pump();
  Go(920, 320);
  ClickIcon(3);
  EXPECT_EQ(Items().size(), 4u);
  Go(700, 900);
  player->Click(1);
  Pump();
}

TEST_F(TrayTest, WhereGesturesAreOffForAllWithoutAPluginThereIsNothingToSwitch) {
  WatchForTrays();
  StartTray();
  DefaultPlugin->spare1 = kHandsOff;
  Visit("Game", "game");
  // The press is replayed: the tray has no plug-in either.
  ClickIcon(3);
  EXPECT_EQ(Items().size(), 4u);
  Go(700, 900);
  player->Click(1);
  Pump();
}

TEST_F(TrayTest, PluginThatCannotBeSavedIsToldAndNothingIsSwitched) {
  const GromlitPlugin* plugin = Plugin("Editor", "Edit.edit", 1);
  ASSERT_EQ(mkdir(PluginFile("Game.game").c_str(), 0777), 0);
  WatchForTrays();
  StartTray();
  Visit("Game", "game");
  ChooseItem("No gestures in Game.game");
  EXPECT_TRUE(ShownFailure().starts_with("Gestures stay on: the plug-in was not saved."));
  EXPECT_EQ(FindPluginNode("Game.game"), nullptr);
  HideWindow(notice->window);

  Visit("Edit", "edit");
  BlockFile(plugin);
  ChooseItem("No gestures in Editor");
  EXPECT_TRUE(ShownFailure().starts_with("Gestures stay on: the plug-in was not saved."));
  EXPECT_FALSE(IsHandsOffClass("Edit.edit"));
  HideWindow(notice->window);
  GiveFileBack(plugin);
  ChooseItem("No gestures in Editor");
  BlockFile(plugin);
  ChooseItem("Gestures in Editor again");
  EXPECT_TRUE(ShownFailure().starts_with("Gestures stay off: the plug-in was not saved."));
  EXPECT_TRUE(IsHandsOffClass("Edit.edit"));
  GiveFileBack(plugin);
}

class DoubleTrayTest : public TrayTest {
 protected:
  void SetUp() override {
    UseScale(2);
    server = std::make_unique<testing::XServer>("2560x1440x24");
    TrayTest::SetUp();
  }
  void TearDown() override {
    TrayTest::TearDown();
    UseScale(1);
  }
};

// The tray says how large the icon is, in pixels of the screen; its menu is the program's.
TEST_F(DoubleTrayTest, IconIsAsLargeAsTheTraySaysAndItsMenuTwiceAsLarge) {
  WatchForTrays();
  StartTray();
  XWindowAttributes is{};
  ASSERT_NE(XGetWindowAttributes(dpy, trayicon->window, &is), 0);
  EXPECT_TRUE(PumpUntil([&] {
    XGetWindowAttributes(dpy, trayicon->window, &is);
    return trayicon->width == is.width && trayicon->height == is.height;
  })) << trayicon->width;
  ASSERT_NE(trayicon->picture, nullptr);
  EXPECT_EQ(trayicon->picture->width, std::min(is.width, is.height));
  // In the last pixel of the icon that a press of logical pixels would not reach.
  player->MoveTo(TestTray::kX + TestTray::kIconX + is.width - 1,
                 TestTray::kY + TestTray::kIconY + is.height - 1);
  player->Click(3);
  ASSERT_TRUE(PumpUntil([&] { return trayicon->menu != nullptr && trayicon->menu->open != 0; }));
  const XMenu* menu = trayicon->menu;
  XGetWindowAttributes(dpy, menu->window, &is);
  EXPECT_EQ(is.width, 2 * menu->width);
  EXPECT_GE(is.x, 0);
  EXPECT_LE(is.x + is.width, 2560);
  EXPECT_LE(is.y + is.height, 1440);
  const int item = 2 * (4 + menu->itemheight) + menu->itemheight;  // the second one
  player->MoveTo(is.x + menu->width, is.y + item);
  Pump();
  player->Click(1);
  Pump();
  EXPECT_EQ(gesturesPaused, 1);
}

}  // namespace
}  // namespace gromlit
