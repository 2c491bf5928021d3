#include "tools/command_words.h"

#include <algorithm>

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
  switch (cmd.type) {
    case kHotKey:
      return {"", text.empty() ? KeyWords(cmd) : text, true};
    case kMenu:
      return {"Menu", "Alt-" + text, true};
    case kText:
      return {cmd.checked != 0 ? "Type the file" : "Type", text};
    case kSound:
      return {"Play", text};
    case kRun:
      return {"Run", text};
    case kInternet:
      if (cmd.checked != 0) return {"Open the Gromlit forum", ""};
      return {"Visit", text};
    default:
      return {"Nothing: command type " + std::to_string(cmd.type), ""};
  }
}

}  // namespace gromlit
