#include "tools/text_input.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

namespace gromlit {
namespace {

constexpr size_t kBlock = size_t{1} << 16;

// Reads what there is, at most one byte beyond the limit and no further than the first block with a
// NUL. False with errno set.
bool ReadUpTo(int fd, size_t limit, std::string* text) {
  char block[kBlock];
  while (text->size() <= limit) {
    ssize_t n = 0;
    do n = read(fd, block, std::min(kBlock, limit + 1 - text->size()));
    while (n < 0 && errno == EINTR);
    if (n < 0) return false;
    if (n == 0) return true;
    const auto got = static_cast<size_t>(n);
    // Left to itself the text would double its room beyond the limit.
    if (text->capacity() < text->size() + got)
      text->reserve(std::min(limit + 1, std::max(2 * text->capacity(), text->size() + got)));
    text->append(block, got);
    if (std::memchr(block, 0, got) != nullptr) return true;
  }
  return true;
}

}  // namespace

bool ReadTextInput(const std::string& path, size_t limit, std::string* text, std::string* error) {
  const bool standard = path == "-";
  const int fd = standard ? STDIN_FILENO : open(path.c_str(), O_RDONLY | O_CLOEXEC);
  const bool good = fd >= 0 && ReadUpTo(fd, limit, text);
  const int reason = errno;
  if (!standard && fd >= 0) close(fd);
  if (!good) {
    *error = std::strerror(reason);
    return false;
  }
  const size_t nul = text->find('\0');
  if (nul != text->npos) {
    const auto line =
        1 + std::count(text->begin(), text->begin() + static_cast<std::ptrdiff_t>(nul), '\n');
    *error = "line " + std::to_string(line) + ": a NUL byte";
    return false;
  }
  if (text->size() > limit) {
    *error = "larger than " + std::to_string(limit >> 20) + " MB";
    return false;
  }
  return true;
}

}  // namespace gromlit
