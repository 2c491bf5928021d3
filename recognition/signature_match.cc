#include "recognition/signature_match.h"

namespace gromlit {}
