// show and pack: what is in a file, out of it and back into it.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <nlohmann/json.hpp>

#include "tests/support/temp_install.h"
#include "tests/unit/core/golden.h"
#include "tests/unit/tools/run_tool.h"
#include "tools/record_json.h"

namespace gromlit {
namespace {

using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::StartsWith;
using namespace testing;  // NOLINT(google-build-using-namespace): the tests' own helpers

using Bytes = std::vector<std::byte>;

class ShowPack : public ::testing::Test {
 protected:
  // Writes the file and shows it.
  ToolResult Show(const Bytes& bytes) {
    WriteBytes(file, bytes);
    return RunTool({"show", file});
  }

  // The file that pack makes of a document; fails the test when there is none.
  Bytes Pack(const std::string& document) {
    const ToolResult result = RunTool({"pack", "-", "-o", packed}, document);
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_EQ(result.out, "");
    return ReadBytes(packed);
  }

  // The message of a pack that must fail and write nothing.
  std::string Refusal(const std::string& document) {
    const ToolResult result = RunTool({"pack", "-", "-o", packed}, document);
    EXPECT_EQ(result.status, 2) << document.substr(0, 200);
    EXPECT_EQ(result.out, "");
    EXPECT_FALSE(Exists(packed));
    EXPECT_THAT(result.err, StartsWith("gromlit-tool: standard input: "));
    return result.err;
  }

