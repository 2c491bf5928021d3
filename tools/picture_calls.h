// The calls of gromlit-tool that make pictures. Each returns the exit status.
#pragma once

#include <string>

namespace gromlit {

// The icon of a symbol file as a PNG file of 32 x 32 pixels, or its stroke as an SVG file: what the
// ending of `output` says.
int DrawIcon(const std::string& symbol, const std::string& output);

// What a cheat sheet is to be.
struct SheetForm {
  bool part = false;  // HTML: the sections alone
  int paper = 0;      // SVG: this sheet of A4 paper, from 1; 0 for all in one drawing
};

// A cheat sheet of the plug-ins in an installation directory, HTML or SVG as the ending of `output`
// says. kNegative, and nothing written, when there are fewer sheets of paper.
int MakeSheet(const std::string& dir, const std::string& output, SheetForm form);

}  // namespace gromlit
