// First: the test library's headers do not stand Xlib's macros.
#include "tests/x11/app/main_window_fixture.h"
#include "tests/x11/app/symbol_editor_fixture.h"

#include <X11/Xutil.h>

#include "display/scale.h"

namespace gromlit {
namespace {

using testing::Picture;
using testing::Place;

// The windows as start-up makes them at scale 2. Places that begin with "device" are pixels of the
// screen.

class DoubleSymbolEditorTest : public testing::SymbolEditorFixture {
 protected:
  void SetUp() override {
    UseScale(2);
    server = std::make_unique<testing::XServer>("2560x1440x24");
    SymbolEditorFixture::SetUp();
  }
  void TearDown() override {
    SymbolEditorFixture::TearDown();
    UseScale(1);
  }

  using Corners = std::vector<std::pair<int, int>>;

  // What the screen shows around a logical pixel, as one colour; fails where it is not one.
  unsigned long Block(int x, int y) {
    const Picture seen = Take(area->window, 2 * x, 2 * y, 2, 2);
    EXPECT_EQ(seen, Picture(2, 2, seen.At(0, 0))) << "at " << x << ", " << y;
    return seen.At(0, 0);
  }
};

TEST_F(DoubleSymbolEditorTest, PointsComeToLieOnTheGridBelowThePointer) {
  Open();
  XWindowAttributes is;
  XGetWindowAttributes(dpy, area->window, &is);
  EXPECT_EQ(is.width, 2 * kSymWindowSize);
  // 83 of the screen is 41, which is nearest to 40.
  ClickIn(area->window, 83, 79);
  ClickIn(area->window, 400, 80);
  ClickIn(area->window, 401, 400);
  ClickIn(area->window, 400, 400);
  EXPECT_EQ(Points(), (Corners{{40, 40}, {200, 40}, {200, 200}}));
  EXPECT_EQ(sed->state, kSymComplete);
  MoveIn(area->window, 300, 20);
  EXPECT_EQ(Block(36, 36), kBlack) << "the square of a point";
  EXPECT_EQ(Block(43, 43), kBlack);
  EXPECT_EQ(Block(35, 35), kWhite);
  EXPECT_EQ(Block(44, 44), kWhite);
  EXPECT_EQ(Block(120, 40), kBlack) << "the line";
  EXPECT_EQ(Block(120, 41), kWhite);
}

TEST_F(DoubleSymbolEditorTest, APointIsDraggedAndNothingIsLeftOfIt) {
  Open();
  for (const auto& [x, y] : {std::pair{80, 80}, {400, 144}, {400, 400}, {400, 400}})
    ClickIn(area->window, x, y);
  ASSERT_EQ(sed->state, kSymComplete);
  MoveIn(area->window, 401, 145);
  player->Press(1);
  Pump();
  for (int y = 145; y >= 81; y -= 16) MoveIn(area->window, 401, y);
  player->Release(1);
  Pump();
  EXPECT_EQ(Points(), (Corners{{40, 40}, {200, 40}, {200, 200}}));
  MoveIn(area->window, 300, 20);
  const Picture before = Take(area->window, 0, 0, 2 * kSymWindowSize, 2 * kSymWindowSize);
  DrawSymWindow(area);
  EXPECT_TRUE(before == Take(area->window, 0, 0, 2 * kSymWindowSize, 2 * kSymWindowSize));
}

TEST_F(DoubleSymbolEditorTest, TheRubberBandLeavesNothing) {
  Open();
  ClickIn(area->window, 80, 80);
  for (const auto& [x, y] : {std::pair{400, 200}, {300, 420}, {80, 300}, {480, 480}})
    MoveIn(area->window, x, y);
  const Picture before = Take(area->window, 0, 0, 2 * kSymWindowSize, 2 * kSymWindowSize);
  DrawSymWindow(area);
  EXPECT_TRUE(before == Take(area->window, 0, 0, 2 * kSymWindowSize, 2 * kSymWindowSize));
}

TEST_F(DoubleSymbolEditorTest, ABitOfTheIconIsTurned) {
  Open();
  for (const auto& [x, y] : {std::pair{80, 80}, {400, 80}, {400, 80}}) ClickIn(area->window, x, y);
  ClickIn(sed->bnext->window, sed->bnext->width, sed->bnext->height);
  ASSERT_EQ(sed->state, kSymBitmap);
  // The cell in column 3 of row 25.
  ClickIn(area->window, 2 * (12 + 3 * 8 + 4), 2 * (12 + 25 * 8 + 4));
  EXPECT_NE(iconGet(&sed->sym, 3, 25), 0);
  EXPECT_EQ(Block(12 + 3 * 8 + 1, 12 + 25 * 8 + 1), kBlue);
  EXPECT_EQ(Block(12 + 3 * 8 + 7, 12 + 25 * 8 + 7), kBlue);
  EXPECT_EQ(Block(12 + 4 * 8, 12 + 25 * 8 + 1), kLightGrey);
}

class DoubleMainWindowTest : public testing::MainWindowFixture {
 protected:
  void SetUp() override {
    UseScale(2);
    server = std::make_unique<testing::XServer>("2560x1440x24");
    MainWindowFixture::SetUp();
  }
  void TearDown() override {
    MainWindowFixture::TearDown();
    UseScale(1);
  }