  TempInstall install;
  std::string file = install / "file";
  std::string packed = install / "packed";
};

// --- Round trips --------------------------------------------------------------------------------

TEST_F(ShowPack, GivesTheSameSymbolFile) {
  const ToolResult shown = Show(GoldenSymbolFile());
  EXPECT_EQ(shown.status, 0);
  EXPECT_EQ(shown.err, "");
  EXPECT_EQ(Pack(shown.out), GoldenSymbolFile());
}

TEST_F(ShowPack, GivesTheSamePluginFile) {
  const ToolResult shown = Show(GoldenPluginFile());
  EXPECT_EQ(shown.status, 0);
  EXPECT_EQ(shown.err, "");
  EXPECT_EQ(Pack(shown.out), GoldenPluginFile());
}

TEST_F(ShowPack, GivesTheSameOptionsFile) {
  const ToolResult shown = Show(GoldenOptionsFile());
  EXPECT_EQ(shown.status, 0);
  EXPECT_EQ(shown.err, "");
  EXPECT_EQ(Pack(shown.out), GoldenOptionsFile());
}

TEST_F(ShowPack, KeepsThe64thPoint) {
  Golden golden(441);
  golden.Put(0, "GromlitSymbol").Put(13 + 32, {64});
  for (int k = 1; k < 64; k++) golden.Put(47 + 2 * static_cast<size_t>(k), {16 + k, 0});
  for (int k = 1; k < 64; k++) golden.Put(175 + 2 * static_cast<size_t>(k), {k, 1});
  golden.Put(175, {0x34, 0x12}).Put(303, {0x78, 0x56});
  const ToolResult shown = Show(golden.bytes());
  EXPECT_THAT(shown.out, HasSubstr("[79,319],[4660,22136]]"));
  EXPECT_EQ(Pack(shown.out), golden.bytes());
}

TEST_F(ShowPack, ZeroesBytesWithoutDefinedContentAndDropsWhatFollowsTheSymbol) {
  Golden dirty(450);
  const Bytes clean = GoldenSymbolFile();
  for (size_t i = 0; i < clean.size(); i++) dirty.Put(i, {std::to_integer<int>(clean[i])});
  dirty
      .Fill(13 + 4, 28, 'j')          // behind the name's NUL
      .Fill(46, 1, 'j')               // gap
      .Fill(47, 2, 'j')               // x[0]
      .Fill(47 + 2 * 4, 2 * 60, 'j')  // x[4..63]
      .Fill(175, 2, 'j')              // y[0]
      .Fill(175 + 2 * 4, 2 * 60, 'j')
      .Fill(303, 2, 'j')    // gap
      .Fill(437, 13, 'j');  // signature slot, and bytes behind the record
  const ToolResult shown = Show(dirty.bytes());
  EXPECT_EQ(shown.status, 0);
  EXPECT_EQ(Pack(shown.out), clean);
}

TEST_F(ShowPack, ZeroesBytesWithoutDefinedContentAndDropsWhatFollowsThePlugin) {
  const Bytes clean = GoldenPluginFile();
  Golden dirty(clean.size() + 100);
  for (size_t i = 0; i < clean.size(); i++) dirty.Put(i, {std::to_integer<int>(clean[i])});
  dirty
      .Fill(13 + 9, 55, 'j')                  // behind appname's NUL
      .Fill(13 + 64 + 12, 52, 'j')            // behind classname's
      .Fill(13 + 651, 513, 'j')               // gap and slots
      .Fill(kFirstAction + 428 + 6, 58, 'j')  // behind the action's name
      .Fill(kFirstAction + 500, 512, 'j')     // slots
      .Fill(kFirstCommand + 42, 2, 'j')       // gap
      .Fill(kFirstCommand + 52, 4, 'j')       // text slot
      .Fill(clean.size(), 100, 'j');
  const ToolResult shown = Show(dirty.bytes());
  EXPECT_EQ(shown.status, 0);
  EXPECT_EQ(Pack(shown.out), clean);
}

TEST_F(ShowPack, OfAFullPluginGivesTheSameFile) {
  Json document = {{"kind", "plugin"}, {"classname", "Full"}};
  for (int i = 0; i < kMaxActions; i++) {
    Json commands = Json::array();
    for (int j = 0; j < kMaxCommands; j++)
      commands.push_back({{"type", j % 6}, {"text", std::to_string(i * 1000 + j)}});
    document["actions"].push_back({{"name", std::to_string(i)}, {"commands", commands}});
  }
  const Bytes first = Pack(document.dump());
  EXPECT_GT(first.size(), size_t{128} * 128 * 56);
  const ToolResult shown = Show(first);
  EXPECT_EQ(shown.status, 0);
  EXPECT_EQ(Pack(shown.out), first);
}

TEST_F(ShowPack, CarriesEveryByteOfATextAndOfAReservedField) {
  Bytes plugin = GoldenPluginFile();
  for (size_t i = 0; i < 512; i++) plugin[13 + 138 + i] = static_cast<std::byte>(i * 7 + 1);
  const ToolResult shown = Show(plugin);
  EXPECT_EQ(shown.status, 0);
  EXPECT_EQ(Pack(shown.out), plugin);
}

// --- The document -------------------------------------------------------------------------------

TEST_F(ShowPack, PrintsTheFieldsUnderTheirNames) {
  const Json shown = Json::parse(Show(GoldenPluginFile()).out);
  EXPECT_EQ(shown["kind"], "plugin");
  EXPECT_EQ(shown["appname"], "Terminal");
  EXPECT_EQ(shown["classname"], "XTerm.xterm");
  EXPECT_EQ(shown["spare1"], 5);
  EXPECT_EQ(shown["spare2"], 250);
  EXPECT_EQ(shown["spare3"], -1);
  EXPECT_EQ(shown["spare4"], 0x01020304);
  EXPECT_EQ(shown["chars"][0], std::string("\0x\0\xc3\xbf", 5));
  EXPECT_EQ(shown["chars"][1], "");
  EXPECT_EQ(shown["chars"][7], std::string(64, 'y'));
  const Json& action = shown["actions"][0];
  EXPECT_EQ(action["name"], "Clear");
  EXPECT_EQ(action["spare"], -2147483648);
  EXPECT_EQ(action["symbol"]["name"], "L\xc3\xbf#");
  EXPECT_EQ(action["symbol"]["points"], Json::parse("[[16,16],[16,264],[264,264]]"));
  EXPECT_EQ(action["symbol"]["icon"][0], "#...............................");
  EXPECT_EQ(action["symbol"]["icon"][31], "...............................#");
  EXPECT_EQ(action["symbol"]["spare"], 4294967294);
  const Json& cmd = action["commands"][0];
  EXPECT_EQ(cmd["type"], "HotKey");
  EXPECT_EQ(cmd["nkeys"], 9);
  EXPECT_EQ(cmd["keys"], Json::parse("[[46,4],[0,0],[65535,0]]"));
  EXPECT_EQ(cmd["text"], std::string("a\0b\xc3\xa4\0", 6));
  EXPECT_EQ(cmd["buttons"], Json::parse("[1,2,3,4,5,6]"));
  EXPECT_EQ(cmd["flag"], 7);
  EXPECT_EQ(cmd["checked"], 8);
  EXPECT_EQ(cmd["spare"], -3);
  EXPECT_EQ(action["commands"][1]["type"], 77);
  EXPECT_EQ(shown["actions"].size(), 2u);
}

TEST_F(ShowPack, PrintsOptionsUnderTheirNames) {
  const Json shown = Json::parse(Show(GoldenOptionsFile()).out);
  const Json expected = {{"kind", "options"},
                         {"button", 2},
                         {"sensitivity", 4},
                         {"tolerance", 3},
                         {"splash", 1},
                         {"showactions", -1},
                         {"temp1", 1},
                         {"temp2", 2},
                         {"temp3", 3},
                         {"temp4", -2147483644},
                         {"urlcmd", "xdg-open %s"},
                         {"sndcmd", std::string(63, 's')},
                         {"charspare2", std::string("\0z", 2)}};
  EXPECT_EQ(shown, expected);
}

TEST_F(ShowPack, PrintsSeveralFilesOneAfterTheOther) {
  WriteBytes(file, GoldenSymbolFile());
  WriteBytes(install / "second", GoldenOptionsFile());
  const ToolResult both = RunTool({"show", file, install / "second"});
  EXPECT_EQ(both.status, 0);
  EXPECT_EQ(both.out, RunTool({"show", file}).out + RunTool({"show", install / "second"}).out);
}

TEST_F(ShowPack, TakesAbsentKeysAsZeroAndDrawsTheIcon) {
  const Bytes symbol = Pack(R"({"kind": "symbol", "points": [[16,16],[264,16]]})");
  Golden expected(441);
  expected.Put(0, "GromlitSymbol").Put(45, {2}).Put(49, {16, 0, 8, 1}).Put(177, {16, 0, 16, 0});
  expected.Fill(305, 4, 0xff);  // row 0
  EXPECT_EQ(symbol, expected.bytes());
  EXPECT_EQ(Pack(R"({"kind":"symbol","points":[[16,16],[264,16]],"icon":"auto"})"), symbol);
  EXPECT_EQ(Pack(R"({"kind":"options"})"), Golden(305).Put(0, "GromlitOption").bytes());
  EXPECT_EQ(Pack(R"({"kind":"plugin"})"), Golden(1177).Put(0, "GromlitPlugin").bytes());
}

TEST_F(ShowPack, CountsTheKeysWhereTheirNumberIsNotGiven) {
  const Bytes plugin = Pack(
      R"({"kind":"plugin","actions":[{"commands":[{"keys":[[1,2],[3,4],[0,0]]},{"keys":[[1,2]],"nkeys":0}]}]})");
  EXPECT_EQ(std::to_integer<int>(plugin.at(1177 + 1012 + 1)), 3);
  EXPECT_EQ(std::to_integer<int>(plugin.at(1177 + 1012 + 56 + 1)), 0);
}

TEST_F(ShowPack, TakesTheKeysOfAHotKeyFromItsText) {
  const auto keys_of = [this](const std::string& command) {
    const Bytes plugin = Pack(R"({"kind":"plugin","actions":[{"commands":[)" + command + "]}]}");
    const auto at = [&](size_t i) { return std::to_integer<int>(plugin.at(1177 + 1012 + i)); };
    return std::vector<int>{at(1), at(2) | at(3) << 8, at(18) | at(19) << 8};
  };
  EXPECT_EQ(keys_of(R"({"type":"HotKey","text":"Control-Shift-t"})"), (std::vector{1, 28, 5}));
  EXPECT_EQ(keys_of(R"({"type":"HotKey","text":"Control-plus"})"), (std::vector{1, 21, 5}));
  EXPECT_EQ(keys_of(R"({"type":"HotKey","text":"Super-Prior"})"), (std::vector{1, 112, 64}));
  // What is given counts, and other commands have texts of their own.
  EXPECT_EQ(keys_of(R"({"type":"HotKey","keys":[[9,1]],"text":"F5"})"), (std::vector{1, 9, 1}));
  EXPECT_EQ(keys_of(R"({"type":"HotKey","keys":[],"text":"F5"})"), (std::vector{0, 0, 0}));
  EXPECT_EQ(keys_of(R"({"type":"Text","text":"F5"})"), (std::vector{0, 0, 0}));
}

TEST_F(ShowPack, RefusesATextThatIsNoKeyStroke) {
  for (const char* text : {"Control-Shift-Nothing", "Control-", "Strg-c", "Control-adiaeresis"}) {
    const ToolResult result = RunTool({"pack", "-", "-o", file},
                                      R"({"kind":"plugin","actions":[{"commands":[
                                      {"type":"HotKey","text":")" +
                                          std::string(text) + "\"}]}]}");
    EXPECT_EQ(result.status, 2) << text;
    EXPECT_NE(result.err.find("actions[0].commands[0].text: no key stroke"), std::string::npos)
        << result.err;
  }
}

TEST_F(ShowPack, KnowsTheSixTypesByNameAndAllByNumber) {
  const Bytes plugin = Pack(
      R"({"kind":"plugin","actions":[{"commands":[{"type":"HotKey"},{"type":"Menu"},{"type":"Text"},
         {"type":"Sound"},{"type":"Run"},{"type":"Internet"},{"type":3},{"type":255}]}]})");
  const int expected[] = {0, 1, 2, 3, 4, 5, 3, 255};
  for (size_t j = 0; j < 8; j++)
    EXPECT_EQ(std::to_integer<int>(plugin.at(1177 + 1012 + 56 * j)), expected[j]) << j;
}

