#include "program/remote_words.h"

#include <algorithm>

#include "display/display.h"
#include "display/window_manager.h"

namespace gromlit {

std::optional<RemoteWord> FindRemoteWord(std::string_view name) {
  const auto* found = std::ranges::find(kRemoteWords, name);
  if (found == kRemoteWords.end()) return std::nullopt;
  return static_cast<RemoteWord>(found - kRemoteWords.begin());
}

std::string RemoteWordList() {
  std::string list;
  for (const std::string_view word : kRemoteWords) {
    if (!list.empty()) list += ' ';
    list += word;
  }
  return list;
}

Atom RemoteSelection() {
  return AtomOf(("_GROMLIT_S" + std::to_string(screen)).c_str());
}

}  // namespace gromlit
