// The judge of the key tables: for each character, one after another, every state and every key
// code until one gives it. Slow, and plainly right.
#pragma once

#include <X11/Xlib.h>
#include <X11/Xutil.h>

#include <array>
#include <cstdint>

namespace gromlit::testing {

struct KeyTables {
  std::array<uint8_t, 256> keycodes{};
  std::array<uint8_t, 256> keystates{};

  bool operator==(const KeyTables&) const = default;
};

inline KeyTables LiteralKeyTables(Display* display) {
  KeyTables tables;
  XKeyEvent event{};
  event.type = KeyPress;
  event.display = display;
  event.window = event.root = DefaultRootWindow(display);
  int first;
  int last;
  XDisplayKeycodes(display, &first, &last);

  const auto find = [&](unsigned c) {
    for (unsigned s = 0; s <= 66; s++) {
      const unsigned state = s <= 64 ? s : s == 65 ? 64 : 128;
      for (int k = first; k < last; k++) {
        event.state = state;
        event.keycode = static_cast<unsigned>(k);
        char text[32];
        if (XLookupString(&event, text, sizeof text, nullptr, nullptr) != 1) continue;
        if (static_cast<signed char>(text[0]) != static_cast<int>(c)) continue;
        tables.keycodes[c] = static_cast<uint8_t>(k);
        tables.keystates[c] = static_cast<uint8_t>(state);
        return;
      }
    }
  };
  for (unsigned c = 0; c < 256; c++) find(c);
  return tables;
}

}  // namespace gromlit::testing
