// The X server that the fuzz targets run against: functions of Xlib and XCB that take the place of
// the real ones at link time, and a world of windows that a target fills.
//
// What is asked is answered as a server would: properties by type, offset and length, each answer
// in a block of its own, so that the address sanitizer sees who reads beyond it. What is drawn or
// sent is counted, after a look at every byte that is handed over. Functions that are not here are
// those of the real library; without a connection they would end the run at once.
#pragma once

#include <X11/Xlib.h>

#include <chrono>
#include <cstdint>
#include <deque>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace gromlit::fuzz {

inline constexpr Window kRoot = 0x100;
inline constexpr int kScreenWidth = 1920;
inline constexpr int kScreenHeight = 1080;

// As it lies on the server: numbers of format 32 are four bytes each.
struct FakeProperty {
  Atom type = None;
  int format = 8;
  std::string bytes;
};

struct FakeWindow {
  Window parent = None;
  std::vector<Window> children;  // bottom to top
  std::map<Atom, FakeProperty> properties;
  int x = 0, y = 0, width = 1, height = 1, border = 0;
  bool mapped = true;
  long allevents = 0;  // that any client selects
  long ownevents = 0;  // that the program selects
  bool own = false;    // made by the program
};

struct FakeServer {
  std::map<Window, FakeWindow> windows;
  std::map<Atom, Window> selections;
  std::deque<XEvent> queue;
  std::map<int, Window> doomed;  // by the number of the question before which the window goes
  int questions = 0;
  Window focus = PointerRoot;
  int pointerx = 0, pointery = 0;
  std::string resources;                                // RESOURCE_MANAGER, for Xrm
  unsigned long drawn = 0;                              // requests that draw
  std::vector<XEvent> sent;                             // by XSendEvent
  std::vector<int> typed;                               // key codes pressed by XTEST
  std::set<unsigned> down;                              // of these, those that are not released yet
  std::vector<std::string> started;                     // command lines
  std::chrono::nanoseconds now{std::chrono::hours(1)};  // of the steady clock; waiting is free
  XErrorHandler handler = nullptr;
};

FakeServer& Server();

// An empty screen, and the program's globals of the display for it. The same windows, atoms and
// contexts for every input.
void ResetServer();

// A window of another client.
Window AddWindow(Window parent, const FakeWindow& window);
void RemoveWindow(Window window);

// The window, or null when it is gone. Counts as a question: those that are doomed go.
FakeWindow* Ask(Window window);
// The same, and tells the error handler of BadWindow.
FakeWindow* Demand(Window window);

// Whether it is mapped, and all that it is in.
bool Viewable(Window window);

// Where the origin of the window, inside its border, is on the root window.
void Origin(Window window, int* x, int* y);

// Thrown where the program would end.
struct Ended {};

// Looks at every byte.
void Touch(const void* bytes, size_t size);

}  // namespace gromlit::fuzz
