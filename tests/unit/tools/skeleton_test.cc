// The starter library as it was packed by this build.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <map>
#include <memory>
#include <numbers>
#include <random>

#include "core/strings.h"
#include "recognition/find_action.h"
#include "recognition/signature_match.h"
#include "recognition/stroke_signature.h"
#include "tests/support/built.h"
#include "tests/support/temp_install.h"
#include "tests/unit/recognition/recognition_support.h"
#include "tests/unit/recognition/stroke_sets.h"
#include "tests/unit/tools/run_tool.h"
#include "tools/data_file.h"
#include "tools/stroke_input.h"

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

TEST(Skeleton, HasAtLeast20SymbolsUnderTheirNames) {
  const Files symbols = ReadAll("symbols");
  EXPECT_GE(symbols.size(), 20u);
  for (const auto& [name, file] : symbols) {
    ASSERT_EQ(file->kind, Kind::kSymbol) << name;
    EXPECT_EQ(std::string(FieldText(file->symbol.name)) + ".sls", name);
  }
}

TEST(Skeleton, HasNoEmptySignatureAndNoneThatMatchesAnother) {
  const Files symbols = ReadAll("symbols");
  for (const auto& [name, file] : symbols) {
    EXPECT_STRNE(SymbolSignature(&file->symbol), "") << name;
    for (const auto& [other_name, other] : symbols) {
      if (name == other_name) continue;
      EXPECT_EQ(SignatureMatch(SymbolSignature(&file->symbol), SymbolSignature(&other->symbol)), 0)
          << other_name << " drawn would be taken for " << name;
    }
  }
}

