// Gromlit: mouse gestures for the X Window System.
//
// The user holds the draw button and draws a stroke over any application. The road of one stroke:
//   event_loop.cc    takes the press from the server and finds the handler of its window
//   gromlit_draw.cc  keeps the pointer while the stroke is drawn, or hands the press on
//   target.cc        finds the application under the pointer and its class
//   plugin_match.cc  reduces the stroke to its signature and finds the action (recognition/)
//   execute.cc       runs the action's commands (actions/)
// Everything else is what these need at start-up (start_up.cc), the files (core/), and the front
// end (app/, drawn with toolkit/).
#include "program/command_line.h"
#include "program/remote_call.h"
#include "program/start_up.h"
#include "toolkit/event_loop.h"

int main(int argc, char** argv) {
  const gromlit::CommandLine line = gromlit::ParseCommandLine(argc, argv);
  gromlit::HoldStandardDescriptors();
  if (line.remote) return gromlit::CallRunning(line.display, *line.remote);
  gromlit::StartUp(line);
  gromlit::EventLoop();
}
