#include "recognition/shape_match.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <iterator>
#include <limits>
#include <numbers>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "recognition/find_action.h"
#include "recognition/shape_warp.h"
#include "recognition/signature_match.h"
#include "tests/unit/recognition/recognition_support.h"
#include "tests/unit/recognition/stroke_sets.h"

namespace gromlit {
namespace {

using Points = std::vector<literal::Point>;

constexpr int kVeryLow = 1;
constexpr int kMedium = 3;
constexpr int kVeryHigh = 5;

Stroke StrokeOf(const Points& points) {
  std::vector<int16_t> x;
  std::vector<int16_t> y;
  for (const literal::Point& p : points) {
    x.push_back(static_cast<int16_t>(p.x));
    y.push_back(static_cast<int16_t>(p.y));
  }
  return MakeStroke(static_cast<int>(points.size()), x.data(), y.data());
}

// A stroke along the corners with that many points on each line.
Stroke Along(const Points& corners, int each = 12) {
  Points points = {corners[0]};
  for (size_t i = 1; i < corners.size(); ++i) {
    for (int k = 1; k <= each; ++k) {
      points.push_back({corners[i - 1].x + (corners[i].x - corners[i - 1].x) * k / each,
                        corners[i - 1].y + (corners[i].y - corners[i - 1].y) * k / each});
    }
  }
  return StrokeOf(points);
}

// Straight, of that many pixels, in a direction of degrees clockwise from the right.
Stroke Straight(double degrees, int length = 200) {
  const double angle = degrees * std::numbers::pi / 180;
  return Along({{500, 500},
                {500 + static_cast<int>(std::lround(length * std::cos(angle))),
                 500 + static_cast<int>(std::lround(length * std::sin(angle)))}});
}

void AddCells(Library* library, const std::string& name, const Points& cells) {
  library->Add(name, SymbolOfCells(cells));
}

// One symbol for each of the eight directions, from the right clockwise.
void AddDirections(Library* library) {
  const Points tips = {{31, 16}, {28, 28}, {16, 31}, {4, 28}, {0, 16}, {4, 4}, {16, 0}, {28, 4}};
  for (size_t i = 0; i < tips.size(); ++i) {
    const literal::Point tail = {32 - tips[i].x, 32 - tips[i].y};
    AddCells(library, std::to_string(i * 45),
             {{std::min(tail.x, 31), std::min(tail.y, 31)}, tips[i]});
  }
}

std::string Found(const Library& library, const Stroke& stroke, int tolerance = kMedium) {
  const int index = FindAction(library.plugin(), stroke, {kByShape, tolerance});
  return index < 0 ? "none" : library.name(index);
}

// --- Straight strokes ---------------------------------------------------------------------------

TEST(ShapeMatch, TellsEightDirectionsApartAndLeavesNoGapBetweenThem) {
  Library library;
  AddDirections(&library);
  for (const int length : {4, 12, 40, 400}) {
    for (int direction = 0; direction < 360; direction += 45) {
      EXPECT_EQ(Found(library, Straight(direction, length)), std::to_string(direction)) << length;
    }
  }
  // Half-way to the next one, but for the symbols' own rounding to cells.
  for (int direction = 0; direction < 360; direction += 45) {
    for (const int off : {-20, 20}) {
      EXPECT_EQ(Found(library, Straight(direction + off)), std::to_string(direction)) << off;
    }
  }
}

// A lone straight symbol: how far from it a straight stroke still runs it, at each tolerance.
TEST(ShapeMatch, HasALimitForStraightStrokesThatFollowsTheTolerance) {
  Library library;
  AddCells(&library, "right", {{0, 16}, {31, 16}});
  const int limits[] = {27, 30, 33, 40};
  for (int tolerance = kVeryLow; tolerance < kVeryHigh; ++tolerance) {
    int most = 0;
    while (most < 180 && Found(library, Straight(most + 1), tolerance) == "right") ++most;
    EXPECT_EQ(most, limits[tolerance - 1]) << "tolerance " << tolerance;
  }
  EXPECT_EQ(Found(library, Straight(180), kVeryHigh), "right");
}

TEST(ShapeMatch, TellsThereAndBackFromThere) {
  Library library;
  AddCells(&library, "there", {{0, 16}, {31, 16}});
  AddCells(&library, "there and back", {{0, 15}, {31, 16}, {0, 17}});
  AddCells(&library, "back and there", {{31, 15}, {0, 16}, {31, 17}});
  AddCells(&library, "back", {{31, 16}, {0, 16}});
  EXPECT_EQ(Found(library, Along({{100, 500}, {300, 504}})), "there");
  EXPECT_EQ(Found(library, Along({{100, 500}, {300, 504}, {96, 496}})), "there and back");
  EXPECT_EQ(Found(library, Along({{300, 500}, {100, 504}, {310, 496}})), "back and there");
  EXPECT_EQ(Found(library, Along({{300, 500}, {100, 500}})), "back");
  // The way back may be up to a third shorter.
  EXPECT_EQ(Found(library, Along({{100, 500}, {300, 500}, {168, 500}})), "there and back");
}

// --- Closed shapes ------------------------------------------------------------------------------

TEST(ShapeMatch, CountsWhereAClosedShapeBegins) {
  const Points corners = {{100, 100}, {300, 100}, {300, 300}, {100, 300}};
  Library library;
  AddCells(&library, "box", {{2, 2}, {29, 2}, {29, 29}, {2, 29}, {2, 2}});
  for (size_t first = 0; first < corners.size(); ++first) {
    Points drawn;
    for (size_t i = 0; i <= corners.size(); ++i)
      drawn.push_back(corners[(first + i) % corners.size()]);
    EXPECT_EQ(Found(library, Along(drawn)), first == 0 ? "box" : "none") << first;
    std::reverse(drawn.begin(), drawn.end());
    EXPECT_EQ(Found(library, Along(drawn)), "none") << first;
  }
  // Begun a little before the corner, or left open by a quarter of the last side.
  EXPECT_EQ(Found(library,
                  Along({{100, 125}, {100, 100}, {300, 100}, {300, 300}, {100, 300}, {100, 125}})),
            "box");
  EXPECT_EQ(Found(library, Along({{100, 100}, {300, 100}, {300, 300}, {100, 300}, {100, 150}})),
            "box");
}

// --- Size and number of points ------------------------------------------------------------------

TEST(ShapeMatch, KnowsSmallStrokes) {
  Library library;
  AddDirections(&library);
  AddCells(&library, "L", {{4, 4}, {4, 28}, {28, 28}});
  AddCells(&library, "V", {{4, 4}, {16, 28}, {28, 4}});
  AddCells(&library, "Z", {{4, 4}, {28, 4}, {4, 28}, {28, 28}});
  for (const int size : {4, 6, 10, 20, 40}) {
    EXPECT_EQ(Found(library, Along({{50, 50}, {50, 50 + size}, {50 + size, 50 + size}})), "L")
        << size;
    EXPECT_EQ(Found(library, Along({{50, 50}, {50 + size / 2, 50 + size}, {50 + size, 50}})), "V")
        << size;
    EXPECT_EQ(
        Found(library, Along({{50, 50}, {50 + size, 50}, {50, 50 + size}, {50 + size, 50 + size}})),
        "Z")
        << size;
  }
}

TEST(ShapeMatch, DoesNotDependOnPlaceSizeOrNumberOfPoints) {
  Library library;
  AddCells(&library, "L", {{4, 4}, {4, 28}, {28, 28}});
  const Shape* symbol = SymbolShape(library.symbol(0));
  const auto score = [symbol](const Stroke& stroke) {
    return ShapeScore(ShapeOfPoints(stroke.count, stroke.x, stroke.y), *symbol);
  };
  const float reference = score(Along({{0, 0}, {0, 100}, {100, 100}}, 1));  // three points
  EXPECT_GT(reference, 0.999F);
  EXPECT_NEAR(score(Along({{-3000, 900}, {-3000, 1400}, {-2500, 1400}}, 100)), reference, 0.002);
  EXPECT_NEAR(score(Along({{0, 0}, {0, 30000}, {30000, 30000}}, 120)), reference, 0.002);
  // Points where a hand rests, and a symbol's own 64 corners, change nothing.
  Points resting(100, {0, 100});
  resting.insert(resting.begin(), {0, 0});
  resting.push_back({100, 100});
  EXPECT_NEAR(score(StrokeOf(resting)), reference, 0.0001);
}

TEST(ShapeMatch, TakesTwoThreeAnd256Points) {
  Library library;
  AddCells(&library, "right", {{0, 16}, {31, 16}});
  AddCells(&library, "V", {{4, 4}, {16, 28}, {28, 4}});
  EXPECT_EQ(Found(library, Along({{10, 10}, {60, 12}}, 1)), "right");
  EXPECT_EQ(Found(library, Along({{10, 10}, {35, 60}, {60, 10}}, 1)), "V");
  const Stroke whole = Along({{0, 0}, {255, 0}}, 255);
  ASSERT_EQ(whole.count, kMaxStrokePoints);
  EXPECT_EQ(Found(library, whole), "right");
}

// Only the first 256 points are kept: what is left of a long stroke may be another shape.
TEST(ShapeMatch, SeesOnlyTheFirst256Points) {
  Library library;
  AddCells(&library, "L", {{4, 4}, {4, 28}, {28, 28}});
  AddCells(&library, "down", {{16, 0}, {16, 31}});
  // Points a pixel apart: of the foot of an L of 200 pixels, 55 are left, which is a hook.
  EXPECT_EQ(Found(library, Along({{0, 0}, {0, 130}, {130, 130}}, 130)), "L");
  EXPECT_EQ(Found(library, Along({{0, 0}, {0, 150}, {150, 150}}, 150)), "L");
  EXPECT_EQ(Found(library, Along({{0, 0}, {0, 200}, {200, 200}}, 200)), "down");
}

TEST(ShapeMatch, FindsNothingForAStrokeWithoutExtent) {
  Library library;
  AddDirections(&library);
  for (const Points& points :
       {Points{}, Points{{7, 7}}, Points{{7, 7}, {7, 7}}, Points(kMaxStrokePoints, {-300, 12})}) {
    EXPECT_EQ(Found(library, StrokeOf(points), kVeryHigh), "none") << points.size();
    const ShapeRanking ranking = RankByShape(library.plugin(), StrokeOf(points));
    EXPECT_EQ(ranking.best, -1);
    EXPECT_EQ(ranking.next, -1);
  }
}

TEST(ShapeMatch, LeavesOutSymbolsWithoutExtent) {
  Library library;
  library.Add("no points", GromlitSymbol{});
  AddCells(&library, "a dot", {{3, 3}});
  AddCells(&library, "a dot twice", {{3, 3}, {3, 3}});
  EXPECT_EQ(Found(library, Straight(0), kVeryHigh), "none");
  AddCells(&library, "left", {{31, 16}, {0, 16}});
  EXPECT_EQ(Found(library, Straight(0), kVeryHigh), "left");
  EXPECT_EQ(Found(library, Straight(0)), "none");
  Library empty;
  EXPECT_EQ(Found(empty, Straight(0), kVeryHigh), "none");
}

// --- Hooks --------------------------------------------------------------------------------------

TEST(ShapeMatch, BearsHooksAtBothEnds) {
  Library library;
  AddDirections(&library);
  AddCells(&library, "L", {{4, 4}, {4, 28}, {28, 28}});
  AddCells(&library, "Z", {{4, 4}, {28, 4}, {4, 28}, {28, 28}});
  std::mt19937 random(5);
  for (int i = 0; i < 50; ++i) {
    EXPECT_EQ(Found(library, WithHooks(Straight(0), 0.05, &random)), "0");
    EXPECT_EQ(Found(library, WithHooks(Straight(225), 0.05, &random)), "225");
    EXPECT_EQ(Found(library, WithHooks(Along({{0, 0}, {0, 90}, {90, 90}}), 0.05, &random)), "L");
    EXPECT_EQ(Found(library, WithHooks(Along({{0, 0}, {90, 0}, {0, 90}, {90, 90}}), 0.05, &random)),
              "Z");
  }
}

// --- Rules --------------------------------------------------------------------------------------

TEST(ShapeMatch, GivesEqualOnesToTheEarlierAction) {
  Library library;
  AddCells(&library, "down", {{16, 0}, {16, 31}});
  for (int i = 0; i < 8; ++i) AddCells(&library, "right " + std::to_string(i), {{0, 9}, {31, 9}});
  EXPECT_EQ(Found(library, Straight(3)), "right 0");
  const ShapeRanking ranking = RankByShape(library.plugin(), Straight(3));
  EXPECT_EQ(ranking.next, 2);
  EXPECT_EQ(ranking.score, ranking.nextscore);
}

TEST(ShapeMatch, TakesUnknownTolerancesForMedium) {
  for (const int32_t tolerance : {INT32_MIN, -1, 0, 6, INT32_MAX})
    EXPECT_EQ(ShapeThreshold(tolerance), ShapeThreshold(kMedium)) << tolerance;
  for (int tolerance = kVeryLow; tolerance < kVeryHigh; ++tolerance)
    EXPECT_GT(ShapeThreshold(tolerance), ShapeThreshold(tolerance + 1));
}

// The search looks closely at a few; it has to come to the same end as looking at all.
TEST(ShapeMatch, RanksAsComparingAllDoes) {
  std::mt19937 random(static_cast<uint32_t>(TestSeed()));
  Library library;
  std::uniform_int_distribution<int> cell(0, 31);
  for (int i = 0; i < 40; ++i) {
    Points cells;
    for (int k = 0; k < 5; ++k) cells.push_back({cell(random), cell(random)});
    AddCells(&library, std::to_string(i), cells);
  }
  int same = 0;
  constexpr int kDrawings = 200;
  for (int i = 0; i < kDrawings; ++i) {
    const Stroke stroke = SimulatedDrawing(*library.symbol(i % 40), &random);
    const Shape drawn = ShapeOfPoints(stroke.count, stroke.x, stroke.y);
    int best = -1;
    float score = -1;
    for (int k = 0; k < library.size(); ++k) {
      const float here = ShapeScore(drawn, *SymbolShape(library.symbol(k)));
      if (here <= score) continue;
      score = here;
      best = k;
    }
    const ShapeRanking ranking = RankByShape(library.plugin(), stroke);
    EXPECT_LE(ranking.score, score);
    if (ranking.best != best) continue;
    EXPECT_EQ(ranking.score, score);
    EXPECT_LE(ranking.nextscore, ranking.score);
    ++same;
  }
  EXPECT_GE(same, kDrawings * 98 / 100);
}

// INV-SYMBOL-1.
TEST(ShapeMatch, ForgetsTheShapeWithTheSignature) {
  GromlitSymbol sym = SymbolOfCells({{0, 16}, {31, 16}});
  EXPECT_NEAR(SymbolShape(&sym)->width, 1, 0.0001);
  EXPECT_EQ(SymbolShape(&sym), sym.shape);
  SymbolSignature(&sym);
  ForgetSignature(&sym);
  EXPECT_EQ(sym.shape, nullptr);
  EXPECT_EQ(sym.signature, nullptr);
  sym.x[2] = sym.x[1];
  sym.y[1] = kGridMin;
  EXPECT_NEAR(SymbolShape(&sym)->width, 0, 0.0001);
  GromlitSymbol copy = sym;
  DisownFeatures(&copy);
  EXPECT_EQ(copy.shape, nullptr);
  EXPECT_NE(sym.shape, nullptr);
  ForgetSignature(&sym);
}

TEST(ShapeMatch, ReadsCoordinatesOfDamagedFiles) {
  GromlitSymbol sym = {};
  sym.npoints = 2;
  sym.x[1] = 0;
  sym.x[2] = UINT16_MAX;
  EXPECT_NEAR(SymbolShape(&sym)->width, 1, 0.0001);
  ForgetSignature(&sym);
  sym.npoints = UINT8_MAX;
  EXPECT_TRUE(SymbolShape(&sym)->drawable);
  ForgetSignature(&sym);
}

// Whatever the symbol: drawn as it is, at any size that pixels can tell, it is found. The pen may
// turn right back half-way between two of the points that are compared, as often as it can.
TEST(ShapeMatch, FindsEverySymbolThatIsDrawnAsItIs) {
  std::mt19937 random(static_cast<uint32_t>(TestSeed()));
  std::vector<GromlitSymbol> symbols;
  for (int turns = 1; turns < kMaxPoints - 1; ++turns) {
    // With two lines to a segment all points that are compared would lie in one place.
    if (turns + 1 == 2 * kShapeSegments) continue;
    Points cells;
    for (int k = 0; k < turns + 2; ++k) cells.push_back({k % 2 == 0 ? 0 : 31, 16});
    symbols.push_back(SymbolOfCells(cells));
  }
  for (int i = 0; i < 300; ++i) {
    Points cells;
    const auto n = 2 + static_cast<int>(random() % (kMaxPoints - 1));
    for (int k = 0; k < n; ++k)
      cells.push_back({static_cast<int>(random() % 32), static_cast<int>(random() % 32)});
    cells[1].x = (cells[0].x + 16) % 32;
    symbols.push_back(SymbolOfCells(cells));
  }
  for (GromlitSymbol& sym : symbols) {
    const Shape* shape = SymbolShape(&sym);
    ASSERT_TRUE(shape->drawable);
    EXPECT_GT(ShapeScore(*shape, *shape), 0.9999F) << int{sym.npoints} << " corners";
    for (const double scale : {0.5, 0.77, 1.0, 2.0, 3.1}) {
      Points drawn;
      for (int k = 1; k <= sym.npoints; ++k)
        drawn.push_back({static_cast<int>(std::lround(sym.x[k] * scale)),
                         static_cast<int>(std::lround(sym.y[k] * scale))});
      const Stroke stroke = StrokeOf(drawn);
      EXPECT_GE(ShapeScore(ShapeOfPoints(stroke.count, stroke.x, stroke.y), *shape),
                ShapeThreshold(kMedium))
          << int{sym.npoints} << " corners, " << scale;
    }
    ForgetSignature(&sym);
  }
}

// --- The plain form -----------------------------------------------------------------------------

float SumOfFour(const float* v) {
  return (v[0] + v[1]) + (v[2] + v[3]);
}

Products PlainProducts(const Shape& stroke, const Shape& symbol) {
  float along[4] = {};
  float across[4] = {};
  for (int i = 0; i < kShapePoints; ++i) {
    along[i % 4] += stroke.x[i] * symbol.x[i] + stroke.y[i] * symbol.y[i];
    across[i % 4] += stroke.x[i] * symbol.y[i] - stroke.y[i] * symbol.x[i];
  }
  return {SumOfFour(along), SumOfFour(across)};
}

// What ShapeScore says, one symbol and one cell of the table after the other, and without a limit.
// `most` as in recognition/shape_warp.h.
float PlainCost(const Shape& stroke, const Shape& symbol, float* most) {
  const Products p = PlainProducts(stroke, symbol);
  const float turn = std::clamp(std::atan2(p.across, p.along), -0.17453293F, 0.17453293F) / 2;
  const float cosine = std::cos(turn);
  const float sine = std::sin(turn);
  float x[kShapePoints];
  float y[kShapePoints];
  float squares[4] = {};
  for (int i = 0; i < kShapePoints; ++i) {
    x[i] = stroke.x[i] * cosine - stroke.y[i] * sine;
    y[i] = stroke.x[i] * sine + stroke.y[i] * cosine;
    squares[i % 4] += x[i] * x[i];
  }
  const float width = SumOfFour(squares);
  const float want = (symbol.width + 0.01F) / (1 - symbol.width + 0.01F);
  const float stretch =
      std::clamp(std::sqrt(want / ((width + 0.01F) / (1 - width + 0.01F))), 1 / 1.3F, 1.3F);
  const float scale = 1 / std::sqrt(width * stretch + (1 - width) / stretch);
  const float xscale = scale * std::sqrt(stretch);
  const float yscale = scale / std::sqrt(stretch);
  for (int i = 0; i < kShapePoints; ++i) {
    x[i] *= xscale;
    y[i] *= yscale;
  }
  constexpr float kFar = std::numeric_limits<float>::infinity();
  float total[kShapeSegments + 1][kShapeSegments + 1];  // one row and one column before the first
  for (auto& row : total) std::fill(std::begin(row), std::end(row), kFar);
  total[0][0] = 0;
  *most = -kFar;
  for (int i = 0; i < kShapeSegments; ++i) {
    const float xstep = (stroke.dx[i] * cosine - stroke.dy[i] * sine) * xscale;
    const float ystep = (stroke.dx[i] * sine + stroke.dy[i] * cosine) * yscale;
    const float inverse = 1 / std::sqrt(xstep * xstep + ystep * ystep);
    float least = kFar;
    for (int j = std::max(0, i - kShapeBand); j <= std::min(kShapeSegments - 1, i + kShapeBand);
         ++j) {
      const float alike = symbol.dx[j] * (xstep * inverse) + symbol.dy[j] * (ystep * inverse);
      const float xaway = symbol.mx[j] - (x[i] + x[i + 1]) / 2;
      const float yaway = symbol.my[j] - (y[i] + y[i + 1]) / 2;
      const float cost = 0.5F * (1 - alike) + 8 * (xaway * xaway + yaway * yaway);
      total[i + 1][j + 1] =
          std::min({total[i][j + 1], total[i + 1][j], total[i][j]}) + cost / (1 + 6 * cost);
      least = std::min(least, total[i + 1][j + 1]);
    }
    *most = std::max(*most, least);
  }
  return total[kShapeSegments][kShapeSegments];
}

// To the last bit, but for processors on which products and sums are rounded as one.
void ExpectSame(float fast, float plain) {
#ifdef __FP_FAST_FMAF
  EXPECT_NEAR(fast, plain, 1e-5F);
#else
  EXPECT_EQ(fast, plain);
#endif
}

// Symbols of all kinds: alike, equal, with a point only.
void AddRandomSymbols(int n, std::mt19937* random, Library* library) {
  GromlitSymbol sym = {};
  for (int i = 0; i < n; ++i) {
    const unsigned how = (*random)() % 4;
    if (how > 1 || sym.npoints == 0) {
      sym.npoints = static_cast<uint8_t>(1 + (*random)() % 9);
      for (int k = 1; k <= sym.npoints; ++k) {
        sym.x[k] = static_cast<uint16_t>(kGridMin + (*random)() % 249);
        sym.y[k] = static_cast<uint16_t>(kGridMin + (*random)() % 249);
      }
    } else if (how == 1) {
      sym.x[1] = static_cast<uint16_t>(sym.x[1] + 3);
    }
    library->Add("action", sym);
  }
}

TEST(ShapeMatch, WarpsFourAtATimeToTheBitAsOneAfterTheOther) {
  const auto seed = static_cast<uint32_t>(TestSeed());
  std::mt19937 random(seed);
  Library library;
  AddRandomSymbols(kMaxActions, &random, &library);
  int compared = 0;
  for (int round = 0; round < 40; ++round) {
    const Stroke stroke = RandomWalk(&random);
    const Shape drawn = ShapeOfPoints(stroke.count, stroke.x, stroke.y);
    Warped warped[kWarpedAtOnce] = {};
    const int n = 1 + round % kWarpedAtOnce;
    for (int k = 0; k < n; ++k) {
      const Shape* symbol = nullptr;
      do {
        symbol = SymbolShape(library.symbol(static_cast<int>(random() % kMaxActions)));
      } while (!symbol->drawable);
      warped[k] = {symbol, PlainProducts(drawn, *symbol), 0, 0};
    }
    Warp(drawn, n, std::numeric_limits<float>::infinity(), warped);
    for (int k = 0; k < n; ++k, ++compared) {
      float most = 0;
      const float cost = PlainCost(drawn, *warped[k].symbol, &most);
      ExpectSame(warped[k].cost, cost);
      ExpectSame(warped[k].most, most);
      ExpectSame(ShapeScore(drawn, *warped[k].symbol), 1 - cost / kShapeSegments);
    }
    float least = warped[0].most;
    for (int k = 1; k < n; ++k) least = std::min(least, warped[k].most);
    // With a limit that some keep, all are told in full.
    Warped limited[kWarpedAtOnce];
    std::copy(std::begin(warped), std::end(warped), limited);
    Warp(drawn, n, least, limited);
    for (int k = 0; k < n; ++k) EXPECT_EQ(limited[k].cost, warped[k].cost);
    Warp(drawn, n, least / 2, limited);
    for (int k = 0; k < n; ++k) EXPECT_GT(limited[k].most, least / 2);
  }
  EXPECT_EQ(compared, 100);
}

// Of at most five actions all are candidates, so the ranking is that of the scores.
TEST(ShapeMatch, RanksFewActionsByTheirScores) {
  const auto seed = static_cast<uint32_t>(TestSeed());
  std::mt19937 random(seed);
  for (int round = 0; round < 300; ++round) {
    Library library;
    AddRandomSymbols(1 + round % kShapeCandidates, &random, &library);
    const Stroke stroke = RandomWalk(&random);
    const Shape drawn = ShapeOfPoints(stroke.count, stroke.x, stroke.y);
    // By the costs: two that differ may round to one score.
    std::vector<std::pair<float, int>> costs;
    for (int i = 0; i < library.size(); ++i) {
      const Shape* symbol = SymbolShape(library.symbol(i));
      if (!drawn.drawable || !symbol->drawable) continue;
      Warped warped = {symbol, PlainProducts(drawn, *symbol), 0, 0};
      Warp(drawn, 1, std::numeric_limits<float>::infinity(), &warped);
      costs.push_back({warped.cost, i});
    }
    std::sort(costs.begin(), costs.end());
    const auto score = [&](size_t at) {
      return at < costs.size() ? ShapeScore(drawn, *SymbolShape(library.symbol(costs[at].second)))
                               : -1;
    };
    const ShapeRanking ranking = RankByShape(library.plugin(), stroke);
    EXPECT_EQ(ranking.best, !costs.empty() ? costs[0].second : -1);
    EXPECT_EQ(ranking.score, score(0));
    EXPECT_EQ(ranking.next, costs.size() > 1 ? costs[1].second : -1);
    EXPECT_EQ(ranking.nextscore, score(1));
  }
}

}  // namespace
}  // namespace gromlit
