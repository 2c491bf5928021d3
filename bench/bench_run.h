// The built program on an X server of its own, beside an application that is drawn on: what all
// measurements of the whole program share.
//
// Before Xlib, whose macros would break GoogleTest, nothing may be included that needs it.
#pragma once

#include "tests/support/x_server.h"

#include <chrono>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "tests/support/process.h"
#include "tests/support/temp_install.h"
#include "tests/support/x_proxy.h"

namespace gromlit::bench {

using Clock = std::chrono::steady_clock;

double Microseconds(Clock::duration time);
double Median(std::vector<double> values);  // 0 of none
void Pause(std::chrono::microseconds time);

// One figure of the result: a line "name value" on standard output.
void Put(const std::string& name, double value);

// --- What the installation holds
// ------------------------------------------------------------------

// No splash, draw button 3, all else as for a new user.
void WriteOptions();
// A plug-in of this class with the one action that a stroke to the right runs: `texts` commands
// that type `length` letters each; 0: one hot key.
void WritePlugin(const std::string& classname, int texts, int length, bool handsoff = false);
// So many plug-ins of three actions, and so many symbols.
void FillLibrary(int plugins, int symbols);

// --- An application
// -------------------------------------------------------------------------------

// A window of class "Bench.bench" in a frame, as a window manager leaves it, on a connection of its
// own, which gets keys. `levels` windows more between frame and client, `children` windows in it
// and `nested` windows nested at random in it, or each in the one before, all below the place at
// which strokes begin.
class Application {
 public:
  Application(const std::string& display, int levels, int children, int nested = 0,
              bool chain = false);
  ~Application();
  Application(const Application&) = delete;
  Application& operator=(const Application&) = delete;

  // The presses of keys that have come since the last call; waits until there is one or the time is
  // over.
  int TakeKeys(std::chrono::milliseconds deadline);

 private:
  Display* display_;
  Window frame_;
};

// --- The program
// ----------------------------------------------------------------------------------

class BenchRun {
 public:
  BenchRun();
  ~BenchRun();

  // Starts the program on this display, through a proxy or not, and waits until it follows the
  // pointer; exits with a message when it does not come up. Words of $GROMLIT_BENCH_THROUGH go in
  // front of the command.
  void Start(const std::string& display);
  void Stop();

  void MoveTo(int x, int y);
  // Presses the draw button over the application and returns when the pointer moves again.
  void PressAndThaw();
  // Goes on to the right with so many motions, one each `period`.
  void Trace(int motions, std::chrono::microseconds period);
  // Waits until the trail has gone, with which a stroke is over.
  void WaitOver();

  testing::XServer server{"1280x1024x24"};
  testing::TempInstall install;
  testing::Player player{server.name()};
  std::unique_ptr<testing::Process> program;

 private:
  bool TrailIsShown();

  int traced_ = 0;  // motions since the press
};

inline constexpr int kStrokeX = 200;  // where strokes begin
inline constexpr int kStrokeY = 300;

// --- What a process takes
// -------------------------------------------------------------------------

double CpuSeconds(pid_t pid);
unsigned long Wakeups(pid_t pid);    // how often it was scheduled again
unsigned long Writes(pid_t pid);     // system calls that write
double PrivateKilobytes(pid_t pid);  // pages that no other process shares
double ResidentKilobytes(pid_t pid);

// --- What goes over the program's connection
// ------------------------------------------------------

// Counts round trips by request: a request that is sent after an answer has come is one, unless the
// answer came before Mark.
class RequestLog {
 public:
  struct Entry {
    int major;            // opcode
    unsigned long trips;  // since Mark, this one's included
  };
  explicit RequestLog(testing::XProxy* proxy);
  ~RequestLog();
  RequestLog(const RequestLog&) = delete;
  RequestLog& operator=(const RequestLog&) = delete;

  void Mark();
  std::vector<Entry> Entries();
  // The trips of the first such request since Mark; waits for it. -1 when it does not come.
  int TripsBefore(int major);

 private:
  testing::XProxy* proxy_;
  std::mutex lock_;
  std::vector<Entry> entries_;
  unsigned long answers_ = 0;
  unsigned long trips_ = 0;
};

}  // namespace gromlit::bench
