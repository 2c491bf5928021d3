#include "display/pause.h"

#include "display/modes.h"

namespace gromlit {

void PauseGestures(bool pause) {
  if ((gesturesPaused != 0) == pause) return;
  gesturesPaused = pause ? 1 : 0;
  if (pauseChanged != nullptr) pauseChanged();
}

}  // namespace gromlit
