#include "recognition/symbol_icon.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <numbers>
#include <utility>

namespace gromlit {

namespace {

constexpr uint32_t ColumnBit(int x) {
  return uint32_t{1} << (static_cast<unsigned>(x) & 31U);
}

}  // namespace

int CellOf(int v) {
  if (v < kGridMin || v > kGridMax) v = grid(v);
  return (v >> 3) - 2;
}

int iconGet(const GromlitSymbol* sym, int x, int y) {
  return (sym->icon[y] & ColumnBit(x)) != 0 ? 1 : 0;
}

void iconSet(GromlitSymbol* sym, int x, int y) {
  sym->icon[y] |= ColumnBit(x);
}

void iconClr(GromlitSymbol* sym, int x, int y) {
  sym->icon[y] &= ~ColumnBit(x);
}

int grid(int v) {
  // Clamping first keeps every int clear of overflow; both limits are multiples of 8 themselves.
  return (std::clamp(v, kGridMin, kGridMax) + 4) & ~7;
}

void IconLine(GromlitSymbol* sym, int x1, int y1, int x2, int y2) {
  // One walk serves both slopes: `major` runs upwards in unit steps, `minor` follows.
  const bool steep = std::abs(y2 - y1) > std::abs(x2 - x1);
  int major = steep ? y1 : x1;
  int minor = steep ? x1 : y1;
  int majorEnd = steep ? y2 : x2;
  int minorEnd = steep ? x2 : y2;
  // Starting from the lower end whichever way the line was drawn makes both ways set the same bits.
  if (major > majorEnd) {
    std::swap(major, majorEnd);
    std::swap(minor, minorEnd);
  }
  const int dmajor = majorEnd - major;
  const int dminor = std::abs(minorEnd - minor);
  const int step = minorEnd > minor ? 1 : -1;
  const auto plot = [&] { steep ? iconSet(sym, minor, major) : iconSet(sym, major, minor); };

  int d = 2 * dminor - dmajor;
  plot();
  while (major < majorEnd) {
    ++major;
    if (d >= 0) {
      d += 2 * (dminor - dmajor);
      minor += step;
    } else {
      d += 2 * dminor;
    }
    plot();
  }
}

void VectorToBitmap(GromlitSymbol* sym) {
  std::fill_n(sym->icon, kIconSize, 0U);
  const int npoints = std::min<int>(sym->npoints, kMaxPoints);
  if (npoints < 1) return;
  int x = CellOf(sym->x[1]);
  int y = CellOf(sym->y[1]);
  for (int k = 2; k <= npoints; ++k) {
    const int nextx = CellOf(sym->x[k]);
    const int nexty = CellOf(sym->y[k]);
    IconLine(sym, x, y, nextx, nexty);
    x = nextx;
    y = nexty;
  }
}

void AddArrowHead(GromlitSymbol* sym) {
  constexpr int kAway = 4;  // cells over which the way into the tip is judged: curves bend
  constexpr double kLength = 6;
  constexpr double kSpread = 35 * std::numbers::pi / 180;
  const int npoints = std::min<int>(sym->npoints, kMaxPoints);
  if (npoints < 2) return;
  const int x = CellOf(sym->x[npoints]);
  const int y = CellOf(sym->y[npoints]);
  int k = npoints - 1;
  const auto away = [&] { return std::hypot(x - CellOf(sym->x[k]), y - CellOf(sym->y[k])); };
  while (k > 1 && away() < kAway) --k;
  if (away() == 0) return;
  const double back = std::atan2(CellOf(sym->y[k]) - y, CellOf(sym->x[k]) - x);
  const auto inside = [](double v) {
    return std::clamp(static_cast<int>(std::lround(v)), 0, kIconSize - 1);
  };
  for (const double side : {-kSpread, kSpread}) {
    IconLine(sym, x, y, inside(x + kLength * std::cos(back + side)),
             inside(y + kLength * std::sin(back + side)));
  }
}

}  // namespace gromlit
