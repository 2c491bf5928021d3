// signature and match, and what all calls have in common.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/temp_install.h"
#include "tests/unit/tools/run_tool.h"

namespace gromlit {
namespace {

using ::testing::HasSubstr;
using ::testing::StartsWith;
using namespace testing;  // NOLINT(google-build-using-namespace): the tests' own helpers

const char* const kDown = "10 10\n10 60\n10 110\n";
const char* const kL = "10 10\n10 60\n10 110\n60 110\n110 110\n";

class RecognitionCalls : public ::testing::Test {
 protected:
  void SetUp() override {
    WriteText(install / "down", kDown);
    const ToolResult packed = RunTool({"pack", "-", "-o", plugin}, R"({"kind":"plugin","actions":[
      {"name":"Right","symbol":{"points":[[16,16],[264,16]]}},
      {"name":"Down \u00e4","symbol":{"points":[[16,16],[16,264]]}},
      {"name":"L","symbol":{"points":[[16,16],[16,264],[264,264]]}},
      {"name":"L again","symbol":{"points":[[16,16],[16,264],[264,264]]}}]})");
    ASSERT_EQ(packed.status, 0) << packed.err;
  }
  void ExpectTrouble(const ToolResult& result, const std::string& message) {
    EXPECT_EQ(result.status, 2) << message;
    EXPECT_EQ(result.out, "") << message;
    EXPECT_THAT(result.err, HasSubstr(message));
  }
  TempInstall install;
  std::string plugin = install / "p.sla";
};

TEST_F(RecognitionCalls, SignatureReadsStandardInputOrAFile) {
  for (const std::vector<std::string>& arguments :
       {std::vector<std::string>{"signature"}, {"signature", "-"}}) {
    const ToolResult result = RunTool(arguments, kL);
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out, "abcd\n");
    EXPECT_EQ(result.err, "");
  }
  EXPECT_EQ(RunTool({"signature", install / "down"}, kL).out, "cccc\n");
}

TEST_F(RecognitionCalls, SignatureOfNoPointsIsEmpty) {
  const ToolResult result = RunTool({"signature"}, "");
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.out, "\n");
}

TEST_F(RecognitionCalls, SignatureIgnoresPointsBeyondThe256th) {
  std::string stroke;
  for (int i = 0; i < 256; i++) stroke += "5 " + std::to_string(i) + "\n";
  EXPECT_EQ(RunTool({"signature"}, stroke + "3000 5\n").out, "cccc\n");
  // The same point among the 256 counts.
  EXPECT_NE(RunTool({"signature"}, "3000 5\n" + stroke).out, "cccc\n");
}

TEST_F(RecognitionCalls, SignatureRefusesCoordinatesOutside16Bits) {
  ExpectTrouble(RunTool({"signature"}, "0 0\n40000 1\n"),
                "gromlit-tool: standard input: line 2: \"40000\" lies outside -32768..32767");
  WriteText(install / "bad", "0 -40000\n");
  ExpectTrouble(RunTool({"signature", install / "bad"}), "bad: line 1: \"-40000\" lies outside");
  ExpectTrouble(RunTool({"match", plugin}, "0 -40000\n"), "standard input: line 1: \"-40000\"");
}

TEST_F(RecognitionCalls, SignatureOfASymbolFile) {
  WriteBytes(install / "L.sls", GoldenSymbolFile());
  const ToolResult result = RunTool({"signature", "--symbol", install / "L.sls"});
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.out, "abcd\n");
}

TEST_F(RecognitionCalls, SignatureRefusesWhatIsNoSymbolFile) {
  ExpectTrouble(RunTool({"signature", "--symbol", plugin}), "p.sla: no symbol file");
  ExpectTrouble(RunTool({"signature", "--symbol", install / "nowhere"}), "nowhere: No such file");
  std::vector<std::byte> cut = GoldenSymbolFile();
  cut.pop_back();
  WriteBytes(install / "cut", cut);
  ExpectTrouble(RunTool({"signature", "--symbol", install / "cut"}), "cut: ends after 440 of 441");
}

TEST_F(RecognitionCalls, MatchPrintsTheFirstActionThatWouldRun) {
  ToolResult result = RunTool({"match", plugin}, kL);
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.out, "2\tL\n");
  result = RunTool({"match", plugin, install / "down"});
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.out, "1\tDown \xe4\n") << "the bytes of the name as they are";
}

TEST_F(RecognitionCalls, MatchPrintsNothingWhenNoneWould) {
  const ToolResult result = RunTool({"match", plugin}, "100 0\n50 0\n0 0\n");
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.out + result.err, "");
}

TEST_F(RecognitionCalls, MatchOfADamagedPluginWarnsAndUsesWhatWasRead) {
  std::vector<std::byte> bytes = ReadBytes(plugin);
  bytes.resize(bytes.size() - 1);
  WriteBytes(plugin, bytes);
  const ToolResult result = RunTool({"match", plugin}, kL);
  EXPECT_EQ(result.status, 2);
  EXPECT_EQ(result.out, "2\tL\n");
  EXPECT_THAT(result.err, HasSubstr("p.sla: ends within an action, 3 of 4 actions read"));
  bytes.resize(1000);
  WriteBytes(plugin, bytes);
  ExpectTrouble(RunTool({"match", plugin}, kL), "p.sla: ends after 1000 of 1177 bytes");
}

TEST_F(RecognitionCalls, MatchRefusesUnreadableInput) {
  WriteBytes(install / "L.sls", GoldenSymbolFile());
  ExpectTrouble(RunTool({"match", install / "L.sls"}, kL), "L.sls: no plug-in file");
  ExpectTrouble(RunTool({"match", install / "nowhere"}, kL), "nowhere: No such file");
  ExpectTrouble(RunTool({"match", plugin, install / "nowhere"}), "nowhere: No such file");
  ExpectTrouble(RunTool({"match", plugin, install.path()}), "Is a directory");
}

TEST_F(RecognitionCalls, WrongUsageEndsWithStatus2) {
  const std::vector<std::vector<std::string>> cases = {
      {},
      {"dance"},
      {"show"},
      {"pack"},
      {"pack", "-"},
      {"pack", "-o", "x"},
      {"pack", "a", "b", "-o", "x"},
      {"match"},
      {"match", "a", "b", "c"},
      {"check"},
      {"check", "a", "b"},
      {"signature", "a", "b"},
      {"signature", "--symbol"},
      {"signature", "a", "--symbol", "b"},
      {"show", "--fast", "x"},
      {"--fast"},
  };
  for (const auto& arguments : cases) {
    const ToolResult result = RunTool(arguments);
    const std::string shown = ::testing::PrintToString(arguments);
    EXPECT_EQ(result.status, 2) << shown;
    EXPECT_EQ(result.out, "") << shown;
    EXPECT_NE(result.err, "") << shown;
  }
}

TEST_F(RecognitionCalls, HelpAndVersionAreNoErrors) {
  EXPECT_EQ(RunTool({"--help"}).status, 0);
  EXPECT_THAT(RunTool({"pack", "--help"}).out, HasSubstr("--output"));
  EXPECT_THAT(RunTool({"--version"}).out, StartsWith("gromlit-tool 1."));
}

}  // namespace
}  // namespace gromlit
