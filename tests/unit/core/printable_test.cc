#include "core/printable.h"

#include <gtest/gtest.h>

namespace gromlit {
namespace {

TEST(Printable, KeepsWhatPeopleRead) {
  EXPECT_EQ(Printable(""), "");
  EXPECT_EQ(Printable("XTerm.xterm \\ ~"), "XTerm.xterm \\ ~");
  EXPECT_EQ(Printable("Grüße 日本 \U0001f600"), "Grüße 日本 \U0001f600");
  EXPECT_EQ(Printable("\u00a0\u07ff\u0800\ud7ff\U0010ffff"), "\u00a0\u07ff\u0800\ud7ff\U0010ffff");
}

TEST(Printable, EscapesWhatSteersATerminal) {
  EXPECT_EQ(Printable("a\nb\r\t"), "a\\x0ab\\x0d\\x09");
  EXPECT_EQ(Printable("\033[2J\a\x7f"), "\\x1b[2J\\x07\\x7f");
  EXPECT_EQ(Printable(std::string_view("\0x", 2)), "\\x00x");
  EXPECT_EQ(Printable("\u0080\u009b1m\u009f"), "\\xc2\\x80\\xc2\\x9b1m\\xc2\\x9f");
}

TEST(Printable, EscapesBytesThatAreNoText) {
  EXPECT_EQ(Printable("\x9b"
                      "1m\x80"),
            "\\x9b1m\\x80");
  EXPECT_EQ(Printable("\xe2\x82"), "\xe2\\x82") << "cut";
  EXPECT_EQ(Printable("\xc0\x8a\xe0\x80\x8a"), "\xc0\\x8a\xe0\\x80\\x8a") << "overlong";
  EXPECT_EQ(Printable("\xed\xa0\x80\xf4\x90\x80\x80"), "\xed\xa0\\x80\xf4\\x90\\x80\\x80");
}

TEST(Printable, KeepsLettersOfOlderEncodings) {
  EXPECT_EQ(Printable("Gr\xfc\xdf"
                      "e \xe4"),
            "Gr\xfc\xdf"
            "e \xe4");
  EXPECT_EQ(Printable("\xc2\xc2\x9b"), "\\xc2\\xc2\\x9b");
}

}  // namespace
}  // namespace gromlit
