// The grab of the draw button on the root window.
//
// The grab is passive, with no modifier and a frozen pointer, so that the capture can decide event
// by event whether a press is its own. A press with any modifier (Num Lock and Caps Lock included)
// reaches the application untouched.
//
// INV-GRAB-1: at any time at most one button is grabbed, and while one is, `grabbed button` names
// it; a refused change leaves the old grab in place.
#pragma once

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

// Lifts the passive grab for the lifetime of the object and puts it back after it: a press while an
// action runs must reach the application instead of freezing the pointer until the action is over.
// Does nothing while no button is grabbed. When another client has taken the button meanwhile, the
// message is printed and no button is grabbed any more.
class DrawButtonLifted {
 public:
  DrawButtonLifted();
  ~DrawButtonLifted();
  DrawButtonLifted(const DrawButtonLifted&) = delete;
  DrawButtonLifted& operator=(const DrawButtonLifted&) = delete;

 private:
  int button_;
};

}  // namespace gromlit
