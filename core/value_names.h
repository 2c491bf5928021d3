// The names of the values that reserved fields hold: the one table, for documents that people
// write.
#pragma once

#include <cstdint>
#include <string_view>

#include "core/option_files.h"
#include "core/plugin_files.h"

namespace gromlit {

struct ValueName {
  std::string_view field;  // of the options or of a plug-in, as in the record
  std::string_view name;
  int32_t value;  // the field's value, or a bit of it
  bool bit;
};

inline constexpr ValueName kValueNames[] = {
    {"temp1", "events", kSentEvents, false},
    {"temp1", "real-input", kRealInput, false},
    {"temp2", "draw-with-locks", kDrawWithLocks, true},
    {"temp2", "fall-back", kFallBack, true},
    {"temp2", "activate-first", kActivateFirst, true},
    {"temp2", "open-directly", kOpenDirectly, true},
    {"temp2", "name-while-drawing", kNameWhileDrawing, true},
    {"temp3", "signature", kBySignature, false},
    {"temp3", "shape", kByShape, false},
    {"temp4", "plain", kPlainManners, false},
    {"temp4", "modern", kModernManners, false},
    {"spare1", "hands-off", kHandsOff, true},
};

// The row of that name; null where the field has none of it.
constexpr const ValueName* FindValueName(std::string_view field, std::string_view name) {
  for (const ValueName& row : kValueNames)
    if (row.field == field && row.name == name) return &row;
  return nullptr;
}

// Whether the field has a name for that value.
constexpr bool IsNamedValue(std::string_view field, int32_t value) {
  for (const ValueName& row : kValueNames)
    if (row.field == field && row.value == value) return true;
  return false;
}

enum class Naming { kNone, kValues, kBits };

// How the values of a field are named.
constexpr Naming NamingOf(std::string_view field) {
  for (const ValueName& row : kValueNames)
    if (row.field == field) return row.bit ? Naming::kBits : Naming::kValues;
  return Naming::kNone;
}

}  // namespace gromlit
