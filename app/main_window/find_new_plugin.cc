#include "app/main_window/find_new_plugin.h"

#include <cstdlib>

#include "core/offer_memory.h"
#include "core/strings.h"
#include "display/scale.h"
#include "toolkit/dialog.h"

namespace gromlit {

int FindNewPlugin(GromlitApp* gromlit, const char* name, int x, int y) {
  if (RememberClass(name) != 0) return 1;
  XDialog* dlog = gromlit->dlog;
  if (dlog == nullptr) return 0;
  // Only now: a dialog that is still open for another class goes on offering that one.
  std::free(dlog->arg);
  dlog->arg = StrDup(name);
  PopUpDialog(dlog, name, Logical(x), Logical(y));
  return 0;
}

}  // namespace gromlit
