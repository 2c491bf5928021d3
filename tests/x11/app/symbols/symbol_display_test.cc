#include "tests/x11/app/symbol_fixture.h"

#include "app/symbols/symbol_library.h"
#include "app/windows/symbol_big_icon.h"
#include "tests/x11/toolkit/request_cost.h"
#include "toolkit/bevel.h"
#include "toolkit/text.h"

namespace gromlit {
namespace {

using testing::CostOf;
using testing::Picture;

class SymbolDisplayTest : public testing::SymbolFixture {
 protected:
  // A library in a known order, the chooser shown, and a count of the dialog's OKs.
  void Show(const std::vector<std::string>& names) {
    MakeWindows();
    SetLibrary(names);
    okays = 0;
    symselect->yesfn = [](XDialog*) { okays++; };
    PopUpDialog(symselect, labelSelectSymbol, 640, 512);
    sd = SymbolChooser();
    ASSERT_TRUE(PumpUntil([this] { return Shown(sd->window); }));
  }

  // Replaces the library; its order is that of `names`.
  void SetLibrary(const std::vector<std::string>& names) {
    Retire(allSymbols);
    allSymbols = new GromlitSymbolList();
    GromlitSymbolList* sentinel = allSymbols;
    for (const std::string& name : names) {
      sentinel->filename = StrDup(name.c_str());
      sentinel->sym = new GromlitSymbol(Symbol(name, {{16, 16}, {264, 16}, {264, 264}}));
      sentinel->next = new GromlitSymbolList();
      sentinel = sentinel->next;
    }
  }

  static std::vector<std::string> Numbered(int count) {
    std::vector<std::string> names;
    for (int i = 0; i < count; i++) names.push_back("s" + std::to_string(i));
    return names;
  }

  // A click in the middle of a cell; a single one unless it follows another at once.
  void Click(int column, int row, int button = 1) {
    ClickIn(sd->window, 8 + 72 * column + 36, 8 + row * SymbolCellHeight(sd) + 20, button);
  }
  void SingleClick(int column, int row) {
    SymLastClick = static_cast<int>(static_cast<uint32_t>(SymLastClick) - 1000U);
    Click(column, row);
  }
  void DoubleClick(int column, int row) {
    SingleClick(column, row);
    Click(column, row);
  }

  bool Highlighted(int column, int row) {
    // A pixel of the highlight that neither icon nor name reaches.
    return PixelOf(sd->window, 8 + 72 * column + 1, row * SymbolCellHeight(sd) + 7) != kWhite;
  }

  Picture Chooser() { return Take(sd->window, 0, 0, sd->width, sd->height); }

  // What is on the screen must be what a redraw brings.
  void ExpectAsRedrawn() {
    const Picture before = Chooser();
    DrawSymbolDisplay(sd);
    EXPECT_TRUE(before == Chooser());
  }

