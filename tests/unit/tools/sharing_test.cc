// export and import: several files in one document, and from there into another directory.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include "tests/support/temp_install.h"
#include "tests/unit/core/golden.h"
#include "tests/unit/tools/run_tool.h"

namespace gromlit {
namespace {

namespace fs = std::filesystem;
using ::testing::AllOf;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::StartsWith;
using namespace testing;  // NOLINT(google-build-using-namespace): the tests' own helpers

// A symbol document's item, a plug-in's with one action for each name.
std::string Symbol(const std::string& name, const std::string& points = "[[16,16],[16,264]]") {
  return R"({"name":")" + name + R"(","points":)" + points + "}";
}

std::string Action(const std::string& name, const std::string& points = "[[16,16],[264,16]]",
                   const std::string& run = "true") {
  return R"({"name":")" + name + R"(","symbol":)" + Symbol("S", points) +
         R"(,"commands":[{"type":"Run","text":")" + run + R"("}]})";
}

std::string Plugin(const std::string& classname, const std::vector<std::string>& actions) {
  std::string list;
  for (const std::string& action : actions) list += (list.empty() ? "" : ",") + action;
  return R"({"appname":"A","classname":")" + classname + R"(","actions":[)" + list + "]}";
}

std::string Collection(const std::string& lists) {
  return R"({"kind":"collection",)" + lists + "}";
}

std::string Symbols(const std::string& items) {
  return Collection(R"("symbols":[)" + items + "]");
}

std::string Plugins(const std::string& items) {
  return Collection(R"("plugins":[)" + items + "]");
}

std::vector<std::string> NamesBelow(const std::string& directory) {
  std::vector<std::string> names;
  for (const auto& entry : fs::recursive_directory_iterator(directory))
    if (!entry.is_directory()) names.push_back(entry.path().lexically_relative(directory));
  std::sort(names.begin(), names.end());
  return names;
}

class Sharing : public ::testing::Test {
 protected:
  ToolResult Import(const std::string& document, std::vector<std::string> flags = {}) {
    flags.insert(flags.begin(), {"import", "-", dir});
    return RunTool(flags, document);
  }
  ToolResult Export(std::vector<std::string> paths) {
    paths.insert(paths.begin(), "export");
    paths.insert(paths.end(), {"-o", "-"});
    return RunTool(paths);
  }
  std::string Show(const std::string& name) { return RunTool({"show", dir + "/" + name}).out; }
  // The names of the actions of a plug-in file, in order.
  std::vector<std::string> Actions(const std::string& name) {
    const std::string shown = Show(name);
    const std::string key = "      \"name\": \"";
    std::vector<std::string> names;
    for (size_t at = shown.find(key); at != std::string::npos; at = shown.find(key, at + 1)) {
      if (at > 0 && shown[at - 1] != '\n') continue;  // a symbol's name lies deeper
      const size_t begin = at + key.size();
      names.push_back(shown.substr(begin, shown.find('"', begin) - begin));
    }
    return names;
  }

