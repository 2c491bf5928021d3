// match by shape, explain, learn, strokes and check --shape.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdio>
#include <random>

#include "recognition/shape_match.h"
#include "recognition/stroke_log.h"
#include "tests/support/temp_install.h"
#include "tests/unit/recognition/stroke_sets.h"
#include "tests/unit/tools/run_tool.h"
#include "tools/data_file.h"

namespace gromlit {
namespace {

using ::testing::ElementsAre;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::StartsWith;
using namespace testing;  // NOLINT(google-build-using-namespace): the tests' own helpers

// 30 degrees below the way to the right; its signature is that of an L.
const char* const kSlanting = "0 0\n43 25\n87 50\n";
const char* const kDown = "10 10\n10 60\n10 110\n";
const char* const kUp = "10 110\n10 60\n10 10\n";
const char* const kL = "10 10\n10 60\n10 110\n60 110\n110 110\n";

std::vector<std::string> Lines(const std::string& text) {
  std::vector<std::string> lines;
  for (size_t at = 0; at < text.size(); at = text.find('\n', at) + 1)
    lines.push_back(text.substr(at, text.find('\n', at) - at));
  return lines;
}

std::string LogLine(const std::string& points) {
  return "2026-11-20 10:00:00\tXTerm.xterm\tabcd\tshape\tnone\t0.9\t0.8\t120\t" + points + "\n";
}

class ShapeCalls : public ::testing::Test {
 protected:
  void SetUp() override {
    const ToolResult packed = RunTool({"pack", "-", "-o", plugin}, R"({"kind":"plugin","actions":[
      {"name":"Right","symbol":{"points":[[16,16],[264,16]]}},
      {"name":"Down","symbol":{"points":[[16,16],[16,264]]}},
      {"name":"L","symbol":{"points":[[16,16],[16,264],[264,264]]}},
      {"name":"L again","symbol":{"points":[[16,16],[16,264],[264,264]]}},
      {"name":"empty","symbol":{}}]})");
    ASSERT_EQ(packed.status, 0) << packed.err;
  }
  void ExpectTrouble(const ToolResult& result, const std::string& message) {
    EXPECT_EQ(result.status, 2) << message;
    EXPECT_EQ(result.out, "") << message;
    EXPECT_THAT(result.err, HasSubstr(message));
  }
  TempInstall install;
  std::string plugin = install / "p.sla";
  std::string symbol = install / "new.sls";
};

TEST_F(ShapeCalls, MatchByShapeFindsWhatSignaturesMistake) {
  EXPECT_EQ(RunTool({"match", plugin}, kSlanting).out, "2\tL\n");
  const ToolResult result = RunTool({"match", "--shape", plugin}, kSlanting);
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.out, "0\tRight\n");
  EXPECT_EQ(RunTool({"match", "--shape", plugin}, kL).out, "2\tL\n");
}

TEST_F(ShapeCalls, MatchByShapeAsTheToleranceSays) {
  EXPECT_EQ(RunTool({"match", "--shape", "--tolerance", "1", plugin}, kSlanting).status, 1);
  EXPECT_EQ(RunTool({"match", "--shape", "--tolerance", "4", plugin}, kUp).status, 1);
  EXPECT_EQ(RunTool({"match", "--shape", "--tolerance", "5", plugin}, kUp).status, 0);
  EXPECT_EQ(RunTool({"match", "--shape", "--tolerance", "5", plugin}, "3 3\n3 3\n").status, 1);
  for (const char* wrong : {"0", "6", "x"})
    EXPECT_EQ(RunTool({"match", "--shape", "--tolerance", wrong, plugin}, kUp).status, 2) << wrong;
  EXPECT_EQ(RunTool({"match", "--tolerance", "3", plugin}, kUp).status, 2)
      << "signatures have no tolerance";
}

TEST_F(ShapeCalls, MatchEachAnswersForEveryStroke) {
  const std::string strokes =
      "\n" + std::string(kDown) + "\n \n" + kUp + "\n" + kL + "\n" + kSlanting;
  ToolResult result = RunTool({"match", "--each", plugin}, strokes);
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.out, "1\tDown\n-\n2\tL\n2\tL\n");
  WriteText(install / "strokes", strokes);
  result = RunTool({"match", "--shape", "--each", plugin, install / "strokes"});
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.out, "1\tDown\n-\n2\tL\n0\tRight\n");
  result = RunTool({"match", "--each", plugin}, "");
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.out, "");
  ExpectTrouble(RunTool({"match", "--each", plugin}, "1 1\n2 2\n\n3\n"),
                "standard input: line 4: two numbers are expected");
}

