// First: the test library's headers do not stand Xlib's macros.
#include "tests/x11/toolkit/picture_draw.h"

#include <X11/keysym.h>

#include <climits>

#include "tests/x11/toolkit/request_cost.h"
#include "toolkit/image.h"
#include "toolkit/text_list.h"

namespace gromlit {
namespace {

using testing::Cost;
using testing::CostOf;
using testing::Picture;

constexpr int kX = 40;  // of the list in its parent
constexpr int kY = 30;
constexpr int kWidth = 120;
constexpr int kHeight = 50;  // three lines of 13 pixels, and a strip of three pixels

const char* const kItems[] = {"zero", "one", "two", "three", "four", "five"};
constexpr int kItemCount = 6;

std::vector<std::string> picked;
int expectedarg = 0;
void NotePick(void* arg, const char* item) {
  EXPECT_EQ(arg, &expectedarg);
  picked.push_back(item);
}

class TextListTest : public testing::WidgetFixture {
 protected:
  void SetUp() override {
    WidgetFixture::SetUp();
    MakeImages();
    picked.clear();
    tl = MakeTextList(top, kX, kY, kWidth, kHeight, txtFontinfo);
    tl->select = NotePick;
    tl->selectarg = &expectedarg;
    XMapWindow(dpy, tl->window);
    Pump();
  }

  void ClickY(int y) {
    MoveTo(kX + 20, kY + y);
    player->Click(1);
    Pump();
  }
  // Middle of a row of the window.
  static int RowY(int row) { return 4 + row * 13 + 6; }

  Picture Expected(const std::vector<std::string>& lines, int selectedrow = -1) {
    Picture picture(kWidth, kHeight, kWhite);
    Outline(picture, kLightGrey, 0, 0, kWidth, kHeight);
    picture.Bevel(kDarkGrey, kWhite, 1, 1, kWidth - 1, kHeight - 1);
    for (size_t row = 0; row < lines.size(); row++) {
      const int baseline = (static_cast<int>(row) + 1) * 13 + 2;
      Stamp(picture, txtFontinfo, 6, baseline, lines[row]);
    }
    if (selectedrow >= 0) InvertFilled(picture, 4, selectedrow * 13 + 4, kWidth - 6, 15);
    return picture;
  }
  Picture Shown() { return Take(tl->window, 0, 0, kWidth, kHeight); }

