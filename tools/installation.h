// The data files of an installation directory.
#pragma once

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "tools/collection.h"
#include "tools/data_file.h"

namespace gromlit {

// One file; `name` is its path below the installation directory.
struct FoundFile {
  std::string name;
  std::unique_ptr<DataFile> file;
};

struct Installation {
  std::vector<FoundFile> symbols;  // both in byte order of their names
  std::vector<FoundFile> plugins;
  std::unique_ptr<FoundFile> options;  // null where there is none
  // What could not be read, or holds another kind than belongs there: its name, and why.
  std::vector<std::pair<std::string, std::string>> strangers;
};

// Where the options lie below an installation directory.
std::string OptionsName();

// Reads all of it; what is damaged is read as far as the program itself would. A data directory
// that is missing holds nothing. False, with the reason in *error, when a directory cannot be read
// or `dir` is none.
bool ReadInstallation(const std::string& dir, Installation* found, std::string* error);

// Of several files with one key (KeyOf) the one that the program uses: that with the key's own
// name, else the first. Null where there is none.
FoundFile* FileOfKey(std::vector<FoundFile>* files, const std::string& key);

}  // namespace gromlit
