// The log of strokes: one line of text for each, to find out what was drawn and what came of it.
//
// Columns are separated by tabs, and the first line names them. In the columns that hold text
// control characters, "\" and bytes that are no UTF-8 stand as \xNN.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace gromlit {

// What the columns hold, in this order:
//   time          UTC, as 2026-01-31T12:00:00.000Z
//   class         class text of the application
//   signature     of the stroke, whichever way it was matched
//   way           kLogSignature or kLogShape
//   action        name of the action that ran, or kLogNone
//   score         by shape: of the best action, 1 the same; kLogNoScore otherwise
//   runner-up     by shape: score of the second best action; kLogNoScore otherwise
//   microseconds  from the release to the moment at which the action begins
//   points        "x y x y ..." in root-window pixels, when they were asked for; else empty
inline constexpr const char* kStrokeLogHeader =
    "time\tclass\tsignature\tway\taction\tscore\trunner-up\tmicroseconds\tpoints";
inline constexpr int kStrokeLogColumns = 9;
inline constexpr int kStrokeLogPoints = 8;  // the column of the points, counted from 0

inline constexpr const char* kLogSignature = "signature";
inline constexpr const char* kLogShape = "shape";
inline constexpr const char* kLogNone = "none";
inline constexpr const char* kLogNoScore = "-";

struct LoggedStroke {
  int64_t milliseconds;  // since 1970-01-01, UTC
  std::string_view classtext;
  std::string_view signature;
  bool byshape;
  std::string_view action;  // empty: none ran
  float score;              // below 0: none
  float runnerup;
  int64_t microseconds;
  std::string points;
};

// A line of the log, its line feed included.
std::string StrokeLogLine(const LoggedStroke& stroke);

}  // namespace gromlit
