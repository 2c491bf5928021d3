// What the stroke whose action runs was drawn over.
#pragma once

#include <X11/Xlib.h>

namespace gromlit {

struct StrokeRecord {
  Window client = None;  // the window that the window manager put into its frame, else the root's
                         // child; the root window on the desktop; None: not known
  bool own = false;      // it is one of the program's own
};

// Set by the capture for the time of an action.
inline StrokeRecord currentStroke;

}  // namespace gromlit
