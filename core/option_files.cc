#include "core/option_files.h"

namespace gromlit {}
