// Text that goes from program to program: PRIMARY, which is what is selected, and CLIPBOARD, by the
// conventions of X (ICCCM 2).
//
// Given is a copy of the text as UTF8_STRING, STRING or TEXT, alone or several at once (MULTIPLE),
// with TARGETS and TIMESTAMP. Taken is UTF8_STRING, or STRING where the owner has no other, whole
// or piece by piece (INCR).
//
// An owner may be hostile, or gone. Nothing here waits for one: what it says is taken when it
// comes, and not at all when that is later than kSelectionPatience. What goes beyond
// kSelectionTaken bytes is let pass and forgotten. The window for all this is made when it is
// needed first.
#pragma once

#include <X11/Xlib.h>

#include <chrono>
#include <string>

namespace gromlit {

inline constexpr size_t kSelectionTaken = 4096;  // bytes of somebody's text that are read at most
inline constexpr std::chrono::milliseconds kSelectionPatience{3000};

// One round trip the first time.
Atom ClipboardAtom();

// Makes the program the owner of a selection from `time` on, the server time of the event that says
// so. The text is UTF-8; one that is none counts as Latin-1.
void OwnSelection(Atom selection, const std::string& text, Time time);

// Asks the owner of a selection for its text. `got` is called later, with one line of UTF-8, which
// is empty when the owner's text is; not at all when there is no owner, no text or no answer. Only
// the last question counts: an earlier one is not answered any more.
void AskForSelection(Atom selection, Time time, void (*got)(void* arg, const std::string& text),
                     void* arg);

// Whatever was asked for with this argument is not wanted any more.
void ForgetSelection(const void* arg);

// Forgets the window and everything that was given or asked for, when the connection has ended.
void LeaveSelections();

// The window that owns and asks; None before it is needed.
Window SelectionWindow();

}  // namespace gromlit
