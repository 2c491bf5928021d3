// First: the test library's headers do not stand Xlib's macros.
#include "tests/x11/toolkit/widget_fixture.h"

#include <X11/keysym.h>

#include "tests/x11/toolkit/request_cost.h"
#include "toolkit/focus.h"
#include "toolkit/text_editor.h"

namespace gromlit {
namespace {

using testing::Cost;
using testing::CostOf;

// The user works in `other`, a window of another client; the field lies in `top`.
class FocusTest : public testing::WidgetFixture {
 protected:
  void SetUp() override {
    WidgetFixture::SetUp();
    other = XCreateSimpleWindow(player->display(), player->root(), 800, 500, 100, 100, 0, 0, 0);
    XSelectInput(player->display(), other, KeyPressMask | StructureNotifyMask);
    XMapWindow(player->display(), other);
    XSetInputFocus(player->display(), other, RevertToParent, CurrentTime);
    XSync(player->display(), False);
    txt = MakeField(20, 30);
    Pump();
  }

  TextEditor* MakeField(int x, int y) {
    TextEditor* field = MakeTextEditor(top, x, y, 200, kEditorHeight);
    TextEditorInit(field, "");
    XMapWindow(dpy, field->window);
    return field;
  }
  void Enter() {
    MoveTo(40, 40);
    Pump();
    ASSERT_EQ(Focus(), txt->window);
  }
  Window Focus() {
    XGetInputFocus(player->display(), &focus_, &revert_);
    return focus_;
  }
  // Lets the program see and do everything that is to come of the last input.
  Window FocusInTheEnd() {
    Pump();
    return Focus();
  }

