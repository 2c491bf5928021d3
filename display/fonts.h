// Loading the fonts that display/display.h keeps.
#pragma once

#include <X11/Xlib.h>

namespace gromlit {

// Loads them for the display and the scale. A missing font is replaced by "fixed" after a line on
// standard output.
void LoadFonts();

// Asks for them without waiting for the answer, which LoadFonts takes in.
void AskForFonts();

// The form of one of the fonts that has the letters of all languages (iso10646-1); the font
// itself when it is that; null when the server has none. Loaded at the first call for the font,
// with round trips.
XFontStruct* WideFormOf(XFontStruct* font);

}  // namespace gromlit
