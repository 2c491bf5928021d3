// The label that names the action which a stroke would run if it ended now, where the options
// choose it: at the top of the monitor that the pointer is on, above the
// trail.
//
// It takes no input, and is no window of an application to anybody who looks for one: it is claimed
// as one of the program's own, and gone before a click is made or an action runs. Without that
// choice nothing of it exists.
#pragma once

#include <X11/Xlib.h>

#include <string>

#include "capture/trail.h"
#include "core/gromlit.h"
#include "recognition/stroke.h"

namespace gromlit {

// What the label says of a stroke that would run nothing.
inline constexpr const char* kNoAction = "no action";

struct StrokeLabel {
  Window window = None;  // None until the first stroke that needs it
  GC gc = nullptr;
  bool mapped = false;
  Window over = None;    // the trail's window that it was raised above
  XRectangle monitor{};  // that it is shown on
  XRectangle area{};     // on the screen; only grows while it is on one monitor
  std::string shown;     // while it is mapped
};

// Shows what the stroke so far, over an application with the plug-in `plugin`, would run
// (FindActionToRun). One matching; requests only when that is another name than the one that is
// shown, the pointer has come to another monitor, or the trail has just got its other window, which
// lies above the label. A round trip for a monitor (MonitorAt), and for the first name that is not
// plain ASCII.
void NameStroke(StrokeLabel* label, GromlitPlugin* plugin, const Stroke& stroke, Trail* trail);

// Takes the label off the screen. Nothing when it is not there.
void HideStrokeLabel(StrokeLabel* label);

}  // namespace gromlit
