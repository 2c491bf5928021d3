#include "core/set_aside.h"

#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <vector>

#include "core/files.h"
#include "core/gromlit.h"
#include "core/plugin_image.h"

namespace gromlit {

std::string FreeCopyPath(const char* directory, const std::string& name) {
  std::string plain = name;
  std::replace(plain.begin(), plain.end(), '/', '_');
  std::string copy = DataPath(directory, plain.c_str());
  struct stat taken {};
  for (int n = 2; Uninterrupted([&] { return lstat(copy.c_str(), &taken); }) == 0; n++)
    copy = DataPath(directory, (plain + "." + std::to_string(n)).c_str());
  return errno == ENOENT ? copy : "";
}

bool SetAside(const std::string& source, const char* directory, const std::string& name) {
  std::vector<std::byte> contents;
  struct stat st {};
  if (Uninterrupted([&] { return stat(source.c_str(), &st); }) != 0) return errno == ENOENT;
  // One byte more than allowed tells a file that is too large to be kept whole.
  if (!ReadFile(source.c_str(), kMaxPluginFile + 1, &contents)) return false;
  if (contents.size() > kMaxPluginFile) {
    errno = EFBIG;
    return false;
  }
  const std::string home = std::string(GromlitPath) + "/" + directory;
  if (!MakeDirectory(home.c_str())) return false;
  const std::string copy = FreeCopyPath(directory, name);
  if (copy.empty() || !SaveFile(copy.c_str(), contents)) return false;
  (void)chmod(copy.c_str(), st.st_mode & 0777);  // as private as the original
  return true;
}

}  // namespace gromlit
