// Protractor, for comparison: the nearest-neighbour recogniser of Y. Li, "Protractor: a fast and
// accurate gesture recognizer", CHI 2010, rebuilt from the paper, with 16 samples a stroke and
// orientation-sensitive (a stroke is turned to the nearest of eight base directions first).
#pragma once

#include <array>
#include <span>

#include "recognition/stroke.h"

namespace gromlit {

inline constexpr int kProtractorPoints = 16;

using ProtractorVector = std::array<float, size_t{2} * kProtractorPoints>;

ProtractorVector Vectorize(const Stroke& stroke);

// Cosine of two vectors at the best rotation: 1 the same .. -1.
float OptimalCosine(const ProtractorVector& symbol, const ProtractorVector& stroke);

struct ProtractorResult {
  int index;
  float cosine;
};

// The template that is most like the stroke; index -1 without templates.
ProtractorResult RunProtractor(std::span<const ProtractorVector> symbols, const Stroke& stroke);

}  // namespace gromlit
