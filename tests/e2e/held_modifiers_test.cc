// Real input while the user's other hand is on the keyboard: modifiers go down and up around every
// stroke and its action, and the program is ended in the middle. No key and no button stays down.
#include "tests/e2e/shell_run.h"

#include <X11/keysym.h>

#include <array>
#include <random>

#include "core/option_files.h"

namespace gromlit {
namespace {

using std::chrono::microseconds;
using testing::kRight;
using testing::ProbeClient;
using testing::WaitFor;

constexpr int kKeyA = 38;  // key code of the usual keymap

const std::array<KeySym, 6> kModifiers = {XK_Control_L, XK_Control_R, XK_Shift_L,
                                          XK_Shift_R,   XK_Alt_L,     XK_Super_L};

class HeldModifiersTest : public testing::ShellRun {
 protected:
  void SetUp() override {
    ShellRun::SetUp();
    const char* given = std::getenv("GROMLIT_TEST_SEED");
    const unsigned seed =
        given != nullptr ? static_cast<unsigned>(std::stoul(given)) : std::random_device()();
    std::printf("GROMLIT_TEST_SEED=%u\n", seed);
    RecordProperty("seed", std::to_string(seed));
    random_.seed(seed);
    GromlitUserOptions options{};
    DefaultUserOptions(&options);
    options.splash = 0;
    options.temp1 = kRealInput;
    ASSERT_EQ(SaveUserOptions(&options, defaultOptionFile), 1);
    // Its last command tells that the action is over.
    WritePlugin("Probe.Probe", {{"right",
                                 kRight,
                                 {{kHotKey, "Control-a", kKeyA, ControlMask},
                                  {kText, "Hi, W\u00f6rld \u65e5 {7}"},
                                  Touch("over")}}});
    probe_ = std::make_unique<ProbeClient>(
        install->path(),
        std::vector<std::string>{"--class", "Probe", "Probe", "--geometry", "600x400+300+250"});
  }
  void Start() {
    LaunchInstalled();
    HideMainWindow();
  }

  size_t Pick(size_t limit) { return std::uniform_int_distribution<size_t>(0, limit - 1)(random_); }
  void Flip() {
    const size_t i = Pick(kModifiers.size());
    down_[i] = !down_[i];
    if (down_[i])
      player->KeyDown(kModifiers[i]);
    else
      player->KeyUp(kModifiers[i]);
  }
  void LetGo() {
    for (size_t i = 0; i < kModifiers.size(); i++)
      if (std::exchange(down_[i], false)) player->KeyUp(kModifiers[i]);
  }
  // A stroke whose press is without modifiers, for with one it is the application's.
  void StrokeAmongModifiers() {
    Go({400, 450});
    player->Press(3);
    Trace({{400, 450}, {500, 450}});
    for (size_t i = Pick(3); i > 0; i--) Flip();
    Trace({{500, 450}, {600, 450}});
    for (size_t i = Pick(3); i > 0; i--) Flip();
    player->Release(3);
  }
  std::vector<int> KeysDown() {
    std::array<char, 32> map;
    XQueryKeymap(player->display(), map.data());
    std::vector<int> keys;
    for (int key = 0; key < 256; key++)
      if ((map[static_cast<size_t>(key / 8)] >> (key % 8) & 1) != 0) keys.push_back(key);
    return keys;
  }
  void ExpectNothingDown() {
    EXPECT_TRUE(WaitFor([&] { return KeysDown().empty(); }))
        << "keys " << ::testing::PrintToString(KeysDown());
    EXPECT_EQ(player->Where().state & 0x1f00U, 0u) << "a button is down";
  }

  std::unique_ptr<ProbeClient> probe_;
  std::mt19937 random_;
  std::array<bool, kModifiers.size()> down_{};
};

// How many, where the suite has time for a few only.
int Times(int usual) {
  const char* given = std::getenv("GROMLIT_GESTURES");
  return given != nullptr ? std::atoi(given) : usual;
}

TEST_F(HeldModifiersTest, NothingStaysDownAfterAnAction) {
  Start();
  for (int i = 0; i < Times(20) && !HasFailure(); i++) {
    SCOPED_TRACE(i);
    StrokeAmongModifiers();
    EXPECT_TRUE(WaitFor([&] {
      for (int n = 0; n < 10; n++) Flip();
      return testing::Exists(MarkFile("over"));
    })) << "the action does not end";
    LetGo();
    ExpectNothingDown();
    EXPECT_TRUE(TrailIsGone());
    std::filesystem::remove(MarkFile("over"));
  }
  EXPECT_EQ(Out() + Err(), "");
}

TEST_F(HeldModifiersTest, NothingStaysDownWhenTheProgramIsEndedInTheMiddle) {
  constexpr std::array<int, 3> kSignals = {SIGTERM, SIGINT, SIGHUP};
  for (int i = 0; i < Times(6) && !HasFailure(); i++) {
    SCOPED_TRACE(i);
    Start();
    StrokeAmongModifiers();
    // Any moment of the action, and some before and after it.
    for (size_t n = Pick(40); n > 0; n--) Flip();
    gromlit->Kill(kSignals[Pick(kSignals.size())]);
    EXPECT_NE(gromlit->Wait(std::chrono::seconds(20)), -1) << "it does not end";
    LetGo();
    ExpectNothingDown();
    EXPECT_TRUE(PointerBecomesFree());
    EXPECT_TRUE(WaitFor([this] { return !GromlitIsReady(); }));
    std::filesystem::remove(MarkFile("over"));
  }
}

}  // namespace
}  // namespace gromlit
