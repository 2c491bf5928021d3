#include <gmock/gmock.h>

#include "tests/x11/app/command_fixture.h"

#include "app/main_window/main_menu.h"

#include "actions/launch.h"

namespace gromlit::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::ExitedWithCode;
using ::testing::HasSubstr;

using Titles = std::vector<std::pair<std::string, std::vector<std::string>>>;

class MainMenu : public CommandFixture {
 protected:
  enum Title { kPlugin, kAction, kSymbol, kOptions, kHelp };
  enum PluginItem { kNew, kEdit, kDelete, kDownload, kUpload, kExit };

  // Asks for the name of the shown plug-in and types another one.
  void Rename(const std::string& name) {
    Choose(kPlugin, kEdit);
    ASSERT_TRUE(Viewable(editname->window));
    TypeName(name);
    ClickOn(editname->yes->window);
  }
};

// --- The bar ----------------------------------------------------------------------------------

TEST_F(MainMenu, HasFivePulldownsWithTheirItems) {
  Titles titles;
  const XMenuBar* bar = app->mbar;
  for (int t = 0; t < bar->nitems; t++) {
    std::vector<std::string> labels;
    const XMenu* menu = bar->items[t]->menu;
    for (int i = 0; i < menu->nitems; i++) {
      labels.emplace_back(menu->items[i]->label);
      EXPECT_EQ(menu->items[i]->arg, app) << labels.back();
    }
    titles.emplace_back(bar->items[t]->label, labels);
  }
  EXPECT_EQ(titles, (Titles{{"Plug-In", {"New", "Edit", "Delete", "Download", "Upload", "Exit"}},
                            {"Action", {"New", "Edit", "Delete", "Export"}},
                            {"Symbol", {"New", "Edit", "Delete"}},
                            {"Options", {"Preferences"}},
                            {"Help", {"Index", "About"}}}));
  EXPECT_EQ(bar->width, app->width) << "across the full width";
}

TEST_F(MainMenu, OpensEachMenuBelowItsTitle) {
  for (int t = 0; t < app->mbar->nitems; t++) {
    OpenTitle(t);
    const XMenu* menu = app->mbar->items[t]->menu;
    EXPECT_TRUE(Viewable(menu->window)) << t;
    EXPECT_EQ(menu->x, kInsideX + app->mbar->itemx[t] - 8);
    EXPECT_EQ(menu->y, kInsideY + app->mbar->itemheight + 4);
    Shoot("menu-" + std::to_string(t));
    player->Release(1);
    Pump();
    EXPECT_FALSE(Viewable(menu->window)) << t;
  }
}

TEST_F(MainMenu, EntriesOfTheActionMenuReachTheActionEditor) {
  ShowNew(2);
  Choose(kAction, 0);
  EXPECT_TRUE(Viewable(act->window)) << "New";
  EXPECT_EQ(act->edit, nullptr);
  XUnmapWindow(dpy, act->window);
  Pump();
  ClickCell(1);
  XUnmapWindow(dpy, act->window);
  Pump();
  Choose(kAction, 1);
  EXPECT_TRUE(Viewable(act->window)) << "Edit";
  EXPECT_EQ(act->edit, app->plugin->actions[1]);
  XUnmapWindow(dpy, act->window);
  Pump();
  Choose(kAction, 3);
  EXPECT_TRUE(Viewable(act->window)) << "Export";
  XUnmapWindow(dpy, act->window);
  Pump();
  Choose(kAction, 2);
  EXPECT_THAT(Names(app->plugin), ElementsAre("a0")) << "Delete";
}

// --- New, rename ------------------------------------------------------------------------------

TEST_F(MainMenu, NewAsksForTheApplication) {
  Choose(kPlugin, kNew);
  EXPECT_TRUE(Viewable(app->newdlog->window));
  EXPECT_STREQ(app->newdlog->title, "New Plugin");
  Shoot("dialog-new-plugin");
}

