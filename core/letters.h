// Names in the encoding that everybody writes today, told from those of older files.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace gromlit {

// The letters of a text that is valid UTF-8 and not plain ASCII; none for any other text: plain
// ASCII needs no decoding, and what is not UTF-8 is shown byte by byte.
std::u32string LettersOf(std::string_view text);

// Where the letter begins that the byte at `at` belongs to: at itself, unless that byte goes on
// with a letter of a text that LettersOf decodes. For cutting a text in two, and for a caret.
// REQUIRES: at <= text.size().
size_t LetterStart(std::string_view text, size_t at);

// Where the letter ends that begins at `at`: behind one byte, or more of a text that LettersOf
// decodes. REQUIRES: at < text.size().
size_t LetterEnd(std::string_view text, size_t at);

}  // namespace gromlit
