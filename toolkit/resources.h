// What every window is drawn with.
#pragma once

namespace gromlit {

// Makes the colours, pictures, cursors, fonts, graphics contexts and atoms, in this order. To be
// called once, after OpenDisplay and before anything is made that is drawn. Reports no error:
// display/display.h and toolkit/image.h say what stands in for what cannot be had.
void MakeResources();

}  // namespace gromlit
