// How a person's hand comes from one window to another: not in one jump, but over whatever lies on
// the way.
#pragma once

#include <algorithm>
#include <cstdlib>

#include "tests/e2e/gromlit_run.h"

namespace gromlit::testing {

// On each way that is longer than a window it comes across another application and the desktop.
class WanderingHand {
 public:
  // `over` is a point of the other application's window, `bare` one of the desktop.
  WanderingHand(Player* player, Window application, Point over, Point bare)
      : player_(player), application_(application), over_(over), bare_(bare) {}

  void MoveTo(Point to) {
    constexpr unsigned kHeld = Button1Mask | Button2Mask | Button3Mask;
    const Player::Pointer from = player_->Where();
    const bool is_far = std::max(std::abs(to.x - from.x), std::abs(to.y - from.y)) > kFar;
    // A way with a button held is one within a window.
    if (is_far && (from.state & kHeld) == 0) {
      Stroll(over_);
      if (IsInside(player_->display(), application_, player_->Where().child)) detours_++;
      Stroll(bare_);
    }
    Stroll(to);
  }
  // How often it came across the other application.
  int detours() const { return detours_; }

 private:
  // The program's windows are narrower than the ways between them, pixels.
  static constexpr int kFar = 250;
  static constexpr int kStride = 20;

  void Stroll(Point to) {
    const Player::Pointer from = player_->Where();
    const int steps = 1 + std::max(std::abs(to.x - from.x), std::abs(to.y - from.y)) / kStride;
    for (int i = 1; i <= steps; i++)
      player_->MoveTo(from.x + (to.x - from.x) * i / steps, from.y + (to.y - from.y) * i / steps);
  }

  Player* player_;
  Window application_;
  Point over_;
  Point bare_;
  int detours_ = 0;
};

}  // namespace gromlit::testing
