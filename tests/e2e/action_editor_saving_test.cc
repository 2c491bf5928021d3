// The work done in the action editor of the built program: OK and Cancel, what rests meanwhile,
// what else may happen meanwhile, and saves that fail.
#include "tests/e2e/action_editor_run.h"

#include <sys/resource.h>
#include <unistd.h>

namespace gromlit {
namespace {

namespace fs = std::filesystem;
using nlohmann::json;
using testing::Conditions;
using testing::kDown;
using testing::Point;
using testing::ReadText;
using testing::Title;
using testing::WaitFor;
using Strings = std::vector<std::string>;

class ActionEditorSavingTest : public testing::ActionEditorRun {
 protected:
  std::string Acted() const { return MarkFile("acted"); }
  // Draws over the application; true when the action's file appears.
  bool StrokeActs() {
    fs::remove(Acted());
    Draw(kStroke);
    return Appears("acted");
  }
  // Draws over the application and expects that it gets button and motions, and nothing else
  // happens.
  void StrokeReachesTheApplication() {
    const size_t presses = probe->Lines("ButtonPress").size();
    Go(kStroke[0]);
    player->Press(3);
    Trace(kStroke);
    EXPECT_TRUE(MappedOverlays().empty()) << "there is a trail";
    player->Release(3);
    const auto pressed = probe->Wait(presses + 1, "ButtonPress");
    const auto released = probe->Wait(presses + 1, "ButtonRelease");
    ASSERT_EQ(pressed.size(), presses + 1);
    ASSERT_EQ(released.size(), presses + 1);
    const auto expected = [](const char* type, int state, Point at) {
      return std::string(type) + " window=main button=3 state=" + std::to_string(state) +
             " x=" + std::to_string(at.x - 880) + " y=" + std::to_string(at.y - 80) +
             " x_root=" + std::to_string(at.x) + " y_root=" + std::to_string(at.y) +
             " send_event=0";
    };
    if (manager == nullptr) {  // a frame moves the window
      EXPECT_EQ(pressed.back(), expected("ButtonPress", 0, kStroke[0]));
      EXPECT_EQ(released.back(), expected("ButtonRelease", Button3Mask, kStroke[1]));
    }
    for (const std::string& line : {pressed.back(), released.back()}) {
      EXPECT_NE(line.find(" button=3 "), std::string::npos) << line;
      EXPECT_NE(line.find(" send_event=0"), std::string::npos) << line;
    }
    EXPECT_GE(probe->Lines("MotionNotify").size(), 10u) << "the application does not see the way";
  }
};

// --- OK and Cancel ------------------------------------------------------------------------------

TEST_F(ActionEditorSavingTest, OkWithoutANameLeavesTheEditorOpenAndAddsNothing) {
  Store({ActionOf("Old", Runs({"one"}))});
  const std::string before = ReadText(File());
  Open();
  New();
  Add(kRun, "two");
  Replace(NameField(), "");
  EXPECT_TRUE(FieldReads(NameField(), ""));
  Press(kOk);
  EXPECT_NE(Shown("ActionEditor"), Window{0});
  EXPECT_EQ(Dialog(), Window{0});
  EXPECT_EQ(ReadText(File()), before);
  Fill(NameField(), "Named");
  Ok();
  ASSERT_EQ(Stored()["actions"].size(), 2u);
  EXPECT_EQ(StoredAction(1)["name"], "Named");
  EXPECT_EQ(StoredLines(1), Strings{"Run: two"});
  // An action that is there keeps its name.
  Edit(0);
  Replace(NameField(), "");
  Press(kOk);
  EXPECT_NE(Shown("ActionEditor"), Window{0});
  EXPECT_EQ(StoredAction(0)["name"], "Old");
  Cancel();
  EXPECT_EQ(StoredAction(0)["name"], "Old");
}

TEST_F(ActionEditorSavingTest, CommandsThatWereNotUpdatedKeepTheirWholeRecords) {
  std::string longtext;
  for (int i = 0; i < 300; i++) longtext += static_cast<char>('a' + i % 26);
  json rich = CommandOf("HotKey", "its own text");
  rich["nkeys"] = 3;
  rich["keys"] = json::parse("[[38,1],[39,2],[40,4],[41,8],[42,16],[43,32],[44,64],[45,128]]");
  rich["checked"] = 9;
  rich["buttons"] = json::parse("[10,11,12,13,14,15]");
  rich["flag"] = 7;
  rich["spare"] = 305419896;
  json wild = rich;
  wild["type"] = 200;
  wild["nkeys"] = 255;
  wild["text"] = "caf\u00e9 \u0001\u00ff";
  json text = CommandOf("Text", longtext);
  text["spare"] = -5;
  json action = ActionOf("Rich", {rich, text, wild, CommandOf("Menu", ""), CommandOf("Run", "go")});
  action["spare"] = 4711;
  action["symbol"]["spare"] = 815;
  json document = {{"kind", "plugin"},
                   {"appname", "Probe"},
                   {"classname", kClass},
                   {"spare1", 1},
                   {"spare2", 2},
                   {"spare3", 3},
                   {"spare4", -4},
                   {"chars", {"a", "b", "c", "d", "e", "f", "g", "h"}},
                   {"actions", {action, ActionOf("Other", {rich, wild})}}};
  testing::PackFile(document, File());
  const std::string before = ReadText(File());
  const json whole = Stored();
  Open();
  // Looked at, selected, moved there and back: the file is the same.
  Edit(0);
  Ok();
  EXPECT_EQ(Stored(), whole);
  Edit(0);
  for (const int line : {1, 2, 3, 4, 0}) ClickCommand(editor, line);
  for (const Button button : {kMoveDown, kMoveDown, kMoveUp, kMoveUp}) Press(button);
  Ok();
  EXPECT_EQ(Stored(), whole);
  EXPECT_EQ(ReadText(File()), before);

  // One command updated, one only by its box, and the order changed.
  Edit(0);
  ClickCommand(editor, 4);
  Enter(Field());
  TypeText("2");
  Press(kUpdate);
  ClickCommand(editor, 1);
  EXPECT_TRUE(Ticked(false));
  ClickIn(CheckBox(), 6, 6);
  EXPECT_TRUE(Ticked(true));
  Press(kUpdate);
  Press(kMoveUp);
  Replace(NameField(), "Richer");
  Ok();
  json expected = whole;
  json& commands = expected["actions"][0]["commands"];
  expected["actions"][0]["name"] = "Richer";
  commands[4]["text"] = "go2";
  commands[1]["checked"] = 1;
  std::swap(commands[0], commands[1]);
  EXPECT_EQ(Stored(), expected);
}

TEST_F(ActionEditorSavingTest, CancelChangesNothing) {
  OpenOn(Runs({"one", "two"}));
  const std::string before = ReadText(File());
  Replace(NameField(), "Changed");
  Press(kDelete);
  Add(kText, "three");
  Press(kMoveUp);
  EXPECT_TRUE(Lists({"Text: three", "Run: two"}, 0));
  Cancel();
  EXPECT_EQ(ReadText(File()), before);
  Edit(0);
  EXPECT_TRUE(Lists({"Run: one", "Run: two"}, 0));
  EXPECT_TRUE(FieldReads(NameField(), "Old"));
  // Saved now, the action is the old one.
  Ok();
  EXPECT_EQ(ReadText(File()), before);
}

TEST_F(ActionEditorSavingTest, ActionsEditedAfterEachOtherShareNothing) {
  Store({ActionOf("First", Runs({"one", "two"})), ActionOf("Second", Runs({"three"}))});
  Open();
  // The same one twice in a row.
  for (const char* text : {"x", "y"}) {
    Edit(0);
    Enter(Field());
    TypeText(text);
    Press(kUpdate);
    Ok();
  }
  EXPECT_EQ(StoredLines(0), (Strings{"Run: onexy", "Run: two"}));
  Edit(1);
  EXPECT_TRUE(Lists({"Run: three"}, 0));
  EXPECT_TRUE(FieldReads(NameField(), "Second"));
  Add(kText, "four");
  Ok();
  Edit(0);
  EXPECT_TRUE(Lists({"Run: onexy", "Run: two"}, 0));
  EXPECT_TRUE(FieldReads(NameField(), "First"));
  Press(kDelete);
  Ok();
  // A new one begins empty.
  New();
  EXPECT_TRUE(Lists({}, -1));
  EXPECT_TRUE(FieldReads(NameField(), "New"));
  EXPECT_TRUE(FieldReads(Field(), ""));
  EXPECT_TRUE(Buttons("10000"));
  Ok();
  ASSERT_EQ(Stored()["actions"].size(), 3u);
  EXPECT_EQ(StoredLines(0), Strings{"Run: two"});
  EXPECT_EQ(StoredLines(1), (Strings{"Run: three", "Text: four"}));
  EXPECT_EQ(StoredLines(2), Strings{});
}

// --- Gestures rest ------------------------------------------------------------------------------

TEST_F(ActionEditorSavingTest, WhileItIsOpenStrokesReachTheApplication) {
  OpenOn(Runs({"touch " + Acted()}));
  StrokeReachesTheApplication();
  EXPECT_FALSE(testing::Exists(Acted()));
  Cancel();
  EXPECT_TRUE(StrokeActs());
  Edit(0);
  fs::remove(Acted());
  StrokeReachesTheApplication();
  EXPECT_FALSE(testing::Exists(Acted()));
  Ok();
  EXPECT_TRUE(StrokeActs());
}

TEST_F(ActionEditorSavingTest,
       ClosedByTheWindowManagerGesturesRestUntilItIsOpenedAgainAndCancelled) {
  StartWindowManager("openbox");
  OpenOn(Runs({"touch " + Acted()}));
  const std::string before = ReadText(File());
  Replace(NameField(), "Given up");
  CloseByManager();
  StrokeReachesTheApplication();
  EXPECT_FALSE(testing::Exists(Acted()));
  // The way back that the help tells of.
  New();
  StrokeReachesTheApplication();
  Cancel();
  EXPECT_FALSE(testing::Exists(Acted()));
  EXPECT_TRUE(StrokeActs());
  EXPECT_EQ(ReadText(File()), before);
  const std::string help = ReadText(std::string(GROMLIT_HELP) + "/action_editor.html");
  for (const char* words : {"closed by the window manager", "\"New\" in the menu \"Action\"",
                            "press Cancel: the gestures are back"})
    EXPECT_NE(help.find(words), std::string::npos) << words;
}

// --- What else may happen meanwhile -------------------------------------------------------------

TEST_F(ActionEditorSavingTest, ActionThatIsDeletedMeanwhileIsAddedAgainByOk) {
  Store({ActionOf("First", Runs({"touch " + Acted()})), ActionOf("Second", Runs({"three"}))});
  Open();
  Edit(0);
  Add(kRun, "two");
  Choose(Title::kAction, testing::kActionDelete);
  ASSERT_TRUE(WaitFor([this] { return Stored()["actions"].size() == 1; }));
  EXPECT_TRUE(Lists({"Run: touch " + Acted().substr(0, 10) + "...", "Run: two"}, 1));
  Ok();
  ASSERT_EQ(Stored()["actions"].size(), 2u);
  EXPECT_EQ(StoredAction(0)["name"], "Second");
  EXPECT_EQ(StoredAction(1)["name"], "First");
  EXPECT_EQ(StoredLines(1), (Strings{"Run: touch " + Acted(), "Run: two"}));
  // Both match the stroke; without the first in the list the other one acts.
  ShowActions();
  SelectCell(0);
  Choose(Title::kAction, testing::kActionDelete);
  ASSERT_TRUE(WaitFor([this] { return Stored()["actions"].size() == 1; }));
  EXPECT_TRUE(StrokeActs());
}

TEST_F(ActionEditorSavingTest, ActionOfAPlugInThatIsDeletedMeanwhileIsNotSavedAndSaysSo) {
  WritePlugin("Desktop", {{"down", kDown, {Touch("desktop")}}});
  OpenOn(Runs({"one"}));
  Add(kRun, "two");
  Choose(Title::kPlugIn, testing::kPlugInDelete);
  DialogLeft();
  ASSERT_TRUE(WaitFor([this] { return !testing::Exists(File()); }));
  ASSERT_TRUE(WaitNoDialog());
  for (int i = 0; i < 2; i++) {
    ClickOn(kOk);
    EXPECT_TRUE(
        DialogReads({"The plug-in of this action was deleted.", "The action was not saved."}));
    if (i == 0) Picture("plug-in-deleted");
    DialogRight();
    EXPECT_NE(Shown("ActionEditor"), Window{0}) << "the work is lost";
    EXPECT_TRUE(Lists({"Run: one", "Run: two"}, 1));
    EXPECT_FALSE(testing::Exists(File())) << "the file came back";
  }
  Cancel();
  Draw({{900, 700}, {900, 1000}});
  EXPECT_TRUE(Appears("desktop"));
}

TEST_F(ActionEditorSavingTest, PlugInThatIsRenamedMeanwhileKeepsItsNewName) {
  OpenOn(Runs({"one"}));
  Add(kRun, "two");
  Choose(Title::kPlugIn, testing::kPlugInEdit);
  const Window dialog = WaitDialog();
  Window field = 0;
  ASSERT_TRUE(WaitFor([&] {
    for (const Window child : Children(dialog))
      if (Viewable(child) && BoxOf(child).width > 64) field = child;
    return field != 0;
  }));
  Replace(field, "My probe");
  DialogLeft();
  ASSERT_TRUE(WaitFor([this] { return Stored()["appname"] == "My probe"; }));
  EXPECT_EQ(StoredLines(), Strings{"Run: one"}) << "work was saved before OK";
  Ok();
  EXPECT_EQ(Stored()["appname"], "My probe");
  EXPECT_EQ(Stored()["classname"], kClass);
  EXPECT_EQ(StoredLines(), (Strings{"Run: one", "Run: two"}));
}

TEST_F(ActionEditorSavingTest, OkSavesToItsOwnPlugInWhicheverTheMainWindowShowsMeanwhile) {
  OpenOn(Runs({"one"}));
  Add(kRun, "two");
  // Listed first or last; the application's own plug-in is shown already.
  EXPECT_TRUE(WaitFor([&] {
    ChoosePulldown(PluginButton(), 0);
    if (Reads(PluginButton(), "Default")) return true;
    ChoosePulldown(PluginButton(), 1);
    return Reads(PluginButton(), "Default");
  }));
  const std::string other = ReadText(PluginFile("Default"));
  Ok();
  EXPECT_EQ(StoredLines(), (Strings{"Run: one", "Run: two"}));
  EXPECT_EQ(ReadText(PluginFile("Default")), other);
}

TEST_F(ActionEditorSavingTest, OpenedOnAnotherActionTheFormerWorkIsGivenUp) {
  Store({ActionOf("First", Runs({"one"})), ActionOf("Second", Runs({"three"}))});
  Open();
  for (const bool closed : {true, false}) {
    Edit(0);
    Replace(NameField(), "Given up");
    Press(kDelete);
    if (closed) CloseByManager();
    Edit(1);
    EXPECT_TRUE(FieldReads(NameField(), closed ? "Second" : "Second!"));
    EXPECT_TRUE(Lists({"Run: three"}, 0));
    Enter(NameField());
    TypeText("!");
    Ok();
  }
  EXPECT_EQ(StoredAction(0)["name"], "First");
  EXPECT_EQ(StoredLines(0), Strings{"Run: one"});
  EXPECT_EQ(StoredAction(1)["name"], "Second!!");
  EXPECT_EQ(StoredLines(1), Strings{"Run: three"});
}

// --- Places that cannot be written --------------------------------------------------------------

TEST_F(ActionEditorSavingTest, OkThatMayNotBeWrittenKeepsTheWorkUntilItMay) {
  Store({ActionOf("Old", Runs({"one"}))});
  const std::string before = ReadText(File());
  const auto everybody = [this](const fs::perms mode) {
    for (const std::string& path : {*install / "plugins", File()}) fs::permissions(path, mode);
  };
  const fs::perms readonly =
      fs::perms::all & ~(fs::perms::owner_write | fs::perms::group_write | fs::perms::others_write);
  fs::permissions(install->path(), fs::perms::all);
  everybody(fs::perms::all);
  Conditions conditions;
  // The superuser is not kept out by permissions.
  if (geteuid() == 0) conditions.through = "setpriv --reuid=65534 --regid=65534 --clear-groups";
  Open(conditions);
  for (const bool isnew : {false, true}) {
    SCOPED_TRACE(isnew);
    if (isnew) {
      New();
    } else {
      Edit(0);
    }
    Add(kRun, "two");
    Replace(NameField(), isnew ? "Newer" : "Changed");
    const std::string contents = ReadText(File());
    const std::string told = Err();
    everybody(readonly);
    for (int i = 1; i <= 2; i++) {
      ClickOn(kOk);
      EXPECT_TRUE(DialogReads({isnew ? "The action was not added." : "The action was not saved.",
                               "Permission denied."}));
      if (i == 1) Picture(isnew ? "new-not-saved" : "not-saved");
      DialogRight();
      EXPECT_EQ(ReadText(File()), contents);
      EXPECT_NE(Shown("ActionEditor"), Window{0}) << "the work is lost";
    }
    EXPECT_EQ(Err().substr(told.size()),
              "Save Plugin: Permission denied\nSave Plugin: Permission denied\n");
    everybody(fs::perms::all);
    EXPECT_TRUE(FieldReads(NameField(), isnew ? "Newer" : "Changed"));
    EXPECT_TRUE(isnew ? Lists({"Run: two"}, 0) : Lists({"Run: one", "Run: two"}, 1));
    Ok();
  }
  ASSERT_EQ(Stored()["actions"].size(), 2u);
  EXPECT_EQ(StoredAction(0)["name"], "Changed");
  EXPECT_EQ(StoredLines(0), (Strings{"Run: one", "Run: two"}));
  EXPECT_EQ(StoredAction(1)["name"], "Newer");
  EXPECT_EQ(StoredLines(1), Strings{"Run: two"});
  EXPECT_EQ(NamesIn(*install / "plugins"), (Strings{"Default.sla", std::string(kClass) + ".sla"}));
}

TEST_F(ActionEditorSavingTest, OkOnAFullDiskLeavesTheActionAndSavesWhenThereIsRoom) {
  OpenOn(Runs({"touch " + Acted(), "true"}));
  const std::string before = ReadText(File());
  const Strings lines = {"Run: touch " + Acted().substr(0, 10) + "...", "Run: true"};
  // A limit for the size of files stands for the disk; the messages still fit.
  const auto limit = [this](rlim_t bytes) {
    rlimit now{};
    ASSERT_EQ(prlimit(gromlit->pid(), RLIMIT_FSIZE, nullptr, &now), 0);
    now.rlim_cur = std::min(bytes, now.rlim_max);
    ASSERT_EQ(prlimit(gromlit->pid(), RLIMIT_FSIZE, &now, nullptr), 0);
  };
  const auto fail = [&] {
    Press(kDelete);
    limit(1024);
    ClickOn(kOk);
    EXPECT_TRUE(DialogReads({"The action was not saved.", "File too large."}));
    DialogRight();
    limit(RLIM_INFINITY);
    EXPECT_EQ(ReadText(File()), before);
    EXPECT_EQ(NamesIn(*install / "plugins"),
              (Strings{"Default.sla", std::string(kClass) + ".sla"}));
    EXPECT_TRUE(Lists({"Run: true"}, 0));
  };
  fail();
  // Given up, the action is what it was, and acts.
  Cancel();
  EXPECT_TRUE(StrokeActs());
  Edit(0);
  EXPECT_TRUE(Lists(lines, 0));
  fail();
  EXPECT_EQ(Err(), "Save Plugin: File too large\nSave Plugin: File too large\n");
  Picture("disk-full");
  Ok();
  EXPECT_EQ(StoredLines(), Strings{"Run: true"});
}

}  // namespace
}  // namespace gromlit
