#include "capture/trail.h"

#include <algorithm>
#include <cstdlib>

#include "display/colours.h"
#include "display/display.h"
#include "display/scale.h"
#include "display/shapes.h"
#include "toolkit/window_object.h"

namespace gromlit {
namespace {

constexpr int kInitialSize = 500;
constexpr int kMaxExtent = 32767;  // pixels, of a window

unsigned Extent(int pixels) {
  return static_cast<unsigned>(pixels);
}

Window MakeTrailWindow(int width, int height, long mask) {
  XSetWindowAttributes attributes;
  attributes.override_redirect = True;
  attributes.save_under = False;
  attributes.event_mask = mask;
  const Window window = XCreateWindow(dpy, root, 0, 0, Extent(width), Extent(height), 0,
                                      DefaultDepth(dpy, screen), InputOutput, CopyFromParent,
                                      CWOverrideRedirect | CWSaveUnder | CWEventMask, &attributes);
  // Where the pointer cannot go through them, they are what is under it while a stroke is drawn.
  XDefineCursor(dpy, window, handCursor);
  ClaimWindow(window);
  return window;
}

void SwitchToFull(Trail* trail, int x, int y) {
  trail->mapfull = true;
  trail->width = screenwidth;
  trail->height = screenheight;
  trail->lastx = x;
  trail->lasty = y;
  trail->w = trail->windows->fullwindow;
  // It may have been made for another size of the screen.
  XResizeWindow(dpy, trail->w, Extent(trail->width), Extent(trail->height));
  XMapRaised(dpy, trail->w);
}

}  // namespace

TrailWindows MakeTrailWindows(long mask) {
  TrailWindows windows{};
  windows.initwidth = kInitialSize;
  windows.initheight = kInitialSize;
  windows.window = MakeTrailWindow(windows.initwidth, windows.initheight, mask);
  windows.fullwindow = MakeTrailWindow(screenwidth, screenheight, mask);
  XGCValues values;
  const Inversion inversion = InversionOfScreen(dpy, screen);
  values.function = inversion.function;
  values.foreground = inversion.function == GXinvert ? black.pixel : inversion.foreground;
  values.background = white.pixel;
  values.line_width = Device(kTrailLineWidth);
  windows.gc = XCreateGC(dpy, windows.window,
                         GCFunction | GCForeground | GCBackground | GCLineWidth, &values);
  windows.shaped = HasInputShapes();
  // Once for all: at the end of a stroke the server would look anew for what is under the pointer,
  // while somebody waits for a key.
  for (const Window window : {windows.window, windows.fullwindow}) LetPointerThrough(window);
  return windows;
}

void SelectTrailEvents(const TrailWindows& windows, long mask) {
  XSelectInput(dpy, windows.window, mask);
  XSelectInput(dpy, windows.fullwindow, mask);
}

Trail StartTrail(const TrailWindows* windows) {
  Trail trail{};
  trail.windows = windows;
  trail.w = windows->window;
  trail.width = windows->initwidth;
  trail.height = windows->initheight;
  trail.mid = trail.width * 3 / 4;
  trail.lastx = trail.mid;
  trail.lasty = trail.mid;
  return trail;
}

void ShowTrail(Trail* trail, int x, int y) {
  trail->originx = x - trail->mid;
  trail->originy = y - trail->mid;
  XResizeWindow(dpy, trail->w, Extent(trail->width), Extent(trail->height));
  XMoveWindow(dpy, trail->w, trail->originx, trail->originy);
  XMapRaised(dpy, trail->w);
  trail->drawmapped = true;
}

void MoveTrail(Trail* trail, int x, int y) {
  int xsym = trail->mapfull ? x : x - trail->originx;
  int ysym = trail->mapfull ? y : y - trail->originy;
  const auto full = [&] {
    SwitchToFull(trail, x, y);
    xsym = x;
    ysym = y;
  };
  const auto resize = [&] {
    XResizeWindow(dpy, trail->w, Extent(trail->width), Extent(trail->height));
  };
  if (!trail->mapfull) {
    if (xsym > trail->width) {
      trail->width = xsym + kTrailMargin;
      resize();
    }
    // After a switch the later tests look at screen positions; a second switch changes nothing.
    if (xsym <= kTrailEdge) full();
    if (ysym <= kTrailEdge) full();
    if (ysym > trail->height) {
      trail->height = ysym + kTrailMargin;
      resize();
    }
  }
  XDrawLine(dpy, trail->w, trail->windows->gc, trail->lastx, trail->lasty, xsym, ysym);
  trail->lastx = xsym;
  trail->lasty = ysym;
  // On the full window the screen position is still compared with the start in the small one.
  trail->drawmoved =
      std::max({trail->drawmoved, std::abs(xsym - trail->mid), std::abs(ysym - trail->mid)});
}

void KeepTrailOff(Trail* trail, const XRectangle& area) {
  if (!trail->windows->shaped) return;
  // Larger than the windows ever grow.
  const XRectangle whole = {-kMaxExtent / 2, -kMaxExtent / 2, kMaxExtent, kMaxExtent};
  const auto part = [&](Window window, int originx, int originy) {
    if (!trail->parted) ShowPart(window, whole);
    XRectangle hole = area;
    hole.x = static_cast<short>(area.x - originx);
    hole.y = static_cast<short>(area.y - originy);
    CutOut(window, hole);
  };
  part(trail->windows->window, trail->originx, trail->originy);
  part(trail->windows->fullwindow, 0, 0);
  trail->parted = true;
}

void HideTrail(Trail* trail) {
  if (!trail->drawmapped) return;
  if (trail->mapfull) XUnmapWindow(dpy, trail->windows->fullwindow);
  XUnmapWindow(dpy, trail->windows->window);
  trail->drawmapped = false;
  if (!trail->parted) return;
  for (const Window window : {trail->windows->window, trail->windows->fullwindow})
    ShowWhole(window);
  trail->parted = false;
}

}  // namespace gromlit
