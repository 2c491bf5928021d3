#include "tests/e2e/gromlit_run.h"

#include <X11/Xatom.h>
#include <X11/Xutil.h>
#include <X11/extensions/XInput.h>
#include <X11/extensions/XInput2.h>
#include <signal.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <string_view>

#include "core/plugin_files.h"

namespace gromlit {
namespace {

using testing::Action;
using testing::Command;
using testing::kDown;
using testing::kEll;
using testing::kLeft;
using testing::kRight;
using testing::kUp;
using testing::Point;
using testing::ProbeClient;
using testing::WaitFor;

constexpr int kKeyA = 38;  // the "a" key of the usual keymap

// Both with and without a window manager the probe's window covers this rectangle.
constexpr Point kInProbe = {450, 400};

class CaptureTest : public testing::GromlitRun, public ::testing::WithParamInterface<const char*> {
 protected:
  void SetUp() override {
    GromlitRun::SetUp();
    if (*GetParam() != '\0') StartWindowManager(GetParam());
  }
  // A probe of this class that covers (300, 250) to (900, 750), frame aside.
  std::unique_ptr<ProbeClient> StartProbe(std::vector<std::string> more = {}) {
    std::vector<std::string> options = {"--class", "Probe", "probe", "--geometry",
                                        "600x500+300+250"};
    options.insert(options.end(), more.begin(), more.end());
    auto probe = std::make_unique<ProbeClient>(install->path(), options);
    // The window manager may have put it elsewhere.
    XMoveWindow(player->display(), probe->window(), 300, 250);
    XSync(player->display(), False);
    EXPECT_TRUE(WaitFor([&] { return std::abs(Origin(probe->window()).x - 300) < 30; }));
    return probe;
  }
  // How long the program has kept the processor busy, itself and in the kernel.
  long Milliseconds() const {
    const std::string stat = testing::ReadText("/proc/" + std::to_string(gromlit->pid()) + "/stat");
    long user = 0;
    long system = 0;
    // The second word is the name in brackets.
    std::sscanf(stat.c_str() + stat.rfind(')'),
                ") %*c %*d %*d %*d %*d %*d %*u %*u %*u %*u %*u %ld %ld", &user, &system);
    return (user + system) * 1000 / sysconf(_SC_CLK_TCK);
  }
  Point Origin(Window window) {
    Point origin{};
    Window child;
    XTranslateCoordinates(player->display(), window, player->root(), 0, 0, &origin.x, &origin.y,
                          &child);
    return origin;
  }
  // A stroke to the right marks the start and, two seconds later, the end of its action.
  Action SlowAction() const {
    std::vector<Command> commands = {Touch("started")};
    commands.insert(commands.end(), 8, {kRun, "system:wait"});
    commands.push_back(Touch("ended"));
    return {"slow", kRight, commands};
  }
  // What the third button of the server's test pointer, with which the program clicks, becomes;
  // false while one of its buttons is down.
  bool MapThirdTestButton(unsigned char to) {
    Display* other = player->display();
    int major = 2;
    int minor = 0;
    XIQueryVersion(other, &major, &minor);
    int count = 0;
    XIDeviceInfo* devices = XIQueryDevice(other, XIAllDevices, &count);
    XDevice pointer{};
    for (int i = 0; i < count; i++) {
      if (std::string_view(devices[i].name) == "Virtual core XTEST pointer")
        pointer.device_id = static_cast<XID>(devices[i].deviceid);
    }
    XIFreeDeviceInfo(devices);
    std::array<unsigned char, 256> map{};
    const int buttons = XGetDeviceButtonMapping(other, &pointer, map.data(), map.size());
    map[2] = to;
    return XSetDeviceButtonMapping(other, &pointer, map.data(), buttons) == MappingSuccess;
  }
  std::string ButtonLine(const char* type, Point root, Window window, unsigned state, bool sent) {
    const Point origin = Origin(window);
    char line[200];
    std::snprintf(line, sizeof line,
                  "%s window=main button=3 state=%u x=%d y=%d x_root=%d y_root=%d send_event=%d",
                  type, state, root.x - origin.x, root.y - origin.y, root.x, root.y, sent ? 1 : 0);
    return line;
  }
};

const std::vector<Point> kDrawRight = {{400, 400}, {600, 400}};
const std::vector<Point> kDrawDown = {{500, 350}, {500, 600}};
const std::vector<Point> kDrawEll = {{400, 350}, {400, 550}, {620, 550}};

TEST_P(CaptureTest, StrokeRunsTheFirstMatchingAction) {
  WritePlugin("Probe.probe", {{"down", kDown, {Touch("down")}},
                              {"first", kRight, {Touch("first")}},
                              {"second", kRight, {Touch("second")}}});
  const auto probe = StartProbe();
  StartGromlit();
  Draw(kDrawRight);
  EXPECT_TRUE(Appears("first"));
  Draw(kDrawDown);
  EXPECT_TRUE(Appears("down"));
  EXPECT_FALSE(testing::Exists(MarkFile("second")));
  EXPECT_TRUE(probe->Lines("Button").empty()) << "a stroke must not click";
}

TEST_P(CaptureTest, ClassWithoutAPluginIsOfferedOneFirstAndServedByDefaultThen) {
  WritePlugin("Default", {{"right", kRight, {Touch("default")}}});
  const auto probe = StartProbe();
  StartGromlit();
  Draw(kDrawRight);
  EXPECT_TRUE(PointerBecomesFree());
  Draw(kDrawDown);
  EXPECT_TRUE(PointerBecomesFree());
  EXPECT_FALSE(testing::Exists(MarkFile("default")));
  Draw(kDrawRight);
  EXPECT_TRUE(Appears("default"));
}

TEST_P(CaptureTest, BareRootIsTheDesktop) {
  WritePlugin("Desktop", {{"right", kRight, {Touch("desktop")}}});
  WritePlugin("Default", {{"right", kRight, {Touch("default")}}});
  StartGromlit();
  Draw({{800, 900}, {1100, 900}});
  EXPECT_TRUE(Appears("desktop"));
  EXPECT_FALSE(testing::Exists(MarkFile("default")));
}

TEST_P(CaptureTest, ClickOnAFrameOrOnAnApplicationThatSelectsNoButtonsComesFromTheServer) {
  Display* dpy = player->display();
  XSetWindowAttributes attributes{};
  attributes.override_redirect = True;
  attributes.event_mask = ButtonPressMask | ButtonReleaseMask;
  const Window frame =
      XCreateWindow(dpy, player->root(), 1000, 200, 200, 200, 0, CopyFromParent, InputOutput,
                    nullptr, CWOverrideRedirect | CWEventMask, &attributes);
  const Window inside = XCreateSimpleWindow(dpy, frame, 20, 40, 160, 140, 0, 0, 0);
  testing::SetClass(dpy, inside, "Framed", "framed");
  XMapSubwindows(dpy, frame);
  XMapWindow(dpy, frame);
  XSync(dpy, False);
  StartGromlit();
  for (const Point at : {Point{1010, 210}, Point{1100, 300}}) {
    SCOPED_TRACE(at.y);
    Go(at);
    player->Click(3);
    for (const int type : {ButtonPress, ButtonRelease}) {
      XEvent event{};
      ASSERT_TRUE(WaitFor([&] { return XCheckTypedWindowEvent(dpy, frame, type, &event) != 0; }));
      EXPECT_FALSE(event.xbutton.send_event);
      EXPECT_EQ(event.xbutton.button, 3u);
      EXPECT_EQ(event.xbutton.x_root, at.x);
      EXPECT_EQ(event.xbutton.y_root, at.y);
    }
    EXPECT_TRUE(PointerBecomesFree());
  }
  XEvent event;
  EXPECT_FALSE(XCheckWindowEvent(dpy, frame, ButtonPressMask | ButtonReleaseMask, &event))
      << "more than one click";
}

// Where the server has no button of its own for it, the click of an application that takes buttons
// by another protocol than the core's is sent: better than none.
TEST_P(CaptureTest, ClickThatNoButtonOfTheServerGivesIsSent) {
  const auto probe = StartProbe({"--events", std::to_string(ExposureMask)});
  StartGromlit();
  Go(kInProbe);
  // The user's press is taken in while there is a button for it.
  gromlit->Kill(SIGSTOP);
  player->Click(3);
  EXPECT_TRUE(WaitFor([this] { return MapThirdTestButton(2); }));
  gromlit->Kill(SIGCONT);
  const auto lines = probe->Wait(2, "Button");
  ASSERT_EQ(lines.size(), 2u);
  EXPECT_EQ(lines[0], ButtonLine("ButtonPress", kInProbe, probe->window(), 0, true));
  EXPECT_EQ(lines[1], ButtonLine("ButtonRelease", kInProbe, probe->window(), 0, true));
  EXPECT_TRUE(PointerBecomesFree());
  // With the button back the server makes the click, which nobody here takes.
  EXPECT_TRUE(WaitFor([this] { return MapThirdTestButton(3); }));
  player->Click(3);
  EXPECT_TRUE(Settle());
  EXPECT_TRUE(PointerBecomesFree());
  EXPECT_EQ(probe->Lines("Button").size(), 2u);
}

TEST_P(CaptureTest, ShortPressIsExactlyOneSyntheticClickAtThePress) {
  const auto probe = StartProbe();
  StartGromlit();
  Go(kInProbe);
  player->Press(3);
  Go({kInProbe.x + 2, kInProbe.y + 3});
  Go({kInProbe.x + 3, kInProbe.y + 1});
  player->Release(3);
  const auto lines = probe->Wait(2, "Button");
  ASSERT_EQ(lines.size(), 2u);
  EXPECT_EQ(lines[0], ButtonLine("ButtonPress", kInProbe, probe->window(), 0, true));
  EXPECT_EQ(lines[1], ButtonLine("ButtonRelease", kInProbe, probe->window(), 0, true));
}

TEST_P(CaptureTest, PressWithoutMotionIsAClickToo) {
  const auto probe = StartProbe();
  StartGromlit();
  Go(kInProbe);
  player->Click(3);
  EXPECT_EQ(probe->Wait(2, "Button").size(), 2u);
}

TEST_P(CaptureTest, PressWithShiftOrNumLockIsLeftAlone) {
  const auto probe = StartProbe();
  StartGromlit();
  Go(kInProbe);
  player->KeyDown(XK_Shift_L);
  player->Click(3);
  player->KeyUp(XK_Shift_L);
  auto lines = probe->Wait(2, "Button");
  ASSERT_EQ(lines.size(), 2u);
  EXPECT_EQ(lines[0], ButtonLine("ButtonPress", kInProbe, probe->window(), ShiftMask, false));
  player->Type(XK_Num_Lock);
  player->Click(3);
  lines = probe->Wait(4, "Button");
  ASSERT_EQ(lines.size(), 4u);
  EXPECT_EQ(lines[2], ButtonLine("ButtonPress", kInProbe, probe->window(), Mod2Mask, false));
}

TEST_P(CaptureTest, OverAnApplicationThatIsHandsOffEveryPressIsTheApplications) {
  WritePlugin("Probe.probe", {{"right", kRight, {Touch("right")}}}, "Probe", kHandsOff);
  const auto probe = StartProbe();
  StartGromlit();
  Go(kInProbe);
  std::vector<std::string> lines;
  for (size_t i = 1; i <= 3; i++) {
    player->Press(3);
    player->Release(3);
    lines = probe->Wait(2 * i, "Button");
  }
  ASSERT_EQ(lines.size(), 6u);
  for (size_t i = 0; i < lines.size(); i += 2) {
    EXPECT_EQ(lines[i], ButtonLine("ButtonPress", kInProbe, probe->window(), 0, false));
    EXPECT_EQ(lines[i + 1],
              ButtonLine("ButtonRelease", kInProbe, probe->window(), Button3Mask, false));
  }
  // What would be a stroke is the application's dragging.
  player->Press(3);
  probe->Wait(7, "Button");
  for (int x = kInProbe.x; x <= kInProbe.x + 200; x += 8) player->MoveTo(x, kInProbe.y);
  player->Release(3);
  probe->Wait(8, "Button");
  EXPECT_TRUE(MappedOverlays().empty());
  EXPECT_TRUE(PointerBecomesFree());
  EXPECT_FALSE(testing::Exists(MarkFile("right")));
}

TEST_P(CaptureTest, DefaultHandsOffLeavesGesturesWhereThereIsAPlugin) {
  WritePlugin("Default", {{"right", kRight, {Touch("default")}}}, "Default", kHandsOff);
  WritePlugin("Probe.probe", {{"right", kRight, {Touch("right")}}});
  const auto probe = StartProbe();
  const ProbeClient other(install->path(), {"--class", "Other", "other", "--override-redirect",
                                            "--geometry", "80x80+920+600"});
  StartGromlit();
  Go({960, 640});
  player->Press(3);
  player->Release(3);
  for (const std::string& line : other.Wait(2, "Button"))
    EXPECT_NE(line.find("send_event=0"), std::string::npos) << line;
  Draw(kDrawRight);
  EXPECT_TRUE(Appears("right"));
  EXPECT_FALSE(testing::Exists(MarkFile("default")));
}

TEST_P(CaptureTest, PressWhileAnotherButtonIsHeldIsReplayed) {
  // The first press goes to nobody, so that no implicit grab keeps the second one away.
  const auto probe = StartProbe({"--events", "0"});
  const auto other = std::make_unique<ProbeClient>(
      install->path(), std::vector<std::string>{"--class", "Other", "other", "--geometry",
                                                "200x200+950+100", "--override-redirect"});
  StartGromlit();
  Go(kInProbe);
  player->Press(1);
  Go({1000, 150});
  player->Press(3);
  const auto lines = other->Wait(1, "ButtonPress");
  ASSERT_FALSE(lines.empty());
  EXPECT_NE(lines[0].find("button=3 state=256 "), std::string::npos) << lines[0];
  EXPECT_NE(lines[0].find("send_event=0"), std::string::npos) << lines[0];
  player->Release(3);
  player->Release(1);
  EXPECT_TRUE(PointerBecomesFree());
}

TEST_P(CaptureTest, SecondButtonAbandonsTheStroke) {
  WritePlugin("Probe.probe",
              {{"right", kRight, {Touch("right")}}, {"down", kDown, {Touch("down")}}});
  const auto probe = StartProbe();
  StartGromlit();
  Go(kDrawRight[0]);
  player->Press(3);
  Trace(kDrawRight);
  EXPECT_TRUE(WaitFor([this] { return !MappedOverlays().empty(); }));
  player->Press(1);
  EXPECT_TRUE(WaitFor([this] { return MappedOverlays().empty(); }));
  Go({700, 700});  // not frozen
  player->Release(3);
  player->Release(1);
  EXPECT_TRUE(PointerBecomesFree());
  Draw(kDrawDown);
  EXPECT_TRUE(Appears("down"));
  EXPECT_FALSE(testing::Exists(MarkFile("right")));
  EXPECT_TRUE(probe->Lines("Button").empty());
}

TEST_P(CaptureTest, PressesWhileAnActionWaitsFreezeNothing) {
  WritePlugin("Probe.probe", {SlowAction()});
  const auto probe = StartProbe();
  StartGromlit();
  DrawOnly(kDrawRight);
  ASSERT_TRUE(Appears("started"));
  Go({500, 500});
  player->Press(3);
  const auto lines = probe->Wait(1, "ButtonPress");
  ASSERT_FALSE(lines.empty());
  EXPECT_NE(lines[0].find("send_event=0"), std::string::npos) << lines[0];
  Go({700, 700});
  player->Release(3);
  EXPECT_TRUE(PointerBecomesFree());
  EXPECT_FALSE(testing::Exists(MarkFile("ended"))) << "the action was over before the press";
  EXPECT_TRUE(Appears("ended"));
  EXPECT_TRUE(WaitFor([this] { return MappedOverlays().empty(); }));
  // The draw button is captured again.
  Draw(kDrawRight);
  EXPECT_TRUE(PointerBecomesFree());
  EXPECT_EQ(probe->Lines("ButtonPress").size(), 1u);
}

TEST_P(CaptureTest, LongStrokeKeepsItsFirst256Points) {
  // To the right for 255 motions, then back to the start: with all points the stroke ends in its
  // first third, with the first 256 it ends on the right.
  WritePlugin("Probe.probe",
              {{"there and back", {{16, 136}, {264, 136}, {16, 136}}, {Touch("all")}},
               {"right", kRight, {Touch("kept")}}});
  const auto probe = StartProbe();
  StartGromlit();
  Draw({{400, 400}, {655, 400}, {410, 400}}, 3, 1);
  EXPECT_TRUE(Appears("kept"));
  EXPECT_FALSE(testing::Exists(MarkFile("all")));
}

TEST_P(CaptureTest, StrokeOf255MotionsIsKeptWhole) {
  WritePlugin("Probe.probe",
              {{"there and back", {{16, 136}, {264, 136}, {16, 136}}, {Touch("all")}},
               {"right", kRight, {Touch("kept")}}});
  const auto probe = StartProbe();
  StartGromlit();
  Draw({{400, 400}, {527, 400}, {399, 400}}, 3, 1);
  EXPECT_TRUE(Appears("all"));
}

TEST_P(CaptureTest, TrailIsInvertedAndGrowsWithThePointer) {
  WritePlugin("Probe.probe", {{"ell", kEll, {Touch("ell")}}});
  const auto probe = StartProbe();
  StartGromlit();
  Go({350, 400});
  const unsigned long before = player->Pixel(400, 400);
  player->Press(3);
  Trace({{350, 400}, {450, 400}});
  EXPECT_TRUE(WaitFor([&] { return player->Pixel(400, 400) == (~before & 0xffffff); }));
  EXPECT_EQ(player->Pixel(400, 410), before);
  std::vector<Window> overlays = MappedOverlays();
  ASSERT_EQ(overlays.size(), 1u);
  XWindowAttributes attributes{};
  XGetWindowAttributes(player->display(), overlays[0], &attributes);
  EXPECT_EQ(attributes.width, 500);
  // The first motion lies at (375, 375) of the small window.
  EXPECT_EQ(attributes.x, 358 - 375);
  EXPECT_EQ(attributes.y, 400 - 375);
  Trace({{450, 400}, {850, 400}});
  EXPECT_TRUE(
      WaitFor([&] { return player->Pixel(800, 400) == (~player->Pixel(800, 420) & 0xffffff); }));
  XGetWindowAttributes(player->display(), overlays[0], &attributes);
  EXPECT_GT(attributes.width, 850 - attributes.x);
  EXPECT_EQ(attributes.height, 500);
  Trace({{850, 400}, {850, 720}});
  EXPECT_TRUE(WaitFor([&] {
    XGetWindowAttributes(player->display(), overlays[0], &attributes);
    return attributes.height > 500;
  }));
  EXPECT_EQ(MappedOverlays().size(), 1u);
  player->Release(3);
  EXPECT_TRUE(WaitFor([this] { return MappedOverlays().empty(); }));
  EXPECT_EQ(player->Pixel(400, 400), before);
}

TEST_P(CaptureTest, TrailSwitchesToTheFullScreenNearItsLeftAndTopEdge) {
  WritePlugin("Probe.probe", {{"left", kLeft, {Touch("left")}}, {"up", kUp, {Touch("up")}}});
  const auto probe = StartProbe();
  StartGromlit();
  for (const bool up : {false, true}) {
    const Point from = {850, 700};
    const Point to = up ? Point{850, 310} : Point{440, 700};
    Go(from);
    player->Press(3);
    Trace({from, to});
    EXPECT_TRUE(WaitFor([this] { return MappedOverlays().size() == 2; }));
    bool full = false;
    for (const Window overlay : MappedOverlays()) {
      XWindowAttributes attributes{};
      XGetWindowAttributes(player->display(), overlay, &attributes);
      full |= attributes.width == 1280 && attributes.height == 1024;
    }
    EXPECT_TRUE(full);
    player->Release(3);
    EXPECT_TRUE(Appears(up ? "up" : "left"));
    EXPECT_TRUE(WaitFor([this] { return MappedOverlays().empty(); }));
  }
}

TEST_P(CaptureTest, TrailStaysUntilTheActionHasRun) {
  WritePlugin("Probe.probe", {SlowAction()});
  const auto probe = StartProbe();
  StartGromlit();
  DrawOnly(kDrawRight);
  ASSERT_TRUE(Appears("started"));
  EXPECT_FALSE(MappedOverlays().empty());
  EXPECT_TRUE(Appears("ended"));
  EXPECT_TRUE(WaitFor([this] { return MappedOverlays().empty(); }));
}

TEST_P(CaptureTest, TargetThatDiesInMidStrokeHarmsNothing) {
  WritePlugin("Probe.probe", {{"keys", kRight, {{kHotKey, "a", kKeyA, 0}, Touch("ran")}}});
  auto probe = StartProbe();
  StartGromlit();
  Go(kDrawRight[0]);
  player->Press(3);
  Trace({kDrawRight[0], {500, 400}});
  ASSERT_TRUE(WaitFor([this] { return !MappedOverlays().empty(); }));
  probe->process().Kill(SIGKILL);
  Trace({{500, 400}, kDrawRight[1]});
  player->Release(3);
  EXPECT_TRUE(Appears("ran"));
  EXPECT_TRUE(gromlit->Running());
  // A click whose target died is lost silently.
  probe = StartProbe();
  Go(kInProbe);
  player->Press(3);
  probe->process().Kill(SIGKILL);
  player->Release(3);
  EXPECT_TRUE(PointerBecomesFree());
  EXPECT_TRUE(gromlit->Running());
}

TEST_P(CaptureTest, StrokeOnTheOwnMainWindowWithoutAPluginDoesNothing) {
  WritePlugin("Default", {{"right", kRight, {Touch("default")}}});
  StartGromlit();
  const Window main = MainWindow();
  ASSERT_NE(main, 0u);
  // The window manager moves it to its place and then gives it the focus.
  const auto focused = [&] {
    Window focus;
    int revert;
    XGetInputFocus(player->display(), &focus, &revert);
    return focus == main;
  };
  ASSERT_TRUE(manager == nullptr || WaitFor(focused));
  const Point origin = Origin(main);
  for (int i = 0; i < 3; i++) {
    Draw({{origin.x + 40, origin.y + 100}, {origin.x + 300, origin.y + 100}});
    EXPECT_TRUE(PointerBecomesFree());
  }
  EXPECT_FALSE(testing::Exists(MarkFile("default")));
}

TEST_P(CaptureTest, MotionOfExactlyTheSensitivityIsAStroke) {
  WriteOptions(3, 10);
  WritePlugin("Probe.probe", {{"right", kRight, {Touch("stroke")}}});
  const auto probe = StartProbe();
  StartGromlit();
  // The distance is measured from the press and from the first motion, whichever is more.
  Draw({{400, 400}, {401, 400}, {409, 400}}, 3, 1);
  EXPECT_EQ(probe->Wait(2, "Button").size(), 2u);
  Draw({{400, 400}, {399, 400}, {408, 400}}, 3, 1);
  EXPECT_EQ(probe->Wait(4, "Button").size(), 4u);
  Draw({{400, 400}, {401, 400}, {410, 400}}, 3, 1);
  EXPECT_TRUE(Appears("stroke"));
  EXPECT_EQ(probe->Lines("Button").size(), 4u);
}

TEST_P(CaptureTest, AStrokeInOneJumpIsAStroke) {
  WritePlugin("Probe.probe", {{"right", kRight, {Touch("stroke")}}});
  const auto probe = StartProbe();
  StartGromlit();
  Go(kDrawRight[0]);
  player->Press(3);
  player->MoveTo(kDrawRight[0].x + 300, kDrawRight[0].y);
  player->Release(3);
  EXPECT_TRUE(Appears("stroke"));
  EXPECT_TRUE(PointerBecomesFree());
  EXPECT_TRUE(probe->Lines("Button").empty()) << "it became a click";
}

TEST_P(CaptureTest, AStrokeThatTheProgramSleepsThroughIsAStroke) {
  WritePlugin("Probe.probe", {{"right", kRight, {Touch("stroke")}}});
  const auto probe = StartProbe();
  StartGromlit();
  Go(kDrawRight[0]);
  gromlit->Kill(SIGSTOP);
  player->Press(3);
  for (int x = 410; x <= 700; x += 10) player->MoveTo(x, kDrawRight[0].y);
  player->Release(3);
  gromlit->Kill(SIGCONT);
  EXPECT_TRUE(Appears("stroke"));
  EXPECT_TRUE(PointerBecomesFree());
  EXPECT_TRUE(probe->Lines("Button").empty()) << "it became a click";
}

// Once the pointer is thawed every motion arrives, also those of a hand that went on while the
// program was still looking for the application.
TEST_P(CaptureTest, AClickGoesWhereThePressWasHoweverFarThePointerIsByNow) {
  const auto probe = StartProbe();
  const auto other = std::make_unique<ProbeClient>(
      install->path(), std::vector<std::string>{"--class", "Other", "other", "--geometry",
                                                "200x200+950+100", "--override-redirect"});
  StartGromlit();
  for (int i = 1; i <= 5; i++) {
    Go(kInProbe);
    gromlit->Kill(SIGSTOP);
    player->Click(3);
    player->MoveTo(1000, 150);
    gromlit->Kill(SIGCONT);
    const auto lines = probe->Wait(static_cast<size_t>(2 * i), "Button");
    ASSERT_EQ(lines.size(), static_cast<size_t>(2 * i));
    EXPECT_EQ(lines.back(), ButtonLine("ButtonRelease", kInProbe, probe->window(), 0, true));
  }
  EXPECT_TRUE(other->Lines("Button").empty());
}

TEST_P(CaptureTest, ADrawButtonThatASecondInstanceTookComesBack) {
  WritePlugin("Probe.probe", {SlowAction(), {"down", kDown, {Touch("down")}}});
  const auto probe = StartProbe();
  StartGromlit();
  DrawOnly(kDrawRight);
  ASSERT_TRUE(Appears("started"));
  const std::unique_ptr<testing::Process> first = std::move(gromlit);
  StartGromlit(false);  // on the same installation, as a user would by mistake
  ASSERT_TRUE(Appears("ended"));
  EXPECT_TRUE(
      WaitFor([this] { return GromlitOutput().find("Drawing Button") != std::string::npos; }));
  EXPECT_TRUE(WaitFor([this] { return MappedOverlays().empty(); }));
  gromlit->Kill(SIGKILL);
  gromlit->Wait();
  gromlit = nullptr;
  // Nothing happens meanwhile that the first one would see.
  EXPECT_TRUE(WaitFor([&] {
    Go(kDrawDown[0]);
    player->Press(3);
    for (int y = kDrawDown[0].y; y < kDrawDown[1].y; y += 10) player->MoveTo(kDrawDown[0].x, y);
    player->Release(3);
    return WaitFor([this] { return testing::Exists(MarkFile("down")); },
                   std::chrono::milliseconds(500));
  })) << "the draw button is lost";
  EXPECT_TRUE(first->Running());
  first->Kill(SIGTERM);
  first->Wait();
}

TEST_P(CaptureTest, AFloodOfSentEventsDoesNotHoldUpAPress) {
  WritePlugin("Probe.probe", {{"right", kRight, {Touch("stroke")}}});
  const auto probe = StartProbe();
  StartGromlit();
  Go(kDrawRight[0]);
  // All of them wait in front of the press.
  gromlit->Kill(SIGSTOP);
  Display* sender = player->display();
  constexpr int kEvents = 100'000;
  for (int i = 0; i < kEvents; i++) {
    XEvent event{};
    constexpr int kTypes[] = {EnterNotify, CreateNotify, EnterNotify, MotionNotify,
                              EnterNotify, ButtonPress,  EnterNotify, ButtonRelease};
    event.type = kTypes[i % 8];
    event.xany.window = player->root();
    if (event.type == CreateNotify) {
      event.xcreatewindow.window = probe->window();
    } else if (event.type == EnterNotify) {
      event.xcrossing.window = probe->window();
    } else {
      event.xbutton.button = 3;
      event.xbutton.root = player->root();
    }
    XSendEvent(sender, player->root(), False, SubstructureNotifyMask, &event);
  }
  XSync(sender, False);
  player->Press(3);
  player->MoveTo(kDrawRight[0].x + 10, kDrawRight[0].y);
  const long before = Milliseconds();
  gromlit->Kill(SIGCONT);
  EXPECT_TRUE(WaitFor([&] { return player->Where().x == kDrawRight[0].x + 10; }));
  // Its own time, whatever else the machine does.
  const long taken = Milliseconds() - before;
  std::printf("%ld ms of the processor for %d sent events\n", taken, kEvents);
  EXPECT_LT(taken, testing::Sanitized() ? 1000 : 200);
  Trace(kDrawRight);
  player->Release(3);
  EXPECT_TRUE(Appears("stroke"));
}

TEST_P(CaptureTest, PressWithoutMotionIsAStrokeWhenTheSensitivityIsZero) {
  WriteOptions(3, 0);
  WritePlugin("Probe.probe", {{"dot", {{16, 16}, {16, 16}}, {Touch("own")}}});
  WritePlugin("Default", {{"dot", {{16, 16}, {16, 16}}, {Touch("default")}}});
  const auto probe = StartProbe();
  StartGromlit();
  Go(kInProbe);
  player->Click(3);
  EXPECT_TRUE(PointerBecomesFree());
  // Beside the offer of a plug-in, which has come up at the first click.
  Go({340, 720});
  player->Click(3);
  EXPECT_TRUE(Appears("default"));
  EXPECT_FALSE(testing::Exists(MarkFile("own")));
  EXPECT_TRUE(probe->Lines("Button").empty());
}

TEST_P(CaptureTest, EveryDrawButtonWorks) {
  for (const int button : {1, 2, 3, 4, 5}) {
    WriteOptions(button);
    const std::string mark = "button" + std::to_string(button);
    WritePlugin("Probe.probe", {{"right", kRight, {Touch(mark)}}});
    const auto probe = StartProbe();
    StartGromlit();
    Draw(kDrawRight, button);
    EXPECT_TRUE(Appears(mark));
    gromlit->Kill(SIGTERM);
    gromlit->Wait();
    probe->process().Kill(SIGTERM);
    probe->process().Wait();
    EXPECT_TRUE(WaitFor([this] { return !GromlitIsReady(); }));
  }
}

TEST_P(CaptureTest, ButtonOutOfRangeIsTheRightOne) {
  WriteOptions(0);
  WritePlugin("Probe.probe", {{"right", kRight, {Touch("right")}}});
  const auto probe = StartProbe();
  StartGromlit();
  Go(kInProbe);
  player->Click(1);
  const auto lines = probe->Wait(2, "Button");
  ASSERT_EQ(lines.size(), 2u);
  EXPECT_NE(lines[0].find("button=1"), std::string::npos);
  EXPECT_NE(lines[0].find("send_event=0"), std::string::npos);
  Draw(kDrawRight);
  EXPECT_TRUE(Appears("right"));
}

TEST_P(CaptureTest, KeysGoToTheProbeWithThePositionOfTheStroke) {
  WritePlugin("Probe.probe", {{"keys", kRight, {{kHotKey, "Control-a", kKeyA, ControlMask}}}});
  const auto probe = StartProbe();
  StartGromlit();
  // A window manager gives the focus to the new main window.
  if (manager != nullptr) probe->Wait(1, "FocusOut");
  ASSERT_TRUE(WaitFor([&] {
    XSetInputFocus(player->display(), probe->window(), RevertToPointerRoot, CurrentTime);
    Window focus;
    int revert;
    XGetInputFocus(player->display(), &focus, &revert);
    return focus == probe->window();
  }));
  Draw(kDrawRight);
  const auto lines = probe->Wait(2, "Key");
  const Point origin = Origin(probe->window());
  char expected[200];
  std::snprintf(expected, sizeof expected,
                "KeyPress window=main keycode=38 state=4 x=%d y=%d x_root=400 y_root=400 "
                "send_event=1",
                400 - origin.x, 400 - origin.y);
  ASSERT_EQ(lines.size(), 2u);
  EXPECT_EQ(lines[0], expected);
}

INSTANTIATE_TEST_SUITE_P(Alone, CaptureTest, ::testing::Values(""));
INSTANTIATE_TEST_SUITE_P(Openbox, CaptureTest, ::testing::Values("openbox"));

}  // namespace
}  // namespace gromlit
