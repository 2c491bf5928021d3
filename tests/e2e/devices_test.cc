// Other clients that take single devices away by the second version of the input extension: that
// grab them, take them off the pointer and the keyboard, switch them off, make pointers of their
// own, at any moment of a gesture. When they have let go, the pointer and the keyboard are free and
// the next gesture works.
//
// When a device is taken away on which something is down, that stays down for the pointer or the
// keyboard until the device is back and it goes down and up again: so the server has it. The hand
// does that here, with the mouse button, and with modifiers of the keys that the program makes.
//
// GROMLIT_EVERY_REQUEST and GROMLIT_ATTACK as in between_requests_test.cc.
#include "tests/e2e/hostile_run.h"

#include <X11/Xatom.h>
#include <X11/extensions/XInput.h>
#include <X11/extensions/XInput2.h>
#include <X11/extensions/XTest.h>

#include <array>
#include <cstdlib>
#include <cstring>
#include <string_view>

#include "core/option_files.h"

namespace gromlit {
namespace {

using testing::Attack;
using testing::kRight;
using testing::Player;
using testing::Point;
using testing::ProbeClient;
using testing::Scene;
using testing::WaitFor;

constexpr int kKeyA = 38;    // of the usual keymap
constexpr int kPointer = 2;  // the numbers that every server gives to the first ones
constexpr int kKeyboard = 3;

// The first device whose name ends so; 0 when there is none.
int FindDevice(Display* display, std::string_view name) {
  int count = 0;
  XIDeviceInfo* devices = XIQueryDevice(display, XIAllDevices, &count);
  int found = 0;
  for (int i = 0; i < count && found == 0; i++)
    if (std::string_view(devices[i].name).ends_with(name)) found = devices[i].deviceid;
  XIFreeDeviceInfo(devices);
  return found;
}

void Grab(const Scene& scene, int device, int mode) {
  std::array<unsigned char, XIMaskLen(XI_LASTEVENT)> bits{};
  XISetMask(bits.data(), XI_ButtonPress);
  XIEventMask mask{device, static_cast<int>(bits.size()), bits.data()};
  XIGrabDevice(scene.display, device, DefaultRootWindow(scene.display), CurrentTime, None, mode,
               mode, False, &mask);
}

void Ungrab(const Scene& scene, int device) {
  XIUngrabDevice(scene.display, device, CurrentTime);
}

int Mouse(const Scene& scene) {
  return FindDevice(scene.display, "Xvfb mouse");
}

int TestPointer(const Scene& scene) {
  return FindDevice(scene.display, "core XTEST pointer");
}

int TestKeyboard(const Scene& scene) {
  return FindDevice(scene.display, "core XTEST keyboard");
}

void Attach(const Scene& scene, int device, int master) {
  XIAnyHierarchyChangeInfo change{};
  if (master == 0) {
    change.detach = {XIDetachSlave, device};
  } else {
    change.attach = {XIAttachSlave, device, master};
  }
  XIChangeHierarchy(scene.display, &change, 1);
}

void Enable(const Scene& scene, int device, bool enabled) {
  unsigned char value = enabled ? 1 : 0;
  XIChangeProperty(scene.display, device, XInternAtom(scene.display, "Device Enabled", False),
                   XA_INTEGER, 8, PropModeReplace, &value, 1);
}

char second_name[] = "second";

void AddMaster(Display* display) {
  XIAnyHierarchyChangeInfo change{};
  change.add = {XIAddMaster, second_name, True, True};
  XIChangeHierarchy(display, &change, 1);
  XSync(display, False);
}

void RemoveMaster(Display* display) {
  XIAnyHierarchyChangeInfo change{};
  change.remove = {XIRemoveMaster, FindDevice(display, "second pointer"), XIAttachToMaster,
                   kPointer, kKeyboard};
  XIChangeHierarchy(display, &change, 1);
  XSync(display, False);
}

// Buttons with and without the locks of the keyboard.
XIGrabModifiers any_modifier = {static_cast<int>(XIAnyModifier), 0};

constexpr Attack kAttacks[] = {
    {"nothing", [](const Scene&) {}},
    {"grab the mouse", [](const Scene& s) { Grab(s, Mouse(s), XIGrabModeAsync); },
     [](const Scene& s) { Ungrab(s, Mouse(s)); }},
    {"freeze the mouse", [](const Scene& s) { Grab(s, Mouse(s), XIGrabModeSync); },
     [](const Scene& s) { Ungrab(s, Mouse(s)); }},
    {"grab the test pointer", [](const Scene& s) { Grab(s, TestPointer(s), XIGrabModeAsync); },
     [](const Scene& s) { Ungrab(s, TestPointer(s)); }},
    {"grab the test keyboard", [](const Scene& s) { Grab(s, TestKeyboard(s), XIGrabModeAsync); },
     [](const Scene& s) { Ungrab(s, TestKeyboard(s)); }},
    {"freeze the test keyboard", [](const Scene& s) { Grab(s, TestKeyboard(s), XIGrabModeSync); },
     [](const Scene& s) { Ungrab(s, TestKeyboard(s)); }},
    {"grab the pointer", [](const Scene& s) { Grab(s, kPointer, XIGrabModeAsync); },
     [](const Scene& s) { Ungrab(s, kPointer); }},
    {"freeze both", [](const Scene& s) { Grab(s, kPointer, XIGrabModeSync); },
     [](const Scene& s) { Ungrab(s, kPointer); }},
    {"grab the keyboard", [](const Scene& s) { Grab(s, kKeyboard, XIGrabModeAsync); },
     [](const Scene& s) { Ungrab(s, kKeyboard); }},
    {"freeze by the keyboard", [](const Scene& s) { Grab(s, kKeyboard, XIGrabModeSync); },
     [](const Scene& s) { Ungrab(s, kKeyboard); }},
    {"take draw button",
     [](const Scene& s) {
       std::array<unsigned char, XIMaskLen(XI_LASTEVENT)> bits{};
       XISetMask(bits.data(), XI_ButtonPress);
       XIEventMask mask{XIAllMasterDevices, static_cast<int>(bits.size()), bits.data()};
       XIGrabButton(s.display, XIAllMasterDevices, Button3, DefaultRootWindow(s.display), None,
                    XIGrabModeSync, XIGrabModeAsync, False, &mask, 1, &any_modifier);
     },
     [](const Scene& s) {
       XIUngrabButton(s.display, XIAllMasterDevices, Button3, DefaultRootWindow(s.display), 1,
                      &any_modifier);
       Ungrab(s, kPointer);
     }},
    {"take the mouse off", [](const Scene& s) { Attach(s, Mouse(s), 0); },
     [](const Scene& s) { Attach(s, Mouse(s), kPointer); }},
    {"switch the mouse off", [](const Scene& s) { Enable(s, Mouse(s), false); },
     [](const Scene& s) { Enable(s, Mouse(s), true); }},
    {"a second pointer", [](const Scene& s) { AddMaster(s.display); },
     [](const Scene& s) { RemoveMaster(s.display); }},
    {"give the mouse to a second pointer",
     [](const Scene& s) {
       AddMaster(s.display);
       Attach(s, Mouse(s), FindDevice(s.display, "second pointer"));
     },
     [](const Scene& s) { RemoveMaster(s.display); }},
};

class DevicesTest : public testing::HostileRun, public ::testing::WithParamInterface<Delivery> {
 protected:
  void SetUp() override {
    HostileRun::SetUp();
    int major = 2;
    int minor = 2;
    ASSERT_EQ(XIQueryVersion(intruder_, &major, &minor), Success);
    const int number = FindDevice(player->display(), "Xvfb mouse");
    ASSERT_NE(number, 0);
    mouse_ = XOpenDevice(player->display(), static_cast<XID>(number));
    ASSERT_NE(mouse_, nullptr);
  }
  void TearDown() override {
    victim_.reset();
    if (mouse_ != nullptr) XCloseDevice(player->display(), mouse_);
    HostileRun::TearDown();
  }
  void StartWith(int delivery) {
    WriteChoices(delivery, 0);
    WritePlugin("Victim.victim", {{"all",
                                   kRight,
                                   {{kHotKey, "a", kKeyA, ShiftMask | ControlMask},
                                    {kText, "Hi"},
                                    {kHotKey, "a", kKeyA, 0}}}});
    StartAll();
  }
  void NewVictim() {
    victim_ = std::make_unique<ProbeClient>(
        install->path(),
        std::vector<std::string>{"--class", "Victim", "victim", "--geometry", "300x300+100+100"});
    scene_ = {intruder_, victim_->window(), victim_->window(), other_->window(), 0};
    XSetInputFocus(player->display(), PointerRoot, RevertToPointerRoot, CurrentTime);
  }

