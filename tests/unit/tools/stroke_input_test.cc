#include "tools/stroke_input.h"

#include <gtest/gtest.h>

namespace gromlit {
namespace {

std::string ErrorOf(std::string_view text) {
  Stroke stroke;
  std::string error;
  EXPECT_FALSE(ParseStroke(text, &stroke, &error)) << text;
  return error;
}

TEST(ParseStroke, ReadsOnePairPerLine) {
  Stroke stroke;
  std::string error;
  ASSERT_TRUE(ParseStroke("1 2\n  -3\t4 \r\n\n32767 -32768", &stroke, &error)) << error;
  ASSERT_EQ(stroke.count, 3);
  EXPECT_EQ(stroke.x[0], 1);
  EXPECT_EQ(stroke.y[0], 2);
  EXPECT_EQ(stroke.x[1], -3);
  EXPECT_EQ(stroke.y[1], 4);
  EXPECT_EQ(stroke.x[2], 32767);
  EXPECT_EQ(stroke.y[2], -32768);
}

TEST(ParseStroke, OfNothingHasNoPoints) {
  for (const char* text : {"", "\n", " \n\t\n"}) {
    Stroke stroke;
    stroke.count = 5;
    std::string error;
    EXPECT_TRUE(ParseStroke(text, &stroke, &error));
    EXPECT_EQ(stroke.count, 0);
  }
}

TEST(ParseStroke, DropsPointsBeyondThe256thButChecksThem) {
  std::string text;
  for (int i = 0; i < 300; i++) text += std::to_string(i) + " 7\n";
  Stroke stroke;
  std::string error;
  ASSERT_TRUE(ParseStroke(text, &stroke, &error));
  EXPECT_EQ(stroke.count, 256);
  EXPECT_EQ(stroke.x[255], 255);
  EXPECT_EQ(ErrorOf(text + "1 x\n"), "line 301: \"x\" is no whole number");
}

TEST(ParseStroke, NamesTheLineThatIsWrong) {
  EXPECT_EQ(ErrorOf("1 2\n\n3\n"), "line 3: two numbers are expected, there is only \"3\"");
  EXPECT_EQ(ErrorOf("1 2 3"), "line 1: only two numbers are expected, not \"3\"");
  EXPECT_EQ(ErrorOf("1,2"), "line 1: \"1,2\" is no whole number");
  EXPECT_EQ(ErrorOf("1.5 2"), "line 1: \"1.5\" is no whole number");
  EXPECT_EQ(ErrorOf("1 2x"), "line 1: \"2x\" is no whole number");
  EXPECT_EQ(ErrorOf("- 2"), "line 1: \"-\" is no whole number");
  EXPECT_EQ(ErrorOf(std::string_view("\0\0 1", 4)), "line 1: \"\\x00\\x00\" is no whole number");
}

TEST(ParseStroke, RefusesCoordinatesOutside16Bits) {
  EXPECT_EQ(ErrorOf("32768 0"), "line 1: \"32768\" lies outside -32768..32767");
  EXPECT_EQ(ErrorOf("0 -32769"), "line 1: \"-32769\" lies outside -32768..32767");
  EXPECT_EQ(ErrorOf("0 99999999999999999999"),
            "line 1: \"99999999999999999999\" lies outside -32768..32767");
}

TEST(ParseStroke, QuotesLongWordsInPart) {
  EXPECT_LT(ErrorOf(std::string(1'000'000, 'x')).size(), 100u);
}

}  // namespace
}  // namespace gromlit
