// What the recorder program (recorder.cc) wrote down, seen from a test.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/support/temp_install.h"

namespace gromlit::testing {

// While the object lives, "recorder" is found by PATH and records into a file of the object's own,
// which starts empty.
class Recording {
 public:
  explicit Recording(bool state = false);
  ~Recording();
  Recording(const Recording&) = delete;
  Recording& operator=(const Recording&) = delete;

  // The lines so far.
  std::vector<std::string> Lines() const;
  // Waits until there are at least n lines and returns them all; fails the test at the deadline.
  std::vector<std::string> Wait(size_t n) const;

 private:
  TempInstall directory_;
  std::string file_;
  std::string formerpath_;
};

// Catches what this process and its children write to standard error while the object lives.
class StandardError {
 public:
  StandardError();
  ~StandardError();
  StandardError(const StandardError&) = delete;
  StandardError& operator=(const StandardError&) = delete;

  std::string Text() const;

 private:
  TempInstall directory_;
  std::string file_;
  int former_;
};

// The line that the recorder writes, without state, for these words (printable ASCII).
std::string RecordOf(const std::vector<std::string>& argv);

}  // namespace gromlit::testing
