// The buttons of the symbol editor of the built program in each of its states.
#include "recognition/symbol_icon.h"
#include "tests/e2e/symbol_run.h"

namespace gromlit {
namespace {

namespace fs = std::filesystem;
using testing::Box;
using testing::EditorButton;
using testing::Exists;
using testing::Icon;
using testing::kEll;
using testing::Point;
using testing::WaitFor;

constexpr Point kFree = {120, 232};  // where no point of kVector is
constexpr const char* kPage = "help/symbol_editor.html";

// What is on the screen in a state: the step and the buttons that are shown and can be pressed.
struct Face {
  int step;
  std::string shown;    // H C R P N F S X, for Help to Cancel
  std::string enabled;  // of those
};

Face FaceOf(int state) {
  if (state < 4) return {1, "HCRPNX", "HCNX"};
  if (state == 4) return {2, "HCRPFX", "HCRPFX"};
  return {3, "HCRPSX", "HCRPSX"};
}

constexpr char kLetters[] = "HCRPNFSX";
constexpr int kClosed = -1;
constexpr int kCleared = 6;  // state 0 under the widgets of step 3

struct Walk {
  int state;            // 0..5, with the three points of kVector but in state 0
  EditorButton button;  // which is pressed there
  int next;             // state after it
  std::vector<Point> points;
  Icon icon;  // what is saved from there, after a click beside the points where that is possible
};

class SymbolEditorWalk : public testing::SymbolRun {
 protected:
  static std::vector<Walk> Walks() {
    const Icon empty = Drawn({});
    const Icon drawn = Drawn(kVector);
    const Icon hand = Drawn(kVector, {kBit});
    std::vector<Point> more = kVector;
    more.push_back(kFree);
    return {
        // A click places the first point.
        {0, testing::kHelp, 0, {kFree}, empty},
        {0, testing::kClear, 0, {kFree}, empty},
        {0, testing::kRestart, 0, {kFree}, empty},
        {0, testing::kPrev, 0, {kFree}, empty},
        {0, testing::kNext, 4, {}, empty},
        {0, testing::kCancel, kClosed, {}, {}},
        // It adds a point.
        {1, testing::kHelp, 1, more, Drawn(more)},
        {1, testing::kClear, 0, {kFree}, empty},
        {1, testing::kRestart, 1, more, Drawn(more)},
        {1, testing::kPrev, 1, more, Drawn(more)},
        {1, testing::kNext, 4, kVector, drawn},
        {1, testing::kCancel, kClosed, {}, {}},
        // It adds nothing.
        {2, testing::kHelp, 2, kVector, drawn},
        {2, testing::kClear, 0, {kFree}, empty},
        {2, testing::kRestart, 2, kVector, drawn},
        {2, testing::kPrev, 2, kVector, drawn},
        {2, testing::kNext, 4, kVector, drawn},
        {2, testing::kCancel, kClosed, {}, {}},
        // A bit of the icon was turned.
        {4, testing::kHelp, 4, kVector, hand},
        {4, testing::kClear, 4, kVector, empty},
        {4, testing::kRestart, 4, kVector, drawn},
        {4, testing::kPrev, 2, kVector, hand},
        {4, testing::kFinish, 5, kVector, hand},
        {4, testing::kCancel, kClosed, {}, {}},
        {5, testing::kHelp, 5, kVector, hand},
        {5, testing::kClear, kCleared, {}, hand},
        {5, testing::kRestart, 5, kVector, hand},
        {5, testing::kPrev, 4, kVector, hand},
        {5, testing::kSave, kClosed, kVector, hand},
        {5, testing::kCancel, kClosed, {}, {}},
    };
  }

