// First: the test library's headers do not stand Xlib's macros.
#include "tests/x11/toolkit/picture_draw.h"

#include <X11/keysym.h>

#include "tests/x11/toolkit/request_cost.h"
#include "toolkit/image.h"
#include "toolkit/text_select.h"

namespace gromlit {
namespace {

using testing::Cost;
using testing::CostOf;
using testing::Picture;
using testing::Place;

constexpr int kX = 30;  // of the compound in its parent
constexpr int kY = 20;
constexpr int kWidth = 180;
constexpr int kHeight = 162;  // a list of 126 pixels, nine lines, and a track of 100

class TextSelectTest : public testing::WidgetFixture {
 protected:
  void SetUp() override {
    WidgetFixture::SetUp();
    MakeImages();
    for (int i = 0; i < 40; i++) names.push_back("name" + std::to_string(i));
    for (const std::string& name : names) items.push_back(name.c_str());
    ts = MakeTextSelect(top, kX, kY, kWidth, kHeight);
    TextEditorInit(ts->txt, "");
    SetListItems(ts->lst, items.data(), static_cast<int>(items.size()));
    XMapWindow(dpy, ts->window);
    Pump();
  }

  // A click in a row of the list.
  void ClickRow(int row) {
    MoveTo(kX + 20, kY + 32 + 4 + row * 13 + 6);
    player->Click(1);
    Pump();
  }

  std::vector<std::string> names;
  std::vector<const char*> items;
  TextSelect* ts = nullptr;
};

TEST_F(TextSelectTest, PartsAreInTheirPlaces) {
  EXPECT_EQ(ts->margin, 4);
  EXPECT_EQ(ts->width, kWidth);
  EXPECT_EQ(ts->height, kHeight);
  EXPECT_EQ(PlaceOf(ts->window), (Place{kX, kY, kWidth, kHeight}));
  EXPECT_EQ(PlaceOf(ts->txt->window), (Place{4, 4, kWidth - 8, 24}));
  EXPECT_EQ(PlaceOf(ts->sbar->window), (Place{kWidth - 20, 33, 15, kHeight - 36}));
  EXPECT_EQ(PlaceOf(ts->lst->window), (Place{4, 32, kWidth - 24, kHeight - 36}));
  EXPECT_EQ(ts->txt->owner, ts);
  EXPECT_EQ(ts->lst->sb, ts->sbar);
  EXPECT_EQ(ts->lst->fontinfo, txtFontinfo);
}

TEST_F(TextSelectTest, NewOneIsNotMappedButItsPartsAre) {
  TextSelect* fresh = MakeTextSelect(top, 300, 20, kWidth, kHeight);
  XWindowAttributes attributes;
  XGetWindowAttributes(dpy, fresh->window, &attributes);
  EXPECT_EQ(attributes.map_state, IsUnmapped);
  for (Window part : {fresh->txt->window, fresh->sbar->window, fresh->lst->window}) {
    XGetWindowAttributes(dpy, part, &attributes);
    EXPECT_EQ(attributes.map_state, IsUnviewable);
  }
}

TEST_F(TextSelectTest, DrawsOnItsOwnGround) {
  EXPECT_EQ(PixelOf(ts->window, 2, 2), kLightGrey);
  EXPECT_EQ(PixelOf(ts->window, kWidth - 2, kHeight - 2), kLightGrey);
  EXPECT_EQ(PixelOf(ts->txt->window, 100, 10), kWhite);
  EXPECT_EQ(PixelOf(ts->lst->window, 140, 60), kWhite);
}

TEST_F(TextSelectTest, ClickOnALinePutsItsTextIntoTheField) {
  TextEditorUpdate(ts->txt, "before");
  ClickRow(3);
  EXPECT_STREQ(ts->txt->buffer, "name3");
  EXPECT_EQ(ts->txt->index, 5);
  EXPECT_EQ(ts->lst->selected, 3);
  Picture expected(60, 13, kWhite);
  Stamp(expected, txtFontinfo, 0, 11, "name3");
  InvertFrame(expected, 29, -1, 7, 16);
  EXPECT_EQ(Take(ts->txt->window, 4, 5, 60, 13), expected);
}

TEST_F(TextSelectTest, LongLineIsCutInTheField) {
  items[0] = "";
  const std::string line(300, 'w');
  items[1] = line.c_str();
  ClickRow(1);
  EXPECT_EQ(ts->txt->len, 127);
  ClickRow(0);
  EXPECT_EQ(ts->txt->len, 0);
}

TEST_F(TextSelectTest, ScrollbarScrollsTheList) {
  EXPECT_EQ(ts->sbar->range, 40 * 13);
  MoveTo(kX + kWidth - 20 + 7, kY + 33 + 100);  // the trough below the thumb
  player->Press(2);                             // moves once and does not wait for the release
  Pump();
  player->Release(2);
  // A page of 31 pixels, of 5.2 units each.
  EXPECT_EQ(ts->sbar->pos, 31);
  EXPECT_EQ(ts->lst->top, 161 / 13);
  ClickRow(0);
  EXPECT_STREQ(ts->txt->buffer, "name12");
}

TEST_F(TextSelectTest, EveryLineCanBeReached) {
  ts->sbar->pos = 1000;
  UpdateScrollbar(ts->sbar);
  EXPECT_GE(ts->lst->top + ts->lst->visible, 40);
  EXPECT_LT(ts->lst->top, 40);
}

TEST_F(TextSelectTest, TypingGoesToTheField) {
  MoveTo(kX + 100, kY + 16);
  Pump();
  player->Type(XK_x);
  Pump();
  EXPECT_STREQ(ts->txt->buffer, "x");
  EXPECT_EQ(ts->lst->selected, -1);
}

TEST_F(TextSelectTest, TinySizesAreSafe) {
  for (int size : {-10, 0, 1, 20, 36, 40}) {
    TextSelect* tiny = MakeTextSelect(top, 300, 20, size, size);
    SetListItems(tiny->lst, items.data(), 40);
    XMapWindow(dpy, tiny->window);
    Pump();
    EXPECT_EQ(tiny->lst->visible, 0) << size;
  }
}

// A list of nine lines, one of them selected, takes 21 requests; they come on top of whatever the
// scrollbar draws.
TEST_F(TextSelectTest, CostOfPickingAndScrolling) {
  XEvent event{};
  event.xbutton.y = 4 + 6;
  TextListClick(ts->lst, &event);
  event.xbutton.y += 13;
  EXPECT_EQ(CostOf([&] { TextListClick(ts->lst, &event); }), (Cost{15, 0})) << "press on a line";
  EXPECT_EQ(CostOf([&] { DrawTextList(ts->lst); }), (Cost{21, 0})) << "expose of the list";
  EXPECT_EQ(CostOf([&] { DrawScrollbar(ts->sbar); }), (Cost{14 + 21, 0}))
      << "expose of the scrollbar";
  event.xbutton.y = 5;
  EXPECT_EQ(CostOf([&] { ScrollButtonPress(ts->sbar, &event); }), (Cost{9 + 21, 1})) << "a step";
}

TEST_F(TextSelectTest, CostOfMakingAndDrawing) {
  EXPECT_EQ(CostOf([&] { DrawTextSelect(ts); }), (Cost{1, 0}));
  // Four windows with a context each, and three maps.
  EXPECT_EQ(CostOf([&] { MakeTextSelect(top, 300, 20, kWidth, kHeight); }), (Cost{11, 0}));
}

}  // namespace
}  // namespace gromlit
