// Starting the program in a directory that is ready.
#pragma once

#include <string>
#include <vector>

namespace gromlit {

enum class Running { kShown, kNone, kNoDisplay };

// Has the program that runs on a display (null: the environment's) show its window: by
// `PROGRAM -remote show`.
Running ShowRunning(const std::string& program, const char* display);

// Opens a page of the directory with the browser command of its options, once and without waiting.
// `page` is relative to the directory. Nothing where the command is not one that this machine has.
void OpenPage(const std::string& directory, const char* page);

// Changes to the directory and becomes `program -path directory` with these further arguments;
// GROMLIT is the directory for it and all that it starts. Returns only when that fails, with the
// reason.
std::string Become(const std::string& program, const std::string& directory,
                   const std::vector<std::string>& arguments);

}  // namespace gromlit
