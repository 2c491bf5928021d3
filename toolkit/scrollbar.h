// The vertical scrollbar: two arrows, a trough to page in and a thumb to drag.
//
// A press is handled to its end inside its handler, which asks the server where the pointer is
// again and again; nothing else of the program runs until the button is up. Button 1 repeats and
// drags; any other one moves the thumb once.
//
//   pressed on           every round, while button 1 is down         function
//   arrow                a step; after the first, a quarter second   ScrollButtonPress
//                        of rest, then 50 steps a second; with
//                        today's manners and where the owner has
//                        rows, a row and 12 a second
//   trough               a page; likewise, then 10 pages a second    ScrollButtonPress
//   thumb                the thumb follows the pointer               ScrollButtonPress
//
// INV-SCROLL-1: after each update 0 <= pos and pos + size <= height - 26, the length of the track
// (0 when the window is shorter than that).
// INV-SCROLL-2: the handler returns as soon as a query finds button 1 up or gets no answer, for
// instance because the window was destroyed; or when the press's release has arrived or a press of
// the draw button waits, with which the pointer is frozen for everybody and the button stays down.
#pragma once

#include <X11/Xlib.h>

#include "toolkit/window_object.h"

namespace gromlit {

inline constexpr int kScrollbarWidth = 15;  // pixels

struct XScrollbar {
  WindowObj* wobj;
  Window window;
  GC gc;          // its own
  int height;     // pixels
  int range;      // length of the content, in the units of the owner; 0 or less: none
  int size;       // length of the thumb, pixels
  int page;       // pixels that the thumb moves for a press in the trough
  int pos;        // pixels from the beginning of the track to the thumb
  int row;        // length of a row of the content, in the units of the range; 0: no rows
  int rowoffset;  // what the content was scrolled to by rows, exact where a pixel of the track is
                  // worth several; counts while the thumb stays at rowpos
  int rowpos;
  void* scrollarg;                        // the owner's
  void (*scroll)(void* arg, int offset);  // the content scrolled to offset 0..; or null
};

// Makes a scrollbar, not mapped, for content four times its height.
XScrollbar* MakeScrollbar(Window parent, int x, int y, int height);

// Handlers. DrawScrollbar does not look at its event. ScrollButtonPress returns when the button is
// released; each round of it is one round trip.
void DrawScrollbar(XScrollbar* sb, XEvent* event = nullptr);
void ScrollButtonPress(XScrollbar* sb, XEvent* event);

// Scrolls by this number of rows, upwards when it is negative, to where a row begins and as far as
// there is something to see. Nothing where the owner has no rows. The wheel's handler, too.
void ScrollRows(XScrollbar* sb, int rows);

// Draws trough and thumb, with pos brought into its bounds, and calls `scroll`.
void UpdateScrollbar(XScrollbar* sb);

// Sets the length of the content and draws everything.
void UpdateScrollbarRange(XScrollbar* sb, int rng);

// Sleeps for usec microseconds; not at all when usec is not positive.
void ScrollWait(int usec);

}  // namespace gromlit
