// Text of strangers in HTML and SVG.
#pragma once

#include <string>
#include <string_view>

namespace gromlit {

// The characters of a text: UTF-8 where all of it is, else a character for each byte. White space
// is a blank; what steers a terminal or the direction of text, and what no XML may hold, is U+FFFD.
std::u32string Characters(std::string_view bytes);

// Characters as the contents of an element or of a quoted attribute, in UTF-8.
std::string Escaped(std::u32string_view characters);

// Both.
std::string Markup(std::string_view bytes);

// At most `limit` characters, "..." for the last three where some are cut off.
std::u32string Shortened(std::u32string characters, size_t limit);

}  // namespace gromlit
