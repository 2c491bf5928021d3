#include "display/pointer_click.h"

#include "tests/support/x_fixture.h"

#include "display/draw_button.h"

namespace gromlit {
namespace {

using PointerClickTest = testing::XFixture;

TEST_F(PointerClickTest, ReachesTheWindowBelowThePointerAsTheUsersOwnAndTheGrabComesBack) {
  Display* other = player->display();
  const Window window = XCreateSimpleWindow(other, root, 40, 30, 200, 200, 0, 0, 0);
  XSelectInput(other, window, ButtonPressMask | ButtonReleaseMask);
  XMapWindow(other, window);
  XSync(other, False);
  player->MoveTo(100, 80);
  ASSERT_TRUE(GrabDrawButton(3));

  ASSERT_TRUE(ClickAtPointer(3));
  XSync(dpy, False);
  XSync(other, False);
  for (const int type : {ButtonPress, ButtonRelease}) {
    XEvent event{};
    ASSERT_TRUE(XCheckWindowEvent(other, window, ButtonPressMask | ButtonReleaseMask, &event));
    EXPECT_EQ(event.type, type);
    EXPECT_EQ(event.xbutton.button, 3u);
    EXPECT_EQ(event.xbutton.x, 60);
    EXPECT_EQ(event.xbutton.y, 50);
    EXPECT_FALSE(event.xbutton.send_event);
  }
  EXPECT_EQ(XPending(other), 0) << "more than one click";
  XEvent event;
  EXPECT_FALSE(XCheckTypedWindowEvent(dpy, root, ButtonPress, &event)) << "caught by the grab";
  EXPECT_TRUE(player->CanGrabPointer());
  EXPECT_EQ(GrabbedDrawButton(), 3);
  player->Press(3);
  XSync(dpy, False);
  EXPECT_TRUE(XCheckTypedWindowEvent(dpy, root, ButtonPress, &event)) << "the grab is gone";
  XAllowEvents(dpy, AsyncPointer, CurrentTime);
  player->Release(3);
}

}  // namespace
}  // namespace gromlit
