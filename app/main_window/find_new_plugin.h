// The offer of a plug-in for an application that has none.
#pragma once

#include "app/main_window/gromlit_app.h"

namespace gromlit {

// 1 when the offer was already made for this class in this run: the stroke then goes to the default
// plug-in. Else makes the offer (the dialog `dlog`, whose argument becomes a heap copy of the
// class) centred on the root position (x, y), pixels, and returns 0.
int FindNewPlugin(GromlitApp* gromlit, const char* name, int x, int y);

}  // namespace gromlit
