// Thousands of strokes and clicks over applications of all sizes, on a busy machine: each is acted
// on as what it was, once.
//
// GROMLIT_GESTURES says how many in a storm, GROMLIT_SOAK_STROKES how many strokes in the soak; the
// suite has time for a few hundred only. GROMLIT_TEST_SEED repeats a run.
#include "tests/e2e/gromlit_run.h"
#include "tests/e2e/usage.h"

#include <X11/Xutil.h>
#include <X11/extensions/XInput2.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <iterator>
#include <map>
#include <random>
#include <thread>

namespace gromlit {
namespace {

using testing::kClickToRaise;
using testing::Point;
using testing::Process;
using testing::ReadText;
using testing::Usage;
using testing::WaitFor;

constexpr int kApps = 3;

// Shapes by the directions of their legs: right, left, down, up. None is another one with two legs
// exchanged, which would be the same to the recognition.
constexpr const char* kShapes[] = {"r", "l", "d", "u", "dr", "ul", "ru", "ld", "rdl", "dru"};
constexpr int kShapeCount = static_cast<int>(std::size(kShapes));

Point StepOf(char direction) {
  switch (direction) {
    case 'r':
      return {1, 0};
    case 'l':
      return {-1, 0};
    case 'd':
      return {0, 1};
    default:
      return {0, -1};
  }
}

// The corners of a shape whose legs have this length, from a point on.
std::vector<Point> CornersOf(const std::string& shape, Point from, int leg) {
  std::vector<Point> corners = {from};
  for (const char direction : shape) {
    const Point step = StepOf(direction);
    from = {from.x + step.x * leg, from.y + step.y * leg};
    corners.push_back(from);
  }
  return corners;
}

// The points of a hand that goes along these corners, so many of them a leg.
std::vector<Point> PathOf(const std::vector<Point>& corners, int steps) {
  std::vector<Point> path = {corners[0]};
  for (size_t leg = 1; leg < corners.size(); leg++) {
    const Point begin = corners[leg - 1];
    const Point end = corners[leg];
    for (int i = 1; i <= steps; i++)
      path.push_back(
          {begin.x + (end.x - begin.x) * i / steps, begin.y + (end.y - begin.y) * i / steps});
  }
  return path;
}

// The same shape as a symbol has it, in editor pixels.
std::vector<Point> SymbolOf(const std::string& shape) {
  return PathOf(CornersOf(shape, {136, 136}, 96), 3);
}

// The key by which an action is told from all others; none that is a modifier.
int KeyOf(int app, int shape) {
  constexpr int kFirst = 24;
  constexpr int kControl = 37;
  constexpr int kShift = 50;
  int key = kFirst + app * kShapeCount + shape;
  if (key >= kControl) key++;
  if (key >= kShift) key++;
  return key;
}

// What the applications were given.
struct Got {
  std::vector<int> keys;  // pressed
  int presses = 0;        // of buttons
  int releases = 0;
  int app = -1;  // that got the last of those
  unsigned button = 0;
  Point at{-1, -1};  // of the press, on the root window
};

class GestureStormTest : public testing::GromlitRun,
                         public ::testing::WithParamInterface<const char*> {
 protected:
  void SetUp() override {
    GromlitRun::SetUp();
    apps_ = XOpenDisplay(server->name().c_str());
    ASSERT_NE(apps_, nullptr);
    const std::string given(GetParam());
    StartWindowManager(given, given == "openbox" ? kClickToRaise : "");
  }
  void TearDown() override {
    busy_.clear();
    if (apps_ != nullptr) XCloseDisplay(apps_);
    GromlitRun::TearDown();
  }

  int Pick(int n) { return static_cast<int>(random_() % static_cast<unsigned>(n)); }

  // An application with this many windows inside; it takes the buttons by the core protocol in its
  // own window or in panels, or by the second version of the input extension.
  void MakeApp(int number, int windows, bool panels, bool extension) {
    const Window top = XCreateSimpleWindow(apps_, DefaultRootWindow(apps_), 20 + 420 * number, 150,
                                           380, 600, 0, 0, 0xc0c0c0);
    const std::string name = "App" + std::to_string(number);
    testing::SetClass(apps_, top, name, name);
    XSizeHints place{};
    place.flags = USPosition | USSize | PPosition | PSize;
    place.x = 20 + 420 * number;
    place.y = 150;
    place.width = 380;
    place.height = 600;
    XSetWMNormalHints(apps_, top, &place);
    XWMHints hints{};
    hints.flags = InputHint;
    hints.input = True;
    XSetWMHints(apps_, top, &hints);
    const long buttons = ButtonPressMask | ButtonReleaseMask;
    XSelectInput(apps_, top, KeyPressMask | (panels || extension ? 0 : buttons));
    owner_[top] = number;
    Window parent = top;
    for (int i = 0; i < windows; i++) {
      if (panels && i % 100 == 0) {
        parent = XCreateSimpleWindow(apps_, top, 0, 60 * (i / 100), 380, 60, 0, 0, 0);
        XSelectInput(apps_, parent, buttons);
        owner_[parent] = number;
        XMapWindow(apps_, parent);
      } else {
        XMapWindow(apps_,
                   XCreateSimpleWindow(apps_, parent, 4 * (i % 95), 2 * (i % 29), 4, 2, 0, 0, 0));
      }
    }
    if (extension) {
      unsigned char bits[XIMaskLen(XI_LASTEVENT)] = {};
      XISetMask(bits, XI_ButtonPress);
      XISetMask(bits, XI_ButtonRelease);
      XIEventMask mask{XIAllMasterDevices, sizeof bits, bits};
      XISelectEvents(apps_, top, &mask, 1);
    }
    XMapWindow(apps_, top);
    XSync(apps_, False);
    tops_.push_back(top);
    ASSERT_TRUE(WaitFor([&] {
      XWindowAttributes attributes{};
      XGetWindowAttributes(apps_, top, &attributes);
      return attributes.map_state == IsViewable;
    }));
  }
  void MakeApps() {
    int event;
    int error;
    ASSERT_TRUE(XQueryExtension(apps_, "XInputExtension", &opcode_, &event, &error));
    int major = 2;
    int minor = 0;
    ASSERT_EQ(XIQueryVersion(apps_, &major, &minor), Success);
    MakeApp(0, 0, false, false);
    MakeApp(1, 200, false, true);
    MakeApp(2, 1000, true, false);
    for (int app = 0; app < kApps; app++) {
      std::vector<testing::Action> actions;
      for (int i = 0; i < kShapeCount; i++)
        actions.push_back({kShapes[i], SymbolOf(kShapes[i]), {{kHotKey, "key", KeyOf(app, i), 0}}});
      const std::string name = "App" + std::to_string(app);
      WritePlugin(name + "." + name, actions);
    }
  }
  Point OriginOf(int app) {
    Point at{};
    Window child;
    XTranslateCoordinates(apps_, tops_[static_cast<size_t>(app)], DefaultRootWindow(apps_), 0, 0,
                          &at.x, &at.y, &child);
    return at;
  }
  int AppOf(Window window) const {
    const auto found = owner_.find(window);
    return found != owner_.end() ? found->second : -1;
  }
  // Takes in what has arrived.
  void Collect(Got* got) {
    const auto button = [&](bool press, Window window, unsigned number, double x, double y) {
      (press ? got->presses : got->releases)++;
      got->app = AppOf(window);
      got->button = number;
      // Where a window manager holds the click up for a moment, the pointer has come back to the
      // hand when the release is delivered.
      if (press) got->at = {static_cast<int>(x), static_cast<int>(y)};
    };
    XSync(apps_, False);
    while (XPending(apps_) > 0) {
      XEvent event;
      XNextEvent(apps_, &event);
      if (event.type == KeyPress) {
        got->keys.push_back(static_cast<int>(event.xkey.keycode));
      } else if (event.type == ButtonPress || event.type == ButtonRelease) {
        const XButtonEvent& e = event.xbutton;
        button(event.type == ButtonPress, e.window, e.button, e.x_root, e.y_root);
      } else if (event.type == GenericEvent && event.xcookie.extension == opcode_ &&
                 XGetEventData(apps_, &event.xcookie) != 0) {
        const auto* e = static_cast<const XIDeviceEvent*>(event.xcookie.data);
        button(e->evtype == XI_ButtonPress, e->event, static_cast<unsigned>(e->detail), e->root_x,
               e->root_y);
        XFreeEventData(apps_, &event.xcookie);
      }
    }
  }
  // WaitFor with pauses that are short beside what is waited for: of many thousand gestures each
  // waits several times.
  static bool WaitShortly(const std::function<bool()>& done) {
    for (int i = 0; i < 50; i++) {
      if (done()) return true;
      std::this_thread::sleep_for(std::chrono::microseconds(100));
    }
    return WaitFor(done);
  }
  // Keys go to whoever has the keyboard; a window manager gives it to what is clicked.
  void KeepFocus() {
    Window focus = 0;
    int revert;
    XGetInputFocus(apps_, &focus, &revert);
    if (AppOf(focus) < 0) XSetInputFocus(apps_, tops_[0], RevertToPointerRoot, CurrentTime);
    XSync(apps_, False);
  }
  // Who has the keyboard, for a message.
  std::string FocusName() {
    Window focus = 0;
    int revert;
    XGetInputFocus(apps_, &focus, &revert);
    const int app = AppOf(focus);
    return app >= 0 ? "application " + std::to_string(app)
                    : "window " + std::to_string(focus) + " of another program";
  }
  // Whether the program waits for the next event: then the draw button is its own again, which it
  // leaves to the applications while it acts. Its loop polls two descriptors, all else in it one.
  bool Waits() const {
    const std::string call = ReadText("/proc/" + std::to_string(gromlit->pid()) + "/syscall");
    long number = 0;
    unsigned long list = 0;
    unsigned long count = 0;
    return std::sscanf(call.c_str(), "%ld %lx %lx", &number, &list, &count) == 3 && count == 2;
  }
  // A hand's pause in so many of the cases, so that some gestures are as quick as can be.
  void Rest() {
    if (Pick(rests_) == 0) std::this_thread::sleep_for(std::chrono::microseconds(Pick(3000)));
  }
  Point PressIn(int app) {
    const Point origin = OriginOf(app);
    const Point at{origin.x + 10 + Pick(360), origin.y + 10 + Pick(580)};
    player->MoveTo(at.x, at.y);
    EXPECT_TRUE(
        WaitShortly([&] { return player->Where().x == at.x && player->Where().y == at.y; }));
    player->Press(3);
    return at;
  }

  // One gesture and its effect; an empty text when it was acted on as what it was.
  std::string Stroke(int app) {
    const Point from = PressIn(app);
    const auto leaves = [](const Point& at) {
      return at.x < 5 || at.y < 5 || at.x > 1270 || at.y > 1015;
    };
    int shape;
    std::vector<Point> corners;
    do {
      shape = Pick(kShapeCount);
      corners = CornersOf(kShapes[shape], from, 60 + Pick(190));
    } while (std::any_of(corners.begin(), corners.end(), leaves));
    // A hand that jumps from corner to corner leaves open which lines it crosses first.
    const int steps = (corners.size() > 2 ? 2 : 1) + Pick(most_steps_);  // a leg
    const std::vector<Point> path = PathOf(corners, steps);
    for (size_t i = 1; i < path.size(); i++) {
      player->MoveTo(path[i].x, path[i].y);
      // As long as the press is held back the pointer stands still, and what the hand does arrives
      // as one motion: no hand is at a corner by then.
      if (i == 1 && corners.size() > 2) {
        EXPECT_TRUE(WaitShortly([&] {
          const auto at = player->Where();
          return at.x == path[1].x && at.y == path[1].y;
        })) << "the pointer does not move";
      }
      Rest();
    }
    player->Release(3);
    const int key = KeyOf(app, shape);
    Got got;
    const bool acted = WaitShortly([&] {
      Collect(&got);
      return !got.keys.empty() || got.presses > 0;
    });
    if (acted && got.keys == std::vector<int>{key} && got.presses == 0) return "";
    return std::string("stroke ") + kShapes[shape] + " in " + std::to_string(steps) +
           " steps a leg: " + std::to_string(got.keys.size()) + " keys, " +
           std::to_string(got.presses) + " presses";
  }
  std::string Click(int app) {
    const Point at = PressIn(app);
    const int shake = Pick(4);
    // To one side: between two corners of what a hand covers there is room for a stroke.
    const int sidex = 1 - 2 * Pick(2);
    const int sidey = 1 - 2 * Pick(2);
    for (int i = 0; i < shake; i++) {
      player->MoveTo(at.x + sidex * Pick(shake + 1), at.y + sidey * Pick(shake + 1));
      Rest();
    }
    player->Release(3);
    Got got;
    const bool acted = WaitShortly([&] {
      Collect(&got);
      return !got.keys.empty() || got.releases > 0;
    });
    if (acted && got.keys.empty() && got.presses == 1 && got.releases == 1 && got.app == app &&
        got.button == 3 && got.at == at)
      return "";
    return "click, shaken by " + std::to_string(shake) + ": " + std::to_string(got.presses) +
           " presses in application " + std::to_string(got.app) + " at (" +
           std::to_string(got.at.x) + ", " + std::to_string(got.at.y) + ") instead of (" +
           std::to_string(at.x) + ", " + std::to_string(at.y) + "), " +
           std::to_string(got.keys.size()) + " keys";
  }

  // A click in one of `ofclicks` cases, else a stroke, with all that has to come of it.
  void Gesture(int number, int ofclicks) {
    KeepFocus();
    const int app = Pick(kApps);
    const bool stroke = Pick(ofclicks) != 0;
    const std::string wrong = stroke ? Stroke(app) : Click(app);
    (stroke ? strokes_ : clicks_)++;
    if (!wrong.empty()) {
      if (const char* directory = std::getenv("GROMLIT_SCREENSHOTS"))
        testing::SaveScreen(player->display(),
                            std::string(directory) + "/gesture-" + std::to_string(seed_) + ".png");
      FAIL() << "gesture " << number << " on application " << app << ", seed " << seed_ << ": "
             << wrong << ", the keyboard is with " << FocusName() << "\n"
             << WhereItStands();
    }
    ASSERT_TRUE(WaitShortly([this] { return Waits(); })) << WhereItStands();
    Got more;
    Collect(&more);
    ASSERT_EQ(more.keys.size() + static_cast<size_t>(more.presses), 0u)
        << "acted on twice: gesture " << number << ", seed " << seed_;
  }

  unsigned seed_ = 0;
  int strokes_ = 0;
  int clicks_ = 0;
  Display* apps_ = nullptr;
  int opcode_ = 0;
  std::vector<Window> tops_;
  std::map<Window, int> owner_;  // application that a window belongs to
  std::vector<std::unique_ptr<Process>> busy_;
  std::mt19937 random_;
  int rests_ = 2;  // of so many motions one is followed by a pause
  int most_steps_ = 19;
};

unsigned Seed() {
  const char* given = std::getenv("GROMLIT_TEST_SEED");
  const unsigned seed = given != nullptr ? static_cast<unsigned>(std::strtoul(given, nullptr, 10))
                                         : std::random_device()();
  std::printf("seed %u\n", seed);
  return seed;
}

TEST_P(GestureStormTest, EveryStrokeAndEveryClickIsActedOnAsWhatItWas) {
  seed_ = Seed();
  random_.seed(seed_);
  const char* wanted = std::getenv("GROMLIT_GESTURES");
  const int gestures = wanted != nullptr ? std::atoi(wanted) : 200;
  MakeApps();
  if (HasFailure()) return;
  StartGromlit();
  HideMainWindow();
  if (HasFailure()) return;
  for (int i = 0; i < 4; i++)
    busy_.push_back(
        std::make_unique<Process>(std::vector<std::string>{"sh", "-c", "while :; do :; done"}));

  for (int i = 0; i < gestures; i++) ASSERT_NO_FATAL_FAILURE(Gesture(i, 2));
  std::printf("%d strokes, %d clicks, each acted on as what it was\n", strokes_, clicks_);
  EXPECT_TRUE(PointerBecomesFree());
}

// The same on a machine that is not busy, so often that whatever is lost or piles up only now and
// then shows.
class GestureSoakTest : public GestureStormTest {
 protected:
  Usage Now() { return testing::UsageOf(gromlit->pid(), player->display(), main_); }
  Window main_ = 0;
};

TEST_P(GestureSoakTest, NoStrokeIsLostNoneActsTwiceAndNothingPilesUp) {
  constexpr int kSettled = 50;      // strokes after which everything has been used once
  constexpr int kMoreMemory = 256;  // kilobytes
  seed_ = Seed();
  random_.seed(seed_);
  rests_ = 20;
  most_steps_ = 9;
  const char* wanted = std::getenv("GROMLIT_SOAK_STROKES");
  const int strokes = wanted != nullptr ? std::atoi(wanted) : 200;
  MakeApps();
  if (HasFailure()) return;
  StartGromlit();
  main_ = HideMainWindow();
  if (HasFailure()) return;

  const auto start = std::chrono::steady_clock::now();
  const auto draw_until = [&](int count) {
    while (strokes_ < count && !HasFailure()) Gesture(strokes_ + clicks_, 5);
  };
  draw_until(kSettled);
  const Usage before = Now();
  const int part = std::max(strokes / 20, 1);
  for (int until = kSettled + part; strokes_ < strokes && !HasFailure(); until += part) {
    draw_until(std::min(until, strokes));
    const std::chrono::duration<double> took = std::chrono::steady_clock::now() - start;
    std::printf("%d strokes, %d clicks in %.0f s: %s\n", strokes_, clicks_, took.count(),
                Describe(Now()).c_str());
    std::fflush(stdout);
  }
  if (HasFailure()) return;
  const Usage after = Now();
  EXPECT_LE(after.private_kb, before.private_kb + kMoreMemory);
  EXPECT_EQ(after.descriptors, before.descriptors);
  EXPECT_EQ(after.threads, 1);
  EXPECT_EQ(after.children, 0);
  // A window that was mapped when it was counted has a picture kept by the server.
  EXPECT_LE(after.Resources(), before.Resources() + 8) << Describe(before) << "\n"
                                                       << Describe(after);
  EXPECT_TRUE(PointerBecomesFree());
  EXPECT_EQ(GromlitOutput(), "");
}

INSTANTIATE_TEST_SUITE_P(Openbox, GestureSoakTest, ::testing::Values("openbox"));
INSTANTIATE_TEST_SUITE_P(Openbox, GestureStormTest, ::testing::Values("openbox"));
INSTANTIATE_TEST_SUITE_P(Icewm, GestureStormTest, ::testing::Values("icewm"));

}  // namespace
}  // namespace gromlit
