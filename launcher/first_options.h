// The options of a new user.
#pragma once

#include "core/gromlit.h"

namespace gromlit {

// The defaults, but what this machine has for the browser (xdg-open) and for sounds (the first of
// pw-play, paplay, aplay and play in PATH), and all recommended choices.
GromlitUserOptions FirstOptions();

}  // namespace gromlit
