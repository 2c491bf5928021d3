// The recognition algorithms in their plainest form: slow, with every step spelt out, and sharing
// no code with recognition/. They are the judges that the fast forms have to agree with.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "core/gromlit.h"

namespace gromlit::literal {

struct Point {
  int x;
  int y;
  bool operator==(const Point&) const = default;
};

std::string StrokeSignature(const std::vector<Point>& points);

// The points of one segment, one per unit step along its longer axis.
std::vector<Point> VectorLine(Point from, Point to);

// The dense points of a symbol's vector, in cells.
std::vector<Point> SymVector(const GromlitSymbol& sym);

// The signature that the symbol's vector has.
std::string SymbolSignature(const GromlitSymbol& sym);

// The first ten positions of the drawn signature that may be transposed, ascending; none for
// signatures of one or two letters.
std::vector<int> SwapPositions(std::string_view drawn);

// The variant of `drawn` in which bit j of `combination` transposes the position that is j places
// before the last of `positions`.
void MakeVariant(const std::string& drawn, const std::vector<int>& positions, unsigned combination,
                 std::string* variant);

// Tries all variants of `drawn`, at most 1024.
bool SignatureMatch(const std::string& sym, const std::string& drawn);

// Index of the first symbol signature that `drawn` matches, or -1.
int FindAction(const std::vector<std::string>& syms, const std::string& drawn);

// Bresenham's line in an icon of its own: row r is element r, column c is bit c.
std::vector<uint32_t> IconLine(Point from, Point to);

}  // namespace gromlit::literal