TEST_F(ShowPack, KnowsTheValuesOfReservedFieldsByNameAndAllByNumber) {
  const auto packs = [this](const std::string& named, const std::string& numbers) {
    EXPECT_EQ(Pack(named), Pack(numbers)) << named;
  };
  packs(
      R"({"kind":"options","temp1":"real-input","temp2":"fall-back","temp3":"shape","temp4":"modern"})",
      R"({"kind":"options","temp1":1,"temp2":2,"temp3":1,"temp4":1})");
  packs(R"({"kind":"options","temp1":"events","temp2":[],"temp3":"signature","temp4":"plain"})",
        R"({"kind":"options"})");
  packs(R"({"kind":"options","temp2":["draw-with-locks","fall-back","activate-first",)"
        R"("open-directly","name-while-drawing",64]})",
        R"({"kind":"options","temp2":95})");
  packs(R"({"kind":"plugin","spare1":["hands-off",2]})", R"({"kind":"plugin","spare1":3})");
  packs(R"({"kind":"plugin","spare1":"hands-off"})", R"({"kind":"plugin","spare1":1})");
}

TEST_F(ShowPack, EndsNamesAtTheirFirstNul) {
  const Bytes symbol = Pack(R"({"kind":"symbol","name":"ab\u0000cd"})");
  EXPECT_EQ(symbol, Golden(441).Put(0, "GromlitSymbol").Put(13, "ab").bytes());
}

