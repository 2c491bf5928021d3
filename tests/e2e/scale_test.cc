// Windows at twice the size: how it is asked for, and what a user does in them under a window
// manager.
#include "tests/e2e/symbol_run.h"

#include <X11/Xatom.h>
#include <X11/Xutil.h>

#include "core/option_files.h"

namespace gromlit {
namespace {

using testing::Box;
using testing::kRight;
using testing::Point;
using testing::ProbeClient;
using testing::WaitFor;
using testing::XServer;

class ScaleTest : public testing::SymbolRun {
 protected:
  void SetUp() override {
    server = std::make_unique<XServer>("2560x1440x24");
    SymbolRun::SetUp();
    WriteOptions();
    player->MoveTo(2550, 1430);
  }

  // The size of the main window after a start.
  Point SizeAfter(std::vector<std::string> arguments, std::vector<std::string> environment = {}) {
    arguments.insert(arguments.begin(), {"-path", install->path()});
    Launch(arguments, {.environment = std::move(environment)});
    const Box box = BoxOf(WaitShown("Application"));
    StopGromlit();
    return {box.width, box.height};
  }

  // Options with today's manners of windows or with plain ones.
  void WriteManners(int32_t manners) {
    GromlitUserOptions options{};
    DefaultUserOptions(&options);
    options.splash = 0;
    options.temp4 = manners;
    ASSERT_EQ(SaveUserOptions(&options, defaultOptionFile), 1);
  }

  // What a desktop sets up for all programs.
  void SetResources(const std::string& resources) {
    XChangeProperty(player->display(), player->root(), XA_RESOURCE_MANAGER, XA_STRING, 8,
                    PropModeReplace, reinterpret_cast<const unsigned char*>(resources.data()),
                    static_cast<int>(resources.size()));
    XSync(player->display(), False);
  }

  // An open menu of so many rows; 0 when there is none. The height of a row is read from the menu
  // of plug-ins, which has six.
  Window MenuOf(int rows) {
    for (const Window window : Overlays()) {
      if (Viewable(window) && BoxOf(window).height == 2 * (rows * row_ + 6)) return window;
    }
    return 0;
  }

  // Presses a title of the menu bar by going along the bar until its menu is open.
  Window PullDown(int rows) {
    const Window bar = WaitChild(MainWindow(), 0, 0);
    if (!Over(bar, 24, 24)) return 0;
    player->Press(1);
    Window menu = 0;
    EXPECT_TRUE(WaitFor([&] {
      for (const Window window : Overlays())
        // A window manager has small ones of its own.
        if (Viewable(window) && BoxOf(window).height > 200) menu = window;
      return menu != 0;
    }));
    row_ = (BoxOf(menu).height / 2 - 6) / 6;
    EXPECT_EQ(BoxOf(menu).height, 2 * (6 * row_ + 6)) << "the menu of plug-ins";
    const Point origin = OriginOf(bar);
    menu = 0;
    for (int x = 24; x < 600 && menu == 0; x += 24) {
      player->MoveTo(origin.x + x, origin.y + 24);
      WaitFor([&] { return (menu = MenuOf(rows)) != 0; }, std::chrono::milliseconds(100));
    }
    EXPECT_NE(menu, Window{0}) << "no menu of " << rows;
    return menu;
  }
  void Choose(int rows, int row) {
    const Window menu = PullDown(rows);
    ASSERT_NE(menu, Window{0});
    const Point origin = OriginOf(menu);
    // The bar takes its menus to begin two logical pixels higher.
    player->MoveTo(origin.x + 40, origin.y + 2 * (2 + 4 + row * row_) + row_);
    EXPECT_TRUE(WaitFor([&] {
      return player->Pixel(origin.x + 10, origin.y + 2 * (row * row_ + 2)) == 0xffffff;
    })) << "row "
        << row << " is not highlighted";
    player->Release(1);
    EXPECT_TRUE(WaitFor([&] { return !Viewable(menu); }));
  }

