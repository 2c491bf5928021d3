// What a running program takes up: of the system, and of the X server on behalf of its connection.
#pragma once

#include <X11/Xlib.h>
#include <sys/types.h>

#include <map>
#include <string>

namespace gromlit::testing {

struct Usage {
  long private_kb = 0;  // memory that it has written to; 0 under the address sanitizer
  int descriptors = 0;
  int threads = 0;
  int children = 0;                      // those that ended and were not waited for, too
  std::map<std::string, int> resources;  // on the server, by the name of their type
  long pixmap_bytes = 0;

  int Resources() const;  // of all types
};

// What the process takes up, and the client that made this window or has this identifier. Numbers
// of a process or client that has gone are 0.
Usage UsageOf(pid_t pid, Display* display, XID client);

// One line: "private 640 kB, 9 descriptors, 1 thread, 0 children, 212 X resources (...)".
std::string Describe(const Usage& usage);

}  // namespace gromlit::testing
