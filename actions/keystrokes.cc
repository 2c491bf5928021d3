#include "actions/keystrokes.h"

namespace gromlit {}
