#include "capture/start_up.h"
namespace gromlit {
int GromlitMain(int, char**) {
  return 0;
}
}  // namespace gromlit
