// Fixture for the tests of the symbol editor: the editor over a library of two symbols, and the
// hands that bring it to each state.
#pragma once

#include "tests/x11/app/symbol_fixture.h"

#include <string>
#include <utility>
#include <vector>

namespace gromlit::testing {

class SymbolEditorFixture : public SymbolFixture {
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

}  // namespace gromlit::testing
