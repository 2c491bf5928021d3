#include "tests/x11/app/symbol_fixture.h"

#include "app/symbols/symbol_library.h"
#include "tests/support/captured.h"
#include "toolkit/image.h"

namespace gromlit {
namespace {

class SymbolDialogTest : public testing::SymbolFixture {
 protected:
  void SetUp() override {
    SymbolFixture::SetUp();
    if (HasFatalFailure()) return;
    for (const char* name : {"One", "Two", "Three"}) Store(name);
    MakeWindows();
  }

  // Shows the dialog as the menu's commands do.
  void PopUp(void (*yesfn)(XDialog*)) {
    symselect->yesfn = yesfn;
    PopUpDialog(symselect, "Select Symbol to Edit", 640, 512);
    ASSERT_TRUE(PumpUntil([this] { return Shown(SymbolChooser()->window); }));
  }

  void ClickSymbol(const std::string& name, int times = 1) {
    const SymbolDisplay* sd = SymbolChooser();
    for (int i = 0; i < sd->count; i++) {
      if (name != sd->syms[i]->name) continue;
      SymLastClick = static_cast<int>(static_cast<uint32_t>(SymLastClick) - 1000U);
      for (int click = 0; click < times; click++) ClickIn(sd->window, 8 + 72 * i + 36, 28);
      return;
    }
    FAIL() << name << " is not shown";
  }

