#include "places/places.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <string_view>
#include <system_error>

#include "core/files.h"

namespace gromlit {
namespace {
namespace fs = std::filesystem;

constexpr mode_t kPrivate = 0700;

std::string_view Environment(const char* name) {
  const char* value = std::getenv(name);
  return value == nullptr ? "" : value;
}

bool IsAbsolute(std::string_view path) {
  return path.starts_with('/');
}

// Base directories of the user: a variable, else a folder of the home directory.
bool FindBase(const char* variable, const char* folder, std::string* base, std::string* error) {
  if (const std::string_view set = Environment(variable); IsAbsolute(set)) {
    *base = set;
    return true;
  }
  const std::string_view home = Environment("HOME");
  if (!IsAbsolute(home)) {
    *error = std::string(home.empty() ? "HOME is not set" : "HOME is no absolute path") +
             ", and neither is " + variable;
    return false;
  }
  *base = std::string(home) + "/" + folder;
  return true;
}

bool IsProgram(const std::string& path) {
  std::error_code error;
  return fs::is_regular_file(path, error) && access(path.c_str(), X_OK) == 0;
}

bool IsDirectory(const std::string& path) {
  std::error_code error;
  return fs::is_directory(path, error);
}

}  // namespace

bool FindUsualDirectory(std::string* directory, std::string* error) {
  if (!FindBase("XDG_DATA_HOME", ".local/share", directory, error)) return false;
  *directory += "/gromlit";
  return true;
}

bool FindDirectory(const char* given, std::string* directory, std::string* error) {
  const std::string_view chosen =
      given != nullptr && *given != '\0' ? given : Environment("GROMLIT");
  if (chosen.empty()) return FindUsualDirectory(directory, error);
  if (IsAbsolute(chosen)) {
    *directory = chosen;
    return true;
  }
  std::error_code why;
  const fs::path here = fs::current_path(why);
  if (why) {
    *error = "the working directory is not known: " + why.message();
    return false;
  }
  *directory = (here / chosen).lexically_normal().string();
  return true;
}

bool FindAutostart(std::string* directory, std::string* error) {
  if (!FindBase("XDG_CONFIG_HOME", ".config", directory, error)) return false;
  *directory += "/autostart";
  return true;
}

std::string OwnFolder() {
  std::error_code error;
  const fs::path own = fs::read_symlink("/proc/self/exe", error);
  return error ? "" : own.parent_path().string();
}

std::string FindSkeleton() {
  const std::string folder = OwnFolder();
  if (folder.empty()) return "";
  for (const char* place : {"share", GROMLIT_DATA}) {
    const fs::path found = (fs::path(folder) / place / "gromlit").lexically_normal();
    if (IsDirectory(found / "symbols")) return found;
  }
  return "";
}

std::string FindInPath(const std::string& name) {
  std::string_view folders = Environment("PATH");
  while (!folders.empty()) {
    const std::string_view folder = folders.substr(0, folders.find(':'));
    folders.remove_prefix(folder.size() < folders.size() ? folder.size() + 1 : folder.size());
    if (!IsAbsolute(folder)) continue;
    std::string path = std::string(folder) + "/" + name;
    if (IsProgram(path)) return path;
  }
  return "";
}

std::string FindCompanion(const std::string& name) {
  const std::string beside = OwnFolder() + "/" + name;
  return IsProgram(beside) ? beside : FindInPath(name);
}

bool MakeDirectories(const std::string& path) {
  for (size_t slash = path.find('/', 1);; slash = path.find('/', slash + 1)) {
    const std::string above = path.substr(0, slash);
    if (!MakeDirectory(above.c_str(), kPrivate)) return false;
    if (slash == std::string::npos) break;
  }
  // What was there may be a file.
  struct stat info {};
  if (Uninterrupted([&] { return stat(path.c_str(), &info); }) != 0) return false;
  if (!S_ISDIR(info.st_mode)) errno = ENOTDIR;
  return S_ISDIR(info.st_mode);
}

}  // namespace gromlit
