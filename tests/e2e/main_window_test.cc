#include "tests/e2e/shell_run.h"

#include <X11/Xatom.h>
#include <X11/Xutil.h>
#include <X11/keysym.h>

namespace gromlit {
namespace {

namespace fs = std::filesystem;
using testing::Command;
using testing::kDown;
using testing::kRight;
using testing::WaitFor;
using testing::WriteText;

constexpr KeySym kCloseKey = XK_F7;

// The parameter is the window manager; empty for none.
class MainWindowTest : public testing::ShellRun, public ::testing::WithParamInterface<const char*> {
 protected:
  void SetUp() override {
    ShellRun::SetUp();
    const std::string name = GetParam();
    if (name == "openbox") StartWindowManager(name);
    // This one knows no request to close a window, only its user's key.
    if (name == "twm") {
      WriteText(*install / "twmrc",
                "RandomPlacement\n\"F7\" = : window | title | frame | root : f.delete\n");
      const std::string script = *install / "twm-with-a-key";
      WriteText(script, "#!/bin/sh\nexec twm -f '" + (*install / "twmrc") + "'\n");
      fs::permissions(script, fs::perms::owner_all);
      StartWindowManager(script);
    }
    // Strokes on the desktop: right brings the window back, down tells that the program acts.
    WritePlugin("Desktop", {{"right", kRight, {{kRun, "system:showgromlit"}}},
                            {"down", kDown, {Touch("acted")}}});
  }
  void LaunchAndFind() {
    LaunchInstalled();
    ASSERT_TRUE(WaitFor([this] { return (main_ = MainWindow()) != 0 && Viewable(); }));
  }
  bool Viewable() {
    XWindowAttributes attributes{};
    return XGetWindowAttributes(player->display(), main_, &attributes) != 0 &&
           attributes.map_state == IsViewable;
  }
  bool Hidden() {
    XWindowAttributes attributes{};
    return XGetWindowAttributes(player->display(), main_, &attributes) != 0 &&
           attributes.map_state != IsViewable;
  }
  Atom Named(const char* name) { return XInternAtom(player->display(), name, False); }

  void SendToMain(Atom type, int format, long first) {
    XEvent event{};
    event.xclient.type = ClientMessage;
    event.xclient.window = main_;
    event.xclient.message_type = type;
    event.xclient.format = format;
    event.xclient.data.l[0] = first;
    XSendEvent(player->display(), main_, False, NoEventMask, &event);
    XSync(player->display(), False);
  }
  // Closes the window the way this window manager's user does.
  void Close() {
    const std::string name = GetParam();
    if (name.empty()) {
      SendToMain(Named("WM_PROTOCOLS"), 32, static_cast<long>(Named("WM_DELETE_WINDOW")));
    } else if (name == "openbox") {
      XEvent event{};
      event.xclient.type = ClientMessage;
      event.xclient.window = main_;
      event.xclient.message_type = Named("_NET_CLOSE_WINDOW");
      event.xclient.format = 32;
      event.xclient.data.l[1] = 2;  // asked for by the user
      XSendEvent(player->display(), player->root(), False,
                 SubstructureNotifyMask | SubstructureRedirectMask, &event);
      XSync(player->display(), False);
    } else {
      int x;
      int y;
      Window child;
      XTranslateCoordinates(player->display(), main_, player->root(), 200, 100, &x, &y, &child);
      Go({x, y});
      player->Type(kCloseKey);
    }
  }
  bool Acts() {
    fs::remove(MarkFile("acted"));
    Draw({{900, 700}, {900, 1000}});
    return Appears("acted") && TrailIsGone();
  }
  void BringBack() {
    Draw({{800, 900}, {1100, 900}});
    EXPECT_TRUE(WaitFor([this] { return Viewable(); }));
    EXPECT_TRUE(TrailIsGone());
  }

  // The raw bytes of a property; *type is 0 when there is none.
  std::string Property(const char* name, Atom* type, int* format) {
    unsigned long count = 0;
    unsigned long left;
    unsigned char* data = nullptr;
    *type = 0;
    XGetWindowProperty(player->display(), main_, Named(name), 0, 1024, False, AnyPropertyType, type,
                       format, &count, &left, &data);
    std::string bytes;
    // Items of 8 bits here; others are read by Xlib's own functions.
    if (data != nullptr && *format == 8) bytes.assign(reinterpret_cast<char*>(data), count);
    if (data != nullptr) XFree(data);
    return bytes;
  }

