// The types of commands: the one table of what each is called and offers, and of what it does, in
// words. The action editor's tabs, the command list, the tool's documents and its cheat sheets read
// it; what running one does: actions/execute.cc.
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
  const char* does;    // what it does, with and without the check box, for docs/file-formats.md
  // What it does, for a cheat sheet, which goes on with the command's text; "" where that says all.
  const char* verb;
  const char* checkedverb;  // the same with the check box checked; null without one
};

// In the order of the tabs, which is that of the values: kCommandTypes[type] is the type's row.
inline constexpr CommandTypeInfo kCommandTypes[] = {
    {kHotKey, "HotKey", "HotKey: ", false, "sends the keys; the text names them for people", "",
     nullptr},
    {kMenu, "Menu", "Menu: ", false, "opens a menu; the text holds its letters", "Menu", nullptr},
    {kText, "Text", "Text: ", true,
     "types the text; checked: the contents of the file of that name", "Type", "Type the file"},
    {kSound, "Sound", "Sound: ", false, "plays the sound file of that name", "Play", nullptr},
    {kRun, "Run", "Run: ", false, "runs the command line", "Run", nullptr},
    {kInternet, "Internet", "Internet: ", true, "opens the page; checked: the forum", "Visit",
     "Open the Gromlit forum"},
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
