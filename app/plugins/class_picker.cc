#include "app/plugins/class_picker.h"

#include <X11/Xlib.h>
#include <X11/Xutil.h>
#include <X11/keysym.h>
#include <poll.h>

#include <algorithm>

#include "core/strings.h"
#include "display/display.h"
#include "display/end_signals.h"
#include "display/scale.h"
#include "display/shapes.h"
#include "display/target.h"
#include "toolkit/bevel.h"
#include "toolkit/child_window.h"
#include "toolkit/text.h"
#include "toolkit/window_object.h"

namespace gromlit {
namespace {

constexpr long kPointerEvents = ButtonPressMask | ButtonReleaseMask | PointerMotionMask;
constexpr long kPickEvents = kPointerEvents | KeyPressMask;

// How long to wait for the next event before asking whether the grab is still there, milliseconds.
constexpr int kGrabCheck = 250;

// The label that says which application is under the pointer. It lies there, too, and would hide
// the application from the search, so that the pointer goes through it (input shapes, which every
// server has had since version 1.1 of the shape extension; with an older one a click on the label
// picks what it says).
class PickLabel {
 public:
  PickLabel(int x, int y);
  ~PickLabel();
  PickLabel(const PickLabel&) = delete;
  PickLabel& operator=(const PickLabel&) = delete;

  Window window() const { return window_; }
  void MoveTo(int x, int y, const char* text);
  void Draw() const;

 private:
  Window window_;
  GC gc_;
  int width_ = 1;
  int height_;
  const char* text_ = "";
};

PickLabel::PickLabel(int x, int y) : height_(txtCharht + 4) {
  XSetWindowAttributes more{};
  more.override_redirect = True;
  more.save_under = True;
  window_ = MakeChildWindow(root, x, y, width_, height_, lgrey.pixel, ExposureMask,
                            CWOverrideRedirect | CWSaveUnder, more);
  ClaimWindow(window_);
  gc_ = MakeWindowGC(window_, txtFont);
  XSetBackground(dpy, gc_, lgrey.pixel);
  LetPointerThrough(window_);
}

PickLabel::~PickLabel() {
  XFreeGC(dpy, gc_);
  XDestroyWindow(dpy, window_);
  // What the server said about its creation waits in the queue; read after the window is gone it
  // would make a stranger of it.
  XEvent event;
  XCheckIfEvent(
      dpy, &event,
      [](Display*, XEvent* queued, XPointer label) -> int {
        return queued->type == CreateNotify &&
               queued->xcreatewindow.window == *reinterpret_cast<Window*>(label);
      },
      reinterpret_cast<XPointer>(&window_));
  DisclaimWindow(window_);
}

void PickLabel::MoveTo(int x, int y, const char* text) {
  text_ = text;
  width_ = TextWidth(txtFontinfo, text) + 8;
  // Kept on the screen, where it can be read.
  x = std::max(std::min(x, LogicalScreenWidth() - width_), 0);
  y = std::max(std::min(y, LogicalScreenHeight() - height_), 0);
  ScaledMoveResizeWindow(window_, x, y, width_, height_);
  Draw();
}

void PickLabel::Draw() const {
  const int ascent = txtFontinfo != nullptr ? txtFontinfo->ascent : txtCharht;
  XClearWindow(dpy, window_);
  XSetForeground(dpy, gc_, black.pixel);
  DrawText(window_, gc_, 3, ascent + 2, text_);
  if (text_[0] != '\0') XDrawBevel(kRaised, window_, gc_, 0, 0, width_, height_);
}

// Pointer and keyboard, held while the user picks. The keyboard is there for the one key that gives
// up; where another client has it the pick goes on without. All calls carry the current time: an
// event may be older than the grab, and a request with its time would be ignored and leave the
// pointer frozen.
class PickGrab {
 public:
  PickGrab()
      : status_(XGrabPointer(dpy, root, False, ButtonReleaseMask | PointerMotionMask, GrabModeSync,
                             GrabModeAsync, None, targetCursor, CurrentTime)) {
    if (Held()) XGrabKeyboard(dpy, root, False, GrabModeAsync, GrabModeAsync, CurrentTime);
  }
  ~PickGrab() { Release(); }
  PickGrab(const PickGrab&) = delete;
  PickGrab& operator=(const PickGrab&) = delete;

