// Directories in memory for targets that read and write files.
#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <string_view>

namespace gromlit::fuzz {

// The files below a directory by their names, with all that they hold.
using Files = std::map<std::string, std::string>;

// An installation directory of this process, empty: GromlitPath and the working directory lead to
// it. Beside it lies a file that nobody may touch (CheckOutside). The same path for every input.
const std::string& FreshInstallation();

// Ends the run when anything beside the installation directory has changed.
void CheckOutside();

void PutFile(const std::string& path, std::string_view bytes);
std::string FileBytes(const std::string& path);

// All regular files below the directory, links not followed.
Files FilesBelow(const std::string& directory);

}  // namespace gromlit::fuzz
