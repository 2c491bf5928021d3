// Reading and saving whole files. All data files are small; everything read is hostile until
// checked, and a save never loses what was there.
#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <vector>

namespace gromlit {

// Opens a regular file for reading (O_NONBLOCK, so that a FIFO cannot block the program;
// O_CLOEXEC). Returns the descriptor, or -1 with errno set when it cannot be opened or is not a
// regular file.
int OpenRegular(const char* path);

// Reads up to `limit` bytes of a regular file. False with errno set when it cannot be read.
bool ReadFile(const char* path, size_t limit, std::vector<std::byte>* out);

// Replaces the file at `path` by `image`, or creates it, so that at every moment the path holds the
// whole old or the whole new contents.
//
// The target is first opened O_RDWR without truncation, so that what may not be written fails as
// it would when written in place. The image goes to a temporary below GromlitPath, outside the data
// directories (they are read without a filter on names); fsync, the old permission bits, rename,
// fsync of the directory. Where the target is no regular file, or the temporary cannot be made or
// renamed across file systems, it is written in place.
// Returns true; false with errno set, the old contents still there.
bool SaveFile(const char* path, std::span<const std::byte> image);

// Removes temporaries that an interrupted save left below GromlitPath.
void RemoveStaleTemporaries();

// GromlitPath + "/" + directory + "/" + name.
std::string DataPath(const char* directory, const char* name);

}  // namespace gromlit
