// Matching by shape on strokes that people drew, with symbols from other people's. The whole tables
// are scripts/recognition-report's; this holds the bars on one way to divide the people.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "recognition/find_action.h"
#include "recognition/shape_match.h"
#include "tests/unit/recognition/recognition_support.h"
#include "tests/unit/recognition/stroke_sets.h"

namespace gromlit {
namespace {

// A symbol of each gesture from every tenth stroke of the first three people, and all strokes of
// the others.
class RecordedShapes : public ::testing::Test {
 protected:
  static constexpr int kSources = 3;
  void SetUp() override {
    std::string missing;
    set = ReadRecordedSet(&missing);
    if (set.strokes.empty()) GTEST_SKIP() << missing;
    for (int gesture = 0; gesture < static_cast<int>(set.gestures.size()); ++gesture) {
      std::vector<const Stroke*> samples;
      int n = 0;
      for (const SetStroke& stroke : set.strokes) {
        if (stroke.gesture != gesture || stroke.person >= kSources) continue;
        if (n++ % 5 == 0) samples.push_back(&stroke.stroke);
      }
      library.Add(set.gestures[static_cast<size_t>(gesture)], Learn(samples));
    }
    for (const SetStroke& stroke : set.strokes) {
      if (stroke.person >= kSources) strangers.push_back(&stroke);
    }
  }
  double Percent(double part, size_t whole) { return 100 * part / static_cast<double>(whole); }

  RecordedSet set;
  Library library;
  std::vector<const SetStroke*> strangers;
};

TEST_F(RecordedShapes, AreFoundAtMediumAndAtVeryHigh) {
  double right = 0;
  double wrong = 0;
  double nearest = 0;
  for (const SetStroke* stroke : strangers) {
    const int found = FindAction(library.plugin(), stroke->stroke, {kByShape, 3});
    if (found == stroke->gesture) ++right;
    if (found >= 0 && found != stroke->gesture) ++wrong;
    nearest += FindAction(library.plugin(), stroke->stroke, {kByShape, 5}) == stroke->gesture;
  }
  ASSERT_EQ(strangers.size(), 960u);
  EXPECT_GE(Percent(right, strangers.size()), 96);
  EXPECT_LE(Percent(wrong, strangers.size()), 1.2);
  EXPECT_GE(Percent(nearest, strangers.size()), 98);
}

TEST_F(RecordedShapes, DrawnBackwardsOrWithoutTheirSymbolMostlyRunNothing) {
  double reversed = 0;
  double leftout = 0;
  for (int gesture = 0; gesture < library.size(); ++gesture) {
    Library rest;
    rest.CopyWithout(library, gesture);
    for (const SetStroke* stroke : strangers) {
      if (stroke->gesture != gesture) continue;
      leftout += FindAction(rest.plugin(), stroke->stroke, {kByShape, 3}) >= 0;
      reversed += FindAction(library.plugin(), Reversed(stroke->stroke), {kByShape, 3}) >= 0;
    }
  }
  EXPECT_LE(Percent(reversed, strangers.size()), 12);
  EXPECT_LE(Percent(leftout, strangers.size()), 35);
}

TEST_F(RecordedShapes, AreRarelySeenInRandomWalks) {
  const auto seed = static_cast<uint32_t>(TestSeed());
  std::mt19937 random(seed);
  constexpr size_t kWalks = 2000;
  double run = 0;
  for (size_t i = 0; i < kWalks; ++i)
    run += FindAction(library.plugin(), RandomWalk(&random), {kByShape, 3}) >= 0;
  EXPECT_LE(Percent(run, kWalks), 6) << "5 % at the mean over all ways to divide the people";
}

}  // namespace
}  // namespace gromlit
