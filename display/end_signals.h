// The signals that end the program: what it took from the user is given back first.
//
// A signal can come between any two instructions, in the middle of a request to the server, too.
// The handler therefore only notes it. The event loop and every loop inside a handler look at the
// note and end the program where it can still talk to the server.
#pragma once

namespace gromlit {

// From now on SIGTERM, SIGINT and SIGHUP are noted, but for those that whoever started the program
// wanted ignored. `giveback` is called once, from EndIfSignalled; it may ask the server. A second
// signal ends the program at once, and so does a grace time in which nobody looked at the first: a
// server that does not answer must not keep the program from ending.
void CatchEndSignals(void (*giveback)());

// Ends the program when a signal was noted: gives back, then leaves with the signal's default
// action, so that its parent sees what ended it. Otherwise nothing, at the cost of a look at a
// variable.
void EndIfSignalled();

// A descriptor that becomes readable when a signal has been noted, for loops that wait without a
// limit; -1 before CatchEndSignals. Whoever waits for less than half a second needs none.
int EndSignalDescriptor();

}  // namespace gromlit
