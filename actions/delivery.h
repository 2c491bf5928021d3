// The ways that keys can take to an application, and which one is chosen.
#pragma once

#include <string_view>

#include "display/sent_input.h"

namespace gromlit {

struct KeyWay {
  bool to_focus;  // wants to know the window with the focus
  // One key pressed and released with modifiers, state bits.
  void (*stroke)(const InputPlace& place, int keycode, int keystate);
  // Types a text. With `more` it goes on: what cannot be typed without what follows may be left.
  // Returns the number of bytes that it took.
  size_t (*text)(const InputPlace& place, std::string_view text, bool more);
  // What it needs before a first key, asked for while nobody waits; null for nothing.
  void (*prepare)();
  // After an action: gives back what it took. Nothing happens when no key went this way; null for
  // one that takes nothing.
  void (*finish)();
};

// The way that the options choose, where the server has it. The one place that asks.
const KeyWay& ChosenKeyWay();

// Asks the server for what the chosen way needs, while nobody waits for a key.
void PrepareKeys();

// After an action: every way gives back what it took.
void FinishKeys();

// Whether clicks shall be the server's own, too.
bool MakesClicks();

}  // namespace gromlit
