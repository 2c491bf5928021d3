#include "tests/support/recording.h"

#include <fcntl.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <sstream>
#include <thread>

namespace gromlit::testing {

Recording::Recording(bool state) : file_(directory_ / "record") {
  const char* const path = std::getenv("PATH");
  if (path != nullptr) formerpath_ = path;
  // The recorder is built next to the test programs.
  const std::string here = std::filesystem::read_symlink("/proc/self/exe").parent_path();
  setenv("PATH", (here + ":" + formerpath_).c_str(), 1);
  setenv("RECORDER_FILE", file_.c_str(), 1);
  if (state) setenv("RECORDER_STATE", "1", 1);
}

Recording::~Recording() {
  setenv("PATH", formerpath_.c_str(), 1);
  unsetenv("RECORDER_FILE");
  unsetenv("RECORDER_STATE");
}

std::vector<std::string> Recording::Lines() const {
  std::istringstream text(ReadText(file_));
  std::vector<std::string> lines;
  for (std::string line; std::getline(text, line);) {
    if (text.eof()) break;  // no newline yet
    lines.push_back(line);
  }
  return lines;
}

std::vector<std::string> Recording::Wait(size_t n) const {
  const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(20);
  for (;;) {
    std::vector<std::string> lines = Lines();
    if (lines.size() >= n) return lines;
    if (std::chrono::steady_clock::now() >= end) {
      ADD_FAILURE() << lines.size() << " records instead of " << n;
      lines.resize(n);
      return lines;
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(2));
  }
}

StandardError::StandardError()
    : file_(directory_ / "stderr"), former_(fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, 3)) {
  std::fflush(stderr);
  const int fd = open(file_.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0666);
  dup2(fd, STDERR_FILENO);
  close(fd);
}

StandardError::~StandardError() {
  std::fflush(stderr);
  dup2(former_, STDERR_FILENO);
  close(former_);
}

std::string StandardError::Text() const {
  return ReadText(file_);
}

std::string RecordOf(const std::vector<std::string>& argv) {
  std::string line = "{\"argv\":[";
  for (size_t i = 0; i < argv.size(); i++) {
    if (i > 0) line += ',';
    line += '"';
    for (const char c : argv[i]) {
      if (c == '"' || c == '\\') line += '\\';
      line += c;
    }
    line += '"';
  }
  return line + "]}";
}

}  // namespace gromlit::testing
