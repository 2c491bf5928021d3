#include "display/scale.h"

#include <algorithm>
#include <array>
#include <vector>

#include "display/display.h"

namespace gromlit {
namespace {

int now = 1;

short Place(int logical) {
  return static_cast<short>(Device(logical));
}

unsigned short Extent(int logical) {
  return static_cast<unsigned short>(std::max(Device(logical), 0));
}

unsigned Size(int logical) {
  return static_cast<unsigned>(Device(std::max(logical, 1)));
}

XRectangle Box(int x, int y, int w, int h) {
  return {Place(x), Place(y), Extent(w), Extent(h)};
}

bool AlongAxis(int x1, int y1, int x2, int y2) {
  return x1 == x2 || y1 == y2;
}

// The pixels of a line along an axis, both ends included.
XRectangle LineBox(int x1, int y1, int x2, int y2) {
  return Box(std::min(x1, x2), std::min(y1, y2), std::max(x1, x2) - std::min(x1, x2) + 1,
             std::max(y1, y2) - std::min(y1, y2) + 1);
}

// From the middle of one square of pixels to the middle of the other. Xlib asks the server for
// another width only where the context has not got it.
void DrawSlanting(Drawable target, GC gc, int x1, int y1, int x2, int y2) {
  const int middle = now / 2;
  XSetLineAttributes(dpy, gc, static_cast<unsigned>(now), LineSolid, CapProjecting, JoinMiter);
  XDrawLine(dpy, target, gc, Device(x1) + middle, Device(y1) + middle, Device(x2) + middle,
            Device(y2) + middle);
}

void Halve(int* place) {
  *place = Logical(*place);
}

}  // namespace

int Scale() {
  return now;
}

void UseScale(int scale) {
  now = scale == kLargestScale ? kLargestScale : 1;
}

int Device(int logical) {
  return logical * now;
}

int Logical(int device) {
  return device >= 0 ? device / now : -((-device + now - 1) / now);
}

int LogicalLength(int device) {
  return -Logical(-device);
}

XRectangle LogicalArea(const XRectangle& device) {
  const int left = LogicalLength(device.x);
  const int top = LogicalLength(device.y);
  return {static_cast<short>(left), static_cast<short>(top),
          static_cast<unsigned short>(Logical(device.x + device.width) - left),
          static_cast<unsigned short>(Logical(device.y + device.height) - top)};
}

int LogicalScreenWidth() {
  return Logical(screenwidth);
}

int LogicalScreenHeight() {
  return Logical(screenheight);
}

void MakeLogical(XEvent* event) {
  if (now == 1) return;
  const auto halve = [](auto* pointer) {
    Halve(&pointer->x);
    Halve(&pointer->y);
    Halve(&pointer->x_root);
    Halve(&pointer->y_root);
  };
  const auto area = [](auto* exposed) {
    const int right = LogicalLength(exposed->x + exposed->width);
    const int bottom = LogicalLength(exposed->y + exposed->height);
    Halve(&exposed->x);
    Halve(&exposed->y);
    exposed->width = right - exposed->x;
    exposed->height = bottom - exposed->y;
  };
  switch (event->type) {
    case KeyPress:
    case KeyRelease:
      halve(&event->xkey);
      break;
    case ButtonPress:
    case ButtonRelease:
      halve(&event->xbutton);
      break;
    case MotionNotify:
      halve(&event->xmotion);
      break;
    case EnterNotify:
    case LeaveNotify:
      halve(&event->xcrossing);
      break;
    case Expose:
      area(&event->xexpose);
      break;
    case GraphicsExpose:
      area(&event->xgraphicsexpose);
      break;
    case ConfigureNotify:
      area(&event->xconfigure);
      break;
    default:
      break;
  }
}

Window ScaledCreateWindow(Window parent, int x, int y, int width, int height, int border,
                          unsigned windowclass, unsigned long mask,
                          XSetWindowAttributes* attributes) {
  return XCreateWindow(dpy, parent, Device(x), Device(y), Size(width), Size(height),
                       static_cast<unsigned>(Device(border)), CopyFromParent, windowclass,
                       CopyFromParent, mask, attributes);
}

void ScaledMoveWindow(Window window, int x, int y) {
  XMoveWindow(dpy, window, Device(x), Device(y));
}

void ScaledResizeWindow(Window window, int width, int height) {
  XResizeWindow(dpy, window, Size(width), Size(height));
}

void ScaledMoveResizeWindow(Window window, int x, int y, int width, int height) {
  XMoveResizeWindow(dpy, window, Device(x), Device(y), Size(width), Size(height));
}

void ScaledMoveRaised(Window window, int x, int y) {
  XWindowChanges place{};
  place.x = Device(x);
  place.y = Device(y);
  place.stack_mode = Above;
  XConfigureWindow(dpy, window, CWX | CWY | CWStackMode, &place);
}

void ScaledClearArea(Window window, int x, int y, int width, int height) {
  XClearArea(dpy, window, Device(x), Device(y), static_cast<unsigned>(Device(width)),
             static_cast<unsigned>(Device(height)), False);
}

bool ScaledTranslate(Window from, Window to, int fromx, int fromy, int* x, int* y) {
  Window child;
  *x = *y = 0;
  const bool same =
      XTranslateCoordinates(dpy, from, to, Device(fromx), Device(fromy), x, y, &child) != 0;
  Halve(x);
  Halve(y);
  return same;
}

bool ScaledQueryPointer(Window window, int* x, int* y, unsigned* state, Window* child) {
  Window rootwin;
  Window below = None;
  int rootx;
  int rooty;
  *x = *y = 0;
  *state = 0;
  const bool here = XQueryPointer(dpy, window, &rootwin, &below, &rootx, &rooty, x, y, state) != 0;
  if (child != nullptr) *child = below;
  Halve(x);
  Halve(y);
  return here;
}

void ScaledDrawSegments(Drawable target, GC gc, const XSegment* segments, int n) {
  if (now == 1) {
    // Xlib takes them as not const but does not write to them.
    XDrawSegments(dpy, target, gc, const_cast<XSegment*>(segments), n);
    return;
  }
  std::vector<XRectangle> boxes;
  for (const XSegment* is = segments; is < segments + n; is++) {
    if (AlongAxis(is->x1, is->y1, is->x2, is->y2)) {
      boxes.push_back(LineBox(is->x1, is->y1, is->x2, is->y2));
    } else {
      DrawSlanting(target, gc, is->x1, is->y1, is->x2, is->y2);
    }
  }
  if (!boxes.empty())
    XFillRectangles(dpy, target, gc, boxes.data(), static_cast<int>(boxes.size()));
}

void ScaledDrawLine(Drawable target, GC gc, int x1, int y1, int x2, int y2) {
  if (now == 1) {
    XDrawLine(dpy, target, gc, x1, y1, x2, y2);
  } else if (AlongAxis(x1, y1, x2, y2)) {
    XRectangle box = LineBox(x1, y1, x2, y2);
    XFillRectangles(dpy, target, gc, &box, 1);
  } else {
    DrawSlanting(target, gc, x1, y1, x2, y2);
  }
}

void ScaledDrawLines(Drawable target, GC gc, const XPoint* points, int n) {
  if (now == 1) {
    XDrawLines(dpy, target, gc, const_cast<XPoint*>(points), n, CoordModeOrigin);
    return;
  }
  // One by one: joined they would have corners that a line by itself does not take away again.
  for (int i = 0; i + 1 < n; i++)
    ScaledDrawLine(target, gc, points[i].x, points[i].y, points[i + 1].x, points[i + 1].y);
}

void ScaledDrawPoints(Drawable target, GC gc, const XPoint* points, int n) {
  if (now == 1) {
    XDrawPoints(dpy, target, gc, const_cast<XPoint*>(points), n, CoordModeOrigin);
    return;
  }
  std::vector<XRectangle> boxes;
  for (const XPoint* is = points; is < points + n; is++) boxes.push_back(Box(is->x, is->y, 1, 1));
  XFillRectangles(dpy, target, gc, boxes.data(), static_cast<int>(boxes.size()));
}

void ScaledDrawRectangle(Drawable target, GC gc, int x, int y, int w, int h) {
  if (now == 1) {
    XDrawRectangle(dpy, target, gc, x, y, static_cast<unsigned>(w), static_cast<unsigned>(h));
    return;
  }
  std::array<XRectangle, 4> sides = {Box(x, y, w + 1, 1), Box(x, y + h, w + 1, 1),
                                     Box(x, y + 1, 1, h - 1), Box(x + w, y + 1, 1, h - 1)};
  XFillRectangles(dpy, target, gc, sides.data(), static_cast<int>(sides.size()));
}

void ScaledFillRectangle(Drawable target, GC gc, int x, int y, int w, int h) {
  XFillRectangle(dpy, target, gc, Device(x), Device(y), static_cast<unsigned>(Device(w)),
                 static_cast<unsigned>(Device(h)));
}

void ScaledFillRectangles(Drawable target, GC gc, const XRectangle* rectangles, int n) {
  std::vector<XRectangle> boxes;
  for (const XRectangle* is = rectangles; is < rectangles + n; is++)
    boxes.push_back(Box(is->x, is->y, is->width, is->height));
  XFillRectangles(dpy, target, gc, boxes.data(), n);
}

void ScaledFillPolygon(Drawable target, GC gc, const XPoint* corners, int n) {
  std::vector<XPoint> places;
  for (const XPoint* is = corners; is < corners + n; is++)
    places.push_back({Place(is->x), Place(is->y)});
  XFillPolygon(dpy, target, gc, places.data(), n, Convex, CoordModeOrigin);
}

void ScaledSetClipRectangle(GC gc, int x, int y, int w, int h) {
  XRectangle clip = Box(x, y, w, h);
  XSetClipRectangles(dpy, gc, 0, 0, &clip, 1, YXBanded);
}

}  // namespace gromlit