  // As far as the question.
  void AskToDelete(const std::string& name) {
    PopUp(YesDeleteSymbol);
    ClickSymbol(name);
    ClickOn(symselect->yes);
    ASSERT_TRUE(Shown(confirm->window));
  }
};

TEST_F(SymbolDialogTest, TheDialogHoldsTheChooserAndTwoButtons) {
  EXPECT_STREQ(symselect->title, "Select Symbol");
  EXPECT_STREQ(symselect->yes->label, "OK");
  EXPECT_STREQ(symselect->no->label, "Cancel");
  EXPECT_EQ(symselect->yesfn, YesEditSymbol);
  const SymbolDisplay* sd = SymbolChooser();
  EXPECT_EQ(symselect->arg, sd);
  EXPECT_EQ(symselect->show, sd->window);
  EXPECT_EQ(symselect->width, sd->width + 8);
  EXPECT_EQ(symselect->height, logoImage->height + 8 + sd->height + 40);
  XWindowAttributes attributes;
  XGetWindowAttributes(dpy, sd->window, &attributes);
  EXPECT_EQ(attributes.x, 4);
  EXPECT_EQ(attributes.y, logoImage->height + 8);
  EXPECT_FALSE(Shown(symselect->window));
}

TEST_F(SymbolDialogTest, OkOpensTheEditorOnTheChosenSymbol) {
  PopUp(YesEditSymbol);
  ClickSymbol("Two");
  Shoot("dialog-chosen");
  ClickOn(symselect->yes);
  EXPECT_FALSE(Shown(symselect->window));
  EXPECT_TRUE(Shown(sed->window));
  EXPECT_EQ(sed->state, kSymComplete);
  EXPECT_STREQ(sed->sym.name, "Two");
  EXPECT_EQ(sed->sym.npoints, 2);
}

TEST_F(SymbolDialogTest, OkWithNothingChosenOpensAnEmptyEditor) {
  PopUp(YesEditSymbol);
  ClickOn(symselect->yes);
  EXPECT_FALSE(Shown(symselect->window));
  EXPECT_TRUE(Shown(sed->window));
  EXPECT_EQ(sed->state, kSymEmpty);
  EXPECT_EQ(sed->sym.npoints, 0);
}

TEST_F(SymbolDialogTest, ADoubleClickIsAsGoodAsOk) {
  PopUp(YesEditSymbol);
  ClickSymbol("Three", 2);
  EXPECT_FALSE(Shown(symselect->window));
  EXPECT_TRUE(Shown(sed->window));
  EXPECT_STREQ(sed->sym.name, "Three");
}

TEST_F(SymbolDialogTest, CancelOpensNothing) {
  PopUp(YesEditSymbol);
  ClickSymbol("Two");
  ClickOn(symselect->no);
  EXPECT_FALSE(Shown(symselect->window));
  EXPECT_FALSE(Shown(sed->window));
}

TEST_F(SymbolDialogTest, DeletingAsksFirstAndNoLeavesEverything) {
  const auto before = Names();
  AskToDelete("Two");
  EXPECT_FALSE(Shown(symselect->window));
  EXPECT_STREQ(confirm->title, "Delete Symbol");
  EXPECT_STREQ(confirm->msgs[0], "Sure you want to delete this Symbol?");
  EXPECT_EQ(confirm->yesfn, ConfirmDeleteSymbol);
  Shoot("dialog-delete");
  ClickOn(confirm->no);
  EXPECT_FALSE(Shown(confirm->window));
  EXPECT_EQ(Names(), before);
  EXPECT_TRUE(testing::Exists(*install / "symbols/Two.sls"));
}

TEST_F(SymbolDialogTest, YesDeletesTheSymbolClosesTheQuestionAndClearsTheSelection) {
  AskToDelete("Two");
  ClickOn(confirm->yes);
  EXPECT_FALSE(Shown(confirm->window));
  EXPECT_EQ(Find("Two"), nullptr);
  EXPECT_EQ(Names().size(), 2U);
  EXPECT_FALSE(testing::Exists(*install / "symbols/Two.sls"));
  EXPECT_EQ(sed->lst->nitems, 2);
  EXPECT_EQ(SymbolChooser()->selected, -1);
  PopUp(YesEditSymbol);
  EXPECT_EQ(SymbolChooser()->count, 2);
}

TEST_F(SymbolDialogTest, WithNothingChosenNothingIsAskedAndNothingDeleted) {
  const auto before = Names();
  PopUp(YesDeleteSymbol);
  ClickOn(symselect->yes);
  EXPECT_FALSE(Shown(symselect->window));
  EXPECT_FALSE(Shown(confirm->window));
  EXPECT_EQ(Names(), before);
}

TEST_F(SymbolDialogTest, TheSymbolThatTheQuestionWasAboutIsDeletedWhateverIsChosenMeanwhile) {
  AskToDelete("Two");
  SymbolChooser()->selected = -1;
  PopUpDialog(symselect, "Select Symbol to Edit", 1100, 800);
  Pump();
  ClickSymbol("One");
  ClickOn(confirm->yes);
  EXPECT_EQ(Find("Two"), nullptr);
  EXPECT_NE(Find("One"), nullptr);
  EXPECT_EQ(SymbolChooser()->count, 2) << "the chooser that is shown was not drawn anew";
  ClickOn(symselect->no);
}

TEST_F(SymbolDialogTest, ADeletionThatFailsLeavesTheSymbolAndGivesTheReason) {
  std::filesystem::remove(*install / "symbols/Two.sls");
  const auto before = Names();
  AskToDelete("Two");
  testing::CaptureStderr();
  ClickOn(confirm->yes);
  EXPECT_EQ(testing::GetCapturedStderr(), "Remove Symbol: No such file or directory\n");
  EXPECT_FALSE(Shown(confirm->window));
  EXPECT_EQ(Names(), before);
  EXPECT_EQ(sed->lst->nitems, 3);
  ASSERT_TRUE(Shown(notice->window));
  EXPECT_STREQ(notice->msgs[0], "The symbol was not deleted.");
  EXPECT_STREQ(notice->msgs[1], "No such file or directory.");
  ClickOn(notice->no);
}

TEST_F(SymbolDialogTest, ADeletedSymbolThatIsBeingEditedCanStillBeSaved) {
  SymInit(sed, Find("Two"));
  Pump();
  AskToDelete("Two");
  ClickOn(confirm->yes);
  ASSERT_TRUE(Shown(sed->window));
  EXPECT_EQ(SaveSymbol(sed, sed->sym.name), 1);
  EXPECT_NE(Find("Two"), nullptr);
}

TEST_F(SymbolDialogTest, ASymbolThatIsSavedAgainWhileTheQuestionIsOpenLeavesFileAndLibrary) {
  SymInit(sed, Find("Two"));
  Pump();
  AskToDelete("Two");
  ASSERT_EQ(SaveSymbol(sed, sed->sym.name), 1);
  ClickOn(confirm->yes);
  EXPECT_FALSE(testing::Exists(*install / "symbols/Two.sls"));
  EXPECT_EQ(Find("Two"), nullptr) << "listed until the program ends, though its file is gone";
  EXPECT_EQ(sed->lst->nitems, 2);
}

TEST_F(SymbolDialogTest, ASymbolThatIsGoneWhenTheQuestionIsAnsweredIsNoFailure) {
  AskToDelete("Two");
  ASSERT_EQ(RemoveSymbol(Find("Two"), "Two"), 1);
  const auto before = Names();
  ClickOn(confirm->yes);
  EXPECT_FALSE(Shown(confirm->window));
  EXPECT_FALSE(Shown(notice->window));
  EXPECT_EQ(Names(), before);
}

TEST_F(SymbolDialogTest, BeforeTheDialogIsMadeNothingIsChosen) {
  XDialog* made = symselect;
  symselect = nullptr;
  EXPECT_EQ(SymbolChooser(), nullptr);
  EXPECT_EQ(ChosenSymbol(), nullptr);
  EXPECT_EQ(RemoveSymbol(Find("One"), "One"), 1);
  symselect = made;
}

}  // namespace
}  // namespace gromlit