TEST_F(ShapeCalls, ExplainTellsOfEveryAction) {
  const ToolResult result = RunTool({"explain", plugin}, kL);
  EXPECT_EQ(result.status, 0);
  const std::vector<std::string> lines = Lines(result.out);
  ASSERT_EQ(lines.size(), 7u);
  EXPECT_EQ(lines[0], "stroke\tabcd");
  EXPECT_EQ(lines[1], "index\taction\tsignature\tby signature\tscore\tby shape");
  EXPECT_THAT(lines[2], StartsWith("0\tRight\taaaa\tanother signature\t0."));
  EXPECT_THAT(lines[2], HasSubstr("\tnot alike enough: 0.9500 is needed"));
  EXPECT_THAT(lines[4], StartsWith("2\tL\tabcd\truns\t"));
  EXPECT_THAT(lines[4], HasSubstr("\truns"));
  EXPECT_THAT(lines[5], StartsWith("3\tL again\tabcd\tmatches, but action 2 comes first\t"));
  EXPECT_THAT(lines[5], HasSubstr("\tas alike, but action 2 comes first"));
  EXPECT_EQ(lines[6], "4\tempty\t\tanother signature\t-\tnothing to compare");
  EXPECT_THAT(RunTool({"explain", "--tolerance", "1", plugin}, kL).out,
              HasSubstr("0.9650 is needed"));
  ExpectTrouble(RunTool({"explain", install / "nowhere"}, kL), "nowhere: No such file");
  ExpectTrouble(RunTool({"explain", plugin, install / "nowhere"}), "nowhere: No such file");
}

TEST_F(ShapeCalls, ExplainTellsOfEveryStroke) {
  const std::string one = RunTool({"explain", plugin}, kL).out;
  const std::string other = RunTool({"explain", plugin}, kUp).out;
  EXPECT_NE(one, other);
  WriteText(install / "log", StrokeLogHeader() + LogLine("10 10 10 60 10 110 60 110 110 110") +
                                 LogLine("10 110 10 60 10 10"));
  const std::string strokes = RunTool({"strokes", install / "log"}).out;
  EXPECT_EQ(RunTool({"explain", plugin}, strokes).out, one + "\n" + other);
}

// Only the few that a stroke is most like at first sight are compared closely.
TEST_F(ShapeCalls, ExplainTellsOfActionsThatAreLeftOutAtFirstSight) {
  std::mt19937 random(7);
  const auto bend = [&random](int by) { return static_cast<int>(random() % 9) * by; };
  for (int round = 0; round < 200; round++) {
    Library library;
    std::string actions;
    const int by = 1 + round % 8;
    for (int i = 0; i < 30; i++) {
      GromlitSymbol sym = {};
      sym.npoints = 4;
      std::string points;
      const int corners[][2] = {{40, 40}, {200, 40}, {40, 200}, {200, 200}};
      for (int k = 1; k <= 4; k++) {
        sym.x[k] = static_cast<uint16_t>(corners[k - 1][0] + bend(by) - 4 * by);
        sym.y[k] = static_cast<uint16_t>(corners[k - 1][1] + bend(by) - 4 * by);
        points +=
            (k > 1 ? ",[" : "[") + std::to_string(sym.x[k]) + "," + std::to_string(sym.y[k]) + "]";
      }
      library.Add("a", sym);
      actions +=
          (i > 0 ? "," : "") + std::string(R"({"name":"a","symbol":{"points":[)") + points + "]}}";
    }
    const Stroke stroke = SimulatedDrawing(*library.symbol(0), &random);
    const ShapeRanking ranking = RankByShape(library.plugin(), stroke);
    const Shape drawn = ShapeOfPoints(stroke.count, stroke.x, stroke.y);
    int better = -1;
    for (int i = 0; i < library.size(); i++)
      if (ShapeScore(drawn, *SymbolShape(library.symbol(i))) > ranking.score) better = i;
    if (better < 0 || ranking.score < ShapeThreshold(3)) continue;
    ASSERT_EQ(
        RunTool({"pack", "-", "-o", plugin}, R"({"kind":"plugin","actions":[)" + actions + "]}")
            .status,
        0);
    std::string text;
    for (int i = 0; i < stroke.count; i++)
      text += std::to_string(stroke.x[i]) + " " + std::to_string(stroke.y[i]) + "\n";
    const std::vector<std::string> lines = Lines(RunTool({"explain", plugin}, text).out);
    ASSERT_EQ(lines.size(), 32u);
    EXPECT_THAT(lines[static_cast<size_t>(ranking.best) + 2], EndsWith("\truns"));
    EXPECT_THAT(lines[static_cast<size_t>(better) + 2],
                EndsWith("\talike, but 5 others are more alike at first sight"));
    return;
  }
  FAIL() << "no action is left out that would have been nearer";
}

