#include "fuzz/scratch.h"

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>

#include "core/gromlit.h"
#include "fuzz/require.h"

namespace gromlit::fuzz {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view kOutside = "nobody writes here";

// The home of this process: the installation and what lies beside it.
const std::string& Home() {
  static const auto* const home = [] {
    // Whoever starts the targets may clear away what one that was ended has left, and may want the
    // same path every time: it is compared and kept like anything else.
    const char* wanted = std::getenv("GROMLIT_FUZZ_HOME");
    const char* given = std::getenv("GROMLIT_FUZZ_MEMORY");
    const char* memory = given != nullptr ? given : fs::exists("/dev/shm") ? "/dev/shm" : "/tmp";
    auto* made = new std::string(wanted != nullptr ? wanted
                                                   : std::string(memory) + "/gromlit-fuzz-" +
                                                         std::to_string(getpid()));
    fs::remove_all(*made);
    fs::create_directory(*made);
    PutFile(*made + "/outside", kOutside);
    std::atexit([] { fs::remove_all(Home()); });
    return made;
  }();
  return *home;
}

}  // namespace

const std::string& FreshInstallation() {
  static const std::string path = Home() + "/home";
  std::error_code error;
  fs::remove_all(path, error);
  Require(!error);
  for (const char* below : {"", "/symbols", "/plugins", "/options"})
    fs::create_directory(path + below);
  Require(chdir(path.c_str()) == 0);
  GromlitPath = path.c_str();
  return path;
}

void CheckOutside() {
  Require(FileBytes(Home() + "/outside") == kOutside);
  size_t entries = 0;
  for (const auto& entry : fs::directory_iterator(Home())) entries += !entry.path().empty();
  Require(entries == 2);
}

void PutFile(const std::string& path, std::string_view bytes) {
  if (std::FILE* file = std::fopen(path.c_str(), "wb")) {
    std::fwrite(bytes.data(), 1, bytes.size(), file);
    std::fclose(file);
  }
}

std::string FileBytes(const std::string& path) {
  std::string bytes;
  if (std::FILE* file = std::fopen(path.c_str(), "rb")) {
    char block[65536];
    for (size_t n = 0; (n = std::fread(block, 1, sizeof block, file)) > 0;) bytes.append(block, n);
    std::fclose(file);
  }
  return bytes;
}

Files FilesBelow(const std::string& directory) {
  Files files;
  for (const auto& entry : fs::recursive_directory_iterator(directory)) {
    if (fs::is_regular_file(entry.symlink_status()))
      files[entry.path().lexically_relative(directory)] = FileBytes(entry.path());
  }
  return files;
}

}  // namespace gromlit::fuzz
