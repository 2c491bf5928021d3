// The tables of docs/recognition.md, as Markdown on standard output; with a directory as argument,
// the plot and the pictures of confusions, too. Status 1 when a figure misses what is promised of
// it. scripts/recognition-report runs it.
#include <algorithm>
#include <array>
#include <bit>
#include <cstdio>
#include <functional>
#include <map>
#include <memory>
#include <random>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "bench/angle_templates.h"
#include "bench/protractor.h"
#include "bench/recognition_svg.h"
#include "bench/report_table.h"
#include "bench/starter_report.h"
#include "recognition/find_action.h"
#include "recognition/shape_match.h"
#include "tests/unit/recognition/stroke_sets.h"

namespace gromlit {
namespace {

constexpr uint32_t kSeed = 20070;  // of walks, hooks and chosen samples
constexpr int kWalks = 2000;
constexpr int kTolerances = 5;
constexpr int kMedium = 3;
constexpr int kVeryHigh = 5;
constexpr const char* kToleranceNames[] = {"Very low", "Low", "Medium", "High", "Very high"};

// What is promised of these figures; docs/recognition.md has the table.
struct Bars {
  std::vector<Bar> list;

  void AtLeast(const std::string& figure, double seen, double limit) {
    list.push_back({figure, seen, true, limit});
  }
  void AtMost(const std::string& figure, double seen, double limit) {
    list.push_back({figure, seen, false, limit});
  }
};

struct Count {
  int right = 0;
  int wrong = 0;
  int all = 0;

  void Add(int found, int meant) {
    right += found == meant;
    wrong += found >= 0 && found != meant;
    all++;
  }
  Count Since(const Count& before) const {
    return {right - before.right, wrong - before.wrong, all - before.all};
  }
  double Right() const { return PercentOf(right, all); }
  double Wrong() const { return PercentOf(wrong, all); }
  double Run() const { return PercentOf(right + wrong, all); }
  std::string Cells() const { return Shares(right, wrong, all); }
};

std::string Percent(double v) {
  char text[32];
  std::snprintf(text, sizeof text, "%.2f %%", v);
  return text;
}

int Found(const ShapeRanking& ranking, int tolerance) {
  return ranking.score >= ShapeThreshold(tolerance) ? ranking.best : -1;
}

int BySignature(const Library& library, const Stroke& stroke) {
  return FindAction(library.plugin(), stroke, {kBySignature, kMedium});
}

Stroke VectorOf(const GromlitSymbol& sym) {
  Stroke stroke;
  for (int k = 1; k <= sym.npoints; k++) {
    stroke.x[stroke.count] = static_cast<int16_t>(sym.x[k]);
    stroke.y[stroke.count] = static_cast<int16_t>(sym.y[k]);
    stroke.count++;
  }
  return stroke;
}

// A symbol of each gesture from the strokes that `taken` takes.
void LearnAll(const RecordedSet& set, const std::function<bool(const SetStroke&)>& taken,
              Library* library) {
  for (size_t gesture = 0; gesture < set.gestures.size(); gesture++) {
    std::vector<const Stroke*> samples;
    for (const SetStroke& stroke : set.strokes) {
      if (stroke.gesture == static_cast<int>(gesture) && taken(stroke))
        samples.push_back(&stroke.stroke);
    }
    library->Add(set.gestures[gesture], Learn(samples));
  }
}

// --- Strangers: every way to make symbols of two or three of the people -------------------------

// One way to divide them.
struct Division {
  Count medium, veryhigh, walks, reversed, leftout;  // at Medium but for the second
};

struct Strangers {
  std::vector<Division> divisions;
  std::array<Count, kTolerances + 1> shape, reversed, leftout, walks;  // by tolerance, from 1
  Count signature, signaturereversed, signatureleftout, signaturewalks;
  std::map<int, Count> gesture[2], person[2], speed[2];  // 0 by shape at Medium, 1 by signature
  std::map<int, Count> gesturereversed, gestureleftout;  // by shape at Medium
  std::vector<std::pair<float, bool>> scores, cosines;   // of every stroke: whether it is right
  std::map<std::pair<int, int>, Confusion> confusions;
  double corners = 0;
  int libraries = 0;

