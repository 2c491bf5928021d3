// First: the test library's headers do not stand Xlib's macros.
#include "tests/x11/toolkit/menu_fixture.h"

#include "toolkit/pulldown_button.h"

namespace gromlit {
namespace {

using testing::Cost;
using testing::CostOf;
using testing::Picture;
using Names = std::vector<std::string>;

class PulldownButtonTest : public testing::MenuFixture {
 protected:
  static constexpr int kX = 40;  // of the button in its window
  static constexpr int kY = 50;
  static constexpr int kWidth = 140;

  // What an option chooser does: shows the chosen value.
  static void Choose(XMenu* menu, void* arg) {
    Log(menu, arg);
    UpdatePulldownButton(menu->pulldown, static_cast<const char*>(arg));
  }

  void SetUp() override {
    MenuFixture::SetUp();
    if (HasFatalFailure()) return;
    menu = Menu({MakeMenuItem("Left button", Choose, const_cast<char*>("Left button")),
                 MakeMenuItem("Right", Choose, const_cast<char*>("Right"))});
    button = MakePulldownButton(nullptr, top, "Middle", kX, kY, kWidth, menu);
    Pump();
  }

  void PressButton(int number = 1) {
    MoveTo(kX + 5, kY + 5);
    player->Press(number);
    Pump();
  }
  void ReleaseButton(int number = 1) {
    player->Release(number);
    Pump();
  }

  // The button with its caption and mark.
  Picture ButtonLook(const std::string& caption) {
    const Window paper = MakeChildWindow(top, 0, 200, kWidth, 24, lgrey.pixel, 0);
    XMapRaised(dpy, paper);
    const GC pen = MakeWindowGC(paper, labelFont);
    const int length = static_cast<int>(caption.size());
    const int width = XTextWidth(labelFontinfo, caption.c_str(), length);
    XDrawString(dpy, paper, pen, (kWidth - width - 16) / 2, 16, caption.c_str(), length);
    Picture look = Take(paper, 0, 0, kWidth, 24);
    look.Bevel(kWhite, kDarkGrey, 0, 0, kWidth, 24);
    look.Bevel(kWhite, kDarkGrey, kWidth - 24, 24 / 2 - 4, 16, 8);
    XFreeGC(dpy, pen);
    XDestroyWindow(dpy, paper);
    return look;
  }
  Picture ButtonShown() { return Take(button->window, 0, 0, kWidth, 24); }

