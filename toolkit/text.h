// Measuring and drawing text, in one way for all widgets.
//
// Plain ASCII is drawn as it lies there. A text that is UTF-8 beyond that is drawn by its letters,
// in the form of the font that has them (iso10646-1); a letter that is not in it is a replacement
// mark. Where the server has no such form the letters of Latin-1 are drawn in the font itself. All
// other texts are drawn byte by byte.
#pragma once

#include <X11/Xlib.h>

#include <string>
#include <string_view>

namespace gromlit {

// Width of a text, pixels; 0 without a font. Round trips only for the first text of a font that is
// not plain ASCII.
int TextWidth(XFontStruct* font, std::string_view text);

// The text, shortened with "..." to what `room` pixels hold; never within a letter.
std::string FittingText(XFontStruct* font, std::string_view text, int room);

// Draws a text in gc's font and foreground. One request for plain ASCII.
void DrawText(Window win, GC gc, int x, int baseline, std::string_view text);

// The same with its ground in gc's background.
void DrawTextOnGround(Window win, GC gc, int x, int baseline, std::string_view text);

// Draws a text of known width centred in the `width` pixels that begin at `left`; a text that is
// wider sticks out at both sides.
void DrawCentredText(Window win, GC gc, int left, int width, int baseline, std::string_view text,
                     int textwidth);

}  // namespace gromlit
