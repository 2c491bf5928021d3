// What the keyboard is in, asked for in one round trip.
#pragma once

#include <bitset>

#include "display/lock_modifiers.h"

namespace gromlit {

struct KeyboardState {
  ModifierMap map;
  unsigned latched;             // modifiers, state bits
  unsigned locked;              // modifiers, state bits
  int lockedgroup;              // layout that is locked
  std::bitset<kKeyCodes> down;  // keys that are pressed
  unsigned long serial;         // of the request that asked which keys are
};

// Nothing is locked or latched where the server has no XKB.
KeyboardState ReadKeyboardState();

// Finds out what the server can, so that the first call of the other does not: a round trip, once.
void PrepareKeyboardState();

}  // namespace gromlit
