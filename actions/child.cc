#include "actions/child.h"

#include <signal.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "core/args.h"

namespace gromlit {
namespace {

constexpr int kExecFailed = 255;

// The words of a command line as execvp takes them.
class Words {
 public:
  explicit Words(const char* line) : argv_(static_cast<size_t>(ArgvSlots(line))) {
    count_ = ParseArgs(line, argv_.data());
  }
  ~Words() {
    for (char* word : argv_) std::free(word);
  }
  Words(const Words&) = delete;
  Words& operator=(const Words&) = delete;

  bool empty() const { return count_ == 0; }
  char* const* argv() const { return argv_.data(); }

 private:
  std::vector<char*> argv_;
  int count_;
};

// Every signal blocked for the lifetime of the object: between fork and exec no handler of the
// program may run in the child.
class SignalsHeld {
 public:
  SignalsHeld() {
    sigset_t all;
    sigfillset(&all);
    sigprocmask(SIG_SETMASK, &all, &former_);
  }
  ~SignalsHeld() { sigprocmask(SIG_SETMASK, &former_, nullptr); }
  SignalsHeld(const SignalsHeld&) = delete;
  SignalsHeld& operator=(const SignalsHeld&) = delete;

 private:
  sigset_t former_;
};

// What the program ignores or blocks for itself must not reach programs that it starts: ignored
// signals and the mask outlive exec.
void DefaultSignals() {
  struct sigaction action {};
  action.sa_handler = SIG_DFL;
  // Fails for SIGKILL, SIGSTOP and the two that the C library keeps; they are as they should be.
  for (int signal = 1; signal <= SIGRTMAX; signal++) sigaction(signal, &action, nullptr);
  sigset_t none;
  sigemptyset(&none);
  sigprocmask(SIG_SETMASK, &none, nullptr);
}

// As perror, in one write: lines of several children never run into each other.
void ReportError(const char* prefix, int error) {
  char line[512];
  const int n = std::snprintf(line, sizeof line, "%s: %s\n", prefix, std::strerror(error));
  const auto length = std::min(static_cast<size_t>(n), sizeof line - 1);
  // Nobody could be told that telling failed.
  [[maybe_unused]] const ssize_t written = write(STDERR_FILENO, line, length);
}

}  // namespace

void ReapChildrenSilently() {
  struct sigaction action {};
  // The default action ignores the signal, so no system call of the program is interrupted.
  action.sa_handler = SIG_DFL;
  action.sa_flags = SA_NOCLDWAIT | SA_NOCLDSTOP;
  sigaction(SIGCHLD, &action, nullptr);
}

pid_t StartCommandLine(const char* line, const char* errorprefix) {
  // Split before the fork: the child only makes system calls.
  const Words words(line);
  if (words.empty()) {
    ReportError(errorprefix, ENOENT);
    return -1;
  }
  const SignalsHeld held;
  const pid_t child = fork();
  if (child != 0) return child;
  DefaultSignals();
  execvp(words.argv()[0], words.argv());
  ReportError(errorprefix, errno);
  // Not exit: the program's buffers and exit handlers are the parent's.
  _exit(kExecFailed);
}

std::string ExpandCommand(std::string_view format, std::string_view argument) {
  std::string line;
  line.reserve(format.size() + argument.size());
  bool used = false;
  for (size_t i = 0; i < format.size(); i++) {
    const char next = i + 1 < format.size() ? format[i + 1] : '\0';
    if (format[i] == '%' && next == 's') {
      if (!used) line += argument;
      used = true;
      i++;
    } else if (format[i] == '%' && next == '%') {
      line += '%';
      i++;
    } else {
      line += format[i];
    }
  }
  return line;
}

}  // namespace gromlit
