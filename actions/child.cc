#include "actions/child.h"

namespace gromlit {}
