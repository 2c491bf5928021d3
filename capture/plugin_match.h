// Search, then run: from a finished stroke to the action that it stands for.
#pragma once

#include <X11/Xlib.h>

#include <cstdint>

#include "core/gromlit.h"

namespace gromlit {

// Finds the action of pin, or of the plug-in that is fallen back to, that the stroke of npts
// root-window points stands for (FindActionToRun) and runs it with ExecuteAction as one of the
// plug-in that it was found in; the windows and positions (pixels; in the window, on the root) are
// handed on unchanged. Returns ExecuteAction's result; 0 when no action matches, which has no other
// effect.
int PluginMatch(GromlitPlugin* pin, int npts, const int16_t* xbuf, const int16_t* ybuf, Window mwin,
                Window kwin, int winx, int winy, int rootx, int rooty);

}  // namespace gromlit
