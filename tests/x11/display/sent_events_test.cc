#include "display/sent_events.h"

#include "tests/support/x_fixture.h"

#include <X11/Xlib-xcb.h>
#include <X11/extensions/XInput2.h>
#include <xcb/xcb.h>

#include <array>

#include "display/input_extension.h"

namespace gromlit {
namespace {

class SentEventsTest : public testing::XFixture {
 protected:
  void SetUp() override {
    XFixture::SetUp();
    ForgetSentInput();
    XSelectInput(dpy, root, SubstructureNotifyMask | EnterWindowMask);
    own_ = XCreateSimpleWindow(dpy, root, 0, 0, 100, 100, 0, 0, 0);
    XSync(dpy, True);
  }
  // Another client sends an event of this type for the window; whether it arrives.
  bool Arrives(int type, Window window) {
    Display* other = player->display();
    XEvent event{};
    event.type = type;
    event.xany.window = window;
    if (type == ClientMessage) event.xclient.format = 32;
    // An event without a mask goes to whoever made the window.
    XSendEvent(other, window, False, window == root ? SubstructureNotifyMask : NoEventMask, &event);
    XSync(other, False);
    XSync(dpy, False);
    XEvent got;
    const bool arrived = XCheckTypedEvent(dpy, type, &got) != 0;
    EXPECT_EQ(XPending(dpy), 0);
    return arrived;
  }

  Window own_ = 0;
};

TEST_F(SentEventsTest, WhatWouldDriveACaptureOrTheTrackingIsForgotten) {
  for (const int type :
       {ButtonPress, ButtonRelease, MotionNotify, EnterNotify, LeaveNotify, CreateNotify})
    EXPECT_FALSE(Arrives(type, root)) << EventName(type);
  for (const int type : {EnterNotify, LeaveNotify, CreateNotify})
    EXPECT_FALSE(Arrives(type, own_)) << EventName(type);
}

TEST_F(SentEventsTest, ClicksOnOwnWindowsAndMessagesArrive) {
  for (const int type : {ButtonPress, ButtonRelease, MotionNotify, ClientMessage, SelectionNotify})
    EXPECT_TRUE(Arrives(type, own_)) << EventName(type);
  EXPECT_TRUE(Arrives(ClientMessage, root));
}

// The library of the input extension takes what it finds in its events for sizes and counts, and
// reads on accordingly: without end, or beyond its memory.
TEST_F(SentEventsTest, EventsOfTheInputExtensionAreForgotten) {
  int opcode;
  ASSERT_TRUE(FindInputExtension(&opcode));
  int event;
  int error;
  ASSERT_TRUE(XQueryExtension(dpy, "XInputExtension", &opcode, &event, &error));
  int major = 2;
  int minor = 0;
  ASSERT_EQ(XIQueryVersion(dpy, &major, &minor), Success);
  xcb_connection_t* other = XGetXCBConnection(player->display());
  const auto target = static_cast<xcb_window_t>(own_);
  for (const uint32_t word : {0x00000000U, 0x01010101U, 0x10000000U, 0x7fffffffU}) {
    for (int type = event; type < event + 17; type++) {
      std::array<uint32_t, 8> bytes;
      bytes.fill(word);
      bytes[0] = word << 8 | static_cast<uint32_t>(type);
      xcb_send_event(other, 0, target, 0, reinterpret_cast<const char*>(bytes.data()));
    }
  }
  EXPECT_TRUE(Arrives(ClientMessage, own_));
  EXPECT_EQ(XPending(dpy), 0);
}

TEST_F(SentEventsTest, TheServersOwnArrive) {
  const Window window = XCreateSimpleWindow(player->display(), root, 50, 50, 10, 10, 0, 0, 0);
  player->MoveTo(300, 300);
  XSync(player->display(), False);
  XSync(dpy, False);
  XEvent event;
  ASSERT_TRUE(XCheckTypedEvent(dpy, CreateNotify, &event));
  EXPECT_EQ(event.xcreatewindow.window, window);
  EXPECT_FALSE(event.xany.send_event);
  ForgetSentInput();  // a second time changes nothing
  XGrabButton(dpy, 3, 0, root, False, ButtonPressMask, GrabModeAsync, GrabModeAsync, 0, 0);
  XSync(dpy, False);
  player->Click(3);
  XSync(dpy, False);
  EXPECT_TRUE(XCheckTypedEvent(dpy, ButtonPress, &event));
}

}  // namespace
}  // namespace gromlit
