#include "recognition/find_action.h"

#include "recognition/shape_match.h"
#include "recognition/signature_match.h"
#include "recognition/stroke_signature.h"

namespace gromlit {
namespace {

int FindBySignature(const GromlitPlugin* pin, const Stroke& stroke) {
  char sigDrawn[kDrawnSignatureSize];
  StrokeSignature(sigDrawn, stroke.count, stroke.x, stroke.y);
  return FindSignature(pin, sigDrawn);
}

}  // namespace

Matching MatchingOf(const GromlitUserOptions& options) {
  return {MatchingWayOf(&options), options.tolerance};
}

int FindAction(const GromlitPlugin* pin, const Stroke& stroke, const Matching& how) {
  switch (how.way) {
    case kByShape:
      return FindShape(pin, stroke, how.tolerance);
    case kBySignature:
    default:
      return FindBySignature(pin, stroke);
  }
}

}  // namespace gromlit
