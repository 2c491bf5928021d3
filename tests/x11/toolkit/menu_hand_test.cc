// Menus with today's manners, tried by a hand and from the keyboard.
// First: the test library's headers cannot bear Xlib's macros.
#include "tests/x11/toolkit/menu_fixture.h"

#include <X11/extensions/XTest.h>
#include <X11/keysym.h>

#include <algorithm>
#include <cstdlib>

#include "core/option_files.h"
#include "display/draw_button.h"
#include "tests/support/process.h"
#include "toolkit/hidden.h"
#include "toolkit/menu_bar.h"
#include "toolkit/menu_hand.h"
#include "toolkit/menu_leaving.h"
#include "toolkit/menu_parts.h"
#include "toolkit/pulldown_button.h"
#include "toolkit/release_watch.h"
#include "toolkit/tab_order.h"

namespace gromlit {
namespace {

using testing::WaitFor;
using Names = std::vector<std::string>;

// A window whose press opens a menu at the pointer.
struct Host {
  WindowObj* wobj;
  Window window;
  XMenu* menu;
  int presses;
};

void HostPress(Host* host, XEvent* event) {
  host->presses++;
  if (host->menu == nullptr) return;
  PopUpMenuGrabbed(event->xbutton.x_root, event->xbutton.y_root, host->menu, &event->xbutton);
}

class MenuHandTest : public testing::MenuFixture {
 protected:
  static constexpr int kX = 300;
  static constexpr int kY = 200;
  static constexpr int kHigh = 1024;  // of the screen, pixels

  void SetUp() override {
    MenuFixture::SetUp();
    if (HasFatalFailure()) return;
    GetUserOptions();
    DefaultUserOptions(user);
    user->temp4 = kModernManners;
    XMoveResizeWindow(dpy, top, 0, 0, kScreen, kHigh);
    host.window = MakeChildWindow(top, 0, 0, kScreen, kHigh, lgrey.pixel, ButtonPressMask);
    host.wobj = AllocWindowObj(host.window, &host);
    host.menu = nullptr;
    host.presses = 0;
    On<ButtonPress, HostPress>(&host);
    XMapWindow(dpy, host.window);
    Pump();
  }
  void TearDown() override {
    if (HasFailure()) Save("failed");
    EXPECT_TRUE(CanGrabKeyboard()) << "the keyboard was left grabbed";
    if (user != nullptr) user->temp4 = kPlainManners;
    MenuFixture::TearDown();
  }

  void Save(const std::string& name) {
    if (const char* directory = std::getenv("GROMLIT_SCREENSHOTS"))
      testing::SaveScreen(player->display(),
                          std::string(directory) + "/menu-hand-" + name + ".png");
  }

  bool CanGrabKeyboard() {
    XSync(dpy, False);
    const int status = XGrabKeyboard(player->display(), player->root(), False, GrabModeAsync,
                                     GrabModeAsync, CurrentTime);
    if (status == GrabSuccess) XUngrabKeyboard(player->display(), CurrentTime);
    XSync(player->display(), False);
    return status == GrabSuccess;
  }
  bool HoldsNothing() { return player->CanGrabPointer() && CanGrabKeyboard(); }

  void Press(int button = 1) {
    player->Press(button);
    Pump();
  }
  void Release(int button = 1) {
    player->Release(button);
    Pump();
  }
  // Held longer than a click is.
  void ReleaseLater() {
    XTestFakeButtonEvent(player->display(), 1, False, 400);
    XSync(player->display(), False);
    Pump();
  }
  void MoveToPoint(int x, int y) {
    player->MoveTo(x, y);
    Pump();
  }
  // Presses and releases with a hand that moves by `tremble` in between, until the machine was
  // quick enough for that to be a click.
  void ClickOpen(XMenu* menu, int x, int y, int tremble = 0) {
    for (int attempt = 0; attempt < 10 && !Mapped(menu); attempt++) {
      MoveToPoint(x, y);
      Press();
      if (tremble != 0) MoveToPoint(x + tremble, y + tremble);
      Release();
    }
    ASSERT_TRUE(Mapped(menu));
  }
  void OpenPopup(XMenu* menu, int x = kX, int y = kY, int tremble = 0) {
    host.menu = menu;
    ClickOpen(menu, x, y, tremble);
  }
  void ClickHere() {
    Press();
    Release();
  }
  void Type(KeySym key) {
    player->Type(key);
    Pump();
  }
  void TypeAll(const std::vector<KeySym>& keys) {
    for (const KeySym key : keys) Type(key);
  }
  static std::vector<XMenuItem*> Rows(int n) {
    static std::vector<std::string> names;
    names.clear();
    names.reserve(static_cast<size_t>(n));
    std::vector<XMenuItem*> items;
    for (int i = 0; i < n; i++) {
      names.push_back("row " + std::to_string(i));
      items.push_back(Item(names.back().c_str()));
    }
    return items;
  }
  XMenuBar* Bar(int x, int y, const std::vector<XPulldown*>& titles) {
    const std::unique_ptr<XPulldown*[]> array(MakePulldownArray(static_cast<int>(titles.size())));
    std::copy(titles.begin(), titles.end(), array.get());
    XMenuBar* bar =
        MakeMenuBar(top, x, y, 0, labelFontinfo, array.get(), static_cast<int>(titles.size()));
    XMapRaised(dpy, bar->window);
    Pump();
    return bar;
  }
  static void Inside(const XMenu* menu) {
    const XWindowAttributes at = Attributes(menu->window);
    EXPECT_EQ(at.x, menu->x);
    EXPECT_EQ(at.y, menu->y);
    EXPECT_EQ(at.width, menu->width);
    EXPECT_EQ(at.height, menu->height);
    EXPECT_GE(at.x, 0);
    EXPECT_GE(at.y, 0);
    EXPECT_LE(at.x + at.width, kScreen);
    EXPECT_LE(at.y + at.height, kHigh);
  }

