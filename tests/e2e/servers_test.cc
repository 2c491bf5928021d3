// Servers that lack something or are made otherwise: no extensions, other visuals and depths, full
// colour maps, several screens, screens of odd sizes, few fonts, odd pointers and keyboards. The
// program comes up, can be read, draws its trail, acts, lets clicks through and ends.
//
// GROMLIT_SWEEP=all tries every visual and extension; otherwise those that need the most care.
// GROMLIT_SCREENSHOTS names a directory for pictures.
#include "tests/e2e/front_end.h"

#include <X11/Xutil.h>
#include <X11/keysym.h>

#include <array>
#include <cmath>
#include <map>
#include <set>

#include "core/option_files.h"
#include "tests/support/x_proxy.h"

namespace gromlit {
namespace {

namespace fs = std::filesystem;
using testing::kRight;
using testing::Picture;
using testing::Point;
using testing::ProbeClient;
using testing::Process;
using testing::ReadText;
using testing::Title;
using testing::WaitFor;
using testing::WriteText;
using testing::XProxy;
using testing::XServer;

// Those rows of a table that are tried: all, or those that tell the most.
template <typename Row>
std::vector<Row> Tried(std::vector<Row> rows, const std::set<std::string>& telling) {
  if (!testing::TriesAll())
    std::erase_if(rows, [&](const Row& row) { return !telling.contains(row.name); });
  return rows;
}

class ServersTest : public testing::FrontEnd {
 protected:
  void UseServer(const std::string& screen, const std::vector<std::string>& more = {}) {
    player.reset();
    server.reset();
    server = std::make_unique<XServer>(screen, more);
    player = std::make_unique<testing::Player>(server->name());
    player->MoveTo(1, 1);
  }
  void Deliver(Delivery how) {
    GromlitUserOptions options{};
    DefaultUserOptions(&options);
    options.splash = 0;
    options.temp1 = how;
    ASSERT_EQ(SaveUserOptions(&options, defaultOptionFile), 1);
  }
  // A part of the screen as it is seen: pixels looked up in its colour map, 0xrrggbb.
  Picture Seen(int left, int top, int width, int height) {
    Display* display = player->display();
    const int screen = DefaultScreen(display);
    Picture seen(width, height, 0);
    XImage* image = XGetImage(display, player->root(), left, top, static_cast<unsigned>(width),
                              static_cast<unsigned>(height), AllPlanes, ZPixmap);
    if (image == nullptr) return seen;
    std::map<unsigned long, unsigned long> known;
    for (int y = 0; y < height; y++) {
      for (int x = 0; x < width; x++) {
        const unsigned long pixel = XGetPixel(image, x, y);
        if (!known.contains(pixel)) {
          XColor colour{};
          colour.pixel = pixel;
          XQueryColor(display, DefaultColormap(display, screen), &colour);
          known[pixel] = static_cast<unsigned long>(colour.red >> 8) << 16 |
                         static_cast<unsigned long>(colour.green >> 8) << 8 |
                         static_cast<unsigned long>(colour.blue >> 8);
        }
        seen.At(x, y) = known[pixel];
      }
    }
    XDestroyImage(image);
    return seen;
  }
  unsigned long SeenAt(int x, int y) { return Seen(x, y, 1, 1).At(0, 0); }
  void Keep(const std::string& name) {
    if (const char* directory = std::getenv("GROMLIT_SCREENSHOTS"))
      WriteText(std::string(directory) + "/servers-" + name + ".png",
                testing::PngOf(Seen(0, 0, 1280, 1024)));
  }
  static double Light(unsigned long rgb) {
    return (0.3 * static_cast<double>(rgb >> 16 & 0xff) +
            0.59 * static_cast<double>(rgb >> 8 & 0xff) + 0.11 * static_cast<double>(rgb & 0xff)) /
           255;
  }
  static double Contrast(unsigned long a, unsigned long b) { return std::abs(Light(a) - Light(b)); }
  // The most frequent colour of a part of the screen, and the one that differs from it most in
  // light among those that are there at least `least` times.
  static double ContrastIn(const Picture& seen, int least) {
    std::map<unsigned long, int> counts;
    for (const unsigned long pixel : seen.pixels) counts[pixel]++;
    const unsigned long ground =
        std::ranges::max_element(counts, {}, [](const auto& entry) { return entry.second; })->first;
    double most = 0;
    for (const auto& [colour, count] : counts)
      if (count >= least) most = std::max(most, Contrast(colour, ground));
    return most;
  }
  void EndBySignal() {
    EXPECT_TRUE(PointerBecomesFree());
    gromlit->Kill(SIGTERM);
    EXPECT_EQ(gromlit->Wait(std::chrono::seconds(20)), 128 + SIGTERM);
  }
};

// --- Visuals ------------------------------------------------------------------------------------

struct Kind {
  const char* name;
  const char* screen;
  std::vector<std::string> more;
  bool full = false;  // another client has taken every cell of the colour map that it can
};

void PrintTo(const Kind& look, std::ostream* out) {
  *out << look.name;
}

class VisualsTest : public ServersTest, public ::testing::WithParamInterface<Kind> {};

TEST_P(VisualsTest, WindowsCanBeReadAndTheTrailIsSeen) {
  const Kind& look = GetParam();
  UseServer(look.screen, look.more);
  Display* display = player->display();
  if (look.full) {
    unsigned long pixel = 0;
    while (XAllocColorCells(display, DefaultColormap(display, DefaultScreen(display)), False,
                            nullptr, 0, &pixel, 1) != 0) {
      XColor colour{};
      colour.pixel = pixel;
      colour.red = 0xffff;  // a colour that nothing of the program's has
      colour.flags = DoRed | DoGreen | DoBlue;
      XStoreColor(display, DefaultColormap(display, DefaultScreen(display)), &colour);
    }
  }
  WritePlugin("Desktop", {{"right", kRight, {Touch("acted")}}, {"down", testing::kDown, {}}});
  WritePlugin("Default", {{"right", kRight, {}}, {"down", testing::kDown, {}}});
  LaunchInstalled();
  const Window main = WaitShown("Application");
  EXPECT_TRUE(WaitFor([&] { return ContrastIn(Seen(6, 4, 200, ItemHeight()), 40) > 0.4; }))
      << "the titles of the menus cannot be read";
  const Point cell = Cell(0);
  const auto icon = [&] { return Seen(cell.x - 16, cell.y - 16, 32, 32); };
  EXPECT_TRUE(WaitFor([&] { return ContrastIn(icon(), 20) > 0.4; })) << "no icon is seen";
  for (const unsigned long ground : {BlackPixel(display, 0), WhitePixel(display, 0)}) {
    XSetWindowBackground(display, player->root(), ground);
    XClearWindow(display, player->root());
    XSync(display, False);
    const unsigned long plain = SeenAt(900, 900);
    Go({800, 900});
    player->Press(3);
    Trace({{800, 900}, {1100, 900}});
    EXPECT_TRUE(WaitFor([&] { return Contrast(SeenAt(900, 900), plain) > 0.3; }))
        << "no trail over " << ground;
    if (ground == BlackPixel(display, 0)) Keep(look.name);
    player->Release(3);
    EXPECT_TRUE(Appears("acted"));
    EXPECT_TRUE(TrailIsGone());
    EXPECT_TRUE(WaitFor([&] { return SeenAt(900, 900) == plain; })) << "the trail stays";
    fs::remove(MarkFile("acted"));
  }
  // What is selected is inverted, and what is not any more is as it was.
  const auto corner = [&] { return SeenAt(cell.x - 30, cell.y - 16); };
  const unsigned long plain = corner();
  const Point origin = OriginOf(main);
  const auto click = [&](int column) {
    Go({origin.x + Cell(column).x, origin.y + Cell(column).y});
    player->Click(1);
  };
  click(0);
  EXPECT_TRUE(WaitFor([&] { return Contrast(corner(), plain) > 0.3; })) << "no highlight";
  OutwaitDoubleClick();
  click(1);
  EXPECT_TRUE(WaitFor([&] { return corner() == plain; })) << "the highlight stays";
  OutwaitDoubleClick();
  EXPECT_EQ(Err(), "");
  EndBySignal();
}

INSTANTIATE_TEST_SUITE_P(Of, VisualsTest,
                         ::testing::ValuesIn(Tried<Kind>(
                             {
                                 {"StaticGray8", "1280x1024x8", {"-cc", "0"}},
                                 {"GrayScale8", "1280x1024x8", {"-cc", "1"}},
                                 {"StaticColor8", "1280x1024x8", {"-cc", "2"}},
                                 {"PseudoColor8", "1280x1024x8", {"-cc", "3"}},
                                 {"TrueColor8", "1280x1024x8", {"-cc", "4"}},
                                 {"DirectColor8", "1280x1024x8", {"-cc", "5"}},
                                 {"PseudoColor8Full", "1280x1024x8", {"-cc", "3"}, true},
                                 {"GrayScale8Full", "1280x1024x8", {"-cc", "1"}, true},
                                 {"Depth15", "1280x1024x15", {}},
                                 {"Depth16", "1280x1024x16", {}},
                                 {"Depth30", "1280x1024x30", {}},
                             },
                             {"GrayScale8", "DirectColor8", "PseudoColor8Full", "Depth30"})),
                         [](const ::testing::TestParamInfo<Kind>& look) {
                           return look.param.name;
                         });

// The icon that a window manager shows has the logo's colours whatever the pixels of the screen
// are.
TEST_F(ServersTest, IconForTheWindowManagerIsTheSameAtEveryDepthOfTrueColour) {
  std::map<std::string, std::vector<unsigned long>> icons;
  for (const char* screen : {"1280x1024x24", "1280x1024x30", "1280x1024x16"}) {
    UseServer(screen);
    GromlitUserOptions options{};
    DefaultUserOptions(&options);
    options.splash = 0;
    options.temp4 = kModernManners;  // with which there is one
    ASSERT_EQ(SaveUserOptions(&options, defaultOptionFile), 1);
    LaunchInstalled();
    const Window main = WaitShown("Application");
    Atom type;
    int format;
    unsigned long count = 0;
    unsigned long left;
    unsigned char* data = nullptr;
    XGetWindowProperty(player->display(), main,
                       XInternAtom(player->display(), "_NET_WM_ICON", False), 0, 10000, False,
                       AnyPropertyType, &type, &format, &count, &left, &data);
    ASSERT_GT(count, 1000u) << screen;
    const auto* values = reinterpret_cast<const unsigned long*>(data);
    icons[screen].assign(values, values + count);
    XFree(data);
    StopGromlit();
  }
  const auto& is = icons["1280x1024x24"];
  for (const auto& [screen, icon] : icons) {
    ASSERT_EQ(icon.size(), is.size());
    for (size_t i = 2; i < is.size(); i++)
      for (const int shift : {0, 8, 16})
        ASSERT_NEAR(static_cast<double>(icon[i] >> shift & 0xff),
                    static_cast<double>(is[i] >> shift & 0xff), 9)
            << screen << ", value " << i;
  }
}

// --- Extensions ---------------------------------------------------------------------------------

struct Lacking {
  const char* name;
  std::vector<const char*> extensions;
  Delivery delivery;
};

void PrintTo(const Lacking& lacking, std::ostream* out) {
  *out << lacking.name;
}

class LackingTest : public ServersTest, public ::testing::WithParamInterface<Lacking> {};

TEST_P(LackingTest, StrokesClicksKeysAndMenusWork) {
  Deliver(GetParam().delivery);
  const int x = XKeysymToKeycode(player->display(), XK_x);
  WritePlugin("Probe.probe",
              {{"right", kRight, {{kText, "ab"}, {kHotKey, "", x, ControlMask}, Touch("acted")}}});
  ProbeClient probe(install->path(),
                    {"--class", "Probe", "probe", "--geometry", "400x200+800+700", "--focus"});
  XProxy proxy(server->name());
  for (const char* extension : GetParam().extensions) proxy.HideExtension(extension);
  Launch({"-path", install->path(), "-display", proxy.name()});
  for (int round = 1; round <= 2; round++) {
    Draw({{850, 800}, {1150, 800}});
    ASSERT_TRUE(Appears("acted"));
    fs::remove(MarkFile("acted"));
    const auto n = static_cast<size_t>(round);
    const int a = XKeysymToKeycode(player->display(), XK_a);
    probe.Wait(n, "KeyPress window=main keycode=" + std::to_string(a) + " state=0");
    probe.Wait(n, "KeyPress window=main keycode=" + std::to_string(x) + " state=4");
    // A click, with a hand that stands still and one that shakes.
    Go({900, 750});
    player->Press(3);
    if (round == 2) Go({901, 751});
    player->Release(3);
    probe.Wait(n, "ButtonPress window=main button=3");
    probe.Wait(n, "ButtonRelease window=main button=3");
    EXPECT_TRUE(PointerBecomesFree());
  }
  Choose(Title::kOptions, testing::kPreferences);
  EXPECT_NE(WaitShown("Preferences"), 0u);
  // What is said is one line for each matter, and no line of Xlib's.
  EXPECT_EQ(Err().find("missing on display"), std::string::npos) << Err();
  EXPECT_EQ(Out(), "");
  if (proxy.Counts(0).requests == 0) FAIL() << "it was not behind the proxy";
  EndBySignal();
}

INSTANTIATE_TEST_SUITE_P(
    Of, LackingTest,
    ::testing::ValuesIn(
        Tried<Lacking>({{"Xtest", {"XTEST"}, kSentEvents},
                        {"XtestReal", {"XTEST"}, kRealInput},
                        {"Shape", {"SHAPE"}, kSentEvents},
                        {"Xkb", {"XKEYBOARD"}, kSentEvents},
                        {"XkbReal", {"XKEYBOARD"}, kRealInput},
                        {"Randr", {"RANDR"}, kSentEvents},
                        {"Xinerama", {"XINERAMA"}, kSentEvents},
                        {"Xinput", {"XInputExtension"}, kSentEvents},
                        {"XinputReal", {"XInputExtension"}, kRealInput},
                        {"BigRequests", {"BIG-REQUESTS"}, kSentEvents},
                        {"GenericEvents", {"Generic Event Extension"}, kRealInput},
                        {"All",
                         {"XTEST", "SHAPE", "XKEYBOARD", "RANDR", "XINERAMA", "XInputExtension",
                          "BIG-REQUESTS", "XC-MISC", "RENDER", "XFIXES", "Generic Event Extension",
                          "DAMAGE", "Composite", "SYNC", "MIT-SHM", "Present"},
                         kSentEvents},
                        {"AllReal",
                         {"XTEST", "SHAPE", "XKEYBOARD", "RANDR", "XINERAMA", "XInputExtension",
                          "BIG-REQUESTS", "XC-MISC", "RENDER", "XFIXES", "Generic Event Extension"},
                         kRealInput}},
                       {"XtestReal", "Shape", "XkbReal", "XinputReal", "All", "AllReal"})),
    [](const ::testing::TestParamInfo<Lacking>& lacking) { return lacking.param.name; });

// --- Screens ------------------------------------------------------------------------------------

TEST_F(ServersTest, ScreensOfAnySizeAreWorkedOn) {
  for (const char* screen : {"1x1x24", "16x16x24", "320x200x24", "16384x256x24"}) {
    SCOPED_TRACE(screen);
    UseServer(screen);
    DesktopTouches("acted");
    WritePlugin("Default", {});
    fs::remove(ErrFile());
    LaunchInstalled();
    Display* display = player->display();
    const int width = DisplayWidth(display, 0);
    if (width >= 320) {
      // Nothing lies right of the main window, or on the bare screen once it has gone.
      XUnmapWindow(display, WaitShown("Application"));
      ASSERT_TRUE(WaitHidden("Application"));
      player->MoveTo(width - 200, 100);
      player->Press(3);
      for (int x = width - 190; x < width - 20; x += 10) player->MoveTo(x, 100);
      player->Release(3);
      EXPECT_TRUE(Appears("acted"));
      fs::remove(MarkFile("acted"));
    } else {
      player->Click(3);
      player->Press(1);
      player->Release(1);
    }
    EXPECT_EQ(Err(), "");
    EXPECT_TRUE(WaitFor([&] {
      player->Click(1);
      return player->CanGrabPointer();
    }));
    EndBySignal();
  }
}

TEST_F(ServersTest, EachScreenOfADisplayHasAProgramOfItsOwn) {
  UseServer("1280x1024x24", {"-screen", "1", "1024x768x24"});
  DesktopTouches("acted");
  WritePlugin("Probe.probe", {{"right", kRight, {Touch("window")}}});
  const std::string first = server->name() + ".0";
  const std::string second = server->name() + ".1";
  Display* other = XOpenDisplay(second.c_str());
  ASSERT_NE(other, nullptr);
  const Window root = RootWindow(other, 1);
  const auto go = [&](int on, int x, int y) {
    XWarpPointer(other, 0, RootWindow(other, on), 0, 0, 0, 0, x, y);
    XSync(other, False);
  };
  const auto draw = [&](int on, int x, int y) {
    go(on, x, y);
    player->Press(3);
    for (int i = 10; i <= 200; i += 10) go(on, x + i, y);
    player->Release(3);
  };
  Launch({"-path", install->path(), "-display", first});
  ProbeClient probe(install->path(), {"--display", second, "--class", "Probe", "probe",
                                      "--geometry", "400x200+400+300"});
  // A stroke on a screen that nobody draws on is the application's.
  draw(1, 450, 400);
  probe.Wait(1, "ButtonPress window=main button=3");
  probe.Wait(1, "ButtonRelease window=main button=3");
  EXPECT_FALSE(testing::Exists(MarkFile("window")));
  // A stroke that leaves its screen does not keep the pointer, and none of it is lost to the next.
  go(0, 800, 900);
  player->Press(3);
  for (int i = 10; i <= 100; i += 10) go(0, 800 + i, 900);
  go(1, 300, 100);
  go(1, 350, 100);
  player->Release(3);
  EXPECT_TRUE(WaitFor([&] {
    const int status = XGrabPointer(other, root, False, ButtonPressMask, GrabModeAsync,
                                    GrabModeAsync, 0, 0, CurrentTime);
    XUngrabPointer(other, CurrentTime);
    XSync(other, False);
    return status == GrabSuccess;
  })) << "the pointer stays grabbed";
  fs::remove(MarkFile("acted"));
  draw(0, 800, 900);
  EXPECT_TRUE(Appears("acted"));
  EXPECT_TRUE(TrailIsGone());
  fs::remove(MarkFile("acted"));
  // One for the other screen, beside it.
  const auto beside = Start({"-path", install->path(), "-display", second},
                            {.redirection = ">\"$OUT.2\" 2>\"$ERR.2\""});
  EXPECT_TRUE(WaitFor([&] {
    XWindowAttributes attributes{};
    XGetWindowAttributes(other, root, &attributes);
    return (attributes.all_event_masks & SubstructureNotifyMask) != 0 || !beside->Running();
  }));
  EXPECT_TRUE(beside->Running()) << ReadText(OutFile() + ".2") << ReadText(ErrFile() + ".2");
  draw(1, 450, 400);
  EXPECT_TRUE(Appears("window"));
  draw(0, 800, 900);
  EXPECT_TRUE(Appears("acted"));
  beside->Kill(SIGTERM);
  EXPECT_EQ(beside->Wait(), 128 + SIGTERM);
  EXPECT_EQ(Err(), "");
  go(0, 1, 1);
  XCloseDisplay(other);
}

// --- Sizes that change --------------------------------------------------------------------------

TEST_F(ServersTest, ScreenChangesDuringAStrokeAMenuAndADialog) {
  const auto randr = [](std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), "xrandr");
    return Process(arguments, "/dev/null").Wait();
  };
  ASSERT_EQ(
      randr({"--newmode", "small", "40", "800", "840", "900", "1000", "600", "610", "620", "650"}),
      0);
  ASSERT_EQ(randr({"--addmode", "screen", "small"}), 0);
  const auto resize = [&](bool small) {
    ASSERT_EQ(randr({"--output", "screen", "--mode", small ? "small" : "1280x1024"}), 0);
    ASSERT_TRUE(WaitFor([&] { return BoxOf(player->root()).width == (small ? 800 : 1280); }));
  };
  WritePlugin("Desktop", {{"right", kRight, {Touch("acted")}}});
  WritePlugin("Default", {});
  LaunchInstalled();
  // The trail is mapped.
  for (const bool small : {true, false}) {
    Go({500, 500});
    player->Press(3);
    Trace({{500, 500}, {600, 500}});
    EXPECT_TRUE(WaitFor([this] { return !MappedOverlays().empty(); }));
    resize(small);
    Trace({{600, 500}, {760, 500}});
    player->Release(3);
    EXPECT_TRUE(Appears("acted"));
    EXPECT_TRUE(TrailIsGone());
    fs::remove(MarkFile("acted"));
  }
  // A stroke outside of what is left: the server puts the pointer on the screen.
  Go({1000, 900});
  player->Press(3);
  Trace({{1000, 900}, {1200, 900}});
  resize(true);
  player->Release(3);
  EXPECT_TRUE(TrailIsGone());
  EXPECT_TRUE(PointerBecomesFree());
  resize(false);
  fs::remove(MarkFile("acted"));
  // A menu is open.
  PressTitle(Title::kHelp);
  resize(true);
  player->Release(1);
  player->Click(1);
  EXPECT_TRUE(WaitFor([this] { return Menu() == 0; }));
  EXPECT_TRUE(PointerBecomesFree());
  resize(false);
  for (int open = 1; open <= 3 && Dialog() != 0; open++) DialogRight();
  // A dialog is open.
  Choose(Title::kPlugIn, testing::kExit);
  ASSERT_NE(WaitDialog(), 0u);
  resize(true);
  DialogRight();
  EXPECT_TRUE(WaitNoDialog());
  resize(false);
  Go({500, 500});
  Draw({{500, 500}, {700, 500}});
  EXPECT_TRUE(Appears("acted"));
  EXPECT_EQ(Err(), "");
  EndBySignal();
}

