#include "tests/support/process.h"

#include <fcntl.h>
#include <signal.h>
#include <string.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <thread>

namespace gromlit::testing {
namespace {

// In the child: what a descriptor is from now on.
void Redirect(const std::string& path, int flags, int to) {
  if (path.empty()) return;
  const int fd = open(path.c_str(), flags, 0666);
  if (fd < 0 || dup2(fd, to) < 0) _exit(126);
  if (fd != to) close(fd);
}

// In the child: becomes the program, or ends.
[[noreturn]] void Become(ProcessStart& start) {
  Redirect(start.input, O_RDONLY, STDIN_FILENO);
  Redirect(start.output, O_WRONLY | O_CREAT | O_APPEND, STDOUT_FILENO);
  if (start.error == start.output && !start.error.empty()) {
    dup2(STDOUT_FILENO, STDERR_FILENO);
  } else {
    Redirect(start.error, O_WRONLY | O_CREAT | O_APPEND, STDERR_FILENO);
  }
  for (const std::string& entry : start.environment) putenv(strdup(entry.c_str()));
  if (!start.directory.empty() && chdir(start.directory.c_str()) != 0) _exit(126);
  if (start.prepare) start.prepare();
  std::vector<char*> words;
  for (std::string& word : start.argv) words.push_back(word.data());
  words.push_back(nullptr);
  execvp(words[0], words.data());
  _exit(127);
}

}  // namespace

bool WaitFor(const std::function<bool()>& done, std::chrono::milliseconds deadline) {
  const auto end = std::chrono::steady_clock::now() + deadline;
  while (!done()) {
    if (std::chrono::steady_clock::now() >= end) return false;
    std::this_thread::sleep_for(std::chrono::milliseconds(2));
  }
  return true;
}

Process::Process(ProcessStart start) {
  const pid_t parent = getpid();
  pid_ = fork();
  if (pid_ != 0) return;
  // Must not outlive a test that is killed, not even one that was killed just now.
  prctl(PR_SET_PDEATHSIG, SIGKILL);
  if (getppid() != parent) _exit(127);
  Become(start);
}

Process::Process(std::vector<std::string> argv, const std::string& output,
                 const std::vector<std::string>& environment, const std::string& directory)
    : Process(ProcessStart{.argv = std::move(argv),
                           .output = output,
                           .error = output,
                           .environment = environment,
                           .directory = directory}) {}

Process::~Process() {
  if (!Running()) return;
  Kill(SIGKILL);
  Wait();
}

bool Process::Running() {
  if (pid_ <= 0 || status_ != -1) return false;
  int status;
  if (waitpid(pid_, &status, WNOHANG) != pid_) return true;
  status_ = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
  return false;
}

int Process::Wait(std::chrono::milliseconds deadline) {
  WaitFor([this] { return !Running(); }, deadline);
  return status_;
}

void Process::Kill(int signal) {
  kill(pid_, signal);
}

}  // namespace gromlit::testing
