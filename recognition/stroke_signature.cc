#include "recognition/stroke_signature.h"

namespace gromlit {}