  int row_ = 0;  // logical pixels
};

TEST_F(ScaleTest, TheCallerTheEnvironmentAndTheDesktopAsk) {
  const Point once = SizeAfter({});
  const Point twice = {2 * once.x, 2 * once.y};
  EXPECT_EQ(SizeAfter({"-scale", "2"}), twice);
  EXPECT_EQ(SizeAfter({}, {"GROMLIT_SCALE=2"}), twice);
  EXPECT_EQ(SizeAfter({"-scale", "1"}, {"GROMLIT_SCALE=2"}), once);
  EXPECT_EQ(SizeAfter({}, {"GROMLIT_SCALE=3"}), once);

  SetResources("Xft.dpi:\t192\n");
  EXPECT_EQ(SizeAfter({}), once) << "without today's manners a desktop is not asked";
  WriteManners(kModernManners);
  EXPECT_EQ(SizeAfter({}), twice);
  EXPECT_EQ(SizeAfter({}, {"GROMLIT_SCALE=1"}), once);
  SetResources("Xft.dpi:\t120\n");
  EXPECT_EQ(SizeAfter({}), once);
}

TEST_F(ScaleTest, OtherScalesPrintTheUsage) {
  for (const char* scale : {"0", "3", "1.5", "two", "", "-display"}) {
    const Ending ending = RunToEnd({"-scale", scale});
    EXPECT_EQ(ending.status, 1) << scale;
    EXPECT_TRUE(ending.err.starts_with("usage:")) << ending.err;
  }
  EXPECT_EQ(RunToEnd({"-scale"}).status, 1);
  EXPECT_EQ(RunToEnd({"-scale2"}).status, 1);
  EXPECT_NE(RunToEnd({"-scale", "2", "-help"}).out.find("-scale n "), std::string::npos);
}

TEST_F(ScaleTest, AUserChoosesDrawsAndStrokes) {
  StartWindowManager();
  WritePlugin("Probe.probe", {{"right", kRight, {Touch("stroke")}}});
  Launch({"-path", install->path(), "-scale", "2"});
  const Window main = WaitShown("Application");
  XSizeHints hints{};
  long given;
  ASSERT_NE(XGetWMNormalHints(player->display(), main, &hints, &given), 0);
  EXPECT_EQ(hints.max_width, BoxOf(main).width) << "the window manager lets it be that large";

  // A choice from a menu, and clicks that become a symbol.
  Choose(3, 0);
  editor_ = WaitShown("SymbolEditor");
  ASSERT_NE(editor_, Window{0});
  const Window area = WaitChild(editor_, 32, 200);
  const std::vector<Point> corners = {{40, 40}, {200, 40}, {200, 200}};
  for (const Point& at : corners) {
    ClickIn(area, 2 * at.x + 1, 2 * at.y);
    const Point origin = OriginOf(area);
    EXPECT_TRUE(WaitFor([&] {
      return player->Pixel(origin.x + 2 * (at.x - 4), origin.y + 2 * (at.y - 4)) == 0 &&
             player->Pixel(origin.x + 2 * (at.x - 4) - 1, origin.y + 2 * at.y - 7) == 0xffffff;
    })) << "no square at "
        << at.x << ", " << at.y;
  }
  ClickIn(area, 400, 400);
  for (int step = 1; step < 3; step++) {
    const Window now = WaitChild(editor_, 800, 828);
    ClickChild(editor_, 800, 828);
    ASSERT_TRUE(WaitFor([&] {
      const Window next = ChildAt(editor_, 800, 828);
      return next != 0 && next != now;
    })) << "step "
        << step;
  }
  Replace(WaitChild(editor_, 32, 200), "large");
  ClickChild(editor_, 800, 828);
  ASSERT_TRUE(WaitHidden("SymbolEditor"));
  EXPECT_EQ(Saved("large").points, corners);

  // Strokes count in pixels of the screen.
  const ProbeClient probe(install->path(),
                          {"--class", "Probe", "probe", "--geometry", "300x200+100+1000"});
  const Point origin = OriginOf(probe.window());
  DrawOnly({{origin.x + 20, origin.y + 20}, {origin.x + 120, origin.y + 20}});
  EXPECT_TRUE(Appears("stroke"));
}

}  // namespace
}  // namespace gromlit
