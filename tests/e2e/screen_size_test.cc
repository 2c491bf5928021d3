// The screen gets another size while the program runs, as from a monitor that is unplugged: what it
// opens then is on the screen, and trails end where the screen does.
#include "tests/e2e/front_end.h"

namespace gromlit {
namespace {

using testing::Box;
using testing::Point;
using testing::Process;
using testing::Title;
using testing::WaitFor;
using testing::XServer;

struct Size {
  int width;
  int height;
  bool operator==(const Size&) const = default;
};

constexpr Size kLarge = {1280, 1024};
constexpr Size kSmall = {800, 600};

class ScreenSizeTest : public testing::FrontEnd {
 protected:
  // What the server says; Xlib's own numbers stay those of the connection's start.
  Size Screen() {
    const Box box = BoxOf(player->root());
    return {box.width, box.height};
  }
  // Runs the user's command for the screen; returns its status.
  static int Randr(const std::vector<std::string>& arguments) {
    std::vector<std::string> argv = {"xrandr"};
    argv.insert(argv.end(), arguments.begin(), arguments.end());
    return Process(argv).Wait();
  }
  // The server knows one mode, that of its largest screen; a smaller one is added to it.
  void AddSmallMode() {
    ASSERT_EQ(Randr({"--newmode", "small", "40", "800", "840", "900", "1000", "600", "610", "620",
                     "650"}),
              0);
    ASSERT_EQ(Randr({"--addmode", "screen", "small"}), 0);
  }
  void Resize(const Size& size) {
    const std::string mode = size == kSmall ? "small" : "1280x1024";
    ASSERT_EQ(Randr({"--output", "screen", "--mode", mode}), 0);
    ASSERT_TRUE(WaitFor([&] { return Screen() == size; }));
  }
  void PlaceMain(const Point& to) {
    const Window main = WaitShown("Application");
    XMoveWindow(player->display(), main, to.x, to.y);
    // Inside of its border, if it has one.
    ASSERT_TRUE(WaitFor([&] {
      const Box box = BoxOf(main);
      return box.x == to.x && box.y == to.y;
    })) << BoxOf(main).x
        << ", " << BoxOf(main).y;
  }
  // The question that opens around the pointer.
  Window AskToExit() {
    Choose(Title::kPlugIn, testing::kExit);
    return WaitDialog();
  }
  // A dialog that is larger than what is left of the screen around the pointer ends with the
  // screen.
  void ExpectDialogAtTheEdge(const Size& screen) {
    const Window dialog = AskToExit();
    EXPECT_TRUE(WaitFor([&] {
      const Box box = BoxOf(dialog);
      return box.y + box.height == screen.height && box.x >= 0 && box.y >= 0 &&
             box.x + box.width <= screen.width;
    })) << BoxOf(dialog).x
        << ", " << BoxOf(dialog).y;
    DialogRight();
  }
  // A stroke that goes up, which needs the window of the screen's size, and then to the lower right
  // corner.
  void ExpectWholeTrail(const Size& screen) {
    const Point from = {screen.width - 300, screen.height - 60};
    const Point end = {screen.width - 10, screen.height - 20};
    const std::vector<Point> corners = {from, {from.x, 2}, {end.x, 2}, end};
    Go(from);
    player->Press(3);
    Trace(corners);
    EXPECT_TRUE(WaitFor([&] {
      const auto overlays = MappedOverlays();
      return std::any_of(overlays.begin(), overlays.end(), [&](Window window) {
        const Box box = BoxOf(window);
        return Size{box.width, box.height} == screen && box.x == 0 && box.y == 0;
      });
    })) << "no trail over the whole screen";
    for (const Point at :
         {Point{end.x - 100, 2}, Point{end.x, screen.height / 2}, Point{end.x, end.y - 10}}) {
      EXPECT_TRUE(WaitFor([&] { return IsInked(at); })) << "nothing at " << at.x << ", " << at.y;
    }
    player->Release(3);
    EXPECT_TRUE(WaitFor([this] { return MappedOverlays().empty(); }));
  }
  // Whether a point of the line differs from one beside or below it, which no line has crossed.
  bool IsInked(const Point& at) {
    return player->Pixel(at.x, at.y) != player->Pixel(at.x - 60, at.y == 2 ? 60 : at.y);
  }
};

TEST_F(ScreenSizeTest, AScreenThatShrinksAndGrowsAgainIsFollowed) {
  AddSmallMode();
  LaunchInstalled();
  PlaceMain({300, 880});
  ExpectDialogAtTheEdge(kLarge);

  Resize(kSmall);
  // As low as its longest menu can still be used.
  PlaceMain({300, 455});
  ExpectDialogAtTheEdge(kSmall);
  ExpectWholeTrail(kSmall);

  Resize(kLarge);
  PlaceMain({300, 880});
  ExpectDialogAtTheEdge(kLarge);
  ExpectWholeTrail(kLarge);
}

TEST_F(ScreenSizeTest, AScreenThatIsLargerThanAtTheStartIsUsedToItsEnd) {
  AddSmallMode();
  Resize(kSmall);
  LaunchInstalled();
  PlaceMain({300, 455});
  ExpectDialogAtTheEdge(kSmall);
  ExpectWholeTrail(kSmall);

  Resize(kLarge);
  PlaceMain({300, 880});
  ExpectDialogAtTheEdge(kLarge);
  ExpectWholeTrail(kLarge);
}

// A tablet, or a monitor on its foot, that is turned: width and height change places, and each
// point of the screen is elsewhere.
class TurnedScreenTest : public ScreenSizeTest {
 protected:
  void SetUp() override {
    host_ = std::make_unique<XServer>("1400x1400x24");
    server = std::make_unique<XServer>(*host_, "1280x1024");
    ScreenSizeTest::SetUp();
    // Else a stroke would be followed by the offer of a plug-in.
    DesktopTouches("acted");
    WritePlugin("Default", {});
  }
  void TearDown() override {
    ScreenSizeTest::TearDown();
    host_.reset();
  }
  Size Turn(const std::string& to) {
    EXPECT_EQ(Randr({"-o", to}), 0);
    const Size size = to == "left" || to == "right" ? Size{kLarge.height, kLarge.width} : kLarge;
    EXPECT_TRUE(WaitFor([&] { return Screen() == size; }));
    return size;
  }

