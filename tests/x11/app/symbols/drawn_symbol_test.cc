// First: the test library's headers cannot bear Xlib's macros.
#include "tests/x11/app/symbol_editor_fixture.h"

#include "app/symbols/drawn_symbol.h"

#include "recognition/shape_match.h"
#include "recognition/symbol_icon.h"

namespace gromlit {
namespace {

class DrawnSymbolTest : public testing::SymbolEditorFixture {};

// An "L" of 200 by 200 pixels, somewhere on the screen.
Stroke Ell() {
  Stroke stroke;
  for (int y = 300; y <= 500; y += 10)
    stroke.y[stroke.count] = static_cast<int16_t>(y), stroke.x[stroke.count++] = 700;
  for (int x = 710; x <= 900; x += 10)
    stroke.y[stroke.count] = 500, stroke.x[stroke.count++] = static_cast<int16_t>(x);
  return stroke;
}

TEST_F(DrawnSymbolTest, AStrokeOverTheEmptyAreaBecomesTheVector) {
  Reach(kSymEmpty);
  ASSERT_TRUE(TakeDrawnSymbol(area->window, Ell()));
  Pump();
  EXPECT_EQ(sed->state, kSymComplete);
  EXPECT_EQ(sed->sym.npoints, 3);
  EXPECT_GE(ShapeScore(ShapeOfPoints(Ell().count, Ell().x, Ell().y), *SymbolShape(&sed->sym)),
            0.98F);
  for (const auto& [x, y] : Points()) {
    EXPECT_EQ(grid(x), x);
    EXPECT_EQ(grid(y), y);
  }
  ExpectAsRedrawn();
}

TEST_F(DrawnSymbolTest, ItsPointsCanBeDraggedAndClearGivesAnEmptyAreaAgain) {
  Reach(kSymEmpty);
  ASSERT_TRUE(TakeDrawnSymbol(area->window, Ell()));
  Pump();
  const auto before = Points();
  MoveIn(area->window, before[1].first, before[1].second);
  player->Press(1);
  Pump();
  EXPECT_EQ(sed->state, kSymDragging);
  MoveIn(area->window, 136, 136);
  player->Release(1);
  Pump();
  EXPECT_EQ(sed->state, kSymComplete);
  EXPECT_EQ(Points()[1], std::make_pair(136, 136));
  ClickOn(sed->bclear);
  EXPECT_EQ(sed->state, kSymEmpty);
  EXPECT_EQ(sed->sym.npoints, 0);
  EXPECT_TRUE(TakeDrawnSymbol(area->window, Ell()));
}

TEST_F(DrawnSymbolTest, NextDrawsTheIconOfWhatWasDrawn) {
  Reach(kSymEmpty);
  ASSERT_TRUE(TakeDrawnSymbol(area->window, Ell()));
  Pump();
  ClickOn(sed->bnext);
  ASSERT_EQ(sed->state, kSymBitmap);
  GromlitSymbol expected = sed->sym;
  VectorToBitmap(&expected);
  for (int row = 0; row < kIconSize; row++) EXPECT_EQ(sed->sym.icon[row], expected.icon[row]);
}

TEST_F(DrawnSymbolTest, NoOtherStateAndNoOtherWindowTakesAStroke) {
  for (const int state : {kSymCapturing, kSymComplete, kSymDragging, kSymBitmap, kSymName}) {
    Reach(state);
    const auto points = Points();
    EXPECT_FALSE(TakeDrawnSymbol(area->window, Ell())) << state;
    EXPECT_EQ(sed->state, state);
    EXPECT_EQ(Points(), points) << state;
    player->Release(1);
    Pump();
  }
  Reach(kSymEmpty);
  EXPECT_FALSE(TakeDrawnSymbol(sed->window, Ell()));
  EXPECT_FALSE(TakeDrawnSymbol(None, Ell()));
  EXPECT_EQ(sed->state, kSymEmpty);
}

TEST_F(DrawnSymbolTest, AStrokeWithoutExtentChangesNothing) {
  Reach(kSymEmpty);
  Stroke point;
  point.x[0] = point.x[1] = point.y[0] = point.y[1] = 50;
  point.count = 2;
  EXPECT_FALSE(TakeDrawnSymbol(area->window, point));
  EXPECT_FALSE(TakeDrawnSymbol(area->window, Stroke()));
  EXPECT_EQ(sed->state, kSymEmpty);
  EXPECT_EQ(sed->sym.npoints, 0);
}

}  // namespace
}  // namespace gromlit
