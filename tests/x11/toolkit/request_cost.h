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
// before counting. Of round trips with nothing sent between them only the first counts. REQUIRES:
// the operation reads no events.
template <typename Operation>
Cost CostOf(Operation op) {
  static unsigned long roundtrips;
  static unsigned long seen;
  // When a request that was sent since the last look is known to be processed, something has
  // waited for the server.
  static constexpr auto kLook = [](Display* display) {
    if (LastKnownRequestProcessed(display) >= seen) roundtrips++;
    seen = NextRequest(display);
    return 0;
  };
  XSync(dpy, False);
  const unsigned long first = NextRequest(dpy);
  roundtrips = 0;
  seen = first;
  XSetAfterFunction(dpy, kLook);  // Xlib calls it at the end of most of its functions
  op();
  XSetAfterFunction(dpy, nullptr);
  kLook(dpy);
  return {NextRequest(dpy) - first, roundtrips};
}

}  // namespace gromlit::testing
