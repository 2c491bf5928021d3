// First: the test library's headers do not stand Xlib's macros.
#include "tests/x11/toolkit/menu_fixture.h"

namespace gromlit {
namespace {

using testing::Cost;
using testing::CostOf;
using testing::Picture;
using Names = std::vector<std::string>;

// A window whose press opens a menu at the pointer, as a window with a context menu does.
struct Host {
  WindowObj* wobj;
  Window window;
  XMenu* menu;
  int opened;
};

void HostPress(Host* host, XEvent* event) {
  host->opened += PopUpMenuGrabbed(event->xbutton.x_root, event->xbutton.y_root, host->menu);
}

class MenuTest : public testing::MenuFixture {
 protected:
  static constexpr int kX = 300;  // where tests open menus, on the screen
  static constexpr int kY = 200;

  void SetUp() override {
    MenuFixture::SetUp();
    if (HasFatalFailure()) return;
    host.window = MakeChildWindow(top, 0, 0, 600, 400, lgrey.pixel, ButtonPressMask);
    host.wobj = AllocWindowObj(host.window, &host);
    host.menu = nullptr;
    host.opened = 0;
    On<ButtonPress, HostPress>(&host);
    XMapWindow(dpy, host.window);
    Pump();
  }

  // The user presses at (kX, kY), where the menu opens, and keeps the button down.
  void PressFor(XMenu* menu, int button = 1) {
    host.menu = menu;
    player->MoveTo(kX, kY);
    player->Press(button);
    Pump();
    ASSERT_TRUE(Mapped(menu));
    ASSERT_FALSE(player->CanGrabPointer());
  }

  void ReleaseButton(int button = 1) {
    player->Release(button);
    Pump();
  }

