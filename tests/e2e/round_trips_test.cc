// How often the built program waits for the server, counted on the way between the two.
#include "tests/e2e/gromlit_run.h"

#include <algorithm>
#include <atomic>
#include <filesystem>
#include <mutex>
#include <thread>
#include <vector>

#include "core/option_files.h"
#include "tests/support/x_proxy.h"

namespace gromlit {
namespace {

using testing::kRight;
using testing::ProbeClient;
using testing::WaitFor;
using testing::XProxy;
using testing::XRequest;

constexpr int kSendEvent = 25;
constexpr int kChangeActivePointerGrab = 30;
constexpr int kAllowEvents = 35;
constexpr int kQueryPointer = 38;
constexpr int kKeyA = 38;

class RoundTripsTest : public testing::GromlitRun {
 protected:
  void SetUp() override {
    GromlitRun::SetUp();
    proxy = std::make_unique<XProxy>(server->name());
    // What is sent together arrives together.
    proxy->SetDelay(std::chrono::milliseconds(2), std::chrono::milliseconds(2));
  }
  void TearDown() override {
    if (proxy != nullptr) proxy->BeforeRequest({});
    GromlitRun::TearDown();
    proxy.reset();
  }
  unsigned long Trips() const { return proxy->Counts(0).round_trips; }
  // Connecting is one more than what the proxy counts, which begins behind it.
  unsigned long TripsOfStart(const std::string& directory) {
    StartGromlit(true, {"-display", proxy->name(), "-path", directory});
    StartIsOver();
    return 1 + Trips();
  }
  // Waits for what a start does last, which nobody can see and no question may add to. A machine so
  // slow that it pauses in between has the test count less, never more.
  void StartIsOver() {
    unsigned long before = 0;
    EXPECT_TRUE(WaitFor([&] {
      const unsigned long now = proxy->Counts(0).requests;
      const bool quiet = now == before;
      before = now;
      std::this_thread::sleep_for(std::chrono::milliseconds(40));
      return quiet;
    }));
  }
  // Waits until a capture waits for the hand: it has been idle for a while then, and asks whether
  // its grab is still there.
  void CaptureIsIdle() {
    std::atomic<int> asked = 0;
    proxy->BeforeRequest([&](const XRequest& request) { asked += request.major == kQueryPointer; });
    // The answer to the first has been taken in when the second is asked.
    EXPECT_TRUE(WaitFor([&] { return asked >= 2; }));
    proxy->BeforeRequest({});
  }
  static void Options(Delivery delivery) {
    GromlitUserOptions options{};
    DefaultUserOptions(&options);
    options.splash = 0;
    options.temp1 = delivery;
    ASSERT_EQ(SaveUserOptions(&options, defaultOptionFile), 1);
  }
  // Draws a stroke whose action is a key; the round trips between the release and the key.
  unsigned long TripsFromReleaseToKey(int major, int minor) {
    Go({400, 400});
    player->Press(3);
    Trace({{400, 400}, {600, 400}}, 20);
    EXPECT_TRUE(WaitFor([this] { return !MappedOverlays().empty(); }));
    CaptureIsIdle();
    std::atomic<int> released = 0;
    std::atomic<int> keys = 0;
    std::atomic<unsigned long> at_release = 0;
    std::atomic<unsigned long> at_key = 0;
    proxy->BeforeRequest([&](const XRequest& request) {
      // The first request that answers the release ends whatever was waited for before.
      if (released == 1) at_release = Trips();
      if (released > 0 || request.major == kAllowEvents) released++;
      // The key's release goes with its press, which is counted by then.
      if (request.major == major && (minor < 0 || request.minor == minor) && ++keys == 2)
        at_key = Trips();
    });
    player->Release(3);
    EXPECT_TRUE(WaitFor([&] { return keys >= 2; }));
    proxy->BeforeRequest({});
    EXPECT_TRUE(WaitFor([this] { return MappedOverlays().empty(); }));
    Settle();
    return at_key - at_release;
  }

  std::unique_ptr<XProxy> proxy;
};

TEST_F(RoundTripsTest, StartTakesSixteen) {
  EXPECT_LE(TripsOfStart(install->path()), 16u);
}

TEST_F(RoundTripsTest, StartWithTheStarterLibraryTakesNoMore) {
  const std::string library = *install / "library";
  std::filesystem::copy(testing::Built("share/gromlit"), library,
                        std::filesystem::copy_options::recursive);
  GromlitPath = library.c_str();
  user = GetUserOptions();
  user->splash = 0;
  ASSERT_EQ(SaveUserOptions(user, defaultOptionFile), 1);
  GromlitPath = install->path().c_str();
  EXPECT_LE(TripsOfStart(library), 16u);
}

TEST_F(RoundTripsTest, FromTheReleaseToASentKeyThereIsOne) {
  Options(kSentEvents);
  WritePlugin("Probe.probe", {{"right", kRight, {{kHotKey, "", kKeyA, 0}}}});
  const ProbeClient probe(install->path(),
                          {"--class", "Probe", "probe", "--geometry", "600x500+300+250"});
  StartGromlit(true, {"-display", proxy->name(), "-path", install->path()});
  EXPECT_LE(TripsFromReleaseToKey(kSendEvent, -1), 1u);
  EXPECT_LE(TripsFromReleaseToKey(kSendEvent, -1), 1u);
}

TEST_F(RoundTripsTest, APressIsThawedBeforeAnythingIsAsked) {
  const ProbeClient probe(install->path(),
                          {"--class", "Probe", "probe", "--geometry", "600x500+300+250"});
  StartGromlit(true, {"-display", proxy->name(), "-path", install->path()});
  Go({400, 400});
  Settle();
  std::mutex lock;
  std::vector<int> majors;
  const auto thawed = [&] {
    const std::lock_guard guard(lock);
    return std::ranges::find(majors, kAllowEvents) != majors.end();
  };
  proxy->BeforeRequest([&](const XRequest& request) {
    const std::lock_guard guard(lock);
    majors.push_back(request.major);
  });
  player->Press(3);
  EXPECT_TRUE(WaitFor(thawed));
  proxy->BeforeRequest({});
  // Neither has an answer.
  ASSERT_GE(majors.size(), 2u);
  EXPECT_EQ(majors[0], kChangeActivePointerGrab);
  EXPECT_EQ(majors[1], kAllowEvents);
  player->Release(3);
}

TEST_F(RoundTripsTest, FromTheReleaseToARealKeyThereAreTwo) {
  Options(kRealInput);
  WritePlugin("Probe.probe", {{"right", kRight, {{kHotKey, "", kKeyA, 0}}}});
  const ProbeClient probe(install->path(),
                          {"--class", "Probe", "probe", "--geometry", "600x500+300+250"});
  StartGromlit(true, {"-display", proxy->name(), "-path", install->path()});
  int xtest;
  int event;
  int error;
  ASSERT_TRUE(XQueryExtension(player->display(), "XTEST", &xtest, &event, &error));
  EXPECT_LE(TripsFromReleaseToKey(xtest, 2), 2u);
  EXPECT_LE(TripsFromReleaseToKey(xtest, 2), 2u);
}

}  // namespace
}  // namespace gromlit