TEST_F(MainMenu, EditOffersTheNameOfTheShownPlugin) {
  const GromlitPlugin* plugin = ShowNew(1);
  Choose(kPlugin, kEdit);
  EXPECT_TRUE(Viewable(editname->window));
  EXPECT_STREQ(editname->title, "Editor");
  EXPECT_EQ(editname->arg, plugin);
  EXPECT_STREQ(TextEditorText(static_cast<TextEditor*>(editname->child)), "Editor");
  Shoot("dialog-rename");
}

TEST_F(MainMenu, EditOfAnOpenDialogTakesTheNextPlugin) {
  Show(Plugin("First", "F.f", 0));
  Choose(kPlugin, kEdit);
  GromlitPlugin* second = Plugin("Second", "S.s", 0);
  Show(second);
  // Out of the bar's way, where the user cannot put it.
  PopUpDialog(editname, "First", 900, 700);
  Pump();
  Choose(kPlugin, kEdit);
  EXPECT_STREQ(editname->title, "Second");
  EXPECT_EQ(editname->arg, second);
  TypeName("Other");
  ClickOn(editname->yes->window);
  EXPECT_STREQ(second->appname, "Other");
  EXPECT_STREQ(FindPlugin("F.f")->appname, "First");
}

TEST_F(MainMenu, RenamingChangesOnlyTheDisplayedName) {
  GromlitPlugin* plugin = ShowNew(3);
  std::vector<std::byte> expected = ReadBytes(FileOf(plugin));
  Rename("Writer");
  EXPECT_FALSE(Viewable(editname->window));
  EXPECT_STREQ(plugin->appname, "Writer");
  EXPECT_STREQ(plugin->classname, "Edit.edit") << "the application that it serves stays";
  EXPECT_EQ(FindPlugin("Edit.edit"), plugin);
  // The name is the first field of the record, behind the header.
  const std::string field = std::string("Writer") + std::string(kTextSize - 6, '\0');
  std::transform(field.begin(), field.end(), expected.begin() + 13,
                 [](char c) { return static_cast<std::byte>(c); });
  EXPECT_EQ(ReadBytes(FileOf(plugin)), expected);
  EXPECT_EQ(ShownFailure(), "");
}

TEST_F(MainMenu, RenamingShowsInThePulldownAndInItsMenu) {
  ShowNew(1);
  EXPECT_THAT(Menu(), ElementsAre("Default"));
  Rename("Writer");
  EXPECT_STREQ(app->txt->label, "Writer");
  EXPECT_EQ(app->txt->label_width, TextWidth(labelFontinfo, "Writer"));
  EXPECT_THAT(Menu(), ElementsAre("Writer", "Default"));
  EXPECT_EQ(app->txt->menu->pulldown, app->txt);
}

TEST_F(MainMenu, RenamingBringsBackThePluginWhenAnotherIsShownMeanwhile) {
  GromlitPlugin* plugin = ShowNew(1);
  Choose(kPlugin, kEdit);
  Show(DefaultPlugin);
  TypeName("Writer");
  ClickOn(editname->yes->window);
  EXPECT_STREQ(plugin->appname, "Writer");
  EXPECT_STREQ(DefaultPlugin->appname, "Default");
  EXPECT_EQ(app->plugin, plugin);
  EXPECT_STREQ(app->txt->label, "Writer");
}

TEST_F(MainMenu, CancellingARenameChangesNothing) {
  GromlitPlugin* plugin = ShowNew(1);
  const std::vector<std::byte> before = ReadBytes(FileOf(plugin));
  Choose(kPlugin, kEdit);
  TypeName("Writer");
  ClickOn(editname->no->window);
  EXPECT_FALSE(Viewable(editname->window));
  EXPECT_STREQ(plugin->appname, "Editor");
  EXPECT_EQ(ReadBytes(FileOf(plugin)), before);
}

TEST_F(MainMenu, NameLongerThanItsFieldIsCut) {
  GromlitPlugin* plugin = ShowNew(0);
  Choose(kPlugin, kEdit);
  TextEditorUpdate(static_cast<TextEditor*>(editname->child), std::string(100, 'n').c_str());
  ClickOn(editname->yes->window);
  EXPECT_EQ(plugin->appname, std::string(63, 'n'));
  EXPECT_STREQ(plugin->classname, "Edit.edit");
}

