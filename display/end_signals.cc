#include "display/end_signals.h"

#include <fcntl.h>
#include <signal.h>
#include <unistd.h>

#include <cerrno>

namespace gromlit {
namespace {

// How long the first signal may stay unnoticed, seconds.
constexpr unsigned kGrace = 3;

constexpr int kEndSignals[] = {SIGTERM, SIGINT, SIGHUP};

volatile sig_atomic_t noted = 0;  // the signal, or 0
int descriptors[2] = {-1, -1};    // a pipe to the program itself
void (*giveBack)() = nullptr;

// Leaves with the signal's default action. Only calls that a handler may make.
void EndBy(int number) {
  struct sigaction action {};
  action.sa_handler = SIG_DFL;
  sigaction(number, &action, nullptr);
  sigset_t unblocked;
  sigemptyset(&unblocked);
  sigaddset(&unblocked, number);
  sigprocmask(SIG_UNBLOCK, &unblocked, nullptr);
  kill(getpid(), number);
}

void GraceIsOver(int) {
  EndBy(noted);
}

void Note(int number) {
  if (noted != 0) {
    EndBy(number);
    return;
  }
  const int error = errno;
  noted = number;
  const char byte = 0;
  // The pipe is empty, as this happens once.
  [[maybe_unused]] const ssize_t written = write(descriptors[1], &byte, 1);
  alarm(kGrace);
  errno = error;
}

void Handle(int number, void (*handler)(int)) {
  struct sigaction action {};
  action.sa_handler = handler;
  // Not restarted: a loop that waits gets to look at the note.
  sigaction(number, &action, nullptr);
}

bool IsIgnored(int number) {
  struct sigaction action {};
  return sigaction(number, nullptr, &action) == 0 && action.sa_handler == SIG_IGN;
}

}  // namespace

void CatchEndSignals(void (*giveback)()) {
  giveBack = giveback;
  // Without a pipe the signals keep their default action: a loop could not be woken.
  if (pipe2(descriptors, O_CLOEXEC | O_NONBLOCK) != 0) return;
  Handle(SIGALRM, GraceIsOver);
  for (const int number : kEndSignals) {
    // A program that was told to survive its terminal goes on doing so.
    if (!IsIgnored(number)) Handle(number, Note);
  }
}

void EndIfSignalled() {
  if (noted == 0) return;
  if (giveBack != nullptr) giveBack();
  EndBy(noted);
}

int EndSignalDescriptor() {
  return descriptors[0];
}

}  // namespace gromlit
