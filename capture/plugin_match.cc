#include "capture/plugin_match.h"

#include "actions/execute.h"
#include "capture/stroke_log.h"
#include "recognition/find_action.h"

namespace gromlit {

int PluginMatch(GromlitPlugin* pin, int npts, const int16_t* xbuf, const int16_t* ybuf, Window mwin,
                Window kwin, int winx, int winy, int rootx, int rooty) {
  const Stroke stroke = MakeStroke(npts, xbuf, ybuf);
  const FoundAction found = FindActionToRun(pin, stroke, *user);
  LogStroke(found.plugin, stroke, MatchingOf(*user), found.index);
  if (found.index < 0) return 0;
  return ExecuteAction(found.plugin, found.plugin->actions[found.index], mwin, kwin, winx, winy,
                       rootx, rooty);
}

}  // namespace gromlit
