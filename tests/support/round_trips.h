// How often the program's connection waits for the server, whatever library it asks through.
//
// A program that links this has a poll() of its own, which all waiting for the server goes through.
#pragma once

#include <functional>

namespace gromlit::testing {

struct Trips {
  unsigned long requests;  // sent
  // For the server to answer what was sent since the wait before. An answer that comes in pieces
  // while more is being sent counts, too: with thousands of requests a few more than there were.
  unsigned long waits;
};

// Runs `op` and counts, on `dpy`. `at_wait`, where given, is called at the beginning of each wait
// with its number, from 1; it may use other connections.
Trips CountTrips(const std::function<void()>& op,
                 const std::function<void(unsigned long)>& at_wait = nullptr);

}  // namespace gromlit::testing
