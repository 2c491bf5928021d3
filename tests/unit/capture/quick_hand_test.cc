#include "capture/quick_hand.h"

#include <gtest/gtest.h>

namespace gromlit {
namespace {

using std::chrono::milliseconds;
using Time = QuickHand::Clock::time_point;

// A hand on a horizontal way, and a program that asks after every motion.
class Hand {
 public:
  // Moves for a while, a motion of so many pixels each time; returns how often it may be gathered.
  int Move(int duration, int each, int pixels) {
    int gathered = 0;
    for (int time = 0; time < duration; time += each) {
      now_ += milliseconds(each);
      x_ += pixels;
      hand_.MoveTo(x_, 0);
      if (hand_.MayGather(now_)) gathered++;
    }
    return gathered;
  }
  void Rest(int duration) { now_ += milliseconds(duration); }
  bool MayGather() { return hand_.MayGather(now_); }

 private:
  Time now_{};
  int x_ = 0;
  QuickHand hand_{now_, 0, 0};
};

constexpr int kGatherMs = static_cast<int>(kGather.count());

TEST(QuickHand, IsLookedAtAsOftenAsItsMotionsAreGathered) {
  EXPECT_EQ(Hand().Move(10 * kGatherMs, 1, 2), 10);
  EXPECT_EQ(Hand().Move(kGatherMs - 1, 1, 2), 0);
}

TEST(QuickHand, MotionsOfASlowMouseAreNotGathered) {
  EXPECT_EQ(Hand().Move(30 * kGatherMs, 8, 16), 0);
  EXPECT_EQ(Hand().Move(30 * kGatherMs, 4, 8), 0);
  EXPECT_EQ(Hand().Move(30 * kGatherMs, 2, 4), 30);
}

TEST(QuickHand, SlowingToHalfOfItsSpeedEndsIt) {
  Hand hand;
  EXPECT_EQ(hand.Move(5 * kGatherMs, 1, 5), 5);
  EXPECT_EQ(hand.Move(5 * kGatherMs, 1, 3), 5);
  EXPECT_EQ(hand.Move(5 * kGatherMs, 1, 2), 0);
  EXPECT_EQ(hand.Move(5 * kGatherMs, 1, 4), 5);
}

TEST(QuickHand, ARestingHandIsNotGathered) {
  Hand hand;
  EXPECT_EQ(hand.Move(5 * kGatherMs, 1, 0), 0) << "trembles";
  EXPECT_EQ(hand.Move(5 * kGatherMs, 1, 5), 5);
  hand.Rest(kGatherMs);
  EXPECT_FALSE(hand.MayGather());
}

// A busy machine reads many motions at once, and later than it wanted.
TEST(QuickHand, CountsMotionsByTheTimeThatTheyTook) {
  const Time start{};
  QuickHand late(start, 0, 0);
  for (int i = 1; i <= 10 * kQuickMotions; i++) late.MoveTo(10 * i, 0);
  EXPECT_TRUE(late.MayGather(start + 10 * kGather));
  QuickHand few(start, 0, 0);
  for (int i = 1; i <= kQuickMotions; i++) few.MoveTo(10 * i, 0);
  EXPECT_FALSE(few.MayGather(start + 10 * kGather));
}

TEST(QuickHand, EitherAxisCounts) {
  const Time start{};
  QuickHand down(start, 5, 5);
  for (int i = 1; i <= kGatherMs; i++) down.MoveTo(5, 5 - i);
  EXPECT_TRUE(down.MayGather(start + kGather));
}

}  // namespace
}  // namespace gromlit
