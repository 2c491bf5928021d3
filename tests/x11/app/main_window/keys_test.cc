// The keyboard in the main window, the symbol chooser and lists, with today's manners; with plain
// ones nothing of it happens.
// First: the test library's headers cannot bear Xlib's macros.
#include "tests/x11/app/main_window_fixture.h"

#include <X11/keysym.h>

#include "app/symbols/symbol_display.h"
#include "core/option_files.h"
#include "toolkit/menu_bar.h"
#include "toolkit/menu_hand.h"
#include "toolkit/menu_parts.h"
#include "toolkit/text_list.h"

namespace gromlit {
namespace {

class KeysTest : public testing::MainWindowFixture {
 protected:
  void SetUp() override {
    MainWindowFixture::SetUp();
    if (HasFatalFailure()) return;
    GetUserOptions();
    DefaultUserOptions(user);
    user->temp4 = kModernManners;
    edits = dones = 0;
    picked.clear();
    former_ = app->edit;
    app->edit = [](XMenu*, void*) { edits++; };
    FollowMannersInApp(app);
    MoveInApp(app->iconx + 30, app->icony + 30);
    Pump();
  }
  void TearDown() override {
    app->edit = former_;
    user->temp4 = kPlainManners;
    MainWindowFixture::TearDown();
  }
  void Type(KeySym key) {
    player->Type(key);
    Pump();
  }
  static long Events(Window window) {
    XWindowAttributes is;
    EXPECT_NE(XGetWindowAttributes(dpy, window, &is), 0);
    return is.your_event_mask;
  }
  // The window that has the keyboard.
  static Window Focus() {
    Window window = None;
    int revert;
    XGetInputFocus(dpy, &window, &revert);
    return window;
  }
  // A window of its own, to the right of the main window.
  static Window Sheet() {
    XSetWindowAttributes more{};
    more.override_redirect = True;
    const Window sheet =
        MakeChildWindow(root, 600, 0, 600, 700, lgrey.pixel, 0, CWOverrideRedirect, more);
    XMapRaised(dpy, sheet);
    return sheet;
  }

  static inline int edits = 0;
  static inline int dones = 0;
  static inline std::vector<std::string> picked;

