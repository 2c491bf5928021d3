#include "capture/plugin_match.h"

#include <algorithm>

#include "actions/execute.h"
#include "recognition/signature_match.h"
#include "recognition/stroke_signature.h"

namespace gromlit {

int PluginMatch(GromlitPlugin* pin, int npts, const int16_t* xbuf, const int16_t* ybuf, Window mwin,
                Window kwin, int winx, int winy, int rootx, int rooty) {
  char sigDrawn[kDrawnSignatureSize];
  StrokeSignature(sigDrawn, std::clamp(npts, 0, kMaxStrokePoints), xbuf, ybuf);
  const int found = FindAction(pin, sigDrawn);
  if (found < 0) return 0;
  return ExecuteAction(pin, pin->actions[found], mwin, kwin, winx, winy, rootx, rooty);
}

}  // namespace gromlit
