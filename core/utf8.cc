#include "core/utf8.h"

namespace gromlit {
namespace {

constexpr char32_t kSurrogates = 0xD800;
constexpr char32_t kBehindSurrogates = 0xE000;
constexpr char32_t kLast = 0x10FFFF;

struct Lead {
  int more;          // bytes that follow
  char32_t bits;     // of the character, in the first byte
  char32_t atleast;  // smallest character that may take this many bytes
};

// `more` is -1 for a byte that begins no character.
constexpr Lead LeadOf(unsigned char c) {
  if (c < 0x80) return {0, c, 0};
  if (c < 0xC2) return {-1, 0, 0};
  if (c < 0xE0) return {1, c & 0x1FU, 0x80};
  if (c < 0xF0) return {2, c & 0x0FU, 0x800};
  if (c < 0xF5) return {3, c & 0x07U, 0x10000};
  return {-1, 0, 0};
}

}  // namespace

Utf8 DecodeUtf8(std::string_view text, std::vector<char32_t>* out, size_t* taken) {
  for (*taken = 0; *taken < text.size();) {
    const Lead lead = LeadOf(static_cast<unsigned char>(text[*taken]));
    if (lead.more < 0) return Utf8::kNot;
    char32_t c = lead.bits;
    for (int i = 1; i <= lead.more; i++) {
      const size_t at = *taken + static_cast<size_t>(i);
      if (at == text.size()) return Utf8::kCut;
      const auto byte = static_cast<unsigned char>(text[at]);
      if ((byte & 0xC0) != 0x80) return Utf8::kNot;
      c = c << 6 | (byte & 0x3FU);
    }
    if (c < lead.atleast || c > kLast || (c >= kSurrogates && c < kBehindSurrogates)) {
      return Utf8::kNot;
    }
    out->push_back(c);
    *taken += static_cast<size_t>(lead.more) + 1;
  }
  return Utf8::kWhole;
}

}  // namespace gromlit
