// Telling of a failed system call.
#pragma once

namespace gromlit {

// Prints `prefix`, ": " and the system error of errno on standard error. errno stays as it is, for
// the caller that is to tell the user, too: printing alone may change it.
void ReportSystemError(const char* prefix);

}  // namespace gromlit
