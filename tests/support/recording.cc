#include "tests/support/recording.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <sstream>

#include "tests/support/process.h"

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
  std::vector<std::string> lines;
  const bool enough =
      WaitFor([&] { return (lines = Lines()).size() >= n; }, std::chrono::seconds(20));
  EXPECT_TRUE(enough) << lines.size() << " records instead of " << n;
  if (!enough) lines.resize(n);
  return lines;
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
