#include "core/args.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>
#include <vector>

namespace gromlit {
namespace {

std::vector<std::string> Words(const std::string& line) {
  const auto slots = static_cast<size_t>(ArgvSlots(line.c_str()));
  std::vector<char*> argv(slots, const_cast<char*>("untouched"));
  const int count = ParseArgs(line.c_str(), argv.data());
  EXPECT_LT(static_cast<size_t>(count), slots);
  EXPECT_EQ(argv[static_cast<size_t>(count)], nullptr) << "the words end with a null";
  std::vector<std::string> words;
  for (int i = 0; i < count; i++) {
    words.emplace_back(argv[static_cast<size_t>(i)]);
    std::free(argv[static_cast<size_t>(i)]);
  }
  return words;
}

using V = std::vector<std::string>;

TEST(ParseArgs, SplitsAtAnyWhiteSpace) {
  EXPECT_EQ(Words("play -q\tfile\n.wav"), (V{"play", "-q", "file", ".wav"}));
  EXPECT_EQ(Words("  leading and trailing \v\f\r "), (V{"leading", "and", "trailing"}));
}

TEST(ParseArgs, EmptyAndBlankLinesHaveNoWords) {
  EXPECT_EQ(Words(""), V{});
  EXPECT_EQ(Words(" \t\n"), V{});
}

TEST(ParseArgs, QuotesAreOrdinaryCharacters) {
  EXPECT_EQ(Words("sh -c \"echo a\" 'b'"), (V{"sh", "-c", "\"echo", "a\"", "'b'"}));
}

TEST(ParseArgs, WordsOfAnyLengthStayWhole) {
  const std::string longest(5000, 'w');
  EXPECT_EQ(Words("a " + longest + " b"), (V{"a", longest, "b"}));
}

TEST(ParseArgs, BytesAboveAsciiBelongToWords) {
  EXPECT_EQ(Words("caf\xe9 \xff\xa0x"), (V{"caf\xe9", "\xff\xa0x"}));
}

TEST(ParseArgs, SlotsCountTheWordsAndTheNull) {
  EXPECT_EQ(ArgvSlots(""), 1);
  EXPECT_EQ(ArgvSlots(" one  two "), 3);
}

}  // namespace
}  // namespace gromlit
