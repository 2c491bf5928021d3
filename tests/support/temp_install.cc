#include "tests/support/temp_install.h"

#include <filesystem>

#include "core/gromlit.h"

namespace gromlit::testing {

TempInstall::TempInstall() : former_(GromlitPath) {
  for (const char* name : {"symbols", "plugins", "options"})
    std::filesystem::create_directory(directory_ / name);
  GromlitPath = directory_.path().c_str();
}

TempInstall::~TempInstall() {
  GromlitPath = former_;
}

}  // namespace gromlit::testing
