#include "core/files.h"

namespace gromlit {}
