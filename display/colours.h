// Colours on screens whose pixels are numbers of a colour map, which can be full, and drawing that
// inverts what is there.
#pragma once

#include <X11/Xlib.h>

namespace gromlit {

// Sets the pixel of a colour (red, green, blue: 0..65535) in the default map of a screen. Where the
// map has neither the colour nor room for it, as when other clients have taken all cells, the pixel
// is that of the nearest colour that the map shares, at the worst the screen's black or white; red,
// green and blue stay what was wanted.
void AllocateColour(Display* display, int screen, XColor* colour);

// Forgets what is known of the map: to be called once for each connection, before the first colour.
void ForgetColourMap();

// The colour of a pixel of a TrueColor screen, whatever its depth, as 0xrrggbb.
unsigned long RgbOfPixel(Display* display, int screen, unsigned long pixel);

// What windows ask the server to keep of them: WhenMapped, or NotUseful where that would cost them
// their colours.
int BackingStoreOfScreen(Display* display, int screen);

// How a graphics context inverts so that it is seen, and drawing once more takes it back.
struct Inversion {
  int function;              // GXinvert or GXxor
  unsigned long foreground;  // for GXxor
};
Inversion InversionOfScreen(Display* display, int screen);

}  // namespace gromlit