  std::unique_ptr<XServer> host_;
};

TEST_F(TurnedScreenTest, ItIsUsedToItsEndsWhateverIsUp) {
  LaunchInstalled();
  for (const char* to : {"left", "inverted"}) {
    SCOPED_TRACE(to);
    const Size size = Turn(to);
    PlaceMain({300, size.height - 145});
    ExpectDialogAtTheEdge(size);
    ExpectWholeTrail(size);
  }
  EXPECT_EQ(Err(), "");
}

TEST_F(TurnedScreenTest, ItIsTurnedDuringAStrokeAMenuAndADialog) {
  LaunchInstalled();
  for (const char* to : {"left", "inverted", "right", "normal"}) {
    SCOPED_TRACE(to);
    // The main window's menus open at the far edge of what was and is the screen.
    PlaceMain({Screen().width - 200, 300});
    PressTitle(Title::kPlugIn);
    Turn(to);
    player->Release(1);
    player->Click(1);
    EXPECT_TRUE(WaitFor([this] { return Menu() == 0; }));
    EXPECT_TRUE(PointerBecomesFree());
    for (int open = 1; open <= 3 && Dialog() != 0; open++) DialogRight();
    PlaceMain({300, 300});
    // A stroke that had the whole screen before it.
    Go({900, 900});
    player->Press(3);
    Trace({{900, 900}, {1000, 900}});
    Turn(std::string(to) == "normal" ? "left" : "normal");
    player->Release(3);
    EXPECT_TRUE(TrailIsGone());
    EXPECT_TRUE(PointerBecomesFree());
    ASSERT_NE(AskToExit(), 0u);
    Turn(to);
    DialogRight();
    EXPECT_TRUE(WaitNoDialog());
    // The next stroke is acted on.
    std::filesystem::remove(MarkFile("acted"));
    const Size size = Screen();
    Draw({{size.width - 300, size.height - 100}, {size.width - 20, size.height - 100}});
    EXPECT_TRUE(Appears("acted"));
    EXPECT_TRUE(TrailIsGone());
  }
  EXPECT_EQ(Err(), "");
}

}  // namespace
}  // namespace gromlit
