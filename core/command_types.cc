#include "core/command_types.h"

#include <array>

namespace gromlit {
namespace {

using Column = std::array<const char*, kCommandTypeCount + 1>;

// One text of each row; the last entry stays null.
constexpr Column ColumnOf(const char* CommandTypeInfo::*text) {
  Column column = {};
  for (size_t i = 0; i < kCommandTypeCount; i++) column[i] = kCommandTypes[i].*text;
  return column;
}

constexpr bool InOrder() {
  for (int i = 0; i < kCommandTypeCount; i++)
    if (kCommandTypes[i].type != i) return false;
  return true;
}
static_assert(InOrder(), "a type's row stands at its value");

constexpr bool AllExplained() {
  for (const CommandTypeInfo& type : kCommandTypes) {
    if (type.does == nullptr || *type.does == '\0' || type.verb == nullptr) return false;
    if ((type.checkedverb != nullptr) != type.checkbox) return false;
  }
  return true;
}
static_assert(AllExplained(), "a type says what it does, and the same with its check box");

constexpr Column kNames = ColumnOf(&CommandTypeInfo::name);
constexpr Column kPrefixes = ColumnOf(&CommandTypeInfo::prefix);

}  // namespace

const char* const* const tabcmdNames = kNames.data();
const char* const* const tabcmdTypeNames = kPrefixes.data();

}  // namespace gromlit
