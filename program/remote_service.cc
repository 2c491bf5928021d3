#include "program/remote_service.h"

#include <X11/Xatom.h>
#include <X11/Xlib.h>

#include <algorithm>
#include <array>

#include "app/main_window/main_menu.h"
#include "app/main_window/main_window.h"
#include "display/display.h"
#include "display/modes.h"
#include "display/pause.h"
#include "display/window_manager.h"
#include "display/x_errors.h"
#include "program/remote_words.h"
#include "toolkit/window_object.h"

namespace gromlit {
namespace {

// Any window id that no window has.
constexpr Window kNoWindow = 1;

// How often the selection is asked for in a row, should its owners come and go meanwhile.
constexpr int kTries = 8;

struct Service {
  WindowObj* wobj;   // of the window that owns the selection; null before the first
  Window window;     // None while another program is the owner
  Time since;        // when it became the owner, server time
  WindowObj* other;  // of the other program's window, to be told of its end; null before the first
};
Service service{};

void Obey(long word) {
  switch (word) {
    case kRemoteShow:
      ShowGromlit();
      break;
    case kRemoteHide:
      HideGromlit();
      break;
    case kRemotePause:
      PauseGestures(true);
      break;
    case kRemoteResume:
      PauseGestures(false);
      break;
    case kRemoteToggle:
      PauseGestures(gesturesPaused == 0);
      break;
    case kRemoteQuit:
      ConfirmExitGromlit(nullptr);
    default:
      break;
  }
}

void Message(Service* s, XEvent* event) {
  const XClientMessageEvent& call = event->xclient;
  // Anybody may send anything. Our own answers do not come here: they go to those who select them.
  if (s->window == None || call.format != 32 || call.message_type != AtomOf(kRemoteMessage) ||
      call.data.l[0] < 0 || call.data.l[0] >= static_cast<long>(kRemoteWords.size())) {
    return;
  }
  Obey(call.data.l[0]);
  XEvent answer{};
  answer.xclient.type = ClientMessage;
  answer.xclient.window = s->window;
  answer.xclient.message_type = call.message_type;
  answer.xclient.format = 32;
  answer.xclient.data.l[0] = call.data.l[1];
  answer.xclient.data.l[1] = gesturesPaused != 0 ? kRemotePaused : kRemoteRunning;
  XSendEvent(dpy, s->window, False, StructureNotifyMask, &answer);
}

// What ICCCM wants of every owner of a selection; false when this is not to be had.
bool Convert(const Service& s, const XSelectionRequestEvent& request, Atom property) {
  const Atom targets = AtomOf("TARGETS");
  const Atom timestamp = AtomOf("TIMESTAMP");
  if (request.target == timestamp) {
    const long since = static_cast<long>(s.since);
    XChangeProperty(dpy, request.requestor, property, XA_INTEGER, 32, PropModeReplace,
                    reinterpret_cast<const unsigned char*>(&since), 1);
    return true;
  }
  if (request.target == targets) {
    const Atom known[] = {targets, timestamp};
    XChangeProperty(dpy, request.requestor, property, XA_ATOM, 32, PropModeReplace,
                    reinterpret_cast<const unsigned char*>(known), 2);
    return true;
  }
  return false;
}

// Whoever asks waits for an answer, also for a refusal.
void Request(Service* s, XEvent* event) {
  const XSelectionRequestEvent& request = event->xselectionrequest;
  if (request.selection != RemoteSelection() || request.requestor == root ||
      IsOwnWindow(request.requestor)) {
    return;
  }
  const Atom property = request.property != None ? request.property : request.target;
  XEvent answer{};
  answer.xselection.type = SelectionNotify;
  answer.xselection.requestor = request.requestor;
  answer.xselection.selection = request.selection;
  answer.xselection.target = request.target;
  answer.xselection.time = request.time;
  answer.xselection.property = Convert(*s, request, property) ? property : None;
  XSendEvent(dpy, request.requestor, False, NoEventMask, &answer);
}

// The server's time, which a manager's claim needs: that of a change of its own window.
void AskForServerTime(Window window) {
  XSelectInput(dpy, window, PropertyChangeMask);
  XChangeProperty(dpy, window, XA_WM_NAME, XA_STRING, 8, PropModeAppend, nullptr, 0);
}
// REQUIRES: the server has answered something that was asked after AskForServerTime. The news has
// come by then, or never will: another client may have destroyed the window, and waiting for it
// without end would keep the draw button grabbed.
Time ServerTime(Window window) {
  XEvent event;
  const bool told = XCheckWindowEvent(dpy, window, PropertyChangeMask, &event) != 0;
  XSelectInput(dpy, window, NoEventMask);
  return told ? event.xproperty.time : CurrentTime;
}

// Tells those who wait for this manager.
void Announce(const Service& s) {
  XEvent event{};
  event.xclient.type = ClientMessage;
  event.xclient.window = root;
  event.xclient.message_type = AtomOf("MANAGER");
  event.xclient.format = 32;
  event.xclient.data.l[0] = static_cast<long>(s.since);
  event.xclient.data.l[1] = static_cast<long>(RemoteSelection());
  event.xclient.data.l[2] = static_cast<long>(s.window);
  XSendEvent(dpy, root, False, StructureNotifyMask, &event);
}

void Acquire(Service* s);

void Lost(Service* s, XEvent* event) {
  const XSelectionClearEvent& clear = event->xselectionclear;
  if (clear.send_event != False || clear.selection != RemoteSelection() ||
      clear.window != s->window) {
    return;
  }
  // The end of the window tells the new owner that it is the only one, and callers that nobody
  // will answer.
  XDestroyWindow(dpy, s->window);
  s->window = None;
  Acquire(s);
}

void OtherEnded(Service* s, XEvent* event) {
  const XDestroyWindowEvent& end = event->xdestroywindow;
  // Another one may be watched by now.
  if (end.send_event != False || end.window != s->other->window) return;
  // The server gives the number to a later client, whose window is none of the program's.
  s->other->window = kNoWindow;
  if (s->window == None) Acquire(s);
}

// The entry for a window, of which there is one after another, in the table that only grows.
WindowObj* EntryFor(WindowObj* entry, Window window, Service* s) {
  if (entry == nullptr) return AllocWindowObj(window, s);
  entry->window = window;
  return entry;
}

// The owner of the selection as of now; with it comes the server's time, of which None as the owner
// is to be known exactly.
Window AskForOwner(Service* s) {
  s->window = XCreateWindow(dpy, root, -1, -1, 1, 1, 0, 0, InputOnly, CopyFromParent, 0, nullptr);
  AskForServerTime(s->window);
  const Window owner = XGetSelectionOwner(dpy, RemoteSelection());
  s->since = ServerTime(s->window);
  if (owner == None) return None;
  XDestroyWindow(dpy, s->window);
  s->window = None;
  return owner;
}

// False when another program was quicker.
bool Become(Service* s) {
  XSetSelectionOwner(dpy, RemoteSelection(), s->window, s->since);
  if (XGetSelectionOwner(dpy, RemoteSelection()) != s->window) {
    XDestroyWindow(dpy, s->window);
    s->window = None;
    return false;
  }
  s->wobj = EntryFor(s->wobj, s->window, s);
  On<ClientMessage, Message>(s);
  On<SelectionRequest, Request>(s);
  On<SelectionClear, Lost>(s);
  Announce(*s);
  return true;
}

// False when that program has ended meanwhile.
bool Watch(Service* s, Window owner) {
  // A window that events are wanted from already, such as the root: its owner plays tricks.
  if (IsOwnWindow(owner)) return true;
  ErrorTrap trap;
  XSelectInput(dpy, owner, StructureNotifyMask);
  if (trap.Finish() != Success) return false;
  s->other = EntryFor(s->other, owner, s);
  SetHandler(s->other, DestroyNotify,
             [](void* obj, XEvent* event) { OtherEnded(static_cast<Service*>(obj), event); });
  return true;
}

void Acquire(Service* s) {
  for (int i = 0; i < kTries; i++) {
    const Window owner = AskForOwner(s);
    if (owner == None ? Become(s) : Watch(s, owner)) return;
  }
}

}  // namespace

void ServeRemote() {
  Acquire(&service);
}

}  // namespace gromlit
