#include "display/draw_button.h"

#include "tests/support/x_fixture.h"

#include <X11/keysym.h>

#include <string>
#include <vector>

#include "core/option_files.h"
#include "display/x_errors.h"
#include "tests/support/captured.h"

namespace gromlit {
namespace {

class DrawButtonTest : public testing::XFixture {
 protected:
  void SetUp() override {
    XFixture::SetUp();
    // A window of another client under the pointer, which takes presses.
    Display* other = player->display();
    window_ = XCreateSimpleWindow(other, root, 0, 0, 200, 200, 0, 0, 0);
    XSelectInput(other, window_, ButtonPressMask);
    XMapWindow(other, window_);
    XSync(other, False);
    player->MoveTo(100, 100);
  }
  void TearDown() override {
    // The grab ends with the connection; the module's own record is made to forget it.
    if (DrawButtonWait() >= 0) GrabDrawButton(5);  // no longer asked for
    if (GrabbedDrawButton() != 0) Forgotten().push_back(new DrawButtonLifted);
    XFixture::TearDown();
  }
  // Presses the button; whether the program's grab caught it (else the other client got it).
  bool Caught(int button) {
    player->Press(button);
    XSync(dpy, False);
    XEvent event;
    const bool caught = XCheckTypedWindowEvent(dpy, root, ButtonPress, &event) != 0;
    if (caught) XAllowEvents(dpy, AsyncPointer, event.xbutton.time);
    player->Release(button);
    XSync(dpy, False);
    while (XCheckTypedWindowEvent(dpy, root, ButtonRelease, &event)) continue;
    const bool arrived = XCheckTypedWindowEvent(player->display(), window_, ButtonPress, &event);
    EXPECT_NE(caught, arrived) << "button " << button;
    return caught;
  }
  // Another client takes or gives up a button on the root window.
  void OtherGrabs(int button) {
    XGrabButton(player->display(), static_cast<unsigned>(button), 0, root, False, ButtonPressMask,
                GrabModeAsync, GrabModeAsync, 0, 0);
    XSync(player->display(), False);
  }

