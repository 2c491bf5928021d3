// The action editor of the built program: tabs, buttons, list, what reaches the file, and what
// becomes of the work when something else happens meanwhile.
#include "tests/e2e/action_editor_run.h"

#include <X11/keysym.h>
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

class ActionEditorTest : public testing::ActionEditorRun {
 protected:
  // Run commands with these texts.
  static std::vector<json> Runs(const Strings& texts) {
    std::vector<json> commands;
    for (const std::string& text : texts) commands.push_back(CommandOf("Run", text));
    return commands;
  }
  // Opens the program on an action with these commands, and the editor on the action.
  void OpenOn(const std::vector<json>& commands) {
    Store({ActionOf("Old", commands)});
    Open();
    Edit(0);
  }
  // Baselines of the help, from the text field's end or from the check box's.
  int HelpLine(int line, bool below_box) {
    return (below_box ? 5 : 4) * TextHeight() + 40 + line * TextHeight();
  }
  bool BarReads(int x, int baseline, const std::string& text) {
    const Window bar = TabBar(editor);
    return LineReads(bar, x, baseline, text, std::max(4, x - 2), BoxOf(bar).width - 4);
  }
  // Whether the tab with this help is open.
  bool Helps(const Strings& lines, bool below_box) {
    return WaitFor([&] {
      for (int i = 0; i < static_cast<int>(lines.size()); i++)
        if (!BarReads(16, HelpLine(i, below_box), lines[static_cast<size_t>(i)])) return false;
      return true;
    });
  }
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
  // The message that is shown in front of the editor, closed by its button.
  void ExpectTold(const Strings& lines) {
    EXPECT_TRUE(DialogReads(lines));
    DialogRight();
  }
};

// --- Tabs ---------------------------------------------------------------------------------------

TEST_F(ActionEditorTest, EachTabShowsItsWidgetsAndItsHelp) {
  OpenOn({});
  const struct {
    CommandType type;
    const char* name;
    const char* checkbox;  // null: hidden
    Strings help;
  } tabs[] = {
      {kHotKey,
       "hotkey",
       nullptr,
       {"Place the mouse in the text box", "and enter the keystroke to send.", ""}},
      {kMenu,
       "menu",
       nullptr,
       {"Enter the letters corresponding to the", "active letters in the menu selection,",
        "for example, NN for New->Navigator"}},
      {kText,
       "text",
       "Use As Filename",
       {"Enter the text to insert or ", "check the box to specify a filename",
        "that contains the text."}},
      {kSound, "sound", nullptr, {"Enter a sound file to play.", "", ""}},
      {kRun, "run", nullptr, {"Enter the command to execute.", "", ""}},
      {kInternet,
       "internet",
       "Goto Gromlit Forum",
       {"Enter the website, such as example.org", "or any URL.  Check Gromlit Forum for",
        "drawn-on application-specific forum."}},
  };
  // Both ways through, so that each tab is reached from one with the box and from one without.
  for (const bool backwards : {false, true}) {
    for (int i = 0; i < 6; i++) {
      const auto& tab = tabs[backwards ? 5 - i : i];
      SCOPED_TRACE(tab.name);
      ClickTab(editor, tab.type);
      EXPECT_TRUE(Helps(tab.help, tab.checkbox != nullptr));
      Strings places;
      for (const Window child : Children(TabBar(editor))) {
        const testing::Box box = BoxOf(child);
        if (Viewable(child)) places.push_back(std::to_string(box.x) + "," + std::to_string(box.y));
      }
      const int width = BoxOf(TabBar(editor)).width;
      Strings expected = {"16,40"};
      if (tab.checkbox != nullptr) expected.push_back("16,72");
      for (const int x : {width - 72, width - 144, width - 216})
        expected.push_back(std::to_string(x) + ",148");
      std::sort(places.begin(), places.end());
      std::sort(expected.begin(), expected.end());
      EXPECT_EQ(places, expected);
      if (tab.checkbox != nullptr) {
        EXPECT_TRUE(BarReads(32, 72 + TextHeight(), tab.checkbox));
        EXPECT_TRUE(Ticked(false));
      }
      EXPECT_TRUE(FieldReads(Field(), ""));
      EXPECT_TRUE(Buttons("10000"));
      if (!backwards) Picture(std::string("tab-") + tab.name);
    }
  }
}

