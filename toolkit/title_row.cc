#include "toolkit/title_row.h"

namespace gromlit {

int RowHeight(const XFontStruct* font) {
  constexpr int kRoom = 6;  // a bevel of two pixels above and below, and a little air
  return font->max_bounds.ascent + font->max_bounds.descent + kRoom;
}

int LayOutTitles(XFontStruct* font, const char* const* labels, int n, int* itemx, int* itemwidth) {
  int x = kTitleMargin;
  int width = 0;
  for (int i = 0; i < n; i++) {
    itemwidth[i] = TextWidth(font, labels[i]);
    itemx[i] = x;
    x += itemwidth[i] + 2 * kTitleMargin;
    width += itemwidth[i] + 2 * kTitleMargin;
  }
  return width;
}

int TitleAt(const int* itemx, const int* itemwidth, int n, int x) {
  for (int i = 0; i < n; i++) {
    if (itemx[i] - kTitleMargin <= x && x < itemx[i] + itemwidth[i] + kTitleMargin) return i;
  }
  return -1;
}

}  // namespace gromlit
