#include "display/colours.h"

#include <X11/Xutil.h>

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdlib>
#include <vector>

namespace gromlit {
namespace {

// What a cell of the map can be to this program.
enum class Sharing { kUntried, kShared, kPrivate };

struct Cell {
  XColor colour;
  Sharing sharing;
};

constexpr int kMaxCells = 4096;

// Whether the pixel is a number of a cell, or of one cell for each channel, that clients may
// change.
bool IsMapped(const Visual* visual) {
  return visual->c_class == PseudoColor || visual->c_class == GrayScale ||
         visual->c_class == DirectColor;
}

int CellsOf(const Visual* visual) {
  return std::clamp(visual->map_entries, 0, kMaxCells);
}

// How far apart two colours look; the eye sees green best and blue least.
long Distance(const XColor& a, const XColor& b) {
  const auto part = [](int one, int other, long weight) {
    const long apart = (one - other) / 256;
    return weight * apart * apart;
  };
  return part(a.red, b.red, 3) + part(a.green, b.green, 6) + part(a.blue, b.blue, 1);
}

// The map as it was when it was first found full; empty before that.
std::vector<Cell>& KnownCells() {
  static auto* cells = new std::vector<Cell>;
  return *cells;
}

std::vector<Cell>& CellsOfMap(Display* display, int screen) {
  std::vector<Cell>& cells = KnownCells();
  if (!cells.empty()) return cells;
  std::vector<XColor> colours(static_cast<size_t>(CellsOf(DefaultVisual(display, screen))));
  for (size_t i = 0; i < colours.size(); i++) colours[i].pixel = i;
  if (!colours.empty())
    XQueryColors(display, DefaultColormap(display, screen), colours.data(),
                 static_cast<int>(colours.size()));
  for (const XColor& colour : colours) cells.push_back({colour, Sharing::kUntried});
  return cells;
}

// A cell that another client keeps to itself may get any colour at any time; the server gives only
// the others. Each is asked for once.
bool IsShared(Display* display, int screen, Cell* cell) {
  if (cell->sharing == Sharing::kUntried) {
    XColor same = cell->colour;
    cell->sharing = XAllocColor(display, DefaultColormap(display, screen), &same) != 0
                        ? Sharing::kShared
                        : Sharing::kPrivate;
    if (cell->sharing == Sharing::kShared) cell->colour.pixel = same.pixel;
  }
  return cell->sharing == Sharing::kShared;
}

unsigned long BlackOrWhite(Display* display, int screen, const XColor& wanted) {
  const XColor black{};
  XColor white{};
  white.red = white.green = white.blue = 0xffff;
  return Distance(wanted, black) < Distance(wanted, white) ? BlackPixel(display, screen)
                                                           : WhitePixel(display, screen);
}

unsigned long NearestCell(Display* display, int screen, const XColor& wanted) {
  std::vector<Cell*> cells;
  for (Cell& cell : CellsOfMap(display, screen)) cells.push_back(&cell);
  std::ranges::stable_sort(cells, {},
                           [&](const Cell* cell) { return Distance(wanted, cell->colour); });
  const auto found =
      std::ranges::find_if(cells, [&](Cell* cell) { return IsShared(display, screen, cell); });
  return found != cells.end() ? (*found)->colour.pixel : BlackOrWhite(display, screen, wanted);
}

// Of a map with a cell for each channel: the nearest of each.
unsigned long NearestMix(Display* display, int screen, const XColor& wanted) {
  const Visual* visual = DefaultVisual(display, screen);
  const auto nearest = [&](unsigned long mask, int entries, unsigned short part,
                           unsigned short XColor::*channel) {
    const int most = std::min(entries, static_cast<int>(mask >> std::countr_zero(mask)) + 1);
    std::vector<XColor> cells(static_cast<size_t>(most));
    for (size_t i = 0; i < cells.size(); i++) cells[i].pixel = i << std::countr_zero(mask);
    XQueryColors(display, DefaultColormap(display, screen), cells.data(), most);
    return std::ranges::min(cells, {},
                            [&](const XColor& cell) { return std::abs(cell.*channel - part); }).*
           channel;
  };
  XColor mix = wanted;
  const int entries = CellsOf(visual);
  if (entries == 0 || visual->red_mask == 0 || visual->green_mask == 0 || visual->blue_mask == 0)
    return BlackOrWhite(display, screen, wanted);
  mix.red = nearest(visual->red_mask, entries, wanted.red, &XColor::red);
  mix.green = nearest(visual->green_mask, entries, wanted.green, &XColor::green);
  mix.blue = nearest(visual->blue_mask, entries, wanted.blue, &XColor::blue);
  return XAllocColor(display, DefaultColormap(display, screen), &mix) != 0
             ? mix.pixel
             : BlackOrWhite(display, screen, wanted);
}

}  // namespace

void AllocateColour(Display* display, int screen, XColor* colour) {
  XColor given = *colour;
  if (XAllocColor(display, DefaultColormap(display, screen), &given) != 0) {
    *colour = given;
    return;
  }
  colour->pixel = DefaultVisual(display, screen)->c_class == DirectColor
                      ? NearestMix(display, screen, *colour)
                      : NearestCell(display, screen, *colour);
}

void ForgetColourMap() {
  KnownCells().clear();
}

unsigned long RgbOfPixel(Display* display, int screen, unsigned long pixel) {
  const Visual* visual = DefaultVisual(display, screen);
  unsigned long rgb = 0;
  for (const unsigned long mask : {visual->red_mask, visual->green_mask, visual->blue_mask}) {
    const int shift = std::countr_zero(mask);
    const unsigned long share = mask != 0 ? ((pixel & mask) >> shift) * 255 / (mask >> shift) : 0;
    rgb = rgb << 8 | share;
  }
  return rgb;
}

int BackingStoreOfScreen(Display* display, int screen) {
  // Servers keep windows by drawing them elsewhere and composing them, for which they take the
  // nearest of the colours that the map had when they started: perhaps black for light grey.
  return IsMapped(DefaultVisual(display, screen)) ? NotUseful : WhenMapped;
}

Inversion InversionOfScreen(Display* display, int screen) {
  // The opposite number is that of any cell, perhaps one of the same colour. Black and white at
  // least are to become each other.
  if (IsMapped(DefaultVisual(display, screen)))
    return {GXxor, BlackPixel(display, screen) ^ WhitePixel(display, screen)};
  return {GXinvert, 0};
}

}  // namespace gromlit
