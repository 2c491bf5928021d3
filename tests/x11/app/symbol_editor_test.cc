#include "tests/x11/app/symbol_fixture.h"

#include <X11/Xatom.h>
#include <gmock/gmock.h>

#include <climits>
#include <cstring>
#include <functional>
#include <random>

#include "app/symbol_editor_buttons.h"
#include "app/symbol_library.h"
#include "display/x_handles.h"
#include "tests/x11/toolkit/request_cost.h"
#include "toolkit/bevel.h"

namespace gromlit {
namespace {

using testing::CostOf;
using ::testing::ElementsAre;
using testing::Picture;

class SymbolEditorTest : public testing::SymbolFixture {
 protected:
  void SetUp() override {
    SymbolFixture::SetUp();
    if (HasFatalFailure()) return;
    Store("Beta", {{16, 264}, {264, 16}});
    Store("Alpha", {{16, 16}, {16, 264}, {264, 264}});
    MakeWindows();
    area = sed->wsym;
  }

  void Open(const GromlitSymbol* sym = nullptr) {
    SymInit(sed, sym);
    Pump();
    ASSERT_TRUE(PumpUntil([this] { return Shown(sed->window); }));
  }

  // Draws a vector by clicks and ends it with another click on its last point.
  void Draw(std::vector<std::pair<int, int>> points, bool ended = true) {
    for (const auto& [x, y] : points) ClickIn(area->window, x, y);
    if (ended) ClickIn(area->window, grid(points.back().first), grid(points.back().second));
  }

  // Brings the editor to a state by the user's hands.
  void Reach(int state) {
    Open();
    if (state == kSymEmpty) return;
    Draw({{40, 40}, {200, 40}}, state != kSymCapturing);
    if (state == kSymDragging) {
      MoveIn(area->window, 41, 40);
      player->Press(1);
      Pump();
    }
    if (state >= kSymBitmap) ClickOn(sed->bnext);
    if (state == kSymName) ClickOn(sed->bfinish);
    ASSERT_EQ(sed->state, state);
  }

  std::vector<std::pair<int, int>> Points() const {
    std::vector<std::pair<int, int>> points;
    for (int k = 1; k <= sed->sym.npoints; k++) points.emplace_back(sed->sym.x[k], sed->sym.y[k]);
    return points;
  }

  Picture Area() { return Take(area->window, 0, 0, kSymWindowSize, kSymWindowSize); }

  // What is on the screen must be what a redraw brings.
  void ExpectAsRedrawn() {
    const Picture before = Area();
    DrawSymWindow(area);
    EXPECT_TRUE(before == Area()) << "state " << sed->state;
  }

  static Picture EmptyArea() {
    Picture picture(kSymWindowSize, kSymWindowSize, kWhite);
    picture.Bevel(kDarkGrey, kWhite, 0, 0, kSymWindowSize, kSymWindowSize);
    return picture;
  }

  static Picture VectorArea() {
    Picture picture = EmptyArea();
    for (const int at : {15, 265}) {
      const int end = at == 15 ? 8 : 272;
      for (const int other : {15, 265}) {
        picture.Line(kLightGrey, at, other, end, other);
        picture.Line(kLightGrey, other, at, other, end);
      }
    }
    return picture;
  }

  void Square(Picture* picture, int x, int y) { picture->Fill(kBlack, x - 4, y - 4, 8, 8); }

  static XEvent Motion(int x, int y, unsigned state = 0) {
    XEvent event{};
    event.xmotion.type = MotionNotify;
    event.xmotion.x = x;
    event.xmotion.y = y;
    event.xmotion.state = state;
    return event;
  }