TEST_F(MainMenu, RenameThatCannotBeSavedKeepsTheNameAndTellsTheUser) {
  GromlitPlugin* plugin = ShowNew(2);
  const std::vector<std::byte> before = ReadBytes(FileOf(plugin));
  Choose(kPlugin, kEdit);
  TypeName("Writer");
  // A plug-in that is not this one's owns every name that it could be stored under.
  BlockFile(plugin);
  ClickOn(editname->yes->window);
  EXPECT_THAT(ShownFailure(), HasSubstr("The plug-in's new name was not saved./"));
  Shoot("dialog-failure");
  EXPECT_STREQ(plugin->appname, "Editor");
  EXPECT_STREQ(app->txt->label, "Editor");
  EXPECT_TRUE(Viewable(editname->window)) << "the work stays";
  EXPECT_STREQ(TextEditorText(static_cast<TextEditor*>(editname->child)), "Writer");
  GiveFileBack(plugin);
  EXPECT_EQ(ReadBytes(FileOf(plugin)), before);
  // And now it can be saved.
  ClickOn(notice->no->window);
  ClickOn(editname->yes->window);
  EXPECT_STREQ(plugin->appname, "Writer");
  EXPECT_FALSE(Viewable(editname->window));
}

TEST_F(MainMenu, RenameOfAPluginDeletedMeanwhileDoesNotBringItBack) {
  GromlitPlugin* plugin = ShowNew(1);
  const std::string file = FileOf(plugin);
  Choose(kPlugin, kEdit);
  DeletePlugin(plugin, plugin->classname);
  ClickOn(editname->yes->window);
  EXPECT_FALSE(Viewable(editname->window));
  EXPECT_EQ(ShownFailure(), "This plug-in was deleted./Its new name was not saved.");
  DialogNo(notice);
  EXPECT_FALSE(Exists(file));
  EXPECT_EQ(FindPlugin("Edit.edit"), nullptr);
  EXPECT_THAT(Menu(), ElementsAre("Default"));
}

TEST_F(MainMenu, EditWithoutAPluginDoesNothing) {
  app->plugin = nullptr;
  Choose(kPlugin, kEdit);
  EXPECT_FALSE(Viewable(editname->window));
}

// --- Delete -----------------------------------------------------------------------------------

TEST_F(MainMenu, DeleteAsksAndThenDeletes) {
  GromlitPlugin* plugin = ShowNew(2);
  UpdatePluginsMenu();
  const std::string file = FileOf(plugin);
  Choose(kPlugin, kDelete);
  ASSERT_TRUE(Viewable(confirm->window));
  EXPECT_STREQ(confirm->title, "Editor");
  EXPECT_THAT(Lines(confirm), ElementsAre("Really Delete Plugin? "));
  EXPECT_TRUE(Exists(file)) << "not before it is confirmed";
  Shoot("dialog-delete-plugin");
  ClickOn(confirm->yes->window);
  EXPECT_FALSE(Viewable(confirm->window));
  EXPECT_FALSE(Exists(file));
  EXPECT_EQ(FindPlugin("Edit.edit"), nullptr);
  EXPECT_THAT(Menu(), ElementsAre("Default"));
  EXPECT_EQ(app->plugin, DefaultPlugin);
  EXPECT_STREQ(app->txt->label, "Default");
}

TEST_F(MainMenu, NoToDeleteKeepsThePlugin) {
  GromlitPlugin* plugin = ShowNew(2);
  Choose(kPlugin, kDelete);
  ClickOn(confirm->no->window);
  EXPECT_FALSE(Viewable(confirm->window));
  EXPECT_TRUE(Exists(FileOf(plugin)));
  EXPECT_EQ(app->plugin, plugin);
}

