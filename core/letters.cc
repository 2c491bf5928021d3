#include "core/letters.h"

#include <algorithm>
#include <vector>

#include "core/utf8.h"

namespace gromlit {
namespace {

bool GoesOn(char byte) {
  return (static_cast<unsigned char>(byte) & 0xc0) == 0x80;
}

bool IsAscii(std::string_view text) {
  return std::all_of(text.begin(), text.end(),
                     [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

}  // namespace

std::u32string LettersOf(std::string_view text) {
  if (IsAscii(text)) return {};
  std::vector<char32_t> letters;
  size_t taken = 0;
  if (DecodeUtf8(text, &letters, &taken) != Utf8::kWhole) return {};
  return {letters.begin(), letters.end()};
}

size_t LetterStart(std::string_view text, size_t at) {
  if (at == text.size() || !GoesOn(text[at]) || LettersOf(text).empty()) return at;
  while (GoesOn(text[at])) at--;
  return at;
}

size_t LetterEnd(std::string_view text, size_t at) {
  size_t end = at + 1;
  if (LettersOf(text).empty()) return end;
  while (end < text.size() && GoesOn(text[end])) end++;
  return end;
}

}  // namespace gromlit
