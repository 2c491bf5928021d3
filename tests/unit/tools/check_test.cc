// Every problem that the check knows, made in an installation of its own.
#include "tools/check.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "tests/support/temp_install.h"
#include "tests/unit/tools/run_tool.h"

namespace gromlit {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using namespace testing;  // NOLINT(google-build-using-namespace): the tests' own helpers

using Bytes = std::vector<std::byte>;

class Check : public ::testing::Test {
 protected:
  void Pack(const std::string& name, const std::string& document) {
    const ToolResult result = RunTool({"pack", "-", "-o", install / name}, document);
    ASSERT_EQ(result.status, 0) << result.err;
  }
  std::vector<std::string> Problems() { return CheckInstallation(install.path()); }

  // A plug-in document whose actions have these shapes, named A, B, C...
  static std::string Plugin(const std::string& classname, const std::vector<std::string>& points) {
    std::string actions;
    for (size_t i = 0; i < points.size(); i++) {
      actions += (i > 0 ? ",{\"name\":\"" : "{\"name\":\"") + std::string(1, char('A' + i)) +
                 "\",\"symbol\":{\"name\":\"s\",\"points\":" + points[i] + "}}";
    }
    return R"({"kind":"plugin","classname":")" + classname + "\",\"actions\":[" + actions + "]}";
  }

  const std::string kRight = "[[16,16],[264,16]]";
  const std::string kDown = "[[16,16],[16,264]]";
  const std::string kLongDown = "[[64,16],[64,264]]";
  TempInstall install;
};

TEST_F(Check, FindsNothingInAnEmptyInstallation) {
  EXPECT_THAT(Problems(), IsEmpty());
  const ToolResult result = RunTool({"check", install.path()});
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.out + result.err, "");
}

TEST_F(Check, PrintsOneLinePerProblemAndEndsWithStatus1) {
  WriteText(install / "symbols/a.sls", "short");
  WriteText(install / "plugins/b.sla", "GromlitPlugin");
  const ToolResult result = RunTool({"check", install.path()});
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.err, "");
  EXPECT_EQ(std::count(result.out.begin(), result.out.end(), '\n'), 2);
  EXPECT_THAT(result.out, HasSubstr("symbols/a.sls: "));
  EXPECT_THAT(result.out, HasSubstr("plugins/b.sla: ends after 13 of 1177 bytes"));
}

TEST_F(Check, OfNoDirectoryIsWrongUsage) {
  ToolResult result = RunTool({"check", install / "nowhere"});
  EXPECT_EQ(result.status, 2);
  EXPECT_EQ(result.out, "");
  EXPECT_THAT(result.err, HasSubstr("nowhere: No such file or directory"));
  WriteText(install / "file", "");
  result = RunTool({"check", install / "file"});
  EXPECT_EQ(result.status, 2);
  EXPECT_THAT(result.err, HasSubstr("file: Not a directory"));
}

// Matching by shape has use for a second symbol that matching by signature cannot tell from the
// first one; whichever runs, the same is done.
TEST_F(Check, LeavesAnotherSymbolForTheSameActionAlone) {
  const auto plugin = [](const std::string& name, const std::string& points,
                         const std::string& key) {
    return R"({"kind":"plugin","classname":"A.a","actions":[{"name":"Find","symbol":{"name":"s",)"
           R"("points":[[16,16],[264,16],[264,264]]},"commands":[{"type":"HotKey","keys":[[41,4]]}]},)"
           R"({"name":")" +
           name + R"(","symbol":{"name":"t","points":)" + points +
           R"(},"commands":[{"type":"HotKey","keys":[[)" + key + "]]}]}]}";
  };
  const std::string wide = "[[16,16],[264,16],[264,128]]";
  Pack("plugins/A.a.sla", plugin("Find", wide, "41,4"));
  EXPECT_THAT(Problems(), IsEmpty());
  Pack("plugins/A.a.sla", plugin("Find", "[[16,16],[264,16],[264,264]]", "41,4"));
  EXPECT_THAT(Problems(), ElementsAre(HasSubstr("can never run"))) << "the very same symbol";
  Pack("plugins/A.a.sla", plugin("Find", wide, "42,4"));
  EXPECT_THAT(Problems(), ElementsAre(HasSubstr("can never run"))) << "another key";
  Pack("plugins/A.a.sla", plugin("Search", wide, "41,4"));
  EXPECT_THAT(Problems(), ElementsAre(HasSubstr("can never run"))) << "another name";
}

