// Whether one action leaves anything for another one behind it.
#pragma once

#include <string_view>

namespace gromlit {

// True when every drawn signature that matches the symbol signature `later` matches `earlier` too,
// so that an action with `later` never runs behind one with `earlier`.
//
// Equal signatures are the clear case, but not the only one: the drawn "aca" matches the symbols
// "aca", "caa" and "aac", and a symbol "caa" takes every stroke that "aac" would take. One match of
// the two signatures with each other is necessary and not enough, because the variants are made of
// the drawn signature and each drawn signature has other ones. So all drawn signatures are looked
// at, letter by letter, by following both matches in step: see the source.
//
// Only those count that a stroke can give: a pen crosses two parallel lines in the order in which
// they lie, and "-" occurs in the fixed signatures of straight strokes only. Where in doubt a
// signature counts as possible, so a true answer can be trusted.
bool Shadows(std::string_view earlier, std::string_view later);

// False when no stroke, whatever its points, can have this signature. Exported for the tests, which
// judge Shadows by trying all signatures of a length.
bool CanBeDrawn(std::string_view signature);

}  // namespace gromlit