TEST(Skeleton, HasPluginsForEverythingTheDesktopAndXterm) {
  const Files plugins = ReadAll("plugins");
  for (const char* classname : {"Default", "Desktop", "XTerm.xterm"}) {
    const auto found = plugins.find(std::string(classname) + ".sla");
    ASSERT_NE(found, plugins.end()) << classname;
    ASSERT_EQ(found->second->kind, Kind::kPlugin);
    const GromlitPlugin& plugin = found->second->plugin;
    EXPECT_STREQ(plugin.classname, classname);
    EXPECT_GT(plugin.nactions, 5);
    std::vector<std::string> runs;
    for (int i = 0; i < plugin.nactions; i++) {
      const GromlitAction& action = *plugin.actions[i];
      ASSERT_GE(action.ncmds, 1u) << action.name;
      for (uint32_t j = 0; j < action.ncmds; j++) {
        const GromlitCmd& cmd = *action.cmds[j];
        if (cmd.type == kRun) runs.emplace_back(cmd.text == nullptr ? "" : cmd.text);
        if (cmd.type == kHotKey) {
          EXPECT_STREQ(classname, "Default") << "keys reach neither the root window nor xterm";
          EXPECT_EQ(cmd.nkeys, 1);
          EXPECT_GT(cmd.keycode[0], 8);
        } else {
          EXPECT_TRUE(cmd.type == kRun || cmd.type == kInternet) << action.name;
        }
      }
    }
    EXPECT_THAT(runs, Contains("system:showgromlit")) << "a hidden main window must come back";
  }
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

// A hand's way of drawing the symbol: another size and proportion, a slight turn and lean, corners
// that are missed by a little, and a slow wobble on the way.
Stroke DrawByHand(const GromlitSymbol& sym, std::mt19937* random) {
  const auto uniform = [random](double low, double high) {
    return std::uniform_real_distribution<double>(low, high)(*random);
  };
  const double width = uniform(80, 400) / 248;
  const double height = width * uniform(0.75, 1.35);
  const double turn = uniform(-0.08, 0.08);
  const double lean = uniform(-0.08, 0.08);
  const double miss = 0.04 * 248;
  const double wobble = uniform(0, 0.015) * 248;
  const double phase = uniform(0, 2 * std::numbers::pi);
  std::vector<std::pair<double, double>> corners;
  for (int k = 1; k <= sym.npoints; k++)
    corners.emplace_back(sym.x[k] + uniform(-miss, miss), sym.y[k] + uniform(-miss, miss));
  if (sym.npoints > 6) {  // a curve is drawn as one, not from corner to corner
    for (int k = 1; k <= sym.npoints; k++)
      corners[static_cast<size_t>(k - 1)] = {sym.x[k] + uniform(-miss, miss) / 3,
                                             sym.y[k] + uniform(-miss, miss) / 3};
  }
  double length = 0;
  for (size_t k = 1; k < corners.size(); k++)
    length += std::hypot(corners[k].first - corners[k - 1].first,
                         corners[k].second - corners[k - 1].second);
  Stroke stroke;
  const double step = length / 120;  // motion events on the way
  double way = 0;
  for (size_t k = 1; k < corners.size(); k++) {
    const auto [x1, y1] = corners[k - 1];
    const auto [x2, y2] = corners[k];
    const double part = std::hypot(x2 - x1, y2 - y1);
    for (double t = 0; t < part; t += step) {
      const double a = wobble * std::sin((way + t) / 40 + phase);
      const double x = x1 + (x2 - x1) * t / part + a;
      const double y = y1 + (y2 - y1) * t / part + a;
      const double u = x * std::cos(turn) - y * std::sin(turn) + lean * y;
      const double v = x * std::sin(turn) + y * std::cos(turn);
      if (stroke.count == kMaxStrokePoints) return stroke;
      stroke.x[stroke.count] = static_cast<int16_t>(600 + u * width);
      stroke.y[stroke.count] = static_cast<int16_t>(500 + v * height);
      stroke.count++;
    }
    way += part;
  }
  return stroke;
}

TEST(Skeleton, IsRecognisedWhenItIsDrawnByHand) {
  const Files symbols = ReadAll("symbols");
  std::mt19937 random(20);  // a fixed hand: the shares below are properties of the library
  for (const auto& [name, file] : symbols) {
    constexpr int kStrokes = 1000;
    int right = 0;
    std::map<std::string, int> wrong;
    for (int i = 0; i < kStrokes; i++) {
      const Stroke stroke = DrawByHand(file->symbol, &random);
      char signature[kDrawnSignatureSize];
      StrokeSignature(signature, stroke.count, stroke.x, stroke.y);
      if (SymbolMatch(&file->symbol, signature) != 0) right++;
      for (const auto& [other_name, other] : symbols)
        if (other_name != name && SymbolMatch(&other->symbol, signature) != 0) wrong[other_name]++;
    }
    EXPECT_GE(right, kStrokes * 93 / 100) << name;
    for (const auto& [other_name, count] : wrong)
      EXPECT_LE(count, kStrokes / 100) << name << " drawn, taken for " << other_name;
  }
}

// As a hand might draw them: moved and rounded corners, other proportions, a little turned, from 40
// to 800 pixels.
TEST(Skeleton, HasSymbolsThatShapesKeepApart) {
  constexpr int kMedium = 3;
  constexpr int kDrawings = 100;
  Library library;
  ReadSymbolLibrary(testing::Built("share/gromlit").c_str(), &library);
  ASSERT_GE(library.size(), 20);
  std::mt19937 random(static_cast<uint32_t>(TestSeed()));
  int right = 0;
  int wrong = 0;
  for (int i = 0; i < library.size(); i++) {
    for (int k = 0; k < kDrawings; k++) {
      const Stroke drawing = SimulatedDrawing(*library.symbol(i), &random);
      const int found = FindAction(library.plugin(), drawing, {kByShape, kMedium});
      right += found == i;
      wrong += found >= 0 && found != i;
    }
  }
  // 99.9 % and 0.05 % of many; of so few, six and three may go astray by chance.
  const int all = library.size() * kDrawings;
  EXPECT_GE(right, all - 6);
  EXPECT_LE(wrong, 3);
}

}  // namespace
}  // namespace gromlit
