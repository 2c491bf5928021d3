#include "core/utf8.h"

#include <gtest/gtest.h>

#include <string>

namespace gromlit {
namespace {

struct Decoded {
  Utf8 how;
  std::u32string text;
  size_t taken;
  bool operator==(const Decoded&) const = default;
};

Decoded Decode(std::string_view text) {
  std::vector<char32_t> out;
  size_t taken = 99;
  const Utf8 how = DecodeUtf8(text, &out, &taken);
  return {how, std::u32string(out.begin(), out.end()), taken};
}

TEST(Utf8Text, CharactersOfEveryLength) {
  EXPECT_EQ(Decode("a\u00fc\u20ac\U0001F600"),
            (Decoded{Utf8::kWhole, U"a\u00fc\u20ac\U0001F600", 10}));
  EXPECT_EQ(Decode(""), (Decoded{Utf8::kWhole, U"", 0}));
  EXPECT_EQ(Decode(std::string_view("\0\x7f", 2)).taken, 2u);
}

TEST(Utf8Text, BoundsOfEveryLength) {
  for (const char32_t c :
       {0x7fU, 0x80U, 0x7ffU, 0x800U, 0xd7ffU, 0xe000U, 0xffffU, 0x10000U, 0x10ffffU}) {
    std::string bytes;
    if (c < 0x80) {
      bytes = {static_cast<char>(c)};
    } else if (c < 0x800) {
      bytes = {static_cast<char>(0xc0 | c >> 6), static_cast<char>(0x80 | (c & 0x3f))};
    } else if (c < 0x10000) {
      bytes = {static_cast<char>(0xe0 | c >> 12), static_cast<char>(0x80 | (c >> 6 & 0x3f)),
               static_cast<char>(0x80 | (c & 0x3f))};
    } else {
      bytes = {static_cast<char>(0xf0 | c >> 18), static_cast<char>(0x80 | (c >> 12 & 0x3f)),
               static_cast<char>(0x80 | (c >> 6 & 0x3f)), static_cast<char>(0x80 | (c & 0x3f))};
    }
    EXPECT_EQ(Decode(bytes), (Decoded{Utf8::kWhole, std::u32string(1, c), bytes.size()})) << bytes;
    for (size_t n = 1; n < bytes.size(); n++)
      EXPECT_EQ(Decode(bytes.substr(0, n)), (Decoded{Utf8::kCut, U"", 0})) << bytes << n;
  }
}

TEST(Utf8Text, WrongBytesEndIt) {
  for (const char* text :
       {"ab\x80", "ab\xbf", "ab\xc0\x80", "ab\xc1\xbf", "ab\xe0\x9f\xbf", "ab\xed\xa0\x80",
        "ab\xed\xbf\xbf", "ab\xf0\x8f\xbf\xbf", "ab\xf4\x90\x80\x80", "ab\xf5\x80\x80\x80",
        "ab\xff", "ab\xfc", "ab\xe2\x82z", "ab\xc3\xc3"})
    EXPECT_EQ(Decode(text), (Decoded{Utf8::kNot, U"ab", 2})) << testing::PrintToString(text);
}

}  // namespace
}  // namespace gromlit
