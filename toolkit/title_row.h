// The row of titles that heads a menu bar and a tab bar, and the height of a row of text.
#pragma once

#include <X11/Xlib.h>

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

}  // namespace gromlit
