#include "toolkit/focus.h"

#include "display/display.h"
#include "display/x_errors.h"

namespace gromlit {
namespace {

// The text field that was given the focus last and has not lost it since; None when there is none.
Window holder = None;

// Who had the focus before the first of the program's fields took it, and what was to become of it
// when that window goes.
Window former = PointerRoot;
int formerrevert = RevertToPointerRoot;

// Keeps every other client, a window manager for instance, from moving the focus between our
// looking at it and our setting it.
class ServerGrab {
 public:
  ServerGrab() { XGrabServer(dpy); }
  ~ServerGrab() {
    XUngrabServer(dpy);
    XFlush(dpy);
  }
  ServerGrab(const ServerGrab&) = delete;
  ServerGrab& operator=(const ServerGrab&) = delete;
};

Window FocusNow(int* revert) {
  Window window = None;
  XGetInputFocus(dpy, &window, revert);
  return window;
}

void GiveBack() {
  if (former != None && former != PointerRoot) {
    // The window may be gone (BadWindow) or hidden (BadMatch).
    ErrorTrap trap;
    XSetInputFocus(dpy, former, formerrevert, CurrentTime);
    if (trap.Finish() == Success) return;
  }
  XSetInputFocus(dpy, PointerRoot, RevertToPointerRoot, CurrentTime);
}

}  // namespace

void TakeFocus(Window window) {
  XWindowAttributes attributes;
  if (XGetWindowAttributes(dpy, window, &attributes) == 0) return;
  if (attributes.map_state != IsViewable) return;  // the server would answer with BadMatch

  int revert = RevertToPointerRoot;
  const Window now = FocusNow(&revert);
  // With nobody while a field is still the holder: that field has just been unmapped, and the news
  // of it is on its way. The window remembered for it is the one to come back.
  const bool ours = holder != None && (now == holder || now == None);
  if (!ours && now != window) {
    former = now;
    formerrevert = revert;
  }
  XSetInputFocus(dpy, window, RevertToNone, CurrentTime);
  holder = window;
}

bool IsFocusMove(const XFocusChangeEvent& event) {
  if (event.send_event != False) return false;
  // A keyboard grab of somebody, which does not move the focus.
  if (event.mode == NotifyGrab || event.mode == NotifyUngrab) return false;
  // Only these say that the focus window itself changed.
  return event.detail == NotifyAncestor || event.detail == NotifyInferior ||
         event.detail == NotifyNonlinear;
}

void FocusLost(const XFocusChangeEvent& event) {
  if (event.window != holder || !IsFocusMove(event)) return;
  const ServerGrab grab;
  int revert;
  const Window now = FocusNow(&revert);
  if (now == holder) return;  // it has come back in the meantime
  holder = None;
  if (now == None) GiveBack();
}

void RestoreFocus() {
  if (holder == None) return;
  const ServerGrab grab;
  int revert;
  const Window now = FocusNow(&revert);
  if (now == holder || now == None) GiveBack();
  holder = None;
}

}  // namespace gromlit
