#include "tools/output_file.h"

#include <filesystem>

#include "core/files.h"
#include "core/gromlit.h"
#include "core/option_files.h"
#include "core/plugin_files.h"
#include "core/symbol_files.h"

namespace gromlit {
namespace {
namespace fs = std::filesystem;

// Where the temporary of a save to `path` goes: beside it; but beside its directory when that bears
// the name of a data directory.
std::string TemporaryHome(const std::string& path) {
  std::error_code error;
  const fs::path directory = fs::absolute(path, error).lexically_normal().parent_path();
  if (error) return ".";
  const std::string name = directory.filename().string();
  const bool data = name == symbolDirectory || name == pluginDirectory || name == optionDirectory;
  return (data ? directory.parent_path() : directory).string();
}

}  // namespace

bool WriteOutputFile(const std::string& path, std::span<const std::byte> image) {
  const std::string home = TemporaryHome(path);
  const char* former = GromlitPath;
  GromlitPath = home.c_str();
  const bool saved = SaveFile(path.c_str(), image);
  GromlitPath = former;
  return saved;
}

}  // namespace gromlit
