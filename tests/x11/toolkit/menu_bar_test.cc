// First: the test library's headers do not stand Xlib's macros.
#include "tests/x11/toolkit/menu_fixture.h"

#include "core/option_files.h"
#include "toolkit/menu_bar.h"
#include "toolkit/release_watch.h"

namespace gromlit {
namespace {

using testing::Cost;
using testing::CostOf;
using testing::Picture;
using Names = std::vector<std::string>;

class MenuBarTest : public testing::MenuFixture {
 protected:
  static constexpr int kBarX = 20;  // of the bar in its window
  static constexpr int kBarY = 30;

  static XMenuBar* Bar(Window parent, int width, const std::vector<XPulldown*>& titles) {
    const std::unique_ptr<XPulldown*[]> array(MakePulldownArray(static_cast<int>(titles.size())));
    std::copy(titles.begin(), titles.end(), array.get());
    return MakeMenuBar(parent, kBarX, kBarY, width, labelFontinfo, array.get(),
                       static_cast<int>(titles.size()));
  }

  // Three titles with menus, shown.
  void SetUp() override {
    MenuFixture::SetUp();
    if (HasFatalFailure()) return;
    file = Menu({Item("New"), Item("Open"), Item("Save as something else")});
    edit = Menu({Item("Cut"), Item("Copy")});
    help = Menu({Item("About")});
    bar = Bar(top, 0,
              {MakePulldown("File", file), MakePulldown("Edit", edit), MakePulldown("Help", help)});
    XMapWindow(dpy, bar->window);
    Pump();
  }

  // Moves to a point of the bar, to a title, to a row of the open menu.
  void MoveInBar(int x, int y) {
    MoveTo(kBarX + x, kBarY + y);
    Pump();
  }
  void MoveToTitle(int i) { MoveInBar(bar->itemx[i] + bar->itemwidth[i] / 2, bar->height / 2); }
  void PressTitle(int i) {
    MoveToTitle(i);
    player->Press(1);
    Pump();
    ASSERT_EQ(bar->selected, i);
  }
  void ReleaseButton(int button = 1) {
    player->Release(button);
    Pump();
  }

  // The bar without an open title.
  Picture BarLook() {
    const Window paper = MakeChildWindow(top, 0, 200, bar->width, bar->height, lgrey.pixel, 0);
    XMapRaised(dpy, paper);
    const GC pen = MakeWindowGC(paper, labelFont);
    for (int i = 0; i < bar->nitems; i++) {
      const std::string text = bar->items[i]->label;
      XDrawString(dpy, paper, pen, bar->itemx[i], ih - 3, text.c_str(),
                  static_cast<int>(text.size()));
    }
    const int w = bar->width;
    const int h = bar->height;
    Picture look = Take(paper, 0, 0, w, h);
    look.Line(kWhite, 0, 0, w - 1, 0);
    look.Line(kWhite, 0, 0, 0, h - 1);
    look.Line(kDarkGrey, 1, h - 1, w - 1, h - 1);
    look.Line(kDarkGrey, w - 1, 1, w - 1, h - 1);
    XFreeGC(dpy, pen);
    XDestroyWindow(dpy, paper);
    return look;
  }
  void HighlightTitle(Picture* look, int i, bool flat = false) const {
    look->Bevel(flat ? kLightGrey : kWhite, flat ? kLightGrey : kDarkGrey, bar->itemx[i] - 8, 2,
                bar->itemwidth[i] + 16, ih + 2);
  }
  Picture BarShown() { return Take(bar->window, 0, 0, bar->width, bar->height); }
  // An open menu covers the bar's last two rows: without them.
  Picture BarAboveTheMenu() { return Take(bar->window, 0, 0, bar->width, bar->height - 2); }
  static Picture WithoutLastRows(const Picture& look) {
    Picture part(look.width, look.height - 2, 0);
    std::copy_n(look.pixels.begin(), part.pixels.size(), part.pixels.begin());
    return part;
  }

