// First: the test library's headers do not stand Xlib's macros.
#include "tests/x11/toolkit/widget_fixture.h"

#include <memory>

#include "tests/x11/toolkit/request_cost.h"
#include "toolkit/bevel.h"
#include "toolkit/tab_bar.h"

namespace gromlit {
namespace {

using testing::Cost;
using testing::CostOf;
using testing::Picture;

// What the tabs' actions were called with: "1+" is the second tab selected, "1" redrawn.
std::vector<std::string> calls;
using Calls = std::vector<std::string>;

void Log(XTabBar*, void* arg, int flag) {
  calls.push_back(std::string(static_cast<const char*>(arg)) + (flag == kTabSelected ? "+" : ""));
}

class TabBarTest : public testing::WidgetFixture {
 protected:
  static constexpr int kX = 20;  // of the bar in its window
  static constexpr int kY = 30;
  static constexpr int kWidth = 300;
  static constexpr int kHeight = 90;

  static XTabBar* Bar(Window parent, int width, const std::vector<XTabItem*>& tabs) {
    const std::unique_ptr<XTabItem*[]> array(MakeTabItemArray(static_cast<int>(tabs.size())));
    std::copy(tabs.begin(), tabs.end(), array.get());
    return MakeTabBar(parent, kX, kY, width, kHeight, labelFontinfo, array.get(),
                      static_cast<int>(tabs.size()));
  }
  static XTabItem* Tab(const char* label, const char* arg) {
    return MakeTabItem(label, Log, const_cast<char*>(arg));
  }

  void SetUp() override {
    WidgetFixture::SetUp();
    if (HasFatalFailure()) return;
    bar = Bar(top, kWidth, {Tab("Hot Key", "0"), Tab("Menu", "1"), Tab("Internet", "2")});
    ih = bar->itemheight;
    XMapWindow(dpy, bar->window);
    Pump();
    calls.clear();
  }

  void TearDown() override {
    player->Release(1);
    Pump();
    EXPECT_TRUE(player->CanGrabPointer());
    WidgetFixture::TearDown();
  }

  void MoveInBar(int x, int y) {
    MoveTo(kX + x, kY + y);
    Pump();
  }
  void PressInBar(int x, int y, int button = 1) {
    MoveInBar(x, y);
    player->Press(button);
    Pump();
  }
  void ReleaseButton(int button = 1) {
    player->Release(button);
    Pump();
  }
  int Middle(int i) const { return bar->itemx[i] + bar->itemwidth[i] / 2; }

  // A tab's bevel, line by line.
  static void TabBevel(Picture* look, unsigned long light, unsigned long dark, int x, int y, int w,
                       int h, int fullw) {
    const int r = x + w - 1;
    const int b = y + h - 1;
    look->Line(dark, r, y + 1, r, b);
    look->Line(dark, r - 1, y + 2, r - 1, b);
    look->Line(light, x, y, r, y);
    look->Line(light, x, y, x, b);
    look->Line(light, x + 1, y + 1, r - 1, y + 1);
    look->Line(light, x + 1, y, x + 1, b);
    look->Line(light, 0, b - 1, x, b - 1);
    look->Line(light, 0, b, x, b);
    if (fullw - (x + w) <= 1) return;
    look->Line(light, x + w, b - 1, fullw, b - 1);
    look->Line(light, r, b, fullw - 1, b);
  }
  void TabBevelOf(Picture* look, int i, bool flat = false) const {
    TabBevel(look, flat ? kLightGrey : kWhite, flat ? kLightGrey : kDarkGrey, bar->itemx[i] - 8, 2,
             bar->itemwidth[i] + 16, ih + 2, bar->width - 1);
  }
  // The bar with a tab selected, all drawn anew.
  Picture Look(int selected) {
    const Window paper = MakeChildWindow(top, 0, 200, kWidth, kHeight, lgrey.pixel, 0);
    XMapRaised(dpy, paper);
    const GC pen = MakeWindowGC(paper, labelFont);
    for (int i = 0; i < bar->nitems; i++) {
      const std::string text = bar->items[i]->label;
      XDrawString(dpy, paper, pen, bar->itemx[i], ih - 3, text.c_str(),
                  static_cast<int>(text.size()));
    }
    Picture look = Take(paper, 0, 0, kWidth, kHeight);
    XFreeGC(dpy, pen);
    XDestroyWindow(dpy, paper);
    const int w = kWidth;
    const int h = kHeight;
    look.Line(kWhite, 0, ih + 2, 0, h - 1);
    look.Line(kWhite, 1, ih + 2, 1, h - 1);
    look.Line(kDarkGrey, w - 1, ih + 2, w - 1, h - 1);
    look.Line(kDarkGrey, w - 2, ih + 3, w - 2, h - 1);
    look.Line(kDarkGrey, 2, h - 2, w - 1, h - 2);
    look.Line(kDarkGrey, 1, h - 1, w - 1, h - 1);
    TabBevelOf(&look, selected);
    return look;
  }
  Picture Shown() { return Take(bar->window, 0, 0, bar->width, bar->height); }

