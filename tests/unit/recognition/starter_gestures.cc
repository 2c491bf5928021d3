#include "tests/unit/recognition/starter_gestures.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>
#include <string_view>

#include "core/plugin_files.h"
#include "core/strings.h"
#include "recognition/find_action.h"
#include "tests/unit/recognition/stroke_sets.h"

namespace gromlit {
namespace {

constexpr double kPi = std::numbers::pi;

using Pen = PenPoints;

// Points of an arc, angles in degrees, 0 to the right and 90 up, sense by their order.
Pen Arc(double x, double y, double rx, double ry, double from, double to) {
  constexpr double kStep = 10;
  const int steps = std::max(2, static_cast<int>(std::ceil(std::abs(to - from) / kStep)));
  Pen points;
  for (int k = 0; k <= steps; k++) {
    const double a = (from + (to - from) * k / steps) * kPi / 180;
    points.push_back({x + rx * std::cos(a), y - ry * std::sin(a)});
  }
  return points;
}

Pen Joined(std::initializer_list<Pen> parts) {
  Pen all;
  for (const Pen& part : parts) all.insert(all.end(), part.begin(), part.end());
  return all;
}

// A line with a bow of `part` of its length to the left of the way.
Pen Bowed(PenPoint from, PenPoint to, double part) {
  constexpr int kSteps = 12;
  Pen points;
  for (int k = 0; k <= kSteps; k++) {
    const double t = static_cast<double>(k) / kSteps;
    const double bow = 4 * t * (1 - t) * part;
    points.push_back({from.x + t * (to.x - from.x) + bow * (to.y - from.y),
                      from.y + t * (to.y - from.y) - bow * (to.x - from.x)});
  }
  return points;
}

Pen Mirrored(Pen points) {
  for (PenPoint& p : points) p.x = 1 - p.x;
  return points;
}

Pen UpsideDown(Pen points) {
  for (PenPoint& p : points) p.y = 1 - p.y;
  return points;
}

Pen Transposed(Pen points) {
  for (PenPoint& p : points) std::swap(p.x, p.y);
  return points;
}

Pen Backwards(Pen points) {
  std::reverse(points.begin(), points.end());
  return points;
}

class Ways {
 public:
  void Add(const char* gesture, const char* how, Pen points) {
    all_.push_back({gesture, how, std::move(points)});
  }
  std::vector<DrawingWay> Take() { return std::move(all_); }

