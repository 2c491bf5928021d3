// First: the test library's headers cannot bear Xlib's macros.
#include "tests/x11/app/main_window_fixture.h"

#include <X11/Xutil.h>

#include <cstdlib>
#include <cstring>

#include "actions/execute.h"
#include "display/x_handles.h"
#include "tests/support/captured.h"
#include "tests/x11/app/window_identity.h"
#include "tests/x11/toolkit/request_cost.h"
#include "toolkit/logo.h"
#include "toolkit/menu_bar.h"

namespace gromlit {
namespace {

using testing::Cost;
using testing::CostOf;
using testing::Picture;
using Numbers = std::vector<int>;

class GromlitAppTest : public testing::MainWindowFixture {
 protected:
  static XWindowAttributes Attributes(Window window) {
    XWindowAttributes is;
    EXPECT_NE(XGetWindowAttributes(dpy, window, &is), 0);
    return is;
  }

  // The grid with its bevel, as it looks without actions.
  Picture EmptyGrid() const {
    Picture grid(app->width - 8, app->height - 4 - app->icony, kWhite);
    grid.Bevel(kDarkGrey, kWhite, 0, 0, grid.width, grid.height);
    return grid;
  }
  // What is shown of the grid left of its scrollbar.
  Picture Shown() {
    return Cut(Take(app->window, 4, app->icony, app->width - 8, app->height - 4 - app->icony));
  }
  static Picture Cut(const Picture& grid) {
    Picture cut(grid.width - 15, grid.height, 0);
    for (int y = 0; y < cut.height; y++) {
      for (int x = 0; x < cut.width; x++) cut.At(x, y) = grid.At(x, y);
    }
    return cut;
  }
  // Draws a symbol's icon bit by bit at a point of the grid's picture.
  static void DrawIcon(Picture* grid, const GromlitSymbol& sym, int left, int top) {
    for (int y = 0; y < 32; y++) {
      for (int x = 0; x < 32; x++) {
        if ((sym.icon[y] >> x & 1) != 0) grid->At(left + x, top + y) = kBlue;
      }
    }
  }
  // Adds a text to the grid's picture, copied from a window of its own.
  void DrawWord(Picture* grid, const std::string& text, int centre, int baseline) {
    const int n = static_cast<int>(text.size());
    const int w = XTextWidth(txtFontinfo, text.c_str(), n);
    if (w == 0) return;
    XSetWindowAttributes more{};
    more.override_redirect = True;
    const Window paper =
        MakeChildWindow(root, 600, 600, w, txtCharht, white.pixel, 0, CWOverrideRedirect, more);
    XMapRaised(dpy, paper);
    const GC pen = MakeWindowGC(paper, txtFont);
    XDrawString(dpy, paper, pen, 0, txtFontinfo->ascent, text.c_str(), n);
    const Picture word = Take(paper, 0, 0, w, txtCharht);
    for (int y = 0; y < word.height; y++) {
      for (int x = 0; x < w; x++) {
        const int gx = centre - w / 2 + x;
        const int gy = baseline - txtFontinfo->ascent + y;
        const bool inside = gx >= 0 && gx < grid->width && gy >= 0 && gy < grid->height;
        if (inside && word.At(x, y) == kBlack) grid->At(gx, gy) = kBlack;
      }
    }
    XFreeGC(dpy, pen);
    XDestroyWindow(dpy, paper);
  }

