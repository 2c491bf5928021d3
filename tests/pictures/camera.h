// Pictures of parts of the screen: taken, put together, kept as PNG files.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/e2e/front_end.h"

namespace gromlit::testing {

// What is on the screen there now; the part of `area` that lies on the screen.
Picture Take(Display* display, const Box& area);

// The pictures in rows of `columns`, their top left corners aligned, `gap` pixels of white between
// them.
Picture Sheet(const std::vector<Picture>& pictures, int columns, int gap);

// Writes a PNG file with a palette and without a date, so that equal pictures give equal files.
// Pictures of more than 256 colours lose the finest shades. Fails the test when it cannot.
void SavePicture(const Picture& picture, const std::string& path);

}  // namespace gromlit::testing
