#include "tests/support/captured.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <memory>
#include <stdexcept>
#include <system_error>

namespace gromlit::testing {
namespace {

std::unique_ptr<Captured> output;
std::unique_ptr<Captured> error;

void Begin(std::unique_ptr<Captured>& capture, int descriptor) {
  if (capture != nullptr) throw std::logic_error("captured twice at a time");
  capture = std::make_unique<Captured>(descriptor);
}

std::string End(std::unique_ptr<Captured>& capture) {
  if (capture == nullptr) throw std::logic_error("nothing is captured");
  std::string text = capture->Text();
  capture.reset();
  return text;
}

}  // namespace

Captured::Captured(int descriptor)
    : descriptor_(descriptor),
      former_(fcntl(descriptor, F_DUPFD_CLOEXEC, 3)),
      file_(memfd_create("captured", MFD_CLOEXEC)) {
  std::fflush(nullptr);
  // Appended, as several processes may write.
  if (former_ < 0 || file_ < 0 || fcntl(file_, F_SETFL, O_APPEND) != 0 ||
      dup2(file_, descriptor) < 0)
    throw std::system_error(errno, std::generic_category(), "cannot capture an output");
}

Captured::~Captured() {
  std::fflush(nullptr);
  dup2(former_, descriptor_);
  close(former_);
  close(file_);
}

std::string Captured::Text() const {
  std::fflush(nullptr);
  std::string text;
  char buffer[4096];
  for (ssize_t n; (n = pread(file_, buffer, sizeof buffer, static_cast<off_t>(text.size()))) > 0;)
    text.append(buffer, static_cast<size_t>(n));
  return text;
}

void CaptureStdout() {
  Begin(output, STDOUT_FILENO);
}
std::string GetCapturedStdout() {
  return End(output);
}
void CaptureStderr() {
  Begin(error, STDERR_FILENO);
}
std::string GetCapturedStderr() {
  return End(error);
}

}  // namespace gromlit::testing
