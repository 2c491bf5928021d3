// Template matching by angles with dynamic programming, for comparison: a yardstick in its plain
// form, written from the published idea alone.
//
// A stroke is what was drawn, scaled to the length 1: for each of its points how much of the length
// lies before it, and the direction from there to the next. Two strokes are compared by the
// cheapest way to pair their points in order. Between two pairs the pieces of both lie side by
// side, stretched to the same length; they cost the square of the difference of their directions
// for as long as they last, and the square of the difference of their lengths. Nothing is turned: a
// shape in another direction is another shape.
#pragma once

#include <span>
#include <vector>

#include "recognition/stroke.h"

namespace gromlit {

// Points nearer than this part of the length to the one before are left out: a stroke keeps about
// as many as a shape has (recognition/shape_match.h).
inline constexpr float kAngleSpacing = 1.0F / 32;

struct AngleTemplate {
  std::vector<float> at;         // part of the length before each point: 0 .. 1
  std::vector<float> direction;  // from each point to the next, in half turns: -1 .. 1
};

// Empty for a stroke without length.
AngleTemplate MakeAngleTemplate(const Stroke& stroke);

// 0 for the same; infinity when either is empty or no pairing is near enough.
float AngleDistance(const AngleTemplate& one, const AngleTemplate& other);

struct AngleResult {
  int index;  // -1 when none is near enough
  float distance;
};

// The template that is most like the stroke.
AngleResult RunAngleTemplates(std::span<const AngleTemplate> templates, const Stroke& stroke);

}  // namespace gromlit