  // A hand on the mouse, a device that can be taken away.
  void MouseTo(int x, int y) {
    int axes[] = {x, y};
    XTestFakeDeviceMotionEvent(player->display(), mouse_, False, 0, axes, 2, CurrentTime);
    XSync(player->display(), False);
  }
  void MouseButton(bool press) {
    XTestFakeDeviceButtonEvent(player->display(), mouse_, 3, press ? True : False, nullptr, 0,
                               CurrentTime);
    XSync(player->display(), False);
  }
  // The same with the test pointer.
  void MoveBy(bool mouse, int x, int y) {
    if (mouse) {
      MouseTo(x, y);
    } else {
      player->MoveTo(x, y);
    }
  }
  void ButtonBy(bool mouse, bool press) {
    if (mouse) {
      MouseButton(press);
    } else if (press) {
      player->Press(3);
    } else {
      player->Release(3);
    }
  }

  void TapWhatIsDown() {
    std::array<char, 32> down{};
    XQueryKeymap(player->display(), down.data());
    for (unsigned code = 0; code < 256; code++) {
      if ((down[code / 8] & 1 << code % 8) == 0) continue;
      for (const int press : {True, False})
        XTestFakeKeyEvent(player->display(), code, press, CurrentTime);
    }
    XSync(player->display(), False);
  }

