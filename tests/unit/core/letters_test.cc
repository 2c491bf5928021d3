#include "core/letters.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>
#include <string_view>

#include "core/strings.h"

namespace gromlit {
namespace {

TEST(Letters, LettersOfTextsBeyondAscii) {
  EXPECT_EQ(LettersOf("\xc3\xbc"), U"\u00fc");
  EXPECT_EQ(LettersOf("a\xc3\xbc"
                      "b"),
            U"a\u00fc"
            U"b");
  EXPECT_EQ(LettersOf("\xd0\x96\xe2\x82\xac\xf0\x9f\x98\x80"), U"\u0416\u20ac\U0001f600");
  EXPECT_EQ(LettersOf("\xf4\x8f\xbf\xbf"), U"\U0010ffff");
}

TEST(Letters, NoLettersOfAsciiAndOfWhatIsNotUtf8) {
  for (const char* text : {
           "",
           "plain",
           "\x7f",
           "\xfc",  // Latin-1
           "G\xfc"
           "ltig",              //
           "\xc3",              // cut off
           "\xe2\x82",          //
           "\xbc",              // no beginning
           "\xc0\x80",          // longer than need be
           "\xc1\xbf",          //
           "\xe0\x9f\xbf",      //
           "\xf0\x8f\xbf\xbf",  //
           "\xed\xa0\x80",      // half of a pair
           "\xf4\x90\x80\x80",  // beyond the last letter
           "\xf5\x80\x80\x80",
           "\xff",
           "\xc3\xbc\xfc",
       }) {
    EXPECT_EQ(LettersOf(text), U"") << text;
  }
}

// Every letter there is, encoded by hand.
TEST(Letters, EveryLetterComesBack) {
  for (char32_t letter = 0x80; letter <= 0x10ffff; letter++) {
    if (letter >= 0xd800 && letter < 0xe000) continue;
    std::string text;
    const auto rest = [&](int shift) {
      text.push_back(static_cast<char>(0x80 | (letter >> shift & 0x3f)));
    };
    if (letter < 0x800) {
      text.push_back(static_cast<char>(0xc0 | letter >> 6));
    } else if (letter < 0x10000) {
      text.push_back(static_cast<char>(0xe0 | letter >> 12));
      rest(6);
    } else {
      text.push_back(static_cast<char>(0xf0 | letter >> 18));
      rest(12);
      rest(6);
    }
    rest(0);
    ASSERT_EQ(LettersOf(text), std::u32string(1, letter)) << static_cast<uint32_t>(letter);
  }
}

TEST(Letters, LettersAreNotCutInTwo) {
  const std::string text = "a\xe2\x82\xac\xc3\xbc";
  const size_t starts[] = {0, 1, 1, 1, 4, 4, 6};
  for (size_t at = 0; at <= text.size(); at++) EXPECT_EQ(LetterStart(text, at), starts[at]) << at;
  EXPECT_EQ(LetterEnd(text, 0), 1u);
  EXPECT_EQ(LetterEnd(text, 1), 4u);
  EXPECT_EQ(LetterEnd(text, 4), 6u);
  const std::string bytes = "a\x82\xac";
  for (size_t at = 0; at <= bytes.size(); at++) EXPECT_EQ(LetterStart(bytes, at), at);
  for (size_t at = 0; at < bytes.size(); at++) EXPECT_EQ(LetterEnd(bytes, at), at + 1);
}

// A part of a longer text: what follows it is none of its letters.
TEST(Letters, TheEndOfAPartIsTheEnd) {
  const std::string text = "a\xe2\x82\xac";
  const std::string_view invalid(text.data(), 3);
  EXPECT_EQ(LetterStart(invalid, 3), 3u);
  const std::string more = "\xc3\xbc\xbc";
  const std::string_view whole(more.data(), 2);
  EXPECT_EQ(LetterStart(whole, 2), 2u);
  EXPECT_EQ(LetterEnd(whole, 0), 2u);
}

TEST(Letters, AShortenedTextEndsWithAWholeLetter) {
  // The cut at 16 bytes would go through the ninth letter.
  std::string text = "a";
  for (int i = 0; i < 12; i++) text += "\xc3\xbc";
  char* cut = MaxStrCopy(text.c_str(), 20);
  EXPECT_EQ(std::string(cut), text.substr(0, 15) + "...");
  free(cut);
}

}  // namespace
}  // namespace gromlit
