// What the user does to the keys of the keyboard while the program presses and releases keys by
// XTEST, from the events of the devices themselves.
//
// While another client has frozen the keyboard (a window manager does, with the very key that the
// program presses, until it has decided whose it is) nothing is told, and the server's keys are as
// they were when it froze: the program's modifiers may seem held though their releases have been
// sent. All that follows when it thaws, with the numbers of later requests. So the program's own
// events are known by their device and order, and are expected until they have come.
#pragma once

#include <X11/Xlib.h>

#include <bitset>
#include <deque>
#include <vector>

#include "display/lock_modifiers.h"

namespace gromlit {

using Keys = std::bitset<kKeyCodes>;

// A key that the user has pressed or released.
struct KeyChange {
  int keycode;
  bool press;
};

class UsersKeys {
 public:
  // Asks what the server can, the first time.
  void Prepare();
  // Starts listening.
  void Listen();
  // What happened until the server takes the request of this number is not reported.
  void IgnoreUntil(unsigned long serial) { since_ = serial; }
  void StopListening();
  // Whether the server tells at all.
  bool Known() const { return opcode_ != 0; }
  // Is told of every key that the program has pressed or released with its last request.
  void Own(int keycode, bool press);
  // Keys that the program had released before the last Poll, and the server then not yet: the
  // keyboard is, or was, frozen.
  Keys Late() const;
  // Expects nothing any more if the last Poll has told of a key of the program's.
  void ForgetIfTold() {
    if (told_) own_.clear();
  }
  // Waits for the server, then returns what the user did, in order. One round trip; one more where
  // the program's keys may come from a keyboard that is new.
  std::vector<KeyChange> Poll();

 private:
  using Devices = std::bitset<256>;  // numbers that the server gives to devices

  struct Change {
    unsigned long serial;  // of the request that made it, or the last one before it
    int keycode;
    bool press;
    int device = 0;  // that the key is on
  };
  bool Take(XEvent* event, Change* change) const;
  bool IsOwn(const Change& change);
  bool IsTester(int device) const;
  void FindTesters();
  void Select(bool on) const;

  Display* asked_ = nullptr;
  int opcode_ = 0;
  unsigned long since_ = 0;   // serial number of a request
  unsigned long polled_ = 0;  // the same: what was made before it should have been seen
  Devices testers_;           // keyboards that XTEST moves
  bool looked_ = false;       // for new ones, in this Poll
  std::deque<Change> own_;    // that have not been seen
  bool told_ = false;         // of an own one, by the last Poll
};

}  // namespace gromlit