  TempDir scratch;
  std::string dir = [this] {
    fs::create_directory(scratch / "home");
    return scratch / "home";
  }();
};

// --- Export -------------------------------------------------------------------------------------

TEST_F(Sharing, BringsAWholeDirectoryToAnotherPlace) {
  const TempInstall from;
  WriteBytes(from / "symbols/L\xff#.sls", GoldenSymbolFile());
  WriteBytes(from / "plugins/XTerm.xterm.sla", GoldenPluginFile());
  WriteBytes(from / "options/default.user", GoldenOptionsFile());
  const ToolResult exported = Export({from.path()});
  ASSERT_EQ(exported.status, 0) << exported.err;
  const ToolResult imported = Import(exported.out, {"--replace"});
  EXPECT_EQ(imported.status, 0) << imported.err;
  EXPECT_EQ(imported.out,
            "new symbols/L\xff#.sls\nnew plugins/XTerm.xterm.sla\nnew options/default.user\n");
  // Every byte that means something: a second export is the same text.
  EXPECT_EQ(Export({dir}).out, exported.out);
  EXPECT_EQ(ReadBytes(dir + "/symbols/L\xff#.sls"), ReadBytes(from / "symbols/L\xff#.sls"));
  EXPECT_EQ(Import(exported.out, {"--replace"}).out,
            "unchanged symbols/L\xff#.sls\nunchanged plugins/XTerm.xterm.sla\n"
            "unchanged options/default.user\n");
}

TEST_F(Sharing, WritesALineForEachThingThatChanges) {
  Import(Collection(R"("symbols":[)" + Symbol("Z") + "," + Symbol("A") + R"(],"plugins":[)" +
                    R"({"classname":"C","actions":[{"name":"Clear","symbol":)" + Symbol("L") +
                    R"(,"commands":[{"type":"HotKey","keys":[[46,4]],"text":"Control-l"}]}]}])"));
  EXPECT_EQ(Export({dir}).out, R"({
  "kind": "collection",
  "symbols": [
    {
      "name": "A",
      "points": [[16,16],[16,264]]
    },
    {
      "name": "Z",
      "points": [[16,16],[16,264]]
    }
  ],
  "plugins": [
    {
      "classname": "C",
      "actions": [
        {
          "name": "Clear",
          "symbol": {
            "name": "L",
            "points": [[16,16],[16,264]]
          },
          "commands": [
            {
              "type": "HotKey",
              "keys": [[46,4]],
              "text": "Control-l"
            }
          ]
        }
      ]
    }
  ]
}
)");
}

TEST_F(Sharing, KeepsWhatAnAbsentKeyWouldNotMean) {
  // Points that are all zero, keys of which none is in use, an icon that is not the points'.
  const std::string document = Plugins(
      R"({"classname":"C","actions":[{},{"symbol":{"points":[[0,0],[0,0]]},"commands":[)"
      R"({"type":"HotKey","nkeys":0,"keys":[[46,4]]},{"type":"HotKey","nkeys":2},{"type":9},)"
      R"({"type":"HotKey","keys":[],"text":"Control-l"}]}]})");
  ASSERT_EQ(Import(document).status, 0);
  const ToolResult exported = Export({dir});
  fs::create_directory(scratch / "other");
  ASSERT_EQ(RunTool({"import", "-", scratch / "other"}, exported.out).status, 0);
  EXPECT_EQ(ReadBytes(dir + "/plugins/C.sla"), ReadBytes(scratch / "other/plugins/C.sla"));
  EXPECT_THAT(exported.out, HasSubstr("[[0,0],[0,0]]"));
  // Of the text alone a key might be made.
  EXPECT_THAT(exported.out, HasSubstr("\"keys\": [],\n              \"text\": \"Control-l\""));
}

TEST_F(Sharing, NamesWhatIsLeftOutOfTheDocument) {
  const TempInstall from;
  WriteBytes(from / "symbols/copy.sls", GoldenSymbolFile());
  auto other = GoldenSymbolFile();
  other[13 + 36] = std::byte{8};  // another first point
  WriteBytes(from / "symbols/L\xff#.sls", other);
  WriteText(from / "plugins/README", "no plug-in at all");
  const ToolResult exported = Export({from.path()});
  EXPECT_EQ(exported.status, 2);
  EXPECT_THAT(exported.err, AllOf(HasSubstr("copy.sls: left out, there is another symbol"),
                                  HasSubstr("plugins/README: no symbol, plug-in or options file")));
  fs::remove(from / "plugins/README");
  EXPECT_EQ(Export({from.path()}).status, 1);
  // The file with the symbol's own name is the one.
  const ToolResult own = Export({from / "symbols/L\xff#.sls"});
  EXPECT_EQ(own.status, 0);
  EXPECT_EQ(own.out, Export({from.path()}).out);
}

TEST_F(Sharing, ExportsSingleFilesAndNothingOfNothing) {
  Import(Symbols(Symbol("A") + "," + Symbol("B")));
  const ToolResult one = Export({dir + "/symbols/B.sls"});
  EXPECT_EQ(one.status, 0);
  EXPECT_THAT(one.out, AllOf(HasSubstr("\"B\""), Not(HasSubstr("\"A\""))));
  EXPECT_EQ(RunTool({"export", dir, "-o", scratch / "x.json"}).status, 0);
  EXPECT_EQ(ReadText(scratch / "x.json"), Export({dir}).out);
  fs::create_directory(scratch / "empty");
  EXPECT_EQ(RunTool({"export", scratch / "empty", "-o", scratch / "y.json"}).status, 2);
  EXPECT_EQ(RunTool({"export", scratch / "absent", "-o", scratch / "y.json"}).status, 2);
  EXPECT_FALSE(fs::exists(scratch / "y.json"));
}

// --- Import -------------------------------------------------------------------------------------

TEST_F(Sharing, WritesNothingInADryRunButSaysTheSame) {
  Import(Symbols(Symbol("A")));
  const auto before = ReadBytes(dir + "/symbols/A.sls");
  const std::string document =
      Collection(R"("symbols":[)" + Symbol("A", "[[16,16],[264,264]]") + "," + Symbol("B") +
                 R"(],"plugins":[)" + Plugin("C", {Action("Go")}) + "]");
  const ToolResult dry = Import(document, {"--replace", "--dry-run"});
  EXPECT_EQ(dry.status, 0);
  EXPECT_THAT(NamesBelow(dir), ElementsAre("symbols/A.sls"));
  EXPECT_EQ(ReadBytes(dir + "/symbols/A.sls"), before);
  const ToolResult wet = Import(document, {"--replace"});
  EXPECT_EQ(wet.out, dry.out);
  EXPECT_EQ(wet.out,
            "replaced symbols/A.sls: the former one is replaced/A.sls\nnew symbols/B.sls\n"
            "new plugins/C.sla\n");
}

TEST_F(Sharing, KeepsWhatIsThereUnlessItIsToldOtherwise) {
  Import(Collection(R"("symbols":[)" + Symbol("A") + R"(],"plugins":[)" +
                    Plugin("C", {Action("Go")}) + "]"));
  const auto symbol = ReadBytes(dir + "/symbols/A.sls");
  const auto plugin = ReadBytes(dir + "/plugins/C.sla");
  const std::string document = Collection(
      R"("symbols":[)" + Symbol("A", "[[16,16],[264,264]]") + "," + Symbol("B") +
      R"(],"plugins":[)" + Plugin("C", {Action("Stop")}) + R"(],"options":{"button":2})");
  const ToolResult kept = Import(document);
  EXPECT_EQ(kept.status, 1);
  EXPECT_EQ(kept.out,
            "skipped symbols/A.sls: the one that is there is another\nnew symbols/B.sls\n"
            "skipped plugins/C.sla: the one that is there is another\n"
            "skipped options/default.user: options are taken over with --replace only\n");
  EXPECT_EQ(ReadBytes(dir + "/symbols/A.sls"), symbol);
  EXPECT_EQ(ReadBytes(dir + "/plugins/C.sla"), plugin);
  EXPECT_FALSE(fs::exists(dir + "/options/default.user"));
  EXPECT_FALSE(fs::exists(dir + "/replaced"));

  // Replaced twice: both former ones are kept.
  EXPECT_EQ(Import(document, {"--replace"}).status, 0);
  EXPECT_EQ(ReadBytes(dir + "/replaced/A.sls"), symbol);
  EXPECT_EQ(ReadBytes(dir + "/replaced/C.sla"), plugin);
  EXPECT_THAT(Show("options/default.user"), HasSubstr("\"button\": 2"));
  EXPECT_EQ(Import(Symbols(Symbol("A", "[[24,16],[264,264]]")), {"--replace"}).out,
            "replaced symbols/A.sls: the former one is replaced/A.sls.2\n");
  EXPECT_EQ(ReadBytes(dir + "/replaced/A.sls"), symbol);
  EXPECT_TRUE(fs::exists(dir + "/replaced/A.sls.2"));
}

TEST_F(Sharing, MergesTheActionsThatAreNotThere) {
  Import(Plugins(Plugin("C", {Action("Go", "[[16,16],[264,16]]", "mine"), Action("Stop")})));
  const std::string document =
      Plugins(Plugin("C", {Action("New"), Action("Go", "[[16,16],[264,16]]", "theirs"),
                           Action("Go", "[[16,16],[16,264]]", "theirs")}));
  const ToolResult merged = Import(document, {"--merge"});
  EXPECT_EQ(merged.status, 0);
  EXPECT_EQ(merged.out, "merged plugins/C.sla: 2 actions added\n");
  EXPECT_THAT(Actions("plugins/C.sla"), ElementsAre("Go", "Stop", "New", "Go"));
  EXPECT_THAT(Show("plugins/C.sla"), AllOf(HasSubstr("mine"), HasSubstr("theirs")));
  EXPECT_FALSE(fs::exists(dir + "/replaced"));
  EXPECT_EQ(Import(document, {"--merge"}).out, "unchanged plugins/C.sla: it has all actions\n");
}

TEST_F(Sharing, NamesTheActionsForWhichThereIsNoRoom) {
  std::vector<std::string> many;
  for (int i = 0; i < 127; i++) many.push_back(Action("Old" + std::to_string(i)));
  Import(Plugins(Plugin("C", many)));
  const ToolResult merged =
      Import(Plugins(Plugin("C", {Action("One"), Action("Two"), Action("Old5"), Action("Three")})),
             {"--merge"});
  EXPECT_EQ(merged.status, 1);
  EXPECT_EQ(merged.out, "merged plugins/C.sla: 1 action added, no room for \"Two\", \"Three\"\n");
  EXPECT_EQ(Actions("plugins/C.sla").size(), 128u);
  EXPECT_EQ(Actions("plugins/C.sla").back(), "One");
  EXPECT_EQ(Import(Plugins(Plugin("C", {Action("Two")})), {"--merge"}).out,
            "skipped plugins/C.sla: 0 actions added, no room for \"Two\"\n");
}

TEST_F(Sharing, TouchesADamagedPluginOnlyToReplaceIt) {
  fs::create_directory(dir + "/plugins");
  auto damaged = GoldenPluginFile();
  damaged.resize(kSecondAction + 10);
  WriteBytes(dir + "/plugins/XTerm.xterm.sla", damaged);
  const std::string document = Plugins(Plugin("XTerm.xterm", {Action("Go")}));
  EXPECT_EQ(Import(document, {"--merge"}).out,
            "skipped plugins/XTerm.xterm.sla: the one that is there is damaged\n");
  EXPECT_EQ(ReadBytes(dir + "/plugins/XTerm.xterm.sla"), damaged);
  EXPECT_EQ(Import(document, {"--replace"}).status, 0);
  EXPECT_EQ(ReadBytes(dir + "/replaced/XTerm.xterm.sla"), damaged);
}

TEST_F(Sharing, FindsAPluginByItsClassWhateverItsFile) {
  Import(Plugins(Plugin("C", {Action("Go")})));
  fs::rename(dir + "/plugins/C.sla", dir + "/plugins/mine.sla");
  EXPECT_EQ(Import(Plugins(Plugin("C", {Action("Stop")})), {"--replace"}).out,
            "replaced plugins/mine.sla: the former one is replaced/mine.sla\n");
  // A name that is in use by something else is left alone.
  WriteText(dir + "/plugins/D.sla", "a letter");
  EXPECT_EQ(Import(Plugins(Plugin("D", {Action("Go")}))).out, "new plugins/D_2.sla\n");
  EXPECT_EQ(ReadText(dir + "/plugins/D.sla"), "a letter");
}

// --- Documents that somebody made to harm -------------------------------------------------------

TEST_F(Sharing, NoNameLeavesTheDirectory) {
  const ToolResult imported =
      Import(Collection(R"("symbols":[)" + Symbol("../../up") + "," + Symbol("/tmp/root") + "," +
                        Symbol("..") + R"(],"plugins":[)" + Plugin("../up", {}) + "," +
                        Plugin("..", {}) + "," + Plugin(".._up", {}) + "]"));
  EXPECT_EQ(imported.status, 0) << imported.err;
  EXPECT_THAT(NamesBelow(dir),
              ElementsAre("plugins/...sla", "plugins/.._up.sla", "plugins/.._up_2.sla",
                          "symbols/...sls", "symbols/.._.._up.sls", "symbols/_tmp_root.sls"));
  EXPECT_EQ(NamesBelow(scratch.path()).size(), 6u);
}

TEST_F(Sharing, OneMistakeAnywhereAndNothingIsWritten) {
  const std::string good = R"("symbols":[)" + Symbol("A") + "]";
  const std::vector<std::pair<std::string, std::string>> bad = {
      {R"("plugins":[)" + Plugin("C", {Action("Go", "[[16,70000]]")}) + "]",
       "plugins[0]: actions[0].symbol.points[0]: 70000 lies outside"},
      {R"("plugins":[)" + Plugin("C", {}) + "," + Plugin("C", {}) + "]",
       "plugins[1]: an earlier plug-in has this class"},
      {R"("plugins":[)" + Plugin("", {}) + "]", "plugins[0]: classname: "},
      {R"("plugins":{})", "plugins: a list is expected"},
      {R"("plugins":[3])", "plugins[0]: an object is expected"},
      {R"("plugins":[{"kind":"symbol","classname":"C"}])", "plugins[0]: kind: "},
      {R"("options":{"button":"left"})", "options: button: a whole number is expected"},
      {R"("icons":[])", "unknown key \"icons\""},
  };
  for (const auto& [part, message] : bad) {
    const ToolResult result = Import(Collection(good + "," + part), {"--replace"});
    EXPECT_EQ(result.status, 2) << part;
    EXPECT_THAT(result.err, StartsWith("gromlit-tool: standard input: " + message)) << part;
    EXPECT_EQ(result.out, "");
    EXPECT_THAT(NamesBelow(dir), IsEmpty()) << part;
  }
  EXPECT_EQ(Import(Symbols(Symbol("a/b") + "," + Symbol("a_b"))).status, 2);
  EXPECT_EQ(Import(Symbols(Symbol(""))).status, 2);
  EXPECT_EQ(Import("[]").status, 2);
  EXPECT_EQ(Import(R"({"kind":"collections"})").status, 2);
  EXPECT_THAT(NamesBelow(dir), IsEmpty());
}

TEST_F(Sharing, ASmallDocumentCannotTakeALotOfMemory) {
  std::string many;
  for (int i = 0; i <= 1000; i++)
    many += (i == 0 ? "" : ",") + (R"({"classname":"C)" + std::to_string(i) + "\"}");
  const ToolResult result = Import(Plugins(many), {"--dry-run"});
  EXPECT_EQ(result.status, 2);
  EXPECT_THAT(result.err, HasSubstr("plugins: more than 1000 in one document"));
  EXPECT_EQ(Import(Plugins(many.substr(0, many.rfind(','))), {"--dry-run"}).status, 0);
}

