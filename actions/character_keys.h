// Which key gives which character of Unicode on the keyboard in force, and which of its modifiers.
//
// The tables of keystrokes.h hold what 7-bit characters are sent with; these know every
// level of every key, so that what stands on the user's keyboard is typed with its own key.
#pragma once

#include <X11/Xlib.h>

namespace gromlit {

struct CharacterKey {
  KeyCode keycode = 0;     // 0: no key gives the character
  unsigned modifiers = 0;  // state bits that must be down, and no other that the key obeys
};

// The key of a character. '\n' and '\r' have the key Return, '\t' the key Tab. Reads the keyboard
// first when it has changed: two round trips.
CharacterKey KeyOfCharacter(char32_t c);

// Locks (state bits) that change what this key gives.
unsigned LocksObeyed(int keycode);

// To be called when the keyboard has changed.
void ForgetCharacterKeys();

// A symbol that stands for the character, whatever the keyboard; NoSymbol for one that cannot be
// typed: controls, and what Unicode keeps free of characters.
KeySym SymbolOfCharacter(char32_t c);

}  // namespace gromlit
