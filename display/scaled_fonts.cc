#include "display/scaled_fonts.h"

#include <X11/Xatom.h>
#include <X11/Xutil.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <map>
#include <optional>
#include <utility>

#include "display/display.h"
#include "display/font_question.h"
#include "display/scale.h"
#include "display/x_handles.h"

namespace gromlit {
namespace {

// The fields of a font's name, from the maker to the letters it has.
enum Field {
  kMaker,
  kFamily,
  kWeight,
  kSlant,
  kSetWidth,
  kStyle,
  kPixels,
  kPoints,
  kAcross,  // dots per inch
  kDown,
  kSpacing,
  kWidth,  // of all letters on the average, tenths of a pixel
  kRegistry,
  kEncoding,
  kFields,
};
using FontName = std::array<std::string, kFields>;

std::optional<FontName> Split(std::string_view text) {
  FontName name;
  for (std::string& field : name) {
    if (!text.starts_with('-')) return {};
    text.remove_prefix(1);
    const size_t end = std::min(text.find('-'), text.size());
    field = text.substr(0, end);
    text.remove_prefix(end);
  }
  return text.empty() ? std::optional(name) : std::nullopt;
}

std::string Join(const FontName& name) {
  std::string text;
  for (const std::string& field : name) text += "-" + field;
  return text;
}

// 0 for a field that is no number, or none that fits.
int Number(const std::string& field) {
  int number = 0;
  std::from_chars(field.data(), field.data() + field.size(), number);
  return number;
}

// The names of fonts that match.
class FontList {
 public:
  explicit FontList(const FontName& pattern)
      : names_(XListFonts(dpy, Join(pattern).c_str(), kMost, &n_)) {}
  ~FontList() {
    if (names_ != nullptr) XFreeFontNames(names_);
  }
  FontList(const FontList&) = delete;
  FontList& operator=(const FontList&) = delete;

  char** names() const { return names_; }
  int size() const { return names_ != nullptr ? n_ : 0; }

 private:
  static constexpr int kMost = 2000;
  int n_ = 0;
  char** names_;
};

std::string FullName(XFontStruct* font) {
  unsigned long atom = 0;
  if (XGetFontProperty(font, XA_FONT, &atom) == 0) return "";
  const XData<char> name(XGetAtomName(dpy, atom));
  return name != nullptr ? name.get() : "";
}

// The name of a font twice as large as the one of that name; "" when there is none.
std::string DoubleName(const std::string& fullname) {
  const std::optional<FontName> is = Split(fullname);
  if (!is || Number((*is)[kPixels]) < 1) return "";
  FontName outline = *is;
  for (const Field any : {kMaker, kStyle}) outline[any] = "*";
  FontName bitmap = outline;
  // An outline's name has no size and no resolution; one that has a resolution is a bitmap that the
  // server would stretch.
  for (const Field none : {kPixels, kPoints, kAcross, kDown, kWidth}) outline[none] = "0";
  if (const FontList found(outline); found.size() > 0) {
    if (std::optional<FontName> sized = Split(found.names()[0])) {
      (*sized)[kPixels] = std::to_string(2 * Number((*is)[kPixels]));
      for (const Field open : {kPoints, kAcross, kDown, kWidth}) (*sized)[open] = "*";
      return Join(*sized);
    }
  }
  // A "semicondensed" one may be followed by a "normal" one as it gets larger.
  for (const Field any : {kSetWidth, kPixels, kPoints, kAcross, kDown, kWidth}) bitmap[any] = "*";
  const FontList found(bitmap);
  return NearestDouble(found.names(), found.size(), Number((*is)[kPixels]), Number((*is)[kWidth]));
}

// Names of fonts that were replaced.
std::map<const XFontStruct*, std::string>& Replaced() {
  static auto* fonts = new std::map<const XFontStruct*, std::string>;
  return *fonts;
}

// Makes a metric of device pixels one of logical pixels, and at least that of scale 1.
template <typename Number>
void Settle(Number* metric, int unscaled) {
  *metric = static_cast<Number>(std::max(LogicalLength(*metric), unscaled));
}

}  // namespace

XFontStruct* LoadScaledFont(const char* name) {
  return LoadScaledFont(AskForFont(name));
}

XFontStruct* LoadScaledFont(const FontQuestion& question) {
  XFontStruct* font = FontOf(question);
  if (font == nullptr || Scale() == 1) return font;
  const std::string fullname = FullName(font);
  const std::string larger = DoubleName(fullname);
  XFontStruct* scaled = larger.empty() ? nullptr : XLoadQueryFont(dpy, larger.c_str());
  if (scaled == nullptr) {
    // Its own letters, small on lines of the scale.
    return font;
  }
  Settle(&scaled->ascent, font->ascent);
  Settle(&scaled->descent, font->descent);
  Settle(&scaled->max_bounds.ascent, font->max_bounds.ascent);
  Settle(&scaled->max_bounds.descent, font->max_bounds.descent);
  Replaced()[scaled] = fullname;
  XFreeFont(dpy, font);
  return scaled;
}

std::string UnscaledName(XFontStruct* font) {
  const auto found = Replaced().find(font);
  return found != Replaced().end() ? found->second : FullName(font);
}

void ForgetScaledFonts() {
  Replaced().clear();
}

std::string NearestDouble(const char* const* names, int n, int pixels, int width) {
  std::string best;
  std::pair<int, int> bestoff;
  for (int i = 0; i < n; i++) {
    const std::optional<FontName> is = Split(names[i]);
    // Those that the server would stretch have a zero in one of them.
    if (!is || Number((*is)[kPixels]) <= pixels || Number((*is)[kWidth]) < 1) continue;
    const std::pair<int, int> off = {std::abs(Number((*is)[kPixels]) - 2 * pixels),
                                     std::abs(Number((*is)[kWidth]) - 2 * width)};
    if (best.empty() || off < bestoff) {
      best = names[i];
      bestoff = off;
    }
  }
  return best;
}

}  // namespace gromlit