 private:
  MenuAction former_ = nullptr;
};

TEST_F(KeysTest, ArrowsMoveTheSelectionOfTheGridAndReturnEdits) {
  ShowNew(45);  // seven rows and three more, of which three rows are seen
  Type(XK_Return);
  EXPECT_EQ(edits, 0) << "nothing is selected";
  const std::vector<std::pair<KeySym, int>> walk = {
      {XK_Down, 0},   {XK_Right, 1},  {XK_Down, 7},       {XK_Left, 6},     {XK_Left, 5},
      {XK_Up, 5},     {XK_Left, 4},   {XK_End, 44},       {XK_Up, 38},      {XK_Page_Up, 20},
      {XK_Home, 0},   {XK_Left, 0},   {XK_Page_Down, 18}, {XK_KP_Down, 24}, {XK_Right, 25},
      {XK_Right, 26}, {XK_Right, 27}, {XK_End, 44},       {XK_Down, 44},    {XK_Right, 44},
      {XK_Up, 38},    {XK_Right, 39}, {XK_Down, 44},
  };
  for (const auto& [key, action] : walk) {
    Type(key);
    ASSERT_EQ(app->selected, action) << XKeysymToString(key);
    ASSERT_GE(action, app->icontop) << XKeysymToString(key);
    ASSERT_LT(action, app->icontop + 18) << XKeysymToString(key);
    EXPECT_EQ(AllHighlighted(), std::vector<int>{action - app->icontop}) << XKeysymToString(key);
  }
  Type(XK_Return);
  EXPECT_EQ(edits, 1);
  // Over the menu bar and the pulldown button, too.
  MoveInApp(400, 5);
  Type(XK_Home);
  EXPECT_EQ(app->selected, 0);
  MoveInApp(100, app->icony - 15);
  Type(XK_Right);
  EXPECT_EQ(app->selected, 1);
}

TEST_F(KeysTest, F10OpensTheMenuBarAndMenuThePopup) {
  ShowNew(5);
  Type(XK_F10);
  XMenu* first = app->mbar->items[0]->menu;
  ASSERT_TRUE(Viewable(first->window));
  EXPECT_EQ(first->selected, 0);
  EXPECT_EQ(app->mbar->selected, 0);
  Type(XK_Right);
  EXPECT_EQ(app->mbar->selected, 1);
  Type(XK_Escape);
  EXPECT_EQ(app->mbar->selected, -1);
  Type(XK_Home);
  Type(XK_Right);
  EXPECT_EQ(app->selected, 1) << "the keyboard is back";
  const int x = kInsideX + CellX(1) + 32;
  const int y = kInsideY + CellY(1) + 8 + 16;
  Type(XK_Menu);
  ASSERT_TRUE(Viewable(app->popup->window));
  EXPECT_EQ(app->popup->x, x);
  EXPECT_EQ(app->popup->y, y);
  Type(XK_e);  // Edit comes before Export
  EXPECT_STREQ(app->popup->items[app->popup->selected]->label, "Edit");
  Type(XK_x);
  EXPECT_STREQ(app->popup->items[app->popup->selected]->label, "Export");
  Type(XK_Escape);
  EXPECT_FALSE(Viewable(app->popup->window));
  player->KeyDown(XK_Shift_L);
  Type(XK_F10);
  player->KeyUp(XK_Shift_L);
  Pump();
  ASSERT_TRUE(Viewable(app->popup->window));
  EXPECT_EQ(app->popup->y, y);
  Type(XK_c);
  EXPECT_STREQ(app->popup->items[app->popup->selected]->label, "Cut");
  const int before = app->plugin->nactions;
  Type(XK_Return);
  EXPECT_EQ(app->plugin->nactions, before - 1) << "the action was cut";
  // And by the hand: a click keeps the popup open.
  for (int attempt = 0; attempt < 10 && !Viewable(app->popup->window); attempt++) {
    ClickIn(app->iconx + 30, app->icony + 30, 3);
  }
  EXPECT_TRUE(Viewable(app->popup->window));
  Type(XK_Escape);
}

TEST_F(KeysTest, PlainMannersKnowNoKeys) {
  ShowNew(5);
  EXPECT_NE(Events(app->window) & KeyPressMask, 0);
  user->temp4 = kPlainManners;
  MoveInApp(2, 2);
  MoveInApp(app->iconx + 30, app->icony + 30);
  Pump();
  EXPECT_EQ(Events(app->window), kGromlitAppEvents);
  for (const KeySym key : {XK_Down, XK_Return, XK_F10, XK_Menu}) Type(key);
  MoveInApp(400, 5);
  Type(XK_F10);
  EXPECT_EQ(app->selected, -1);
  EXPECT_EQ(edits, 0);
  EXPECT_EQ(MenuInHand(), nullptr);
  EXPECT_FALSE(Viewable(app->popup->window));
}

TEST_F(KeysTest, ChooserIsTypedAt) {
  SymbolDisplay* sd = MakeSymbolDisplay(
      Sheet(), 0, 0, [](void*) { dones++; }, nullptr);
  Retire(allSymbols);
  allSymbols = nullptr;
  std::vector<std::string> names = {"alpha", "Beta", "beat", "gamma"};
  for (int i = 4; i < 40; i++) names.push_back("s" + std::to_string(i));
  GromlitSymbolList* tail = nullptr;
  for (const std::string& name : names) {
    auto* sym = new GromlitSymbol{};
    CopyText(sym->name, name);
    auto* node = new GromlitSymbolList{};
    node->sym = sym;
    (tail != nullptr ? tail->next : allSymbols) = node;
    tail = node;
  }
  XMapWindow(dpy, sd->window);
  player->MoveTo(620, 60);
  ASSERT_TRUE(PumpUntil([&] { return sd->count == 40; }));
  Type(XK_Return);
  EXPECT_EQ(dones, 0) << "nothing is selected";
  const std::vector<std::pair<KeySym, int>> walk = {
      {XK_Down, 0}, {XK_Right, 1},      {XK_Down, 5}, {XK_End, 39}, {XK_Up, 35},
      {XK_Home, 0}, {XK_Page_Down, 16}, {XK_b, 1},    {XK_e, 1},    {XK_a, 2},
  };
  for (const auto& [key, symbol] : walk) {
    Type(key);
    ASSERT_EQ(sd->selected, symbol) << XKeysymToString(key);
    ASSERT_GE(symbol, sd->top) << XKeysymToString(key);
    ASSERT_LT(symbol, sd->top + 16) << XKeysymToString(key);
    const int place = symbol - sd->top;
    EXPECT_EQ(PixelOf(sd->window, 8 + 72 * (place % 4) + 2, place / 4 * SymbolCellHeight(sd) + 8),
              kBlack)
        << XKeysymToString(key);
  }
  Type(XK_Return);
  EXPECT_EQ(dones, 1);
  // A click gives it the keyboard, which goes back when it is gone.
  player->MoveTo(620, 60);
  player->Click(1);
  Pump();
  EXPECT_EQ(Focus(), sd->window);
  ASSERT_TRUE(PumpUntil([&] { return sd->focused == 1; }));
  EXPECT_EQ(PixelOf(sd->window, 1, 40), kDarkGrey) << "a frame shows it";
  player->MoveTo(30, 600);
  Type(XK_End);
  EXPECT_EQ(sd->selected, 39);
  XUnmapWindow(dpy, sd->window);
  ASSERT_TRUE(PumpUntil([&] { return Focus() != sd->window && Focus() != None; }));
  // With plain manners nothing of it.
  user->temp4 = kPlainManners;
  XMapWindow(dpy, sd->window);
  player->MoveTo(620, 60);
  ASSERT_TRUE(PumpUntil([&] { return (Events(sd->window) & KeyPressMask) == 0; }));
  Type(XK_Home);
  EXPECT_EQ(sd->selected, 39);
  XDestroyWindow(dpy, sd->window);
  Pump();
}

TEST_F(KeysTest, ListIsTypedAt) {
  static std::vector<std::string> lines;
  lines = {"Run something", "Press a key", "press a button", "Wait"};
  for (int i = 4; i < 60; i++) lines.push_back("line " + std::to_string(i));
  static std::vector<const char*> items;
  items.clear();
  for (const std::string& line : lines) items.push_back(line.c_str());
  const Window sheet = Sheet();
  XTextList* list = MakeTextList(sheet, 10, 10, 200, 170, txtFontinfo);
  list->sb = MakeScrollbar(sheet, 210, 10, 170);
  list->sb->scrollarg = list;
  list->sb->scroll = [](void* arg, int offset) {
    ListScrollUp(static_cast<XTextList*>(arg), offset);
  };
  list->select = [](void*, const char* item) { picked.emplace_back(item); };
  SetListItems(list, items.data(), static_cast<int>(items.size()));
  XMapWindow(dpy, list->window);
  XMapWindow(dpy, list->sb->window);
  player->MoveTo(650, 50);
  Pump();
  const std::vector<std::pair<KeySym, int>> walk = {
      {XK_Down, 0},
      {XK_Down, 1},
      {XK_Up, 0},
      {XK_End, 59},
      {XK_Up, 58},
      {XK_Home, 0},
      {XK_Page_Down, list->visible},
      {XK_p, 1},
      {XK_Left, 1},
      {XK_End, 59},
      {XK_Tab, 59},
  };
  for (const auto& [key, line] : walk) {
    Type(key);
    ASSERT_EQ(list->selected, line) << XKeysymToString(key);
    ASSERT_GE(line, list->top) << XKeysymToString(key);
    ASSERT_LT(line, list->top + list->visible) << XKeysymToString(key);
    EXPECT_EQ(PixelOf(list->window, 5, (line - list->top) * list->itemheight + 8), kBlack)
        << XKeysymToString(key);
  }
  EXPECT_EQ(picked.size(), 9U) << "each change, and nothing else";
  EXPECT_EQ(picked.back(), "line 59");
  player->Click(1);
  Pump();
  EXPECT_EQ(Focus(), list->window);
  ASSERT_TRUE(PumpUntil([&] { return list->focused == 1; }));
  EXPECT_EQ(PixelOf(list->window, 4, 150), kDarkGrey) << "a frame shows it";
  user->temp4 = kPlainManners;
  Type(XK_Home);
  EXPECT_NE(list->selected, 0);
  // The keyboard goes back to where it was.
  XUnmapWindow(dpy, sheet);
  ASSERT_TRUE(PumpUntil([&] { return list->focused == 0 && Focus() != None; }));
  XDestroyWindow(dpy, sheet);
  Pump();
}

}  // namespace
}  // namespace gromlit
