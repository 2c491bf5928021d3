// Before Xlib, whose macros would break GoogleTest.
#include "tests/support/x_fixture.h"

#include <cstdlib>
#include <deque>
#include <vector>

#include "capture/plugin_match.h"
#include "core/option_files.h"
#include "core/strings.h"
#include "recognition/signature_match.h"
#include "tests/x11/actions/key_probe.h"

namespace gromlit {
namespace {

using testing::KeyProbe;
using testing::KeySeen;
using testing::Strokes;

struct Point {
  int x;
  int y;
};
using Points = std::vector<Point>;

// Corners in editor pixels.
const Points kDown = {{136, 16}, {136, 264}};
const Points kRight = {{16, 136}, {264, 136}};
const Points kL = {{16, 16}, {16, 264}, {264, 264}};

class PluginMatchTest : public testing::XFixture {
 protected:
  void SetUp() override {
    XFixture::SetUp();
    user = &options_;
    probe = std::make_unique<KeyProbe>(server->name(), 300, 200);
    probe->FocusOn(PointerRoot);
  }
  void TearDown() override {
    for (GromlitAction& action : actions_) ForgetSignature(&action.sym);
    if (dpy != nullptr) XSync(dpy, False);
    probe.reset();
    XFixture::TearDown();
    user = nullptr;
    DefaultPlugin = nullptr;
  }

  // Adds an action for the symbol that sends one key.
  void Action(const Points& points, uint16_t keycode) { ActionOf(&plugin, points, keycode); }
  void ActionOf(GromlitPlugin* owner, const Points& points, uint16_t keycode) {
    GromlitCmd& cmd = commands_.emplace_back();
    cmd.type = kHotKey;
    cmd.nkeys = 1;
    cmd.keycode[0] = keycode;
    GromlitAction& action = actions_.emplace_back();
    action.sym.npoints = static_cast<uint8_t>(points.size());
    for (size_t i = 0; i < points.size(); i++) {
      action.sym.x[i + 1] = static_cast<uint16_t>(points[i].x);
      action.sym.y[i + 1] = static_cast<uint16_t>(points[i].y);
    }
    action.ncmds = 1;
    action.cmds[0] = &cmd;
    owner->actions[owner->nactions++] = &action;
  }

  // A stroke with `between` points on each side of the polyline.
  int Draw(const Points& corners, int between = 20) {
    std::vector<int16_t> x;
    std::vector<int16_t> y;
    for (size_t i = 0; i + 1 < corners.size(); i++) {
      for (int k = 0; k < between; k++) {
        x.push_back(static_cast<int16_t>(corners[i].x +
                                         (corners[i + 1].x - corners[i].x) * k / (between - 1)));
        y.push_back(static_cast<int16_t>(corners[i].y +
                                         (corners[i + 1].y - corners[i].y) * k / (between - 1)));
      }
    }
    return PluginMatch(&plugin, static_cast<int>(x.size()), x.data(), y.data(), root,
                       probe->window(), 12, 34, 312, 234);
  }

  std::vector<KeySeen> Seen() {
    XSync(dpy, False);
    return probe->Seen();
  }

  static std::vector<KeySeen> Sent(unsigned keycode) {
    return Strokes(
        {{keycode, 0}},
        {.type = 0, .keycode = 0, .state = 0, .x = 12, .y = 34, .x_root = 312, .y_root = 234});
  }

  // The program's plug-in for everything else, with a stroke down and one to the right.
  void MakeDefault() {
    ActionOf(&default_, kDown, 41);
    ActionOf(&default_, kRight, 42);
    DefaultPlugin = &default_;
  }

  GromlitPlugin plugin{};
  std::unique_ptr<KeyProbe> probe;
  GromlitUserOptions options_{};

