// Whether the motions of the hand that draws may be gathered for a while.
#pragma once

#include <chrono>

namespace gromlit {

// How long motions are gathered: less than a screen takes from one picture to the next.
inline constexpr auto kGather = std::chrono::milliseconds(12);
// How many motions a mouse must tell of in that time. Of fewer each may wake the program.
inline constexpr int kQuickMotions = 5;

// Being woken for each motion costs more than all that is done with it. While the hand is on its
// way its motions may be read together: none is lost by it, but a release would be late by as much.
// So this is left to mice that tell of several hundred motions a second, and ends when the hand
// slows down to half of its speed, as it does before it lets go.
class QuickHand {
 public:
  using Clock = std::chrono::steady_clock;

  // The hand was pressed down at (x, y), pixels.
  QuickHand(Clock::time_point now, int x, int y) : looked_(now), lookedat_{x, y}, at_{x, y} {}

  // A motion has been read: the hand was at (x, y).
  void MoveTo(int x, int y);

  // Whether the program may stop reading for kGather from now on. Said once for each time that the
  // speed has been looked at, which is when kGather has passed since the last; in between false.
  bool MayGather(Clock::time_point now);

 private:
  struct Position {
    int x;
    int y;
  };

  // When the speed was last looked at, where the hand was then, and the motions since.
  Clock::time_point looked_;
  Position lookedat_;
  Position at_;
  int motions_ = 0;
  double fastest_ = 0;  // pixels a millisecond, the farther axis
};

}  // namespace gromlit
