#include "app/plugins/plugin_menu.h"

#include <cerrno>
#include <memory>
#include <vector>

#include "app/plugins/plugin_view.h"
#include "app/windows/dialogs.h"
#include "core/plugin_files.h"
#include "core/plugin_pages.h"
#include "display/display.h"
#include "toolkit/menu.h"
#include "toolkit/pulldown_button.h"

namespace gromlit {

// Windows, contexts and table entries cannot be given back, so that those of a menu which is not
// needed now wait for the next one.
struct PluginMenus {
  XMenu* first;  // of the chain in use; null for none
  XMenuPool pool;
};

namespace {

XMenu* MakePage(XMenuPool* pool, const PluginPage& page, XMenu* next) {
  const std::unique_ptr<XMenuItem*[]> items(
      MakeMenuItemArray(static_cast<int>(page.plugins.size()) + 1));
  int nitems = 0;
  if (page.more) {
    items[0] = MakeMenuItem(labelMenuMore, MenuMore, nullptr);
    items[0]->submenu = next;
    nitems++;
  }
  for (GromlitPlugin* plugin : page.plugins) {
    items[static_cast<size_t>(nitems++)] = MakeMenuItem(plugin->appname, SelectPlugin, plugin);
  }
  return TakeMenu(pool, labelFontinfo, items.get(), nitems);
}

int CountPlugins() {
  int count = 0;
  for (const auto* node = allPlugins; node != nullptr && node->plugin != nullptr; node = node->next)
    count++;
  return count;
}

}  // namespace

XMenu* MakePluginsMenu() {
  PluginMenus unkept{};
  PluginMenus* menus = &unkept;
  if (pluginview != nullptr) {
    if (pluginview->menus == nullptr) pluginview->menus = new PluginMenus{};
    menus = pluginview->menus;
  }
  SpareMenus(&menus->pool, menus->first);
  // From the last to the first: an item's submenu has to be known when its menu is measured.
  XMenu* menu = nullptr;
  const std::vector<PluginPage> pages = PluginMenuPages();
  for (auto page = pages.rbegin(); page != pages.rend(); ++page) {
    menu = MakePage(&menus->pool, *page, menu);
  }
  menus->first = menu;
  return menu;
}

void UpdatePluginsMenu() {
  if (pluginview != nullptr) SetPulldownMenu(pluginview->button, MakePluginsMenu());
}

void MenuMore(XMenu*, void*) {}

void SelectPlugin(XMenu* menu, void* plugin) {
  if (menu != nullptr) {
    pluginview->keepshown();
    PullUpMenu(menu);
  }
  pluginview->show(static_cast<GromlitPlugin*>(plugin)->classname);
}

int DeletePlugin(GromlitPlugin* killpin, const char* fname) {
  const int before = CountPlugins();
  if (DropPlugin(killpin, fname) == 0) {
    ShowSaveFailure("The plug-in was not deleted.", errno);
    return 0;
  }
  if (pluginview == nullptr || CountPlugins() == before) return 1;
  GetDefaultPlugin();  // a deleted one is replaced, as the next start would do it
  UpdatePluginsMenu();
  pluginview->show(defaultPluginClassname);
  return 1;
}

}  // namespace gromlit
