// The grab of the draw button on the root window.
//
// The grab is passive, with no modifier and a frozen pointer, so that the capture can decide event
// by event whether a press is its own. A press with any modifier reaches the application untouched,
// also one with Caps Lock or Num Lock on, unless the options choose that strokes are drawn with
// them: then there is such a grab for every combination of the locks, too.
//
// INV-GRAB-1: at any time at most one button is grabbed, and while one is, `grabbed button` names
// it; a refused change leaves the old grab in place.
// INV-GRAB-2: a grab that another client took while it was lifted is asked for until it is granted,
// or until another button is grabbed in its place.
#pragma once

#include <X11/Xlib.h>

#include <optional>

namespace gromlit {

// What is told, as a line of its own, when another client holds the draw button.
inline constexpr const char* kDrawButtonTaken = "Drawing Button used by another application.";

// Motion mask of a mouse button 1..5; any other value gives button 3's.
long ButtonToMotionMask(int button);

// Grabs button 1..5. When another client holds it already, returns false and what was grabbed
// before stays grabbed. Takes one round trip.
bool GrabDrawButton(int button);

// The button that is grabbed, or 0.
int GrabbedDrawButton();

// The locks, as state bits, that a press of the draw button may carry and still be the program's.
unsigned DrawLocks();

// To be called when options or keyboard have changed, and before the first grab: finds out which
// locks those are. One round trip where the options choose them, none else; two more for a change.
void RenewDrawLocks();

// How long an idle program may wait before it asks for a refused grab again, milliseconds; -1 when
// no grab is refused, so that nothing wakes it.
int DrawButtonWait();

// To be called after each event, and when that time is over: asks for a refused grab again, unless
// it was asked for just before. Three round trips, nothing while no grab is refused.
void AskForDrawButton();

// Gives the button up for good, before the program ends. A server that clears up behind a client
// may let out presses that waited while that client's windows go but its passive grabs are still
// there, and the pointer would stay frozen for one that nobody takes any more. No round trip; an
// active grab is to be given up after it.
void LeaveDrawButton();

// Lifts the passive grab for the lifetime of the object and puts it back after it: a press while an
// action runs must reach the application instead of freezing the pointer until the action is over.
// Takes one round trip; does nothing while no button is grabbed. When another client has taken the
// button meanwhile, the message is printed, and AskForDrawButton gets the button back when that
// client gives it up.
class DrawButtonLifted {
 public:
  DrawButtonLifted();
  ~DrawButtonLifted();
  DrawButtonLifted(const DrawButtonLifted&) = delete;
  DrawButtonLifted& operator=(const DrawButtonLifted&) = delete;

  // The window that had the input focus when the grab was gone, None or PointerRoot. Nothing where
  // that was not asked, or where a press has gone its way since, which may have moved it.
  std::optional<Window> focus() const { return focus_; }

 private:
  int button_;
  std::optional<Window> focus_;
};

}  // namespace gromlit
