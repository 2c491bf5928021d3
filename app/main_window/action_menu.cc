#include "app/main_window/action_menu.h"

#include "app/action_editor/action_editor.h"
#include "app/main_window/gromlit_app.h"
#include "app/plugins/plugin_actions.h"
#include "core/action_copy.h"
#include "core/strings.h"

namespace gromlit {
namespace {

// The selected action of the shown plug-in; null for none.
GromlitAction* SelectedAction() {
  if (app == nullptr || app->plugin == nullptr) return nullptr;
  if (app->selected < 0 || app->selected >= app->plugin->nactions) return nullptr;
  return app->plugin->actions[app->selected];
}

void ShowChangedActions() {
  UpdateGromlitScrollRange();
  RefreshGromlitApp();
}

}  // namespace

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
  if (app == nullptr || app->plugin == nullptr || PluginIsFull(app->plugin)) return;
  EditNewAction(app->plugin);
}

void popExportAction(XMenu*, void*) {
  ShowActionEditor();
}

}  // namespace gromlit
