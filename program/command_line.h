// The command line, and where the installation directory is.
#pragma once

#include <optional>

#include "program/remote_words.h"

namespace gromlit {

inline constexpr const char* defaultGromlitPath = ".";

extern const char* ProgramName;  // argv[0]

struct CommandLine {
  const char* display;               // value of -display, or null
  const char* path;                  // value of -path, or null
  std::optional<RemoteWord> remote;  // what the program that runs already is to do; none: run
  int scale;                         // value of -scale, 1 or 2; 0 where it was not given
  int argc;                          // all of it, as it was given
  char** argv;
};

// Prints how to call the program on standard error and exits with status 1.
[[noreturn]] void usage();

// Reads the arguments. Taken as whole words first: -h, -help, --help and --version, which print on
// standard output and exit with status 0, and -remote, which takes the next argument; where that is
// none of its words it says so and exits with status 2; and -scale, which takes 1 or 2, and ends in
// usage() for anything else. Of other options only the second character counts: d (display) and p
// (path) take the next argument, n takes it and ignores it. Anything else ends in usage().
CommandLine ParseCommandLine(int argc, char** argv);

// The installation directory: the -path value, else the environment's GROMLIT, else "."; exactly
// "." is spelled out as the current directory where that fits into 256 bytes. The result lives
// until the program ends.
const char* FindInstallation(const CommandLine& line);

}  // namespace gromlit
