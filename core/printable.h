// Text of strangers where people read it.
#pragma once

#include <string>
#include <string_view>

namespace gromlit {

// The text with every byte that could end a line or steer a terminal as \xNN: control characters,
// also the second set, U+0080..U+009F as UTF-8 or as single bytes. All else stays, letters of older
// encodings included.
std::string Printable(std::string_view text);

}  // namespace gromlit
