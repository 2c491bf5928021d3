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

constexpr int kMaxLinks = 40;  // followed before the system calls it a loop, too

bool NamedAsData(const fs::path& directory) {
  const std::string name = directory.filename().string();
  return name == symbolDirectory || name == pluginDirectory || name == optionDirectory;
}

// Where the temporary of a save to `path` goes: beside the file that it leads to; but above every
// directory that bears the name of a data directory, or that a path through such a name leads to,
// at any step of a chain of symbolic links.
std::string TemporaryHome(const std::string& path) {
  std::error_code error;
  fs::path target = fs::absolute(path, error);
  bool data = false;
  for (int i = 0; i < kMaxLinks && !error; i++) {
    data = data || NamedAsData(target.lexically_normal().parent_path());
    const fs::path next = fs::read_symlink(target, error);
    if (error) break;  // no link, or nothing there yet
    target = target.parent_path() / next;
  }
  const fs::path directory = fs::canonical(target.parent_path(), error);
  if (error) return ".";
  fs::path home = directory;
  if (data || NamedAsData(home)) home = home.parent_path();
  while (NamedAsData(home) && home.has_relative_path()) home = home.parent_path();
  return home.string();
}

}  // namespace

bool WriteOutputFile(const std::string& path, std::span<const std::byte> image) {
  const std::string home = TemporaryHome(path);
  const char* former = GromlitPath;
  GromlitPath = home.c_str();
  // Those of a run that was killed: nobody else looks for them here.
  RemoveStaleTemporaries();
  const bool saved = SaveFile(path.c_str(), image);
  GromlitPath = former;
  return saved;
}

}  // namespace gromlit
