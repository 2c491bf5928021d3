#include "toolkit/bevel.h"

#include "display/colours.h"
#include "display/display.h"
#include "display/scale.h"

namespace gromlit {

BevelColours ColoursOfBevel(int up) {
  switch (up) {
    case kRaised:
      return {white.pixel, dgrey.pixel};
    case kSunken:
      return {dgrey.pixel, white.pixel};
    default:
      return {lgrey.pixel, lgrey.pixel};
  }
}

XSegment Segment(int x1, int y1, int x2, int y2) {
  return {static_cast<short>(x1), static_cast<short>(y1), static_cast<short>(x2),
          static_cast<short>(y2)};
}

void XDrawBevel(int up, Window win, GC gc, int x, int y, int w, int h) {
  const BevelColours colours = ColoursOfBevel(up);
  const int r = x + w - 1;
  const int b = y + h - 1;
  // The lines overlap on purpose: the inner left line begins at the top, and the lower lines are
  // drawn over the ends of the upper ones. That gives the corners their look.
  XSegment upper[] = {Segment(x, y, r, y), Segment(x, y, x, b), Segment(x + 1, y + 1, r, y + 1),
                      Segment(x + 1, y, x + 1, b)};
  XSegment lower[] = {Segment(x + 1, b, r, b), Segment(r, y + 1, r, b),
                      Segment(x + 2, b - 1, r, b - 1), Segment(r - 1, y + 2, r - 1, b - 1)};
  XSetForeground(dpy, gc, colours.upper);
  ScaledDrawSegments(win, gc, upper, 4);
  XSetForeground(dpy, gc, colours.lower);
  ScaledDrawSegments(win, gc, lower, 4);
}

void FillRectangle(Window win, GC gc, unsigned long pixel, int x, int y, int w, int h) {
  XSetForeground(dpy, gc, pixel);
  if (w <= 0 || h <= 0) return;
  ScaledFillRectangle(win, gc, x, y, w, h);
}

void DrawOutline(Window win, GC gc, unsigned long pixel, int x, int y, int w, int h) {
  XSetForeground(dpy, gc, pixel);
  if (w <= 0 || h <= 0) return;
  ScaledDrawRectangle(win, gc, x, y, w, h);
}

Inverting::Inverting(GC gc) : gc_(gc) {
  const Inversion inversion = InversionOfScreen(dpy, screen);
  XSetFunction(dpy, gc_, inversion.function);
  if (inversion.function == GXinvert) return;
  XGCValues values;
  // Known to Xlib, without a question to the server.
  XGetGCValues(dpy, gc_, GCForeground, &values);
  foreground_ = values.foreground;
  XSetForeground(dpy, gc_, inversion.foreground);
}

Inverting::~Inverting() {
  XSetFunction(dpy, gc_, GXcopy);
  if (foreground_) XSetForeground(dpy, gc_, *foreground_);
}

void InvertRectangle(Window win, GC gc, int x, int y, int w, int h) {
  if (w <= 0 || h <= 0) return;
  const Inverting inverting(gc);
  ScaledFillRectangle(win, gc, x, y, w, h);
}

void InvertOutline(Window win, GC gc, int x, int y, int w, int h) {
  if (w <= 0 || h <= 0) return;
  const Inverting inverting(gc);
  ScaledDrawRectangle(win, gc, x, y, w, h);
}

}  // namespace gromlit
