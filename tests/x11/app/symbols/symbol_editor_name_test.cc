#include "tests/x11/app/symbol_editor_fixture.h"

#include <filesystem>
#include <memory>

#include "app/symbols/symbol_editor_buttons.h"
#include "app/symbols/symbol_library.h"
#include "app/windows/dialogs.h"
#include "tests/support/captured.h"

namespace gromlit {
namespace {

using SymbolEditorNameTest = testing::SymbolEditorFixture;

TEST_F(SymbolEditorNameTest, FinishAsksForTheNameAndShowsTheNamesThatThereAre) {
  const GromlitSymbol* alpha = Find("Alpha");
  Open(alpha);
  ClickOn(sed->bnext);
  ClickOn(sed->bfinish);
  EXPECT_EQ(sed->state, kSymName);
  EXPECT_STREQ(TextEditorText(sed->txt), "Alpha");
  for (const Window shown :
       {sed->bsave->window, sed->txt->window, sed->sbar->window, sed->lst->window}) {
    EXPECT_TRUE(Shown(shown));
  }
  for (const Window hidden :
       {sed->bfinish->window, sed->icon->window, area->window, sed->bnext->window}) {
    EXPECT_FALSE(Shown(hidden));
  }
}

TEST_F(SymbolEditorNameTest, PickingANameCopiesItIntoTheFieldAlsoTheNextTime) {
  for (int round = 0; round < 2; round++) {
    Reach(kSymName);
    EXPECT_STREQ(TextEditorText(sed->txt), "");
    ClickIn(sed->lst->window, 20, 4 + sed->lst->itemheight + 2);
    EXPECT_STREQ(TextEditorText(sed->txt), "Beta") << "round " << round;
  }
}

TEST_F(SymbolEditorNameTest, PrevFromStepThreeBringsTheBitmapBack) {
  Reach(kSymName);
  ClickOn(sed->bprev);
  EXPECT_EQ(sed->state, kSymBitmap);
  for (const Window shown : {sed->bfinish->window, sed->icon->window, area->window}) {
    EXPECT_TRUE(Shown(shown));
  }
  for (const Window hidden : {sed->bsave->window, sed->txt->window, sed->sbar->window,
                              sed->lst->window, sed->bnext->window}) {
    EXPECT_FALSE(Shown(hidden));
  }
  ExpectAsRedrawn();
}

TEST_F(SymbolEditorNameTest, ClearInStepThreeDropsThePointsAndKeepsTheNameWidgets) {
  Reach(kSymName);
  ClickOn(sed->bclear);
  EXPECT_EQ(sed->state, kSymEmpty);
  EXPECT_EQ(sed->sym.npoints, 0);
  for (const Window shown :
       {sed->bsave->window, sed->txt->window, sed->sbar->window, sed->lst->window}) {
    EXPECT_TRUE(Shown(shown));
  }
  EXPECT_FALSE(Shown(area->window));
  ClickOn(sed->bprev);
  EXPECT_EQ(sed->state, kSymEmpty);
}

// In the last step with a symbol of the library, its points cleared.
class EmptiedSymbolTest : public testing::SymbolEditorFixture {
 protected:
  void Empty(const char* name) {
    Open(Find(name));
    ClickOn(sed->bnext);
    ClickOn(sed->bfinish);
    ClickOn(sed->bclear);
    ASSERT_EQ(sed->sym.npoints, 0);
  }
  static int StoredPoints(const char* name) {
    const std::unique_ptr<GromlitSymbol> stored(LoadSymbol(name, GromlitSymbolFileExt));
    return stored == nullptr ? -1 : stored->npoints;
  }
};

TEST_F(EmptiedSymbolTest, ReplacesAnExistingOneOnlyAfterYes) {
  const int points = StoredPoints("Alpha");
  ASSERT_GT(points, 0);
  Empty("Alpha");
  ClickOn(sed->bsave);
  ASSERT_TRUE(Shown(confirm->window));
  EXPECT_STREQ(confirm->title, "Replace Symbol");
  EXPECT_TRUE(Shown(sed->window));
  EXPECT_EQ(StoredPoints("Alpha"), points);
  ClickOn(confirm->no);
  EXPECT_FALSE(Shown(confirm->window));
  EXPECT_TRUE(Shown(sed->window)) << "the work is still there";
  EXPECT_EQ(StoredPoints("Alpha"), points);

  MoveIn(sed->txt->window, 100, 12);
  TypeKey(XK_Return);
  ASSERT_TRUE(Shown(confirm->window)) << "Return asks as the button does";
  ClickOn(confirm->yes);
  EXPECT_FALSE(Shown(confirm->window));
  EXPECT_FALSE(Shown(sed->window));
  EXPECT_EQ(StoredPoints("Alpha"), 0);
}

// A copy that somebody made is in the library under the name that is in it, not under its file's.
TEST_F(EmptiedSymbolTest, ReplacesAFileOfThatNameOnlyAfterYesToo) {
  const std::string folder = std::string(GromlitPath) + "/" + symbolDirectory;
  std::filesystem::copy_file(folder + "/Beta.sls", folder + "/Backup.sls");
  const int points = StoredPoints("Backup");
  ASSERT_GT(points, 0);
  Empty("Alpha");
  TextEditorUpdate(sed->txt, "Backup");
  ClickOn(sed->bsave);
  ASSERT_TRUE(Shown(confirm->window));
  ClickOn(confirm->no);
  EXPECT_EQ(StoredPoints("Backup"), points);
  ClickOn(sed->bsave);
  ClickOn(confirm->yes);
  EXPECT_EQ(StoredPoints("Backup"), 0);
}

TEST_F(EmptiedSymbolTest, UnderANewNameIsSavedUnasked) {
  Empty("Alpha");
  MoveIn(sed->txt->window, 100, 12);
  TypeText("z");
  ClickOn(sed->bsave);
  EXPECT_FALSE(Shown(confirm->window));
  EXPECT_FALSE(Shown(sed->window));
  EXPECT_EQ(StoredPoints("Alphaz"), 0);
}

TEST_F(EmptiedSymbolTest, YesIsForWhatWasAskedOnly) {
  const int points = StoredPoints("Beta");
  Empty("Alpha");
  ClickOn(sed->bsave);
  ASSERT_TRUE(Shown(confirm->window));
  TextEditorUpdate(sed->txt, "Beta");
  ClickOn(confirm->yes);
  EXPECT_EQ(StoredPoints("Beta"), points);
  EXPECT_GT(StoredPoints("Alpha"), 0);
  TextEditorUpdate(sed->txt, "Alpha");
  ClickOn(sed->bsave);
  ASSERT_TRUE(Shown(confirm->window));
  symCancel(sed);  // its button may lie below the question
  Pump();
  ClickOn(confirm->yes);
  EXPECT_GT(StoredPoints("Alpha"), 0) << "the editor was left";
}

TEST_F(SymbolEditorNameTest, ANewNameAddsTheSymbolAtTheHeadOfTheLibrary) {
  const auto before = Names();
  Reach(kSymName);
  MoveIn(sed->txt->window, 100, 12);
  TypeText("az");
  Shoot("editor-name-typed");
  ClickOn(sed->bsave);
  EXPECT_FALSE(Shown(sed->window));
  ASSERT_EQ(Names().size(), before.size() + 1);
  EXPECT_EQ(Names().front(), "az");
  ASSERT_EQ(sed->lst->nitems, 3);
  EXPECT_STREQ(sed->lst->items[2], "az");
  const GromlitSymbol* read = LoadSymbol("az", GromlitSymbolFileExt);
  ASSERT_NE(read, nullptr);
  EXPECT_EQ(read->npoints, 2);
  EXPECT_EQ(read->x[2], 200);
  ASSERT_NE(Find("az"), nullptr);
  EXPECT_EQ(Find("az")->signature, nullptr);
  delete read;
}

TEST_F(SymbolEditorNameTest, ReturnInTheNameFieldSaves) {
  Reach(kSymName);
  MoveIn(sed->txt->window, 100, 12);
  TypeText("new");
  TypeKey(XK_Return);
  EXPECT_FALSE(Shown(sed->window));
  EXPECT_NE(Find("new"), nullptr);
}

TEST_F(SymbolEditorNameTest, AnExistingNameReplacesThatSymbol) {
  const auto before = Names();
  Reach(kSymName);
  ClickIn(sed->lst->window, 20, 8);
  ClickOn(sed->bsave);
  EXPECT_EQ(Names(), before);
  ASSERT_NE(Find("Alpha"), nullptr);
  EXPECT_EQ(Find("Alpha")->npoints, 2);
  ASSERT_NE(Find("Alpha"), nullptr);
  EXPECT_EQ(Find("Alpha")->x[2], 200);
  EXPECT_EQ(sed->lst->nitems, 2);
}

TEST_F(SymbolEditorNameTest, EditingASymbolChangesTheLibraryOnlyWhenSaved) {
  Open(Find("Alpha"));
  MoveIn(area->window, 16, 16);
  player->Press(1);
  Pump();
  MoveIn(area->window, 80, 80);
  player->Release(1);
  Pump();
  ASSERT_NE(Find("Alpha"), nullptr);
  EXPECT_EQ(Find("Alpha")->x[1], 16);
  ClickOn(sed->bnext);
  ClickOn(sed->bfinish);
  ClickOn(sed->bsave);
  ASSERT_NE(Find("Alpha"), nullptr);
  EXPECT_EQ(Find("Alpha")->x[1], 80);
}

TEST_F(SymbolEditorNameTest, TheNameIsWhatIsInTheFieldAndNoLonger) {
  Reach(kSymName);
  MoveIn(sed->txt->window, 100, 12);
  TypeText("abcdef");
  for (int i = 0; i < 3; i++) TypeKey(XK_Left);
  TypeKey(XK_k, XK_Control_L);
  ClickOn(sed->bsave);
  EXPECT_NE(Find("abc"), nullptr);
  EXPECT_TRUE(testing::Exists(*install / "symbols/abc.sls"));
}

TEST_F(SymbolEditorNameTest, AnEmptyNameIsSavedAsItIs) {
  Reach(kSymName);
  ClickOn(sed->bsave);
  EXPECT_NE(Find(""), nullptr);
  EXPECT_TRUE(testing::Exists(*install / "symbols/.sls"));
}

TEST_F(SymbolEditorNameTest, ANameIsCutTo31Bytes) {
  Reach(kSymName);
  MoveIn(sed->txt->window, 100, 12);
  TypeText("abcdefghijklmnopqrstuvwxyzabcdefghijkl");
  ClickOn(sed->bsave);
  const std::string cut = "abcdefghijklmnopqrstuvwxyzabcde";
  EXPECT_NE(Find(cut), nullptr);
  EXPECT_TRUE(testing::Exists(*install / ("symbols/" + cut + ".sls")));
}

TEST_F(SymbolEditorNameTest, ANameWithASlashSelectsASubdirectory) {
  std::filesystem::create_directory(*install / "symbols/sub");
  Reach(kSymName);
  MoveIn(sed->txt->window, 100, 12);
  TypeText("sub/x");
  ClickOn(sed->bsave);
  EXPECT_FALSE(Shown(sed->window));
  EXPECT_TRUE(testing::Exists(*install / "symbols/sub/x.sls"));
}

TEST_F(SymbolEditorNameTest, ASaveThatFailsKeepsTheEditorOpenAndGivesTheReason) {
  const auto before = Names();
  Reach(kSymName);
  MoveIn(sed->txt->window, 100, 12);
  TypeText("no/x");
  testing::CaptureStderr();
  ClickOn(sed->bsave);
  const std::string error = testing::GetCapturedStderr();
  EXPECT_EQ(error, "Save Symbol: No such file or directory\n");
  EXPECT_TRUE(Shown(sed->window));
  EXPECT_EQ(sed->state, kSymName);
  EXPECT_EQ(sed->sym.npoints, 2);
  EXPECT_STREQ(TextEditorText(sed->txt), "no/x");
  EXPECT_EQ(Names(), before);
  EXPECT_EQ(sed->lst->nitems, 2);
  ASSERT_TRUE(Shown(notice->window));
  EXPECT_STREQ(notice->msgs[0], "The symbol was not saved.");
  EXPECT_STREQ(notice->msgs[1], "No such file or directory.");
  Shoot("editor-save-failed");
  // Another name, and the work is saved.
  ClickOn(notice->no);
  MoveIn(sed->txt->window, 100, 12);
  for (int i = 0; i < 4; i++) TypeKey(XK_BackSpace);
  TypeText("ok");
  ClickOn(sed->bsave);
  EXPECT_FALSE(Shown(sed->window));
  ASSERT_NE(Find("ok"), nullptr);
  EXPECT_EQ(Find("ok")->npoints, 2);
}

TEST_F(SymbolEditorNameTest, ASaveOverADirectoryFailsAndLeavesTheSymbolOfThatName) {
  std::filesystem::remove(*install / "symbols/Beta.sls");
  std::filesystem::create_directory(*install / "symbols/Beta.sls");
  Reach(kSymName);
  ClickIn(sed->lst->window, 20, 4 + sed->lst->itemheight + 2);
  ClickOn(sed->bsave);
  EXPECT_TRUE(Shown(sed->window));
  EXPECT_TRUE(Shown(notice->window));
  ASSERT_NE(Find("Beta"), nullptr);
  EXPECT_EQ(Find("Beta")->x[1], 16);
  ClickOn(notice->no);
}

TEST_F(SymbolEditorNameTest, AManyLinedListIsScrolled) {
  for (int i = 0; i < 60; i++) Store("n" + std::to_string(100 + i));
  LoadSymbols();
  RefreshSymbolNames(sed);
  ASSERT_EQ(sed->lst->nitems, 62);
  Reach(kSymName);
  Page(sed->sbar);
  EXPECT_GT(sed->lst->top, 0);
  Shoot("editor-many-names");
  ClickIn(sed->lst->window, 20, 8);
  EXPECT_STREQ(TextEditorText(sed->txt), sed->lst->items[sed->lst->top]);
}

// The library filled up to this many symbols.
class FullLibraryTest : public testing::SymbolEditorFixture {
 protected:
  void FillUp(int count) {
    int had = 0;
    delete[] UpdateSymbols(&had);
    for (int i = had; i < count; i++) Store("s" + std::to_string(i));
    ASSERT_EQ(LoadSymbols(), count);
    RefreshSymbolNames(sed);
  }
  void SaveAs(const std::string& name) {
    Reach(kSymName);
    MoveIn(sed->txt->window, 100, 12);
    TypeText(name);
    ClickOn(sed->bsave);
    EXPECT_FALSE(Shown(sed->window));
    EXPECT_TRUE(testing::Exists(*install / ("symbols/" + name + GromlitSymbolFileExt)));
  }
  // Whether the user was told that there are `count` symbols; closes the notice.
  bool Told(int count) {
    if (!Shown(notice->window)) return false;
    EXPECT_STREQ(notice->title, "Symbol Saved");
    EXPECT_EQ(notice->msgs[0],
              "The symbol was saved, but there are " + std::to_string(count) + " symbols now,");
    EXPECT_STREQ(notice->msgs[1], "and the choice of symbols shows only the first 512.");
    EXPECT_STREQ(notice->msgs[2], "Delete symbols that you do not need to see the others.");
    EXPECT_EQ(notice->msgs[3], nullptr);
    Shoot("editor-library-full");
    ClickOn(notice->no);
    return true;
  }
};

TEST_F(FullLibraryTest, TheEditorsListHasThemAll) {
  FillUp(522);
  EXPECT_EQ(sed->lst->nitems, 522);
}

TEST_F(FullLibraryTest, TheSymbolThatDoesNotFitTheChooserIsSavedAndTheUserTold) {
  FillUp(511);
  SaveAs("fits");
  EXPECT_FALSE(Told(512));
  SaveAs("beyond");
  EXPECT_TRUE(Told(513));
  EXPECT_EQ(Names().front(), "beyond") << "it is shown, and the last one is not";
  SaveAs("further");
  EXPECT_TRUE(Told(514));
}

TEST_F(FullLibraryTest, ReplacingAListedSymbolSaysNothing) {
  FillUp(520);
  SaveAs(Names()[511]);
  EXPECT_FALSE(Told(520));
}

TEST_F(FullLibraryTest, ReplacingAnUnlistedSymbolSaysSo) {
  FillUp(520);
  SaveAs(Names()[512]);
  EXPECT_TRUE(Told(520));
  EXPECT_EQ(Names().size(), 520u);
}

TEST_F(FullLibraryTest, ASaveThatFailsSaysOnlyThat) {
  FillUp(520);
  Reach(kSymName);
  MoveIn(sed->txt->window, 100, 12);
  TypeText("no/x");
  ClickOn(sed->bsave);
  ASSERT_TRUE(Shown(notice->window));
  EXPECT_STREQ(notice->msgs[0], "The symbol was not saved.");
  EXPECT_STREQ(notice->title, "Not Done");
  ClickOn(notice->no);
}

}  // namespace
}  // namespace gromlit
