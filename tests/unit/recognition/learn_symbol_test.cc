#include "recognition/learn_symbol.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "recognition/find_action.h"
#include "recognition/signature_match.h"
#include "tests/unit/recognition/recognition_support.h"
#include "tests/unit/recognition/stroke_sets.h"

namespace gromlit {
namespace {

Shape ShapeOf(const Stroke& stroke) {
  return ShapeOfPoints(stroke.count, stroke.x, stroke.y);
}

float Score(const Stroke& stroke, GromlitSymbol* sym) {
  return ShapeScore(ShapeOf(stroke), *SymbolShape(sym));
}

// A spiral: as many points as a stroke can have, and no straight part.
Stroke Spiral(int turns) {
  Stroke stroke;
  stroke.count = kMaxStrokePoints;
  for (int i = 0; i < stroke.count; ++i) {
    const double at = 6.2832 * turns * i / stroke.count;
    stroke.x[i] = static_cast<int16_t>(std::lround(500 + (40 + i) * std::cos(at)));
    stroke.y[i] = static_cast<int16_t>(std::lround(500 + (40 + i) * std::sin(at)));
  }
  return stroke;
}

void ExpectOnGrid(const GromlitSymbol& sym) {
  for (int k = 1; k <= sym.npoints; ++k) {
    for (const int v : {sym.x[k], sym.y[k]}) {
      EXPECT_EQ(v % 8, 0);
      EXPECT_GE(v, kGridMin);
      EXPECT_LE(v, kGridMax);
    }
  }
}

TEST(SimplifyStroke, GivesAPlainShapeItsCornersAndNoMore) {
  const int16_t x[] = {100, 100, 101, 100, 140, 200};
  const int16_t y[] = {100, 130, 170, 200, 201, 200};
  GromlitSymbol sym = {};
  ASSERT_TRUE(SimplifyStroke(MakeStroke(6, x, y), &sym));
  ASSERT_EQ(sym.npoints, 3);
  EXPECT_EQ(sym.x[1], kGridMin);
  EXPECT_EQ(sym.y[1], kGridMin);
  EXPECT_EQ(sym.x[2], kGridMin);
  EXPECT_EQ(sym.y[2], kGridMax);
  EXPECT_EQ(sym.x[3], kGridMax);
  EXPECT_EQ(sym.y[3], kGridMax);
  EXPECT_EQ(sym.icon[0] & 1u, 1u);
  EXPECT_EQ(sym.icon[31], UINT32_MAX);
  ForgetSignature(&sym);
}

TEST(SimplifyStroke, KeepsAFlatStrokeFlatAndInTheMiddle) {
  const int16_t x[] = {10, 50, 90};
  const int16_t y[] = {300, 301, 300};
  GromlitSymbol sym = {};
  ASSERT_TRUE(SimplifyStroke(MakeStroke(3, x, y), &sym));
  ASSERT_EQ(sym.npoints, 2);
  EXPECT_EQ(sym.x[1], kGridMin);
  EXPECT_EQ(sym.x[2], kGridMax);
  EXPECT_EQ(sym.y[1], sym.y[2]);
  EXPECT_NEAR(sym.y[1], 140, 4);
  ForgetSignature(&sym);
}

TEST(SimplifyStroke, NeedsNoMoreThan64Corners) {
  for (const int turns : {1, 3, 8, 30}) {
    GromlitSymbol sym = {};
    ASSERT_TRUE(SimplifyStroke(Spiral(turns), &sym));
    EXPECT_GE(sym.npoints, 2) << turns;
    EXPECT_LE(sym.npoints, kMaxPoints) << turns;
    ExpectOnGrid(sym);
    if (turns <= 3) {
      EXPECT_GT(Score(Spiral(turns), &sym), 0.98F) << turns;
    }
    ForgetSignature(&sym);
  }
}

TEST(SimplifyStroke, KeepsNameAndSpareAndDropsTheFeaturesOfTheFormerShape) {
  GromlitSymbol sym = SymbolOfCells({{0, 0}, {31, 31}});
  sym.name[0] = 'n';
  sym.spare = 7;
  SymbolSignature(&sym);
  SymbolShape(&sym);
  ASSERT_TRUE(SimplifyStroke(Spiral(1), &sym));
  EXPECT_STREQ(sym.name, "n");
  EXPECT_EQ(sym.spare, 7u);
  EXPECT_EQ(sym.signature, nullptr);
  EXPECT_EQ(sym.shape, nullptr);
}

TEST(SimplifyStroke, RefusesAStrokeWithoutExtent) {
  GromlitSymbol sym = SymbolOfCells({{0, 0}, {31, 31}});
  const int16_t same[] = {5, 5, 5};
  EXPECT_FALSE(SimplifyStroke(MakeStroke(3, same, same), &sym));
  EXPECT_FALSE(SimplifyStroke(MakeStroke(0, same, same), &sym));
  EXPECT_EQ(sym.npoints, 2);
}

TEST(NearestSample, IsTheOneThatTheOthersAreLike) {
  GromlitSymbol zed = SymbolOfCells({{4, 4}, {28, 4}, {4, 28}, {28, 28}});
  std::mt19937 random(static_cast<uint32_t>(TestSeed()));
  std::vector<Shape> samples;
  samples.push_back(ShapeOf(Spiral(2)));
  samples.push_back(Shape{});  // not drawable
  for (int i = 0; i < 9; ++i) samples.push_back(ShapeOf(SimulatedDrawing(zed, &random)));
  EXPECT_GE(NearestSample(samples), 2);
  EXPECT_EQ(NearestSample(std::span(samples).first(1)), 0);
  EXPECT_EQ(NearestSample(std::span(samples).subspan(1, 1)), -1);
  EXPECT_EQ(NearestSample({}), -1);
}

// What is learned from a handful of drawings of one shape is found in all of them.
TEST(Learn, MakesASymbolThatItsSamplesRun) {
  std::mt19937 random(static_cast<uint32_t>(TestSeed()));
  const std::vector<std::vector<literal::Point>> shapes = {
      {{4, 4}, {28, 4}, {4, 28}, {28, 28}},
      {{4, 28}, {4, 4}, {28, 28}, {28, 4}},
      {{4, 16}, {10, 4}, {22, 4}, {28, 16}, {22, 28}, {10, 28}, {4, 16}},
      {{4, 4}, {16, 28}, {28, 4}}};
  Library library;
  std::vector<std::vector<Stroke>> samples(shapes.size());
  for (size_t i = 0; i < shapes.size(); ++i) {
    GromlitSymbol model = SymbolOfCells(shapes[i]);
    std::vector<const Stroke*> strokes;
    for (int k = 0; k < 12; ++k) samples[i].push_back(SimulatedDrawing(model, &random));
    for (const Stroke& stroke : samples[i]) strokes.push_back(&stroke);
    library.Add(std::to_string(i), Learn(strokes));
    ExpectOnGrid(*library.symbol(static_cast<int>(i)));
  }
  for (size_t i = 0; i < shapes.size(); ++i) {
    for (const Stroke& stroke : samples[i])
      EXPECT_EQ(FindAction(library.plugin(), stroke, {kByShape, 3}), static_cast<int>(i));
  }
}

}  // namespace
}  // namespace gromlit