TEST_F(ActionEditorTest, ClickOnTheOpenTabDoesNothingAndOnAnotherClearsFieldBoxAndSelection) {
  json checked = CommandOf("Text", "one");
  checked["checked"] = 1;
  OpenOn({checked, CommandOf("Run", "two")});
  EXPECT_TRUE(Buttons("11111"));
  EXPECT_TRUE(Ticked(true));
  Enter(Field());
  TypeText("x");
  ClickTab(editor, kText);
  ClickIn(TabBar(editor), 4, 6);  // left of its titles lies the first one's tab
  ClickTab(editor, kText);
  EXPECT_TRUE(Helps({"Enter the text to insert or "}, true));
  EXPECT_TRUE(Lists({"Text: one", "Run: two"}, -1));
  EXPECT_TRUE(FieldReads(Field(), ""));
  EXPECT_TRUE(Ticked(false));
  EXPECT_TRUE(Buttons("10000"));

  ClickCommand(editor, 0);
  EXPECT_TRUE(Lists({"Text: one", "Run: two"}, 0));
  Enter(Field());
  TypeText("y");
  ClickTab(editor, kText);
  // The field goes on from where it was.
  Enter(Field());
  TypeText("z");
  EXPECT_TRUE(FieldReads(Field(), "oneyz"));
  EXPECT_TRUE(Ticked(true));
  EXPECT_TRUE(Lists({"Text: one", "Run: two"}, 0));
  EXPECT_TRUE(Buttons("11111"));

  ClickTab(editor, kInternet);
  EXPECT_TRUE(Helps({"Enter the website, such as example.org"}, true));
  EXPECT_TRUE(FieldReads(Field(), ""));
  EXPECT_TRUE(Ticked(false));
  EXPECT_TRUE(Lists({"Text: one", "Run: two"}, -1));
  EXPECT_TRUE(Buttons("10000"));
}

TEST_F(ActionEditorTest, SelectingACheckedTextCommandOpensItsTabFillsItsFieldAndTicksItsBox) {
  std::vector<json> commands = {CommandOf("Text", "file one"), CommandOf("Run", "two"),
                                CommandOf("Text", "three"), CommandOf("Internet", "four")};
  commands[0]["checked"] = 1;
  commands[3]["checked"] = 1;
  OpenOn(commands);
  const Strings lines = {"Text: file one", "Run: two", "Text: three", "Internet: four"};
  const Strings text = {"Enter the text to insert or "};
  // The first command is selected from the start.
  EXPECT_TRUE(Helps(text, true));
  EXPECT_TRUE(FieldReads(Field(), "file one"));
  EXPECT_TRUE(Ticked(true));
  EXPECT_TRUE(Lists(lines, 0));
  Picture("checked-text");
  ClickCommand(editor, 1);
  EXPECT_TRUE(Helps({"Enter the command to execute."}, false));
  EXPECT_TRUE(FieldReads(Field(), "two"));
  EXPECT_EQ(CheckBox(), Window{0});
  ClickCommand(editor, 2);
  EXPECT_TRUE(FieldReads(Field(), "three"));
  EXPECT_TRUE(Ticked(false));
  ClickCommand(editor, 0);
  EXPECT_TRUE(Helps(text, true));
  EXPECT_TRUE(FieldReads(Field(), "file one"));
  EXPECT_TRUE(Ticked(true));
  EXPECT_TRUE(Lists(lines, 0));
  ClickCommand(editor, 3);
  EXPECT_TRUE(Helps({"Enter the website, such as example.org"}, true));
  EXPECT_TRUE(FieldReads(Field(), "four"));
  EXPECT_TRUE(Ticked(true));
  EXPECT_TRUE(Lists(lines, 3));
  EXPECT_TRUE(Buttons("11111"));
}

// --- The list -----------------------------------------------------------------------------------

