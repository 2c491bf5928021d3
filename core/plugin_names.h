// Which file of the plug-in directory belongs to a plug-in.
//
// A plug-in keeps the file that it was read from, whatever its name; a name is made from the class
// for new ones only. No name that is made here is that of a file of another class, and none leaves
// the directory.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "core/gromlit.h"

namespace gromlit {

inline constexpr const char* pluginDirectory = "plugins";
inline constexpr const char* GromlitPluginFileExt = ".sla";

// Whose plug-in lies under a name of the plug-in directory.
enum class FileOwner { kNone, kThisClass, kOtherClass, kUnknown };

// kNone for no file and for one that is no plug-in; kUnknown with errno set for one that cannot be
// read now, which may be anybody's.
FileOwner OwnerOf(const std::string& name, std::string_view classname);

// The name that a class gives its file: CLASS.sla, a "/" as "_".
std::string OwnFileName(std::string_view classname);

// Of two files of one class: whether `name` counts rather than `other`. The one with the class's
// own name does, else the first in byte order.
bool CountsBefore(std::string_view classname, std::string_view name, std::string_view other);

// A plug-in file that is left alone, neither used nor overwritten nor removed, because another one
// of its class counts.
struct SparePluginFile {
  std::string name;       // below the plug-in directory
  std::string used;       // the one that counts
  std::string classname;  // of both
};

// The spare files that LoadPlugins found, in byte order of the names.
const std::vector<SparePluginFile>& SparePluginFiles();
void KeepSparePluginFiles(std::vector<SparePluginFile> files);

// Path of a file of the plug-in directory.
std::string PluginPath(const std::string& name);

// The name of the file that a save or a removal of pin is about: its own file, unless that belongs
// to another class by now; else the first variation of `fname` (NAME.sla, NAME_2.sla, ...) that
// already is this class's, else the first that is nobody's. Never a spare file (SparePluginFiles).
// Empty with errno set: EEXIST when all belong to others, else why it cannot be told whose a file
// is.
std::string StoredName(const GromlitPlugin& pin, const char* fname);

}  // namespace gromlit
