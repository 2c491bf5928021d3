#include "tools/command_words.h"

#include <algorithm>

#include "core/command_types.h"

namespace gromlit {
namespace {

// A key stroke whose record has no text: its modifiers, as the editor writes them, and its code.
std::string KeyWords(const GromlitCmd& cmd) {
  constexpr struct {
    int bit;
    const char* name;
  } kModifiers[] = {{4, "Control-"}, {16, "Mod2-"}, {32, "Mod3-"}, {64, "Mod4-"},
                    {128, "Mod5-"},  {8, "Alt-"},   {1, "Shift-"}};
  std::string words;
  for (int i = 0; i < std::min<int>(cmd.nkeys, kMaxKeys); i++) {
    if (i > 0) words += " ";
    for (const auto& modifier : kModifiers)
      if ((cmd.keystate[i] & modifier.bit) != 0) words += modifier.name;
    words += "key" + std::to_string(cmd.keycode[i]);
  }
  return words;
}

}  // namespace

CommandWords WordsOf(const GromlitCmd& cmd) {
  // A text may hold NULs; what is run ends at the first.
  const std::string text = cmd.text == nullptr ? "" : cmd.text;
  const CommandTypeInfo* type = CommandTypeOf(cmd.type);
  if (type == nullptr) return {"Nothing: command type " + std::to_string(cmd.type), ""};
  const bool checked = type->checkbox && cmd.checked != 0;
  const char* verb = checked ? type->checkedverb : type->verb;
  // Keys are written as keys, and the forum is where it is whatever the text says.
  switch (cmd.type) {
    case kHotKey:
      return {verb, text.empty() ? KeyWords(cmd) : text, true};
    case kMenu:
      return {verb, "Alt-" + text, true};
    case kInternet:
      return {verb, checked ? "" : text};
    default:
      return {verb, text};
  }
}

}  // namespace gromlit