// --- Pointers and keyboards ---------------------------------------------------------------------

TEST_F(ServersTest, PointerMappingsAreFollowedAndSwitchedOffButtonsDoNoHarm) {
  for (const Delivery how : {kSentEvents, kRealInput}) {
    Deliver(how);
    DesktopTouches("acted");
    WritePlugin("Default", {});
    ProbeClient probe(install->path(),
                      {"--class", "Probe", "probe", "--geometry", "300x150+950+100"});
    LaunchInstalled();
    std::array<unsigned char, 256> usual{};
    Display* display = player->display();
    const int count = XGetPointerMapping(display, usual.data(), static_cast<int>(usual.size()));
    const auto map = [&](const std::vector<int>& to) {
      std::array<unsigned char, 256> wanted = usual;
      for (size_t i = 0; i < to.size(); i++) wanted[i] = static_cast<unsigned char>(to[i]);
      ASSERT_EQ(XSetPointerMapping(display, wanted.data(), count), MappingSuccess);
    };
    // A left hand's mouse: the first button draws.
    map({3, 2, 1});
    Draw({{800, 900}, {1100, 900}}, 1);
    EXPECT_TRUE(Appears("acted"));
    EXPECT_TRUE(TrailIsGone());
    fs::remove(MarkFile("acted"));
    Go({1000, 150});
    player->Click(1);
    probe.Wait(1, "ButtonPress window=main button=3");
    probe.Wait(1, "ButtonRelease window=main button=3");
    // No draw button at all: nothing happens, and nothing stays.
    map({1, 2, 0});
    player->Click(3);
    Go({800, 900});
    player->Press(3);
    Go({900, 900});
    player->Release(3);
    EXPECT_TRUE(PointerBecomesFree());
    EXPECT_EQ(probe.Lines("ButtonPress window=main button=3").size(), 1u);
    // Switched off while it is down: the server keeps what is down from being changed.
    map({1, 2, 3});
    Draw({{800, 900}, {1100, 900}});
    EXPECT_TRUE(Appears("acted"));
    fs::remove(MarkFile("acted"));
    EndBySignal();
  }
}

