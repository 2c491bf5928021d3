#include "toolkit/resources.h"

#include "display/display.h"
#include "display/fonts.h"
#include "display/palette.h"
#include "display/shapes.h"
#include "toolkit/image.h"

namespace gromlit {

void MakeResources() {
  // The questions first, which the wait for the atoms answers together.
  AskForColours();
  AskForFonts();
  AskForCursorFont();
  AskForShapes();
  MakeAtoms();
  AskForShapesVersion();
  MakeColours();
  MakeImages();
  MakeHandCursor();
  LoadFonts();
  MakeContexts();
}

}  // namespace gromlit
