#include "app/windows/icon_name.h"

#include "core/letters.h"
#include "display/display.h"
#include "toolkit/text.h"

namespace gromlit {
namespace {

void DrawCentred(Window window, GC gc, std::string_view text, int centre, int baseline) {
  if (text.empty()) return;
  DrawText(window, gc, centre - TextWidth(txtFontinfo, text) / 2, baseline, text);
}

}  // namespace

void DrawIconName(Window window, GC gc, std::string_view name, const IconNamePlace& place) {
  if (TextWidth(txtFontinfo, name) < place.limit) {
    DrawCentred(window, gc, name, place.centre, place.baseline);
    return;
  }
  const size_t blank = name.find(' ');
  const size_t split = blank != std::string_view::npos ? blank : LetterStart(name, name.size() / 2);
  DrawCentred(window, gc, name.substr(0, split), place.splitcentre, place.baseline);
  DrawCentred(window, gc, name.substr(split), place.splitcentre, place.baseline + txtCharht);
}

}  // namespace gromlit
