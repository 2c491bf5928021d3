#include "tools/markup.h"

#include <vector>

#include "core/utf8.h"

namespace gromlit {
namespace {

constexpr char32_t kReplacement = 0xFFFD;

bool IsBetween(char32_t c, char32_t first, char32_t last) {
  return first <= c && c <= last;
}

char32_t Harmless(char32_t c) {
  if (c == '\t' || c == '\n' || c == '\r') return ' ';
  const bool control = c < ' ' || IsBetween(c, 0x7F, 0x9F);
  const bool direction =
      IsBetween(c, 0x200E, 0x200F) || IsBetween(c, 0x202A, 0x202E) || IsBetween(c, 0x2066, 0x2069);
  const bool none = (c & 0xFFFE) == 0xFFFE || IsBetween(c, 0xFDD0, 0xFDEF);
  return control || direction || none ? kReplacement : c;
}

void AppendUtf8(char32_t c, std::string* out) {
  const auto put = [out](char32_t byte) { *out += static_cast<char>(byte); };
  if (c < 0x80) {
    put(c);
  } else if (c < 0x800) {
    put(0xC0 | c >> 6);
    put(0x80 | (c & 0x3F));
  } else if (c < 0x10000) {
    put(0xE0 | c >> 12);
    put(0x80 | (c >> 6 & 0x3F));
    put(0x80 | (c & 0x3F));
  } else {
    put(0xF0 | c >> 18);
    put(0x80 | (c >> 12 & 0x3F));
    put(0x80 | (c >> 6 & 0x3F));
    put(0x80 | (c & 0x3F));
  }
}

}  // namespace

std::u32string Characters(std::string_view bytes) {
  std::vector<char32_t> characters;
  size_t taken = 0;
  if (DecodeUtf8(bytes, &characters, &taken) != Utf8::kWhole) {
    characters.clear();
    for (const char c : bytes) characters.push_back(static_cast<unsigned char>(c));
  }
  std::u32string text;
  for (const char32_t c : characters) text += Harmless(c);
  return text;
}

std::string Escaped(std::u32string_view characters) {
  std::string out;
  for (const char32_t c : characters) {
    switch (c) {
      case '&':
        out += "&amp;";
        break;
      case '<':
        out += "&lt;";
        break;
      case '>':
        out += "&gt;";
        break;
      case '"':
        out += "&quot;";
        break;
      case '\'':
        out += "&#39;";
        break;
      default:
        AppendUtf8(c, &out);
    }
  }
  return out;
}

std::string Markup(std::string_view bytes) {
  return Escaped(Characters(bytes));
}

std::u32string Shortened(std::u32string characters, size_t limit) {
  if (characters.size() <= limit) return characters;
  characters.resize(limit < 3 ? limit : limit - 3);
  return limit < 3 ? characters : characters + U"...";
}

}  // namespace gromlit
