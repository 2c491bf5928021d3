// A window of another client that writes down every key event that it gets.
#pragma once

#include <gtest/gtest.h>

#include <X11/Xlib.h>

#include <ostream>
#include <string>
#include <utility>
#include <vector>

namespace gromlit::testing {

struct KeySeen {
  int type;  // KeyPress or KeyRelease
  unsigned keycode;
  unsigned state;
  int x = 0;
  int y = 0;
  int x_root = 0;
  int y_root = 0;
  bool send_event = true;
  bool same_screen = true;
  Window subwindow = 0;

  bool operator==(const KeySeen&) const = default;
};

inline std::ostream& operator<<(std::ostream& out, const KeySeen& key) {
  return out << (key.type == KeyPress ? "press " : "release ") << key.keycode << " state "
             << key.state << " at " << key.x << "," << key.y << " root " << key.x_root << ","
             << key.y_root << (key.send_event ? " sent" : " real")
             << (key.same_screen ? "" : " other screen") << " subwindow " << key.subwindow;
}

class KeyProbe {
 public:
  KeyProbe(const std::string& display, int x, int y) : display_(XOpenDisplay(display.c_str())) {
    if (display_ == nullptr) {
      ADD_FAILURE() << "cannot open " << display;
      return;
    }
    XSetWindowAttributes attributes{};
    // Placed as asked and viewable at once, whoever manages windows.
    attributes.override_redirect = True;
    attributes.event_mask = KeyPressMask | KeyReleaseMask;
    window_ =
        XCreateWindow(display_, DefaultRootWindow(display_), x, y, 100, 100, 0, CopyFromParent,
                      InputOutput, CopyFromParent, CWOverrideRedirect | CWEventMask, &attributes);
    XMapWindow(display_, window_);
    XSync(display_, False);
  }
  ~KeyProbe() {
    if (display_ != nullptr) XCloseDisplay(display_);
  }
  KeyProbe(const KeyProbe&) = delete;
  KeyProbe& operator=(const KeyProbe&) = delete;

  Display* display() const { return display_; }
  Window window() const { return window_; }

  // Gives the input focus to this window, or to None or PointerRoot.
  void Focus() { FocusOn(window_); }
  void FocusOn(Window window) {
    XSetInputFocus(display_, window, RevertToNone, CurrentTime);
    XSync(display_, False);
  }

  // A child window that listens to nothing, so that events for it travel up to this window.
  Window MakeDeafChild() {
    const Window child = XCreateSimpleWindow(display_, window_, 10, 10, 50, 50, 0, 0, 0);
    XMapWindow(display_, child);
    XSync(display_, False);
    return child;
  }

  // The events since the last call. What the program sent must have reached the server before.
  std::vector<KeySeen> Seen() {
    XSync(display_, False);
    std::vector<KeySeen> seen;
    XEvent event;
    while (XPending(display_) > 0) {
      XNextEvent(display_, &event);
      if (event.type != KeyPress && event.type != KeyRelease) continue;
      const XKeyEvent& key = event.xkey;
      seen.push_back({key.type, key.keycode, key.state, key.x, key.y, key.x_root, key.y_root,
                      key.send_event != 0, key.same_screen != 0, key.subwindow});
      times.push_back(key.time);
    }
    return seen;
  }

  std::vector<Time> times;  // time fields of all events seen so far

 private:
  Display* display_;
  Window window_ = 0;
};

// Press and release of each key, with the positions that `at` holds.
inline std::vector<KeySeen> Strokes(const std::vector<std::pair<unsigned, unsigned>>& keys,
                                    KeySeen at = {}) {
  std::vector<KeySeen> strokes;
  for (const auto& [keycode, state] : keys) {
    at.keycode = keycode;
    at.state = state;
    at.type = KeyPress;
    strokes.push_back(at);
    at.type = KeyRelease;
    strokes.push_back(at);
  }
  return strokes;
}

}  // namespace gromlit::testing