  GromlitPlugin* ShowNamed(const std::string& name) {
    GromlitPlugin* plugin = Plugin("Editor", "Edit.edit", 1);
    std::memcpy(plugin->actions[0]->name, name.data(), std::min<size_t>(name.size(), kTextSize));
    Show(plugin);
    return plugin;
  }
};

// --- Construction -----------------------------------------------------------------------------

TEST_F(GromlitAppTest, TheWindowHasTheSizeOfItsGridAndItsMenuBar) {
  const XWindowAttributes is = Attributes(app->window);
  EXPECT_EQ(is.width, 6 * 72 + 36);
  EXPECT_EQ(is.height, (2 * txtCharht + 40) * 3 + 36 + logoImage->height + 4 + app->mbar->height);
  EXPECT_EQ(app->width, is.width);
  EXPECT_EQ(app->height, is.height);
  EXPECT_EQ(is.x, 0);
  EXPECT_EQ(is.y, 0);
  EXPECT_EQ(is.border_width, 1);
  EXPECT_EQ(is.backing_store, WhenMapped);
  EXPECT_EQ(is.your_event_mask, ExposureMask | EnterWindowMask | LeaveWindowMask | ButtonPressMask);
  EXPECT_EQ(showWindow, app->window);
}

TEST_F(GromlitAppTest, WindowManagersAreToldNamesAndTheFixedSize) {
  testing::ExpectIdentity(app->window, {.title = "Gromlit",
                                        .icontitle = nullptr,
                                        .name = "Application",
                                        .width = app->width,
                                        .height = app->height});
}

TEST_F(GromlitAppTest, ThePartsLieBelowEachOther) {
  const int bar = app->mbar->height;
  const XWindowAttributes mbar = Attributes(app->mbar->window);
  EXPECT_EQ(mbar.x, 0);
  EXPECT_EQ(mbar.y, 0);
  EXPECT_EQ(mbar.width, app->width);
  EXPECT_EQ(mbar.map_state, IsViewable);
  const XWindowAttributes logo = Attributes(app->logo->window);
  EXPECT_EQ(logo.x, 4);
  EXPECT_EQ(logo.y, bar);
  EXPECT_EQ(logo.width, app->width - 8);
  EXPECT_EQ(app->logo->mid, nullptr);
  EXPECT_EQ(app->logo->title, nullptr);
  const XWindowAttributes txt = Attributes(app->txt->window);
  EXPECT_EQ(txt.x, 4);
  EXPECT_EQ(txt.y, 4 + bar + logoImage->height + 2);
  EXPECT_EQ(txt.width, app->width - 8);
  EXPECT_EQ(txt.map_state, IsViewable);
  EXPECT_EQ(app->icony, txt.y + 26);
  EXPECT_EQ(app->iconx, 8);
  const XWindowAttributes sbar = Attributes(app->sbar->window);
  EXPECT_EQ(sbar.x, app->width - 19);
  EXPECT_EQ(sbar.y, app->icony);
  EXPECT_EQ(sbar.height, app->height - (4 + app->icony));
  EXPECT_EQ(sbar.map_state, IsViewable);
}

TEST_F(GromlitAppTest, ANewWindowIsNotMappedAndHasNothingSelected) {
  const GromlitApp* other = MakeGromlitApp(4, 2);
  EXPECT_EQ(Attributes(other->window).map_state, IsUnmapped);
  EXPECT_EQ(other->width, 4 * 72 + 36);
  EXPECT_EQ(other->selected, -1);
  EXPECT_EQ(other->validcut, 0);
  EXPECT_EQ(other->icontop, 0);
  EXPECT_EQ(other->plugin, nullptr);
  EXPECT_EQ(other->sbar->range, 2 * cell);
  EXPECT_STREQ(other->txt->label, "");
  Retire(const_cast<GromlitApp*>(other));
}

TEST_F(GromlitAppTest, ThePopupHasEightItems) {
  std::vector<std::string> labels;
  for (int i = 0; i < app->popup->nitems; i++) labels.emplace_back(app->popup->items[i]->label);
  EXPECT_EQ(labels, (std::vector<std::string>{"Cut", "Copy", "Paste", "Delete", "Edit", "Export",
                                              "New", "Edit Symbol"}));
}

TEST_F(GromlitAppTest, TheWindowManagersCloseHidesTheWindowAndAnActionBringsItBack) {
  XEvent event{};
  event.xclient.type = ClientMessage;
  event.xclient.window = app->window;
  event.xclient.message_type = wm_protocols;
  event.xclient.format = 32;
  event.xclient.data.l[0] = static_cast<long>(wm_delete);
  XSendEvent(player->display(), app->window, False, NoEventMask, &event);
  XSync(player->display(), False);
  Pump();
  EXPECT_EQ(Attributes(app->window).map_state, IsUnmapped);
  XMapRaised(dpy, showWindow);
  Pump();
  EXPECT_EQ(Attributes(app->window).map_state, IsViewable);
  EXPECT_EQ(Shown(), Cut(EmptyGrid()));
}

// --- Drawing ----------------------------------------------------------------------------------

TEST_F(GromlitAppTest, APluginWithoutActionsIsAnEmptySunkenGrid) {
  EXPECT_EQ(app->nicons, 0);
  EXPECT_EQ(Shown(), Cut(EmptyGrid()));
}

TEST_F(GromlitAppTest, WithoutAPluginTheGridIsEmpty) {
  app->plugin = nullptr;
  DrawGromlitApp(app);
  EXPECT_EQ(Shown(), Cut(EmptyGrid()));
  ClickCell(0);
  EXPECT_EQ(app->selected, -1);
}

TEST_F(GromlitAppTest, ActionsFillRowAfterRowWithTheirNamesBelow) {
  ShowNew(8);
  Picture grid = EmptyGrid();
  for (int i = 0; i < 8; i++) {
    // In coordinates of the grid, whose corner is 4 pixels left of its icons.
    const int x = 4 + 72 * (i % 6);
    const int y = 8 + i / 6 * (32 + 2 * txtCharht + 8);
    DrawIcon(&grid, app->plugin->actions[i]->sym, x + 16, y);
    DrawWord(&grid, "a" + std::to_string(i), x + 32, y + txtCharht + 32);
  }
  EXPECT_EQ(Shown(), Cut(grid));
  EXPECT_EQ(app->nicons, 8);
}

TEST_F(GromlitAppTest, NoMoreThanTheVisibleRowsAreDrawn) {
  GromlitPlugin* plugin = ShowNew(40);
  const Picture forty = Shown();
  EXPECT_EQ(app->nicons, 40);
  plugin->nactions = 18;
  DrawGromlitApp(app);
  EXPECT_EQ(Shown(), forty);
  plugin->nactions = 40;
}

TEST_F(GromlitAppTest, ANameJustNarrowerThanAnIconIsOneLine) {
  ShowNamed("0123456789");  // 60 pixels
  ASSERT_EQ(XTextWidth(txtFontinfo, "0123456789", 10), 60);
  Picture grid = EmptyGrid();
  DrawIcon(&grid, app->plugin->actions[0]->sym, 20, 8);
  DrawWord(&grid, "0123456789", 36, 8 + 32 + txtCharht);
  EXPECT_EQ(Shown(), Cut(grid));
}

TEST_F(GromlitAppTest, AWideNameWithoutABlankIsSplitInItsMiddle) {
  ShowNamed("0123456789A");
  Picture grid = EmptyGrid();
  DrawIcon(&grid, app->plugin->actions[0]->sym, 20, 8);
  DrawWord(&grid, "01234", 36, 8 + 32 + txtCharht);
  DrawWord(&grid, "56789A", 36, 8 + 32 + 2 * txtCharht);
  EXPECT_EQ(Shown(), Cut(grid));
}

TEST_F(GromlitAppTest, AWideNameIsSplitAtItsFirstBlank) {
  ShowNamed("Open a new window");
  Picture grid = EmptyGrid();
  DrawIcon(&grid, app->plugin->actions[0]->sym, 20, 8);
  DrawWord(&grid, "Open", 36, 8 + 32 + txtCharht);
  DrawWord(&grid, " a new window", 36, 8 + 32 + 2 * txtCharht);
  EXPECT_EQ(Shown(), Cut(grid));
}

TEST_F(GromlitAppTest, NarrowNamesWithABlankStayOneLine) {
  ShowNamed("go up");
  Picture grid = EmptyGrid();
  DrawIcon(&grid, app->plugin->actions[0]->sym, 20, 8);
  DrawWord(&grid, "go up", 36, 8 + 32 + txtCharht);
  EXPECT_EQ(Shown(), Cut(grid));
}

TEST_F(GromlitAppTest, TheLongestNameIsCutAtTheEdgeOfTheGrid) {
  ShowNamed(std::string(63, 'W'));
  Picture grid = EmptyGrid();
  DrawIcon(&grid, app->plugin->actions[0]->sym, 20, 8);
  DrawWord(&grid, std::string(31, 'W'), 36, 8 + 32 + txtCharht);
  DrawWord(&grid, std::string(32, 'W'), 36, 8 + 32 + 2 * txtCharht);
  grid.Bevel(kDarkGrey, kWhite, 0, 0, grid.width, grid.height);
  EXPECT_EQ(Shown(), Cut(grid));
  // The window's margin keeps its grey.
  for (int y = app->icony; y < app->height; y++) {
    ASSERT_EQ(PixelOf(app->window, 1, y), kLightGrey) << "row " << y;
  }
}

TEST_F(GromlitAppTest, HostileNamesAreDrawnWithinTheirField) {
  for (const std::string& name :
       {std::string(64, '\xff'), std::string(64, 'x'), std::string(64, ' '), std::string(64, '\n'),
        std::string("\x1b[31m%s%n\x80\x01\x02 \xfe"), std::string()}) {
    GromlitPlugin* plugin = ShowNamed(name);
    DrawGromlitApp(app);
    Pump();
    EXPECT_EQ(PixelOf(app->window, 24, app->icony + 8), kBlue);
    std::fill_n(plugin->actions[0]->name, kTextSize, '\0');
  }
}

TEST_F(GromlitAppTest, ADrawingCostsNoRoundTrips) {
  ShowNew(18);
  DrawGromlitApp(app);
  // Clear, fill, 18 icons and 18 names in one colour each, and the bevel in two, whose second one
  // the next drawing begins with.
  EXPECT_EQ(CostOf([] { DrawGromlitApp(app); }), (Cost{44, 0}));
}

TEST_F(GromlitAppTest, AnExposureInManyPiecesIsDrawnOnce) {
  ShowNew(18);
  DrawGromlitApp(app);
  XEvent event{};
  event.xexpose.type = Expose;
  event.xexpose.window = app->window;
  EXPECT_EQ(CostOf([&] {
              for (event.xexpose.count = 20; event.xexpose.count > 0; event.xexpose.count--)
                DispatchEvent(&event);
            }),
            (Cost{0, 0}));
  EXPECT_EQ(CostOf([&] { DispatchEvent(&event); }), (Cost{44, 0}));
}

TEST_F(GromlitAppTest, CrossingsAndMotionDrawNothing) {
  XEvent event{};
  event.xany.window = app->window;
  EXPECT_EQ(CostOf([&] {
              for (int type : {EnterNotify, LeaveNotify, MotionNotify, ResizeRequest}) {
                event.xany.type = type;
                DispatchEvent(&event);
              }
            }),
            (Cost{0, 0}));
}

// --- Clicks -----------------------------------------------------------------------------------

TEST_F(GromlitAppTest, AClickSelectsAndAnotherClickMovesTheHighlight) {
  ShowNew(8);
  ClickCell(3);
  EXPECT_EQ(app->selected, 3);
  EXPECT_EQ(AllHighlighted(), Numbers{3});
  ClickCell(7);
  EXPECT_EQ(app->selected, 7);
  EXPECT_EQ(AllHighlighted(), Numbers{7});
}

TEST_F(GromlitAppTest, ASingleClickOnTheSelectedActionDeselectsIt) {
  ShowNew(8);
  ClickCell(3);
  ClickCell(3);
  EXPECT_EQ(app->selected, -1);
  EXPECT_EQ(AllHighlighted(), Numbers{});
}

TEST_F(GromlitAppTest, TheHighlightIsTheInvertedAreaOfTheIcon) {
  ShowNew(8);
  Picture grid = Shown();
  ClickCell(7);
  for (int y = 0; y < 36; y++) {
    for (int x = 0; x < 64; x++) {
      unsigned long& pixel = grid.At(4 + 72 + x, cell + 6 + y);
      pixel = ~pixel & 0xffffff;
    }
  }
  EXPECT_EQ(Shown(), grid);
  DrawGromlitApp(app);
  EXPECT_EQ(Shown(), grid);
}

TEST_F(GromlitAppTest, AClickBelowTheLastActionChangesNothing) {
  ShowNew(8);
  ClickCell(2);
  ClickCell(8);
  EXPECT_EQ(app->selected, 2);
  ClickCell(13);
  EXPECT_EQ(app->selected, 2);
  EXPECT_EQ(AllHighlighted(), Numbers{2});
}

TEST_F(GromlitAppTest, AClickRightOfTheLastColumnChangesNothing) {
  ShowNew(18);
  ClickCell(2);
  AppLastClick = 0;
  ClickIn(app->iconx + 6 * 72 + 4, app->icony + 30);
  EXPECT_EQ(app->selected, 2);
  EXPECT_EQ(AllHighlighted(), Numbers{2});
}

TEST_F(GromlitAppTest, AClickLeftOfOrAboveTheGridChangesNothing) {
  ShowNew(18);
  ClickCell(1);
  for (int x = 0; x < app->iconx; x++) {
    PressAt(x, app->icony + cell + 20, static_cast<Time>(10000 + 1000 * x));
    EXPECT_EQ(app->selected, 1) << "x " << x;
  }
  for (int y = app->icony - 2; y < app->icony; y++) {
    PressAt(app->iconx + 30, y, static_cast<Time>(30000 + 1000 * y));
    EXPECT_EQ(app->selected, 1) << "y " << y;
  }
  PressAt(-500, -500, 90000);
  EXPECT_EQ(app->selected, 1);
  EXPECT_EQ(AllHighlighted(), Numbers{1});
}

TEST_F(GromlitAppTest, AClickBelowTheLastRowDoesNotReachAnActionThatIsScrolledAway) {
  ShowNew(40);
  AppLastClick = 0;
  ClickIn(app->iconx + 30, app->icony + 3 * cell + 1);
  EXPECT_EQ(app->selected, -1);
}

TEST_F(GromlitAppTest, AClickWithNothingDrawnYetForAnotherPluginHitsNothingOfIt) {
  ShowNew(8);
  GromlitPlugin* other = Plugin("Other", "Other.other", 2);
  UpdateGromlitApp(app, other->classname, nullptr);  // not drawn yet: still eight icons
  ClickCell(5);
  EXPECT_EQ(app->selected, -1);
}

TEST_F(GromlitAppTest, PressesFourHundredNinetyNineMillisecondsApartOpenTheEditor) {
  ShowNew(8);
  PressCell(4, 100000);
  EXPECT_EQ(app->selected, 4);
  EXPECT_EQ(editingPlugin, 0);
  PressCell(4, 100499);
  EXPECT_EQ(app->selected, 4);
  EXPECT_EQ(editingPlugin, 1);
  EXPECT_EQ(act->plugin, app->plugin);
  EXPECT_EQ(act->edit, app->plugin->actions[4]);
  EXPECT_EQ(AppLastClick, 100499);
}

TEST_F(GromlitAppTest, PressesFiveHundredMillisecondsApartSelectAndDeselect) {
  ShowNew(8);
  PressCell(4, 100000);
  PressCell(4, 100500);
  EXPECT_EQ(app->selected, -1);
  EXPECT_EQ(editingPlugin, 0);
}

TEST_F(GromlitAppTest, ADoubleClickAcrossTheTurnOfTheServersClockIsOne) {
  ShowNew(8);
  PressCell(4, 0xffffff00U);
  PressCell(4, 0x000000f0U);  // 496 milliseconds later
  EXPECT_EQ(editingPlugin, 1);
}

TEST_F(GromlitAppTest, APressThatIsOlderThanTheLastOneIsNoDoubleClick) {
  ShowNew(8);
  PressCell(4, 100000);
  PressCell(4, 99900);
  EXPECT_EQ(app->selected, -1);
  EXPECT_EQ(editingPlugin, 0);
}

TEST_F(GromlitAppTest, ADoubleClickThatBeginsOnAnotherActionEditsTheSecond) {
  ShowNew(8);
  PressCell(1, 100000);
  PressCell(6, 100200);
  EXPECT_EQ(app->selected, 6);
  EXPECT_EQ(act->edit, app->plugin->actions[6]);
  XUnmapWindow(dpy, act->window);
  Pump();
  EXPECT_EQ(AllHighlighted(), Numbers{6});
}

TEST_F(GromlitAppTest, ADoubleClickBesideTheActionsOpensNothing) {
  ShowNew(8);
  ClickCell(1);
  PressCell(12, 100000);
  PressCell(12, 100100);
  EXPECT_EQ(editingPlugin, 0);
  EXPECT_EQ(app->selected, 1);
}

TEST_F(GromlitAppTest, AnyButtonsPressCountsForTheTimeOfADoubleClick) {
  ShowNew(8);
  PressCell(2, 100000);
  PressAt(CellX(2), CellY(2), 100600, Button2);
  EXPECT_EQ(app->selected, 2);
  PressCell(2, 100700);
  EXPECT_EQ(editingPlugin, 1);
}

TEST_F(GromlitAppTest, TwoQuickClicksOpenTheActionEditor) {
  ShowNew(8);
  MoveInApp(CellX(4) + 32, CellY(4) + 20);
  for (int i = 0; i < 2; i++) {
    XTestFakeButtonEvent(player->display(), 1, True, 0);
    XTestFakeButtonEvent(player->display(), 1, False, 20);
  }
  XSync(player->display(), False);
  Pump();
  EXPECT_EQ(app->selected, 4);
  EXPECT_EQ(editingPlugin, 1);
  EXPECT_TRUE(Viewable(act->window));
}

TEST_F(GromlitAppTest, AClickOnActionsOfAnotherPluginSelectsNothingAndShowsTheTrueOnes) {
  ShowNew(8);
  Plugin("Other", "Other.other", 3);
  UpdateGromlitApp(app, "Other.other", nullptr);  // as a stroke does that is not to show actions
  PressCell(1, 100000);
  EXPECT_EQ(app->selected, -1);
  EXPECT_EQ(AllHighlighted(), Numbers{});
  EXPECT_EQ(app->nicons, 3);
  PressCell(1, 100100);
  EXPECT_EQ(app->selected, 1) << "a first click";
  EXPECT_EQ(editingPlugin, 0);
}

TEST_F(GromlitAppTest, TwoSlowClicksSelectAndDeselect) {
  ShowNew(8);
  MoveInApp(CellX(4) + 32, CellY(4) + 20);
  for (int i = 0; i < 2; i++) {
    XTestFakeButtonEvent(player->display(), 1, True, 600);
    XTestFakeButtonEvent(player->display(), 1, False, 20);
  }
  XFlush(player->display());
  ASSERT_TRUE(PumpUntil([] { return app->selected == 4; }));
  ASSERT_TRUE(PumpUntil([] { return app->selected == -1; }));
  XSync(player->display(), False);
  Pump();
  EXPECT_EQ(editingPlugin, 0);
  EXPECT_FALSE(Viewable(act->window));
  EXPECT_EQ(AllHighlighted(), Numbers{});
}

TEST_F(GromlitAppTest, TheHighlightIsThereAfterADoubleClick) {
  ShowNew(8);
  PressCell(4, 100000);
  PressCell(4, 100100);
  XUnmapWindow(dpy, act->window);
  Pump();
  EXPECT_EQ(AllHighlighted(), Numbers{4});
}

TEST_F(GromlitAppTest, ButtonThreeOpensThePopupAtThePointerWithThePointerGrabbed) {
  MoveInApp(200, app->icony + 50);
  player->Press(3);
  Pump();
  EXPECT_TRUE(Viewable(app->popup->window));
  EXPECT_EQ(app->popup->x, kInsideX + 200);
  EXPECT_EQ(app->popup->y, kInsideY + app->icony + 50);
  EXPECT_TRUE(MenuHoldsPointer());
  EXPECT_FALSE(player->CanGrabPointer());
  MoveInApp(2, 2);
  player->Release(3);
  Pump();
  EXPECT_FALSE(Viewable(app->popup->window));
  EXPECT_TRUE(player->CanGrabPointer());
  EXPECT_EQ(app->selected, -1);
}

// --- Which plug-in is shown -------------------------------------------------------------------

TEST_F(GromlitAppTest, APluginOfTheClassBecomesTheShownOne) {
  GromlitPlugin* plugin = Plugin("My Editor", "Edit.edit", 20);
  app->selected = 3;
  int updated = 0;
  const GromlitPluginList* node = UpdateGromlitApp(app, "Edit.edit", &updated);
  ASSERT_NE(node, nullptr);
  EXPECT_EQ(node->plugin, plugin);
  EXPECT_EQ(app->plugin, plugin);
  EXPECT_EQ(updated, 1);
  EXPECT_EQ(app->selected, -1);
  EXPECT_STREQ(app->txt->label, "My Editor");
  EXPECT_EQ(app->sbar->range, 4 * cell);
}

TEST_F(GromlitAppTest, ThePluginThatIsShownAlreadyStaysWithItsSelection) {
  ShowNew(8);
  app->selected = 3;
  int updated = 0;
  const GromlitPluginList* node = nullptr;
  EXPECT_EQ(CostOf([&] { node = UpdateGromlitApp(app, "Edit.edit", &updated); }), (Cost{0, 0}));
  ASSERT_NE(node, nullptr);
  EXPECT_EQ(updated, 0);
  EXPECT_EQ(app->selected, 3);
}

TEST_F(GromlitAppTest, AnUnknownClassShowsTheDefaultPlugin) {
  ShowNew(8);
  int updated = 0;
  EXPECT_EQ(UpdateGromlitApp(app, "Nobody.nobody", &updated), nullptr);
  EXPECT_EQ(app->plugin, DefaultPlugin);
  EXPECT_EQ(updated, 1);
  EXPECT_STREQ(app->txt->label, "Default");
  updated = 0;
  EXPECT_EQ(UpdateGromlitApp(app, "Nobody.else", &updated), nullptr);
  EXPECT_EQ(updated, 0);
}

TEST_F(GromlitAppTest, ClassesDifferByCase) {
  Plugin("Editor", "Edit.edit", 1);
  EXPECT_EQ(UpdateGromlitApp(app, "edit.Edit", nullptr), nullptr);
  EXPECT_EQ(app->plugin, DefaultPlugin);
}

TEST_F(GromlitAppTest, TheActionsAreReadWhenThePluginIsFirstShownAndNotAgain) {
  Plugin("Editor", "Edit.edit", 7);
  LoadPlugins();
  GetDefaultPlugin();
  const GromlitPluginList* node = UpdateGromlitApp(app, "Edit.edit", nullptr);
  ASSERT_NE(node, nullptr);
  EXPECT_EQ(node->loaded, 1);
  EXPECT_EQ(node->plugin->nactions, 7);
  const GromlitAction* first = node->plugin->actions[0];
  UpdateGromlitApp(app, "Default", nullptr);
  UpdateGromlitApp(app, "Edit.edit", nullptr);
  EXPECT_EQ(node->plugin->actions[0], first);
}

TEST_F(GromlitAppTest, TheButtonFollowsTheNewNameOfTheShownPlugin) {
  GromlitPlugin* plugin = ShowNew(3);
  CopyText(plugin->appname, "Another");
  int updated = 0;
  UpdateGromlitApp(app, plugin->classname, &updated);
  EXPECT_STREQ(app->txt->label, "Another");
  EXPECT_EQ(updated, 0);
}

TEST_F(GromlitAppTest, TheButtonTellsThatAPluginIsHandsOff) {
  GromlitPlugin* plugin = Plugin("Game", "Game.game", 1);
  plugin->spare1 = kHandsOff;
  Show(plugin);
  EXPECT_STREQ(app->txt->label, "Hands off: Game");
  plugin->spare1 = 2;
  UpdateGromlitApp(app, plugin->classname, nullptr);
  EXPECT_STREQ(app->txt->label, "Game");
  CopyText(plugin->appname, std::string(63, 'n'));
  plugin->spare1 = kHandsOff;
  UpdateGromlitApp(app, plugin->classname, nullptr);
  EXPECT_EQ(std::string(app->txt->label).rfind("Hands off: nnn", 0), 0u) << "no name hides it";
}

TEST_F(GromlitAppTest, TheLongestNameFitsTheButton) {
  const std::string name(63, 'n');
  Show(Plugin(name, "Long.long", 0));
  EXPECT_EQ(app->txt->label, name);
}

TEST_F(GromlitAppTest, ADamagedPluginShowsWhatCouldBeRead) {
  GromlitPlugin* plugin = Plugin("Editor", "Edit.edit", 7);
  std::vector<std::byte> file = testing::ReadBytes(FileOf(plugin));
  file.resize(file.size() - 700);
  testing::WriteBytes(FileOf(plugin), file);
  LoadPlugins();
  GetDefaultPlugin();
  testing::CaptureStdout();
  UpdateGromlitApp(app, "Edit.edit", nullptr);
  std::fflush(stdout);
  EXPECT_EQ(testing::GetCapturedStdout(), "Error reading Plugin Actions\n");
  DrawGromlitApp(app);
  EXPECT_EQ(app->nicons, 6);
}

// --- Scrolling --------------------------------------------------------------------------------

TEST_F(GromlitAppTest, TheScrollRangeIsThatOfTheRowsNeeded) {
  for (const auto& [nactions, rows] : std::vector<std::pair<int, int>>{
           {0, 0}, {1, 1}, {6, 1}, {7, 2}, {18, 3}, {19, 4}, {40, 7}, {128, 22}}) {
    const std::string name = "P" + std::to_string(nactions);
    Show(Plugin(name, name, nactions));
    EXPECT_EQ(app->sbar->range, rows * cell) << nactions << " actions";
  }
}

TEST_F(GromlitAppTest, TheDefaultPluginOfTheStartCanBeScrolled) {
  // Start-up stores the plug-in before it is shown.
  app->plugin = Plugin("Default", "Default", 40);
  int updated = 0;
  UpdateGromlitApp(app, "Default", &updated);
  EXPECT_EQ(updated, 0);
  EXPECT_EQ(app->sbar->range, 7 * cell);
}

TEST_F(GromlitAppTest, ScrollingShowsTheRowAtThePosition) {
  ShowNew(40);
  GromlitIconScroll(app, cell - 1);
  EXPECT_EQ(app->icontop, 0);
  GromlitIconScroll(app, cell);
  EXPECT_EQ(app->icontop, 6);
  GromlitIconScroll(app, 4 * cell + 5);
  EXPECT_EQ(app->icontop, 24);
  Picture grid = EmptyGrid();
  for (int i = 24; i < 40; i++) {
    const int x = 4 + 72 * ((i - 24) % 6);
    const int y = 8 + (i - 24) / 6 * cell;
    DrawIcon(&grid, app->plugin->actions[i]->sym, x + 16, y);
    DrawWord(&grid, "a" + std::to_string(i), x + 32, y + txtCharht + 32);
  }
  EXPECT_EQ(Shown(), Cut(grid));
}

TEST_F(GromlitAppTest, ScrollingWithinARowDrawsNothing) {
  ShowNew(40);
  GromlitIconScroll(app, 2 * cell);
  EXPECT_EQ(CostOf([&] {
              for (int y = 2 * cell; y < 3 * cell; y++) GromlitIconScroll(app, y);
            }),
            (Cost{0, 0}));
}

TEST_F(GromlitAppTest, TheWholeWayDownWithTheScrollbarRedrawsTheGridOncePerRow) {
  ShowNew(40);
  int draws = 0;
  int last = app->icontop;
  while (app->sbar->pos + app->sbar->size < app->sbar->height - 26) {
    app->sbar->pos++;
    UpdateScrollbar(app->sbar);
    if (app->icontop != last) draws++;
    last = app->icontop;
  }
  EXPECT_EQ(app->icontop, 24);  // rows 4, 5 and 6 of seven
  EXPECT_EQ(draws, 4);
}

TEST_F(GromlitAppTest, TheLastActionOfAFullPluginCanBeScrolledTo) {
  ShowNew(128);
  app->sbar->pos = 10000;
  UpdateScrollbar(app->sbar);
  EXPECT_EQ(app->icontop, 114);
  ClickCell(127 - 114);
  EXPECT_EQ(app->selected, 127);
  EXPECT_EQ(AllHighlighted(), Numbers{13});
}

TEST_F(GromlitAppTest, TheUserDragsTheThumbDown) {
  ShowNew(40);
  MoveInApp(app->width - 12, app->icony + 20);
  player->Press(1);
  // The scrollbar follows the pointer until the button is up: the server plays this meanwhile.
  XTestFakeMotionEvent(player->display(), DefaultScreen(player->display()),
                       kInsideX + app->width - 12, kInsideY + app->icony + 135, 50);
  XTestFakeButtonEvent(player->display(), 1, False, 300);
  XFlush(player->display());
  ASSERT_TRUE(PumpUntil([] { return app->icontop == 24; }));
}

TEST_F(GromlitAppTest, ASelectionThatIsScrolledAwayIsNotDrawnAndComesBack) {
  ShowNew(40);
  ClickCell(2);
  GromlitIconScroll(app, cell);
  EXPECT_EQ(app->selected, 2);
  EXPECT_EQ(AllHighlighted(), Numbers{});
  GromlitIconScroll(app, 0);
  EXPECT_EQ(AllHighlighted(), Numbers{2});
  // A click elsewhere leaves the invisible one alone.
  GromlitIconScroll(app, cell);
  ClickCell(4);
  EXPECT_EQ(app->selected, 10);
  EXPECT_EQ(AllHighlighted(), Numbers{4});
  GromlitIconScroll(app, 0);
  EXPECT_EQ(AllHighlighted(), Numbers{10});
}

TEST_F(GromlitAppTest, AShorterPluginIsNotShownScrolledBeyondItsEnd) {
  Plugin("Small", "Small.small", 2);
  ShowNew(40);
  app->sbar->pos = 10000;
  UpdateScrollbar(app->sbar);
  ASSERT_EQ(app->icontop, 24);
  UpdateGromlitApp(app, "Small.small", nullptr);
  DrawGromlitApp(app);
  EXPECT_EQ(app->icontop, 0);
  ClickCell(1);
  EXPECT_EQ(app->selected, 1);
}

TEST_F(GromlitAppTest, RefreshAndRangeDoNothingBeforeThereIsAWindow) {
  GromlitApp* kept = app;
  app = nullptr;
  RefreshGromlitApp();
  UpdateGromlitScrollRange();
  app = kept;
  EXPECT_EQ(app->icontop, 0);
}

}  // namespace
}  // namespace gromlit
