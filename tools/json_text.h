// JSON as text: parsed with limits, printed for people.
//
// A byte of a record's string is the code point of the same number (U+0000..U+00FF), so that any
// byte survives. Whoever looks into a document includes <nlohmann/json.hpp>, which takes seconds to
// compile.
#pragma once

#include <cstddef>
#include <nlohmann/json_fwd.hpp>
#include <stdexcept>
#include <string>
#include <string_view>

namespace gromlit {

using Json = nlohmann::ordered_json;

// What is wrong with a document, beginning with the place ("actions[2].symbol.points: ...").
struct JsonError : std::runtime_error {
  using std::runtime_error::runtime_error;
};

// Largest depth of arrays and objects that a document may have; the records need seven levels.
inline constexpr size_t kMaxJsonDepth = 16;

// Most values that a document may have. A plug-in of 128 actions with 128 commands each has less
// than a million; without a limit, a small file of many empty lists would take a lot of memory.
inline constexpr size_t kMaxJsonValues = 2'000'000;

// Most keys that one object may have; the records need at most 14. What holds the objects in memory
// looks for a key by going through them all.
inline constexpr size_t kMaxJsonKeys = 64;

// Bytes of a document's word that a message shows.
inline constexpr size_t kShownWord = 40;

// Bytes as UTF-8 text, one code point for each byte.
std::string BytesToText(std::string_view bytes);

// The reverse; false when a code point lies above U+00FF. REQUIRES: text is valid UTF-8.
bool TextToBytes(std::string_view text, std::string* bytes);

// Parses one document. Throws JsonError for malformed text, repeated keys, too many levels, values
// or keys. REQUIRES: no NUL in text, where the parser would see its end.
Json ParseJson(std::string_view text);

// The document as text for people and for line-by-line comparison, a newline at its end: one key
// per line, lists of numbers on one line.
std::string PrintJson(const Json& document);

}  // namespace gromlit