  XMenu* file = nullptr;
  XMenu* edit = nullptr;
  XMenu* help = nullptr;
  XMenuBar* bar = nullptr;
};

// --- Records ----------------------------------------------------------------------------------

TEST_F(MenuBarTest, WidthZeroIsTheTitlesAndTheirMargins) {
  const int widths[] = {XTextWidth(labelFontinfo, "File", 4), XTextWidth(labelFontinfo, "Edit", 4),
                        XTextWidth(labelFontinfo, "Help", 4)};
  EXPECT_EQ(bar->width, widths[0] + 16 + widths[1] + 16 + widths[2] + 16 + 8);
  EXPECT_EQ(bar->height, ih + 6);
  EXPECT_EQ(bar->itemheight, ih);
  int x = 8;
  for (int i = 0; i < 3; i++) {
    EXPECT_EQ(bar->itemx[i], x);
    EXPECT_EQ(bar->itemwidth[i], widths[i]);
    x += widths[i] + 16;
  }
  EXPECT_EQ(bar->selected, -1);
  EXPECT_EQ(bar->nitems, 3);
  EXPECT_EQ(bar->visible, 3);
  EXPECT_EQ(bar->top, 0);
}

TEST_F(MenuBarTest, GivenWidthIsKept) {
  XMenuBar* wide = Bar(top, 500, {MakePulldown("File", file)});
  EXPECT_EQ(wide->width, 500);
  const XWindowAttributes window = Attributes(wide->window);
  EXPECT_EQ(window.width, 500);
  EXPECT_EQ(window.height, ih + 6);
  EXPECT_EQ(window.x, kBarX);
  EXPECT_EQ(window.y, kBarY);
  EXPECT_EQ(window.border_width, 0);
  EXPECT_EQ(window.save_under, True);
  EXPECT_EQ(window.map_state, IsUnmapped);
  EXPECT_EQ(window.your_event_mask, ExposureMask | ButtonPressMask | ButtonReleaseMask |
                                        ButtonMotionMask | KeyPressMask | KeyReleaseMask);
}

TEST_F(MenuBarTest, TitlesBeyond32AreLeftOut) {
  std::vector<XPulldown*> titles;
  for (int i = 0; i < 40; i++) titles.push_back(MakePulldown("t", nullptr));
  XMenuBar* full = Bar(top, 0, titles);
  EXPECT_EQ(full->nitems, 32);
  EXPECT_EQ(full->visible, 32);
  EXPECT_EQ(full->width, 32 * (XTextWidth(labelFontinfo, "t", 1) + 16) + 8);
  EXPECT_EQ(full->items[31], titles[31]);
}

TEST_F(MenuBarTest, BarWithoutTitlesIgnoresThePointer) {
  XMenuBar* empty = Bar(top, 100, {});
  XMapRaised(dpy, empty->window);
  Pump();
  MoveInBar(20, 5);
  player->Click(1);
  Pump();
  EXPECT_EQ(empty->selected, -1);
}

// --- Looks ------------------------------------------------------------------------------------

TEST_F(MenuBarTest, DrawsFrameAndTitles) {
  const Picture look = BarLook();
  EXPECT_EQ(BarShown(), look);
  EXPECT_GT(look.Count(kBlack, 8, 0, bar->itemwidth[0], ih), 5);
}

TEST_F(MenuBarTest, OpenTitleHasARaisedBevel) {
  Picture expected = BarLook();
  PressTitle(1);
  HighlightTitle(&expected, 1);
  EXPECT_EQ(BarAboveTheMenu(), WithoutLastRows(expected));
  MoveToTitle(2);
  HighlightTitle(&expected, 1, true);
  HighlightTitle(&expected, 2);
  EXPECT_EQ(BarAboveTheMenu(), WithoutLastRows(expected));
  ReleaseButton();
  HighlightTitle(&expected, 2, true);
  EXPECT_EQ(BarShown(), expected);
}

TEST_F(MenuBarTest, ExposeShowsTheOpenMenuAgain) {
  Picture expected = BarLook();
  PressTitle(1);
  HighlightTitle(&expected, 1);
  XUnmapWindow(dpy, edit->window);
  const Window cover = MakeChildWindow(top, kBarX, kBarY, bar->width, bar->height, blue.pixel, 0);
  XMapRaised(dpy, cover);
  XSync(dpy, False);
  ASSERT_FALSE(Mapped(edit));
  XDestroyWindow(dpy, cover);
  Pump();
  EXPECT_EQ(BarAboveTheMenu(), WithoutLastRows(expected));
  EXPECT_TRUE(Mapped(edit));
  ReleaseButton();
  // And not when none is open.
  XClearArea(dpy, bar->window, 0, 0, 0, 0, True);
  Pump();
  EXPECT_FALSE(Mapped(edit));
}

// --- Tracking ---------------------------------------------------------------------------------

TEST_F(MenuBarTest, PressOpensTheMenuBelowItsTitle) {
  PressTitle(1);
  ASSERT_TRUE(Mapped(edit));
  EXPECT_FALSE(Mapped(file));
  EXPECT_EQ(edit->x, kTopX + kBarX + bar->itemx[1] - 8);
  EXPECT_EQ(edit->y, kTopY + kBarY + ih + 4);
  EXPECT_EQ(Attributes(edit->window).x, edit->x);
  EXPECT_EQ(Attributes(edit->window).y, edit->y);
  ReleaseButton();
  EXPECT_FALSE(Mapped(edit));
  EXPECT_EQ(bar->selected, -1);
  EXPECT_EQ(calls, Names());
}

TEST_F(MenuBarTest, EveryButtonThatPressesOpensAndShuts) {
  for (int button = 1; button <= 5; button++) {
    MoveToTitle(0);
    player->Press(button);
    Pump();
    EXPECT_EQ(Mapped(file), button <= 3) << "button " << button;
    ReleaseButton(button);
    EXPECT_FALSE(Mapped(file)) << "button " << button;
  }
}

TEST_F(MenuBarTest, HeldButtonSwitchesToTheNeighbourAndShutsOffTheTitles) {
  PressTitle(0);
  EXPECT_TRUE(Mapped(file));
  MoveToTitle(1);
  EXPECT_EQ(bar->selected, 1);
  EXPECT_FALSE(Mapped(file));
  EXPECT_TRUE(Mapped(edit));
  // Past the last title's margin.
  MoveInBar(bar->itemx[2] + bar->itemwidth[2] + 8, 5);
  EXPECT_EQ(bar->selected, -1);
  EXPECT_FALSE(Mapped(edit));
  MoveToTitle(2);
  EXPECT_EQ(bar->selected, 2);
  EXPECT_TRUE(Mapped(help));
  ReleaseButton();
  EXPECT_EQ(calls, Names());
}

TEST_F(MenuBarTest, MotionWithoutAButtonOpensNothing) {
  MoveToTitle(0);
  MoveToTitle(1);
  EXPECT_EQ(bar->selected, -1);
  EXPECT_FALSE(Mapped(edit));
}

// The press outside belongs to nobody, so that the motion reaches the bar, but the release may not.
TEST_F(MenuBarTest, ButtonPressedElsewhereOpensNothing) {
  player->MoveTo(5, 5);
  player->Press(1);
  Pump();
  MoveToTitle(0);
  MoveToTitle(1);
  EXPECT_EQ(bar->selected, -1);
  EXPECT_FALSE(Mapped(edit));
  ReleaseButton();
  EXPECT_EQ(bar->selected, -1);
  PressTitle(1);
  EXPECT_TRUE(Mapped(edit));
  ReleaseButton();
}

TEST_F(MenuBarTest, TitlesReachEightPixelsBeyondTheirText) {
  const int second = bar->itemx[1] - 8;
  const int end = bar->itemx[2] + bar->itemwidth[2] + 8;
  struct {
    int x;
    int title;
  } const cases[] = {{0, 0},       {second - 1, 0}, {second, 1},
                     {end - 1, 2}, {end, -1},       {bar->width - 1, -1}};
  for (const auto& at : cases) {
    MoveInBar(at.x, bar->height - 1);
    player->Press(1);
    Pump();
    EXPECT_EQ(bar->selected, at.title) << "at " << at.x;
    ReleaseButton();
  }
}

// A motion above the bar tracks the titles by x; one in the two rows at the bar's foot does
// nothing.
TEST_F(MenuBarTest, OnlyXIsTestedAboveTheBarAndNothingAtItsFoot) {
  PressTitle(0);
  MoveInBar(bar->itemx[1], -20);
  EXPECT_EQ(bar->selected, 1);
  MoveInBar(bar->itemx[1], bar->height + 10);
  ASSERT_EQ(edit->selected, 0);
  MoveInBar(bar->itemx[0], bar->height);
  EXPECT_EQ(bar->selected, 1);
  EXPECT_EQ(edit->selected, 0);
  MoveInBar(bar->itemx[0], bar->height - 1);
  EXPECT_EQ(bar->selected, 0);
  ReleaseButton();
}

TEST_F(MenuBarTest, BelowTheBarTheOpenMenuTracks) {
  PressTitle(0);
  for (int i : {0, 2, 1}) {
    MoveInBar(bar->itemx[0] + 20, bar->height + 4 + i * ih + ih / 2);
    EXPECT_EQ(file->selected, i);
    EXPECT_EQ(bar->selected, 0);
  }
  // The rows are taken to begin at the title's text: the menu's first eight pixels are off it.
  MoveInBar(bar->itemx[0] - 1, bar->height + 10);
  EXPECT_EQ(file->selected, -1);
  MoveInBar(bar->itemx[0], bar->height + 1);
  EXPECT_EQ(file->selected, 0);
  MoveInBar(bar->itemx[0] + file->width - 1, bar->height + 10);
  EXPECT_EQ(file->selected, 0);
  MoveInBar(bar->itemx[0] + file->width, bar->height + 10);
  EXPECT_EQ(file->selected, -1);
  ReleaseButton();
  EXPECT_EQ(calls, Names());
}

// --- Choosing ---------------------------------------------------------------------------------

TEST_F(MenuBarTest, ReleaseInTheMenuRunsTheItemAndShutsTheBar) {
  const Picture look = BarLook();
  PressTitle(0);
  MoveInBar(bar->itemx[0] + 20, bar->height + 4 + ih + 5);
  ReleaseButton();
  EXPECT_EQ(calls, Names({"Open"}));
  EXPECT_FALSE(Mapped(file));
  EXPECT_EQ(bar->selected, -1);
  EXPECT_EQ(BarShown(), look);
}

TEST_F(MenuBarTest, ReleaseBelowTheMenuRunsNothing) {
  PressTitle(0);
  MoveInBar(bar->itemx[0] + 20, bar->height + 10);
  MoveInBar(bar->itemx[0] + 20, bar->height + file->height + 30);
  ReleaseButton();
  EXPECT_EQ(calls, Names());
  EXPECT_FALSE(Mapped(file));
}

TEST_F(MenuBarTest, ReleaseBackInTheBarRunsNothing) {
  PressTitle(0);
  MoveInBar(bar->itemx[0] + 20, bar->height + 10);
  ASSERT_EQ(file->selected, 0);
  MoveToTitle(0);
  ReleaseButton();
  EXPECT_EQ(calls, Names());
  EXPECT_FALSE(Mapped(file));
  EXPECT_EQ(bar->selected, -1);
}

TEST_F(MenuBarTest, SubmenuOfATitleRunsItsItemThenTheParents) {
  XMenu* recent = Menu({Item("one"), Item("two")});
  Remake(file, {Item("New"), Item("Recent", recent)});
  PressTitle(0);
  MoveInBar(bar->itemx[0] + 10, bar->height + 4 + ih + 5);
  ASSERT_TRUE(Mapped(recent));
  EXPECT_EQ(recent->x, file->x + file->width);
  MoveToItem(recent, 1);
  EXPECT_EQ(recent->selected, 1);
  ReleaseButton();
  EXPECT_EQ(calls, Names({"two", "Recent"}));
  EXPECT_FALSE(Mapped(recent));
  EXPECT_FALSE(Mapped(file));
}

TEST_F(MenuBarTest, OtherTitleClosesTheSubmenusToo) {
  XMenu* recent = Menu({Item("one"), Item("two")});
  Remake(file, {Item("Recent", recent)});
  PressTitle(0);
  MoveInBar(bar->itemx[0] + 10, bar->height + 10);
  ASSERT_TRUE(Mapped(recent));
  MoveToTitle(1);
  EXPECT_FALSE(Mapped(recent));
  EXPECT_FALSE(Mapped(file));
  EXPECT_EQ(file->submenu, nullptr);
  ReleaseButton();
}

TEST_F(MenuBarTest, SecondButtonsReleaseRunsTheItemNotAgain) {
  PressTitle(0);
  MoveInBar(bar->itemx[0] + 10, bar->height + 10);
  player->Press(3);
  player->Release(3);
  player->Release(1);
  Pump();
  EXPECT_EQ(calls, Names({"New"}));
  EXPECT_FALSE(Mapped(file));
  EXPECT_EQ(bar->selected, -1);
}

// The button that stays down after the choice goes on tracking, and its release shuts what it
// opened.
TEST_F(MenuBarTest, ButtonThatIsStillDownMayOpenAndShutsAgain) {
  PressTitle(0);
  player->Press(3);
  Pump();
  ReleaseButton(3);
  EXPECT_EQ(bar->selected, -1);
  MoveToTitle(1);
  EXPECT_TRUE(Mapped(edit));
  ReleaseButton(1);
  EXPECT_FALSE(Mapped(edit));
  EXPECT_EQ(bar->selected, -1);
}

// A press that waited in the queue while another menu opened: the release goes to that menu.
TEST_F(MenuBarTest, HiddenWhileATitleIsHeldItShuts) {
  PressTitle(0);
  MoveToItem(file, 1);
  ShutHiddenMenuBar();
  EXPECT_EQ(bar->selected, 0) << "can be seen";
  XUnmapWindow(player->display(), top);
  XSync(player->display(), False);
  ShutHiddenMenuBar();
  Pump();
  EXPECT_EQ(bar->selected, -1);
  EXPECT_FALSE(Mapped(file));
  ReleaseButton();
  EXPECT_TRUE(calls.empty());
  // Nothing is left of it when the window comes back, even with the button down.
  XMapWindow(dpy, top);
  Pump();
  player->MoveTo(1, 1);
  player->Press(1);
  MoveToTitle(1);
  EXPECT_EQ(bar->selected, -1);
  ReleaseButton();
  PressTitle(1);
  EXPECT_TRUE(Mapped(edit));
  ReleaseButton();
  EXPECT_FALSE(Mapped(edit));
}

// As it happens where a window manager is started again: the press is read when its grab has ended.
TEST_F(MenuBarTest, ReleaseThatNeverComesShutsIt) {
  MoveToTitle(0);
  player->Press(1);
  XUnmapWindow(player->display(), top);
  XMapWindow(player->display(), top);
  XSync(player->display(), False);
  player->MoveTo(1, 1);
  player->Release(1);
  Pump();
  ASSERT_EQ(bar->selected, 0) << "the press comes late";
  EXPECT_TRUE(testing::WaitFor([this] {
    LookForRelease();
    return bar->selected == -1;
  }));
  Pump();
  EXPECT_FALSE(Mapped(file));
  EXPECT_EQ(ReleaseWait(), -1) << "nothing wakes the program from now on";
  EXPECT_TRUE(calls.empty());
}

TEST_F(MenuBarTest, ButtonThatStaysDownKeepsItOpen) {
  PressTitle(0);
  const auto start = std::chrono::steady_clock::now();
  EXPECT_FALSE(testing::WaitFor(
      [this] {
        LookForRelease();
        return bar->selected == -1;
      },
      std::chrono::milliseconds(600)))
      << std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
  ReleaseButton();
  EXPECT_EQ(bar->selected, -1);
  EXPECT_EQ(ReleaseWait(), -1);
}

// A menu that a key or another program's word opens takes the pointer, and with it the release.
TEST_F(MenuBarTest, MenuThatTakesThePointerShutsTheBarThatIsHeld) {
  GetUserOptions();
  DefaultUserOptions(user);
  for (const int manners : {kPlainManners, kModernManners}) {
    user->temp4 = kPlainManners;
    PressTitle(0);
    ASSERT_TRUE(Mapped(file));
    user->temp4 = manners;
    XMenu* other = Menu({Item("Other")});
    ASSERT_TRUE(PopUpMenuGrabbed(600, 500, other, nullptr));
    Pump();
    EXPECT_EQ(bar->selected, -1);
    EXPECT_FALSE(Mapped(file));
    EXPECT_TRUE(Mapped(other));
    ReleaseButton();
    CloseGrabbedMenu();
    MoveToTitle(1);
    EXPECT_EQ(bar->selected, -1) << "nothing is held any more";
    EXPECT_EQ(ReleaseWait(), -1);
  }
  user->temp4 = kPlainManners;
  EXPECT_TRUE(calls.empty());
}

TEST_F(MenuBarTest, AskingForHiddenBarsCostsNothingWhileNoneIsHeld) {
  EXPECT_EQ(CostOf([] { ShutHiddenMenuBar(); }), (Cost{0, 0}));
  PressTitle(0);
  ReleaseButton();
  EXPECT_EQ(CostOf([] { ShutHiddenMenuBar(); }), (Cost{0, 0}));
}

TEST_F(MenuBarTest, PressWhileAnotherMenuHasThePointerOpensNothing) {
  XMenu* other = Menu({Item("Other")});
  MoveToTitle(0);
  player->Press(1);
  MoveTo(kBarX + bar->itemx[1], kBarY + 5);
  ASSERT_TRUE(PopUpMenuGrabbed(900, 500, other));
  Pump();
  EXPECT_EQ(bar->selected, -1);
  EXPECT_FALSE(Mapped(file));
  EXPECT_FALSE(Mapped(edit));
  ReleaseButton();
  EXPECT_FALSE(Mapped(other));
}

TEST_F(MenuBarTest, ActionMayRebuildTheOpenTitlesMenu) {
  Remake(file,
         {MakeMenuItem(
             "Rebuild", [](XMenu* menu, void*) { Remake(menu, {Item("New one")}); }, nullptr)});
  PressTitle(0);
  MoveInBar(bar->itemx[0] + 10, bar->height + 10);
  ReleaseButton();
  EXPECT_EQ(bar->selected, -1);
  EXPECT_FALSE(Mapped(file));
  PressTitle(0);
  MoveInBar(bar->itemx[0] + 10, bar->height + 10);
  ReleaseButton();
  EXPECT_EQ(calls, Names({"New one"}));
}

// Filled anew while it hangs open: closed, and the held button finds nothing to choose.
TEST_F(MenuBarTest, MenuFilledAnewWhileOpenIsClosed) {
  PressTitle(0);
  MoveInBar(bar->itemx[0] + 10, bar->height + 10);
  Remake(file, {Item("Other")});
  MoveInBar(bar->itemx[0] + 12, bar->height + 12);
  XClearArea(dpy, bar->window, 0, 0, 0, 0, True);
  Pump();
  EXPECT_FALSE(Mapped(file));
  EXPECT_EQ(file->selected, -1);
  ReleaseButton();
  EXPECT_EQ(calls, Names());
  EXPECT_EQ(bar->selected, -1);
}

TEST_F(MenuBarTest, TitleWithoutAMenuIsHighlightedOnly) {
  XMenuBar* plain = Bar(top, 0, {MakePulldown("Nothing", nullptr), MakePulldown("Edit", edit)});
  XMapRaised(dpy, plain->window);
  Pump();
  MoveInBar(plain->itemx[0], 5);
  player->Press(1);
  Pump();
  EXPECT_EQ(plain->selected, 0);
  EXPECT_EQ(PixelOf(plain->window, 0, 5), kWhite);
  MoveInBar(plain->itemx[0], 60);
  MoveInBar(plain->itemx[1], 5);
  EXPECT_TRUE(Mapped(edit));
  MoveInBar(plain->itemx[0], 5);
  EXPECT_FALSE(Mapped(edit));
  ReleaseButton();
  EXPECT_EQ(plain->selected, -1);
}

// --- Cost -------------------------------------------------------------------------------------

XEvent At(int x, int y) {
  XEvent event{};
  event.type = MotionNotify;
  event.xmotion.x = x;
  event.xmotion.y = y;
  return event;
}

TEST_F(MenuBarTest, Costs) {
  EXPECT_EQ(CostOf([&] { Bar(top, 0, {MakePulldown("File", file)}); }), (Cost{2, 0})) << "create";
  // Clear, two colours and line sets of the frame, the text colour, three titles.
  EXPECT_EQ(CostOf([&] { DrawMenuBar(bar, nullptr); }), (Cost{9, 0})) << "expose";
  // The bevel, the place on the screen, move and map.
  XEvent event = At(bar->itemx[0], 5);
  EXPECT_EQ(CostOf([&] { MenuBarButtonPress(bar, &event); }), (Cost{7, 1})) << "press";
  event = At(bar->itemx[0] + 1, 5);
  EXPECT_EQ(CostOf([&] { MenuBarMotionNotify(bar, &event); }), (Cost{0, 0})) << "same title";
  event = At(bar->itemx[1], 5);
  EXPECT_EQ(CostOf([&] { MenuBarMotionNotify(bar, &event); }), (Cost{11, 1})) << "next title";
  event = At(bar->itemx[1] + 5, bar->height + 8);
  MenuBarMotionNotify(bar, &event);
  event = At(bar->itemx[1] + 5, bar->height + ih + 8);
  EXPECT_EQ(CostOf([&] { MenuBarMotionNotify(bar, &event); }), (Cost{7, 0})) << "next item";
  EXPECT_EQ(CostOf([&] { DrawMenuBar(bar, nullptr); }), (Cost{14, 0})) << "expose while open";
  event = At(bar->itemx[1] + 5, bar->height + ih + 8);
  // Twice unmapped: by the choice, and by the bar that shuts.
  EXPECT_EQ(CostOf([&] { MenuBarButtonRelease(bar, &event); }), (Cost{5, 0})) << "release";
  EXPECT_EQ(calls, Names({"Copy"}));
}

}  // namespace
}  // namespace gromlit
