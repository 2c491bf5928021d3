#include "actions/execute.h"

namespace gromlit {}
