// A piece of code in a child that is stopped before and after each of its system calls, so that it
// can be killed, interrupted or lied to at each of them.
//
// Linux's ptrace; calls are changed on x86-64 only. Where there is none, WhyNotTraced() says so and
// the test is to be skipped.
#pragma once

#include <sys/types.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace gromlit::testing {

// The reason why no child can be traced here; empty when one can.
std::string WhyNotTraced();

// A child that stands before or after a system call. What is asked of it happens when the callback
// returns.
class Stop {
 public:
  int index = 0;          // of the call, from 0; the same before and after it
  bool entering = false;  // before the call
  uint64_t number = 0;    // SYS_...
  std::array<uint64_t, 6> arguments = {};
  int64_t result = 0;  // after the call; -errno for a failure

  explicit Stop(pid_t child) : child_(child) {}

  // The call as a person would write it, for the texts of failures.
  std::string Name() const;
  // Whether it works on a descriptor or a path: memory, signals and the clock are none of a save's
  // business, and a sanitizer's. Not what prints: descriptors 1 and 2.
  bool OnFiles() const;
  // Whether it is the call that ends the child.
  bool IsExit() const;
  // The child's memory.
  std::string Text(uint64_t address) const;
  std::vector<std::byte> Bytes(uint64_t address, size_t size) const;
  // The path of the call, or the one that its descriptor leads to; empty without either.
  std::string Path() const;

  void Kill() { kill_ = true; }
  // The child is left alone from here on.
  void LetGo() { let_go_ = true; }
  void Signal(int number_of_signal) { signal_ = number_of_signal; }
  // Before a call: it is not made and fails with this error.
  void Fail(int error) { error_ = error; }
  // Before a call: its third argument, the count of a read or write, is this one.
  void Count(uint64_t count) {
    count_ = count;
    has_count_ = true;
  }

 private:
  friend struct Tracing;
  pid_t child_;
  bool kill_ = false;
  bool let_go_ = false;
  int signal_ = 0;
  int error_ = 0;
  uint64_t count_ = 0;
  bool has_count_ = false;
};

struct Ending {
  enum How { kReturned, kExited, kSignalled, kBroken };
  How how = kBroken;
  int status = 0;       // exit status or signal
  std::string report;   // what the body returned, when it did; cut to 4,000 bytes
  std::string printed;  // on standard output and error
  int calls = 0;        // system calls begun
};

// Forks. The child calls `first`, undisturbed, and then `body`, whose text comes back as the
// report; it ends without destructors and leak checks. A body may also become another program by
// exec. `at_stop` is called in this process. What the child prints is caught.
Ending RunTraced(const std::function<void()>& first, const std::function<std::string()>& body,
                 const std::function<void(Stop&)>& at_stop);

}  // namespace gromlit::testing
