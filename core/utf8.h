// Text in UTF-8.
#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

namespace gromlit {

// How far a text is valid.
enum class Utf8 {
  kWhole,  // to its end
  kCut,    // to a character at its end of which bytes are missing
  kNot,    // it holds bytes that are no UTF-8 (overlong forms and surrogates are none)
};

// Appends the characters of a text to `out` and stores the number of bytes that they took in
// *taken: all of them, or those before the cut character or the wrong byte.
Utf8 DecodeUtf8(std::string_view text, std::vector<char32_t>* out, size_t* taken);

}  // namespace gromlit
