// The action editor of the built program: its tabs, its buttons and its list of commands. What
// becomes of the work is tested in action_editor_saving_test.cc.
#include "tests/e2e/action_editor_run.h"

#include <X11/keysym.h>

namespace gromlit {
namespace {

using nlohmann::json;
using testing::WaitFor;
using Strings = std::vector<std::string>;

class ActionEditorTest : public testing::ActionEditorRun {
 protected:
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
       {"Place the mouse in the text box", "and enter the keystroke to send.", "", ""}},
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
      {kSound, "sound", nullptr, {"Enter a sound file to play.", "", "", ""}},
      {kRun,
       "run",
       nullptr,
       {"Enter the command to execute.", "Or system:minimize, maximize, fullscreen,",
        "above, close, desktop-next, -previous,", "window-to-desktop-next, -previous (Help)."}},
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

}  // namespace
}  // namespace gromlit
