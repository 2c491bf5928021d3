// A temporary installation directory.
#pragma once

#include <string>

#include "tests/support/files.h"

namespace gromlit::testing {

// Makes an installation directory with empty symbols/, plugins/ and options/ below the system's
// temporary directory, makes GromlitPath point to it, and removes it at the end.
class TempInstall {
 public:
  TempInstall();
  ~TempInstall();
  TempInstall(const TempInstall&) = delete;
  TempInstall& operator=(const TempInstall&) = delete;

  const std::string& path() const { return directory_.path(); }
  // Path of a file below the directory.
  std::string operator/(const std::string& name) const { return directory_ / name; }

 private:
  TempDir directory_;
  const char* former_;
};

}  // namespace gromlit::testing
