#include "toolkit/resources.h"

#include "display/display.h"
#include "display/fonts.h"
#include "toolkit/image.h"

namespace gromlit {

void MakeResources() {
  MakeColours();
  MakeImages();
  MakeHandCursor();
  LoadFonts();
  MakeCursors();
  MakeContexts();
  MakeAtoms();
}

}  // namespace gromlit
