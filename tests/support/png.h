// Pictures as PNG files, without a library.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace gromlit::testing {

struct Picture {
  int width = 0;
  int height = 0;
  std::vector<uint32_t> pixels;  // 0xrrggbb, row by row

  bool operator==(const Picture&) const = default;
};

// The bytes of a PNG file (ISO/IEC 15948): true colour, every row as its difference from the row
// above, and of the compression (RFC 1951) only runs of one byte. Screens, which are mostly plain,
// become small by that. A picture without pixels gives none.
std::string PngOf(const Picture& picture);

}  // namespace gromlit::testing
