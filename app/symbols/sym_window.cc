#include "app/symbols/sym_window.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <iterator>

#include "app/symbols/symbol_editor_record.h"
#include "display/display.h"
#include "display/scale.h"
#include "recognition/signature_match.h"
#include "recognition/symbol_icon.h"
#include "toolkit/bevel.h"
#include "toolkit/child_window.h"
#include "toolkit/menu.h"
#include "toolkit/pointer_hold.h"
#include "toolkit/release_watch.h"

namespace gromlit {
namespace {

constexpr int kPointSize = 8;    // of a corner point's square, pixels
constexpr int kCatchRadius = 3;  // pixels from a point that still count as on it
constexpr int kCellSize = 8;     // of a cell of the icon, grid line included
constexpr int kIconOrigin = 12;  // of the bitmap's grid
constexpr int kMarkLength = 7;   // of a corner mark's lines, pixels
constexpr int kMarkLow = kGridMin - 1;
constexpr int kMarkHigh = kGridMax + 1;
constexpr unsigned kAnyButton = Button1Mask | Button2Mask | Button3Mask | Button4Mask | Button5Mask;

XPoint Point(int x, int y) {
  return {static_cast<short>(x), static_cast<short>(y)};
}

int PointCount(const SymWindow* sw) {
  return std::min<int>(sw->sym->npoints, kMaxPoints);
}

// Where point k is drawn.
int PointX(const SymWindow* sw, int k) {
  return grid(sw->sym->x[k]);
}

int PointY(const SymWindow* sw, int k) {
  return grid(sw->sym->y[k]);
}

void StorePoint(SymWindow* sw, int k, int x, int y) {
  sw->sym->x[k] = static_cast<uint16_t>(x);
  sw->sym->y[k] = static_cast<uint16_t>(y);
  ForgetSignature(sw->sym);
}

void DrawPoint(SymWindow* sw, unsigned long pixel, int k) {
  FillRectangle(sw->window, sw->gc, pixel, PointX(sw, k) - kPointSize / 2,
                PointY(sw, k) - kPointSize / 2, kPointSize, kPointSize);
}

// The line from point k to the next one; none when either does not exist.
void DrawLineAfter(SymWindow* sw, unsigned long pixel, int k) {
  if (k < 1 || k >= PointCount(sw)) return;
  XSetForeground(dpy, sw->linegc, pixel);
  ScaledDrawLine(sw->window, sw->linegc, PointX(sw, k), PointY(sw, k), PointX(sw, k + 1),
                 PointY(sw, k + 1));
}

// Draws the rubber-band line, or takes it away again.
void InvertRubberBand(SymWindow* sw) {
  const int last = PointCount(sw);
  if (last < 1) return;
  const int x = PointX(sw, last);
  const int y = PointY(sw, last);
  if (x == sw->lastx && y == sw->lasty) return;
  const Inverting inverting(sw->linegc);
  ScaledDrawLine(sw->window, sw->linegc, x, y, sw->lastx, sw->lasty);
}

// Four angles that frame the square in which points can be.
void DrawCornerMarks(SymWindow* sw) {
  constexpr int kLow = kMarkLow;
  constexpr int kHigh = kMarkHigh;
  constexpr int kLowEnd = kLow - kMarkLength;
  constexpr int kHighEnd = kHigh + kMarkLength;
  XSegment marks[] = {
      Segment(kLow, kLow, kLow, kLowEnd),     Segment(kLow, kLow, kLowEnd, kLow),
      Segment(kHigh, kLowEnd, kHigh, kLow),   Segment(kHigh, kLow, kHighEnd, kLow),
      Segment(kLow, kHigh, kLow, kHighEnd),   Segment(kLowEnd, kHigh, kLow, kHigh),
      Segment(kHigh, kHigh, kHighEnd, kHigh), Segment(kHigh, kHigh, kHigh, kHighEnd),
  };
  XSetForeground(dpy, sw->gc, lgrey.pixel);
  ScaledDrawSegments(sw->window, sw->gc, marks, static_cast<int>(std::size(marks)));
}

// The points with their squares and the lines between them, on top of the marks, which a square in
// a corner touches.
void DrawVector(SymWindow* sw) {
  DrawCornerMarks(sw);
  const int npoints = PointCount(sw);
  if (npoints < 1) return;
  std::array<XRectangle, kMaxPoints> squares;
  std::array<XPoint, kMaxPoints> corners;
  for (int i = 0; i < npoints; i++) {
    const auto slot = static_cast<size_t>(i);
    corners[slot] = Point(PointX(sw, i + 1), PointY(sw, i + 1));
    squares[slot] = {static_cast<short>(corners[slot].x - kPointSize / 2),
                     static_cast<short>(corners[slot].y - kPointSize / 2), kPointSize, kPointSize};
  }
  XSetForeground(dpy, sw->gc, black.pixel);
  ScaledFillRectangles(sw->window, sw->gc, squares.data(), npoints);
  if (npoints < 2) return;
  XSetForeground(dpy, sw->linegc, black.pixel);
  ScaledDrawLines(sw->window, sw->linegc, corners.data(), npoints);
}

void ClearArea(SymWindow* sw) {
  XClearWindow(dpy, sw->window);
  XDrawBevel(kSunken, sw->window, sw->gc, 0, 0, sw->width, sw->height);
}

bool Near(int a, int b) {
  return std::abs(a - b) <= kCatchRadius;
}

// Whether a press or a motion at (x, y) is on point k: within the catch radius, or where the point
// would be put. A hand that clicks twice in one place gives the same point twice, although the
// point it has made may lie further from the pointer than the radius.
bool OnPoint(const SymWindow* sw, int k, int x, int y) {
  if (Near(x, PointX(sw, k)) && Near(y, PointY(sw, k))) return true;
  return grid(x) == PointX(sw, k) && grid(y) == PointY(sw, k);
}

// The first point under the pointer; 0 for none.
int PointAt(const SymWindow* sw, int x, int y) {
  for (int k = 1; k <= PointCount(sw); k++) {
    if (OnPoint(sw, k, x, y)) return k;
  }
  return 0;
}

// Shows by the cursor whether the pointer is on a point.
void Hover(SymWindow* sw, int x, int y) {
  const int k = PointAt(sw, x, y);
  if ((k != 0) != (sw->onpt != 0)) XDefineCursor(dpy, sw->window, k != 0 ? ptCursor : xCursor);
  sw->onpt = k;
}

// A new last point, from which the rubber-band line will run.
void AddPoint(SymWindow* sw, int x, int y) {
  const int k = PointCount(sw) + 1;
  sw->sym->npoints = static_cast<uint8_t>(k);
  StorePoint(sw, k, x, y);
  sw->lastx = x;
  sw->lasty = y;
  DrawPoint(sw, black.pixel, k);
  DrawLineAfter(sw, black.pixel, k - 1);
}

void PressWhileCapturing(SymWindow* sw, int x, int y) {
  const int last = PointCount(sw);
  if (OnPoint(sw, last, x, y)) {
    InvertRubberBand(sw);
    sw->lastx = PointX(sw, last);
    sw->lasty = PointY(sw, last);
    sw->owner->state = kSymComplete;
    Hover(sw, x, y);
    return;
  }
  if (last >= kMaxPoints) return;
  InvertRubberBand(sw);
  AddPoint(sw, grid(x), grid(y));
}

void EndDragging(SymWindow* sw) {
  if (sw->holding == 0) return;
  sw->holding = 0;
  ForgetRelease();
  if (!MenuHoldsPointer()) GivePointerBack();
  if (sw->owner->state == kSymDragging) sw->owner->state = kSymComplete;
}

// The window in which a point is dragged.
SymWindow* dragging = nullptr;

void LoseRelease() {
  EndDragging(dragging);
}

void GrabPoint(SymWindow* sw) {
  // A press that is read late must not take the pointer from a menu that was opened meanwhile.
  if (MenuHoldsPointer()) return;
  // Without the grab the release might never come here.
  if (!HoldPointer(sw->window, ButtonReleaseMask | PointerMotionMask)) return;
  sw->holding = 1;
  dragging = sw;
  AwaitRelease(LoseRelease);
  sw->owner->state = kSymDragging;
}

void ToggleBit(SymWindow* sw, int x, int y) {
  const int column = CellOf(x);
  const int row = CellOf(y);
  const bool set = iconGet(sw->sym, column, row) != 0;
  (set ? iconClr : iconSet)(sw->sym, column, row);
  FillRectangle(sw->window, sw->gc, set ? white.pixel : blue.pixel,
                kIconOrigin + 1 + kCellSize * column, kIconOrigin + 1 + kCellSize * row,
                kCellSize - 1, kCellSize - 1);
  DrawIconWindow(sw->owner->icon);
}

void MoveRubberBand(SymWindow* sw, int x, int y) {
  if (x == sw->lastx && y == sw->lasty) return;
  InvertRubberBand(sw);
  sw->lastx = x;
  sw->lasty = y;
  InvertRubberBand(sw);
}

void DragPoint(SymWindow* sw, int x, int y) {
  const int k = sw->onpt;
  if (k < 1 || k > PointCount(sw)) return;
  if (x == PointX(sw, k) && y == PointY(sw, k)) return;
  DrawLineAfter(sw, white.pixel, k - 1);
  DrawLineAfter(sw, white.pixel, k);
  DrawPoint(sw, white.pixel, k);
  StorePoint(sw, k, x, y);
  // Everything else that the erased lines and the square ran across comes back with it.
  DrawVector(sw);
}

}  // namespace

SymWindow* MakeSymWindow(Window parent, int x, int y) {
  auto* sw = new SymWindow{};
  sw->x = x;
  sw->y = y;
  sw->width = kSymWindowSize;
  sw->height = kSymWindowSize;
  XSetWindowAttributes more{};
  more.cursor = xCursor;
  sw->window = MakeChildWindow(
      parent, x, y, sw->width, sw->height, white.pixel,
      ExposureMask | ButtonPressMask | ButtonReleaseMask | PointerMotionMask, CWCursor, more);
  if (xCursor == None) UseCursor(sw->window, &xCursor);
  sw->gc = MakeWindowGC(sw->window);
  sw->linegc = MakeWindowGC(sw->window);
  sw->wobj = AllocWindowObj(sw->window, sw);
  On<Expose, DrawSymWindow>(sw);
  On<ButtonPress, SymWindowButtonPress>(sw);
  On<ButtonRelease, SymWindowButtonRelease>(sw);
  On<MotionNotify, SymWindowMotionNotify>(sw);
  return sw;
}

void ResetSymWindow(SymWindow* sw) {
  const int last = PointCount(sw);
  sw->onpt = 0;
  sw->lastx = last > 0 ? PointX(sw, last) : 0;
  sw->lasty = last > 0 ? PointY(sw, last) : 0;
  UseCursor(sw->window, &xCursor);
}

void DrawSymWindow(SymWindow* sw, XEvent*) {
  if (sw->owner->state >= kSymBitmap) {
    DrawSymAsBitmap(sw);
  } else {
    DrawSymAsVector(sw);
  }
}

void DrawSymAsVector(SymWindow* sw) {
  ClearArea(sw);
  DrawVector(sw);
  if (sw->owner->state == kSymCapturing) InvertRubberBand(sw);
}

void DrawSymAsBitmap(SymWindow* sw) {
  ClearArea(sw);
  constexpr int kEnd = kIconOrigin + kCellSize * kIconSize;
  XSegment lines[2 * (kIconSize + 1)];
  XSegment* line = lines;
  for (int at = kIconOrigin; at <= kEnd; at += kCellSize) {
    *line++ = Segment(at, kIconOrigin, at, kEnd);
    *line++ = Segment(kIconOrigin, at, kEnd, at);
  }
  XSetForeground(dpy, sw->gc, lgrey.pixel);
  ScaledDrawSegments(sw->window, sw->gc, lines, static_cast<int>(std::size(lines)));

  XRectangle squares[kIconSize * kIconSize];
  int set = 0;
  for (int row = 0; row < kIconSize; row++) {
    for (int column = 0; column < kIconSize; column++) {
      if (iconGet(sw->sym, column, row) == 0) continue;
      squares[set++] = {static_cast<short>(kIconOrigin + 1 + kCellSize * column),
                        static_cast<short>(kIconOrigin + 1 + kCellSize * row), kCellSize - 1,
                        kCellSize - 1};
    }
  }
  if (set == 0) return;
  XSetForeground(dpy, sw->gc, blue.pixel);
  ScaledFillRectangles(sw->window, sw->gc, squares, set);
}

void SymWindowButtonPress(SymWindow* sw, XEvent* event) {
  const int x = event->xbutton.x;
  const int y = event->xbutton.y;
  switch (sw->owner->state) {
    case kSymEmpty:
      sw->owner->state = kSymCapturing;
      AddPoint(sw, grid(x), grid(y));
      break;
    case kSymCapturing:
      PressWhileCapturing(sw, x, y);
      break;
    case kSymComplete:
      Hover(sw, x, y);  // the pointer may not have moved since the points came up
      if (sw->onpt != 0) GrabPoint(sw);
      break;
    case kSymBitmap:
      ToggleBit(sw, grid(x), grid(y));
      break;
    default:
      break;
  }
}

void SymWindowButtonRelease(SymWindow* sw, XEvent*) {
  EndDragging(sw);
}

void SymWindowMotionNotify(SymWindow* sw, XEvent* event) {
  const int x = event->xmotion.x;
  const int y = event->xmotion.y;
  switch (sw->owner->state) {
    case kSymCapturing:
      MoveRubberBand(sw, grid(x), grid(y));
      break;
    case kSymComplete:
      Hover(sw, x, y);
      break;
    case kSymDragging:
      if ((event->xmotion.state & kAnyButton) == 0) {
        // The window was hidden in between and the release went elsewhere.
        EndDragging(sw);
        Hover(sw, x, y);
        break;
      }
      DragPoint(sw, grid(x), grid(y));
      break;
    default:
      break;
  }
}

}  // namespace gromlit
