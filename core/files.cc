#include "core/files.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string_view>

#include "core/gromlit.h"

namespace gromlit {
namespace {

// Temporaries are told from everything else by this beginning and six further characters.
constexpr std::string_view kTemporaryPrefix = ".gromlit-save-";
constexpr std::string_view kTemporaryPattern = "XXXXXX";

constexpr mode_t kPermissionBits = 07777;
constexpr int kMaxLinks = 40;  // links followed before the system calls it a loop, too

// Owns a descriptor; closing keeps errno, so that the reason of a failure survives it.
class Descriptor {
 public:
  explicit Descriptor(int fd) : fd_(fd) {}
  ~Descriptor() {
    if (fd_ < 0) return;
    const int saved = errno;
    close(fd_);
    errno = saved;
  }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  int get() const { return fd_; }
  bool ok() const { return fd_ >= 0; }

 private:
  int fd_;
};

void UnlinkKeepingErrno(const char* path) {
  const int saved = errno;
  unlink(path);
  errno = saved;
}

// Writes bytes at `offset` (-1: at the file position, for what cannot seek). False with errno set;
// *done is what was written.
bool WriteAll(int fd, std::span<const std::byte> bytes, off_t offset, size_t* done) {
  *done = 0;
  while (*done < bytes.size()) {
    const std::byte* from = bytes.data() + *done;
    const size_t left = bytes.size() - *done;
    const ssize_t n = offset < 0 ? write(fd, from, left)
                                 : pwrite(fd, from, left, offset + static_cast<off_t>(*done));
    if (n < 0 && errno == EINTR) continue;
    if (n == 0) errno = ENOSPC;
    if (n <= 0) return false;
    *done += static_cast<size_t>(n);
  }
  return true;
}

// EINVAL: this kind of file cannot be synchronised, which is no reason to call the save failed.
bool Sync(int fd) {
  return Uninterrupted([&] { return fsync(fd); }) == 0 || errno == EINVAL || errno == EROFS;
}

int Open(const char* path, int flags, mode_t mode = 0) {
  return Uninterrupted([&] { return open(path, flags, mode); });
}

bool Stat(int fd, struct stat* st) {
  return Uninterrupted([&] { return fstat(fd, st); }) == 0;
}

bool Cut(int fd, size_t size) {
  return Uninterrupted([&] { return ftruncate(fd, static_cast<off_t>(size)); }) == 0;
}

std::string ParentOf(const std::string& path) {
  const size_t slash = path.rfind('/');
  if (slash == std::string::npos) return ".";
  return slash == 0 ? "/" : path.substr(0, slash);
}

// Makes what happened to the names in the directory of `path` certain. Nothing is left to do where
// that fails: it has happened.
void SyncParentOf(const std::string& path) {
  const Descriptor directory(Open(ParentOf(path).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (directory.ok()) (void)Sync(directory.get());
}

// Leads *path to where a chain of symbolic links ends, existing or not. The open that came before
// has already refused loops. False with errno set when that cannot be told: the link itself would
// be replaced.
bool FollowLinks(std::string* path) {
  for (int i = 0; i < kMaxLinks; i++) {
    char target[PATH_MAX] = {};
    const ssize_t n = Uninterrupted([&] { return readlink(path->c_str(), target, sizeof target); });
    if (n < 0) return errno == EINVAL || errno == ENOENT;  // no link, or nothing there
    // A relative target starts from the directory of its link.
    std::string next = target[0] == '/' ? "" : ParentOf(*path) + "/";
    next.append(target, static_cast<size_t>(n));
    *path = next;
  }
  return true;
}

// Overwrites an open regular file without ever giving up its old contents before the new ones are
// safe from a full disk or a size limit: first the part beyond the old end, which is the part that
// needs room, then the rest, then the cut.
bool OverwriteRegular(int fd, std::span<const std::byte> image, size_t old_size, size_t* wrote) {
  std::vector<std::byte> old(std::min(old_size, image.size()));
  for (size_t got = 0; got < old.size();) {
    const ssize_t n = pread(fd, old.data() + got, old.size() - got, static_cast<off_t>(got));
    if (n < 0 && errno == EINTR) continue;
    if (n < 0) return false;
    if (n == 0) old.resize(got);
    got += static_cast<size_t>(n);
  }
  const std::span<const std::byte> head = image.first(old.size());
  const std::span<const std::byte> tail = image.subspan(old.size());
  size_t done = 0;
  bool head_touched = false;
  bool good = WriteAll(fd, tail, static_cast<off_t>(old.size()), &done);
  if (!good) {
    *wrote = head.size() + done;
  } else {
    head_touched = true;
    good = WriteAll(fd, head, 0, &done);
    if (!good) *wrote = done;
  }
  good = good && Sync(fd);
  if (good && image.size() < old_size) good = Cut(fd, image.size());
  if (good) return true;

  const int saved = errno;
  size_t ignored = 0;
  if (head_touched) (void)WriteAll(fd, old, 0, &ignored);
  if (image.size() > old_size && !Cut(fd, old_size)) {
    // Nothing better is left to try; the save is reported as failed either way.
  }
  errno = saved;
  return false;
}

constexpr int kTargetFlags = O_CLOEXEC | O_NONBLOCK | O_NOCTTY;

bool WriteNew(const char* path, std::span<const std::byte> image, size_t* wrote) {
  const Descriptor fresh(Open(path, O_RDWR | O_CREAT | O_EXCL | kTargetFlags, 0666));
  if (!fresh.ok()) return false;
  bool good = WriteAll(fresh.get(), image, 0, wrote);
  if (good) {
    *wrote = kNoWrite;
    good = Sync(fresh.get());
  }
  if (!good) UnlinkKeepingErrno(path);
  return good;
}

bool WriteInPlace(const char* path, std::span<const std::byte> image, size_t* wrote) {
  {
    const Descriptor existing(Open(path, O_RDWR | kTargetFlags));
    if (!existing.ok()) return errno == ENOENT && WriteNew(path, image, wrote);
    struct stat st {};
    if (!Stat(existing.get(), &st)) return false;
    if (S_ISREG(st.st_mode))
      return OverwriteRegular(existing.get(), image, static_cast<size_t>(st.st_size), wrote);
  }
  // Opened for writing alone, a FIFO that nobody reads is refused instead of swallowing the data.
  const Descriptor special(Open(path, O_WRONLY | kTargetFlags));
  return special.ok() && WriteAll(special.get(), image, -1, wrote);
}

enum class Replaced { kYes, kFailed, kImpossible };

// The road of every ordinary save. `old` is null when there is no old file. kImpossible: no
// temporary could be made or moved into place, nothing has happened.
Replaced ReplaceByRename(const std::string& target, std::span<const std::byte> image,
                         const struct stat* old, size_t* wrote) {
  std::string name;
  const Descriptor temporary(Uninterrupted([&] {
    name = std::string(GromlitPath) + "/" + std::string(kTemporaryPrefix) +
           std::string(kTemporaryPattern);
    return mkostemp(name.data(), O_CLOEXEC);
  }));
  if (!temporary.ok()) return Replaced::kImpossible;
  const int fd = temporary.get();
  // Held until the descriptor closes: tells RemoveStaleTemporaries of another process to keep off.
  (void)Uninterrupted([&] { return flock(fd, LOCK_EX | LOCK_NB); });
  if (!WriteAll(fd, image, 0, wrote)) {
    UnlinkKeepingErrno(name.c_str());
    return Replaced::kFailed;
  }
  *wrote = kNoWrite;
  mode_t mode = 0;
  if (old != nullptr) {
    // Ownership is kept where the system allows it, before the bits, because changing it may clear
    // some of them.
    const auto own = [&](uid_t user) {
      return Uninterrupted([&] { return fchown(fd, user, old->st_gid); }) == 0;
    };
    if (!own(old->st_uid) && !own(static_cast<uid_t>(-1))) {
      // The file becomes the saving user's own.
    }
    mode = old->st_mode & kPermissionBits;
  } else {
    const mode_t mask = umask(0);
    umask(mask);
    mode = 0666 & ~mask;
  }
  if (Uninterrupted([&] { return fchmod(fd, mode); }) != 0) {
    UnlinkKeepingErrno(name.c_str());
    return Replaced::kImpossible;
  }
  if (!Sync(fd)) {
    UnlinkKeepingErrno(name.c_str());
    return Replaced::kFailed;
  }
  if (Uninterrupted([&] { return rename(name.c_str(), target.c_str()); }) != 0) {
    UnlinkKeepingErrno(name.c_str());
    return Replaced::kImpossible;
  }
  SyncParentOf(target);
  return Replaced::kYes;
}

}  // namespace

int OpenRegular(const char* path) {
  const int fd = Open(path, O_RDONLY | O_NONBLOCK | O_CLOEXEC | O_NOCTTY);
  if (fd < 0) return -1;
  struct stat st {};
  int why = 0;
  if (!Stat(fd, &st))
    why = errno;
  else if (S_ISDIR(st.st_mode))
    why = EISDIR;
  else if (!S_ISREG(st.st_mode))
    why = EINVAL;
  if (why == 0) return fd;
  close(fd);
  errno = why;
  return -1;
}

bool ReadFile(const char* path, size_t limit, std::vector<std::byte>* out) {
  out->clear();
  const Descriptor file(OpenRegular(path));
  if (!file.ok()) return false;
  // Room for what is expected, where more than a step may be; a file that is larger than it says is
  // read in further steps.
  constexpr size_t kStep = 4096;
  struct stat st {};
  if (limit > kStep && !Stat(file.get(), &st)) return false;
  size_t room = std::min(limit, std::max(static_cast<size_t>(st.st_size), kStep));
  size_t got = 0;
  while (got < limit) {
    if (out->size() == got) out->resize(std::min(limit, got + room));
    const ssize_t n = read(file.get(), out->data() + got, out->size() - got);
    if (n < 0 && errno == EINTR) continue;
    if (n < 0) {
      out->clear();
      return false;
    }
    if (n == 0) break;
    got += static_cast<size_t>(n);
    room = std::max(kStep, got);
  }
  out->resize(got);
  return true;
}

bool SaveFile(const char* path, std::span<const std::byte> image, size_t* wrote) {
  size_t unused = 0;
  if (wrote == nullptr) wrote = &unused;
  *wrote = kNoWrite;
  struct stat old {};
  bool exists = false;
  {
    const Descriptor probe(Open(path, O_RDWR | kTargetFlags));
    if (probe.ok()) {
      if (!Stat(probe.get(), &old)) return false;
      exists = true;
    } else if (errno != ENOENT) {
      return false;
    }
  }
  if (exists && !S_ISREG(old.st_mode)) return WriteInPlace(path, image, wrote);
  std::string target = path;
  if (!FollowLinks(&target)) return false;
  switch (ReplaceByRename(target, image, exists ? &old : nullptr, wrote)) {
    case Replaced::kYes:
      return true;
    case Replaced::kFailed:
      return false;
    case Replaced::kImpossible:
      break;
  }
  return WriteInPlace(target.c_str(), image, wrote);
}

void RemoveStaleTemporaries() {
  const std::unique_ptr<DIR, int (*)(DIR*)> directory(opendir(GromlitPath), closedir);
  if (directory == nullptr) return;
  const int base = dirfd(directory.get());
  while (const dirent* entry = readdir(directory.get())) {
    const std::string_view name = entry->d_name;
    if (!name.starts_with(kTemporaryPrefix)) continue;
    if (name.size() != kTemporaryPrefix.size() + kTemporaryPattern.size()) continue;
    struct stat st {};
    if (fstatat(base, entry->d_name, &st, AT_SYMLINK_NOFOLLOW) != 0 || !S_ISREG(st.st_mode))
      continue;
    const Descriptor file(
        openat(base, entry->d_name, O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    if (file.ok() && flock(file.get(), LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK) continue;
    unlinkat(base, entry->d_name, 0);
  }
}

bool RemoveFile(const char* path) {
  if (Uninterrupted([&] { return unlink(path); }) != 0) return false;
  SyncParentOf(path);
  return true;
}

bool MakeDirectory(const char* path, mode_t mode) {
  if (Uninterrupted([&] { return mkdir(path, mode); }) != 0) return errno == EEXIST;
  SyncParentOf(path);
  return true;
}

std::string DataPath(const char* directory, const char* name) {
  return std::string(GromlitPath) + "/" + directory + "/" + name;
}

}  // namespace gromlit
