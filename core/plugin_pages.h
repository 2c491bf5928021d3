// Which plug-ins each menu of the chain of plug-in menus holds.
#pragma once

#include <vector>

#include "core/gromlit.h"

namespace gromlit {

// One menu of the chain that lists all plug-ins. Every page but the last begins with an item that
// leads to the next page, so it holds 19 plug-ins; the last holds up to 20.
struct PluginPage {
  bool more;  // begins with the item that leads to the next page
  std::vector<GromlitPlugin*> plugins;
};

// allPlugins split into the pages of the plug-ins menu, in list order; empty when there are none.
std::vector<PluginPage> PluginMenuPages();

}  // namespace gromlit
