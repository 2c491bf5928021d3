// Programs that a test starts, and waiting for what they do. Uses nothing of a test library: the
// demo has no other.
#pragma once

#include <sys/types.h>

#include <chrono>
#include <functional>
#include <string>
#include <vector>

namespace gromlit::testing {

// Evaluates `done` again and again, with a short pause, until it is true; false at the deadline.
bool WaitFor(const std::function<bool()>& done,
             std::chrono::milliseconds deadline = std::chrono::seconds(10));

struct ProcessStart {
  std::vector<std::string> argv;  // argv[0] is searched in PATH
  std::string input = {};         // file for the standard input; the test's own when empty
  std::string output = {};        // for the standard output, which is appended; the same
  std::string error = {};         // for the standard error; the same
  // NAME=value, on top of the test's own; NAME alone takes a variable away.
  std::vector<std::string> environment = {};
  std::string directory = {};          // working directory; the test's own when empty
  std::function<void()> prepare = {};  // called in the child right before it becomes the program
};

// A program started by a test, killed at the end of its lifetime when it still runs, and by the
// system when the test is killed.
class Process {
 public:
  explicit Process(ProcessStart start);
  // Standard output and error both go to `output` when that is not empty.
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

}  // namespace gromlit::testing
