// The form of the stroke log: what the program writes and the companion tool reads.
//
// Text, one line for each stroke, fields separated by tabs; the first line names the columns. In
// fields, control characters and "\" stand as \xNN, so that a line is a stroke and a tab ends a
// field.
#pragma once

#include <array>
#include <iterator>
#include <string>
#include <string_view>

#include "core/option_files.h"
#include "core/value_names.h"
#include "recognition/stroke.h"

namespace gromlit {

// Columns, in their order.
enum StrokeLogColumn {
  kLogTime,          // UTC, as 2026-01-31T12:00:00.007Z
  kLogClass,         // class text of the window
  kLogSignature,     // of the stroke
  kLogWay,           // way of matching: kLogWayNames
  kLogAction,        // name of the action that ran, or kLogNone
  kLogScore,         // by shape, of the action that is most alike; empty where there is none
  kLogRunnerUp,      // the same of the next one
  kLogMicroseconds,  // from the release to the dispatch
  kLogPoints,        // "x y x y ..."; empty unless points are asked for
  kLogColumns,
};

inline constexpr const char* kStrokeLogColumns[] = {
    "time", "class", "signature", "way", "action", "score", "runnerup", "microseconds", "points"};
static_assert(std::size(kStrokeLogColumns) == kLogColumns);

// By MatchingWay, as documents name the options' temp3.
inline constexpr auto kLogWayNames = [] {
  std::array<std::string_view, kMatchingWays> names = {};
  for (const ValueName& row : kValueNames)
    if (row.field == "temp3") names[static_cast<size_t>(row.value)] = row.name;
  return names;
}();

inline constexpr const char* kLogNone = "none";

// The first line, its newline included.
std::string StrokeLogHeader();

// The text as a field, and back. A "\x" without two hexadecimal digits stays as it is.
std::string EscapeLogField(std::string_view text);
std::string UnescapeLogField(std::string_view field);

// The points as a field, and back. False when the field is no list of pairs of 16-bit numbers;
// points beyond the 256th are dropped. An empty field gives an empty stroke.
std::string LogPoints(const Stroke& stroke);
bool ReadLogPoints(std::string_view field, Stroke* stroke);

}  // namespace gromlit