  // A click on a device pixel of the main window's inside, which has a border of two.
  void ClickDevice(int x, int y, int button = 1) {
    AppLastClick = 0;
    player->MoveTo(2 + x, 2 + y);
    player->Click(button);
    Pump();
  }
};

TEST_F(DoubleMainWindowTest, TheWindowAndItsHintsAreTwiceAsLarge) {
  EXPECT_EQ(PlaceOf(app->window), (Place{0, 0, 2 * app->width, 2 * app->height}));
  XSizeHints hints{};
  long given;
  ASSERT_NE(XGetWMNormalHints(dpy, app->window, &hints, &given), 0);
  EXPECT_EQ(hints.min_width, 2 * app->width);
  EXPECT_EQ(hints.max_height, 2 * app->height);
  EXPECT_EQ(cell, 2 * 13 + 40) << "lines are as high as at scale 1";
}

TEST_F(DoubleMainWindowTest, AClickSelectsTheActionBelowIt) {
  ShowNew(18);
  for (const int n : {0, 5, 6, 14, 17}) {
    ClickDevice(2 * (CellX(n) + 32), 2 * (CellY(n) + 20));
    EXPECT_EQ(app->selected, n);
    const int x = 2 * (CellX(n) + 4);
    EXPECT_EQ(PixelOf(app->window, x, 2 * (CellY(n) + 8)), kBlack) << "its highlight";
    EXPECT_EQ(PixelOf(app->window, x, 2 * (CellY(n) + 5)), kWhite);
  }
  // The last device pixel of a cell, and the first of the next one.
  ClickDevice(2 * CellX(3) - 1, 2 * (CellY(2) + 20));
  EXPECT_EQ(app->selected, 2);
  ClickDevice(2 * CellX(3), 2 * (CellY(2) + 20));
  EXPECT_EQ(app->selected, 3);
}

TEST_F(DoubleMainWindowTest, ThePopupOpensAtThePointer) {
  ShowNew(2);
  const int x = 2 + 2 * (CellX(1) + 32);
  const int y = 2 + 2 * (CellY(1) + 20);
  player->MoveTo(x, y);
  player->Press(3);
  ASSERT_TRUE(PumpUntil([&] { return Viewable(app->popup->window); }));
  const Place at = PlaceOf(app->popup->window);
  EXPECT_EQ(at.x, x / 2 * 2);
  EXPECT_EQ(at.y, y / 2 * 2);
  player->MoveTo(1, 1);
  player->Release(3);
  Pump();
}

TEST_F(DoubleMainWindowTest, DialogsAreCentredOnThePointer) {
  MakeEditNameDialog(nullptr);
  player->MoveTo(1200, 700);
  Pump();
  MousePopUpDialog(editname, "Name");
  Pump();
  const Place at = PlaceOf(editname->window);
  EXPECT_NEAR(at.x + at.width / 2, 1200, 2);
  EXPECT_NEAR(at.y + at.height / 2, 700, 2);
  EXPECT_EQ(at.width, 2 * editname->width);
  player->MoveTo(2559, 1439);
  Pump();
  MousePopUpDialog(editname, "Name");
  Pump();
  const Place corner = PlaceOf(editname->window);
  EXPECT_EQ(corner.x + corner.width, 2560) << "kept on the screen";
  EXPECT_EQ(corner.y + corner.height, 1440);
}

}  // namespace
}  // namespace gromlit
