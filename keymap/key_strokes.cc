#include "keymap/key_strokes.h"

#include <algorithm>
#include <array>
#include <string>

namespace gromlit {
namespace {

// Bits of the modifier state in the X protocol.
constexpr uint16_t kShift = 1 << 0;
constexpr uint16_t kLock = 1 << 1;
constexpr uint16_t kControl = 1 << 2;
constexpr uint16_t kMod1 = 1 << 3;
constexpr uint16_t kMod2 = 1 << 4;
constexpr uint16_t kMod3 = 1 << 5;
constexpr uint16_t kMod4 = 1 << 6;
constexpr uint16_t kMod5 = 1 << 7;

struct Modifier {
  const char* name;  // in a map
  uint16_t bit;
};
constexpr Modifier kModifiers[] = {
    {"Shift", kShift}, {"Lock", kLock}, {"Control", kControl}, {"Mod1", kMod1},
    {"Mod2", kMod2},   {"Mod3", kMod3}, {"Mod4", kMod4},       {"Mod5", kMod5},
};

struct Prefix {
  std::string_view text;
  uint16_t bit;
};
constexpr Prefix kPrefixes[] = {
    {"Control-", kControl}, {"Mod2-", kMod2}, {"Mod3-", kMod3},  {"Mod4-", kMod4},
    {"Mod5-", kMod5},       {"Alt-", kMod1},  {"Super-", kMod4}, {"Shift-", kShift},
};

constexpr xkb_keycode_t kLastKeyCode = 255;  // of the X protocol
constexpr size_t kMaxMasks = 16;             // ways to a level that are looked at

// Takes the modifiers off the beginning of *text.
uint16_t TakeModifiers(std::string_view* text) {
  uint16_t state = 0;
  for (bool found = true; found;) {
    found = false;
    for (const Prefix& prefix : kPrefixes) {
      // What is left must be something: a prefix alone is no key.
      if (!text->starts_with(prefix.text) || text->size() == prefix.text.size()) continue;
      state |= prefix.bit;
      text->remove_prefix(prefix.text.size());
      found = true;
    }
  }
  return state;
}

xkb_keysym_t SymbolOf(std::string_view name) {
  // The symbols of ASCII have the numbers of the characters.
  if (name.size() == 1 && name[0] > ' ' && name[0] < 127)
    return static_cast<xkb_keysym_t>(static_cast<unsigned char>(name[0]));
  if (name.find('\0') != std::string_view::npos) return XKB_KEY_NoSymbol;
  return xkb_keysym_from_name(std::string(name).c_str(), XKB_KEYSYM_NO_FLAGS);
}

uint16_t StateOf(xkb_keymap* map, xkb_mod_mask_t mask) {
  uint16_t state = 0;
  for (const Modifier& modifier : kModifiers) {
    const xkb_mod_index_t index = xkb_keymap_mod_get_index(map, modifier.name);
    if (index != XKB_MOD_INVALID && (mask >> index & 1) != 0) state |= modifier.bit;
  }
  return state;
}

// The state that brings a key to a level without the locks, which are the user's own.
std::optional<uint16_t> StateForLevel(xkb_keymap* map, xkb_keycode_t key, xkb_layout_index_t layout,
                                      xkb_level_index_t level) {
  std::array<xkb_mod_mask_t, kMaxMasks> masks;
  const size_t count =
      xkb_keymap_key_get_mods_for_level(map, key, layout, level, masks.data(), masks.size());
  for (size_t i = 0; i < std::min(count, masks.size()); i++) {
    const uint16_t state = StateOf(map, masks[i]);
    if ((state & (kLock | kMod2)) == 0) return state;
  }
  return std::nullopt;
}

bool Gives(xkb_keymap* map, xkb_keycode_t key, xkb_layout_index_t layout, xkb_level_index_t level,
           xkb_keysym_t symbol) {
  const xkb_keysym_t* symbols = nullptr;
  const int count = xkb_keymap_key_get_syms_by_level(map, key, layout, level, &symbols);
  return count == 1 && symbols[0] == symbol;
}

// The largest number of levels of any key.
xkb_level_index_t Levels(xkb_keymap* map, xkb_keycode_t last) {
  xkb_level_index_t levels = 0;
  for (xkb_keycode_t key = xkb_keymap_min_keycode(map); key <= last; key++) {
    for (xkb_layout_index_t i = 0; i < xkb_keymap_num_layouts_for_key(map, key); i++)
      levels = std::max(levels, xkb_keymap_num_levels_for_key(map, key, i));
  }
  return levels;
}

}  // namespace

Keymap PackingKeymap() {
  xkb_context* context = xkb_context_new(XKB_CONTEXT_NO_ENVIRONMENT_NAMES);
  if (context == nullptr) return nullptr;
  const xkb_rule_names names = {
      .rules = "evdev", .model = "pc105", .layout = "us", .variant = "", .options = ""};
  Keymap map(xkb_keymap_new_from_names(context, &names, XKB_KEYMAP_COMPILE_NO_FLAGS));
  xkb_context_unref(context);  // the map holds it
  return map;
}

std::optional<KeyStroke> FindKeyStroke(xkb_keymap* map, std::string_view text) {
  const uint16_t asked = TakeModifiers(&text);
  const xkb_keysym_t symbol = SymbolOf(text);
  if (symbol == XKB_KEY_NoSymbol) return std::nullopt;
  const xkb_keycode_t last = std::min(xkb_keymap_max_keycode(map), kLastKeyCode);
  const xkb_level_index_t levels = Levels(map, last);
  for (xkb_layout_index_t layout = 0; layout < xkb_keymap_num_layouts(map); layout++) {
    for (xkb_level_index_t level = 0; level < levels; level++) {
      for (xkb_keycode_t key = xkb_keymap_min_keycode(map); key <= last; key++) {
        if (layout >= xkb_keymap_num_layouts_for_key(map, key)) continue;
        if (level >= xkb_keymap_num_levels_for_key(map, key, layout)) continue;
        if (!Gives(map, key, layout, level, symbol)) continue;
        const std::optional<uint16_t> needed = StateForLevel(map, key, layout, level);
        if (!needed.has_value()) continue;
        if (*needed != 0 && (asked & kShift) != 0) return std::nullopt;
        return KeyStroke{static_cast<uint16_t>(key), static_cast<uint16_t>(asked | *needed)};
      }
    }
  }
  return std::nullopt;
}

}  // namespace gromlit