  Window main_ = 0;
};

TEST_P(MainWindowTest, IsCalledGromlit) {
  LaunchAndFind();
  Atom type;
  int format;
  EXPECT_EQ(Property("WM_NAME", &type, &format), "Gromlit");
  EXPECT_EQ(type, Atom{XA_STRING});
  EXPECT_EQ(format, 8);
}

TEST_P(MainWindowTest, HasNoIconName) {
  LaunchAndFind();
  Atom type;
  int format;
  Property("WM_ICON_NAME", &type, &format);
  EXPECT_EQ(type, Atom{0});
}

TEST_P(MainWindowTest, NamesItsClass) {
  LaunchAndFind();
  Atom type;
  int format;
  EXPECT_EQ(Property("WM_CLASS", &type, &format), std::string("Application\0Gromlit", 20));
  EXPECT_EQ(type, Atom{XA_STRING});
}

TEST_P(MainWindowTest, TellsItsCommandLine) {
  LaunchInstalled();
  ASSERT_TRUE(WaitFor([this] { return (main_ = MainWindow()) != 0; }));
  char** argv = nullptr;
  int argc = 0;
  ASSERT_NE(XGetCommand(player->display(), main_, &argv, &argc), 0);
  const std::vector<std::string> words(argv, argv + argc);
  XFreeStringList(argv);
  EXPECT_EQ(words, (std::vector<std::string>{Binary(), "-path", install->path()}));
}

TEST_P(MainWindowTest, CannotBeResized) {
  LaunchAndFind();
  XSizeHints hints{};
  long supplied = 0;
  ASSERT_NE(XGetWMNormalHints(player->display(), main_, &hints, &supplied), 0);
  EXPECT_EQ(hints.flags, PMinSize | PMaxSize | PBaseSize);
  XWindowAttributes attributes{};
  ASSERT_NE(XGetWindowAttributes(player->display(), main_, &attributes), 0);
  EXPECT_EQ(attributes.width, 6 * 72 + 36);
  EXPECT_EQ(hints.min_width, attributes.width);
  EXPECT_EQ(hints.max_width, attributes.width);
  EXPECT_EQ(hints.base_width, attributes.width);
  EXPECT_EQ(hints.min_height, attributes.height);
  EXPECT_EQ(hints.max_height, attributes.height);
  EXPECT_EQ(hints.base_height, attributes.height);
}

TEST_P(MainWindowTest, AsksToBeToldOfItsClosingAndOfNothingElse) {
  LaunchAndFind();
  Atom* protocols = nullptr;
  int count = 0;
  ASSERT_NE(XGetWMProtocols(player->display(), main_, &protocols, &count), 0);
  const std::vector<Atom> list(protocols, protocols + count);
  XFree(protocols);
  EXPECT_EQ(list, std::vector{Named("WM_DELETE_WINDOW")});
}

TEST_P(MainWindowTest, CloseHidesItAndAStrokeBringsItBack) {
  LaunchAndFind();
  for (int i = 0; i < 3; i++) {
    SCOPED_TRACE(i);
    Close();
    EXPECT_TRUE(WaitFor([this] { return Hidden(); }));
    EXPECT_TRUE(Acts());
    EXPECT_TRUE(Hidden());
    EXPECT_TRUE(gromlit->Running());
    BringBack();
  }
  EXPECT_EQ(Err(), "");
}

TEST_P(MainWindowTest, OtherMessagesDoNotHideIt) {
  LaunchAndFind();
  const Atom protocols = Named("WM_PROTOCOLS");
  const auto close = static_cast<long>(Named("WM_DELETE_WINDOW"));
  SendToMain(protocols, 32, static_cast<long>(Named("WM_TAKE_FOCUS")));
  SendToMain(protocols, 32, 0);
  SendToMain(Named("_SOMETHING_ELSE"), 32, close);
  // A stroke that acts has come after them.
  EXPECT_TRUE(Acts());
  EXPECT_TRUE(Viewable());
  // The message that does close would have been taken by then, too.
  SendToMain(protocols, 32, close);
  EXPECT_TRUE(WaitFor([this] { return Hidden(); }));
}

INSTANTIATE_TEST_SUITE_P(Alone, MainWindowTest, ::testing::Values(""));
INSTANTIATE_TEST_SUITE_P(Openbox, MainWindowTest, ::testing::Values("openbox"));
INSTANTIATE_TEST_SUITE_P(Twm, MainWindowTest, ::testing::Values("twm"));

}  // namespace
}  // namespace gromlit
