#include "app/windows/icon_name.h"

#include "display/display.h"

namespace gromlit {
namespace {

int Width(std::string_view text) {
  // Without any font nothing has a width, and what is drawn is the server's choice.
  if (txtFontinfo == nullptr) return 0;
  return XTextWidth(txtFontinfo, text.data(), static_cast<int>(text.size()));
}

void DrawCentred(Window window, GC gc, std::string_view text, int centre, int baseline) {
  if (text.empty()) return;
  XDrawString(dpy, window, gc, centre - Width(text) / 2, baseline, text.data(),
              static_cast<int>(text.size()));
}

}  // namespace

void DrawIconName(Window window, GC gc, std::string_view name, const IconNamePlace& place) {
  if (Width(name) < place.limit) {
    DrawCentred(window, gc, name, place.centre, place.baseline);
    return;
  }
  const size_t blank = name.find(' ');
  const size_t split = blank != std::string_view::npos ? blank : name.size() / 2;
  DrawCentred(window, gc, name.substr(0, split), place.splitcentre, place.baseline);
  DrawCentred(window, gc, name.substr(split), place.splitcentre, place.baseline + txtCharht);
}

}  // namespace gromlit
