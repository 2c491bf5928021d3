#include "app/plugins/spare_plugins.h"

#include <algorithm>
#include <string>
#include <vector>

#include "app/windows/dialogs.h"
#include "core/plugin_names.h"
#include "core/printable.h"

namespace gromlit {
namespace {

constexpr size_t kNamed = 2;  // files that the dialog has room for

}  // namespace

void TellOfSparePlugins() {
  const std::vector<SparePluginFile>& spare = SparePluginFiles();
  if (spare.empty()) return;
  std::string text = "Of several plug-in files of one application only one is used.";
  for (size_t i = 0; i < std::min(spare.size(), kNamed); i++) {
    text += "\nNot used: " + Printable(spare[i].name);
    text += "\n  but: " + Printable(spare[i].used);
  }
  if (spare.size() > kNamed)
    text +=
        "\nand " + std::to_string(spare.size() - kNamed) + " more; gromlit-tool check lists them.";
  ShowNotice("Plug-In Files", text.c_str());
}

}  // namespace gromlit