  static inline Host host{};  // outlives the test: the table keeps its address
};

// --- Clicks -----------------------------------------------------------------------------------

TEST_F(MenuHandTest, ClickLeavesTheMenuOpenForASecondOne) {
  XMenu* menu = Menu({Item("One"), Item("Two"), Item("Three")});
  OpenPopup(menu);
  EXPECT_FALSE(player->CanGrabPointer());
  EXPECT_FALSE(CanGrabKeyboard());
  EXPECT_EQ(calls, Names());
  EXPECT_EQ(menu->selected, -1);
  MoveToItem(menu, 1);
  EXPECT_EQ(menu->selected, 1);
  Press();
  EXPECT_TRUE(Mapped(menu)) << "the release chooses";
  Release();
  EXPECT_EQ(calls, Names({"Two"}));
  EXPECT_FALSE(Mapped(menu));
  EXPECT_TRUE(HoldsNothing());
}

TEST_F(MenuHandTest, TremblingHandChoosesNothing) {
  XMenu* menu = Menu({Item("One"), Item("Two"), Item("Three")});
  for (const int tremble : {1, 3}) {
    OpenPopup(menu, kX, kY, tremble);
    EXPECT_EQ(menu->selected, -1) << tremble;
    Type(XK_Escape);
    ASSERT_FALSE(Mapped(menu));
  }
  // Neither does one that takes its time; that is no click.
  MoveToPoint(kX, kY);
  Press();
  MoveToPoint(kX + 1, kY + 1);
  EXPECT_EQ(menu->selected, -1);
  ReleaseLater();
  EXPECT_FALSE(Mapped(menu));
  EXPECT_EQ(calls, Names());
  EXPECT_TRUE(HoldsNothing());
}

TEST_F(MenuHandTest, HeldButtonChoosesAsItAlwaysDid) {
  XMenu* menu = Menu({Item("One"), Item("Two"), Item("Three")});
  host.menu = menu;
  MoveToPoint(kX, kY);
  Press();
  MoveToItem(menu, 2);
  EXPECT_EQ(menu->selected, 2);
  Release();
  EXPECT_EQ(calls, Names({"Three"}));
  EXPECT_FALSE(Mapped(menu));
  // Off the items nothing is chosen.
  MoveToPoint(kX, kY);
  Press();
  MoveToItem(menu, 2);
  MoveToPoint(kX - 40, kY - 40);
  EXPECT_EQ(menu->selected, -1);
  Release();
  EXPECT_EQ(calls, Names({"Three"}));
  EXPECT_FALSE(Mapped(menu));
}

TEST_F(MenuHandTest, PressOutsideClosesTheMenuAndReachesNobody) {
  XMenu* menu = Menu({Item("One"), Item("Two")});
  Display* other = player->display();
  const Window stranger =
      XCreateSimpleWindow(other, player->root(), 700, 500, 100, 100, 0, 0, 0xffffff);
  XSetWindowAttributes unframed{};
  unframed.override_redirect = True;
  XChangeWindowAttributes(other, stranger, CWOverrideRedirect, &unframed);
  XSelectInput(other, stranger, ButtonPressMask | ButtonReleaseMask);
  XMapRaised(other, stranger);
  XSync(other, False);
  OpenPopup(menu);
  MoveToPoint(750, 550);
  Press();
  EXPECT_FALSE(Mapped(menu));
  EXPECT_TRUE(MenuHoldsPointer()) << "until the release";
  EXPECT_TRUE(CanGrabKeyboard());
  Release();
  EXPECT_TRUE(HoldsNothing());
  EXPECT_FALSE(MenuHoldsPointer());
  EXPECT_EQ(XPending(other), 0) << "the press, or its release, got through";
  const int presses = host.presses;
  ClickHere();
  XSync(other, False);
  EXPECT_EQ(XPending(other), 2) << "the next click is the stranger's";
  EXPECT_EQ(host.presses, presses);
  EXPECT_EQ(calls, Names());
  XDestroyWindow(other, stranger);
  XSync(other, True);
}

// Whatever windows of the program another client destroys between two menus.
TEST_F(MenuHandTest, PressOutsideReachesNobodyThoughTheWindowThatCaughtTheLastOneHasGone) {
  XMenu* menu = Menu({Item("One"), Item("Two")});
  for (int round = 0; round < 2; round++) {
    OpenPopup(menu);
    MoveToPoint(kX - 100, kY);
    Press();
    EXPECT_FALSE(Mapped(menu));
    EXPECT_TRUE(HandIsLeaving()) << "until the release";
    EXPECT_FALSE(player->CanGrabPointer());
    Release();
    EXPECT_FALSE(HandIsLeaving());
    EXPECT_TRUE(HoldsNothing());
    for (const Window window : testing::ChildrenOf(player->display(), player->root()))
      if (PlaceOf(window) == testing::Place{-2, -2, 1, 1})
        XDestroyWindow(player->display(), window);
    XSync(player->display(), False);
  }
}

// A hand that is quicker than the program reads: what it clicks on behind a menu is not lost.
TEST_F(MenuHandTest, ClickBehindTheOneThatChoosesActsOnWhatLiesThere) {
  for (const int manners : {kModernManners, kPlainManners}) {
    user->temp4 = manners;
    XMenu* menu = Menu({Item("One"), Item("Two")});
    host.menu = menu;
    MoveToPoint(kX, kY);
    Press();
    ASSERT_TRUE(Mapped(menu));
    MoveToItem(menu, 1);
    host.menu = nullptr;
    host.presses = 0;
    player->Release(1);
    player->MoveTo(kX - 100, kY);
    player->Click(1);
    Pump();
    EXPECT_EQ(calls, Names({"Two"}));
    EXPECT_EQ(host.presses, 1);
    EXPECT_TRUE(HoldsNothing());
    calls.clear();
  }
}

TEST_F(MenuHandTest, ClickBehindTheOneThatClosesActsOnWhatLiesThere) {
  XMenu* menu = Menu({Item("One"), Item("Two")});
  OpenPopup(menu);
  host.menu = nullptr;
  host.presses = 0;
  MoveToPoint(kX - 100, kY);
  Press();
  EXPECT_TRUE(HandIsLeaving());
  player->Release(1);
  player->Click(1);
  Pump();
  EXPECT_EQ(host.presses, 1) << "the first one closes the menu";
  EXPECT_TRUE(HoldsNothing());
}

TEST_F(MenuHandTest, DragThroughABarThatIsReadLateChooses) {
  XMenu* file = Menu({Item("New"), Item("Open")});
  XMenu* edit = Menu({Item("Cut"), Item("Copy")});
  XMenuBar* bar = Bar(100, 100, {MakePulldown("File", file), MakePulldown("Edit", edit)});
  const auto title = [&](int i) { return 100 + bar->itemx[i] + bar->itemwidth[i] / 2; };
  MoveToPoint(title(0), 110);
  Press();
  ASSERT_TRUE(Mapped(file));
  player->MoveTo(title(1), 110);
  // The second row, as it lay in the menu before.
  player->MoveTo(title(1), file->y + 4 + ih + ih / 2);
  player->Release(1);
  Pump();
  EXPECT_EQ(calls, Names({"Copy"}));
  EXPECT_FALSE(Mapped(edit));
  EXPECT_TRUE(HoldsNothing());
}

TEST_F(MenuHandTest, ReleaseThatIsNeverSeenDoesNotKeepThePointer) {
  XMenu* menu = Menu({Item("One"), Item("Two")});
  // Both are over before the press is read: the menu stands, and the next click counts.
  host.menu = menu;
  MoveToPoint(kX, kY);
  player->Click(1);
  Pump();
  ASSERT_TRUE(Mapped(menu));
  MoveToItem(menu, 0);
  EXPECT_EQ(menu->selected, 0);
  ClickHere();
  EXPECT_EQ(calls, Names({"One"}));
  EXPECT_TRUE(HoldsNothing());
  // The same for the press that closes.
  OpenPopup(menu);
  MoveToPoint(kX - 100, kY);
  player->Click(1);
  Pump();
  EXPECT_FALSE(Mapped(menu));
  EXPECT_TRUE(HoldsNothing());
}

TEST_F(MenuHandTest, RefusedPointerClosesAndARefusedKeyboardDoesNot) {
  XMenu* menu = Menu({Item("One"), Item("Two")});
  XGrabKeyboard(player->display(), player->root(), False, GrabModeAsync, GrabModeAsync,
                CurrentTime);
  XSync(player->display(), False);
  OpenPopup(menu);
  MoveToItem(menu, 1);
  ClickHere();
  EXPECT_EQ(calls, Names({"Two"}));
  XUngrabKeyboard(player->display(), CurrentTime);
  XSync(player->display(), False);
  EXPECT_TRUE(HoldsNothing());
  XGrabPointer(player->display(), player->root(), False, 0, GrabModeAsync, GrabModeAsync, None,
               None, CurrentTime);
  XSync(player->display(), False);
  EXPECT_FALSE(PopUpMenuGrabbed(kX, kY, menu));
  EXPECT_FALSE(Mapped(menu));
  EXPECT_TRUE(CanGrabKeyboard());
  XUngrabPointer(player->display(), CurrentTime);
  XSync(player->display(), False);
}

// With the pointer grabbed, the server does not freeze it for the draw button.
TEST_F(MenuHandTest, DrawButtonIsAnsweredWhileAMenuIsOpen) {
  XMenu* menu = Menu({Item("One"), Item("Two")});
  ASSERT_TRUE(GrabDrawButton(3));
  OpenPopup(menu);
  MoveToItem(menu, 0);
  Press(3);
  Release(3);
  EXPECT_EQ(calls, Names({"One"}));
  OpenPopup(menu);
  MoveToPoint(kX + 300, kY);
  Press(3);
  EXPECT_FALSE(Mapped(menu));
  MoveToPoint(kX + 320, kY + 10);
  EXPECT_EQ(player->Where().x, kX + 320);
  Release(3);
  EXPECT_TRUE(HoldsNothing()) << "the pointer is frozen";
  const int presses = host.presses;
  host.menu = nullptr;
  ClickHere();
  EXPECT_EQ(host.presses, presses + 1);
  XUngrabButton(dpy, 3, AnyModifier, root);
}

TEST_F(MenuHandTest, LateEventsAndChangedMannersDoNoHarm) {
  XMenu* menu = Menu({Item("One"), Item("Two")});
  OpenPopup(menu);
  user->temp4 = kPlainManners;
  MoveToItem(menu, 1);
  EXPECT_EQ(menu->selected, 1) << "as it was opened";
  ClickHere();
  EXPECT_EQ(calls, Names({"Two"}));
  EXPECT_TRUE(HoldsNothing());
  user->temp4 = kModernManners;
  for (const int type : {MotionNotify, ButtonPress, ButtonRelease, KeyPress}) {
    XEvent event{};
    event.type = type;
    event.xany.display = dpy;
    event.xany.window = menu->window;
    event.xbutton.x_root = menu->x + 10;
    event.xbutton.y_root = menu->y + 10;
    event.xbutton.button = 1;
    if (type == KeyPress) event.xkey.keycode = XKeysymToKeycode(dpy, XK_Return);
    DispatchEvent(&event);
  }
  Pump();
  EXPECT_FALSE(Mapped(menu));
  EXPECT_EQ(calls, Names({"Two"}));
  // A menu that is filled anew while it is open gives everything back.
  OpenPopup(menu);
  Remake(menu, {Item("Other")});
  Pump();
  EXPECT_TRUE(HoldsNothing());
  EXPECT_FALSE(Mapped(menu));
}

// --- Keys -------------------------------------------------------------------------------------

TEST_F(MenuHandTest, KeysMoveChooseAndClose) {
  XMenu* menu = Menu({Item("Left"), Item("Middle"), Item("Medium"), Item("Right")});
  OpenPopup(menu);
  const std::vector<std::pair<KeySym, int>> walk = {
      {XK_Down, 0}, {XK_Down, 1}, {XK_Up, 0},     {XK_Up, 3},      {XK_Down, 0},
      {XK_End, 3},  {XK_Home, 0}, {XK_KP_End, 3}, {XK_Page_Up, 0}, {XK_Page_Down, 3},
      {XK_m, 1},    {XK_e, 2},    {XK_x, 2},
  };
  for (const auto& [key, item] : walk) {
    Type(key);
    EXPECT_EQ(menu->selected, item) << XKeysymToString(key);
  }
  const Window window = menu->window;
  EXPECT_EQ(PixelOf(window, 2, 2 * ih + 10), kWhite) << "highlighted";
  EXPECT_EQ(PixelOf(window, 2, ih + 10), kLightGrey) << "no more";
  Type(XK_Return);
  EXPECT_EQ(calls, Names({"Medium"}));
  EXPECT_FALSE(Mapped(menu));
  EXPECT_TRUE(HoldsNothing());
  // Return on nothing does nothing.
  OpenPopup(menu);
  Type(XK_Return);
  EXPECT_TRUE(Mapped(menu));
  // A pause begins the letters anew: each of these is the first one.
  for (const Time time : {Time{5000}, Time{6500}}) {
    XKeyEvent key{};
    key.type = KeyPress;
    key.display = dpy;
    key.keycode = XKeysymToKeycode(dpy, time == 5000 ? XK_m : XK_r);
    key.time = time;
    HandKey(&key);
    EXPECT_EQ(menu->selected, time == 5000 ? 1 : 3);
  }
  Type(XK_Escape);
  EXPECT_FALSE(Mapped(menu));
  EXPECT_TRUE(HoldsNothing());
  EXPECT_EQ(calls, Names({"Medium"}));
}

TEST_F(MenuHandTest, KeysGoIntoSubmenusAndOut) {
  XMenu* deep = Menu({Item("Deepest")});
  XMenu* child = Menu({Item("Child"), Item("deeper", deep)});
  XMenu* menu = Menu({Item("Plain"), Item("more", child)});
  OpenPopup(menu);
  TypeAll({XK_Down, XK_Down});
  EXPECT_FALSE(Mapped(child)) << "not before it is asked for";
  Type(XK_Right);
  EXPECT_TRUE(Mapped(child));
  EXPECT_EQ(child->selected, 0);
  Type(XK_Left);
  EXPECT_FALSE(Mapped(child));
  EXPECT_EQ(menu->selected, 1);
  TypeAll({XK_Return, XK_Down, XK_Return});
  EXPECT_TRUE(Mapped(deep));
  EXPECT_EQ(deep->selected, 0);
  Type(XK_Left);
  EXPECT_FALSE(Mapped(deep));
  EXPECT_TRUE(Mapped(child));
  TypeAll({XK_Right, XK_Return});
  EXPECT_EQ(calls, Names({"Deepest", "deeper", "more"}));
  for (const XMenu* closed : {menu, child, deep}) EXPECT_FALSE(Mapped(closed));
  EXPECT_TRUE(HoldsNothing());
  // Escape closes all of it.
  OpenPopup(menu);
  TypeAll({XK_End, XK_Right, XK_Escape});
  for (const XMenu* closed : {menu, child}) EXPECT_FALSE(Mapped(closed));
  EXPECT_TRUE(HoldsNothing());
}

// --- Places -----------------------------------------------------------------------------------

TEST_F(MenuHandTest, MenusAndSubmenusStayOnTheScreen) {
  XMenu* deep = Menu({Item("Deepest"), Item("and another")});
  XMenu* child = Menu({Item("more of it", deep), Item("Child")});
  XMenu* menu = Menu({Item("more", child), Item("Plain"), Item("Last")});
  OpenPopup(menu, kScreen - 5, kHigh - 5);
  Inside(menu);
  EXPECT_EQ(menu->x + menu->width, kScreen - 5) << "left of the pointer";
  EXPECT_EQ(menu->y + menu->height, kHigh - 5) << "above it";
  MoveToItem(menu, 0);
  ASSERT_TRUE(Mapped(child));
  Inside(child);
  EXPECT_EQ(child->x + child->width, menu->x) << "on the other side";
  MoveToItem(child, 0);
  ASSERT_TRUE(Mapped(deep));
  EXPECT_EQ(deep->x + deep->width, child->x) << "and further that way";
  Save("flipped");
  MoveToItem(deep, 1);
  ClickHere();
  EXPECT_EQ(calls, Names({"and another", "more of it", "more"}));
  // With room they open as they always did.
  calls.clear();
  OpenPopup(menu, kX, kY);
  EXPECT_EQ(menu->x, kX);
  EXPECT_EQ(menu->y, kY);
  MoveToItem(menu, 0);
  EXPECT_EQ(child->x, menu->x + menu->width);
  EXPECT_EQ(child->y, menu->y);
  Type(XK_Escape);
}

// Too wide for either side they hang below the item that opens them, which stays to be seen.
TEST_F(MenuHandTest, ChainOfWideMenusCanBeChosenFromToItsEnd) {
  const std::string wide(90, 'W');
  XMenu* next = nullptr;
  std::vector<XMenu*> chain;
  for (int i = 0; i < 10; i++) {
    std::vector<XMenuItem*> items;
    if (next != nullptr) items.push_back(Item("more...", next));
    while (items.size() < 20) items.push_back(Item(wide.c_str()));
    next = Menu(items);
    chain.insert(chain.begin(), next);
  }
  ASSERT_GT(2 * next->width, kScreen);
  const auto row = [this](const XMenu* menu, int i) {
    // The rows of a menu that is folded begin below its arrow.
    MoveIn(menu, menu->width / 2, 4 + (menu->scrolls != 0 ? i + 1 : i) * ih + ih / 2);
  };
  for (const int y : {30, 600, kHigh - 30}) {
    for (const size_t last : {size_t{4}, size_t{9}}) {
      calls.clear();
      OpenPopup(chain[0], 20, y);
      for (size_t i = 0; i < last; i++) {
        row(chain[i], 0);
        ASSERT_EQ(chain[i]->selected, 0) << i << " from " << y;
        // It would cover the items that the hand is perhaps on its way to.
        ASSERT_FALSE(Mapped(chain[i + 1])) << i << " from " << y;
        ClickHere();
        ASSERT_TRUE(Mapped(chain[i + 1])) << i << " from " << y;
        ASSERT_EQ(chain[i + 1]->selected, -1) << "it opened below the pointer";
        Inside(chain[i + 1]);
      }
      if (last == 9) Save("wide-" + std::to_string(y));
      row(chain[last], 0);
      row(chain[last], 3);
      EXPECT_EQ(chain[last]->selected, 3);
      ClickHere();
      EXPECT_EQ(calls.size(), last + 1) << "from " << y;
      EXPECT_EQ(calls.front(), wide);
    }
  }
}

TEST_F(MenuHandTest, MenuLongerThanTheScreenScrolls) {
  XMenu* menu = Menu(Rows(200));
  const int whole = menu->height;
  ASSERT_GT(whole, kHigh);
  OpenPopup(menu, kX, 700);
  Inside(menu);
  const int rows = menu->visible;
  EXPECT_EQ(menu->height, (rows + 2) * ih + 6);
  EXPECT_GT(menu->height, kHigh - 2 * ih);
  // By the wheel, over an item.
  MoveToPoint(menu->x + 20, menu->y + 4 + 10 * ih + ih / 2);
  EXPECT_EQ(menu->selected, 9);
  player->Click(5);
  Pump();
  EXPECT_EQ(menu->top, 1);
  EXPECT_EQ(menu->selected, 10) << "the one that is below the pointer now";
  MenuWheel(menu, -3);
  EXPECT_EQ(menu->top, 0);
  EXPECT_EQ(menu->selected, 9);
  // By the keyboard.
  Type(XK_End);
  EXPECT_EQ(menu->selected, 199);
  EXPECT_EQ(menu->top, 200 - rows);
  Save("long");
  Type(XK_Page_Up);
  EXPECT_EQ(menu->selected, 200 - rows);
  EXPECT_EQ(menu->top, 200 - rows);
  Type(XK_Up);
  EXPECT_EQ(menu->top, 199 - rows);
  // By resting on an arrow, for as long as there is something to see.
  MoveToPoint(menu->x + 20, menu->y + 4 + ih / 2);
  EXPECT_EQ(menu->selected, 199 - rows) << "the arrow is no item";
  EXPECT_GE(MenuScrollWait(), 0);
  ASSERT_TRUE(PumpUntil([&] {
    ScrollRestedMenu();
    return menu->top < 199 - rows - 3;
  }));
  MoveToPoint(menu->x + 20, menu->y + 4 + 5 * ih + ih / 2);
  EXPECT_EQ(MenuScrollWait(), -1);
  EXPECT_EQ(menu->selected, menu->top + 4);
  const std::string expected = menu->items[menu->selected]->label;
  ClickHere();
  EXPECT_EQ(calls, Names({expected}));
  // A click on an arrow neither chooses nor closes.
  OpenPopup(menu, kX, 700);
  MoveToPoint(menu->x + 20, menu->y + menu->height - 4 - ih / 2);
  ClickHere();
  EXPECT_TRUE(Mapped(menu));
  Type(XK_Escape);
  // And with plain manners it is as long as it is.
  user->temp4 = kPlainManners;
  PopUpMenu(kX, kY, menu);
  Pump();
  EXPECT_EQ(menu->height, whole);
  EXPECT_EQ(Attributes(menu->window).height, whole);
  EXPECT_EQ(menu->visible, 200);
  PopDownMenu(menu);
}

TEST_F(MenuHandTest, PulldownOpensBelowItsMark) {
  XMenu* menu = Menu({Item("Left"), Item("Middle"), Item("Right")});
  XButton* button = MakePulldownButton(nullptr, top, "Middle", 400, 300, 140, menu);
  XRaiseWindow(dpy, button->window);
  Pump();
  ClickOpen(menu, 410, 310, 1);
  EXPECT_EQ(menu->x + menu->width, 400 + 140 - 8) << "ends where the mark does";
  EXPECT_EQ(menu->y, 300 + 24);
  EXPECT_EQ(calls, Names());
  EXPECT_EQ(button->state, kButtonActive);
  MoveToItem(menu, 2);
  ClickHere();
  EXPECT_EQ(calls, Names({"Right"}));
  // A click on the button closes it again, and opens nothing.
  ClickOpen(menu, 410, 310);
  MoveToPoint(415, 310);
  ClickHere();
  EXPECT_FALSE(Mapped(menu));
  EXPECT_TRUE(HoldsNothing());
  // At the foot of the screen it opens above, at its left edge further right.
  XMoveWindow(dpy, button->window, -110, kHigh - 30);
  Pump();
  ClickOpen(menu, 10, kHigh - 20);
  Inside(menu);
  EXPECT_EQ(menu->y + menu->height, kHigh - 30);
  EXPECT_EQ(menu->x, 0);
  Type(XK_Escape);
  // By the keyboard, of which it is a stop.
  XMoveWindow(dpy, button->window, 400, 300);
  Pump();
  const std::vector<Window> stops = TabStops(top);
  ASSERT_NE(std::find(stops.begin(), stops.end(), button->window), stops.end());
  TakeKeys(button->window);
  Pump();
  EXPECT_EQ(PixelOf(button->window, 4, 10), kDarkGrey) << "a frame shows it";
  EXPECT_EQ(PixelOf(button->window, 140 - 24, 10), kWhite) << "the mark is there, too";
  calls.clear();
  Type(XK_space);
  ASSERT_TRUE(Mapped(menu));
  EXPECT_EQ(menu->selected, 0);
  TypeAll({XK_m, XK_Return});
  EXPECT_EQ(calls, Names({"Middle"}));
  EXPECT_TRUE(HoldsNothing());
  Type(XK_Down);
  EXPECT_TRUE(Mapped(menu)) << "the keyboard came back to the button";
  Type(XK_Escape);
  XSetInputFocus(dpy, PointerRoot, RevertToPointerRoot, CurrentTime);
  Pump();
  // With plain manners over itself.
  user->temp4 = kPlainManners;
  XMoveWindow(dpy, button->window, 400, 300);
  MoveToPoint(410, 310);
  Press();
  EXPECT_EQ(menu->x, 400);
  EXPECT_EQ(menu->y, 300);
  Release();
  EXPECT_FALSE(Mapped(menu));
}

// Of two monitors side by side the one with the pointer counts.
TEST_F(MenuHandTest, MenusStayOnTheirMonitor) {
  const std::string size = "640/300x1024/200";
  const auto monitor = [&](const char* name, const char* left, const char* output) {
    testing::Process set({"xrandr", "--setmonitor", name, size + "+" + left + "+0", output});
    ASSERT_EQ(set.Wait(), 0);
  };
  monitor("left", "0", "screen");
  monitor("right", "640", "none");
  XMenu* child = Menu({Item("Child")});
  XMenu* menu = Menu({Item("more", child), Item("Plain")});
  OpenPopup(menu, 635, kY);
  EXPECT_EQ(menu->x + menu->width, 635);
  MoveToItem(menu, 0);
  EXPECT_EQ(child->x + child->width, menu->x);
  Type(XK_Escape);
  OpenPopup(menu, 645, kY);
  EXPECT_EQ(menu->x, 645);
  Type(XK_Escape);
  for (const char* name : {"left", "right"})
    testing::Process({"xrandr", "--delmonitor", name}).Wait();
}

// --- The menu bar -----------------------------------------------------------------------------

TEST_F(MenuHandTest, BarStaysOpenAndChangesItsMenus) {
  XMenu* file = Menu({Item("New"), Item("Open")});
  XMenu* edit = Menu({Item("Cut"), Item("Copy")});
  XMenu* help = Menu({Item("About")});
  XMenuBar* bar = Bar(100, 100,
                      {MakePulldown("File", file), MakePulldown("Edit", edit),
                       MakePulldown("None", nullptr), MakePulldown("Help", help)});
  const auto title = [&](int i) { return 100 + bar->itemx[i] + bar->itemwidth[i] / 2; };
  ClickOpen(file, title(0), 110, 1);
  EXPECT_EQ(file->y, 100 + ih + 4);
  EXPECT_EQ(file->x, 100 + bar->itemx[0] - 8);
  EXPECT_EQ(bar->selected, 0);
  EXPECT_EQ(calls, Names());
  MoveToPoint(title(1), 110);
  EXPECT_TRUE(Mapped(edit));
  EXPECT_FALSE(Mapped(file));
  MoveToPoint(title(2), 110);
  EXPECT_TRUE(Mapped(edit)) << "that title has nothing to open";
  MoveToItem(edit, 1);
  EXPECT_EQ(edit->selected, 1);
  ClickHere();
  EXPECT_EQ(calls, Names({"Copy"}));
  EXPECT_EQ(bar->selected, -1);
  EXPECT_TRUE(HoldsNothing());
  EXPECT_EQ(PixelOf(bar->window, bar->itemx[1] - 8, 10), kLightGrey) << "the title is flat again";
  // Held, as it always was.
  MoveToPoint(title(0), 110);
  Press();
  MoveToPoint(title(3), 110);
  EXPECT_TRUE(Mapped(help));
  MoveToItem(help, 0);
  Release();
  EXPECT_EQ(calls, Names({"Copy", "About"}));
  EXPECT_TRUE(HoldsNothing());
  // A second click on the title closes it, one on another changes the menu.
  ClickOpen(file, title(0), 110);
  MoveToPoint(title(3), 110);
  ClickOpen(help, title(3), 110);
  ClickHere();
  EXPECT_FALSE(Mapped(help));
  EXPECT_EQ(bar->selected, -1);
  EXPECT_TRUE(HoldsNothing());
  // By keys: past the title without a menu, and round.
  ASSERT_TRUE(MenuBarOpenByHand(bar, 1, nullptr));
  Pump();
  EXPECT_EQ(edit->selected, 0);
  const std::vector<std::pair<KeySym, XMenu*>> walk = {
      {XK_Right, help}, {XK_Right, file}, {XK_Left, help}, {XK_Left, edit}};
  for (const auto& [key, menu] : walk) {
    Type(key);
    EXPECT_TRUE(Mapped(menu));
    EXPECT_EQ(menu->selected, 0);
    EXPECT_FALSE(player->CanGrabPointer());
    EXPECT_FALSE(CanGrabKeyboard());
  }
  TypeAll({XK_Down, XK_Return});
  EXPECT_EQ(calls, Names({"Copy", "About", "Copy"}));
  EXPECT_EQ(bar->selected, -1);
  ASSERT_TRUE(MenuBarOpenByHand(bar, 0, nullptr));
  Pump();
  Type(XK_F10);
  EXPECT_FALSE(Mapped(file));
  EXPECT_TRUE(HoldsNothing());
}

TEST_F(MenuHandTest, BarThatGoesFromTheScreenTakesItsMenuAlong) {
  XMenu* file = Menu({Item("New"), Item("Open")});
  XMenuBar* bar = Bar(100, 100, {MakePulldown("File", file)});
  ClickOpen(file, 120, 110);
  XUnmapWindow(dpy, bar->window);
  Pump();
  XEvent unmapped{};
  ReleaseHidden(nullptr, &unmapped);
  Pump();
  EXPECT_FALSE(Mapped(file));
  EXPECT_EQ(bar->selected, -1);
  EXPECT_TRUE(HoldsNothing());
  // A click that another client sends opens it, and its release does not close it.
  XMapRaised(dpy, bar->window);
  Pump();
  for (const int type : {ButtonPress, ButtonRelease}) {
    XEvent event{};
    event.xbutton.type = type;
    event.xbutton.window = bar->window;
    event.xbutton.root = root;
    event.xbutton.button = 1;
    event.xbutton.x = 20;
    event.xbutton.y = 10;
    event.xbutton.x_root = 120;
    event.xbutton.y_root = 110;
    event.xbutton.same_screen = True;
    XSendEvent(player->display(), bar->window, False,
               type == ButtonPress ? ButtonPressMask : ButtonReleaseMask, &event);
  }
  XSync(player->display(), False);
  ASSERT_TRUE(PumpUntil([&] { return Mapped(file); }));
  MoveToItem(file, 1);
  ClickHere();
  EXPECT_EQ(calls, Names({"Open"}));
  EXPECT_TRUE(HoldsNothing());
}

// --- Costs ------------------------------------------------------------------------------------

TEST_F(MenuHandTest, Costs) {
  using testing::Cost;
  using testing::CostOf;
  XMenu* menu = Menu({Item("One"), Item("Two")});
  OpenPopup(menu);
  Type(XK_Escape);
  EXPECT_EQ(CostOf([&] { PopUpMenuGrabbed(kX, kY, menu, nullptr); }), (Cost{9, 3}))
      << "with the highlight of the first item, as it is opened by a key";
  Pump();
  XMotionEvent motion{};
  motion.x_root = kX + 10;
  motion.y_root = kY + 4 + ih / 2;
  EXPECT_EQ(CostOf([&] { HandMotion(motion); }), (Cost{0, 0})) << "the same item";
  motion.y_root += ih;
  EXPECT_EQ(CostOf([&] { HandMotion(motion); }), (Cost{7, 0})) << "as with plain manners";
  EXPECT_EQ(CostOf([&] { PopDownMenu(menu); }), (Cost{3, 0}));
  Pump();
  // Who has chosen plain ones pays nothing of this.
  user->temp4 = kPlainManners;
  EXPECT_EQ(CostOf([&] { PopUpMenuGrabbed(kX, kY, menu); }), (Cost{3, 1}));
  EXPECT_EQ(CostOf([&] { PopDownMenu(menu); }), (Cost{2, 0}));
}

// --- Storm ------------------------------------------------------------------------------------

// Whatever a hand and a keyboard do, in whatever order it is read: in the end everything is closed
// and given back.
TEST_F(MenuHandTest, StormOfInputLeavesNothingBehind) {
  XMenu* deep = Menu({Item("Deepest"), Item("and more")});
  XMenu* child = Menu({Item("Child"), Item("deeper", deep)});
  XMenu* popup = Menu({Item("Plain"), Item("more", child), Item("Last")});
  XMenu* file = Menu(Rows(120));
  XMenu* edit = Menu({Item("Cut"), Item("more", child)});
  XMenuBar* bar = Bar(200, 300, {MakePulldown("File", file), MakePulldown("Edit", edit)});
  XButton* button = MakePulldownButton(nullptr, top, "Button", 400, 500, 140, popup);
  XRaiseWindow(dpy, button->window);
  host.menu = popup;
  const std::vector<KeySym> keys = {XK_Up,     XK_Down, XK_Left, XK_Right,     XK_Return,
                                    XK_Escape, XK_End,  XK_m,    XK_Page_Down, XK_F10};
  unsigned seed = 4711;
  const auto random = [&](int n) {
    seed = seed * 1664525 + 1013904223;
    return static_cast<int>((seed >> 8) % static_cast<unsigned>(n));
  };
  const std::vector<XMenu*> menus = {popup, child, deep, file, edit};
  for (int walk = 0; walk < 50; walk++) {
    player->MoveTo(400, 400);
    for (int step = 0; step < 30; step++) {
      switch (random(9)) {
        case 0:
        case 1:
          player->MoveTo(180 + random(400), 280 + random(260));
          break;
        case 2:
          if (const XMenu* at = menus[static_cast<size_t>(random(5))]; at->open != 0) {
            player->MoveTo(at->x + random(at->width), at->y + random(at->height));
          }
          break;
        case 3:
          player->Press(1 + random(5));
          break;
        case 4:
          player->Release(1 + random(5));
          break;
        case 5:
          player->Click(1 + random(5));
          break;
        case 6:
          player->Type(keys[static_cast<size_t>(random(static_cast<int>(keys.size())))]);
          break;
        case 7:
          if (random(4) == 0) MenuBarOpenByHand(bar, random(2), nullptr);
          if (random(8) == 0) Remake(deep, {Item("Deepest"), Item("and more")});
          if (random(16) == 0) CloseGrabbedMenu();
          break;
        default:
          ScrollRestedMenu();
          Pump();
      }
    }
    for (int number = 1; number <= 5; number++) player->Release(number);
    Pump();
    // A hand that has had enough.
    MoveToPoint(2, 2);
    host.menu = nullptr;
    ClickHere();
    host.menu = popup;
    for (const XMenu* menu : menus) {
      ASSERT_FALSE(Mapped(menu)) << menu->items[0]->label << " in walk " << walk;
    }
    ASSERT_EQ(bar->selected, -1) << "walk " << walk;
    ASSERT_TRUE(PumpUntil([&] {
      LookForRelease();
      return HoldsNothing();
    })) << "walk "
        << walk;
    ASSERT_FALSE(MenuHoldsPointer());
    ASSERT_EQ(MenuInHand(), nullptr);
  }
}

}  // namespace
}  // namespace gromlit
