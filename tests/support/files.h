// Files and directories for tests and the demo. What cannot be made or written throws
// std::system_error, which fails a test.
#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <vector>

namespace gromlit::testing {

// An empty directory below the system's temporary one, removed at the end.
class TempDir {
 public:
  TempDir();
  ~TempDir();
  TempDir(const TempDir&) = delete;
  TempDir& operator=(const TempDir&) = delete;

  const std::string& path() const { return path_; }
  // Path of a file below the directory.
  std::string operator/(const std::string& name) const { return path_ + "/" + name; }

 private:
  std::string path_;
};

// The contents of a file, or nothing when it is not there.
std::vector<std::byte> ReadBytes(const std::string& path);
std::string ReadText(const std::string& path);
void WriteBytes(const std::string& path, std::span<const std::byte> bytes);
void WriteText(const std::string& path, const std::string& text);
bool Exists(const std::string& path);

}  // namespace gromlit::testing
