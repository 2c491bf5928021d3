// Texts that the tool reads, from a file, a pipe or a device.
#pragma once

#include <cstddef>
#include <string>

namespace gromlit {

// Most bytes of a document: more than that of any plug-in file, whose every byte may take six
// characters.
inline constexpr size_t kMaxDocument = size_t{512} << 20;

// Most bytes of a stroke's text; 256 points are kept of it.
inline constexpr size_t kMaxStrokeText = size_t{16} << 20;

// Reads a whole text of at most `limit` bytes (whole megabytes); "-" is the standard input. It ends
// at the first NUL, which no text has. False, with the reason in *error, when it cannot be read, is
// longer or holds a NUL; memory never grows beyond the limit, whatever is read.
bool ReadTextInput(const std::string& path, size_t limit, std::string* text, std::string* error);

}  // namespace gromlit
