// A private X server for one test, and a second connection that plays the user. What cannot be had
// throws std::runtime_error, which fails a test. A test includes GoogleTest first: Xlib's macros
// None, Bool and Status break it.
#pragma once

#include <X11/Xlib.h>

#include <memory>
#include <string>
#include <vector>

#include "tests/support/clients.h"
#include "tests/support/picture.h"
#include "tests/support/process.h"

namespace gromlit::testing {

// An Xvfb of its own, found through -displayfd; never an inherited display. DISPLAY names it while
// the object lives.
class XServer {
 public:
  explicit XServer(const std::string& screen = "1280x1024x24", std::vector<std::string> more = {});
  // A Xephyr on the screen of another one, which lives as long: its screen, of a size such as
  // "1280x1024", can be turned.
  XServer(const XServer& host, const std::string& size);
  ~XServer();
  XServer(const XServer&) = delete;
  XServer& operator=(const XServer&) = delete;

  const std::string& name() const { return name_; }  // such as ":7"
  // Sends the server a signal. What it is told to end at ends the clients, too: a connection of the
  // test's own would end the test.
  void Kill(int signal) { process_->Kill(signal); }

 private:
  // The words that tell the server of its -displayfd come behind its name.
  void Start(std::vector<std::string> argv, const std::vector<std::string>& environment = {});

  std::unique_ptr<Process> process_;
  std::string name_;
};

// The user: pointer, buttons and keys injected with XTEST from a connection of its own. Every call
// returns when the server has taken the input in.
class Player {
 public:
  explicit Player(const std::string& display);
  ~Player();
  Player(const Player&) = delete;
  Player& operator=(const Player&) = delete;

  Display* display() const { return display_; }
  Window root() const { return DefaultRootWindow(display_); }

  void MoveTo(int x, int y);
  void Press(int button);
  void Release(int button);
  void Click(int button);
  void KeyDown(KeySym key);
  void KeyUp(KeySym key);
  void Type(KeySym key);

  // Pixel of the screen as 0xrrggbb (24-bit screens).
  unsigned long Pixel(int x, int y);
  // The pointer's position and the buttons and modifiers that are down.
  struct Pointer {
    int x;
    int y;
    unsigned state;
    Window child;
  };
  Pointer Where();
  // Whether another client than the program can grab the pointer now; it is released again.
  bool CanGrabPointer();

 private:
  Display* display_;
};

// Makes the two parts of a window's class hint; together they are the class text by which plug-ins
// are found.
void SetClass(Display* display, Window window, std::string classpart, std::string name);

// The part of this rectangle that lies on the screen, as it is now.
Picture TakeScreen(Display* display, int x, int y, int width, int height);

// Saves a picture of the whole screen as PNG, for a person to look at.
void SaveScreen(Display* display, const std::string& path);

}  // namespace gromlit::testing