TEST_F(Sharing, TakesADocumentOfOneFile) {
  EXPECT_EQ(Import(R"({"kind":"symbol","name":"A"})").out, "new symbols/A.sls\n");
  EXPECT_EQ(Import(R"({"kind":"plugin","classname":"C"})").out, "new plugins/C.sla\n");
  EXPECT_EQ(Import(R"({"kind":"options"})", {"--replace"}).out, "new options/default.user\n");
}

TEST_F(Sharing, EndsWithTheReasonWhereItCannotWrite) {
  const ToolResult absent = RunTool({"import", "-", scratch / "absent"}, Symbols(Symbol("A")));
  EXPECT_EQ(absent.status, 2);
  EXPECT_THAT(absent.err, HasSubstr("absent: "));
  // A file where the directory of symbols should be; true for root, too.
  WriteText(dir + "/symbols", "");
  const ToolResult result = Import(Symbols(Symbol("A")));
  EXPECT_EQ(result.status, 2);
  EXPECT_THAT(result.err, HasSubstr("symbols: Not a directory"));
  EXPECT_EQ(ReadText(dir + "/symbols"), "");
  EXPECT_EQ(Import(Symbols(Symbol("A")), {"--merge", "--replace"}).status, 2);
}

TEST_F(Sharing, ALineOfTheReportIsALine) {
  const ToolResult imported = Import(Symbols(Symbol("a\\n\\u001b[1m")));
  EXPECT_EQ(imported.out, "new symbols/a\\x0a\\x1b[1m.sls\n");
}

}  // namespace
}  // namespace gromlit
