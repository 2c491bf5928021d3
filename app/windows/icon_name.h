// The name below an icon of a grid.
#pragma once

#include <X11/Xlib.h>

#include <string_view>

namespace gromlit {

// Where a name goes, pixels of the window.
struct IconNamePlace {
  int centre;       // of a name in one line
  int splitcentre;  // of both lines of a name in two
  int baseline;     // of the first line; the second one is a line of text lower
  int limit;        // a name this wide or wider gets two lines
};

// Draws a name in the context's colour and the text font, in two lines when it is too wide: split
// at its first blank, with which the second line begins, or in the middle. No round trips.
void DrawIconName(Window window, GC gc, std::string_view name, const IconNamePlace& place);

}  // namespace gromlit
