// How another program of this display talks to the running one: `gromlit -remote WORD`.
//
// The running program owns the selection _GROMLIT_S and the number of the screen, as a manager does
// (ICCCM 2.8). Client messages of 32-bit numbers, of the type _GROMLIT_REMOTE, go both ways:
//
//   to the owner's window                       the number of a word, an id of the caller's choice
//   to the same window, for those who select    the id, the state after the word was obeyed
//   StructureNotify on it
//
// "quit" is answered by the end of the owner's window alone.
#pragma once

#include <X11/Xlib.h>

#include <array>
#include <optional>
#include <string>
#include <string_view>

namespace gromlit {

// The place in kRemoteWords is the number that is sent.
enum RemoteWord {
  kRemoteShow,
  kRemoteHide,
  kRemotePause,
  kRemoteResume,
  kRemoteToggle,
  kRemoteStatus,
  kRemoteQuit,
};
inline constexpr std::array<std::string_view, 7> kRemoteWords = {
    "show", "hide", "pause", "resume", "toggle", "status", "quit"};

// What is told of the running program.
inline constexpr long kRemoteRunning = 0;
inline constexpr long kRemotePaused = 1;

inline constexpr const char* kRemoteMessage = "_GROMLIT_REMOTE";

// The word of this name, or none.
std::optional<RemoteWord> FindRemoteWord(std::string_view name);

// All words, with blanks between them.
std::string RemoteWordList();

// The selection of this screen.
Atom RemoteSelection();

}  // namespace gromlit
