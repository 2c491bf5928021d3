#include "toolkit/hidden.h"

#include "toolkit/button.h"
#include "toolkit/menu_bar.h"

namespace gromlit {

void ReleaseHidden(void*, XEvent*) {
  ReleaseHiddenButton();
  ShutHiddenMenuBar();
}

}  // namespace gromlit
