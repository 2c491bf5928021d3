// From the text of a key stroke, such as "Control-Shift-t", to the key and the state that make it
// on a keyboard. The starter library is written in texts: which key a letter lies on is a matter of
// the keyboard.
#pragma once

#include <xkbcommon/xkbcommon.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string_view>

namespace gromlit {

struct KeymapRelease {
  void operator()(xkb_keymap* map) const { xkb_keymap_unref(map); }
};
using Keymap = std::unique_ptr<xkb_keymap, KeymapRelease>;

// A key as a command keeps it.
struct KeyStroke {
  uint16_t keycode;  // X key code
  uint16_t state;    // X modifier state
  bool operator==(const KeyStroke&) const = default;
};

// The map of the keyboard that the starter library is packed for: pc105 with the layout us,
// whatever the environment says. Null where the system has no data of keyboards.
Keymap PackingKeymap();

// The stroke of this text: any of "Control-", "Mod2-" to "Mod5-", "Alt-" (Mod1), "Super-" (Mod4)
// and "Shift-", then the name of a symbol or one character of ASCII. Of several keys with the
// symbol the one counts that needs the least: the first layout before others, then the lowest
// level, then the lowest key code. What the level needs, such as Shift for "plus", is in the state.
// Nothing when the text is none, or when no key gives the symbol. Nothing, too, for "Shift-" before
// a symbol that takes a level of its own: which symbol was meant is known on the other keyboard
// only.
std::optional<KeyStroke> FindKeyStroke(xkb_keymap* map, std::string_view text);

}  // namespace gromlit
