// What the system refuses the program while a target wants it to.
#pragma once

namespace gromlit::fuzz {

// As in a directory that nobody may write to: no temporary file is made, so that a save overwrites
// its file in place. For the lifetime of the object.
class TemporariesRefused {
 public:
  explicit TemporariesRefused(bool refused);
  ~TemporariesRefused();
  TemporariesRefused(const TemporariesRefused&) = delete;
  TemporariesRefused& operator=(const TemporariesRefused&) = delete;
};

}  // namespace gromlit::fuzz