  static int okays;
  SymbolDisplay* sd = nullptr;
};

int SymbolDisplayTest::okays = 0;

TEST_F(SymbolDisplayTest, HasTheStatedGeometry) {
  Show({});
  const int cell = 32 + 2 * txtCharht + 8;
  EXPECT_EQ(SymbolCellHeight(sd), cell);
  EXPECT_EQ(sd->width, 311);
  EXPECT_EQ(sd->height, 4 * cell + 8);
  EXPECT_EQ(sd->border, 4);
  EXPECT_EQ(sd->ncols, 4);
  EXPECT_EQ(sd->nrows, 4);
  XWindowAttributes attributes;
  XGetWindowAttributes(dpy, sd->window, &attributes);
  EXPECT_EQ(attributes.width, 311);
  EXPECT_EQ(attributes.height, sd->height);
  EXPECT_EQ(attributes.backing_store, WhenMapped);
  XGetWindowAttributes(dpy, sd->sbar->window, &attributes);
  EXPECT_EQ(attributes.x, 311 - 19);
  EXPECT_EQ(attributes.y, 4);
  EXPECT_EQ(attributes.height, sd->height - 8);
}

TEST_F(SymbolDisplayTest, AnEmptyLibraryShowsAnEmptyFieldAndAnyClickDoesNothing) {
  Show({});
  EXPECT_EQ(sd->count, 0);
  EXPECT_EQ(sd->sbar->range, 0);
  Picture expected(292, sd->height, kLightGrey);
  expected.Fill(kWhite, 4, 4, 288, sd->height - 8);
  Picture bevel(sd->width, sd->height, kLightGrey);
  bevel.Fill(kWhite, 4, 4, sd->width - 8, sd->height - 8);
  bevel.Bevel(kDarkGrey, kWhite, 4, 4, sd->width - 8, sd->height - 8);
  for (int y = 0; y < sd->height; y++) {
    for (int x = 0; x < 292; x++) expected.At(x, y) = bevel.At(x, y);
  }
  EXPECT_EQ(Take(sd->window, 0, 0, 292, sd->height), expected);
  SingleClick(0, 0);
  DoubleClick(3, 3);
  EXPECT_EQ(sd->selected, -1);
  EXPECT_EQ(okays, 0);
}

TEST_F(SymbolDisplayTest, BeforeTheLibraryIsLoadedItIsEmpty) {
  Show({"a"});
  Retire(allSymbols);
  allSymbols = nullptr;
  DrawSymbolDisplay(sd);
  EXPECT_EQ(sd->count, 0);
  SetLibrary({});
}

TEST_F(SymbolDisplayTest, SymbolsStandInTheOrderOfTheLibraryWithIconAndName) {
  Show({"zeta", "alpha", "m", "b", "five"});
  ASSERT_EQ(sd->count, 5);
  EXPECT_STREQ(sd->syms[0]->name, "zeta");
  EXPECT_STREQ(sd->syms[4]->name, "five");
  const int cell = SymbolCellHeight(sd);
  // The same, drawn by hand on another window.
  XSetWindowAttributes more{};
  more.override_redirect = True;
  const Window sheet =
      MakeChildWindow(root, 0, 0, 292, sd->height, white.pixel, 0, CWOverrideRedirect, more);
  XMapRaised(dpy, sheet);
  const GC gc = MakeWindowGC(sheet, txtFont);
  for (int i = 0; i < 5; i++) {
    const int x = 72 * (i % 4);
    const int y = 8 + cell * (i / 4);
    XSetForeground(dpy, gc, blue.pixel);
    DrawSymbolBigIcon(sheet, gc, sd->syms[i], x + 24, y);
    XSetForeground(dpy, gc, black.pixel);
    const int width = TextWidth(txtFontinfo, sd->syms[i]->name);
    DrawText(sheet, gc, x + 8 + 36 - width / 2, y + txtCharht + 32, sd->syms[i]->name);
  }
  EXPECT_EQ(Take(sd->window, 6, 6, 286, sd->height - 12), Take(sheet, 6, 6, 286, sd->height - 12));
  XFreeGC(dpy, gc);
  XDestroyWindow(dpy, sheet);
}

TEST_F(SymbolDisplayTest, AWideNameIsSplitAtItsFirstBlankOrInItsMiddle) {
  // The fixed font is 6 pixels wide: twelve letters are as wide as a cell, eleven are not.
  Show({"two words here", "abcdefghijkl", "abcdefghijk", "abcdefghijklm"});
  ASSERT_EQ(TextWidth(txtFontinfo, "abcdefghijkl"), 72);
  Shoot("chooser-names");
  struct Line {
    int column;
    int row;  // of the name, 1 or 2
    std::string text;
    int middle;  // from the column's left edge
  };
  const Line lines[] = {{0, 1, "two", 40},    {0, 2, " words here", 40}, {1, 1, "abcdef", 40},
                        {1, 2, "ghijkl", 40}, {2, 1, "abcdefghijk", 44}, {2, 2, "", 40},
                        {3, 1, "abcdef", 40}, {3, 2, "ghijklm", 40}};
  XSetWindowAttributes more{};
  more.override_redirect = True;
  const Window sheet =
      MakeChildWindow(root, 0, 0, 292, sd->height, white.pixel, 0, CWOverrideRedirect, more);
  XMapRaised(dpy, sheet);
  const GC gc = MakeWindowGC(sheet, txtFont);
  for (const Line& line : lines) {
    const int width = TextWidth(txtFontinfo, line.text.c_str());
    DrawText(sheet, gc, 72 * line.column + line.middle - width / 2, 8 + 32 + txtCharht * line.row,
             line.text.c_str());
  }
  const int y = 8 + 32 + 3;
  EXPECT_EQ(Take(sd->window, 6, y, 286, 2 * txtCharht), Take(sheet, 6, y, 286, 2 * txtCharht));
  XFreeGC(dpy, gc);
  XDestroyWindow(dpy, sheet);
}

TEST_F(SymbolDisplayTest, With17SymbolsTheScrollbarCoversFiveRowsAndACellScrollsFour) {
  Show(Numbered(17));
  const int cell = SymbolCellHeight(sd);
  EXPECT_EQ(sd->sbar->range, 5 * cell);
  ScrollSymbolDisplay(sd, cell - 1);
  EXPECT_EQ(sd->top, 0);
  const Picture before = Chooser();
  ScrollSymbolDisplay(sd, cell);
  EXPECT_EQ(sd->top, 4);
  EXPECT_FALSE(before == Chooser());
}

TEST_F(SymbolDisplayTest, TheRangeCountsWholeRows) {
  Show(Numbered(16));
  const int cell = SymbolCellHeight(sd);
  for (const auto& [count, rows] :
       std::vector<std::pair<int, int>>{{0, 0}, {1, 1}, {4, 1}, {5, 2}, {16, 4}, {21, 6}}) {
    SetLibrary(Numbered(count));
    DrawSymbolDisplay(sd);
    EXPECT_EQ(sd->sbar->range, rows * cell) << count;
  }
}

TEST_F(SymbolDisplayTest, ByTheScrollbarTheUserReachesTheLastRow) {
  Show(Numbered(40));
  for (int i = 0; i < 10; i++) Page(sd->sbar);
  EXPECT_EQ(sd->top, 24);
  ExpectAsRedrawn();
  Shoot("chooser-scrolled");
  SingleClick(3, 3);
  EXPECT_EQ(sd->selected, 39);
  EXPECT_STREQ(ChosenSymbol()->name, "s39");
}

TEST_F(SymbolDisplayTest, ASingleClickSelectsAndAnotherOneDeselects) {
  Show(Numbered(6));
  SingleClick(1, 0);
  EXPECT_EQ(sd->selected, 1);
  EXPECT_TRUE(Highlighted(1, 0));
  ExpectAsRedrawn();
  Shoot("chooser-selected");
  SingleClick(1, 0);
  EXPECT_EQ(sd->selected, -1);
  EXPECT_FALSE(Highlighted(1, 0));
  ExpectAsRedrawn();
  EXPECT_EQ(okays, 0);
}

TEST_F(SymbolDisplayTest, AnotherSymbolTakesTheSelectionOver) {
  Show(Numbered(6));
  SingleClick(1, 0);
  SingleClick(1, 1);
  EXPECT_EQ(sd->selected, 5);
  EXPECT_FALSE(Highlighted(1, 0));
  EXPECT_TRUE(Highlighted(1, 1));
  ExpectAsRedrawn();
}

TEST_F(SymbolDisplayTest, ADoubleClickSelectsAndRunsTheDialogsOk) {
  Show(Numbered(6));
  DoubleClick(2, 0);
  EXPECT_EQ(sd->selected, 2);
  EXPECT_EQ(okays, 1);
  ExpectAsRedrawn();
}

TEST_F(SymbolDisplayTest, ADoubleClickOnTheSelectedSymbolSelectsItAgain) {
  Show(Numbered(6));
  SingleClick(2, 0);
  DoubleClick(2, 0);
  EXPECT_EQ(sd->selected, 2);
  EXPECT_EQ(okays, 1);
  ExpectAsRedrawn();
}

TEST_F(SymbolDisplayTest, TwoQuickClicksOnTwoSymbolsChooseTheSecond) {
  Show(Numbered(6));
  SingleClick(0, 0);
  Click(1, 0);
  EXPECT_EQ(sd->selected, 1);
  EXPECT_EQ(okays, 1);
  ExpectAsRedrawn();
}

TEST_F(SymbolDisplayTest, HalfASecondIsNoDoubleClickAnyMore) {
  Show(Numbered(6));
  XEvent press{};
  press.xbutton.type = ButtonPress;
  press.xbutton.button = Button1;
  press.xbutton.x = 20;
  press.xbutton.y = 20;
  // Server times wrap after 49 days.
  for (const uint32_t start : {100000U, 0xffffff00U}) {
    for (const uint32_t gap : {499U, 500U}) {
      okays = 0;
      SymLastClick = static_cast<int>(start - 5000U);
      press.xbutton.time = start;
      SymbolDisplayButtonPress(sd, &press);
      press.xbutton.time = start + gap;
      if (press.xbutton.time > 0xffffffffU) press.xbutton.time &= 0xffffffffU;
      SymbolDisplayButtonPress(sd, &press);
      SymbolDisplayButtonRelease(sd, &press);
      EXPECT_EQ(okays, gap < 500 ? 1 : 0) << start << " " << gap;
      sd->selected = -1;
    }
  }
}

TEST_F(SymbolDisplayTest, TheDialogsOkWaitsForTheReleaseOfTheSecondClick) {
  Show(Numbered(6));
  SingleClick(2, 0);
  player->Press(1);
  Pump();
  EXPECT_EQ(okays, 0);
  player->Press(3);
  player->Release(3);
  Pump();
  EXPECT_EQ(okays, 0) << "another button took the click back";
  player->Release(1);
  Pump();
  EXPECT_EQ(okays, 0);
  DoubleClick(2, 0);
  EXPECT_EQ(okays, 1);
  player->Press(2);
  player->Release(2);
  Pump();
  EXPECT_EQ(okays, 1);
}

TEST_F(SymbolDisplayTest, AClickBesideTheSymbolsKeepsTheSelection) {
  Show(Numbered(6));
  SingleClick(1, 0);
  SingleClick(2, 1);  // behind the last symbol
  SingleClick(0, 3);  // below it
  EXPECT_EQ(sd->selected, 1);
  for (const auto& [x, y] :
       std::vector<std::pair<int, int>>{{7, 30}, {0, 30}, {30, 7}, {30, 0}, {309, 30}}) {
    SymLastClick = 0;
    ClickIn(sd->window, x, y);
    EXPECT_EQ(sd->selected, 1) << x << " " << y;
  }
  EXPECT_EQ(okays, 0);
  ExpectAsRedrawn();
}

TEST_F(SymbolDisplayTest, Button3SelectsNothingButCountsAsTheFirstPressOfADoubleClick) {
  Show(Numbered(6));
  SymLastClick = 0;
  Click(1, 0, 3);
  EXPECT_EQ(sd->selected, -1);
  Click(1, 0, 1);
  EXPECT_EQ(sd->selected, 1);
  EXPECT_EQ(okays, 1);
  Click(0, 0, 3);
  EXPECT_EQ(sd->selected, 1);
}

TEST_F(SymbolDisplayTest, ASelectionThatIsScrolledAwayIsKeptAndNotDrawn) {
  Show(Numbered(40));
  SingleClick(1, 0);
  for (int i = 0; i < 10; i++) Page(sd->sbar);
  ASSERT_EQ(sd->top, 24);
  EXPECT_EQ(sd->selected, 1);
  EXPECT_FALSE(Highlighted(1, 0));
  SingleClick(0, 0);
  EXPECT_EQ(sd->selected, 24);
  ExpectAsRedrawn();
}

// INV-CHOOSER-1.
TEST_F(SymbolDisplayTest, OfMoreThan512SymbolsTheFirst512AreListed) {
  Show(Numbered(600));
  EXPECT_EQ(sd->count, 512);
  EXPECT_EQ(sd->unlisted, 88);
  EXPECT_STREQ(sd->syms[511]->name, "s511");
  for (int i = 0; i < 10; i++) Page(sd->sbar);
  EXPECT_EQ(sd->top, 500);
  SingleClick(3, 2);
  EXPECT_EQ(sd->selected, 511);
  SetLibrary(Numbered(512));
  DrawSymbolDisplay(sd);
  EXPECT_EQ(sd->count, 512);
  EXPECT_EQ(sd->unlisted, 0);
}

TEST_F(SymbolDisplayTest, ARowBehindTheLastListedSymbolSaysHowManyAreMissing) {
  Show(Numbered(600));
  EXPECT_EQ(sd->sbar->range, 129 * SymbolCellHeight(sd));
  for (int i = 0; i < 10; i++) Page(sd->sbar);
  ASSERT_EQ(sd->top, 500);
  Shoot("chooser-cut");
  const int last = 3 * SymbolCellHeight(sd);
  const Picture row = Take(sd->window, 6, last + 6, 286, SymbolCellHeight(sd) - 8);
  XSetWindowAttributes more{};
  more.override_redirect = True;
  const Window sheet = MakeChildWindow(root, 0, 0, 292, SymbolCellHeight(sd), white.pixel, 0,
                                       CWOverrideRedirect, more);
  XMapRaised(dpy, sheet);
  const GC gc = MakeWindowGC(sheet, txtFont);
  int baseline = 8 + 32;
  for (const char* line : {"88 more symbols are not shown.", "Delete symbols to see the others."}) {
    DrawText(sheet, gc, 8 + 140 - TextWidth(txtFontinfo, line) / 2, baseline, line);
    baseline += txtCharht;
  }
  EXPECT_EQ(row, Take(sheet, 6, 6, 286, SymbolCellHeight(sd) - 8));
  XFreeGC(dpy, gc);
  XDestroyWindow(dpy, sheet);
  // It is no symbol.
  SingleClick(0, 3);
  DoubleClick(2, 3);
  EXPECT_EQ(sd->selected, -1);
  EXPECT_EQ(okays, 0);
  ExpectAsRedrawn();
  // It is not there when all symbols are.
  SetLibrary(Numbered(512));
  DrawSymbolDisplay(sd);
  EXPECT_EQ(sd->sbar->range, 128 * SymbolCellHeight(sd));
  EXPECT_EQ(sd->top, 496);
  ExpectAsRedrawn();
}

// INV-CHOOSER-2.
TEST_F(SymbolDisplayTest, TheSelectionStaysWithItsSymbolWhenTheLibraryChanges) {
  Show(Numbered(6));
  SingleClick(1, 0);
  // A new symbol comes in at the head.
  GromlitSymbol added = Symbol("new", {{16, 16}, {264, 16}});
  ASSERT_EQ(StoreSymbol(&added, "new"), 1);
  RefreshSymbolNames(sed);
  Pump();
  EXPECT_EQ(sd->count, 7);
  EXPECT_EQ(sd->selected, 2);
  EXPECT_STREQ(ChosenSymbol()->name, "s1");
  EXPECT_TRUE(Highlighted(2, 0));
  // It is saved again: another record of the same name.
  GromlitSymbol again = Symbol("s1", {{16, 264}, {264, 16}});
  ASSERT_EQ(StoreSymbol(&again, "s1"), 1);
  RefreshSymbolNames(sed);
  Pump();
  EXPECT_EQ(sd->selected, 2);
  EXPECT_EQ(ChosenSymbol()->y[1], 264);
  // It is gone.
  SetLibrary({"s0", "s2", "s3"});
  DrawSymbolDisplay(sd);
  EXPECT_EQ(sd->selected, -1);
  EXPECT_EQ(ChosenSymbol(), nullptr);
}

TEST_F(SymbolDisplayTest, AfterDeletionsTheScrolledGridStillShowsSymbols) {
  Show(Numbered(40));
  for (int i = 0; i < 10; i++) Page(sd->sbar);
  ASSERT_EQ(sd->top, 24);
  SingleClick(0, 0);
  SetLibrary(Numbered(30));
  DrawSymbolDisplay(sd);
  EXPECT_EQ(sd->top, 28 - 12);
  EXPECT_EQ(sd->selected, 24);
  ExpectAsRedrawn();
  SetLibrary(Numbered(3));
  DrawSymbolDisplay(sd);
  EXPECT_EQ(sd->top, 0);
  ExpectAsRedrawn();
}

TEST_F(SymbolDisplayTest, DrawingMakesNoRoundTrips) {
  Show(Numbered(40));
  EXPECT_EQ(CostOf([this] { DrawSymbolDisplay(sd); }).roundtrips, 0U);
  EXPECT_EQ(CostOf([this] { ScrollSymbolDisplay(sd, 3 * SymbolCellHeight(sd)); }).roundtrips, 0U);
}

}  // namespace
}  // namespace gromlit
