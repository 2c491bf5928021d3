#include "toolkit/pointer_hold.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <iterator>
#include <vector>

#include "display/display.h"

namespace gromlit {
namespace {

// A window held the pointer for what was reported from the request `begin` until before `end`.
struct Hold {
  Window window;
  unsigned long begin;
  unsigned long end;
  Window heir;  // the window that took the pointer and its events over; None: it was given back
};

struct PressedWindow {
  Window window;
  int rootx;  // of the window's inside, on the screen; as all here in device pixels
  int rooty;
};

// A press that waits, and the windows that it is on, the root window first.
struct Waiting {
  Time time;
  unsigned button;
  std::vector<PressedWindow> path;
};

// Who got the press of a button since the pointer was given back last, and gets its release.
struct Receiver {
  bool known;
  PressedWindow spot;  // window None: nobody
};

constexpr size_t kRemembered = 16;  // holds; events of older ones have long been read
constexpr size_t kButtons = 256;    // numbers that the server may give them

Hold holding{};
std::vector<Hold>& Ended() {
  static auto* ended = new std::vector<Hold>;
  return *ended;
}
std::vector<Waiting>& LookedUp() {
  static auto* waiting = new std::vector<Waiting>;
  return *waiting;
}
std::array<Receiver, kButtons> receivers{};

void End(unsigned long serial, Window heir) {
  if (holding.window == None) return;
  std::vector<Hold>& ended = Ended();
  if (ended.size() == kRemembered) ended.erase(ended.begin());
  ended.push_back({holding.window, holding.begin, serial, heir});
  holding = {};
  receivers.fill({});
}

// The hold that has ended under which an event was reported; null for none.
const Hold* EndedHoldOf(const XEvent& event) {
  for (const Hold& hold : Ended()) {
    if (hold.window == event.xany.window && hold.begin <= event.xany.serial &&
        event.xany.serial < hold.end)
      return &hold;
  }
  return nullptr;
}

// Whether the events of a hold that has ended are those of the window that holds the pointer now.
bool IsInherited(const Hold* hold) {
  while (hold != nullptr && hold->heir != None) {
    if (holding.window == hold->heir && holding.begin == hold->end) return true;
    const Hold* next = nullptr;
    for (const Hold& later : Ended())
      if (later.window == hold->heir && later.begin == hold->end) next = &later;
    hold = next;
  }
  return false;
}

// The windows at the place of a press, from the root window to the smallest.
std::vector<PressedWindow> PathTo(const XButtonEvent& press) {
  std::vector<PressedWindow> path;
  Window next = press.root;
  while (next != None) {
    const Window window = next;
    int x = 0;
    int y = 0;
    if (XTranslateCoordinates(dpy, press.root, window, press.x_root, press.y_root, &x, &y, &next) ==
        0)
      break;
    path.push_back({window, press.x_root - x, press.y_root - y});
  }
  return path;
}

void LookUpWaitingPresses() {
  LookedUp().clear();
  std::vector<XButtonEvent> presses;
  const auto look = [](Display*, XEvent* event, XPointer arg) -> Bool {
    if (event->type == ButtonPress && event->xany.send_event == False &&
        event->xany.window == holding.window && event->xany.serial >= holding.begin)
      reinterpret_cast<std::vector<XButtonEvent>*>(arg)->push_back(event->xbutton);
    return False;  // every event stays where it is
  };
  XEvent event;
  XCheckIfEvent(dpy, &event, look, reinterpret_cast<XPointer>(&presses));
  for (const XButtonEvent& press : presses)
    LookedUp().push_back({press.time, press.button, PathTo(press)});
}

std::vector<PressedWindow> WhatIsBelow(const XButtonEvent& press) {
  for (const Waiting& waiting : LookedUp()) {
    if (waiting.time == press.time && waiting.button == press.button) return waiting.path;
  }
  return PathTo(press);
}

// Whether the window is another one than the one that it was reported to, which then stands in it.
// The places of these events lie alike.
bool Readdress(XEvent* event, const PressedWindow& spot) {
  if (spot.window == None) return false;
  XButtonEvent& e = event->xbutton;
  e.window = spot.window;
  e.subwindow = None;
  e.x = e.x_root - spot.rootx;
  e.y = e.y_root - spot.rooty;
  return true;
}

// The button whose press an event follows; 0 for none.
unsigned ButtonOf(const XEvent& event) {
  if (event.type == ButtonRelease) return event.xbutton.button;
  constexpr unsigned kMasks[] = {Button1Mask, Button2Mask, Button3Mask, Button4Mask, Button5Mask};
  for (unsigned i = 0; i < std::size(kMasks); i++) {
    if ((event.xmotion.state & kMasks[i]) != 0 && receivers[i + 1].known) return i + 1;
  }
  return 0;
}

bool Grab(Window window, long events, Window heir) {
  const unsigned long serial = NextRequest(dpy);
  if (XGrabPointer(dpy, window, False, static_cast<unsigned>(events | ButtonPressMask),
                   GrabModeAsync, GrabModeAsync, None, None, CurrentTime) != GrabSuccess)
    return false;
  End(serial, heir);
  holding = {window, serial, 0, None};
  return true;
}

}  // namespace

bool HoldPointer(Window window, long events) {
  return Grab(window, events, None);
}

bool InheritPointer(Window window, long events) {
  return Grab(window, events, window);
}

void GivePointerBack() {
  if (holding.window != None) LookUpWaitingPresses();
  End(NextRequest(dpy), None);
  // Not with the release's time: a release that another client sent could carry any.
  XUngrabPointer(dpy, CurrentTime);
}

bool ReaddressLatePress(XEvent* event, TakesPress takes) {
  if (event->type != ButtonPress && event->type != ButtonRelease && event->type != MotionNotify)
    return true;
  if (event->xany.send_event != False || event->xany.window == root) return true;
  const Hold* ended = EndedHoldOf(*event);
  if (IsInherited(ended)) {
    event->xany.window = holding.window;
    return true;
  }
  if (event->type != ButtonPress) {
    if (ended == nullptr) return true;
    const Receiver& receiver = receivers[ButtonOf(*event) % kButtons];
    return !receiver.known || Readdress(event, receiver.spot);
  }
  const XButtonEvent& press = event->xbutton;
  Receiver* receiver = &receivers[press.button % kButtons];
  *receiver = {true, {press.window, press.x_root - press.x, press.y_root - press.y}};
  if (ended == nullptr) return true;
  receiver->spot.window = None;
  for (const PressedWindow& spot : WhatIsBelow(press)) {
    if (spot.window != press.root && takes(spot.window, press.button)) receiver->spot = spot;
  }
  return Readdress(event, receiver->spot);
}

void ForgetHeldPointers() {
  holding = {};
  Ended().clear();
  LookedUp().clear();
  receivers.fill({});
}

}  // namespace gromlit
