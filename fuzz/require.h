// Ends a fuzz run when a property does not hold.
#pragma once

#include <cstdlib>

namespace gromlit {

inline void Require(bool holds) {
  if (!holds) std::abort();
}

}  // namespace gromlit
