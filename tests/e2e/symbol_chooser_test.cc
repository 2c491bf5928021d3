// The symbol chooser of the built program, from each place that uses it.
#include "tests/e2e/stored_files.h"
#include "tests/e2e/symbol_run.h"

namespace gromlit {
namespace {

namespace fs = std::filesystem;
using testing::Box;
using testing::Exists;
using testing::kDown;
using testing::kLeft;
using testing::kRight;
using testing::Point;
using testing::ReadText;
using testing::ShowFile;
using testing::Title;
using testing::WaitFor;

class SymbolChooserRun : public testing::SymbolRun {
 protected:
  nlohmann::json FirstAction() { return ShowFile(PluginFile("Default")).at("actions").at(0); }
};

// --- The grid -----------------------------------------------------------------------------------

TEST_F(SymbolChooserRun, With17SymbolsACellHeightScrollsByFour) {
  Fill(17);
  Open();
  Ask(testing::kSymbolEdit);
  EXPECT_TRUE(Lists(0, 16));
  Shoot("top");
  // The thumb has one pixel for so many of the five rows.
  const Window bar = ChooserBar();
  const Point origin = OriginOf(bar);
  const int track = BoxOf(bar).height - 26;
  const int range = 5 * CellHeight();
  ASSERT_GT(range, track);
  const int pixels = (CellHeight() * track + range - 1) / range;
  const auto thumb_at = [&](int pos) {
    constexpr unsigned long kUpperEdge = 0xffffff;
    constexpr unsigned long kTrough = 0xa8a8a8;
    return WaitFor([&] {
      return player->Pixel(origin.x + 7, origin.y + 13 + pos) == kUpperEdge &&
             player->Pixel(origin.x + 7, origin.y + 12 + pos) == kTrough;
    });
  };
  ASSERT_TRUE(Over(bar, 7, 20));
  player->Press(1);
  ASSERT_TRUE(Over(bar, 7, 20 + pixels - 1));
  EXPECT_TRUE(thumb_at(pixels - 1));
  EXPECT_TRUE(ShowsName(0, order_[0])) << "not a whole cell yet";
  ASSERT_TRUE(Over(bar, 7, 20 + pixels));
  EXPECT_TRUE(thumb_at(pixels));
  player->Release(1);
  EXPECT_TRUE(Lists(4, 13));
  // Further down there is nothing.
  ASSERT_TRUE(Over(bar, 7, 20 + pixels));
  player->Press(1);
  ASSERT_TRUE(Over(bar, 7, BoxOf(bar).height - 3));
  EXPECT_TRUE(thumb_at(track - track * track / range));
  player->Release(1);
  EXPECT_TRUE(Lists(4, 13));
  Shoot("end");
  SingleClick(12);
  EXPECT_TRUE(WaitChosen(12));
  DialogLeft();
  EXPECT_TRUE(EditsSymbol(order_[16]));
  CancelEditor();
}

TEST_F(SymbolChooserRun, AWideNameIsSplitAtItsFirstBlankOrInItsMiddle) {
  struct Line {
    std::string text;
    int middle;  // from the cell's left edge
  };
  const std::vector<std::pair<std::string, std::vector<Line>>> names = {
      {"two words here", {{"two", 32}, {" words here", 32}}},
      {"abcdefghijkl", {{"abcdef", 32}, {"ghijkl", 32}}},
      {"abcdefghijk", {{"abcdefghijk", 36}}},
      {"a b", {{"a b", 36}}}};
  for (const auto& [name, lines] : names) WriteSymbol(name);
  const std::vector<std::string> order = LibraryOrder();
  ASSERT_EQ(TextWidth("abcdefghijkl"), 72) << "as wide as a cell";
  Open();
  Ask(testing::kSymbolEdit);
  EXPECT_TRUE(WaitCount(4));
  for (const auto& [name, lines] : names) {
    const auto cell = std::find(order.begin(), order.end(), name) - order.begin();
    const Point at = SymbolCell(static_cast<int>(cell));
    int baseline = at.y + 32 + TextHeight();
    for (const Line& line : lines) {
      const int x = at.x + line.middle - TextWidth(line.text) / 2;
      EXPECT_TRUE(WaitFor([&] { return ShowsText(Chooser(), x, baseline, line.text, 2); }))
          << line.text;
      baseline += TextHeight();
    }
  }
  Shoot("names");
  DialogRight();
}

// --- Clicks -------------------------------------------------------------------------------------

TEST_F(SymbolChooserRun, ASingleClickSelectsAndOnTheSelectedOneDeselects) {
  Fill(9);
  Open();
  Ask(testing::kSymbolEdit);
  EXPECT_TRUE(Lists(0, 9));
  SingleClick(1);
  EXPECT_TRUE(WaitChosen(1));
  Shoot("selected");
  SingleClick(1);
  EXPECT_TRUE(WaitChosen(1, false));
  SingleClick(1);
  EXPECT_TRUE(WaitChosen(1));
  SingleClick(6);
  EXPECT_TRUE(WaitChosen(6));
  EXPECT_FALSE(IsChosen(1));
  // Behind the last symbol, below it, and between the window's edge and the cells.
  const Point corner = OriginOf(Chooser());
  for (const Point& beside : {SymbolCell(9), SymbolCell(13), Point{4, 4}}) {
    player->MoveTo(corner.x + beside.x + 2, corner.y + beside.y + 2);
    player->Click(1);
  }
  // The click that follows deselects, so that nothing was changed before.
  SingleClick(6);
  EXPECT_TRUE(WaitChosen(6, false));
  for (int cell = 0; cell < 16; cell++) EXPECT_FALSE(IsChosen(cell)) << cell;
  SingleClick(6);
  EXPECT_TRUE(WaitChosen(6));
  DialogLeft();
  EXPECT_TRUE(EditsSymbol(order_[6]));
  CancelEditor();
}

TEST_F(SymbolChooserRun, ADoubleClickIsOkAlsoOnTheSelectedSymbol) {
  Fill(9);
  Open();
  for (int round = 0; round < 2; round++) {
    SCOPED_TRACE(round);
    Ask(testing::kSymbolEdit);
    EXPECT_TRUE(Lists(0, 9));
    EXPECT_EQ(IsChosen(5), round == 1);
    OutwaitDoubleClick();
    ClickSymbol(5);
    player->Click(1);
    EXPECT_TRUE(WaitNoDialog());
    EXPECT_TRUE(EditsSymbol(order_[5]));
    CancelEditor();
  }
  // Two quick clicks on two symbols take the second.
  Ask(testing::kSymbolEdit);
  OutwaitDoubleClick();
  ClickSymbol(0);
  ClickSymbol(1);
  EXPECT_TRUE(WaitNoDialog());
  EXPECT_TRUE(EditsSymbol(order_[1]));
  CancelEditor();
}

TEST_F(SymbolChooserRun, Button3SelectsNothingButIsTheFirstPressOfADoubleClick) {
  WriteOptions(2);  // the draw button would be held back for a stroke
  Fill(9);
  Open();
  Ask(testing::kSymbolEdit);
  EXPECT_TRUE(Lists(0, 9));
  SingleClick(2);
  EXPECT_TRUE(WaitChosen(2));
  OutwaitDoubleClick();
  ClickSymbol(3, 3);
  OutwaitDoubleClick();
  EXPECT_TRUE(IsChosen(2));
  EXPECT_FALSE(IsChosen(3));
  ClickSymbol(3, 3);
  ClickSymbol(4);
  EXPECT_TRUE(WaitNoDialog());
  EXPECT_TRUE(EditsSymbol(order_[4]));
  CancelEditor();
}

// --- Who uses it --------------------------------------------------------------------------------

TEST_F(SymbolChooserRun, EditAndThePopupEditTheChosenSymbolOrAnEmptyOne) {
  WriteSymbol("One", kRight);
  WriteSymbol("Two", kDown);
  const std::string before = ReadText(SymbolFile("One")) + ReadText(SymbolFile("Two"));
  order_ = LibraryOrder();
  Open();
  const std::vector<std::pair<const char*, std::function<void()>>> places = {
      {"menu", [this] { Choose(Title::kSymbol, testing::kSymbolEdit); }},
      {"popup", [this] { ChoosePopup(0, testing::kPopupEditSymbol); }}};
  for (const auto& [name, ask] : places) {
    SCOPED_TRACE(name);
    // Left by Cancel nothing opens.
    ask();
    EXPECT_TRUE(Lists(0, 2));
    Shoot(name);
    DialogRight();
    // OK without a choice opens an empty editor.
    ask();
    DialogLeft();
    TakeEditor();
    EXPECT_FALSE(HasSquare(kRight[0]) || HasSquare(kRight[1]));
    EXPECT_FALSE(HasSquare(kDown[0]) || HasSquare(kDown[1]));
    CancelEditor();
    ask();
    SingleClick(1);
    EXPECT_TRUE(WaitChosen(1));
    DialogLeft();
    EXPECT_TRUE(EditsSymbol(order_[1]));
    CancelEditor();
    ask();
    SingleClick(1);  // the choice was still there
    EXPECT_TRUE(WaitChosen(1, false));
    DialogRight();
  }
  EXPECT_EQ(ReadText(SymbolFile("One")) + ReadText(SymbolFile("Two")), before);
  EXPECT_EQ(SymbolFiles(), (std::vector<std::string>{"One.sls", "Two.sls"}));
}

TEST_F(SymbolChooserRun, DeleteAsksNoKeepsTheFileAndYesRemovesFileAndEntry) {
  Fill(5);
  Open();
  // OK without a choice asks nothing.
  Ask(testing::kSymbolDelete);
  EXPECT_TRUE(Lists(0, 5));
  DialogLeft();
  Ask(testing::kSymbolDelete);
  SingleClick(1);
  EXPECT_TRUE(WaitChosen(1));
  DialogLeft();
  EXPECT_TRUE(DialogReads({"Sure you want to delete this Symbol?"}));
  Shoot("question");
  DialogRight();
  EXPECT_TRUE(Exists(SymbolFile(order_[1])));
  // What was chosen for the former question is not deleted by the next one.
  Ask(testing::kSymbolDelete);
  EXPECT_TRUE(Lists(0, 5));
  EXPECT_TRUE(WaitChosen(1, false));
  DialogLeft();
  Ask(testing::kSymbolDelete);
  SingleClick(1);
  EXPECT_TRUE(WaitChosen(1));
  DialogLeft();
  DialogLeft();
  EXPECT_TRUE(WaitFor([this] { return !Exists(SymbolFile(order_[1])); }));
  EXPECT_EQ(SymbolFiles().size(), 4u);
  order_.erase(order_.begin() + 1);
  Ask(testing::kSymbolEdit);
  EXPECT_TRUE(Lists(0, 4));
  EXPECT_FALSE(IsChosen(1));
  Shoot("deleted");
  DialogRight();
  // Nor is it in the editor's list.
  std::vector<std::string> sorted = order_;
  std::sort(sorted.begin(), sorted.end());
  OpenNew();
  NextStep();
  FinishStep();
  EXPECT_TRUE(ListsNames(sorted));
  CancelEditor();
  EXPECT_EQ(Err(), "");
}

TEST_F(SymbolChooserRun, ADeletionThatFailsSaysWhyAndKeepsTheEntry) {
  Fill(2);
  Open();
  fs::remove(SymbolFile(order_[0]));
  Ask(testing::kSymbolDelete);
  SingleClick(0);
  EXPECT_TRUE(WaitChosen(0));
  DialogLeft();
  DialogLeft();
  EXPECT_TRUE(
      WaitFor([this] { return Dialog() != 0 && Reads(Dialog(), "The symbol was not deleted."); }));
  EXPECT_TRUE(DialogReads({"No such file or directory."}));
  Shoot("notice");
  DialogRight();
  EXPECT_EQ(Err(), "Remove Symbol: No such file or directory\n");
  Ask(testing::kSymbolEdit);
  EXPECT_TRUE(Lists(0, 2));
  DialogRight();
}

TEST_F(SymbolChooserRun, AnActionTakesTheChosenSymbolAndKeepsItsOwnWithoutAChoice) {
  WriteSymbol("One", kRight);
  WriteSymbol("Two", kDown);
  WritePlugin("Default", {{"Act", kLeft, {Touch("acted")}}});
  order_ = LibraryOrder();
  Open();
  const auto edit = [this] {
    SelectCell(0);
    Choose(Title::kAction, testing::kActionEdit);
    const Window editor = WaitShown("ActionEditor");
    const int width = BoxOf(TabBar(editor)).width;
    ClickIn(WaitChild(editor, width + 128 + 48, 100), 20, 20);
    EXPECT_TRUE(Lists(0, 2));
    return editor;
  };
  const auto okay = [this](Window editor) {
    const Box box = BoxOf(editor);
    ClickChild(editor, box.width - 160, box.height - 40);
    EXPECT_TRUE(WaitHidden("ActionEditor"));
  };
  ASSERT_TRUE(WaitFor([this] { return HasIcon(0) || HasName(0); }));
  Window editor = edit();
  Shoot("for-an-action");
  DialogLeft();
  okay(editor);
  EXPECT_EQ(FirstAction().at("symbol").at("name"), "Act");
  editor = edit();
  SingleClick(1);
  EXPECT_TRUE(WaitChosen(1));
  DialogRight();
  okay(editor);
  EXPECT_EQ(FirstAction().at("symbol").at("name"), "Act");
  editor = edit();
  EXPECT_TRUE(WaitChosen(1));
  DialogLeft();
  okay(editor);
  EXPECT_EQ(FirstAction().at("symbol").at("name"), order_[1]);
  EXPECT_EQ(FirstAction().at("symbol").at("points"), ShowFile(SymbolFile(order_[1])).at("points"));
  EXPECT_EQ(FirstAction().at("name"), "Act");
  EXPECT_EQ(FirstAction().at("commands").size(), 1u);
}

}  // namespace
}  // namespace gromlit