  Window window_ = 0;
  // Never destroyed, as their grabs are gone; reachable to the end.
  static std::vector<DrawButtonLifted*>& Forgotten() {
    static auto* const forgotten = new std::vector<DrawButtonLifted*>;
    return *forgotten;
  }
};

TEST_F(DrawButtonTest, MotionMaskOfEachButton) {
  EXPECT_EQ(ButtonToMotionMask(1), 0x100);
  EXPECT_EQ(ButtonToMotionMask(2), 0x200);
  EXPECT_EQ(ButtonToMotionMask(3), 0x400);
  EXPECT_EQ(ButtonToMotionMask(4), 0x800);
  EXPECT_EQ(ButtonToMotionMask(5), 0x1000);
  for (const int other : {-1, 0, 6, 1000}) EXPECT_EQ(ButtonToMotionMask(other), 0x400) << other;
}

TEST_F(DrawButtonTest, OnlyTheGrabbedButtonIsCaught) {
  ASSERT_TRUE(GrabDrawButton(3));
  EXPECT_EQ(GrabbedDrawButton(), 3);
  EXPECT_TRUE(Caught(3));
  EXPECT_FALSE(Caught(1));
}

TEST_F(DrawButtonTest, PressWithAModifierIsNotCaught) {
  ASSERT_TRUE(GrabDrawButton(3));
  player->KeyDown(0xffe1);  // Shift
  EXPECT_FALSE(Caught(3));
  player->KeyUp(0xffe1);
  EXPECT_TRUE(Caught(3));
}

TEST_F(DrawButtonTest, AnotherButtonReplacesTheGrab) {
  ASSERT_TRUE(GrabDrawButton(3));
  ASSERT_TRUE(GrabDrawButton(2));
  EXPECT_EQ(GrabbedDrawButton(), 2);
  EXPECT_TRUE(Caught(2));
  EXPECT_FALSE(Caught(3));
}

TEST_F(DrawButtonTest, RefusedButtonLeavesTheOldGrab) {
  ASSERT_TRUE(GrabDrawButton(3));
  OtherGrabs(2);
  EXPECT_FALSE(GrabDrawButton(2));
  EXPECT_EQ(GrabbedDrawButton(), 3);
  EXPECT_TRUE(Caught(3));
}

TEST_F(DrawButtonTest, FirstGrabThatIsRefusedGrabsNothing) {
  OtherGrabs(3);
  EXPECT_FALSE(GrabDrawButton(3));
  EXPECT_EQ(GrabbedDrawButton(), 0);
}

TEST_F(DrawButtonTest, LiftedGrabLetsPressesThroughAndComesBack) {
  ASSERT_TRUE(GrabDrawButton(3));
  {
    const DrawButtonLifted lifted;
    EXPECT_EQ(GrabbedDrawButton(), 0);
    EXPECT_FALSE(Caught(3));
  }
  EXPECT_EQ(GrabbedDrawButton(), 3);
  EXPECT_TRUE(Caught(3));
}

TEST_F(DrawButtonTest, PressCaughtJustBeforeTheGrabWasLiftedIsHandedOn) {
  ASSERT_TRUE(GrabDrawButton(3));
  player->Press(3);  // caught and frozen, not yet read
  {
    const DrawButtonLifted lifted;
    XSync(player->display(), False);
    XEvent event;
    EXPECT_TRUE(XCheckTypedWindowEvent(player->display(), window_, ButtonPress, &event));
    player->MoveTo(150, 150);
    EXPECT_EQ(player->Where().x, 150) << "frozen";
    EXPECT_FALSE(lifted.focus()) << "the press may have moved it since";
  }
  player->Release(3);
  EXPECT_TRUE(player->CanGrabPointer());
}

TEST_F(DrawButtonTest, WhoeverLiftsTheGrabIsToldOfTheFocusInTheSameRoundTrip) {
  ASSERT_TRUE(GrabDrawButton(3));
  XSetInputFocus(player->display(), window_, RevertToNone, CurrentTime);
  XSync(player->display(), False);
  const unsigned long before = NextRequest(dpy);
  const DrawButtonLifted lifted;
  EXPECT_EQ(NextRequest(dpy) - before, 2u) << "one lifts it, the other is answered";
  EXPECT_EQ(lifted.focus(), window_);
}

TEST_F(DrawButtonTest, ButtonThatWasTakenWhileLiftedIsReported) {
  ASSERT_TRUE(GrabDrawButton(3));
  testing::CaptureStdout();
  {
    const DrawButtonLifted lifted;
    OtherGrabs(3);
  }
  EXPECT_EQ(testing::GetCapturedStdout(), "Drawing Button used by another application.\n");
  EXPECT_EQ(GrabbedDrawButton(), 0);
}

TEST_F(DrawButtonTest, ButtonThatWasTakenIsAskedForUntilItIsFree) {
  ASSERT_TRUE(GrabDrawButton(3));
  EXPECT_EQ(DrawButtonWait(), -1) << "an idle program would wake";
  {
    const DrawButtonLifted lifted;
    OtherGrabs(3);
  }
  EXPECT_EQ(DrawButtonWait(), 0) << "it is to be asked for at once";
  AskForDrawButton();
  EXPECT_EQ(GrabbedDrawButton(), 0);
  EXPECT_GT(DrawButtonWait(), 500);
  EXPECT_LE(DrawButtonWait(), 1000);
  // A flood of events does not become a flood of requests.
  const unsigned long before = NextRequest(dpy);
  AskForDrawButton();
  EXPECT_EQ(NextRequest(dpy), before);
  XUngrabButton(player->display(), 3, 0, root);
  XSync(player->display(), False);
  EXPECT_TRUE(testing::WaitFor([] {
    AskForDrawButton();
    return GrabbedDrawButton() == 3;
  }));
  EXPECT_EQ(DrawButtonWait(), -1);
  EXPECT_TRUE(Caught(3));
}

TEST_F(DrawButtonTest, AnotherButtonEndsTheAskingForARefusedOne) {
  ASSERT_TRUE(GrabDrawButton(3));
  {
    const DrawButtonLifted lifted;
    OtherGrabs(3);
  }
  ASSERT_TRUE(GrabDrawButton(2));
  EXPECT_EQ(DrawButtonWait(), -1);
  EXPECT_EQ(GrabbedDrawButton(), 2);
}

TEST_F(DrawButtonTest, LiftingNothingDoesNothing) {
  const unsigned long before = NextRequest(dpy);
  { const DrawButtonLifted lifted; }
  EXPECT_EQ(NextRequest(dpy), before);
}

TEST_F(DrawButtonTest, TrapReportsTheFirstErrorAndGivesTheHandlerBack) {
  {
    ErrorTrap trap;
    XMapWindow(dpy, 1);
    EXPECT_EQ(trap.Finish(), BadWindow);
  }
  {
    ErrorTrap trap;
    EXPECT_EQ(trap.Finish(), Success);
  }
  EXPECT_EQ(errors, 0);
  XMapWindow(dpy, 1);
  XSync(dpy, False);
  EXPECT_EQ(errors, 1);
  errors = 0;
}

// --- Locks -------------------------------------------------------------------------------------

class DrawLocksTest : public DrawButtonTest {
 protected:
  void SetUp() override {
    DrawButtonTest::SetUp();
    options_.temp2 = kDrawWithLocks;
    user = &options_;
  }
  void TearDown() override {
    user = nullptr;
    RenewDrawLocks();
    DrawButtonTest::TearDown();
  }
  void Choose(int32_t behaviour) {
    options_.temp2 = behaviour;
    RenewDrawLocks();
  }
  // Gives the keyboard another Num Lock, and tells the program.
  void Lock(const std::string& modifier) {
    testing::Process change({"xmodmap", "-e", "remove mod2 = Num_Lock", "-e",
                             "remove mod3 = Num_Lock", "-e", "add " + modifier + " = Num_Lock"});
    ASSERT_EQ(change.Wait(), 0);
    Pump();
    RenewDrawLocks();
  }

