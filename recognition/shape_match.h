// Matching by shape: how much a stroke looks like a symbol, whatever its size and place.
//
// Stroke and vector are resampled to kShapePoints points at equal distances along the way, moved to
// their centre and scaled as a whole, so that a flat stroke stays flat. Then, for each action, the
// cosine between the two lists of coordinates, the stroke turned by up to 10 degrees to suit, in
// closed form (Y. Li, "Protractor: a fast and accurate gesture recognizer", CHI 2010, with the
// rotation bounded). That ranks the actions. The best kShapeCandidates are compared again by
// dynamic time warping (H. Sakoe and S. Chiba, "Dynamic programming algorithm optimization for
// spoken word recognition", IEEE Trans. ASSP 26, 1978) in a band of +-kShapeBand segments, over the
// direction and the position of the segments together, after the stroke was turned by half of that
// angle and stretched along one axis by up to 1.3 towards the symbol's proportions. One cell
// costs c / (1 + 6 c), with c the mean of 1 - cosine between the directions and the squared
// distance of the middles (in units in which a shape's points lie 0.7 from its centre, root mean
// square): a small difference counts in full, a place where the hand slipped cannot outweigh the
// rest. The score is 1 - the cost of the cheapest way through / number of segments.
//
// The features of a symbol are computed on first use and kept in its record; nothing else is
// allocated.
#pragma once

#include <cstdint>

#include "core/gromlit.h"
#include "recognition/shape.h"
#include "recognition/stroke.h"

namespace gromlit {

inline constexpr int kShapeCandidates = 5;  // actions that are compared by warping

// The shape of a symbol's vector, computed on first use and kept in the record (heap, owned by it)
// until ForgetSignature drops it with the signature: both are of the same points.
const Shape* SymbolShape(GromlitSymbol* sym);

// How much the stroke looks like the symbol: 1 the same .. about 0.85 something else; -1 when
// either is not drawable. Not symmetric: the stroke is made to suit the symbol.
float ShapeScore(const Shape& stroke, const Shape& symbol);

// Whether the two shapes look the same to every stroke, but for roundings. Two that are not
// drawable are not the same: no stroke is like them.
bool SameShape(const Shape& one, const Shape& other);

// The two actions of a plug-in that a stroke looks most like; index -1 and score -1 where there is
// none. Of two equally good ones the earlier counts.
struct ShapeRanking {
  int best = -1;
  float score = -1;
  int next = -1;
  float nextscore = -1;
};

ShapeRanking RankByShape(const GromlitPlugin* pin, const Stroke& stroke);

// The score that an action needs to run, for a tolerance of 1 (very low) to 5 (very high: whatever
// is most alike runs). Any other tolerance acts as 3.
float ShapeThreshold(int32_t tolerance);

// Index of the action of pin that the stroke looks most like, -1 when it looks enough like none.
int FindShape(const GromlitPlugin* pin, const Stroke& stroke, int32_t tolerance);

}  // namespace gromlit