TEST_F(ActionEditorTest, CommandsOfEveryTypeAreAddedUpdatedAndDeleted) {
  OpenOn({});
  const std::vector<std::pair<CommandType, std::string>> types = {
      {kMenu, "f"}, {kText, "Hi"}, {kSound, "ding"}, {kRun, "go"}, {kInternet, "a.org"}};
  AddCommand(editor, kHotKey, "s");
  for (const auto& [type, text] : types) Add(type, text);
  Ok();
  EXPECT_EQ(StoredLines(), (Strings{"HotKey: Control-s", "Menu: f", "Text: Hi", "Sound: ding",
                                    "Run: go", "Internet: a.org"}));

  Edit(0);
  EXPECT_TRUE(Lists({"HotKey: Control-s", "Menu: f", "Text: Hi", "Sound: ding", "Run: go"}, 0));
  EXPECT_TRUE(FieldReads(Field(), "Control-s"));
  Picture("six-commands");
  Enter(Field());
  Chord(XK_Alt_L, XK_F4);
  EXPECT_TRUE(FieldReads(Field(), "Alt-F4", 6));  // before the last letter of what was there
  Press(kUpdate);
  for (int line = 1; line < 5; line++) {
    const auto& [type, text] = types[static_cast<size_t>(line) - 1];
    ClickCommand(editor, line);
    EXPECT_TRUE(FieldReads(Field(), text));
    Enter(Field());
    TypeText("2");
    if (type == kText) ClickIn(CheckBox(), 6, 6);
    Press(kUpdate);
  }
  EXPECT_TRUE(Lists({"HotKey: Alt-F4", "Menu: f2", "Text: Hi2", "Sound: ding2", "Run: go2"}, 4));
  // The last one lies below; moving the fifth down brings it up.
  Press(kMoveDown);
  EXPECT_TRUE(WaitFor([this] { return Row(4, "Run: go2", true); }));
  ClickCommand(editor, 3);
  EXPECT_TRUE(FieldReads(Field(), "a.org"));
  Enter(Field());
  TypeText("2");
  ClickIn(CheckBox(), 6, 6);
  Press(kUpdate);
  EXPECT_TRUE(WaitFor([this] { return Row(3, "Internet: a.org2", true); }));
  Ok();
  EXPECT_EQ(StoredLines(), (Strings{"HotKey: Alt-F4", "Menu: f2", "Text: Hi2", "Sound: ding2",
                                    "Internet: a.org2", "Run: go2"}));
  const json action = StoredAction();
  const int two = XKeysymToKeycode(player->display(), XK_2);
  EXPECT_EQ(action["commands"][1]["keys"], json::parse("[[" + std::to_string(two) + ",8]]"));
  EXPECT_EQ(action["commands"][1]["nkeys"], 2);
  std::string checks;
  for (const auto& command : action["commands"]) checks += command["checked"].dump();
  EXPECT_EQ(checks, "001010");

  Edit(0);
  Strings left = {"Menu: f2", "Text: Hi2", "Sound: ding2", "Internet: a.org2", "Run: go2"};
  while (!left.empty()) {
    Press(kDelete);
    EXPECT_TRUE(Lists(left, 0)) << left.front();
    left.erase(left.begin());
  }
  Press(kDelete);
  EXPECT_TRUE(Lists({}, -1));
  Ok();
  EXPECT_EQ(StoredLines(), Strings{});
}

TEST_F(ActionEditorTest, UpdateGivesACommandTheTypeOfTheOpenTab) {
  // A click on a tab gives up the selection. A line of an unknown type leaves the open tab as it
  // is.
  json strange = CommandOf("Run", "strange");
  strange["type"] = 77;
  OpenOn({CommandOf("Sound", "ding"), strange});
  EXPECT_TRUE(Lists({"Sound: ding", "Unknown: strange"}, 0));
  ClickCommand(editor, 1);
  EXPECT_TRUE(Lists({"Sound: ding", "Unknown: strange"}, 1));
  EXPECT_TRUE(FieldReads(Field(), "strange"));
  Press(kUpdate);
  EXPECT_TRUE(Lists({"Sound: ding", "Sound: strange"}, 1));
  Ok();
  EXPECT_EQ(StoredLines(), (Strings{"Sound: ding", "Sound: strange"}));
}

TEST_F(ActionEditorTest, TextOfThirtyLettersIsListedByItsFirstSixteenAndStoredWhole) {
  OpenOn({CommandOf("Text", "abcdefghijklmnopq")});
  Add(kText, "abcdefghijklmnopqrstuvwxyz0123");
  // Seventeen letters are shown whole.
  EXPECT_TRUE(Lists({"Text: abcdefghijklmnopq", "Text: abcdefghijklmnop..."}, 1));
  Picture("long-text");
  Ok();
  EXPECT_EQ(StoredLines(),
            (Strings{"Text: abcdefghijklmnopq", "Text: abcdefghijklmnopqrstuvwxyz0123"}));
}

TEST_F(ActionEditorTest, DeletingTheLastOfThreeSelectsTheNewLastAndDeletingTheOnlyOneNothing) {
  OpenOn(Runs({"one", "two", "three"}));
  ClickCommand(editor, 2);
  Press(kDelete);
  EXPECT_TRUE(Lists({"Run: one", "Run: two"}, 1));
  EXPECT_TRUE(FieldReads(Field(), "two"));
  EXPECT_TRUE(Buttons("11111"));
  // Of one further up, the next one takes the place.
  ClickCommand(editor, 0);
  Press(kDelete);
  EXPECT_TRUE(Lists({"Run: two"}, 0));
  EXPECT_TRUE(FieldReads(Field(), "two"));
  Press(kDelete);
  EXPECT_TRUE(Lists({}, -1));
  EXPECT_TRUE(Buttons("10000"));
  Picture("nothing-selected");
  Ok();
  EXPECT_EQ(StoredLines(), Strings{});
}

