// Making the user's installation directory from the starter library, and bringing what a newer
// library has.
//
// INV-STARTER-1: a file that is there is overwritten only when it is byte for byte what the
// launcher wrote; what the user deleted is not written again.
#pragma once

#include <functional>
#include <string>

#include "keymap/key_strokes.h"

namespace gromlit {

struct Preparation {
  bool usable = false;   // the directory is whole, even if it could not be brought up to date
  bool made = false;     // filled for the first time, now
  bool damaged = false;  // the manifest was, and has been made anew
  int added = 0;         // starter files that are new, when it was not made
  int renewed = 0;       // unchanged ones that were replaced
  std::string error;     // what was not done, with its reason; empty when all was
};

// Brings the directory up to the starter library `skeleton`; made with its parents where it is not
// there. Waits for another launcher that is at work on it. `keyboard` is called at most once, when
// a plug-in is to be written; null from it keeps the keys as they are packed. GromlitPath is the
// directory meanwhile.
// - A directory without any of symbols/, plugins/ and options/ is filled and gets the options of a
//   new user; one that was being filled when the launcher was killed is filled on.
// - One that has some but no sound manifest is taken over as it is: what equals the starter library
//   counts as written from it, all else as the user's own, and what is not there as deleted.
// - In any other, new starter files are written and unchanged ones replaced; no plug-in for an
//   application that has one under another name. Options stay; when
// there
//   are more recommended choices than before, and one is off, the file kNewsFile (core/choices.h)
//   is left.
Preparation PrepareDirectory(const std::string& directory, const std::string& skeleton,
                             const std::function<Keymap()>& keyboard);

}  // namespace gromlit