  XMenu* menu = nullptr;
  XButton* button = nullptr;
};

TEST_F(PulldownButtonTest, ButtonAndMenuKnowEachOther) {
  EXPECT_EQ(button->menu, menu);
  EXPECT_EQ(menu->pulldown, button);
  EXPECT_EQ(button->state, kButtonActive);
  EXPECT_EQ(button->width, kWidth);
  EXPECT_EQ(button->height, 24);
}

TEST_F(PulldownButtonTest, CaptionLeavesRoomForTheMark) {
  EXPECT_EQ(ButtonShown(), ButtonLook("Middle"));
}

TEST_F(PulldownButtonTest, CaptionThatWouldReachIntoTheMarkIsShortened) {
  std::string fits;
  while (XTextWidth(labelFontinfo, fits.c_str(), static_cast<int>(fits.size())) <= kWidth - 32) {
    fits += "m";
  }
  const std::string toolong = fits + "mmm and more";
  fits.pop_back();
  UpdatePulldownButton(button, fits.c_str());
  EXPECT_EQ(ButtonShown(), ButtonLook(fits)) << "as it is while there is room";
  UpdatePulldownButton(button, toolong.c_str());
  EXPECT_EQ(button->label, toolong) << "what the button is called stays";
  const Picture shown = ButtonShown();
  bool found = false;
  for (size_t kept = fits.size(); kept > 0 && !found; kept--) {
    const std::string cut = toolong.substr(0, kept) + "...";
    if (XTextWidth(labelFontinfo, cut.c_str(), static_cast<int>(cut.size())) > kWidth - 32)
      continue;
    found = true;
    EXPECT_EQ(shown, ButtonLook(cut)) << "the longest that has room";
  }
  EXPECT_TRUE(found);
  UpdatePulldownButton(button, std::string(63, 'W').c_str());
  const Picture wide = ButtonShown();
  EXPECT_EQ(wide.Count(kBlack, 0, 0, 8, 24), 0);
  EXPECT_EQ(wide.Count(kBlack, kWidth - 24, 0, 24, 24), 0);
}

TEST_F(PulldownButtonTest, PressOpensTheMenuOverTheButtonWithThePointerGrabbed) {
  PressButton();
  ASSERT_TRUE(Mapped(menu));
  EXPECT_EQ(menu->x, kTopX + kX);
  EXPECT_EQ(menu->y, kTopY + kY);
  EXPECT_EQ(Attributes(menu->window).x, kTopX + kX);
  EXPECT_EQ(Attributes(menu->window).y, kTopY + kY);
  EXPECT_FALSE(player->CanGrabPointer());
  EXPECT_EQ(button->state, kButtonActive) << "never drawn pressed";
  ReleaseButton();
  EXPECT_FALSE(Mapped(menu));
  EXPECT_TRUE(player->CanGrabPointer());
  EXPECT_EQ(calls, Names());
}

TEST_F(PulldownButtonTest, GrabEndsWithTheReleaseOfAnyButton) {
  for (int number = 1; number <= 3; number++) {
    PressButton(number);
    EXPECT_TRUE(Mapped(menu)) << "button " << number;
    ReleaseButton(number);
    EXPECT_FALSE(Mapped(menu)) << "button " << number;
    EXPECT_TRUE(player->CanGrabPointer()) << "button " << number;
  }
}

TEST_F(PulldownButtonTest, ChosenItemUpdatesTheCaption) {
  const Picture expected = ButtonLook("Right");
  PressButton();
  MoveToItem(menu, 1);
  EXPECT_EQ(menu->selected, 1);
  ReleaseButton();
  EXPECT_EQ(calls, Names({"Right"}));
  EXPECT_STREQ(button->label, "Right");
  EXPECT_EQ(button->label_width, XTextWidth(labelFontinfo, "Right", 5));
  EXPECT_EQ(ButtonShown(), expected);
}

TEST_F(PulldownButtonTest, RefusedGrabLeavesTheMenuClosed) {
  ASSERT_EQ(XGrabPointer(player->display(), player->root(), False, 0, GrabModeAsync, GrabModeAsync,
                         None, None, CurrentTime),
            GrabSuccess);
  XEvent press{};
  press.type = ButtonPress;
  press.xbutton.window = button->window;
  PulldownButtonPress(button, &press);
  Pump();
  EXPECT_FALSE(Mapped(menu));
  XUngrabPointer(player->display(), CurrentTime);
  XSync(player->display(), False);
}

// The pair that a click handed on consists of arrives when no button is down; the button's own
// release handler must not end the menu's grab.
TEST_F(PulldownButtonTest, ClickHandedOnOpensTheMenuForTheNextClick) {
  MoveTo(kX + 5, kY + 5);
  XEvent click{};
  click.xbutton.window = button->window;
  click.xbutton.root = player->root();
  click.xbutton.x = 5;
  click.xbutton.y = 5;
  click.xbutton.button = 3;
  click.xbutton.same_screen = True;
  for (int type : {ButtonPress, ButtonRelease}) {
    click.xbutton.type = type;
    XSendEvent(player->display(), button->window, True, 0xffffff, &click);
  }
  XSync(player->display(), False);
  Pump();
  ASSERT_TRUE(Mapped(menu));
  EXPECT_FALSE(player->CanGrabPointer());
  MoveToItem(menu, 0);
  player->Click(1);
  Pump();
  EXPECT_EQ(calls, Names({"Left button"}));
  EXPECT_FALSE(Mapped(menu));
}

TEST_F(PulldownButtonTest, ClickBesideTheMenuThatWasLeftOpenClosesIt) {
  MoveTo(kX + 5, kY + 5);
  player->Click(1);  // over before the program reads the press
  Pump();
  ASSERT_TRUE(Mapped(menu));
  MoveTo(kX + 300, kY + 100);
  player->Click(2);
  Pump();
  EXPECT_FALSE(Mapped(menu));
  EXPECT_EQ(calls, Names());
}

// Both presses were read late: the release of the second goes to the menu of the first.
TEST_F(PulldownButtonTest, PlainButtonLeavesThePointerToTheMenu) {
  XButton* plain = MakeButton(nullptr, top, "Plain", nullptr, kX + 300, kY);
  Pump();
  MoveTo(kX + 5, kY + 5);
  player->Click(1);
  MoveTo(kX + 305, kY + 5);
  player->Press(1);
  Pump();
  EXPECT_EQ(plain->state, kButtonActive);
  EXPECT_TRUE(Mapped(menu));
  ReleaseButton();
  EXPECT_FALSE(Mapped(menu));
}

TEST_F(PulldownButtonTest, WithoutAMenuNothingOpens) {
  SetPulldownMenu(button, nullptr);
  EXPECT_EQ(menu->pulldown, nullptr);
  PressButton();
  EXPECT_FALSE(Mapped(menu));
  ReleaseButton();
  EXPECT_TRUE(player->CanGrabPointer());
}

TEST_F(PulldownButtonTest, InactiveButtonIsGreyAndIgnoresThePress) {
  button->state = kButtonInactive;
  DrawPulldownButton(button);
  EXPECT_EQ(ButtonShown().Count(kBlack, 0, 0, kWidth, 24), 0);
  PressButton();
  EXPECT_FALSE(Mapped(menu));
  ReleaseButton();
}

TEST_F(PulldownButtonTest, AnotherMenuReplacesTheFirst) {
  XMenu* other = Menu({Item("Other")});
  SetPulldownMenu(button, other);
  EXPECT_EQ(menu->pulldown, nullptr);
  EXPECT_EQ(other->pulldown, button);
  PressButton();
  EXPECT_TRUE(Mapped(other));
  EXPECT_FALSE(Mapped(menu));
  MoveToItem(other, 0);
  ReleaseButton();
  EXPECT_EQ(calls, Names({"Other"}));
}

// A menu taken over by one button is not taken from it when the other gets a new one.
TEST_F(PulldownButtonTest, MenuThatMovedToAnotherButtonStaysThere) {
  XButton* second = MakePulldownButton(nullptr, top, "Second", kX, kY + 100, kWidth, menu);
  EXPECT_EQ(menu->pulldown, second);
  SetPulldownMenu(button, Menu({Item("Other")}));
  EXPECT_EQ(menu->pulldown, second);
}

TEST_F(PulldownButtonTest, PlainButtonBecomesAPulldownButton) {
  static int actions;
  actions = 0;
  XButton* plain = MakeButtonSized(
      nullptr, top, "Plain", [](void*) { actions++; }, kX, kY + 100, kWidth);
  SetPulldownMenu(plain, menu);
  Pump();
  MoveTo(kX + 5, kY + 105);
  player->Press(1);
  Pump();
  EXPECT_TRUE(Mapped(menu));
  EXPECT_EQ(menu->y, kTopY + kY + 100);
  ReleaseButton();
  EXPECT_EQ(actions, 0);
  EXPECT_EQ(PixelOf(plain->window, kWidth - 24, 8), kWhite);
}

TEST_F(PulldownButtonTest, LongCaptionIsCutToTheField) {
  const std::string caption(100, 'i');
  UpdatePulldownButton(button, caption.c_str());
  EXPECT_EQ(std::string(button->label), std::string(63, 'i'));
  EXPECT_EQ(button->label_width, XTextWidth(labelFontinfo, caption.c_str(), 63));
}

TEST_F(PulldownButtonTest, Costs) {
  EXPECT_EQ(CostOf([&] { MakePulldownButton(nullptr, top, "x", 0, 0, 80, nullptr); }), (Cost{2, 0}))
      << "create";
  DrawPulldownButton(button);
  // Clear, frame, caption, mark.
  EXPECT_EQ(CostOf([&] { DrawPulldownButton(button); }), (Cost{11, 0})) << "expose";
  XEvent event{};
  EXPECT_EQ(CostOf([&] { PulldownButtonPress(button, &event); }), (Cost{4, 2})) << "press";
  EXPECT_EQ(CostOf([&] { MenuButtonRelease(menu, &event); }), (Cost{2, 0})) << "release";
  EXPECT_EQ(CostOf([&] { UpdatePulldownButton(button, "Other"); }), (Cost{11, 0})) << "caption";
}

}  // namespace
}  // namespace gromlit