  bool Held() const { return status_ == GrabSuccess; }
  void AllowNext() { XAllowEvents(dpy, SyncPointer, CurrentTime); }
  void Release();

 private:
  int status_;
};

void PickGrab::Release() {
  if (Held()) {
    XUngrabPointer(dpy, CurrentTime);
    XUngrabKeyboard(dpy, CurrentTime);
  }
  status_ = GrabNotViewable;
  XFlush(dpy);
}

class Pick {
 public:
  Pick(int x, int y, std::span<char> cname)
      : cname_(cname), label_(Logical(x), Logical(y)), x_(x), y_(y) {}

  bool Run();

 private:
  bool NextEvent(XEvent* event);
  bool GrabIsGone() const;
  Window Look(Window child, int x, int y);
  void Motion(const XMotionEvent& motion);

  std::span<char> cname_;
  PickLabel label_;  // outlives the grab: without it nothing says that the pick goes on
  PickGrab grab_;
  int x_;  // where the pointer was when the server last told us
  int y_;
  bool looked_ = false;  // child_ was looked at, and its application is app_
  Window child_ = None;  // of the root window, under the pointer
  Window app_ = None;    // application that the label names
};

// The next event of the grab; meanwhile draws what becomes visible. False when the grab is gone: no
// release will come.
bool Pick::NextEvent(XEvent* event) {
  for (;;) {
    EndIfSignalled();
    while (XCheckWindowEvent(dpy, root, kPickEvents, event)) {
      // Anybody may send events to the root window; only the server's count.
      if (event->xany.send_event) continue;
      if (event->type == ButtonPress) {
        // The grab does not report presses: this one belongs to the drawing button's grab, which
        // waits for somebody to handle it.
        XPutBackEvent(dpy, event);
        return false;
      }
      return true;
    }
    if (XCheckMaskEvent(dpy, ExposureMask, event)) {
      if (event->xany.window == label_.window()) {
        label_.Draw();
      } else {
        DispatchEvent(event);
      }
      continue;
    }
    pollfd connection{ConnectionNumber(dpy), POLLIN, 0};
    if (poll(&connection, 1, kGrabCheck) == 0 && GrabIsGone()) return false;
  }
}

// Whether the pointer has moved without our being told.
bool Pick::GrabIsGone() const {
  Window rootwin;
  Window child;
  int x;
  int y;
  int winx;
  int winy;
  unsigned state;
  // On another screen nothing can be told.
  if (!XQueryPointer(dpy, root, &rootwin, &child, &x, &y, &winx, &winy, &state)) return false;
  if (x == x_ && y == y_) return false;
  // With the answer everything has arrived that the server reported before it.
  XEvent event;
  if (!XCheckWindowEvent(dpy, root, kPointerEvents, &event)) return true;
  XPutBackEvent(dpy, &event);
  return false;
}

// The application at a position; its class text, where it has one, goes into cname_.
Window Pick::Look(Window child, int x, int y) {
  const Target found = FindApplication(child, x, y);
  if (found.named) CopyText(cname_, found.cname.data());
  return found.app;
}

void Pick::Motion(const XMotionEvent& motion) {
  x_ = motion.x_root;
  y_ = motion.y_root;
  if (looked_ && motion.subwindow == child_) return;
  const Window found = Look(motion.subwindow, motion.x_root, motion.y_root);
  child_ = motion.subwindow;
  looked_ = found != None;
  if (found == None || found == app_) return;
  app_ = found;
  label_.MoveTo(Logical(motion.x_root), Logical(motion.y_root), cname_.data());
}

bool Pick::Run() {
  if (!grab_.Held()) return false;
  XMapRaised(dpy, label_.window());
  for (;;) {
    grab_.AllowNext();
    XEvent event;
    if (!NextEvent(&event)) return false;
    if (event.type == KeyPress && XLookupKeysym(&event.xkey, 0) == XK_Escape) return false;
    if (event.type == MotionNotify) Motion(event.xmotion);
    // A notch of the wheel picks nothing.
    if (event.type != ButtonRelease || event.xbutton.button > kLastPressingButton) continue;
    grab_.Release();  // before the search, which asks another client's windows
    Look(event.xbutton.subwindow, event.xbutton.x_root, event.xbutton.y_root);
    return true;
  }
}

}  // namespace

bool PickClass(int x, int y, std::span<char> cname) {
  CopyText(cname, "");
  return Pick(x, y, cname).Run();
}

}  // namespace gromlit
