// The pointer, held for a window of the program until a button goes up, and given back.
//
// While it is held the server reports every press to that window, wherever the pointer is: also one
// that comes after the release, as long as the program has not read that and given the pointer
// back. On a busy machine that is enough for a quick hand to click on the next thing. Such a press
// is meant for what lies under it, and is given to that (ReaddressLatePress); without it the click
// would be lost.
//
// Which presses those are is told by their serial: it says between which two requests of the
// program the server reported an event.
#pragma once

#include <X11/Xlib.h>

namespace gromlit {

// Whether a window of the program does something with a press of this button.
using TakesPress = bool (*)(Window window, unsigned button);

// Takes the pointer for a window, from whatever window of the program has it, with these events and
// presses: without the latter, those that come too soon would reach nobody. One round trip. Returns
// false when the server refuses.
bool HoldPointer(Window window, long events);

// The same for a window that goes on with what the former one began: what was reported to that
// window and is read from now on, is its own as long as it holds the pointer. The place in it stays
// the place in the former window: the place on the screen is what counts.
bool InheritPointer(Window window, long events);

// Gives it back. One request; where presses wait already that came too soon, also the round trips
// of looking what they are on, before a handler moves it from there.
void GivePointerBack();

// To be called with each event before its handler. A press that was reported to a window which held
// the pointer, after the release that ended this, gets the window that it is on and the place in
// it, and so do the motions and the release that follow; so does a release that was reported there
// because the press before it was read late. Everything else stays as it is, and costs nothing; a
// press that nothing was looked up for yet takes a round trip for each level of the window tree.
// Returns false for an event that is for nobody here: what it is on is another client's.
bool ReaddressLatePress(XEvent* event, TakesPress takes);

// Forgets what was held: another connection counts its requests anew.
void ForgetHeldPointers();

}  // namespace gromlit
