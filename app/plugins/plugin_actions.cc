#include "app/plugins/plugin_actions.h"

#include <algorithm>
#include <cerrno>
#include <memory>
#include <string>

#include "app/windows/dialogs.h"
#include "core/action_copy.h"
#include "core/plugin_files.h"
#include "core/retired.h"
#include "core/strings.h"

namespace gromlit {

bool PluginIsFull(const GromlitPlugin* plugin) {
  if (plugin->nactions < kMaxActions) return false;
  const std::string what =
      "This plug-in holds " + std::to_string(kMaxActions) + " actions already.\nNothing was added.";
  ShowFailure(what.c_str());
  return true;
}

GromlitAction* AppendAction(GromlitPlugin* plugin, const GromlitAction* action,
                            std::string_view name) {
  FindPluginNode(plugin->classname);  // an action before those of the file would be overwritten
  if (PluginIsFull(plugin)) return nullptr;
  auto added = std::make_unique<GromlitAction>();
  CopyAction(added.get(), action);
  CopyText(added->name, name);
  plugin->actions[plugin->nactions++] = added.get();
  if (UnLoadPlugin(plugin, plugin->classname) != nullptr) return added.release();
  const int error = errno;
  plugin->actions[--plugin->nactions] = nullptr;
  ReleaseActionContents(added.get());
  ShowSaveFailure("The action was not added.", error);
  return nullptr;
}

GromlitAction* PluginNewAction(GromlitPlugin* plugin, const GromlitAction* action,
                               const char* name) {
  if (plugin == nullptr || StrLength(name) == 0) return nullptr;
  return AppendAction(plugin, action, name);
}

bool RemoveAction(GromlitPlugin* plugin, int n) {
  GromlitAction** first = plugin->actions + n;
  GromlitAction** end = plugin->actions + plugin->nactions;
  std::rotate(first, first + 1, end);
  plugin->nactions--;
  if (UnLoadPlugin(plugin, plugin->classname) == nullptr) {
    const int error = errno;
    plugin->nactions++;
    std::rotate(first, end - 1, end);
    ShowSaveFailure("The action was not deleted.", error);
    return false;
  }
  Retire(plugin->actions[plugin->nactions]);  // the action editor may be at work on it
  plugin->actions[plugin->nactions] = nullptr;
  return true;
}

}  // namespace gromlit
