// Adding and deleting the actions of a plug-in, which is saved at once.
#pragma once

#include <string_view>

#include "core/gromlit.h"

namespace gromlit {

// Whether there is no room for another action (kMaxActions). The user is told then.
bool PluginIsFull(const GromlitPlugin* plugin);

// Copies an action, under this name, to the end of a plug-in and saves the plug-in. Returns the new
// action; or null, with the plug-in as it was and the user told, when the plug-in is full or cannot
// be saved.
GromlitAction* AppendAction(GromlitPlugin* plugin, const GromlitAction* action,
                            std::string_view name);

// AppendAction of what an editor made: nothing is added, and null returned, when the name is empty
// or the plug-in null.
GromlitAction* PluginNewAction(GromlitPlugin* plugin, const GromlitAction* action,
                               const char* name);

// Takes action n out of a plug-in and saves the plug-in. False, with the plug-in as it was and the
// user told, when it cannot be saved. REQUIRES: there is an action n.
bool RemoveAction(GromlitPlugin* plugin, int n);

}  // namespace gromlit
