// First: the test library's headers cannot bear Xlib's macros.
#include "tests/x11/toolkit/widget_fixture.h"

#include "tests/x11/toolkit/request_cost.h"
#include "toolkit/button.h"
#include "toolkit/release_watch.h"

namespace gromlit {
namespace {

using testing::Cost;
using testing::CostOf;
using testing::Picture;

int calls;
void* lastarg;

void Count(void* arg) {
  calls++;
  lastarg = arg;
}

class ButtonTest : public testing::WidgetFixture {
 protected:
  static constexpr int kX = 30;
  static constexpr int kY = 40;

  void SetUp() override {
    WidgetFixture::SetUp();
    calls = 0;
    lastarg = nullptr;
    button = MakeButton(this, top, "OK", Count, kX, kY);
    Pump();
  }

  Picture TakeButton() { return Take(button->window, 0, 0, button->width, button->height); }

  // Moves to a point of the button's window.
  void PointAt(int x, int y) { MoveTo(kX + x, kY + y); }

  // Presses mouse button 1 and waits until the button has taken the press.
  void PressIt() {
    player->Press(1);
    ASSERT_TRUE(PumpUntil([this] { return button->state == kButtonPressed; }));
  }

  XButton* button = nullptr;
};

TEST_F(ButtonTest, TheRecordOfANewButton) {
  EXPECT_EQ(button->owner, this);
  EXPECT_EQ(button->gc, buttongc);
  EXPECT_STREQ(button->label, "OK");
  EXPECT_EQ(button->label_width, XTextWidth(labelFontinfo, "OK", 2));
  EXPECT_EQ(button->width, 64);
  EXPECT_EQ(button->height, 24);
  EXPECT_EQ(button->state, 1);
  EXPECT_EQ(button->action, Count);
  EXPECT_EQ(button->arg, button);
  EXPECT_EQ(button->menu, nullptr);
  ASSERT_NE(button->wobj, nullptr);
  EXPECT_EQ(button->wobj->window, button->window);
  EXPECT_EQ(button->wobj->obj, button);
}

TEST_F(ButtonTest, TheWindowOfANewButton) {
  XWindowAttributes is;
  ASSERT_TRUE(XGetWindowAttributes(dpy, button->window, &is));
  EXPECT_EQ(is.x, kX);
  EXPECT_EQ(is.y, kY);
  EXPECT_EQ(is.width, 64);
  EXPECT_EQ(is.height, 24);
  EXPECT_EQ(is.border_width, 0);
  EXPECT_EQ(is.map_state, IsViewable);
  EXPECT_EQ(is.your_event_mask, ExposureMask | ButtonPressMask | ButtonReleaseMask);
}

TEST_F(ButtonTest, SizedButtonsHaveTheWidthAskedFor) {
  const XButton* wide = MakeButtonSized(nullptr, top, "Wide", Count, 200, 10, 120);
  EXPECT_EQ(wide->width, 120);
  EXPECT_EQ(wide->height, 24);
  XWindowAttributes is;
  ASSERT_TRUE(XGetWindowAttributes(dpy, wide->window, &is));
  EXPECT_EQ(is.width, 120);
}

TEST_F(ButtonTest, ACaptionOf63BytesIsKeptAndALongerOneCut) {
  const std::string fits(63, 'i');
  EXPECT_EQ(MakeButtonSized(nullptr, top, fits.c_str(), Count, 0, 100, 300)->label, fits);
  const std::string longer(200, 'i');
  const XButton* cut = MakeButtonSized(nullptr, top, longer.c_str(), Count, 0, 130, 300);
  EXPECT_EQ(cut->label, fits);
  EXPECT_EQ(cut->label_width, XTextWidth(labelFontinfo, fits.c_str(), 63));
}

TEST_F(ButtonTest, ActiveIsRaisedWithABlackCentredCaption) {
  const Picture shown = TakeButton();
  Picture frame(64, 24, kLightGrey);
  frame.Bevel(kWhite, kDarkGrey, 0, 0, 64, 24);
  for (int i = 0; i < 64; i++) {
    EXPECT_EQ(shown.At(i, 0), frame.At(i, 0));
    EXPECT_EQ(shown.At(i, 1), frame.At(i, 1));
    EXPECT_EQ(shown.At(i, 22), frame.At(i, 22));
    EXPECT_EQ(shown.At(i, 23), frame.At(i, 23));
  }
  // The same caption drawn by hand.
  GC gc = MakeWindowGC(top, labelFont);
  XSetForeground(dpy, gc, black.pixel);
  XDrawString(dpy, top, gc, 300 + (64 - button->label_width) / 2, 300 + 16, "OK", 2);
  EXPECT_EQ(Take(button->window, 2, 2, 60, 20), Take(top, 302, 302, 60, 20));
  EXPECT_GT(shown.Count(kBlack, 2, 2, 60, 20), 10);
  XFreeGC(dpy, gc);
}

TEST_F(ButtonTest, InactiveIsRaisedAndGrey) {
  const Picture active = TakeButton();
  button->state = kButtonInactive;
  DrawButton(button);
  Picture expected = active;
  for (unsigned long& pixel : expected.pixels) {
    if (pixel == kBlack) pixel = kDarkGrey;
  }
  EXPECT_EQ(TakeButton(), expected);
}

TEST_F(ButtonTest, AnyOtherStateIsOnlyCleared) {
  for (const int state : {-1, 3}) {
    button->state = state;
    DrawButton(button);
    EXPECT_EQ(TakeButton(), Picture(64, 24, kLightGrey));
  }
}

TEST_F(ButtonTest, AMenuShiftsTheCaptionEightPixelsLeft) {
  const Picture before = TakeButton();
  button->menu = reinterpret_cast<XMenu*>(this);
  DrawButton(button);
  const Picture after = TakeButton();
  for (int y = 2; y < 22; y++) {
    for (int x = 10; x < 60; x++) EXPECT_EQ(after.At(x - 8, y), before.At(x, y));
  }
}

TEST_F(ButtonTest, PressedIsSunkenAndTheCaptionStays) {
  const Picture raised = TakeButton();
  PointAt(10, 10);
  PressIt();
  Picture expected = raised;
  expected.Bevel(kDarkGrey, kWhite, 0, 0, 64, 24);
  EXPECT_EQ(TakeButton(), expected);
  EXPECT_EQ(calls, 0);
  EXPECT_FALSE(player->CanGrabPointer());
  player->Release(1);
  Pump();
  EXPECT_EQ(TakeButton(), raised);
}

TEST_F(ButtonTest, AClickCallsBackOnceWithTheButton) {
  PointAt(10, 10);
  player->Click(1);
  ASSERT_TRUE(PumpUntil([] { return calls > 0; }));
  Pump();
  EXPECT_EQ(calls, 1);
  EXPECT_EQ(lastarg, button);
  EXPECT_EQ(button->state, 1);
  EXPECT_TRUE(player->CanGrabPointer());
}

TEST_F(ButtonTest, TheOwnersArgumentIsHandedOn) {
  int own;
  button->arg = &own;
  ClickAt(kX + 10, kY + 10);
  EXPECT_EQ(lastarg, &own);
}

TEST_F(ButtonTest, PressDragOutReleaseDoesNotCallAndIsRaisedAgain) {
  const Picture raised = TakeButton();
  PointAt(10, 10);
  PressIt();
  MoveTo(400, 300);
  player->Release(1);
  ASSERT_TRUE(PumpUntil([this] { return button->state == kButtonActive; }));
  EXPECT_EQ(calls, 0);
  EXPECT_EQ(TakeButton(), raised);
  EXPECT_TRUE(player->CanGrabPointer());
}

TEST_F(ButtonTest, DraggedOutAndBackItCalls) {
  PointAt(10, 10);
  PressIt();
  MoveTo(400, 300);
  PointAt(63, 23);
  player->Release(1);
  ASSERT_TRUE(PumpUntil([this] { return button->state == kButtonActive; }));
  EXPECT_EQ(calls, 1);
}

TEST_F(ButtonTest, ReleasedOnTheLeftOrTopEdgePixelItDoesNotCall) {
  for (const auto& [x, y] : {std::pair{0, 10}, {10, 0}, {0, 0}, {64, 10}, {10, 24}}) {
    PointAt(10, 10);
    PressIt();
    PointAt(x, y);
    player->Release(1);
    ASSERT_TRUE(PumpUntil([this] { return button->state == kButtonActive; }));
    EXPECT_EQ(calls, 0) << x << ", " << y;
  }
  for (const auto& [x, y] : {std::pair{1, 1}, {63, 23}, {1, 23}, {63, 1}}) {
    calls = 0;
    PointAt(x, y);
    PressIt();
    player->Release(1);
    ASSERT_TRUE(PumpUntil([this] { return button->state == kButtonActive; }));
    EXPECT_EQ(calls, 1) << x << ", " << y;
  }
}

TEST_F(ButtonTest, AnInactiveButtonIgnoresClicksAndStaysGrey) {
  button->state = kButtonInactive;
  DrawButton(button);
  const Picture grey = TakeButton();
  PointAt(10, 10);
  player->Press(1);
  Pump();
  EXPECT_EQ(button->state, 0);
  EXPECT_EQ(TakeButton(), grey);
  player->Release(1);
  Pump();
  EXPECT_EQ(calls, 0);
  EXPECT_EQ(button->state, 0);
  EXPECT_EQ(TakeButton(), grey);
}

TEST_F(ButtonTest, AReleaseWithoutAPressDoesNothing) {
  MoveTo(400, 300);
  player->Press(1);
  PointAt(10, 10);
  player->Release(1);
  Pump();
  EXPECT_EQ(calls, 0);
  EXPECT_EQ(button->state, 1);
}

// Another client holds the pointer with owner_events on, so that the press still gets here, by the
// event mask of its own that this window has.
TEST_F(ButtonTest, ARefusedGrabLeavesTheButtonActive) {
  ASSERT_EQ(XGrabPointer(player->display(), player->root(), False, ButtonPressMask, GrabModeAsync,
                         GrabModeAsync, 0, 0, CurrentTime),
            GrabSuccess);
  const Picture raised = TakeButton();
  XEvent press{};
  press.xbutton.type = ButtonPress;
  press.xbutton.window = button->window;
  press.xbutton.x = press.xbutton.y = 10;
  DispatchEvent(&press);
  EXPECT_EQ(button->state, kButtonActive);
  EXPECT_EQ(TakeButton(), raised);
  press.xbutton.type = ButtonRelease;
  DispatchEvent(&press);
  EXPECT_EQ(calls, 0);
  XUngrabPointer(player->display(), CurrentTime);
  XSync(player->display(), False);
  ClickAt(kX + 10, kY + 10);
  EXPECT_EQ(calls, 1);
}

// INV-BUTTON-1
TEST_F(ButtonTest, DisabledWhileItIsHeldItStillGivesThePointerBack) {
  for (const int state : {kButtonInactive, kButtonActive}) {
    button->state = kButtonActive;
    PointAt(10, 10);
    PressIt();
    button->state = state;
    DrawButton(button);
    player->Release(1);
    Pump();
    EXPECT_TRUE(player->CanGrabPointer());
    EXPECT_EQ(button->state, state);
    EXPECT_EQ(calls, 0);
  }
}

void Disable(void* arg) {
  calls++;
  auto* button = static_cast<XButton*>(arg);
  EXPECT_EQ(button->state, kButtonActive);
  button->state = kButtonInactive;
}

TEST_F(ButtonTest, TheCallbackRunsBeforeTheDrawing) {
  button->action = Disable;
  const Picture before = TakeButton();
  ClickAt(kX + 10, kY + 10);
  EXPECT_EQ(calls, 1);
  EXPECT_EQ(button->state, kButtonInactive);
  Picture grey = before;
  for (unsigned long& pixel : grey.pixels) {
    if (pixel == kBlack) pixel = kDarkGrey;
  }
  EXPECT_EQ(TakeButton(), grey);
}

void HideParent(void* arg) {
  calls++;
  XUnmapWindow(dpy, *static_cast<Window*>(arg));
}

TEST_F(ButtonTest, HiddenWhileItIsHeldItComesUp) {
  PointAt(10, 10);
  PressIt();
  ReleaseHiddenButton();
  EXPECT_EQ(button->state, kButtonPressed) << "can be seen";
  XUnmapWindow(player->display(), top);
  XSync(player->display(), False);
  ReleaseHiddenButton();
  EXPECT_EQ(button->state, kButtonActive);
  player->Release(1);
  Pump();
  EXPECT_EQ(calls, 0);
  XMapWindow(dpy, top);
  Pump();
  PointAt(10, 10);
  player->Click(1);
  Pump();
  EXPECT_EQ(calls, 1);
}

TEST_F(ButtonTest, DisabledAndHiddenWhileItIsHeldItStaysDisabled) {
  PointAt(10, 10);
  PressIt();
  button->state = kButtonInactive;
  XUnmapWindow(dpy, top);
  ReleaseHiddenButton();
  EXPECT_EQ(button->state, kButtonInactive);
  player->Release(1);
  Pump();
  EXPECT_TRUE(player->CanGrabPointer());
}

TEST_F(ButtonTest, AskingForHiddenOnesCostsNothingWhileNoneIsHeld) {
  EXPECT_EQ(CostOf([] { ReleaseHiddenButton(); }), (Cost{0, 0}));
}

TEST_F(ButtonTest, ACallbackMayHideTheWindow) {
  button->action = HideParent;
  button->arg = &top;
  ClickAt(kX + 10, kY + 10);
  EXPECT_EQ(calls, 1);
  XMapWindow(dpy, top);
  Pump();
  button->action = Count;
  ClickAt(kX + 10, kY + 10);
  EXPECT_EQ(calls, 2);
}

TEST_F(ButtonTest, AButtonWithoutACallbackCanBeClicked) {
  button->action = nullptr;
  ClickAt(kX + 10, kY + 10);
  EXPECT_EQ(button->state, kButtonActive);
}

TEST_F(ButtonTest, ACoveredButtonIsDrawnAgain) {
  const Picture before = TakeButton();
  const Window cover = MakeChildWindow(top, kX, kY, 64, 24, blue.pixel, 0);
  XMapWindow(dpy, cover);
  Pump();
  EXPECT_EQ(PixelOf(top, kX + 2, kY + 2), kBlue);
  XDestroyWindow(dpy, cover);
  Pump();
  EXPECT_EQ(TakeButton(), before);
}

TEST_F(ButtonTest, Costs) {
  XEvent event{};
  event.xbutton.x = event.xbutton.y = 10;
  EXPECT_EQ(CostOf([&] { MakeButton(nullptr, top, "OK", Count, 0, 200); }), (Cost{2, 0}));
  DrawButton(button);
  EXPECT_EQ(CostOf([&] { DrawButton(button, &event); }), (Cost{7, 0}));
  EXPECT_EQ(CostOf([&] { ButtonDown(button, &event); }), (Cost{8, 1}));
  EXPECT_EQ(CostOf([&] { ButtonUp(button, &event); }), (Cost{8, 0}));
  EXPECT_EQ(calls, 1);
}

// As where a window manager is started again: the window goes and comes back under the pointer
// before the press is read, and the release goes to what lies there meanwhile.
TEST_F(ButtonTest, AReleaseThatNeverComesLeavesThePointerToOthers) {
  PointAt(10, 10);
  Pump();
  player->Press(1);
  XUnmapWindow(player->display(), top);
  player->Release(1);
  XMapWindow(player->display(), top);
  XSync(player->display(), False);
  Pump();
  EXPECT_EQ(button->state, kButtonPressed) << "the press was not late";
  EXPECT_GT(ReleaseWait(), 0);
  EXPECT_TRUE(PumpUntil([this] {
    LookForRelease();
    return player->CanGrabPointer();
  }));
  EXPECT_EQ(button->state, kButtonActive);
  EXPECT_EQ(calls, 0) << "nobody let go of the button over it";
  EXPECT_EQ(ReleaseWait(), -1) << "an idle program would be woken";
}

// A hand that is quicker than the program reads.
TEST_F(ButtonTest, AClickBehindAReleaseThatIsReadLateIsNotLost) {
  XButton* next = MakeButton(this, top, "Next", Count, kX + 100, kY + 50);
  PointAt(10, 10);
  PressIt();
  player->Release(1);
  PointAt(110, 60);
  player->Click(1);
  Pump();
  EXPECT_EQ(calls, 2);
  EXPECT_EQ(lastarg, next);
  EXPECT_EQ(next->state, kButtonActive);
  EXPECT_TRUE(player->CanGrabPointer());
  EXPECT_EQ(ReleaseWait(), -1);
}

TEST_F(ButtonTest, APressBehindAReleaseThatIsReadLateIsHeldUntilItsRelease) {
  XButton* next = MakeButton(this, top, "Next", Count, kX + 100, kY + 50);
  PointAt(10, 10);
  PressIt();
  player->Release(1);
  PointAt(110, 60);
  player->Press(1);
  Pump();
  EXPECT_EQ(calls, 1);
  EXPECT_EQ(next->state, kButtonPressed);
  MoveTo(400, 300);
  player->Release(1);
  Pump();
  EXPECT_EQ(calls, 1) << "the release was not on the button";
  EXPECT_EQ(next->state, kButtonActive);
  EXPECT_TRUE(player->CanGrabPointer());
}

TEST_F(ButtonTest, EachOfManyClicksBehindALateReleaseCounts) {
  XButton* next = MakeButton(this, top, "Next", Count, kX + 100, kY + 50);
  PointAt(10, 10);
  PressIt();
  player->Release(1);
  for (int i = 0; i < 10; i++) {
    PointAt(i % 2 == 0 ? 110 : 10, i % 2 == 0 ? 60 : 10);
    player->Click(1);
  }
  Pump();
  EXPECT_EQ(calls, 11);
  EXPECT_EQ(button->state, kButtonActive);
  EXPECT_EQ(next->state, kButtonActive);
  EXPECT_TRUE(player->CanGrabPointer());
}

// What a hand clicks on is what it saw, not what the button that it has clicked before puts there.
TEST_F(ButtonTest, AClickBehindALateReleaseIsForWhatLayThere) {
  static XButton* shown = nullptr;
  MakeButton(this, top, "Save", Count, kX + 100, kY + 50);
  shown = MakeButton(this, top, "Erase", Count, kX + 100, kY + 50);
  XUnmapWindow(dpy, shown->window);
  const auto show = [](void*) { XMapRaised(dpy, shown->window); };
  button->action = show;
  PointAt(10, 10);
  Pump();
  PressIt();
  player->Release(1);
  PointAt(110, 60);
  player->Click(1);
  Pump();
  EXPECT_EQ(calls, 1);
  EXPECT_NE(lastarg, shown);
  EXPECT_TRUE(player->CanGrabPointer());
}

TEST_F(ButtonTest, AClickBehindALateReleaseOnAnotherClientIsForNobodyHere) {
  PointAt(10, 10);
  PressIt();
  player->Release(1);
  player->MoveTo(1200, 900);
  player->Click(1);
  Pump();
  EXPECT_EQ(calls, 1);
  EXPECT_EQ(button->state, kButtonActive);
  EXPECT_TRUE(player->CanGrabPointer());
  ClickAt(kX + 10, kY + 10);
  EXPECT_EQ(calls, 2);
}

// The press is read so late that the button takes the pointer when the next one is already down.
TEST_F(ButtonTest, AReleaseThatGoesToALateGrabIsThatOfItsPress) {
  XButton* next = MakeButton(this, top, "Next", Count, kX + 100, kY + 50);
  Pump();
  PointAt(10, 10);
  player->Click(1);
  PointAt(110, 60);
  player->Press(1);
  XEvent event;
  while (button->state != kButtonPressed) {
    XNextEvent(dpy, &event);
    DispatchEvent(&event);
  }
  player->Release(1);
  Pump();
  EXPECT_EQ(calls, 2);
  EXPECT_EQ(lastarg, next);
  EXPECT_EQ(next->state, kButtonActive);
  EXPECT_TRUE(player->CanGrabPointer());
}

// The release of whichever button of the mouse is the first ends it: here beside the button.
TEST_F(ButtonTest, AnotherButtonOfTheMouseThatIsClickedBesideItEndsItWithoutACall) {
  XButton* next = MakeButton(this, top, "Next", Count, kX + 100, kY + 50);
  PointAt(10, 10);
  PressIt();
  PointAt(110, 60);
  player->Click(3);
  Pump();
  EXPECT_EQ(button->state, kButtonActive);
  EXPECT_EQ(next->state, kButtonActive);
  PointAt(10, 10);
  player->Release(1);
  Pump();
  EXPECT_EQ(calls, 0);
  EXPECT_EQ(button->state, kButtonActive);
  EXPECT_TRUE(player->CanGrabPointer());
}

TEST_F(ButtonTest, AButtonThatIsHeldStaysDown) {
  PointAt(10, 10);
  PressIt();
  // Looked at twice, however long that takes.
  for (int looks = 0; looks < 2; looks++) {
    ASSERT_TRUE(testing::WaitFor([] { return ReleaseWait() == 0; }));
    LookForRelease();
    ASSERT_GT(ReleaseWait(), 0);
  }
  EXPECT_EQ(button->state, kButtonPressed);
  player->Release(1);
  Pump();
  EXPECT_EQ(calls, 1);
  EXPECT_EQ(ReleaseWait(), -1);
}

}  // namespace
}  // namespace gromlit