TEST_F(ShowPack, ReadsDocumentsFromFiles) {
  WriteText(file, R"({"kind":"symbol","name":"x"})");
  EXPECT_EQ(RunTool({"pack", file, "-o", packed}).status, 0);
  EXPECT_EQ(ReadBytes(packed).size(), 441u);
}

// --- Damaged files ------------------------------------------------------------------------------

TEST_F(ShowPack, ShowsWhatIsLeftOfATruncatedPlugin) {
  const Bytes whole = GoldenPluginFile();
  for (const size_t size :
       {size_t{0}, size_t{12}, size_t{13}, size_t{700}, kFirstAction - 1, kFirstAction,
        kFirstText + 2, kSecondAction - 1, kSecondAction, whole.size() - 1}) {
    const ToolResult shown = Show(Bytes(whole.begin(), whole.begin() + static_cast<long>(size)));
    EXPECT_EQ(shown.status, 2) << size;
    EXPECT_THAT(shown.err, StartsWith("gromlit-tool: " + file + ": ")) << size;
    if (size < 13) {
      EXPECT_EQ(shown.out, "") << size;
      continue;
    }
    const Json document = Json::parse(shown.out);
    EXPECT_EQ(document["kind"], "plugin");
    EXPECT_EQ(document["actions"].size(), size < kSecondAction ? 0u : 1u) << size;
  }
}

