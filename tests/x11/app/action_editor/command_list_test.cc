// First: the test library's headers do not stand Xlib's macros.
#include "tests/x11/app/action_fixture.h"

#include <gmock/gmock.h>

#include "core/option_files.h"

namespace gromlit {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;

class CommandListTest : public testing::ActionFixture {
 protected:
  void SetUp() override {
    ActionFixture::SetUp();
    if (HasFatalFailure()) return;
    EditNewAction(plugin);
    Pump();
    ASSERT_TRUE(Open());
  }
};

// --- Adding -------------------------------------------------------------------------------------

TEST_F(CommandListTest, OneCommandOfEachTypeIsAddedAndListed) {
  ClickTab(kMenu);
  ClickTab(kHotKey);
  Record({XK_Control_L}, XK_l);
  ClickOn(tab->badd);
  Add(kMenu, "NN");
  Add(kText, "Hello");
  Add(kSound, "ding.wav");
  Add(kRun, "xterm -e top");
  Add(kInternet, "example.org");
  EXPECT_THAT(Lines(),
              ElementsAre("HotKey: Control-l", "Menu: NN", "Text: Hello", "Sound: ding.wav",
                          "Run: xterm -e top", "Internet: example.org"));
  ASSERT_EQ(act->action.ncmds, 6u);
  for (int i = 0; i < 6; i++) EXPECT_EQ(act->action.cmds[i]->type, i);
  EXPECT_EQ(act->lst->selected, 5);
  EXPECT_EQ(Buttons(), "11111");
  Picture("action_six_commands");
}

TEST_F(CommandListTest, ReturnAddsAndUpdatesWithTodaysManners) {
  GromlitUserOptions options{};
  GromlitUserOptions* const former = user;
  user = &options;
  ClickTab(kRun);
  Type(tab->ed, "xterm");
  Chord({}, XK_Return);
  EXPECT_EQ(act->action.ncmds, 0u) << "it means nothing with plain ones";
  options.temp4 = kModernManners;
  Chord({}, XK_Return);
  EXPECT_THAT(Lines(), ElementsAre("Run: xterm"));
  Type(tab->ed, "s");
  Chord({}, XK_Return);
  EXPECT_THAT(Lines(), ElementsAre("Run: xterms"));
  // In the field of a hot key every key is one, but Tab where one has been recorded.
  ClickTab(kHotKey);
  Record({}, XK_Tab);
  EXPECT_EQ(Field(tab->ed), "Tab");
  Record({XK_Control_L}, XK_v);
  Record({}, XK_Tab);
  EXPECT_EQ(Field(tab->ed), "Control-v");
  Window focus = None;
  int revert;
  XGetInputFocus(dpy, &focus, &revert);
  EXPECT_NE(focus, tab->ed->window) << "Tab leads on";
  // The name's is OK.
  MoveInto(act->txt->window, 60, 12);
  Chord({}, XK_Return);
  EXPECT_FALSE(Open());
  user = former;
}

TEST_F(CommandListTest, TheLineThatWasAddedIsInSight) {
  ClickTab(kRun);
  for (int i = 0; i < 12; i++) {
    Add(kRun, "program" + std::to_string(i));
    EXPECT_LE(act->lst->top, i);
    EXPECT_LT(i, act->lst->top + act->lst->visible);
  }
}

TEST_F(CommandListTest, AMenuCommandKeepsItsLastLetterInTheFirstPair) {
  Add(kMenu, "Nb");
  const GromlitCmd& command = *act->action.cmds[0];
  EXPECT_EQ(command.nkeys, 2);
  EXPECT_EQ(command.keycode[0], XKeysymToKeycode(dpy, XK_b));
  EXPECT_EQ(command.keystate[0], Mod1Mask);
  for (int i = 1; i < kMaxKeys; i++) {
    EXPECT_EQ(command.keycode[i], 0);
    EXPECT_EQ(command.keystate[i], 0);
  }
  Add(kMenu, "N");
  EXPECT_EQ(act->action.cmds[1]->keycode[0], XKeysymToKeycode(dpy, XK_n));
  EXPECT_EQ(act->action.cmds[1]->keystate[0], Mod1Mask | ShiftMask);
}

TEST_F(CommandListTest, TheCheckBoxBelongsToTextAndInternet) {
  ClickTab(kText);
  Type(tab->ed, "notes.txt");
  ClickCheckBox();
  ClickOn(tab->badd);
  ClickTab(kInternet);
  Type(tab->ed, "q");
  ClickCheckBox();
  ClickOn(tab->badd);
  Add(kRun, "xclock");
  EXPECT_EQ(act->action.cmds[0]->checked, 1);
  EXPECT_EQ(act->action.cmds[1]->checked, 1);
  EXPECT_EQ(act->action.cmds[2]->checked, 0);
}

TEST_F(CommandListTest, ALongTextIsListedByItsFirstSixteenLetters) {
  Add(kText, "abcdefghijklmnopqrstuvwxyz0123");
  Add(kText, "abcdefghijklmnopq");
  Add(kText, "abcdefghijklmnopqr");
  EXPECT_THAT(Lines(), ElementsAre("Text: abcdefghijklmnop...", "Text: abcdefghijklmnopq",
                                   "Text: abcdefghijklmnop..."));
  EXPECT_STREQ(act->action.cmds[0]->text, "abcdefghijklmnopqrstuvwxyz0123");
}

TEST_F(CommandListTest, AnEmptyTextMayBeAdded) {
  ClickTab(kText);
  ClickOn(tab->badd);
  ASSERT_EQ(act->action.ncmds, 1u);
  EXPECT_STREQ(act->action.cmds[0]->text, "");
  EXPECT_THAT(Lines(), ElementsAre("Text: "));
}

TEST_F(CommandListTest, ATextThatAControlKeyShortenedIsAddedAsItIsShown) {
  ClickTab(kRun);
  Type(tab->ed, "xclock");
  for (int i = 0; i < 3; i++) player->Type(XK_Left);
  Chord({XK_Control_L}, XK_k);
  ClickOn(tab->badd);
  EXPECT_STREQ(act->action.cmds[0]->text, "xcl");
}

TEST_F(CommandListTest, AtTheLimitAddAddsNothingAndSaysSo) {
  for (int i = 0; i < kMaxCommands; i++) {
    ActionEditorAddCommand(kRun, std::to_string(i).c_str(), 0, 0, 0);
  }
  EXPECT_EQ(act->action.ncmds, 128u);
  EXPECT_EQ(Buttons(), "11110") << "Add is disabled";
  ClickOn(tab->badd);
  EXPECT_EQ(act->action.ncmds, 128u);
  EXPECT_STREQ(act->action.cmds[127]->text, "127");
  ASSERT_TRUE(Told());
  EXPECT_THAT(Notice(), HasSubstr("128 commands"));
  Picture("action_full");
  CloseNotice();
  // It would overrun when called anyway.
  tabcmdAdd(nullptr);
  ActionEditorAddCommand(kRun, "one more", 0, 0, 0);
  EXPECT_EQ(act->action.ncmds, 128u);
  EXPECT_STREQ(act->action.cmds[127]->text, "127");
  EXPECT_TRUE(Told());
  CloseNotice();
  ClickOn(tab->bdelete);
  EXPECT_EQ(act->action.ncmds, 127u);
  EXPECT_EQ(Buttons(), "11111") << "there is room again";
  ClickOn(tab->badd);
  EXPECT_EQ(act->action.ncmds, 128u);
  EXPECT_FALSE(Told());
}

// --- The list -----------------------------------------------------------------------------------

TEST_F(CommandListTest, SelectingACheckedTextCommandShowsAllOfIt) {
  ClickTab(kText);
  Type(tab->ed, "notes.txt");
  ClickCheckBox();
  ClickOn(tab->badd);
  ClickTab(kSound);
  ASSERT_EQ(act->lst->selected, -1);
  ClickLine(0);
  EXPECT_EQ(act->tbar->selected, kText);
  EXPECT_EQ(Field(tab->ed), "notes.txt");
  EXPECT_EQ(tab->checkbox->state, 1);
  EXPECT_TRUE(Viewable(tab->checkbox->window));
  EXPECT_EQ(act->lst->selected, 0);
  EXPECT_EQ(Buttons(), "11111");
  Picture("action_checked_text");
}

TEST_F(CommandListTest, SelectingAHotKeyBringsItsKeyBack) {
  Record({XK_Control_L}, XK_l);
  ClickOn(tab->badd);
  Add(kRun, "xclock");
  ClickLine(0);
  EXPECT_EQ(act->tbar->selected, kHotKey);
  EXPECT_EQ(Field(tab->ed), "Control-l");
  EXPECT_EQ(tab->ed->keycode, XKeysymToKeycode(dpy, XK_l));
  EXPECT_EQ(tab->ed->keystate, ControlMask);
  ClickOn(tab->bupdate);
  EXPECT_THAT(Lines(), ElementsAre("HotKey: Control-l", "Run: xclock"));
}

TEST_F(CommandListTest, UpdateChangesTheSelectedCommandOnly) {
  Add(kRun, "one");
  Add(kRun, "two");
  ClickLine(0);
  Type(tab->ed, "!");
  ClickOn(tab->bupdate);
  EXPECT_THAT(Lines(), ElementsAre("Run: one!", "Run: two"));
  EXPECT_STREQ(act->action.cmds[0]->text, "one!");
  EXPECT_EQ(act->lst->selected, 0);
}

TEST_F(CommandListTest, UpdateGivesTheCommandTheTypeOfTheTab) {
  Add(kRun, "one");
  // A click on the tab would give up the selection.
  act->tbar->selected = kSound;
  ClickOn(tab->bupdate);
  EXPECT_EQ(act->action.cmds[0]->type, kSound);
  EXPECT_THAT(Lines(), ElementsAre("Sound: one"));
}

TEST_F(CommandListTest, WithoutASelectionUpdateDeleteAndMovingDoNothing) {
  Add(kRun, "one");
  Add(kRun, "two");
  ClickTab(kText);
  ASSERT_EQ(Buttons(), "00001");
  for (auto* click : {tabcmdUpdate, tabcmdDelete, actClickMoveUp, actClickMoveDown}) {
    click(nullptr);
  }
  for (const XButton* button : {tab->bupdate, tab->bdelete, act->bmoveup, act->bmovedown}) {
    ClickOn(button);
  }
  EXPECT_THAT(Lines(), ElementsAre("Run: one", "Run: two"));
}

TEST_F(CommandListTest, DeletingTheLastLineSelectsTheNewLastLine) {
  for (const char* name : {"one", "two", "three"}) Add(kRun, name);
  ClickLine(2);
  ClickOn(tab->bdelete);
  EXPECT_THAT(Lines(), ElementsAre("Run: one", "Run: two"));
  EXPECT_EQ(act->lst->selected, 1);
  EXPECT_EQ(Field(tab->ed), "two");
  EXPECT_EQ(Buttons(), "11111");
}

TEST_F(CommandListTest, DeletingAMiddleLineSelectsTheOneThatTookItsPlace) {
  for (const char* name : {"one", "two", "three"}) Add(kRun, name);
  ClickLine(1);
  ClickOn(tab->bdelete);
  EXPECT_THAT(Lines(), ElementsAre("Run: one", "Run: three"));
  EXPECT_EQ(act->lst->selected, 1);
  EXPECT_EQ(Field(tab->ed), "three");
  EXPECT_STREQ(act->action.cmds[1]->text, "three");
}

TEST_F(CommandListTest, DeletingTheOnlyLineLeavesNoSelection) {
  Add(kRun, "one");
  ClickOn(tab->bdelete);
  EXPECT_EQ(act->action.ncmds, 0u);
  EXPECT_EQ(act->lst->nitems, 0);
  EXPECT_EQ(act->lst->selected, -1);
  EXPECT_EQ(Buttons(), "00001");
}

TEST_F(CommandListTest, MovingTakesTheSelectionAlong) {
  for (const char* name : {"one", "two", "three"}) Add(kRun, name);
  ClickLine(0);
  ClickOn(act->bmovedown);
  EXPECT_THAT(Lines(), ElementsAre("Run: two", "Run: one", "Run: three"));
  EXPECT_EQ(act->lst->selected, 1);
  EXPECT_STREQ(act->action.cmds[0]->text, "two");
  EXPECT_STREQ(act->action.cmds[1]->text, "one");
  ClickOn(act->bmoveup);
  EXPECT_THAT(Lines(), ElementsAre("Run: one", "Run: two", "Run: three"));
  EXPECT_EQ(act->lst->selected, 0);
}

TEST_F(CommandListTest, MovingUpFromTheFirstLineAndDownFromTheLastDoesNothing) {
  for (const char* name : {"one", "two"}) Add(kRun, name);
  ClickLine(0);
  ClickOn(act->bmoveup);
  EXPECT_EQ(act->lst->selected, 0);
  ClickLine(1);
  ClickOn(act->bmovedown);
  EXPECT_EQ(act->lst->selected, 1);
  EXPECT_THAT(Lines(), ElementsAre("Run: one", "Run: two"));
}

TEST_F(CommandListTest, ALineThatMovesOutOfSightIsFollowed) {
  for (int i = 0; i < 20; i++) ActionEditorAddCommand(kRun, std::to_string(i).c_str(), 0, 0, 0);
  ASSERT_GT(act->lst->top, 0);
  for (int line = 18; line >= 0; line--) {
    ClickOn(act->bmoveup);
    ASSERT_EQ(act->lst->selected, line);
    EXPECT_LE(act->lst->top, line);
    EXPECT_LT(line, act->lst->top + act->lst->visible);
  }
}

}  // namespace
}  // namespace gromlit
