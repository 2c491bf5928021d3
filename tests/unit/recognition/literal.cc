#include "tests/unit/recognition/literal.h"

#include <cstdlib>
#include <utility>

namespace gromlit::literal {

namespace {

bool Crosses(int previous, int current, int line) {
  return (previous < line && current >= line) || (current < line && previous >= line);
}

int Cell(int v) {
  if (v < 16) v = 16;
  if (v > 264) v = 264;
  return (v >> 3) - 2;
}

bool MaySwap(char first, char second) {
  if (first == 'a' && second == 'b') return false;
  if (first == 'b' && second == 'a') return false;
  if (first == 'c' && second == 'd') return false;
  if (first == 'd' && second == 'c') return false;
  return true;
}

}  // namespace

std::string StrokeSignature(const std::vector<Point>& points) {
  int top = 65535;
  int left = 65535;
  int bottom = 0;
  int right = 0;
  for (const Point& p : points) {
    if (p.y < top) top = p.y;
    if (p.y > bottom) bottom = p.y;
    if (p.x < left) left = p.x;
    if (p.x > right) right = p.x;
  }
  if (points.empty()) return "";
  const int X1 = left + (right - left) / 3;
  const int X2 = X1 + (right - left) / 3;
  const int Y1 = top + (bottom - top) / 3;
  const int Y2 = top + 2 * ((bottom - top) / 3);
  const int iWidth = right - left + 1;
  const int iHeight = bottom - top + 1;
  const Point first = points.front();
  const Point last = points.back();

  const double vert = static_cast<double>(iWidth) / static_cast<double>(iHeight);
  if (vert < 0.25) {
    if (first.y < Y1) {
      if (last.y >= Y1) return "cccc";
      return "ccc-";
    }
    if (first.y > Y2) {
      if (last.y <= Y2) return "dddd";
      return "ddd-";
    }
    return "";
  }
  const double horz = static_cast<double>(iHeight) / static_cast<double>(iWidth);
  if (horz < 0.25) {
    if (first.x < X1) {
      if (last.x >= X1) return "aaaa";
      return "aaa-";
    }
    if (first.x > X2) {
      if (last.x <= X2) return "bbbb";
      return "bbb-";
    }
    return "";
  }
  std::string signature;
  Point prev = first;
  for (size_t i = 1; i < points.size(); ++i) {
    const Point current = points[i];
    if (Crosses(prev.y, current.y, Y1)) signature += 'a';
    if (Crosses(prev.y, current.y, Y2)) signature += 'b';
    if (Crosses(prev.x, current.x, X1)) signature += 'c';
    if (Crosses(prev.x, current.x, X2)) signature += 'd';
    prev = current;
  }
  return signature;
}

std::vector<Point> VectorLine(Point from, Point to) {
  std::vector<Point> points;
  const double dx = static_cast<double>(to.x) - static_cast<double>(from.x);
  const double dy = static_cast<double>(to.y) - static_cast<double>(from.y);
  if (std::abs(static_cast<int>(dx)) >= std::abs(static_cast<int>(dy))) {
    double slope = dx == 0 ? 0 : dy / dx;
    if (slope < 0) slope = -slope;
    double y = from.y;
    int yInt = from.y;
    int x = from.x;
    while (x != to.x) {
      yInt = static_cast<int>(y);
      points.push_back({x, yInt});
      if (to.y > from.y) {
        y = y + slope;
      } else {
        y = y - slope;
      }
      if (to.x > from.x) {
        x = x + 1;
      } else {
        x = x - 1;
      }
    }
    points.push_back({to.x, yInt});
  } else {
    double slope = dx / dy;
    if (slope < 0) slope = -slope;
    double x = from.x;
    int xInt = from.x;
    int y = from.y;
    while (y != to.y) {
      xInt = static_cast<int>(x);
      points.push_back({xInt, y});
      if (to.x > from.x) {
        x = x + slope;
      } else {
        x = x - slope;
      }
      if (to.y > from.y) {
        y = y + 1;
      } else {
        y = y - 1;
      }
    }
    points.push_back({xInt, to.y});
  }
  return points;
}

std::vector<Point> SymVector(const GromlitSymbol& sym) {
  std::vector<Point> all;
  if (sym.npoints < 1) return all;
  Point previous = {Cell(sym.x[1]), Cell(sym.y[1])};
  for (int k = 2; k <= sym.npoints; ++k) {
    const Point next = {Cell(sym.x[k]), Cell(sym.y[k])};
    for (const Point& p : VectorLine(previous, next)) all.push_back(p);
    previous = next;
  }
  return all;
}

std::string SymbolSignature(const GromlitSymbol& sym) {
  return StrokeSignature(SymVector(sym));
}

std::vector<int> SwapPositions(std::string_view drawn) {
  std::vector<int> positions;
  if (drawn.size() <= 2) return positions;
  for (size_t n = 0; n + 2 <= drawn.size(); ++n) {
    if (MaySwap(drawn[n], drawn[n + 1])) positions.push_back(static_cast<int>(n));
  }
  if (positions.size() > 10) positions.resize(10);
  return positions;
}

void MakeVariant(const std::string& drawn, const std::vector<int>& positions, unsigned combination,
                 std::string* variant) {
  *variant = drawn;
  const size_t nb = positions.size();
  for (size_t j = 0; j < nb; ++j) {
    if ((combination & (1U << j)) == 0) continue;
    const auto p = static_cast<size_t>(positions[nb - 1 - j]);
    std::swap((*variant)[p], (*variant)[p + 1]);
  }
}

bool SignatureMatch(const std::string& sym, const std::string& drawn) {
  if (sym == drawn) return true;
  if (drawn.size() <= 2) return false;
  const std::vector<int> positions = SwapPositions(drawn);
  const unsigned combinations = 1U << positions.size();
  std::string variant;
  for (unsigned combination = 0; combination < combinations; ++combination) {
    MakeVariant(drawn, positions, combination, &variant);
    if (sym == variant) return true;
  }
  return false;
}

int FindAction(const std::vector<std::string>& syms, const std::string& drawn) {
  for (size_t i = 0; i < syms.size(); ++i) {
    if (SignatureMatch(syms[i], drawn)) return static_cast<int>(i);
  }
  return -1;
}

std::vector<uint32_t> IconLine(Point from, Point to) {
  std::vector<uint32_t> rows(kIconSize, 0);
  const auto set = [&](int x, int y) { rows[static_cast<size_t>(y)] |= 1U << x; };
  const int dx = std::abs(to.x - from.x);
  const int dy = std::abs(to.y - from.y);
  if (dy > dx) {
    Point start = from;
    Point end = to;
    if (to.y < from.y) {
      start = to;
      end = from;
    }
    int xstep = -1;
    if (end.x > start.x) xstep = 1;
    int d = 2 * dx - dy;
    int x = start.x;
    int y = start.y;
    set(x, y);
    while (y != end.y) {
      y += 1;
      if (d >= 0) {
        d += 2 * (dx - dy);
        x += xstep;
      } else {
        d += 2 * dx;
      }
      set(x, y);
    }
  } else {
    Point start = from;
    Point end = to;
    if (to.x < from.x) {
      start = to;
      end = from;
    }
    int ystep = -1;
    if (end.y > start.y) ystep = 1;
    int d = 2 * dy - dx;
    int x = start.x;
    int y = start.y;
    set(x, y);
    while (x != end.x) {
      x += 1;
      if (d >= 0) {
        d += 2 * (dy - dx);
        y += ystep;
      } else {
        d += 2 * dy;
      }
      set(x, y);
    }
  }
  return rows;
}

}  // namespace gromlit::literal
