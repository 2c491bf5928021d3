// Four floats at a time, for the coordinates of shapes.
#pragma once

#include <cstring>

namespace gromlit {

// Both compilers turn these into the instructions of whatever processor.
using Lanes = float __attribute__((vector_size(16)));
inline constexpr int kLanes = 4;

inline Lanes Load(const float* from) {
  Lanes lanes;
  std::memcpy(&lanes, from, sizeof lanes);
  return lanes;
}

inline void Store(float* to, Lanes lanes) {
  std::memcpy(to, &lanes, sizeof lanes);
}

inline float Sum(Lanes lanes) {
  return (lanes[0] + lanes[1]) + (lanes[2] + lanes[3]);
}

}  // namespace gromlit