  bool Attacked(const Attack& attack, unsigned long number, bool mouse) {
    NewVictim();
    Go({1270, 1000});
    EXPECT_TRUE(Settle());
    const unsigned long before = proxy_->Counts(0).requests;
    Arm(scene_, attack, 0, before + number);
    MoveBy(mouse, 180, 180);
    ButtonBy(mouse, true);
    for (int x = 200; x <= 340; x += 20) MoveBy(mouse, x, 180);
    ButtonBy(mouse, false);
    // Until the server says that it is up nothing is over.
    const bool up = WaitFor([&] { return (player->Where().state & Button3Mask) == 0; },
                            std::chrono::milliseconds(200));
    if (up) {
      EXPECT_TRUE(Settle()) << WhereItStands();
    }
    const bool fired = Disarm();
    if (!up) {
      ButtonBy(mouse, true);
      ButtonBy(mouse, false);
    }
    EXPECT_TRUE(Settle()) << WhereItStands();
    if (std::string_view(attack.name).ends_with("test keyboard")) TapWhatIsDown();
    requests_ = proxy_->Counts(0).requests - before;
    if (attack.name == kAttacks[0].name) {
      EXPECT_GE(victim_->Wait(6, "Key").size(), 6u);
    }
    victim_.reset();
    CloseAll();
    return fired;
  }

