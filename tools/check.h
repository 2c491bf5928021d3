// Looking for problems in an installation directory.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "core/gromlit.h"

namespace gromlit {

inline constexpr int32_t kOptionsTolerance = 0;  // that of the directory's options file

// Whether to look for symbols that matching by shape can hardly keep apart, and at which tolerance.
struct ShapeCheck {
  bool on = false;
  int32_t tolerance = kOptionsTolerance;
};

// One line per problem of the installation directory `dir`, without a newline; paths are relative
// to it. In order of symbols, plug-ins and options, files in order of their names:
// - data directories that are missing or cannot be read (options cannot be saved without theirs),
// - files that are damaged, hold values that the program replaces, or are of another kind,
// - symbols without a signature, which no real stroke matches, in the library and in actions,
// - actions that never run, because an earlier one of their plug-in takes all their strokes,
// - if asked for, pairs of actions of which a stroke drawn exactly as the one is near enough to run
//   the other,
// - plug-ins of a class that an earlier one serves: one of them is never found.
std::vector<std::string> CheckInstallation(const std::string& dir, ShapeCheck shape = {});

}  // namespace gromlit
