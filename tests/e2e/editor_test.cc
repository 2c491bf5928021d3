// Real applications: what a stroke types arrives in the file that the editor saves.
#include "tests/e2e/editor_client.h"
#include "tests/e2e/shell_run.h"

#include <X11/keysym.h>

namespace gromlit {
namespace {

using testing::EditorClient;
using testing::kDown;
using testing::kRight;
using testing::Player;
using testing::Point;
using testing::ReadText;
using testing::WaitFor;

class EditorTest : public testing::ShellRun {
 protected:
  // A client's menu below the pointer; 0 when there is none. It has no frame.
  Window ContextMenu(Window client) {
    for (const Window window : Overlays()) {
      XWindowAttributes attributes{};
      if (XGetWindowAttributes(player->display(), window, &attributes) != 0 &&
          attributes.width > 50 && attributes.height > 50 && window >> 21 == client >> 21)
        return window;
    }
    return 0;
  }
  // A click with the draw button, which is no stroke, opens the editor's own menu.
  void TakesAClick(const std::vector<std::string>& argv, const std::string& classname) {
    DesktopTouches("acted");
    StartWindowManager("openbox");
    EditorClient editor(player.get(), install->path(), {.argv = argv, .classname = classname});
    if (HasFailure()) return;
    LaunchInstalled();
    editor.TakeFocus();
    EXPECT_TRUE(WaitFor(
        [&] {
          player->Click(3);
          return WaitFor([&] { return ContextMenu(editor.window()) != 0; },
                         std::chrono::seconds(3));
        },
        std::chrono::seconds(30)));
    player->Type(XK_Escape);
    EXPECT_TRUE(PointerBecomesFree());
    // A hand that shakes loses no click. The menu opens at the press, wherever the trail lies.
    const Player::Pointer at = player->Where();
    for (int shake = 1; shake <= 3; shake++) {
      SCOPED_TRACE(shake);
      EXPECT_TRUE(WaitFor([&] { return ContextMenu(editor.window()) == 0; }));
      const Point press{at.x - 20 * shake, at.y - 10 * shake};
      Go(press);
      player->Press(3);
      Go({press.x - shake, press.y + shake});
      player->Release(3);
      Window menu = 0;
      EXPECT_TRUE(WaitFor([&] { return (menu = ContextMenu(editor.window())) != 0; }));
      XWindowAttributes attributes{};
      XGetWindowAttributes(player->display(), menu, &attributes);
      EXPECT_NEAR(attributes.x, press.x, 10);
      EXPECT_EQ(player->Where().x, press.x - shake) << "the pointer was left elsewhere";
      player->Type(XK_Escape);
      EXPECT_TRUE(PointerBecomesFree());
    }
    // The button draws again.
    EXPECT_TRUE(DesktopActs("acted"));
    EXPECT_EQ(Out() + Err(), "");
    editor.process().Kill(SIGTERM);
    editor.process().Wait();
  }
  // Text that a stroke types and another stroke saves arrives in the editor's file.
  void TypesAndSaves(const std::vector<std::string>& argv, const std::string& classname) {
    const int s = XKeysymToKeycode(player->display(), XK_s);
    WritePlugin(classname, {{"right", kRight, {{kText, "Drawn, not typed: (42) #7_x!"}}},
                            {"down", kDown, {{kHotKey, "Control-s", s, ControlMask}}}});
    StartWindowManager("openbox");
    EditorClient editor(player.get(), install->path(), {.argv = argv, .classname = classname});
    if (HasFailure()) return;
    LaunchInstalled();
    editor.TakeFocus();
    Draw({{400, 500}, {700, 500}});
    EXPECT_TRUE(PointerBecomesFree());
    // An editor that was still starting has overlooked nothing: keys stay in its queue.
    EXPECT_TRUE(WaitFor(
        [&] {
          Draw({{500, 400}, {500, 650}});
          return WaitFor([&] { return !ReadText(editor.file()).empty(); }, std::chrono::seconds(5));
        },
        std::chrono::seconds(30)));
    std::string saved = ReadText(editor.file());
    while (!saved.empty() && saved.back() == '\n') saved.pop_back();
    EXPECT_EQ(saved, "Drawn, not typed: (42) #7_x!");
    EXPECT_EQ(Out() + Err(), "");
    editor.process().Kill(SIGTERM);
    editor.process().Wait();
  }
};

TEST_F(EditorTest, StrokesTypeIntoAGtkEditor) {
  TypesAndSaves({"mousepad", "--disable-server"}, "Mousepad.mousepad");
}

TEST_F(EditorTest, StrokesTypeIntoAQtEditor) {
  TypesAndSaves({"featherpad", "--standalone"}, "FeatherPad.featherpad");
}

TEST_F(EditorTest, AClickOpensTheMenuOfAGtkEditor) {
  TakesAClick({"mousepad", "--disable-server"}, "Mousepad.mousepad");
}

TEST_F(EditorTest, AClickOpensTheMenuOfAQtEditor) {
  TakesAClick({"featherpad", "--standalone"}, "FeatherPad.featherpad");
}

}  // namespace
}  // namespace gromlit
