#include "core/strings.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

namespace gromlit {
namespace {

std::string Taken(char* heap) {
  std::string text = heap;
  std::free(heap);
  return text;
}

TEST(Strings, LengthCompareCopyAppend) {
  char buffer[16];
  EXPECT_EQ(StrLength(""), 0u);
  EXPECT_EQ(StrLength("abc"), 3u);
  EXPECT_EQ(StrCmp("abc", "abc"), 0);
  EXPECT_LT(StrCmp("abc", "abd"), 0);
  EXPECT_GT(StrCmp("b", "abc"), 0);
  EXPECT_LT(StrCmp("a", "\xff"), 0) << "bytes compare unsigned";
  EXPECT_EQ(StrCopy(buffer, "abc"), buffer);
  EXPECT_EQ(StrAppend(buffer, "def"), buffer);
  EXPECT_STREQ(buffer, "abcdef");
}

TEST(Strings, DupOfNullIsNull) {
  EXPECT_EQ(StrDup(nullptr), nullptr);
}

TEST(Strings, DupIsANewCopy) {
  const char* text = "text";
  char* copy = StrDup(text);
  EXPECT_NE(copy, text);
  EXPECT_EQ(Taken(copy), "text");
}

TEST(Strings, MaxStrCopyKeepsTextThatIsThreeShorterThanTheField) {
  EXPECT_EQ(Taken(MaxStrCopy("1234567", 10)), "1234567");
  EXPECT_EQ(Taken(MaxStrCopy("", 4)), "");
}

TEST(Strings, MaxStrCopyCutsLongerTextAndEndsItWithDots) {
  EXPECT_EQ(Taken(MaxStrCopy("12345678", 10)), "123456...");
  EXPECT_EQ(Taken(MaxStrCopy("123456789012345", 10)), "123456...");
  EXPECT_EQ(Taken(MaxStrCopy("12", 4)), "...") << "the smallest field holds the dots alone";
}

TEST(Strings, CopyTextCutsTerminatesAndZeroesTheRest) {
  char field[8];
  std::memset(field, 'x', sizeof field);
  CopyText(field, "abc");
  EXPECT_EQ(std::string(field, 8), std::string("abc\0\0\0\0\0", 8));
  CopyText(field, "abcdefghij");
  EXPECT_STREQ(field, "abcdefg");
  CopyText(field, std::string_view());
  EXPECT_EQ(std::string(field, 8), std::string(8, '\0'));
}

TEST(Strings, CopyTextMayCutAFieldInPlace) {
  char field[8] = "abcdefg";
  CopyText(field, std::string_view(field + 2, 3));
  EXPECT_EQ(std::string(field, 8), std::string("cde\0\0\0\0\0", 8));
}

TEST(Strings, FieldTextStopsAtTheFirstNulOrBeforeTheLastByte) {
  const char full[4] = {'a', 'b', 'c', 'd'};
  EXPECT_EQ(FieldText(full), "abc");
  const char cut[4] = {'a', '\0', 'c', 'd'};
  EXPECT_EQ(FieldText(cut), "a");
  const char empty[4] = {};
  EXPECT_EQ(FieldText(empty), "");
}

TEST(Strings, SortStrCmpSortsTextPointersBytewise) {
  const char* words[] = {"b", "a", "\xe4", "B", "ab"};
  std::qsort(words, 5, sizeof words[0], SortStrCmp);
  EXPECT_EQ(std::vector<std::string>(words, words + 5),
            (std::vector<std::string>{"B", "a", "ab", "b", "\xe4"}));
}

}  // namespace
}  // namespace gromlit
