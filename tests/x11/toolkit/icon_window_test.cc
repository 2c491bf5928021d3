// First: the test library's headers cannot bear Xlib's macros.
#include "tests/x11/toolkit/widget_fixture.h"

#include "tests/x11/toolkit/request_cost.h"
#include "toolkit/icon_window.h"

namespace gromlit {
namespace {

using testing::Cost;
using testing::CostOf;
using testing::Picture;

int calls;
void* lastarg;

int Note(void* arg) {
  calls++;
  lastarg = arg;
  return 0;
}

class IconWindowTest : public testing::WidgetFixture {
 protected:
  static constexpr int kX = 30;
  static constexpr int kY = 40;

  void SetUp() override {
    WidgetFixture::SetUp();
    calls = 0;
    lastarg = nullptr;
    symbol = GromlitSymbol{};
    for (unsigned row = 0; row < kIconSize; row++) symbol.icon[row] = 1U << row | 1U;  // "|\"
    symbol.icon[31] = 0xffffffff;
  }

  IconWindow* Make(void* arg) {
    IconWindow* iw = MakeIconWindow(top, kX, kY, &symbol, arg);
    iw->action = Note;
    XMapWindow(dpy, iw->window);
    Pump();
    return iw;
  }

  void DrawIcon(Picture* picture, int x, int y) {
    for (int row = 0; row < kIconSize; row++) {
      for (int column = 0; column < kIconSize; column++) {
        if ((symbol.icon[row] >> column & 1) != 0) picture->At(x + column, y + row) = kBlue;
      }
    }
  }

