// The row of titles that heads a menu bar and a tab bar, and the height of a row of text.
#pragma once

#include <X11/Xlib.h>

#include <algorithm>

#include "toolkit/bevel.h"
#include "toolkit/text.h"

namespace gromlit {

inline constexpr int kMaxTitles = 32;   // titles of one bar; those beyond are left out
inline constexpr int kTitleMargin = 8;  // pixels that belong to a title left and right of its text

// Height of a menu row or of a bar's titles: the font's tallest letter and 6 pixels.
int RowHeight(const XFontStruct* font);

// Places `n` titles (0..kMaxTitles) from left to right: itemwidth[i] is the width of labels[i],
// itemx[i] the x of its text. Returns the width of all titles with their margins, pixels.
int LayOutTitles(XFontStruct* font, const char* const* labels, int n, int* itemx, int* itemwidth);

// The first of `n` titles whose text or margins hold x; -1 for none.
int TitleAt(const int* itemx, const int* itemwidth, int n, int x);

// Takes the titles of a bar over and lays them out: items, nitems, visible, itemheight, itemx and
// itemwidth. Releases those beyond kMaxTitles. Returns what LayOutTitles does.
template <typename Bar, typename Item>
int TakeTitles(Bar* bar, XFontStruct* fontinfo, Item* const* items, int nitems) {
  const int kept = std::clamp(nitems, 0, kMaxTitles);
  for (int i = kept; i < nitems; i++) delete items[i];
  const char* labels[kMaxTitles] = {};
  for (int i = 0; i < kept; i++) {
    bar->items[i] = items[i];
    labels[i] = items[i]->label;
  }
  bar->nitems = kept;
  bar->visible = kept;
  bar->itemheight = RowHeight(fontinfo);
  return LayOutTitles(fontinfo, labels, kept, bar->itemx, bar->itemwidth);
}

// Draws the titles of a bar in the foreground of its context.
template <typename Bar>
void DrawTitles(const Bar* bar) {
  for (int i = 0; i < std::min(bar->visible, bar->nitems); i++) {
    DrawText(bar->window, bar->gc, bar->itemx[i], bar->itemheight - 3, bar->items[i]->label);
  }
}

}  // namespace gromlit
