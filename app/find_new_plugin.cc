#include "app/find_new_plugin.h"

namespace gromlit {}