  GromlitSymbol symbol{};
};

TEST_F(IconWindowTest, ANewTileIsNotMapped) {
  const IconWindow* iw = MakeIconWindow(top, kX, kY, &symbol, this);
  XWindowAttributes is;
  ASSERT_TRUE(XGetWindowAttributes(dpy, iw->window, &is));
  EXPECT_EQ(is.map_state, IsUnmapped);
  EXPECT_EQ(is.x, kX);
  EXPECT_EQ(is.y, kY);
  EXPECT_EQ(is.width, 40);
  EXPECT_EQ(is.height, 40);
  EXPECT_EQ(is.border_width, 0);
  EXPECT_EQ(is.your_event_mask, ExposureMask | ButtonPressMask | ButtonReleaseMask);
  EXPECT_EQ(iw->sym, &symbol);
  EXPECT_EQ(iw->buttonarg, this);
  EXPECT_EQ(iw->action, nullptr);
  EXPECT_NE(iw->gc, buttongc);
  ASSERT_NE(iw->wobj, nullptr);
  EXPECT_EQ(iw->wobj->window, iw->window);
  EXPECT_EQ(iw->wobj->obj, iw);
}

TEST_F(IconWindowTest, APassiveTileSelectsNoButtonEvents) {
  const IconWindow* iw = MakeIconWindow(top, kX, kY, &symbol, nullptr);
  XWindowAttributes is;
  ASSERT_TRUE(XGetWindowAttributes(dpy, iw->window, &is));
  EXPECT_EQ(is.your_event_mask, ExposureMask);
}

TEST_F(IconWindowTest, AClickableTileIsRaisedWithABlueIcon) {
  Make(this);
  Picture expected(44, 44, kLightGrey);
  expected.Bevel(kWhite, kDarkGrey, 2, 2, 40, 40);
  DrawIcon(&expected, 6, 6);
  EXPECT_EQ(Take(top, kX - 2, kY - 2, 44, 44), expected);
}

TEST_F(IconWindowTest, APassiveTileIsWhiteWithAThinEdge) {
  Make(nullptr);
  Picture expected(44, 44, kLightGrey);
  expected.Fill(kWhite, 2, 2, 40, 40);
  expected.Line(kDarkGrey, 2, 2, 41, 2);
  expected.Line(kDarkGrey, 2, 2, 2, 41);
  DrawIcon(&expected, 6, 6);
  EXPECT_EQ(Take(top, kX - 2, kY - 2, 44, 44), expected);
}

TEST_F(IconWindowTest, EveryReleaseOnAClickableTileCallsBack) {
  Make(this);
  ClickAt(kX + 20, kY + 20);
  EXPECT_EQ(calls, 1);
  EXPECT_EQ(lastarg, this);
  // The release of a press that began here comes back from anywhere.
  MoveTo(kX + 20, kY + 20);
  player->Press(1);
  MoveTo(500, 300);
  player->Release(1);
  ASSERT_TRUE(PumpUntil([] { return calls == 2; }));
  ClickAt(kX, kY);
  EXPECT_EQ(calls, 3);
  MoveTo(kX + 20, kY + 20);
  player->Click(3);
  ASSERT_TRUE(PumpUntil([] { return calls == 4; }));
}

TEST_F(IconWindowTest, APassiveTileIgnoresClicks) {
  IconWindow* iw = Make(nullptr);
  ClickAt(kX + 20, kY + 20);
  EXPECT_EQ(calls, 0);
  XEvent sent{};  // nor does a release from another client get through
  sent.xbutton.type = ButtonRelease;
  sent.xbutton.window = iw->window;
  XSendEvent(player->display(), iw->window, False, NoEventMask, &sent);
  XSync(player->display(), False);
  Pump();
  EXPECT_EQ(calls, 0);
}

TEST_F(IconWindowTest, ATileWhoseOwnerSetNoCallbackCanBeClicked) {
  IconWindow* iw = Make(this);
  iw->action = nullptr;
  ClickAt(kX + 20, kY + 20);
  EXPECT_EQ(calls, 0);
}

int Hide(void* arg) {
  calls++;
  XUnmapWindow(dpy, *static_cast<Window*>(arg));
  return 1;
}

TEST_F(IconWindowTest, ACallbackMayHideTheWindow) {
  IconWindow* iw = Make(&top);
  iw->action = Hide;
  ClickAt(kX + 20, kY + 20);
  EXPECT_EQ(calls, 1);
}

TEST_F(IconWindowTest, ASymbolIconUsesTheForegroundOfTheContext) {
  GC gc = MakeWindowGC(top);
  XSetForeground(dpy, gc, dgrey.pixel);
  DrawSymbolIcon(top, gc, &symbol, 50, 60);
  Picture expected(40, 40, kLightGrey);
  DrawIcon(&expected, 4, 4);
  for (unsigned long& pixel : expected.pixels) {
    if (pixel == kBlue) pixel = kDarkGrey;
  }
  EXPECT_EQ(Take(top, 46, 56, 40, 40), expected);
  XFreeGC(dpy, gc);
}

TEST_F(IconWindowTest, AFullIconIsASquareInOneRequest) {
  for (uint32_t& row : symbol.icon) row = 0xffffffff;
  GC gc = MakeWindowGC(top);
  XSetForeground(dpy, gc, blue.pixel);
  DrawSymbolIcon(top, gc, &symbol, 4, 4);
  EXPECT_EQ(CostOf([&] { DrawSymbolIcon(top, gc, &symbol, 4, 4); }), (Cost{1, 0}));
  Picture expected(40, 40, kLightGrey);
  expected.Fill(kBlue, 4, 4, 32, 32);
  EXPECT_EQ(Take(top, 0, 0, 40, 40), expected);
  XFreeGC(dpy, gc);
}

TEST_F(IconWindowTest, AnEmptyIconAndNoSymbolDrawNothing) {
  for (uint32_t& row : symbol.icon) row = 0;
  GC gc = MakeWindowGC(top);
  EXPECT_EQ(CostOf([&] { DrawSymbolIcon(top, gc, &symbol, 4, 4); }), (Cost{0, 0}));
  EXPECT_EQ(CostOf([&] { DrawSymbolIcon(top, gc, nullptr, 4, 4); }), (Cost{0, 0}));
  XFreeGC(dpy, gc);
}

TEST_F(IconWindowTest, Costs) {
  XEvent event{};
  EXPECT_EQ(CostOf([&] { MakeIconWindow(top, 200, kY, &symbol, this); }), (Cost{2, 0}));
  IconWindow* clickable = Make(this);
  EXPECT_EQ(CostOf([&] { DrawIconWindow(clickable, &event); }), (Cost{7, 0}));
  EXPECT_EQ(CostOf([&] { IconWindowButtonRelease(clickable, &event); }), (Cost{0, 0}));
  IconWindow* passive = Make(nullptr);
  EXPECT_EQ(CostOf([&] { DrawIconWindow(passive, &event); }), (Cost{5, 0}));
}

}  // namespace
}  // namespace gromlit