  Window other = None;
  TextEditor* txt = nullptr;
  Window focus_ = None;
  int revert_ = 0;
};

TEST_F(FocusTest, HidingTheWindowGivesTheEarlierFocusBack) {
  Enter();
  XUnmapWindow(dpy, top);
  EXPECT_EQ(FocusInTheEnd(), other);
  EXPECT_EQ(revert_, RevertToParent) << "with what was to become of it";
}

TEST_F(FocusTest, KeysReachTheEarlierWindowAgain) {
  Enter();
  XUnmapWindow(dpy, top);
  Pump();
  player->Type(XK_a);
  XEvent event;
  EXPECT_TRUE(testing::WaitFor(
      [&] { return XCheckTypedWindowEvent(player->display(), other, KeyPress, &event) != 0; }));
}

TEST_F(FocusTest, HidingTheFieldItselfGivesTheEarlierFocusBack) {
  Enter();
  XUnmapWindow(dpy, txt->window);
  EXPECT_EQ(FocusInTheEnd(), other);
}

TEST_F(FocusTest, HiddenByAnotherClientGivesTheEarlierFocusBack) {
  Enter();
  XUnmapWindow(player->display(), top);
  XSync(player->display(), False);
  EXPECT_EQ(FocusInTheEnd(), other);
}

TEST_F(FocusTest, FrameOfAWindowManagerThatIsHiddenGivesTheEarlierFocusBack) {
  const Window frame =
      XCreateSimpleWindow(player->display(), player->root(), kTopX, kTopY, 600, 400, 0, 0, 0);
  XReparentWindow(player->display(), top, frame, 0, 0);
  XMapWindow(player->display(), frame);
  XSync(player->display(), False);
  Enter();
  XUnmapWindow(player->display(), frame);
  XSync(player->display(), False);
  EXPECT_EQ(FocusInTheEnd(), other);
}

TEST_F(FocusTest, ReparentingUnderTheFocusLeavesTheKeyboardWithSomebody) {
  Enter();
  const Window frame =
      XCreateSimpleWindow(player->display(), player->root(), kTopX, kTopY, 600, 400, 0, 0, 0);
  XMapWindow(player->display(), frame);
  XReparentWindow(player->display(), top, frame, 0, 0);
  XSync(player->display(), False);
  EXPECT_NE(FocusInTheEnd(), static_cast<Window>(None));
}

TEST_F(FocusTest, WindowDestroyedUnderTheFocusGivesTheEarlierFocusBack) {
  Enter();
  XDestroyWindow(player->display(), top);
  XSync(player->display(), False);
  EXPECT_EQ(FocusInTheEnd(), other);
  errors = 0;  // the leaving pointer makes the field draw into a window that is gone
}

TEST_F(FocusTest, EarlierWindowThatDiedIsReplacedByPointerRoot) {
  Enter();
  XDestroyWindow(player->display(), other);
  XSync(player->display(), False);
  XUnmapWindow(dpy, top);
  EXPECT_EQ(FocusInTheEnd(), static_cast<Window>(PointerRoot));
}

TEST_F(FocusTest, EarlierWindowThatIsHiddenIsReplacedByPointerRoot) {
  Enter();
  XUnmapWindow(player->display(), other);
  XSync(player->display(), False);
  XUnmapWindow(dpy, top);
  EXPECT_EQ(FocusInTheEnd(), static_cast<Window>(PointerRoot));
}

TEST_F(FocusTest, EarlierPointerRootComesBack) {
  XSetInputFocus(player->display(), PointerRoot, RevertToNone, CurrentTime);
  XSync(player->display(), False);
  Enter();
  XUnmapWindow(dpy, top);
  EXPECT_EQ(FocusInTheEnd(), static_cast<Window>(PointerRoot));
}

TEST_F(FocusTest, KeyboardThatWasWithNobodyGoesToPointerRoot) {
  XSetInputFocus(player->display(), None, RevertToNone, CurrentTime);
  XSync(player->display(), False);
  Enter();
  XUnmapWindow(dpy, top);
  EXPECT_EQ(FocusInTheEnd(), static_cast<Window>(PointerRoot));
}

TEST_F(FocusTest, FieldThatNeverHadTheFocusChangesNothing) {
  XUnmapWindow(dpy, top);
  EXPECT_EQ(FocusInTheEnd(), other);
  XSetInputFocus(player->display(), None, RevertToNone, CurrentTime);
  XSync(player->display(), False);
  XMapWindow(dpy, top);
  XUnmapWindow(dpy, top);
  EXPECT_EQ(FocusInTheEnd(), static_cast<Window>(None)) << "none of this program's doing";
}

TEST_F(FocusTest, FocusThatSomebodyElseTookIsLeftAlone) {
  const Window third =
      XCreateSimpleWindow(player->display(), player->root(), 950, 500, 50, 50, 0, 0, 0);
  XMapWindow(player->display(), third);
  Enter();
  XSetInputFocus(player->display(), third, RevertToParent, CurrentTime);
  XSync(player->display(), False);
  EXPECT_EQ(FocusInTheEnd(), third);
  XUnmapWindow(dpy, top);
  EXPECT_EQ(FocusInTheEnd(), third);
}

TEST_F(FocusTest, WindowManagerThatIsFasterIsLeftAlone) {
  const Window third =
      XCreateSimpleWindow(player->display(), player->root(), 950, 500, 50, 50, 0, 0, 0);
  XMapWindow(player->display(), third);
  Enter();
  XUnmapWindow(dpy, top);
  XSync(dpy, False);
  XSetInputFocus(player->display(), third, RevertToParent, CurrentTime);
  XSync(player->display(), False);
  EXPECT_EQ(FocusInTheEnd(), third);
}

TEST_F(FocusTest, FromFieldToFieldTheWindowBeforeTheFirstIsRemembered) {
  TextEditor* second = MakeField(20, 100);
  Enter();
  MoveTo(40, 110);
  EXPECT_EQ(FocusInTheEnd(), second->window);
  XUnmapWindow(dpy, top);
  EXPECT_EQ(FocusInTheEnd(), other);
}

TEST_F(FocusTest, FieldEnteredBecauseAnotherWasHiddenRemembersTheSameWindow) {
  TextEditor* over = MakeField(20, 30);  // over the first
  XSync(dpy, False);
  MoveTo(40, 40);
  ASSERT_EQ(FocusInTheEnd(), over->window);
  XUnmapWindow(dpy, over->window);  // which brings the pointer into the first
  EXPECT_EQ(FocusInTheEnd(), txt->window);
  XUnmapWindow(dpy, top);
  EXPECT_EQ(FocusInTheEnd(), other);
}

TEST_F(FocusTest, TakenForAnotherFieldBeforeTheLossIsKnownRemembersTheSameWindow) {
  TextEditor* second = MakeField(20, 100);
  Enter();
  XUnmapWindow(dpy, txt->window);
  TakeFocus(second->window);  // the keyboard is with nobody, and that event is still to come
  ASSERT_EQ(FocusInTheEnd(), second->window);
  XUnmapWindow(dpy, top);
  EXPECT_EQ(FocusInTheEnd(), other);
}

TEST_F(FocusTest, FocusThatCameBackBeforeItsLossIsKnownIsStillTheFields) {
  Enter();
  XSetInputFocus(player->display(), other, RevertToParent, CurrentTime);
  XSetInputFocus(player->display(), txt->window, RevertToNone, CurrentTime);
  XSync(player->display(), False);
  EXPECT_EQ(FocusInTheEnd(), txt->window);
  XUnmapWindow(dpy, top);
  EXPECT_EQ(FocusInTheEnd(), other);
}

TEST_F(FocusTest, EnteringAWindowThatIsHiddenMeanwhileIsNoError) {
  MoveTo(40, 40);
  XSync(dpy, False);  // the enter event waits in the queue
  XUnmapWindow(dpy, top);
  EXPECT_EQ(FocusInTheEnd(), other);
  EXPECT_EQ(errors, 0);
}

TEST_F(FocusTest, KeyboardGrabOfAnotherClientIsNoLoss) {
  Enter();
  ASSERT_EQ(XGrabKeyboard(player->display(), player->root(), False, GrabModeAsync, GrabModeAsync,
                          CurrentTime),
            GrabSuccess);
  XSync(player->display(), False);
  EXPECT_EQ(FocusInTheEnd(), txt->window);
  XUngrabKeyboard(player->display(), CurrentTime);
  XSync(player->display(), False);
  EXPECT_EQ(FocusInTheEnd(), txt->window);
  XUnmapWindow(dpy, top);
  EXPECT_EQ(FocusInTheEnd(), other) << "still remembered";
}

TEST_F(FocusTest, HiddenDuringAKeyboardGrabGivesTheEarlierFocusBack) {
  Enter();
  ASSERT_EQ(XGrabKeyboard(player->display(), player->root(), False, GrabModeAsync, GrabModeAsync,
                          CurrentTime),
            GrabSuccess);
  XSync(player->display(), False);
  XUnmapWindow(dpy, top);
  Pump();
  XUngrabKeyboard(player->display(), CurrentTime);
  XSync(player->display(), False);
  EXPECT_EQ(FocusInTheEnd(), other);
}

TEST_F(FocusTest, ForgedFocusOutIsIgnored) {
  Enter();
  XEvent event{};
  event.xfocus.type = FocusOut;
  event.xfocus.window = txt->window;
  event.xfocus.mode = NotifyNormal;
  event.xfocus.detail = NotifyNonlinear;
  XSendEvent(player->display(), txt->window, False, FocusChangeMask, &event);
  XSync(player->display(), False);
  EXPECT_EQ(FocusInTheEnd(), txt->window);
  XUnmapWindow(dpy, top);
  EXPECT_EQ(FocusInTheEnd(), other);
}

TEST_F(FocusTest, RestoreFocusGivesItBackAtOnce) {
  Enter();
  RestoreFocus();
  XSync(dpy, False);
  EXPECT_EQ(Focus(), other);
  Pump();
  XUnmapWindow(dpy, top);
  EXPECT_EQ(FocusInTheEnd(), other);
}

TEST_F(FocusTest, RestoreFocusWithoutAFieldInFocusChangesNothing) {
  XSetInputFocus(player->display(), PointerRoot, RevertToNone, CurrentTime);
  XSync(player->display(), False);
  RestoreFocus();
  EXPECT_EQ(FocusInTheEnd(), static_cast<Window>(PointerRoot));
}

TEST_F(FocusTest, ShownAgainTheFieldIsDrawnUnfocused) {
  Enter();
  XUnmapWindow(dpy, top);
  Pump();
  EXPECT_EQ(txt->inside, 0);
  MoveTo(40, 300);
  XMapWindow(dpy, top);
  Pump();
  EXPECT_EQ(txt->inside, 0);
  EXPECT_EQ(PixelOf(txt->window, 10, 0), kLightGrey);
}

TEST_F(FocusTest, ServerIsNotLeftGrabbed) {
  Enter();
  XUnmapWindow(dpy, top);
  Pump();
  RestoreFocus();
  // Would wait for ever otherwise.
  EXPECT_TRUE(player->CanGrabPointer());
}

TEST_F(FocusTest, LosingTheFocusOfNoFieldCostsNothing) {
  XFocusChangeEvent event{};
  event.type = FocusOut;
  event.window = txt->window;
  event.detail = NotifyNonlinear;
  EXPECT_EQ(CostOf([&] { FocusLost(event); }), (Cost{0, 0}));
}

TEST_F(FocusTest, GrabsAndForgedEventsCostNothing) {
  Enter();
  XFocusChangeEvent event{};
  event.type = FocusOut;
  event.window = txt->window;
  event.detail = NotifyNonlinear;
  event.mode = NotifyGrab;
  EXPECT_EQ(CostOf([&] { FocusLost(event); }), (Cost{0, 0}));
  event.mode = NotifyNormal;
  event.send_event = True;
  EXPECT_EQ(CostOf([&] { FocusLost(event); }), (Cost{0, 0}));
  // The real one looks who has the focus, with the server grabbed.
  event.send_event = False;
  EXPECT_EQ(CostOf([&] { FocusLost(event); }), (Cost{3, 1}));
}

}  // namespace
}  // namespace gromlit
