// The description of the file formats, made from the tables that read and write them.
#pragma once

#include <string>

namespace gromlit {

// The text of docs/file-formats.md. Uses headers only: scripts/check-docs compiles it by itself.
std::string FileFormats();

}  // namespace gromlit
