// Fixture for tests that run the program's own code against a private X server.
//
// The code under test uses the connection `dpy`; the `player` is the user, on another connection.
// An X error that no test expects fails the test.
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <memory>

#include "display/display.h"
#include "display/fonts.h"
#include "tests/support/temp_install.h"
#include "tests/support/x_server.h"
#include "toolkit/window_object.h"

namespace gromlit::testing {

class XFixture : public ::testing::Test {
 protected:
  void SetUp() override;
  void TearDown() override;

  // Dispatches every event that has arrived, and those that the handlers cause, until a round trip
  // brings no more.
  void Pump();

  // Pumps until `done` is true; false at the deadline.
  bool PumpUntil(const std::function<bool()>& done,
                 std::chrono::milliseconds deadline = std::chrono::seconds(10));

  // Pixel (x, y) of a window as 0xrrggbb, whatever covers it on the screen is seen instead.
  unsigned long PixelOf(Window window, int x, int y);

  // X errors so far that nobody caught; reset to expect some.
  static int errors;

  // Screen of the server; a test that needs another overrides SetUp's server before calling it.
  std::unique_ptr<XServer> server;
  std::unique_ptr<TempInstall> install;
  std::unique_ptr<Player> player;
};

}  // namespace gromlit::testing
