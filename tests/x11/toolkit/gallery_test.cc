// The whole toolkit in one window: every widget answers the mouse, and no storm of input breaks it.

// First: the test library's headers cannot bear Xlib's macros.
#include "tests/x11/toolkit/widget_fixture.h"

#include <X11/keysym.h>

#include <atomic>
#include <random>
#include <set>
#include <thread>

#include "gallery/gallery.h"
#include "toolkit/button.h"
#include "toolkit/dialog.h"
#include "toolkit/menu.h"
#include "toolkit/menu_bar.h"
#include "toolkit/text_editor.h"

namespace gromlit {
namespace {

class GalleryTest : public testing::XFixture {
 protected:
  void SetUp() override {
    XFixture::SetUp();
    if (HasFatalFailure()) return;
    user = nullptr;  // no splash: it would hold everything up for two seconds
    gallery = MakeGallery();
    XMapWindow(dpy, gallery->window);
    Pump();
    PoseGallery(gallery);
    Pump();
  }

  bool Viewable(Window window) {
    XWindowAttributes is;
    return XGetWindowAttributes(dpy, window, &is) && is.map_state == IsViewable;
  }

  std::string ClickAt(int x, int y, int button = 1) {
    player->MoveTo(x, y);
    player->Press(button);
    Pump();
    player->Release(button);
    Pump();
    return gallery->status;
  }

