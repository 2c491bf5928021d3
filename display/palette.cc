#include "display/palette.h"

#include <X11/Xlib-xcb.h>
#include <xcb/xcb.h>

#include <array>
#include <cstddef>
#include <iterator>

#include "display/colours.h"
#include "display/display.h"
#include "display/replies.h"

namespace gromlit {
namespace {

XColor* const kColours[] = {&white, &black, &lgrey, &dgrey, &grey, &blue};

struct ColourQuestions {
  bool asked;
  std::array<xcb_alloc_color_cookie_t, std::size(kColours)> cookies;
};
ColourQuestions colours{};

}  // namespace

void AskForColours() {
  for (size_t i = 0; i < std::size(kColours); i++) {
    const XColor& colour = *kColours[i];
    colours.cookies[i] = xcb_alloc_color(XGetXCBConnection(dpy), static_cast<xcb_colormap_t>(cmap),
                                         colour.red, colour.green, colour.blue);
  }
  colours.asked = true;
}

void MakeColours() {
  if (!colours.asked) AskForColours();
  colours.asked = false;
  ForgetColourMap();
  for (size_t i = 0; i < std::size(kColours); i++) {
    XColor* const colour = kColours[i];
    const auto is = AnswerTo(xcb_alloc_color_reply, colours.cookies[i]);
    if (is == nullptr) {
      TakeNearestColour(dpy, screen, colour);
      continue;
    }
    colour->pixel = is->pixel;
    colour->red = is->red;
    colour->green = is->green;
    colour->blue = is->blue;
  }
  white.pixel = WhitePixel(dpy, screen);
  black.pixel = BlackPixel(dpy, screen);
}

}  // namespace gromlit
