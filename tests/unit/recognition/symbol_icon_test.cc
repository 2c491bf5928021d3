#include "recognition/symbol_icon.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstdlib>
#include <random>
#include <vector>

#include "tests/unit/recognition/recognition_support.h"

namespace gromlit {
namespace {

using literal::Point;

std::vector<uint32_t> Rows(const GromlitSymbol& sym) {
  return {std::begin(sym.icon), std::end(sym.icon)};
}

std::vector<uint32_t> Line(Point from, Point to) {
  GromlitSymbol sym = {};
  IconLine(&sym, from.x, from.y, to.x, to.y);
  return Rows(sym);
}

std::vector<uint32_t> Cells(const std::vector<Point>& cells) {
  std::vector<uint32_t> rows(kIconSize, 0);
  for (const Point& cell : cells) rows[static_cast<size_t>(cell.y)] |= 1U << cell.x;
  return rows;
}

// --- Bits -------------------------------------------------------------------------------------

TEST(IconBits, AddressColumnByBitAndRowByElement) {
  GromlitSymbol sym = {};
  for (int y = 0; y < kIconSize; ++y) {
    for (int x = 0; x < kIconSize; ++x) {
      EXPECT_EQ(iconGet(&sym, x, y), 0);
      iconSet(&sym, x, y);
      EXPECT_NE(iconGet(&sym, x, y), 0);
      ASSERT_EQ(Rows(sym), Cells({{x, y}}));
      iconClr(&sym, x, y);
      ASSERT_EQ(Rows(sym), Cells({}));
    }
  }
}

TEST(IconBits, ClearOnlyTheirOwn) {
  GromlitSymbol sym = {};
  for (uint32_t& row : sym.icon) row = 0xffffffff;
  iconClr(&sym, 31, 31);
  EXPECT_EQ(sym.icon[31], 0x7fffffffU);
  EXPECT_EQ(sym.icon[30], 0xffffffffU);
  EXPECT_EQ(iconGet(&sym, 31, 31), 0);
  EXPECT_NE(iconGet(&sym, 30, 31), 0);
}

TEST(IconBits, TakeTheColumnModulo32) {
  GromlitSymbol sym = {};
  iconSet(&sym, 33, 4);
  EXPECT_EQ(Rows(sym), Cells({{1, 4}}));
  EXPECT_NE(iconGet(&sym, 65, 4), 0);
  EXPECT_NE(iconGet(&sym, -31, 4), 0);
  iconClr(&sym, -31, 4);
  EXPECT_EQ(Rows(sym), Cells({}));
  iconSet(&sym, -1, 4);
  EXPECT_EQ(Rows(sym), Cells({{31, 4}}));
}

// --- Snapping ---------------------------------------------------------------------------------

TEST(Grid, SnapsTheLimitsAndTheHalfWayMarks) {
  EXPECT_EQ(grid(15), 16);
  EXPECT_EQ(grid(16), 16);
  EXPECT_EQ(grid(19), 16);
  EXPECT_EQ(grid(20), 24);
  EXPECT_EQ(grid(264), 264);
  EXPECT_EQ(grid(265), 264);
}

TEST(Grid, GivesTheNearestMultipleOfEightInsideTheEditor) {
  for (int v = -100; v <= 400; ++v) {
    const int snapped = grid(v);
    EXPECT_EQ(snapped % 8, 0) << v;
    EXPECT_GE(snapped, 16) << v;
    EXPECT_LE(snapped, 264) << v;
    if (v >= 16 && v <= 264) {
      EXPECT_LE(snapped - v, 4) << v;
      EXPECT_GT(snapped - v, -4) << v;
    }
  }
  EXPECT_EQ(grid(INT_MIN), 16);
  EXPECT_EQ(grid(INT_MAX), 264);
}

TEST(CellOf, CountsEightPixelsACellFromTheLowerLimit) {
  for (int cell = 0; cell < kIconSize; ++cell) {
    for (int rest = 0; rest < 8; ++rest) {
      const int v = kGridMin + cell * 8 + rest;
      if (v > kGridMax) continue;
      EXPECT_EQ(CellOf(v), cell) << v;
    }
  }
}

TEST(CellOf, OfADamagedCoordinateLiesInsideTheIcon) {
  EXPECT_EQ(CellOf(0), 0);
  EXPECT_EQ(CellOf(15), 0);
  EXPECT_EQ(CellOf(264), 31);
  EXPECT_EQ(CellOf(265), 31);
  EXPECT_EQ(CellOf(65535), 31);
}

// --- Lines ------------------------------------------------------------------------------------

TEST(IconLine, FromCell0To31OfRow5SetsExactlyThatRow) {
  std::vector<uint32_t> expected(kIconSize, 0);
  expected[5] = 0xffffffff;
  EXPECT_EQ(Line({0, 5}, {31, 5}), expected);
}

TEST(IconLine, OfAColumnSetsExactlyThatColumn) {
  EXPECT_EQ(Line({7, 0}, {7, 31}), std::vector<uint32_t>(kIconSize, 1U << 7));
}

TEST(IconLine, At45DegreesSetsTheDiagonalOnly) {
  std::vector<Point> falling;
  std::vector<Point> rising;
  for (int i = 0; i < kIconSize; ++i) {
    falling.push_back({i, i});
    rising.push_back({i, 31 - i});
  }
  EXPECT_EQ(Line({0, 0}, {31, 31}), Cells(falling));
  EXPECT_EQ(Line({0, 31}, {31, 0}), Cells(rising));
}

TEST(IconLine, OfOneCellSetsThatCell) {
  EXPECT_EQ(Line({31, 0}, {31, 0}), Cells({{31, 0}}));
}

TEST(IconLine, StepsTheMinorAxisAtATie) {
  // d is 0 at the first step of both lines.
  EXPECT_EQ(Line({0, 0}, {2, 1}), Cells({{0, 0}, {1, 1}, {2, 1}}));
  EXPECT_EQ(Line({0, 0}, {1, 2}), Cells({{0, 0}, {1, 1}, {1, 2}}));
  EXPECT_EQ(Line({0, 1}, {2, 0}), Cells({{0, 1}, {1, 0}, {2, 0}}));
  EXPECT_EQ(Line({1, 0}, {0, 2}), Cells({{1, 0}, {0, 1}, {0, 2}}));
}

TEST(IconLine, KeepsTheBitsThatAreThere) {
  GromlitSymbol sym = {};
  iconSet(&sym, 3, 9);
  IconLine(&sym, 0, 0, 1, 0);
  EXPECT_EQ(Rows(sym), Cells({{3, 9}, {0, 0}, {1, 0}}));
}

TEST(IconLine, SetsThePlainFormsBitsInEitherDirectionForEverySegment) {
  const int step = Sanitized() ? 13 : 1;
  for (int k = 0; k < 32 * 32 * 32 * 32; k += step) {
    const Point from = {k & 31, (k >> 5) & 31};
    const Point to = {(k >> 10) & 31, (k >> 15) & 31};
    const std::vector<uint32_t> expected = literal::IconLine(from, to);
    ASSERT_EQ(Line(from, to), expected) << from.x << ',' << from.y << " to " << to.x << ',' << to.y;
    ASSERT_EQ(Line(to, from), expected) << to.x << ',' << to.y << " to " << from.x << ',' << from.y;
  }
}

// --- The whole icon ---------------------------------------------------------------------------

TEST(VectorToBitmap, ClearsTheHandEditsFirst) {
  GromlitSymbol sym = SymbolOfCells({{0, 5}, {31, 5}});
  for (uint32_t& row : sym.icon) row = 0x12345678;
  VectorToBitmap(&sym);
  EXPECT_EQ(Rows(sym), Line({0, 5}, {31, 5}));
}

TEST(VectorToBitmap, OfFewerThanTwoPointsIsEmpty) {
  for (const std::vector<Point>& cells : {std::vector<Point>{}, std::vector<Point>{{4, 4}}}) {
    GromlitSymbol sym = SymbolOfCells(cells);
    sym.icon[4] = 0xff;
    VectorToBitmap(&sym);
    EXPECT_EQ(Rows(sym), Cells({}));
  }
}

TEST(VectorToBitmap, PlotsTwoPointsInOneCell) {
  GromlitSymbol sym = SymbolOfCells({{4, 6}, {4, 6}});
  VectorToBitmap(&sym);
  EXPECT_EQ(Rows(sym), Cells({{4, 6}}));
}

TEST(VectorToBitmap, JoinsThePointsInOrder) {
  GromlitSymbol sym = SymbolOfCells({{0, 0}, {0, 31}, {31, 31}});
  VectorToBitmap(&sym);
  std::vector<uint32_t> expected(kIconSize, 1);
  expected[31] = 0xffffffff;
  EXPECT_EQ(Rows(sym), expected);
}

TEST(VectorToBitmap, StaysInsideTheIconForDamagedSymbols) {
  GromlitSymbol sym = {};
  sym.npoints = 3;
  sym.x[2] = 65535;
  sym.y[3] = 65535;
  sym.spare = 77;
  VectorToBitmap(&sym);
  std::vector<uint32_t> expected(kIconSize, 0);
  expected[0] = 0xffffffff;
  for (int i = 0; i < kIconSize; ++i) expected[static_cast<size_t>(i)] |= 1U << (31 - i);
  EXPECT_EQ(Rows(sym), expected);
  EXPECT_EQ(sym.spare, 77U);
}

TEST(VectorToBitmap, IsTheUnionOfThePlainFormsLines) {
  std::mt19937_64 random(TestSeed());
  for (int round = 0; round < (Sanitized() ? 500 : 5000); ++round) {
    std::vector<Point> cells(random() % (kMaxPoints + 1));
    for (Point& cell : cells)
      cell = {static_cast<int>(random() % 32), static_cast<int>(random() % 32)};
    GromlitSymbol sym = SymbolOfCells(cells);
    std::vector<uint32_t> expected(kIconSize, 0);
    for (size_t k = 1; k < cells.size(); ++k) {
      const std::vector<uint32_t> line = literal::IconLine(cells[k - 1], cells[k]);
      for (size_t r = 0; r < kIconSize; ++r) expected[r] |= line[r];
    }
    VectorToBitmap(&sym);
    ASSERT_EQ(Rows(sym), expected) << "round " << round;
  }
}

// --- The head of an arrow ----------------------------------------------------------------------

GromlitSymbol Arrow(const std::vector<Point>& points) {
  GromlitSymbol sym = {};
  for (const Point& p : points) {
    sym.npoints++;
    sym.x[sym.npoints] = static_cast<uint16_t>(p.x);
    sym.y[sym.npoints] = static_cast<uint16_t>(p.y);
  }
  VectorToBitmap(&sym);
  AddArrowHead(&sym);
  return sym;
}

TEST(ArrowHead, StandsAtTheEndAndPointsOn) {
  const GromlitSymbol right = Arrow({{40, 136}, {240, 136}});  // cells 3 to 28 of row 15
  EXPECT_NE(iconGet(&right, 23, 12), 0);
  EXPECT_NE(iconGet(&right, 23, 18), 0);
  EXPECT_EQ(iconGet(&right, 8, 12), 0);
  EXPECT_NE(Rows(right), Rows(Arrow({{240, 136}, {40, 136}})));
  const GromlitSymbol up = Arrow({{136, 240}, {136, 40}});
  EXPECT_NE(iconGet(&up, 12, 8), 0);
  EXPECT_NE(iconGet(&up, 18, 8), 0);
}

TEST(ArrowHead, StaysInTheIconAndNeedsAWay) {
  EXPECT_EQ(Rows(Arrow({{136, 136}, {136, 136}})), Cells({{15, 15}}));
  EXPECT_EQ(Rows(Arrow({{136, 136}})), Cells({}));
  EXPECT_EQ(Rows(Arrow({})), Cells({}));
  const GromlitSymbol corner = Arrow({{264, 16}, {256, 16}});  // its wings would leave at the top
  EXPECT_NE(iconGet(&corner, 30, 0), 0);
}

}  // namespace
}  // namespace gromlit
