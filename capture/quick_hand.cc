#include "capture/quick_hand.h"

#include <algorithm>
#include <cstdlib>

namespace gromlit {

void QuickHand::MoveTo(int x, int y) {
  at_ = {x, y};
  motions_++;
}

bool QuickHand::MayGather(Clock::time_point now) {
  const auto took = now - looked_;
  if (took < kGather) return false;
  const double way = std::max(std::abs(at_.x - lookedat_.x), std::abs(at_.y - lookedat_.y));
  const double speed = way / std::chrono::duration<double, std::milli>(took).count();
  fastest_ = std::max(fastest_, speed);
  const bool quick =
      motions_ * kGather >= kQuickMotions * took && speed > 0 && speed >= fastest_ / 2;
  looked_ = now;
  lookedat_ = at_;
  motions_ = 0;
  return quick;
}

}  // namespace gromlit