  Division Sums() const {
    return {shape[kMedium], shape[kVeryHigh], walks[kMedium], reversed[kMedium], leftout[kMedium]};
  }
};

void AddConfusion(const RecordedSet& set, const Library& library, const SetStroke& stroke,
                  int taken, Strangers* result) {
  Confusion& confusion = result->confusions[{stroke.gesture, taken}];
  if (confusion.count++ > 0) return;
  confusion.own = set.gestures[static_cast<size_t>(stroke.gesture)];
  confusion.taken = set.gestures[static_cast<size_t>(taken)];
  confusion.stroke = stroke.stroke;
  confusion.ownvector = VectorOf(*library.symbol(stroke.gesture));
  confusion.takenvector = VectorOf(*library.symbol(taken));
}

void MeasureStroke(const RecordedSet& set, const Library& library, const Library& rest,
                   std::span<const ProtractorVector> vectors, const SetStroke& stroke,
                   Strangers* result) {
  const ShapeRanking ranking = RankByShape(library.plugin(), stroke.stroke);
  const Stroke backwards = Reversed(stroke.stroke);
  const ShapeRanking reversed = RankByShape(library.plugin(), backwards);
  const ShapeRanking leftout = RankByShape(rest.plugin(), stroke.stroke);
  for (int tolerance = 1; tolerance <= kTolerances; tolerance++) {
    const auto t = static_cast<size_t>(tolerance);
    result->shape[t].Add(Found(ranking, tolerance), stroke.gesture);
    result->reversed[t].Add(Found(reversed, tolerance), kMaxActions);
    result->leftout[t].Add(Found(leftout, tolerance), kMaxActions);
  }
  const int found[] = {Found(ranking, kMedium), BySignature(library, stroke.stroke)};
  for (int way = 0; way < 2; way++) {
    result->gesture[way][stroke.gesture].Add(found[way], stroke.gesture);
    result->person[way][stroke.person].Add(found[way], stroke.gesture);
    result->speed[way][stroke.speed].Add(found[way], stroke.gesture);
  }
  result->gesturereversed[stroke.gesture].Add(Found(reversed, kMedium), kMaxActions);
  result->gestureleftout[stroke.gesture].Add(Found(leftout, kMedium), kMaxActions);
  result->signature.Add(found[1], stroke.gesture);
  result->signaturereversed.Add(BySignature(library, backwards), kMaxActions);
  result->signatureleftout.Add(BySignature(rest, stroke.stroke), kMaxActions);
  result->scores.push_back({ranking.score, ranking.best == stroke.gesture});
  const ProtractorResult protractor = RunProtractor(vectors, stroke.stroke);
  result->cosines.push_back({protractor.cosine, protractor.index == stroke.gesture});
  if (ranking.best != stroke.gesture) AddConfusion(set, library, stroke, ranking.best, result);
}

void MeasureDivision(const RecordedSet& set, unsigned sources, const std::vector<Stroke>& walks,
                     Strangers* result) {
  const auto source = [sources](const SetStroke& s) { return (sources >> s.person & 1) != 0; };
  const Division before = result->Sums();
  Library library;
  LearnAll(set, source, &library);
  std::vector<std::unique_ptr<Library>> rest;
  std::vector<ProtractorVector> vectors;
  for (int i = 0; i < library.size(); i++) {
    rest.push_back(std::make_unique<Library>());
    rest.back()->CopyWithout(library, i);
    vectors.push_back(Vectorize(VectorOf(*library.symbol(i))));
    result->corners += library.symbol(i)->npoints;
  }
  result->libraries++;
  for (const SetStroke& stroke : set.strokes) {
    if (source(stroke)) continue;
    MeasureStroke(set, library, *rest[static_cast<size_t>(stroke.gesture)], vectors, stroke,
                  result);
  }
  for (const Stroke& walk : walks) {
    const ShapeRanking ranking = RankByShape(library.plugin(), walk);
    for (int tolerance = 1; tolerance <= kTolerances; tolerance++) {
      result->walks[static_cast<size_t>(tolerance)].Add(Found(ranking, tolerance), kMaxActions);
    }
    result->signaturewalks.Add(BySignature(library, walk), kMaxActions);
  }
  const Division after = result->Sums();
  result->divisions.push_back(
      {after.medium.Since(before.medium), after.veryhigh.Since(before.veryhigh),
       after.walks.Since(before.walks), after.reversed.Since(before.reversed),
       after.leftout.Since(before.leftout)});
}

// What is right and wrong at each threshold, from strict to generous.
std::vector<CurvePoint> CurveOf(std::vector<std::pair<float, bool>> scores) {
  std::sort(scores.begin(), scores.end(), [](auto a, auto b) { return a.first > b.first; });
  std::vector<CurvePoint> points;
  int right = 0;
  int wrong = 0;
  const auto all = static_cast<double>(scores.size());
  for (size_t i = 0; i < scores.size(); i++) {
    (scores[i].second ? right : wrong)++;
    if (i % 200 == 0 || i + 1 == scores.size())
      points.push_back({100 * right / all, 100 * wrong / all});
  }
  return points;
}

void PrintStrangers(const RecordedSet& set, const Strangers& s) {
  std::printf("\n%d ways to divide the people, a symbol a gesture, %.1f corners on average.\n",
              s.libraries, s.corners / s.libraries / static_cast<double>(set.gestures.size()));
  Head(
      "Strokes of strangers, all speeds: right / wrong / nothing, %; and what runs an action that "
      "should not",
      {"way", "score from", "right / wrong / nothing", "random walks", "reversed",
       "symbol left out"});
  for (size_t t = 1; t <= kTolerances; t++) {
    char threshold[16];
    std::snprintf(threshold, sizeof threshold, "%.3f",
                  static_cast<double>(ShapeThreshold(static_cast<int32_t>(t))));
    Row({std::string("shape, ") + kToleranceNames[t - 1], t == kVeryHigh ? "any" : threshold,
         s.shape[t].Cells(), Percent(s.walks[t].Run()), Percent(s.reversed[t].Run()),
         Percent(s.leftout[t].Run())});
  }
  Row({"signatures", "", s.signature.Cells(), Percent(s.signaturewalks.Run()),
       Percent(s.signaturereversed.Run()), Percent(s.signatureleftout.Run())});
  const auto table = [](const char* title, const char* what, const std::map<int, Count>* counts,
                        const std::vector<std::string>& names) {
    Head(title, {what, "shape, Medium", "signatures"});
    for (const auto& [index, count] : counts[0])
      Row({names[static_cast<size_t>(index)], count.Cells(), counts[1].at(index).Cells()});
  };
  Head("By gesture: right / wrong / nothing, %; and what runs an action that should not",
       {"gesture", "shape, Medium", "signatures", "reversed, by shape", "left out, by shape"});
  for (const auto& [index, count] : s.gesture[0]) {
    Row({set.gestures[static_cast<size_t>(index)], count.Cells(), s.gesture[1].at(index).Cells(),
         Percent(s.gesturereversed.at(index).Run()), Percent(s.gestureleftout.at(index).Run())});
  }
  table("By person who drew", "person", s.person, set.people);
  table("By speed", "speed", s.speed, set.speeds);
}

// The mean over the ways to divide the people.
double Mean(const std::vector<Division>& divisions, Count Division::*count,
            double (Count::*share)() const) {
  double sum = 0;
  for (const Division& division : divisions) sum += (division.*count.*share)();
  return sum / static_cast<double>(divisions.size());
}

void AddBars(const Strangers& s, Bars* bars) {
  const auto mean = [&s](Count Division::*count, double (Count::*share)() const) {
    return Mean(s.divisions, count, share);
  };
  bars->AtLeast("strangers, Medium: right", mean(&Division::medium, &Count::Right), 96);
  bars->AtMost("strangers, Medium: wrong", mean(&Division::medium, &Count::Wrong), 1.2);
  bars->AtLeast("strangers, Very high: right", mean(&Division::veryhigh, &Count::Right), 98);
  bars->AtMost("random walks that run an action, Medium", mean(&Division::walks, &Count::Run), 5);
  bars->AtMost("reversed strokes that run an action, Medium",
               mean(&Division::reversed, &Count::Run), 12);
  bars->AtMost("strokes whose symbol was left out, Medium", mean(&Division::leftout, &Count::Run),
               35);
}

// --- Symbols from one person; people on whom nothing was tuned ----------------------------------

void PrintSources(const RecordedSet& set, const std::string& title,
                  const std::vector<std::pair<unsigned, unsigned>>& divisions) {
  Head(title, {"symbols from", "strokes of", "shape, Medium", "shape, Very high", "signatures"});
  const auto names = [&set](unsigned people) {
    std::string text;
    for (size_t i = 0; i < set.people.size(); i++) {
      if ((people >> i & 1) != 0) text += (text.empty() ? "" : ", ") + set.people[i];
    }
    return text;
  };
  for (const auto& [sources, targets] : divisions) {
    Library library;
    LearnAll(
        set, [sources = sources](const SetStroke& s) { return (sources >> s.person & 1) != 0; },
        &library);
    Count medium;
    Count nearest;
    Count signature;
    for (const SetStroke& stroke : set.strokes) {
      if ((targets >> stroke.person & 1) == 0) continue;
      const ShapeRanking ranking = RankByShape(library.plugin(), stroke.stroke);
      medium.Add(Found(ranking, kMedium), stroke.gesture);
      nearest.Add(Found(ranking, kVeryHigh), stroke.gesture);
      signature.Add(BySignature(library, stroke.stroke), stroke.gesture);
    }
    Row({names(sources), names(targets), medium.Cells(), nearest.Cells(), signature.Cells()});
  }
}

// --- Own hand -----------------------------------------------------------------------------------

void PrintOwnHand(const RecordedSet& set, Bars* bars) {
  constexpr int kTimes = 10;
  Head("The person's own hand, medium speed, samples chosen at random, ten times",
       {"samples", "shape, Medium", "shape, Very high", "Protractor", "angles", "signatures"});
  std::mt19937 random(kSeed);
  for (const size_t samples : {1U, 3U, 5U, 9U}) {
    Count medium;
    Count nearest;
    Count protractor;
    Count angles;
    Count signature;
    for (int time = 0; time < kTimes; time++) {
      for (int person = 0; person < static_cast<int>(set.people.size()); person++) {
        Library library;
        std::vector<ProtractorVector> vectors;
        std::vector<AngleTemplate> templates;
        std::vector<const SetStroke*> others;
        for (int gesture = 0; gesture < static_cast<int>(set.gestures.size()); gesture++) {
          std::vector<const SetStroke*> drawn;
          for (const SetStroke& s : set.strokes) {
            if (s.person == person && s.gesture == gesture &&
                set.speeds[static_cast<size_t>(s.speed)] == "medium")
              drawn.push_back(&s);
          }
          std::shuffle(drawn.begin(), drawn.end(), random);
          std::vector<const Stroke*> chosen;
          for (size_t i = 0; i < samples; i++) {
            chosen.push_back(&drawn[i]->stroke);
            vectors.push_back(Vectorize(drawn[i]->stroke));
            templates.push_back(MakeAngleTemplate(drawn[i]->stroke));
          }
          others.insert(others.end(), drawn.begin() + static_cast<std::ptrdiff_t>(samples),
                        drawn.end());
          library.Add(set.gestures[static_cast<size_t>(gesture)], Learn(chosen));
        }
        for (const SetStroke* s : others) {
          const ShapeRanking ranking = RankByShape(library.plugin(), s->stroke);
          medium.Add(Found(ranking, kMedium), s->gesture);
          nearest.Add(Found(ranking, kVeryHigh), s->gesture);
          const int index = RunProtractor(vectors, s->stroke).index;
          protractor.Add(index / static_cast<int>(samples), s->gesture);
          const int nearest_angles = RunAngleTemplates(templates, s->stroke).index;
          angles.Add(nearest_angles < 0 ? -1 : nearest_angles / static_cast<int>(samples),
                     s->gesture);
          signature.Add(BySignature(library, s->stroke), s->gesture);
        }
      }
    }
    Row({std::to_string(samples), medium.Cells(), nearest.Cells(), protractor.Cells(),
         angles.Cells(), signature.Cells()});
    if (samples == 1) {
      bars->AtLeast("own hand, one sample, medium speed, Very high: right", nearest.Right(), 98.5);
    }
  }
}

// --- Hooks ---------------------------------------------------------------------------------------

void PrintHooks(const RecordedSet& set) {
  Head(
      "Hooks at both ends, of a part of the diagonal; symbols from the first three people, strokes "
      "of the others",
      {"hooks", "shape, Medium", "signatures"});
  Library library;
  LearnAll(
      set, [](const SetStroke& s) { return s.person < 3; }, &library);
  for (const int percent : {0, 3, 6, 10}) {
    std::mt19937 random(kSeed);
    Count shape;
    Count signature;
    for (const SetStroke& s : set.strokes) {
      if (s.person < 3) continue;
      const Stroke hooked = percent > 0 ? WithHooks(s.stroke, percent / 100.0, &random) : s.stroke;
      shape.Add(FindAction(library.plugin(), hooked, {kByShape, kMedium}), s.gesture);
      signature.Add(BySignature(library, hooked), s.gesture);
    }
    Row({std::to_string(percent) + " %", shape.Cells(), signature.Cells()});
  }
}

bool WriteText(const std::string& path, const std::string& text) {
  std::FILE* file = std::fopen(path.c_str(), "w");
  if (file == nullptr) return false;
  const bool written = std::fwrite(text.data(), 1, text.size(), file) == text.size();
  return std::fclose(file) == 0 && written;
}

bool WritePictures(const std::string& directory, const Strangers& s) {
  const Count& medium = s.shape[kMedium];
  const std::string plot = PlotSvg(
      {{"by shape", "#2050c0", CurveOf(s.scores)}, {"Protractor", "#c07020", CurveOf(s.cosines)}},
      {medium.Right(), medium.Wrong()});
  std::vector<Confusion> worst;
  for (const auto& [pair, confusion] : s.confusions) worst.push_back(confusion);
  std::stable_sort(worst.begin(), worst.end(),
                   [](const Confusion& a, const Confusion& b) { return a.count > b.count; });
  worst.resize(std::min<size_t>(worst.size(), 10));
  return WriteText(directory + "/recognition-plot.svg", plot) &&
         WriteText(directory + "/recognition-confusions.svg", ConfusionsSvg(worst));
}

int Report(const char* pictures) {
  std::string missing;
  const RecordedSet set = ReadRecordedSet(&missing);
  if (set.strokes.empty()) {
    std::fprintf(stderr, "recognition report: %s\n", missing.c_str());
    return 2;
  }
  const auto people = static_cast<unsigned>(set.people.size());
  std::printf("%zu strokes of %u people, %zu gestures. Seed %u.\n", set.strokes.size(), people,
              set.gestures.size(), kSeed);
  std::mt19937 random(kSeed);
  std::vector<Stroke> walks;
  for (int i = 0; i < kWalks; i++) walks.push_back(RandomWalk(&random));
  Strangers strangers;
  for (unsigned sources = 1; sources + 1 < 1U << people; sources++) {
    const int n = std::popcount(sources);
    if (n == 2 || n == 3) MeasureDivision(set, sources, walks, &strangers);
  }
  PrintStrangers(set, strangers);
  const unsigned all = (1U << people) - 1;
  std::vector<std::pair<unsigned, unsigned>> single;
  for (unsigned i = 0; i < people; i++) single.push_back({1U << i, all & ~(1U << i)});
  PrintSources(set, "Symbols from one person, strokes of the others", single);
  // The first, third and fifth are those on whose strokes the constants were chosen.
  const unsigned tuned = 0x15 & all;
  PrintSources(set, "People on whom the constants were chosen, and the others",
               {{tuned, all & ~tuned}, {all & ~tuned, tuned}});
  Bars bars;
  AddBars(strangers, &bars);
  PrintOwnHand(set, &bars);
  PrintHooks(set);
  const RightAndWrong symbols = PrintStarterSymbols(GROMLIT_SKELETON);
  bars.AtLeast("drawings of the starter library's symbols, Medium: right", symbols.right, 99.9);
  bars.AtMost("drawings of the starter library's symbols, Medium: wrong", symbols.wrong, 0.05);
  const bool met = PrintBars(bars.list);
  PrintStarterLibrary(GROMLIT_SKELETON);
  PrintStarterPeople(GROMLIT_SKELETON, set);
  if (pictures == nullptr || WritePictures(pictures, strangers)) return met ? 0 : 1;
  std::fprintf(stderr, "recognition report: the pictures cannot be written to %s\n", pictures);
  return 2;
}

}  // namespace
}  // namespace gromlit

int main(int argc, char** argv) {
  const std::string word = argc > 1 ? argv[1] : "";
  if (word == "--starter") {
    std::string missing;
    gromlit::PrintStarterSymbols(GROMLIT_SKELETON);
    gromlit::PrintStarterLibrary(GROMLIT_SKELETON);
    gromlit::PrintStarterPeople(GROMLIT_SKELETON, gromlit::ReadRecordedSet(&missing));
    return 0;
  }
  if (word == "--starter-confusions") {
    gromlit::PrintStarterConfusions(GROMLIT_SKELETON);
    return 0;
  }
  return gromlit::Report(argc > 1 ? argv[1] : nullptr);
}