TEST_F(ShapeCalls, LearnMakesASymbolOfItsSamples) {
  WriteText(install / "a", "0 0\n0 50\n2 100\n50 99\n100 100\n\n5 5\n5 90\n7 205\n180 190\n");
  const ToolResult result =
      RunTool({"learn", "--name", "Ell", "-o", symbol, install / "a", "-"}, kL);
  EXPECT_EQ(result.err, "");
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.out, "found 3 of 3\n");
  DataFile file;
  std::string error;
  ASSERT_TRUE(ReadDataFile(symbol.c_str(), &file, &error)) << error;
  ASSERT_EQ(file.kind, Kind::kSymbol);
  EXPECT_STREQ(file.symbol.name, "Ell");
  EXPECT_EQ(file.symbol.npoints, 3);
  EXPECT_NE(file.symbol.icon[31], 0u);
}

TEST_F(ShapeCalls, LearnCountsTheSamplesThatItDoesNotFind) {
  const std::string strokes = std::string(kL) + "\n" + kL + "\n" + kL + "\n" + kUp + "\n7 7\n";
  EXPECT_EQ(RunTool({"learn", "--name", "n", "-o", symbol, "-"}, strokes).out, "found 3 of 5\n");
}

TEST_F(ShapeCalls, LearnRefusesWhatIsNoShape) {
  ExpectTrouble(RunTool({"learn", "--name", "n", "-o", symbol, "-"}, "1 1\n1 1\n"),
                "standard input: no stroke with two different points");
  ExpectTrouble(RunTool({"learn", "--name", "n", "-o", symbol, "-"}, ""), "standard input: no");
  ExpectTrouble(RunTool({"learn", "--name", "n", "-o", symbol, "-"}, "x\n"), "line 1");
  ExpectTrouble(RunTool({"learn", "--name", "n", "-o", install / "no/dir", "-"}, kL), "no/dir: No");
  EXPECT_EQ(RunTool({"learn", "--name", "", "-o", symbol, "-"}, kL).status, 2);
  EXPECT_EQ(RunTool({"learn", "-o", symbol, "-"}, kL).status, 2);
  EXPECT_EQ(RunTool({"learn", "--name", "n", "-o", symbol}, kL).status, 2);
}

TEST_F(ShapeCalls, StrokesOfALogInTheFormThatTheOthersRead) {
  WriteText(install / "log", StrokeLogHeader() + LogLine("1 1 2 2") + LogLine("") +
                                 LogLine("10 10 10 60 10 110") + LogLine("-5 -6 -17 -6"));
  ToolResult result = RunTool({"strokes", install / "log"});
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.out, "1 1\n2 2\n\n10 10\n10 60\n10 110\n\n-5 -6\n-17 -6\n");
  EXPECT_EQ(RunTool({"strokes", install / "log", "-n", "1"}).out, "-5 -6\n-17 -6\n");
  result = RunTool({"strokes", "-n", "2", install / "log"});
  EXPECT_EQ(result.out, "10 10\n10 60\n10 110\n\n-5 -6\n-17 -6\n");
  EXPECT_EQ(RunTool({"match", "--each", plugin}, result.out).out, "1\tDown\n-\n");
  EXPECT_EQ(RunTool({"strokes", install / "log", "-n", "0"}).out, "");
}

TEST_F(ShapeCalls, StrokesSkipsDamagedLinesAndSaysSo) {
  WriteText(install / "log", StrokeLogHeader() + LogLine("1 1 2 2") + LogLine("1 1 2") +
                                 LogLine("3 3 4 4") + "2026-11-20\tcut");
  const ToolResult result = RunTool({"strokes", install / "log"});
  EXPECT_EQ(result.status, 2);
  EXPECT_EQ(result.out, "1 1\n2 2\n\n3 3\n4 4\n");
  EXPECT_THAT(result.err, HasSubstr("line 3: no logged stroke"));
  EXPECT_THAT(result.err, HasSubstr("line 5: no logged stroke"));
}

