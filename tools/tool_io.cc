#include "tools/tool_io.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>

namespace gromlit {
namespace {

// More than the document of any plug-in file: an escaped byte of a text takes six characters.
constexpr size_t kMaxTextInput = size_t{512} << 20;

}  // namespace

int Complain(const std::string& name, const std::string& what) {
  std::fprintf(stderr, "gromlit-tool: %s: %s\n", name.c_str(), what.c_str());
  return kTrouble;
}

std::string InputName(const std::string& path) {
  return path == "-" ? "standard input" : path;
}

bool ReadTextInput(const std::string& path, std::string* text, std::string* error) {
  const int fd = path == "-" ? STDIN_FILENO : open(path.c_str(), O_RDONLY | O_CLOEXEC);
  ssize_t n = fd < 0 ? -1 : 1;
  char block[1 << 16];
  while (n > 0 && text->size() <= kMaxTextInput) {
    do n = read(fd, block, sizeof block);
    while (n < 0 && errno == EINTR);
    if (n > 0) text->append(block, static_cast<size_t>(n));
  }
  if (n < 0) *error = std::strerror(errno);
  if (n > 0) *error = "larger than 512 MB";
  if (fd > STDIN_FILENO) close(fd);
  return n == 0;
}

void Write(const std::string& text) {
  std::fwrite(text.data(), 1, text.size(), stdout);
}

int WarnOfDamage(const std::string& path, const DataFile& file) {
  for (const std::string& damage : file.damage) Complain(path, damage);
  return file.damage.empty() ? kSuccess : kTrouble;
}

bool ReadUsable(const std::string& path, Kind kind, const char* what, DataFile* file) {
  std::string error;
  if (!ReadDataFile(path.c_str(), file, &error)) {
    Complain(path, error);
    return false;
  }
  if (file->kind != kind) {
    Complain(path, what);
    return false;
  }
  WarnOfDamage(path, *file);
  return !file->unusable;
}

}  // namespace gromlit
