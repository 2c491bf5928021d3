// What would start a program, or wait: recorded, and no time passes.
#include "fuzz/fake_system.h"

#include <poll.h>
#include <stdlib.h>
#include <sys/types.h>
#include <time.h>

#include <cerrno>
#include <chrono>
#include <cstdint>
#include <string>

#include "fuzz/fake_server.h"

namespace gromlit::fuzz {
namespace {

bool temporariesrefused = false;

}  // namespace

TemporariesRefused::TemporariesRefused(bool refused) {
  temporariesrefused = refused;
}

TemporariesRefused::~TemporariesRefused() {
  temporariesrefused = false;
}

}  // namespace gromlit::fuzz

using gromlit::fuzz::Server;
using gromlit::fuzz::temporariesrefused;

extern "C" {

pid_t __wrap_fork() {
  constexpr pid_t kChild = 12345;
  return kChild;
}

int __wrap_poll(pollfd* fds, nfds_t n, int milliseconds) {
  for (nfds_t i = 0; i < n; i++) fds[i].revents = 0;
  if (milliseconds > 0) Server().now += std::chrono::milliseconds(milliseconds);
  return 0;
}

int __wrap_clock_nanosleep(clockid_t, int, const timespec*, timespec*) {
  return 0;
}

int __real_mkostemp(char* name, int flags);
int __wrap_mkostemp(char* name, int flags) {
  if (!temporariesrefused) return __real_mkostemp(name, flags);
  errno = EACCES;
  return -1;
}

// The clock that the program waits by. libFuzzer looks at the time of day, which stays what it is.
int __real_clock_gettime(clockid_t clock, timespec* now);
int __wrap_clock_gettime(clockid_t clock, timespec* now) {
  if (clock != CLOCK_MONOTONIC) return __real_clock_gettime(clock, now);
  const int64_t nanoseconds = Server().now.count();
  *now = {static_cast<time_t>(nanoseconds / 1'000'000'000),
          static_cast<long>(nanoseconds % 1'000'000'000)};
  return 0;
}

// std::chrono::steady_clock::now(), whose result is a number of nanoseconds.
int64_t __wrap__ZNSt6chrono3_V212steady_clock3nowEv() {
  // A clock that stands still would keep a program waiting that looks at it again and again.
  Server().now += std::chrono::microseconds(1);
  return Server().now.count();
}

// gromlit::StartCommandLine(line, errorprefix)
pid_t __real__ZN7gromlit16StartCommandLineEPKcS1_(const char* line, const char* errorprefix);
pid_t __wrap__ZN7gromlit16StartCommandLineEPKcS1_(const char* line, const char* errorprefix) {
  Server().started.emplace_back(line);
  return __real__ZN7gromlit16StartCommandLineEPKcS1_(line, errorprefix);
}

}  // extern "C"
