// Runs a piece of a test in a child process and collects what it prints.
#pragma once

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <exception>
#include <functional>
#include <string>

namespace gromlit::testing {

struct ChildResult {
  int status = -1;  // what the function returned; -1 when it did not end by itself
  std::string out;
  std::string err;
};

// Pipes, not files: limits on file sizes do not reach them. The output must fit into a pipe.
inline ChildResult RunInChild(const std::function<int()>& body) {
  int out[2], err[2];
  ChildResult result;
  if (pipe2(out, O_CLOEXEC) != 0 || pipe2(err, O_CLOEXEC) != 0) return result;
  std::fflush(nullptr);
  const pid_t child = fork();
  if (child == 0) {
    dup2(out[1], STDOUT_FILENO);
    dup2(err[1], STDERR_FILENO);
    int status = -1;
    try {
      status = body();
    } catch (const std::exception& problem) {  // would run the tests on in the child
      std::fprintf(stderr, "%s\n", problem.what());
    }
    std::fflush(nullptr);
    _exit(status);
  }
  close(out[1]);
  close(err[1]);
  int status = 0;
  if (child > 0 && waitpid(child, &status, 0) == child && WIFEXITED(status))
    result.status = WEXITSTATUS(status);
  const auto drain = [](int fd, std::string* text) {
    char buffer[4096];
    for (ssize_t n; (n = read(fd, buffer, sizeof buffer)) > 0;)
      text->append(buffer, static_cast<size_t>(n));
    close(fd);
  };
  drain(out[0], &result.out);
  drain(err[0], &result.err);
  return result;
}

// Permission bits do not bind the superuser: becomes nobody. For use in a child.
inline bool BecomeOrdinaryUser() {
  constexpr unsigned kNobody = 65534;
  if (geteuid() != 0) return true;
  return setresgid(kNobody, kNobody, kNobody) == 0 && setresuid(kNobody, kNobody, kNobody) == 0;
}

// Writes beyond this many bytes of a file fail from now on instead of ending the process.
inline bool LimitFileSize(rlim_t bytes) {
  const rlimit limit{bytes, bytes};
  return std::signal(SIGXFSZ, SIG_IGN) != SIG_ERR && setrlimit(RLIMIT_FSIZE, &limit) == 0;
}

}  // namespace gromlit::testing