TEST_F(MainMenu, DeleteWithoutAPluginIsIgnored) {
  app->plugin = nullptr;
  Choose(kPlugin, kDelete);
  EXPECT_FALSE(Viewable(confirm->window));
}

TEST_F(MainMenu, DeleteMeansThePluginThatWasShownWhenItWasAsked) {
  GromlitPlugin* plugin = ShowNew(0);
  GromlitPlugin* other = Plugin("Other", "O.o", 0);
  Choose(kPlugin, kDelete);
  Show(other);
  ClickOn(confirm->yes->window);
  EXPECT_FALSE(Exists(FileOf(plugin)));
  EXPECT_TRUE(Exists(FileOf(other)));
}

TEST_F(MainMenu, DeletionThatFailsKeepsThePluginAndTellsTheUser) {
  GromlitPlugin* plugin = ShowNew(2);
  Choose(kPlugin, kDelete);
  BlockFile(plugin);
  ClickOn(confirm->yes->window);
  EXPECT_NE(ShownFailure(), "");
  EXPECT_EQ(FindPlugin("Edit.edit"), plugin);
  EXPECT_EQ(app->plugin, plugin);
  GiveFileBack(plugin);
  EXPECT_EQ(NamesInFile(plugin), Names(plugin));
}

TEST_F(MainMenu, DeletionConfirmedForAPluginThatIsGoneDoesNothing) {
  GromlitPlugin* plugin = ShowNew(0);
  Choose(kPlugin, kDelete);
  DeletePlugin(plugin, plugin->classname);
  ClickOn(confirm->yes->window);
  EXPECT_EQ(ShownFailure(), "");
  EXPECT_FALSE(Viewable(confirm->window));
}

// --- Exit -------------------------------------------------------------------------------------

TEST_F(MainMenu, ExitAsksFirstAndNoLeavesEverythingAsItWas) {
  GromlitPlugin* plugin = ShowNew(1);
  Choose(kPlugin, kExit);
  ASSERT_TRUE(Viewable(confirm->window));
  EXPECT_STREQ(confirm->title, "Exit Gromlit");
  EXPECT_THAT(Lines(confirm), ElementsAre("Really Exit Gromlit? "));
  Shoot("dialog-exit");
  ClickOn(confirm->no->window);
  EXPECT_FALSE(Viewable(confirm->window));
  EXPECT_TRUE(Viewable(app->window));
  EXPECT_EQ(app->plugin, plugin);
  EXPECT_TRUE(Exists(FileOf(plugin)));
}

TEST_F(MainMenu, YesToExitEndsWithStatusZeroAndGivesTheKeyboardBack) {
  // The server, the window and the user of the process that exits.
  static Player* someone;
  static Window client;
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_EXIT(
      {
        someone = player.get();
        client = Client(700, 500, 100, 100);
        XSetInputFocus(player->display(), client, RevertToPointerRoot, CurrentTime);
        XSync(player->display(), False);
        Choose(kPlugin, kEdit);
        TypeName("x");  // a field has the keyboard now
        Window focus;
        int revert;
        XGetInputFocus(dpy, &focus, &revert);
        if (focus == client) _exit(3);
        // Runs while the connection is still there.
        std::atexit([] {
          const bool back = WaitFor([] {
            Window now;
            int how;
            XGetInputFocus(someone->display(), &now, &how);
            return now == client;
          });
          if (!back) _exit(4);
        });
        // Without another field in between.
        mbPluginExit(nullptr, app);
        Pump();
        ClickOn(confirm->yes->window);
        _exit(5);
      },
      ExitedWithCode(0), "");
}

TEST_F(MainMenu, LastQuestionAskedDecidesWhatYesDoes) {
  GromlitPlugin* plugin = ShowNew(0);
  Choose(kPlugin, kExit);
  PopUpDialog(confirm, confirm->title, 900, 700);
  Pump();
  Choose(kPlugin, kDelete);
  ClickOn(confirm->yes->window);  // would end the test
  EXPECT_FALSE(Exists(FileOf(plugin)));
}

// --- Pages ------------------------------------------------------------------------------------

