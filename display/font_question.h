// Loading a font in two steps, so that several are on their way at the same time.
#pragma once

#include <X11/Xlib.h>
#include <xcb/xcb.h>

namespace gromlit {

struct FontQuestion {
  xcb_font_t font;
  xcb_void_cookie_t open;
  xcb_query_font_cookie_t query;
};

// Asks for a font by name. Each question is to be answered by FontOf once.
FontQuestion AskForFont(const char* name);

// As XLoadQueryFont returns it, to be freed by XFreeFont; null when the server has none.
XFontStruct* FontOf(const FontQuestion& question);

}  // namespace gromlit
