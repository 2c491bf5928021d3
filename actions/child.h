// Starting outside programs. Nobody waits for them and none stays behind as a zombie.
#pragma once

#include <sys/types.h>

#include <string>
#include <string_view>

namespace gromlit {

// Lets the system reap finished children without waking the program. Once, at start-up.
void ReapChildrenSilently();

// Starts `line` (split by ParseArgs, found by PATH) with default signal dispositions. A failed exec
// is reported by the child: `errorprefix` and the system error on standard error, status -1.
// Returns the child's process id, or -1 when no process could be made.
pid_t StartCommandLine(const char* line, const char* errorprefix);

// The first "%s" of `format` replaced by `argument`, a further one by nothing, "%%" by "%";
// everything else is literal. The format comes from a file and never reaches printf.
std::string ExpandCommand(std::string_view format, std::string_view argument);

}  // namespace gromlit
