#include "tests/unit/recognition/stroke_sets.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "core/strings.h"
#include "core/symbol_files.h"
#include "recognition/learn_symbol.h"
#include "recognition/shape_match.h"
#include "recognition/signature_match.h"
#include "tests/unit/recognition/pen_points.h"
#include "tests/unit/recognition/recognition_support.h"

namespace gromlit {
namespace {

constexpr double kPi = std::numbers::pi;

using Points = PenPoints;
using Point = PenPoint;

Stroke StrokeOf(const Points& points) {
  Stroke stroke;
  stroke.count = static_cast<int>(std::min<size_t>(points.size(), kMaxStrokePoints));
  for (size_t i = 0; i < static_cast<size_t>(stroke.count); i++) {
    stroke.x[i] = static_cast<int16_t>(std::lround(points[i].x));
    stroke.y[i] = static_cast<int16_t>(std::lround(points[i].y));
  }
  return stroke;
}

// The corners between the ends become curves over this part of the lines that meet there.
Points Rounded(const Points& corners, double part) {
  constexpr int kSteps = 8;
  Points points = {corners[0]};
  for (size_t i = 1; i + 1 < corners.size(); i++) {
    const Point from = Between(corners[i], corners[i - 1], part);
    const Point to = Between(corners[i], corners[i + 1], part);
    for (int k = 0; k <= kSteps; k++) {
      const double at = static_cast<double>(k) / kSteps;
      points.push_back(Between(Between(from, corners[i], at), Between(corners[i], to, at), at));
    }
  }
  points.push_back(corners.back());
  return points;
}

int IndexOf(const std::vector<std::string>& names, const std::string& name) {
  return static_cast<int>(std::lower_bound(names.begin(), names.end(), name) - names.begin());
}

void AddName(std::vector<std::string>* names, const std::string& name) {
  const auto at = std::lower_bound(names->begin(), names->end(), name);
  if (at == names->end() || *at != name) names->insert(at, name);
}

}  // namespace

RecordedSet ReadRecordedSet(std::string* missing) {
  RecordedSet set;
  const std::vector<RecordedStroke> recorded = ReadRecordedStrokes(missing);
  for (const RecordedStroke& stroke : recorded) {
    AddName(&set.people, stroke.person);
    AddName(&set.speeds, stroke.speed);
    AddName(&set.gestures, stroke.gesture);
  }
  for (const RecordedStroke& stroke : recorded) {
    Points points;
    for (const literal::Point& p : stroke.points)
      points.push_back({static_cast<double>(p.x), static_cast<double>(p.y)});
    set.strokes.push_back({IndexOf(set.people, stroke.person), IndexOf(set.speeds, stroke.speed),
                           IndexOf(set.gestures, stroke.gesture), StrokeOf(points)});
  }
  return set;
}

Library::~Library() {
  for (int i = 0; i < plugin_.nactions; i++) {
    ForgetSignature(&plugin_.actions[i]->sym);
    delete plugin_.actions[i];
  }
}

void Library::Add(const std::string& name, const GromlitSymbol& sym) {
  auto* action = new GromlitAction();
  CopyText(action->name, name);
  action->sym = sym;
  DisownFeatures(&action->sym);
  plugin_.actions[plugin_.nactions++] = action;
}

void Library::CopyWithout(const Library& other, int index) {
  for (int i = 0; i < other.size(); i++) {
    if (i != index) Add(other.name(i), *other.symbol(i));
  }
}

GromlitSymbol Learn(const std::vector<const Stroke*>& strokes) {
  std::vector<Shape> shapes;
  for (const Stroke* stroke : strokes)
    shapes.push_back(ShapeOfPoints(stroke->count, stroke->x, stroke->y));
  GromlitSymbol sym = {};
  SimplifyStroke(*strokes[static_cast<size_t>(NearestSample(shapes))], shapes, &sym);
  return sym;
}

void ReadSymbolLibrary(const char* directory, Library* library) {
  const char* const former = GromlitPath;
  GromlitPath = directory;
  LoadSymbols();
  GromlitPath = former;
  std::vector<GromlitSymbol*> symbols;
  for (auto* node = allSymbols; node != nullptr && node->sym != nullptr; node = node->next)
    symbols.push_back(node->sym);
  std::sort(symbols.begin(), symbols.end(), [](const GromlitSymbol* a, const GromlitSymbol* b) {
    return FieldText(a->name) < FieldText(b->name);
  });
  for (const GromlitSymbol* sym : symbols) library->Add(std::string(FieldText(sym->name)), *sym);
}

Stroke RandomWalk(std::mt19937* random) {
  constexpr double kStep = 6;
  std::normal_distribution<double> normal;
  const int steps = std::uniform_int_distribution<int>(40, 190)(*random);
  const double wander = std::uniform_real_distribution<double>(0.05, 0.65)(*random);
  double heading = std::uniform_real_distribution<double>(0, 2 * kPi)(*random);
  Points points = {{5000, 5000}};
  for (int i = 0; i < steps; i++) {
    heading += wander * normal(*random);
    const Point last = points.back();
    points.push_back({last.x + kStep * std::cos(heading), last.y + kStep * std::sin(heading)});
  }
  return StrokeOf(points);
}

Stroke Reversed(const Stroke& stroke) {
  Stroke reversed = stroke;
  std::reverse(reversed.x, reversed.x + reversed.count);
  std::reverse(reversed.y, reversed.y + reversed.count);
  return reversed;
}

Stroke SimulatedDrawing(const GromlitSymbol& sym, std::mt19937* random) {
  std::normal_distribution<double> normal;
  const auto uniform = [random](double low, double high) {
    return std::uniform_real_distribution<double>(low, high)(*random);
  };
  Points points;
  for (int k = 1; k <= sym.npoints; k++)
    points.push_back({static_cast<double>(sym.x[k]), static_cast<double>(sym.y[k])});
  const double diagonal = DiagonalOf(points);
  for (Point& p : points)
    p = {p.x + 0.03 * diagonal * normal(*random), p.y + 0.03 * diagonal * normal(*random)};
  points = Rounded(points, uniform(0, 0.35));
  const double aspect = uniform(0.75, 1.25);
  const double turn = uniform(-12, 12) * kPi / 180;
  for (Point& p : points) {
    const double x = p.x * aspect;
    p = {x * std::cos(turn) - p.y * std::sin(turn), x * std::sin(turn) + p.y * std::cos(turn)};
  }
  points = EvenlySpaced(points, static_cast<int>(uniform(20, 251)));
  Tremble(0.01 * diagonal, random, &points);
  // As many small drawings as large ones.
  const double scale = 40 * std::pow(20, uniform(0, 1)) / DiagonalOf(points);
  const Point first = points[0];
  for (Point& p : points) p = {5000 + (p.x - first.x) * scale, 5000 + (p.y - first.y) * scale};
  return StrokeOf(points);
}

Stroke WithHooks(const Stroke& stroke, double part, std::mt19937* random) {
  Points points;
  for (int i = 0; i < stroke.count; i++)
    points.push_back({static_cast<double>(stroke.x[i]), static_cast<double>(stroke.y[i])});
  const double length = part * DiagonalOf(points);
  for (int end = 0; end < 2; end++) {
    const Point tip = points[0];
    const Point on = points[std::min<size_t>(4, points.size() - 1)];
    const double heading = std::atan2(on.y - tip.y, on.x - tip.x) +
                           std::uniform_real_distribution<double>(-70, 70)(*random) * kPi / 180;
    const Point hook = {tip.x + length * std::cos(heading), tip.y + length * std::sin(heading)};
    points.insert(points.begin(), {hook, Between(hook, tip, 0.5)});
    std::reverse(points.begin(), points.end());
  }
  return StrokeOf(points);
}

}  // namespace gromlit
