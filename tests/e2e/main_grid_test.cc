// The main window's grid of actions on the built program: what it shows, how it scrolls, what
// clicks select, and what the popup's commands do to the file.
#include "tests/e2e/grid_run.h"

namespace gromlit {
namespace {

namespace fs = std::filesystem;
using nlohmann::json;
using testing::Action;
using testing::Box;
using testing::kDown;
using testing::kEll;
using testing::kRight;
using testing::Point;
using testing::Shot;
using testing::WaitFor;

class MainGridTest : public testing::GridRun {
 protected:
  // Chooses a plug-in from the pulldown.
  void ShowPlugin(const std::vector<std::string>& order, const std::string& classname) {
    const auto place = std::find(order.begin(), order.end(), classname);
    ASSERT_NE(place, order.end());
    ChoosePulldown(PluginButton(), static_cast<int>(place - order.begin()));
  }
  // The grid's white inside: without its bevel and the scrollbar.
  Box Inside() {
    const Box field = Field();
    return {field.x + 2, field.y + 2, BoxOf(Bar()).x - (field.x + 2), field.height - 4};
  }
  // The pixels of the main window around that, but for the scrollbar and the name of the plug-in.
  std::vector<uint32_t> Outside(const Shot& shot) {
    const Box inside = Inside();
    const Box bar = BoxOf(Bar());
    const Box button = BoxOf(PluginButton());
    const auto within = [](const Box& box, int x, int y) {
      return box.x <= x && x < box.x + box.width && box.y <= y && y < box.y + box.height;
    };
    std::vector<uint32_t> outside;
    for (int y = 0; y < shot.height; y++)
      for (int x = 0; x < shot.width; x++)
        if (!within(inside, x, y) && !within(bar, x, y) && !within(button, x, y))
          outside.push_back(shot.At(x, y));
    return outside;
  }
  bool OutsideIs(const std::vector<uint32_t>& before) {
    return WaitFor([&] { return Outside(Take(main_)) == before; });
  }
  // Pixels of the track that the thumb is moved by to scroll this many rows of `count` actions.
  int ThumbWay(int rows, int count) {
    const int track = BoxOf(Bar()).height - 26;
    const int range = (count + kColumns - 1) / kColumns * CellHeight();
    return (rows * CellHeight() * track + range - 1) / range;
  }
};

// --- What is shown -------------------------------------------------------------------------------

TEST_F(MainGridTest, ShowsNoneOneEighteenOrTheFirstOfFortyActionsInsideItsField) {
  WritePlugin("Default", {});
  WritePlugin("None", {});
  WritePlugin("One", {{"A0", kRight, {}}});
  WritePlugin("Eighteen", Numbered(18));
  WritePlugin("Forty", Numbered(40));
  // Wide characters with parts below the line, beyond the edges of their cells on all sides.
  WritePlugin("Wide",
              std::vector<Action>(18, {std::string(31, 'W') + std::string(32, 'g'), kDown, {}}));
  const std::vector<std::string> order = MenuOrder();
  LaunchInstalled();
  FindMain();

  ShowPlugin(order, "None");
  EXPECT_TRUE(ShowsSoon({}));
  const Shot empty = Take(main_);
  EXPECT_TRUE(IsWhite(empty, Inside()));
  const std::vector<uint32_t> outside = Outside(empty);
  Picture("0-actions");

  ShowPlugin(order, "One");
  EXPECT_TRUE(ShowsSoon({"A0"}));
  EXPECT_TRUE(HasIconOf(Take(main_), 0, kRight));
  EXPECT_TRUE(OutsideIs(outside));
  Picture("1-action");

  ShowPlugin(order, "Eighteen");
  EXPECT_TRUE(ShowsSoon(Names(0, 18)));
  for (int cell = 0; cell < kCells; cell++)
    EXPECT_TRUE(HasIconOf(Take(main_), cell, cell == 0 ? kRight : kEll)) << cell;
  EXPECT_TRUE(OutsideIs(outside));
  Picture("18-actions");

  // The beginning is the same; the thumb tells that there is more.
  const std::string whole = Look(Bar());
  ShowPlugin(order, "Forty");
  EXPECT_TRUE(WaitFor([&] { return Look(Bar()) != whole; }));
  EXPECT_TRUE(ShowsSoon(Names(0, 18)));
  EXPECT_TRUE(OutsideIs(outside));
  Picture("40-actions");

  ShowPlugin(order, "Wide");
  EXPECT_TRUE(WaitFor([this] { return HasIconOf(Take(main_), 17, kDown); }));
  EXPECT_TRUE(OutsideIs(outside));
  Picture("wide-names");
  EXPECT_EQ(Err(), "");
}

TEST_F(MainGridTest, ANameAsWideAsItsIconIsSplitAtItsFirstBlankOrInItsMiddle) {
  std::string narrow;
  while (TextWidth(narrow + "n") < 64) narrow += 'n';
  const std::string wide = narrow + "n";
  OpenWith({{narrow, kDown, {}},
            {wide, kDown, {}},
            {"a b c d", kDown, {}},
            {"Firstly second third", kDown, {}},
            {"UnbrokenName1", kDown, {}}});
  const auto half = wide.size() / 2;
  EXPECT_TRUE(WaitFor([&] { return CellIs(4, "Unbrok", "enName1"); }));
  EXPECT_TRUE(CellIs(0, narrow));
  EXPECT_TRUE(CellIs(1, wide.substr(0, half), wide.substr(half)));
  EXPECT_TRUE(CellIs(2, "a b c d"));
  EXPECT_TRUE(CellIs(3, "Firstly", " second third"));
  Picture("names");
}

TEST_F(MainGridTest, TheSelectedActionIsInvertedInItsRectangleAndNothingElseIs) {
  OpenWith(Numbered(8));
  ASSERT_TRUE(ShowsSoon(Names(0, 8)));
  const Shot before = Take(main_);
  for (const int cell : {7, 0}) {
    ClickCell(cell);
    // Selecting another one gives the earlier one its look back.
    EXPECT_TRUE(ShowsSoon(Names(0, 8), cell));
    const Shot after = Take(main_);
    const Box box = Highlight(cell);
    int wrong = 0;
    for (int y = 0; y < before.height; y++)
      for (int x = 0; x < before.width; x++) {
        const bool inside =
            box.x <= x && x < box.x + box.width && box.y <= y && y < box.y + box.height;
        const uint32_t turned = inside ? kWhite : 0;
        wrong += (before.At(x, y) ^ after.At(x, y)) != turned;
      }
    EXPECT_EQ(wrong, 0) << "pixels of cell " << cell;
  }
  Picture("selected");
}

// --- Scrolling -----------------------------------------------------------------------------------

TEST_F(MainGridTest, ScrollsRowByRowToTheEndAndSelectsWhatIsThereThen) {
  OpenWith(Numbered(40));
  ASSERT_TRUE(ShowsSoon(Names(0, 18)));
  const json actions = DesktopFile()["actions"];
  SelectCell(7);
  // One row further: the selection moves up with its action.
  EXPECT_TRUE(Drag(0, ThumbWay(1, 40), [this] { return Shows(Names(6, 24), 1); }));
  // The end: the last of seven rows is not full.
  EXPECT_TRUE(HoldArrow(true, [this] { return Shows(Names(24, 40)); }));
  Picture("40-actions-end");
  // The last one is A39, wherever it is seen.
  SelectCell(15);
  EXPECT_TRUE(ShowsSoon(Names(24, 40), 15));
  // Back at the beginning nothing of it is seen, and the one selected earlier is no more.
  EXPECT_TRUE(HoldArrow(false, [this] { return Shows(Names(0, 18)); }));
  Choose(testing::Title::kAction, testing::kActionDelete);
  json left = actions;
  left.erase(39);
  ExpectStored(left);
  EXPECT_TRUE(HoldArrow(true, [this] { return Shows(Names(24, 39), 14); }));
  // A click in the scrolled grid means the action that is shown there.
  SelectCell(0);
  Choose(testing::Title::kAction, testing::kActionDelete);
  left.erase(24);
  ExpectStored(left);
  std::vector<std::string> names = Names(25, 39);
  EXPECT_TRUE(ShowsSoon(names, 0));
}

TEST_F(MainGridTest, TheGridDoesNotStayBeyondTheEndWhenItsLastRowIsDeleted) {
  OpenWith(Numbered(25));
  ASSERT_TRUE(ShowsSoon(Names(0, 18)));
  EXPECT_TRUE(HoldArrow(true, [this] { return Shows(Names(12, 25)); }));
  SelectCell(12);
  Choose(testing::Title::kAction, testing::kActionDelete);
  EXPECT_TRUE(ShowsSoon(Names(6, 24), 17));
}

// --- Clicks --------------------------------------------------------------------------------------

TEST_F(MainGridTest, AClickBesideTheActionsSelectsNothingAndChangesNothing) {
  OpenWith(Numbered(8));
  ASSERT_TRUE(ShowsSoon(Names(0, 8)));
  const std::string bytes = DesktopBytes();
  const auto written = fs::last_write_time(PluginFile(kDesktop));
  const Box field = Field();
  const Point last = Cell(7);
  const Point places[] = {
      {Cell(8).x, Cell(8).y},           // beside the last one, in its row
      {Cell(13).x, Cell(13).y},         // in the row below it
      {last.x, last.y + CellHeight()},  // right below it
      {Cell(5).x + 36 + 4, Cell(5).y},  // right of the last column
      {field.x + 1, Cell(0).y},         // left of the first one
      {Cell(0).x, field.y - 2},         // above the field
      {Cell(0).x, field.y + field.height - 2},
  };
  for (const int selected : {-1, 3}) {
    if (selected >= 0) SelectCell(selected);
    for (const Point place : places) ClickIn(main_, place.x, place.y);
    Settle();
    EXPECT_TRUE(ShowsSoon(Names(0, 8), selected));
    EXPECT_EQ(Shown("ActionEditor"), Window{0});
  }
  EXPECT_TRUE(DesktopBytes() == bytes) << "the file has changed";
  EXPECT_EQ(fs::last_write_time(PluginFile(kDesktop)), written);
}

TEST_F(MainGridTest, TwoPressesWithinHalfASecondOpenTheEditorAndLaterOnesSelectAndDeselect) {
  OpenWith(Numbered(3));
  ASSERT_TRUE(ShowsSoon(Names(0, 3)));
  json actions = DesktopFile()["actions"];
  ClickCell(1);
  EXPECT_TRUE(ShowsSoon(Names(0, 3), 1));
  ClickCell(1);
  EXPECT_TRUE(ShowsSoon(Names(0, 3)));
  Settle();
  EXPECT_EQ(Shown("ActionEditor"), Window{0});

  // On an action that is not selected, and then on the same, which is.
  for (const char* name : {"Once", "Twice"}) {
    SCOPED_TRACE(name);
    DoubleClick(2);
    NameIt(name);
    LeaveByOk();
    actions[2]["name"] = name;
    ExpectStored(actions);
    EXPECT_TRUE(ShowsSoon({"A0", "A1", name}, 2));
  }
}

// --- Deleting ------------------------------------------------------------------------------------

TEST_F(MainGridTest, DeletingTheLastActionSelectsTheNewLastOneAndTheOnlyOneNone) {
  OpenWith(Numbered(3));
  ASSERT_TRUE(ShowsSoon(Names(0, 3)));
  json actions = DesktopFile()["actions"];
  SelectCell(2);
  ChoosePopup(2, testing::kPopupDelete);
  actions.erase(2);
  ExpectStored(actions);
  EXPECT_TRUE(ShowsSoon(Names(0, 2), 1));
  ChoosePopup(0, testing::kPopupDelete);
  actions.erase(1);
  ExpectStored(actions);
  EXPECT_TRUE(ShowsSoon(Names(0, 1), 0));
  ChoosePopup(0, testing::kPopupDelete);
  ExpectStored(json::array());
  EXPECT_TRUE(ShowsSoon({}));

  // With nothing left there is nothing to act on.
  const std::string bytes = DesktopBytes();
  const auto written = fs::last_write_time(PluginFile(kDesktop));
  for (const int row : {testing::kPopupCopy, testing::kPopupCut, testing::kPopupDelete,
                        testing::kPopupEdit, testing::kPopupPaste})
    ChoosePopup(0, row);
  for (const int row : {testing::kActionDelete, testing::kActionEdit})
    Choose(testing::Title::kAction, row);
  ClickIn(main_, Cell(0).x, Cell(0).y);
  Settle();
  EXPECT_TRUE(ShowsSoon({}));
  EXPECT_EQ(Shown("ActionEditor"), Window{0});
  EXPECT_TRUE(DesktopBytes() == bytes) << "the file has changed";
  EXPECT_EQ(fs::last_write_time(PluginFile(kDesktop)), written);
  EXPECT_TRUE(gromlit->Running());
}

// --- The popup -----------------------------------------------------------------------------------

TEST_F(MainGridTest, NoneOfThePopupsCommandsChangesTheFileWithoutASelection) {
  OpenWith(Numbered(3));
  ASSERT_TRUE(ShowsSoon(Names(0, 3)));
  const std::string bytes = DesktopBytes();
  const auto written = fs::last_write_time(PluginFile(kDesktop));
  for (const int row : {testing::kPopupCut, testing::kPopupCopy, testing::kPopupPaste,
                        testing::kPopupDelete, testing::kPopupEdit})
    ChoosePopup(1, row);
  Settle();
  EXPECT_EQ(Shown("ActionEditor"), Window{0});
  EXPECT_TRUE(ShowsSoon(Names(0, 3)));
  for (const int row : {testing::kPopupExport, testing::kPopupNew}) {
    ChoosePopup(1, row);
    LeaveByCancel();
  }
  ChoosePopup(1, testing::kPopupEditSymbol);
  DialogRight();
  EXPECT_TRUE(ShowsSoon(Names(0, 3)));
  EXPECT_TRUE(DesktopBytes() == bytes) << "the file has changed";
  EXPECT_EQ(fs::last_write_time(PluginFile(kDesktop)), written);
}

TEST_F(MainGridTest, ThePopupsCommandsDoTheirWorkOnTheSelectedAction) {
  OpenWith(Numbered(4));
  ASSERT_TRUE(ShowsSoon(Names(0, 4)));
  json actions = DesktopFile()["actions"];
  const json first = actions[0];
  const json second = actions[1];
  SelectCell(1);

  ChoosePopup(3, testing::kPopupCut);
  actions.erase(1);
  ExpectStored(actions);
  EXPECT_TRUE(ShowsSoon({"A0", "A2", "A3"}, 1));

  ChoosePopup(3, testing::kPopupPaste);
  actions.push_back(second);
  ExpectStored(actions);
  EXPECT_TRUE(ShowsSoon({"A0", "A2", "A3", "A1"}, 1));

  SelectCell(0);
  const std::string bytes = DesktopBytes();
  ChoosePopup(3, testing::kPopupCopy);
  Settle();
  EXPECT_TRUE(DesktopBytes() == bytes) << "the file has changed";
  ChoosePopup(3, testing::kPopupPaste);
  actions.push_back(first);
  ExpectStored(actions);

  SelectCell(2);
  ChoosePopup(3, testing::kPopupDelete);
  actions.erase(2);
  ExpectStored(actions);
  EXPECT_TRUE(ShowsSoon({"A0", "A2", "A1", "A0"}, 2));

  // What is edited is the selected action, not the one below the pointer.
  ChoosePopup(3, testing::kPopupEdit);
  NameIt("Edited");
  LeaveByOk();
  actions[2]["name"] = "Edited";
  ExpectStored(actions);
  EXPECT_TRUE(ShowsSoon({"A0", "A2", "Edited", "A0"}, 2));

  // The editor comes as it was left.
  ChoosePopup(3, testing::kPopupExport);
  NameIt("Again");
  LeaveByOk();
  actions[2]["name"] = "Again";
  ExpectStored(actions);

  // The library is empty: so is the new action's symbol.
  ChoosePopup(3, testing::kPopupNew);
  LeaveByOk();
  json added = DesktopFile()["actions"].back();
  EXPECT_EQ(added["name"], "New");
  EXPECT_EQ(added["commands"], json::array());
  EXPECT_EQ(added["symbol"]["points"], json::array());
  actions.push_back(added);
  ExpectStored(actions);
  EXPECT_TRUE(ShowsSoon({"A0", "A2", "Again", "A0", "New"}, 2));

  ChoosePopup(3, testing::kPopupEditSymbol);
  DialogRight();
  ExpectStored(actions);
  EXPECT_EQ(Err(), "");
}

TEST_F(MainGridTest, PastedActionsAreCopiesOfTheirOwn) {
  std::vector<Action> given = Numbered(3);
  given[1].commands = {{kRun, "true"}, {kText, "some text", 0, 0, 1}, {kHotKey, "a", 38, 4}};
  OpenWith(given);
  ASSERT_TRUE(ShowsSoon(Names(0, 3)));
  json actions = DesktopFile()["actions"];
  const json second = actions[1];
  ASSERT_EQ(second["commands"].size(), 3u);
  SelectCell(1);
  ChoosePopup(0, testing::kPopupCut);
  actions.erase(1);
  ExpectStored(actions);
  for (int i = 0; i < 2; i++) {
    ChoosePopup(0, testing::kPopupPaste);
    actions.push_back(second);
    ExpectStored(actions);
  }
  // One of the two is changed: its name, the text of a command, and a further command.
  SelectCell(2);
  ChoosePopup(0, testing::kPopupEdit);
  NameIt("Changed");
  const Window editor = Editor();
  ClickCommand(editor, 1);
  Fill(TabField(editor), " changed");
  const Window bar = TabBar(editor);
  ClickChild(bar, BoxOf(bar).width - 144, BoxOf(bar).height - 32);
  AddCommand(editor, kRun, "false");
  LeaveByOk();
  EXPECT_TRUE(ShowsSoon({"A0", "A2", "Changed", "A1"}, 2));
  const json changed = DesktopFile()["actions"][2];
  ASSERT_EQ(changed["commands"].size(), 4u);
  EXPECT_EQ(changed["commands"][0], second["commands"][0]);
  EXPECT_EQ(changed["commands"][1]["text"], "some text changed");
  EXPECT_EQ(changed["commands"][2], second["commands"][2]);
  EXPECT_EQ(changed["commands"][3]["text"], "false");
  EXPECT_EQ(changed["symbol"], second["symbol"]);
  actions[2] = changed;
  ExpectStored(actions);

  // The clipboard has not changed with it, nor does it with the deletion of both.
  ChoosePopup(0, testing::kPopupDelete);
  ChoosePopup(0, testing::kPopupDelete);
  actions.erase(3);
  actions.erase(2);
  ExpectStored(actions);
  ChoosePopup(0, testing::kPopupPaste);
  actions.push_back(second);
  ExpectStored(actions);
  // A copy acts like any other action.
  Draw({{800, 900}, {1100, 900}});
  EXPECT_TRUE(Appears("acted"));
}

}  // namespace
}  // namespace gromlit
