// A temporary installation directory, and small file helpers for tests.
#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <vector>

namespace gromlit::testing {

// Makes an installation directory with empty symbols/, plugins/ and options/ below the system's
// temporary directory, makes GromlitPath point to it, and removes it at the end.
class TempInstall {
 public:
  TempInstall();
  ~TempInstall();
  TempInstall(const TempInstall&) = delete;
  TempInstall& operator=(const TempInstall&) = delete;

  const std::string& path() const { return path_; }
  // Path of a file below the directory.
  std::string operator/(const std::string& name) const { return path_ + "/" + name; }

 private:
  std::string path_;
  const char* former_;
};

std::vector<std::byte> ReadBytes(const std::string& path);
void WriteBytes(const std::string& path, std::span<const std::byte> bytes);
std::string ReadText(const std::string& path);
void WriteText(const std::string& path, const std::string& text);
bool Exists(const std::string& path);

}  // namespace gromlit::testing
