#include "tests/e2e/front_end.h"

#include <X11/Xatom.h>
#include <X11/Xutil.h>
#include <X11/keysym.h>

namespace gromlit {
namespace {

namespace fs = std::filesystem;
using testing::kDown;
using testing::kRight;
using testing::Point;
using testing::ProbeClient;
using testing::WaitFor;

constexpr long kByTheUser = 2;  // on whose account the window manager is asked

// The parameter is the window manager; empty for none.
class MainWindowTest : public testing::FrontEnd, public ::testing::WithParamInterface<const char*> {
 protected:
  void SetUp() override {
    FrontEnd::SetUp();
    if (*GetParam() != '\0') StartWindowManager(GetParam());
    // Strokes on the desktop: right brings the window back, down tells that the program acts.
    WritePlugin("Desktop", {{"right", kRight, {{kRun, "system:showgromlit"}}},
                            {"down", kDown, {Touch("acted")}}});
  }
  void LaunchAndFind() {
    LaunchInstalled();
    ASSERT_TRUE(WaitFor([this] { return (main_ = MainWindow()) != 0 && OnScreen(); }));
  }
  bool OnScreen() { return Viewable(main_); }
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
  // Asks the window manager for something that is to be done with the main window.
  void AskManager(const char* type, long first, long second) {
    XEvent event{};
    event.xclient.type = ClientMessage;
    event.xclient.window = main_;
    event.xclient.message_type = Named(type);
    event.xclient.format = 32;
    event.xclient.data.l[0] = first;
    event.xclient.data.l[1] = second;
    XSendEvent(player->display(), player->root(), False,
               SubstructureNotifyMask | SubstructureRedirectMask, &event);
    XSync(player->display(), False);
  }
  // Closes the window the way this window manager's user does.
  void Close() {
    const std::string name = GetParam();
    if (name.empty()) {
      SendToMain(Named("WM_PROTOCOLS"), 32, static_cast<long>(Named("WM_DELETE_WINDOW")));
    } else if (name == "openbox") {
      AskManager("_NET_CLOSE_WINDOW", 0, kByTheUser);
    } else {
      int x;
      int y;
      Window child;
      XTranslateCoordinates(player->display(), main_, player->root(), 200, 100, &x, &y, &child);
      Go({x, y});
      player->Type(testing::kTwmClose);
    }
  }
  bool Acts() {
    fs::remove(MarkFile("acted"));
    Draw({{900, 700}, {900, 1000}});
    return Appears("acted") && TrailIsGone();
  }
  void BringBack() {
    Draw({{800, 900}, {1100, 900}});
    EXPECT_TRUE(WaitFor([this] { return OnScreen(); }));
    EXPECT_TRUE(TrailIsGone());
  }

