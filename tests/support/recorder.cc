// recorder: stands for a program that Gromlit starts, and writes down how it was started.
//
// Appends one line of JSON to the file that the environment variable RECORDER_FILE names:
//   {"argv":["/path/recorder","a","b"]}
// With RECORDER_STATE set, these keys follow:
//   "ignored":[13]        signals whose disposition is "ignore"
//   "blocked":[10]        signals in the blocked mask
//   "cwd":"/tmp"          working directory
//   "pid":123             its process id
//   "fds":["0 /dev/null"] open descriptors and what they refer to
//
// A line is written with one call to a file opened for appending: lines of several recorders never
// mix. Bytes outside printable ASCII are written as \u00XX.
#include <dirent.h>
#include <fcntl.h>
#include <signal.h>
#include <unistd.h>

#include <algorithm>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

namespace {

std::string Quoted(const std::string& text) {
  std::string quoted = "\"";
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    if (c == '"' || c == '\\') {
      quoted += '\\';
      quoted += c;
    } else if (byte < 0x20 || byte > 0x7e) {
      char escape[8];
      std::snprintf(escape, sizeof escape, "\\u%04x", byte);
      quoted += escape;
    } else {
      quoted += c;
    }
  }
  return quoted + '"';
}

std::string List(const std::vector<std::string>& items) {
  std::string list = "[";
  for (const std::string& item : items) list += (list.size() > 1 ? "," : "") + item;
  return list + "]";
}

std::vector<std::string> IgnoredSignals() {
  std::vector<std::string> signals;
  for (int i = 1; i <= SIGRTMAX; i++) {
    struct sigaction action {};
    if (sigaction(i, nullptr, &action) == 0 && action.sa_handler == SIG_IGN)
      signals.push_back(std::to_string(i));
  }
  return signals;
}

std::vector<std::string> BlockedSignals() {
  sigset_t mask;
  sigprocmask(SIG_BLOCK, nullptr, &mask);
  std::vector<std::string> signals;
  for (int i = 1; i <= SIGRTMAX; i++) {
    if (sigismember(&mask, i) == 1) signals.push_back(std::to_string(i));
  }
  return signals;
}

std::string LinkTarget(const std::string& path) {
  char target[PATH_MAX];
  const ssize_t n = readlink(path.c_str(), target, sizeof target);
  return n < 0 ? "?" : std::string(target, static_cast<size_t>(n));
}

std::vector<std::string> OpenDescriptors() {
  std::vector<int> numbers;
  DIR* directory = opendir("/proc/self/fd");
  if (directory == nullptr) return {};
  while (const dirent* entry = readdir(directory)) {
    if (entry->d_name[0] == '.') continue;
    const int fd = static_cast<int>(std::strtol(entry->d_name, nullptr, 10));
    if (fd != dirfd(directory)) numbers.push_back(fd);
  }
  closedir(directory);
  std::sort(numbers.begin(), numbers.end());
  std::vector<std::string> descriptors;
  for (const int fd : numbers) {
    const std::string number = std::to_string(fd);
    descriptors.push_back(Quoted(number + " " + LinkTarget("/proc/self/fd/" + number)));
  }
  return descriptors;
}

}  // namespace

int main(int argc, char** argv) {
  const char* path = std::getenv("RECORDER_FILE");
  if (path == nullptr) {
    std::fprintf(stderr, "recorder: RECORDER_FILE is not set\n");
    return 2;
  }
  std::vector<std::string> words;
  words.reserve(static_cast<size_t>(argc));
  for (int i = 0; i < argc; i++) words.push_back(Quoted(argv[i]));
  std::string line = "{\"argv\":" + List(words);
  if (std::getenv("RECORDER_STATE") != nullptr) {
    line += ",\"ignored\":" + List(IgnoredSignals());
    line += ",\"blocked\":" + List(BlockedSignals());
    line += ",\"cwd\":" + Quoted(LinkTarget("/proc/self/cwd"));
    line += ",\"pid\":" + std::to_string(getpid());
    line += ",\"fds\":" + List(OpenDescriptors());
  }
  line += "}\n";

  const int fd = open(path, O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0666);
  if (fd < 0 || write(fd, line.data(), line.size()) != static_cast<ssize_t>(line.size())) {
    std::perror("recorder");
    return 1;
  }
  return close(fd) == 0 ? 0 : 1;
}
