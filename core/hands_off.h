// Turning gestures off over an application, and on again: the file-and-list half.
#pragma once

#include "core/gromlit.h"

namespace gromlit {

// Sets or clears a plug-in's kHandsOff and saves the plug-in. False when it cannot be saved: that
// is reported as in UnLoadPlugin, errno is set, and the plug-in is as it was.
bool SetHandsOff(GromlitPlugin* plugin, bool off);

// A new plug-in without actions that is hands off, for a class that has none; like one that
// CreatePlugin makes. Null when it cannot be saved: that is reported, errno is set, and the class
// has no plug-in then. REQUIRES: no plug-in of the class is listed.
GromlitPlugin* CreateHandsOffPlugin(const char* classname);

// Whether there is nothing in a plug-in that anybody put there: all of it is as
// CreateHandsOffPlugin made it. Reads the actions on first use. False for the default plug-in,
// which is never spare, and for one that was read damaged.
bool IsUnused(GromlitPlugin* plugin);

}  // namespace gromlit
