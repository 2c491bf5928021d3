// Windows that go from the screen while something in them is held.
#include "tests/e2e/front_end.h"

namespace gromlit {
namespace {

using testing::Point;
using testing::Title;
using testing::WaitFor;

// The parameter is the window manager; empty for none.
class HiddenTest : public testing::FrontEnd, public ::testing::WithParamInterface<const char*> {
 protected:
  void SetUp() override {
    FrontEnd::SetUp();
    if (*GetParam() != '\0') StartWindowManager(GetParam());
    WriteOptions();
    LaunchInstalled();
    main_ = WaitShown("Application");
    ASSERT_NE(main_, Window{0});
  }
  // Hides the main window as its user does, by the window manager; and shows it again.
  void HideMain() {
    if (manager == nullptr) {
      XUnmapWindow(player->display(), main_);
    } else {
      XIconifyWindow(player->display(), main_, DefaultScreen(player->display()));
    }
    XSync(player->display(), False);
    EXPECT_TRUE(WaitFor([this] { return !Viewable(main_); }));
  }
  // What every window manager sends that is told to close a window.
  void CloseByMessage(Window window) {
    XEvent event{};
    event.xclient.type = ClientMessage;
    event.xclient.window = window;
    event.xclient.format = 32;
    event.xclient.message_type = XInternAtom(player->display(), "WM_PROTOCOLS", False);
    event.xclient.data.l[0] =
        static_cast<long>(XInternAtom(player->display(), "WM_DELETE_WINDOW", False));
    XSendEvent(player->display(), window, False, NoEventMask, &event);
    XSync(player->display(), False);
  }
  void ShowMain() {
    XMapRaised(player->display(), main_);
    XSync(player->display(), False);
    EXPECT_EQ(WaitShown("Application"), main_);
  }

  Window main_ = 0;
};

TEST_P(HiddenTest, TheMenuOfAHeldTitleGoesWithItsWindow) {
  const Window menu = PressTitle(Title::kPlugIn);
  ASSERT_NE(menu, Window{0});
  GoToRow(menu, testing::kExit, kTitleAbove);
  HideMain();
  EXPECT_TRUE(WaitFor([&] { return !Viewable(menu); })) << "the menu stays on the screen";
  player->Release(1);
  EXPECT_EQ(Dialog(), Window{0}) << "something was chosen";

  ShowMain();
  Choose(Title::kHelp, testing::kHelpAbout);
  DialogRight();
}

TEST_P(HiddenTest, AHeldButtonComesUpWithItsWindow) {
  Choose(Title::kSymbol, testing::kSymbolNew);
  const Window editor = WaitShown("SymbolEditor");
  const Window next = WaitChild(editor, 400, 414);
  ASSERT_TRUE(Over(next, 12, 12));
  ASSERT_TRUE(WaitFor([&] { return Light(next) > 0; }));
  player->Press(1);
  ASSERT_TRUE(WaitFor([&] { return Light(next) < 0; }));
  CloseByMessage(editor);
  ASSERT_TRUE(WaitHidden("SymbolEditor"));
  player->Release(1);

  Choose(Title::kSymbol, testing::kSymbolNew);
  WaitShown("SymbolEditor");
  EXPECT_TRUE(WaitFor([&] { return Light(next) > 0; })) << "the button is still down";
  ClickChild(editor, 400, 414);
  EXPECT_TRUE(WaitFor([&] {
    const Window now = ChildAt(editor, 400, 414);
    return now != 0 && now != next;
  })) << "it does nothing";
}

INSTANTIATE_TEST_SUITE_P(Managers, HiddenTest, ::testing::Values("", "openbox", "twm"));

}  // namespace
}  // namespace gromlit
