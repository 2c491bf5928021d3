// Whether the motions of the hand that draws may be gathered for a while.
#pragma once

#include <chrono>
#include <cstdint>

namespace gromlit {

// How long motions are gathered: less than a screen takes from one picture to the next.
inline constexpr auto kGather = std::chrono::milliseconds(16);
// How many motions a mouse must tell of in that time. Of fewer each may wake the program.
inline constexpr int kQuickMotions = 6;

// Being woken for each motion costs more than all that is done with it. While the hand is on its
// way its motions may be read together: none is lost by it, but a release would be late by as much.
// So this is left to mice that tell of several hundred motions a second, and ends when the hand
// slows down to half of its speed, as it does before it lets go.
class QuickHand {
 public:
  using Clock = std::chrono::steady_clock;

  // The hand was pressed down at (x, y), pixels, at a time of the server's, milliseconds.
  QuickHand(Clock::time_point now, uint32_t time, int x, int y)
      : looked_(now), last_{time, x, y}, lookedat_(last_) {}

  // A motion has been read: the hand was at (x, y) at that time of the server's.
  void MoveTo(uint32_t time, int x, int y);

  // Whether the program may stop reading for kGather from now on. Said once for each time that the
  // speed has been looked at, which is when kGather has passed since the last; in between false.
  bool MayGather(Clock::time_point now);

 private:
  struct Motion {
    uint32_t time;
    int x;
    int y;
  };

  // When the speed was last looked at, and the last motion then and now. The speed goes by the
  // server's times: how late a motion is read says nothing of the hand.
  Clock::time_point looked_;
  Motion last_;
  Motion lookedat_;
  int motions_ = 0;     // since then
  double fastest_ = 0;  // pixels a millisecond, the farther axis
};

}  // namespace gromlit
