// Other clients that act while the program starts: windows come and go, everything is grabbed, what
// the program relies on is taken from it, between any two of its requests. It starts all the same,
// and gestures work. GROMLIT_EVERY_REQUEST as in between_requests_test.cc.
#include "tests/e2e/hostile_run.h"

#include <X11/Xatom.h>
#include <X11/keysym.h>
#include <signal.h>

#include <atomic>
#include <cstring>
#include <filesystem>

#include "core/option_files.h"

namespace gromlit {
namespace {

using testing::Attack;
using testing::kRight;
using testing::Point;
using testing::ProbeClient;
using testing::Scene;
using testing::WaitFor;
using testing::XRequest;

constexpr int kMapWindow = 8;
constexpr int kChangeProperty = 18;
constexpr int kGetProperty = 20;
constexpr int kUngrabButton = 29;

Window WindowOf(const XRequest& request) {
  uint32_t window;
  std::memcpy(&window, request.bytes->data() + 4, sizeof window);
  return window;
}

bool IsTopLevel(Display* display, Window window) {
  XWindowAttributes attributes{};
  return XGetWindowAttributes(display, window, &attributes) != 0 &&
         attributes.override_redirect == False &&
         testing::ParentOf(display, window) == DefaultRootWindow(display);
}

Window victims[20];
Window claimant = None;

void Claim(Display* display, const char* selection) {
  claimant = XCreateSimpleWindow(display, DefaultRootWindow(display), 0, 0, 10, 10, 0, 0, 0);
  XSetSelectionOwner(display, XInternAtom(display, selection, False), claimant, CurrentTime);
}

constexpr Attack kStartAttacks[] = {
    {"nothing", [](const Scene&) {}},
    {"destroy",
     [](const Scene& s) {
       for (const Window window : victims) XDestroyWindow(s.display, window);
     }},
    {"create",
     [](const Scene& s) {
       for (int i = 0; i < 20; i++) {
         const Window window =
             XCreateSimpleWindow(s.display, DefaultRootWindow(s.display), 0, 0, 10, 10, 0, 0, 0);
         XMapWindow(s.display, window);
         if (i % 2 == 0) XDestroyWindow(s.display, window);
       }
     }},
    {"claim the program's selection", [](const Scene& s) { Claim(s.display, "_GROMLIT_S0"); },
     [](const Scene& s) { XDestroyWindow(s.display, claimant); }},
    {"claim the tray's selection", [](const Scene& s) { Claim(s.display, "_NET_SYSTEM_TRAY_S0"); },
     [](const Scene& s) { XDestroyWindow(s.display, claimant); }},
    {"grab everything",
     [](const Scene& s) {
       const Window root = DefaultRootWindow(s.display);
       XGrabPointer(s.display, root, False, ButtonPressMask, GrabModeSync, GrabModeAsync, None,
                    None, CurrentTime);
       XGrabKeyboard(s.display, root, False, GrabModeSync, GrabModeSync, CurrentTime);
       XGrabServer(s.display);
     },
     [](const Scene& s) {
       XUngrabPointer(s.display, CurrentTime);
       XUngrabKeyboard(s.display, CurrentTime);
       XUngrabServer(s.display);
     }},
    {"focus", [](const Scene& s) { XSetInputFocus(s.display, None, RevertToNone, CurrentTime); }},
};

class StartBetweenRequestsTest : public testing::HostileRun {
 protected:
  // Ends the program and starts it anew, with something happening before request `number` of that.
  bool StartAttacked(const Attack& attack, unsigned long number) {
    gromlit->Kill(SIGTERM);
    gromlit->Wait();
    Display* user = player->display();
    for (Window& window : victims) {
      window = XCreateSimpleWindow(user, player->root(), 0, 0, 10, 10, 0, 0, 0);
      XMapWindow(user, window);
    }
    XSync(user, False);
    const int connection = proxy_->connections();
    scene_ = {intruder_, None, None, other_->window(), 0};
    Arm(scene_, attack, connection, number);
    StartGromlit();
    EXPECT_TRUE(Settle()) << GromlitOutput();
    const bool fired = Disarm();
    requests_ = proxy_->Counts(connection).requests;
    for (const Window window : victims) XDestroyWindow(user, window);
    main_ = MainWindow();
    CloseAll();
    return fired;
  }

