#include "tests/support/x_fixture.h"

namespace gromlit {
namespace {

class XFixtureTest : public testing::XFixture {};

int presses = 0;
struct Probe {
  WindowObj* wobj;
};
void ProbePress(Probe*, XEvent* event) {
  EXPECT_EQ(event->xbutton.x, 10);
  presses++;
}

TEST_F(XFixtureTest, PlayerClickReachesAHandler) {
  const Window window = XCreateSimpleWindow(dpy, root, 100, 100, 50, 50, 0, 0, blue.pixel);
  XSelectInput(dpy, window, ButtonPressMask);
  Probe probe{AllocWindowObj(window, &probe)};
  On<ButtonPress, ProbePress>(&probe);
  XMapWindow(dpy, window);
  Pump();
  EXPECT_EQ(PixelOf(window, 5, 5), 0x000079u);
  player->MoveTo(110, 110);
  player->Click(1);
  EXPECT_TRUE(PumpUntil([] { return presses == 1; }));
  EXPECT_TRUE(player->CanGrabPointer());
}

TEST_F(XFixtureTest, FontsForTheToolkitAreInstalled) {
  EXPECT_NE(labelFontinfo->fid, txtFontinfo->fid);
  EXPECT_NE(txtFont, 0u);
  EXPECT_NE(labelFont, 0u);
  EXPECT_NE(logoFont, 0u);
  EXPECT_EQ(txtCharht, 13);
}

}  // namespace
}  // namespace gromlit
