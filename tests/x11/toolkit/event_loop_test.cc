// What the event loop takes next, and what it does while nothing comes.
#include "tests/support/x_fixture.h"

#include <atomic>
#include <thread>

#include "display/draw_button.h"
#include "tests/support/captured.h"
#include "toolkit/event_loop.h"

namespace gromlit {
namespace {

class EventLoopTest : public testing::XFixture {
 protected:
  void SetUp() override {
    XFixture::SetUp();
    XSelectInput(dpy, root, SubstructureNotifyMask);
    ASSERT_TRUE(GrabDrawButton(3));
  }
  // Other clients make windows; each is an event for this program.
  void Backlog(int events) {
    for (int i = 0; i < events; i++)
      XCreateSimpleWindow(player->display(), root, 0, 0, 1, 1, 0, 0, 0);
    XSync(player->display(), False);
  }
};

TEST_F(EventLoopTest, AFrozenPressIsTakenBeforeWhatCameEarlier) {
  Backlog(2000);
  player->Press(3);
  XSync(dpy, False);  // it has arrived
  XEvent event;
  TakeEvent(&event);
  ASSERT_EQ(event.type, ButtonPress);
  XAllowEvents(dpy, AsyncPointer, event.xbutton.time);
  player->Release(3);
  // Nothing is lost and nothing changes places.
  TakeEvent(&event);
  int created = 0;
  for (Window last = 0; event.type != ButtonRelease; TakeEvent(&event)) {
    ASSERT_EQ(event.type, CreateNotify);
    EXPECT_GT(event.xcreatewindow.window, last);
    last = event.xcreatewindow.window;
    created++;
    if (created == 2000) break;
  }
  while (XPending(dpy) > 0) {
    TakeEvent(&event);
    created += event.type == CreateNotify ? 1 : 0;
  }
  EXPECT_EQ(created, 2000);
}

TEST_F(EventLoopTest, APressThatComesInTheMiddleOfABacklogIsTakenSoon) {
  Backlog(2000);
  XEvent event;
  TakeEvent(&event);
  ASSERT_EQ(event.type, CreateNotify);
  player->Press(3);
  int taken = 0;
  const bool pressed = testing::WaitFor([&] {
    TakeEvent(&event);
    taken++;
    return event.type == ButtonPress;
  });
  ASSERT_TRUE(pressed);
  EXPECT_LT(taken, 100);
  XAllowEvents(dpy, AsyncPointer, event.xbutton.time);
  player->Release(3);
}

TEST_F(EventLoopTest, WhatIsLeftOfAnEarlierStrokeStaysBeforeThePress) {
  for (int i = 0; i < 2; i++) {
    player->Press(3);
    XAllowEvents(dpy, AsyncPointer, CurrentTime);
    XSync(dpy, False);
    player->Release(3);
  }
  for (const int type : {ButtonPress, ButtonRelease, ButtonPress, ButtonRelease}) {
    XEvent event;
    TakeEvent(&event);
    EXPECT_EQ(event.type, type);
  }
}

TEST_F(EventLoopTest, ARefusedButtonIsAskedForWhileNothingHappens) {
  testing::CaptureStdout();
  {
    const DrawButtonLifted lifted;
    XGrabButton(player->display(), 3, 0, root, False, ButtonPressMask, GrabModeAsync, GrabModeAsync,
                0, 0);
    XSync(player->display(), False);
  }
  testing::GetCapturedStdout();
  AskForDrawButton();
  ASSERT_EQ(GrabbedDrawButton(), 0);
  XUngrabButton(player->display(), 3, 0, root);
  XSync(player->display(), False);
  // The next event comes when the button is there again: it is pressed until it is caught.
  std::atomic<bool> over = false;
  std::thread user([&] {
    testing::Player hand(server->name());
    while (!over) {
      hand.Click(3);
      std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
  });
  XEvent event;
  do TakeEvent(&event);
  while (event.type != ButtonPress);
  over = true;
  XAllowEvents(dpy, AsyncPointer, CurrentTime);
  XFlush(dpy);
  user.join();
  EXPECT_EQ(GrabbedDrawButton(), 3);
}

}  // namespace
}  // namespace gromlit
