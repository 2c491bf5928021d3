#include "app/find_new_plugin.h"

#include "core/plugin_files.h"

namespace gromlit {

int FindNewPlugin(GromlitApp*, const char* name, int, int) {
  return RememberClass(name);
}

}  // namespace gromlit
