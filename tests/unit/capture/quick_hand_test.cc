#include "capture/quick_hand.h"

#include <gtest/gtest.h>

namespace gromlit {
namespace {

using std::chrono::milliseconds;
using Clock = QuickHand::Clock;

constexpr int kGatherMs = static_cast<int>(kGather.count());

// A hand on a horizontal way, and a program that asks after every motion.
class Hand {
 public:
  // Moves for a while, a motion of so many pixels each time; returns how often it may be gathered.
  int Move(int duration, int each, int pixels) {
    int gathered = 0;
    for (int passed = 0; passed < duration; passed += each) {
      now_ += milliseconds(each);
      time_ += static_cast<uint32_t>(each);
      x_ += pixels;
      hand_.MoveTo(time_, x_, 0);
      if (hand_.MayGather(now_)) gathered++;
    }
    return gathered;
  }
  void Rest(int duration) {
    now_ += milliseconds(duration);
    time_ += static_cast<uint32_t>(duration);
  }
  // Moves on for so long, a motion each millisecond, while the program is kept from reading; it
  // reads at the end, and asks before and after.
  bool MoveUnread(int duration, int pixels) {
    now_ += milliseconds(duration);
    EXPECT_FALSE(MayGather()) << "nothing has been read";
    for (int i = 0; i < duration; i++) hand_.MoveTo(++time_, x_ += pixels, 0);
    Move(kGatherMs - 1, 1, pixels);
    now_ += milliseconds(1);
    return MayGather();
  }
  bool MayGather() { return hand_.MayGather(now_); }

 private:
  Clock::time_point now_{};
  uint32_t time_ = 0xffffffc0;  // begins anew on the way
  int x_ = 0;
  QuickHand hand_{now_, time_, 0, 0};
};

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
  const Clock::time_point start{};
  QuickHand late(start, 0, 0, 0);
  for (int i = 1; i <= 10 * kQuickMotions; i++)
    late.MoveTo(2 * static_cast<uint32_t>(i), 10 * i, 0);
  EXPECT_TRUE(late.MayGather(start + 10 * kGather));
  QuickHand few(start, 0, 0, 0);
  for (int i = 1; i <= kQuickMotions; i++) few.MoveTo(2 * static_cast<uint32_t>(i), 10 * i, 0);
  EXPECT_FALSE(few.MayGather(start + 10 * kGather));
}

// Many motions that are read at once are no quicker hand: afterwards its usual speed would look
// slow, and each of its motions would wake the program until the end of the stroke.
TEST(QuickHand, LateReadingIsNoSpeed) {
  Hand hand;
  EXPECT_EQ(hand.Move(5 * kGatherMs, 1, 2), 5);
  EXPECT_TRUE(hand.MoveUnread(3 * kGatherMs, 2));
  EXPECT_EQ(hand.Move(5 * kGatherMs, 1, 2), 5);
}

TEST(QuickHand, EitherAxisCounts) {
  const Clock::time_point start{};
  QuickHand down(start, 0, 5, 5);
  for (int i = 1; i <= kGatherMs; i++) down.MoveTo(static_cast<uint32_t>(i), 5, 5 - i);
  EXPECT_TRUE(down.MayGather(start + kGather));
}

}  // namespace
}  // namespace gromlit
