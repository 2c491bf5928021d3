#include "core/plugin_files.h"

namespace gromlit {}
