// The table of the options' fields against the places that were published, each named once more
// here: a row that moves or gets another name breaks every options file and every document.
#include "core/option_fields.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

namespace gromlit {
namespace {

struct Published {
  size_t offset;  // in the image
  size_t size;
  std::string name;
  OptionKind kind;
  bool operator==(const Published&) const = default;
};

TEST(OptionFields, LieWhereTheyWerePublished) {
  std::vector<Published> fields;
  for (const OptionField& field : kOptionFields)
    fields.push_back({field.at.offset, field.at.size, field.name, field.kind});
  const std::vector<Published> published = {
      {0, 4, "button", OptionKind::kNumber},       {4, 4, "sensitivity", OptionKind::kNumber},
      {8, 4, "tolerance", OptionKind::kNumber},    {12, 4, "splash", OptionKind::kNumber},
      {16, 4, "showactions", OptionKind::kNumber}, {20, 4, "temp1", OptionKind::kNumber},
      {24, 4, "temp2", OptionKind::kNumber},       {28, 4, "temp3", OptionKind::kNumber},
      {32, 4, "temp4", OptionKind::kNumber},       {36, 128, "urlcmd", OptionKind::kText},
      {164, 64, "sndcmd", OptionKind::kText},      {228, 64, "charspare2", OptionKind::kRaw}};
  EXPECT_EQ(fields.size(), published.size());
  for (size_t i = 0; i < std::min(fields.size(), published.size()); i++)
    EXPECT_TRUE(fields[i] == published[i]) << published[i].name;
}

TEST(OptionFields, ReachTheMembersOfTheirNames) {
  GromlitUserOptions options = {};
  options.button = 1;
  options.temp4 = 9;
  options.urlcmd[0] = 'u';
  options.charspare2[63] = 'c';
  for (const OptionField& field : kOptionFields) {
    const std::string name = field.name;
    if (field.kind == OptionKind::kNumber) {
      EXPECT_EQ(OptionNumber(options, field), name == "button"  ? 1
                                              : name == "temp4" ? 9
                                                                : 0)
          << name;
    } else {
      const auto bytes = OptionBytes(options, field);
      EXPECT_EQ(bytes.size(), field.at.size) << name;
      EXPECT_EQ(bytes[0], name == "urlcmd" ? 'u' : '\0') << name;
      EXPECT_EQ(bytes.back(), name == "charspare2" ? 'c' : '\0') << name;
    }
  }
}

}  // namespace
}  // namespace gromlit
