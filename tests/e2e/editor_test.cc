// Real applications: what a stroke types arrives in the file that the editor saves.
#include "tests/e2e/shell_run.h"

#include <X11/Xutil.h>
#include <X11/keysym.h>

namespace gromlit {
namespace {

namespace fs = std::filesystem;
using testing::kDown;
using testing::kRight;
using testing::Point;
using testing::Process;
using testing::ReadText;
using testing::WaitFor;
using testing::WriteText;

class EditorTest : public testing::ShellRun {
 protected:
  // Starts an editor on an empty file and gives it the keyboard; returns its window.
  void StartEditor(std::vector<std::string> argv, const std::string& classname) {
    StartWindowManager("openbox");
    const std::string home = *install / "home";
    fs::create_directories(home + "/run");
    fs::permissions(home + "/run", fs::perms::owner_all);
    note_ = home + "/note.txt";
    WriteText(note_, "");
    argv.push_back(note_);
    editor_ = std::make_unique<Process>(
        argv, *install / "editor.log",
        std::vector<std::string>{"HOME=" + home, "XDG_RUNTIME_DIR=" + home + "/run",
                                 "XDG_CONFIG_HOME=" + home + "/config",
                                 "XDG_CACHE_HOME=" + home + "/cache",
                                 "XDG_DATA_HOME=" + home + "/data", "GSETTINGS_BACKEND=memory",
                                 "QT_QPA_PLATFORM=xcb", "GDK_BACKEND=x11", "NO_AT_BRIDGE=1"},
        home);
    ASSERT_TRUE(WaitFor([&] { return (window_ = FindViewable(player->root(), classname)) != 0; },
                        std::chrono::seconds(60)))
        << ReadText(*install / "editor.log");
    XMoveResizeWindow(player->display(), window_, 300, 250, 600, 500);
    ASSERT_TRUE(WaitFor([&] {
      XWindowAttributes attributes{};
      XGetWindowAttributes(player->display(), window_, &attributes);
      const Point at = Origin();
      return attributes.width == 600 && attributes.height == 500 && std::abs(at.x - 300) < 40 &&
             std::abs(at.y - 250) < 40;
    }));
  }
  Point Origin() {
    Point origin{};
    Window child;
    XTranslateCoordinates(player->display(), window_, player->root(), 0, 0, &origin.x, &origin.y,
                          &child);
    return origin;
  }
  // A viewable window of this class text.
  Window FindViewable(Window window, const std::string& classname) {
    XClassHint hint{};
    if (XGetClassHint(player->display(), window, &hint) != 0) {
      const std::string text = std::string(hint.res_class) + "." + hint.res_name;
      XFree(hint.res_class);
      XFree(hint.res_name);
      XWindowAttributes attributes{};
      if (text == classname && XGetWindowAttributes(player->display(), window, &attributes) != 0 &&
          attributes.map_state == IsViewable)
        return window;
    }
    Window rootwin;
    Window parent;
    Window* list = nullptr;
    unsigned count = 0;
    if (XQueryTree(player->display(), window, &rootwin, &parent, &list, &count) == 0) return 0;
    const std::vector<Window> children(list, list + count);
    if (list != nullptr) XFree(list);
    for (const Window child : children)
      if (const Window found = FindViewable(child, classname)) return found;
    return 0;
  }
  bool IsInside(Window window, Window ancestor) {
    while (window != 0 && window != ancestor) {
      Window rootwin;
      Window parent = 0;
      Window* list = nullptr;
      unsigned count = 0;
      if (XQueryTree(player->display(), window, &rootwin, &parent, &list, &count) == 0)
        return false;
      if (list != nullptr) XFree(list);
      window = parent;
    }
    return window == ancestor;
  }
  // Clicks into the editor until it has the keyboard.
  void TakeFocus() {
    EXPECT_TRUE(WaitFor([this] {
      Go({600, 550});
      player->Click(1);
      return WaitFor(
          [this] {
            Window focus = 0;
            int revert;
            XGetInputFocus(player->display(), &focus, &revert);
            return focus > PointerRoot && IsInside(focus, window_);
          },
          std::chrono::seconds(2));
    }));
  }
  // The editor's menu below the pointer; 0 when there is none. It has no frame.
  Window ContextMenu() {
    for (const Window window : Overlays()) {
      XWindowAttributes attributes{};
      if (XGetWindowAttributes(player->display(), window, &attributes) != 0 &&
          attributes.width > 50 && attributes.height > 50 && window >> 21 == window_ >> 21)
        return window;
    }
    return 0;
  }
  // A click with the draw button, which is no stroke, opens the editor's own menu.
  void TakesAClick(std::vector<std::string> argv, const std::string& classname) {
    DesktopTouches("acted");
    StartEditor(argv, classname);
    if (::testing::Test::HasFatalFailure()) return;
    LaunchInstalled();
    TakeFocus();
    EXPECT_TRUE(WaitFor(
        [this] {
          player->Click(3);
          return WaitFor([this] { return ContextMenu() != 0; }, std::chrono::seconds(3));
        },
        std::chrono::seconds(30)));
    player->Type(XK_Escape);
    EXPECT_TRUE(PointerBecomesFree());
    // The button draws again.
    EXPECT_TRUE(DesktopActs("acted"));
    EXPECT_EQ(Out() + Err(), "");
    editor_->Kill(SIGTERM);
    editor_->Wait();
  }

  // Text that a stroke types and another stroke saves arrives in the editor's file.
  void TypesAndSaves(std::vector<std::string> argv, const std::string& classname) {
    const int s = XKeysymToKeycode(player->display(), XK_s);
    WritePlugin(classname, {{"right", kRight, {{kText, "Drawn, not typed: (42) #7_x!"}}},
                            {"down", kDown, {{kHotKey, "Control-s", s, ControlMask}}}});
    StartEditor(argv, classname);
    if (::testing::Test::HasFatalFailure()) return;
    LaunchInstalled();
    TakeFocus();
    Draw({{400, 500}, {700, 500}});
    EXPECT_TRUE(PointerBecomesFree());
    // An editor that was still starting has overlooked nothing: keys stay in its queue.
    EXPECT_TRUE(WaitFor(
        [&] {
          Draw({{500, 400}, {500, 650}});
          return WaitFor([&] { return !ReadText(note_).empty(); }, std::chrono::seconds(5));
        },
        std::chrono::seconds(30)));
    std::string saved = ReadText(note_);
    while (!saved.empty() && saved.back() == '\n') saved.pop_back();
    EXPECT_EQ(saved, "Drawn, not typed: (42) #7_x!");
    EXPECT_EQ(Out() + Err(), "");
    editor_->Kill(SIGTERM);
    editor_->Wait();
  }

  std::string note_;
  std::unique_ptr<Process> editor_;
  Window window_ = 0;
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
