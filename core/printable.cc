#include "core/printable.h"

#include <cstddef>

namespace gromlit {
namespace {

// Bytes of the valid character that begins here and controls nothing; 0 for none.
size_t CharacterAt(std::string_view text) {
  const auto byte = [&](size_t i) { return static_cast<unsigned char>(text[i]); };
  const unsigned lead = byte(0);
  if (lead < 0x80) return lead >= ' ' && lead != 0x7f ? 1 : 0;
  const size_t size = lead >= 0xf0 ? 4 : lead >= 0xe0 ? 3 : 2;
  if (lead < 0xc2 || lead > 0xf4 || text.size() < size) return 0;
  for (size_t i = 1; i < size; i++)
    if ((byte(i) & 0xc0) != 0x80) return 0;
  const unsigned second = byte(1);
  if (lead == 0xc2 && second < 0xa0) return 0;  // control characters
  if (lead == 0xe0 && second < 0xa0) return 0;  // longer than need be
  if (lead == 0xf0 && second < 0x90) return 0;
  if (lead == 0xed && second > 0x9f) return 0;  // surrogates
  if (lead == 0xf4 && second > 0x8f) return 0;  // above U+10FFFF
  return size;
}

}  // namespace

std::string Printable(std::string_view text) {
  constexpr char kDigits[] = "0123456789abcdef";
  std::string shown;
  while (!text.empty()) {
    const size_t size = CharacterAt(text);
    if (size != 0) {
      shown += text.substr(0, size);
    } else {
      const auto byte = static_cast<unsigned char>(text[0]);
      if (byte >= 0xa0 && !text.starts_with("\xc2")) {
        shown += text[0];
        text.remove_prefix(1);
        continue;
      }
      shown += {'\\', 'x', kDigits[byte >> 4], kDigits[byte & 15]};
    }
    text.remove_prefix(size != 0 ? size : 1);
  }
  return shown;
}

}  // namespace gromlit
