// First: the test library's headers cannot bear Xlib's macros.
#include "tests/x11/app/main_window_fixture.h"

#include <cstring>
#include <random>

#include "tests/support/captured.h"
#include "tests/x11/toolkit/request_cost.h"

namespace gromlit {
namespace {

using testing::Cost;
using testing::CostOf;
using testing::ShownFailure;
using Texts = std::vector<std::string>;

class ActionMenuTest : public testing::MainWindowFixture {
 protected:
  enum Item { kCut, kCopy, kPaste, kDelete, kEdit, kExport, kNew, kEditSymbol };

  void Select(int n) {
    app->selected = n;
    DrawGromlitApp(app);
  }

  // The names of the actions, which those in the file must be, too.
  Texts Actions() {
    EXPECT_EQ(NamesInFile(app->plugin), Names(app->plugin));
    return Names(app->plugin);
  }

  static void Run(MenuAction command) { command(app->popup, app); }

  // The user closes the dialog that tells of a failure.
  void Dismiss() {
    XUnmapWindow(dpy, notice->window);
    Pump();
  }

  // Runs something that fails, and swallows what it says on the error stream.
  template <typename Operation>
  static void Quietly(Operation op) {
    testing::CaptureStderr();
    op();
    testing::GetCapturedStderr();
  }
};

// --- By the popup, as a user does it ----------------------------------------------------------

TEST_F(ActionMenuTest, CopyAndPasteFromThePopupAddACopyAtTheEnd) {
  ShowNew(3);
  ClickCell(1);
  ChooseFromPopup(kCopy);
  EXPECT_NE(app->validcut, 0);
  EXPECT_EQ(Actions(), (Texts{"a0", "a1", "a2"}));
  ChooseFromPopup(kPaste);
  EXPECT_EQ(Actions(), (Texts{"a0", "a1", "a2", "a1"}));
  EXPECT_EQ(app->nicons, 4);
  EXPECT_EQ(app->selected, 1);
  EXPECT_EQ(PixelOf(app->window, CellX(3) + 16, CellY(3) + 8), kBlue);
}

TEST_F(ActionMenuTest, CutFromThePopupTakesTheActionOutAndPasteBringsItBack) {
  ShowNew(3);
  ClickCell(0);
  ChooseFromPopup(kCut);
  EXPECT_EQ(Actions(), (Texts{"a1", "a2"}));
  EXPECT_EQ(app->selected, 0);
  EXPECT_EQ(app->nicons, 2);
  ChooseFromPopup(kPaste);
  ChooseFromPopup(kPaste);
  EXPECT_EQ(Actions(), (Texts{"a1", "a2", "a0", "a0"}));
}

TEST_F(ActionMenuTest, DeleteFromThePopupSavesAtOnce) {
  ShowNew(3);
  ClickCell(1);
  ChooseFromPopup(kDelete);
  EXPECT_EQ(Actions(), (Texts{"a0", "a2"}));
  EXPECT_EQ(app->selected, 1);
  EXPECT_EQ(app->validcut, 0);
}

TEST_F(ActionMenuTest, EditFromThePopupOpensTheEditorOnTheSelectedAction) {
  ShowNew(3);
  ClickCell(2);
  ChooseFromPopup(kEdit);
  EXPECT_TRUE(Viewable(act->window));
  EXPECT_EQ(editingPlugin, 1);
  EXPECT_EQ(act->plugin, app->plugin);
  EXPECT_EQ(act->edit, app->plugin->actions[2]);
  EXPECT_EQ(act->action.ncmds, 1U);
  EXPECT_STREQ(act->action.cmds[0]->text, "run2");
  EXPECT_NE(act->action.cmds[0], app->plugin->actions[2]->cmds[0]);
}

TEST_F(ActionMenuTest, NewFromThePopupOpensTheEditorOnANewAction) {
  ShowNew(3);
  ChooseFromPopup(kNew);
  EXPECT_TRUE(Viewable(act->window));
  EXPECT_EQ(editingPlugin, 1);
  EXPECT_EQ(act->plugin, app->plugin);
  EXPECT_EQ(act->edit, nullptr);
  EXPECT_EQ(Actions(), (Texts{"a0", "a1", "a2"}));
}

TEST_F(ActionMenuTest, ExportFromThePopupShowsTheEditorAsItIs) {
  ShowNew(3);
  ClickCell(0);
  Run(popEditAction);
  XUnmapWindow(dpy, act->window);
  editingPlugin = 0;
  Pump();
  ClickCell(2);
  ChooseFromPopup(kExport);
  EXPECT_TRUE(Viewable(act->window));
  EXPECT_EQ(editingPlugin, 1);
  EXPECT_EQ(act->edit, app->plugin->actions[0]);
}

TEST_F(ActionMenuTest, APopupThatIsLeftRunsNothing) {
  ShowNew(3);
  ClickCell(1);
  OpenPopup();
  MoveToItem(app->popup, kDelete);
  player->MoveTo(1000, 900);
  Pump();
  player->Release(3);
  Pump();
  EXPECT_EQ(Actions(), (Texts{"a0", "a1", "a2"}));
}

// --- What there is nothing to do for ----------------------------------------------------------

TEST_F(ActionMenuTest, WithoutASelectionCutCopyDeleteAndEditDoNothing) {
  ShowNew(3);
  const std::vector<std::byte> before = testing::ReadBytes(FileOf(app->plugin));
  EXPECT_EQ(
      CostOf([] {
        for (MenuAction command : {popCutAction, popCopyAction, popDeleteAction, popEditAction})
          Run(command);
      }),
      (Cost{0, 0}));
  EXPECT_EQ(app->validcut, 0);
  EXPECT_EQ(editingPlugin, 0);
  EXPECT_EQ(testing::ReadBytes(FileOf(app->plugin)), before);
}

TEST_F(ActionMenuTest, WithAnEmptyClipboardPasteDoesNothing) {
  ShowNew(3);
  EXPECT_EQ(CostOf([] { Run(popPasteAction); }), (Cost{0, 0}));
  EXPECT_EQ(Actions(), (Texts{"a0", "a1", "a2"}));
}

TEST_F(ActionMenuTest, WithoutAPluginNothingHappens) {
  ShowNew(3);
  Select(0);
  Run(popCopyAction);
  app->plugin = nullptr;
  for (MenuAction command :
       {popCutAction, popCopyAction, popPasteAction, popDeleteAction, popEditAction, popNewAction})
    Run(command);
  EXPECT_EQ(editingPlugin, 0);
  EXPECT_STREQ(app->cut.name, "a0");
}

TEST_F(ActionMenuTest, BeforeThereIsAWindowNothingHappens) {
  GromlitApp* kept = app;
  app = nullptr;
  for (MenuAction command :
       {popCutAction, popCopyAction, popPasteAction, popDeleteAction, popEditAction, popNewAction})
    command(nullptr, nullptr);
  app = kept;
  EXPECT_EQ(editingPlugin, 0);
}

// --- Deleting ---------------------------------------------------------------------------------

TEST_F(ActionMenuTest, DeletingTheLastActionSelectsTheNewLastOne) {
  ShowNew(3);
  Select(2);
  Run(popDeleteAction);
  EXPECT_EQ(app->selected, 1);
  Pump();
  EXPECT_TRUE(Highlighted(1));
  EXPECT_EQ(Actions(), (Texts{"a0", "a1"}));
}

TEST_F(ActionMenuTest, DeletingTheOnlyActionLeavesNothingSelected) {
  ShowNew(1);
  Select(0);
  Run(popDeleteAction);
  EXPECT_EQ(app->selected, -1);
  EXPECT_EQ(Actions(), Texts{});
  EXPECT_EQ(app->sbar->range, 0);
  Run(popDeleteAction);
  EXPECT_EQ(app->selected, -1);
}

TEST_F(ActionMenuTest, DeletingDownToOneRowLessShrinksTheScrollRange) {
  ShowNew(25);
  ASSERT_EQ(app->sbar->range, 5 * cell);
  Select(24);
  Run(popDeleteAction);
  EXPECT_EQ(app->sbar->range, 4 * cell);
}

TEST_F(ActionMenuTest, AnActionThatIsDeletedWhileItIsEditedStaysReadable) {
  ShowNew(3);
  Select(1);
  Run(popEditAction);
  Run(popDeleteAction);
  EXPECT_STREQ(act->edit->name, "a1");
  EXPECT_STREQ(act->edit->cmds[0]->text, "run1");
}

TEST_F(ActionMenuTest, ADeleteThatCannotBeSavedLeavesTheActionAndTellsTheUser) {
  GromlitPlugin* plugin = ShowNew(4);
  ClickCell(1);
  BlockFile(plugin);
  testing::CaptureStderr();
  Run(popDeleteAction);
  EXPECT_EQ(testing::GetCapturedStderr(), "Save Plugin: Is a directory\n");
  Pump();
  EXPECT_EQ(ShownFailure(), "The action was not deleted./Is a directory.");
  GiveFileBack(plugin);
  EXPECT_EQ(Actions(), (Texts{"a0", "a1", "a2", "a3"}));
  EXPECT_EQ(app->selected, 1);
  Dismiss();
  Run(popDeleteAction);
  EXPECT_EQ(Actions(), (Texts{"a0", "a2", "a3"}));
  EXPECT_EQ(ShownFailure(), "");
}

TEST_F(ActionMenuTest, ACutThatCannotBeSavedIsACopy) {
  GromlitPlugin* plugin = ShowNew(2);
  Select(0);
  BlockFile(plugin);
  Quietly([] { Run(popCutAction); });
  GiveFileBack(plugin);
  EXPECT_EQ(Actions(), (Texts{"a0", "a1"}));
  EXPECT_STREQ(app->cut.name, "a0");
}

// --- The clipboard ----------------------------------------------------------------------------

TEST_F(ActionMenuTest, ClipboardAndPasteShareNothingWithTheAction) {
  GromlitPlugin* plugin = ShowNew(2);
  Select(0);
  Run(popCopyAction);
  Run(popPasteAction);
  Run(popPasteAction);
  const GromlitAction* all[] = {plugin->actions[0], &app->cut, plugin->actions[2],
                                plugin->actions[3]};
  for (const GromlitAction* one : all) {
    EXPECT_STREQ(one->cmds[0]->text, "run0");
    for (const GromlitAction* other : all) {
      if (one == other) continue;
      EXPECT_NE(one->cmds[0], other->cmds[0]);
      EXPECT_NE(one->cmds[0]->text, other->cmds[0]->text);
    }
  }
  plugin->actions[0]->cmds[0]->text[0] = 'X';
  EXPECT_STREQ(app->cut.cmds[0]->text, "run0");
  EXPECT_STREQ(plugin->actions[2]->cmds[0]->text, "run0");
}

TEST_F(ActionMenuTest, TheClipboardOutlivesItsActionAndItsPlugin) {
  GromlitPlugin* other = Plugin("Other", "Other.other", 1);
  GromlitPlugin* plugin = ShowNew(2);
  Select(1);
  Run(popCutAction);
  ASSERT_EQ(DeletePlugin(plugin, plugin->classname), 1);
  Show(other);
  Run(popPasteAction);
  EXPECT_EQ(Actions(), (Texts{"a0", "a1"}));
  EXPECT_STREQ(other->actions[1]->cmds[0]->text, "run1");
}

TEST_F(ActionMenuTest, ACopyHasTheWholeRecordButNoSignature) {
  GromlitPlugin* plugin = ShowNew(1);
  GromlitAction* action = plugin->actions[0];
  action->spare = 17;
  action->sym.spare = 18;
  action->sym.npoints = kMaxPoints;
  for (int i = 1; i <= kMaxPoints; i++) {
    action->sym.x[i] = static_cast<uint16_t>(16 + i);
    action->sym.y[i] = static_cast<uint16_t>(100 + i);
  }
  action->sym.signature = StrDup("abcd");
  GromlitCmd* cmd = action->cmds[0];
  cmd->type = kHotKey;
  cmd->nkeys = 2;
  cmd->keycode[1] = 38;
  cmd->keystate[1] = 4;
  cmd->flag = 1;
  cmd->checked = 1;
  cmd->spare = 19;
  cmd->buttons[5] = 20;
  action->cmds[1] = new GromlitCmd{};  // without a text
  action->ncmds = 2;
  Select(0);
  Run(popCopyAction);
  Run(popPasteAction);
  const GromlitAction* copy = plugin->actions[1];
  EXPECT_EQ(copy->sym.signature, nullptr);
  EXPECT_EQ(app->cut.sym.signature, nullptr);
  EXPECT_STREQ(action->sym.signature, "abcd");
  EXPECT_STREQ(copy->sym.name, action->sym.name);
  EXPECT_EQ(copy->sym.npoints, kMaxPoints);
  EXPECT_TRUE(std::equal(copy->sym.x, copy->sym.x + kMaxPoints + 1, action->sym.x));
  EXPECT_TRUE(std::equal(copy->sym.y, copy->sym.y + kMaxPoints + 1, action->sym.y));
  EXPECT_TRUE(std::equal(copy->sym.icon, copy->sym.icon + kIconSize, action->sym.icon));
  EXPECT_EQ(copy->sym.spare, 18U);
  EXPECT_EQ(copy->spare, 17);
  ASSERT_EQ(copy->ncmds, 2U);
  GromlitCmd expected = *cmd;
  expected.text = copy->cmds[0]->text;
  EXPECT_EQ(std::memcmp(copy->cmds[0], &expected, sizeof expected), 0);
  EXPECT_EQ(copy->cmds[1]->text, nullptr);
  EXPECT_EQ(copy->cmds[2], nullptr);
}

TEST_F(ActionMenuTest, ALaterCopyReplacesTheClipboard) {
  ShowNew(3);
  for (int n : {0, 2, 1}) {
    Select(n);
    Run(popCopyAction);
  }
  Run(popPasteAction);
  EXPECT_EQ(Actions(), (Texts{"a0", "a1", "a2", "a1"}));
}

TEST_F(ActionMenuTest, AnActionWithTheMostCommandsIsCopiedWhole) {
  GromlitPlugin* plugin = ShowNew(1);
  GromlitAction* action = plugin->actions[0];
  for (; action->ncmds < kMaxCommands; action->ncmds++)
    action->cmds[action->ncmds] = Command(std::to_string(action->ncmds).c_str());
  Select(0);
  Run(popCopyAction);
  Run(popPasteAction);
  ASSERT_EQ(plugin->actions[1]->ncmds, static_cast<uint32_t>(kMaxCommands));
  EXPECT_STREQ(plugin->actions[1]->cmds[127]->text, "127");
}

TEST_F(ActionMenuTest, AnActionWithoutANameComesBackAfterACut) {
  GromlitPlugin* plugin = ShowNew(2);
  plugin->actions[0]->name[0] = '\0';
  Select(0);
  Run(popCutAction);
  Run(popPasteAction);
  EXPECT_EQ(Actions(), (Texts{"a1", ""}));
}

// --- Full plug-ins ----------------------------------------------------------------------------

TEST_F(ActionMenuTest, PasteAddsNothingToAFullPluginAndSaysSo) {
  GromlitPlugin* plugin = ShowNew(127);
  Select(0);
  Run(popCopyAction);
  Run(popPasteAction);
  EXPECT_EQ(plugin->nactions, 128);
  EXPECT_EQ(ShownFailure(), "");
  const std::vector<std::byte> file = testing::ReadBytes(FileOf(plugin));
  const GromlitPlugin before = *plugin;
  Run(popPasteAction);
  Pump();
  EXPECT_EQ(ShownFailure(), "This plug-in holds 128 actions already./Nothing was added.");
  EXPECT_EQ(std::memcmp(plugin, &before, sizeof before), 0);
  EXPECT_EQ(testing::ReadBytes(FileOf(plugin)), file);
  Dismiss();
  // After a deletion there is room again.
  Select(127);
  Run(popDeleteAction);
  Run(popPasteAction);
  EXPECT_EQ(plugin->nactions, 128);
  EXPECT_EQ(ShownFailure(), "");
}

TEST_F(ActionMenuTest, NewOnAFullPluginOpensNoEditorAndSaysSo) {
  ShowNew(128);
  ChooseFromPopup(kNew);
  EXPECT_EQ(ShownFailure(), "This plug-in holds 128 actions already./Nothing was added.");
  EXPECT_EQ(editingPlugin, 0);
  EXPECT_FALSE(Viewable(act->window));
}

// --- Saves that fail -----------------------------------------------------------------------------

TEST_F(ActionMenuTest, APasteThatCannotBeSavedAddsNothingAndTellsTheUser) {
  GromlitPlugin* plugin = ShowNew(2);
  Select(0);
  Run(popCopyAction);
  BlockFile(plugin);
  Quietly([] { Run(popPasteAction); });
  Pump();
  EXPECT_EQ(ShownFailure(), "The action was not added./Is a directory.");
  GiveFileBack(plugin);
  EXPECT_EQ(Actions(), (Texts{"a0", "a1"}));
  EXPECT_EQ(plugin->actions[2], nullptr);
  EXPECT_EQ(app->nicons, 2);
  Dismiss();
  Run(popPasteAction);
  EXPECT_EQ(Actions(), (Texts{"a0", "a1", "a0"}));
}

// --- Many commands in any order ---------------------------------------------------------------

TEST_F(ActionMenuTest, AnyOrderOfCommandsKeepsMemoryFileAndSelectionTogether) {
  GromlitPlugin* plugin = ShowNew(5);
  Texts expected = Names(plugin);
  std::string clip;
  bool valid = false;
  std::mt19937 random(6);
  for (int i = 0; i < 300; i++) {
    const int n = static_cast<int>(expected.size());
    if (app->selected < 0 && n > 0) app->selected = static_cast<int>(random() % expected.size());
    const int s = app->selected;
    switch (random() % 5) {
      case 0:
        Run(popCopyAction);
        if (s >= 0) clip = expected[static_cast<size_t>(s)], valid = true;
        break;
      case 1:
      case 2:
        Run(popPasteAction);
        if (valid) expected.push_back(clip);
        break;
      case 3:
        Run(popDeleteAction);
        if (s >= 0) expected.erase(expected.begin() + s);
        break;
      default:
        Run(popCutAction);
        if (s >= 0) {
          clip = expected[static_cast<size_t>(s)];
          valid = true;
          expected.erase(expected.begin() + s);
        }
    }
    ASSERT_EQ(Names(plugin), expected) << "step " << i;
    ASSERT_LT(app->selected, plugin->nactions);
    if (i % 10 == 0) {
      ASSERT_EQ(NamesInFile(plugin), expected) << "step " << i;
    }
  }
  EXPECT_EQ(NamesInFile(plugin), expected);
  EXPECT_GT(expected.size(), 0U);
}

}  // namespace
}  // namespace gromlit