TEST_F(ShowPack, SaysWhichPartOfAPluginIsMissing) {
  const Bytes whole = GoldenPluginFile();
  const auto cut = [&](size_t size) {
    return Show(Bytes(whole.begin(), whole.begin() + static_cast<long>(size))).err;
  };
  EXPECT_THAT(cut(500), HasSubstr("ends after 500 of 1177 bytes"));
  EXPECT_THAT(cut(kFirstAction + 1), HasSubstr("ends within an action, 0 of 2 actions read"));
  EXPECT_THAT(cut(kFirstCommand + 1), HasSubstr("ends within a command, 0 of 2 actions read"));
  EXPECT_THAT(cut(kFirstText + 4), HasSubstr("ends within a command's text, 0 of 2 actions"));
  EXPECT_THAT(cut(kSecondAction), HasSubstr("ends within an action, 1 of 2 actions read"));
}

TEST_F(ShowPack, ShowsWhatIsLeftOfTruncatedSymbolsAndOptions) {
  for (const Bytes& whole : {GoldenSymbolFile(), GoldenOptionsFile()}) {
    for (const size_t size : {size_t{12}, size_t{13}, size_t{100}, whole.size() - 1}) {
      const ToolResult shown = Show(Bytes(whole.begin(), whole.begin() + static_cast<long>(size)));
      EXPECT_EQ(shown.status, 2) << size;
      EXPECT_THAT(shown.err, HasSubstr(size < 13 ? "header" : "ends after ")) << size;
      EXPECT_EQ(shown.out.empty(), size < 13) << size;
    }
  }
}

TEST_F(ShowPack, CutsTextsWithoutAnEnd) {
  Bytes plugin = GoldenPluginFile();
  const auto fill = [&](size_t at, size_t n) {
    std::fill_n(plugin.begin() + static_cast<long>(at), n, std::byte{'n'});
  };
  fill(13, 64);
  fill(77, 64);
  fill(kFirstAction, 32);
  fill(kSecondAction + 428, 64);
  const ToolResult shown = Show(plugin);
  EXPECT_EQ(shown.status, 2);
  EXPECT_THAT(shown.err,
              AllOf(HasSubstr("appname has no end in its field, cut to 63 bytes"),
                    HasSubstr("classname has no end"),
                    HasSubstr("action 0: symbol name has no end in its field, cut to 31"),
                    HasSubstr("action 1: action name has no end")));
  const Json document = Json::parse(shown.out);
  EXPECT_EQ(document["appname"], std::string(63, 'n'));
  EXPECT_EQ(document["actions"][0]["symbol"]["name"], std::string(31, 'n'));

  Bytes options = GoldenOptionsFile();
  std::fill_n(options.begin() + 49, 128, std::byte{'u'});
  options[177 + 63] = std::byte{'s'};
  EXPECT_THAT(Show(options).err, AllOf(HasSubstr("urlcmd has no end in its field, cut to 127"),
                                       HasSubstr("sndcmd has no end")));
}

TEST_F(ShowPack, CutsCountsToTheirLimits) {
  Bytes symbol = GoldenSymbolFile();
  symbol[45] = std::byte{200};
  ToolResult shown = Show(symbol);
  EXPECT_EQ(shown.status, 2);
  EXPECT_THAT(shown.err, HasSubstr("200 points, cut to the possible 64"));
  EXPECT_EQ(Json::parse(shown.out)["points"].size(), 64u);

  Bytes plugin = GoldenPluginFile();
  plugin[kFirstAction + 496] = std::byte{129};
  for (int j = 2; j < 129; j++) {
    const Bytes cmd(56);
    plugin.insert(plugin.begin() + static_cast<long>(kSecondAction), cmd.begin(), cmd.end());
  }
  shown = Show(plugin);
  EXPECT_EQ(shown.status, 2);
  EXPECT_THAT(shown.err, HasSubstr("action 0: 129 commands, more than the possible 128"));
  EXPECT_EQ(Json::parse(shown.out)["actions"].size(), 0u);

  Bytes many = Golden(1177 + 129 * 1012).Put(0, "GromlitPlugin").Put(13 + 650, {129}).bytes();
  shown = Show(many);
  EXPECT_EQ(shown.status, 2);
  EXPECT_THAT(shown.err, HasSubstr("more actions than the possible 128, 128 of 129"));
  EXPECT_EQ(Json::parse(shown.out)["actions"].size(), 128u);
}

