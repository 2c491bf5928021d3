#include "core/directory_files.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "core/files.h"

namespace gromlit {
namespace {

// Links lead anywhere, and some file systems do not say: what those are shows when they are open.
bool MayBeRegular(unsigned char type) {
  return type == DT_REG || type == DT_LNK || type == DT_UNKNOWN;
}

bool IsRegular(int fd) {
  struct stat st {};
  return Uninterrupted([&] { return fstat(fd, &st); }) == 0 && S_ISREG(st.st_mode);
}

// As much as there is, up to the room; nothing when reading fails.
size_t ReadBeginning(int fd, std::span<std::byte> room) {
  size_t got = 0;
  while (got < room.size()) {
    const ssize_t n = Uninterrupted([&] { return read(fd, room.data() + got, room.size() - got); });
    if (n < 0) return 0;
    if (n == 0) break;
    got += static_cast<size_t>(n);
  }
  return got;
}

}  // namespace

DirectoryFiles::DirectoryFiles(const std::string& path)
    : directory_(opendir(path.c_str()), closedir) {}

const char* DirectoryFiles::Next() {
  if (directory_ == nullptr) return nullptr;
  do {
    entry_ = readdir(directory_.get());
  } while (entry_ != nullptr && !MayBeRegular(entry_->d_type));
  return entry_ != nullptr ? entry_->d_name : nullptr;
}

std::span<const std::byte> DirectoryFiles::Read(std::span<std::byte> room) const {
  const int fd = Uninterrupted([&] {
    return openat(dirfd(directory_.get()), entry_->d_name,
                  O_RDONLY | O_NONBLOCK | O_CLOEXEC | O_NOCTTY);
  });
  if (fd < 0) return {};
  const size_t got = entry_->d_type == DT_REG || IsRegular(fd) ? ReadBeginning(fd, room) : 0;
  close(fd);
  return room.first(got);
}

}  // namespace gromlit
