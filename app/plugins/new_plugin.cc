#include "app/plugins/new_plugin.h"

#include <array>
#include <cerrno>
#include <string>

#include "actions/launch.h"
#include "app/plugins/class_picker.h"
#include "app/plugins/plugin_menu.h"
#include "app/plugins/plugin_view.h"
#include "app/windows/dialogs.h"
#include "core/plugin_files.h"
#include "display/display.h"

namespace gromlit {

const char* const NoPluginMsg[] = {"There is not a Plugin for this Application.",
                                   "One may be available from the Gromlit web service.", "",
                                   "Would you like to download one?", nullptr};
const char* const NewPluginMsg[] = {"After clicking on OK,",
                                    "Click on the Application to create a plugin for it.", "",
                                    "Would you like to create one now?", nullptr};

namespace {

constexpr size_t kUrlLength = 179;  // bytes of a download page's address

}  // namespace

XDialog* MakeDownloadDialog() {
  return MakeDialog("Plugin Update", NoPluginMsg, YesDownloadPlugin, 0, 0);
}

XDialog* MakeNewPluginDialog() {
  return MakeDialog("New Plugin", NewPluginMsg, YesNewPlugin, 0, 0);
}

void YesDownloadPlugin(XDialog* dlog) {
  std::string url = GromlitDownloadURLprefix;
  if (dlog->arg != nullptr) url += EncodeForAddress(static_cast<const char*>(dlog->arg));
  if (url.size() > kUrlLength) {
    url.resize(kUrlLength);
    // Of an escape that was cut nothing may stay.
    const size_t escape = url.rfind('%');
    if (escape != url.npos && escape + 3 > url.size()) url.resize(escape);
  }
  DialogYes(dlog);
  LaunchBrowserURL(url.c_str());
}

void YesNewPlugin(XDialog* dlog) {
  Window rootwin;
  Window child;
  int x = 0;
  int y = 0;
  int winx;
  int winy;
  unsigned state;
  XQueryPointer(dpy, root, &rootwin, &child, &x, &y, &winx, &winy, &state);
  DialogYes(dlog);
  std::array<char, kClassBuffer> cname{};
  if (!PickClass(x, y, cname)) return;

  bool saved = true;
  if (CreatePlugin(cname.data(), cname.data(), &saved) == nullptr) return;
  const int reason = errno;
  UpdatePluginsMenu();
  if (pluginview != nullptr) pluginview->show(cname.data());
  if (!saved) ShowSaveFailure("The new plug-in could not be saved.", reason);
}

}  // namespace gromlit
