// What every window is drawn with.
#pragma once

namespace gromlit {

// Makes the atoms, colours, pictures, fonts, graphics contexts and the hand of the strokes; the
// other cursors are left to MakeCursors (display/display.h). To be called once, after OpenDisplay
// and before anything is made that is drawn. Reports no error: display/display.h and
// toolkit/image.h say what stands in for what cannot be had.
void MakeResources();

}  // namespace gromlit
