#include "recognition/stroke_signature.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <set>
#include <string>
#include <vector>

#include "tests/unit/recognition/recognition_support.h"

namespace gromlit {
namespace {

using literal::Point;
using Points = std::vector<Point>;
using ::testing::ElementsAre;
using ::testing::SizeIs;

Points VectorLine(Point from, Point to) {
  std::vector<int16_t> x(256, -7);
  std::vector<int16_t> y(256, -7);
  const int n = VectorLineToPoints(0, x.data(), y.data(), from.x, from.y, to.x, to.y);
  Points points;
  for (size_t i = 0; i < static_cast<size_t>(n); ++i) points.push_back({x[i], y[i]});
  return points;
}

Points SymVector(const GromlitSymbol& sym) {
  std::vector<int16_t> x(kMaxDensePoints);
  std::vector<int16_t> y(kMaxDensePoints);
  const int n = SymVectorToPoints(&sym, x.data(), y.data());
  Points points;
  for (size_t i = 0; i < static_cast<size_t>(n); ++i) points.push_back({x[i], y[i]});
  return points;
}

Points Diagonal() {
  Points points;
  for (int i = 0; i <= 30; ++i) points.push_back({100 + i, 200 + i});
  return points;
}

// --- Straight lines ---------------------------------------------------------------------------

TEST(StrokeSignature, OfNoPointsIsEmpty) {
  EXPECT_EQ(Signature({}), "");
}

TEST(StrokeSignature, OfOnePointIsEmpty) {
  EXPECT_EQ(Signature({{0, 0}}), "");
  EXPECT_EQ(Signature({{640, 480}}), "");
  EXPECT_EQ(Signature({{32767, 32767}}), "");
}

TEST(StrokeSignature, OfOnePointWithANegativeCoordinateHasFourLetters) {
  // Bottom and right never fall below 0, so the box reaches from the point to the axis.
  EXPECT_EQ(Signature({{-100, 5}}), "aaa-");
  EXPECT_EQ(Signature({{5, -100}}), "ccc-");
  EXPECT_EQ(Signature({{-32768, 0}}), "aaa-");
  EXPECT_EQ(Signature({{-100, -100}}), "") << "a square box";
}

TEST(StrokeSignature, OfAHorizontalLineFromLeftToRightIsAaaa) {
  EXPECT_EQ(Signature({{10, 50}, {40, 50}, {100, 50}}), "aaaa");
}

TEST(StrokeSignature, OfAHorizontalLineThatEndsWhereItStartedEndsWithADash) {
  EXPECT_EQ(Signature({{10, 50}, {100, 50}, {10, 50}}), "aaa-");
}

TEST(StrokeSignature, OfAHorizontalLineFollowsFirstAndLastX) {
  // A box from 0 to 30: the inner lines lie at 10 and 20.
  EXPECT_EQ(Signature({{0, 5}, {30, 5}}), "aaaa");
  EXPECT_EQ(Signature({{9, 5}, {0, 5}, {30, 5}, {10, 5}}), "aaaa");
  EXPECT_EQ(Signature({{9, 5}, {0, 5}, {30, 5}, {9, 5}}), "aaa-");
  EXPECT_EQ(Signature({{30, 5}, {0, 5}}), "bbbb");
  EXPECT_EQ(Signature({{21, 5}, {30, 5}, {0, 5}, {20, 5}}), "bbbb");
  EXPECT_EQ(Signature({{21, 5}, {0, 5}, {30, 5}, {21, 5}}), "bbb-");
  EXPECT_EQ(Signature({{10, 5}, {0, 5}, {30, 5}}), "") << "starts on the left inner line";
  EXPECT_EQ(Signature({{20, 5}, {0, 5}, {30, 5}}), "") << "starts on the right inner line";
}

TEST(StrokeSignature, OfAVerticalLineFollowsFirstAndLastY) {
  EXPECT_EQ(Signature({{5, 0}, {5, 30}}), "cccc");
  EXPECT_EQ(Signature({{5, 9}, {5, 0}, {5, 30}, {5, 10}}), "cccc");
  EXPECT_EQ(Signature({{5, 9}, {5, 0}, {5, 30}, {5, 9}}), "ccc-");
  EXPECT_EQ(Signature({{5, 30}, {5, 0}}), "dddd");
  EXPECT_EQ(Signature({{5, 21}, {5, 30}, {5, 0}, {5, 20}}), "dddd");
  EXPECT_EQ(Signature({{5, 21}, {5, 0}, {5, 30}, {5, 21}}), "ddd-");
  EXPECT_EQ(Signature({{5, 10}, {5, 0}, {5, 30}}), "") << "starts on the upper inner line";
  EXPECT_EQ(Signature({{5, 20}, {5, 0}, {5, 30}}), "") << "starts on the lower inner line";
}

TEST(StrokeSignature, OfAVerticalLineThatStartsInItsMiddleThirdIsEmpty) {
  EXPECT_EQ(Signature({{50, 115}, {50, 100}, {50, 130}}), "");
}

TEST(StrokeSignature, OfABoxExactlyFourTimesAsWideAsHighIsMadeOfCrossings) {
  // 40 by 10 pixels: the ratio is 0.25, and the inner lines are y 3 and 6, x 13 and 26.
  EXPECT_EQ(Signature({{0, 0}, {39, 9}}), "abcd");
  // One pixel wider, and it is a line.
  EXPECT_EQ(Signature({{0, 0}, {40, 9}}), "aaaa");
}

TEST(StrokeSignature, OfABoxExactlyFourTimesAsHighAsWideIsMadeOfCrossings) {
  EXPECT_EQ(Signature({{0, 0}, {9, 39}}), "abcd");
  EXPECT_EQ(Signature({{0, 0}, {9, 40}}), "cccc");
}

// --- Crossings --------------------------------------------------------------------------------

TEST(StrokeSignature, OfAFallingDiagonalIsAcbd) {
  EXPECT_EQ(Signature(Diagonal()), "acbd");
}

TEST(StrokeSignature, OfTheSameDiagonalBackwardsIsBdac) {
  Points points = Diagonal();
  std::reverse(points.begin(), points.end());
  EXPECT_EQ(Signature(points), "bdac");
}

TEST(StrokeSignature, OrdersTheLettersOfOneStepAlwaysAbcd) {
  EXPECT_EQ(Signature({{0, 0}, {30, 30}}), "abcd");
  EXPECT_EQ(Signature({{30, 30}, {0, 0}}), "abcd");
  EXPECT_EQ(Signature({{30, 0}, {0, 30}}), "abcd");
}

TEST(StrokeSignature, CountsAStepOntoAnInnerLineAsACrossing) {
  // A square of 31 pixels; the upper inner line is y 10. The stroke goes right and up past it.
  Points points = {{0, 30}, {30, 30}, {30, 0}, {30, 9}};
  ASSERT_EQ(Signature(points), "cdab") << "one step crosses both horizontal lines";
  points.back() = {30, 10};  // onto the line from above
  EXPECT_EQ(Signature(points), "cdaba");
  points.push_back({30, 9});  // and up again
  EXPECT_EQ(Signature(points), "cdabaa");
  points.push_back({30, 10});
  EXPECT_EQ(Signature(points), "cdabaaa");
}

TEST(StrokeSignature, DoesNotCountTravelAlongAnInnerLine) {
  // Along y 10 (= the upper line) from a start below it: the line itself counts as below.
  EXPECT_EQ(Signature({{0, 30}, {0, 10}, {30, 10}, {30, 0}}), "bcda");
}

TEST(StrokeSignature, TruncatesTheThirds) {
  // Width and height 32 give thirds of 10 (31 / 3), not 10.33: y 20 is past the lower line, 19 not.
  EXPECT_EQ(Signature({{0, 0}, {0, 19}, {0, 20}, {31, 31}}), "abcd");
  EXPECT_EQ(Signature({{0, 0}, {0, 19}, {31, 31}}), "abcd");
  EXPECT_EQ(Signature({{0, 31}, {0, 20}, {31, 19}, {31, 0}}), "bcda");
}

TEST(StrokeSignature, KeepsRightAndBottomAtZeroForNegativePoints) {
  // The box reaches to 0 although the stroke ends at -20: thirds lie at -20 and -10, not at -24.
  EXPECT_EQ(Signature({{-30, -30}, {-20, -20}}), "ac");
  EXPECT_EQ(Signature({{-30, -30}, {-21, -21}}), "");
}

TEST(StrokeSignature, OfTheLongestLiveStrokeHas1020Letters) {
  Points points;
  for (int i = 0; i < kMaxStrokePoints; ++i) {
    points.push_back(i % 2 == 0 ? Point{0, 0} : Point{300, 300});
  }
  const std::string signature = Signature(points);
  EXPECT_EQ(signature.size(), 1020U);
  EXPECT_LT(signature.size(), kDrawnSignatureSize);
  EXPECT_EQ(signature.substr(0, 8), "abcdabcd");
}

TEST(StrokeSignature, AgreesWithThePlainFormOnRandomStrokes) {
  std::mt19937_64 random(TestSeed());
  const auto between = [&](int low, int high) {
    return std::uniform_int_distribution<int>(low, high)(random);
  };
  std::set<std::string> kinds;
  size_t crossings = 0;
  const int rounds = Sanitized() ? 20000 : 200000;
  for (int round = 0; round < rounds; ++round) {
    // Mostly small boxes, where points fall on the lines and ratios on the limits.
    const int reach = round % 8 == 0 ? 32767 : between(1, 60);
    const int lowx = between(0, 2) == 0 ? -reach : 0;
    const int lowy = between(0, 2) == 0 ? -reach : 0;
    const int highx = between(0, 3) == 0 ? std::min(reach, 4) : reach;
    const int highy = between(0, 3) == 0 ? std::min(reach, 4) : reach;
    Points points(static_cast<size_t>(between(0, round % 16 == 0 ? 256 : 12)));
    for (Point& p : points) p = {between(lowx, highx), between(lowy, highy)};
    const std::string signature = Signature(points);
    ASSERT_EQ(signature, literal::StrokeSignature(points))
        << "round " << round << ", " << points.size() << " points";
    if (signature.size() == 4 && (signature[0] == signature[1])) kinds.insert(signature);
    crossings += signature.size() > 4 ? 1 : 0;
  }
  // The generator reaches every fixed signature, and plenty of crossings.
  for (const char* fixed : {"aaaa", "aaa-", "bbbb", "bbb-", "cccc", "ccc-", "dddd", "ddd-"}) {
    EXPECT_TRUE(kinds.contains(fixed)) << fixed;
  }
  EXPECT_GT(crossings, static_cast<size_t>(rounds) / 10);
}

TEST(StrokeSignature, AgreesWithThePlainFormOnRecordedStrokes) {
  std::string missing;
  const std::vector<RecordedStroke> strokes = ReadRecordedStrokes(&missing);
  if (strokes.empty()) GTEST_SKIP() << missing;
  EXPECT_THAT(strokes, SizeIs(2400));
  std::set<std::string> different;
  for (const RecordedStroke& stroke : strokes) {
    ASSERT_FALSE(stroke.points.empty());
    const std::string signature = Signature(stroke.points);
    ASSERT_EQ(signature, literal::StrokeSignature(stroke.points))
        << stroke.person << ' ' << stroke.speed << ' ' << stroke.gesture;
    different.insert(signature);
    // The same stroke elsewhere on the screen keeps its signature.
    Points moved = stroke.points;
    for (Point& p : moved) p = {p.x + 1234, p.y + 567};
    ASSERT_EQ(Signature(moved), signature);
    // Its vector form, too, is reduced as the plain form has it.
    const GromlitSymbol sym = SymbolOfStroke(stroke);
    ASSERT_EQ(Signature(SymVector(sym)), literal::SymbolSignature(sym));
  }
  EXPECT_GT(different.size(), 100U);
}

// --- Vectors ----------------------------------------------------------------------------------

TEST(VectorLineToPoints, TruncatesTowardZeroAndLagsAtTheEnd) {
  EXPECT_THAT(VectorLine({0, 0}, {3, 1}),
              ElementsAre(Point{0, 0}, Point{1, 0}, Point{2, 0}, Point{3, 0}));
  EXPECT_THAT(VectorLine({0, 5}, {3, 4}),
              ElementsAre(Point{0, 5}, Point{1, 4}, Point{2, 4}, Point{3, 4}));
  EXPECT_THAT(VectorLine({3, 1}, {0, 0}),
              ElementsAre(Point{3, 1}, Point{2, 0}, Point{1, 0}, Point{0, 0}));
  EXPECT_THAT(VectorLine({0, 0}, {1, 3}),
              ElementsAre(Point{0, 0}, Point{0, 1}, Point{0, 2}, Point{0, 3}));
  // Truncated, not rounded down: from -1 the half step back to 0 stays 0.
  EXPECT_THAT(VectorLine({0, -1}, {2, 0}), ElementsAre(Point{0, -1}, Point{1, 0}, Point{2, 0}));
}

TEST(VectorLineToPoints, TreatsATieAsXMajorAndLagsByOneCell) {
  EXPECT_THAT(VectorLine({0, 0}, {3, 3}),
              ElementsAre(Point{0, 0}, Point{1, 1}, Point{2, 2}, Point{3, 2}));
  EXPECT_THAT(VectorLine({3, 0}, {0, 3}),
              ElementsAre(Point{3, 0}, Point{2, 1}, Point{1, 2}, Point{0, 2}));
}

TEST(VectorLineToPoints, AddsItsSlopeUpInsteadOfMultiplying) {
  // Ten steps of 0.1 add up to less than 1: column 10 still has row 0.
  const Points points = VectorLine({0, 0}, {20, 2});
  ASSERT_THAT(points, SizeIs(21));
  EXPECT_EQ(points[10], (Point{10, 0}));
  EXPECT_EQ(points[11], (Point{11, 1}));
  EXPECT_EQ(points[20], (Point{20, 1}));
}

TEST(VectorLineToPoints, WritesTheStartRowForASegmentWithoutLength) {
  EXPECT_THAT(VectorLine({7, 9}, {7, 9}), ElementsAre(Point{7, 9}));
}

TEST(VectorLineToPoints, AppendsFromTheGivenIndexAndCountsTheFinalPoint) {
  int16_t x[8] = {1, 2, 3, 4, 5, 6, 7, 8};
  int16_t y[8] = {1, 2, 3, 4, 5, 6, 7, 8};
  EXPECT_EQ(VectorLineToPoints(3, x, y, 20, 10, 22, 10), 6);
  EXPECT_THAT(x, ElementsAre(1, 2, 3, 20, 21, 22, 7, 8));
  EXPECT_THAT(y, ElementsAre(1, 2, 3, 10, 10, 10, 7, 8));
}

TEST(VectorLineToPoints, AgreesWithThePlainFormOnEverySegmentOfTheGrid) {
  // Every start cell and every end cell; a fraction of them under the sanitizers.
  const int step = Sanitized() ? 13 : 1;
  int16_t x[64];
  int16_t y[64];
  for (int k = 0; k < 32 * 32 * 32 * 32; k += step) {
    const Point from = {k & 31, (k >> 5) & 31};
    const Point to = {(k >> 10) & 31, (k >> 15) & 31};
    const Points expected = literal::VectorLine(from, to);
    const int n = VectorLineToPoints(0, x, y, from.x, from.y, to.x, to.y);
    ASSERT_EQ(static_cast<size_t>(n), expected.size());
    for (size_t i = 0; i < expected.size(); ++i) {
      ASSERT_EQ((Point{x[i], y[i]}), expected[i])
          << from.x << ',' << from.y << " to " << to.x << ',' << to.y << ", point " << i;
    }
  }
}

TEST(SymVectorToPoints, GivesNothingForFewerThanTwoPoints) {
  EXPECT_THAT(SymVector(SymbolOfCells({})), SizeIs(0));
  EXPECT_THAT(SymVector(SymbolOfCells({{4, 4}})), SizeIs(0));
}

TEST(SymVectorToPoints, WritesAJointTwiceOnceForEachSegment) {
  EXPECT_THAT(
      SymVector(SymbolOfCells({{0, 0}, {2, 0}, {2, 2}})),
      ElementsAre(Point{0, 0}, Point{1, 0}, Point{2, 0}, Point{2, 0}, Point{2, 1}, Point{2, 2}));
}

TEST(SymVectorToPoints, StartsAtPointOneNotAtIndexZero) {
  GromlitSymbol sym = SymbolOfCells({{1, 1}, {2, 1}});
  sym.x[0] = 200;
  sym.y[0] = 200;
  EXPECT_THAT(SymVector(sym), ElementsAre(Point{1, 1}, Point{2, 1}));
}

TEST(SymVectorToPoints, SnapsCoordinatesOutsideTheEditor) {
  GromlitSymbol sym = {};
  sym.npoints = 2;
  sym.x[1] = 0;
  sym.y[1] = 15;
  sym.x[2] = 65535;
  sym.y[2] = 265;
  const Points points = SymVector(sym);
  ASSERT_THAT(points, SizeIs(32));
  EXPECT_EQ(points.front(), (Point{0, 0}));
  EXPECT_EQ(points.back(), (Point{31, 30}));
}

TEST(SymVectorToPoints, OfTheLongestSymbolFitsTheArrays) {
  Points cells;
  for (int i = 0; i < kMaxPoints; ++i) cells.push_back(i % 2 == 0 ? Point{0, 0} : Point{31, 31});
  GromlitSymbol sym = SymbolOfCells(cells);
  EXPECT_THAT(SymVector(sym), SizeIs(63 * 32));
  static_assert(63 * 32 <= kMaxDensePoints);
  // A count that no reader lets through is still no reason to leave the arrays.
  sym.npoints = 255;
  EXPECT_THAT(SymVector(sym), SizeIs(63 * 32));
}

TEST(SymVectorToPoints, GivesEveryTwoPointSymbolThePlainFormsSignature) {
  const int step = Sanitized() ? 101 : 3;  // a prime each: no column or row is left out
  for (int k = 0; k < 32 * 32 * 32 * 32; k += step) {
    const GromlitSymbol sym =
        SymbolOfCells({{k & 31, (k >> 5) & 31}, {(k >> 10) & 31, (k >> 15) & 31}});
    int16_t x[64];
    int16_t y[64];
    char signature[MaxSignature(64) + 1];
    StrokeSignature(signature, SymVectorToPoints(&sym, x, y), x, y);
    ASSERT_EQ(signature, literal::SymbolSignature(sym)) << "symbol " << k;
  }
}

TEST(SymVectorToPoints, AgreesWithThePlainFormOnRandomSymbols) {
  std::mt19937_64 random(TestSeed());
  const int rounds = Sanitized() ? 2000 : 20000;
  for (int round = 0; round < rounds; ++round) {
    GromlitSymbol sym = {};
    sym.npoints = static_cast<uint8_t>(random() % (kMaxPoints + 1));
    for (int k = 1; k <= sym.npoints; ++k) {
      // Now and then a coordinate as only a damaged file has it.
      sym.x[k] = static_cast<uint16_t>(random() % (round % 4 == 0 ? 65536 : 280));
      sym.y[k] = static_cast<uint16_t>(random() % (round % 4 == 0 ? 65536 : 280));
    }
    ASSERT_EQ(SymVector(sym), literal::SymVector(sym)) << "round " << round;
  }
}

// --- Texts ------------------------------------------------------------------------------------

TEST(SignatureEqual, ComparesWholeTexts) {
  EXPECT_EQ(SignatureEqual("abcd", "abcd"), 1);
  EXPECT_EQ(SignatureEqual("", ""), 1);
  EXPECT_EQ(SignatureEqual("abcd", "abc"), 0);
  EXPECT_EQ(SignatureEqual("abc", "abcd"), 0);
  EXPECT_EQ(SignatureEqual("aaaa", "aaa-"), 0);
}

TEST(SignatureCopy, CopiesTheNulAndReturnsItsDestination) {
  char text[8] = "zzzzzzz";
  EXPECT_EQ(SignatureCopy(text, "acb"), text);
  EXPECT_EQ(std::string_view(text, 5), std::string_view("acb\0z", 5));
}

}  // namespace
}  // namespace gromlit
