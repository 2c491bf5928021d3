// A symbol from strokes that were drawn: which of several stands for all, and a vector of few
// corners that still looks like it.
#pragma once

#include <span>

#include "core/gromlit.h"
#include "recognition/shape_match.h"
#include "recognition/stroke.h"

namespace gromlit {

// Index of the sample that all of them together look most like, the first of equals; -1 when none
// is drawable.
int NearestSample(std::span<const Shape> samples);

// Gives sym the stroke as its vector: fitted into the grid, its proportions kept, with as few
// corners (2..kMaxPoints) as leave the samples looking as much like the symbol as they look like
// the stroke itself, but for kSimplifyLoss on average, or with a mean score of kNearEnough. The
// icon is drawn from the vector, cached features are freed; name and spare stay. False, and nothing
// changed, when the stroke is not drawable.
bool SimplifyStroke(const Stroke& stroke, std::span<const Shape> samples, GromlitSymbol* sym);

// The same for a stroke that is its own and only sample.
bool SimplifyStroke(const Stroke& stroke, GromlitSymbol* sym);

inline constexpr float kSimplifyLoss = 0.001F;
inline constexpr float kNearEnough = 0.985F;  // nearer than two strokes of one hand mostly are

}  // namespace gromlit
