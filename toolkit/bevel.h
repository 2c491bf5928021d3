// Drawing that several widgets share: bevels, filled and inverted rectangles.
//
// Nothing here waits for the server. Coordinates and sizes are pixels in the window.
#pragma once

#include <X11/Xlib.h>

#include <optional>

namespace gromlit {

// What XDrawBevel draws.
inline constexpr int kSunken = 0;
inline constexpr int kRaised = 1;
inline constexpr int kFlat = 2;  // erases a bevel on the light grey ground

// Pixels of a bevel's lines: the upper and left ones, and the lower and right ones.
struct BevelColours {
  unsigned long upper;
  unsigned long lower;
};
BevelColours ColoursOfBevel(int up);

// A line from (x1, y1) to (x2, y2), both ends included, for XDrawSegments.
XSegment Segment(int x1, int y1, int x2, int y2);

// Draws a bevel two pixels wide just inside the rectangle. The foreground of gc is afterwards that
// of the bottom and right lines.
void XDrawBevel(int up, Window win, GC gc, int x, int y, int w, int h);

// Fills a rectangle and leaves `pixel` as the foreground of gc. Nothing is filled when w or h is
// not positive.
void FillRectangle(Window win, GC gc, unsigned long pixel, int x, int y, int w, int h);

// Draws the outline of a rectangle, w + 1 x h + 1 pixels as XDrawRectangle draws it, and leaves
// `pixel` as the foreground of gc. Nothing is drawn when w or h is not positive.
void DrawOutline(Window win, GC gc, unsigned long pixel, int x, int y, int w, int h);

// While it lives, everything drawn with gc inverts what is there; drawn twice it is gone again.
class Inverting {
 public:
  explicit Inverting(GC gc);
  ~Inverting();
  Inverting(const Inverting&) = delete;
  Inverting& operator=(const Inverting&) = delete;

 private:
  GC gc_;
  std::optional<unsigned long> foreground_;  // to be set again
};

// Inverts a filled rectangle (w x h pixels), and the outline of one (w + 1 x h + 1 pixels, as
// XDrawRectangle draws it). Nothing is drawn when w or h is not positive.
void InvertRectangle(Window win, GC gc, int x, int y, int w, int h);
void InvertOutline(Window win, GC gc, int x, int y, int w, int h);

}  // namespace gromlit
