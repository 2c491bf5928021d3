// What the program stored, as gromlit-tool shows it: what a user's scripts would see.
#pragma once

#include <nlohmann/json.hpp>
#include <string>

namespace gromlit::testing {

// The document that `gromlit-tool show FILE` prints; fails the test and gives null when the file
// is not there or damaged.
nlohmann::json ShowFile(const std::string& path);

// Writes the file that `gromlit-tool pack` makes of a document; fails the test when it refuses.
void PackFile(const nlohmann::json& document, const std::string& path);

}  // namespace gromlit::testing
