#include "core/record_codec.h"

namespace gromlit {}
