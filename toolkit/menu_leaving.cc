#include "toolkit/menu_leaving.h"

#include "display/display.h"
#include "toolkit/pointer_hold.h"
#include "toolkit/release_watch.h"
#include "toolkit/window_object.h"

namespace gromlit {
namespace {

// The catcher: it has the pointer until the release. Its window is there for as long as that lasts:
// one that waited for its next turn could be destroyed by another client meanwhile.
struct Catcher {
  WindowObj* wobj;  // of a new window each time: entries cannot be given back
};
Catcher* catcher = nullptr;
bool leaving = false;

void CatchRelease(Catcher*, XEvent*) {
  EndLeaving();
}

Window MakeCatcher() {
  XSetWindowAttributes attributes{};
  attributes.override_redirect = True;
  attributes.event_mask = ButtonReleaseMask;
  // Mapped it can have the pointer, and beyond the edge of the screen nobody meets it.
  const Window window = XCreateWindow(dpy, root, -2, -2, 1, 1, 0, 0, InputOnly, CopyFromParent,
                                      CWOverrideRedirect | CWEventMask, &attributes);
  if (catcher == nullptr) {
    catcher = new Catcher{};
    catcher->wobj = AllocWindowObj(window, catcher);
    On<ButtonRelease, CatchRelease>(catcher);
  }
  catcher->wobj->window = window;
  return window;
}

}  // namespace

bool KeepPointerFromAll() {
  const Window window = MakeCatcher();
  XMapWindow(dpy, window);
  if (!HoldPointer(window, ButtonReleaseMask)) {
    XDestroyWindow(dpy, window);
    return false;
  }
  leaving = true;
  AwaitRelease(EndLeaving);
  return true;
}

bool HandIsLeaving() {
  return leaving;
}

void EndLeaving() {
  if (!leaving) return;
  leaving = false;
  ForgetRelease();
  GivePointerBack();
  XDestroyWindow(dpy, catcher->wobj->window);
}

}  // namespace gromlit
