#include "display/font_question.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <span>

#include "display/display.h"
#include "display/replies.h"

namespace gromlit {
namespace {

XCharStruct Metrics(const xcb_charinfo_t& letter) {
  return {letter.left_side_bearing, letter.right_side_bearing,
          letter.character_width,   letter.ascent,
          letter.descent,           letter.attributes};
}

// Xlib frees what hangs on a font by itself.
template <typename T>
T* NewArray(size_t count) {
  return count > 0 ? static_cast<T*>(std::calloc(count, sizeof(T))) : nullptr;
}

}  // namespace

FontQuestion AskForFont(const char* name) {
  xcb_connection_t* const connection = XGetXCBConnection(dpy);
  FontQuestion question{};
  question.font = xcb_generate_id(connection);
  question.open = xcb_open_font_checked(connection, question.font,
                                        static_cast<uint16_t>(std::strlen(name)), name);
  question.query = xcb_query_font(connection, question.font);
  return question;
}

XFontStruct* FontOf(const FontQuestion& question) {
  const auto is = AnswerTo(xcb_query_font_reply, question.query);
  const bool opened = ErrorOf(question.open) == Success;
  if (is == nullptr || !opened) return nullptr;
  const std::span properties(xcb_query_font_properties(is.get()),
                             static_cast<size_t>(xcb_query_font_properties_length(is.get())));
  const std::span letters(xcb_query_font_char_infos(is.get()),
                          static_cast<size_t>(xcb_query_font_char_infos_length(is.get())));
  auto* const font = NewArray<XFontStruct>(1);
  auto* const fontproperties = NewArray<XFontProp>(properties.size());
  auto* const metrics = NewArray<XCharStruct>(letters.size());
  if (font == nullptr || (fontproperties == nullptr && !properties.empty()) ||
      (metrics == nullptr && !letters.empty())) {
    std::free(font);
    std::free(fontproperties);
    std::free(metrics);
    return nullptr;
  }
  font->fid = question.font;
  font->direction = is->draw_direction;
  font->min_char_or_byte2 = is->min_char_or_byte2;
  font->max_char_or_byte2 = is->max_char_or_byte2;
  font->min_byte1 = is->min_byte1;
  font->max_byte1 = is->max_byte1;
  font->all_chars_exist = is->all_chars_exist;
  font->default_char = is->default_char;
  font->min_bounds = Metrics(is->min_bounds);
  font->max_bounds = Metrics(is->max_bounds);
  font->ascent = is->font_ascent;
  font->descent = is->font_descent;
  font->n_properties = static_cast<int>(properties.size());
  font->properties = fontproperties;
  font->per_char = metrics;
  std::ranges::transform(properties, fontproperties, [](const xcb_fontprop_t& property) {
    return XFontProp{property.name, property.value};
  });
  std::ranges::transform(letters, metrics, Metrics);
  return font;
}

}  // namespace gromlit
