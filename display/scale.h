// How large the program draws: at scale 1 as it is, at scale 2 everything twice as wide and high.
//
// The widgets count in logical pixels. What they ask the server for goes through this file, which
// alone knows how many pixels of the screen, device pixels, one of them is; events come back from
// it to their handlers in logical pixels (DispatchEvent, toolkit/window_object.h). Device pixels
// are what concerns the windows of others: strokes, clicks, the icon in a tray.
//
// At scale 1 each of these functions makes the request of its name and nothing else. At scale 2 a
// pixel is a square of four: lines along the axes are filled rectangles, so that what is drawn is
// the picture of scale 1 with every pixel doubled; a slanting line is two pixels wide.
#pragma once

#include <X11/Xlib.h>

namespace gromlit {

inline constexpr int kLargestScale = 2;

// Device pixels of a logical one, 1 or 2. For the whole run: windows and fonts are made by it.
int Scale();

// To be called before anything is made for the display; what is neither 1 nor 2 counts as 1.
void UseScale(int scale);

// A length, or a place measured from the origin of a window.
int Device(int logical);

// The logical pixel that a device pixel lies in; also left of and above the origin.
int Logical(int device);

// A length of device pixels in logical ones, of which a part counts as a whole.
int LogicalLength(int device);

// A part of the screen, or a window in its parent, in logical pixels: all that lie in it whole.
XRectangle LogicalArea(const XRectangle& device);

// The size of the screen in logical pixels.
int LogicalScreenWidth();
int LogicalScreenHeight();

// Turns the places and sizes of an event of a window of the program into logical pixels. Types
// without any are left alone.
void MakeLogical(XEvent* event);

// --- Windows: sizes are at least one pixel ----------------------------------------------------

// XCreateWindow of the parent's depth and visual.
Window ScaledCreateWindow(Window parent, int x, int y, int width, int height, int border,
                          unsigned windowclass, unsigned long mask,
                          XSetWindowAttributes* attributes);
void ScaledMoveWindow(Window window, int x, int y);
void ScaledResizeWindow(Window window, int width, int height);
void ScaledMoveResizeWindow(Window window, int x, int y, int width, int height);
// Moves a window and lays it above all others, in one request.
void ScaledMoveRaised(Window window, int x, int y);
// Clears a part of a window, without an exposure.
void ScaledClearArea(Window window, int x, int y, int width, int height);

// --- Questions: one round trip each, as with the functions of Xlib ----------------------------

// Where a place of one window is in another. False when the windows are on different screens; then
// x and y are 0.
bool ScaledTranslate(Window from, Window to, int fromx, int fromy, int* x, int* y);
// Where the pointer is in a window, and which buttons are down. False when it is on another screen
// or the window is gone; x, y and state are set all the same. `child` is the window in it that the
// pointer is on, or None.
bool ScaledQueryPointer(Window window, int* x, int* y, unsigned* state, Window* child = nullptr);

// --- Drawing ----------------------------------------------------------------------------------

void ScaledDrawSegments(Drawable target, GC gc, const XSegment* segments, int n);
void ScaledDrawLine(Drawable target, GC gc, int x1, int y1, int x2, int y2);
// Lines from each point to the next.
void ScaledDrawLines(Drawable target, GC gc, const XPoint* points, int n);
void ScaledDrawPoints(Drawable target, GC gc, const XPoint* points, int n);
// The outline, w + 1 x h + 1 pixels; none of them twice, for a gc that inverts.
void ScaledDrawRectangle(Drawable target, GC gc, int x, int y, int w, int h);
void ScaledFillRectangle(Drawable target, GC gc, int x, int y, int w, int h);
void ScaledFillRectangles(Drawable target, GC gc, const XRectangle* rectangles, int n);
// A convex polygon.
void ScaledFillPolygon(Drawable target, GC gc, const XPoint* corners, int n);
void ScaledSetClipRectangle(GC gc, int x, int y, int w, int h);

}  // namespace gromlit
