// First: the test library's headers cannot bear Xlib's macros.
#include "tests/x11/app/main_window_fixture.h"

#include <malloc.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <set>

#include "display/x_handles.h"
#include "tests/support/captured.h"

namespace gromlit {
namespace {

using Labels = std::vector<std::string>;

class PluginMenuTest : public testing::MainWindowFixture {
 protected:
  // Makes plug-ins in memory until there are so many, and the menu of them. They are listed behind
  // the default plug-in, p1 first.
  void MakePlugins(int n, const std::string& prefix = "p") {
    GromlitPluginList* node = allPlugins;
    int count = 0;
    for (; node->plugin != nullptr; node = node->next) count++;
    for (; count < n; count++) {
      auto* plugin = new GromlitPlugin{};
      CopyText(plugin->appname, prefix + std::to_string(count));
      CopyText(plugin->classname, "Class" + std::to_string(count));
      node->filename = StrDup(plugin->classname);
      node->loaded = 1;
      node->plugin = plugin;
      node->next = new GromlitPluginList{};
      node = node->next;
    }
    UpdatePluginsMenu();
  }

  static Labels LabelsOf(const XMenu* menu) {
    Labels labels;
    for (int i = 0; i < menu->nitems; i++) labels.emplace_back(menu->items[i]->label);
    return labels;
  }

  // The menus of the chain, first to last, each led to by the first item of the one before.
  static std::vector<XMenu*> Chain() {
    std::vector<XMenu*> chain;
    for (XMenu* menu = app->txt->menu; menu != nullptr; menu = menu->items[0]->submenu) {
      chain.push_back(menu);
      if (menu->nitems == 0) break;
      for (int i = 1; i < menu->nitems; i++) EXPECT_EQ(menu->items[i]->submenu, nullptr);
    }
    return chain;
  }

  // Expects a chain of menus with so many plug-ins each, in list order, "more..." in all but the
  // last, every item with its plug-in.
  static void ExpectChain(const std::vector<int>& sizes) {
    const std::vector<XMenu*> chain = Chain();
    ASSERT_EQ(chain.size(), sizes.size());
    const GromlitPluginList* node = allPlugins;
    for (size_t i = 0; i < chain.size(); i++) {
      const XMenu* menu = chain[i];
      int item = 0;
      if (i + 1 < chain.size()) {
        ASSERT_EQ(menu->nitems, sizes[i] + 1) << "menu " << i;
        EXPECT_STREQ(menu->items[0]->label, "more...");
        EXPECT_EQ(menu->items[0]->action, &MenuMore);
        item = 1;
      } else {
        ASSERT_EQ(menu->nitems, sizes[i]) << "menu " << i;
        EXPECT_EQ(menu->items[0]->submenu, nullptr);
      }
      for (; item < menu->nitems; item++, node = node->next) {
        ASSERT_NE(node->plugin, nullptr);
        EXPECT_EQ(menu->items[item]->label, node->plugin->appname);
        EXPECT_EQ(menu->items[item]->arg, node->plugin);
        EXPECT_EQ(menu->items[item]->action, &SelectPlugin);
      }
    }
    EXPECT_EQ(node->plugin, nullptr) << "a plug-in is in no menu";
  }

  // The user presses the pulldown button and holds it.
  void PressButton() {
    MoveInApp(200, app->icony - 14);
    player->Press(1);
    Pump();
  }

  // Windows of the program on the screen, and identifiers that it used: every window, graphics
  // context or pixmap that is made takes one.
  static unsigned CountWindows() {
    Window rootwin;
    Window parent;
    Window* list = nullptr;
    unsigned count = 0;
    XQueryTree(dpy, root, &rootwin, &parent, &list, &count);
    if (list != nullptr) XFree(list);
    return count;
  }
  static XID NextResource() {
    XNoOp(dpy);  // Xlib makes the next identifier ready when a call begins
    const XID next = XAllocID(dpy);
    XNoOp(dpy);
    return next;
  }

