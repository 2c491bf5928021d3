// What is written to standard output or error meanwhile, by this process and its children.
#pragma once

#include <string>

namespace gromlit::testing {

// Catches what is written to a descriptor while the object lives.
class Captured {
 public:
  explicit Captured(int descriptor);
  ~Captured();
  Captured(const Captured&) = delete;
  Captured& operator=(const Captured&) = delete;

  // What has come so far.
  std::string Text() const;

 private:
  int descriptor_;
  int former_;
  int file_;
};

// The same for tests that begin and end in the middle of a scope. One capture of each at a time.
void CaptureStdout();
std::string GetCapturedStdout();  // and ends the capture
void CaptureStderr();
std::string GetCapturedStderr();

}  // namespace gromlit::testing
