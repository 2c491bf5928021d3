// The calling side of `gromlit -remote WORD`. It makes no window and needs no installation.
#pragma once

#include "program/remote_words.h"

namespace gromlit {

// Ends of the program that called.
inline constexpr int kRemoteDone = 0;
inline constexpr int kRemoteNone = 1;   // no program runs, it does not answer, it has just ended
inline constexpr int kRemoteWrong = 2;  // no word, no such word, or no display

// Has the program that runs on a display (null: the environment's) obey a word. Prints the answer
// of "status" on standard output, and on standard error why something was not done. Returns how to
// end; that takes at most some 5 seconds while the server answers.
int CallRunning(const char* display, RemoteWord word);

}  // namespace gromlit
