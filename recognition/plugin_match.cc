#include "recognition/plugin_match.h"

namespace gromlit {}
