// Reading and saving whole files. All data files are small; everything read is hostile until
// checked, and a save never loses what was there.
#pragma once

#include <sys/types.h>

#include <cerrno>
#include <cstddef>
#include <span>
#include <string>
#include <vector>

namespace gromlit {

// Makes a system call that tells of failure by -1, again as long as a signal interrupts it: on some
// file systems any call on a file may be, and a save is not to fail for a signal.
template <typename Call>
auto Uninterrupted(Call call) {
  auto result = call();
  while (result == -1 && errno == EINTR) result = call();
  return result;
}

// Opens a regular file for reading (O_NONBLOCK, so that a FIFO cannot block the program;
// O_CLOEXEC). Returns the descriptor, or -1 with errno set when it cannot be opened or is not a
// regular file.
int OpenRegular(const char* path);

// Reads up to `limit` bytes of a regular file into out, which is emptied first. Memory grows with
// what is really there, not with a size that somebody claims. False with errno set when it cannot
// be opened or read.
bool ReadFile(const char* path, size_t limit, std::vector<std::byte>* out);

// How a failed save ended: `wrote` is the number of image bytes that were written before a write
// failed, kNoWrite when the save failed at something else.
inline constexpr size_t kNoWrite = static_cast<size_t>(-1);

// Replaces the file at `path` by `image`, or creates it, so that at every moment the path holds the
// whole old or the whole new contents (INV-SAVE-1).
//
// The target is first opened O_RDWR without truncation, so that what may not be written fails as
// it would when written in place. The image goes to a temporary below GromlitPath, outside the data
// directories (they are read without a filter on names); fsync, the old permission bits, rename,
// fsync of the directory. A symbolic link stays a link: the file that it leads to is the target.
//
// Where the target is no regular file, or the temporary cannot be made or renamed (installation
// directory not writable, another file system), the target is written in place. INV-SAVE-1 then
// fails only for a program that is killed half-way; a write that fails still leaves the old
// contents, because what is new is written behind them first.
//
// Returns true; false with errno set, the old contents still there. `wrote` may be null.
bool SaveFile(const char* path, std::span<const std::byte> image, size_t* wrote = nullptr);

// Removes temporaries that an interrupted save left below GromlitPath; those of a save that another
// process is busy with stay.
void RemoveStaleTemporaries();

// Removes the file at `path`, for good: what was reported as removed does not come back when the
// power fails. False with errno set.
bool RemoveFile(const char* path);

// Makes a directory, less the umask, for good; one that is there already will do. What is saved in
// it is as safe as in any other. False with errno set.
bool MakeDirectory(const char* path, mode_t mode = 0777);

// GromlitPath + "/" + directory + "/" + name.
std::string DataPath(const char* directory, const char* name);

}  // namespace gromlit
