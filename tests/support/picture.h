// Pictures of the screen: drawn, compared, kept as PNG files without a library.
#pragma once

#include <algorithm>
#include <iosfwd>
#include <string>
#include <vector>

namespace gromlit::testing {

// A rectangle of pixels, 0xrrggbb each: what was seen, or what should be. Prints as one letter per
// pixel, for failure messages.
struct Picture {
  int width = 0;
  int height = 0;
  std::vector<unsigned long> pixels;  // row by row

  Picture() = default;
  Picture(int w, int h, unsigned long fill)
      : width(w), height(h), pixels(static_cast<size_t>(w) * static_cast<size_t>(h), fill) {}
  unsigned long& At(int x, int y) { return pixels[Place(x, y)]; }
  unsigned long At(int x, int y) const { return pixels[Place(x, y)]; }
  size_t Place(int x, int y) const {
    return static_cast<size_t>(y) * static_cast<size_t>(width) + static_cast<size_t>(x);
  }
  // Draws a horizontal or vertical line from one end to the other, cut at the borders.
  void Line(unsigned long pixel, int x1, int y1, int x2, int y2) {
    for (int y = std::min(y1, y2); y <= std::max(y1, y2); y++) {
      for (int x = std::min(x1, x2); x <= std::max(x1, x2); x++) {
        if (x >= 0 && x < width && y >= 0 && y < height) At(x, y) = pixel;
      }
    }
  }
  void Fill(unsigned long pixel, int x, int y, int w, int h) {
    for (int row = y; row < y + h; row++) Line(pixel, x, row, x + w - 1, row);
  }
  // A bevel by its eight lines, one after the other.
  void Bevel(unsigned long top, unsigned long bottom, int x, int y, int w, int h) {
    const int r = x + w - 1;
    const int b = y + h - 1;
    Line(top, x, y, r, y);
    Line(top, x, y, x, b);
    Line(top, x + 1, y + 1, r, y + 1);
    Line(top, x + 1, y, x + 1, b);
    Line(bottom, x + 1, b, r, b);
    Line(bottom, r, y + 1, r, b);
    Line(bottom, x + 2, b - 1, r, b - 1);
    Line(bottom, r - 1, y + 2, r - 1, b - 1);
  }
  // Number of pixels of this colour in a rectangle.
  int Count(unsigned long pixel, int x, int y, int w, int h) const {
    int n = 0;
    for (int row = y; row < y + h; row++) {
      for (int column = x; column < x + w; column++) n += At(column, row) == pixel ? 1 : 0;
    }
    return n;
  }
  bool operator==(const Picture&) const = default;
};

std::ostream& operator<<(std::ostream& out, const Picture& picture);

// The bytes of a PNG file (ISO/IEC 15948): true colour, every row as its difference from the row
// above, and of the compression (RFC 1951) only runs of one byte. Screens, which are mostly plain,
// become small by that. A picture without pixels gives none.
std::string PngOf(const Picture& picture);

}  // namespace gromlit::testing
