#include "tests/e2e/gromlit_run.h"

#include <X11/Xutil.h>

#include <cstdlib>
#include <random>

namespace gromlit {
namespace {

using testing::kClickToRaise;
using testing::kRight;
using testing::kSanitized;
using testing::Player;
using testing::ProbeClient;
using testing::WaitFor;

constexpr int kKeyA = 38;  // the "a" key of the usual keymap

class StormTest : public testing::GromlitRun {
 protected:
  void Hold(unsigned* down, int button, bool press) {
    if (press) {
      player->Press(button);
      *down |= 1U << button;
    } else {
      player->Release(button);
      *down &= ~(1U << button);
    }
  }
  // Takes the main window off the screen: a click there opens a menu, which keeps the pointer until
  // something is chosen.
  void HideMainWindow() {
    const Window main = MainWindow();
    ASSERT_NE(main, 0u);
    const auto in_state = [&](int state) {
      XWindowAttributes attributes{};
      XGetWindowAttributes(player->display(), main, &attributes);
      return attributes.map_state == state;
    };
    ASSERT_TRUE(WaitFor([&] { return in_state(IsViewable); }));
    XWithdrawWindow(player->display(), main, 0);
    ASSERT_TRUE(WaitFor([&] { return in_state(IsUnmapped); }));
  }
};

// 10,000 random presses, releases and motions over clients, frames and the root window. After every
// hundred, with all buttons up, the pointer moves and can be grabbed by others.
class RandomStormTest : public StormTest, public ::testing::WithParamInterface<bool> {};

TEST_P(RandomStormTest, RandomButtonsAndMotionsNeverLeaveThePointerFrozenOrGrabbed) {
  const char* given = std::getenv("GROMLIT_TEST_SEED");
  const unsigned seed = given != nullptr ? static_cast<unsigned>(std::strtoul(given, nullptr, 10))
                                         : std::random_device()();
  RecordProperty("seed", std::to_string(seed));
  std::printf("seed %u\n", seed);
  std::mt19937 random(seed);
  const auto pick = [&](int n) { return static_cast<int>(random() % static_cast<unsigned>(n)); };

  if (GetParam()) StartWindowManager("openbox", kClickToRaise);
  WritePlugin("Probe.probe", {{"keys", kRight, {{kHotKey, "a", kKeyA, 0}}},
                              {"down", testing::kDown, {{kRun, "system:sync"}}},
                              {"up", testing::kUp, {{kText, "some text"}}}});
  WritePlugin("Default", {{"left", testing::kLeft, {{kHotKey, "a", kKeyA, 0}}}});
  const ProbeClient probe(install->path(), {"--class", "Probe", "probe", "--geometry",
                                            "600x500+300+250", "--child", "200x200+50+50"});
  const ProbeClient other(install->path(),
                          {"--class", "Other", "other", "--geometry", "300x300+950+600"});
  StartGromlit();
  HideMainWindow();

  const int rounds = kSanitized ? 30 : 100;
  for (int round = 0; round < rounds; round++) {
    unsigned down = 0;
    for (int i = 0; i < 100; i++) {
      switch (pick(4)) {
        case 0: {
          // The draw button more often than the others, the wheel and the side buttons too.
          const int button = pick(2) == 0 ? 3 : 1 + pick(9);
          Hold(&down, button, (down & 1U << button) == 0);
          break;
        }
        case 1: {
          const Player::Pointer at = player->Where();
          player->MoveTo(at.x + pick(61) - 30, at.y + pick(61) - 30);
          break;
        }
        case 2:
          player->MoveTo(pick(1280), pick(1024));
          break;
        default: {
          // A piece of a straight stroke.
          const Player::Pointer at = player->Where();
          const int dx = pick(3) - 1;
          const int dy = pick(3) - 1;
          for (int k = 1; k < 8; k++) player->MoveTo(at.x + dx * k * 9, at.y + dy * k * 9);
        }
      }
    }
    for (int button = 1; button <= 9; button++) {
      if ((down & 1U << button) != 0) Hold(&down, button, false);
    }
    ASSERT_TRUE(PointerBecomesFree()) << "round " << round << ", seed " << seed;
    Go({100 + pick(1000), 100 + pick(800)});
    ASSERT_FALSE(HasFailure()) << "the pointer is frozen in round " << round << ", seed " << seed;
    ASSERT_TRUE(gromlit->Running()) << GromlitOutput();
    ASSERT_TRUE(WaitFor([this] { return MappedOverlays().empty(); })) << "a trail stays";
  }
}

INSTANTIATE_TEST_SUITE_P(Alone, RandomStormTest, ::testing::Values(false));
INSTANTIATE_TEST_SUITE_P(Openbox, RandomStormTest, ::testing::Values(true));

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
  const size_t count = kSanitized ? 200 : 1000;
  ASSERT_EQ(strokes(0, warm), warm);
  const long before = Resident();
  ASSERT_EQ(strokes(warm, count), count);
  const long after = Resident();
  std::printf("resident before %ld kB, after %ld kB\n", before, after);
  RecordProperty("growth_kB", std::to_string(after - before));
  // The sanitizers keep freed memory for a while.
  if (!kSanitized) {
    EXPECT_LT(after - before, 1024);
  }
  EXPECT_EQ(probe.Lines("KeyPress").size(), count);
}

}  // namespace
}  // namespace gromlit