  // An application whose plug-in is empty, unlike that of the desktop.
  void StartProbe() {
    WritePlugin("Probe.probe", {});
    probe_ = std::make_unique<ProbeClient>(
        install->path(),
        std::vector<std::string>{"--class", "Probe", "probe", "--geometry", "340x300+880+80"});
  }
  void ExpectToFollowThePointer() {
    EXPECT_TRUE(PassOver(probe_->window(), [this] { return !HasName(0); }));
    Go({900, 700});
    EXPECT_TRUE(WaitFor([this] { return HasName(0); })) << "the desktop's actions are not shown";
    EXPECT_TRUE(PassOver(probe_->window(), [this] { return !HasName(0); }));
  }
  // Where the menus of the menu bar's first title and of the plug-in button open, from the main
  // window's inside.
  std::vector<Point> MenuPlaces() {
    std::vector<Point> places;
    const Window bar = WaitChild(main_, 0, 0);
    for (const Window opener : {bar, PluginButton()}) {
      const Point at = OriginOf(PressPulldown(opener));
      const Point origin = OriginOf(main_);
      places.push_back({at.x - origin.x, at.y - origin.y});
      Go({1270, 1000});
      player->Release(1);
      EXPECT_TRUE(WaitFor([this] { return Menu() == 0; }));
    }
    return places;
  }
  // Drags the window by its title, where it has one.
  void MoveByTheUser(int dx, int dy) {
    ASSERT_TRUE(Over(main_, 1, 120));  // at the place that the window manager gave it
    const Point from = OriginOf(main_);
    if (*GetParam() == '\0') {
      XMoveWindow(player->display(), main_, from.x - 1 + dx, from.y - 1 + dy);  // its border
    } else {
      const Point title = {from.x + 200, from.y - 10};
      Go(title);
      player->Press(1);
      // The window manager may take the pointer late, and needs a motion after that.
      Point step = {title.x + dx / 4, title.y + dy / 4};
      EXPECT_TRUE(WaitFor([&] {
        step.x = 2 * title.x + dx / 2 + 1 - step.x;
        Go(step);
        return WaitFor([&] { return !(OriginOf(main_) == from); }, std::chrono::milliseconds(100));
      })) << "it does not follow";
      Trace({step, {title.x + dx, title.y + dy}});
    }
    const Point to = {from.x + dx, from.y + dy};
    EXPECT_TRUE(WaitFor([&] { return OriginOf(main_) == to; }))
        << OriginOf(main_).x << ", " << OriginOf(main_).y;
    player->Release(1);
  }
  void Iconify() {
    XIconifyWindow(player->display(), main_, DefaultScreen(player->display()));
    XSync(player->display(), False);
  }
  // The state that the window manager has written down: NormalState, IconicState, ...
  long State() {
    Atom type;
    int format;
    unsigned long count = 0;
    unsigned long left;
    unsigned char* data = nullptr;
    long state = -1;
    XGetWindowProperty(player->display(), main_, Named("WM_STATE"), 0, 2, False, Named("WM_STATE"),
                       &type, &format, &count, &left, &data);
    if (data != nullptr && count > 0) state = *reinterpret_cast<long*>(data);
    if (data != nullptr) XFree(data);
    return state;
  }
  std::vector<Window> TopWindows() {
    std::vector<Window> shown;
    for (const Window window : Children(player->root()))
      if (Viewable(window)) shown.push_back(window);
    return shown;
  }
  // Brings the iconified window back the way this window manager's user does; `icon` is twm's.
  void Deiconify(Window icon) {
    if (std::string(GetParam()) == "twm") {
      ClickIn(icon, 5, 5);
      return;
    }
    AskManager("_NET_ACTIVE_WINDOW", kByTheUser, 0);
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
  std::unique_ptr<ProbeClient> probe_;
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
  EXPECT_EQ(Property("WM_CLASS", &type, &format), std::string("Application\0Gromlit\0", 20));
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
  EXPECT_TRUE(OnScreen());
  // The message that does close would have been taken by then, too.
  SendToMain(protocols, 32, close);
  EXPECT_TRUE(WaitFor([this] { return Hidden(); }));
}

TEST_P(MainWindowTest, MovedByTheUserItFollowsThePointerAndItsMenusOpenUnderTheirTitles) {
  StartProbe();
  LaunchAndFind();
  ASSERT_EQ(WaitShown("Application"), main_);
  const std::vector<Point> before = MenuPlaces();
  EXPECT_EQ(before[1], (Point{BoxOf(PluginButton()).x, BoxOf(PluginButton()).y}));
  MoveByTheUser(170, 130);
  EXPECT_EQ(MenuPlaces(), before);
  ExpectToFollowThePointer();
  // A choice reaches what it is made for, in the window's new place.
  Choose(testing::Title::kHelp, testing::kHelpAbout);
  DialogRight();
  MoveByTheUser(-60, 250);
  EXPECT_EQ(MenuPlaces(), before);
  ExpectToFollowThePointer();
  EXPECT_EQ(Err(), "");
}

TEST_P(MainWindowTest, IconifiedItComesBackByAStrokeAndByTheWindowManager) {
  StartProbe();
  LaunchAndFind();
  ASSERT_EQ(WaitShown("Application"), main_);
  MoveByTheUser(100, 60);
  if (*GetParam() == '\0') {
    // Nobody is there who would make an icon of it.
    Iconify();
    EXPECT_TRUE(Acts());
    EXPECT_TRUE(OnScreen());
    return;
  }
  const std::vector<Point> before = MenuPlaces();
  for (const bool stroke : {true, false}) {
    SCOPED_TRACE(stroke ? "stroke" : "window manager");
    const std::vector<Window> shown = TopWindows();
    Iconify();
    EXPECT_TRUE(WaitFor([this] { return Hidden() && State() == IconicState; })) << State();
    EXPECT_TRUE(Acts());
    EXPECT_TRUE(Hidden());
    if (stroke) {
      BringBack();
    } else {
      Window icon = 0;
      for (const Window window : TopWindows())
        if (std::find(shown.begin(), shown.end(), window) == shown.end()) icon = window;
      Deiconify(icon);
      EXPECT_TRUE(WaitFor([this] { return OnScreen(); }));
    }
    EXPECT_TRUE(WaitFor([this] { return State() == NormalState; })) << State();
    EXPECT_EQ(MenuPlaces(), before);
    ExpectToFollowThePointer();
  }
  EXPECT_EQ(Err(), "");
}

INSTANTIATE_TEST_SUITE_P(Alone, MainWindowTest, ::testing::Values(""));
INSTANTIATE_TEST_SUITE_P(Openbox, MainWindowTest, ::testing::Values("openbox"));
INSTANTIATE_TEST_SUITE_P(Twm, MainWindowTest, ::testing::Values("twm"));

}  // namespace
}  // namespace gromlit
