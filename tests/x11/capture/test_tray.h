// A system tray of a test's own: a client that owns the selection, takes icons in, and dies when
// the test wants it to. A test includes GoogleTest first.
#pragma once

#include <X11/Xlib.h>
#include <X11/Xutil.h>

#include <algorithm>
#include <array>
#include <string>

#include "display/x_errors.h"
#include "tests/support/x_server.h"

namespace gromlit::testing {

// A tray at the lower right corner, with room for one icon.
class TestTray {
 public:
  static constexpr int kX = 1080;
  static constexpr int kY = 984;
  static constexpr int kIconX = 100;  // of the icon in the tray
  static constexpr int kIconY = 8;

  // `saves`: the icons are put on the root window when it dies; else they go with it. `depth`: of
  // its window.
  explicit TestTray(const std::string& server, bool saves = true, int depth = 24)
      : display_(XOpenDisplay(server.c_str())), saves_(saves) {
    XSetErrorHandler(GromlitXErrorHandler);  // the icon may be gone, too
    XVisualInfo visual{};
    XMatchVisualInfo(display_, DefaultScreen(display_), depth, TrueColor, &visual);
    XSetWindowAttributes attributes{};
    attributes.override_redirect = True;
    attributes.background_pixel = 0x203040;
    attributes.border_pixel = 0;
    attributes.colormap =
        XCreateColormap(display_, DefaultRootWindow(display_), visual.visual, AllocNone);
    window_ = XCreateWindow(
        display_, DefaultRootWindow(display_), kX, kY, 200, 40, 0, depth, InputOutput,
        visual.visual, CWOverrideRedirect | CWBackPixel | CWBorderPixel | CWColormap, &attributes);
    SetClass(display_, window_, "Panel", "panel");
    XMapRaised(display_, window_);
    const Atom selection = XInternAtom(display_, "_NET_SYSTEM_TRAY_S0", False);
    XSetSelectionOwner(display_, selection, window_, CurrentTime);
    Tell(DefaultRootWindow(display_), "MANAGER", StructureNotifyMask,
         {CurrentTime, static_cast<long>(selection), static_cast<long>(window_), 0, 0});
    XSync(display_, False);
  }
  // Dies.
  ~TestTray() {
    XSync(display_, False);
    XCloseDisplay(display_);
  }
  TestTray(const TestTray&) = delete;
  TestTray& operator=(const TestTray&) = delete;

  Display* display() const { return display_; }
  Window window() const { return window_; }
  Window icon() const { return icon_; }
  int asked() const { return asked_; }      // requests to dock
  int buttons() const { return buttons_; }  // button events of the icon's that reached the tray

  // Takes in what was asked for. Whether there is an icon, then.
  bool Serve() {
    XSync(display_, False);
    while (XPending(display_) > 0) {
      XEvent event;
      XNextEvent(display_, &event);
      if (event.type == ButtonPress || event.type == ButtonRelease) buttons_++;
      if (event.type != ClientMessage || event.xclient.data.l[1] != 0) continue;
      if (event.xclient.message_type != XInternAtom(display_, "_NET_SYSTEM_TRAY_OPCODE", False))
        continue;
      asked_++;
      icon_ = static_cast<Window>(event.xclient.data.l[2]);
      if (saves_) XAddToSaveSet(display_, icon_);
      XSelectInput(display_, icon_, PropertyChangeMask | StructureNotifyMask);
      XReparentWindow(display_, icon_, window_, kIconX, kIconY);
      Resize(24, 24);
      XMapWindow(display_, icon_);
      Tell(icon_, "_XEMBED", NoEventMask, {CurrentTime, 0, 0, static_cast<long>(window_), 0});
    }
    XSync(display_, False);
    return icon_ != None;
  }
  void Resize(int width, int height) {
    XResizeWindow(display_, icon_, static_cast<unsigned>(width), static_cast<unsigned>(height));
    XSync(display_, False);
  }
  void Tell(Window to, const char* name, long mask, const std::array<long, 5>& data) {
    XEvent event{};
    event.xclient.type = ClientMessage;
    event.xclient.window = to;
    event.xclient.message_type = XInternAtom(display_, name, False);
    event.xclient.format = 32;
    std::copy(data.begin(), data.end(), event.xclient.data.l);
    XSendEvent(display_, to, False, mask, &event);
    XSync(display_, False);
  }

 private:
  Display* display_;
  bool saves_;
  Window window_;
  Window icon_ = None;
  int asked_ = 0;
  int buttons_ = 0;
};

}  // namespace gromlit::testing
