// Whole data files, of any kind and from any place, with a report of what is damaged in them.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "core/gromlit.h"

namespace gromlit {

enum class Kind { kSymbol, kPlugin, kOptions };

// A file's contents. Only the record of its kind is in use. Owns the plug-in's actions, with all
// that belongs to them, and the signatures of symbols.
struct DataFile {
  DataFile() = default;
  ~DataFile();
  DataFile(const DataFile&) = delete;
  DataFile& operator=(const DataFile&) = delete;

  Kind kind = Kind::kSymbol;
  GromlitSymbol symbol = {};
  GromlitPlugin plugin = {};
  GromlitUserOptions options = {};
  // Nothing of the record was read in full: the program takes such a file for no file at all.
  bool unusable = false;
  // What was lost in reading, one text each; empty for a sound file.
  std::vector<std::string> damage;
};

// Reads the file at `path`, of the kind that its header says. What a damaged file still holds is
// read, as far as the program itself would read it: counts and strings are cut to their limits, a
// plug-in keeps its complete actions; the missing end of a record reads as zeros. False with the
// reason in *error when nothing can be read: no regular file, or no header of ours.
bool ReadDataFile(const char* path, DataFile* file, std::string* error);

// The bytes of the file that holds these contents. Commands keep all bytes of their texts. Empty
// when a plug-in would exceed kMaxPluginFile.
std::vector<std::byte> FileImage(const DataFile& file);

}  // namespace gromlit