TEST_F(ActionEditorTest, MoveUpOnTheFirstLineAndMoveDownOnTheLastDoNothing) {
  const Strings lines = {"Run: one", "Run: two", "Run: three"};
  OpenOn(Runs({"one", "two", "three"}));
  Press(kMoveUp);
  EXPECT_TRUE(Lists(lines, 0));
  ClickCommand(editor, 2);
  Press(kMoveDown);
  EXPECT_TRUE(Lists(lines, 2));
  // In between they move, and the selection goes along.
  Press(kMoveUp);
  EXPECT_TRUE(Lists({"Run: one", "Run: three", "Run: two"}, 1));
  Press(kMoveUp);
  EXPECT_TRUE(Lists({"Run: three", "Run: one", "Run: two"}, 0));
  Press(kMoveDown);
  EXPECT_TRUE(Lists({"Run: one", "Run: three", "Run: two"}, 1));
  EXPECT_TRUE(FieldReads(Field(), "three"));
  Ok();
  EXPECT_EQ(StoredLines(), (Strings{"Run: one", "Run: three", "Run: two"}));
}

TEST_F(ActionEditorTest, WithoutASelectionUpdateDeleteAndMovingAreDisabled) {
  OpenOn(Runs({"one", "two"}));
  ClickTab(editor, kText);
  EXPECT_TRUE(Buttons("10000"));
  Fill(Field(), "three");
  for (const Button button : {kUpdate, kDelete, kMoveUp, kMoveDown}) ClickOn(button);
  // What Add does shows that the clicks before it have been taken.
  Press(kAdd);
  EXPECT_TRUE(Lists({"Run: one", "Run: two", "Text: three"}, 2));
  EXPECT_TRUE(Buttons("11111"));
  Ok();
  EXPECT_EQ(StoredLines(), (Strings{"Run: one", "Run: two", "Text: three"}));
}

TEST_F(ActionEditorTest, AddIsRefusedAt128CommandsAndSaysSo) {
  OpenOn(Runs(Strings(127, "go")));
  EXPECT_TRUE(Buttons("11111"));
  Add(kSound, "last");
  EXPECT_TRUE(Buttons("01111"));
  const int bottom = (BoxOf(List()).height - 8) / TextHeight() - 1;
  EXPECT_TRUE(WaitFor([&] { return Row(bottom, "Sound: last", true); }));
  for (const bool selected : {true, false}) {
    if (!selected) ClickTab(editor, kRun);
    ClickOn(kAdd);
    EXPECT_TRUE(
        DialogReads({"An action holds 128 commands.", "This one is full: nothing was added."}));
    if (selected) Picture("full");
    DialogRight();
  }
  EXPECT_TRUE(Buttons("00000"));
  Ok();
  Strings expected(127, "Run: go");
  expected.emplace_back("Sound: last");
  EXPECT_EQ(StoredLines(), expected);
  // There is room again as soon as one has gone.
  Edit(0);
  EXPECT_TRUE(Buttons("01111"));
  Press(kDelete);
  EXPECT_TRUE(Buttons("11111"));
  Press(kAdd);
  EXPECT_TRUE(Buttons("01111"));
  Ok();
  expected.erase(expected.begin());
  expected.emplace_back("Run: go");
  EXPECT_EQ(StoredLines(), expected);
}

// --- OK and Cancel ------------------------------------------------------------------------------

TEST_F(ActionEditorTest, OkWithoutANameLeavesTheEditorOpenAndAddsNothing) {
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

TEST_F(ActionEditorTest, CommandsThatWereNotUpdatedKeepTheirWholeRecords) {
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

TEST_F(ActionEditorTest, CancelChangesNothing) {
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

TEST_F(ActionEditorTest, ActionsEditedAfterEachOtherShareNothing) {
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

TEST_F(ActionEditorTest, WhileItIsOpenStrokesReachTheApplication) {
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

TEST_F(ActionEditorTest, ClosedByTheWindowManagerGesturesRestUntilItIsOpenedAgainAndCancelled) {
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

TEST_F(ActionEditorTest, ActionThatIsDeletedMeanwhileIsAddedAgainByOk) {
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

TEST_F(ActionEditorTest, ActionOfAPlugInThatIsDeletedMeanwhileIsNotSavedAndSaysSo) {
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

TEST_F(ActionEditorTest, PlugInThatIsRenamedMeanwhileKeepsItsNewName) {
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

TEST_F(ActionEditorTest, OkSavesToItsOwnPlugInWhicheverTheMainWindowShowsMeanwhile) {
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

TEST_F(ActionEditorTest, OpenedOnAnotherActionTheFormerWorkIsGivenUp) {
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

TEST_F(ActionEditorTest, OkThatMayNotBeWrittenKeepsTheWorkUntilItMay) {
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

TEST_F(ActionEditorTest, OkOnAFullDiskLeavesTheActionAndSavesWhenThereIsRoom) {
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
