#include "recognition/stroke_log.h"

#include <charconv>

namespace gromlit {
namespace {

constexpr char kDigits[] = "0123456789abcdef";

bool IsPlain(char c) {
  const auto byte = static_cast<unsigned char>(c);
  return byte >= ' ' && byte != 0x7f && c != '\\';
}

// Value of a hexadecimal digit, -1 for anything else.
int HexDigit(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

}  // namespace

std::string StrokeLogHeader() {
  std::string header;
  for (const char* column : kStrokeLogColumns) {
    if (!header.empty()) header += '\t';
    header += column;
  }
  return header + "\n";
}

std::string EscapeLogField(std::string_view text) {
  std::string field;
  for (const char c : text) {
    if (IsPlain(c)) {
      field += c;
      continue;
    }
    const auto byte = static_cast<unsigned char>(c);
    field += "\\x";
    field += kDigits[byte / 16];
    field += kDigits[byte % 16];
  }
  return field;
}

std::string UnescapeLogField(std::string_view field) {
  std::string text;
  for (size_t i = 0; i < field.size(); i++) {
    if (field.substr(i, 2) == "\\x" && i + 3 < field.size()) {
      const int high = HexDigit(field[i + 2]);
      const int low = HexDigit(field[i + 3]);
      if (high >= 0 && low >= 0) {
        text += static_cast<char>(high * 16 + low);
        i += 3;
        continue;
      }
    }
    text += field[i];
  }
  return text;
}

std::string LogPoints(const Stroke& stroke) {
  std::string field;
  for (int i = 0; i < stroke.count; i++) {
    if (i > 0) field += ' ';
    field += std::to_string(stroke.x[i]) + ' ' + std::to_string(stroke.y[i]);
  }
  return field;
}

bool ReadLogPoints(std::string_view field, Stroke* stroke) {
  stroke->count = 0;
  const char* at = field.data();
  const char* const end = at + field.size();
  while (at < end) {
    int16_t point[2] = {};
    for (int16_t& coordinate : point) {
      while (at < end && *at == ' ') ++at;
      const auto [next, error] = std::from_chars(at, end, coordinate);
      if (error != std::errc() || (next < end && *next != ' ')) return false;
      at = next;
    }
    while (at < end && *at == ' ') ++at;
    if (stroke->count == kMaxStrokePoints) continue;
    stroke->x[stroke->count] = point[0];
    stroke->y[stroke->count] = point[1];
    stroke->count++;
  }
  return true;
}

}  // namespace gromlit
