// The calls of gromlit-tool that look at strokes. Each prints its result and returns the exit
// status. A path of a stroke may be "-": standard input.
#pragma once

#include <string>
#include <vector>

#include "recognition/find_action.h"

namespace gromlit {

int SignatureOfSymbol(const std::string& path);
int SignatureOfStroke(const std::string& path);

// Index and name of the action that the stroke runs; with `each`, one line for each of the strokes
// that empty lines separate, "-" where nothing runs.
int MatchStrokes(const std::string& plugin, const std::string& path, const Matching& how,
                 bool each);

// Makes a symbol file of the strokes and prints how many of them run it.
int LearnSymbol(const std::string& name, const std::string& output,
                const std::vector<std::string>& paths);

// For each stroke one line for each action: its signature, its score by shape, and why it runs or
// not. An empty line between strokes.
int ExplainStrokes(const std::string& plugin, const std::string& path, int32_t tolerance);

// The last n strokes of a log that have points, all when n is negative.
int PrintLoggedStrokes(const std::string& log, int n);

}  // namespace gromlit
