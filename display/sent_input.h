// Keys and clicks that the program sends in the user's place.
#pragma once

#include <X11/Xlib.h>

#include <initializer_list>

#include "display/display.h"

namespace gromlit {

// Every bit that a client can select: whatever the application listens for, it gets the input.
inline constexpr long kAnyEventMask = 0xFFFFFF;

// Where input is said to have happened: the window that gets it, and the pointer's position in
// that window and on the root window, pixels.
struct InputPlace {
  Window win;
  int winx;
  int winy;
  int rootx;
  int rooty;
};

// Fills what key and button events have in common, in an event that is all zero else; `input` is
// its xkey or xbutton. `state` holds the modifiers and buttons that are said to be down.
template <typename Input>
void PlaceInput(Input* input, const InputPlace& place, unsigned state) {
  input->display = dpy;
  input->window = place.win;
  input->root = root;
  input->subwindow = None;
  input->time = CurrentTime;
  input->x = place.winx;
  input->y = place.winy;
  input->x_root = place.rootx;
  input->y_root = place.rooty;
  input->state = state;
  input->same_screen = True;
}

// Sends the event to its window twice, first as one type and then as the other. Nothing is flushed.
inline void SendPressAndRelease(XEvent* event, int press, int release) {
  for (const int type : {press, release}) {
    event->type = type;
    XSendEvent(dpy, event->xany.window, True, kAnyEventMask, event);
  }
}

}  // namespace gromlit