  SymWindow* area = nullptr;
};

TEST_F(SymbolEditorTest, WindowManagersSeeTitleClassSizeAndTheCloseProtocol) {
  char* text = nullptr;
  ASSERT_NE(XFetchName(dpy, sed->window, &text), 0);
  const XData<char> title(text);
  EXPECT_STREQ(title.get(), "Gromlit: Symbol Editor");
  XClassHint hint{};
  ASSERT_NE(XGetClassHint(dpy, sed->window, &hint), 0);
  const XData<char> name(hint.res_name);
  const XData<char> part(hint.res_class);
  EXPECT_STREQ(name.get(), "SymbolEditor");
  EXPECT_STREQ(part.get(), "Gromlit");
  XSizeHints size{};
  long supplied = 0;
  ASSERT_NE(XGetWMNormalHints(dpy, sed->window, &size, &supplied), 0);
  EXPECT_EQ(size.min_width, 560);
  EXPECT_EQ(size.max_width, 560);
  EXPECT_EQ(size.min_height, 454);
  EXPECT_EQ(size.max_height, 454);
  Atom* protocols = nullptr;
  int count = 0;
  ASSERT_NE(XGetWMProtocols(dpy, sed->window, &protocols, &count), 0);
  const XData<Atom> owned(protocols);
  ASSERT_EQ(count, 1);
  EXPECT_EQ(protocols[0], wm_delete);
  XWindowAttributes attributes;
  XGetWindowAttributes(dpy, sed->window, &attributes);
  EXPECT_EQ(attributes.width, 560);
  EXPECT_EQ(attributes.height, 454);
}

TEST_F(SymbolEditorTest, IsMadeHiddenWithEveryWidgetInItsPlace) {
  EXPECT_FALSE(Shown(sed->window));
  struct Place {
    Window window;
    int x, y, width, height;
  };
  const Place places[] = {
      {sed->logo->window, 16, 16, 528, 61},      {area->window, 16, 100, 280, 280},
      {sed->txt->window, 16, 100, 280, 24},      {sed->icon->window, 312, 340, 40, 40},
      {sed->sbar->window, 280, 136, 15, 243},    {sed->lst->window, 16, 135, 256, 243},
      {sed->bhelp->window, 16, 414, 64, 24},     {sed->bclear->window, 144, 414, 64, 24},
      {sed->brestart->window, 224, 414, 64, 24}, {sed->bprev->window, 320, 414, 64, 24},
      {sed->bnext->window, 400, 414, 64, 24},    {sed->bfinish->window, 400, 414, 64, 24},
      {sed->bsave->window, 400, 414, 64, 24},    {sed->bcancel->window, 480, 414, 64, 24},
  };
  for (const Place& place : places) {
    XWindowAttributes attributes;
    XGetWindowAttributes(dpy, place.window, &attributes);
    EXPECT_EQ(attributes.x, place.x);
    EXPECT_EQ(attributes.y, place.y) << place.x;
    EXPECT_EQ(attributes.width, place.width) << place.x;
    EXPECT_EQ(attributes.height, place.height) << place.x;
  }
  EXPECT_STREQ(sed->logo->title, "S y m b o l    E d i t o r");
  EXPECT_STREQ(sed->bhelp->label, "Help");
  EXPECT_STREQ(sed->bclear->label, "Clear");
  EXPECT_STREQ(sed->brestart->label, "Restart");
  EXPECT_STREQ(sed->bprev->label, "Prev");
  EXPECT_STREQ(sed->bnext->label, "Next");
  EXPECT_STREQ(sed->bfinish->label, "Finish");
  EXPECT_STREQ(sed->bsave->label, "Save");
  EXPECT_STREQ(sed->bcancel->label, "Cancel");
  EXPECT_EQ(sed->bprev->state, kButtonInactive);
  EXPECT_EQ(sed->brestart->state, kButtonInactive);
  // The compound that is never shown takes its entries all the same.
  EXPECT_EQ(FindWindowObj(sed->select->window)->obj, sed->select);
  EXPECT_EQ(sed->select->lst->nitems, 2);
  EXPECT_FALSE(Shown(sed->select->window));
}

TEST_F(SymbolEditorTest, LoadsTheLibraryAndListsItsNamesSorted) {
  ASSERT_EQ(sed->lst->nitems, 2);
  EXPECT_STREQ(sed->lst->items[0], "Alpha");
  EXPECT_STREQ(sed->lst->items[1], "Beta");
}

TEST_F(SymbolEditorTest, OpensEmptyWithoutASymbol) {
  Open();
  EXPECT_EQ(sed->state, kSymEmpty);
  EXPECT_EQ(sed->sym.npoints, 0);
  EXPECT_STREQ(sed->sym.name, "");
  EXPECT_EQ(area->onpt, 0);
  for (const uint32_t row : sed->sym.icon) EXPECT_EQ(row, 0U);
  EXPECT_TRUE(Shown(area->window));
  EXPECT_TRUE(Shown(sed->bnext->window));
  for (const Window hidden : {sed->bfinish->window, sed->bsave->window, sed->icon->window,
                              sed->txt->window, sed->sbar->window, sed->lst->window}) {
    EXPECT_FALSE(Shown(hidden));
  }
  EXPECT_EQ(Area(), VectorArea());
}

TEST_F(SymbolEditorTest, OpensOnAWholeCopyOfASymbol) {
  GromlitSymbol sym = Symbol("Full", {});
  sym.npoints = kMaxPoints;
  for (int k = 1; k <= kMaxPoints; k++) {
    sym.x[k] = static_cast<uint16_t>(16 + 8 * (k % 32));
    sym.y[k] = static_cast<uint16_t>(16 + 8 * (k / 8));
  }
  sym.spare = 77;
  char signature[] = "ab";
  sym.signature = signature;
  Open(&sym);
  EXPECT_EQ(sed->state, kSymComplete);
  EXPECT_STREQ(sed->sym.name, "Full");
  EXPECT_EQ(sed->sym.npoints, kMaxPoints);
  EXPECT_EQ(sed->sym.x[64], sym.x[64]);
  EXPECT_EQ(sed->sym.y[64], sym.y[64]);
  EXPECT_EQ(sed->sym.spare, 77U);
  EXPECT_EQ(sed->sym.signature, nullptr);  // INV-SYMBOL-1
  sed->sym.x[1] = 24;
  EXPECT_EQ(sym.x[1], 24);
  sed->sym.x[1] = 32;
  EXPECT_EQ(sym.x[1], 24) << "the original was changed";
}

TEST_F(SymbolEditorTest, OpeningRaisesTheWindow) {
  Open();
  XRaiseWindow(dpy, top);  // covers a part of the editor
  MoveIn(top, 10, 10);
  ASSERT_EQ(player->Where().child, top);
  Open();
  EXPECT_EQ(player->Where().child, sed->window);
}

TEST_F(SymbolEditorTest, OpeningForgetsWhatWasEdited) {
  Reach(kSymName);
  Open();
  EXPECT_EQ(sed->state, kSymEmpty);
  EXPECT_EQ(sed->sym.npoints, 0);
  EXPECT_EQ(sed->bprev->state, kButtonInactive);
  EXPECT_EQ(sed->brestart->state, kButtonInactive);
  EXPECT_TRUE(Shown(sed->bnext->window));
  EXPECT_FALSE(Shown(sed->bsave->window));
  EXPECT_FALSE(Shown(sed->lst->window));
  EXPECT_EQ(Area(), VectorArea());
}

TEST_F(SymbolEditorTest, BeforeThereIsAnEditorOpeningDoesNothing) {
  const GromlitSymbol sym = Symbol("A", {});
  SymInit(nullptr, &sym);
  SymInit(nullptr, nullptr);
  EXPECT_FALSE(Shown(sed->window));
}

TEST_F(SymbolEditorTest, EachStepShowsItsTitleAndItsLines) {
  struct Text {
    int state;
    const char* title;
    std::vector<const char*> lines;
  };
  const std::vector<const char*> vector = {"Create the symbol by clicking",
                                           "and dragging the mouse.",
                                           "",
                                           "Click again on the last point",
                                           "to stop capture of the vector format.",
                                           "",
                                           "Once completed, you can modify",
                                           "the shape by clicking and dragging",
                                           "the black squares.",
                                           "",
                                           "The vector data is used to recognize",
                                           "the symbol."};
  const Text texts[] = {
      {kSymEmpty, "Step 1: Edit Vector Format:", vector},
      {kSymCapturing, "Step 1: Edit Vector Format:", vector},
      {kSymComplete, "Step 1: Edit Vector Format:", vector},
      {kSymBitmap,
       "Step 2: Edit Bitmap Format:",
       {"Create the symbol icon bitmap.", "", "Turn on or off a pixel by", "clicking on the pixel.",
        "", "The icon is not used to", "recognize the symbol."}},
      {kSymName,
       "Step 3: Save Symbol As:",
       {"Enter the symbol name.", "", "To edit the name, place the mouse", "into the edit area.",
        "", "Click the Save button or hit", "the Return key to save."}},
  };
  const GC gc = XCreateGC(dpy, root, 0, nullptr);
  XSetFont(dpy, gc, txtFont);
  XSetForeground(dpy, gc, black.pixel);
  for (const Text& text : texts) {
    Reach(text.state);
    Shoot("editor-state-" + std::to_string(text.state));
    const Picture title = Take(sed->window, 0, 80, 560, 19);
    const Picture lines = Take(sed->window, 310, 100, 250, 230);
    const Window sheet = MakeChildWindow(root, 600, 0, 560, 454, lgrey.pixel, 0);
    XSetWindowAttributes attributes;
    attributes.override_redirect = True;
    XChangeWindowAttributes(dpy, sheet, CWOverrideRedirect, &attributes);
    XMapRaised(dpy, sheet);
    DrawText(sheet, gc, 16, 96, text.title);
    int baseline = 100 + txtCharht;
    for (const char* line : text.lines) {
      DrawText(sheet, gc, 320, baseline, line);
      baseline += txtCharht;
    }
    EXPECT_EQ(Take(sheet, 0, 80, 560, 19), title) << text.state;
    EXPECT_EQ(Take(sheet, 310, 100, 250, 230), lines) << text.state;
    XDestroyWindow(dpy, sheet);
  }
  XFreeGC(dpy, gc);
}

// --- Step 1 -------------------------------------------------------------------------------------

TEST_F(SymbolEditorTest, TheFirstPressMakesPointOneOnTheGrid) {
  Open();
  ClickIn(area->window, 43, 60);
  EXPECT_EQ(sed->state, kSymCapturing);
  EXPECT_THAT(Points(), ElementsAre(std::pair(40, 64)));
  Picture expected = VectorArea();
  Square(&expected, 40, 64);
  EXPECT_EQ(Area(), expected);
}

TEST_F(SymbolEditorTest, PressesOutsideTheUsableSquareAreSnappedToItsEdge) {
  Open();
  Draw({{0, 3}, {279, 1}, {279, 279}, {2, 279}}, false);
  EXPECT_THAT(Points(), ElementsAre(std::pair(16, 16), std::pair(264, 16), std::pair(264, 264),
                                    std::pair(16, 264)));
  ExpectAsRedrawn();
}

TEST_F(SymbolEditorTest, ClickingTheFirstPointAgainAtOnceMakesAOnePointVector) {
  Open();
  Draw({{100, 100}});
  EXPECT_EQ(sed->state, kSymComplete);
  EXPECT_EQ(sed->sym.npoints, 1);
  ClickOn(sed->bnext);
  for (const uint32_t row : sed->sym.icon) EXPECT_EQ(row, 0U);
}

TEST_F(SymbolEditorTest, APressWithinThreePixelsOfTheLastPointEndsTheCapture) {
  for (const auto& [dx, dy] : std::vector<std::pair<int, int>>{{3, 3}, {-3, -3}, {3, -3}, {0, 0}}) {
    Open();
    Draw({{40, 40}, {120, 200}}, false);
    ClickIn(area->window, 120 + dx, 200 + dy);
    EXPECT_EQ(sed->state, kSymComplete) << dx << " " << dy;
    EXPECT_EQ(sed->sym.npoints, 2);
    ExpectAsRedrawn();
  }
}

TEST_F(SymbolEditorTest, APressFourPixelsFromTheLastPointAddsAPoint) {
  Open();
  Draw({{40, 40}}, false);
  ClickIn(area->window, 44, 40);
  EXPECT_EQ(sed->state, kSymCapturing);
  EXPECT_THAT(Points(), ElementsAre(std::pair(40, 40), std::pair(48, 40)));
  ClickIn(area->window, 48, 36);
  EXPECT_THAT(Points(), ElementsAre(std::pair(40, 40), std::pair(48, 40), std::pair(48, 40)));
}

TEST_F(SymbolEditorTest, APressOnAnEarlierPointAddsAPointThere) {
  Open();
  Draw({{40, 40}, {120, 40}, {40, 40}}, false);
  EXPECT_EQ(sed->state, kSymCapturing);
  EXPECT_EQ(sed->sym.npoints, 3);
}

TEST_F(SymbolEditorTest, TheRubberBandFollowsThePointerAndLeavesNothingBehind) {
  Open();
  ClickIn(area->window, 40, 40);
  const Picture bare = Area();
  MoveIn(area->window, 120, 41);
  EXPECT_EQ(area->lastx, 120);
  EXPECT_EQ(area->lasty, 40);
  Picture expected = VectorArea();
  Square(&expected, 40, 40);
  // From the point it inverts: the half that lies in the point's square turns white.
  for (int x = 40; x <= 120; x++) expected.At(x, 40) = x <= 43 ? kWhite : kBlack;
  EXPECT_EQ(Area(), expected);
  ExpectAsRedrawn();
  MoveIn(area->window, 200, 170);
  MoveIn(area->window, 3, 260);
  ExpectAsRedrawn();
  MoveIn(area->window, 40, 40);
  EXPECT_EQ(Area(), bare);
}

TEST_F(SymbolEditorTest, AnExposeWhileTheRubberBandIsThereKeepsIt) {
  Open();
  ClickIn(area->window, 40, 40);
  MoveIn(area->window, 160, 240);
  const Picture before = Area();
  XSetWindowAttributes more{};
  more.override_redirect = True;
  const Window cover =
      MakeChildWindow(root, 0, 0, 400, 400, grey.pixel, 0, CWOverrideRedirect, more);
  XMapRaised(dpy, cover);
  Pump();
  XDestroyWindow(dpy, cover);
  Pump();
  EXPECT_EQ(Area(), before);
  MoveIn(area->window, 40, 40);
  ExpectAsRedrawn();
}

TEST_F(SymbolEditorTest, AVectorIsDrawnWithSquaresAndLines) {
  Open();
  Draw({{40, 40}, {200, 40}, {200, 160}});
  Picture expected = VectorArea();
  expected.Line(kBlack, 40, 40, 200, 40);
  expected.Line(kBlack, 200, 40, 200, 160);
  Square(&expected, 40, 40);
  Square(&expected, 200, 40);
  Square(&expected, 200, 160);
  EXPECT_EQ(Area(), expected);
}

TEST_F(SymbolEditorTest, A65thPressAddsNothingAndThePressOnTheLastPointStillEnds) {
  Open();
  for (int k = 0; k < kMaxPoints; k++) ClickIn(area->window, 24 + 8 * (k % 2) * 10, 24 + 3 * k);
  ASSERT_EQ(sed->sym.npoints, kMaxPoints);
  const auto full = Points();
  ClickIn(area->window, 240, 240);
  EXPECT_EQ(sed->state, kSymCapturing);
  EXPECT_EQ(Points(), full);
  ExpectAsRedrawn();
  ClickIn(area->window, full.back().first, full.back().second);
  EXPECT_EQ(sed->state, kSymComplete);
  EXPECT_EQ(Points(), full);
  ExpectAsRedrawn();
}

TEST_F(SymbolEditorTest, ThePointUnderThePointerIsTheOneWithinThreePixels) {
  const GromlitSymbol sym = Symbol("P", {{40, 40}, {200, 40}, {40, 40}});
  Open(&sym);
  struct Case {
    int x, y, onpt;
  };
  for (const Case& c : {Case{43, 43, 1}, Case{44, 40, 0}, Case{40, 37, 1}, Case{40, 36, 0},
                        Case{203, 37, 2}, Case{120, 120, 0}}) {
    MoveIn(area->window, c.x, c.y);
    EXPECT_EQ(area->onpt, c.onpt) << c.x << " " << c.y;
  }
  // From one point to another without a motion between them.
  MoveIn(area->window, 40, 40);
  MoveIn(area->window, 200, 40);
  EXPECT_EQ(area->onpt, 2);
}

TEST_F(SymbolEditorTest, TheCursorChangesOnAPointAndBesideIt) {
  const GromlitSymbol sym = Symbol("P", {{40, 40}, {200, 40}});
  Open(&sym);
  const auto moved = [this](int x, int y) {
    XEvent event = Motion(x, y);
    return CostOf([&] { SymWindowMotionNotify(area, &event); });
  };
  EXPECT_EQ(moved(40, 40), (testing::Cost{1, 0}));
  EXPECT_EQ(moved(41, 41), (testing::Cost{0, 0}));
  EXPECT_EQ(moved(200, 40), (testing::Cost{0, 0}));
  EXPECT_EQ(moved(100, 40), (testing::Cost{1, 0}));
  EXPECT_EQ(moved(101, 40), (testing::Cost{0, 0}));
}

TEST_F(SymbolEditorTest, APressBesideThePointsOfACompleteVectorDoesNothing) {
  Reach(kSymComplete);
  const auto before = Points();
  ClickIn(area->window, 120, 120);
  EXPECT_EQ(sed->state, kSymComplete);
  EXPECT_EQ(Points(), before);
}

TEST_F(SymbolEditorTest, APointIsDraggedAndTheReleaseGivesThePointerBack) {
  Open();
  Draw({{40, 40}, {120, 40}, {200, 40}, {200, 200}});
  MoveIn(area->window, 121, 42);
  player->Press(1);
  Pump();
  EXPECT_EQ(sed->state, kSymDragging);
  EXPECT_EQ(area->onpt, 2);
  EXPECT_FALSE(player->CanGrabPointer());
  MoveIn(area->window, 118, 131);
  EXPECT_THAT(Points(), ElementsAre(std::pair(40, 40), std::pair(120, 128), std::pair(200, 40),
                                    std::pair(200, 200)));
  ExpectAsRedrawn();
  MoveIn(area->window, 900, -20);  // outside of the editor
  EXPECT_EQ(sed->sym.x[2], 264);
  EXPECT_EQ(sed->sym.y[2], 16);
  ExpectAsRedrawn();
  player->Release(1);
  Pump();
  EXPECT_EQ(sed->state, kSymComplete);
  EXPECT_TRUE(player->CanGrabPointer());
  MoveIn(area->window, 100, 100);
  EXPECT_EQ(sed->sym.x[2], 264);
}

TEST_F(SymbolEditorTest, TheFirstTheLastAndTheOnlyPointCanBeDragged) {
  for (const int count : {1, 2}) {
    for (int k = 1; k <= count; k++) {
      Open();
      std::vector<std::pair<int, int>> points = {{40, 40}, {160, 80}};
      points.resize(static_cast<size_t>(count));
      Draw(points);
      MoveIn(area->window, sed->sym.x[k], sed->sym.y[k]);
      player->Press(1);
      Pump();
      MoveIn(area->window, 240, 240);
      EXPECT_EQ(sed->sym.x[k], 240);
      EXPECT_EQ(sed->sym.y[k], 240);
      ExpectAsRedrawn();
      player->Release(1);
      Pump();
    }
  }
}

TEST_F(SymbolEditorTest, ARefusedGrabEndsTheDraggingBeforeItBegins) {
  Reach(kSymComplete);
  MoveIn(area->window, 40, 40);
  ASSERT_EQ(area->onpt, 1);
  ASSERT_EQ(XGrabPointer(player->display(), player->root(), False, ButtonPressMask, GrabModeAsync,
                         GrabModeAsync, None, None, CurrentTime),
            GrabSuccess);
  XSync(player->display(), False);
  XEvent press{};
  press.xbutton.type = ButtonPress;
  press.xbutton.x = 40;
  press.xbutton.y = 40;
  SymWindowButtonPress(area, &press);
  EXPECT_EQ(sed->state, kSymComplete);
  XUngrabPointer(player->display(), CurrentTime);
  XSync(player->display(), False);
  MoveIn(area->window, 160, 160);
  EXPECT_EQ(sed->sym.x[1], 40);
}

// INV-SYM-2.
TEST_F(SymbolEditorTest, TheReleaseGivesThePointerBackWhateverTheStateIsByThen) {
  const GromlitSymbol sym = Symbol("P", {{40, 40}, {200, 40}});
  const std::function<void()> meanwhile[] = {[] { symClear(sed); }, [] { symNext(sed); },
                                             [&] { SymInit(sed, &sym); }};
  for (const auto& change : meanwhile) {
    Reach(kSymDragging);
    change();
    const int state = sed->state;
    Pump();
    player->Release(1);
    Pump();
    EXPECT_EQ(sed->state, state);
    EXPECT_TRUE(player->CanGrabPointer());
  }
}

TEST_F(SymbolEditorTest, ADraggingWhoseReleaseWasMissedEndsWithTheNextMotion) {
  Reach(kSymDragging);
  XUnmapWindow(dpy, sed->window);  // such as by the window manager; the grab ends with it
  Pump();
  player->Release(1);
  XMapWindow(dpy, sed->window);
  Pump();
  ASSERT_EQ(sed->state, kSymDragging);
  MoveIn(area->window, 160, 160);
  EXPECT_EQ(sed->state, kSymComplete);
  EXPECT_EQ(sed->sym.x[1], 40);
  EXPECT_EQ(area->onpt, 0);
}

TEST_F(SymbolEditorTest, AnyMouseButtonDrawsAndDrags) {
  Open();
  ClickIn(area->window, 40, 40, 2);
  ClickIn(area->window, 80, 40, 2);
  ClickIn(area->window, 80, 40, 2);
  EXPECT_EQ(sed->state, kSymComplete);
  player->Press(2);
  Pump();
  EXPECT_EQ(sed->state, kSymDragging);
  MoveIn(area->window, 80, 80);
  player->Release(2);
  Pump();
  EXPECT_THAT(Points(), ElementsAre(std::pair(40, 40), std::pair(80, 80)));
}

// INV-SYM-1: drawn step by step and drawn at once look the same, whatever was done.
TEST_F(SymbolEditorTest, WhateverIsDrawnAndDraggedLooksAsIfDrawnAtOnce) {
  const unsigned seed = std::random_device{}();
  SCOPED_TRACE("seed " + std::to_string(seed));
  std::mt19937 random(seed);
  const auto at = [&] { return static_cast<int>(random() % kSymWindowSize); };
  Open();
  for (int step = 0; step < 300; step++) {
    const bool onpoint = sed->sym.npoints > 0 && random() % 3 == 0;
    const int k = onpoint ? 1 + static_cast<int>(random() % sed->sym.npoints) : 0;
    const int x = onpoint ? sed->sym.x[k] : at();
    const int y = onpoint ? sed->sym.y[k] : at();
    MoveIn(area->window, x, y);
    player->Press(1);
    Pump();
    if (random() % 2 == 0) MoveIn(area->window, at(), at());
    player->Release(1);
    Pump();
    if (step % 10 == 0) ExpectAsRedrawn();
    for (const auto& [px, py] : Points()) {
      ASSERT_EQ(grid(px), px);
      ASSERT_EQ(grid(py), py);
    }
    if (sed->sym.npoints == kMaxPoints || random() % 60 == 0) ClickOn(sed->bclear);
  }
  ExpectAsRedrawn();
}

TEST_F(SymbolEditorTest, DamagedCoordinatesAreDrawnAndCaughtOnTheGrid) {
  GromlitSymbol sym = Symbol("Damaged", {});
  sym.npoints = 3;
  sym.x[1] = 0;
  sym.y[1] = 65535;
  sym.x[2] = 16;
  sym.y[2] = 13;
  sym.x[3] = 1000;
  sym.y[3] = 16;
  Open(&sym);
  Picture expected = VectorArea();
  expected.Line(kBlack, 16, 264, 16, 16);
  expected.Line(kBlack, 16, 16, 264, 16);
  Square(&expected, 16, 264);
  Square(&expected, 16, 16);
  Square(&expected, 264, 16);
  EXPECT_EQ(Area(), expected);
  MoveIn(area->window, 264, 16);
  EXPECT_EQ(area->onpt, 3);
  player->Press(1);
  Pump();
  MoveIn(area->window, 264, 80);
  player->Release(1);
  Pump();
  EXPECT_EQ(sed->sym.y[3], 80);
  EXPECT_EQ(sed->sym.y[1], 65535) << "a point that nobody moved was changed";
  ExpectAsRedrawn();
}

TEST_F(SymbolEditorTest, MotionsMakeNoRoundTripsAndInsideACellNoRequests) {
  Open();
  ClickIn(area->window, 40, 40);
  MoveIn(area->window, 100, 100);
  const auto moved = [this](int x, int y, unsigned state) {
    XEvent event = Motion(x, y, state);
    return CostOf([&] { SymWindowMotionNotify(area, &event); });
  };
  EXPECT_EQ(moved(105, 103, 0), (testing::Cost{0, 0}));
  EXPECT_EQ(moved(160, 180, 0).roundtrips, 0U);
  ClickIn(area->window, 200, 200);
  ClickIn(area->window, 200, 200);
  player->Press(1);
  Pump();
  ASSERT_EQ(sed->state, kSymDragging);
  EXPECT_EQ(moved(201, 201, Button1Mask), (testing::Cost{0, 0}));
  EXPECT_EQ(moved(120, 120, Button1Mask).roundtrips, 0U);
  player->Release(1);
  Pump();
}

// --- Step 2 -------------------------------------------------------------------------------------

TEST_F(SymbolEditorTest, NextDrawsTheIconOfANewVector) {
  Open();
  Draw({{16, 56}, {264, 56}});
  ClickOn(sed->bnext);
  EXPECT_EQ(sed->state, kSymBitmap);
  for (int row = 0; row < kIconSize; row++) EXPECT_EQ(sed->sym.icon[row], row == 5 ? ~0U : 0U);
  Picture expected = EmptyArea();
  for (int i = 0; i <= 32; i++) {
    expected.Line(kLightGrey, 12 + 8 * i, 12, 12 + 8 * i, 268);
    expected.Line(kLightGrey, 12, 12 + 8 * i, 268, 12 + 8 * i);
  }
  for (int column = 0; column < 32; column++) {
    expected.Fill(kBlue, 13 + 8 * column, 13 + 8 * 5, 7, 7);
  }
  EXPECT_EQ(Area(), expected);
  EXPECT_EQ(Take(sed->icon->window, 4, 4, 32, 32).Count(kBlue, 0, 5, 32, 1), 32);
}

TEST_F(SymbolEditorTest, NextKeepsAnIconWithBitsAndRestartReplacesIt) {
  GromlitSymbol sym = Symbol("Own", {{16, 16}, {264, 16}});
  std::fill(std::begin(sym.icon), std::end(sym.icon), 0U);
  iconSet(&sym, 31, 31);
  Open(&sym);
  ClickOn(sed->bnext);
  EXPECT_EQ(sed->sym.icon[0], 0U);
  EXPECT_EQ(sed->sym.icon[31], 1U << 31);
  ClickOn(sed->brestart);
  EXPECT_EQ(sed->state, kSymBitmap);
  EXPECT_EQ(sed->sym.icon[0], ~0U);
  EXPECT_EQ(sed->sym.icon[31], 0U);
  ExpectAsRedrawn();
  EXPECT_EQ(Take(sed->icon->window, 4, 4, 32, 32).Count(kBlue, 0, 0, 32, 32), 32);
}

TEST_F(SymbolEditorTest, AClickTogglesABitInTheGridAndInThePreview) {
  Reach(kSymBitmap);
  const Picture before = Area();
  ClickIn(area->window, 12 + 8 * 20 + 4, 12 + 8 * 30 + 4);
  EXPECT_NE(iconGet(&sed->sym, 20, 30), 0);
  Picture expected = before;
  expected.Fill(kBlue, 13 + 8 * 20, 13 + 8 * 30, 7, 7);
  EXPECT_EQ(Area(), expected);
  EXPECT_EQ(PixelOf(sed->icon->window, 4 + 20, 4 + 30), kBlue);
  ClickIn(area->window, 12 + 8 * 20 + 7, 12 + 8 * 30);
  EXPECT_EQ(iconGet(&sed->sym, 20, 30), 0);
  EXPECT_EQ(Area(), before);
  EXPECT_EQ(PixelOf(sed->icon->window, 4 + 20, 4 + 30), kWhite);
}

TEST_F(SymbolEditorTest, EveryPixelOfTheAreaHitsACellOfTheIcon) {
  Reach(kSymBitmap);
  ClickOn(sed->bclear);
  struct Case {
    int x, y, column, row;
  };
  for (const Case& c : {Case{0, 0, 0, 0}, Case{279, 0, 31, 0}, Case{0, 279, 0, 31},
                        Case{279, 279, 31, 31}, Case{20, 12, 1, 0}, Case{19, 20, 0, 1}}) {
    ClickIn(area->window, c.x, c.y);
    EXPECT_NE(iconGet(&sed->sym, c.column, c.row), 0) << c.x << " " << c.y;
    ClickIn(area->window, c.x, c.y);
    EXPECT_EQ(iconGet(&sed->sym, c.column, c.row), 0) << c.x << " " << c.y;
  }
  for (const uint32_t row : sed->sym.icon) EXPECT_EQ(row, 0U);
}

TEST_F(SymbolEditorTest, HeldAndMovedAPressTogglesOnlyItsOwnBit) {
  Reach(kSymBitmap);
  ClickOn(sed->bclear);
  MoveIn(area->window, 100, 100);
  player->Press(1);
  Pump();
  MoveIn(area->window, 200, 200);
  player->Release(1);
  Pump();
  int set = 0;
  for (const uint32_t row : sed->sym.icon) set += __builtin_popcount(row);
  EXPECT_EQ(set, 1);
}

TEST_F(SymbolEditorTest, ClearInStepTwoClearsTheIconAndKeepsTheVector) {
  Reach(kSymBitmap);
  ClickOn(sed->bclear);
  EXPECT_EQ(sed->state, kSymBitmap);
  for (const uint32_t row : sed->sym.icon) EXPECT_EQ(row, 0U);
  EXPECT_EQ(sed->sym.npoints, 2);
  ExpectAsRedrawn();
  EXPECT_EQ(Take(sed->icon->window, 4, 4, 32, 32).Count(kBlue, 0, 0, 32, 32), 0);
}

TEST_F(SymbolEditorTest, PrevFromStepTwoLeadsToTheVectorOrToNone) {
  Reach(kSymBitmap);
  ClickOn(sed->bprev);
  EXPECT_EQ(sed->state, kSymComplete);
  ExpectAsRedrawn();
  ClickOn(sed->bclear);
  EXPECT_EQ(sed->state, kSymEmpty);
  ClickOn(sed->bnext);
  EXPECT_EQ(sed->state, kSymBitmap);
  ClickOn(sed->bprev);
  EXPECT_EQ(sed->state, kSymEmpty);
}

TEST_F(SymbolEditorTest, AnIconPaintedByHandSurvivesThereAndBack) {
  Reach(kSymBitmap);
  ClickIn(area->window, 250, 250);
  const auto icon = std::vector(std::begin(sed->sym.icon), std::end(sed->sym.icon));
  ClickOn(sed->bprev);
  ClickOn(sed->bnext);
  EXPECT_THAT(sed->sym.icon, ::testing::ElementsAreArray(icon));
}

TEST_F(SymbolEditorTest, AfterStepTwoAPointIsNotDraggedWithoutAMotionOntoIt) {
  Reach(kSymComplete);
  MoveIn(area->window, 40, 40);
  ASSERT_EQ(area->onpt, 1);
  symNext(sed);
  symPrev(sed);
  EXPECT_EQ(area->onpt, 0);
}

// --- Step 3 -------------------------------------------------------------------------------------

TEST_F(SymbolEditorTest, FinishAsksForTheNameAndShowsTheNamesThatThereAre) {
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

TEST_F(SymbolEditorTest, PickingANameCopiesItIntoTheFieldAlsoTheNextTime) {
  for (int round = 0; round < 2; round++) {
    Reach(kSymName);
    EXPECT_STREQ(TextEditorText(sed->txt), "");
    ClickIn(sed->lst->window, 20, 4 + sed->lst->itemheight + 2);
    EXPECT_STREQ(TextEditorText(sed->txt), "Beta") << "round " << round;
  }
}

TEST_F(SymbolEditorTest, PrevFromStepThreeBringsTheBitmapBack) {
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

TEST_F(SymbolEditorTest, ClearInStepThreeDropsThePointsAndKeepsTheNameWidgets) {
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

TEST_F(SymbolEditorTest, ANewNameAddsTheSymbolAtTheHeadOfTheLibrary) {
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
  EXPECT_EQ(Find("az")->signature, nullptr);
  delete read;
}

TEST_F(SymbolEditorTest, ReturnInTheNameFieldSaves) {
  Reach(kSymName);
  MoveIn(sed->txt->window, 100, 12);
  TypeText("new");
  TypeKey(XK_Return);
  EXPECT_FALSE(Shown(sed->window));
  EXPECT_NE(Find("new"), nullptr);
}

TEST_F(SymbolEditorTest, AnExistingNameReplacesThatSymbol) {
  const auto before = Names();
  Reach(kSymName);
  ClickIn(sed->lst->window, 20, 8);
  ClickOn(sed->bsave);
  EXPECT_EQ(Names(), before);
  EXPECT_EQ(Find("Alpha")->npoints, 2);
  EXPECT_EQ(Find("Alpha")->x[2], 200);
  EXPECT_EQ(sed->lst->nitems, 2);
}

TEST_F(SymbolEditorTest, EditingASymbolChangesTheLibraryOnlyWhenSaved) {
  Open(Find("Alpha"));
  MoveIn(area->window, 16, 16);
  player->Press(1);
  Pump();
  MoveIn(area->window, 80, 80);
  player->Release(1);
  Pump();
  EXPECT_EQ(Find("Alpha")->x[1], 16);
  ClickOn(sed->bnext);
  ClickOn(sed->bfinish);
  ClickOn(sed->bsave);
  EXPECT_EQ(Find("Alpha")->x[1], 80);
}

TEST_F(SymbolEditorTest, TheNameIsWhatIsInTheFieldAndNoLonger) {
  Reach(kSymName);
  MoveIn(sed->txt->window, 100, 12);
  TypeText("abcdef");
  for (int i = 0; i < 3; i++) TypeKey(XK_Left);
  TypeKey(XK_k, XK_Control_L);
  ClickOn(sed->bsave);
  EXPECT_NE(Find("abc"), nullptr);
  EXPECT_TRUE(testing::Exists(*install / "symbols/abc.sls"));
}

TEST_F(SymbolEditorTest, AnEmptyNameIsSavedAsItIs) {
  Reach(kSymName);
  ClickOn(sed->bsave);
  EXPECT_NE(Find(""), nullptr);
  EXPECT_TRUE(testing::Exists(*install / "symbols/.sls"));
}

TEST_F(SymbolEditorTest, ANameIsCutTo31Bytes) {
  Reach(kSymName);
  MoveIn(sed->txt->window, 100, 12);
  TypeText("abcdefghijklmnopqrstuvwxyzabcdefghijkl");
  ClickOn(sed->bsave);
  const std::string cut = "abcdefghijklmnopqrstuvwxyzabcde";
  EXPECT_NE(Find(cut), nullptr);
  EXPECT_TRUE(testing::Exists(*install / ("symbols/" + cut + ".sls")));
}

TEST_F(SymbolEditorTest, ANameWithASlashSelectsASubdirectory) {
  std::filesystem::create_directory(*install / "symbols/sub");
  Reach(kSymName);
  MoveIn(sed->txt->window, 100, 12);
  TypeText("sub/x");
  ClickOn(sed->bsave);
  EXPECT_FALSE(Shown(sed->window));
  EXPECT_TRUE(testing::Exists(*install / "symbols/sub/x.sls"));
}

TEST_F(SymbolEditorTest, ASaveThatFailsKeepsTheEditorOpenAndGivesTheReason) {
  const auto before = Names();
  Reach(kSymName);
  MoveIn(sed->txt->window, 100, 12);
  TypeText("no/x");
  ::testing::internal::CaptureStderr();
  ClickOn(sed->bsave);
  const std::string error = ::testing::internal::GetCapturedStderr();
  EXPECT_EQ(error, "Save Symbol: No such file or directory\n");
  EXPECT_TRUE(Shown(sed->window));
  EXPECT_EQ(sed->state, kSymName);
  EXPECT_EQ(sed->sym.npoints, 2);
  EXPECT_STREQ(TextEditorText(sed->txt), "no/x");
  EXPECT_EQ(Names(), before);
  EXPECT_EQ(sed->lst->nitems, 2);
  ASSERT_TRUE(Shown(failure->window));
  EXPECT_STREQ(failure->msgs[0], "The symbol was not saved.");
  EXPECT_STREQ(failure->msgs[1], "No such file or directory.");
  Shoot("editor-save-failed");
  // Another name, and the work is saved.
  ClickOn(failure->no);
  MoveIn(sed->txt->window, 100, 12);
  for (int i = 0; i < 4; i++) TypeKey(XK_BackSpace);
  TypeText("ok");
  ClickOn(sed->bsave);
  EXPECT_FALSE(Shown(sed->window));
  EXPECT_EQ(Find("ok")->npoints, 2);
}

TEST_F(SymbolEditorTest, ASaveOverADirectoryFailsAndLeavesTheSymbolOfThatName) {
  std::filesystem::remove(*install / "symbols/Beta.sls");
  std::filesystem::create_directory(*install / "symbols/Beta.sls");
  Reach(kSymName);
  ClickIn(sed->lst->window, 20, 4 + sed->lst->itemheight + 2);
  ClickOn(sed->bsave);
  EXPECT_TRUE(Shown(sed->window));
  EXPECT_TRUE(Shown(failure->window));
  EXPECT_EQ(Find("Beta")->x[1], 16);
  ClickOn(failure->no);
}

TEST_F(SymbolEditorTest, AManyLinedListIsScrolled) {
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

TEST_F(SymbolEditorTest, MoreThan512SymbolsAreAllListed) {
  for (int i = 0; i < 520; i++) Store("s" + std::to_string(i));
  LoadSymbols();
  RefreshSymbolNames(sed);
  EXPECT_EQ(sed->lst->nitems, 522);
}

// --- The window ---------------------------------------------------------------------------------

TEST_F(SymbolEditorTest, CancelClosesWithoutSaving) {
  const auto before = Names();
  for (const int state : {kSymEmpty, kSymCapturing, kSymComplete, kSymBitmap, kSymName}) {
    Reach(state);
    ClickOn(sed->bcancel);
    EXPECT_FALSE(Shown(sed->window)) << state;
  }
  EXPECT_EQ(Names(), before);
}

TEST_F(SymbolEditorTest, TheWindowManagersCloseRequestHidesTheEditor) {
  Open();
  XEvent close{};
  close.xclient.type = ClientMessage;
  close.xclient.window = sed->window;
  close.xclient.message_type = wm_protocols;
  close.xclient.format = 32;
  close.xclient.data.l[0] = static_cast<long>(wm_delete);
  XSendEvent(player->display(), sed->window, False, NoEventMask, &close);
  XSync(player->display(), False);
  EXPECT_TRUE(PumpUntil([this] { return !Shown(sed->window); }));
  Open();
}

TEST_F(SymbolEditorTest, HelpOpensThePageInTheBrowser) {
  const std::string seen = *install / "seen";
  CopyText(user->urlcmd, "ln -s %s " + seen);
  Open();
  ClickOn(sed->bhelp);
  std::error_code error;
  ASSERT_TRUE(testing::WaitFor([&] {
    return std::filesystem::symlink_status(seen).type() == std::filesystem::file_type::symlink;
  }));
  EXPECT_EQ(std::filesystem::read_symlink(seen, error).string(),
            "file:" + install->path() + "/help/symbol_editor.html");
}

// --- Every button in every state ----------------------------------------------------------------

struct Outcome {
  const char* button;
  bool shown;
  int state;  // of the button when shown: kButtonInactive or kButtonActive
  int next;   // the editor's state after a click on it
  bool open;  // whether the editor is still shown then
};

struct ButtonsOf {
  int state;
  std::vector<Outcome> outcomes;
};

class SymbolEditorButtonsTest : public SymbolEditorTest,
                                public ::testing::WithParamInterface<ButtonsOf> {
 protected:
  XButton* Named(const std::string& name) const {
    for (XButton* button : {sed->bhelp, sed->bclear, sed->brestart, sed->bprev, sed->bnext,
                            sed->bfinish, sed->bsave, sed->bcancel}) {
      if (name == button->label) return button;
    }
    return nullptr;
  }
};

TEST_P(SymbolEditorButtonsTest, DoesWhatTheTableSays) {
  CopyText(user->urlcmd, "true %s");
  const ButtonsOf& row = GetParam();
  for (const Outcome& outcome : row.outcomes) {
    SCOPED_TRACE(outcome.button);
    Reach(row.state);
    XButton* button = Named(outcome.button);
    ASSERT_NE(button, nullptr);
    EXPECT_EQ(Shown(button->window), outcome.shown);
    if (outcome.shown) {
      EXPECT_EQ(button->state, outcome.state);
      const unsigned long ink = outcome.state == kButtonActive ? kBlack : kDarkGrey;
      EXPECT_GT(Take(button->window, 4, 4, 56, 16).Count(ink, 0, 0, 56, 16), 0);
    }
    // While a point is dragged the pointer belongs to the drawing area: a click elsewhere is the
    // release that ends the dragging.
    if (row.state == kSymDragging) {
      MoveIn(button->window, 32, 12);
      player->Release(1);
      Pump();
    } else if (outcome.shown) {
      ClickOn(button);
    }
    EXPECT_EQ(sed->state, outcome.next);
    EXPECT_EQ(Shown(sed->window), outcome.open);
  }
}

constexpr int kOff = kButtonInactive;
constexpr int kOn = kButtonActive;

INSTANTIATE_TEST_SUITE_P(States, SymbolEditorButtonsTest,
                         ::testing::Values(ButtonsOf{kSymEmpty,
                                                     {{"Help", true, kOn, kSymEmpty, true},
                                                      {"Clear", true, kOn, kSymEmpty, true},
                                                      {"Restart", true, kOff, kSymEmpty, true},
                                                      {"Prev", true, kOff, kSymEmpty, true},
                                                      {"Next", true, kOn, kSymBitmap, true},
                                                      {"Finish", false, kOn, kSymEmpty, true},
                                                      {"Save", false, kOn, kSymEmpty, true},
                                                      {"Cancel", true, kOn, kSymEmpty, false}}},
                                           ButtonsOf{kSymCapturing,
                                                     {{"Help", true, kOn, kSymCapturing, true},
                                                      {"Clear", true, kOn, kSymEmpty, true},
                                                      {"Restart", true, kOff, kSymCapturing, true},
                                                      {"Prev", true, kOff, kSymCapturing, true},
                                                      {"Next", true, kOn, kSymBitmap, true},
                                                      {"Finish", false, kOn, kSymCapturing, true},
                                                      {"Save", false, kOn, kSymCapturing, true},
                                                      {"Cancel", true, kOn, kSymCapturing, false}}},
                                           ButtonsOf{kSymComplete,
                                                     {{"Help", true, kOn, kSymComplete, true},
                                                      {"Clear", true, kOn, kSymEmpty, true},
                                                      {"Restart", true, kOff, kSymComplete, true},
                                                      {"Prev", true, kOff, kSymComplete, true},
                                                      {"Next", true, kOn, kSymBitmap, true},
                                                      {"Finish", false, kOn, kSymComplete, true},
                                                      {"Save", false, kOn, kSymComplete, true},
                                                      {"Cancel", true, kOn, kSymComplete, false}}},
                                           ButtonsOf{kSymDragging,
                                                     {{"Help", true, kOn, kSymComplete, true},
                                                      {"Clear", true, kOn, kSymComplete, true},
                                                      {"Restart", true, kOff, kSymComplete, true},
                                                      {"Prev", true, kOff, kSymComplete, true},
                                                      {"Next", true, kOn, kSymComplete, true},
                                                      {"Finish", false, kOn, kSymComplete, true},
                                                      {"Save", false, kOn, kSymComplete, true},
                                                      {"Cancel", true, kOn, kSymComplete, true}}},
                                           ButtonsOf{kSymBitmap,
                                                     {{"Help", true, kOn, kSymBitmap, true},
                                                      {"Clear", true, kOn, kSymBitmap, true},
                                                      {"Restart", true, kOn, kSymBitmap, true},
                                                      {"Prev", true, kOn, kSymComplete, true},
                                                      {"Next", false, kOn, kSymBitmap, true},
                                                      {"Finish", true, kOn, kSymName, true},
                                                      {"Save", false, kOn, kSymBitmap, true},
                                                      {"Cancel", true, kOn, kSymBitmap, false}}},
                                           ButtonsOf{kSymName,
                                                     {{"Help", true, kOn, kSymName, true},
                                                      {"Clear", true, kOn, kSymEmpty, true},
                                                      {"Restart", true, kOn, kSymName, true},
                                                      {"Prev", true, kOn, kSymBitmap, true},
                                                      {"Next", false, kOn, kSymName, true},
                                                      {"Finish", false, kOn, kSymName, true},
                                                      {"Cancel", true, kOn, kSymName, false},
                                                      {"Save", true, kOn, kSymName, false}}}),
                         [](const auto& made) {
                           return "State" + std::to_string(made.param.state);
                         });

TEST_F(SymbolEditorTest, RestartInStepThreeChangesNothing) {
  Reach(kSymBitmap);
  ClickIn(area->window, 250, 250);
  ClickOn(sed->bfinish);
  const auto icon = std::vector(std::begin(sed->sym.icon), std::end(sed->sym.icon));
  ClickOn(sed->brestart);
  EXPECT_THAT(sed->sym.icon, ::testing::ElementsAreArray(icon));
}

}  // namespace
}  // namespace gromlit