 private:
  GromlitPlugin default_{};
  std::deque<GromlitCmd> commands_;
  std::deque<GromlitAction> actions_;
};

TEST_F(PluginMatchTest, MatchingActionRunsWithTheWindowsAndPositionsUnchanged) {
  Action(kRight, 38);
  Action(kL, 39);
  Action(kDown, 40);
  EXPECT_EQ(Draw(kL), 1);
  EXPECT_EQ(Seen(), Sent(39));
  EXPECT_EQ(Draw(kDown), 1);
  EXPECT_EQ(Seen(), Sent(40));
  EXPECT_EQ(Draw(kRight), 1);
  EXPECT_EQ(Seen(), Sent(38));
}

TEST_F(PluginMatchTest, EarlierOfTwoMatchingActionsRunsAlone) {
  Action(kDown, 38);
  Action(kL, 39);
  Action(kL, 40);
  EXPECT_EQ(Draw(kL), 1);
  EXPECT_EQ(Seen(), Sent(39));
}

TEST_F(PluginMatchTest, NoMatchHasNoEffect) {
  Action(kDown, 38);
  Action(kRight, 39);
  const unsigned long before = NextRequest(dpy);
  EXPECT_EQ(Draw(kL), 0);
  EXPECT_EQ(NextRequest(dpy), before);
  EXPECT_EQ(Seen(), std::vector<KeySeen>{});
}

TEST_F(PluginMatchTest, WhatAPluginDoesNotKnowIsLeftToDefaultOnlyWhereThatIsChosen) {
  MakeDefault();
  Action(kRight, 38);
  EXPECT_EQ(Draw(kDown), 0);
  EXPECT_EQ(Seen(), std::vector<KeySeen>{});
  for (const int32_t way : {kBySignature, kByShape}) {
    options_.temp2 = kFallBack;
    options_.temp3 = way;
    options_.tolerance = 3;
    EXPECT_EQ(Draw(kDown), 1);
    EXPECT_EQ(Seen(), Sent(41));
    EXPECT_EQ(Draw(kRight), 1);
    EXPECT_EQ(Seen(), Sent(38)) << "a plug-in's own action comes first";
    EXPECT_EQ(Draw(kL), 0) << "nobody knows it";
  }
}

TEST_F(PluginMatchTest, WithoutADefaultPluginNothingIsFallenBackTo) {
  options_.temp2 = kFallBack;
  Action(kRight, 38);
  EXPECT_EQ(Draw(kDown), 0);
}

TEST_F(PluginMatchTest, PluginWithoutActionsMatchesNothing) {
  EXPECT_EQ(Draw(kL), 0);
}

TEST_F(PluginMatchTest, StrokeOfNoPointsMatchesOnlyASymbolWithoutPoints) {
  Action(kL, 38);
  EXPECT_EQ(PluginMatch(&plugin, 0, nullptr, nullptr, root, probe->window(), 0, 0, 0, 0), 0);
  EXPECT_EQ(PluginMatch(&plugin, -1, nullptr, nullptr, root, probe->window(), 0, 0, 0, 0), 0);
  Action({}, 39);
  EXPECT_EQ(PluginMatch(&plugin, 0, nullptr, nullptr, root, probe->window(), 12, 34, 312, 234), 1);
  EXPECT_EQ(Seen(), Sent(39));
}

TEST_F(PluginMatchTest, PointsBeyondTheLastThatAStrokeKeepsAreLeftOut) {
  // The first 256 points are an L; what follows would turn it into something else.
  Action(kL, 38);
  Points corners = kL;
  EXPECT_EQ(Draw(corners, 128), 1);
  EXPECT_EQ(Seen(), Sent(38));
  corners.push_back({264, 16});
  corners.push_back({16, 16});
  EXPECT_EQ(Draw(corners, 128), 1);
  EXPECT_EQ(Seen(), Sent(38));
  EXPECT_EQ(Draw(corners, 20), 0) << "the longer shape is no L";
}

TEST_F(PluginMatchTest, DensestZigzagStaysInItsBuffer) {
  // Every step crosses all four lines: the longest signature that a stroke can have.
  Action(kL, 38);
  std::vector<int16_t> x(kMaxStrokePoints);
  std::vector<int16_t> y(kMaxStrokePoints);
  for (size_t i = 0; i < x.size(); i++) x[i] = y[i] = static_cast<int16_t>(i % 2 == 0 ? 0 : 300);
  EXPECT_EQ(
      PluginMatch(&plugin, kMaxStrokePoints, x.data(), y.data(), root, probe->window(), 0, 0, 0, 0),
      0);
}

}  // namespace
}  // namespace gromlit
