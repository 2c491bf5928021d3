#include "recognition/find_action.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>
#include <vector>

#include "recognition/signature_match.h"
#include "tests/unit/recognition/recognition_support.h"

namespace gromlit {
namespace {

const std::vector<literal::Point> kRight = {{0, 4}, {31, 4}};
const std::vector<literal::Point> kDown = {{4, 0}, {4, 31}};
constexpr Matching kSignature = {kBySignature, 3};

// A plug-in of three actions: right, down, and down again.
class FindAction3 : public ::testing::Test {
 protected:
  void SetUp() override {
    const GromlitSymbol syms[] = {SymbolOfCells(kRight), SymbolOfCells(kDown),
                                  SymbolOfCells(kDown)};
    for (const GromlitSymbol& sym : syms) {
      actions[plugin.nactions].sym = sym;
      plugin.actions[plugin.nactions] = &actions[plugin.nactions];
      plugin.nactions++;
    }
  }
  void TearDown() override {
    for (GromlitAction& action : actions) ForgetSignature(&action.sym);
  }
  GromlitPlugin plugin = {};
  GromlitAction actions[3] = {};
};

Stroke Line(int count, int dx, int dy) {
  std::vector<int16_t> x;
  std::vector<int16_t> y;
  for (int i = 0; i < count; i++) {
    x.push_back(static_cast<int16_t>(500 + i * dx));
    y.push_back(static_cast<int16_t>(400 + i * dy));
  }
  return MakeStroke(count, x.data(), y.data());
}

TEST_F(FindAction3, GivesTheFirstWhoseSymbolTheStrokeMatches) {
  EXPECT_EQ(FindAction(&plugin, Line(50, 4, 0), kSignature), 0);
  EXPECT_EQ(FindAction(&plugin, Line(50, 0, 4), kSignature), 1);
  EXPECT_EQ(FindAction(&plugin, Line(50, 4, 4), kSignature), -1);
  EXPECT_EQ(FindAction(&plugin, Line(0, 0, 0), kSignature), -1);
}

TEST_F(FindAction3, MatchesBySignatureWhereTheWayIsUnknown) {
  for (const int32_t way : {-1, 2, 1000}) {
    EXPECT_EQ(FindAction(&plugin, Line(50, 0, 4), {way, 3}), 1) << way;
    EXPECT_EQ(FindAction(&plugin, Line(50, 4, 4), {way, 3}), -1) << way;
  }
}

TEST_F(FindAction3, TellsTheScoresOfTheTwoNearestWhereTheWayMeasuresThem) {
  const Scores shape = ScoresOf(&plugin, Line(50, 4, 0), {kByShape, 3});
  EXPECT_GT(shape.best, 0.999F);
  EXPECT_GT(shape.next, 0.5F);
  EXPECT_LT(shape.next, 0.95F);
  EXPECT_EQ(ScoresOf(&plugin, Line(0, 0, 0), {kByShape, 3}).best, -1);
  for (const int32_t way : {0, -1, 2}) {
    EXPECT_EQ(WayOf({way, 3}), kBySignature);
    const Scores none = ScoresOf(&plugin, Line(50, 4, 0), {way, 3});
    EXPECT_EQ(none.best, -1);
    EXPECT_EQ(none.next, -1);
  }
  EXPECT_EQ(WayOf({kByShape, 3}), kByShape);
}

TEST(MakeStroke, KeepsTheFirst256Points) {
  const Stroke stroke = Line(300, 1, 2);
  ASSERT_EQ(stroke.count, kMaxStrokePoints);
  EXPECT_EQ(stroke.x[255], 755);
  EXPECT_EQ(stroke.y[255], 910);
  EXPECT_EQ(MakeStroke(-1, nullptr, nullptr).count, 0);
}

TEST(MatchingOf, IsWhatTheOptionsSay) {
  GromlitUserOptions options = {};
  options.tolerance = 4;
  EXPECT_EQ(MatchingOf(options).way, kBySignature);
  EXPECT_EQ(MatchingOf(options).tolerance, 4);
  options.temp3 = 1;
  EXPECT_EQ(MatchingOf(options).way, kByShape);
}

}  // namespace
}  // namespace gromlit
