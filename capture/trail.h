// The trail that a stroke leaves on the screen while it is drawn.
//
// Two override-redirect windows without a background are mapped over everything; because they have
// no background they show what lies under them, and a line drawn with an inverting function on
// them is all that is needed. Unmapping them brings the screen back. They stay until the action has
// run; the pointer goes through them, so that a click in that time belongs to the application
// below. The small one is placed around the pointer and grows to the right and downwards; near its
// left or top edge the one that covers the screen takes over.
//
// A motion step makes no round trip: the windows are where they were put, so positions in them are
// computed, not asked for.
#pragma once

#include <X11/Xlib.h>

namespace gromlit {

inline constexpr int kTrailLineWidth = 4;  // pixels
inline constexpr int kTrailMargin = 100;   // pixels that a growing window gains beyond the pointer
inline constexpr int kTrailEdge = 9;  // this near to the left or top edge the full window comes

// The windows and what they are drawn with; made once, owned by the overlay.
struct TrailWindows {
  Window window;      // the small one
  Window fullwindow;  // as large as the screen, at its origin
  GC gc;              // inverting
  int initwidth;      // size of the small window at the start of each stroke, pixels
  int initheight;
  bool shaped;  // the server can let the pointer through a window
};

// The trail of one stroke. Starts unmapped. Positions are root-window pixels unless noted.
struct Trail {
  const TrailWindows* windows;
  Window w;         // the window that is drawn on
  bool drawmapped;  // a trail window is mapped
  bool mapfull;     // w is the full window; the small one stays mapped under it
  int width;        // current size of the small window
  int height;
  int mid;      // where the small window is first put under the pointer, from its origin
  int originx;  // of the small window
  int originy;
  int lastx;  // end of the last segment, in w
  int lasty;
  bool parted;    // parts of the screen are kept free of it
  int drawmoved;  // farthest the pointer got from the start along either axis, pixels
};

// Creates both windows, not mapped, and their graphics context. `mask` is their event mask.
TrailWindows MakeTrailWindows(long mask);

// Gives both windows another event mask, after the draw button changed.
void SelectTrailEvents(const TrailWindows& windows, long mask);

// A trail that has not been shown yet.
Trail StartTrail(const TrailWindows* windows);

// Maps the small window so that the position (x, y) lies at its start point.
void ShowTrail(Trail* trail, int x, int y);

// Draws on to the position (x, y), growing or switching the window as needed, and updates
// drawmoved. REQUIRES: ShowTrail was called.
void MoveTrail(Trail* trail, int x, int y);

// Keeps the trail off a part of the screen until it is hidden, so that what lies there by itself
// can go while the trail stays: with no background the trail's windows would go on showing it.
// REQUIRES: ShowTrail was called.
void KeepTrailOff(Trail* trail, const XRectangle& area);

// Unmaps what is mapped.
void HideTrail(Trail* trail);

}  // namespace gromlit
