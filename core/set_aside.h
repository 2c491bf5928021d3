// Keeping a copy of a file that is about to be overwritten.
#pragma once

#include <string>

namespace gromlit {

// The path in the directory `directory` of the installation directory that a copy of `name` would
// get: the name with "_" for "/", with ".2", ".3", ... behind it where that is in use. Empty with
// errno set when the system does not say whether it is.
std::string FreeCopyPath(const char* directory, const std::string& name);

// Copies the file at `source` to FreeCopyPath(directory, name), with its permission bits; the
// directory is made where it is missing. False with errno set; EFBIG for a file of more than
// kMaxPluginFile bytes. A file that is gone needs no copy.
bool SetAside(const std::string& source, const char* directory, const std::string& name);

}  // namespace gromlit