 private:
  GromlitUserOptions options_{};
};

constexpr KeySym kLocks[] = {XK_Caps_Lock, XK_Num_Lock};

TEST_F(DrawLocksTest, EveryCombinationOfLocksIsCaught) {
  RenewDrawLocks();
  EXPECT_EQ(DrawLocks(), static_cast<unsigned>(LockMask | Mod2Mask));
  ASSERT_TRUE(GrabDrawButton(3));
  for (int combination = 0; combination < 4; combination++) {
    EXPECT_TRUE(Caught(3)) << combination;
    EXPECT_FALSE(Caught(1)) << combination;
    player->KeyDown(XK_Shift_L);
    EXPECT_FALSE(Caught(3)) << combination << " with Shift";
    player->KeyUp(XK_Shift_L);
    player->Type(kLocks[combination % 2]);
  }
}

TEST_F(DrawLocksTest, NoLockIsCaughtUnlessChosen) {
  Choose(~kDrawWithLocks);
  EXPECT_EQ(DrawLocks(), 0u);
  ASSERT_TRUE(GrabDrawButton(3));
  EXPECT_TRUE(Caught(3));
  player->Type(XK_Num_Lock);
  EXPECT_FALSE(Caught(3));
}

TEST_F(DrawLocksTest, ChoiceCountsAtOnce) {
  Choose(0);
  ASSERT_TRUE(GrabDrawButton(3));
  player->Type(XK_Num_Lock);
  EXPECT_FALSE(Caught(3));
  Choose(kDrawWithLocks);
  EXPECT_TRUE(Caught(3));
  Choose(0);
  EXPECT_FALSE(Caught(3));
  player->Type(XK_Num_Lock);
  EXPECT_TRUE(Caught(3));
}

TEST_F(DrawLocksTest, AnotherButtonTakesTheLocksWithIt) {
  RenewDrawLocks();
  ASSERT_TRUE(GrabDrawButton(3));
  player->Type(XK_Caps_Lock);
  ASSERT_TRUE(GrabDrawButton(2));
  EXPECT_TRUE(Caught(2));
  EXPECT_FALSE(Caught(3));
}

TEST_F(DrawLocksTest, LiftedGrabIsLiftedWithLocksToo) {
  RenewDrawLocks();
  ASSERT_TRUE(GrabDrawButton(3));
  player->Type(XK_Num_Lock);
  {
    const DrawButtonLifted lifted;
    EXPECT_FALSE(Caught(3));
  }
  EXPECT_TRUE(Caught(3));
}

TEST_F(DrawLocksTest, LocksOfTheKeyboardInForceCount) {
  RenewDrawLocks();
  ASSERT_TRUE(GrabDrawButton(3));
  Lock("mod3");
  EXPECT_EQ(DrawLocks(), static_cast<unsigned>(LockMask | Mod3Mask));
  player->Type(XK_Num_Lock);
  EXPECT_TRUE(Caught(3));
}

TEST_F(DrawLocksTest, CombinationOfAnotherClientIsLeftToIt) {
  XGrabButton(player->display(), 3, Mod2Mask, root, False, ButtonPressMask, GrabModeAsync,
              GrabModeAsync, 0, 0);
  XSync(player->display(), False);
  RenewDrawLocks();
  ASSERT_TRUE(GrabDrawButton(3));
  EXPECT_TRUE(Caught(3));
  player->Type(XK_Caps_Lock);
  EXPECT_TRUE(Caught(3));
}

}  // namespace
}  // namespace gromlit
