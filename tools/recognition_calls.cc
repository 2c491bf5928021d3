#include "tools/recognition_calls.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <string_view>

#include "core/printable.h"
#include "core/strings.h"
#include "recognition/learn_symbol.h"
#include "recognition/shape_match.h"
#include "recognition/signature_match.h"
#include "recognition/stroke_log.h"
#include "recognition/stroke_signature.h"
#include "tools/output_file.h"
#include "tools/stroke_input.h"
#include "tools/text_input.h"
#include "tools/tool_io.h"

namespace gromlit {
namespace {

constexpr int32_t kLearnTolerance = 3;  // at which a sample counts as found

bool ReadStroke(const std::string& path, Stroke* stroke) {
  std::string text;
  std::string error;
  if (ReadTextInput(path, kMaxStrokeText, &text, &error) && ParseStroke(text, stroke, &error))
    return true;
  Complain(InputName(path), error);
  return false;
}

// Adds the strokes that empty lines separate; false after a message.
bool ReadStrokes(const std::string& path, std::vector<Stroke>* strokes) {
  std::string text;
  std::string error;
  if (ReadTextInput(path, kMaxStrokeText, &text, &error) && ParseStrokes(text, strokes, &error))
    return true;
  Complain(InputName(path), error);
  return false;
}

std::string SignatureText(const Stroke& stroke) {
  char letters[kDrawnSignatureSize];
  StrokeSignature(letters, stroke.count, stroke.x, stroke.y);
  return letters;
}

std::string ActionLine(const GromlitPlugin& plugin, int index) {
  return std::to_string(index) + "\t" + Printable(FieldText(plugin.actions[index]->name)) + "\n";
}

std::string ScoreText(float score) {
  char text[32];
  std::snprintf(text, sizeof text, "%.4f", static_cast<double>(score));
  return text;
}

// Why the action at `index` runs by signature or not. `winner` is the index of the one that does.
std::string WhyBySignature(bool matches, int index, int winner) {
  if (index == winner) return "runs";
  if (matches) return "matches, but action " + std::to_string(winner) + " comes first";
  return "another signature";
}

// Only the few actions that a stroke is most like at first sight are compared closely, so that one
// with a higher score than the best of them may be left out.
std::string WhyByShape(float score, int index, const ShapeRanking& ranking, float threshold) {
  if (score < 0) return "nothing to compare";
  if (score < threshold) return "not alike enough: " + ScoreText(threshold) + " is needed";
  if (index == ranking.best) return "runs";
  if (score > ranking.score) {
    return "alike, but " + std::to_string(kShapeCandidates) +
           " others are more alike at first sight";
  }
  const std::string best = "action " + std::to_string(ranking.best);
  return score < ranking.score ? "alike, but " + best + " is nearer"
                               : "as alike, but " + best + " comes first";
}

// Every action of the plug-in, and why it runs for the stroke or not.
void Explain(const GromlitPlugin& plugin, const Stroke& stroke, int32_t tolerance) {
  const std::string drawn = SignatureText(stroke);
  const Shape shape = ShapeOfPoints(stroke.count, stroke.x, stroke.y);
  const int first = FindAction(&plugin, stroke, {kBySignature, tolerance});
  const ShapeRanking ranking = RankByShape(&plugin, stroke);
  Write("stroke\t" + drawn + "\nindex\taction\tsignature\tby signature\tscore\tby shape\n");
  for (int i = 0; i < plugin.nactions; i++) {
    GromlitAction* action = plugin.actions[i];
    const float score = ShapeScore(shape, *SymbolShape(&action->sym));
    const bool matches = SymbolMatch(&action->sym, drawn.c_str()) != 0;
    Write(std::to_string(i) + "\t" + Printable(FieldText(action->name)) + "\t" +
          SymbolSignature(&action->sym) + "\t" + WhyBySignature(matches, i, first) + "\t" +
          (score < 0 ? "-" : ScoreText(score)) + "\t" +
          WhyByShape(score, i, ranking, ShapeThreshold(tolerance)) + "\n");
  }
}

}  // namespace

int SignatureOfSymbol(const std::string& path) {
  DataFile file;
  if (!ReadUsable(path, Kind::kSymbol, "no symbol file", &file)) return kTrouble;
  Write(std::string(SymbolSignature(&file.symbol)) + "\n");
  return file.damage.empty() ? kSuccess : kTrouble;
}

int SignatureOfStroke(const std::string& path) {
  Stroke stroke;
  if (!ReadStroke(path, &stroke)) return kTrouble;
  Write(SignatureText(stroke) + "\n");
  return kSuccess;
}

int MatchStrokes(const std::string& plugin, const std::string& path, const Matching& how,
                 bool each) {
  DataFile file;
  if (!ReadUsable(plugin, Kind::kPlugin, "no plug-in file", &file)) return kTrouble;
  std::vector<Stroke> strokes;
  if (each) {
    if (!ReadStrokes(path, &strokes)) return kTrouble;
  } else if (!ReadStroke(path, &strokes.emplace_back())) {
    return kTrouble;
  }
  bool found = false;
  for (const Stroke& stroke : strokes) {
    const int index = FindAction(&file.plugin, stroke, how);
    if (index >= 0) Write(ActionLine(file.plugin, index));
    if (index < 0 && each) Write("-\n");
    found = found || index >= 0;
  }
  if (!file.damage.empty()) return kTrouble;
  return found || each ? kSuccess : kNegative;
}

int LearnSymbol(const std::string& name, const std::string& output,
                const std::vector<std::string>& paths) {
  std::vector<Stroke> strokes;
  for (const std::string& path : paths) {
    if (!ReadStrokes(path, &strokes)) return kTrouble;
  }
  std::vector<Shape> shapes;
  shapes.reserve(strokes.size());
  for (const Stroke& stroke : strokes)
    shapes.push_back(ShapeOfPoints(stroke.count, stroke.x, stroke.y));
  const int nearest = NearestSample(shapes);
  if (nearest < 0) return Complain(InputName(paths.front()), "no stroke with two different points");
  DataFile file;
  file.kind = Kind::kSymbol;
  CopyText(file.symbol.name, name);
  SimplifyStroke(strokes[static_cast<size_t>(nearest)], shapes, &file.symbol);
  if (!WriteOutputFile(output, FileImage(file))) return Complain(output, std::strerror(errno));
  size_t found = 0;
  for (const Shape& shape : shapes) {
    if (ShapeScore(shape, *SymbolShape(&file.symbol)) >= ShapeThreshold(kLearnTolerance)) found++;
  }
  Write("found " + std::to_string(found) + " of " + std::to_string(strokes.size()) + "\n");
  return kSuccess;
}

int ExplainStrokes(const std::string& plugin, const std::string& path, int32_t tolerance) {
  DataFile file;
  if (!ReadUsable(plugin, Kind::kPlugin, "no plug-in file", &file)) return kTrouble;
  std::vector<Stroke> strokes;
  if (!ReadStrokes(path, &strokes)) return kTrouble;
  if (strokes.empty()) strokes.emplace_back();  // one without points
  for (size_t i = 0; i < strokes.size(); i++) {
    if (i > 0) Write("\n");
    Explain(file.plugin, strokes[i], tolerance);
  }
  return file.damage.empty() ? kSuccess : kTrouble;
}

int PrintLoggedStrokes(const std::string& log, int n) {
  std::string text;
  std::string error;
  if (!ReadTextInput(log, kMaxDocument, &text, &error)) return Complain(InputName(log), error);
  const std::string header = StrokeLogHeader();
  if (text.substr(0, header.size()) != header)
    return Complain(InputName(log), "no stroke log: its first line does not name the columns");
  std::vector<Stroke> strokes;
  int status = kSuccess;
  std::string_view rest = std::string_view(text).substr(header.size());
  for (int number = 2; !rest.empty(); number++) {
    const std::string_view line = rest.substr(0, rest.find('\n'));
    rest.remove_prefix(std::min(line.size() + 1, rest.size()));
    size_t tabs = 0;
    for (const char c : line) tabs += c == '\t';
    Stroke stroke;
    // A line that was cut when a disk was full hides none of the others.
    if (tabs != kLogColumns - 1 || !ReadLogPoints(line.substr(line.rfind('\t') + 1), &stroke)) {
      status = Complain(InputName(log), "line " + std::to_string(number) + ": no logged stroke");
      continue;
    }
    if (stroke.count > 0) strokes.push_back(stroke);
  }
  if (strokes.empty() && status == kSuccess)
    return Complain(InputName(log), "no points in it; GROMLIT_LOG_POINTS=1 logs them");
  const size_t kept = n < 0 ? strokes.size() : std::min(strokes.size(), static_cast<size_t>(n));
  for (size_t i = strokes.size() - kept; i < strokes.size(); i++) {
    if (i > strokes.size() - kept) Write("\n");
    for (int k = 0; k < strokes[i].count; k++)
      Write(std::to_string(strokes[i].x[k]) + " " + std::to_string(strokes[i].y[k]) + "\n");
  }
  return status;
}

}  // namespace gromlit
