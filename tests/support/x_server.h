// A private X server for one test, and a second connection that plays the user.
#pragma once

// Before Xlib, whose macros None, Bool and Status would break it.
#include <gtest/gtest.h>

#include <X11/Xlib.h>
#include <sys/types.h>

#include <chrono>
#include <functional>
#include <string>
#include <vector>

namespace gromlit::testing {

// An Xvfb of its own, found through -displayfd; never an inherited display. DISPLAY names it while
// the object lives. Fails the test when the server does not come up.
class XServer {
 public:
  explicit XServer(const std::string& screen = "1280x1024x24", std::vector<std::string> more = {});
  ~XServer();
  XServer(const XServer&) = delete;
  XServer& operator=(const XServer&) = delete;

  const std::string& name() const { return name_; }  // such as ":7"

 private:
  pid_t pid_ = -1;
  std::string name_;
};

// A program started by a test, killed at the end of its lifetime when it still runs.
class Process {
 public:
  // Starts argv[0] (searched in PATH). Its standard output and error go to `output` when that is
  // not empty. `environment` entries are NAME=value, on top of the test's own. `directory` is the
  // working directory, the test's own when empty.
  explicit Process(std::vector<std::string> argv, const std::string& output = "",
                   const std::vector<std::string>& environment = {},
                   const std::string& directory = "");
  ~Process();
  Process(const Process&) = delete;
  Process& operator=(const Process&) = delete;

  pid_t pid() const { return pid_; }
  bool Running();
  // Waits for the end and returns the exit status (128 + signal when killed); -1 at the deadline.
  int Wait(std::chrono::milliseconds deadline = std::chrono::seconds(20));
  void Kill(int signal);

 private:
  pid_t pid_ = -1;
  int status_ = -1;
};

// Evaluates `done` again and again, with a short pause, until it is true; false at the deadline.
bool WaitFor(const std::function<bool()>& done,
             std::chrono::milliseconds deadline = std::chrono::seconds(10));

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

// The windows right below this one, bottom-most first; none when it is gone.
std::vector<Window> ChildrenOf(Display* display, Window window);

// Saves a picture of the whole screen as PNG, for a person to look at.
void SaveScreen(Display* display, const std::string& path);

}  // namespace gromlit::testing
