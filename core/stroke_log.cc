#include "core/stroke_log.h"

#include <array>
#include <cstdio>
#include <ctime>

#include "core/printable.h"

namespace gromlit {
namespace {

std::string Time(int64_t milliseconds) {
  const auto seconds = static_cast<time_t>(milliseconds / 1000);
  tm utc{};
  gmtime_r(&seconds, &utc);
  std::array<char, 64> text{};
  const size_t n = std::strftime(text.data(), text.size(), "%Y-%m-%dT%H:%M:%S", &utc);
  std::snprintf(text.data() + n, text.size() - n, ".%03dZ", static_cast<int>(milliseconds % 1000));
  return text.data();
}

// A column's text: besides what is not fit for a terminal, the "\" that the escapes begin with.
std::string Column(std::string_view text) {
  std::string escaped;
  for (const char c : text) {
    if (c == '\\') {
      escaped += "\\x5c";
    } else {
      escaped += c;
    }
  }
  return Printable(escaped);
}

std::string Score(float score) {
  if (score < 0) return kLogNoScore;
  std::array<char, 32> text{};
  std::snprintf(text.data(), text.size(), "%.4f", static_cast<double>(score));
  return text.data();
}

}  // namespace

std::string StrokeLogLine(const LoggedStroke& stroke) {
  std::string line = Time(stroke.milliseconds);
  const auto add = [&](std::string_view text) {
    line += '\t';
    line += text;
  };
  add(Column(stroke.classtext));
  add(stroke.signature);
  add(stroke.byshape ? kLogShape : kLogSignature);
  add(stroke.action.empty() ? kLogNone : Column(stroke.action));
  add(Score(stroke.score));
  add(Score(stroke.runnerup));
  add(std::to_string(stroke.microseconds));
  add(stroke.points);
  line += '\n';
  return line;
}

}  // namespace gromlit
