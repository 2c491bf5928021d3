// Fonts of the size that the scale asks for.
//
// At scale 2 a font is replaced by one of the same family, weight, slant and letters that is twice
// as large: by an outline, which has every size, else by the bitmap font that comes nearest and is
// larger. Bitmaps that a server would stretch are not taken. Where there is no other the font
// itself is drawn.
#pragma once

#include <X11/Xlib.h>

#include <string>
#include <string_view>

#include "display/font_question.h"

namespace gromlit {

// Loads the font for a name of scale 1; null when the server has none. Ascent and descent, also
// those of max_bounds, are then in logical pixels, and at least what they are at scale 1, so that
// lines lie where they do there; widths are in device pixels. Round trips: one at scale 1, a few
// more at 2.
XFontStruct* LoadScaledFont(const char* name);

// The same for a font that was asked for before.
XFontStruct* LoadScaledFont(const FontQuestion& question);

// The full name, such as "-misc-fixed-...-iso8859-1", of the font that a loaded one is at scale 1;
// "" when the server does not say.
std::string UnscaledName(XFontStruct* font);

// To be called before fonts are loaded for another display.
void ForgetScaledFonts();

// Of the names, those of bitmap fonts in full, the one of a font of more than `pixels` whose size
// is nearest to twice that; of two as near the one whose width is nearer to twice `width`, tenths
// of a pixel. "" when there is none.
std::string NearestDouble(const char* const* names, int n, int pixels, int width);

}  // namespace gromlit
