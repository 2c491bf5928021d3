// Everything that opens menus, side by side, under a user who presses and moves at random.

// First: the test library's headers do not stand Xlib's macros.
#include "tests/x11/toolkit/menu_fixture.h"

#include <random>

#include "toolkit/menu_bar.h"
#include "toolkit/pulldown_button.h"

namespace gromlit {
namespace {

struct Popper {
  WindowObj* wobj;
  Window window;
  XMenu* menu;
};

void PopperPress(Popper* popper, XEvent* event) {
  PopUpMenuGrabbed(event->xbutton.x_root, event->xbutton.y_root, popper->menu);
}

class MenuStormTest : public testing::MenuFixture {
 protected:
  void SetUp() override {
    MenuFixture::SetUp();
    if (HasFatalFailure()) return;
    pool.spare.clear();
    popper.window = MakeChildWindow(top, 0, 40, 300, 200, lgrey.pixel, ButtonPressMask);
    popper.wobj = AllocWindowObj(popper.window, &popper);
    popper.menu = Chain(4);
    On<ButtonPress, PopperPress>(&popper);
    XMapWindow(dpy, popper.window);
    pulldown = MakePulldownButton(nullptr, top, "choose", 320, 60, 120, Chain(3));
    push = MakeButton(nullptr, top, "push", nullptr, 320, 120);
    titles[0] = MakePulldown("First", Chain(2));
    titles[1] = MakePulldown("Second", Chain(1));
    bar = MakeMenuBar(top, 0, 0, 300, labelFontinfo, titles, 2);
    XMapWindow(dpy, bar->window);
    Pump();
  }

  // Rebuilds the menus that the popper opens, as deleting a plug-in does.
  static void Rebuild(XMenu*, void*) {
    SpareMenus(&pool, popper.menu);
    popper.menu = Chain(1 + static_cast<int>(calls.size() % 4));
  }

  static XMenu* Chain(int depth) {
    XMenu* menu = nullptr;
    for (int i = 0; i < depth; i++) {
      const auto items = Array(
          {Item("m", menu), Item("run"), MakeMenuItem("build", Rebuild, nullptr), Item("last")});
      menu = TakeMenu(&pool, labelFontinfo, items.get(), 4);
    }
    return menu;
  }

  // Menus that are on the screen: viewable children of the root besides the window.
  int MenusShown() const {
    Window rootwin;
    Window parent;
    Window* children = nullptr;
    unsigned n = 0;
    XQueryTree(dpy, root, &rootwin, &parent, &children, &n);
    int shown = 0;
    for (unsigned i = 0; i < n; i++) {
      if (children[i] != top && Attributes(children[i]).map_state == IsViewable) shown++;
    }
    XFree(children);
    return shown;
  }

  static inline Popper popper{};  // outlives the test: the table keeps its address
  static inline XMenuPool pool;
  XButton* pulldown = nullptr;
  XButton* push = nullptr;
  XPulldown* titles[2] = {};
  XMenuBar* bar = nullptr;
};

TEST_F(MenuStormTest, NoMenuAndNoGrabIsLeft) {
  for (unsigned seed = 1; seed <= 12; seed++) {
    std::mt19937 random(seed);
    const auto below = [&](unsigned n) { return static_cast<int>(random() % n); };
    bool down[6] = {};
    int x = kTopX;
    int y = kTopY;
    for (int step = 0; step < 250; step++) {
      const int button = 1 + below(5);
      switch (below(4)) {
        case 0:
          player->Press(button);
          down[button] = true;
          break;
        case 1:
          if (down[button]) player->Release(button);
          down[button] = false;
          break;
        default:
          // Half of the time near the last place, where a menu may have opened.
          if (below(2) == 0) {
            x = kTopX - 20 + below(460);
            y = kTopY - 20 + below(200);
          }
          x += below(60);
          y += below(40);
          player->MoveTo(x, y);
      }
      // Often not: then presses, motion and releases wait in the queue together.
      if (below(3) == 0) Pump();
    }
    for (int button = 1; button <= 5; button++) {
      if (down[button]) player->Release(button);
    }
    Pump();
    // A menu that opened after the buttons went up waits for one click.
    player->MoveTo(1200, 1000);
    player->Click(1);
    Pump();
    EXPECT_TRUE(player->CanGrabPointer()) << "seed " << seed;
    EXPECT_EQ(MenusShown(), 0) << "seed " << seed;
    EXPECT_EQ(bar->selected, -1) << "seed " << seed;
    EXPECT_EQ(pulldown->state, kButtonActive) << "seed " << seed;
    EXPECT_EQ(push->state, kButtonActive) << "seed " << seed;
  }
  EXPECT_GT(calls.size(), 10u) << "hardly anything was chosen";
}

}  // namespace
}  // namespace gromlit
