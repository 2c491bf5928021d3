#include "program/remote_call.h"

#include <X11/Xlib-xcb.h>
#include <X11/Xlib.h>
#include <poll.h>
#include <xcb/xcb.h>

#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <optional>

#include "display/display.h"
#include "display/window_manager.h"
#include "display/x_errors.h"

namespace gromlit {
namespace {

using Clock = std::chrono::steady_clock;

// Longer than an action that types a page, or a hand that hesitates in the middle of a stroke.
constexpr auto kPatience = std::chrono::seconds(5);

// The window to send to, whose end will be told; None when no program runs.
Window FindRunning() {
  const Window owner = XGetSelectionOwner(dpy, RemoteSelection());
  if (owner == None) return None;
  ErrorTrap trap;
  XSelectInput(dpy, owner, StructureNotifyMask);
  // It may have gone since. If it goes from now on, that is told.
  return trap.Finish() == Success ? owner : None;
}

struct Outcome {
  bool gone = false;            // the program has ended
  std::optional<long> state{};  // what it answered
};

// What an event says of the call with this id.
Outcome Read(const XEvent& event, Window owner, long id) {
  if (event.xany.window != owner) return {};
  if (event.type == DestroyNotify) {
    return {.gone = event.xdestroywindow.window == owner && event.xany.send_event == False};
  }
  const XClientMessageEvent& answer = event.xclient;
  if (event.type != ClientMessage || answer.message_type != AtomOf(kRemoteMessage) ||
      answer.format != 32 || answer.data.l[0] != id ||
      (answer.data.l[1] != kRemoteRunning && answer.data.l[1] != kRemotePaused)) {
    return {};
  }
  return {.state = answer.data.l[1]};
}

// Neither is set when the program did not answer in time.
Outcome Await(Window owner, long id) {
  const auto end = Clock::now() + kPatience;
  for (;;) {
    while (XPending(dpy) > 0) {
      XEvent event;
      XNextEvent(dpy, &event);
      const Outcome outcome = Read(event, owner, id);
      if (outcome.gone || outcome.state) return outcome;
    }
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(end - Clock::now());
    if (left.count() <= 0) return {};
    pollfd connection{ConnectionNumber(dpy), POLLIN, 0};
    poll(&connection, 1, static_cast<int>(left.count()));
  }
}

int Say(const char* state) {
  if (std::printf("%s\n", state) >= 0 && std::fflush(stdout) == 0) return kRemoteDone;
  std::fprintf(stderr, "the answer was not printed: %s\n", std::strerror(errno));
  return kRemoteNone;
}

int Complain(const char* what) {
  std::fprintf(stderr, "%s on display '%s'\n", what, DisplayString(dpy));
  return kRemoteNone;
}

int Call(RemoteWord word) {
  XSetErrorHandler(GromlitXErrorHandler);
  const Window owner = FindRunning();
  if (owner == None) return Complain("gromlit does not run");
  // A number that no other client of the display gives.
  const long id = xcb_generate_id(XGetXCBConnection(dpy));
  TellWindow(owner, kRemoteMessage, {word, id, 0, 0, 0});
  const Outcome outcome = Await(owner, id);
  if (outcome.gone) return word == kRemoteQuit ? kRemoteDone : Complain("gromlit has just ended");
  if (!outcome.state) return Complain("gromlit runs, but does not answer,");
  if (word == kRemoteStatus) return Say(*outcome.state == kRemotePaused ? "paused" : "running");
  return kRemoteDone;
}

}  // namespace

int CallRunning(const char* display, RemoteWord word) {
  if (!OpenDisplay(display)) {
    std::fprintf(stderr, "unable to open display '%s'\n", XDisplayName(display));
    return kRemoteWrong;
  }
  const int status = Call(word);
  XCloseDisplay(dpy);
  return status;
}

}  // namespace gromlit
