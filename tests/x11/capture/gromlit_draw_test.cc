// What the capture does with a press of the draw button, seen from inside the program.
#include "tests/x11/app/main_window_fixture.h"

#include <X11/Xutil.h>
#include <X11/extensions/Xfixes.h>

#include <atomic>
#include <thread>
#include <vector>

#include "app/plugins/new_plugin.h"
#include "capture/gromlit_draw.h"
#include "core/option_files.h"
#include "display/draw_button.h"
#include "display/modes.h"
#include "display/pause.h"
#include "display/x_errors.h"
#include "tests/support/round_trips.h"
#include "toolkit/dialog.h"

namespace gromlit {
namespace {

GromlitDraw* overlay = nullptr;

// The main window lies at the top left of the screen; the other client's windows are on the right.
class GromlitDrawTest : public testing::MainWindowFixture {
 protected:
  void SetUp() override {
    MainWindowFixture::SetUp();
    if (HasFatalFailure()) return;
    GetUserOptions();
    DefaultUserOptions(user);
    ASSERT_TRUE(GrabDrawButton(3));
    overlay = MakeGromlitDraw();
    overlay->app = app;
    app->dlog = MakeDownloadDialog();
    app->newdlog = MakeNewPluginDialog();
    XSetErrorHandler(GromlitXErrorHandler);  // windows vanish on purpose here
  }
  void TearDown() override {
    PauseGestures(false);
    user->showactions = 1;
    user->button = 3;
    MainWindowFixture::TearDown();
  }

