// Fixture for tests of single widgets: a mapped window to put them in, and pictures of what is
// drawn.
#pragma once

#include "tests/support/x_fixture.h"

#include "toolkit/child_window.h"

namespace gromlit::testing {

// What another client sees of a rectangle of the screen, all of which is on it.
inline Picture TakeScreen(const Player& player, int x, int y, int w, int h) {
  Picture picture = TakeScreen(player.display(), x, y, w, h);
  EXPECT_EQ(picture.width, w) << "cannot read the screen";
  EXPECT_EQ(picture.height, h);
  return picture;
}

// Where a window is in its parent.
struct Place {
  int x, y, width, height;
  bool operator==(const Place&) const = default;
};

class WidgetFixture : public XFixture {
 protected:
  static constexpr int kTopX = 100;  // of the window, on the screen
  static constexpr int kTopY = 80;
  static constexpr unsigned long kWhite = 0xffffff;
  static constexpr unsigned long kLightGrey = 0xc0c0c0;
  static constexpr unsigned long kGrey = 0xa8a8a8;
  static constexpr unsigned long kDarkGrey = 0x707070;
  static constexpr unsigned long kBlue = 0x000079;
  static constexpr unsigned long kBlack = 0;

  void SetUp() override {
    XFixture::SetUp();
    if (HasFatalFailure()) return;
    XSetWindowAttributes more{};
    more.override_redirect = True;
    top = MakeChildWindow(root, kTopX, kTopY, 600, 400, lgrey.pixel, 0, CWOverrideRedirect, more);
    XMapWindow(dpy, top);
    XSync(dpy, False);
  }

  // The user moves to, or clicks at, a point of the window.
  void MoveTo(int x, int y) { player->MoveTo(kTopX + x, kTopY + y); }
  void ClickAt(int x, int y) {
    MoveTo(x, y);
    player->Click(1);
    Pump();
  }

  // What the screen shows of a rectangle of a window.
  Picture Take(Window window, int x, int y, int w, int h) {
    XSync(dpy, False);
    int rootx = 0;
    int rooty = 0;
    Window child;
    XTranslateCoordinates(dpy, window, root, x, y, &rootx, &rooty, &child);
    return TakeScreen(*player, rootx, rooty, w, h);
  }

  static Place PlaceOf(Window window) {
    XWindowAttributes at{};
    XGetWindowAttributes(dpy, window, &at);
    return {at.x, at.y, at.width, at.height};
  }

  Window top = None;
};

}  // namespace gromlit::testing
