// Running the built gromlit-tool as a program, and the files that its tests read.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

#include "core/gromlit.h"

namespace gromlit::testing {

struct ToolResult {
  int status;       // exit status; 128 + signal when it was killed
  std::string out;  // standard output
  std::string err;  // standard error
};

// Runs gromlit-tool with these arguments and this standard input, without a display. The standard
// output goes to `output` when that is given. `prepare` is called in the process that becomes the
// tool.
ToolResult RunTool(const std::vector<std::string>& arguments, const std::string& input = "",
                   const std::string& output = "", const std::function<void()>& prepare = {});

// Files with every defined byte set to something of its own, put together from literal offsets.
std::vector<std::byte> GoldenSymbolFile();
std::vector<std::byte> GoldenPluginFile();  // two actions, two commands in the first
std::vector<std::byte> GoldenOptionsFile();

// Offsets within GoldenPluginFile.
inline constexpr size_t kFirstAction = 1177;
inline constexpr size_t kFirstCommand = kFirstAction + 1012;
inline constexpr size_t kFirstText = kFirstCommand + 56;
inline constexpr size_t kSecondCommand = kFirstText + 5;
inline constexpr size_t kSecondAction = kSecondCommand + 56;
inline constexpr size_t kPluginFileSize = kSecondAction + 1012;

}  // namespace gromlit::testing
