#include "tests/x11/app/symbol_editor_fixture.h"

#include <gmock/gmock.h>

#include <functional>
#include <random>

#include "app/symbols/symbol_editor_buttons.h"
#include "tests/x11/toolkit/request_cost.h"

namespace gromlit {
namespace {

using testing::CostOf;
using ::testing::ElementsAre;
using testing::Picture;

using SymbolEditorVectorTest = testing::SymbolEditorFixture;

TEST_F(SymbolEditorVectorTest, TheFirstPressMakesPointOneOnTheGrid) {
  Open();
  ClickIn(area->window, 43, 60);
  EXPECT_EQ(sed->state, kSymCapturing);
  EXPECT_THAT(Points(), ElementsAre(std::pair(40, 64)));
  Picture expected = VectorArea();
  Square(&expected, 40, 64);
  EXPECT_EQ(Area(), expected);
}

TEST_F(SymbolEditorVectorTest, PressesOutsideTheUsableSquareAreSnappedToItsEdge) {
  Open();
  Draw({{0, 3}, {279, 1}, {279, 279}, {2, 279}}, false);
  EXPECT_THAT(Points(), ElementsAre(std::pair(16, 16), std::pair(264, 16), std::pair(264, 264),
                                    std::pair(16, 264)));
  ExpectAsRedrawn();
}

TEST_F(SymbolEditorVectorTest, ClickingTheFirstPointAgainAtOnceMakesAOnePointVector) {
  Open();
  Draw({{100, 100}});
  EXPECT_EQ(sed->state, kSymComplete);
  EXPECT_EQ(sed->sym.npoints, 1);
  ClickOn(sed->bnext);
  for (const uint32_t row : sed->sym.icon) EXPECT_EQ(row, 0U);
}

TEST_F(SymbolEditorVectorTest, APressWithinThreePixelsOfTheLastPointEndsTheCapture) {
  for (const auto& [dx, dy] : std::vector<std::pair<int, int>>{{3, 3}, {-3, -3}, {3, -3}, {0, 0}}) {
    Open();
    Draw({{40, 40}, {120, 200}}, false);
    ClickIn(area->window, 120 + dx, 200 + dy);
    EXPECT_EQ(sed->state, kSymComplete) << dx << " " << dy;
    EXPECT_EQ(sed->sym.npoints, 2);
    ExpectAsRedrawn();
  }
}

TEST_F(SymbolEditorVectorTest, APressFourPixelsFromTheLastPointAddsAPoint) {
  Open();
  Draw({{40, 40}}, false);
  ClickIn(area->window, 44, 40);
  EXPECT_EQ(sed->state, kSymCapturing);
  EXPECT_THAT(Points(), ElementsAre(std::pair(40, 40), std::pair(48, 40)));
  ClickIn(area->window, 48, 35);
  EXPECT_THAT(Points(), ElementsAre(std::pair(40, 40), std::pair(48, 40), std::pair(48, 32)));
}

// Wherever in a cell of the grid: the point may be put four pixels away from the pointer.
TEST_F(SymbolEditorVectorTest, AClickAndAnotherInTheSamePlaceEndTheCapture) {
  for (int dx = 0; dx < 8; dx++) {
    for (int dy = 0; dy < 8; dy++) {
      Open();
      Draw({{40, 40}, {120 + dx, 160 + dy}, {120 + dx, 160 + dy}}, false);
      EXPECT_EQ(sed->state, kSymComplete) << dx << " " << dy;
      EXPECT_EQ(sed->sym.npoints, 2) << dx << " " << dy;
      // So it is with the point when it is to be dragged.
      ClickIn(area->window, 10, 10);
      MoveIn(area->window, 120 + dx, 160 + dy);
      EXPECT_EQ(area->onpt, 2) << dx << " " << dy;
    }
  }
}

// And beside the square in which points can be.
TEST_F(SymbolEditorVectorTest, TwoClicksOutsideTheUsableSquareEndTheCaptureToo) {
  for (const auto& [x, y] : std::vector<std::pair<int, int>>{{1, 1}, {278, 130}, {5, 278}}) {
    Open();
    Draw({{40, 40}, {x, y}, {x, y}}, false);
    EXPECT_EQ(sed->state, kSymComplete) << x << " " << y;
    EXPECT_EQ(sed->sym.npoints, 2);
  }
}

TEST_F(SymbolEditorVectorTest, APressOnAnEarlierPointAddsAPointThere) {
  Open();
  Draw({{40, 40}, {120, 40}, {40, 40}}, false);
  EXPECT_EQ(sed->state, kSymCapturing);
  EXPECT_EQ(sed->sym.npoints, 3);
}

TEST_F(SymbolEditorVectorTest, TheRubberBandFollowsThePointerAndLeavesNothingBehind) {
  Open();
  ClickIn(area->window, 40, 40);
  const Picture bare = Area();
  MoveIn(area->window, 120, 41);
  EXPECT_EQ(area->lastx, 120);
  EXPECT_EQ(area->lasty, 40);
  Picture expected = VectorArea();
  Square(&expected, 40, 40);
  // From the point it inverts: the half that lies in the point's square turns white.
  for (int x = 40; x <= 120; x++) expected.At(x, 40) = x <= 43 ? kWhite : kBlack;
  EXPECT_EQ(Area(), expected);
  ExpectAsRedrawn();
  MoveIn(area->window, 200, 170);
  MoveIn(area->window, 3, 260);
  ExpectAsRedrawn();
  MoveIn(area->window, 40, 40);
  EXPECT_EQ(Area(), bare);
}

TEST_F(SymbolEditorVectorTest, AnExposeWhileTheRubberBandIsThereKeepsIt) {
  Open();
  ClickIn(area->window, 40, 40);
  MoveIn(area->window, 160, 240);
  const Picture before = Area();
  XSetWindowAttributes more{};
  more.override_redirect = True;
  const Window cover =
      MakeChildWindow(root, 0, 0, 400, 400, grey.pixel, 0, CWOverrideRedirect, more);
  XMapRaised(dpy, cover);
  Pump();
  XDestroyWindow(dpy, cover);
  Pump();
  EXPECT_EQ(Area(), before);
  MoveIn(area->window, 40, 40);
  ExpectAsRedrawn();
}

TEST_F(SymbolEditorVectorTest, AVectorIsDrawnWithSquaresAndLines) {
  Open();
  Draw({{40, 40}, {200, 40}, {200, 160}});
  Picture expected = VectorArea();
  expected.Line(kBlack, 40, 40, 200, 40);
  expected.Line(kBlack, 200, 40, 200, 160);
  Square(&expected, 40, 40);
  Square(&expected, 200, 40);
  Square(&expected, 200, 160);
  EXPECT_EQ(Area(), expected);
}

TEST_F(SymbolEditorVectorTest, A65thPressAddsNothingAndThePressOnTheLastPointStillEnds) {
  Open();
  for (int k = 0; k < kMaxPoints; k++) ClickIn(area->window, 24 + 8 * (k % 2) * 10, 24 + 3 * k);
  ASSERT_EQ(sed->sym.npoints, kMaxPoints);
  const auto full = Points();
  ClickIn(area->window, 240, 240);
  EXPECT_EQ(sed->state, kSymCapturing);
  EXPECT_EQ(Points(), full);
  ExpectAsRedrawn();
  ClickIn(area->window, full.back().first, full.back().second);
  EXPECT_EQ(sed->state, kSymComplete);
  EXPECT_EQ(Points(), full);
  ExpectAsRedrawn();
}

TEST_F(SymbolEditorVectorTest, ThePointUnderThePointerIsWithinThreePixelsOrInItsCell) {
  const GromlitSymbol sym = Symbol("P", {{40, 40}, {200, 40}, {40, 40}});
  Open(&sym);
  struct Case {
    int x, y, onpt;
  };
  for (const Case& c : {Case{43, 43, 1}, Case{44, 40, 0}, Case{40, 37, 1}, Case{40, 36, 1},
                        Case{40, 35, 0}, Case{203, 37, 2}, Case{120, 120, 0}}) {
    MoveIn(area->window, c.x, c.y);
    EXPECT_EQ(area->onpt, c.onpt) << c.x << " " << c.y;
  }
  // From one point to another without a motion between them.
  MoveIn(area->window, 40, 40);
  MoveIn(area->window, 200, 40);
  EXPECT_EQ(area->onpt, 2);
}

TEST_F(SymbolEditorVectorTest, TheCursorChangesOnAPointAndBesideIt) {
  const GromlitSymbol sym = Symbol("P", {{40, 40}, {200, 40}});
  Open(&sym);
  const auto moved = [this](int x, int y) {
    XEvent event = Motion(x, y);
    return CostOf([&] { SymWindowMotionNotify(area, &event); });
  };
  EXPECT_EQ(moved(40, 40), (testing::Cost{1, 0}));
  EXPECT_EQ(moved(41, 41), (testing::Cost{0, 0}));
  EXPECT_EQ(moved(200, 40), (testing::Cost{0, 0}));
  EXPECT_EQ(moved(100, 40), (testing::Cost{1, 0}));
  EXPECT_EQ(moved(101, 40), (testing::Cost{0, 0}));
}

TEST_F(SymbolEditorVectorTest, APressBesideThePointsOfACompleteVectorDoesNothing) {
  Reach(kSymComplete);
  const auto before = Points();
  ClickIn(area->window, 120, 120);
  EXPECT_EQ(sed->state, kSymComplete);
  EXPECT_EQ(Points(), before);
}

// The area came up under a pointer that rests, or a click was handed on to where the pointer is
// not.
TEST_F(SymbolEditorVectorTest, ThePointThatIsPressedIsDraggedThoughThePointerHasNotMoved) {
  const GromlitSymbol sym = Symbol("P", {{40, 40}, {200, 40}});
  Open(&sym);
  MoveIn(area->window, 120, 120);
  for (const auto& [x, onpt] : std::vector<std::pair<int, int>>{{40, 1}, {200, 2}, {100, 0}}) {
    XEvent press{};
    press.xbutton.type = ButtonPress;
    press.xbutton.window = area->window;
    press.xbutton.button = 1;
    press.xbutton.x = x;
    press.xbutton.y = 41;
    SymWindowButtonPress(area, &press);
    EXPECT_EQ(area->onpt, onpt) << x;
    EXPECT_EQ(sed->state, onpt != 0 ? kSymDragging : kSymComplete) << x;
    SymWindowButtonRelease(area, &press);
    Pump();
    EXPECT_EQ(sed->state, kSymComplete);
  }
}

TEST_F(SymbolEditorVectorTest, APointIsDraggedAndTheReleaseGivesThePointerBack) {
  Open();
  Draw({{40, 40}, {120, 40}, {200, 40}, {200, 200}});
  MoveIn(area->window, 121, 42);
  player->Press(1);
  Pump();
  EXPECT_EQ(sed->state, kSymDragging);
  EXPECT_EQ(area->onpt, 2);
  EXPECT_FALSE(player->CanGrabPointer());
  MoveIn(area->window, 118, 131);
  EXPECT_THAT(Points(), ElementsAre(std::pair(40, 40), std::pair(120, 128), std::pair(200, 40),
                                    std::pair(200, 200)));
  ExpectAsRedrawn();
  MoveIn(area->window, 900, -20);  // outside of the editor
  EXPECT_EQ(sed->sym.x[2], 264);
  EXPECT_EQ(sed->sym.y[2], 16);
  ExpectAsRedrawn();
  player->Release(1);
  Pump();
  EXPECT_EQ(sed->state, kSymComplete);
  EXPECT_TRUE(player->CanGrabPointer());
  MoveIn(area->window, 100, 100);
  EXPECT_EQ(sed->sym.x[2], 264);
}

TEST_F(SymbolEditorVectorTest, TheNextPointIsTakenThoughTheReleaseIsReadLate) {
  Open();
  Draw({{40, 40}, {120, 40}, {200, 40}, {200, 200}});
  MoveIn(area->window, 121, 42);
  player->Press(1);
  Pump();
  MoveIn(area->window, 120, 128);
  const std::vector<std::pair<int, int>> moved = Points();
  player->Release(1);
  const auto at = player->Where();
  player->MoveTo(at.x + 80, at.y + 72);
  player->Press(1);
  Pump();
  EXPECT_EQ(sed->state, kSymDragging);
  EXPECT_EQ(area->onpt, 4);
  EXPECT_EQ(Points(), moved);
  player->Release(1);
  Pump();
  EXPECT_EQ(sed->state, kSymComplete);
  EXPECT_TRUE(player->CanGrabPointer());
}

TEST_F(SymbolEditorVectorTest, TheFirstTheLastAndTheOnlyPointCanBeDragged) {
  for (const int count : {1, 2}) {
    for (int k = 1; k <= count; k++) {
      Open();
      std::vector<std::pair<int, int>> points = {{40, 40}, {160, 80}};
      points.resize(static_cast<size_t>(count));
      Draw(points);
      MoveIn(area->window, sed->sym.x[k], sed->sym.y[k]);
      player->Press(1);
      Pump();
      MoveIn(area->window, 240, 240);
      EXPECT_EQ(sed->sym.x[k], 240);
      EXPECT_EQ(sed->sym.y[k], 240);
      ExpectAsRedrawn();
      player->Release(1);
      Pump();
    }
  }
}

TEST_F(SymbolEditorVectorTest, ARefusedGrabEndsTheDraggingBeforeItBegins) {
  Reach(kSymComplete);
  MoveIn(area->window, 40, 40);
  ASSERT_EQ(area->onpt, 1);
  ASSERT_EQ(XGrabPointer(player->display(), player->root(), False, ButtonPressMask, GrabModeAsync,
                         GrabModeAsync, None, None, CurrentTime),
            GrabSuccess);
  XSync(player->display(), False);
  XEvent press{};
  press.xbutton.type = ButtonPress;
  press.xbutton.x = 40;
  press.xbutton.y = 40;
  SymWindowButtonPress(area, &press);
  EXPECT_EQ(sed->state, kSymComplete);
  XUngrabPointer(player->display(), CurrentTime);
  XSync(player->display(), False);
  MoveIn(area->window, 160, 160);
  EXPECT_EQ(sed->sym.x[1], 40);
}

// INV-SYM-2.
TEST_F(SymbolEditorVectorTest, TheReleaseGivesThePointerBackWhateverTheStateIsByThen) {
  const GromlitSymbol sym = Symbol("P", {{40, 40}, {200, 40}});
  const std::function<void()> meanwhile[] = {[] { symClear(sed); }, [] { symNext(sed); },
                                             [&] { SymInit(sed, &sym); }};
  for (const auto& change : meanwhile) {
    Reach(kSymDragging);
    change();
    const int state = sed->state;
    Pump();
    player->Release(1);
    Pump();
    EXPECT_EQ(sed->state, state);
    EXPECT_TRUE(player->CanGrabPointer());
  }
}

TEST_F(SymbolEditorVectorTest, ADraggingWhoseReleaseWasMissedEndsWithTheNextMotion) {
  Reach(kSymDragging);
  XUnmapWindow(dpy, sed->window);  // such as by the window manager; the grab ends with it
  Pump();
  player->Release(1);
  XMapWindow(dpy, sed->window);
  Pump();
  ASSERT_EQ(sed->state, kSymDragging);
  MoveIn(area->window, 160, 160);
  EXPECT_EQ(sed->state, kSymComplete);
  EXPECT_EQ(sed->sym.x[1], 40);
  EXPECT_EQ(area->onpt, 0);
}

TEST_F(SymbolEditorVectorTest, AnyMouseButtonDrawsAndDrags) {
  Open();
  ClickIn(area->window, 40, 40, 2);
  ClickIn(area->window, 80, 40, 2);
  ClickIn(area->window, 80, 40, 2);
  EXPECT_EQ(sed->state, kSymComplete);
  player->Press(2);
  Pump();
  EXPECT_EQ(sed->state, kSymDragging);
  MoveIn(area->window, 80, 80);
  player->Release(2);
  Pump();
  EXPECT_THAT(Points(), ElementsAre(std::pair(40, 40), std::pair(80, 80)));
}

// INV-SYM-1: drawn step by step and drawn at once look the same, whatever was done.
TEST_F(SymbolEditorVectorTest, WhateverIsDrawnAndDraggedLooksAsIfDrawnAtOnce) {
  const unsigned seed = std::random_device{}();
  SCOPED_TRACE("seed " + std::to_string(seed));
  std::mt19937 random(seed);
  const auto at = [&] { return static_cast<int>(random() % kSymWindowSize); };
  Open();
  for (int step = 0; step < 300; step++) {
    const bool onpoint = sed->sym.npoints > 0 && random() % 3 == 0;
    const int k = onpoint ? 1 + static_cast<int>(random() % sed->sym.npoints) : 0;
    const int x = onpoint ? sed->sym.x[k] : at();
    const int y = onpoint ? sed->sym.y[k] : at();
    MoveIn(area->window, x, y);
    player->Press(1);
    Pump();
    if (random() % 2 == 0) MoveIn(area->window, at(), at());
    player->Release(1);
    Pump();
    if (step % 10 == 0) ExpectAsRedrawn();
    for (const auto& [px, py] : Points()) {
      ASSERT_EQ(grid(px), px);
      ASSERT_EQ(grid(py), py);
    }
    if (sed->sym.npoints == kMaxPoints || random() % 60 == 0) ClickOn(sed->bclear);
  }
  ExpectAsRedrawn();
}

TEST_F(SymbolEditorVectorTest, DamagedCoordinatesAreDrawnAndCaughtOnTheGrid) {
  GromlitSymbol sym = Symbol("Damaged", {});
  sym.npoints = 3;
  sym.x[1] = 0;
  sym.y[1] = 65535;
  sym.x[2] = 16;
  sym.y[2] = 13;
  sym.x[3] = 1000;
  sym.y[3] = 16;
  Open(&sym);
  Picture expected = VectorArea();
  expected.Line(kBlack, 16, 264, 16, 16);
  expected.Line(kBlack, 16, 16, 264, 16);
  Square(&expected, 16, 264);
  Square(&expected, 16, 16);
  Square(&expected, 264, 16);
  EXPECT_EQ(Area(), expected);
  MoveIn(area->window, 264, 16);
  EXPECT_EQ(area->onpt, 3);
  player->Press(1);
  Pump();
  MoveIn(area->window, 264, 80);
  player->Release(1);
  Pump();
  EXPECT_EQ(sed->sym.y[3], 80);
  EXPECT_EQ(sed->sym.y[1], 65535) << "a point that nobody moved was changed";
  ExpectAsRedrawn();
}

TEST_F(SymbolEditorVectorTest, MotionsMakeNoRoundTripsAndInsideACellNoRequests) {
  Open();
  ClickIn(area->window, 40, 40);
  MoveIn(area->window, 100, 100);
  const auto moved = [this](int x, int y, unsigned state) {
    XEvent event = Motion(x, y, state);
    return CostOf([&] { SymWindowMotionNotify(area, &event); });
  };
  EXPECT_EQ(moved(105, 103, 0), (testing::Cost{0, 0}));
  EXPECT_EQ(moved(160, 180, 0).roundtrips, 0U);
  ClickIn(area->window, 200, 200);
  ClickIn(area->window, 200, 200);
  player->Press(1);
  Pump();
  ASSERT_EQ(sed->state, kSymDragging);
  EXPECT_EQ(moved(201, 201, Button1Mask), (testing::Cost{0, 0}));
  EXPECT_EQ(moved(120, 120, Button1Mask).roundtrips, 0U);
  player->Release(1);
  Pump();
}

}  // namespace
}  // namespace gromlit
