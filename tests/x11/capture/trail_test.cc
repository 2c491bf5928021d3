// The record of a trail: where its windows are, how they grow, and how far the pointer got.
#include "tests/support/x_fixture.h"

#include <vector>

#include "capture/trail.h"
#include "tests/x11/toolkit/request_cost.h"
#include "toolkit/window_object.h"

namespace gromlit {
namespace {

using testing::Cost;
using testing::CostOf;

constexpr int kSize = 500;  // of the small window
constexpr int kMid = 375;   // its point under the pointer at first

class TrailTest : public testing::XFixture {
 protected:
  void SetUp() override {
    XFixture::SetUp();
    if (HasFatalFailure()) return;
    windows = MakeTrailWindows(Button3MotionMask | ButtonReleaseMask);
    trail = StartTrail(&windows);
  }
  void TearDown() override {
    if (dpy != nullptr && windows.gc != nullptr) {
      for (const Window window : {windows.window, windows.fullwindow}) DisclaimWindow(window);
      XFreeGC(dpy, windows.gc);
    }
    XFixture::TearDown();
  }

  static XWindowAttributes At(Window window) {
    XWindowAttributes attributes{};
    XGetWindowAttributes(dpy, window, &attributes);
    return attributes;
  }
  static bool Mapped(Window window) { return At(window).map_state == IsViewable; }
  // The first motion, and the first point of the line.
  void Begin(int x, int y) {
    ShowTrail(&trail, x, y);
    MoveTrail(&trail, x, y);
  }
  unsigned long Pixel(int x, int y) {
    XSync(dpy, False);
    return player->Pixel(x, y);
  }