TEST_F(MainMenu, DownloadOpensItsPageWithoutAClass) {
  Choose(kPlugin, kDownload);
  EXPECT_TRUE(Opened(GromlitDownloadURLprefix));
}

TEST_F(MainMenu, UploadOpensItsPage) {
  Choose(kPlugin, kUpload);
  EXPECT_TRUE(Opened(GromlitUploadURLprefix));
}

TEST_F(MainMenu, HelpIndexOpensThePagesBelowTheInstallation) {
  Choose(kHelp, 0);
  EXPECT_TRUE(Opened("file:" + *install / "help/index.html"));
}

TEST_F(MainMenu, AboutSaysWhatTheProgramIs) {
  Choose(kHelp, 1);
  EXPECT_TRUE(Viewable(about->window));
  EXPECT_STREQ(about->title, "About Gromlit");
  Shoot("dialog-about");
  ClickOn(about->no->window);
  EXPECT_FALSE(Viewable(about->window));
}

// --- Symbols, options -------------------------------------------------------------------------

TEST_F(MainMenu, NewSymbolOpensTheEditorOnAnEmptyOne) {
  Choose(kSymbol, 0);
  EXPECT_TRUE(Viewable(sed->window));
  EXPECT_EQ(sed->state, kSymEmpty);
}

TEST_F(MainMenu, EditSymbolLetsTheUserChooseOne) {
  SymbolChooser()->selected = -1;
  Choose(kSymbol, 1);
  EXPECT_TRUE(Viewable(symselect->window));
  EXPECT_STREQ(symselect->title, "Select Symbol to Edit");
  EXPECT_EQ(symselect->yesfn, YesEditSymbol);
  Shoot("dialog-select-symbol");
}

TEST_F(MainMenu, PopupItemEditSymbolDoesTheSame) {
  symselect->yesfn = YesDeleteSymbol;
  ChooseFromPopup(7);
  EXPECT_TRUE(Viewable(symselect->window));
  EXPECT_STREQ(symselect->title, "Select Symbol to Edit");
  EXPECT_EQ(symselect->yesfn, YesEditSymbol);
}

TEST_F(MainMenu, DeleteSymbolStartsWithoutASelection) {
  SymbolChooser()->selected = 0;
  Choose(kSymbol, 2);
  EXPECT_TRUE(Viewable(symselect->window));
  EXPECT_STREQ(symselect->title, "Select Symbol to Delete");
  EXPECT_EQ(symselect->yesfn, YesDeleteSymbol);
  EXPECT_EQ(SymbolChooser()->selected, -1);
}

TEST_F(MainMenu, PreferencesOpenTheirWindow) {
  Choose(kOptions, 0);
  EXPECT_TRUE(Viewable(opt->window));
}

TEST_F(MainMenu, CommandsWhoseDialogIsMissingDoNothing) {
  confirm = editname = about = symselect = app->newdlog = nullptr;
  sed = nullptr;
  for (int i : {kNew, kEdit, kDelete, kExit}) Choose(kPlugin, i);
  for (int i = 0; i < 3; i++) Choose(kSymbol, i);
  Choose(kHelp, 1);
  EXPECT_TRUE(Viewable(app->window));
}

// --- A day's work -----------------------------------------------------------------------------

TEST_F(MainMenu, FiveHundredRenamesTakeNoFurtherWindows) {
  ShowNew(1);
  mbPluginEdit(nullptr, app);
  auto* txt = static_cast<TextEditor*>(editname->child);
  TextEditorUpdate(txt, "Name");
  SaveNewPluginName(editname);
  const int before = nWindowObjects;
  for (int i = 0; i < 500; i++) {
    TextEditorUpdate(txt, ("Name " + std::to_string(i)).c_str());
    SaveNewPluginName(editname);
  }
  EXPECT_EQ(nWindowObjects, before);
  EXPECT_STREQ(app->txt->label, "Name 499");
  EXPECT_EQ(ShownFailure(), "");
}

}  // namespace
}  // namespace gromlit::testing
