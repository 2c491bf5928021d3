#include "toolkit/press_time.h"

#include <chrono>

namespace gromlit {

uint32_t PressTime(const XButtonEvent& press) {
  if (press.time != CurrentTime) return static_cast<uint32_t>(press.time);
  const auto now = std::chrono::steady_clock::now().time_since_epoch();
  return static_cast<uint32_t>(std::chrono::duration_cast<std::chrono::milliseconds>(now).count());
}

}  // namespace gromlit
