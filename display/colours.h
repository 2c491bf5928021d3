// The colours, also where pixels are numbers of a colour map, which can be full, and drawing that
// inverts what is there.
#pragma once

#include <X11/Xlib.h>

namespace gromlit {

// Asks for the colours that all share, without waiting for the answers, which MakeColours takes in.
void AskForColours();

// Sets the pixels of white, black, lgrey, dgrey, grey and blue (display/display.h), those of the
// latter four as AllocateColour does. To be called once for each connection, before any other
// colour.
void MakeColours();

// Sets the pixel of a colour (red, green, blue: 0..65535) in `cmap`. Where the map has neither the
// colour nor room for it, as when other clients have taken all cells, the pixel is that of the
// nearest colour that the map shares, at the worst the screen's black or white; red, green and blue
// stay what was wanted.
void AllocateColour(XColor* colour);

// The colour of a pixel of a TrueColor screen, whatever its depth, as 0xrrggbb.
unsigned long RgbOfPixel(unsigned long pixel);

// What windows ask the server to keep of them: WhenMapped, or NotUseful where that would cost them
// their colours.
int BackingStoreOfScreen();

// How a graphics context inverts so that it is seen, and drawing once more takes it back.
struct Inversion {
  int function;              // GXinvert or GXxor
  unsigned long foreground;  // for GXxor
};
Inversion InversionOfScreen();

}  // namespace gromlit