  Scene scene_{};
  unsigned long requests_ = 0;
};

TEST_F(StartBetweenRequestsTest, WhateverOtherClientsDoTheProgramStarts) {
  WriteChoices(kSentEvents, 0);
  StartAll();
  StartAttacked(kStartAttacks[0], 0);
  const unsigned long usual = requests_;
  int attacks = 0;
  for (const Attack& attack : kStartAttacks) {
    attacks += Sweep(attack, usual, usual,
                     [&](unsigned long number) { return StartAttacked(attack, number); });
    if (HasFailure()) return;
  }
  EXPECT_GT(attacks, 0);
  std::printf("%d attacks, a start has %lu requests\n", attacks, usual);
}

// The program learns the time from the news of a change to a small window of its own.
TEST_F(StartBetweenRequestsTest, NewsThatNeverComesIsNotWaitedFor) {
  WriteChoices(kSentEvents, 0);
  int destroyed = 0;
  proxy_->BeforeRequest(
      [&](const XRequest& request) {
        XDestroyWindow(intruder_, WindowOf(request));
        XSync(intruder_, False);
        destroyed++;
      },
      [&](const XRequest& request) {
        return destroyed == 0 && request.major == kChangeProperty &&
               request.minor == PropModeAppend;
      });
  StartAll();
  ASSERT_FALSE(HasFailure()) << WhereItStands();
  EXPECT_EQ(destroyed, 1);
  ExpectAllIsWell();
}

class FirstWindowTest : public StartBetweenRequestsTest {
 protected:
  // A start that waits for the server right behind its first window: with the notice of a file
  // that is not used.
  void SetUp() override {
    StartBetweenRequestsTest::SetUp();
    GromlitUserOptions options{};
    DefaultUserOptions(&options);
    options.splash = 0;
    options.temp4 = kModernManners;
    ASSERT_EQ(SaveUserOptions(&options, defaultOptionFile), 1);
    std::filesystem::copy_file(*install / "plugins/Other.other.sla",
                               *install / "plugins/another.sla");
  }
  // Of the proxy's thread: whether the request shows the first window.
  bool ShowsFirstWindow(const XRequest& request) {
    if (shown_ || request.major != kMapWindow || !IsTopLevel(intruder_, WindowOf(request)))
      return false;
    shown_ = true;
    return true;
  }

  std::atomic<bool> shown_{false};
};

// As soon as it is on its way to the screen anybody may do anything to it.
TEST_F(FirstWindowTest, MayGoBeforeItIsShown) {
  other_ = std::make_unique<ProbeClient>(
      install->path(),
      std::vector<std::string>{"--class", "Other", "other", "--geometry", "300x300+700+100"});
  proxy_->BeforeRequest(
      [&](const XRequest& request) {
        if (!ShowsFirstWindow(request)) return;
        XDestroyWindow(intruder_, WindowOf(request));
        XSync(intruder_, False);
      },
      [](const XRequest& request) { return request.major == kMapWindow; });
  StartGromlit();
  ASSERT_TRUE(shown_);
  EXPECT_GT(proxy_->Counts(0).errors, 0u);
  ASSERT_TRUE(Settle()) << GromlitOutput();
  proxy_->BeforeRequest(nullptr);
  EXPECT_TRUE(gromlit->Running()) << GromlitOutput();
  EXPECT_TRUE(StrokeActs());
  EXPECT_EQ(GromlitOutput().find("X Error"), std::string::npos) << GromlitOutput();
}

// From then on the user sees the program, and may end it.
TEST_F(FirstWindowTest, GivesBackWhatItHasWhenItIsEndedThere) {
  std::atomic<bool> ended{false};
  std::atomic<bool> given_back{false};
  proxy_->BeforeRequest([&](const XRequest& request) {
    if (request.connection != 0 || ShowsFirstWindow(request)) return;
    if (ended && request.major == kUngrabButton) given_back = true;
    if (!shown_ || ended || request.major != kGetProperty) return;
    // It waits for the answer.
    gromlit->Kill(SIGTERM);
    ended = true;
  });
  StartGromlit(false);
  EXPECT_TRUE(WaitFor([&] { return !gromlit->Running(); })) << WhereItStands();
  proxy_->BeforeRequest(nullptr);
  EXPECT_TRUE(ended);
  EXPECT_TRUE(given_back) << "the signal has ended it, and not the program itself";
}

// What a killed run had lent to a character is no key of it any more once the program has started.
TEST_F(StartBetweenRequestsTest, KeyThatAKilledRunHadLentIsNotSent) {
  Display* user = player->display();
  const KeyCode usual = XKeysymToKeycode(user, XK_h);
  KeySym nothing[] = {NoSymbol, NoSymbol};
  XChangeKeyboardMapping(user, usual, 2, nothing, 1);
  XSync(user, False);
  WriteChoices(kRealInput, 0);
  WritePlugin("Other.other", {{"text", testing::kUp, {{kText, "ha"}}}});
  other_ = std::make_unique<ProbeClient>(
      install->path(),
      std::vector<std::string>{"--class", "Other", "other", "--geometry", "300x300+700+100"});
  StartGromlit();
  main_ = HideMainWindow();
  const auto keys = [&] { return other_->Lines("KeyPress").size(); };
  StrokeActs(std::chrono::milliseconds(0));
  ASSERT_TRUE(WaitFor([&] { return keys() == 2; })) << GromlitOutput();
  const std::string lent = other_->Lines("KeyPress")[0];
  const KeyCode code = XKeysymToKeycode(user, XK_h);
  EXPECT_NE(code, usual);
  gromlit->Kill(SIGKILL);
  gromlit->Wait();
  WriteChoices(kSentEvents, 0);
  StartGromlit();
  main_ = HideMainWindow();
  ASSERT_TRUE(Settle());
  StrokeActs(std::chrono::milliseconds(0));
  ASSERT_TRUE(WaitFor([&] { return keys() > 2; }));
  EXPECT_TRUE(Settle());
  EXPECT_EQ(keys(), 3u);
  EXPECT_NE(other_->Lines("KeyPress")[2].substr(0, lent.find("state")),
            lent.substr(0, lent.find("state")));
}

}  // namespace
}  // namespace gromlit