TEST_F(Check, ReportsMissingDataDirectories) {
  ASSERT_EQ(rmdir((install / "options").c_str()), 0);
  EXPECT_THAT(Problems(), ElementsAre("options: No such file or directory"));
}

TEST_F(Check, ReportsDamagedFilesOfEveryKind) {
  Bytes symbol = GoldenSymbolFile();
  symbol[45] = std::byte{65};
  for (size_t k = 4; k <= 63; k++) symbol[47 + 2 * k] = symbol[175 + 2 * k] = std::byte{16};
  symbol[175] = symbol[303] = std::byte{16};
  WriteBytes(install / "symbols/many.sls", symbol);
  Bytes plugin = GoldenPluginFile();
  plugin.resize(kSecondCommand);
  WriteBytes(install / "plugins/cut.sla", plugin);
  Bytes options = GoldenOptionsFile();
  options.pop_back();
  WriteBytes(install / "options/default.user", options);
  EXPECT_THAT(Problems(),
              ElementsAre("symbols/many.sls: 65 points, cut to the possible 64",
                          "plugins/cut.sla: ends within a command, 0 of 2 actions read",
                          "plugins/cut.sla: hands off: no gestures over \"XTerm.xterm\"",
                          "options/default.user: ends after 304 of 305 bytes, the missing ones are "
                          "shown as zeros"));
}

TEST_F(Check, ReportsFilesThatAreNoDataOrInTheWrongPlace) {
  WriteBytes(install / "plugins/L.sls", GoldenSymbolFile());
  WriteText(install / "symbols/notes", "remember the milk");
  ASSERT_EQ(mkfifo((install / "symbols/pipe").c_str(), 0600), 0);
  ASSERT_EQ(mkdir((install / "symbols/more").c_str(), 0700), 0);
  EXPECT_THAT(Problems(),
              ElementsAre(HasSubstr("symbols/notes: no symbol, plug-in or options file"),
                          "symbols/pipe: no regular file",
                          HasSubstr("plugins/L.sls: belongs into another directory")));
}

TEST_F(Check, NamesPluginsThatTurnGesturesOff) {
  Pack("plugins/Game.sla", R"({"kind":"plugin","classname":"Game.game","spare1":3})");
  Pack("plugins/Default.sla", R"({"kind":"plugin","classname":"Default","spare1":1})");
  Pack("plugins/Other.sla", R"({"kind":"plugin","classname":"Other.other","spare1":2})");
  EXPECT_THAT(Problems(),
              ElementsAre("plugins/Default.sla: hands off: no gestures over applications without a "
                          "plug-in",
                          "plugins/Game.sla: hands off: no gestures over \"Game.game\""));
}

TEST_F(Check, ReportsValuesThatTheProgramReplaces) {
  Pack("symbols/far.sls", R"({"kind":"symbol","name":"far","points":[[16,16],[272,264]]})");
  Pack("options/default.user", R"({"kind":"options","button":0})");
  EXPECT_THAT(Problems(),
              ElementsAre("symbols/far.sls: coordinate 272 of point 2 lies outside 16..264",
                          "options/default.user: draw button 0 lies outside 1..5, 3 is used"));
}

TEST_F(Check, ReportsChoicesThatItDoesNotKnow) {
  Pack("options/default.user",
       R"({"kind":"options","button":3,"temp1":-1,"temp2":1048576,"temp3":7,"temp4":2})");
  EXPECT_THAT(Problems(), ElementsAre("options/default.user: temp1 -1 is unknown, 0 is used",
                                      "options/default.user: temp3 7 is unknown, 0 is used",
                                      "options/default.user: temp4 2 is unknown, 0 is used"));
  Pack("options/default.user",
       R"({"kind":"options","button":3,"temp3":"shape","temp4":1,"tolerance":6})");
  EXPECT_THAT(Problems(),
              ElementsAre("options/default.user: tolerance 6 lies outside 1..5, 3 is used"));
  Pack("options/default.user", R"({"kind":"options","button":3,"tolerance":6})");
  EXPECT_THAT(Problems(), IsEmpty()) << "by signature it does not count";
}

