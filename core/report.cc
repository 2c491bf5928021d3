#include "core/report.h"

#include <cerrno>
#include <cstdio>

namespace gromlit {

void ReportSystemError(const char* prefix) {
  const int reason = errno;
  std::perror(prefix);
  errno = reason;
}

}  // namespace gromlit
