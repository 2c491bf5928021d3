#include "app/main_window/action_commands.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <memory>
#include <string>

#include "app/action_editor/action_editor.h"
#include "app/main_window/gromlit_app.h"
#include "app/windows/dialogs.h"
#include "core/plugin_files.h"
#include "core/retired.h"
#include "core/strings.h"

namespace gromlit {
namespace {

// The selected action of the shown plug-in; null for none.
GromlitAction* SelectedAction() {
  if (app == nullptr || app->plugin == nullptr) return nullptr;
  if (app->selected < 0 || app->selected >= app->plugin->nactions) return nullptr;
  return app->plugin->actions[app->selected];
}

// Whether there is no room for another action. The user is told then.
bool IsFull(const GromlitPlugin* plugin) {
  if (plugin->nactions < kMaxActions) return false;
  const std::string what =
      "This plug-in holds " + std::to_string(kMaxActions) + " actions already.\nNothing was added.";
  ShowFailure(what.c_str());
  return true;
}

// Copies an action to the end of a plug-in and saves the plug-in. On failure the user is told, the
// plug-in is as it was and null comes back.
GromlitAction* AppendAction(GromlitPlugin* plugin, const GromlitAction* action,
                            std::string_view name) {
  FindPluginNode(plugin->classname);  // an action before those of the file would be overwritten
  if (IsFull(plugin)) return nullptr;
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

// Takes an action out of a plug-in and saves the plug-in. False, with the plug-in as it was and the
// user told, when it cannot be saved.
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

void ShowChangedActions() {
  UpdateGromlitScrollRange();
  RefreshGromlitApp();
}

}  // namespace

void CopyAction(GromlitAction* dst, const GromlitAction* src) {
  *dst = *src;
  dst->sym.signature = nullptr;
  dst->ncmds = std::min<uint32_t>(src->ncmds, kMaxCommands);
  std::fill_n(dst->cmds, kMaxCommands, nullptr);
  for (uint32_t i = 0; i < dst->ncmds; i++) {
    dst->cmds[i] = new GromlitCmd(*src->cmds[i]);
    dst->cmds[i]->text = StrDup(src->cmds[i]->text);
  }
}

void ReleaseActionContents(GromlitAction* action) {
  for (uint32_t i = 0; i < action->ncmds; i++) {
    std::free(action->cmds[i]->text);
    delete action->cmds[i];
    action->cmds[i] = nullptr;
  }
  action->ncmds = 0;
  std::free(action->sym.signature);
  action->sym.signature = nullptr;
}

GromlitAction* PluginNewAction(GromlitPlugin* plugin, const GromlitAction* action,
                               const char* name) {
  if (plugin == nullptr || StrLength(name) == 0) return nullptr;
  return AppendAction(plugin, action, name);
}

void popCopyAction(XMenu*, void*) {
  const GromlitAction* action = SelectedAction();
  if (action == nullptr) return;
  if (app->validcut != 0) ReleaseActionContents(&app->cut);
  CopyAction(&app->cut, action);
  app->validcut = 1;
}

void popCutAction(XMenu* menu, void* arg) {
  popCopyAction(menu, arg);
  popDeleteAction(menu, arg);
}

void popPasteAction(XMenu*, void*) {
  if (app == nullptr || app->plugin == nullptr || app->validcut == 0) return;
  // Not by PluginNewAction: an action of a stranger's file may have no name, and one that was cut
  // must come back.
  if (AppendAction(app->plugin, &app->cut, FieldText(app->cut.name)) != nullptr) {
    ShowChangedActions();
  }
}

void popDeleteAction(XMenu*, void*) {
  if (SelectedAction() == nullptr) return;
  if (!RemoveAction(app->plugin, app->selected)) return;
  if (app->selected == app->plugin->nactions) app->selected--;
  ShowChangedActions();
}

void popEditAction(XMenu*, void*) {
  GromlitAction* action = SelectedAction();
  if (action != nullptr) EditAction(app->plugin, action);
}

void popNewAction(XMenu*, void*) {
  if (app == nullptr || app->plugin == nullptr || IsFull(app->plugin)) return;
  EditNewAction(app->plugin);
}

void popExportAction(XMenu*, void*) {
  ShowActionEditor();
}

}  // namespace gromlit