  static size_t MemoryInUse() { return mallinfo2().uordblks; }
};

// --- The chain --------------------------------------------------------------------------------

TEST_F(PluginMenuTest, WithoutPluginsThereIsNoMenuAndThePressDoesNothing) {
  Retire(allPlugins);
  allPlugins = new GromlitPluginList{};
  UpdatePluginsMenu();
  EXPECT_EQ(app->txt->menu, nullptr);
  PressButton();
  EXPECT_FALSE(MenuHoldsPointer());
}

TEST_F(PluginMenuTest, OnePluginIsAMenuOfOne) {
  ExpectChain({1});
  EXPECT_EQ(app->txt->menu->pulldown, app->txt);
}

TEST_F(PluginMenuTest, TwentyPluginsFitInOneMenu) {
  MakePlugins(20);
  ExpectChain({20});
}

TEST_F(PluginMenuTest, TwentyOnePluginsAreNineteenAndTwo) {
  MakePlugins(21);
  ExpectChain({19, 2});
}

TEST_F(PluginMenuTest, ThirtyNinePluginsAreNineteenAndTwenty) {
  MakePlugins(39);
  ExpectChain({19, 20});
}

TEST_F(PluginMenuTest, FortyPluginsAreNineteenNineteenAndTwo) {
  MakePlugins(40);
  ExpectChain({19, 19, 2});
}

TEST_F(PluginMenuTest, TwoHundredPluginsAreElevenMenus) {
  MakePlugins(200);
  ExpectChain({19, 19, 19, 19, 19, 19, 19, 19, 19, 19, 10});
}

TEST_F(PluginMenuTest, TheWidestNameSetsTheWidth) {
  const int narrow = app->txt->menu->width;
  Plugin(std::string(63, 'W'), "Wide.wide", 0);
  UpdatePluginsMenu();
  EXPECT_EQ(app->txt->menu->width,
            16 + XTextWidth(labelFontinfo, std::string(63, 'W').c_str(), 63));
  EXPECT_GT(app->txt->menu->width, narrow);
}

// --- Choosing ---------------------------------------------------------------------------------

TEST_F(PluginMenuTest, ChoosingAPluginShowsIt) {
  GromlitPlugin* plugin = Plugin("Editor", "Edit.edit", 8);
  UpdatePluginsMenu();
  PressButton();
  XMenu* menu = app->txt->menu;
  ASSERT_TRUE(Viewable(menu->window));
  ASSERT_EQ(LabelsOf(menu), (Labels{"Editor", "Default"}));
  MoveToItem(menu, 0);
  player->Release(1);
  Pump();
  EXPECT_FALSE(Viewable(menu->window));
  EXPECT_EQ(app->plugin, plugin);
  EXPECT_EQ(app->nicons, 8);
  EXPECT_STREQ(app->txt->label, "Editor");
  EXPECT_EQ(PixelOf(app->window, CellX(0) + 16, CellY(0) + 8), kBlue);
}

TEST_F(PluginMenuTest, APluginOfTheThirdMenuIsChosenThroughTheChain) {
  MakePlugins(40);
  PressButton();
  const std::vector<XMenu*> chain = Chain();
  MoveToItem(chain[0], 0);
  ASSERT_TRUE(Viewable(chain[1]->window));
  MoveToItem(chain[1], 0);
  ASSERT_TRUE(Viewable(chain[2]->window));
  MoveToItem(chain[2], 1);
  player->Release(1);
  Pump();
  EXPECT_STREQ(app->plugin->appname, "p39");
  for (const XMenu* menu : chain) EXPECT_FALSE(Viewable(menu->window));
}

TEST_F(PluginMenuTest, ReleasingOnMoreChangesNothing) {
  MakePlugins(40);
  PressButton();
  const std::vector<XMenu*> chain = Chain();
  MoveToItem(chain[0], 0);
  player->Release(1);
  Pump();
  EXPECT_EQ(app->plugin, DefaultPlugin);
  for (const XMenu* menu : chain) EXPECT_FALSE(Viewable(menu->window));
}

TEST_F(PluginMenuTest, ReleasingBesideTheMenuChangesNothing) {
  MakePlugins(5);
  PressButton();
  player->MoveTo(900, 900);
  player->Release(1);
  Pump();
  EXPECT_EQ(app->plugin, DefaultPlugin);
  EXPECT_FALSE(Viewable(app->txt->menu->window));
}

// How far the user gets along the chain: down "more..." until a menu opens beyond the screen.
class WideScreenTest : public PluginMenuTest {
 protected:
  void SetUp() override {
    server = std::make_unique<testing::XServer>("1920x1080x24");
    PluginMenuTest::SetUp();
  }