TEST_F(ShapeCalls, StrokesRefusesWhatIsNoLogOrHasNoPoints) {
  ExpectTrouble(RunTool({"strokes", "-"}, "1 1\n2 2\n"), "standard input: no stroke log");
  ExpectTrouble(RunTool({"strokes", "-"}, StrokeLogHeader() + LogLine("")), "no points in it");
  ExpectTrouble(RunTool({"strokes", install / "nowhere"}), "nowhere: No such file");
}

TEST(StrokeLog, FieldsKeepEveryByte) {
  EXPECT_EQ(EscapeLogField("a\tb\nc\\d\x7f\x01"), "a\\x09b\\x0ac\\x5cd\\x7f\\x01");
  EXPECT_EQ(EscapeLogField("\xc3\xa4 plain"), "\xc3\xa4 plain");
  std::string all;
  for (int byte = 0; byte < 256; byte++) all += static_cast<char>(byte);
  EXPECT_EQ(UnescapeLogField(EscapeLogField(all)), all);
  EXPECT_EQ(UnescapeLogField("\\x4\\xg1\\x"), "\\x4\\xg1\\x");
}

TEST(StrokeLog, NamesItsColumns) {
  EXPECT_EQ(StrokeLogHeader(),
            "time\tclass\tsignature\tway\taction\tscore\trunnerup\tmicroseconds\tpoints\n");
}

TEST_F(ShapeCalls, CheckByShapeNamesActionsThatLookAlike) {
  const std::string plugins = install / "plugins/p.sla";
  ASSERT_EQ(RunTool({"pack", "-", "-o", plugins}, R"({"kind":"plugin","classname":"a","actions":[
      {"name":"L","symbol":{"points":[[16,16],[16,264],[264,264]]}},
      {"name":"Right","symbol":{"points":[[16,16],[264,16]]}},
      {"name":"Slanting","symbol":{"points":[[16,16],[264,152]]}}]})")
                .status,
            0);
  EXPECT_THAT(RunTool({"check", install.path()}).out, Not(HasSubstr("look alike")));
  const std::string pair =
      "plugins/p.sla: action 1 \"Right\" and action 2 \"Slanting\" look alike: 0.9";
  const ToolResult medium = RunTool({"check", "--shape", install.path()});
  EXPECT_EQ(medium.status, 1);
  EXPECT_THAT(medium.out, HasSubstr(pair));
  EXPECT_THAT(medium.out, Not(HasSubstr("\"L\"")));
  const std::vector<std::string> strict = {"check", "--shape", "--tolerance", "1", install.path()};
  EXPECT_THAT(RunTool(strict).out, Not(HasSubstr("look alike")));
  // Very high has no limit of its own; the options file counts where the call says nothing.
  ASSERT_EQ(RunTool({"pack", "-", "-o", install / "options/default.user"},
                    R"({"kind":"options","button":3,"tolerance":1})")
                .status,
            0);
  EXPECT_THAT(RunTool({"check", "--shape", install.path()}).out, Not(HasSubstr("look alike")));
  EXPECT_THAT(RunTool({"check", "--shape", "--tolerance", "5", install.path()}).out,
              HasSubstr(pair));
  EXPECT_EQ(RunTool({"check", "--tolerance", "3", install.path()}).status, 2);
  // A further symbol for one action may be as near to the first as it likes.
  ASSERT_EQ(RunTool({"pack", "-", "-o", plugins}, R"({"kind":"plugin","classname":"a","actions":[
      {"name":"Right","symbol":{"points":[[16,16],[264,16]]}},
      {"name":"Right","symbol":{"points":[[16,16],[264,152]]}}]})")
                .status,
            0);
  EXPECT_THAT(RunTool({"check", "--shape", "--tolerance", "4", install.path()}).out,
              Not(HasSubstr("look alike")));
}

// The recorded strokes are not part of the project.
TEST(RecognitionReport, SaysWhereItSoughtStrokesThatAreNotThere) {
  std::FILE* report = popen(
      "GROMLIT_STROKES=/nowhere '" GROMLIT_SOURCE_DIR "/scripts/recognition-report' 2>&1", "r");
  ASSERT_NE(report, nullptr);
  std::string said;
  char part[256];
  while (std::fgets(part, sizeof part, report) != nullptr) said += part;
  const int status = pclose(report);
  EXPECT_TRUE(WIFEXITED(status));
  EXPECT_EQ(WEXITSTATUS(status), 2);
  EXPECT_THAT(said, StartsWith("recognition-report: no recorded strokes at /nowhere; "));
}

}  // namespace
}  // namespace gromlit
