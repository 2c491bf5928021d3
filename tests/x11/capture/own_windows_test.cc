// The program's own windows while the left button draws: its clicks come back to them as a press
// and a release that the capture sends, when no button is down any more.
//
// First: the test library's headers cannot bear Xlib's macros.
#include "tests/support/x_fixture.h"

#include <X11/Xutil.h>
#include <X11/keysym.h>

#include <atomic>
#include <memory>
#include <thread>

#include "app/main_window/main_window.h"
#include "app/preferences/user_options_window.h"
#include "app/windows/dialogs.h"
#include "capture/gromlit_draw.h"
#include "core/option_files.h"
#include "core/plugin_files.h"
#include "display/draw_button.h"
#include "display/modes.h"
#include "toolkit/menu_bar.h"
#include "toolkit/press_time.h"
#include "toolkit/scrollbar.h"

namespace gromlit {
namespace {

GromlitDraw* draw = nullptr;

class OwnWindows : public testing::XFixture {
 protected:
  void SetUp() override {
    XFixture::SetUp();
    if (HasFatalFailure()) return;
    GetUserOptions();
    *user = {};
    DefaultUserOptions(user);
    user->button = 1;
    ASSERT_TRUE(GrabDrawButton(1));
    editingPlugin = 0;
    MakeAboutDialog();
    draw = MakeGromlitDraw();
    app = MakeGromlitApp(6, 3);
    draw->app = app;
    LoadPlugins();
    app->plugin = GetDefaultPlugin();
    CreateUserOptions();
    drawButtonChanged = [] { RenewDrawEvents(draw); };
    UpdateUserOptions(user);
    XMoveWindow(dpy, app->window, 600, 0);
    XMapWindow(dpy, app->window);
    mbPrefDraw(nullptr, nullptr);
    Pump();
  }
  void TearDown() override {
    player->KeyUp(XK_Shift_L);
    for (int button = 1; button <= 3; button++) player->Release(button);
    Pump();
    EXPECT_TRUE(player->CanGrabPointer()) << "the pointer was left grabbed";
    drawButtonChanged = nullptr;
    XFixture::TearDown();
  }

