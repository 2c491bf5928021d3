// The switch that turns gestures off for a while: for a game, a drawing program, a guest at the
// desk.
#pragma once

namespace gromlit {

// Pauses gestures or resumes them. While they are paused (gesturesPaused) every press of the draw
// button is replayed to the application that it is over; the button stays grabbed, so that nobody
// else gets it meanwhile. A stroke that has begun is finished as it was. Not kept in a file: the
// program starts with gestures.
void PauseGestures(bool pause);

// Told after each change, by whoever made it; null: nobody is.
inline void (*pauseChanged)() = nullptr;

}  // namespace gromlit