  // A mapped window of another client at (700, 100), 400 x 300, that takes button events.
  Window Make(const char* classpart, const char* name) {
    Display* other = player->display();
    const Window window = XCreateSimpleWindow(other, root, 700, 100, 400, 300, 0, 0, 0);
    XSelectInput(other, window, ButtonPressMask | ButtonReleaseMask);
    if (classpart != nullptr) testing::SetClass(other, window, classpart, name);
    XMapWindow(other, window);
    XSync(other, False);
    return window;
  }
  // The next button event that the other client got; type 0 when there is none.
  XButtonEvent OthersNext() {
    XSync(player->display(), False);
    XEvent event{};
    if (!XCheckMaskEvent(player->display(), ButtonPressMask | ButtonReleaseMask, &event)) {
      event.type = 0;
    }
    return event.xbutton;
  }
  // The press got through to the other client as the server made it, and so does its release.
  void ExpectPressAndRelease() {
    XButtonEvent got = OthersNext();
    EXPECT_EQ(got.type, ButtonPress);
    EXPECT_FALSE(got.send_event);
    player->Release(3);
    Pump();
    got = OthersNext();
    EXPECT_EQ(got.type, ButtonRelease);
    EXPECT_FALSE(got.send_event);
  }
  // The user draws to the right, from (750, 150) to (850, 150), while the program captures: each
  // step waits until the pointer is thawed up to there.
  void DrawRight() {
    player->MoveTo(750, 150);
    Pump();
    std::atomic<bool> drawn = false;
    std::thread user_draws([&] {
      player->Press(3);
      for (int x = 760; x <= 850; x += 10) {
        player->MoveTo(x, 150);
        testing::WaitFor([&] { return player->Where().x == x; });
      }
      player->Release(3);
      drawn = true;
    });
    EXPECT_TRUE(PumpUntil([&] { return drawn.load(); }));
    user_draws.join();
    Pump();
  }
  // A plug-in whose only action, a stroke to the right, shows the main window.
  GromlitPlugin* Showing(const char* classname) {
    GromlitPlugin* plugin = Plugin(classname, classname, 1);
    MakeShowing(plugin);
    return plugin;
  }
  static void MakeShowing(GromlitPlugin* plugin) {
    if (plugin->nactions == 0) {
      plugin->actions[plugin->nactions++] = new GromlitAction(Action("right", 1));
      plugin->actions[0]->ncmds = 1;
      plugin->actions[0]->cmds[0] = Command("");
    }
    GromlitCmd* cmd = plugin->actions[0]->cmds[0];
    std::free(cmd->text);
    cmd->text = StrDup("system:showgromlit");
    cmd->ntext = static_cast<uint32_t>(StrLength(cmd->text));
  }
  // Hides what a matched action shows again.
  void HideMain() {
    XUnmapWindow(dpy, app->window);
    XSync(dpy, False);
    Pump();
  }
  bool Acted() const { return Viewable(app->window); }
};

TEST_F(GromlitDrawTest, OverlayIsTheRootWindowsEntryAndShowsNothing) {
  EXPECT_EQ(FindWindowObj(root), overlay->wobj);
  EXPECT_EQ(overlay->wobj->obj, overlay);
  for (const int type : {ButtonPress, EnterNotify, CreateNotify}) {
    EXPECT_NE(overlay->wobj->eh[type], NoHandler) << EventName(type);
  }
  EXPECT_FALSE(Viewable(overlay->trail.window));
  EXPECT_FALSE(Viewable(overlay->trail.fullwindow));
}

TEST_F(GromlitDrawTest, StrokeRunsTheActionOfTheApplication) {
  const GromlitPlugin* edit = Showing("Edit.edit");
  Make("Edit", "edit");
  HideMain();
  DrawRight();
  EXPECT_EQ(app->plugin, edit);
  EXPECT_TRUE(Acted());
  EXPECT_EQ(OthersNext().type, 0);
}

TEST_F(GromlitDrawTest, MainWindowIsRedrawnOnlyWhenActionsAreToBeShown) {
  GromlitPlugin* edit = Plugin("Editor", "Edit.edit", 2);
  MakeShowing(edit);
  Make("Edit", "edit");
  app->nicons = -1;  // what a drawing overwrites
  user->showactions = 0;
  DrawRight();
  EXPECT_EQ(app->plugin, edit);
  EXPECT_EQ(app->nicons, -1);
  user->showactions = 1;
  DrawRight();
  EXPECT_EQ(app->nicons, 2);
}

TEST_F(GromlitDrawTest, UnknownApplicationIsOfferedAPluginAtTheReleaseAndThenServedByDefault) {
  MakeShowing(DefaultPlugin);
  // The offer is made once per class and run of the program, which tests that are repeated share.
  static int strangers = 0;
  const std::string stranger = "Stranger" + std::to_string(strangers++);
  Make(stranger.c_str(), "s");
  HideMain();
  DrawRight();
  EXPECT_FALSE(Acted());
  ASSERT_TRUE(Viewable(app->dlog->window));
  EXPECT_EQ(app->dlog->title, stranger + ".s");
  XWindowAttributes at{};
  XGetWindowAttributes(dpy, app->dlog->window, &at);
  EXPECT_EQ(at.x, 850 - app->dlog->width / 2);
  EXPECT_EQ(at.y, std::max(150 - app->dlog->height / 2, 0));
  DialogNo(app->dlog);
  DrawRight();
  EXPECT_TRUE(Acted());
  EXPECT_FALSE(Viewable(app->dlog->window));
}

TEST_F(GromlitDrawTest, StrokeOnAnOwnDialogNeitherAsksForAPluginNorActs) {
  MakeShowing(DefaultPlugin);
  Make("Below", "b");
  HideMain();
  PopUpDialog(app->newdlog, "New Plugin", 800, 150);
  Pump();
  for (int i = 0; i < 2; i++) {
    DrawRight();
    EXPECT_FALSE(Viewable(app->dlog->window));
    EXPECT_FALSE(Acted());
  }
  DialogNo(app->newdlog);
}

TEST_F(GromlitDrawTest, UnsteadyClickOnTheMainWindowKeepsWhatItShows) {
  GromlitPlugin* edit = ShowNew(2);
  ClickCell(1);
  ASSERT_EQ(app->selected, 1);
  MoveInApp(CellX(1) + 32, CellY(1) + 20);
  Pump();
  player->Press(3);
  MoveInApp(CellX(1) + 34, CellY(1) + 20);
  player->Release(3);
  Pump();
  EXPECT_TRUE(Viewable(app->popup->window));
  EXPECT_EQ(app->plugin, edit) << "the popup's commands would change another plug-in";
  EXPECT_EQ(app->selected, 1);
  EXPECT_STREQ(app->txt->label, "Editor");
  CloseGrabbedMenu();
  Pump();
}

TEST_F(GromlitDrawTest, ClickOnAWindowWithoutANameReachesNobody) {
  Make(nullptr, nullptr);
  player->MoveTo(750, 150);
  player->Click(3);
  Pump();
  EXPECT_EQ(OthersNext().type, 0);
}

TEST_F(GromlitDrawTest, StrokeOnAWindowWithoutANameIsRecognisedAllTheSame) {
  MakeShowing(DefaultPlugin);
  Make(nullptr, nullptr);
  HideMain();
  DrawRight();  // the offer, unless it was made before
  DialogNo(app->dlog);
  HideMain();
  DrawRight();
  EXPECT_TRUE(Acted());
}

TEST_F(GromlitDrawTest, PressWhileAnActionIsEditedIsLeftToTheApplication) {
  Showing("Edit.edit");
  Make("Edit", "edit");
  editingPlugin = 1;
  player->MoveTo(750, 150);
  player->Press(3);
  Pump();
  ExpectPressAndRelease();
}

TEST_F(GromlitDrawTest, PauseLeavesEveryPressToTheApplicationUntilItEnds) {
  const GromlitPlugin* edit = Showing("Edit.edit");
  Make("Edit", "edit");
  HideMain();
  PauseGestures(true);
  player->MoveTo(750, 150);
  for (int i = 0; i < 2; i++) {
    player->Press(3);
    Pump();
    ExpectPressAndRelease();
  }
  EXPECT_FALSE(Acted());
  PauseGestures(false);
  DrawRight();
  EXPECT_EQ(app->plugin, edit);
  EXPECT_TRUE(Acted());
  EXPECT_EQ(OthersNext().type, 0);
}

TEST_F(GromlitDrawTest, PauseTellsOfEachChangeOnce) {
  static std::vector<int> told;
  told.clear();
  pauseChanged = [] { told.push_back(gesturesPaused); };
  for (const bool pause : {false, true, true, false, false}) PauseGestures(pause);
  pauseChanged = nullptr;
  EXPECT_EQ(told, (std::vector<int>{1, 0}));
}

// The press of the draw button as the program reads it, and what answering it costs.
class HandsOffTest : public GromlitDrawTest {
 protected:
  void SetUp() override {
    GromlitDrawTest::SetUp();
    if (HasFatalFailure()) return;
    XInternAtom(dpy, "WM_STATE", False);  // which the first look-up asks for
    Make("Game", "game");
    player->MoveTo(750, 150);
    Pump();
  }
  void TearDown() override {
    if (DefaultPlugin != nullptr) DefaultPlugin->spare1 = 0;
    GromlitDrawTest::TearDown();
  }
  testing::Trips Press() {
    player->Press(3);
    XEvent press;
    EXPECT_TRUE(testing::WaitFor(
        [&] { return XCheckWindowEvent(dpy, root, ButtonPressMask, &press) != 0; }));
    return testing::CountTrips([&] { GromlitDrawButtonPress(overlay, &press); });
  }
};

TEST_F(HandsOffTest, PressOverTheApplicationIsReplayedAfterALookUpOfItsClass) {
  Plugin("Game", "Game.game", 1)->spare1 = kHandsOff | 2;
  const testing::Trips trips = Press();
  EXPECT_EQ(trips.waits, 2u) << "the client of the frame, and its name";
  EXPECT_LE(trips.requests, 20u);
  ExpectPressAndRelease();
}

TEST_F(HandsOffTest, PressThatIsReplayedAnywayIsNotLookedUp) {
  Plugin("Game", "Game.game", 1)->spare1 = kHandsOff;
  editingPlugin = 1;
  const testing::Trips trips = Press();
  EXPECT_EQ(trips.waits, 0u);
  EXPECT_EQ(trips.requests, 1u);
  ExpectPressAndRelease();
}

TEST_F(HandsOffTest, PressWhileGesturesArePausedIsNotLookedUp) {
  Plugin("Game", "Game.game", 1)->spare1 = kHandsOff;
  PauseGestures(true);
  const testing::Trips trips = Press();
  EXPECT_EQ(trips.waits, 0u);
  EXPECT_EQ(trips.requests, 1u);
  ExpectPressAndRelease();
}

TEST_F(HandsOffTest, OtherApplicationsKeepTheirGestures) {
  Plugin("Game", "Another.another", 1)->spare1 = kHandsOff;
  const GromlitPlugin* game = Showing("Game.game");
  HideMain();
  DrawRight();
  EXPECT_EQ(app->plugin, game);
  EXPECT_TRUE(Acted());
  EXPECT_EQ(OthersNext().type, 0);
}

TEST_F(HandsOffTest, OfDefaultItCountsWhereThereIsNoPluginAndNotOnOwnWindows) {
  DefaultPlugin->spare1 = kHandsOff;
  Press();
  ExpectPressAndRelease();
  Showing("Game.game");
  HideMain();
  DrawRight();
  EXPECT_TRUE(Acted());
  // A popup in the main window, as ever: its press is taken and comes back as a click.
  MoveInApp(CellX(0) + 32, CellY(0) + 20);
  Pump();
  player->Press(3);
  player->Release(3);
  EXPECT_TRUE(PumpUntil([&] { return Viewable(app->popup->window); }));
  CloseGrabbedMenu();
  Pump();
}

TEST_F(GromlitDrawTest, PressThatAnotherClientSentIsIgnored) {
  Pump();
  XEvent press{};
  press.xbutton.type = ButtonPress;
  press.xbutton.window = root;
  press.xbutton.button = 3;
  press.xbutton.send_event = True;
  press.xbutton.state = Button1Mask;  // which would be replayed
  const unsigned long before = NextRequest(dpy);
  DispatchEvent(&press);
  press.xbutton.state = 0;  // which would be captured, for ever
  DispatchEvent(&press);
  EXPECT_EQ(NextRequest(dpy), before) << "something was asked of the server";
}

// The number that the server gives the cursor on the screen.
unsigned long CursorShown(Display* display) {
  int event;
  int error;
  EXPECT_TRUE(XFixesQueryExtension(display, &event, &error));
  XFixesCursorImage* const image = XFixesGetCursorImage(display);
  const unsigned long serial = image->cursor_serial;
  XFree(image);
  return serial;
}

TEST_F(GromlitDrawTest, WhileAStrokeIsDrawnThePointerIsAHandAndGoesThroughTheTrail) {
  Showing("Edit.edit");
  const Window window = Make("Edit", "edit");
  const auto cursor = [&] { return CursorShown(player->display()); };
  player->MoveTo(750, 150);
  Pump();
  const unsigned long plain = cursor();
  XDefineCursor(player->display(), window, handCursor);
  const unsigned long hand = cursor();
  XUndefineCursor(player->display(), window);
  ASSERT_NE(hand, plain);
  unsigned long pressed = 0;
  bool ishand = false;
  bool through = false;
  std::atomic<bool> drawn = false;
  std::thread user_draws([&] {
    player->Press(3);
    pressed = cursor();
    player->MoveTo(760, 150);
    ishand = testing::WaitFor([&] { return cursor() == hand; });
    player->MoveTo(850, 150);
    through = testing::WaitFor([&] {
      const auto at = player->Where();
      return at.x == 850 && at.child == window;
    });
    player->Release(3);
    drawn = true;
  });
  EXPECT_TRUE(PumpUntil([&] { return drawn.load(); }));
  user_draws.join();
  Pump();
  EXPECT_EQ(pressed, plain) << "nothing was drawn yet";
  EXPECT_TRUE(ishand);
  EXPECT_TRUE(through);
  EXPECT_EQ(cursor(), plain);
}

TEST_F(GromlitDrawTest, HandGoesWhenAnotherButtonEndsTheStroke) {
  Showing("Edit.edit");
  Make("Edit", "edit");
  player->MoveTo(750, 150);
  Pump();
  const unsigned long plain = CursorShown(player->display());
  bool washand = false;
  bool isplain = false;
  std::atomic<bool> drawn = false;
  std::thread user_draws([&] {
    player->Press(3);
    player->MoveTo(760, 150);
    washand = testing::WaitFor([&] { return CursorShown(player->display()) != plain; });
    player->Press(1);
    isplain = testing::WaitFor([&] { return CursorShown(player->display()) == plain; });
    player->Release(3);
    player->Release(1);
    drawn = true;
  });
  EXPECT_TRUE(PumpUntil([&] { return drawn.load(); }));
  user_draws.join();
  EXPECT_TRUE(washand);
  EXPECT_TRUE(isplain) << "while the buttons are still down";
}

TEST_F(GromlitDrawTest, SentEventsDoNotEndAStroke) {
  Showing("Edit.edit");
  Make("Edit", "edit");
  HideMain();
  player->MoveTo(750, 150);
  Pump();
  player->Press(3);
  XEvent release{};
  release.xbutton.type = ButtonRelease;
  release.xbutton.window = root;
  release.xbutton.button = 3;
  XSelectInput(dpy, root, SubstructureNotifyMask);  // as the program does that follows the pointer
  XSync(dpy, False);
  XSendEvent(player->display(), root, False, SubstructureNotifyMask, &release);
  XSync(player->display(), False);
  std::atomic<bool> drawn = false;
  std::thread user_draws([&] {
    for (int x = 760; x <= 850; x += 10) {
      player->MoveTo(x, 150);
      testing::WaitFor([&] { return player->Where().x == x; });
    }
    player->Release(3);
    drawn = true;
  });
  EXPECT_TRUE(PumpUntil([&] { return drawn.load(); }));
  user_draws.join();
  Pump();
  EXPECT_TRUE(Acted());
}

TEST_F(GromlitDrawTest, CaptureThatFindsItsGrabGoneEnds) {
  Make("Edit", "edit");
  player->MoveTo(750, 150);
  Pump();
  player->Press(3);
  XSync(dpy, False);
  // As a handler that runs before may do.
  XUngrabPointer(dpy, CurrentTime);
  XSync(dpy, False);
  player->Release(3);
  Pump();  // would not come back
  EXPECT_TRUE(player->CanGrabPointer());
  EXPECT_FALSE(Viewable(overlay->trail.window));
}

TEST_F(GromlitDrawTest, AnotherDrawButtonsEventsReachTheTrailWindows) {
  user->button = 1;
  RenewDrawEvents(overlay);
  for (const Window window : {overlay->trail.window, overlay->trail.fullwindow}) {
    XWindowAttributes attributes{};
    XGetWindowAttributes(dpy, window, &attributes);
    EXPECT_EQ(attributes.your_event_mask, Button1MotionMask | ButtonReleaseMask);
  }
}

}  // namespace
}  // namespace gromlit