  TrailWindows windows{};
  Trail trail{};
};

TEST_F(TrailTest, WindowsAreMadeUnmappedAndCountAsTheProgramsOwn) {
  const XWindowAttributes small = At(windows.window);
  const XWindowAttributes full = At(windows.fullwindow);
  EXPECT_EQ(small.width, kSize);
  EXPECT_EQ(small.height, kSize);
  EXPECT_EQ(full.x, 0);
  EXPECT_EQ(full.y, 0);
  EXPECT_EQ(full.width, 1280);
  EXPECT_EQ(full.height, 1024);
  for (const XWindowAttributes& made : {small, full}) {
    EXPECT_EQ(made.map_state, IsUnmapped);
    EXPECT_EQ(made.override_redirect, True);
    EXPECT_EQ(made.save_under, False);
    EXPECT_EQ(made.border_width, 0);
    EXPECT_EQ(made.depth, DefaultDepth(dpy, screen));
    EXPECT_EQ(made.your_event_mask, Button3MotionMask | ButtonReleaseMask);
  }
  EXPECT_TRUE(IsOwnWindow(windows.window));
  EXPECT_TRUE(IsOwnWindow(windows.fullwindow));
}

TEST_F(TrailTest, LineInvertsAndIsFourPixelsWide) {
  XGCValues values{};
  ASSERT_NE(XGetGCValues(dpy, windows.gc, GCFunction | GCForeground | GCBackground | GCLineWidth,
                         &values),
            0);
  EXPECT_EQ(values.function, GXinvert);
  EXPECT_EQ(values.line_width, 4);
  EXPECT_EQ(values.foreground, black.pixel);
  EXPECT_EQ(values.background, white.pixel);
}

TEST_F(TrailTest, AnotherDrawButtonsEventsAreTakenOver) {
  SelectTrailEvents(windows, Button1MotionMask | ButtonReleaseMask);
  EXPECT_EQ(At(windows.window).your_event_mask, Button1MotionMask | ButtonReleaseMask);
  EXPECT_EQ(At(windows.fullwindow).your_event_mask, Button1MotionMask | ButtonReleaseMask);
}

TEST_F(TrailTest, StartsUnmappedInTheSmallWindow) {
  EXPECT_FALSE(trail.drawmapped);
  EXPECT_FALSE(trail.mapfull);
  EXPECT_EQ(trail.w, windows.window);
  EXPECT_EQ(trail.width, kSize);
  EXPECT_EQ(trail.height, kSize);
  EXPECT_EQ(trail.mid, kMid);
  EXPECT_EQ(trail.lastx, kMid);
  EXPECT_EQ(trail.lasty, kMid);
  EXPECT_EQ(trail.drawmoved, 0);
}

TEST_F(TrailTest, FirstMotionLiesAtTheStartPointAndIsADot) {
  Begin(600, 500);
  EXPECT_TRUE(trail.drawmapped);
  EXPECT_EQ(trail.drawmoved, 0);
  const XWindowAttributes small = At(windows.window);
  EXPECT_EQ(small.map_state, IsViewable);
  EXPECT_EQ(small.x, 600 - kMid);
  EXPECT_EQ(small.y, 500 - kMid);
  EXPECT_EQ(small.width, kSize);
  EXPECT_EQ(small.height, kSize);
  EXPECT_FALSE(Mapped(windows.fullwindow));
}

TEST_F(TrailTest, TrailIsSeenInvertedAndGoesWithoutATrace) {
  const unsigned long before = Pixel(650, 500);
  Begin(600, 500);
  MoveTrail(&trail, 700, 500);
  EXPECT_EQ(Pixel(650, 500), ~before & 0xffffff);
  EXPECT_EQ(Pixel(650, 510), before);
  HideTrail(&trail);
  EXPECT_FALSE(trail.drawmapped);
  EXPECT_EQ(Pixel(650, 500), before);
}

TEST_F(TrailTest, DistanceIsTheFarthestAlongEitherAxis) {
  Begin(600, 500);
  const struct {
    int x, y, moved;
  } steps[] = {{603, 501, 3}, {601, 504, 4},  {600, 500, 4},
               {593, 498, 7}, {598, 489, 11}, {607, 507, 11}};
  for (const auto& step : steps) {
    MoveTrail(&trail, step.x, step.y);
    EXPECT_EQ(trail.drawmoved, step.moved) << step.x << "," << step.y;
  }
}

TEST_F(TrailTest, GrowsToTheRightOnlyBeyondItsWidth) {
  Begin(600, 500);
  const int edge = 600 - kMid + kSize;  // one beyond the last column
  MoveTrail(&trail, edge, 500);
  EXPECT_EQ(trail.width, kSize);
  MoveTrail(&trail, edge + 1, 500);
  EXPECT_EQ(trail.width, kSize + 1 + kTrailMargin);
  EXPECT_EQ(trail.height, kSize);
  XWindowAttributes small = At(windows.window);
  EXPECT_EQ(small.width, kSize + 1 + kTrailMargin);
  EXPECT_EQ(small.height, kSize);
  EXPECT_EQ(small.x, 600 - kMid) << "it grows, it does not move";
  // Within the margin nothing more is asked for.
  MoveTrail(&trail, edge + kTrailMargin, 500);
  EXPECT_EQ(trail.width, kSize + 1 + kTrailMargin);
  EXPECT_FALSE(trail.mapfull);
}

TEST_F(TrailTest, GrowsDownwardsOnlyBeyondItsHeight) {
  Begin(600, 500);
  const int edge = 500 - kMid + kSize;
  MoveTrail(&trail, 600, edge);
  EXPECT_EQ(trail.height, kSize);
  MoveTrail(&trail, 600, edge + 1);
  EXPECT_EQ(trail.height, kSize + 1 + kTrailMargin);
  EXPECT_EQ(trail.width, kSize);
  EXPECT_EQ(At(windows.window).height, kSize + 1 + kTrailMargin);
}

TEST_F(TrailTest, EachStrokeBeginsWithTheInitialSize) {
  Begin(600, 500);
  MoveTrail(&trail, 800, 700);
  ASSERT_GT(At(windows.window).width, kSize);
  HideTrail(&trail);
  trail = StartTrail(&windows);
  Begin(500, 400);
  EXPECT_EQ(At(windows.window).width, kSize);
  EXPECT_EQ(At(windows.window).height, kSize);
  EXPECT_EQ(At(windows.window).x, 500 - kMid);
}

TEST_F(TrailTest, FullWindowTakesOverNineAndNotTenPixelsFromTheLeftEdge) {
  Begin(600, 500);
  MoveTrail(&trail, 600 - kMid + 10, 500);
  EXPECT_FALSE(trail.mapfull);
  EXPECT_EQ(trail.drawmoved, kMid - 10);
  MoveTrail(&trail, 600 - kMid + 9, 500);
  EXPECT_TRUE(trail.mapfull);
  EXPECT_EQ(trail.w, windows.fullwindow);
  EXPECT_EQ(trail.width, 1280);
  EXPECT_EQ(trail.height, 1024);
  EXPECT_EQ(trail.lastx, 600 - kMid + 9);
  EXPECT_EQ(trail.lasty, 500);
  EXPECT_TRUE(Mapped(windows.fullwindow));
  EXPECT_TRUE(Mapped(windows.window)) << "what was drawn so far is on the small one";
}

TEST_F(TrailTest, FullWindowTakesOverNineAndNotTenPixelsFromTheTopEdge) {
  Begin(600, 500);
  MoveTrail(&trail, 600, 500 - kMid + 10);
  EXPECT_FALSE(trail.mapfull);
  MoveTrail(&trail, 600, 500 - kMid + 9);
  EXPECT_TRUE(trail.mapfull);
}

TEST_F(TrailTest, OnTheFullWindowThePositionOnTheScreenIsComparedWithTheStart) {
  Begin(600, 500);
  MoveTrail(&trail, 600 - kMid + 9, 500);  // at (234, 500) of the screen
  EXPECT_EQ(trail.drawmoved, kMid - 234);
  MoveTrail(&trail, 1000, 500);
  EXPECT_EQ(trail.drawmoved, 1000 - kMid);
  EXPECT_EQ(trail.lastx, 1000);
}

TEST_F(TrailTest, CornerSwitchesOnceAndTheLineGoesOnFromThere) {
  Begin(600, 500);
  MoveTrail(&trail, 600 - kMid, 500 - kMid);
  EXPECT_TRUE(trail.mapfull);
  EXPECT_EQ(trail.lastx, 600 - kMid);
  EXPECT_EQ(trail.lasty, 500 - kMid);
  const unsigned long before = Pixel(300, 800);
  MoveTrail(&trail, 300, 780);
  MoveTrail(&trail, 300, 820);
  EXPECT_EQ(Pixel(300, 800), ~before & 0xffffff);
}

TEST_F(TrailTest, StrokeThatBeginsAtTheScreensCornerStaysInTheSmallWindow) {
  Begin(0, 0);
  EXPECT_FALSE(trail.mapfull);
  EXPECT_EQ(At(windows.window).x, -kMid);
  MoveTrail(&trail, 20, 0);
  EXPECT_EQ(trail.drawmoved, 20);
}

TEST_F(TrailTest, HidingUnmapsBothWindows) {
  Begin(600, 500);
  MoveTrail(&trail, 226, 500);
  ASSERT_TRUE(Mapped(windows.fullwindow));
  HideTrail(&trail);
  EXPECT_FALSE(Mapped(windows.fullwindow));
  EXPECT_FALSE(Mapped(windows.window));
}

TEST_F(TrailTest, HidingWhatWasNeverShownSendsNothing) {
  EXPECT_EQ(CostOf([&] { HideTrail(&trail); }), (Cost{0, 0}));
}

TEST_F(TrailTest, MotionStepIsOneLineAndNoRoundTrip) {
  Begin(600, 500);
  for (int x = 601; x < 610; x++) {
    EXPECT_EQ(CostOf([&] { MoveTrail(&trail, x, 500); }), (Cost{1, 0})) << x;
  }
}

TEST_F(TrailTest, ShowingGrowingAndSwitchingMakeNoRoundTrips) {
  EXPECT_EQ(CostOf([&] { Begin(600, 500); }).roundtrips, 0u);
  // The resize and the line.
  EXPECT_EQ(CostOf([&] { MoveTrail(&trail, 750, 500); }), (Cost{2, 0}));
  EXPECT_EQ(CostOf([&] { MoveTrail(&trail, 225, 500); }).roundtrips, 0u);
  EXPECT_EQ(CostOf([&] { MoveTrail(&trail, 100, 500); }), (Cost{1, 0}));
  EXPECT_EQ(CostOf([&] { HideTrail(&trail); }), (Cost{2, 0}));
}

TEST_F(TrailTest, PointerGoesThroughBothWindows) {
  ASSERT_TRUE(windows.shaped) << "the test server knows input shapes";
  Display* other = player->display();
  const Window below = XCreateSimpleWindow(other, root, 500, 400, 200, 200, 0, 0, 0);
  XMapWindow(other, below);
  XSync(other, False);
  player->MoveTo(600, 500);
  Begin(600, 500);
  XSync(dpy, False);
  EXPECT_TRUE(Mapped(windows.window));
  EXPECT_EQ(player->Where().child, below);
  MoveTrail(&trail, 100, 500);
  MoveTrail(&trail, 600, 500);
  XSync(dpy, False);
  EXPECT_TRUE(Mapped(windows.fullwindow));
  EXPECT_EQ(player->Where().child, below);
}

}  // namespace
}  // namespace gromlit
