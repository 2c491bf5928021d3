#include "core/command_types.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace gromlit {
namespace {

std::vector<std::string> Entries(const char* const* names) {
  std::vector<std::string> entries;
  for (; *names != nullptr; names++) entries.emplace_back(*names);
  return entries;
}

TEST(CommandTypes, TabLabelsInTheOrderOfTheirValues) {
  EXPECT_EQ(Entries(tabcmdNames),
            (std::vector<std::string>{"HotKey", "Menu", "Text", "Sound", "Run", "Internet"}));
}

TEST(CommandTypes, ListPrefixesInTheOrderOfTheirValues) {
  EXPECT_EQ(
      Entries(tabcmdTypeNames),
      (std::vector<std::string>{"HotKey: ", "Menu: ", "Text: ", "Sound: ", "Run: ", "Internet: "}));
}

TEST(CommandTypes, AreFoundByTheirStoredValue) {
  ASSERT_NE(CommandTypeOf(4), nullptr);
  EXPECT_STREQ(CommandTypeOf(4)->name, "Run");
  EXPECT_EQ(CommandTypeOf(4)->type, kRun);
  EXPECT_EQ(CommandTypeOf(6), nullptr);
  EXPECT_EQ(CommandTypeOf(255), nullptr);
}

TEST(CommandTypes, OfTextAndInternetHaveACheckBox) {
  for (int type = -1; type <= 256; type++)
    EXPECT_EQ(HasCheckBox(type), type == kText || type == kInternet) << type;
}

}  // namespace
}  // namespace gromlit