TEST_F(ServersTest, KeyboardThatChangesWhileKeysAreSentLosesNothingElse) {
  for (const Delivery how : {kSentEvents, kRealInput}) {
    SCOPED_TRACE(how);
    Deliver(how);
    std::vector<testing::Command> commands(6, {kText, std::string(40, 'q') + "\u65e5\u00e4Z"});
    commands.push_back(Touch("acted"));
    WritePlugin("Probe.probe", {{"right", kRight, commands}});
    ProbeClient probe(install->path(),
                      {"--class", "Probe", "probe", "--geometry", "400x200+800+700", "--focus"});
    LaunchInstalled();
    for (int round = 0; round < 2; round++) {
      DrawOnly({{850, 800}, {1150, 800}});
      for (const char* layout : {"fr", "ru", "us"}) {
        Process change({"setxkbmap", layout}, "/dev/null");
        EXPECT_EQ(change.Wait(), 0);
      }
      EXPECT_TRUE(Appears("acted"));
      EXPECT_TRUE(TrailIsGone());
      fs::remove(MarkFile("acted"));
    }
    std::array<char, 32> down;
    XQueryKeymap(player->display(), down.data());
    for (const char byte : down) EXPECT_EQ(byte, 0) << "a key stays down";
    EXPECT_EQ(Err(), "");
    EndBySignal();
  }
}

