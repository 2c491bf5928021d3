// The starter plug-ins' hot keys on the user's own keyboard.
#pragma once

#include <cstddef>
#include <span>
#include <vector>

#include "keymap/key_strokes.h"

namespace gromlit {

// The map of the keyboard of a display (null: the environment's). Null where no display answers, or
// one without the extension for keyboards.
Keymap KeymapOfDisplay(const char* display);

// A packed plug-in file with the keys that the texts of its hot keys stand for on this keyboard. A
// hot key stays as it is where it has no text, or more than one key, or a text that no key of the
// map gives; and so does a file that is not read in full, or not to the byte.
std::vector<std::byte> WithKeysOf(xkb_keymap* map, std::span<const std::byte> file);

}  // namespace gromlit
