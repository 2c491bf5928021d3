// Telling of plug-in files that are not used.
#pragma once

namespace gromlit {

// Shows, in a dialog, the files that are left alone because another file of their class counts
// (SparePluginFiles in core/plugin_names.h); nothing where there are none. Once, at start-up.
void TellOfSparePlugins();

}  // namespace gromlit
