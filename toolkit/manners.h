// How menus, fields, dialogs and scrollbars answer to hands: plainly, or as on today's desktops.
// The one place where a widget asks; how it looks does not depend on it.
#pragma once

#include "core/option_files.h"

namespace gromlit {

// Whether the user has chosen today's manners. May change while the program runs: a widget asks
// when something happens to it, not when it is made. Plain before the options have been read.
inline bool ModernManners() {
  return user != nullptr && MannersOf(user) == kModernManners;
}

}  // namespace gromlit
