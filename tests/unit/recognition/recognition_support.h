// What the recognition tests share: seeds, symbols from cells, and strokes drawn by people.
#pragma once

#include <cstdint>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "core/gromlit.h"
#include "tests/support/built.h"
#include "tests/unit/recognition/literal.h"

namespace gromlit {

using testing::Sanitized;

// A seed for a random test: GROMLIT_TEST_SEED when it is set, else a new one. Printed either way.
uint64_t TestSeed();

// The product's signature of a point list.
std::string Signature(const std::vector<literal::Point>& points);

// An unnamed symbol with corners at the given cells.
GromlitSymbol SymbolOfCells(const std::vector<literal::Point>& cells);

struct RecordedStroke {
  std::string person;
  std::string speed;
  std::string gesture;
  std::vector<literal::Point> points;
};

// The recorded strokes (tab-separated, gzip) from $GROMLIT_STROKES or from shared/data beside the
// project. Where there are none, the result is empty and `missing` says where they were sought.
std::vector<RecordedStroke> ReadRecordedStrokes(std::string* missing);

// The signature of a stroke as the capture would take it: its first 256 points.
std::string LiveSignature(const RecordedStroke& stroke);

// A symbol of at most 64 corners that follows the stroke, scaled into the editor's grid.
GromlitSymbol SymbolOfStroke(const RecordedStroke& stroke);

}  // namespace gromlit
