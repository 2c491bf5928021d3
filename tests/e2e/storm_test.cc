#include "tests/e2e/gromlit_run.h"

#include <X11/Xutil.h>

#include <signal.h>

#include <chrono>
#include <cstdlib>
#include <iterator>
#include <random>
#include <thread>

namespace gromlit {
namespace {

using testing::kClickToRaise;
using testing::kRight;
using testing::Player;
using testing::Point;
using testing::ProbeClient;
using testing::Sanitized;
using testing::WaitFor;

constexpr int kKeyA = 38;  // the "a" key of the usual keymap

// How many rounds, where the suite has time for a few only.
int Rounds(int usual) {
  const char* given = std::getenv("GROMLIT_STORM_ROUNDS");
  return given != nullptr ? std::atoi(given) : usual;
}

class StormTest : public testing::GromlitRun {
 protected:
  void Seed() {
    const char* given = std::getenv("GROMLIT_TEST_SEED");
    seed_ = given != nullptr ? static_cast<unsigned>(std::strtoul(given, nullptr, 10))
                             : std::random_device()();
    RecordProperty("seed", std::to_string(seed_));
    std::printf("seed %u\n", seed_);
    random_.seed(seed_);
  }
  int Pick(int n) { return static_cast<int>(random_() % static_cast<unsigned>(n)); }

  // The program and two applications, the main window out of the way.
  void StartAll() {
    WritePlugin("Probe.probe", {{"keys", kRight, {{kHotKey, "a", kKeyA, 0}}},
                                {"down", testing::kDown, {{kRun, "system:sync"}}},
                                {"up", testing::kUp, {{kText, "some text"}}}});
    WritePlugin("Default", {{"left", testing::kLeft, {{kHotKey, "a", kKeyA, 0}}}});
    probe_ = std::make_unique<ProbeClient>(
        install->path(), std::vector<std::string>{"--class", "Probe", "probe", "--geometry",
                                                  "600x500+300+250", "--child", "200x200+50+50"});
    other_ = std::make_unique<ProbeClient>(
        install->path(),
        std::vector<std::string>{"--class", "Other", "other", "--geometry", "300x300+950+600"});
    StartGromlit();
    main_ = HideMainWindow();
  }
  // One thing that a hand does.
  void Hand() {
    switch (Pick(4)) {
      case 0: {
        // The draw button more often than the others, the wheel and the side buttons too.
        const int button = Pick(2) == 0 ? 3 : 1 + Pick(9);
        Hold(button, (down_ & 1U << button) == 0);
        break;
      }
      case 1: {
        const Player::Pointer at = player->Where();
        player->MoveTo(at.x + Pick(61) - 30, at.y + Pick(61) - 30);
        break;
      }
      case 2:
        player->MoveTo(Pick(1280), Pick(1024));
        break;
      default: {
        // A piece of a straight stroke.
        const Player::Pointer at = player->Where();
        const int dx = Pick(3) - 1;
        const int dy = Pick(3) - 1;
        for (int k = 1; k < 8; k++) player->MoveTo(at.x + dx * k * 9, at.y + dy * k * 9);
      }
    }
  }
  // All buttons up: the pointer moves, others can have it, and no trail is left.
  void EndRound(int round) {
    for (int button = 1; button <= 9; button++) {
      if ((down_ & 1U << button) != 0) Hold(button, false);
    }
    ASSERT_TRUE(PointerBecomesFree()) << "round " << round << ", seed " << seed_ << "\n"
                                      << WhereItStands();
    const Point to{100 + Pick(1000), 100 + Pick(800)};
    player->MoveTo(to.x, to.y);
    ASSERT_TRUE(WaitFor([&] { return player->Where().x == to.x && player->Where().y == to.y; }))
        << "the pointer is frozen in round " << round << ", seed " << seed_ << "\n"
        << WhereItStands();
    ASSERT_TRUE(gromlit->Running()) << GromlitOutput();
    ASSERT_TRUE(WaitFor([this] { return MappedOverlays().empty(); })) << "a trail stays\n"
                                                                      << WhereItStands();
  }
  void Hold(int button, bool press) {
    if (press) {
      player->Press(button);
      down_ |= 1U << button;
    } else {
      player->Release(button);
      down_ &= ~(1U << button);
    }
  }