  static inline Host host{};  // outlives the test: the table keeps its address
};

// --- Records ----------------------------------------------------------------------------------

TEST_F(MenuTest, NewMenuIsAsWideAsItsWidestCaption) {
  XMenu* menu = Menu({Item("One"), Item("A longer caption"), Item("Two")});
  EXPECT_EQ(menu->itemheight,
            labelFontinfo->max_bounds.ascent + labelFontinfo->max_bounds.descent + 6);
  EXPECT_EQ(menu->width, XTextWidth(labelFontinfo, "A longer caption", 16) + 16);
  EXPECT_EQ(menu->height, 3 * menu->itemheight + 6);
  EXPECT_EQ(menu->nitems, 3);
  EXPECT_EQ(menu->visible, 3);
  EXPECT_EQ(menu->top, 0);
  EXPECT_EQ(menu->selected, -1);
  EXPECT_EQ(menu->pulldown, nullptr);
  EXPECT_EQ(menu->submenu, nullptr);
  EXPECT_EQ(menu->wobj->obj, menu);
  EXPECT_EQ(menu->wobj->window, menu->window);
}

TEST_F(MenuTest, NewWindowIsUnframedUnmappedAndSelectsTheMenusEvents) {
  XMenu* menu = Menu({Item("One")});
  const XWindowAttributes window = Attributes(menu->window);
  EXPECT_EQ(window.map_state, IsUnmapped);
  EXPECT_EQ(window.override_redirect, True);
  EXPECT_EQ(window.border_width, 0);
  EXPECT_EQ(window.width, menu->width);
  EXPECT_EQ(window.height, menu->height);
  EXPECT_EQ(window.your_event_mask,
            ExposureMask | Button1MotionMask | ButtonPressMask | KeyPressMask | KeyReleaseMask);
}

TEST_F(MenuTest, ItemWithASubmenuCountsItsArrow) {
  XMenu* submenu = Menu({Item("x")});
  XMenu* menu = Menu({Item("more...", submenu), Item("plain")});
  EXPECT_EQ(menu->width, XTextWidth(labelFontinfo, "more...", 7) + 11 + 4 + 16);
}

TEST_F(MenuTest, MenuWithoutItemsIsAFrame) {
  XMenu* menu = Menu({});
  EXPECT_EQ(menu->width, 16);
  EXPECT_EQ(menu->height, 6);
  PressFor(menu);
  MoveIn(menu, 5, 3);
  EXPECT_EQ(menu->selected, -1);
  ReleaseButton();
  EXPECT_FALSE(Mapped(menu));
}

TEST_F(MenuTest, ItemsBeyond256AreLeftOut) {
  std::vector<XMenuItem*> items;
  for (int i = 0; i < 300; i++) items.push_back(Item(i == 280 ? "the widest of them all" : "row"));
  XMenu* menu = Menu(items);
  EXPECT_EQ(menu->nitems, 256);
  EXPECT_EQ(menu->visible, 256);
  EXPECT_EQ(menu->height, 256 * ih + 6);
  EXPECT_EQ(menu->width, XTextWidth(labelFontinfo, "row", 3) + 16);
  EXPECT_EQ(menu->items[255], items[255]);
  EXPECT_EQ(menu->pulldown, nullptr);
}

TEST_F(MenuTest, NewArraysAreEmptyAndItemsHaveNoSubmenu) {
  const std::unique_ptr<XMenuItem*[]> array(MakeMenuItemArray(10));
  for (int i = 0; i < 10; i++) EXPECT_EQ(array[static_cast<size_t>(i)], nullptr);
  int arg = 0;
  const std::unique_ptr<XMenuItem> item(MakeMenuItem("caption", Log, &arg));
  EXPECT_STREQ(item->label, "caption");
  EXPECT_EQ(item->action, Log);
  EXPECT_EQ(item->arg, &arg);
  EXPECT_EQ(item->submenu, nullptr);
}

// --- Looks ------------------------------------------------------------------------------------

TEST_F(MenuTest, DrawsFrameCaptionsAndArrows) {
  XMenu* submenu = Menu({Item("x")});
  XMenu* menu = Menu({Item("First"), Item("more...", submenu), Item("Third")});
  const Picture look = Look(menu);
  PopUpMenu(kX, kY, menu);
  Pump();
  EXPECT_EQ(Shown(menu), look);
  EXPECT_GT(look.Count(kBlack, 6, 0, 20, ih), 5) << "no caption was drawn";
  EXPECT_GT(look.Count(0xe8e8e8, menu->width - 15, ih, 11, ih) +
                look.Count(kDarkGrey, menu->width - 15, ih, 11, ih),
            5)
      << "no arrow was drawn";
  PopDownMenu(menu);
}

TEST_F(MenuTest, HighlightIsARaisedBevelAroundTheRow) {
  XMenu* menu = Menu({Item("First"), Item("Second"), Item("Third")});
  const Picture plain = Look(menu);
  PressFor(menu);
  for (int i : {1, 2, 0, 2, 1}) {
    MoveToItem(menu, i);
    EXPECT_EQ(menu->selected, i);
    Picture expected = plain;
    Highlight(&expected, menu, i);
    EXPECT_EQ(Shown(menu), expected) << "item " << i;
  }
  MoveIn(menu, -20, 5);
  EXPECT_EQ(menu->selected, -1);
  EXPECT_EQ(Shown(menu), plain);
  ReleaseButton();
}

TEST_F(MenuTest, UncoveredMenuShowsItsHighlightAgain) {
  XMenu* menu = Menu({Item("First"), Item("Second"), Item("Third")});
  Picture expected = Look(menu);
  Highlight(&expected, menu, 1);
  PressFor(menu);
  MoveToItem(menu, 1);
  const Window cover = MakeChildWindow(top, 0, 0, 10, 10, blue.pixel, 0);
  XReparentWindow(dpy, cover, menu->window, 0, 0);
  XMoveResizeWindow(dpy, cover, 0, 0, 500, 500);
  XMapWindow(dpy, cover);
  XSync(dpy, False);
  EXPECT_EQ(PixelOf(menu->window, 10, 10), kBlue);
  XDestroyWindow(dpy, cover);
  Pump();
  EXPECT_EQ(Shown(menu), expected);
  ReleaseButton();
}

// Everything but the two bevels keeps the paint that was thrown over the menu.
TEST_F(MenuTest, MovingBetweenTwoItemsRepaintsOnlyTheTwoRows) {
  XMenu* menu = Menu({Item("First"), Item("Second"), Item("Third"), Item("Fourth")});
  PressFor(menu);
  MoveToItem(menu, 0);
  const GC paint = MakeWindowGC(menu->window);
  FillRectangle(menu->window, paint, blue.pixel, 0, 0, menu->width, menu->height);
  XFreeGC(dpy, paint);
  MoveToItem(menu, 2);
  Picture expected(menu->width, menu->height, kBlue);
  expected.Bevel(kLightGrey, kLightGrey, 2, 2, menu->width - 4, ih + 2);
  Highlight(&expected, menu, 2);
  EXPECT_EQ(Shown(menu), expected);
  ReleaseButton();
}

TEST_F(MenuTest, TopAndVisibleChooseTheRowsThatAreDrawn) {
  XMenu* menu = Menu({Item("First"), Item("Second"), Item("Third"), Item("Fourth")});
  XMenu* same = Menu({Item("Second"), Item("Third")});
  Picture look = Look(same);
  menu->top = 1;
  menu->visible = 2;
  PopUpMenu(kX, kY, menu);
  Pump();
  const Picture shown = Take(menu->window, 4, 2, 30, 2 * ih);
  for (int y = 0; y < 2 * ih; y++) {
    for (int x = 0; x < 30; x++) ASSERT_EQ(shown.At(x, y), look.At(x + 4, y + 2)) << x << " " << y;
  }
  EXPECT_EQ(Take(menu->window, 4, 2 * ih + 3, 30, 2 * ih), Picture(30, 2 * ih, kLightGrey));
  // More rows than there are items draw nothing further.
  menu->visible = 20;
  DrawMenu(menu, nullptr);
  EXPECT_EQ(Take(menu->window, 4, 3 * ih + 3, 30, ih), Picture(30, ih, kLightGrey));
  PopDownMenu(menu);
}

// The highlight of a row just behind the drawn ones is erased, that of a later one is not.
TEST_F(MenuTest, OldHighlightIsErasedUpToTheRowBehindTheLastVisible) {
  XMenu* menu = Menu({Item("First"), Item("Second"), Item("Third"), Item("Fourth")});
  PressFor(menu);
  menu->visible = 1;
  MoveToItem(menu, 1);
  EXPECT_EQ(PixelOf(menu->window, 2, ih + 10), kWhite);
  MoveToItem(menu, 3);
  EXPECT_EQ(PixelOf(menu->window, 2, ih + 10), kLightGrey);
  EXPECT_EQ(PixelOf(menu->window, 2, 3 * ih + 10), kWhite);
  MoveToItem(menu, 0);
  EXPECT_EQ(PixelOf(menu->window, 2, 3 * ih + 10), kWhite);
  ReleaseButton();
}

// --- Tracking ---------------------------------------------------------------------------------

TEST_F(MenuTest, RowsBeginFourPixelsDownAndTheFirstTakesThePixelsAboveIt) {
  XMenu* menu = Menu({Item("First"), Item("Second"), Item("Third")});
  PressFor(menu);
  struct {
    int x;
    int y;
    int item;
  } const cases[] = {{10, -3, -1},
                     {10, -1, -1},
                     {10, 0, -1},
                     {10, 1, 0},
                     {10, 3, 0},
                     {10, 4, 0},
                     {10, ih + 3, 0},
                     {10, ih + 4, 1},
                     {10, 3 * ih + 3, 2},
                     {10, 3 * ih + 4, -1},
                     {-1, 10, -1},
                     {0, 10, 0},
                     {menu->width, 10, -1},
                     {menu->width - 1, 10, 0}};
  for (const auto& at : cases) {
    MoveIn(menu, -50, -50);
    ASSERT_EQ(menu->selected, -1);
    MoveIn(menu, at.x, at.y);
    EXPECT_EQ(menu->selected, at.item) << "at " << at.x << ", " << at.y;
  }
  ReleaseButton();
}

TEST_F(MenuTest, SubmenuOpensAtTheRightEdgeLevelWithTheTop) {
  XMenu* submenu = Menu({Item("Inner"), Item("Inmost")});
  XMenu* menu = Menu({Item("First"), Item("Second"), Item("more...", submenu)});
  PressFor(menu);
  MoveToItem(menu, 2);
  EXPECT_EQ(menu->submenu, submenu);
  ASSERT_TRUE(Mapped(submenu));
  EXPECT_EQ(submenu->x, kX + menu->width);
  EXPECT_EQ(submenu->y, kY);
  EXPECT_EQ(Attributes(submenu->window).x, kX + menu->width);
  EXPECT_EQ(Attributes(submenu->window).y, kY);
  ReleaseButton();
  EXPECT_FALSE(Mapped(submenu));
}

TEST_F(MenuTest, SubmenuTracksWhileTheParentKeepsItsHighlight) {
  XMenu* submenu = Menu({Item("Inner"), Item("Inmost"), Item("Last")});
  XMenu* menu = Menu({Item("more...", submenu), Item("Second")});
  Picture expected = Look(menu);
  Highlight(&expected, menu, 0);
  PressFor(menu);
  MoveToItem(menu, 0);
  MoveToItem(submenu, 2);
  EXPECT_EQ(menu->selected, 0);
  EXPECT_EQ(submenu->selected, 2);
  EXPECT_EQ(Shown(menu), expected);
  // Off both: the submenu drops its highlight and stays open.
  MoveIn(submenu, 10, submenu->height + 30);
  EXPECT_EQ(menu->selected, 0);
  EXPECT_EQ(submenu->selected, -1);
  EXPECT_TRUE(Mapped(submenu));
  // Back on the item that opened it: nothing changes.
  MoveToItem(menu, 0);
  EXPECT_TRUE(Mapped(submenu));
  EXPECT_EQ(menu->submenu, submenu);
  // On another item: the submenu closes.
  MoveToItem(menu, 1);
  EXPECT_FALSE(Mapped(submenu));
  EXPECT_EQ(menu->submenu, nullptr);
  EXPECT_EQ(menu->selected, 1);
  ReleaseButton();
  EXPECT_EQ(calls, Names({"Second"}));
}

TEST_F(MenuTest, MenusInsideAnotherWindowTrackTheirSubmenusToo) {
  const auto inner = Array({Item("Inner"), Item("Inmost")});
  XMenu* submenu = MakeMenu(host.window, 0, 0, labelFontinfo, inner.get(), 2);
  const auto outer = Array({Item("more...", submenu)});
  XMenu* menu = MakeMenu(host.window, 0, 0, labelFontinfo, outer.get(), 1);
  ASSERT_TRUE(PopUpMenuGrabbed(50, 60, menu));
  player->MoveTo(kTopX + 60, kTopY + 70);
  Pump();
  ASSERT_TRUE(Mapped(submenu));
  player->MoveTo(kTopX + 50 + menu->width + 10, kTopY + 60 + ih + 10);
  Pump();
  EXPECT_EQ(submenu->selected, 1);
  player->Click(1);
  Pump();
  EXPECT_EQ(calls, Names({"Inmost", "more..."}));
}

// --- Choosing ---------------------------------------------------------------------------------

TEST_F(MenuTest, ReleaseOnAnItemRunsItAndClosesTheMenu) {
  XMenu* menu = Menu({Item("First"), Item("Second")});
  PressFor(menu);
  MoveToItem(menu, 1);
  ReleaseButton();
  EXPECT_EQ(calls, Names({"Second"}));
  EXPECT_FALSE(Mapped(menu));
  EXPECT_EQ(menu->selected, 1) << "the choice stays until the menu pops up again";
  PopUpMenu(kX, kY, menu);
  EXPECT_EQ(menu->selected, -1);
  PopDownMenu(menu);
}

TEST_F(MenuTest, ActionGetsTheMenuAndTheArgument) {
  static XMenu* seen;
  static void* arg;
  seen = nullptr;
  arg = nullptr;
  int value = 0;
  XMenu* menu = Menu({MakeMenuItem(
      "Item",
      [](XMenu* from, void* with) {
        seen = from;
        arg = with;
      },
      &value)});
  PressFor(menu);
  MoveToItem(menu, 0);
  ReleaseButton();
  EXPECT_EQ(seen, menu);
  EXPECT_EQ(arg, &value);
}

TEST_F(MenuTest, ReleaseOutsideEveryItemRunsNothingAndCloses) {
  XMenu* menu = Menu({Item("First"), Item("Second")});
  PressFor(menu);
  ReleaseButton();  // where it was pressed, without a motion
  EXPECT_FALSE(Mapped(menu));
  PressFor(menu);
  MoveToItem(menu, 0);
  MoveIn(menu, menu->width + 30, 10);
  ReleaseButton();
  EXPECT_FALSE(Mapped(menu));
  EXPECT_EQ(calls, Names());
}

TEST_F(MenuTest, ItemWithoutAnActionOnlyCloses) {
  XMenu* menu = Menu({MakeMenuItem("Nothing", nullptr, nullptr)});
  PressFor(menu);
  MoveToItem(menu, 0);
  ReleaseButton();
  EXPECT_FALSE(Mapped(menu));
}

TEST_F(MenuTest, ReleaseInASubmenuRunsItsItemThenTheParentsItem) {
  XMenu* submenu = Menu({Item("Inner"), Item("Inmost")});
  XMenu* menu = Menu({Item("First"), Item("more...", submenu)});
  PressFor(menu);
  MoveToItem(menu, 1);
  MoveToItem(submenu, 1);
  ReleaseButton();
  EXPECT_EQ(calls, Names({"Inmost", "more..."}));
  EXPECT_FALSE(Mapped(menu));
  EXPECT_FALSE(Mapped(submenu));
}

TEST_F(MenuTest, ReopenedMenuForgetsWhatWasChosenInItsSubmenu) {
  XMenu* submenu = Menu({Item("Inner"), Item("Inmost")});
  XMenu* menu = Menu({Item("First"), Item("more...", submenu)});
  PressFor(menu);
  MoveToItem(menu, 1);
  MoveToItem(submenu, 1);
  ReleaseButton();
  calls.clear();
  // Where the submenu was, but is not open now.
  PressFor(menu);
  EXPECT_EQ(menu->submenu, nullptr);
  MoveToItem(submenu, 0);
  EXPECT_FALSE(Mapped(submenu));
  ReleaseButton();
  EXPECT_EQ(calls, Names());
  EXPECT_FALSE(Mapped(menu));
}

// Two hundred plug-ins make a chain this long.
TEST_F(MenuTest, ElevenMenusDeepChain) {
  constexpr int kDepth = 11;
  std::vector<XMenu*> chain(kDepth);
  chain[kDepth - 1] = Menu({Item("a"), Item("last")});
  for (int i = kDepth - 2; i >= 0; i--)
    chain[static_cast<size_t>(i)] = Menu({Item("m", chain[static_cast<size_t>(i + 1)]), Item("p")});
  PressFor(chain[0]);
  for (size_t i = 0; i + 1 < kDepth; i++) MoveToItem(chain[i], 0);
  ASSERT_LT(chain.back()->x + chain.back()->width, kScreen);
  MoveToItem(chain.back(), 1);
  for (XMenu* menu : chain) EXPECT_TRUE(Mapped(menu));
  EXPECT_EQ(chain.back()->selected, 1);
  // Back to the third: all behind it close, those before it keep their highlights.
  MoveToItem(chain[2], 1);
  for (size_t i = 0; i < kDepth; i++) {
    EXPECT_EQ(Mapped(chain[i]), i <= 2) << "menu " << i;
    EXPECT_EQ(chain[i]->selected, i < 2 ? 0 : i == 2 ? 1 : -1) << "menu " << i;
  }
  for (size_t i = 2; i + 1 < kDepth; i++) MoveToItem(chain[i], 0);
  MoveToItem(chain.back(), 1);
  ReleaseButton();
  Names expected = {"last"};
  for (int i = 1; i < kDepth; i++) expected.emplace_back("m");
  EXPECT_EQ(calls, expected);
  for (XMenu* menu : chain) EXPECT_FALSE(Mapped(menu));
}

// --- Opening and closing ----------------------------------------------------------------------

TEST_F(MenuTest, PopUpAndPullDownPlaceClearAndRaise) {
  XMenu* menu = Menu({Item("First"), Item("Second")});
  for (auto* open : {PopUpMenu, PullDownMenu}) {
    menu->selected = 1;
    open(kX + 7, kY + 9, menu);
    EXPECT_EQ(menu->selected, -1);
    EXPECT_EQ(menu->x, kX + 7);
    EXPECT_EQ(menu->y, kY + 9);
    Pump();
    EXPECT_TRUE(Mapped(menu));
    EXPECT_EQ(Attributes(menu->window).x, kX + 7);
    EXPECT_EQ(PixelOf(menu->window, 0, 0), kWhite) << "above the window that was mapped before";
    PullUpMenu(menu);
    EXPECT_FALSE(Mapped(menu));
  }
}

TEST_F(MenuTest, PullUpClosesOneMenuAndPopDownTheChain) {
  XMenu* third = Menu({Item("c")});
  XMenu* second = Menu({Item("b", third)});
  XMenu* first = Menu({Item("a", second)});
  const auto open = [&] {
    PressFor(first);
    MoveToItem(first, 0);
    MoveToItem(second, 0);
    MoveToItem(third, 0);
    ASSERT_TRUE(Mapped(third));
  };
  open();
  PullUpMenu(first);
  EXPECT_FALSE(Mapped(first));
  EXPECT_EQ(first->selected, -1);
  EXPECT_TRUE(Mapped(second));
  EXPECT_TRUE(Mapped(third));
  ReleaseButton();
  open();
  PopDownMenu(first);
  for (XMenu* menu : {first, second, third}) {
    EXPECT_FALSE(Mapped(menu));
    EXPECT_EQ(menu->selected, -1);
    EXPECT_EQ(menu->submenu, nullptr);
  }
  ReleaseButton();
  EXPECT_EQ(calls, Names());
}

// --- INV-MENU-1: the pointer ------------------------------------------------------------------

TEST_F(MenuTest, GrabEndsWithTheReleaseOfAnyButton) {
  XMenu* menu = Menu({Item("First"), Item("Second")});
  for (int button = 1; button <= 3; button++) {
    calls.clear();
    PressFor(menu, button);
    MoveToItem(menu, 1);
    ReleaseButton(button);
    EXPECT_EQ(calls, Names({"Second"})) << "button " << button;
    EXPECT_FALSE(Mapped(menu)) << "button " << button;
    EXPECT_TRUE(player->CanGrabPointer()) << "button " << button;
  }
}

TEST_F(MenuTest, AnotherButtonsReleaseEndsItAsWell) {
  XMenu* menu = Menu({Item("First"), Item("Second")});
  PressFor(menu, 1);
  MoveToItem(menu, 0);
  player->Press(3);
  Pump();
  ReleaseButton(3);
  EXPECT_EQ(calls, Names({"First"}));
  EXPECT_FALSE(Mapped(menu));
  EXPECT_TRUE(player->CanGrabPointer()) << "with the first button still down";
  ReleaseButton(1);
  EXPECT_EQ(calls, Names({"First"}));
}

TEST_F(MenuTest, RefusedGrabLeavesTheMenuClosed) {
  XMenu* menu = Menu({Item("First")});
  ASSERT_EQ(XGrabPointer(player->display(), player->root(), False, 0, GrabModeAsync, GrabModeAsync,
                         None, None, CurrentTime),
            GrabSuccess);
  EXPECT_FALSE(PopUpMenuGrabbed(kX, kY, menu));
  EXPECT_FALSE(Mapped(menu));
  EXPECT_EQ(menu->open, 0);
  XUngrabPointer(player->display(), CurrentTime);
  XSync(player->display(), False);
  EXPECT_TRUE(PopUpMenuGrabbed(kX, kY, menu));
  player->Click(1);
  Pump();
  EXPECT_FALSE(Mapped(menu));
}

// A click that was handed on arrives after the button went up again.
TEST_F(MenuTest, OpenedWithNoButtonDownTheNextClickChooses) {
  XMenu* menu = Menu({Item("First"), Item("Second")});
  host.menu = menu;
  player->MoveTo(kX, kY);
  XEvent click{};
  click.xbutton.type = ButtonPress;
  click.xbutton.window = host.window;
  click.xbutton.root = player->root();
  click.xbutton.x_root = kX;
  click.xbutton.y_root = kY;
  click.xbutton.button = 3;
  click.xbutton.same_screen = True;
  XSendEvent(player->display(), host.window, True, 0xffffff, &click);
  click.xbutton.type = ButtonRelease;
  XSendEvent(player->display(), host.window, True, 0xffffff, &click);
  XSync(player->display(), False);
  Pump();
  ASSERT_TRUE(Mapped(menu));
  MoveToItem(menu, 1);
  EXPECT_EQ(menu->selected, 1);
  player->Press(1);
  Pump();
  EXPECT_TRUE(Mapped(menu));
  ReleaseButton();
  EXPECT_EQ(calls, Names({"Second"}));
  EXPECT_FALSE(Mapped(menu));
}

TEST_F(MenuTest, OpenedWithNoButtonDownAClickElsewhereCloses) {
  XMenu* menu = Menu({Item("First"), Item("Second")});
  ASSERT_TRUE(PopUpMenuGrabbed(kX, kY, menu));
  MoveIn(menu, -30, -30);
  player->Click(3);
  Pump();
  EXPECT_FALSE(Mapped(menu));
  EXPECT_EQ(calls, Names());
}

TEST_F(MenuTest, ClickThatIsOverBeforeItIsReadLeavesTheMenuForTheNext) {
  XMenu* menu = Menu({Item("First"), Item("Second")});
  host.menu = menu;
  player->MoveTo(kX, kY);
  player->Click(1);
  Pump();
  ASSERT_TRUE(Mapped(menu));
  MoveToItem(menu, 0);
  player->Click(1);
  Pump();
  EXPECT_EQ(calls, Names({"First"}));
  EXPECT_FALSE(Mapped(menu));
}

TEST_F(MenuTest, SecondGrabbedMenuClosesTheFirst) {
  XMenu* submenu = Menu({Item("Inner")});
  XMenu* first = Menu({Item("more...", submenu)});
  XMenu* second = Menu({Item("Other")});
  PressFor(first);
  MoveToItem(first, 0);
  ASSERT_TRUE(Mapped(submenu));
  ASSERT_TRUE(PopUpMenuGrabbed(kX, kY + 100, second));
  EXPECT_FALSE(Mapped(first));
  EXPECT_FALSE(Mapped(submenu));
  EXPECT_TRUE(Mapped(second));
  MoveToItem(second, 0);
  ReleaseButton();
  EXPECT_EQ(calls, Names({"Other"}));
  EXPECT_FALSE(Mapped(second));
}

TEST_F(MenuTest, ClosingAGrabbedMenuGivesThePointerBack) {
  XMenu* menu = Menu({Item("First")});
  for (auto* close : {PullUpMenu, PopDownMenu}) {
    PressFor(menu);
    close(menu);
    Pump();
    EXPECT_TRUE(player->CanGrabPointer());
    ReleaseButton();
  }
  PressFor(menu);
  Remake(menu, {Item("Other")});
  Pump();
  EXPECT_FALSE(Mapped(menu));
  EXPECT_TRUE(player->CanGrabPointer());
  ReleaseButton();
  EXPECT_EQ(calls, Names());
}

TEST_F(MenuTest, PointerIsFreeWhileTheActionRuns) {
  static testing::Player* user;
  static bool isfree;
  user = player.get();
  isfree = false;
  XMenu* menu = Menu({MakeMenuItem(
      "Item",
      [](XMenu*, void*) {
        XSync(dpy, False);
        isfree = user->CanGrabPointer();
      },
      nullptr)});
  PressFor(menu);
  MoveToItem(menu, 0);
  ReleaseButton();
  EXPECT_TRUE(isfree);
}

// --- INV-MENU-2: events that come late ---------------------------------------------------------

TEST_F(MenuTest, SecondButtonsReleaseRunsTheItemNotAgain) {
  XMenu* menu = Menu({Item("First"), Item("Second")});
  PressFor(menu, 1);
  MoveToItem(menu, 1);
  player->Press(3);
  player->Release(3);
  player->Release(1);
  Pump();
  EXPECT_EQ(calls, Names({"Second"}));
}

TEST_F(MenuTest, MotionBehindTheReleaseOpensNoSubmenu) {
  XMenu* submenu = Menu({Item("Inner")});
  XMenu* menu = Menu({Item("First"), Item("more...", submenu)});
  PressFor(menu);
  MoveToItem(menu, 0);
  player->Release(1);
  player->MoveTo(menu->x + 10, menu->y + ih + 10);
  Pump();
  EXPECT_EQ(calls, Names({"First"}));
  EXPECT_FALSE(Mapped(submenu));
  EXPECT_EQ(menu->selected, 0);
}

// A press reaches a menu that is open without a grab of its own, and tracks like a motion.
TEST_F(MenuTest, PressTracksInAnOpenMenuOnly) {
  XMenu* menu = Menu({Item("First"), Item("Second")});
  PopUpMenu(kX, kY, menu);
  Pump();
  MoveToItem(menu, 1);
  EXPECT_EQ(menu->selected, -1) << "no motion without a button";
  player->Press(1);
  Pump();
  EXPECT_EQ(menu->selected, 1);
  MoveToItem(menu, 0);
  EXPECT_EQ(menu->selected, 0);
  XEvent press{};
  press.type = ButtonPress;
  press.xbutton.x = 10;
  press.xbutton.y = ih + 10;
  PopDownMenu(menu);
  MenuButtonPress(menu, &press);
  EXPECT_EQ(menu->selected, -1);
  ReleaseButton();
  EXPECT_EQ(calls, Names());
}

// --- INV-MENU-3: rebuilding -------------------------------------------------------------------

TEST_F(MenuTest, RemadeMenuKeepsWindowContextAndEntry) {
  XMenu* menu = Menu({Item("First"), Item("Second"), Item("Third")});
  const Window window = menu->window;
  const GC gc = menu->gc;
  const int entries = nWindowObjects;
  for (int round = 0; round < 50; round++) {
    Remake(menu, {Item("A much longer caption"), Item("x")});
    EXPECT_EQ(menu->height, 2 * ih + 6);
    Remake(menu, {Item("only")});
  }
  EXPECT_EQ(nWindowObjects, entries);
  EXPECT_EQ(menu->window, window);
  EXPECT_EQ(menu->gc, gc);
  EXPECT_EQ(menu->nitems, 1);
  EXPECT_EQ(menu->visible, 1);
  EXPECT_EQ(Attributes(window).height, ih + 6);
  EXPECT_EQ(Attributes(window).width, XTextWidth(labelFontinfo, "only", 4) + 16);
  const Picture look = Look(menu);
  PopUpMenu(kX, kY, menu);
  Pump();
  EXPECT_EQ(Shown(menu), look);
  PopDownMenu(menu);
}

TEST_F(MenuTest, RemadeMenuTakesAnotherFontAndKeepsItemsThatStay) {
  XMenuItem* stays = Item("stays");
  XMenu* menu = Menu({Item("goes"), stays});
  const auto items = Array({stays});
  RemakeMenu(menu, logoFontinfo, items.get(), 1);
  EXPECT_EQ(menu->items[0], stays);
  EXPECT_STREQ(menu->items[0]->label, "stays");
  EXPECT_EQ(menu->itemheight, RowHeight(logoFontinfo));
  EXPECT_EQ(menu->width, XTextWidth(logoFontinfo, "stays", 5) + 16);
  XGCValues values;
  ASSERT_TRUE(XGetGCValues(dpy, menu->gc, GCFont, &values));
  EXPECT_EQ(values.font, logoFontinfo->fid);
}

TEST_F(MenuTest, ActionMayRebuildTheMenuThatItWasChosenFrom) {
  XMenu* menu = Menu({});
  Remake(menu, {Item("First"), MakeMenuItem(
                                   "Rebuild",
                                   [](XMenu* from, void* arg) {
                                     Log(from, arg);
                                     Remake(from, {Item("New")});
                                   },
                                   const_cast<char*>("rebuilt"))});
  PressFor(menu);
  MoveToItem(menu, 1);
  ReleaseButton();
  EXPECT_EQ(calls, Names({"rebuilt"}));
  EXPECT_FALSE(Mapped(menu));
  PressFor(menu);
  MoveToItem(menu, 0);
  ReleaseButton();
  EXPECT_EQ(calls, Names({"rebuilt", "New"}));
}

TEST_F(MenuTest, ActionOfASubmenuMayRebuildTheWholeChain) {
  static XMenu* first;
  static XMenuPool pool;
  pool.spare.clear();
  XMenu* third = Menu({MakeMenuItem(
      "Delete",
      [](XMenu* from, void* arg) {
        Log(from, arg);
        SpareMenus(&pool, first);
        const auto items = Array({Item("Anew")});
        first = TakeMenu(&pool, labelFontinfo, items.get(), 1);
      },
      const_cast<char*>("deleted"))});
  XMenu* second = Menu({Item("more...", third)});
  first = Menu({Item("more...", second), Item("plain")});
  const std::vector<XMenu*> chain = {first, second, third};
  const int entries = nWindowObjects;
  PressFor(first);
  MoveToItem(first, 0);
  MoveToItem(second, 0);
  MoveToItem(third, 0);
  ReleaseButton();
  EXPECT_EQ(calls, Names({"deleted"})) << "the items that led there are gone";
  for (XMenu* menu : chain) EXPECT_FALSE(Mapped(menu));
  EXPECT_EQ(nWindowObjects, entries);
  EXPECT_EQ(pool.spare.size(), 2u);
  calls.clear();
  PressFor(first);
  MoveToItem(first, 0);
  ReleaseButton();
  EXPECT_EQ(calls, Names({"Anew"}));
}

// As the plug-in menu does when plug-ins come and go.
TEST_F(MenuTest, ChainThatShrinksAndGrowsTakesNoNewWindows) {
  XMenuPool pool;
  const auto build = [&](int depth) {
    XMenu* next = nullptr;
    for (int i = 0; i < depth; i++) {
      const auto items = Array({Item("more...", next), Item("plug-in")});
      next = TakeMenu(&pool, labelFontinfo, items.get(), 2);
    }
    return next;
  };
  XMenu* chain = build(11);
  const int entries = nWindowObjects;
  for (int depth : {1, 3, 11, 2, 0, 11}) {
    SpareMenus(&pool, chain);
    EXPECT_EQ(pool.spare.size(), 11u);
    chain = build(depth);
    EXPECT_EQ(pool.spare.size(), static_cast<size_t>(11 - depth));
    EXPECT_EQ(nWindowObjects, entries);
  }
  SpareMenus(&pool, chain);
  chain = build(12);
  EXPECT_EQ(nWindowObjects, entries + 1);
}

TEST_F(MenuTest, MenuThatHangsOnTwoItemsIsSparedOnce) {
  XMenuPool pool;
  XMenu* shared = Menu({Item("x")});
  SpareMenus(&pool, Menu({Item("one", shared), Item("two", shared)}));
  EXPECT_EQ(pool.spare.size(), 2u);
  SpareMenus(&pool, nullptr);
  EXPECT_EQ(pool.spare.size(), 2u);
}

// --- Cost -------------------------------------------------------------------------------------

XEvent MotionAt(const XMenu* menu, int x, int y) {
  XEvent event{};
  event.type = MotionNotify;
  event.xmotion.x = x;
  event.xmotion.y = y;
  event.xmotion.x_root = menu->x + x;
  event.xmotion.y_root = menu->y + y;
  return event;
}

TEST_F(MenuTest, Costs) {
  const auto three = Array({Item("a"), Item("b"), Item("c")});
  XMenu* menu = nullptr;
  EXPECT_EQ(CostOf([&] { menu = MakeMenu(root, 0, 0, labelFontinfo, three.get(), 3); }),
            (Cost{2, 0}))
      << "create";
  EXPECT_EQ(CostOf([&] { PopUpMenu(kX, kY, menu); }), (Cost{2, 0})) << "open";
  Pump();
  // Clear, two colours and line sets of the frame, the text colour, three captions.
  EXPECT_EQ(CostOf([&] { DrawMenu(menu, nullptr); }), (Cost{9, 0})) << "expose";
  XEvent event = MotionAt(menu, 5, 5);
  EXPECT_EQ(CostOf([&] { MenuMotionNotify(menu, &event); }), (Cost{4, 0})) << "first item";
  event = MotionAt(menu, 5, ih + 5);
  EXPECT_EQ(CostOf([&] { MenuMotionNotify(menu, &event); }), (Cost{7, 0})) << "next item";
  event = MotionAt(menu, 6, ih + 6);
  EXPECT_EQ(CostOf([&] { MenuMotionNotify(menu, &event); }), (Cost{0, 0})) << "same item";
  EXPECT_EQ(CostOf([&] { MenuButtonRelease(menu, &event); }), (Cost{1, 0})) << "release";
  EXPECT_EQ(CostOf([&] { PopUpMenuGrabbed(kX, kY, menu); }), (Cost{3, 1})) << "open with a grab";
  EXPECT_EQ(CostOf([&] { MenuButtonRelease(menu, &event); }), (Cost{2, 0})) << "and release";
  const auto other = Array({Item("d"), Item("e")});
  EXPECT_EQ(CostOf([&] { RemakeMenu(menu, labelFontinfo, other.get(), 2); }), (Cost{2, 0}))
      << "rebuild";
}

// The number of items, the number of levels and where the pointer is among them cost no round trip.
TEST_F(MenuTest, MotionInADeepSubmenuCostsNoRoundTrip) {
  XMenu* last = Menu({Item("a"), Item("b")});
  XMenu* menu = last;
  std::vector<XMenu*> chain = {last};
  for (int i = 1; i < 11; i++) {
    menu = Menu({Item("m", menu)});
    chain.insert(chain.begin(), menu);
  }
  PressFor(menu);
  for (size_t i = 0; i + 1 < chain.size(); i++) MoveToItem(chain[i], 0);
  MoveToItem(last, 0);
  ASSERT_EQ(last->selected, 0);
  XEvent event = MotionAt(menu, last->x - menu->x + 5, ih + 8);
  EXPECT_EQ(CostOf([&] { MenuMotionNotify(menu, &event); }), (Cost{7, 0}));
  EXPECT_EQ(last->selected, 1);
  ReleaseButton();
}

TEST_F(MenuTest, OpeningASubmenuByMotionCostsNoRoundTrip) {
  XMenu* submenu = Menu({Item("x")});
  XMenu* menu = Menu({Item("more...", submenu), Item("b")});
  PressFor(menu);
  MoveToItem(menu, 1);
  XEvent event = MotionAt(menu, 5, 8);
  EXPECT_EQ(CostOf([&] { MenuMotionNotify(menu, &event); }), (Cost{9, 0})) << "open";
  event = MotionAt(menu, 5, ih + 8);
  EXPECT_EQ(CostOf([&] { MenuMotionNotify(menu, &event); }), (Cost{8, 0})) << "close";
  ReleaseButton();
}

}  // namespace
}  // namespace gromlit
