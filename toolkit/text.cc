#include "toolkit/text.h"

#include <algorithm>
#include <optional>
#include <vector>

#include "core/letters.h"
#include "display/display.h"
#include "display/fonts.h"
#include "display/scale.h"

namespace gromlit {
namespace {

constexpr char32_t kReplacement = 0xfffd;

int Length(std::string_view text) {
  return static_cast<int>(text.size());
}

XFontStruct* InfoOf(Font font) {
  for (XFontStruct* info : {txtFontinfo, labelFontinfo, logoFontinfo}) {
    if (info != nullptr && info->fid == font) return info;
  }
  return nullptr;
}

bool HasLetter(const XFontStruct* font, char32_t letter) {
  if (letter > 0xffff) return false;
  const unsigned row = letter >> 8;
  const unsigned column = letter & 0xff;
  if (row < font->min_byte1 || row > font->max_byte1) return false;
  if (column < font->min_char_or_byte2 || column > font->max_char_or_byte2) return false;
  if (font->per_char == nullptr) return true;
  const unsigned columns = font->max_char_or_byte2 - font->min_char_or_byte2 + 1;
  const XCharStruct& is =
      font->per_char[(row - font->min_byte1) * columns + column - font->min_char_or_byte2];
  return is.width != 0 || is.lbearing != 0 || is.rbearing != 0 || is.ascent != 0 || is.descent != 0;
}

std::vector<XChar2b> WideText(const XFontStruct* wide, const std::u32string& letters) {
  const char32_t mark = HasLetter(wide, kReplacement) ? kReplacement : U'?';
  std::vector<XChar2b> text;
  for (const char32_t letter : letters) {
    const char32_t shown = HasLetter(wide, letter) ? letter : mark;
    text.push_back({static_cast<unsigned char>(shown >> 8), static_cast<unsigned char>(shown)});
  }
  return text;
}

// What is to be drawn of a text: letters in a font of their own, or bytes in the font itself.
struct Drawn {
  XFontStruct* wide;  // null: `bytes` are drawn
  std::vector<XChar2b> letters;
  std::string bytes;
};

// None: the text is drawn as it lies there.
std::optional<Drawn> Decode(XFontStruct* font, std::string_view text) {
  if (font == nullptr) return {};
  const std::u32string letters = LettersOf(text);
  if (letters.empty()) return {};
  if (XFontStruct* wide = WideFormOf(font)) return Drawn{wide, WideText(wide, letters), {}};
  std::string bytes;
  for (const char32_t letter : letters) {
    if (letter > 0xff) return {};
    bytes.push_back(static_cast<char>(static_cast<unsigned char>(letter)));
  }
  return Drawn{nullptr, {}, bytes};
}

using DrawBytes = int (*)(Display*, Drawable, GC, int, int, const char*, int);
using DrawLetters = int (*)(Display*, Drawable, GC, int, int, const XChar2b*, int);

void DrawWith(DrawBytes bytes, DrawLetters letters, Window win, GC gc, int x, int baseline,
              std::string_view text) {
  XGCValues has{};
  // Xlib knows this itself.
  XGetGCValues(dpy, gc, GCFont, &has);
  const std::optional<Drawn> drawn = Decode(InfoOf(has.font), text);
  if (!drawn) {
    bytes(dpy, win, gc, Device(x), Device(baseline), text.data(), Length(text));
  } else if (drawn->wide == nullptr) {
    bytes(dpy, win, gc, Device(x), Device(baseline), drawn->bytes.data(), Length(drawn->bytes));
  } else {
    XSetFont(dpy, gc, drawn->wide->fid);
    letters(dpy, win, gc, Device(x), Device(baseline), drawn->letters.data(),
            static_cast<int>(drawn->letters.size()));
    XSetFont(dpy, gc, has.font);
  }
}

// Width of a text in device pixels, in which fonts have theirs.
int DeviceWidth(XFontStruct* font, std::string_view text) {
  const std::optional<Drawn> drawn = Decode(font, text);
  if (!drawn) return XTextWidth(font, text.data(), Length(text));
  if (drawn->wide == nullptr) return XTextWidth(font, drawn->bytes.data(), Length(drawn->bytes));
  return XTextWidth16(drawn->wide, drawn->letters.data(), static_cast<int>(drawn->letters.size()));
}

}  // namespace

int TextWidth(XFontStruct* font, std::string_view text) {
  return font != nullptr ? LogicalLength(DeviceWidth(font, text)) : 0;
}

std::string FittingText(XFontStruct* font, std::string_view text, int room) {
  std::string fitting(text);
  for (size_t kept = text.size(); kept > 0 && TextWidth(font, fitting) > room;) {
    kept = LetterStart(text, kept - 1);
    fitting = std::string(text.substr(0, kept)) + "...";
  }
  return fitting;
}

void DrawText(Window win, GC gc, int x, int baseline, std::string_view text) {
  DrawWith(XDrawString, XDrawString16, win, gc, x, baseline, text);
}

void DrawTextOnGround(Window win, GC gc, int x, int baseline, std::string_view text) {
  DrawWith(XDrawImageString, XDrawImageString16, win, gc, x, baseline, text);
}

void DrawCentredText(Window win, GC gc, int left, int width, int baseline, std::string_view text,
                     int textwidth) {
  DrawText(win, gc, left + (width - textwidth) / 2, baseline, text);
}

}  // namespace gromlit