TEST_F(ShowPack, AllocatesNothingForATextThatIsNotThere) {
  Bytes plugin = GoldenPluginFile();
  std::fill_n(plugin.begin() + static_cast<long>(kFirstCommand) + 48, 4, std::byte{0xff});
  const ToolResult shown = Show(plugin);
  EXPECT_EQ(shown.status, 2);
  EXPECT_THAT(shown.err, HasSubstr("ends within a command's text"));
}

TEST_F(ShowPack, RefusesWhatIsNoDataFile) {
  const ToolResult text = Show(Golden(500).Put(0, "GromlitSymbols").bytes());
  EXPECT_EQ(text.status, 0) << "the header is 13 bytes, what follows is the name";
  const ToolResult wrong = Show(Golden(500).Put(0, "gromlitsymbol").bytes());
  EXPECT_EQ(wrong.status, 2);
  EXPECT_EQ(wrong.out, "");
  EXPECT_THAT(wrong.err, AllOf(HasSubstr(file), HasSubstr("header")));

  const ToolResult missing = RunTool({"show", install / "nowhere"});
  EXPECT_EQ(missing.status, 2);
  EXPECT_THAT(missing.err, AllOf(HasSubstr("nowhere: "), HasSubstr("No such file")));

  const ToolResult directory = RunTool({"show", install.path()});
  EXPECT_EQ(directory.status, 2);
  EXPECT_THAT(directory.err, HasSubstr("Is a directory"));

  ASSERT_EQ(mkfifo((install / "fifo").c_str(), 0600), 0);
  const ToolResult fifo = RunTool({"show", install / "fifo"});
  EXPECT_EQ(fifo.status, 2);
  EXPECT_THAT(fifo.err, HasSubstr("no regular file"));
}

TEST_F(ShowPack, ShowsTheOtherFilesWhenOneCannotBeRead) {
  WriteBytes(file, GoldenSymbolFile());
  const ToolResult shown = RunTool({"show", install / "nowhere", file});
  EXPECT_EQ(shown.status, 2);
  EXPECT_EQ(Json::parse(shown.out)["kind"], "symbol");
}

// --- Documents that cannot be packed ------------------------------------------------------------