  // Number of plug-ins that can be chosen, of 200 with names of this beginning.
  int CountReachable(const std::string& prefix) {
    MakePlugins(200, prefix);
    PressButton();
    int reachable = 0;
    for (XMenu* menu : Chain()) {
      if (!Viewable(menu->window) || menu->x >= 1919) break;
      const bool last = menu->items[0]->submenu == nullptr;
      reachable += last ? menu->nitems : menu->nitems - 1;
      // The left edge suffices to choose an item.
      player->MoveTo(menu->x + 1, menu->y + 4 + menu->itemheight / 2);
      Pump();
    }
    // What was counted last can be chosen indeed.
    XMenu* deepest = app->txt->menu;
    while (deepest->submenu != nullptr && deepest->submenu->x < 1919) deepest = deepest->submenu;
    const int item = deepest->nitems - 1;
    const std::string label = deepest->items[item]->label;
    player->MoveTo(deepest->x + 1,
                   deepest->y + 4 + item * deepest->itemheight + deepest->itemheight / 2);
    player->Release(1);
    Pump();
    EXPECT_EQ(app->plugin->appname, label);
    return reachable;
  }
};

TEST_F(WideScreenTest, AllOfTwoHundredShortNamesCanBeReached) {
  const int reachable = CountReachable("Application ");
  RecordProperty("reachable", reachable);
  EXPECT_EQ(reachable, 200);
}

TEST_F(WideScreenTest, AllOfTwoHundredNamesOfAHundredSeventyFivePixelsCanBeReached) {
  std::string prefix;
  const auto width = [&] {
    const std::string label = prefix + "199";
    return XTextWidth(labelFontinfo, label.c_str(), static_cast<int>(label.size()));
  };
  while (width() < 175) prefix += 'l';  // the narrowest letter
  while (width() > 175) prefix.pop_back();
  ASSERT_GE(width(), 172);
  EXPECT_EQ(CountReachable(prefix), 200);
}

TEST_F(WideScreenTest, OfNamesOfSixtyThreeBytesTheFirstMenusCanBeReached) {
  const int reachable = CountReachable(std::string(60, 'W'));
  RecordProperty("reachable", reachable);
  EXPECT_EQ(reachable, 57);
}

// --- Rebuilding -------------------------------------------------------------------------------

TEST_F(PluginMenuTest, ARenamedPluginIsListedUnderItsNewName) {
  GromlitPlugin* plugin = Plugin("Editor", "Edit.edit", 2);
  UpdatePluginsMenu();
  CopyText(plugin->appname, "A much longer name than before");
  UpdatePluginsMenu();
  const XMenu* menu = app->txt->menu;
  EXPECT_EQ(LabelsOf(menu), (Labels{"A much longer name than before", "Default"}));
  EXPECT_EQ(menu->width, 16 + XTextWidth(labelFontinfo, plugin->appname, 30));
  EXPECT_STREQ(plugin->classname, "Edit.edit");
}

TEST_F(PluginMenuTest, RebuildingAsOftenAsOneLikesMakesNoWindowsOrContexts) {
  MakePlugins(45);
  PressButton();  // everything was shown once
  MoveToItem(app->txt->menu, 0);
  player->MoveTo(900, 900);
  player->Release(1);
  Pump();
  const int entries = nWindowObjects;
  const unsigned windows = CountWindows();
  const XID next = NextResource();
  UpdatePluginsMenu();
  const size_t memory = MemoryInUse();
  for (int i = 0; i < 500; i++) UpdatePluginsMenu();
  const XID step = NextResource() - next;
  EXPECT_EQ(step, 1U);  // the question itself
  EXPECT_EQ(nWindowObjects, entries);
  EXPECT_EQ(CountWindows(), windows);
  EXPECT_LE(MemoryInUse(), memory + 4096) << "500 rebuilds";
  ExpectChain({19, 19, 7});
}

TEST_F(PluginMenuTest, ADayOfFiveHundredCreationsRenamesAndDeletions) {
  MakePlugins(19);
  // As many as the day will see at once, so that the menus for them exist.
  for (int i = 0; i < 25; i++) CreatePlugin("Day", ("Day" + std::to_string(i)).c_str());
  UpdatePluginsMenu();
  for (int i = 0; i < 25; i++) {
    const std::string classname = "Day" + std::to_string(i);
    ASSERT_EQ(DeletePlugin(FindPlugin(classname.c_str()), classname.c_str()), 1);
  }
  Pump();
  const int entries = nWindowObjects;
  const unsigned windows = CountWindows();
  const XID next = NextResource();
  const size_t memory = MemoryInUse();
  std::vector<GromlitPlugin*> made;
  int operations = 0;
  for (int i = 0; operations < 1500; i++) {
    // Up to 25 at once: the chain grows to three menus and shrinks to one.
    for (int k = 0; k < 25 && operations < 1500; k++, operations += 2) {
      const std::string classname = "Class." + std::to_string(i) + "." + std::to_string(k);
      GromlitPlugin* plugin = CreatePlugin("New", classname.c_str());
      ASSERT_NE(plugin, nullptr);
      UpdatePluginsMenu();
      CopyText(plugin->appname, "Renamed " + std::to_string(k));
      ASSERT_NE(UnLoadPlugin(plugin, plugin->classname), nullptr);
      UpdatePluginsMenu();
      made.push_back(plugin);
    }
    for (; !made.empty(); made.pop_back(), operations++) {
      ASSERT_EQ(DeletePlugin(made.back(), made.back()->classname), 1);
    }
    Pump();
  }
  EXPECT_EQ(NextResource() - next, 1U);
  EXPECT_EQ(nWindowObjects, entries);
  EXPECT_EQ(CountWindows(), windows);
  EXPECT_LE(MemoryInUse(), memory + 1500 * 4096UL);
  ExpectChain({19});
}

// The menu that is being chosen from is rebuilt by the action of its item.
void DeleteFromMenu(XMenu*, void* plugin) {
  auto* killpin = static_cast<GromlitPlugin*>(plugin);
  EXPECT_EQ(DeletePlugin(killpin, killpin->classname), 1);
}

TEST_F(PluginMenuTest, AnActionMayRebuildTheMenuItWasChosenFrom) {
  for (int i = 0; i < 20; i++) {
    const std::string name = "P" + std::to_string(i);
    Plugin(name, name, 0);
  }
  UpdatePluginsMenu();
  const std::vector<XMenu*> chain = Chain();
  ASSERT_EQ(chain.size(), 2U);
  chain[1]->items[0]->action = DeleteFromMenu;
  const std::string label = chain[1]->items[0]->label;
  PressButton();
  MoveToItem(chain[0], 0);
  MoveToItem(chain[1], 0);
  player->Release(1);
  Pump();
  ExpectChain({20});
  for (const Labels labels = LabelsOf(app->txt->menu); const std::string& one : labels) {
    EXPECT_NE(one, label);
  }
  // The new menu works.
  PressButton();
  MoveToItem(app->txt->menu, 3);
  const std::string chosen = app->txt->menu->items[3]->label;
  player->Release(1);
  Pump();
  EXPECT_EQ(app->plugin->appname, chosen);
}

TEST_F(PluginMenuTest, RebuildingWhileTheMenuIsOpenClosesItAndFreesThePointer) {
  MakePlugins(45);
  PressButton();
  MoveToItem(app->txt->menu, 0);
  UpdatePluginsMenu();
  Pump();
  for (const XMenu* menu : Chain()) EXPECT_FALSE(Viewable(menu->window));
  EXPECT_FALSE(MenuHoldsPointer());
  player->Release(1);
  Pump();
  EXPECT_EQ(app->plugin, DefaultPlugin);
}

TEST_F(PluginMenuTest, BeforeThereIsAWindowTheMenuIsMadeAllTheSame) {
  PluginView* kept = pluginview;
  pluginview = nullptr;
  UpdatePluginsMenu();
  const XMenu* menu = MakePluginsMenu();
  pluginview = kept;
  ASSERT_NE(menu, nullptr);
  EXPECT_EQ(LabelsOf(menu), Labels{"Default"});
  Retire(const_cast<XMenu*>(menu));
}

// --- Deleting ---------------------------------------------------------------------------------

TEST_F(PluginMenuTest, ADeletedPluginLeavesFileListAndMenuAndTheDefaultIsShown) {
  GromlitPlugin* plugin = ShowNew(8);
  UpdatePluginsMenu();
  app->selected = 2;
  EXPECT_EQ(DeletePlugin(plugin, plugin->classname), 1);
  Pump();
  EXPECT_FALSE(testing::Exists(FileOf(plugin)));
  EXPECT_EQ(FindPlugin("Edit.edit"), nullptr);
  EXPECT_EQ(LabelsOf(app->txt->menu), Labels{"Default"});
  EXPECT_EQ(app->txt->menu->pulldown, app->txt);
  EXPECT_EQ(app->plugin, DefaultPlugin);
  EXPECT_EQ(app->selected, -1);
  EXPECT_STREQ(app->txt->label, "Default");
  EXPECT_EQ(PixelOf(app->window, CellX(0) + 16, CellY(0) + 8), kWhite);
  EXPECT_EQ(testing::ShownFailure(), "");
}

TEST_F(PluginMenuTest, APluginThatIsNotShownIsDeletedToo) {
  GromlitPlugin* other = Plugin("Other", "Other.other", 3);
  ShowNew(8);
  EXPECT_EQ(DeletePlugin(other, other->classname), 1);
  EXPECT_EQ(app->plugin, DefaultPlugin);
  EXPECT_EQ(LabelsOf(app->txt->menu), (Labels{"Editor", "Default"}));
}

TEST_F(PluginMenuTest, AFileThatCannotBeDeletedLeavesEverythingAndTellsTheUser) {
  GromlitPlugin* plugin = ShowNew(8);
  UpdatePluginsMenu();
  app->selected = 2;
  BlockFile(plugin);
  testing::CaptureStderr();
  EXPECT_EQ(DeletePlugin(plugin, plugin->classname), 0);
  EXPECT_EQ(testing::GetCapturedStderr(), "Delete Plugin: Is a directory\n");
  Pump();
  EXPECT_EQ(testing::ShownFailure(), "The plug-in was not deleted./Is a directory.");
  GiveFileBack(plugin);
  EXPECT_EQ(FindPlugin("Edit.edit"), plugin);
  EXPECT_EQ(app->plugin, plugin);
  EXPECT_EQ(app->selected, 2);
  EXPECT_EQ(LabelsOf(app->txt->menu), (Labels{"Editor", "Default"}));
  EXPECT_EQ(NamesInFile(plugin).size(), 8U);
}

TEST_F(PluginMenuTest, APluginThatIsInNoListLosesItsFileOnly) {
  GromlitPlugin* plugin = ShowNew(8);
  GromlitPlugin stranger{};
  CopyText(stranger.classname, "Gone.gone");
  ASSERT_NE(UnLoadPlugin(&stranger, stranger.classname), nullptr);
  EXPECT_EQ(DeletePlugin(&stranger, stranger.classname), 1);
  EXPECT_FALSE(testing::Exists(FileOf(&stranger)));
  EXPECT_EQ(app->plugin, plugin);
}

TEST_F(PluginMenuTest, AnEmptyDefaultPluginTakesThePlaceOfTheDeletedOne) {
  GromlitPlugin* former = DefaultPlugin;
  former->actions[former->nactions++] = new GromlitAction(Action("old"));
  ASSERT_NE(UnLoadPlugin(former, former->classname), nullptr);
  DrawGromlitApp(app);
  ClickCell(0);
  ASSERT_EQ(app->selected, 0);
  popCopyAction(nullptr, nullptr);
  ASSERT_EQ(DeletePlugin(former, former->classname), 1);
  EXPECT_NE(DefaultPlugin, former);
  EXPECT_EQ(FindPlugin(defaultPluginClassname), DefaultPlugin);
  EXPECT_EQ(DefaultPlugin->nactions, 0);
  EXPECT_EQ(NamesInFile(DefaultPlugin), std::vector<std::string>{});
  EXPECT_EQ(app->plugin, DefaultPlugin);
  EXPECT_EQ(app->selected, -1);
  EXPECT_EQ(LabelsOf(app->txt->menu), Labels{"Default"});
  // What is added from here on does not bring the deleted actions back.
  popPasteAction(nullptr, nullptr);
  popPasteAction(nullptr, nullptr);
  EXPECT_EQ(NamesInFile(DefaultPlugin), (std::vector<std::string>{"old", "old"}));
  Show(Plugin("Editor", "Edit.edit", 1));
  EXPECT_EQ(UpdateGromlitApp(app, "Nobody", nullptr), nullptr);
  EXPECT_EQ(app->plugin, DefaultPlugin);
}

}  // namespace
}  // namespace gromlit
