// What the calls of gromlit-tool share: statuses, messages, reading and writing.
#pragma once

#include <string>

#include "tools/data_file.h"

namespace gromlit {

// Exit statuses.
inline constexpr int kSuccess = 0;
inline constexpr int kNegative = 1;  // no action matches; problems were found
inline constexpr int kTrouble = 2;   // wrong usage, input that cannot be read, output that fails

// Writes a message about a file to standard error, fit for a terminal. Returns kTrouble.
int Complain(const std::string& name, const std::string& what);

// How messages call an input; "-" is standard input.
std::string InputName(const std::string& path);

// Writes to standard output; failures show when it is flushed at the end.
void Write(const std::string& text);

// One message for each damage. Returns kSuccess or kTrouble.
int WarnOfDamage(const std::string& path, const DataFile& file);

// Reads a file that the program would have to be able to use; false after a message, which is
// `what` when the file is of another kind.
bool ReadUsable(const std::string& path, Kind kind, const char* what, DataFile* file);

}  // namespace gromlit
