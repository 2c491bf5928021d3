// The starter library as it was packed by this build.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <map>
#include <memory>
#include <random>
#include <set>

#include "core/strings.h"
#include "recognition/signature_match.h"
#include "tests/support/built.h"
#include "tests/support/files.h"
#include "tests/support/temp_install.h"
#include "tests/unit/recognition/starter_gestures.h"
#include "tests/unit/recognition/stroke_sets.h"
#include "tests/unit/tools/run_tool.h"
#include "tools/data_file.h"

namespace gromlit {
namespace {

using ::testing::Contains;
using namespace testing;  // NOLINT(google-build-using-namespace): the tests' own helpers
namespace fs = std::filesystem;

using Files = std::map<std::string, std::unique_ptr<DataFile>>;

Files ReadAll(const std::string& directory) {
  Files files;
  for (const auto& entry : fs::directory_iterator(testing::Built("share/gromlit/" + directory))) {
    auto file = std::make_unique<DataFile>();
    std::string error;
    EXPECT_TRUE(ReadDataFile(entry.path().c_str(), file.get(), &error)) << entry << error;
    files[entry.path().filename()] = std::move(file);
  }
  return files;
}

TEST(Skeleton, HasAnEmptyOptionsDirectory) {
  ASSERT_TRUE(fs::is_directory(testing::Built("share/gromlit/options")));
  EXPECT_TRUE(fs::is_empty(testing::Built("share/gromlit/options")));
}

TEST(Skeleton, IsClean) {
  const ToolResult result = RunTool({"check", testing::Built("share/gromlit")});
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.out + result.err, "");
}

TEST(Skeleton, HasAtLeast40SymbolsUnderTheirNames) {
  const Files symbols = ReadAll("symbols");
  EXPECT_GE(symbols.size(), 40u);
  for (const auto& [name, file] : symbols) {
    ASSERT_EQ(file->kind, Kind::kSymbol) << name;
    EXPECT_EQ(std::string(FieldText(file->symbol.name)) + ".sls", name);
    EXPECT_STRNE(SymbolSignature(&file->symbol), "") << name;
  }
}

// Several symbols may do the same, and then it does not matter which of them a stroke is taken for.
TEST(Skeleton, HasNoSymbolWhoseSignatureMatchesThatOfAnotherAction) {
  const Files plugins = ReadAll("plugins");
  for (const auto& [file, plugin] : plugins) {
    for (int i = 0; i < plugin->plugin.nactions; i++) {
      for (int j = 0; j < plugin->plugin.nactions; j++) {
        GromlitAction& one = *plugin->plugin.actions[i];
        GromlitAction& other = *plugin->plugin.actions[j];
        if (FieldText(one.name) == FieldText(other.name)) continue;
        EXPECT_EQ(SignatureMatch(SymbolSignature(&one.sym), SymbolSignature(&other.sym)), 0)
            << file << ": " << other.sym.name << " drawn would be taken for " << one.sym.name;
      }
    }
  }
}

constexpr const char* kClasses[] = {"Default",
                                    "Desktop",
                                    "XTerm.xterm",
                                    "Chromium.chromium",
                                    "Google-chrome.google-chrome",
                                    "firefox.Navigator",
                                    "firefox-esr.Navigator",
                                    "Pcmanfm.pcmanfm",
                                    "Thunar.thunar",
                                    "Mousepad.mousepad",
                                    "FeatherPad.featherpad",
                                    "feh.feh",
                                    "Eog.eog",
                                    "Ristretto.ristretto",
                                    "Viewnior.viewnior",
                                    "libreoffice-writer.libreoffice",
                                    "libreoffice-calc.libreoffice",
                                    "libreoffice-impress.libreoffice"};

TEST(Skeleton, HasPluginsForWhatPeopleRun) {
  const Files plugins = ReadAll("plugins");
  EXPECT_EQ(plugins.size(), std::size(kClasses));
  for (const char* classname : kClasses) {
    const auto found = plugins.find(std::string(classname) + ".sla");
    ASSERT_NE(found, plugins.end()) << classname;
    ASSERT_EQ(found->second->kind, Kind::kPlugin);
    EXPECT_STREQ(found->second->plugin.classname, classname);
  }
}

TEST(Skeleton, RunsNothingButKeysProgramsAndWebsites) {
  std::map<std::string, std::pair<int, int>> keys;  // by their text
  for (const auto& [file, plugin] : ReadAll("plugins")) {
    std::vector<std::string> runs;
    for (int i = 0; i < plugin->plugin.nactions; i++) {
      const GromlitAction& action = *plugin->plugin.actions[i];
      ASSERT_GE(action.ncmds, 1u) << action.name;
      for (uint32_t j = 0; j < action.ncmds; j++) {
        const GromlitCmd& cmd = *action.cmds[j];
        const std::string text = cmd.text == nullptr ? "" : cmd.text;
        if (cmd.type == kRun) runs.push_back(text);
        if (cmd.type == kHotKey) {
          EXPECT_NE(file, "Desktop.sla") << "the root window takes no keys: " << action.name;
          EXPECT_EQ(cmd.nkeys, 1);
          EXPECT_GT(cmd.keycode[0], 8);
          const std::pair<int, int> key = {cmd.keycode[0], cmd.keystate[0]};
          EXPECT_EQ(keys.try_emplace(text, key).first->second, key) << file << ": " << text;
        } else {
          EXPECT_TRUE(cmd.type == kRun || cmd.type == kInternet) << action.name;
        }
      }
    }
    EXPECT_THAT(runs, Contains("system:showgromlit")) << "a hidden main window must come back";
  }
}

// Every action with its gesture, what it sends and how it was tried is listed for people.
TEST(Skeleton, IsListedInItsDocument) {
  const std::string page = ReadText(GROMLIT_SOURCE_DIR "/docs/starter-library.md");
  ASSERT_NE(page, "");
  for (const auto& [file, plugin] : ReadAll("plugins")) {
    const std::string classname = plugin->plugin.classname;
    const size_t begin = page.find("\nClass `" + classname + "`");
    ASSERT_NE(begin, std::string::npos) << classname;
    const std::string section = page.substr(begin, page.find("\n## ", begin) - begin);
    for (int i = 0; i < plugin->plugin.nactions; i++) {
      const GromlitAction& action = *plugin->plugin.actions[i];
      const GromlitCmd& cmd = *action.cmds[0];
      const std::string sent = cmd.checked != 0 ? "the forum" : cmd.text;
      EXPECT_NE(section.find("| " + std::string(action.name) + " | `" + sent + "` | "),
                std::string::npos)
          << classname << ": " << action.name << " by " << sent;
    }
  }
}

// By shape the nearest of the plug-in's own symbols would take the strokes of a gesture that only
// Default has; and keys that Default sends are not harmless everywhere.
TEST(Skeleton, HasAllGesturesOfDefaultInEveryPlugin) {
  const Files plugins = ReadAll("plugins");
  const auto symbols = [&plugins](const std::string& file) {
    std::set<std::string> names;
    const GromlitPlugin& plugin = plugins.at(file)->plugin;
    for (int i = 0; i < plugin.nactions; i++) names.emplace(FieldText(plugin.actions[i]->sym.name));
    return names;
  };
  // What only matching by signature has use for is left to Default, which is tried after the
  // others.
  const std::set<std::string> only = {"O-One", "O-Open", "Turn-Eleven", "Turn-Open"};
  for (const auto& [file, plugin] : plugins) {
    const std::set<std::string> own = symbols(file);
    for (const std::string& name : symbols("Default.sla"))
      EXPECT_TRUE(own.count(name) == 1 || only.count(name) == 1) << file << " lacks " << name;
  }
}

TEST(Skeleton, GivesWhatMayCostWorkToNoSimpleStroke) {
  int count = 0;
  for (const auto& [file, plugin] : ReadAll("plugins")) {
    for (int i = 0; i < plugin->plugin.nactions; i++) {
      const GromlitAction& action = *plugin->plugin.actions[i];
      if (!Destructive(action)) continue;
      count++;
      const std::string name(FieldText(action.sym.name));
      EXPECT_TRUE(name.starts_with("X") || name.starts_with("Loop"))
          << file << ": " << action.name << " by " << name;
    }
  }
  EXPECT_GT(count, 0);
}

TEST(Skeleton, BindsTheSymbolsOfTheLibrary) {
  const Files symbols = ReadAll("symbols");
  const Files plugins = ReadAll("plugins");
  for (const auto& [name, file] : plugins) {
    for (int i = 0; i < file->plugin.nactions; i++) {
      const GromlitSymbol& bound = file->plugin.actions[i]->sym;
      const auto found = symbols.find(std::string(FieldText(bound.name)) + ".sls");
      ASSERT_NE(found, symbols.end()) << bound.name;
      const GromlitSymbol& symbol = found->second->symbol;
      ASSERT_EQ(bound.npoints, symbol.npoints) << bound.name;
      EXPECT_TRUE(std::equal(bound.x, bound.x + kMaxPoints, symbol.x)) << bound.name;
      EXPECT_TRUE(std::equal(bound.y, bound.y + kMaxPoints, symbol.y)) << bound.name;
      EXPECT_TRUE(std::equal(bound.icon, bound.icon + kIconSize, symbol.icon)) << bound.name;
    }
  }
}

// Every way in which people may draw each gesture, some thousand drawings in all; the long run is
// that of scripts/recognition-report. The seed is fixed: the shares are properties of the library.
TEST(Skeleton, IsRecognisedInWhicheverWayItIsDrawn) {
  constexpr int kDrawings = 6;
  std::vector<GromlitPlugin*> plugins = ReadStarterPlugins(testing::Built("share/gromlit").c_str());
  ASSERT_NE(DefaultPlugin, nullptr);
  struct {
    MatchingWay way;
    double right, wrong;  // least and most, of all
    int all = 0, rights = 0, wrongs = 0, destructive = 0;
  } matchings[] = {{kByShape, 0.98, 0.005}, {kBySignature, 0.85, 0.03}};
  std::mt19937 random(20);
  for (const DrawingWay& way : StarterWays()) {
    int meant = 0;
    for (int k = 0; k < kDrawings; k++) {
      const Stroke stroke = DrawnByHand(way, &random);
      // Each drawing over three of the applications, all of them in turn, and over those without.
      for (size_t n = 0; n < 4; n++) {
        GromlitPlugin* pin =
            n == 0 ? DefaultPlugin : plugins[(static_cast<size_t>(k) * 3 + n) % plugins.size()];
        for (auto& matching : matchings) {
          const StarterJudge judge(pin, RecommendedOptions(matching.way));
          const GromlitAction* action = judge.Meant(way.gesture);
          if (action == nullptr) continue;
          meant++;
          const GromlitAction* ran = nullptr;
          const Outcome outcome = judge.Judge(*action, stroke, &ran);
          matching.all++;
          matching.rights += outcome == Outcome::kRight ? 1 : 0;
          matching.wrongs += outcome == Outcome::kWrong ? 1 : 0;
          matching.destructive += outcome == Outcome::kWrong && Destructive(*ran) ? 1 : 0;
        }
      }
    }
    EXPECT_GT(meant, 0) << way.gesture << " is a gesture of no plug-in";
  }
  for (const auto& matching : matchings) {
    EXPECT_GT(matching.all, 2000);
    EXPECT_GE(matching.rights, matching.right * matching.all) << "matching " << matching.way;
    EXPECT_LE(matching.wrongs, matching.wrong * matching.all) << "matching " << matching.way;
    if (matching.way == kByShape) {
      EXPECT_EQ(matching.destructive, 0);
    }
  }
}

// The symbols themselves, over applications without a plug-in; scripts/recognition-report draws 500
// of each over every plug-in.
TEST(Skeleton, RunsTheRightActionForDrawingsOfItsSymbols) {
  constexpr int kDrawings = 40;
  Library symbols;
  ReadSymbolLibrary(testing::Built("share/gromlit").c_str(), &symbols);
  ReadStarterPlugins(testing::Built("share/gromlit").c_str());
  ASSERT_NE(DefaultPlugin, nullptr);
  const StarterJudge judge(DefaultPlugin, RecommendedOptions(kByShape));
  std::mt19937 random(21);
  int all = 0;
  int right = 0;
  int wrong = 0;
  for (int i = 0; i < symbols.size(); i++) {
    const GromlitAction* meant = judge.Meant(symbols.name(i));
    if (meant == nullptr) continue;
    for (int k = 0; k < kDrawings; k++, all++) {
      const Outcome outcome =
          judge.Judge(*meant, SimulatedDrawing(*symbols.symbol(i), &random), nullptr);
      right += outcome == Outcome::kRight ? 1 : 0;
      wrong += outcome == Outcome::kWrong ? 1 : 0;
    }
  }
  EXPECT_GT(all, 2000);
  EXPECT_GE(right, 0.999 * all);
  EXPECT_LE(wrong, 0.0005 * all);
}

}  // namespace
}  // namespace gromlit
