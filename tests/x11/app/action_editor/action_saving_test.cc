// First: the test library's headers do not stand Xlib's macros.
#include "tests/x11/app/action_fixture.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cstdio>
#include <iterator>

#include "app/main_window/action_menu.h"
#include "app/main_window/main_window.h"
#include "recognition/signature_match.h"

namespace gromlit {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;

using ActionSavingTest = testing::ActionFixture;

TEST_F(ActionSavingTest, OkAddsANewActionToPluginAndFile) {
  EditNewAction(plugin);
  Pump();
  ClearName();
  Type(act->txt, "Start Clock");
  Add(kRun, "xclock");
  Add(kText, "tick");
  ClickOn(act->bsave);
  EXPECT_FALSE(Open());
  EXPECT_EQ(editingPlugin, 0);
  ASSERT_EQ(plugin->nactions, 1);
  EXPECT_STREQ(plugin->actions[0]->name, "Start Clock");
  const GromlitPlugin* file = Stored();
  ASSERT_EQ(file->nactions, 1);
  const GromlitAction& action = *file->actions[0];
  EXPECT_STREQ(action.name, "Start Clock");
  EXPECT_EQ(Points(action.sym), Points(*allSymbols->sym));
  ASSERT_EQ(action.ncmds, 2u);
  EXPECT_EQ(action.cmds[0]->type, kRun);
  EXPECT_STREQ(action.cmds[0]->text, "xclock");
  EXPECT_EQ(action.cmds[1]->type, kText);
  EXPECT_STREQ(action.cmds[1]->text, "tick");
  EXPECT_NE(plugin->actions[0]->cmds[0], act->action.cmds[0]) << "shared with the working copy";
  EXPECT_NE(plugin->actions[0]->cmds[0]->text, act->action.cmds[0]->text);
}

TEST_F(ActionSavingTest, OkChangesTheEditedActionInItsPlace) {
  Have("First", {Command(kRun, "one")});
  GromlitAction* action = Have("Second", {Command(kRun, "two"), Command(kRun, "three")});
  EditAction(plugin, action);
  Pump();
  Type(act->txt, "!");
  ClickLine(1);
  Type(tab->ed, "x");
  ClickOn(tab->bupdate);
  Add(kSound, "ding");
  ClickLine(0);
  ClickOn(tab->bdelete);
  ClickOn(act->bsave);
  EXPECT_FALSE(Open());
  EXPECT_EQ(editingPlugin, 0);
  EXPECT_EQ(plugin->nactions, 2);
  EXPECT_EQ(plugin->actions[1], action) << "whoever points to the action sees the change";
  for (const GromlitPlugin* pin :
       {static_cast<const GromlitPlugin*>(plugin), static_cast<const GromlitPlugin*>(Stored())}) {
    ASSERT_EQ(pin->nactions, 2);
    EXPECT_STREQ(pin->actions[0]->name, "First");
    EXPECT_STREQ(pin->actions[1]->name, "Second!");
    ASSERT_EQ(pin->actions[1]->ncmds, 2u);
    EXPECT_STREQ(pin->actions[1]->cmds[0]->text, "threex");
    EXPECT_STREQ(pin->actions[1]->cmds[1]->text, "ding");
    EXPECT_EQ(pin->actions[1]->cmds[1]->type, kSound);
  }
}

TEST_F(ActionSavingTest, OkWithoutANameLeavesTheEditorOpenAndAddsNothing) {
  EditNewAction(plugin);
  Pump();
  ClearName();
  ASSERT_EQ(Field(act->txt), "");
  ClickOn(act->bsave);
  EXPECT_TRUE(Open());
  EXPECT_EQ(editingPlugin, 1);
  EXPECT_EQ(plugin->nactions, 0);
  EXPECT_FALSE(Told());
}

TEST_F(ActionSavingTest, CancelAbandonsTheWork) {
  GromlitAction* action = Have("Old", {Command(kRun, "one")});
  UnLoadPlugin(plugin, plugin->classname);
  const auto before = testing::ReadBytes(PluginFile());
  EditAction(plugin, action);
  Pump();
  Type(act->txt, "er");
  ClickOn(tab->bdelete);
  ClickOn(act->bcancel);
  EXPECT_FALSE(Open());
  EXPECT_EQ(editingPlugin, 0);
  EXPECT_STREQ(action->name, "Old");
  EXPECT_EQ(action->ncmds, 1u);
  EXPECT_EQ(testing::ReadBytes(PluginFile()), before);
}

TEST_F(ActionSavingTest, CommandsThatWereNotUpdatedKeepTheirWholeRecords) {
  GromlitCmd rich = Command(kHotKey, "its own text");
  rich.nkeys = 3;
  for (int i = 0; i < kMaxKeys; i++) {
    rich.keycode[i] = static_cast<uint16_t>(38 + i);
    rich.keystate[i] = static_cast<uint16_t>(1 << i);
  }
  for (int i = 0; i < 6; i++) rich.buttons[i] = static_cast<uint8_t>(10 + i);
  rich.flag = 7;
  rich.checked = 9;
  rich.spare = 0x12345678;
  GromlitAction* action = Have("Rich", {rich, Command(kRun, "xclock")});
  action->spare = 4711;
  action->sym.spare = 815;
  EditAction(plugin, action);
  Pump();
  ClickLine(1);
  Type(tab->ed, "2");
  ClickOn(tab->bupdate);
  ClickOn(act->bmoveup);
  ClickOn(act->bsave);
  const GromlitAction& stored_action = *Stored()->actions[0];
  EXPECT_EQ(stored_action.spare, 4711);
  EXPECT_EQ(stored_action.sym.spare, 815u);
  ASSERT_EQ(stored_action.ncmds, 2u);
  EXPECT_STREQ(stored_action.cmds[0]->text, "xclock2");
  const GromlitCmd& kept = *stored_action.cmds[1];
  EXPECT_EQ(kept.type, rich.type);
  EXPECT_EQ(kept.nkeys, rich.nkeys);
  EXPECT_TRUE(std::equal(std::begin(kept.keycode), std::end(kept.keycode), rich.keycode));
  EXPECT_TRUE(std::equal(std::begin(kept.keystate), std::end(kept.keystate), rich.keystate));
  EXPECT_TRUE(std::equal(std::begin(kept.buttons), std::end(kept.buttons), rich.buttons));
  EXPECT_EQ(kept.flag, 7);
  EXPECT_EQ(kept.checked, 9);
  EXPECT_EQ(kept.spare, 0x12345678);
  EXPECT_STREQ(kept.text, "its own text");
}

TEST_F(ActionSavingTest, UpdateKeepsWhatTheTypeDoesNotSet) {
  GromlitCmd rich = Command(kMenu, "A");
  rich.keycode[1] = 50;
  rich.flag = 7;
  EditAction(plugin, Have("Rich", {rich}));
  Pump();
  Type(tab->ed, "b");
  ClickOn(tab->bupdate);
  const GromlitCmd& command = *act->action.cmds[0];
  EXPECT_EQ(command.nkeys, 2);
  EXPECT_EQ(command.keycode[0], XKeysymToKeycode(dpy, XK_b));
  EXPECT_EQ(command.keycode[1], 50);
  EXPECT_EQ(command.flag, 7);
}

TEST_F(ActionSavingTest, ATextLongerThanTheFieldIsShownCutAndKept) {
  const std::string text(300, 'x');
  GromlitAction* action = Have("Long", {Command(kText, text.c_str())});
  EditAction(plugin, action);
  Pump();
  EXPECT_EQ(Field(tab->ed), text.substr(0, kEditorBuffer - 1));
  // Only the box is changed.
  ClickCheckBox();
  ClickOn(tab->bupdate);
  EXPECT_EQ(act->action.cmds[0]->text, text);
  ClickOn(act->bsave);
  EXPECT_EQ(Stored()->actions[0]->cmds[0]->text, text);
  EXPECT_EQ(Stored()->actions[0]->cmds[0]->ntext, 300u);
  EXPECT_EQ(Stored()->actions[0]->cmds[0]->checked, 1);
  // Now the text, too.
  EditAction(plugin, action);
  Pump();
  MoveInto(tab->ed->window, 60, 12);
  player->Type(XK_BackSpace);
  Pump();
  ClickOn(tab->bupdate);
  EXPECT_EQ(act->action.cmds[0]->text, text.substr(0, kEditorBuffer - 2));
}

TEST_F(ActionSavingTest, ANameLongerThanItsFieldIsCut) {
  EditNewAction(plugin);
  Pump();
  ClearName();
  Type(act->txt, std::string(64, 'n'));
  ASSERT_EQ(act->txt->len, 64);
  ClickOn(act->bsave);
  EXPECT_EQ(Stored()->actions[0]->name, std::string(63, 'n'));
}

TEST_F(ActionSavingTest, AFullPluginGetsNoFurtherAction) {
  for (int i = 0; i < kMaxActions - 1; i++) Have("A", {});
  EditNewAction(plugin);
  Pump();
  ClickOn(act->bsave);
  EXPECT_EQ(plugin->nactions, kMaxActions);
  EXPECT_FALSE(Open());
  EditNewAction(plugin);
  Pump();
  ClickOn(act->bsave);
  EXPECT_EQ(plugin->nactions, kMaxActions);
  EXPECT_TRUE(Open()) << "the work is lost";
  ASSERT_TRUE(Told());
  EXPECT_THAT(Notice(), HasSubstr("128"));
  CloseNotice();
}

TEST_F(ActionSavingTest, AChangeThatCannotBeSavedStaysInTheEditor) {
  GromlitAction* action = Have("Old", {Command(kRun, "one")});
  UnLoadPlugin(plugin, plugin->classname);
  const auto before = testing::ReadBytes(PluginFile());
  const std::string signature = SymbolSignature(&action->sym);
  const GromlitAction kept = *action;
  EditAction(plugin, action);
  Pump();
  Type(act->txt, "er");
  Add(kRun, "two");
  const std::string plugins = *install / "plugins";
  ASSERT_EQ(std::rename(plugins.c_str(), (plugins + "-gone").c_str()), 0);
  ClickOn(act->bsave);
  ASSERT_EQ(std::rename((plugins + "-gone").c_str(), plugins.c_str()), 0);
  EXPECT_TRUE(Open());
  EXPECT_EQ(editingPlugin, 1);
  ASSERT_TRUE(Told());
  EXPECT_THAT(Notice(), HasSubstr("No such file or directory"));
  Picture("action_save_failed");
  CloseNotice();
  EXPECT_STREQ(action->name, "Old");
  EXPECT_EQ(action->ncmds, 1u);
  EXPECT_EQ(action->cmds[0], kept.cmds[0]);
  EXPECT_STREQ(action->cmds[0]->text, "one");
  EXPECT_EQ(action->sym.signature, kept.sym.signature);
  EXPECT_EQ(SymbolSignature(&action->sym), signature);
  EXPECT_EQ(testing::ReadBytes(PluginFile()), before);
  // The work is all there for another try.
  EXPECT_EQ(Field(act->txt), "Older");
  EXPECT_THAT(Lines(), ElementsAre("Run: one", "Run: two"));
  ClickOn(act->bsave);
  EXPECT_FALSE(Open());
  EXPECT_STREQ(Stored()->actions[0]->name, "Older");
}

TEST_F(ActionSavingTest, ANewActionThatCannotBeSavedIsNotAdded) {
  EditNewAction(plugin);
  Pump();
  Add(kRun, "two");
  const std::string plugins = *install / "plugins";
  ASSERT_EQ(std::rename(plugins.c_str(), (plugins + "-gone").c_str()), 0);
  ClickOn(act->bsave);
  ASSERT_EQ(std::rename((plugins + "-gone").c_str(), plugins.c_str()), 0);
  EXPECT_TRUE(Open());
  ASSERT_TRUE(Told());
  CloseNotice();
  EXPECT_EQ(plugin->nactions, 0);
  EXPECT_THAT(Lines(), ElementsAre("Run: two"));
  ClickOn(act->bsave);
  EXPECT_EQ(Stored()->nactions, 1);
}

TEST_F(ActionSavingTest, OkRedrawsTheMainWindow) {
  app = MakeGromlitApp(6, 3);
  app->plugin = plugin;
  for (int i = 0; i < 18; i++) Have("A", {});
  UpdateGromlitScrollRange();
  const XScrollbar* scrollbar = app->sbar;
  const int range = scrollbar->range;
  DrawGromlitApp(app);
  ASSERT_EQ(app->nicons, 18);
  EditNewAction(plugin);
  Pump();
  ClickOn(act->bsave);
  EXPECT_EQ(app->nicons, 19);
  EXPECT_GT(scrollbar->range, range) << "the new row cannot be scrolled to";
  app = nullptr;
}

// --- Records that go away while the editor is open ---

TEST_F(ActionSavingTest, APluginThatWasDeletedIsNotWrittenAgain) {
  GromlitAction* action = Have("Old", {Command(kRun, "one")});
  UnLoadPlugin(plugin, plugin->classname);
  for (const bool existing : {true, false}) {
    if (existing) {
      EditAction(plugin, action);
      ASSERT_EQ(DropPlugin(plugin, plugin->classname), 1);
    } else {
      EditNewAction(plugin);
    }
    Pump();
    Type(act->txt, "er");
    ClickOn(act->bsave);
    EXPECT_FALSE(testing::Exists(PluginFile())) << "the file came back";
    EXPECT_TRUE(Open()) << "the work is lost";
    ASSERT_TRUE(Told());
    EXPECT_THAT(Notice(), HasSubstr("deleted"));
    CloseNotice();
    EXPECT_STREQ(action->name, "Old");
    EXPECT_EQ(plugin->nactions, 1);
  }
  ClickOn(act->bcancel);
  EXPECT_FALSE(Open());
  EXPECT_EQ(editingPlugin, 0);
}

TEST_F(ActionSavingTest, APluginThatWasMadeAnewIsNotTakenForTheDeletedOne) {
  GromlitAction* action = Have("Old", {});
  UnLoadPlugin(plugin, plugin->classname);
  EditAction(plugin, action);
  Pump();
  ASSERT_EQ(DropPlugin(plugin, plugin->classname), 1);
  GromlitPlugin* another = CreatePlugin("Test application", kClass);
  ASSERT_NE(another, plugin);
  ClickOn(act->bsave);
  EXPECT_TRUE(Told());
  EXPECT_EQ(another->nactions, 0);
  EXPECT_EQ(Stored()->nactions, 0);
  CloseNotice();
}

TEST_F(ActionSavingTest, AnActionThatWasDeletedIsAddedAgainByOk) {
  app = MakeGromlitApp(6, 3);
  app->plugin = plugin;
  GromlitAction* deleted = Have("Deleted", {Command(kRun, "one")});
  Have("Other", {Command(kRun, "two")});
  UnLoadPlugin(plugin, plugin->classname);
  EditAction(plugin, deleted);
  Pump();
  app->selected = 0;
  popDeleteAction(nullptr, nullptr);
  ASSERT_EQ(plugin->nactions, 1);
  Type(act->txt, "!");
  ClickOn(act->bsave);
  EXPECT_FALSE(Open());
  EXPECT_STREQ(deleted->name, "Deleted") << "a stale record was written to";
  const GromlitPlugin* file = Stored();
  ASSERT_EQ(file->nactions, 2);
  EXPECT_STREQ(file->actions[0]->name, "Other");
  EXPECT_STREQ(file->actions[1]->name, "Deleted!");
  EXPECT_STREQ(file->actions[1]->cmds[0]->text, "one");
  app = nullptr;
}

}  // namespace
}  // namespace gromlit
