#include "tests/support/round_trips.h"

#include <poll.h>
#include <sys/syscall.h>
#include <sys/uio.h>
#include <unistd.h>

#include <ctime>

#include "display/display.h"

namespace gromlit::testing {
namespace {

struct Counter {
  const std::function<void(unsigned long)>* at_wait;
  bool sent;  // something, since the last wait
  unsigned long waits;
};

Counter* counter = nullptr;

// Waiting to read alone: while it still has something to send, the connection takes in what comes
// but waits for none of it.
void Look(const pollfd* fds, nfds_t count) {
  if (counter == nullptr || count != 1 || fds->fd != ConnectionNumber(dpy)) return;
  if (fds->events != POLLIN || !counter->sent) return;
  counter->sent = false;
  counter->waits++;
  Counter* counting = counter;
  counter = nullptr;  // what is asked meanwhile does not count
  if (*counting->at_wait) (*counting->at_wait)(counting->waits);
  counter = counting;
}

// Everything that the connection sends goes through here.
void Note(int fd) {
  if (counter != nullptr && fd == ConnectionNumber(dpy)) counter->sent = true;
}

}  // namespace

Trips CountTrips(const std::function<void()>& op,
                 const std::function<void(unsigned long)>& at_wait) {
  XSync(dpy, False);
  const unsigned long first = NextRequest(dpy);
  Counter counting{&at_wait, false, 0};
  counter = &counting;
  op();
  counter = nullptr;
  XFlush(dpy);  // Xlib's count is old where others have used the connection
  return {NextRequest(dpy) - first, counting.waits};
}

}  // namespace gromlit::testing

// Found before the C library's. Under a name of its own, as the header says of the other that it
// reads nothing.
extern "C" int PollAndCount(pollfd* fds, nfds_t count, int timeout) __asm__("poll");

int PollAndCount(pollfd* fds, nfds_t count, int timeout) {
  gromlit::testing::Look(fds, count);
  timespec time{timeout / 1000, timeout % 1000 * 1000000L};
  return static_cast<int>(
      syscall(SYS_ppoll, fds, count, timeout < 0 ? nullptr : &time, nullptr, 0));
}

extern "C" ssize_t writev(int fd, const iovec* parts, int count) {
  gromlit::testing::Note(fd);
  return syscall(SYS_writev, fd, parts, count);
}
