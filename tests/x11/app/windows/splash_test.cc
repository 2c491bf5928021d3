// First: the test library's headers cannot bear Xlib's macros.
#include "tests/x11/toolkit/widget_fixture.h"

#include <unistd.h>

#include <thread>

#include "app/windows/splash.h"
#include "tests/x11/toolkit/request_cost.h"
#include "toolkit/image.h"

namespace gromlit {
namespace {

using testing::Picture;

class SplashTest : public testing::XFixture {
 protected:
  void SetUp() override {
    XFixture::SetUp();
    options = GromlitUserOptions{};
    user = &options;
    // A "player" that writes down what it was asked to play.
    player_script = *install / "player";
    played = *install / "played";
    testing::WriteText(player_script, "#!/bin/sh\necho \"$1\" > '" + played + ".new'\nmv '" +
                                          played + ".new' '" + played + "'\n");
    ASSERT_EQ(chmod(player_script.c_str(), 0755), 0);
    std::snprintf(options.sndcmd, sizeof options.sndcmd, "%s %%s", player_script.c_str());
  }
  void TearDown() override {
    user = nullptr;
    XFixture::TearDown();
  }

  // The splash window as another client sees it, or None.
  Window Find() {
    Window rootwin;
    Window parent;
    Window* children = nullptr;
    unsigned count = 0;
    if (!XQueryTree(player->display(), player->root(), &rootwin, &parent, &children, &count)) {
      return 0;
    }
    Window found = 0;
    for (unsigned i = 0; i < count; i++) {
      XWindowAttributes is;
      if (!XGetWindowAttributes(player->display(), children[i], &is)) continue;
      if (is.map_state == IsViewable && is.width == 173 && is.height == 105) found = children[i];
    }
    if (children != nullptr) XFree(children);
    return found;
  }

  // What the player was asked to play, once it was.
  std::string Played() {
    EXPECT_TRUE(testing::WaitFor([this] { return testing::Exists(played); }));
    return testing::ReadText(played);
  }

  GromlitUserOptions options{};
  std::string player_script;
  std::string played;
};

TEST_F(SplashTest, ShowsForTwoSecondsInTheMiddleAndIsGone) {
  const auto start = std::chrono::steady_clock::now();
  // The splash blocks, so it runs beside the user who looks at it on another connection.
  std::thread splash([] { DoSplash(); });
  Window window = 0;
  EXPECT_TRUE(testing::WaitFor([&] { return (window = Find()) != 0; }));
  // The sound starts when everything is drawn.
  EXPECT_EQ(Played(), "TheGromlitSound.wav\n");
  XWindowAttributes is;
  ASSERT_TRUE(XGetWindowAttributes(player->display(), window, &is));
  EXPECT_EQ(is.x, 1280 / 2 - 173 / 2);
  EXPECT_EQ(is.y, 1024 / 2 - 105 / 2);
  EXPECT_EQ(is.border_width, 0);
  EXPECT_TRUE(is.override_redirect);
  EXPECT_TRUE(is.save_under);
  EXPECT_EQ(is.all_event_masks, ExposureMask);

  const Picture shown = testing::TakeScreen(*player, is.x, is.y, 173, 105);
  Picture expected(173, 105, 0xc0c0c0);
  for (int y = 0; y < 57; y++) {
    for (int x = 0; x < 125; x++) {
      expected.At(24 + x, 24 + y) = XGetPixel(logoImage, x, y) & 0xffffff;
    }
  }
  expected.Bevel(0xffffff, 0x707070, 24, 24, 125, 57);
  expected.Bevel(0xffffff, 0x707070, 0, 0, 173, 105);
  for (int y = 0; y < 105; y++) {
    for (int x = 0; x < 173; x++) {
      // The two lines of text lie between the bevels.
      if (x >= 2 && x < 171 && ((y >= 2 && y < 24) || (y >= 82 && y < 103))) continue;
      ASSERT_EQ(shown.At(x, y), expected.At(x, y)) << x << ", " << y;
    }
  }
  EXPECT_GT(shown.Count(0x000000, 2, 2, 169, 22), 50);
  EXPECT_GT(shown.Count(0x000079, 2, 82, 169, 21), 50);
  // Nothing of the address is cut off by the window's edge.
  EXPECT_EQ(shown.Count(0x000079, 2, 82, 2, 21), 0);
  EXPECT_EQ(shown.Count(0x000079, 169, 82, 2, 21), 0);

  splash.join();
  EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::seconds(2));
  XSync(dpy, False);
  EXPECT_EQ(Find(), 0U);
}

TEST_F(SplashTest, TheSoundOfTheInstallationIsPlayedFromAnyDirectory) {
  const std::string sound = *install / "TheGromlitSound.wav";
  testing::WriteText(sound, "RIFF");
  DoSplash();
  EXPECT_EQ(Played(), sound + "\n");
}

TEST_F(SplashTest, APathThatTheCommandLineWouldSplitIsNotPassed) {
  const std::string spaced = *install / "two words";
  ASSERT_EQ(mkdir(spaced.c_str(), 0777), 0);
  testing::WriteText(spaced + "/TheGromlitSound.wav", "RIFF");
  const char* const former = GromlitPath;
  GromlitPath = spaced.c_str();
  DoSplash();
  GromlitPath = former;
  EXPECT_EQ(Played(), "TheGromlitSound.wav\n");
}

TEST_F(SplashTest, AMissingPlayerDoesNotKeepTheProgramFromStarting) {
  std::snprintf(options.sndcmd, sizeof options.sndcmd, "no-such-player %%s");
  DoSplash();
  XSync(dpy, False);  // the user looks on another connection
  EXPECT_EQ(Find(), 0U);
}

TEST_F(SplashTest, DoesNotWaitForTheServer) {
  const testing::Cost cost = testing::CostOf([] { DoSplash(); });
  EXPECT_EQ(cost.roundtrips, 0U);
  EXPECT_LE(cost.requests, 24U);
}

}  // namespace
}  // namespace gromlit
