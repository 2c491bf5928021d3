// Text of strangers where people read it.
#pragma once

#include <string>
#include <string_view>

namespace gromlit {

// The text with every byte that could end a line or steer a terminal as \xNN: control characters,
// also the second set (U+0080..U+009F), and bytes that are no valid UTF-8.
std::string Printable(std::string_view text);

}  // namespace gromlit
