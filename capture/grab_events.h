// Reads what happens while the draw button is held.
#pragma once

#include <X11/Xlib.h>

#include <chrono>

#include "capture/quick_hand.h"

namespace gromlit {

// The events of the grab that a press of the draw button has made, in their order and none left
// out. What others are told meanwhile stays in the queue. The requests of whoever draws are sent
// for him from time to time, not with each motion.
class GrabEvents {
 public:
  // Of motion and buttons those are taken that `mask` has, the events of the widened grab.
  GrabEvents(const XButtonEvent& press, long mask);

  // The next event. False when the grab is gone and none will come: a handler that ran before may
  // have released it, and the button may be up already. Ends the program when a signal asks for it.
  bool Next(XEvent* event);

  // Something has been drawn that waits to be sent.
  void NoteDrawn() { unshown_ = true; }

 private:
  struct Position {
    int x;
    int y;
    bool operator==(const Position&) const = default;
  };

  bool TakeQueued(XEvent* event);
  bool GrabIsGone();

  const unsigned button_;
  const long mask_;
  int others_ = 0;        // events in the queue that were somebody else's when it was looked at
  bool come_ = true;      // something has come since then
  bool unshown_ = false;  // requests wait to be sent
  QuickHand::Clock::time_point shown_{};  // when such were sent last
  Position lastroot_;                     // where the pointer was when the server last told us
  QuickHand hand_;
};

}  // namespace gromlit