TEST_F(Check, ReportsSymbolsWithAnEmptySignature) {
  Pack("symbols/dot.sls", R"({"kind":"symbol","name":"dot","points":[[16,16]]})");
  Pack("plugins/x.sla", Plugin("x", {kRight, "[]"}));
  EXPECT_THAT(Problems(),
              ElementsAre("symbols/dot.sls: symbol \"dot\" has an empty signature",
                          "plugins/x.sla: action 1 \"B\": symbol \"s\" has an empty signature"));
}

TEST_F(Check, ReportsEveryFurtherPluginOfAClass) {
  Pack("plugins/a.sla", Plugin("Same", {}));
  Pack("plugins/b.sla", Plugin("Same", {}));
  Pack("plugins/c", Plugin("Same", {}));
  Pack("plugins/d.sla", Plugin("same", {}));
  EXPECT_THAT(Problems(), ElementsAre("plugins/b.sla: not used: class \"Same\" is also that of "
                                      "plugins/a.sla, which counts",
                                      "plugins/c: not used: class \"Same\" is also that of "
                                      "plugins/a.sla, which counts"));
  Pack("plugins/Same.sla", Plugin("Same", {}));
  Pack("plugins/!.sla", Plugin("Same", {}));
  EXPECT_THAT(Problems(), ElementsAre("plugins/!.sla: not used: class \"Same\" is also that of "
                                      "plugins/Same.sla, which counts",
                                      HasSubstr("plugins/a.sla: not used: "),
                                      HasSubstr("plugins/b.sla: not used: "),
                                      HasSubstr("plugins/c: not used: ")));
}

TEST_F(Check, ReportsCommandsThatDoLessThanTheySay) {
  Pack("plugins/x.sla", R"({"kind":"plugin","actions":[{"name":"A","symbol":
      {"points":[[16,16],[264,16]]},"commands":[{"type":"HotKey","nkeys":8},{"type":"Menu","nkeys":9},
      {"type":6},{"type":255,"nkeys":255}]}]})");
  EXPECT_THAT(
      Problems(),
      ElementsAre("plugins/x.sla: action 0 \"A\": command 1: 9 keys, the possible 8 are sent",
                  "plugins/x.sla: action 0 \"A\": command 2: type 6 is unknown, it does nothing",
                  "plugins/x.sla: action 0 \"A\": command 3: type 255 is unknown, it does nothing",
                  "plugins/x.sla: action 0 \"A\": command 3: 255 keys, the possible 8 are sent"));
}

TEST_F(Check, ReportsActionsThatCanNeverRun) {
  Pack("plugins/x.sla", Plugin("x", {kRight, kDown, kLongDown, kRight, kDown}));
  EXPECT_THAT(
      Problems(),
      ElementsAre(
          "plugins/x.sla: action 2 \"C\" can never run: action 1 \"B\" takes all its strokes",
          "plugins/x.sla: action 3 \"D\" can never run: action 0 \"A\" takes all its strokes",
          "plugins/x.sla: action 4 \"E\" can never run: action 1 \"B\" takes all its "
          "strokes"));
}

TEST_F(Check, LeavesOneSymbolInTwoPluginsAlone) {
  Pack("plugins/x.sla", Plugin("x", {kRight}));
  Pack("plugins/y.sla", Plugin("y", {kRight}));
  EXPECT_THAT(Problems(), IsEmpty());
}

TEST_F(Check, KeepsHostileNamesOnOneLine) {
  Pack("plugins/x.sla", Plugin("a\\nb\\u001b", {}));
  Pack("plugins/y\n.sla", Plugin("a\\nb\\u001b", {}));
  EXPECT_THAT(Problems(),
              ElementsAre("plugins/y\\x0a.sla: not used: class \"a\\x0ab\\x1b\" is also that of "
                          "plugins/x.sla, which counts"));
}

TEST_F(Check, ReportsAFileThatCannotBeRead) {
  ASSERT_EQ(symlink("nowhere", (install / "symbols/L.sls").c_str()), 0);
  EXPECT_THAT(Problems(), ElementsAre("symbols/L.sls: No such file or directory"));
}

}  // namespace
}  // namespace gromlit