  XDevice* mouse_ = nullptr;
  unsigned long requests_ = 0;  // of the last gesture
  std::unique_ptr<ProbeClient> victim_;
  Scene scene_{};
};

TEST_P(DevicesTest, WhateverIsTakenAwayTheNextGestureWorks) {
  StartWith(GetParam());
  const char* only = std::getenv("GROMLIT_ATTACK");
  for (const bool mouse : {true, false}) {
    Attacked(kAttacks[0], 0, mouse);
    ExpectAllIsWell();
    const unsigned long usual = requests_;
    int attacks = 0;
    for (const Attack& attack : kAttacks) {
      if (only != nullptr && std::string(attack.name) != only) continue;
      attacks += Sweep(attack, usual, usual + usual / 8,
                       [&](unsigned long number) { return Attacked(attack, number, mouse); });
      if (HasFailure()) return;
    }
    EXPECT_GT(attacks, 0);
    std::printf("%d attacks, a gesture has %lu requests\n", attacks, usual);
  }
}

INSTANTIATE_TEST_SUITE_P(With, DevicesTest, ::testing::Values(kSentEvents, kRealInput),
                         [](const auto& way) {
                           return way.param == kRealInput ? "KeysMade" : "KeysSent";
                         });

// A second pointer, as another client makes it, and the hand on it.
class TwoPointersTest : public DevicesTest {
 protected:
  void SetUp() override {
    DevicesTest::SetUp();
    if (HasFatalFailure()) return;
    StartWith(GetParam());
    AddMaster(intruder_);
    second_ = std::make_unique<Player>(server->name());
    XISetClientPointer(second_->display(), None, FindDevice(intruder_, "second pointer"));
    second_->MoveTo(1200, 900);
  }
  void TearDown() override {
    second_.reset();
    DevicesTest::TearDown();
  }
  // A stroke, up to its release, on the other application.
  void Begin(Player* hand, int x) {
    const Point at = OriginOf(other_->window());
    hand->MoveTo(at.x + x, at.y + 250);
    hand->Press(3);
    for (int y = 230; y >= 90; y -= 20) hand->MoveTo(at.x + x, at.y + y);
  }
  size_t Acted() { return other_->Lines("KeyPress window=main keycode=56").size(); }
  void ExpectBothAreFree() {
    for (Player* hand : {player.get(), second_.get()}) {
      EXPECT_TRUE(WaitFor([&] { return hand->CanGrabPointer(); })) << WhereItStands();
      // A frozen pointer does not move.
      const Point to = {hand == player.get() ? 1250 : 1230, 1000};
      hand->MoveTo(to.x, to.y);
      EXPECT_TRUE(WaitFor([&] {
        const Player::Pointer at = hand->Where();
        return at.x == to.x && at.y == to.y && at.state == 0;
      })) << (hand == player.get() ? "the first" : "the second")
          << " pointer is frozen";
    }
  }

  std::unique_ptr<Player> second_;
};

TEST_P(TwoPointersTest, EachDrawsByItself) {
  XSetInputFocus(player->display(), other_->window(), RevertToPointerRoot, CurrentTime);
  XSetInputFocus(second_->display(), other_->window(), RevertToPointerRoot, CurrentTime);
  for (Player* hand : {second_.get(), player.get(), second_.get()}) {
    const size_t before = Acted();
    Begin(hand, 150);
    hand->Release(3);
    EXPECT_TRUE(WaitFor([&] { return Acted() > before; })) << WhereItStands();
    EXPECT_TRUE(Settle());
    ExpectBothAreFree();
  }
}

TEST_P(TwoPointersTest, DrawnWithAtOnceNeitherStaysFrozen) {
  Player* const hands[] = {player.get(), second_.get()};
  for (const int first : {0, 1}) {
    for (const int first_up : {0, 1}) {
      SCOPED_TRACE(first * 10 + first_up);
      Begin(hands[first], 100);
      EXPECT_TRUE(WaitFor([this] { return !MappedOverlays().empty(); })) << "no trail";
      Begin(hands[1 - first], 200);
      hands[first_up]->Release(3);
      hands[1 - first_up]->Release(3);
      EXPECT_TRUE(Settle()) << WhereItStands();
      ExpectBothAreFree();
      ExpectAllIsWell();
      if (HasFailure()) return;
    }
  }
}

// The one that draws is taken away.
TEST_P(TwoPointersTest, PointerThatGoesEndsItsStroke) {
  Begin(second_.get(), 150);
  RemoveMaster(intruder_);
  EXPECT_TRUE(Settle()) << WhereItStands();
  ExpectAllIsWell();
  AddMaster(intruder_);
  XISetClientPointer(second_->display(), None, FindDevice(intruder_, "second pointer"));
  ExpectBothAreFree();
}

INSTANTIATE_TEST_SUITE_P(With, TwoPointersTest, ::testing::Values(kSentEvents, kRealInput),
                         [](const auto& way) {
                           return way.param == kRealInput ? "KeysMade" : "KeysSent";
                         });

}  // namespace
}  // namespace gromlit
