// The beginnings of all files of a directory, one after the other. A start waits for this: a file
// takes three system calls and no look-up of the path to the directory.
#pragma once

#include <dirent.h>

#include <cstddef>
#include <memory>
#include <span>
#include <string>

namespace gromlit {

class DirectoryFiles {
 public:
  // Of a directory that cannot be opened there are none.
  explicit DirectoryFiles(const std::string& path);

  // Goes to the next file, in the order of the directory. Its name, which lasts until the next
  // call; null at the end. Directories and what else the listing knows to be no file are passed
  // over.
  const char* Next();

  // Reads the beginning of the file that Next went to, at most as much as there is room for.
  // Nothing when it cannot be opened or read or turns out to be no regular file; what is put in
  // the place of a listed file meanwhile is never waited for.
  std::span<const std::byte> Read(std::span<std::byte> room) const;

 private:
  std::unique_ptr<DIR, int (*)(DIR*)> directory_;
  const dirent* entry_ = nullptr;
};

}  // namespace gromlit
