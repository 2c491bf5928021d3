// Questions about many windows of other clients at once.
//
// Xlib waits for each answer before it asks on. Here all questions of a call are sent before the
// first answer is waited for, so that a call waits for the server once however many windows it is
// about. The requests go through XCB, on Xlib's own connection and in order with its requests.
//
// Nothing here is an X error: a window that is gone has no answers. Xlib does not count what goes
// through XCB: UpdateRequestCount brings its count up to date before somebody reads it.
#pragma once

#include <X11/Xlib.h>

#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace gromlit {

// How a window lies and who listens on it.
struct WindowFacts {
  bool alive = false;  // everything below was answered
  bool viewable = false;
  bool managed = false;  // a window manager has left WM_STATE on it
  uint32_t events = 0;   // event mask of all clients together
  int x = 0;             // outer upper left corner in the parent, pixels
  int y = 0;
  int width = 0;  // without the border, pixels
  int height = 0;
  int border = 0;
  std::vector<Window> children;  // bottom-most first
};

// What a window calls itself.
struct WindowName {
  enum Kind {
    kNothing,    // neither class hint nor name
    kClassHint,  // text is the class text: class part, ".", name part
    kPlainName,  // text is the name, which is STRING text
    kOtherName,  // a name of another encoding; no text
  } kind = kNothing;
  std::string text;
  bool cut = false;              // the class hint is longer than what was read of it
  std::vector<Window> children;  // bottom-most first
};

// Where a position of the root window lies in a window.
struct WindowPosition {
  bool known = false;
  int x = 0;  // pixels
  int y = 0;
  Window child = None;  // mapped child that holds it
};

// Answers in the order of the windows. The first window's position is asked along where one is
// given. `managed` is not asked for, and stays false, without the atom.
std::vector<WindowFacts> AskFacts(std::span<const Window> windows, Atom wmstate, int rootx,
                                  int rooty, WindowPosition* first);
std::vector<WindowName> AskNames(std::span<const Window> windows, int rootx, int rooty,
                                 WindowPosition* first);

// The class hint, however long.
WindowName AskWholeName(Window window);

// Brings Xlib's count of requests up to date; sends nothing of its own.
void UpdateRequestCount();

}  // namespace gromlit
