// Running an action: its commands one after another, in their order.
#pragma once

#include <X11/Xlib.h>

#include "core/gromlit.h"

namespace gromlit {

// Runs every command of sa. mwin is the application's window, kwin the window for keys where no
// window has the input focus; winx, winy is the pointer in that window and rootx, rooty on the
// root, pixels. Meanwhile ExecutingPlugin is pin and the draw button is not grabbed. Returns 1.
int ExecuteAction(GromlitPlugin* pin, GromlitAction* sa, Window mwin, Window kwin, int winx,
                  int winy, int rootx, int rooty);

// Runs one command, after waiting until the server has taken everything sent before. An unknown
// type does nothing.
void ExecuteCommand(GromlitPlugin* pin, const GromlitCmd* cmd, Window mwin, Window kwin, int winx,
                    int winy, int rootx, int rooty);

}  // namespace gromlit
