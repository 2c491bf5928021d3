// What the recorder program (recorder.cc) wrote down, seen from a test.
#pragma once

#include <string>
#include <vector>

#include "tests/support/files.h"

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
  TempDir directory_;
  std::string file_;
  std::string formerpath_;
};

// The line that the recorder writes, without state, for these words (printable ASCII).
std::string RecordOf(const std::vector<std::string>& argv);

}  // namespace gromlit::testing
