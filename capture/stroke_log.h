// Writing the log of strokes (recognition/stroke_log.h), where the environment asks for it:
// GROMLIT_LOG names the file, GROMLIT_LOG_POINTS=1 asks for the points of each stroke, too.
//
// The log tells what somebody does all day, so nobody else may read it (mode 0600), and it is a
// file of its own: whatever else already lies under that name is left alone.
#pragma once

#include "core/gromlit.h"
#include "recognition/find_action.h"
#include "recognition/stroke.h"

namespace gromlit {

// Opens the log when the environment names one: a new file, or the end of one that is a log
// already. Says on standard error why it cannot, and goes on without. Once, at start-up.
void OpenStrokeLog();

// A stroke over an application of this class text (kept, not copied, until the stroke is logged)
// ends now: from here the time to its action counts.
void StrokeEnds(const char* classtext);

// Logs the stroke that ended, with the action `found` of pin (-1 or a null plug-in: none), before
// that action runs. Nothing when there is no log.
void LogStroke(const GromlitPlugin* pin, const Stroke& stroke, const Matching& how, int found);

}  // namespace gromlit