  XTextList* tl = nullptr;
};

TEST_F(TextListTest, NewListIsEmptyWithNothingSelected) {
  XTextList* fresh = MakeTextList(top, 10, 20, 100, 60, txtFontinfo);
  EXPECT_EQ(fresh->nitems, 0);
  EXPECT_EQ(fresh->items, nullptr);
  EXPECT_EQ(fresh->top, 0);
  EXPECT_EQ(fresh->visible, 0);
  EXPECT_EQ(fresh->selected, -1);
  EXPECT_EQ(fresh->itemheight, 13);
  EXPECT_EQ(fresh->sb, nullptr);
  XWindowAttributes attributes;
  XGetWindowAttributes(dpy, fresh->window, &attributes);
  EXPECT_EQ(attributes.map_state, IsUnmapped);
  EXPECT_EQ(Shown(), Expected({}));
}

TEST_F(TextListTest, ShowsTheLinesThatFit) {
  SetListItems(tl, kItems, kItemCount);
  EXPECT_EQ(tl->visible, 3);
  EXPECT_EQ(tl->items, kItems);
  EXPECT_EQ(Shown(), Expected({"zero", "one", "two"}));
  SetListCount(tl, 2);
  EXPECT_EQ(Shown(), Expected({"zero", "one"}));
}

TEST_F(TextListTest, LinesOfTheLabelFontAreAsHighAsItsBounds) {
  XTextList* other = MakeTextList(top, 10, 150, 100, 60, labelFontinfo);
  const int itemheight = labelFontinfo->max_bounds.ascent + labelFontinfo->max_bounds.descent;
  EXPECT_EQ(other->itemheight, itemheight);
  SetListItems(other, kItems, kItemCount);
  EXPECT_EQ(other->visible, (60 - 8) / itemheight);
}

TEST_F(TextListTest, ClickSelectsHighlightsAndCallsBack) {
  SetListItems(tl, kItems, kItemCount);
  ClickY(RowY(1));
  EXPECT_EQ(tl->selected, 1);
  EXPECT_EQ(picked, (std::vector<std::string>{"one"}));
  EXPECT_EQ(Shown(), Expected({"zero", "one", "two"}, 1));
}

TEST_F(TextListTest, SelectingAnotherLineTakesTheOldHighlightAway) {
  SetListItems(tl, kItems, kItemCount);
  ClickY(RowY(0));
  ClickY(RowY(2));
  EXPECT_EQ(picked, (std::vector<std::string>{"zero", "two"}));
  // Highlights are two pixels higher than a line; rows 0 and 2 do not touch.
  EXPECT_EQ(Shown(), Expected({"zero", "one", "two"}, 2));
  XClearArea(dpy, tl->window, 0, 0, 0, 0, True);
  Pump();
  EXPECT_EQ(Shown(), Expected({"zero", "one", "two"}, 2));
}

TEST_F(TextListTest, ClickingTheSelectedLineAgainDoesNothing) {
  SetListItems(tl, kItems, kItemCount);
  ClickY(RowY(1));
  ClickY(RowY(1));
  EXPECT_EQ(picked.size(), 1u);
  EXPECT_EQ(Shown(), Expected({"zero", "one", "two"}, 1));
}

TEST_F(TextListTest, ClickBelowTheLastLineDoesNothing) {
  SetListItems(tl, kItems, 2);
  ClickY(RowY(2));
  EXPECT_EQ(tl->selected, -1);
  EXPECT_TRUE(picked.empty());
  EXPECT_EQ(Shown(), Expected({"zero", "one"}));
}

TEST_F(TextListTest, ClickInTheStripBelowTheRowsDoesNothing) {
  SetListItems(tl, kItems, kItemCount);
  ClickY(4 + 3 * 13);
  EXPECT_EQ(tl->selected, -1);
  EXPECT_EQ(Shown(), Expected({"zero", "one", "two"}));
}

TEST_F(TextListTest, BordersOfTheRows) {
  SetListItems(tl, kItems, kItemCount);
  struct Case {
    int y;
    int expected;
  };
  for (const Case& at :
       {Case{0, 0}, Case{3, 0}, Case{17, 1}, Case{16, 0}, Case{30, 2}, Case{29, 1}, Case{42, 2}}) {
    ClickY(at.y);
    EXPECT_EQ(tl->selected, at.expected) << at.y;
  }
}

TEST_F(TextListTest, ForgedClicksFarOutsideHitNothing) {
  SetListItems(tl, kItems, kItemCount);
  SetTextListTop(tl, 3);
  for (int y : {-32768, -300, -10, -9, 100, 32767}) {
    XEvent event{};
    event.xbutton.type = ButtonPress;
    event.xbutton.window = tl->window;
    event.xbutton.y = y;
    XSendEvent(player->display(), tl->window, False, ButtonPressMask, &event);
  }
  XSync(player->display(), False);
  Pump();
  EXPECT_EQ(tl->selected, -1);
  EXPECT_TRUE(picked.empty());
}

TEST_F(TextListTest, NullCallbackIsSafe) {
  tl->select = nullptr;
  SetListItems(tl, kItems, kItemCount);
  ClickY(RowY(1));
  EXPECT_EQ(tl->selected, 1);
}

TEST_F(TextListTest, TopScrollsTheLinesAndTheirHighlight) {
  SetListItems(tl, kItems, kItemCount);
  ClickY(RowY(2));
  SetTextListTop(tl, 1);
  EXPECT_EQ(Shown(), Expected({"one", "two", "three"}, 1));
  SetTextListTop(tl, 4);
  EXPECT_EQ(Shown(), Expected({"four", "five"}));
  ClickY(RowY(1));
  EXPECT_EQ(picked.back(), "five");
  EXPECT_EQ(Shown(), Expected({"four", "five"}, 1)) << "the old highlight is not on the screen";
}

TEST_F(TextListTest, TopBeyondTheEndIsRefusedButDraws) {
  SetListItems(tl, kItems, kItemCount);
  SetTextListTop(tl, 2);
  for (int refused : {7, INT_MAX, -1, INT_MIN}) {
    XClearWindow(dpy, tl->window);
    SetTextListTop(tl, refused);
    EXPECT_EQ(tl->top, 2) << refused;
    EXPECT_EQ(Shown(), Expected({"two", "three", "four"})) << refused;
  }
  SetTextListTop(tl, 6);
  EXPECT_EQ(tl->top, 6) << "just behind the last line is accepted";
  EXPECT_EQ(Shown(), Expected({}));
}

TEST_F(TextListTest, ScrollbarOffsetBecomesALine) {
  SetListItems(tl, kItems, kItemCount);
  ListScrollUp(tl, 25);
  EXPECT_EQ(tl->top, 1);
  ListScrollUp(tl, 26);
  EXPECT_EQ(tl->top, 2);
  ListScrollUp(tl, INT_MAX);
  EXPECT_EQ(tl->top, 2);
}

TEST_F(TextListTest, FewerItemsThanBeforeLeaveNothingOutside) {
  std::vector<const char*> many(100, "many");
  SetListItems(tl, many.data(), 100);
  SetTextListTop(tl, 90);
  ClickY(RowY(2));
  EXPECT_EQ(tl->selected, 92);
  const std::vector<const char*> few = {"a", "b"};  // reading more would be seen by the sanitizers
  SetListItems(tl, few.data(), 2);
  EXPECT_EQ(tl->selected, -1);
  EXPECT_EQ(tl->top, 2);
  EXPECT_EQ(Shown(), Expected({}));
  SetTextListTop(tl, 0);
  EXPECT_EQ(Shown(), Expected({"a", "b"}));
  ClickY(RowY(1));
  EXPECT_EQ(picked.back(), "b");
}

TEST_F(TextListTest, SelectionSetBeforeTheCountIsShownWithIt) {
  SetListItems(tl, kItems, 2);
  tl->selected = 2;
  DrawTextList(tl);
  EXPECT_EQ(Shown(), Expected({"zero", "one"}));
  SetListCount(tl, 3);
  EXPECT_EQ(tl->selected, 2);
  EXPECT_EQ(Shown(), Expected({"zero", "one", "two"}, 2));
}

TEST_F(TextListTest, SelectionBeyondTheEndLeavesNoHighlightBehind) {
  SetListItems(tl, kItems, 2);
  tl->selected = 2;
  DrawTextList(tl);
  ClickY(RowY(0));
  EXPECT_EQ(Shown(), Expected({"zero", "one"}, 0));
}

TEST_F(TextListTest, OddCountsAndItemsAreSafe) {
  SetListItems(tl, kItems, -5);
  EXPECT_EQ(tl->nitems, 0);
  SetListItems(tl, nullptr, 5);
  EXPECT_EQ(tl->nitems, 0);
  SetListCount(tl, 5);
  EXPECT_EQ(tl->nitems, 0) << "there are no items";
  const char* const holed[] = {"a", nullptr, "c"};
  SetListItems(tl, holed, 3);
  EXPECT_EQ(Shown(), Expected({"a", "", "c"}));
}

TEST_F(TextListTest, ListsTooLowForALineShowNone) {
  for (int height : {-20, 0, 5, 8, 20}) {
    XTextList* low = MakeTextList(top, 10, 150, 100, height, txtFontinfo);
    SetListItems(low, kItems, kItemCount);
    EXPECT_EQ(low->visible, 0) << height;
  }
}

TEST_F(TextListTest, ScrollbarGetsTheRangeAndFollows) {
  XScrollbar* sb = MakeScrollbar(top, kX + kWidth, kY, kHeight);
  sb->scroll = [](void* arg, int offset) { ListScrollUp(static_cast<XTextList*>(arg), offset); };
  sb->scrollarg = tl;
  tl->sb = sb;
  SetListItems(tl, kItems, kItemCount);
  EXPECT_EQ(sb->range, kItemCount * 13);
  SetListCount(tl, 3);
  EXPECT_EQ(sb->range, 39);
  SetListItems(tl, kItems, kItemCount);
  sb->pos = 1000;
  UpdateScrollbar(sb);
  EXPECT_GT(tl->top, 0);
  SetListCount(tl, 1);
  EXPECT_EQ(tl->top, 0);
}

TEST_F(TextListTest, KeysDoNothing) {
  SetListItems(tl, kItems, kItemCount);
  ClickY(RowY(0));
  XEvent event{};
  event.xkey.type = KeyPress;
  event.xkey.display = dpy;
  for (unsigned keycode :
       {static_cast<unsigned>(XKeysymToKeycode(dpy, XK_Down)), 0u, 255u, 100000u}) {
    event.xkey.keycode = keycode;
    ListKeyPress(tl, &event);
  }
  player->Type(XK_Down);
  Pump();
  EXPECT_EQ(tl->selected, 0);
  EXPECT_EQ(tl->top, 0);
  EXPECT_EQ(tl->wobj->eh[KeyPress], NoHandler) << "no list has a key handler";
}

TEST_F(TextListTest, DrawingCostsNoRoundTrip) {
  SetListItems(tl, kItems, kItemCount);
  EXPECT_EQ(CostOf([&] { DrawTextList(tl); }), (Cost{12, 0}));
  EXPECT_EQ(CostOf([&] { SetTextListTop(tl, 1); }), (Cost{12, 0}));
  XEvent event{};
  event.xbutton.y = RowY(1);
  EXPECT_EQ(CostOf([&] { TextListClick(tl, &event); }), (Cost{2, 0}));
  event.xbutton.y = RowY(0);
  EXPECT_EQ(CostOf([&] { TextListClick(tl, &event); }), (Cost{4, 0}));
  EXPECT_EQ(CostOf([&] { TextListClick(tl, &event); }), (Cost{0, 0}));
  EXPECT_EQ(CostOf([&] { MakeTextList(top, 10, 150, 100, 60, txtFontinfo); }), (Cost{2, 0}));
}

}  // namespace
}  // namespace gromlit
