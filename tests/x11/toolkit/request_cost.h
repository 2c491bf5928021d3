// What an operation costs: the requests it sends, and how often it waits for the server.
#pragma once

#include <ostream>

#include "display/display.h"

namespace gromlit::testing {

struct Cost {
  unsigned long requests;
  unsigned long roundtrips;
  bool operator==(const Cost&) const = default;
};

inline std::ostream& operator<<(std::ostream& out, const Cost& cost) {
  return out << cost.requests << " requests, " << cost.roundtrips << " round trips";
}

// Runs `op` and counts. Xlib keeps changes of a graphics context back until something is drawn
// with it, so that an operation may send one change that an earlier one left behind: draw once
// before counting. An error or event that is read on the way does not count as a round trip.
template <typename Operation>
Cost CostOf(Operation op) {
  static unsigned long roundtrips;
  static unsigned long seen;
  XSync(dpy, False);
  roundtrips = 0;
  seen = NextRequest(dpy);
  const unsigned long first = NextRequest(dpy);
  // Called by Xlib at the end of each of its functions. When the request just sent is known to be
  // processed, the function has waited for its reply.
  XSetAfterFunction(dpy, [](Display* display) {
    if (NextRequest(display) != seen &&
        LastKnownRequestProcessed(display) == NextRequest(display) - 1) {
      roundtrips++;
    }
    seen = NextRequest(display);
    return 0;
  });
  op();
  XSetAfterFunction(dpy, nullptr);
  return {NextRequest(dpy) - first, roundtrips};
}

}  // namespace gromlit::testing
