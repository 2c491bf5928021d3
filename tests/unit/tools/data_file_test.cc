#include "tools/data_file.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <filesystem>
#include <memory>
#include <random>

#include "core/strings.h"
#include "tests/support/temp_install.h"
#include "tests/unit/tools/run_tool.h"
#include "tools/record_json.h"

namespace gromlit {
namespace {

using ::testing::IsEmpty;
using ::testing::Not;
using namespace testing;  // NOLINT(google-build-using-namespace): the tests' own helpers

using Bytes = std::vector<std::byte>;

std::string Document(const DataFile& file) {
  switch (file.kind) {
    case Kind::kSymbol:
      return PrintJson(SymbolDocument(file.symbol));
    case Kind::kPlugin:
      return PrintJson(PluginDocument(file.plugin));
    case Kind::kOptions:
      return PrintJson(OptionsDocument(file.options));
  }
  return "";
}

TEST(ReadDataFile, ReportsEveryTruncationAndReadsTheRest) {
  const TempInstall install;
  const std::string path = install / "file";
  for (const Bytes& whole : {GoldenSymbolFile(), GoldenOptionsFile(), GoldenPluginFile()}) {
    WriteBytes(path, whole);
    for (size_t size = whole.size() + 1; size-- > 0;) {
      std::filesystem::resize_file(path, size);
      DataFile file;
      std::string error;
      const bool read = ReadDataFile(path.c_str(), &file, &error);
      ASSERT_EQ(read, size >= 13) << size;
      ASSERT_EQ(error.empty(), read) << size;
      if (!read) continue;
      ASSERT_EQ(file.damage.empty(), size == whole.size()) << size;
      ASSERT_EQ(file.unusable, size < std::min(whole.size(), kFirstAction)) << size;
      if (file.kind == Kind::kPlugin) {
        ASSERT_EQ(file.plugin.nactions, size < kSecondAction  ? 0
                                        : size < whole.size() ? 1
                                                              : 2)
            << size;
      }
      ASSERT_FALSE(Document(file).empty());
    }
  }
}

// Whatever bytes a file has: what is shown of it can be packed, and then shows the same.
TEST(ReadDataFile, OfAnyBytesGivesADocumentThatPacksToTheSameRecords) {
  const TempInstall install;
  const std::string path = install / "file";
  const unsigned seed = std::random_device{}();
  SCOPED_TRACE("seed " + std::to_string(seed));
  std::mt19937 random(seed);
  for (int round = 0; round < 300; round++) {
    Bytes bytes = round % 3 == 0   ? GoldenSymbolFile()
                  : round % 3 == 1 ? GoldenOptionsFile()
                                   : GoldenPluginFile();
    const auto changes = random() % 300;
    for (auto i = changes; i > 0; i--)
      bytes[13 + random() % (bytes.size() - 13)] = static_cast<std::byte>(random());
    WriteBytes(path, bytes);
    DataFile first;
    std::string error;
    ASSERT_TRUE(ReadDataFile(path.c_str(), &first, &error)) << error;
    const std::string shown = Document(first);
    const Json document = ParseJson(shown);
    DataFile second;
    second.kind = first.kind;
    if (first.kind == Kind::kSymbol) ReadSymbolDocument(document, &second.symbol);
    if (first.kind == Kind::kOptions) ReadOptionsDocument(document, &second.options);
    if (first.kind == Kind::kPlugin) ReadPluginDocument(document, &second.plugin);
    WriteBytes(path, FileImage(second));
    DataFile third;
    ASSERT_TRUE(ReadDataFile(path.c_str(), &third, &error)) << error;
    ASSERT_THAT(third.damage, IsEmpty());
    ASSERT_EQ(Document(third), shown);
  }
}

TEST(ParseJson, BreaksOffWithoutLosingMemory) {
  // Under the leak checker: an action and a command have been made before the mistake.
  DataFile file;
  EXPECT_THROW(ReadPluginDocument(
                   ParseJson(R"({"actions":[{"commands":[{"text":"x"},{"text":"y","z":1}]}]})"),
                   &file.plugin),
               JsonError);
}

TEST(BytesToText, SurvivesForEveryByte) {
  std::string bytes;
  for (int i = 0; i < 256; i++) bytes += static_cast<char>(i);
  std::string back;
  ASSERT_TRUE(TextToBytes(BytesToText(bytes), &back));
  EXPECT_EQ(back, bytes);
  EXPECT_FALSE(TextToBytes("\xc4\x80", &back)) << "U+0100";
  EXPECT_TRUE(TextToBytes("\xc3\xbf", &back));
  EXPECT_EQ(back, "\xff");
}

TEST(PrintJson, PutsOneKeyOnALineAndNumbersOnOne) {
  EXPECT_EQ(PrintJson(Json::parse(R"({"a":[[1,2],[3,4]],"b":[{"c":""}],"d":[],"e":{}})")),
            "{\n  \"a\": [[1,2],[3,4]],\n  \"b\": [\n    {\n      \"c\": \"\"\n    }\n  ],\n"
            "  \"d\": [],\n  \"e\": {}\n}\n");
}

}  // namespace
}  // namespace gromlit
