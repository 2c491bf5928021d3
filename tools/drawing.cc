#include "tools/drawing.h"

#include <png.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <vector>

#include "recognition/symbol_icon.h"

namespace gromlit {
namespace {

// In editor pixels, as the points are.
constexpr double kSide = kGridMin + kGridMax;  // the grid with its margins
constexpr double kLine = 16;
constexpr double kDot = 18;               // radius
constexpr double kArrow = 52;             // length; half as wide to each side
constexpr double kBeside = 38;            // between the ways of a stroke that goes back on itself
constexpr double kClear = 62;             // least distance of the arrow's tip from the dot
constexpr double kMargin = 30;            // for the dot, the arrow and the line's width
constexpr double kSpread = 0.6;           // half the arrow's width, of its length
constexpr const char* kMark = "#d9480f";  // dot and arrow: to be seen on white and on black

struct Point {
  double x = 0;
  double y = 0;
};

Point operator+(Point a, Point b) {
  return {a.x + b.x, a.y + b.y};
}
Point operator-(Point a, Point b) {
  return {a.x - b.x, a.y - b.y};
}
Point operator*(Point a, double f) {
  return {a.x * f, a.y * f};
}
double Length(Point a) {
  return std::hypot(a.x, a.y);
}

std::string Number(double v) {
  char text[32];
  std::snprintf(text, sizeof text, "%.4g", std::round(v * 10) / 10);
  return text;
}

std::string Pair(Point p) {
  return Number(p.x) + " " + Number(p.y);
}

// The vector's points, on the grid as the icon has them, none twice in a row.
std::vector<Point> Corners(const GromlitSymbol& sym) {
  std::vector<Point> corners;
  for (int k = 1; k <= sym.npoints; k++) {
    const Point p = {static_cast<double>(grid(sym.x[k])), static_cast<double>(grid(sym.y[k]))};
    if (corners.empty() || Length(p - corners.back()) > 0) corners.push_back(p);
  }
  return corners;
}

// Where the stroke turns right back, the rest of it is moved aside, to the side to which it turns
// afterwards, so that both ways are seen.
std::vector<Point> Unfolded(const std::vector<Point>& corners) {
  std::vector<Point> way;
  Point aside;
  for (size_t k = 0; k < corners.size(); k++) {
    way.push_back(corners[k] + aside);
    if (k == 0 || k + 1 == corners.size()) continue;
    const Point in = corners[k] - corners[k - 1];
    const Point out = corners[k + 1] - corners[k];
    const double cosine = (in.x * out.x + in.y * out.y) / Length(in) / Length(out);
    if (cosine > -0.97) continue;
    Point across = Point{-in.y, in.x} * (kBeside / Length(in));
    // Down or to the right unless the rest of the stroke lies on the other side.
    double side = across.x + across.y;
    for (size_t n = k + 2; n < corners.size(); n++) {
      const Point off = corners[n] - corners[k];
      const double distance = off.x * across.x + off.y * across.y;
      if (std::abs(distance) < 1) continue;
      side = distance;
      break;
    }
    if (side < 0) across = across * -1;
    aside = aside + across;
    way.push_back(corners[k] + aside);
  }
  return way;
}

// Takes so much of the way's length off its end.
void CutEnd(std::vector<Point>* way, double length) {
  const auto last = [way] { return way->back() - (*way)[way->size() - 2]; };
  while (way->size() > 2 && Length(last()) <= length) {
    length -= Length(last());
    way->pop_back();
  }
  way->back() = way->back() - last() * std::min(length / Length(last()), 0.8);
}

std::string Element(const std::string& contents, double side, const std::string& place,
                    const std::string& view) {
  return "<svg width=\"" + Number(side) + "\" height=\"" + Number(side) + "\"" +
         (place.empty() ? "" : " " + place) + " viewBox=\"" + view + "\">" + contents + "</svg>";
}

std::string IconDrawing(const GromlitSymbol& sym, double side, const std::string& place) {
  std::string squares;
  for (int row = 0; row < kIconSize; row++)
    for (int column = 0; column < kIconSize; column++)
      if (iconGet(&sym, column, row) != 0)
        squares += "M" + std::to_string(column) + " " + std::to_string(row) + "h1v1h-1z";
  return Element("<path fill=\"currentColor\" d=\"" + squares + "\"/>", side, place, "0 0 32 32");
}

}  // namespace

std::string SymbolDrawing(const GromlitSymbol& sym, double side, const std::string& place) {
  const std::vector<Point> corners = Corners(sym);
  if (corners.size() < 2) return IconDrawing(sym, side, place);
  std::vector<Point> way = Unfolded(corners);
  // The arrow of a stroke that ends where it began would lie on the dot.
  if (const double apart = Length(way.back() - way.front()); apart < kClear)
    CutEnd(&way, kClear - apart);
  // The line ends inside the arrow, which points as the way goes over the arrow's length: the last
  // piece of a curve may be short.
  const Point tip = way.back();
  CutEnd(&way, kArrow * 0.7);
  const Point last = tip - way.back();
  const Point ahead = last * (1 / Length(last));
  const Point across = {-ahead.y, ahead.x};
  const Point base = tip - ahead * kArrow;
  const std::string arrow = "M" + Pair(tip) + "L" + Pair(base + across * (kArrow * kSpread)) + "L" +
                            Pair(base - across * (kArrow * kSpread)) + "Z";
  std::string line;
  Point low = tip;
  Point high = tip;
  for (const Point& p : way) {
    line += (line.empty() ? "M" : "L") + Pair(p);
    low = {std::min(low.x, p.x), std::min(low.y, p.y)};
    high = {std::max(high.x, p.x), std::max(high.y, p.y)};
  }
  // Centred; larger than the grid where the stroke has been unfolded beyond it.
  const double extent =
      std::max({kSide, high.x - low.x + 2 * kMargin, high.y - low.y + 2 * kMargin});
  const Point middle = (low + high) * 0.5;
  const std::string view = Pair({middle.x - extent / 2, middle.y - extent / 2}) + " " +
                           Number(extent) + " " + Number(extent);
  return Element("<path fill=\"none\" stroke=\"currentColor\" stroke-width=\"" + Number(kLine) +
                     "\" stroke-linejoin=\"round\" stroke-linecap=\"round\" d=\"" + line +
                     "\"/><circle fill=\"" + kMark + "\" cx=\"" + Number(way.front().x) +
                     "\" cy=\"" + Number(way.front().y) + "\" r=\"" + Number(kDot) +
                     "\"/><path fill=\"" + kMark + "\" d=\"" + arrow + "\"/>",
                 side, place, view);
}

std::string IconPng(const GromlitSymbol& sym) {
  std::vector<uint8_t> pixels;
  for (int row = 0; row < kIconSize; row++)
    for (int column = 0; column < kIconSize; column++)
      pixels.push_back(iconGet(&sym, column, row) != 0 ? 0 : 255);
  png_image image{};
  image.version = PNG_IMAGE_VERSION;
  image.width = kIconSize;
  image.height = kIconSize;
  image.format = PNG_FORMAT_GRAY;
  png_alloc_size_t size = PNG_IMAGE_PNG_SIZE_MAX(image);
  std::string file(size, '\0');
  if (png_image_write_to_memory(&image, file.data(), &size, 0, pixels.data(), kIconSize, nullptr) ==
      0)
    return "";
  file.resize(size);
  return file;
}

}  // namespace gromlit
