// What a command does, in a few words.
#pragma once

#include <string>

#include "core/gromlit.h"

namespace gromlit {

struct CommandWords {
  std::string verb;    // "Run"; empty for keys, which say it themselves
  std::string object;  // the keys, text, file or command line: bytes as they are in the record
  bool keys = false;   // the object is a key stroke

  bool operator==(const CommandWords&) const = default;
};

CommandWords WordsOf(const GromlitCmd& cmd);

}  // namespace gromlit
