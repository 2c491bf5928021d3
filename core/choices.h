// What a user may choose beyond the behaviour of a run without an options file, as the window
// behind "More..." offers it.
//
// A choice is kept in a reserved field of the options, whose 0 is the behaviour of a run without an
// options file. Fields may hold what a later version wrote: a choice that the user leaves alone
// leaves its field alone.
#pragma once

#include <span>

#include "core/gromlit.h"

namespace gromlit {

// A file in the installation directory that has the program tell, once, of recommended choices that
// are off.
inline constexpr const char* kNewsFile = "notice";

struct Choice {
  const char* caption;
  const char* sentence;  // what it does, in a line of its own
  int32_t GromlitUserOptions::*field;
  int32_t value;  // the field's value when the choice is on, or the bit of it
  bool bit;
  bool recommended;  // what "Recommended" turns on, and the first start of a new user
};

// All choices, in the order of the window. A new one is a line here.
std::span<const Choice> Choices();

// Whether the options have a choice on.
bool IsOn(const GromlitUserOptions& options, const Choice& choice);

// Turns a choice on or off. Bits beside a bit stay; a field whose value is neither 0 nor the
// choice's stays as it is when the choice is turned off.
void TurnChoice(GromlitUserOptions* options, const Choice& choice, bool on);

// Turns every choice to what is recommended: the first start of a new user.
void ChooseRecommended(GromlitUserOptions* options);

// Whether a recommended choice is off.
bool LacksRecommended(const GromlitUserOptions& options);

// How many choices are recommended.
int RecommendedChoices();

}  // namespace gromlit
