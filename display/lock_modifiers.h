// The modifiers that stay on when their key is let go: Caps Lock, Num Lock, Scroll Lock.
#pragma once

#include <X11/Xlib.h>

#include <array>
#include <bitset>

namespace gromlit {

inline constexpr int kModifiers = 8;
inline constexpr int kKeyCodes = 256;

// What the server's modifier map says, state bits as in a key event.
struct ModifierMap {
  unsigned locks;                        // LockMask, and whichever Num and Scroll Lock are on
  std::array<KeyCode, kModifiers> keys;  // a key that holds the modifier down; 0: none, or a lock
  std::bitset<kKeyCodes> holding;        // every key that is a modifier but no lock's
  std::bitset<kKeyCodes> any;            // every key that is a modifier
};

// The symbol of a key in its first group: level 0 is the bare key, 1 the one with Shift. NoSymbol
// when there is none. Also of a server without XKB.
KeySym SymbolOfKey(int keycode, int level);

// Asks the server. One round trip, two when the keyboard has changed.
ModifierMap ReadModifierMap();

}  // namespace gromlit
