#include "toolkit/line_edit.h"

#include <gtest/gtest.h>

namespace gromlit {
namespace {

LineEdit Line(const std::string& text, size_t caret) {
  return {text, caret, caret};
}

size_t After(LineEdit line, LineStep step) {
  MoveCaret(&line, step, false);
  EXPECT_EQ(line.anchor, line.caret);
  return line.caret;
}

TEST(LineEditTest, StepsGoByLettersAndStopAtTheEnds) {
  const LineEdit line = Line("a\xc3\xa9z", 1);
  EXPECT_EQ(After(line, LineStep::kRight), 3u);
  EXPECT_EQ(After(Line(line.text, 3), LineStep::kLeft), 1u);
  EXPECT_EQ(After(Line(line.text, 0), LineStep::kLeft), 0u);
  EXPECT_EQ(After(Line(line.text, 4), LineStep::kRight), 4u);
  EXPECT_EQ(After(line, LineStep::kHome), 0u);
  EXPECT_EQ(After(line, LineStep::kEnd), 4u);
}

TEST(LineEditTest, WordsBeginBehindBlanksAndSigns) {
  const std::string text = "cp -a  /etc/x";
  EXPECT_EQ(After(Line(text, 13), LineStep::kWordLeft), 12u);
  EXPECT_EQ(After(Line(text, 12), LineStep::kWordLeft), 11u);
  EXPECT_EQ(After(Line(text, 7), LineStep::kWordLeft), 4u);
  EXPECT_EQ(After(Line(text, 2), LineStep::kWordLeft), 0u);
  EXPECT_EQ(After(Line(text, 0), LineStep::kWordLeft), 0u);
  EXPECT_EQ(After(Line(text, 0), LineStep::kWordRight), 3u);
  EXPECT_EQ(After(Line(text, 4), LineStep::kWordRight), 7u);
  EXPECT_EQ(After(Line(text, 12), LineStep::kWordRight), 13u);
  EXPECT_EQ(After(Line(text, 13), LineStep::kWordRight), 13u);
  EXPECT_EQ(After(Line("", 0), LineStep::kWordLeft), 0u);
  EXPECT_EQ(After(Line("", 0), LineStep::kWordRight), 0u);
}

TEST(LineEditTest, SelectingKeepsTheAnchorAndAPlainStepLeadsToTheSelectionsEnd) {
  LineEdit line = Line("abcdef", 3);
  MoveCaret(&line, LineStep::kLeft, true);
  MoveCaret(&line, LineStep::kLeft, true);
  EXPECT_EQ(SelectedSpan(line), (LineSpan{1, 3}));
  EXPECT_EQ(SelectedText(line), "bc");
  LineEdit left = line;
  MoveCaret(&left, LineStep::kLeft, false);
  EXPECT_EQ(left.caret, 1u);
  LineEdit right = line;
  MoveCaret(&right, LineStep::kRight, false);
  EXPECT_EQ(right.caret, 3u);
  MoveCaret(&line, LineStep::kEnd, true);
  EXPECT_EQ(SelectedText(line), "def");
}

TEST(LineEditTest, TwoPressesSelectAWordAndThreeEverything) {
  LineEdit line = Line("one two/three", 0);
  SelectWord(&line, 5);
  EXPECT_EQ(SelectedText(line), "two");
  SelectWord(&line, 7);
  EXPECT_EQ(SelectedText(line), "/");
  SelectWord(&line, 13);
  EXPECT_EQ(SelectedText(line), "three");
  SelectWord(&line, 3);
  EXPECT_EQ(SelectedText(line), " ");
  SelectAll(&line);
  EXPECT_EQ(SelectedText(line), "one two/three");
  LineEdit none = Line("", 0);
  SelectWord(&none, 0);
  EXPECT_EQ(SelectedText(none), "");
}

TEST(LineEditTest, RemovingTakesTheSelectionElseTheStep) {
  LineEdit line = Line("a\xc3\xa9z", 3);
  RemoveStep(&line, LineStep::kLeft);
  EXPECT_EQ(line.text, "az");
  EXPECT_EQ(line.caret, 1u);
  RemoveStep(&line, LineStep::kRight);
  EXPECT_EQ(line.text, "a");
  RemoveStep(&line, LineStep::kRight);
  EXPECT_EQ(line.text, "a");
  line = Line("abcdef", 2);
  line.anchor = 5;
  RemoveStep(&line, LineStep::kLeft);
  EXPECT_EQ(line.text, "abf");
  EXPECT_EQ(line.caret, 2u);
  EXPECT_FALSE(RemoveSelected(&line));
}

TEST(LineEditTest, InsertedTextReplacesTheSelectionAndEndsAtTheLimitWithAWholeLetter) {
  LineEdit line = Line("abcdef", 2);
  line.anchor = 4;
  InsertText(&line, "XYZ", 100);
  EXPECT_EQ(line.text, "abXYZef");
  EXPECT_EQ(line.caret, 5u);
  EXPECT_EQ(line.anchor, 5u);
  InsertText(&line, "\xc3\xa9\xc3\xa9", 10);
  EXPECT_EQ(line.text,
            "abXYZ\xc3\xa9"
            "ef")
      << "three bytes are no room for two letters";
  InsertText(&line, "more", 5);
  EXPECT_EQ(line.text,
            "abXYZ\xc3\xa9"
            "ef")
      << "a line that is too long already takes nothing";
}

TEST(LineEditTest, CaretIsPutWhereALetterBegins) {
  LineEdit line = Line("a\xc3\xa9z", 0);
  PutCaret(&line, 2, false);
  EXPECT_EQ(line.caret, 1u);
  PutCaret(&line, 4, true);
  EXPECT_EQ(SelectedText(line), "\xc3\xa9z");
}

TEST(LineEditTest, TakenTextIsOneLineWithoutControls) {
  EXPECT_EQ(LineOfUtf8("one\ntwo\r\nthree\tfour"), "one two three four");
  EXPECT_EQ(LineOfUtf8("line\r\n\n"), "line");
  EXPECT_EQ(LineOfUtf8("blank \n"), "blank ");
  EXPECT_EQ(LineOfUtf8(std::string("a\0b\x1b[1m\x7f\xc2\x9b!", 11)), "ab[1m!");
  EXPECT_EQ(LineOfUtf8("\xc3\xa9\xff\xfe|\xc3"), "\xc3\xa9|") << "what is no UTF-8 is left out";
  EXPECT_EQ(LineOfUtf8("\xf0\x9f\x98\x80"), "\xf0\x9f\x98\x80");
  EXPECT_EQ(LineOfUtf8("\xe2\x82\xac"), "\xe2\x82\xac");
  EXPECT_EQ(LineOfLatin1("caf\xe9\n"), "caf\xc3\xa9");
  EXPECT_EQ(LineOfUtf8(""), "");
}

TEST(LineEditTest, GivenTextIsLatin1AsFarAsThatGoes) {
  bool whole = false;
  EXPECT_EQ(Latin1Of("caf\xc3\xa9", &whole), "caf\xe9");
  EXPECT_TRUE(whole);
  EXPECT_EQ(Latin1Of("1\xe2\x82\xac", &whole), "1?");
  EXPECT_FALSE(whole);
  EXPECT_EQ(Latin1Of("caf\xe9"), "caf\xe9") << "it was none";
  EXPECT_EQ(Utf8Of("caf\xe9"), "caf\xc3\xa9");
  EXPECT_EQ(Utf8Of("caf\xc3\xa9"), "caf\xc3\xa9");
}

}  // namespace
}  // namespace gromlit
