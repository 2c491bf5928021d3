// Before Xlib, whose macros would break GoogleTest.
#include "tests/x11/toolkit/widget_fixture.h"

#include <X11/extensions/shape.h>

#include <deque>
#include <string>

#include "capture/stroke_label.h"
#include "core/option_files.h"
#include "core/strings.h"
#include "display/scale.h"
#include "display/target.h"
#include "recognition/signature_match.h"
#include "tests/support/process.h"
#include "tests/x11/toolkit/request_cost.h"

namespace gromlit {
namespace {

using testing::Cost;
using testing::CostOf;

class StrokeLabelTest : public testing::WidgetFixture {
 protected:
  void SetUp() override {
    WidgetFixture::SetUp();
    if (HasFatalFailure()) return;
    user = &options_;
    windows_ = MakeTrailWindows(ButtonReleaseMask);
    trail = StartTrail(&windows_);
    ShowTrail(&trail, 600, 300);
    Add("Go right", {{16, 136}, {264, 136}});
    Add("Go down", {{136, 16}, {136, 264}});
  }
  void TearDown() override {
    for (GromlitAction& action : actions_) ReleaseFeatures(&action.sym);
    HideStrokeLabel(&label);
    HideTrail(&trail);
    user = nullptr;
    // The program's live as long as it does; these windows lie in the fixture.
    if (label.gc != nullptr) XFreeGC(dpy, label.gc);
    if (windows_.gc != nullptr) XFreeGC(dpy, windows_.gc);
    WidgetFixture::TearDown();
  }

  struct Point {
    int x;
    int y;
  };
  void Add(const char* name, const std::vector<Point>& points) {
    GromlitAction& action = actions_.emplace_back();
    CopyText(action.name, name);
    for (const Point& point : points) {
      const int k = ++action.sym.npoints;
      action.sym.x[k] = static_cast<uint16_t>(point.x);
      action.sym.y[k] = static_cast<uint16_t>(point.y);
    }
    plugin.actions[plugin.nactions++] = &action;
  }
  static Stroke Line(int dx, int dy) {
    Stroke stroke;
    for (stroke.count = 0; stroke.count < 20; stroke.count++) {
      stroke.x[stroke.count] = static_cast<int16_t>(600 + stroke.count * dx);
      stroke.y[stroke.count] = static_cast<int16_t>(300 + stroke.count * dy);
    }
    return stroke;
  }
  void Name(const Stroke& stroke) { NameStroke(&label, &plugin, stroke, &trail); }
  bool Viewable() {
    XWindowAttributes attributes{};
    XGetWindowAttributes(dpy, label.window, &attributes);
    return attributes.map_state == IsViewable;
  }
  // Black pixels of the label as the screen shows it, its frame left out.
  int Ink() {
    XImage* image = XGetImage(dpy, root, label.area.x + 1, label.area.y + 1, label.area.width - 2u,
                              label.area.height - 2u, AllPlanes, ZPixmap);
    int ink = 0;
    for (int y = 0; y < image->height; y++)
      for (int x = 0; x < image->width; x++) ink += XGetPixel(image, x, y) == black.pixel;
    XDestroyImage(image);
    return ink;
  }

  StrokeLabel label;
  Trail trail{};
  GromlitPlugin plugin{};

