// Selecting by the first letters: letters typed within a second of each other are the beginning of
// the item that is meant.
#pragma once

#include <X11/Xlib.h>

#include <cstdint>
#include <string>
#include <string_view>

namespace gromlit {

struct TypeAhead {
  std::string typed;  // lower case
  uint32_t last = 0;  // when the last letter came: server time, milliseconds
};

// Takes a key press with these bytes (LookupKey). False when it is no letter of a name: a control
// byte, nothing, or with Control or Alt. A space that begins nothing is none either.
bool TakeLetter(TypeAhead* ahead, const XKeyEvent& key, std::string_view bytes);

// Whether a label begins with what was typed. Case counts for nothing, bytes beyond 7 bits count as
// they are.
bool BeginsWithTyped(const TypeAhead& ahead, std::string_view label);

// The first of n items that begins with what was typed; -1 for none. label(i) is the text of one.
template <typename Label>
int FirstTyped(const TypeAhead& ahead, int n, Label label) {
  for (int i = 0; i < n; i++) {
    if (BeginsWithTyped(ahead, label(i))) return i;
  }
  return -1;
}

}  // namespace gromlit
