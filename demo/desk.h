// The desk that the demo works on: a virtual display with a window manager, other clients' windows,
// and a hand that draws.
#pragma once

#include "tests/support/x_server.h"

namespace gromlit::demo {

// Root coordinates, pixels.
struct Point {
  int x;
  int y;
};

struct Area {
  int x;
  int y;
  int width;
  int height;

  // The point at these fractions of the area's width and height, 0..1.
  Point At(double across, double down) const {
    return {x + static_cast<int>(across * width), y + static_cast<int>(down * height)};
  }
};

// The window on the screen with this class text, waited for; None at the deadline.
Window WaitForClient(Display* display, const std::string& classtext);

// Where a window is on the screen, without its frame.
Area AreaOf(Display* display, Window window);

// Asks the window manager to put a window there and waits until it stands still.
void Place(Display* display, Window window, const Area& area);

// Clicks into a window with the left button and waits until it, or a window in it, has the
// keyboard focus; false at the deadline.
bool TakeFocus(testing::Player& player, Window window);

// Moves the pointer from point to point in steps of a few pixels, as a hand does. A position is
// reached only when the server says so: while the program thinks, the server holds the pointer back
// and would merge the motions that arrive meanwhile into one.
void Trace(testing::Player& player, const std::vector<Point>& corners);

}  // namespace gromlit::demo