  Gallery* gallery = nullptr;
};

TEST_F(GalleryTest, PosesWhatOnlyAHandBringsAbout) {
  EXPECT_TRUE(Viewable(gallery->menu->window));
  EXPECT_TRUE(Viewable(gallery->submenu->window));
  EXPECT_EQ(gallery->menu->selected, 3);
  EXPECT_EQ(gallery->menu->submenu, gallery->submenu);
  EXPECT_EQ(gallery->submenu->selected, 1);
  EXPECT_EQ(gallery->bar->selected, 1);
  EXPECT_EQ(gallery->focused->caret, kSolidCaret);
  EXPECT_TRUE(Viewable(gallery->question->window));
  EXPECT_TRUE(Viewable(gallery->message->window));
  EXPECT_FALSE(Viewable(gallery->popup->window));
}

TEST_F(GalleryTest, TheWidgetsAnswerTheMouse) {
  EXPECT_EQ(ClickAt(40, 74), "Button: Active");
  EXPECT_EQ(ClickAt(110, 74), "Button: Active");  // the inactive one says nothing
  EXPECT_EQ(ClickAt(20, 152), "Check box: unchecked");
  EXPECT_EQ(ClickAt(36, 224), "Tile: L");
  EXPECT_EQ(ClickAt(156, 224), "Tile: L");  // a passive one says nothing
  EXPECT_EQ(ClickAt(340, 294), "Tab: Hot key");
  // Button 1 would keep the scrollbar's handler busy until its release.
  EXPECT_EQ(ClickAt(347, 564, 3), "Scrollbar: offset 3") << "one step of the down arrow";
}

// Every widget, every few pixels, and the menus, fields and dialogs that are open.
TEST_F(GalleryTest, TheWheelPressesNothing) {
  const auto sweep = [this](const std::function<void(int x, int y)>& at) {
    for (int y = 5; y < kGalleryHeight && !HasFailure(); y += 11) {
      for (int x = 5; x < kGalleryWidth && !HasFailure(); x += 13) {
        player->MoveTo(x, y);
        at(x, y);
        Pump();
      }
    }
    player->MoveTo(1, kGalleryHeight + 20);
    Pump();
    return testing::TakeScreen(*player, 0, 0, kGalleryWidth, kGalleryHeight);
  };
  // Fields answer the pointer alone.
  const testing::Picture before = sweep([](int, int) {});
  const int ncalls = gallery->ncalls;
  const testing::Picture after = sweep([&](int x, int y) {
    for (const int button : {4, 5, 6}) player->Click(button);
    Pump();
    EXPECT_EQ(gallery->ncalls, ncalls) << gallery->status << " at " << x << ", " << y;
    EXPECT_FALSE(MenuHoldsPointer()) << x << ", " << y;
  });
  EXPECT_TRUE(after == before);
  EXPECT_TRUE(player->CanGrabPointer());
}

// Neither does it end what another button has begun.
TEST_F(GalleryTest, TheWheelEndsNothingThatAButtonHolds) {
  player->MoveTo(40, 74);  // a push button
  player->Press(1);
  Pump();
  player->Click(4);
  Pump();
  player->Release(1);
  Pump();
  EXPECT_STREQ(gallery->status, "Button: Active");

  player->MoveTo(20, 14);  // a menu of the bar
  player->Press(1);
  Pump();
  player->MoveTo(30, 38);
  Pump();
  const int ncalls = gallery->ncalls;
  player->Press(5);
  Pump();
  player->Release(5);
  Pump();
  EXPECT_EQ(gallery->ncalls, ncalls) << gallery->status;
  // The other order of the two releases.
  player->Press(4);
  Pump();
  player->Release(1);
  Pump();
  EXPECT_STREQ(gallery->status, "Menu: New");
  player->Release(4);
  Pump();

  player->MoveTo(84, 104);  // a pulldown's menu, which has the pointer
  player->Press(1);
  Pump();
  ASSERT_TRUE(MenuHoldsPointer());
  player->Click(5);
  Pump();
  EXPECT_TRUE(MenuHoldsPointer());
  player->Release(1);
  Pump();
  EXPECT_FALSE(MenuHoldsPointer());
}

TEST_F(GalleryTest, AMenuOfTheBarIsChosenFromWithTheButtonHeld) {
  player->MoveTo(20, 14);
  player->Press(1);
  Pump();
  player->MoveTo(30, 38);
  Pump();
  player->Release(1);
  Pump();
  EXPECT_STREQ(gallery->status, "Menu: New");
}

TEST_F(GalleryTest, ADialogPopsUpAndIsAnswered) {
  ClickAt(176, 104);
  ASSERT_TRUE(Viewable(gallery->popup->window));
  int x = 0;
  int y = 0;
  Window child;
  XTranslateCoordinates(dpy, gallery->popup->yes->window, root, 10, 10, &x, &y, &child);
  EXPECT_EQ(ClickAt(x, y), "Dialog: yes");
  EXPECT_FALSE(Viewable(gallery->popup->window));
}

TEST_F(GalleryTest, TheWindowManagersCloseClosesIt) {
  XEvent event{};
  event.xclient.type = ClientMessage;
  event.xclient.window = gallery->window;
  event.xclient.message_type = wm_protocols;
  event.xclient.format = 32;
  event.xclient.data.l[0] = static_cast<long>(wm_delete);
  XSendEvent(player->display(), gallery->window, False, NoEventMask, &event);
  XSync(player->display(), False);
  EXPECT_TRUE(PumpUntil([this] { return gallery->closed != 0; }));
}

// The release on a dialog gives everybody's pointer back, so the menu that had it closes with it:
// an open menu without the pointer would keep every button from being pressed.
TEST_F(GalleryTest, AReleaseOnADialogClosesTheMenuThatHeldThePointer) {
  player->MoveTo(84, 104);
  player->Press(1);
  Pump();
  ASSERT_TRUE(MenuHoldsPointer());
  XEvent event{};
  event.xbutton.type = ButtonRelease;
  event.xbutton.window = gallery->question->window;
  DispatchEvent(&event);
  EXPECT_FALSE(MenuHoldsPointer());
  player->Release(1);
  Pump();
  EXPECT_TRUE(player->CanGrabPointer());
  EXPECT_EQ(ClickAt(40, 74), "Button: Active");
}

// The user's hand on a connection and thread of its own: some widgets do not return before the
// button is up.
//
// Now and then, with no button down, the hand waits until the program has caught up (`pumps` counts
// how often it has): else most of the storm would be over before the first of it is read.
void Storm(testing::Player* hand, unsigned seed, int nevents, std::atomic<int>* sent,
           const std::atomic<int>* pumps) {
  constexpr KeySym kKeys[] = {XK_a,      XK_Z,    XK_1,     XK_space, XK_Return, XK_BackSpace,
                              XK_Delete, XK_Left, XK_Right, XK_End,   XK_Home,   XK_Tab,
                              XK_Up,     XK_Down, XK_k,     XK_d,     XK_Escape, XK_F1};
  constexpr KeySym kModifiers[] = {XK_Shift_L, XK_Control_L, XK_Alt_L};
  constexpr int kSpots[][2] = {{48, 74},   {120, 74},  {192, 74},  {84, 104},  {176, 104},
                               {22, 153},  {122, 153}, {36, 224},  {84, 224},  {150, 306},
                               {150, 338}, {340, 76},  {360, 205}, {450, 163}, {340, 294},
                               {440, 294}, {347, 437}, {347, 520}, {417, 500}, {487, 553},
                               {740, 78},  {740, 140}, {875, 150}, {774, 404}, {846, 404},
                               {852, 551}, {28, 14},   {86, 14},   {138, 14},  {80, 650}};
  std::mt19937 random(seed);
  const auto below = [&](int n) { return static_cast<int>(random() % static_cast<unsigned>(n)); };
  std::set<int> buttons;
  std::set<KeySym> modifiers;
  int x = 100;
  int y = 100;
  for (int i = 0; i < nevents; i++, ++*sent) {
    if (i % 20 == 0 && buttons.empty()) {
      const int now = *pumps;
      testing::WaitFor([&] { return *pumps > now + 1; }, std::chrono::seconds(2));
    }
    switch (below(10)) {
      case 0: {  // a click on a widget
        const auto& spot = kSpots[below(static_cast<int>(std::size(kSpots)))];
        x = spot[0] + below(9) - 4;
        y = spot[1] + below(9) - 4;
        hand->MoveTo(x, y);
        if (!buttons.contains(1)) hand->Click(1);
        break;
      }
      case 1:  // anywhere, mostly in the gallery
        x = below(kGalleryWidth + 40);
        y = below(kGalleryHeight + 40);
        hand->MoveTo(x, y);
        break;
      case 2:
      case 3:
      case 4:  // nearby, as in a drag
        x += below(41) - 20;
        y += below(41) - 20;
        hand->MoveTo(x, y);
        break;
      case 5:
      case 6:
      case 7: {
        const int button = below(3) == 0 ? 1 + below(5) : 1;
        if (buttons.insert(button).second) {
          hand->Press(button);
        } else {
          buttons.erase(button);
          hand->Release(button);
        }
        break;
      }
      case 8: {
        const KeySym key = kKeys[below(static_cast<int>(std::size(kKeys)))];
        hand->Type(key);
        break;
      }
      default: {
        const KeySym key = kModifiers[below(static_cast<int>(std::size(kModifiers)))];
        if (modifiers.insert(key).second) {
          hand->KeyDown(key);
        } else {
          modifiers.erase(key);
          hand->KeyUp(key);
        }
      }
    }
  }
  for (const int button : buttons) hand->Release(button);
  for (const KeySym key : modifiers) hand->KeyUp(key);
}

TEST_F(GalleryTest, AStormOfInputLeavesNoErrorAndNoGrab) {
  constexpr int kEvents = 20000;
  testing::Player hand(server->name());
  std::atomic<int> sent = 0;
  std::atomic<int> pumps = 0;
  std::atomic<bool> done = false;
  std::thread storm([&] {
    Storm(&hand, 20261120, kEvents, &sent, &pumps);
    done = true;
  });
  // Dialogs that were answered come back, so that the storm goes on with everything.
  int before = 0;
  while (!done) {
    Pump();
    pumps++;
    if (sent - before > 500) {
      before = sent;
      PopUpDialog(gallery->question, "Again", 740, 340);
      PopUpDialog(gallery->message, "Again", 740, 500);
    }
  }
  storm.join();
  Pump();
  EXPECT_EQ(sent, kEvents);
  EXPECT_GT(gallery->ncalls, kEvents / 40) << "the storm has not reached the widgets";
  EXPECT_EQ(errors, 0);
  player->MoveTo(5, kGalleryHeight - 5);
  Pump();
  EXPECT_EQ(player->Where().state & (Button1Mask | Button2Mask | Button3Mask), 0U);
  EXPECT_TRUE(player->CanGrabPointer()) << "a grab is stuck";
  Window focus = 0;
  int revert;
  XGetInputFocus(dpy, &focus, &revert);
  EXPECT_NE(focus, 0U) << "nobody has the keyboard";
  // It still works.
  XUnmapWindow(dpy, gallery->popup->window);
  Pump();
  EXPECT_EQ(ClickAt(40, 74), "Button: Active");
}

}  // namespace
}  // namespace gromlit
