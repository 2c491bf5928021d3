// Writing what the tool was asked to write, without ever losing what was there.
#pragma once

#include <cstddef>
#include <span>
#include <string>

namespace gromlit {

// Replaces or creates the file `path` as core/files.h promises, and clears away temporaries that an
// interrupted run left in the same place. The temporary is kept out of the
// data directories of an installation, where the program would take it for data. False with errno
// set, the old contents still there.
bool WriteOutputFile(const std::string& path, std::span<const std::byte> image);

}  // namespace gromlit