 private:
  GromlitUserOptions options_{};
  TrailWindows windows_{};
  std::deque<GromlitAction> actions_;
};

TEST_F(StrokeLabelTest, NamesWhatTheStrokeWouldRunAndThatItWouldRunNothing) {
  EXPECT_EQ(label.window, None) << "nothing is made in advance";
  Name(Line(5, 0));
  ASSERT_TRUE(Viewable());
  EXPECT_EQ(label.shown, "Go right");
  const int right = Ink();
  EXPECT_GT(right, 20);
  Name(Line(0, 5));
  EXPECT_EQ(label.shown, "Go down");
  EXPECT_GT(Ink(), 20);
  EXPECT_NE(Ink(), right);
  Name(Line(-5, 0));
  EXPECT_EQ(label.shown, kNoAction);
  HideStrokeLabel(&label);
  EXPECT_FALSE(Viewable());
}

TEST_F(StrokeLabelTest, LiesAtTheTopOfTheOnlyMonitorInTheMiddle) {
  Name(Line(5, 0));
  EXPECT_LT(label.area.y, 20);
  EXPECT_NEAR(label.area.x + label.area.width / 2, screenwidth / 2, 1);
}

TEST_F(StrokeLabelTest, GoesWithThePointerToAnotherMonitor) {
  const std::string half = std::to_string(screenwidth / 2);
  const std::string size = half + "/300x" + std::to_string(screenheight) + "/200";
  const auto monitor = [&](const char* name, const std::string& left, const char* output) {
    testing::Process set({"xrandr", "--setmonitor", name, size + "+" + left + "+0", output});
    ASSERT_EQ(set.Wait(), 0);
  };
  monitor("left", "0", "screen");
  monitor("right", half, "none");
  MoveTrail(&trail, screenwidth / 2 - 40, 300);
  Name(Line(5, 0));
  EXPECT_NEAR(label.area.x + label.area.width / 2, screenwidth / 4, 1);
  MoveTrail(&trail, screenwidth / 2 + 40, 300);
  Name(Line(5, 0));
  EXPECT_NEAR(label.area.x + label.area.width / 2, screenwidth * 3 / 4, 1);
  XWindowAttributes at{};
  XGetWindowAttributes(dpy, label.window, &at);
  EXPECT_EQ(at.x, label.area.x);
  EXPECT_GT(Ink(), 20);
  for (const char* name : {"left", "right"})
    testing::Process({"xrandr", "--delmonitor", name}).Wait();
}

TEST_F(StrokeLabelTest, TheSameNameCostsNothing) {
  Name(Line(5, 0));
  EXPECT_EQ(CostOf([&] { Name(Line(6, 0)); }), (Cost{0, 0}));
  EXPECT_EQ(CostOf([&] { Name(Line(0, 6)); }).roundtrips, 0u) << "another name on the monitor";
}

TEST_F(StrokeLabelTest, TakesNoInputAndIsNoApplication) {
  Name(Line(5, 0));
  int count = -1;
  int ordering;
  XRectangle* rectangles = XShapeGetRectangles(dpy, label.window, ShapeInput, &count, &ordering);
  if (rectangles != nullptr) XFree(rectangles);
  EXPECT_EQ(count, 0);
  EXPECT_TRUE(IsOwnWindow(label.window));
}

TEST_F(StrokeLabelTest, StaysAboveTheTrailThatTakesOverAndKeepsItsText) {
  Name(Line(5, 0));
  const int ink = Ink();
  MoveTrail(&trail, 600 - trail.mid + 2, 300);
  ASSERT_TRUE(trail.mapfull);
  Name(Line(5, 0));
  EXPECT_EQ(Ink(), ink);
}

TEST_F(StrokeLabelTest, LeavesNothingOnATrailThatStays) {
  XSync(dpy, False);
  MoveTrail(&trail, 600 - trail.mid + 2, 300);
  ASSERT_TRUE(trail.mapfull);
  // The ground that is covered.
  const Window below = XCreateSimpleWindow(dpy, root, 0, 0, static_cast<unsigned>(screenwidth), 80,
                                           0, 0, dgrey.pixel);
  XSetWindowAttributes attributes;
  attributes.override_redirect = True;
  XChangeWindowAttributes(dpy, below, CWOverrideRedirect, &attributes);
  XMapWindow(dpy, below);
  XLowerWindow(dpy, below);
  Name(Line(5, 0));
  Name(Line(-5, 0));
  HideStrokeLabel(&label);
  EXPECT_EQ(Ink(), 0);
  XImage* image =
      XGetImage(dpy, root, label.area.x + 3, label.area.y + 3, 1, 1, AllPlanes, ZPixmap);
  EXPECT_EQ(XGetPixel(image, 0, 0), dgrey.pixel);
  XDestroyImage(image);
  HideTrail(&trail);
  int count = 0;
  int ordering;
  XRectangle* rectangles =
      XShapeGetRectangles(dpy, trail.windows->fullwindow, ShapeBounding, &count, &ordering);
  EXPECT_EQ(count, 1) << "the next stroke has the whole screen";
  if (rectangles != nullptr) XFree(rectangles);
  XDestroyWindow(dpy, below);
}

TEST_F(StrokeLabelTest, ALongNameIsShortenedToTheScreen) {
  Add(std::string(63, 'W').c_str(), {{264, 136}, {16, 136}});
  Name(Line(-5, 0));
  EXPECT_EQ(label.shown, std::string(63, 'W'));
  EXPECT_GE(label.area.x, 0);
  EXPECT_LE(label.area.width, screenwidth);
}

class DoubleStrokeLabelTest : public StrokeLabelTest {
 protected:
  void SetUp() override {
    UseScale(2);
    StrokeLabelTest::SetUp();
  }
  void TearDown() override {
    StrokeLabelTest::TearDown();
    UseScale(1);
  }
};

// The monitor and the stroke are measured in pixels of the screen, and so is the hole in the trail.
TEST_F(DoubleStrokeLabelTest, IsTwiceAsLargeInTheMiddleOfTheMonitor) {
  Name(Line(5, 0));
  ASSERT_TRUE(Viewable());
  const XRectangle& area = label.area;
  EXPECT_EQ(area.width, 2 * 96);
  EXPECT_EQ(area.height, 2 * (labelFontinfo->ascent + labelFontinfo->descent + 12));
  EXPECT_NEAR(area.x + area.width / 2, screenwidth / 2, 1);
  EXPECT_EQ(area.y, 2 * 8);
  EXPECT_EQ(PixelOf(label.window, 1, area.height - 2), 0UL) << "an outline of two pixels";
  EXPECT_EQ(PixelOf(label.window, 2, area.height - 3), 0xffffffUL);
  EXPECT_EQ(PixelOf(label.window, area.width - 2, 5), 0UL);
  EXPECT_GT(Ink(), 4 * 40);
}

}  // namespace
}  // namespace gromlit