// Before the first action as well as between two.
TEST_F(ServersTest, KeyboardThatChangedBeforeAnActionIsTheOneThatCounts) {
  for (const Delivery how : {kSentEvents, kRealInput}) {
    SCOPED_TRACE(how);
    Deliver(how);
    WritePlugin("Probe.probe", {{"right", kRight, {{kText, "y"}, Touch("acted")}}});
    ProbeClient probe(install->path(),
                      {"--class", "Probe", "probe", "--geometry", "400x200+800+700", "--focus"});
    LaunchInstalled();
    ASSERT_TRUE(Settle());
    size_t round = 0;
    const std::pair<const char*, int> layouts[] = {{"de", 52}, {"us", 29}};
    for (const auto& [layout, y] : layouts) {
      Process change({"setxkbmap", "-model", "pc105", "-layout", layout}, "/dev/null");
      EXPECT_EQ(change.Wait(), 0);
      ASSERT_TRUE(Settle());
      DrawOnly({{850, 800}, {1150, 800}});
      EXPECT_TRUE(Appears("acted"));
      fs::remove(MarkFile("acted"));
      const auto lines = probe.Wait(++round, "KeyPress");
      EXPECT_TRUE(lines.back().starts_with("KeyPress window=main keycode=" + std::to_string(y)))
          << layout << ": " << lines.back();
    }
    EndBySignal();
  }
}

