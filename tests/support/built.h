// The build that a test belongs to. It is asked of the running program and not compiled into it:
// the tests' own objects are the same in every build, and compiled once for all of them.
#pragma once

#include <string>

namespace gromlit::testing {

// Path of something that the build made, such as "gromlit" or "share/gromlit": a path relative to
// the directory of the build whose tests/ the running program is in.
std::string Built(const std::string& name);

// Whether what is tested is instrumented, and so slower and larger than it is for its users.
bool Sanitized();

}  // namespace gromlit::testing
