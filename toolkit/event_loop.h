// The one event loop of the program.
#pragma once

#include <X11/Xlib.h>

namespace gromlit {

// Takes events for ever and hands each to the handler of its window (DispatchEvent). Interactions
// that need a loop of their own run it inside their handler and come back.
[[noreturn]] void EventLoop();

// Waits for the next event and takes it. A press of the draw button, behind which the pointer is
// frozen for everybody, is taken before what has arrived earlier: redrawing windows after an
// action, say, or looking at the applications that the pointer has crossed meanwhile. With it goes
// what else the root window is told of buttons and motion, so that these keep their order. While it
// waits, asks for a refused draw button, looks for a release that an interaction awaits, scrolls a
// menu on whose arrow the pointer rests, does deferred work and obeys the signals that end the
// program. An idle program is woken by nothing else.
void TakeEvent(XEvent* event);
// Work that is done some time after what made it necessary, while no event waits.
struct Deferred {
  int (*wait)();  // milliseconds until it is due, 0 when it is, -1 when there is none
  void (*run)();
};

// Makes the loop look after this work, instead of any other that it was given before. Where there
// is none to do, the loop is woken by events alone.
void Defer(const Deferred& work);

}  // namespace gromlit
