// A symbol of the built program that is drawn with one stroke of the draw button, over the symbol
// editor's empty drawing area.
#include "recognition/symbol_icon.h"
#include "tests/e2e/stored_files.h"
#include "tests/e2e/symbol_run.h"

namespace gromlit {
namespace {

using testing::Exists;
using testing::kDown;
using testing::kEll;
using testing::kRight;
using testing::Point;
using testing::ProbeClient;
using testing::Title;
using testing::WaitFor;

constexpr const char* kClass = "Probe.probe";
constexpr const char* kEditorsClass = "Gromlit.SymbolEditor";

// Strokes in the drawing area's own pixels, away from its corners.
const std::vector<Point> kStrokeEll = {{60, 50}, {60, 210}, {220, 210}};
const std::vector<Point> kStrokeRight = {{40, 120}, {240, 120}};
// A stroke over the probe that has the shape L.
const std::vector<Point> kDrawEll = {{940, 150}, {940, 300}, {1090, 300}};

class DrawnSymbolRun : public testing::SymbolRun {
 protected:
  void StartProbe() {
    probe_ = std::make_unique<ProbeClient>(
        install->path(), std::vector<std::string>{"--class", "Probe", "probe", "--geometry",
                                                  "340x300+880+80", "--title", "Probe"});
  }
  // Draws over the editor's drawing area, whatever takes the stroke.
  void DrawInArea(const std::vector<Point>& stroke) {
    ASSERT_TRUE(Over(Area(), stroke[0].x, stroke[0].y));
    const Point origin = OriginOf(Area());
    std::vector<Point> corners;
    corners.reserve(stroke.size());
    for (const Point& point : stroke) corners.push_back({origin.x + point.x, origin.y + point.y});
    Draw(corners);
  }
  // Whether the drawing area shows what it showed when it was empty; waits for it. The pointer
  // draws no line there before there is a point.
  bool IsEmptyAgain(const std::string& empty) {
    return WaitFor([&] { return Look(Area()) == empty; });
  }

  std::unique_ptr<ProbeClient> probe_;
};

TEST_F(DrawnSymbolRun, AStrokeBecomesASymbolWhoseActionAStrokeFinds) {
  const std::string log = *install / "strokes.log";
  setenv("GROMLIT_LOG", log.c_str(), 1);
  WritePlugin("Default", {});
  WritePlugin(kClass, {});
  StartProbe();
  Open();
  OpenNew();
  unsetenv("GROMLIT_LOG");
  DrawInArea(kStrokeEll);
  for (const Point& corner : kEll) EXPECT_TRUE(WaitSquare(corner));
  // The log has a line for every stroke, and no action ran.
  EXPECT_NE(testing::ReadText(log).find("\tGromlit.SymbolEditor\tabcd\tsignature\tnone\t"),
            std::string::npos)
      << testing::ReadText(log);
  Shoot("drawn");
  FinishAs("Drawn");
  ExpectSaved("Drawn", kEll, Drawn(kEll));

  ASSERT_TRUE(PassOver(probe_->window(), [this] { return Reads(PluginButton(), kClass); }));
  Choose(Title::kAction, testing::kActionNew);
  const Window editor = WaitShown("ActionEditor");
  AddCommand(editor, kRun, "touch " + MarkFile("ran"));
  const int width = BoxOf(TabBar(editor)).width;
  ClickIn(WaitChild(editor, width + 128 + 48, 100), 20, 20);
  ChooseSymbol(0);
  ClickChild(editor, 560 - 160, BoxOf(editor).height - 40);  // OK
  ASSERT_TRUE(WaitHidden("ActionEditor"));
  const nlohmann::json stored = testing::ShowFile(PluginFile(kClass))["actions"];
  ASSERT_EQ(stored.size(), 1u);
  EXPECT_EQ(stored[0]["symbol"]["name"], "Drawn");

  Draw(kDrawEll);
  EXPECT_TRUE(Appears("ran"));
}

TEST_F(DrawnSymbolRun, ItsPointsCanBeDraggedAndItIsTakenOnceUntilClearEmptiesTheArea) {
  Open();
  OpenNew();
  const std::string empty = Look(Area());
  DrawInArea(kStrokeEll);
  ASSERT_TRUE(WaitSquare(kEll[2]));
  const Point to = {80, 80};
  ASSERT_TRUE(Over(Area(), kEll[0].x, kEll[0].y));
  player->Press(1);
  ASSERT_TRUE(Over(Area(), to.x, to.y));
  EXPECT_TRUE(WaitSquare(to));
  player->Release(1);
  // The area is not empty any more.
  const std::string dragged = Look(Area());
  DrawInArea(kStrokeRight);
  EXPECT_EQ(Look(Area()), dragged);
  PressButton(testing::kClear);
  EXPECT_TRUE(IsEmptyAgain(empty));
  DrawInArea(kStrokeRight);
  EXPECT_TRUE(WaitFor([&] { return Look(Area()) != empty; }));
  Shoot("again");
  FinishAs("again");
  const std::vector<Point> points = Saved("again").points;
  ASSERT_EQ(points.size(), 2u);
  EXPECT_EQ(points[0].x, kRight[0].x);
  EXPECT_EQ(points[1].x, kRight[1].x);
  EXPECT_EQ(points[0].y, points[1].y);
}

TEST_F(DrawnSymbolRun, APlugInOfTheUsersForTheEditorComesFirst) {
  WritePlugin(kEditorsClass, {{"mine", kRight, {Touch("mine")}}});
  Open();
  OpenNew();
  const std::string empty = Look(Area());
  DrawInArea(kStrokeRight);
  EXPECT_TRUE(Appears("mine"));
  EXPECT_TRUE(IsEmptyAgain(empty));
  // Nor does the area take what the plug-in has no action for, as no window does.
  DrawInArea(kStrokeEll);
  EXPECT_TRUE(IsEmptyAgain(empty));
  DrawVector(kDown);
  FinishAs("clicked");
  ExpectSaved("clicked", kDown, Drawn(kDown));
}

}  // namespace
}  // namespace gromlit
