#include "display/pointer_click.h"

#include "tests/support/x_fixture.h"

#include <X11/extensions/XInput.h>
#include <X11/extensions/XInput2.h>

#include <array>
#include <string_view>

#include "display/draw_button.h"

namespace gromlit {
namespace {

using Mapping = std::array<unsigned char, 256>;

class PointerClickTest : public testing::XFixture {
 protected:
  // A window of another client at (40, 30), which takes clicks.
  void SetUp() override {
    XFixture::SetUp();
    Display* other = player->display();
    window = XCreateSimpleWindow(other, root, 40, 30, 200, 200, 0, 0, 0);
    XSelectInput(other, window, ButtonPressMask | ButtonReleaseMask);
    XMapWindow(other, window);
    XSync(other, False);
    player->MoveTo(100, 80);
  }
  // The first three buttons as all programs see them (xmodmap -e "pointer = ...").
  void MapCore(unsigned char first, unsigned char second, unsigned char third) {
    Display* other = player->display();
    Mapping map;
    const int count = XGetPointerMapping(other, map.data(), static_cast<int>(map.size()));
    map[0] = first;
    map[1] = second;
    map[2] = third;
    ASSERT_EQ(XSetPointerMapping(other, map.data(), count), MappingSuccess);
  }
  // And as the server's test pointer has them before that.
  void MapTestPointer(unsigned char first, unsigned char second, unsigned char third) {
    Display* other = player->display();
    int major = 2;
    int minor = 0;
    ASSERT_EQ(XIQueryVersion(other, &major, &minor), Success);
    int count = 0;
    XIDeviceInfo* devices = XIQueryDevice(other, XIAllDevices, &count);
    XDevice* pointer = nullptr;
    for (int i = 0; i < count; i++) {
      if (devices[i].use == XISlavePointer &&
          std::string_view(devices[i].name) == "Virtual core XTEST pointer")
        pointer = XOpenDevice(other, static_cast<XID>(devices[i].deviceid));
    }
    XIFreeDeviceInfo(devices);
    ASSERT_NE(pointer, nullptr);
    Mapping map;
    count = XGetDeviceButtonMapping(other, pointer, map.data(), map.size());
    map[0] = first;
    map[1] = second;
    map[2] = third;
    ASSERT_EQ(XSetDeviceButtonMapping(other, pointer, map.data(), count), MappingSuccess);
    XCloseDevice(other, pointer);
    XSync(other, False);
  }
  // The click arrived at (x, y) of the screen, once, as the user's own.
  void ExpectClick(unsigned button, int x, int y) {
    Display* other = player->display();
    XSync(dpy, False);
    XSync(other, False);
    for (const int type : {ButtonPress, ButtonRelease}) {
      XEvent event{};
      ASSERT_TRUE(XCheckWindowEvent(other, window, ButtonPressMask | ButtonReleaseMask, &event));
      EXPECT_EQ(event.type, type);
      EXPECT_EQ(event.xbutton.button, button);
      EXPECT_EQ(event.xbutton.x_root, x);
      EXPECT_EQ(event.xbutton.y_root, y);
      EXPECT_FALSE(event.xbutton.send_event);
    }
    XEvent event;
    EXPECT_FALSE(XCheckWindowEvent(other, window, ButtonPressMask | ButtonReleaseMask, &event))
        << "more than one click";
  }

  Window window = 0;
};

TEST_F(PointerClickTest, ReachesTheWindowBelowThePointerAsTheUsersOwnAndTheGrabComesBack) {
  ASSERT_TRUE(GrabDrawButton(3));
  ASSERT_TRUE(ClickAt(100, 80, 3));
  ExpectClick(3, 100, 80);
  EXPECT_EQ(XPending(player->display()), 0) << "more than one click";
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

TEST_F(PointerClickTest, ClicksWhereItIsToldAndLeavesThePointerWhereItWas) {
  player->MoveTo(600, 500);
  ASSERT_TRUE(ClickAt(120, 90, 3));
  ExpectClick(3, 120, 90);
  EXPECT_EQ(player->Where().x, 600);
  EXPECT_EQ(player->Where().y, 500);
}

TEST_F(PointerClickTest, ArrivesAsTheButtonWhateverTheButtonsAreMappedTo) {
  MapCore(3, 2, 1);
  EXPECT_EQ(TestButton(3), 1);
  ASSERT_TRUE(ClickAt(100, 80, 3));
  ExpectClick(3, 100, 80);
  // Both mappings, one after the other: 1 becomes 2 and stays 2, 2 becomes 3 and then 1.
  MapTestPointer(2, 3, 1);
  EXPECT_EQ(TestButton(3), 3);
  EXPECT_EQ(TestButton(1), 2);
  ASSERT_TRUE(ClickAt(100, 80, 3));
  ExpectClick(3, 100, 80);
  MapCore(1, 2, 3);
  EXPECT_EQ(TestButton(3), 2);
  ASSERT_TRUE(ClickAt(100, 80, 3));
  ExpectClick(3, 100, 80);
}

TEST_F(PointerClickTest, TheButtonItselfIsTakenWhereOthersBecomeTheSame) {
  MapTestPointer(3, 2, 3);
  EXPECT_EQ(TestButton(3), 3);
  EXPECT_EQ(TestButton(1), 0);
}

TEST_F(PointerClickTest, DoesNothingWhereNoButtonGivesIt) {
  MapTestPointer(1, 2, 2);
  EXPECT_EQ(TestButton(3), 0);
  EXPECT_FALSE(ClickAt(100, 80, 3));
  XSync(dpy, False);
  XSync(player->display(), False);
  XEvent event;
  EXPECT_FALSE(XCheckWindowEvent(player->display(), window, ButtonPressMask, &event));
}

}  // namespace
}  // namespace gromlit
