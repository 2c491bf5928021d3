// Libraries of more symbols than the chooser can list, in the built program.
#include "tests/e2e/symbol_run.h"

namespace gromlit {
namespace {

using testing::Exists;
using testing::kDown;
using testing::kRight;
using testing::WaitFor;

class SymbolLimitRun : public testing::SymbolRun {
 protected:
  // The line behind the last symbol that tells of those that are not listed; it has a row of its
  // own.
  bool TellsOfMissing(int row, const std::string& much) {
    const std::string lines[] = {much + " not shown.", "Delete symbols to see the others."};
    return WaitFor([&] {
      for (int i = 0; i < 2; i++) {
        const int baseline = 8 + row * CellHeight() + 32 + i * TextHeight();
        if (!ShowsText(Chooser(), 148 - TextWidth(lines[i]) / 2, baseline, lines[i])) return false;
      }
      return true;
    });
  }
  // The notice of a symbol that was saved although not all are listed, closed.
  void ExpectSavedBeyond(int count) {
    EXPECT_TRUE(DialogReads(
        {"The symbol was saved, but there are " + std::to_string(count) + " symbols now,",
         "and the choice of symbols shows only the first 512.",
         "Delete symbols that you do not need to see the others."}));
    Shoot("saved-" + std::to_string(count));
    DialogRight();
  }
};

TEST_F(SymbolLimitRun, Of600SymbolsTheFirst512AreShownAndTheRestIsCounted) {
  Fill(600);
  Open();
  Ask(testing::kSymbolEdit);
  EXPECT_TRUE(Lists(0, 16));
  DragToTheEnd(ChooserBar());
  EXPECT_TRUE(Lists(500, 12));
  EXPECT_TRUE(TellsOfMissing(3, "88 more symbols are"));
  Shoot("end");
  SingleClick(13);  // on what it tells
  SingleClick(11);
  EXPECT_TRUE(WaitChosen(11));
  EXPECT_FALSE(IsChosen(13));
  DialogLeft();
  EXPECT_TRUE(EditsSymbol(order_[511]));
  // The editor's list has them all.
  DragToTheEnd(WaitChild(editor_, 280, 136));
  EXPECT_TRUE(WaitFor([&] {
    const int rows = (243 - 8) / TextHeight();
    for (int row = 1; row <= rows; row++)
      if (ShowsText(Names(), 6, row * TextHeight() + 2, "s599")) return true;
    return false;
  }));
  Shoot("list");
  // A listed symbol is saved again without a word.
  PressButton(testing::kSave);
  EXPECT_TRUE(WaitHidden("SymbolEditor"));
  OpenNew();
  EXPECT_EQ(Dialog(), Window{0});
  DrawVector(kRight);
  NextStep();
  FinishStep();
  // One that is not listed is kept, and the user told.
  SaveAs(order_[512]);
  ExpectSavedBeyond(600);
  EXPECT_EQ(Saved(order_[512]).points, kRight);
  // So is a new one, which comes first in this run.
  OpenNew();
  DrawVector(kDown);
  NextStep();
  FinishStep();
  SaveAs("new");
  ExpectSavedBeyond(601);
  EXPECT_EQ(Saved("new").points, kDown);
  order_.insert(order_.begin(), "new");
  Ask(testing::kSymbolEdit);
  EXPECT_TRUE(Lists(500, 12)) << "the thumb is still at the end";
  EXPECT_TRUE(TellsOfMissing(3, "89 more symbols are"));
  DialogRight();
  EXPECT_EQ(SymbolFiles().size(), 601u);
  EXPECT_EQ(Err(), "");
}

TEST_F(SymbolLimitRun, The513thSymbolIsSavedAndADeletionShowsTheLastOneAgain) {
  Fill(512);
  Open();
  Ask(testing::kSymbolEdit);
  DragToTheEnd(ChooserBar());
  EXPECT_TRUE(Lists(496, 16));
  DialogRight();
  OpenNew();
  DrawVector(kRight);
  NextStep();
  FinishStep();
  SaveAs("new");
  ExpectSavedBeyond(513);
  const std::vector<std::string> before = order_;
  order_.insert(order_.begin(), "new");
  Ask(testing::kSymbolDelete);
  EXPECT_TRUE(Lists(500, 12)) << "the thumb is still at the end";
  EXPECT_TRUE(TellsOfMissing(3, "1 more symbol is"));
  Shoot("end");
  SingleClick(0);
  EXPECT_TRUE(WaitChosen(0));
  DialogLeft();
  DialogLeft();
  EXPECT_TRUE(WaitFor([this] { return !Exists(SymbolFile(order_[500])); }));
  order_.erase(order_.begin() + 500);
  Ask(testing::kSymbolEdit);
  EXPECT_TRUE(Lists(496, 16));
  EXPECT_EQ(order_.back(), before.back());
  Shoot("again");
  DialogRight();
}

}  // namespace
}  // namespace gromlit
