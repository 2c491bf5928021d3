// Dialogs and fields with today's manners, in the frames of window managers and without one.
#include "tests/e2e/front_end.h"

#include <X11/Xutil.h>
#include <X11/keysym.h>

#include "core/option_files.h"

namespace gromlit {
namespace {

using testing::Box;
using testing::kRight;
using testing::Point;
using testing::Title;
using testing::WaitFor;

class ModernDialogsTest : public testing::FrontEnd,
                          public ::testing::WithParamInterface<const char*> {
 protected:
  void SetUp() override {
    FrontEnd::SetUp();
    GromlitUserOptions options{};
    DefaultUserOptions(&options);
    options.splash = 0;
    options.button = 3;
    options.temp4 = kModernManners;
    ASSERT_EQ(SaveUserOptions(&options, defaultOptionFile), 1);
    setenv("HOME", install->path().c_str(), 1);
    framed_ = std::string(GetParam()) != "none";
    if (framed_) StartWindowManager(GetParam());
    WritePlugin("Default", {{"right", kRight, {Touch("default")}}});
    LaunchInstalled();
    ASSERT_TRUE(WaitFor([this] { return (main_ = MainWindow()) != 0 && Viewable(main_); }));
  }
  void TearDown() override {
    const char* directory = std::getenv("GROMLIT_SCREENSHOTS");
    if (directory != nullptr && HasFailure()) Picture("failed");
    FrontEnd::TearDown();
  }
  void Picture(const std::string& name) {
    if (const char* directory = std::getenv("GROMLIT_SCREENSHOTS")) {
      testing::SaveScreen(player->display(), std::string(directory) + "/modern-dialogs-" +
                                                 GetParam() + "-" + name + ".png");
    }
  }

  // The dialog that is on the screen, framed or not; 0 for none.
  Window Asked(Window in = 0, int levels = 3) {
    for (const Window window : Children(in != 0 ? in : player->root())) {
      XClassHint hint{};
      if (XGetClassHint(player->display(), window, &hint) != 0) {
        const bool dialog =
            std::string("Dialog") == hint.res_name && std::string("Gromlit") == hint.res_class;
        XFree(hint.res_name);
        XFree(hint.res_class);
        if (dialog && Viewable(window)) return window;
      }
      if (levels > 1) {
        const Window below = Asked(window, levels - 1);
        if (below != 0) return below;
      }
    }
    return 0;
  }
  Window WaitAsked() {
    Window dialog = 0;
    EXPECT_TRUE(WaitFor([&] { return (dialog = Asked()) != 0; })) << "no dialog";
    return dialog;
  }
  bool Gone() {
    return WaitFor([this] { return Asked() == 0; });
  }
  Window Parent(Window window) {
    Window rootwin;
    Window parent = 0;
    Window* list = nullptr;
    unsigned count;
    if (XQueryTree(player->display(), window, &rootwin, &parent, &list, &count) == 0) return 0;
    if (list != nullptr) XFree(list);
    return parent;
  }
  bool Covers(Window dialog) {
    const Point a = OriginOf(dialog);
    const Box abox = BoxOf(dialog);
    const Point b = OriginOf(main_);
    const Box bbox = BoxOf(main_);
    return a.x < b.x + bbox.width && b.x < a.x + abox.width && a.y < b.y + bbox.height &&
           b.y < a.y + abox.height;
  }
  // Whether the keyboard is with a window or what lies in it.
  bool HasKeyboard(Window window) {
    Window focus = 0;
    int revert;
    XGetInputFocus(player->display(), &focus, &revert);
    if (focus == window) return true;
    const std::vector<Window> children = Children(window);
    return std::find(children.begin(), children.end(), focus) != children.end();
  }

  bool framed_ = false;
  Window main_ = 0;
};

TEST_P(ModernDialogsTest, AQuestionIsAnsweredByKeysAndMovedAndIsTheProgramsOwn) {
  Choose(Title::kPlugIn, testing::kExit);
  Window dialog = WaitAsked();
  EXPECT_TRUE(WaitFor([&] { return HasKeyboard(dialog); })) << "it has not got the keyboard";
  EXPECT_TRUE(WaitFor([&] { return !Covers(dialog); })) << "it covers the main window";
  EXPECT_EQ(Parent(dialog) == player->root(), !framed_);
  Window owner = 0;
  EXPECT_NE(XGetTransientForHint(player->display(), dialog, &owner), 0);
  EXPECT_EQ(owner, main_);
  Picture("asked");
  player->Type(XK_Escape);
  EXPECT_TRUE(Gone());

  Choose(Title::kPlugIn, testing::kExit);
  dialog = WaitAsked();
  EXPECT_TRUE(WaitFor([&] { return HasKeyboard(dialog); }));
  if (framed_) {
    XMoveWindow(player->display(), dialog, 700, 600);
    EXPECT_TRUE(WaitFor([&] { return OriginOf(dialog).y > 550; })) << "it was not moved";
  }
  // A stroke over it is nobody's.
  const Point origin = OriginOf(dialog);
  const Box box = BoxOf(dialog);
  ASSERT_TRUE(Over(dialog, 20, 80));
  player->Press(3);
  Trace({{origin.x + 20, origin.y + 80}, {origin.x + box.width - 20, origin.y + 80}});
  player->Release(3);
  EXPECT_TRUE(PointerBecomesFree());
  EXPECT_EQ(Asked(), dialog);
  // The mouse button that draws presses its button.
  const Window no = ChildAt(dialog, box.width - 72, box.height - 32);
  ASSERT_NE(no, Window{0});
  ClickIn(no, 20, 12, 3);
  EXPECT_TRUE(Gone());
  EXPECT_FALSE(testing::Exists(MarkFile("default")));

  Choose(Title::kPlugIn, testing::kExit);
  dialog = WaitAsked();
  EXPECT_TRUE(WaitFor([&] { return HasKeyboard(dialog); }));
  // Return counts half a second after it came, which is when one of these is struck.
  EXPECT_TRUE(WaitFor([&] {
    if (!gromlit->Running()) return true;
    player->Type(XK_Return);
    return false;
  }));
}

TEST_P(ModernDialogsTest, ANameIsTypedAndTakenByReturnWithoutThePointer) {
  Choose(Title::kPlugIn, testing::kPlugInEdit);
  const Window dialog = WaitAsked();
  Window field = 0;
  ASSERT_TRUE(WaitFor([&] {
    for (const Window child : Children(dialog)) {
      if (BoxOf(child).width == 200) field = child;
    }
    Window focus = 0;
    int revert;
    XGetInputFocus(player->display(), &focus, &revert);
    return field != 0 && focus == field;
  })) << "the field has not got the keyboard";
  Chord(XK_Control_L, XK_a);
  TypeText("renamed");
  EXPECT_TRUE(FieldReads(field, "renamed"));
  Picture("name");
  player->Type(XK_Return);
  EXPECT_TRUE(Gone());
  EXPECT_TRUE(WaitFor([this] { return Reads(PluginButton(), "renamed"); }));
}

TEST_P(ModernDialogsTest, FieldsOfAWindowAreReachedByTabAndTheirReturnIsOk) {
  Choose(Title::kOptions, testing::kPreferences);
  const Window preferences = WaitShown("Preferences");
  unsigned char* title = nullptr;
  Atom type = 0;
  int format = 0;
  unsigned long count = 0;
  unsigned long after = 0;
  XGetWindowProperty(player->display(), preferences,
                     XInternAtom(player->display(), "_NET_WM_NAME", False), 0, 100, False,
                     XInternAtom(player->display(), "UTF8_STRING", False), &type, &format, &count,
                     &after, &title);
  ASSERT_NE(title, nullptr);
  EXPECT_STREQ(reinterpret_cast<char*>(title), "Gromlit: Preferences");
  XFree(title);

  // The field of the sound command; the pointer stays outside of all.
  std::vector<Window> fields;
  for (const Window child : Children(preferences)) {
    if (BoxOf(child).height == 24 && BoxOf(child).width > 280) fields.push_back(child);
  }
  ASSERT_EQ(fields.size(), 2u);
  const Window sound = BoxOf(fields[0]).y < BoxOf(fields[1]).y ? fields[0] : fields[1];
  const Point origin = OriginOf(preferences);
  Go({origin.x + 300, origin.y + 2});
  if (!framed_) {
    XSetInputFocus(player->display(), preferences, RevertToParent, CurrentTime);
    XSync(player->display(), False);
  }
  int tabs = 0;
  EXPECT_TRUE(WaitFor([&] {
    Window focus = 0;
    int revert;
    XGetInputFocus(player->display(), &focus, &revert);
    if (focus == sound) return true;
    player->Type(XK_Tab);
    // One after the other, so that none goes by unseen.
    WaitFor([&] {
      Window now = 0;
      XGetInputFocus(player->display(), &now, &revert);
      return now != focus;
    });
    return ++tabs > 20;
  }));
  EXPECT_LT(tabs, 20);
  Chord(XK_Control_L, XK_a);
  TypeText("play");
  EXPECT_TRUE(FieldReads(sound, "play"));
  Picture("preferences");
  player->Type(XK_Return);
  EXPECT_TRUE(WaitHidden("Preferences"));
  EXPECT_STREQ(GetUserOptions()->sndcmd, "play");
}

INSTANTIATE_TEST_SUITE_P(Under, ModernDialogsTest, ::testing::Values("none", "openbox", "icewm"),
                         [](const auto& param) { return std::string(param.param); });

}  // namespace
}  // namespace gromlit
