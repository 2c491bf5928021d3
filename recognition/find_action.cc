#include "recognition/find_action.h"

#include "recognition/shadow.h"
#include "recognition/signature_match.h"
#include "recognition/stroke_signature.h"

namespace gromlit {
namespace {

int FindBySignature(const GromlitPlugin* pin, const Stroke& stroke) {
  char sigDrawn[kDrawnSignatureSize];
  StrokeSignature(sigDrawn, stroke.count, stroke.x, stroke.y);
  return FindSignature(pin, sigDrawn);
}

int FindTakerBySignature(const GromlitPlugin* pin, int n, GromlitSymbol* sym) {
  const char* signature = SymbolSignature(sym);
  for (int i = 0; i < n; i++) {
    if (Shadows(SymbolSignature(&pin->actions[i]->sym), signature)) return i;
  }
  return -1;
}

}  // namespace

Matching MatchingOf(const GromlitUserOptions& options) {
  return {MatchingWayOf(&options), options.tolerance};
}

int FindAction(const GromlitPlugin* pin, const Stroke& stroke, const Matching& how) {
  switch (how.way) {
    case kBySignature:
    default:
      return FindBySignature(pin, stroke);
  }
}

int FindTaker(const GromlitPlugin* pin, int n, GromlitSymbol* sym, const Matching& how) {
  switch (how.way) {
    case kBySignature:
    default:
      return FindTakerBySignature(pin, n, sym);
  }
}

}  // namespace gromlit
