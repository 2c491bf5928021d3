#include "tests/pictures/camera.h"

#include <algorithm>
#include <fstream>

namespace gromlit::testing {

Picture Take(Display* display, const Box& area) {
  return TakeScreen(display, area.x, area.y, area.width, area.height);
}

Picture Sheet(const std::vector<Picture>& pictures, int columns, int gap) {
  const auto count = static_cast<int>(pictures.size());
  const int rows = (count + columns - 1) / columns;
  std::vector<int> widths(static_cast<size_t>(columns), 0);
  std::vector<int> heights(static_cast<size_t>(rows), 0);
  for (int i = 0; i < count; i++) {
    int& width = widths[static_cast<size_t>(i % columns)];
    int& height = heights[static_cast<size_t>(i / columns)];
    width = std::max(width, pictures[static_cast<size_t>(i)].width);
    height = std::max(height, pictures[static_cast<size_t>(i)].height);
  }
  Picture sheet;
  for (const int width : widths) sheet.width += width + gap;
  for (const int height : heights) sheet.height += height + gap;
  sheet.width -= gap;
  sheet.height -= gap;
  constexpr unsigned long kWhite = 0xffffff;
  sheet.pixels.assign(static_cast<size_t>(sheet.width) * static_cast<size_t>(sheet.height), kWhite);
  int top = 0;
  for (int i = 0; i < count; i++) {
    const int column = i % columns;
    int left = 0;
    for (int k = 0; k < column; k++) left += widths[static_cast<size_t>(k)] + gap;
    const Picture& picture = pictures[static_cast<size_t>(i)];
    for (int y = 0; y < picture.height; y++) {
      const auto from = picture.pixels.begin() + static_cast<long>(y) * picture.width;
      std::copy(from, from + picture.width,
                sheet.pixels.begin() + static_cast<long>(top + y) * sheet.width + left);
    }
    if (column == columns - 1) top += heights[static_cast<size_t>(i / columns)] + gap;
  }
  return sheet;
}

void SavePicture(const Picture& picture, const std::string& path) {
  const std::string pnm = path + ".ppm";
  {
    std::ofstream out(pnm, std::ios::binary);
    out << "P6\n" << picture.width << " " << picture.height << "\n255\n";
    for (const unsigned long pixel : picture.pixels) {
      out.put(static_cast<char>(pixel >> 16 & 0xff));
      out.put(static_cast<char>(pixel >> 8 & 0xff));
      out.put(static_cast<char>(pixel & 0xff));
    }
  }
  Process convert({"convert", pnm, "+dither", "-colors", "256", "-strip", "-define",
                   "png:compression-level=9", "-define", "png:compression-filter=0", "-define",
                   "png:include-chunk=none", "PNG8:" + path});
  EXPECT_EQ(convert.Wait(std::chrono::seconds(60)), 0) << path;
  std::remove(pnm.c_str());
}

}  // namespace gromlit::testing
