#include "tests/x11/app/symbol_editor_fixture.h"

#include <gmock/gmock.h>

#include <bit>

#include "app/symbols/symbol_editor_buttons.h"

namespace gromlit {
namespace {

using testing::Picture;

using SymbolEditorBitmapTest = testing::SymbolEditorFixture;

TEST_F(SymbolEditorBitmapTest, NextDrawsTheIconOfANewVector) {
  Open();
  Draw({{16, 56}, {264, 56}});
  ClickOn(sed->bnext);
  EXPECT_EQ(sed->state, kSymBitmap);
  for (int row = 0; row < kIconSize; row++) EXPECT_EQ(sed->sym.icon[row], row == 5 ? ~0U : 0U);
  Picture expected = EmptyArea();
  for (int i = 0; i <= 32; i++) {
    expected.Line(kLightGrey, 12 + 8 * i, 12, 12 + 8 * i, 268);
    expected.Line(kLightGrey, 12, 12 + 8 * i, 268, 12 + 8 * i);
  }
  for (int column = 0; column < 32; column++) {
    expected.Fill(kBlue, 13 + 8 * column, 13 + 8 * 5, 7, 7);
  }
  EXPECT_EQ(Area(), expected);
  EXPECT_EQ(Take(sed->icon->window, 4, 4, 32, 32).Count(kBlue, 0, 5, 32, 1), 32);
}

TEST_F(SymbolEditorBitmapTest, NextKeepsAnIconWithBitsAndRestartReplacesIt) {
  GromlitSymbol sym = Symbol("Own", {{16, 16}, {264, 16}});
  std::fill(std::begin(sym.icon), std::end(sym.icon), 0U);
  iconSet(&sym, 31, 31);
  Open(&sym);
  ClickOn(sed->bnext);
  EXPECT_EQ(sed->sym.icon[0], 0U);
  EXPECT_EQ(sed->sym.icon[31], 1U << 31);
  ClickOn(sed->brestart);
  EXPECT_EQ(sed->state, kSymBitmap);
  EXPECT_EQ(sed->sym.icon[0], ~0U);
  EXPECT_EQ(sed->sym.icon[31], 0U);
  ExpectAsRedrawn();
  EXPECT_EQ(Take(sed->icon->window, 4, 4, 32, 32).Count(kBlue, 0, 0, 32, 32), 32);
}

TEST_F(SymbolEditorBitmapTest, AClickTogglesABitInTheGridAndInThePreview) {
  Reach(kSymBitmap);
  const Picture before = Area();
  ClickIn(area->window, 12 + 8 * 20 + 4, 12 + 8 * 30 + 4);
  EXPECT_NE(iconGet(&sed->sym, 20, 30), 0);
  Picture expected = before;
  expected.Fill(kBlue, 13 + 8 * 20, 13 + 8 * 30, 7, 7);
  EXPECT_EQ(Area(), expected);
  EXPECT_EQ(PixelOf(sed->icon->window, 4 + 20, 4 + 30), kBlue);
  ClickIn(area->window, 12 + 8 * 20 + 7, 12 + 8 * 30);
  EXPECT_EQ(iconGet(&sed->sym, 20, 30), 0);
  EXPECT_EQ(Area(), before);
  EXPECT_EQ(PixelOf(sed->icon->window, 4 + 20, 4 + 30), kWhite);
}

TEST_F(SymbolEditorBitmapTest, EveryPixelOfTheAreaHitsACellOfTheIcon) {
  Reach(kSymBitmap);
  ClickOn(sed->bclear);
  struct Case {
    int x, y, column, row;
  };
  for (const Case& c : {Case{0, 0, 0, 0}, Case{279, 0, 31, 0}, Case{0, 279, 0, 31},
                        Case{279, 279, 31, 31}, Case{20, 12, 1, 0}, Case{19, 20, 0, 1}}) {
    ClickIn(area->window, c.x, c.y);
    EXPECT_NE(iconGet(&sed->sym, c.column, c.row), 0) << c.x << " " << c.y;
    ClickIn(area->window, c.x, c.y);
    EXPECT_EQ(iconGet(&sed->sym, c.column, c.row), 0) << c.x << " " << c.y;
  }
  for (const uint32_t row : sed->sym.icon) EXPECT_EQ(row, 0U);
}

TEST_F(SymbolEditorBitmapTest, HeldAndMovedAPressTogglesOnlyItsOwnBit) {
  Reach(kSymBitmap);
  ClickOn(sed->bclear);
  MoveIn(area->window, 100, 100);
  player->Press(1);
  Pump();
  MoveIn(area->window, 200, 200);
  player->Release(1);
  Pump();
  int set = 0;
  for (const uint32_t row : sed->sym.icon) set += std::popcount(row);
  EXPECT_EQ(set, 1);
}

TEST_F(SymbolEditorBitmapTest, ClearInStepTwoClearsTheIconAndKeepsTheVector) {
  Reach(kSymBitmap);
  ClickOn(sed->bclear);
  EXPECT_EQ(sed->state, kSymBitmap);
  for (const uint32_t row : sed->sym.icon) EXPECT_EQ(row, 0U);
  EXPECT_EQ(sed->sym.npoints, 2);
  ExpectAsRedrawn();
  EXPECT_EQ(Take(sed->icon->window, 4, 4, 32, 32).Count(kBlue, 0, 0, 32, 32), 0);
}

TEST_F(SymbolEditorBitmapTest, PrevFromStepTwoLeadsToTheVectorOrToNone) {
  Reach(kSymBitmap);
  ClickOn(sed->bprev);
  EXPECT_EQ(sed->state, kSymComplete);
  ExpectAsRedrawn();
  ClickOn(sed->bclear);
  EXPECT_EQ(sed->state, kSymEmpty);
  ClickOn(sed->bnext);
  EXPECT_EQ(sed->state, kSymBitmap);
  ClickOn(sed->bprev);
  EXPECT_EQ(sed->state, kSymEmpty);
}

TEST_F(SymbolEditorBitmapTest, AnIconPaintedByHandSurvivesThereAndBack) {
  Reach(kSymBitmap);
  ClickIn(area->window, 250, 250);
  const auto icon = std::vector(std::begin(sed->sym.icon), std::end(sed->sym.icon));
  ClickOn(sed->bprev);
  ClickOn(sed->bnext);
  EXPECT_THAT(sed->sym.icon, ::testing::ElementsAreArray(icon));
}

TEST_F(SymbolEditorBitmapTest, AfterStepTwoAPointIsNotDraggedWithoutAMotionOntoIt) {
  Reach(kSymComplete);
  MoveIn(area->window, 40, 40);
  ASSERT_EQ(area->onpt, 1);
  symNext(sed);
  symPrev(sed);
  EXPECT_EQ(area->onpt, 0);
}

TEST_F(SymbolEditorBitmapTest, RestartInStepThreeChangesNothing) {
  Reach(kSymBitmap);
  ClickIn(area->window, 250, 250);
  ClickOn(sed->bfinish);
  const auto icon = std::vector(std::begin(sed->sym.icon), std::end(sed->sym.icon));
  ClickOn(sed->brestart);
  EXPECT_THAT(sed->sym.icon, ::testing::ElementsAreArray(icon));
}

}  // namespace
}  // namespace gromlit
