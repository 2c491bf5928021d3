#include "tests/support/built.h"

#include <filesystem>

// The address sanitizer's runtime has it; without that there is none.
// NOLINTNEXTLINE(clang-diagnostic-reserved-identifier): the runtime's own name for it
extern "C" __attribute__((weak)) void __asan_init();

namespace gromlit::testing {

std::string Built(const std::string& name) {
  const std::filesystem::path program = std::filesystem::read_symlink("/proc/self/exe");
  return program.parent_path().parent_path() / name;
}

bool Sanitized() {
  return __asan_init != nullptr;
}

}  // namespace gromlit::testing
