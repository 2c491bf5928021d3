// Strokes written as text: one "x y" pair of root-window pixels per line.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "recognition/stroke.h"

namespace gromlit {

// Reads a stroke. Points beyond the 256th are checked and dropped, as a live stroke drops them;
// lines of white space are skipped. False, with the line and what is wrong with it in *error, when
// a line is no pair of whole numbers or a coordinate does not fit into 16 signed bits.
bool ParseStroke(std::string_view text, Stroke* stroke, std::string* error);

// Reads strokes that one or more lines of white space separate and adds them to the list. Fails as
// ParseStroke does; what was read before the bad line has been added then.
bool ParseStrokes(std::string_view text, std::vector<Stroke>* strokes, std::string* error);

}  // namespace gromlit
