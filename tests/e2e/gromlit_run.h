// Fixture for tests of the built program: a private server, an installation directory, other
// clients, and the user.
//
// Points of synchronisation: the program is ready when it follows the pointer (the last step of its
// start-up); a press has been taken in by a capture when the first motion behind it has moved the
// pointer, which stands still until then, and the application below it is known when the trail is
// there; a stroke is over when its effect is there.
#pragma once

#include <gtest/gtest.h>

#include <X11/keysym.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "core/gromlit.h"
#include "tests/support/built.h"
#include "tests/support/temp_install.h"
#include "tests/support/x_server.h"

namespace gromlit::testing {

struct Point {
  int x;
  int y;
  bool operator==(const Point&) const = default;
};

// What an action of a test's plug-in does.
struct Command {
  CommandType type;
  std::string text;
  int keycode = 0;  // of a HotKey or Menu command
  int keystate = 0;
  int checked = 0;
};

struct Action {
  std::string name;
  std::vector<Point> shape;  // corner points in editor pixels
  std::vector<Command> commands;
};

// Shapes in editor pixels, and strokes in screen pixels that match them when drawn from a point.
inline const std::vector<Point> kRight = {{16, 136}, {264, 136}};
inline const std::vector<Point> kLeft = {{264, 136}, {16, 136}};
inline const std::vector<Point> kDown = {{136, 16}, {136, 264}};
inline const std::vector<Point> kUp = {{136, 264}, {136, 16}};
inline const std::vector<Point> kEll = {{16, 16}, {16, 264}, {264, 264}};

// A configuration of openbox for storms: grabs on every client, which freeze the pointer and
// replay, as by default; but no menus, moves or resizes, in which the window manager itself would
// keep the pointer.
inline constexpr const char* kClickToRaise = R"(<?xml version="1.0" encoding="UTF-8"?>
<openbox_config xmlns="http://openbox.org/3.4/rc"><mouse><context name="Client">
<mousebind button="Left" action="Press"><action name="Focus"/><action name="Raise"/></mousebind>
<mousebind button="Middle" action="Press"><action name="Focus"/><action name="Raise"/></mousebind>
<mousebind button="Right" action="Press"><action name="Focus"/><action name="Raise"/></mousebind>
</context></mouse></openbox_config>
)";

// A probe client (tests/support/probe.cc) and what it wrote down.
class ProbeClient {
 public:
  // Starts the probe with these options; the constructor returns when its window is viewable.
  ProbeClient(const std::string& directory, std::vector<std::string> options);

  Window window() const { return window_; }
  // Lines whose text begins with `start`.
  std::vector<std::string> Lines(const std::string& start = "") const;
  // Waits until there are at least n such lines and returns them; fails the test at the deadline.
  std::vector<std::string> Wait(size_t n, const std::string& start) const;
  Process& process() { return *process_; }

 private:
  std::string output_;
  std::string events_;
  std::unique_ptr<Process> process_;
  Window window_ = 0;
};

inline constexpr KeySym kTwmClose = XK_F7;
inline constexpr KeySym kTwmIconify = XK_F8;

class GromlitRun : public ::testing::Test {
 protected:
  void SetUp() override;
  void TearDown() override;

  // Writes a plug-in of this class into the installation directory; its name is the class unless
  // another one is given. `manners` is its field spare1.
  void WritePlugin(const std::string& classname, const std::vector<Action>& actions,
                   const std::string& appname = "", uint8_t manners = 0);
  // Options for a run without a splash; `change` may alter them.
  void WriteOptions(int button = 3, int sensitivity = 4);

  // Starts a window manager ("openbox", "twm", ...) and waits until it manages the screen. It may
  // be given another configuration than its default; that of twm places windows by itself, moves
  // them by their titles, and has keys, as nobody but its user can close a window: kTwmClose and
  // kTwmIconify act on the window under the pointer.
  void StartWindowManager(const std::string& name = "openbox",
                          const std::string& configuration = "");
  // Starts the window manager again that was started before, without waiting for it.
  void RestartWindowManager();
  // Starts the program; waits until it follows the pointer unless it is not expected to.
  void StartGromlit(bool ready = true, std::vector<std::string> arguments = {});
  bool GromlitIsReady();
  // Waits until the program has done all that it had to do: it answers a question, which it does
  // between two events only, never during a stroke.
  bool Settle();
  long Resident() const;  // memory of the program, kilobytes
  // Where the program stands, for the message of a test that found it in the wrong place: what it
  // waits for in the kernel, its calls where a debugger is installed, and the pointer.
  std::string WhereItStands();
  std::string GromlitOutput() const { return ReadText(*install / "gromlit.log"); }

  // How the hand comes to a point of the screen: with one jump, unless a test has it go as a person
  // does, over all that lies on the way.
  std::function<void(Point to)> move_hand = [this](Point to) { player->MoveTo(to.x, to.y); };
  // Moves the pointer and waits until it is there.
  void Go(Point to);
  // Draws with the draw button through these screen points, in steps of `step` pixels; returns when
  // the program is ready for the next stroke: its trail was there and has gone, action included.
  void Draw(const std::vector<Point>& corners, int button = 3, int step = 8);
  // The same, but returns with the button's release.
  void DrawOnly(const std::vector<Point>& corners, int button = 3, int step = 8);
  void Trace(const std::vector<Point>& corners, int step = 8);
  // Waits until the pointer can be grabbed by another client.
  bool PointerBecomesFree();
  // Override-redirect windows on the screen.
  std::vector<Window> Overlays();
  // Those that cover the screen or show a trail.
  std::vector<Window> MappedOverlays();
  // The main window, found by its class hint.
  Window MainWindow();
  // Takes the main window off the screen and returns it: a click there opens a menu, which keeps
  // the pointer until something is chosen.
  Window HideMainWindow();

  std::string MarkFile(const std::string& name) const { return *install / name; }
  // A Run command that makes the file NAME below the installation directory.
  Command Touch(const std::string& name) const;
  bool Appears(const std::string& name);

  std::unique_ptr<XServer> server;
  std::unique_ptr<TempInstall> install;
  std::unique_ptr<Player> player;
  std::unique_ptr<Process> manager;
  std::string manager_name;  // empty when there is none
  std::string manager_configuration;
  std::unique_ptr<Process> gromlit;
  std::string display_name;  // the program's, where it is not the server itself

 private:
  Window question_ = 0;  // gets the program's answers
  int questions_ = 0;
};

}  // namespace gromlit::testing
