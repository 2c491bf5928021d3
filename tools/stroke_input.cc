#include "tools/stroke_input.h"

#include <charconv>
#include <limits>

#include "core/printable.h"

namespace gromlit {
namespace {

constexpr std::string_view kBlanks = " \t\r\v\f";

// Takes the next word from the front of the line; empty at its end.
std::string_view NextWord(std::string_view* line) {
  line->remove_prefix(std::min(line->find_first_not_of(kBlanks), line->size()));
  const std::string_view word = line->substr(0, line->find_first_of(kBlanks));
  line->remove_prefix(word.size());
  return word;
}

// Text from a stranger's file in a message: short, and without control characters.
std::string Quote(std::string_view text) {
  return "\"" + Printable(text.substr(0, 40)) + (text.size() > 40 ? "...\"" : "\"");
}

bool ParseCoordinate(std::string_view word, int16_t* out, std::string* error) {
  int value = 0;
  const auto [end, status] = std::from_chars(word.data(), word.data() + word.size(), value);
  const bool number = status != std::errc::invalid_argument && end == word.data() + word.size();
  if (!number) {
    *error = Quote(word) + " is no whole number";
    return false;
  }
  constexpr int low = std::numeric_limits<int16_t>::min();
  constexpr int high = std::numeric_limits<int16_t>::max();
  if (status == std::errc::result_out_of_range || value < low || value > high) {
    *error = Quote(word) + " lies outside -32768..32767";
    return false;
  }
  *out = static_cast<int16_t>(value);
  return true;
}

enum class Line { kPoint, kEmpty, kBad };

// Takes the next line from the front of the text. What is wrong with a bad one, and its number, is
// in *error then.
Line NextLine(std::string_view* text, size_t number, int16_t* x, int16_t* y, std::string* error) {
  std::string_view line = text->substr(0, text->find('\n'));
  text->remove_prefix(std::min(line.size() + 1, text->size()));
  const std::string_view first = NextWord(&line);
  if (first.empty()) return Line::kEmpty;
  const std::string_view second = NextWord(&line);
  bool good = ParseCoordinate(first, x, error);
  if (good && second.empty()) {
    *error = "two numbers are expected, there is only " + Quote(first);
    good = false;
  }
  good = good && ParseCoordinate(second, y, error);
  if (good) {
    const std::string_view rest = NextWord(&line);
    good = rest.empty();
    if (!good) *error = "only two numbers are expected, not " + Quote(rest);
  }
  if (good) return Line::kPoint;
  *error = "line " + std::to_string(number) + ": " + *error;
  return Line::kBad;
}

void AddPoint(Stroke* stroke, int16_t x, int16_t y) {
  if (stroke->count == kMaxStrokePoints) return;
  stroke->x[stroke->count] = x;
  stroke->y[stroke->count] = y;
  stroke->count++;
}

}  // namespace

bool ParseStroke(std::string_view text, Stroke* stroke, std::string* error) {
  stroke->count = 0;
  for (size_t number = 1; !text.empty(); number++) {
    int16_t x = 0;
    int16_t y = 0;
    const Line line = NextLine(&text, number, &x, &y, error);
    if (line == Line::kBad) return false;
    if (line == Line::kPoint) AddPoint(stroke, x, y);
  }
  return true;
}

bool ParseStrokes(std::string_view text, std::vector<Stroke>* strokes, std::string* error) {
  bool fresh = true;  // the next point begins a stroke
  for (size_t number = 1; !text.empty(); number++) {
    int16_t x = 0;
    int16_t y = 0;
    const Line line = NextLine(&text, number, &x, &y, error);
    if (line == Line::kBad) return false;
    if (line == Line::kPoint) {
      if (fresh) strokes->emplace_back();
      AddPoint(&strokes->back(), x, y);
    }
    fresh = line == Line::kEmpty;
  }
  return true;
}

}  // namespace gromlit
