// Events that another client sent, where only the server's own count.
#pragma once

namespace gromlit {

// From now on the connection forgets, before they are queued, the events that another client sent
// and that would drive the capture of a stroke or the following of the pointer: buttons and motion
// on the root window, crossings and creations anywhere. Sent events with a meaning stay: close
// requests, selections, and button events on the program's own windows, which is how a click is
// handed on. Forgotten at the door they cost a flood's victim next to nothing; queued, each search
// for the events of a stroke would walk over all of them. REQUIRES: the display is open.
void ForgetSentInput();

// The same for all sent events of `count` types from `first` on. An extension's, 64 to 127: its
// library has to have taken charge of them already. REQUIRES: the display is open.
void ForgetSentEvents(int first, int count);

}  // namespace gromlit
