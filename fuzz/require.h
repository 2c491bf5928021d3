// Ends a fuzz run when a property does not hold.
#pragma once

#include <cstdio>
#include <cstdlib>

namespace gromlit {

inline void Require(bool holds, const char* file = __builtin_FILE(), int line = __builtin_LINE()) {
  if (holds) return;
  std::fprintf(stderr, "%s:%d: what must hold does not\n", file, line);
  std::abort();
}

}  // namespace gromlit
