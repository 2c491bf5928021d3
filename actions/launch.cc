#include "actions/launch.h"

namespace gromlit {}
