#include "recognition/symbol_icon.h"

namespace gromlit {}
