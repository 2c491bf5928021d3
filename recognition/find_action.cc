#include "recognition/find_action.h"

#include "recognition/shadow.h"
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

int FindTakerBySignature(const GromlitPlugin* pin, int n, GromlitSymbol* sym) {
  const char* signature = SymbolSignature(sym);
  for (int i = 0; i < n; i++) {
    if (Shadows(SymbolSignature(&pin->actions[i]->sym), signature)) return i;
  }
  return -1;
}

// By shape an action leaves another one no stroke only where both look the same: of equal ones the
// earlier runs.
int FindTakerByShape(const GromlitPlugin* pin, int n, GromlitSymbol* sym) {
  const Shape* shape = SymbolShape(sym);
  for (int i = 0; i < n; i++) {
    if (SameShape(*SymbolShape(&pin->actions[i]->sym), *shape)) return i;
  }
  return -1;
}

}  // namespace

Matching MatchingOf(const GromlitUserOptions& options) {
  return {MatchingWayOf(&options), options.tolerance};
}

MatchingWay WayOf(const Matching& how) {
  return how.way == kByShape ? kByShape : kBySignature;
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

Scores ScoresOf(const GromlitPlugin* pin, const Stroke& stroke, const Matching& how) {
  if (WayOf(how) != kByShape) return {};
  const ShapeRanking ranking = RankByShape(pin, stroke);
  return {ranking.score, ranking.nextscore};
}

FoundAction FindActionToRun(GromlitPlugin* pin, const Stroke& stroke,
                            const GromlitUserOptions& options) {
  const Matching how = MatchingOf(options);
  FoundAction found{pin, pin != nullptr ? FindAction(pin, stroke, how) : -1};
  if (found.index >= 0 || pin == nullptr || pin == DefaultPlugin || DefaultPlugin == nullptr ||
      !Chosen(&options, kFallBack)) {
    return found;
  }
  const int index = FindAction(DefaultPlugin, stroke, how);
  return index >= 0 ? FoundAction{DefaultPlugin, index} : found;
}

int FindTaker(const GromlitPlugin* pin, int n, GromlitSymbol* sym, const Matching& how) {
  switch (how.way) {
    case kByShape:
      return FindTakerByShape(pin, n, sym);
    case kBySignature:
    default:
      return FindTakerBySignature(pin, n, sym);
  }
}

}  // namespace gromlit