  unsigned seed_ = 0;
  std::mt19937 random_;
  unsigned down_ = 0;  // buttons, one bit each
  Window main_ = 0;
  std::unique_ptr<ProbeClient> probe_;
  std::unique_ptr<ProbeClient> other_;
};

// Random presses, releases and motions over clients, frames and the root window. After every
// hundred, with all buttons up, the pointer moves and can be grabbed by others.
class RandomStormTest : public StormTest, public ::testing::WithParamInterface<bool> {};

TEST_P(RandomStormTest, RandomButtonsAndMotionsNeverLeaveThePointerFrozenOrGrabbed) {
  Seed();
  if (GetParam()) StartWindowManager("openbox", kClickToRaise);
  StartAll();
  const int rounds = Sanitized() ? 30 : 100;
  for (int round = 0; round < rounds; round++) {
    for (int i = 0; i < 100; i++) Hand();
    EndRound(round);
    if (HasFailure()) return;
  }
}

INSTANTIATE_TEST_SUITE_P(Alone, RandomStormTest, ::testing::Values(false));
INSTANTIATE_TEST_SUITE_P(Openbox, RandomStormTest, ::testing::Values(true));

// Everything at once: the window manager goes and comes back in mid-stroke, other clients send what
// they like, windows come and go by the hundred, and the program is kept from reading any of it.
class RestartStormTest : public StormTest {
 protected:
  // Another client's events, any type for any window.
  void Hostile() {
    Display* sender = player->display();
    std::vector<Window> windows = testing::ChildrenOf(sender, player->root());
    windows.push_back(player->root());
    const int count = 1 + Pick(200);
    for (int i = 0; i < count; i++) {
      const Window window = windows[random_() % windows.size()];
      XEvent event{};
      constexpr int kTypes[] = {ButtonPress,   ButtonRelease,   MotionNotify,  EnterNotify,
                                LeaveNotify,   CreateNotify,    DestroyNotify, MapNotify,
                                UnmapNotify,   ConfigureNotify, FocusIn,       FocusOut,
                                PropertyNotify};
      event.type = kTypes[random_() % std::size(kTypes)];
      event.xany.window = Pick(2) == 0 ? window : player->root();
      if (event.type <= MotionNotify) {
        event.xbutton.root = player->root();
        event.xbutton.button = static_cast<unsigned>(1 + Pick(5));
        event.xbutton.x = Pick(400);
        event.xbutton.y = Pick(400);
        event.xbutton.state = Pick(2) == 0 ? 0 : Button3Mask;
      }
      // To the root as a window manager hears of it, to others as their maker does.
      const bool top = event.xany.window == player->root();
      // Buttons on the program's own windows are clicks, which may open a menu that stays open.
      if (!top && event.type <= MotionNotify) continue;
      XSendEvent(sender, event.xany.window, False, top ? SubstructureNotifyMask : NoEventMask,
                 &event);
    }
    XSync(sender, False);
  }
  // Real events of many windows.
  void Windows() {
    Display* sender = player->display();
    std::vector<Window> windows;
    for (int i = Pick(200); i >= 0; i--) {
      XSetWindowAttributes attributes{};
      attributes.override_redirect = True;
      windows.push_back(XCreateWindow(sender, player->root(), Pick(1200), Pick(1000), 40, 40, 0,
                                      CopyFromParent, InputOutput, nullptr, CWOverrideRedirect,
                                      &attributes));
      if (Pick(3) == 0) XMapWindow(sender, windows.back());
    }
    XSync(sender, False);
    for (const Window window : windows) XDestroyWindow(sender, window);
    XSync(sender, False);
  }
  // Brings a dialog up, for the storm to go over that, too: a stroke on an application that the
  // program has not met.
  void Ask() {
    const std::string name = "Other" + std::to_string(names_++);
    testing::SetClass(player->display(), other_->window(), name, name);
    int x;
    int y;
    Window child;
    if (XTranslateCoordinates(player->display(), other_->window(), player->root(), 250, 100, &x, &y,
                              &child) == 0)
      return;
    player->MoveTo(x, y);
    Hold(3, true);
    for (int k = 1; k < 8; k++) player->MoveTo(x - 20 * k, y);
    Hold(3, false);
  }
  // Windows of the program that are on the screen below this one, inside frames, too: they have the
  // ids of its connection.
  std::vector<Window> OwnBelow(Window window) {
    std::vector<Window> found;
    for (const Window child : testing::ChildrenOf(player->display(), window)) {
      XWindowAttributes attributes{};
      if (XGetWindowAttributes(player->display(), child, &attributes) == 0 ||
          attributes.map_state != IsViewable)
        continue;
      const bool own = child >> 21 == main_ >> 21;
      const std::vector<Window> below = OwnBelow(child);
      if (own && below.empty() && attributes.width < 200) found.push_back(child);
      found.insert(found.end(), below.begin(), below.end());
    }
    return found;
  }
  // Presses a button of a dialog, or whatever else of the program is on the screen.
  void PressOwn() {
    const std::vector<Window> windows = OwnBelow(player->root());
    if (windows.empty()) {
      if (down_ == 0) Ask();
      return;
    }
    const Window window = windows[random_() % windows.size()];
    int x;
    int y;
    Window child;
    if (XTranslateCoordinates(player->display(), window, player->root(), 5 + Pick(20), 5 + Pick(10),
                              &x, &y, &child) == 0)
      return;
    player->MoveTo(x, y);
    if ((down_ & 2U) == 0) Hold(1, true);
    pressed_++;
  }
  void Restart() {
    constexpr int kEnds[] = {SIGTERM, SIGKILL};
    manager->Kill(kEnds[Pick(2)]);
    if (Pick(2) == 0) manager->Wait();
    RestartWindowManager();
  }