  bool Viewable(Window window) {
    XWindowAttributes attributes{};
    EXPECT_NE(XGetWindowAttributes(dpy, window, &attributes), 0);
    return attributes.map_state == IsViewable;
  }
  void MoveTo(Window window, int x, int y) {
    int rootx;
    int rooty;
    Window child;
    XTranslateCoordinates(dpy, window, root, x, y, &rootx, &rooty, &child);
    player->MoveTo(rootx, rooty);
    Pump();
  }
  // A whole click before anything is handled, as quick as a user's finger may be; or press and
  // release handled one by one, where they are not captured.
  void Click(Window window, int x = 6, int y = 6) {
    MoveTo(window, x, y);
    player->Click(1);
    Pump();
  }
  void MoveToRow(const XMenu* menu, int row) {
    MoveTo(menu->window, menu->width / 2, 4 + menu->itemheight * row + menu->itemheight / 2);
  }
  long TrailEvents() {
    XWindowAttributes attributes{};
    XGetWindowAttributes(dpy, draw->trail.window, &attributes);
    return attributes.your_event_mask;
  }
};

TEST_F(OwnWindows, ButtonRunsAndGivesThePointerBack) {
  Click(opt->bdefaults->window);
  EXPECT_STREQ(opt->button->label, "Right");
  EXPECT_EQ(opt->bdefaults->state, kButtonActive);
  EXPECT_TRUE(player->CanGrabPointer());
  Click(opt->bcancel->window);
  EXPECT_FALSE(Viewable(opt->window));
  EXPECT_EQ(user->button, 1);
}

TEST_F(OwnWindows, CheckBoxTurnsOverOnce) {
  ASSERT_EQ(opt->dosplash->state, 1);
  Click(opt->dosplash->window);
  EXPECT_EQ(opt->dosplash->state, 0);
  EXPECT_EQ(opt->usr.splash, 0);
  Click(opt->dosplash->window);
  EXPECT_EQ(opt->dosplash->state, 1);
}

TEST_F(OwnWindows, PulldownOpensWithOneClickAndIsChosenFromWithTheNext) {
  Click(opt->tolerance->window);
  XMenu* const menu = opt->tolerance->menu;
  ASSERT_TRUE(Viewable(menu->window));
  MoveToRow(menu, 2);
  EXPECT_EQ(menu->selected, 2);
  player->Click(1);
  Pump();
  EXPECT_FALSE(Viewable(menu->window));
  EXPECT_STREQ(opt->tolerance->label, "High");
  EXPECT_TRUE(player->CanGrabPointer());
}

// The user draws while the program captures: each step waits until the server has thawed the
// pointer up to there, since motion that arrives meanwhile would be merged.
TEST_F(OwnWindows, StrokeOverAWindowOfOursPressesNothing) {
  MoveTo(opt->bcancel->window, 6, 6);
  const auto start = player->Where();
  std::atomic<bool> drawn = false;
  std::thread user_draws([&] {
    player->Press(1);
    for (int step = 1; step <= 4; step++) {
      player->MoveTo(start.x + 8 * step, start.y);
      testing::WaitFor([&] { return player->Where().x == start.x + 8 * step; });
    }
    player->Release(1);
    drawn = true;
  });
  EXPECT_TRUE(PumpUntil([&] { return drawn.load(); }));
  user_draws.join();
  Pump();
  EXPECT_TRUE(Viewable(opt->window)) << "Cancel was not pressed";
  EXPECT_EQ(opt->bcancel->state, kButtonActive);
}

int presses;
bool sent;

void SeePress(void*, XEvent* event) {
  presses++;
  sent = event->xany.send_event != 0;
}

TEST_F(OwnWindows, ClickWithShiftPassesUntouched) {
  presses = 0;
  SetHandler(opt->logo->wobj, ButtonPress, SeePress);
  Click(opt->logo->window);
  EXPECT_EQ(presses, 1);
  EXPECT_TRUE(sent) << "without Shift it is handed on";
  player->KeyDown(XK_Shift_L);
  Click(opt->logo->window);
  EXPECT_EQ(presses, 2);
  EXPECT_FALSE(sent);
}

TEST_F(OwnWindows, WithShiftAButtonIsHeldAndAPulldownDragged) {
  player->KeyDown(XK_Shift_L);
  MoveTo(opt->bcancel->window, 6, 6);
  player->Press(1);
  Pump();
  EXPECT_EQ(opt->bcancel->state, kButtonPressed);
  player->MoveTo(900, 900);
  player->Release(1);
  Pump();
  EXPECT_EQ(opt->bcancel->state, kButtonActive);
  EXPECT_TRUE(Viewable(opt->window));

  MoveTo(opt->button->window, 6, 6);
  player->Press(1);
  Pump();
  ASSERT_TRUE(Viewable(opt->button->menu->window));
  MoveToRow(opt->button->menu, 1);
  player->Release(1);
  Pump();
  EXPECT_STREQ(opt->button->label, "Middle");
}

// The way back that the help describes.
TEST_F(OwnWindows, AnotherDrawButtonIsChosenWithShift) {
  player->KeyDown(XK_Shift_L);
  MoveTo(opt->button->window, 6, 6);
  player->Press(1);
  Pump();
  MoveToRow(opt->button->menu, 0);
  player->Release(1);
  Pump();
  player->KeyUp(XK_Shift_L);
  EXPECT_STREQ(opt->button->label, "Right");
  EXPECT_EQ(TrailEvents(), Button1MotionMask | ButtonReleaseMask);
  Click(opt->bsave->window);
  EXPECT_FALSE(Viewable(opt->window));
  EXPECT_EQ(user->button, 3);
  EXPECT_EQ(GrabbedDrawButton(), 3);
  EXPECT_EQ(TrailEvents(), Button3MotionMask | ButtonReleaseMask) << "the overlay is renewed";

  // The left button is an ordinary one again.
  mbPrefDraw(nullptr, nullptr);
  Pump();
  MoveTo(opt->bcancel->window, 6, 6);
  player->Press(1);
  Pump();
  EXPECT_EQ(opt->bcancel->state, kButtonPressed);
  player->Release(1);
  Pump();
  EXPECT_FALSE(Viewable(opt->window));
}

TEST_F(OwnWindows, AnotherDrawButtonIsChosenWithClicksAlone) {
  Click(opt->button->window);
  MoveToRow(opt->button->menu, 1);
  player->Click(1);
  Pump();
  Click(opt->bsave->window);
  EXPECT_FALSE(Viewable(opt->window));
  EXPECT_EQ(GrabbedDrawButton(), 2);
  EXPECT_EQ(TrailEvents(), Button2MotionMask | ButtonReleaseMask);
}

TEST_F(OwnWindows, ChosenLeftButtonDrawsAtOnce) {
  Click(opt->button->window);  // away from it ...
  MoveToRow(opt->button->menu, 0);
  player->Click(1);
  Pump();
  Click(opt->bsave->window);
  ASSERT_EQ(GrabbedDrawButton(), 3);
  mbPrefDraw(nullptr, nullptr);
  Pump();
  MoveTo(opt->button->window, 6, 6);  // ... and back
  player->Press(1);
  Pump();
  MoveToRow(opt->button->menu, 2);
  player->Release(1);
  Pump();
  Click(opt->bsave->window);
  ASSERT_EQ(GrabbedDrawButton(), 1);
  EXPECT_EQ(TrailEvents(), Button1MotionMask | ButtonReleaseMask);
  // A press on the bare screen is captured now: what is below does not see it until the release.
  presses = 0;
  SetHandler(opt->logo->wobj, ButtonPress, SeePress);
  mbPrefDraw(nullptr, nullptr);
  Pump();
  Click(opt->logo->window);
  EXPECT_EQ(presses, 1);
  EXPECT_TRUE(sent);
}

TEST_F(OwnWindows, DialogIsClosedWithShift) {
  ShowFailure("A notice.");
  Pump();
  player->KeyDown(XK_Shift_L);
  Click(notice->no->window);
  EXPECT_FALSE(Viewable(notice->window));
}

TEST_F(OwnWindows, DialogIsClosedWithAClick) {
  ShowFailure("A notice.");
  Pump();
  Click(notice->no->window);
  EXPECT_FALSE(Viewable(notice->window));
}

// A click that is handed on carries no time.
TEST_F(OwnWindows, ClicksOnAnActionAreDoubleOnlyWhenTheyAreQuick) {
  auto action = std::make_unique<GromlitAction>();
  GromlitPlugin* const shown = app->plugin;
  const auto nactions = shown->nactions;
  shown->actions[0] = action.get();
  shown->nactions = 1;
  const auto click = [&] { Click(app->window, app->iconx + 30, app->icony + 20); };
  DrawGromlitApp(app);
  const auto since = [] { return PressTime({}) - static_cast<uint32_t>(AppLastClick); };
  click();
  EXPECT_EQ(app->selected, 0);
  ASSERT_TRUE(testing::WaitFor([&] { return since() > 600; }));
  click();
  EXPECT_EQ(app->selected, -1) << "a single click on the selected action deselects it";
  uint32_t took = 0;
  do {  // again when the machine was too busy for two quick clicks
    ASSERT_TRUE(testing::WaitFor([&] { return since() > 600; }));
    app->selected = -1;
    const uint32_t begin = PressTime({});
    click();
    click();
    took = PressTime({}) - begin;
  } while (took > 400);
  EXPECT_EQ(app->selected, 0) << "the second of a double click keeps it";
  editingPlugin = 0;
  shown->actions[0] = nullptr;
  shown->nactions = nactions;
}

// --- The widgets that these windows are made of -----------------------------------------------

TEST_F(OwnWindows, MenuBarIsOpenedAndChosenFromWithShift) {
  static int chosen;
  chosen = 0;
  XMenuItem* items[] = {MakeMenuItem(
                            "First", [](XMenu*, void*) { chosen = 1; }, nullptr),
                        MakeMenuItem(
                            "Second", [](XMenu*, void*) { chosen = 2; }, nullptr)};
  XMenu* const menu = MakeMenu(root, 0, 0, labelFontinfo, items, 2);
  XPulldown* titles[] = {MakePulldown("Title", menu)};
  XMenuBar* const bar = MakeMenuBar(opt->window, 16, 60, 200, labelFontinfo, titles, 1);
  XMapRaised(dpy, bar->window);
  Pump();
  // A plain click opens the menu and closes it again; nothing stays.
  Click(bar->window, bar->itemx[0] + 2, 6);
  EXPECT_FALSE(Viewable(menu->window));
  EXPECT_EQ(chosen, 0);
  EXPECT_TRUE(player->CanGrabPointer());
  player->KeyDown(XK_Shift_L);
  MoveTo(bar->window, bar->itemx[0] + 2, 6);
  player->Press(1);
  Pump();
  ASSERT_TRUE(Viewable(menu->window));
  MoveToRow(menu, 1);
  player->Release(1);
  Pump();
  EXPECT_FALSE(Viewable(menu->window));
  EXPECT_EQ(chosen, 2);
}

TEST_F(OwnWindows, ClickOnAScrollbarEndsAtOnce) {
  XScrollbar* const bar = MakeScrollbar(opt->window, 520, 60, 200);
  XMapRaised(dpy, bar->window);
  Pump();
  Click(bar->window, 7, 120);
  EXPECT_TRUE(player->CanGrabPointer());
}

}  // namespace
}  // namespace gromlit
