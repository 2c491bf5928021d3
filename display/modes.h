// The modes: what one part of the program does while it is in them concerns another one. Each has
// one writer, which is named here; everybody may read.
#pragma once

#include <X11/Xlib.h>

#include "core/gromlit.h"

namespace gromlit {

// Non-zero from the opening of the action editor to its OK or Cancel: the draw button is not
// captured then and the pointer is not followed, so that keys and clicks reach the editor.
// Written by app/action_editor.
inline int editingPlugin = 0;

// Non-zero while gestures are paused: every press of the draw button goes to the application that
// it is over. Written by display/pause.
inline int gesturesPaused = 0;

// Reserved for the drawing of a symbol; nothing writes or reads it.
inline int drawingSymbol = 0;

// Whose action is being executed; null when none is. Written by actions/execute.
inline GromlitPlugin* ExecutingPlugin = nullptr;

// What the stroke whose action runs was drawn over.
struct StrokeOver {
  Window client = None;  // the window that the window manager put into its frame, else the root's
                         // child; the root window on the desktop; None: not known
  bool own = false;      // it is one of the program's own
};

// Set for the time of an action. Written by capture/gromlit_draw.
inline StrokeOver currentStroke;

// The main window, which "system:showgromlit" maps and raises and to which dialogs belong; None
// before it is made. Written by app/main_window.
inline Window showWindow = None;

}  // namespace gromlit
