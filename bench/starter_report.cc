#include "bench/starter_report.h"

#include <array>
#include <cstdio>
#include <iterator>
#include <map>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "bench/report_table.h"
#include "core/strings.h"
#include "recognition/find_action.h"
#include "tests/unit/recognition/starter_gestures.h"
#include "tests/unit/recognition/stroke_sets.h"

namespace gromlit {
namespace {

constexpr uint32_t kSeed = 20071;
constexpr int kDrawings = 200;  // of each way over each plug-in
constexpr int kDrawingsOfSymbol = 500;
constexpr int kWalks = 10000;
constexpr MatchingWay kMatchings[] = {kByShape, kBySignature};

struct Tally {
  int right = 0;
  int wrong = 0;
  int destructive = 0;  // of the wrong ones
  int all = 0;

  void Add(Outcome outcome, const GromlitAction* ran) {
    all++;
    right += outcome == Outcome::kRight;
    wrong += outcome == Outcome::kWrong;
    destructive += outcome == Outcome::kWrong && Destructive(*ran);
  }
  void Add(const Tally& other) {
    right += other.right;
    wrong += other.wrong;
    destructive += other.destructive;
    all += other.all;
  }
  std::string Cells() const { return Shares(right, wrong, all); }
};

using ByWay = std::map<size_t, std::array<Tally, 2>>;  // by the number of the way; matchings
using ByPlugin = std::map<std::string, std::array<Tally, 2>>;
using Confused = std::map<std::array<std::string, 4>, int>;  // matching, class, drawn, ran

struct Measured {
  using Sum = std::array<Tally, 2>;  // matchings
  ByWay ways;
  ByPlugin plugins;
  Confused confused;
};

Measured Measure(const std::vector<GromlitPlugin*>& plugins, int drawings, double care) {
  Measured m;
  std::mt19937 random(kSeed);
  const std::vector<DrawingWay>& ways = StarterWays();
  for (size_t w = 0; w < ways.size(); w++) {
    for (int k = 0; k < drawings; k++) {
      const Stroke stroke = DrawnByHand(ways[w], &random, care);
      for (GromlitPlugin* plugin : plugins) {
        const std::string classname(FieldText(plugin->classname));
        for (size_t i = 0; i < 2; i++) {
          const StarterJudge judge(plugin, RecommendedOptions(kMatchings[i]));
          const GromlitAction* meant = judge.Meant(ways[w].gesture);
          if (meant == nullptr) continue;
          const GromlitAction* ran = nullptr;
          const Outcome outcome = judge.Judge(*meant, stroke, &ran);
          m.ways[w][i].Add(outcome, ran);
          m.plugins[classname][i].Add(outcome, ran);
          if (outcome == Outcome::kRight) continue;
          m.confused[{i == 0 ? "shape" : "signature", classname,
                      ways[w].gesture + ", " + ways[w].how,
                      ran == nullptr ? "nothing"
                                     : std::string(FieldText(ran->name)) + " (" +
                                           std::string(FieldText(ran->sym.name)) + ")"}]++;
        }
      }
    }
  }
  return m;
}

Measured::Sum SumOf(const ByPlugin& plugins) {
  Measured::Sum all;
  for (const auto& [classname, tallies] : plugins) {
    for (size_t i = 0; i < 2; i++) all[i].Add(tallies[i]);
  }
  return all;
}

void PrintPlugins(const ByPlugin& plugins) {
  Head("Over the applications of the starter library: right / wrong / nothing, %",
       {"plug-in", "by shape", "by signature"});
  for (const auto& [classname, tallies] : plugins)
    Row({classname, tallies[0].Cells(), tallies[1].Cells()});
  const Measured::Sum all = SumOf(plugins);
  Row({"**all**", all[0].Cells(), all[1].Cells()});
}

// The same drawings by hands that take less and less care.
void PrintHands(const std::vector<GromlitPlugin*>& plugins) {
  Head("Hands: all of that, but for the size, this many times as large",
       {"hand", "by shape", "wrong and destructive", "by signature", "wrong and destructive"});
  for (const double care : {0.5, 1.0, 1.25, 1.5, 2.0}) {
    const Measured::Sum all = SumOf(Measure(plugins, kDrawings / 4, care).plugins);
    char hand[16];
    std::snprintf(hand, sizeof hand, "%.2f", care);
    const auto destructive = [&all](size_t i) {
      return std::to_string(all[i].destructive) + " of " + std::to_string(all[i].all);
    };
    Row({hand, all[0].Cells(), destructive(0), all[1].Cells(), destructive(1)});
  }
}

void PrintWays(const ByWay& measured) {
  Head("By gesture and way of drawing it, over all of them: right / wrong / nothing, %",
       {"gesture", "way", "by shape", "by signature"});
  const std::vector<DrawingWay>& ways = StarterWays();
  for (const auto& [w, tallies] : measured)
    Row({ways[w].gesture, ways[w].how, tallies[0].Cells(), tallies[1].Cells()});
}

void PrintWalks(const std::vector<GromlitPlugin*>& plugins) {
  Head("Random walks, " + std::to_string(kWalks) + " over each plug-in: what runs",
       {"plug-in", "by shape, %", "of them destructive, %", "by signature, %",
        "of them destructive, %"});
  for (GromlitPlugin* plugin : plugins) {
    std::mt19937 random(kSeed);
    std::vector<std::string> cells = {std::string(FieldText(plugin->classname))};
    int runs[2] = {};
    int destructive[2] = {};
    for (int k = 0; k < kWalks; k++) {
      const Stroke walk = RandomWalk(&random);
      for (size_t i = 0; i < 2; i++) {
        const FoundAction found = FindActionToRun(plugin, walk, RecommendedOptions(kMatchings[i]));
        if (found.index < 0) continue;
        runs[i]++;
        destructive[i] += Destructive(*found.plugin->actions[found.index]) ? 1 : 0;
      }
    }
    for (size_t i = 0; i < 2; i++) {
      for (const int n : {runs[i], destructive[i]}) {
        char text[32];
        std::snprintf(text, sizeof text, "%.2f", 100.0 * n / kWalks);
        cells.emplace_back(text);
      }
    }
    Row(cells);
  }
}

}  // namespace

RightAndWrong PrintStarterSymbols(const char* skeleton) {
  const std::vector<GromlitPlugin*> plugins = ReadStarterPlugins(skeleton);
  Library symbols;
  ReadSymbolLibrary(skeleton, &symbols);
  constexpr const char* kNames[] = {"Very low", "Low", "Medium", "High", "Very high"};
  constexpr size_t kMedium = 2;
  std::array<Tally, std::size(kNames)> shape;
  Tally signature;
  std::mt19937 random(kSeed);
  for (int i = 0; i < symbols.size(); i++) {
    std::vector<std::pair<GromlitPlugin*, const GromlitAction*>> meanings;
    for (GromlitPlugin* plugin : plugins) {
      const GromlitAction* meant =
          StarterJudge(plugin, RecommendedOptions(kByShape)).Meant(symbols.name(i));
      if (meant != nullptr) meanings.push_back({plugin, meant});
    }
    for (int k = 0; k < kDrawingsOfSymbol; k++) {
      const Stroke drawing = SimulatedDrawing(*symbols.symbol(i), &random);
      const auto add = [&](GromlitUserOptions options, Tally* tally) {
        for (const auto& [plugin, meant] : meanings) {
          const GromlitAction* ran = nullptr;
          const Outcome outcome = StarterJudge(plugin, options).Judge(*meant, drawing, &ran);
          tally->Add(outcome, ran);
        }
      };
      GromlitUserOptions options = RecommendedOptions(kByShape);
      for (size_t t = 0; t < shape.size(); t++) {
        options.tolerance = static_cast<int32_t>(t) + 1;
        add(options, &shape[t]);
      }
      add(RecommendedOptions(kBySignature), &signature);
    }
  }
  Head("Simulated drawings of the starter library's " + std::to_string(symbols.size()) +
           " symbols, " + std::to_string(kDrawingsOfSymbol) +
           " of each over each plug-in: right / wrong / nothing, %",
       {"way", "right / wrong / nothing", "wrong and destructive"});
  const auto row = [](const std::string& name, const Tally& tally) {
    Row({name, tally.Cells(),
         std::to_string(tally.destructive) + " of " + std::to_string(tally.all)});
  };
  for (size_t t = 0; t < shape.size(); t++) row(std::string("shape, ") + kNames[t], shape[t]);
  row("signatures", signature);
  const Tally& medium = shape[kMedium];
  return {PercentOf(medium.right, medium.all), PercentOf(medium.wrong, medium.all)};
}

void PrintStarterLibrary(const char* skeleton) {
  const std::vector<GromlitPlugin*> plugins = ReadStarterPlugins(skeleton);
  const Measured m = Measure(plugins, kDrawings, 1);
  std::printf(
      "\n%zu ways of drawing the starter library's gestures, %d drawings of each over each of %zu "
      "plug-ins. Seed %u.\n",
      StarterWays().size(), kDrawings, plugins.size(), kSeed);
  PrintPlugins(m.plugins);
  PrintHands(plugins);
  PrintWays(m.ways);
  PrintWalks(plugins);
}

void PrintStarterPeople(const char* skeleton, const RecordedSet& set) {
  ReadStarterPlugins(skeleton);
  const std::map<std::string, std::string> same = {
      {"caret", "Arch"}, {"circle", "O"}, {"right_sq_bracket", "Bracket"}, {"v", "V"}, {"x", "X"}};
  std::map<std::string, std::array<Tally, 2>> tallies;
  std::array<Tally, 2> others;  // gestures of no meaning here: whatever runs is wrong
  for (const SetStroke& stroke : set.strokes) {
    const std::string& name = set.gestures[static_cast<size_t>(stroke.gesture)];
    const auto found = same.find(name);
    for (size_t i = 0; i < 2; i++) {
      const StarterJudge judge(DefaultPlugin, RecommendedOptions(kMatchings[i]));
      const GromlitAction none{};
      const GromlitAction* meant = found == same.end() ? &none : judge.Meant(found->second);
      const GromlitAction* ran = nullptr;
      const Outcome outcome = judge.Judge(*meant, stroke.stroke, &ran);
      (found == same.end() ? others : tallies[name])[i].Add(outcome, ran);
    }
  }
  Head(
      "Recorded strokes of people who had not seen the starter library, with the actions of "
      "Default: right / wrong / nothing, %",
      {"recorded", "gesture", "strokes", "by shape", "by signature"});
  for (const auto& [name, pair] : tallies)
    Row({name, same.at(name), std::to_string(pair[0].all), pair[0].Cells(), pair[1].Cells()});
  Row({"the other eleven", "none", std::to_string(others[0].all), others[0].Cells(),
       others[1].Cells()});
  std::printf(
      "\nOf the other eleven's strokes %d ran something destructive by shape, %d by "
      "signature.\n",
      others[0].destructive, others[1].destructive);
}

void PrintStarterConfusions(const char* skeleton) {
  const Measured m = Measure(ReadStarterPlugins(skeleton), kDrawings, 1);
  PrintPlugins(m.plugins);
  for (const auto& [what, count] : m.confused)
    std::printf("%6.2f %% %s, %s: %s -> %s\n", 100.0 * count / kDrawings, what[0].c_str(),
                what[1].c_str(), what[2].c_str(), what[3].c_str());
}

}  // namespace gromlit
