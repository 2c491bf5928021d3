#include "core/symbol_files.h"

namespace gromlit {}