  void ExpectFace(const Face& face) {
    EXPECT_TRUE(ShowsStep(face.step));
    const auto buttons = [&](bool (SymbolEditorWalk::*has)(EditorButton)) {
      std::string those;
      for (int i = testing::kHelp; i <= testing::kCancel; i++) {
        const auto button = static_cast<EditorButton>(i);
        if (IsShown(button) && (this->*has)(button)) those += kLetters[i];
      }
      return those;
    };
    WaitFor([&] { return buttons(&SymbolEditorWalk::IsShown) == face.shown; });
    EXPECT_EQ(buttons(&SymbolEditorWalk::IsShown), face.shown);
    WaitFor([&] { return buttons(&SymbolEditorWalk::IsEnabled) == face.enabled; });
    EXPECT_EQ(buttons(&SymbolEditorWalk::IsEnabled), face.enabled);
  }
  void ExpectStateShown(int state) {
    Face face = FaceOf(state == kCleared ? 5 : state);
    if (state == kCleared) face.step = 1;
    ExpectFace(face);
  }

  void Press(const Walk& walk) {
    if (FaceOf(walk.state).enabled.find(kLetters[walk.button]) != std::string::npos) {
      const int pages = Recorded(kPage);
      PressButton(walk.button);
      if (walk.button != testing::kHelp) return;
      EXPECT_TRUE(WaitFor([&] { return Recorded(kPage) == pages + 1; })) << "no page";
    } else {
      // A press on a grey button is nothing.
      ClickIn(Button(walk.button), 32, 12);
    }
  }
  // Goes on to the end. The name is there when state 5 was not left since it was typed.
  void SaveFrom(int state, bool named) {
    if (state < 4) {
      ClickIn(Area(), kFree.x, kFree.y);
      NextStep();
    }
    if (state <= 4) FinishStep();
    if (state <= 4 || !named) Replace(Field(), "walk");
    Save();
  }
  // Leaves the last step. A symbol without points asks before it replaces one of its name, as that
  // of an earlier way does.
  void Save() {
    PressButton(testing::kSave);
    EXPECT_TRUE(WaitFor([this] { return Dialog() != 0 || Shown("SymbolEditor") == 0; }));
    if (Dialog() != 0) DialogLeft();
    EXPECT_TRUE(WaitHidden("SymbolEditor"));
  }
  void Take(const Walk& walk) {
    const std::string name = std::to_string(walk.state) + "-" + kLetters[walk.button];
    SCOPED_TRACE("state " + name);
    fs::remove(SymbolFile("walk"));
    Reach(walk.state);
    ExpectStateShown(walk.state);
    Press(walk);
    if (walk.next == kClosed) {
      EXPECT_TRUE(WaitHidden("SymbolEditor"));
    } else {
      ExpectStateShown(walk.next);
      Shoot(name);
      SaveFrom(walk.next, walk.state == 5);
    }
    if (walk.button == testing::kCancel) {
      EXPECT_FALSE(Exists(SymbolFile("walk")));
    } else {
      ExpectSaved("walk", walk.points, walk.icon);
    }
  }
  void TakeAllOf(int state) {
    Open();
    int count = 0;
    for (const Walk& walk : Walks()) {
      if (walk.state != state) continue;
      Take(walk);
      count++;
      if (HasFatalFailure()) return;
    }
    EXPECT_EQ(count, 6) << "every button that is shown";
    EXPECT_EQ(Err(), "");
  }
};

TEST_F(SymbolEditorWalk, EveryButtonInState0WithoutAPoint) {
  TakeAllOf(0);
}
TEST_F(SymbolEditorWalk, EveryButtonInState1WhileCapturing) {
  TakeAllOf(1);
}
TEST_F(SymbolEditorWalk, EveryButtonInState2WithTheVectorComplete) {
  TakeAllOf(2);
}
TEST_F(SymbolEditorWalk, EveryButtonInState4WithTheBitmap) {
  TakeAllOf(4);
}
TEST_F(SymbolEditorWalk, EveryButtonInState5WithTheName) {
  TakeAllOf(5);
}

TEST_F(SymbolEditorWalk, EveryButtonInState3IsOutOfReachWhileAPointIsDragged) {
  Open();
  Reach(2);
  const Point corner = OriginOf(Area());
  for (int i = testing::kHelp; i <= testing::kCancel; i++) {
    const auto button = static_cast<EditorButton>(i);
    if (FaceOf(3).shown.find(kLetters[i]) == std::string::npos) continue;
    SCOPED_TRACE(kLetters[i]);
    // The point follows the pointer down to the edge and to the button's column.
    const Box box = BoxOf(Button(button));
    const Point there = {grid(box.x + 32 - 16), 264};
    ASSERT_TRUE(Over(Area(), kVector[1].x, kVector[1].y));
    player->Press(1);
    ASSERT_TRUE(Over(Button(button), 32, 12));
    EXPECT_TRUE(WaitSquare(there));
    EXPECT_FALSE(player->CanGrabPointer());
    ExpectStateShown(3);
    Shoot(std::string(1, kLetters[i]));
    // Back again; a release over the button would end the dragging there just as well.
    player->MoveTo(corner.x + kVector[1].x, corner.y + kVector[1].y);
    EXPECT_TRUE(WaitSquare(kVector[1]));
    EXPECT_FALSE(HasSquare(there));
    player->Release(1);
    EXPECT_TRUE(PointerBecomesFree());
  }
  // The last time the button is clicked on in the middle of the dragging, which that ends.
  ASSERT_TRUE(Over(Area(), kVector[1].x, kVector[1].y));
  player->Press(1);
  ASSERT_TRUE(Over(Button(testing::kCancel), 32, 12));
  EXPECT_TRUE(WaitSquare({264, 264}));
  player->Click(2);
  player->Release(1);
  EXPECT_TRUE(PointerBecomesFree());
  ExpectStateShown(2);
  EXPECT_EQ(Recorded(kPage), 0);
  const std::vector<Point> moved = {kVector[0], {264, 264}, kVector[2]};
  FinishAs("walk");
  ExpectSaved("walk", moved, Drawn(moved));
}

TEST_F(SymbolEditorWalk, PrevWithoutAPointLeadsBackToState0) {
  Open();
  OpenNew();
  NextStep();
  ExpectStateShown(4);
  PressButton(testing::kPrev);
  ExpectStateShown(0);
  DrawVector(kVector);
  FinishAs("later");
  ExpectSaved("later", kVector, Drawn(kVector));
}

TEST_F(SymbolEditorWalk, AfterClearInStepThreeOnlySaveAndCancelLeadOn) {
  Open();
  Reach(5);
  PressButton(testing::kClear);
  ExpectStateShown(kCleared);
  PressButton(testing::kPrev);
  PressButton(testing::kRestart);
  PressButton(testing::kClear);
  ExpectStateShown(kCleared);
  PressButton(testing::kSave);
  EXPECT_TRUE(WaitHidden("SymbolEditor"));
  ExpectSaved("walk", {}, Drawn(kVector, {kBit}));
}

TEST_F(SymbolEditorWalk, EveryStepExplainsItself) {
  const std::vector<std::vector<std::string>> lines = {
      {"Create the symbol by clicking", "and dragging the mouse.", "",
       "Click again on the last point", "to stop capture of the vector format.", "",
       "Once completed, you can modify", "the shape by clicking and dragging", "the black squares.",
       "", "The vector data is used to recognize", "the symbol."},
      {"Create the symbol icon bitmap.", "", "Turn on or off a pixel by", "clicking on the pixel.",
       "", "The icon is not used to", "recognize the symbol."},
      {"Enter the symbol name.", "", "To edit the name, place the mouse", "into the edit area.", "",
       "Click the Save button or hit", "the Return key to save."}};
  Open();
  OpenNew();
  DrawVector(kEll);
  for (int step = 1; step <= 3; step++) {
    SCOPED_TRACE(step);
    EXPECT_TRUE(ShowsStep(step));
    int baseline = 100 + TextHeight();
    for (const std::string& line : lines[static_cast<size_t>(step) - 1]) {
      EXPECT_TRUE(WaitFor([&] { return ShowsText(editor_, 320, baseline, line); })) << line;
      baseline += TextHeight();
    }
    Shoot(std::to_string(step));
    if (step == 1) NextStep();
    if (step == 2) FinishStep();
  }
  const Window window = editor_;
  EXPECT_EQ(BoxOf(window).width, 560);
  EXPECT_EQ(BoxOf(window).height, 454);
  char* title = nullptr;
  ASSERT_NE(XFetchName(player->display(), window, &title), 0);
  EXPECT_STREQ(title, "Gromlit: Symbol Editor");
  XFree(title);
}

}  // namespace
}  // namespace gromlit
