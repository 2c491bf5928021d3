// The pictures of the recognition report.
#pragma once

#include <string>
#include <vector>

#include "core/gromlit.h"
#include "recognition/stroke.h"

namespace gromlit {

// What a threshold lets through, percent of all strokes.
struct CurvePoint {
  double right;
  double wrong;
};

struct Curve {
  std::string name;
  std::string colour;
  std::vector<CurvePoint> points;
};

// Right against wrong over the threshold. Empty curves are left out; a mark stands at `mark`.
std::string PlotSvg(const std::vector<Curve>& curves, CurvePoint mark);

// A stroke that was taken for another symbol than its own.
struct Confusion {
  std::string own;
  std::string taken;
  int count;
  Stroke stroke;
  Stroke ownvector;
  Stroke takenvector;
};

// One row each: the symbol, a stroke that was meant for it, the symbol that it was taken for.
std::string ConfusionsSvg(const std::vector<Confusion>& confusions);

}  // namespace gromlit