TEST_F(ServersTest, KeyboardOfFewKeysIsEnough) {
  // All that has a letter, but one key, is taken away.
  int first;
  int last;
  Display* display = player->display();
  XDisplayKeycodes(display, &first, &last);
  const int kept = XKeysymToKeycode(display, XK_a);
  KeySym none[1] = {NoSymbol};
  for (int code = first; code <= last; code++)
    if (code != kept) XChangeKeyboardMapping(display, code, 1, none, 1);
  XSync(display, False);
  for (const Delivery how : {kSentEvents, kRealInput}) {
    SCOPED_TRACE(how);
    Deliver(how);
    WritePlugin("Probe.probe",
                {{"right", kRight, {{kText, "abc aA\n"}, {kHotKey, "", 10, 5}, Touch("acted")}}});
    ProbeClient probe(install->path(),
                      {"--class", "Probe", "probe", "--geometry", "400x200+800+700", "--focus"});
    LaunchInstalled();
    Draw({{850, 800}, {1150, 800}});
    EXPECT_TRUE(Appears("acted"));
    probe.Wait(1, "KeyPress window=main keycode=" + std::to_string(kept));
    fs::remove(MarkFile("acted"));
    EXPECT_EQ(Err(), "");
    EndBySignal();
  }
}

}  // namespace
}  // namespace gromlit