 private:
  std::vector<DrawingWay> all_;
};

void AddStraight(Ways* ways) {
  struct {
    const char* name;
    PenPoint from, to;
  } const lines[] = {{"Right", {0, 0}, {1, 0}},
                     {"Left", {1, 0}, {0, 0}},
                     {"Down", {0, 0}, {0, 1}},
                     {"Up", {0, 1}, {0, 0}}};
  for (const auto& line : lines) {
    ways->Add(line.name, "straight", {line.from, line.to});
    ways->Add(line.name, "bowed to the left of the way", Bowed(line.from, line.to, 0.12));
    ways->Add(line.name, "bowed to the right of the way", Bowed(line.from, line.to, -0.12));
  }
}

// There and back, from the drawing of right and back.
void AddThereAndBack(Ways* ways) {
  const struct {
    const char* how;
    Pen points;
  } forms[] = {{"on the same line", {{0, 0}, {1, 0}, {0, 0}}},
               {"back a little below", {{0, 0}, {1, 0.06}, {0, 0.14}}},
               {"back a little above", {{0, 0.14}, {1, 0.06}, {0, 0}}},
               {"with a round turn, back below",
                Joined({{{0, 0}}, Arc(0.94, 0.06, 0.06, 0.06, 90, -90), {{0, 0.12}}})},
               {"with a round turn, back above",
                Joined({{{0, 0.12}}, Arc(0.94, 0.06, 0.06, 0.06, -90, 90), {{0, 0}}})},
               {"back three quarters of the way", {{0, 0}, {1, 0.03}, {0.25, 0.06}}}};
  for (const auto& form : forms) {
    ways->Add("Right-Left", form.how, form.points);
    ways->Add("Left-Right", form.how, Mirrored(form.points));
    ways->Add("Down-Up", form.how, Transposed(form.points));
    ways->Add("Up-Down", form.how, UpsideDown(Transposed(form.points)));
  }
}

void AddHooks(Ways* ways) {
  const auto add = [ways](const char* how, const Pen& points) {
    ways->Add("Right-Down", how, points);
    ways->Add("Right-Up", how, UpsideDown(points));
    ways->Add("Left-Down", how, Mirrored(points));
    ways->Add("Left-Up", how, Mirrored(UpsideDown(points)));
    ways->Add("L", how, Transposed(points));
    ways->Add("J", how, Mirrored(Transposed(points)));
    ways->Add("Up-Right", how, UpsideDown(Transposed(points)));
    ways->Add("Up-Left", how, Mirrored(UpsideDown(Transposed(points))));
  };
  add("both legs alike", {{0, 0}, {1, 0}, {1, 1}});
  add("the first leg longer", {{0, 0}, {1, 0}, {1, 0.6}});
  add("the second leg longer", {{0, 0}, {0.6, 0}, {0.6, 1}});
  add("with a round corner", Joined({{{0, 0}}, Arc(0.65, 0.35, 0.35, 0.35, 90, 0), {{1, 1}}}));
}

void AddLetters(Ways* ways) {
  ways->Add("C", "round", Arc(0.5, 0.5, 0.5, 0.5, 50, 310));
  ways->Add("C", "narrow, nearly half a circle", Arc(0.5, 0.5, 0.45, 0.5, 75, 285));
  ways->Add("C", "wide open, long ends",
            Joined({{{1, 0}}, Arc(0.5, 0.5, 0.5, 0.5, 90, 270), {{1, 1}}}));
  ways->Add("V", "from the left", {{0, 0}, {0.5, 1}, {1, 0}});
  ways->Add("V", "from the right", {{1, 0}, {0.5, 1}, {0, 0}});
  ways->Add("V", "from the left, narrow", {{0, 0}, {0.35, 1}, {0.7, 0}});
  ways->Add("V", "from the left, round like a U",
            Joined({{{0, 0}}, Arc(0.45, 0.6, 0.45, 0.4, 180, 360), {{0.9, 0}}}));
  ways->Add("S", "round",
            Joined({Arc(0.5, 0.26, 0.42, 0.26, 30, 270), Arc(0.5, 0.75, 0.45, 0.25, 90, -150)}));
  ways->Add("S", "slender",
            Joined({Arc(0.35, 0.26, 0.32, 0.26, 50, 250), Arc(0.35, 0.75, 0.35, 0.25, 70, -140)}));
  ways->Add("S", "with corners", {{1, 0}, {0, 0}, {0, 0.5}, {1, 0.5}, {1, 1}, {0, 1}});
  ways->Add("Z", "with corners", {{0, 0}, {1, 0}, {0, 1}, {1, 1}});
  ways->Add("Z", "slender", {{0, 0}, {0.7, 0}, {0, 1}, {0.7, 1}});
  ways->Add("Z", "flat", {{0, 0}, {1, 0}, {0, 0.7}, {1, 0.7}});
  ways->Add("Z", "round, like a 2",
            Joined({Arc(0.45, 0.3, 0.42, 0.3, 150, -30), {{0, 1}, {1, 1}}}));
  const Pen bow = Joined({{{0, 0}}, Arc(0.5, 0.25, 0.4, 0.25, 90, -90), {{0, 0.5}}});
  ways->Add("P", "stem up, then the bow", Joined({{{0, 1}}, bow}));
  ways->Add("P", "stem down, back up, then the bow", Joined({{{0, 0}, {0.01, 1}}, bow}));
  ways->Add("P", "stem down, back up beside it, then the bow",
            Joined({{{-0.06, 0.05}, {0, 1}}, bow}));
  ways->Add("P", "bow first, against the clock, then the stem down",
            Joined({Backwards(bow), {{0, 1}}}));
  ways->Add("N", "from below: up, slanting down, up", {{0, 1}, {0, 0}, {0.8, 1}, {0.8, 0}});
  ways->Add("N", "stem down first, back up, slanting down, up",
            {{0, 0}, {0, 1}, {0, 0}, {0.8, 1}, {0.8, 0}});
  ways->Add("N", "leaning legs", {{0, 1}, {0.2, 0}, {0.7, 1}, {0.9, 0}});
  ways->Add("M", "slanting legs, valley to the ground",
            {{0, 1}, {0.25, 0}, {0.5, 1}, {0.75, 0}, {1, 1}});
  ways->Add("M", "upright legs, valley half down", {{0, 1}, {0, 0}, {0.5, 0.55}, {1, 0}, {1, 1}});
  ways->Add("M", "stem down first, back up", {{0, 0}, {0, 1}, {0, 0}, {0.5, 0.55}, {1, 0}, {1, 1}});
  ways->Add("M", "two arches",
            Joined({{{0, 1}},
                    Arc(0.25, 0.3, 0.25, 0.3, 180, 0),
                    {{0.5, 1}},
                    Arc(0.75, 0.3, 0.25, 0.3, 180, 0),
                    {{1, 1}}}));
  ways->Add("W", "with corners", {{0, 0}, {0.25, 1}, {0.5, 0}, {0.75, 1}, {1, 0}});
  ways->Add("W", "middle half high", {{0, 0}, {0.25, 1}, {0.5, 0.45}, {0.75, 1}, {1, 0}});
  ways->Add("W", "round",
            Joined({{{0, 0}},
                    Arc(0.25, 0.75, 0.25, 0.25, 180, 360),
                    {{0.5, 0.3}},
                    Arc(0.75, 0.75, 0.25, 0.25, 180, 360),
                    {{1, 0}}}));
  ways->Add("h", "stem down, half up, round over and down",
            Joined({{{0, 0}, {0, 1}}, Arc(0.35, 0.75, 0.35, 0.28, 170, 0), {{0.7, 1}}}));
  ways->Add("h", "broad",
            Joined({{{0, 0}, {0, 1}, {0, 0.6}, {0.2, 0.42}, {0.7, 0.42}, {0.95, 0.6}, {0.95, 1}}}));
  ways->Add("X", "down to the right, up, down to the left", {{0, 0}, {1, 1}, {1, 0}, {0, 1}});
  ways->Add("X", "down to the left, up, down to the right", {{1, 0}, {0, 1}, {0, 0}, {1, 1}});
  ways->Add("X", "down to the right, along the ground, up to the right",
            {{0, 0}, {1, 1}, {0, 1}, {1, 0}});
  ways->Add("X", "down to the left, along the ground, up to the left",
            {{1, 0}, {0, 1}, {1, 1}, {0, 0}});
}

void AddShapes(Ways* ways) {
  const struct {
    const char* where;
    double angle;
  } starts[] = {{"top", 90}, {"left", 180}, {"bottom", 270}, {"right", 0}};
  for (const auto& start : starts) {
    for (const double sense : {1.0, -1.0}) {
      const std::string how = std::string("from the ") + start.where +
                              (sense > 0 ? ", against the clock" : ", with the clock");
      ways->Add("O", how.c_str(), Arc(0.5, 0.5, 0.5, 0.5, start.angle, start.angle + sense * 355));
    }
  }
  ways->Add("O", "from one o'clock, against the clock", Arc(0.5, 0.5, 0.5, 0.5, 60, 60 + 365));
  ways->Add("O", "from eleven o'clock, with the clock", Arc(0.5, 0.5, 0.5, 0.5, 120, 120 - 365));
  ways->Add("O", "from the top, against the clock, going on behind the start",
            Arc(0.5, 0.5, 0.5, 0.5, 90, 90 + 385));
  ways->Add("O", "from the top, with the clock, left open", Arc(0.5, 0.5, 0.5, 0.5, 85, 85 - 325));
  const Pen arch = Joined({{{0, 1}}, Arc(0.5, 0.5, 0.5, 0.5, 180, 0), {{1, 1}}});
  ways->Add("Arch", "with legs", arch);
  ways->Add("Arch", "with legs, from the right", Backwards(arch));
  ways->Add("Arch", "without legs", Arc(0.5, 0.5, 0.5, 0.5, 180, 0));
  ways->Add("Arch", "without legs, from the right", Arc(0.5, 0.5, 0.5, 0.5, 0, 180));
  ways->Add("Arch", "long legs, narrow",
            Joined({{{0, 1}}, Arc(0.35, 0.35, 0.35, 0.35, 180, 0), {{0.7, 1}}}));
  ways->Add("Arch", "with corners, like a gate", {{0, 1}, {0, 0}, {0.9, 0}, {0.9, 1}});
  ways->Add("Arch", "pointed, like an A without its bar", {{0, 1}, {0.45, 0}, {0.9, 1}});
  ways->Add("Arch", "pointed, from the right", {{0.9, 1}, {0.45, 0}, {0, 1}});
  ways->Add("Bracket", "with corners", {{0, 0}, {0.8, 0}, {0.8, 1}, {0, 1}});
  ways->Add("Bracket", "narrow", {{0, 0}, {0.5, 0}, {0.5, 1}, {0, 1}});
  ways->Add("Bracket", "wide", {{0, 0}, {1, 0}, {1, 0.8}, {0, 0.8}});
  ways->Add("Stairs-Up", "steps alike", {{0, 1}, {0.5, 1}, {0.5, 0}, {1, 0}});
  ways->Add("Stairs-Up", "long steps", {{0, 0.8}, {0.6, 0.8}, {0.6, 0}, {1.2, 0}});
  ways->Add("Stairs-Up", "high step", {{0, 1}, {0.4, 1}, {0.4, 0}, {0.8, 0}});
  ways->Add("Stairs-Down", "steps alike", {{0, 0}, {0.5, 0}, {0.5, 1}, {1, 1}});
  ways->Add("Stairs-Down", "long steps", {{0, 0}, {0.6, 0}, {0.6, 0.8}, {1.2, 0.8}});
  ways->Add("Stairs-Down", "high step", {{0, 0}, {0.4, 0}, {0.4, 1}, {0.8, 1}});
  const Pen loop = Joined({{{0, 1}}, Arc(0.5, 0.28, 0.3, 0.28, -25, 205), {{1, 1}}});
  ways->Add("Loop", "from below on the left", loop);
  ways->Add("Loop", "from below on the right", Mirrored(loop));
  const Pen small = Joined({{{0, 1}}, Arc(0.5, 0.22, 0.18, 0.22, -30, 210), {{1, 1}}});
  ways->Add("Loop", "with a small loop", small);
  ways->Add("Loop", "with a small loop, from the right", Mirrored(small));
}

// Corners missed by a little: moved, and sometimes overshot. The points of curves move together
// with their neighbours, by slow waves, which Tremble adds.
Pen Missed(const Pen& corners, double diagonal, double care, std::mt19937* random) {
  std::normal_distribution<double> normal;
  std::uniform_real_distribution<double> uniform(0, 1);
  constexpr double kCurve = 0.2;  // points nearer than this part of the diagonal are of a curve
  Pen moved = corners;
  for (size_t i = 0; i < corners.size(); i++) {
    const double before = i > 0 ? Distance(corners[i - 1], corners[i]) : diagonal;
    const double behind = i + 1 < corners.size() ? Distance(corners[i], corners[i + 1]) : diagonal;
    const double off = std::min(before, behind) < kCurve * diagonal ? 0.004 : 0.03 * care;
    moved[i].x += off * diagonal * normal(*random);
    moved[i].y += off * diagonal * normal(*random);
    if (off > 0.01 && i > 0 && uniform(*random) < 0.3)
      moved[i] =
          Between(moved[i - 1], moved[i], 1 + 0.06 * care * diagonal / before * uniform(*random));
  }
  return moved;
}

// Long lines bow to either side.
Pen WithBows(const Pen& corners, double diagonal, double care, std::mt19937* random) {
  std::uniform_real_distribution<double> bow(-0.06 * care, 0.06 * care);
  Pen points = {corners[0]};
  for (size_t i = 1; i < corners.size(); i++) {
    if (Distance(corners[i - 1], corners[i]) < 0.25 * diagonal) {
      points.push_back(corners[i]);
      continue;
    }
    const Pen line = Bowed(corners[i - 1], corners[i], bow(*random));
    points.insert(points.end(), line.begin() + 1, line.end());
  }
  return points;
}

// The point of the way around each point, averaged over a window that rounds the corners.
Pen Smoothed(const Pen& points, int window) {
  const int n = static_cast<int>(points.size());
  Pen smooth;
  for (int i = 0; i < n; i++) {
    const int reach = std::min({window, i, n - 1 - i});  // the ends stay where they are
    PenPoint sum{0, 0};
    for (int k = i - reach; k <= i + reach; k++) {
      sum.x += points[static_cast<size_t>(k)].x;
      sum.y += points[static_cast<size_t>(k)].y;
    }
    smooth.push_back({sum.x / (2 * reach + 1), sum.y / (2 * reach + 1)});
  }
  return smooth;
}

}  // namespace

const std::vector<DrawingWay>& StarterWays() {
  static const std::vector<DrawingWay> all = [] {
    Ways ways;
    AddStraight(&ways);
    AddThereAndBack(&ways);
    AddHooks(&ways);
    AddLetters(&ways);
    AddShapes(&ways);
    std::vector<DrawingWay> taken = ways.Take();
    std::stable_sort(taken.begin(), taken.end(), [](const DrawingWay& a, const DrawingWay& b) {
      return a.gesture < b.gesture;
    });
    return taken;
  }();
  return all;
}

Stroke DrawnByHand(const DrawingWay& way, std::mt19937* random, double care) {
  constexpr int kFine = 240;
  const auto uniform = [random](double low, double high) {
    return std::uniform_real_distribution<double>(low, high)(*random);
  };
  const double diagonal = DiagonalOf(way.points);
  Pen points = WithBows(Missed(way.points, diagonal, care, random), diagonal, care, random);
  points = Smoothed(EvenlySpaced(points, kFine), static_cast<int>(uniform(0, 14 * care)));
  const double aspect = std::pow(4.0 / 3, care * uniform(-1, 1));
  const double lean = std::tan(care * uniform(-10, 10) * kPi / 180);
  const double turn = care * uniform(-10, 10) * kPi / 180;
  for (PenPoint& p : points) {
    const double x = p.x * aspect + p.y * lean;
    p = {x * std::cos(turn) - p.y * std::sin(turn), x * std::sin(turn) + p.y * std::cos(turn)};
  }
  points = EvenlySpaced(points, static_cast<int>(uniform(20, 248)));
  Tremble(0.01 * care * DiagonalOf(points), random, &points);
  // As many small drawings as large ones.
  const double scale = 40 * std::pow(20, uniform(0, 1)) / DiagonalOf(points);
  Stroke stroke;
  for (const PenPoint& p : points) {
    stroke.x[stroke.count] = static_cast<int16_t>(std::lround(5000 + p.x * scale));
    stroke.y[stroke.count] = static_cast<int16_t>(std::lround(5000 + p.y * scale));
    stroke.count++;
  }
  return uniform(0, 1) < 0.25 ? WithHooks(stroke, care * uniform(0.01, 0.05), random) : stroke;
}

std::vector<GromlitPlugin*> ReadStarterPlugins(const char* directory) {
  const char* const former = GromlitPath;
  GromlitPath = directory;
  LoadPlugins();
  std::vector<GromlitPlugin*> plugins;
  for (auto* node = allPlugins; node != nullptr && node->plugin != nullptr; node = node->next)
    plugins.push_back(FindPlugin(node->plugin->classname));
  DefaultPlugin = FindPlugin(defaultPluginClassname);
  GromlitPath = former;
  std::sort(plugins.begin(), plugins.end(), [](const GromlitPlugin* a, const GromlitPlugin* b) {
    return FieldText(a->classname) < FieldText(b->classname);
  });
  return plugins;
}

GromlitUserOptions RecommendedOptions(MatchingWay way) {
  GromlitUserOptions options{};
  DefaultUserOptions(&options);
  options.temp2 = kFallBack;
  options.temp3 = way;
  return options;
}

StarterJudge::StarterJudge(GromlitPlugin* pin, const GromlitUserOptions& options)
    : pin_(pin), options_(options) {}

const GromlitAction* StarterJudge::Meant(const std::string& gesture) const {
  const bool falls = Chosen(&options_, kFallBack) && pin_ != DefaultPlugin;
  for (const GromlitPlugin* plugin :
       std::array<const GromlitPlugin*, 2>{pin_, falls ? DefaultPlugin : nullptr}) {
    for (int i = 0; plugin != nullptr && i < plugin->nactions; i++) {
      if (FieldText(plugin->actions[i]->sym.name) == gesture) return plugin->actions[i];
    }
  }
  return nullptr;
}

Outcome StarterJudge::Judge(const GromlitAction& meant, const Stroke& stroke,
                            const GromlitAction** ran) const {
  const FoundAction found = FindActionToRun(pin_, stroke, options_);
  const GromlitAction* action = found.index >= 0 ? found.plugin->actions[found.index] : nullptr;
  if (ran != nullptr) *ran = action;
  if (action == nullptr) return Outcome::kNothing;
  return FieldText(action->name) == FieldText(meant.name) ? Outcome::kRight : Outcome::kWrong;
}

bool Destructive(const GromlitAction& action) {
  constexpr std::string_view kWords[] = {"Quit",   "Close", "Cut",       "Delete",
                                         "Remove", "Exit",  "Interrupt", "Trash"};
  const std::string_view name = FieldText(action.name);
  const std::string_view first = name.substr(0, name.find(' '));
  return std::find(std::begin(kWords), std::end(kWords), first) != std::end(kWords);
}

}  // namespace gromlit
