#include "capture/quick_hand.h"

#include <algorithm>
#include <cstdlib>

namespace gromlit {

void QuickHand::MoveTo(uint32_t time, int x, int y) {
  last_ = {time, x, y};
  motions_++;
}

bool QuickHand::MayGather(Clock::time_point now) {
  const auto took = now - looked_;
  if (took < kGather) return false;
  const uint32_t moved = last_.time - lookedat_.time;  // which begins anew after seven weeks
  const double way = std::max(std::abs(last_.x - lookedat_.x), std::abs(last_.y - lookedat_.y));
  const double speed =
      way / std::max(static_cast<double>(moved), static_cast<double>(kGather.count()));
  fastest_ = std::max(fastest_, speed);
  const bool quick =
      motions_ * kGather >= kQuickMotions * took && speed > 0 && speed >= fastest_ / 2;
  looked_ = now;
  lookedat_ = last_;
  motions_ = 0;
  return quick;
}

}  // namespace gromlit
