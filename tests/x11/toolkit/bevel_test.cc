// First: the test library's headers cannot bear Xlib's macros.
#include "tests/x11/toolkit/widget_fixture.h"

#include "tests/x11/toolkit/request_cost.h"
#include "toolkit/bevel.h"
#include "toolkit/text.h"

namespace gromlit {
namespace {

using testing::Cost;
using testing::CostOf;
using testing::Picture;

class BevelTest : public testing::WidgetFixture {
 protected:
  void SetUp() override {
    WidgetFixture::SetUp();
    gc = MakeWindowGC(top, txtFont);
  }
  void TearDown() override {
    XFreeGC(dpy, gc);
    WidgetFixture::TearDown();
  }
  GC gc = nullptr;
};

TEST_F(BevelTest, RaisedIsWhiteAboveAndDarkBelow) {
  XDrawBevel(kRaised, top, gc, 10, 10, 6, 5);
  Picture expected(6, 5, kLightGrey);
  const char* const rows[] = {"WWWWWW", "WWWWWD", "WW..DD", "WWDDDD", "WDDDDD"};
  for (int y = 0; y < 5; y++) {
    for (int x = 0; x < 6; x++) {
      expected.At(x, y) = rows[y][x] == 'W' ? kWhite : rows[y][x] == 'D' ? kDarkGrey : kLightGrey;
    }
  }
  EXPECT_EQ(Take(top, 10, 10, 6, 5), expected);
}

TEST_F(BevelTest, SunkenIsTheOtherWayRound) {
  XDrawBevel(kSunken, top, gc, 10, 10, 20, 12);
  Picture expected(20, 12, kLightGrey);
  expected.Bevel(kDarkGrey, kWhite, 0, 0, 20, 12);
  EXPECT_EQ(Take(top, 10, 10, 20, 12), expected);
}

TEST_F(BevelTest, FlatErasesARaisedOne) {
  XDrawBevel(kRaised, top, gc, 10, 10, 20, 12);
  EXPECT_EQ(PixelOf(top, 10, 10), kWhite);
  XDrawBevel(kFlat, top, gc, 10, 10, 20, 12);
  EXPECT_EQ(Take(top, 5, 5, 40, 30), Picture(40, 30, kLightGrey));
}

// Down to sizes where the lines lie over each other or run backwards.
TEST_F(BevelTest, EverySizeOverlapsLineByLine) {
  for (int up : {kSunken, kRaised}) {
    for (int w = 0; w <= 8; w++) {
      for (int h = 0; h <= 8; h++) {
        XClearWindow(dpy, top);
        XDrawBevel(up, top, gc, 10, 10, w, h);
        Picture expected(24, 24, kLightGrey);
        expected.Bevel(up == kRaised ? kWhite : kDarkGrey, up == kRaised ? kDarkGrey : kWhite, 10,
                       10, w, h);
        EXPECT_EQ(Take(top, 0, 0, 24, 24), expected) << up << ": " << w << " x " << h;
      }
    }
  }
}

TEST_F(BevelTest, LeavesTheLowerColourInTheContext) {
  XDrawBevel(kRaised, top, gc, 10, 10, 20, 12);
  XGCValues values;
  ASSERT_TRUE(XGetGCValues(dpy, gc, GCForeground, &values));
  EXPECT_EQ(values.foreground, dgrey.pixel);
}

TEST_F(BevelTest, CostsFourRequestsAndNoRoundTrip) {
  XDrawBevel(kRaised, top, gc, 10, 10, 20, 12);
  EXPECT_EQ(CostOf([&] { XDrawBevel(kRaised, top, gc, 10, 10, 20, 12); }), (Cost{4, 0}));
  // Both colours are the same: one change of the context less, once it is there.
  XDrawBevel(kFlat, top, gc, 10, 10, 20, 12);
  EXPECT_EQ(CostOf([&] { XDrawBevel(kFlat, top, gc, 10, 10, 20, 12); }), (Cost{2, 0}));
}

TEST_F(BevelTest, FillRectangleFillsExactlyItsPixels) {
  FillRectangle(top, gc, blue.pixel, 12, 13, 5, 3);
  Picture expected(24, 24, kLightGrey);
  expected.Fill(kBlue, 12, 13, 5, 3);
  EXPECT_EQ(Take(top, 0, 0, 24, 24), expected);
}

TEST_F(BevelTest, FillRectangleOfNoOrNegativeSizeFillsNothing) {
  for (const auto& [w, h] : {std::pair{0, 4}, {4, 0}, {-1, 4}, {4, -3}}) {
    FillRectangle(top, gc, blue.pixel, 12, 13, w, h);
    InvertRectangle(top, gc, 12, 13, w, h);
    InvertOutline(top, gc, 12, 13, w, h);
  }
  EXPECT_EQ(Take(top, 0, 0, 40, 40), Picture(40, 40, kLightGrey));
}

TEST_F(BevelTest, InvertedTwiceIsGone) {
  FillRectangle(top, gc, white.pixel, 0, 0, 40, 40);
  InvertRectangle(top, gc, 5, 6, 7, 8);
  Picture once(40, 40, kWhite);
  once.Fill(kBlack, 5, 6, 7, 8);
  EXPECT_EQ(Take(top, 0, 0, 40, 40), once);
  InvertRectangle(top, gc, 5, 6, 7, 8);
  EXPECT_EQ(Take(top, 0, 0, 40, 40), Picture(40, 40, kWhite));
}

TEST_F(BevelTest, InvertedOutlineIsOnePixelLargerThanItsSize) {
  FillRectangle(top, gc, white.pixel, 0, 0, 40, 40);
  InvertOutline(top, gc, 5, 6, 7, 8);
  Picture expected(40, 40, kWhite);
  expected.Fill(kBlack, 5, 6, 8, 9);
  expected.Fill(kWhite, 6, 7, 6, 7);
  EXPECT_EQ(Take(top, 0, 0, 40, 40), expected);
}

TEST_F(BevelTest, InvertingGivesTheContextBackToCopying) {
  InvertRectangle(top, gc, 5, 6, 7, 8);
  InvertOutline(top, gc, 5, 6, 7, 8);
  XGCValues values;
  ASSERT_TRUE(XGetGCValues(dpy, gc, GCFunction, &values));
  EXPECT_EQ(values.function, GXcopy);
}

TEST_F(BevelTest, CentredTextLeavesTheSameRoomOnBothSides) {
  const char* const text = "[]";  // "fixed" has the same width for every letter
  FillRectangle(top, gc, white.pixel, 0, 0, 100, 30);
  XSetForeground(dpy, gc, black.pixel);
  const int width = TextWidth(txtFontinfo, text);
  ASSERT_GT(width, 0);
  DrawCentredText(top, gc, 10, 80, 20, text, width);
  const Picture centred = Take(top, 0, 0, 100, 30);
  EXPECT_GT(centred.Count(kBlack, 0, 0, 100, 30), 0);
  FillRectangle(top, gc, white.pixel, 0, 0, 100, 30);
  XSetForeground(dpy, gc, black.pixel);
  DrawText(top, gc, 10 + (80 - width) / 2, 20, text);
  EXPECT_EQ(Take(top, 0, 0, 100, 30), centred);
}

TEST_F(BevelTest, TextWithoutAFontHasNoWidth) {
  EXPECT_EQ(TextWidth(nullptr, "text"), 0);
  EXPECT_EQ(TextWidth(txtFontinfo, ""), 0);
}

}  // namespace
}  // namespace gromlit