  int names_ = 0;    // given to the other application so far
  int pressed_ = 0;  // presses on the program's own windows
};

TEST_F(RestartStormTest, WindowManagerThatGoesHostileEventsAndABacklogLeaveThePointerFree) {
  Seed();
  StartWindowManager("openbox", kClickToRaise);
  StartAll();
  const int rounds = Rounds(Sanitized() ? 4 : 8);
  for (int round = 0; round < rounds; round++) {
    bool stopped = false;
    for (int i = 0; i < 100; i++) {
      Hand();
      // A hand rests, too.
      if (Pick(10) == 0) std::this_thread::sleep_for(std::chrono::milliseconds(Pick(30)));
      switch (Pick(20)) {
        case 0:
          Hostile();
          break;
        case 1:
          Windows();
          break;
        case 2:
          Restart();
          break;
        case 5:
        case 6:
        case 7:
          PressOwn();
          break;
        case 3:
        case 4:
          stopped = !stopped;
          gromlit->Kill(stopped ? SIGSTOP : SIGCONT);
          break;
        default:
          break;
      }
    }
    if (stopped) gromlit->Kill(SIGCONT);
    EndRound(round);
    if (HasFailure()) return;
  }
  std::printf("%d rounds, %d presses on own windows, %d dialogs asked for\n", rounds, pressed_,
              names_);
}

// Slow readers: the program is stopped while the stroke is drawn and ended by another button, so
// that it finds all of it waiting.
TEST_F(StormTest, StrokeThatWaitedInTheQueueLeavesNothingFrozen) {
  WritePlugin("Probe.probe", {{"right", kRight, {Touch("right")}}});
  const ProbeClient probe(install->path(),
                          {"--class", "Probe", "probe", "--geometry", "600x500+300+250"});
  StartGromlit();
  for (int round = 0; round < 10; round++) {
    player->MoveTo(400, 400);
    player->Press(3);
    Go({420, 400});  // the capture has begun
    gromlit->Kill(SIGSTOP);
    for (int x = 430; x < 600; x += 10) player->MoveTo(x, 400);
    player->Press(1);
    gromlit->Kill(SIGCONT);
    Go({700, 500});
    player->Release(3);
    player->Release(1);
    ASSERT_TRUE(PointerBecomesFree()) << "round " << round;
    Go({100, 900});
  }
  EXPECT_FALSE(testing::Exists(MarkFile("right")));
  // And one that is finished while the program is stopped acts.
  player->MoveTo(400, 400);
  player->Press(3);
  Go({420, 400});
  gromlit->Kill(SIGSTOP);
  for (int x = 430; x < 600; x += 10) player->MoveTo(x, 400);
  player->Release(3);
  gromlit->Kill(SIGCONT);
  EXPECT_TRUE(Appears("right"));
}

TEST_F(StormTest, AThousandStrokesAllActAndMemoryStaysTheSame) {
  WritePlugin("Probe.probe", {{"down", testing::kDown, {{kHotKey, "Return", 36, 0}}},
                              {"right", kRight, {{kHotKey, "a", kKeyA, 0}}}});
  const ProbeClient probe(install->path(),
                          {"--class", "Probe", "probe", "--geometry", "600x500+300+250"});
  StartGromlit();
  XSetInputFocus(player->display(), probe.window(), RevertToPointerRoot, CurrentTime);
  const auto strokes = [&](size_t from, size_t to) {
    for (size_t i = from; i < to; i++) {
      Draw({{400, 400}, {520, 400}}, 3, 20);
      // Every one is acted on before the next begins.
      if (!WaitFor([&] { return probe.Lines("KeyPress").size() == i + 1; })) {
        return i;
      }
    }
    return to;
  };
  const size_t warm = 50;
  const size_t count = Sanitized() ? 200 : 1000;
  ASSERT_EQ(strokes(0, warm), warm);
  const long before = Resident();
  ASSERT_EQ(strokes(warm, count), count);
  const long after = Resident();
  std::printf("resident before %ld kB, after %ld kB\n", before, after);
  RecordProperty("growth_kB", std::to_string(after - before));
  // The sanitizers keep freed memory for a while.
  if (!Sanitized()) {
    EXPECT_LT(after - before, 1024);
  }
  EXPECT_EQ(probe.Lines("KeyPress").size(), count);
}

}  // namespace
}  // namespace gromlit