  XTabBar* bar = nullptr;
  int ih = 0;
};

// --- Records ----------------------------------------------------------------------------------

TEST_F(TabBarTest, FirstTabIsSelectedFromTheStart) {
  XTabBar* fresh = Bar(top, kWidth, {Tab("a", "0"), Tab("b", "1")});
  EXPECT_EQ(fresh->selected, 0);
  EXPECT_EQ(fresh->nitems, 2);
  EXPECT_EQ(fresh->visible, 2);
  EXPECT_EQ(fresh->top, 0);
  EXPECT_EQ(fresh->owner, nullptr);
  EXPECT_EQ(fresh->width, kWidth);
  EXPECT_EQ(fresh->height, kHeight);
  EXPECT_EQ(calls, Calls());
}

TEST_F(TabBarTest, WidthZeroIsTheTitlesWithTheirMarginsAndNoMore) {
  XTabBar* narrow = Bar(top, 0, {Tab("Hot Key", "0"), Tab("Menu", "1")});
  const int first = XTextWidth(labelFontinfo, "Hot Key", 7);
  const int second = XTextWidth(labelFontinfo, "Menu", 4);
  EXPECT_EQ(narrow->width, first + 16 + second + 16);
  EXPECT_EQ(narrow->itemx[0], 8);
  EXPECT_EQ(narrow->itemx[1], 8 + first + 16);
  EXPECT_EQ(narrow->itemwidth[0], first);
  EXPECT_EQ(narrow->itemwidth[1], second);
  EXPECT_EQ(narrow->itemheight,
            labelFontinfo->max_bounds.ascent + labelFontinfo->max_bounds.descent + 6);
}

TEST_F(TabBarTest, WindowHasThePanelsHeightAndTheBarsEvents) {
  XTabBar* fresh = Bar(top, kWidth, {Tab("a", "0")});
  XWindowAttributes window;
  XGetWindowAttributes(dpy, fresh->window, &window);
  EXPECT_EQ(window.map_state, IsUnmapped);
  EXPECT_EQ(window.width, kWidth);
  EXPECT_EQ(window.height, kHeight);
  EXPECT_EQ(window.border_width, 0);
  EXPECT_EQ(window.save_under, True);
  EXPECT_EQ(window.your_event_mask, ExposureMask | ButtonPressMask | ButtonReleaseMask |
                                        Button1MotionMask | KeyPressMask | KeyReleaseMask);
}

TEST_F(TabBarTest, TabsBeyond32AreLeftOut) {
  std::vector<XTabItem*> tabs;
  for (int i = 0; i < 40; i++) tabs.push_back(Tab("t", "t"));
  XTabBar* full = Bar(top, 0, tabs);
  EXPECT_EQ(full->nitems, 32);
  EXPECT_EQ(full->visible, 32);
  EXPECT_EQ(full->width, 32 * (XTextWidth(labelFontinfo, "t", 1) + 16));
  EXPECT_EQ(full->items[31], tabs[31]);
}

TEST_F(TabBarTest, BarWithoutTabsIsAPanel) {
  XTabBar* empty = Bar(top, kWidth, {});
  XMapRaised(dpy, empty->window);
  Pump();
  EXPECT_EQ(PixelOf(empty->window, 0, 60), kWhite);
  PressInBar(10, 5);
  MoveInBar(10, kHeight + 20);
  ReleaseButton();
  EXPECT_EQ(calls, Calls());
}

TEST_F(TabBarTest, ItemsHoldTheirThreeFields) {
  int arg = 0;
  const std::unique_ptr<XTabItem> item(MakeTabItem("title", Log, &arg));
  EXPECT_STREQ(item->label, "title");
  EXPECT_EQ(item->action, Log);
  EXPECT_EQ(item->arg, &arg);
  EXPECT_EQ(item->owner, nullptr);
}

// --- Looks ------------------------------------------------------------------------------------

TEST_F(TabBarTest, BevelIsOpenAtTheBottomAndOverlapsLineByLine) {
  const GC gc = MakeWindowGC(top);
  const Window paper = MakeChildWindow(top, 0, 200, 60, 30, lgrey.pixel, 0);
  XMapRaised(dpy, paper);
  XSync(dpy, False);
  struct {
    int up;
    unsigned long light;
    unsigned long dark;
  } const colours[] = {{kRaised, kWhite, kDarkGrey}, {kSunken, kDarkGrey, kWhite}};
  for (const auto& colour : colours) {
    for (int x : {0, 5, 20}) {
      for (int w : {2, 3, 10, 30}) {
        // Where the panel ends: far right of the tab, and at the two last widths that draw nothing.
        for (int fullw : {59, x + w + 2, x + w + 1, x + w}) {
          XClearWindow(dpy, paper);
          Picture expected(60, 30, kLightGrey);
          TabBevel(&expected, colour.light, colour.dark, x, 2, w, 18, fullw);
          XDrawTabBevel(colour.up, paper, gc, x, 2, w, 18, fullw);
          ASSERT_EQ(Take(paper, 0, 0, 60, 30), expected)
              << "up " << colour.up << " x " << x << " w " << w << " fullw " << fullw;
        }
      }
    }
  }
  XFreeGC(dpy, gc);
}

// The shape written out once by hand: rows of a tab at x 3, 8 wide, on a panel that ends at 15.
TEST_F(TabBarTest, BevelToLookAt) {
  const GC gc = MakeWindowGC(top);
  XDrawTabBevel(kRaised, top, gc, 3, 0, 8, 6, 15);
  const char* const rows[] = {
      "...WWWWWWWW......",  //
      "...WWWWWWWD......",  //
      "...WW....DD......",  //
      "...WW....DD......",  //
      "WWWWW....DDWWWWW.",  //
      "WWWWW....DWWWWW..",
  };
  Picture expected(17, 6, kLightGrey);
  for (int y = 0; y < 6; y++) {
    for (int x = 0; x < 17; x++) {
      if (rows[y][x] != '.') expected.At(x, y) = rows[y][x] == 'W' ? kWhite : kDarkGrey;
    }
  }
  EXPECT_EQ(Take(top, 0, 0, 17, 6), expected);
  XFreeGC(dpy, gc);
}

TEST_F(TabBarTest, FlatBevelErasesARaisedOne) {
  const GC gc = MakeWindowGC(top);
  XDrawTabBevel(kRaised, top, gc, 20, 200, 50, 20, 200);
  EXPECT_EQ(PixelOf(top, 20, 205), kWhite);
  XDrawTabBevel(kFlat, top, gc, 20, 200, 50, 20, 200);
  EXPECT_EQ(Take(top, 0, 190, 300, 40), Picture(300, 40, kLightGrey));
  XFreeGC(dpy, gc);
}

TEST_F(TabBarTest, DrawsPanelTitlesAndTheSelectedTab) {
  const Picture look = Look(0);
  EXPECT_EQ(Shown(), look);
  EXPECT_GT(look.Count(kBlack, 8, 0, bar->itemwidth[0], ih), 5);
}

TEST_F(TabBarTest, SelectingMovesTheBevelOverTheOldPicture) {
  Picture expected = Look(0);
  PressInBar(Middle(2), 5);
  TabBevelOf(&expected, 0, true);
  TabBevelOf(&expected, 2);
  EXPECT_EQ(Shown(), expected);
  ReleaseButton();
  PressInBar(Middle(1), 5);
  TabBevelOf(&expected, 2, true);
  TabBevelOf(&expected, 1);
  EXPECT_EQ(Shown(), expected);
  ReleaseButton();
}

// A tab that ends where the panel does leaves no edge right of it.
TEST_F(TabBarTest, LastTabOfABarAsWideAsItsTabs) {
  XTabBar* narrow = Bar(top, 0, {Tab("One", "0"), Tab("Two", "1")});
  XMapRaised(dpy, narrow->window);
  Pump();
  calls.clear();
  PressInBar(narrow->itemx[1], 5);
  EXPECT_EQ(calls, Calls({"1+"}));
  EXPECT_EQ(PixelOf(narrow->window, narrow->width - 1, ih + 3), kDarkGrey);
  EXPECT_EQ(PixelOf(narrow->window, narrow->width - 2, ih + 2), kDarkGrey);
  EXPECT_EQ(PixelOf(narrow->window, 4, ih + 2), kWhite);
  ReleaseButton();
}

// --- Selecting --------------------------------------------------------------------------------

TEST_F(TabBarTest, PressSelectsAndCallsOnce) {
  PressInBar(Middle(1), 5);
  EXPECT_EQ(bar->selected, 1);
  EXPECT_EQ(calls, Calls({"1+"}));
  ReleaseButton();
  EXPECT_EQ(bar->selected, 1);
  EXPECT_EQ(calls, Calls({"1+"}));
}

TEST_F(TabBarTest, ActionGetsTheBarAfterItHasChanged) {
  static XTabBar* seen;
  static int selected;
  seen = nullptr;
  XTabBar* other = Bar(top, kWidth,
                       {Tab("a", "0"), MakeTabItem(
                                           "b",
                                           [](XTabBar* from, void*, int flag) {
                                             EXPECT_EQ(flag, 1);
                                             seen = from;
                                             selected = from->selected;
                                           },
                                           nullptr)});
  XMapRaised(dpy, other->window);
  Pump();
  PressInBar(other->itemx[1], 5);
  EXPECT_EQ(seen, other);
  EXPECT_EQ(selected, 1);
  ReleaseButton();
}

TEST_F(TabBarTest, PressOnTheSelectedTabCallsNothing) {
  PressInBar(Middle(1), 5);
  ReleaseButton();
  calls.clear();
  PressInBar(Middle(1), 8);
  ReleaseButton();
  EXPECT_EQ(calls, Calls());
  EXPECT_EQ(bar->selected, 1);
}

TEST_F(TabBarTest, PressInThePanelChangesNothing) {
  const Picture look = Look(0);
  PressInBar(Middle(1), ih + 1);
  ReleaseButton();
  PressInBar(Middle(2), kHeight - 10);
  ReleaseButton();
  EXPECT_EQ(bar->selected, 0);
  EXPECT_EQ(calls, Calls());
  EXPECT_EQ(Shown(), look);
  // The row's last pixel still selects.
  PressInBar(Middle(1), ih);
  ReleaseButton();
  EXPECT_EQ(calls, Calls({"1+"}));
}

TEST_F(TabBarTest, GapBeforeTheFirstTitleSelectsItAndPastTheLastNothing) {
  PressInBar(Middle(2), 5);
  ReleaseButton();
  calls.clear();
  PressInBar(0, 5);
  ReleaseButton();
  EXPECT_EQ(bar->selected, 0);
  EXPECT_EQ(calls, Calls({"0+"}));
  const int end = bar->itemx[2] + bar->itemwidth[2] + 8;
  PressInBar(end, 5);
  ReleaseButton();
  EXPECT_EQ(bar->selected, 0);
  PressInBar(end - 1, 5);
  ReleaseButton();
  EXPECT_EQ(bar->selected, 2);
  PressInBar(bar->itemx[2] - 9, 5);
  ReleaseButton();
  EXPECT_EQ(bar->selected, 1);
  EXPECT_EQ(calls, Calls({"0+", "2+", "1+"}));
}

TEST_F(TabBarTest, DraggingWithButton1SwitchesTabsOnTheWay) {
  PressInBar(Middle(0), 5);
  MoveInBar(Middle(1), 6);
  MoveInBar(Middle(1) + 2, 7);
  MoveInBar(Middle(2), -4);  // above the bar, where the row still tracks
  MoveInBar(Middle(1), ih + 10);
  EXPECT_EQ(bar->selected, 2) << "the panel does not";
  MoveInBar(Middle(1), kHeight);
  MoveInBar(Middle(1), kHeight + 10);
  EXPECT_EQ(bar->selected, 2) << "nor what is below";
  ReleaseButton();
  EXPECT_EQ(calls, Calls({"1+", "2+"}));
}

TEST_F(TabBarTest, DraggingWithAnotherButtonSwitchesNothing) {
  PressInBar(Middle(1), 5, 3);
  EXPECT_EQ(bar->selected, 1) << "any button's press selects";
  MoveInBar(Middle(2), 5);
  ReleaseButton(3);
  EXPECT_EQ(calls, Calls({"1+"}));
}

TEST_F(TabBarTest, MotionWithoutAButtonSwitchesNothing) {
  MoveInBar(Middle(1), 5);
  MoveInBar(Middle(2), 5);
  EXPECT_EQ(bar->selected, 0);
  EXPECT_EQ(calls, Calls());
}

TEST_F(TabBarTest, ExposeAnnouncesTheSelectedTab) {
  PressInBar(Middle(1), 5);
  ReleaseButton();
  calls.clear();
  const Picture look = Look(1);
  const Window cover = MakeChildWindow(top, kX, kY, kWidth, kHeight, blue.pixel, 0);
  XMapRaised(dpy, cover);
  XSync(dpy, False);
  EXPECT_EQ(PixelOf(bar->window, 0, 0), kBlue);
  Pump();
  calls.clear();
  XDestroyWindow(dpy, cover);
  Pump();
  EXPECT_EQ(calls, Calls({"1"}));
  EXPECT_EQ(Shown(), look);
}

TEST_F(TabBarTest, TabWithoutAnActionIsSelected) {
  XTabBar* plain =
      Bar(top, kWidth, {MakeTabItem("a", nullptr, nullptr), MakeTabItem("b", nullptr, nullptr)});
  XMapRaised(dpy, plain->window);
  Pump();
  PressInBar(plain->itemx[1], 5);
  EXPECT_EQ(plain->selected, 1);
  ReleaseButton();
}

// --- Cost -------------------------------------------------------------------------------------

TEST_F(TabBarTest, Costs) {
  EXPECT_EQ(CostOf([&] { Bar(top, 0, {Tab("a", "0"), Tab("b", "1")}); }), (Cost{2, 0})) << "create";
  // Clear, panel, three titles and their colour, the tab's bevel. The last drawing left the panel's
  // first colour.
  EXPECT_EQ(CostOf([&] { DrawTabBar(bar, nullptr); }), (Cost{12, 0})) << "expose";
  XEvent event{};
  event.xbutton.x = Middle(1);
  event.xbutton.y = 5;
  EXPECT_EQ(CostOf([&] { TabBarButtonPress(bar, &event); }), (Cost{7, 0})) << "press";
  EXPECT_EQ(CostOf([&] { TabBarMotionNotify(bar, &event); }), (Cost{0, 0})) << "same tab";
  event.xbutton.x = Middle(2);
  EXPECT_EQ(CostOf([&] { TabBarMotionNotify(bar, &event); }), (Cost{7, 0})) << "next tab";
  EXPECT_EQ(CostOf([&] { TabBarButtonRelease(bar, &event); }), (Cost{0, 0})) << "release";
}

}  // namespace
}  // namespace gromlit
