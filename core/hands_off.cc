#include "core/hands_off.h"

#include <cerrno>
#include <cstdint>

#include "core/plugin_files.h"
#include "core/retired.h"
#include "core/strings.h"

namespace gromlit {
namespace {

// Takes a plug-in from the list that has no file.
void Unlist(const GromlitPlugin* plugin) {
  for (auto** link = &allPlugins; (*link)->plugin != nullptr; link = &(*link)->next) {
    if ((*link)->plugin != plugin) continue;
    Retire(*link);
    *link = (*link)->next;
    return;
  }
}

}  // namespace

bool SetHandsOff(GromlitPlugin* plugin, bool off) {
  const auto former = plugin->spare1;
  plugin->spare1 = static_cast<uint8_t>(off ? former | kHandsOff : former & ~kHandsOff);
  if (UnLoadPlugin(plugin, plugin->classname) != nullptr) return true;
  plugin->spare1 = former;
  return false;
}

GromlitPlugin* CreateHandsOffPlugin(const char* classname) {
  bool saved = false;
  GromlitPlugin* plugin = CreatePlugin(classname, classname, &saved);
  if (plugin == nullptr) {
    errno = ENOMEM;
    return nullptr;
  }
  if (saved && SetHandsOff(plugin, true)) return plugin;
  const int reason = errno;
  if (!saved || DropPlugin(plugin, plugin->classname) == 0) Unlist(plugin);
  errno = reason;
  return nullptr;
}

bool IsUnused(GromlitPlugin* plugin) {
  if (plugin == nullptr || plugin == DefaultPlugin) return false;
  FindPluginNode(plugin->classname);
  return plugin->nactions == 0 && plugin->damagedfile == nullptr &&
         FieldText(plugin->appname) == FieldText(plugin->classname);
}

}  // namespace gromlit
