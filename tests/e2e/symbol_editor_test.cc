// The symbol editor of the built program: vectors, icons, names, failed saves, and its window.
#include "tests/e2e/symbol_run.h"

#include <X11/keysym.h>
#include <signal.h>
#include <unistd.h>

namespace gromlit {
namespace {

namespace fs = std::filesystem;
using testing::Box;
using testing::Exists;
using testing::Icon;
using testing::kDown;
using testing::kEll;
using testing::kNext;
using testing::kRight;
using testing::Point;
using testing::ReadText;
using testing::Title;
using testing::WaitFor;

// kEll, its first point moved.
const std::vector<Point> kMoved = {{80, 80}, {16, 264}, {264, 264}};

class SymbolEditorRun : public testing::SymbolRun {
 protected:
  void TearDown() override {
    fs::permissions(*install / "symbols", fs::perms::owner_all);
    SymbolRun::TearDown();
  }
  // Moves the first point of kEll.
  void DragFirstPoint() {
    ASSERT_TRUE(Over(Area(), kEll[0].x, kEll[0].y));
    player->Press(1);
    ASSERT_TRUE(Over(Area(), kMoved[0].x, kMoved[0].y));
    EXPECT_TRUE(WaitSquare(kMoved[0]));
    player->Release(1);
    // Until the drag's grab is given back it has every press.
    EXPECT_TRUE(PointerBecomesFree());
  }
  // The notice of a save that failed, closed.
  void ExpectFailure(const std::string& reason) {
    EXPECT_TRUE(DialogReads({"The symbol was not saved.", reason})) << reason;
    Shoot("notice");
    EXPECT_EQ(Shown("SymbolEditor"), editor_);
    DialogRight();
  }
};

// --- The vector ---------------------------------------------------------------------------------

TEST_F(SymbolEditorRun, ClickingTheFirstPointAgainEndsWithAOnePointVectorAndAnEmptyIcon) {
  Open();
  OpenNew();
  DrawVector({{96, 64}});
  ClickIn(Area(), 200, 200);  // adds nothing
  NextStep();
  Shoot("icon");
  FinishStep();
  SaveAs("dot");
  ExpectSaved("dot", {{96, 64}}, Icon(32, std::string(32, '.')));
}

TEST_F(SymbolEditorRun, A65thPressAddsNothingAndThePressOnTheLastPointStillEnds) {
  std::vector<Point> points;
  points.reserve(64);
  for (int i = 0; i < 64; i++) points.push_back({24 + 32 * (i % 8), 24 + 32 * (i / 8)});
  Open();
  OpenNew();
  Place(points);
  ClickIn(Area(), 40, 40);  // the 65th
  ClickIn(Area(), 104, 72);
  // On the last one: now points can be dragged, and not before.
  ClickIn(Area(), points[63].x + 3, points[63].y - 3);
  ASSERT_TRUE(Over(Area(), points[0].x, points[0].y));
  player->Press(1);
  ASSERT_TRUE(Over(Area(), 16, 40));
  EXPECT_TRUE(WaitSquare({16, 40}));
  player->Release(1);
  Shoot("64");
  EXPECT_FALSE(HasSquare({104, 72}));
  points[0] = {16, 40};
  FinishAs("many");
  ExpectSaved("many", points, Drawn(points));
}

TEST_F(SymbolEditorRun, PointsAreDraggedOnTheGridAndInsideTheSquare) {
  Open();
  OpenNew();
  DrawVector(kVector);
  struct Drag {
    Point from;
    Point to;     // of the pointer
    Point point;  // where it is afterwards
  };
  const Drag drags[] = {{{41, 38}, {101, 75}, {104, 72}},       // the first
                        {{200, 43}, {250, 3}, {248, 16}},       // the middle one, out at the top
                        {{203, 200}, {275, 279}, {264, 264}}};  // the last, into the corner
  const Point corner = OriginOf(Area());
  for (const Drag& drag : drags) {
    ASSERT_TRUE(Over(Area(), drag.from.x, drag.from.y));
    player->Press(1);
    player->MoveTo(corner.x + drag.to.x, corner.y + drag.to.y);
    EXPECT_TRUE(WaitSquare(drag.point));
    player->Release(1);
  }
  // A press beside the points moves and adds nothing.
  ASSERT_TRUE(Over(Area(), 108, 72));
  player->Press(1);
  player->MoveTo(corner.x + 160, corner.y + 160);
  player->Release(1);
  Shoot("dragged");
  const std::vector<Point> points = {{104, 72}, {248, 16}, {264, 264}};
  FinishAs("dragged");
  ExpectSaved("dragged", points, Drawn(points));
}

// The drag's grab has every press until the program has read the release.
TEST_F(SymbolEditorRun, AQuickClickOnNextBehindADragIsNotLost) {
  Open();
  OpenNew();
  DrawVector(kEll);
  const Box next = BoxOf(Button(kNext));
  const Point corner = OriginOf(editor_);
  ASSERT_TRUE(Over(Area(), kEll[0].x, kEll[0].y));
  player->Press(1);
  ASSERT_TRUE(Over(Area(), kMoved[0].x, kMoved[0].y));
  EXPECT_TRUE(WaitSquare(kMoved[0]));
  gromlit->Kill(SIGSTOP);
  player->Release(1);
  player->MoveTo(corner.x + next.x + 10, corner.y + next.y + 10);
  player->Click(1);
  gromlit->Kill(SIGCONT);
  EXPECT_TRUE(ShowsStep(2));
  EXPECT_TRUE(PointerBecomesFree());
  FinishStep();
  SaveAs("quick");
  ExpectSaved("quick", kMoved, Drawn(kMoved));
}

TEST_F(SymbolEditorRun, TheRubberBandFollowsThePointerAndGoesWithTheEnd) {
  Open();
  OpenNew();
  Place({{40, 40}});
  const Point corner = OriginOf(Area());
  const auto black = [&](int x, int y) { return player->Pixel(corner.x + x, corner.y + y) == 0; };
  player->MoveTo(corner.x + 200, corner.y + 40);
  EXPECT_TRUE(WaitFor([&] { return black(120, 40); }));
  player->MoveTo(corner.x + 40, corner.y + 200);
  EXPECT_TRUE(WaitFor([&] { return black(40, 120) && !black(120, 40); }));
  Shoot("band");
  ClickIn(Area(), 40, 40);
  EXPECT_TRUE(WaitFor([&] { return !black(40, 120); }));
}

// --- The icon -----------------------------------------------------------------------------------

TEST_F(SymbolEditorRun, NextKeepsTheIconOfAnEditedSymbolAndRestartDrawsItAnew) {
  const std::vector<Point> hand = {{0, 31}, {15, 4}, {31, 0}};
  WriteSymbol("Ell", kEll, hand);
  Open();
  OpenEdit(0);
  NextStep();
  for (const Point& bit : hand)
    EXPECT_TRUE(WaitFor([&] { return HasBit(bit) == PreviewHasBit(bit); }));
  EXPECT_TRUE(HasBit({15, 4}));
  Shoot("kept");
  FinishStep();
  SaveAs("kept");
  ExpectSaved("kept", kEll, Drawn(kEll, hand));
  // The symbol saved last comes first.
  OpenEdit(0);
  NextStep();
  PressButton(testing::kRestart);
  EXPECT_TRUE(WaitFor([&] { return !HasBit({15, 4}) && !PreviewHasBit({15, 4}); }));
  Shoot("drawn");
  FinishStep();
  SaveAs("drawn");
  ExpectSaved("drawn", kEll, Drawn(kEll));
  ExpectSaved("Ell", kEll, Drawn(kEll, hand));
}

TEST_F(SymbolEditorRun, PixelsTurnOnAndOffUpToTheCornersOfTheIcon) {
  Open();
  OpenNew();
  DrawVector(kRight);
  NextStep();
  for (const Point& bit : {Point{0, 0}, Point{31, 31}, Point{31, 0}, Point{5, 5}, Point{5, 5}})
    Turn(bit);
  // Beside the grid of pixels the nearest one turns.
  ClickIn(Area(), 3, 279);
  EXPECT_TRUE(WaitFor([&] { return HasBit({0, 31}); }));
  Shoot("turned");
  FinishStep();
  SaveAs("turned");
  ExpectSaved("turned", kRight, Drawn(kRight, {{0, 0}, {31, 31}, {31, 0}, {0, 31}}));
}

// --- The name -----------------------------------------------------------------------------------

TEST_F(SymbolEditorRun, SavingUnderAnExistingNameReplacesThatSymbolOnce) {
  WriteSymbol("Alpha", kEll);
  WriteSymbol("Beta", kDown);
  WriteSymbol("Gamma", kRight);
  order_ = LibraryOrder();
  Open();
  OpenNew();
  DrawVector(kVector);
  NextStep();
  FinishStep();
  EXPECT_TRUE(ListsNames({"Alpha", "Beta", "Gamma"}));
  // Typed first, then picked: the field holds the picked name alone.
  Replace(Field(), "something else");
  ClickIn(Names(), 30, 4 + TextHeight() + TextHeight() / 2);
  EXPECT_TRUE(FieldReads(Field(), "Beta"));
  Shoot("picked");
  PressButton(testing::kSave);
  EXPECT_TRUE(WaitHidden("SymbolEditor"));
  EXPECT_EQ(SymbolFiles(), (std::vector<std::string>{"Alpha.sls", "Beta.sls", "Gamma.sls"}));
  ExpectSaved("Beta", kVector, Drawn(kVector));
  ExpectSaved("Alpha", kEll, Drawn(kEll));
  // Chooser and list show it once, in its place.
  Choose(Title::kSymbol, testing::kSymbolEdit);
  EXPECT_TRUE(Lists(0, 3));
  Shoot("chooser");
  const auto at = std::find(order_.begin(), order_.end(), "Beta") - order_.begin();
  ChooseSymbol(static_cast<int>(at));
  TakeEditor();
  for (const Point& point : kVector) EXPECT_TRUE(WaitSquare(point));
  NextStep();
  FinishStep();
  EXPECT_TRUE(ListsNames({"Alpha", "Beta", "Gamma"}));
  Enter(Field());
  player->Type(XK_Return);
  EXPECT_TRUE(WaitHidden("SymbolEditor"));
  ExpectSaved("Beta", kVector, Drawn(kVector));
}

TEST_F(SymbolEditorRun, ReturnInTheNameFieldSaves) {
  Open();
  OpenNew();
  DrawVector(kVector);
  NextStep();
  FinishStep();
  Replace(Field(), "By return");
  player->Type(XK_Return);
  EXPECT_TRUE(WaitHidden("SymbolEditor"));
  ExpectSaved("By return", kVector, Drawn(kVector));
  EXPECT_EQ(SymbolFiles(), std::vector<std::string>{"By return.sls"});
}

TEST_F(SymbolEditorRun, TheNameIsNotCheckedButCutTo31Bytes) {
  fs::create_directory(*install / "symbols/sub");
  Open();
  const auto save = [this](const std::string& name, const std::vector<Point>& points) {
    OpenNew();
    DrawVector(points);
    NextStep();
    FinishStep();
    SaveAs(name);
  };
  save("", kRight);
  ExpectSaved("", kRight, Drawn(kRight));
  const std::string cut = "0123456789abcdefghijABCDEFGHIJx";
  save(cut + "yz and what is behind it", kEll);
  ExpectSaved(cut, kEll, Drawn(kEll));
  save("sub/x", kDown);
  ExpectSaved("sub/x", kDown, Drawn(kDown));
  EXPECT_EQ(SymbolFiles(), (std::vector<std::string>{".sls", cut + ".sls", "sub"}));
  EXPECT_EQ(NamesIn(*install / "symbols/sub"), std::vector<std::string>{"x.sls"});
  // This run shows them all; the next start does not look below the directory.
  Choose(Title::kSymbol, testing::kSymbolEdit);
  EXPECT_TRUE(WaitCount(3));
  EXPECT_TRUE(WaitFor([this] { return ShowsName(0, "sub/x"); }));
  Shoot("three");
  DialogRight();
  StopGromlit();
  Open();
  Choose(Title::kSymbol, testing::kSymbolEdit);
  EXPECT_TRUE(WaitCount(2));
  Shoot("two");
  DialogRight();
  EXPECT_EQ(Err(), "");
}

// --- A save that fails --------------------------------------------------------------------------

TEST_F(SymbolEditorRun, ASaveToNoDirectoryKeepsTheEditorOpenUntilAnotherNameIsGiven) {
  Open();
  OpenNew();
  DrawVector(kVector);
  NextStep();
  FinishStep();
  Replace(Field(), "no/x");
  PressButton(testing::kSave);
  ExpectFailure("No such file or directory.");
  EXPECT_TRUE(ShowsStep(3));
  EXPECT_EQ(Err(), "Save Symbol: No such file or directory\n");
  EXPECT_TRUE(SymbolFiles().empty());
  SaveAs("yes");
  ExpectSaved("yes", kVector, Drawn(kVector));
}

TEST_F(SymbolEditorRun, ASaveToAReadOnlyDirectoryKeepsFileListAndWork) {
  WritePlugin("Default", {});  // which a start would make
  WriteSymbol("Old", kEll);
  const std::string before = ReadText(SymbolFile("Old"));
  // The installation directory may be entered by everybody, and written by its owner.
  fs::permissions(install->path(), fs::perms(0755));
  fs::permissions(*install / "symbols", fs::perms(0555));
  fs::permissions(SymbolFile("Old"), fs::perms(0444));
  testing::Conditions conditions;
  // Permissions do not keep the superuser out.
  if (geteuid() == 0) conditions.through = "setpriv --reuid=65534 --regid=65534 --clear-groups";
  Open(conditions);
  OpenEdit(0);
  DragFirstPoint();
  NextStep();
  FinishStep();
  for (const char* name : {"Old", "New"}) {
    SCOPED_TRACE(name);
    Replace(Field(), name);
    PressButton(testing::kSave);
    ExpectFailure("Permission denied.");
  }
  EXPECT_EQ(Err(), "Save Symbol: Permission denied\nSave Symbol: Permission denied\n");
  EXPECT_EQ(ReadText(SymbolFile("Old")), before);
  EXPECT_EQ(SymbolFiles(), std::vector<std::string>{"Old.sls"});
  EXPECT_TRUE(ListsNames({"Old"}));
  // Once it can be written the work is still there.
  fs::permissions(*install / "symbols", fs::perms::all);
  SaveAs("New");
  ExpectSaved("New", kMoved, Drawn(kEll));
  EXPECT_EQ(ReadText(SymbolFile("Old")), before);
}

TEST_F(SymbolEditorRun, ASaveToAFullDiskKeepsFileListAndWork) {
  WritePlugin("Default", {});
  WriteSymbol("Old", kEll);
  const std::string before = ReadText(SymbolFile("Old"));
  // A limit between the messages and a symbol file stands for the disk, and a device that is always
  // full for one that says so.
  fs::create_symlink("/dev/full", SymbolFile("Full"));
  Open({.through = "prlimit --fsize=300"});
  OpenEdit(0);
  DragFirstPoint();
  NextStep();
  FinishStep();
  PressButton(testing::kSave);
  ExpectFailure("File too large.");
  Replace(Field(), "Full");
  PressButton(testing::kSave);
  ExpectFailure("No space left on device.");
  EXPECT_EQ(Err(), "Save Symbol: File too large\nSave Symbol: No space left on device\n");
  EXPECT_EQ(ReadText(SymbolFile("Old")), before);
  EXPECT_EQ(SymbolFiles(), (std::vector<std::string>{"Full.sls", "Old.sls"}));
  EXPECT_TRUE(ListsNames({"Old"}));
  CancelEditor();
  // The library has the symbol as it was.
  OpenEdit(0);
  for (const Point& point : kEll) EXPECT_TRUE(WaitSquare(point));
  CancelEditor();
}

// --- The window ---------------------------------------------------------------------------------

TEST_F(SymbolEditorRun, ClosedByTheWindowManagerAndOpenedAgainItStartsAnew) {
  StartWindowManager("openbox");
  Open();
  for (const int state : {1, 2, 4, 5}) {
    SCOPED_TRACE(state);
    Reach(state);
    Close(editor_);
    EXPECT_TRUE(WaitHidden("SymbolEditor"));
  }
  EXPECT_TRUE(SymbolFiles().empty());
  EXPECT_TRUE(gromlit->Running());
  OpenNew();
  Shoot("anew");
  for (const Point& point : kVector) EXPECT_FALSE(HasSquare(point));
  EXPECT_FALSE(IsEnabled(testing::kPrev));
  DrawVector(kRight);
  NextStep();
  FinishStep();
  // The name that was typed before has gone as well.
  PressButton(testing::kSave);
  EXPECT_TRUE(WaitHidden("SymbolEditor"));
  ExpectSaved("", kRight, Drawn(kRight));
}

TEST_F(SymbolEditorRun, AnActionKeepsItsOwnCopyOfAnEditedSymbol) {
  WriteSymbol("Sign", kEll);
  WritePlugin("Desktop", {{"Sign", kEll, {Touch("acted")}}});
  const std::string plugin = ReadText(PluginFile("Desktop"));
  Open();
  OpenEdit(0);
  PressButton(testing::kClear);
  DrawVector(kRight);
  NextStep();
  FinishStep();
  PressButton(testing::kSave);
  EXPECT_TRUE(WaitHidden("SymbolEditor"));
  EXPECT_EQ(Saved("Sign").points, kRight);
  EXPECT_EQ(ReadText(PluginFile("Desktop")), plugin);
  Draw({{800, 900}, {1100, 900}});
  EXPECT_FALSE(Exists(MarkFile("acted")));
  Draw({{800, 700}, {800, 900}, {1000, 900}});
  EXPECT_TRUE(Appears("acted"));
}

}  // namespace
}  // namespace gromlit
