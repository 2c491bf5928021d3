// The vertical scrollbar: two arrows, a trough to page in and a thumb to drag.
//
// A press is handled to its end inside its handler, which asks the server where the pointer is
// again and again; nothing else of the program runs until the button is up. Button 1 repeats and
// drags; any other one moves the thumb once.
//
//   pressed on           every round, while button 1 is down         function
//   arrow                a step; after the first, a quarter second   ScrollButtonPress
//                        of rest, then 50 steps a second
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
  GC gc;            // its own
  int height;       // pixels
  int range;        // length of the content, in the units of the owner; 0 or less: none
  int size;         // length of the thumb, pixels
  int page;         // pixels that the thumb moves for a press in the trough
  int pos;          // pixels from the beginning of the track to the thumb
  void* scrollarg;  // the owner's
  void (*scroll)(void* arg, int offset);  // the content scrolled to offset 0..; or null
};

// Makes a scrollbar, not mapped, for content four times its height.
XScrollbar* MakeScrollbar(Window parent, int x, int y, int height);

// Handlers. DrawScrollbar does not look at its event. ScrollButtonPress returns when the button is
// released; each round of it is one round trip.
void DrawScrollbar(XScrollbar* sb, XEvent* event = nullptr);
void ScrollButtonPress(XScrollbar* sb, XEvent* event);

// Draws trough and thumb, with pos brought into its bounds, and calls `scroll`.
void UpdateScrollbar(XScrollbar* sb);

// Sets the length of the content and draws everything.
void UpdateScrollbarRange(XScrollbar* sb, int rng);

// Sleeps for usec microseconds; not at all when usec is not positive.
void ScrollWait(int usec);

}  // namespace gromlit
