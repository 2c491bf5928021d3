// The types of commands: the one table of what each is called and offers. The action editor's tabs,
// the command list and the tool's documents read it; what running one does: actions/execute.cc.
#pragma once

#include <cstdint>
#include <iterator>

namespace gromlit {

// What running a command does; the values are stored in files.
enum CommandType : uint8_t {
  kHotKey = 0,
  kMenu = 1,
  kText = 2,
  kSound = 3,
  kRun = 4,
  kInternet = 5,
};

// NOLINTNEXTLINE(clang-analyzer-optin.performance.Padding): six of them, read as the table below.
struct CommandTypeInfo {
  CommandType type;
  const char* name;    // label of its tab, and its name in documents
  const char* prefix;  // begins its lines in the command list
  bool checkbox;       // has a check box, kept in the command's `checked`
};

// In the order of the tabs, which is that of the values: kCommandTypes[type] is the type's row.
inline constexpr CommandTypeInfo kCommandTypes[] = {
    {kHotKey, "HotKey", "HotKey: ", false}, {kMenu, "Menu", "Menu: ", false},
    {kText, "Text", "Text: ", true},        {kSound, "Sound", "Sound: ", false},
    {kRun, "Run", "Run: ", false},          {kInternet, "Internet", "Internet: ", true},
};
inline constexpr int kCommandTypeCount = static_cast<int>(std::size(kCommandTypes));

// The row of a type as it is stored, which may be any byte; null for one that there is not.
constexpr const CommandTypeInfo* CommandTypeOf(uint8_t type) {
  return type < kCommandTypeCount ? &kCommandTypes[type] : nullptr;
}

// Whether commands of this type have a check box; false for an unknown type.
constexpr bool HasCheckBox(int type) {
  return 0 <= type && type < kCommandTypeCount && kCommandTypes[type].checkbox;
}

// The names and the prefixes alone, by value, ended by a null entry.
extern const char* const* const tabcmdNames;
extern const char* const* const tabcmdTypeNames;

}  // namespace gromlit