TEST_F(ShowPack, SaysWhereADocumentIsWrong) {
  const struct {
    const char* document;
    const char* message;
  } cases[] = {
      {"", "no JSON: parse error at line 1"},
      {"{\"kind\":", "no JSON: parse error"},
      {"{\"kind\":\"symbol\"} x", "no JSON: parse error"},
      {"\"\xff\"", "no JSON: parse error"},
      {"[]", "an object with a \"kind\" is expected"},
      {"{}", "an object with a \"kind\" is expected"},
      {R"({"kind":3})", "kind: \"symbol\", \"plugin\" or \"options\" is expected"},
      {R"({"kind":"Symbol"})", "kind: "},
      {R"({"kind":"symbol","nam":"x"})", "unknown key \"nam\""},
      {R"({"kind":"symbol","kind":"symbol"})", "key \"kind\" appears twice"},
      {R"({"kind":"symbol","name":5})", "name: a string is expected"},
      {R"({"kind":"symbol","name":"\u0100"})", "name: holds a character above U+00FF"},
      {R"({"kind":"symbol","name":"12345678901234567890123456789012"})",
       "name: longer than 31 bytes"},
      {R"({"kind":"symbol","points":{}})", "points: a list is expected"},
      {R"({"kind":"symbol","points":[[1]]})", "points[0]: a pair of numbers is expected"},
      {R"({"kind":"symbol","points":[[1,2],[1,65536]]})", "points[1]: 65536 lies outside 0..65535"},
      {R"({"kind":"symbol","points":[[1,-2]]})", "points[0]: -2 lies outside"},
      {R"({"kind":"symbol","points":[[1,2.0]]})", "points[0]: a whole number is expected"},
      {R"({"kind":"symbol","points":[[1,true]]})", "points[0]: a whole number is expected"},
      {R"({"kind":"symbol","spare":4294967296})", "spare: 4294967296 lies outside"},
      {R"({"kind":"symbol","spare":18446744073709551616})", "spare: a whole number is expected"},
      {R"({"kind":"symbol","spare":1e999})", "no JSON: number overflow"},
      {R"({"kind":"symbol","icon":"none"})", "icon: \"auto\", \"arrow\" or 32 rows are expected"},
      {R"({"kind":"symbol","icon":["#"]})", "icon: \"auto\", \"arrow\" or 32 rows are expected"},
      {R"({"kind":"options","button":2147483648})", "button: 2147483648 lies outside"},
      {R"({"kind":"options","button":-2147483649})", "button: -2147483649 lies outside"},
      {R"({"kind":"options","button":null})", "button: a whole number is expected"},
      {R"({"kind":"options","button":"left"})", "button: a whole number is expected"},
      {R"({"kind":"options","temp1":"magic"})",
       "temp1: \"magic\" is no number and none of events, real-input"},
      {R"({"kind":"options","temp1":["events"]})", "temp1: a whole number is expected"},
      {R"({"kind":"options","temp2":["fall-back",null]})", "temp2[1]: a whole number is expected"},
      {R"({"kind":"plugin","spare1":["shape"]})",
       "spare1[0]: \"shape\" is no number and none of hands-off"},
      {R"({"kind":"plugin","spare2":"hands-off"})", "spare2: a whole number is expected"},
      {R"({"kind":"plugin","chars":["","","","","","","","",""]})",
       "chars: has 9 items, at most 8"},
      {R"({"kind":"plugin","chars":"x"})", "chars: a list is expected"},
      {R"({"kind":"plugin","chars":[1]})", "chars[0]: a string is expected"},
      {R"({"kind":"plugin","actions":[3]})", "actions[0]: an object is expected"},
      {R"({"kind":"plugin","actions":[{},{"command":[]}]})", "actions[1]: unknown key \"command\""},
      {R"({"kind":"plugin","actions":[{"symbol":{"kind":"symbol"}}]})",
       "actions[0].symbol: unknown key \"kind\""},
      {R"({"kind":"plugin","actions":[{"commands":[{"type":"Keys"}]}]})",
       "actions[0].commands[0].type: \"Keys\" is no command type"},
      {R"({"kind":"plugin","actions":[{"commands":[{"type":256}]}]})",
       "actions[0].commands[0].type: 256 lies outside 0..255"},
      {R"({"kind":"plugin","actions":[{"commands":[{"keys":[1,2]}]}]})",
       "actions[0].commands[0].keys[0]: a pair"},
      {R"({"kind":"plugin","actions":[{"commands":[{"buttons":[1,2,3,4,5,6,7]}]}]})",
       "buttons: has 7 items, at most 6"},
      {R"({"kind":"plugin","actions":[{"commands":[{"ntext":3}]}]})", "unknown key \"ntext\""},
  };
  for (const auto& c : cases) EXPECT_THAT(Refusal(c.document), HasSubstr(c.message)) << c.document;
}

TEST_F(ShowPack, RefusesMoreThanARecordHolds) {
  std::string points = "[1,2]";
  for (int i = 1; i < 65; i++) points += ",[1,2]";
  EXPECT_THAT(Refusal(R"({"kind":"symbol","points":[)" + points + "]}"),
              HasSubstr("points: has 65 items, at most 64 are possible"));
  std::string actions = "{}";
  for (int i = 1; i < 129; i++) actions += ",{}";
  EXPECT_THAT(Refusal(R"({"kind":"plugin","actions":[)" + actions + "]}"),
              HasSubstr("actions: has 129 items, at most 128"));
  EXPECT_THAT(Refusal(R"({"kind":"plugin","actions":[{"commands":[)" + actions + "]}]}"),
              HasSubstr("actions[0].commands: has 129 items, at most 128"));
  EXPECT_THAT(Refusal(R"({"kind":"plugin","chars":[")" + std::string(65, 'x') + "\"]}"),
              HasSubstr("chars[0]: longer than 64 bytes"));
}

