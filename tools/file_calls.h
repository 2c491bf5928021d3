// The calls of gromlit-tool for single files and for a look at a directory. Each prints its result
// and returns the exit status.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace gromlit {

// Each file as a document.
int ShowFiles(const std::vector<std::string>& paths);

// The data file of the document at `input` ("-": standard input).
int PackDocument(const std::string& input, const std::string& output);

// The problems of an installation directory, one line each (tools/check.h).
int CheckDirectory(const std::string& dir, bool shape, int32_t tolerance);

}  // namespace gromlit
