// Where things are: the user's directories, the starter library, other programs.
#pragma once

#include <string>

namespace gromlit {

// The user's installation directory where nothing else is chosen, as an absolute path: "gromlit"
// below $XDG_DATA_HOME, else below .local/share of the home directory. A relative XDG_DATA_HOME
// does not count. False with the reason in *error when neither is known.
bool FindUsualDirectory(std::string* directory, std::string* error);

// The user's installation directory: `given` where it is neither null nor empty, else $GROMLIT
// likewise, else the usual one. Relative paths start from the working directory.
bool FindDirectory(const char* given, std::string* directory, std::string* error);

// The directory of what is started with the desktop: "autostart" below
// $XDG_CONFIG_HOME, else below .config of the home directory.
bool FindAutostart(std::string* directory, std::string* error);

// Makes a directory with the parents that it lacks, for the user alone. False with errno set.
bool MakeDirectories(const std::string& path);

// The directory of the running program's file; empty when the system does not say.
std::string OwnFolder();

// The packed starter library: beside the program, as a build has it, or where it is installed with
// the program. Empty when it is at neither place.
std::string FindSkeleton();

// The executable file of this name in the absolute folders of PATH; empty when there is none.
std::string FindInPath(const std::string& name);

// The program of this name that belongs to this one: in its folder, else in PATH; empty when there
// is none.
std::string FindCompanion(const std::string& name);

}  // namespace gromlit
