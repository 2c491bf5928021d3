#include "app/gromlit_app.h"

namespace gromlit {}