TEST_F(ShowPack, RefusesIconsOfAnotherShape) {
  Json document = {{"kind", "symbol"}, {"icon", Json::array()}};
  for (int r = 0; r < 32; r++) document["icon"].push_back(std::string(32, '.'));
  document["icon"][7] = std::string(31, '.');
  EXPECT_THAT(Refusal(document.dump()), HasSubstr("icon[7]: 32 characters"));
  document["icon"][7] = std::string(31, '.') + "x";
  EXPECT_THAT(Refusal(document.dump()), HasSubstr("icon[7]: 32 characters"));
}

TEST_F(ShowPack, RefusesDeepAndOvercrowdedDocuments) {
  EXPECT_THAT(Refusal(std::string(5'000'000, '[')), HasSubstr("nested too deeply"));
  std::string deep;
  for (int i = 0; i < 100'000; i++) deep += "{\"a\":";
  EXPECT_THAT(Refusal(deep), HasSubstr("nested too deeply"));
  std::string crowd = "[[]";
  for (int i = 0; i < 3'000'000; i++) crowd += ",[]";
  EXPECT_THAT(Refusal(crowd + "]"), HasSubstr("too many values"));
}

TEST_F(ShowPack, RefusesEndlessInput) {
  const ToolResult endless = RunTool({"pack", "/dev/zero", "-o", packed});
  EXPECT_EQ(endless.status, 2);
  EXPECT_THAT(endless.err, HasSubstr("/dev/zero: line 1: a NUL byte"));
}

TEST_F(ShowPack, RefusesPluginsBeyondTheLargestFile) {
  std::string document = R"({"kind":"plugin","actions":[{"commands":[{"text":")";
  document.append(size_t{64} << 20, 'x');
  EXPECT_THAT(Refusal(document + "\"}]}]}"), HasSubstr("larger than 64 MB"));
}

// --- Output -------------------------------------------------------------------------------------

TEST_F(ShowPack, KeepsTheOldFileWhenTheDocumentIsWrong) {
  WriteText(packed, "old");
  EXPECT_EQ(RunTool({"pack", "-", "-o", packed}, "{}").status, 2);
  EXPECT_EQ(ReadText(packed), "old");
}

TEST_F(ShowPack, ReplacesAFileAndKeepsItsPermissions) {
  WriteText(packed, std::string(5000, 'o'));
  ASSERT_EQ(chmod(packed.c_str(), 0640), 0);
  Pack(R"({"kind":"symbol"})");
  struct stat info;
  ASSERT_EQ(stat(packed.c_str(), &info), 0);
  EXPECT_EQ(info.st_size, 441);
  EXPECT_EQ(info.st_mode & 07777, 0640u);
}

TEST_F(ShowPack, SaysWhyTheOutputCannotBeWritten) {
  const std::string nowhere = install / "nowhere/file";
  const ToolResult result = RunTool({"pack", "-", "-o", nowhere}, R"({"kind":"symbol"})");
  EXPECT_EQ(result.status, 2);
  EXPECT_EQ(result.err, "gromlit-tool: " + nowhere + ": No such file or directory\n");
  const ToolResult directory = RunTool({"pack", "-", "-o", install.path()}, R"({"kind":"symbol"})");
  EXPECT_EQ(directory.status, 2);
  EXPECT_THAT(directory.err, HasSubstr("Is a directory"));
}

TEST_F(ShowPack, ReportsThatStandardOutputIsFull) {
  WriteBytes(file, GoldenSymbolFile());
  const ToolResult full = RunTool({"show", file}, "", "/dev/full");
  EXPECT_EQ(full.status, 2);
  EXPECT_THAT(full.err, HasSubstr("standard output: No space left on device"));
}

}  // namespace
}  // namespace gromlit
