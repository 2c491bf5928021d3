// What the searches cost: requests, and how often they wait for the server.
#include "tests/support/x_fixture.h"

#include <algorithm>
#include <array>
#include <random>
#include <string>
#include <vector>

#include "display/target.h"
#include "display/x_errors.h"
#include "tests/support/round_trips.h"

namespace gromlit {
namespace {

using testing::CountTrips;
using testing::Trips;

constexpr int kX = 150;
constexpr int kY = 160;

class TargetCostTest : public testing::XFixture {
 protected:
  void SetUp() override {
    XFixture::SetUp();
    XSetErrorHandler(GromlitXErrorHandler);
    other = player->display();
    FindTargets(MakeTop(), 0, 0);  // the first search asks for an atom
  }

  Window Make(Window parent, long mask, int left = 0, int top = 0, unsigned size = 200) {
    const Window window = XCreateSimpleWindow(other, parent, left, top, size, size, 0, 0, 0);
    XSelectInput(other, window, mask);
    XMapWindow(other, window);
    return window;
  }
  Window MakeTop() { return Make(root, ButtonPressMask, 100, 100); }
  void Manage(Window window) {
    const Atom state = XInternAtom(other, "WM_STATE", False);
    XChangeProperty(other, window, state, state, 32, PropModeReplace, nullptr, 0);
  }
  // Children beside the position, all of which have to be looked at.
  void AddChildren(Window window, int n) {
    for (int i = 0; i < n; i++) Make(window, ButtonPressMask, 150, 10 + i % 100, 5);
  }

  // More than are searched. Not mapped: for so many the server would take too long.
  void AddTooMany(Window window) {
    for (int i = 0; i < 10000; i++) XCreateSimpleWindow(other, window, 0, 0, 10, 10, 0, 0, 0);
  }

  Trips Search(Window rootchild) {
    XSync(other, False);
    return CountTrips([&] { target = FindTargets(rootchild, kX, kY); });
  }

  Display* other = nullptr;
  Target target;
};

TEST_F(TargetCostTest, EveryWaitIsCounted) {
  const Window top = MakeTop();
  XSync(other, False);
  const Trips trips = CountTrips([&] {
    XWindowAttributes attributes;
    XGetWindowAttributes(dpy, top, &attributes);  // two requests, waited for together
    XSync(dpy, False);
    XFlush(dpy);
  });
  EXPECT_EQ(trips.requests, 3u);
  EXPECT_EQ(trips.waits, 2u);
}

TEST_F(TargetCostTest, PlainWindowTakesThreeWaits) {
  const Window top = MakeTop();
  testing::SetClass(other, top, "Class", "name");
  EXPECT_EQ(Search(top).waits, 3u);
  EXPECT_EQ(target.click, top);
  EXPECT_EQ(target.key, top);
}

TEST_F(TargetCostTest, FramedWindowTakesFewWaits) {
  const Window frame = MakeTop();
  const Window client = Make(frame, ButtonPressMask);
  testing::SetClass(other, client, "Class", "name");
  Manage(client);
  EXPECT_EQ(Search(frame).waits, 4u);
  EXPECT_EQ(target.click, client);
}

// However many windows there are, the waits are those of the levels.
TEST_F(TargetCostTest, ManyWindowsTakeNoMoreWaitsThanFew) {
  for (const int n : {1, 200, 1000}) {
    const Window frame = MakeTop();
    const Window client = Make(frame, ButtonPressMask);
    testing::SetClass(other, client, "Class", "name");
    Manage(client);
    AddChildren(client, n);
    const Trips trips = Search(frame);
    EXPECT_EQ(target.client, client);
    EXPECT_EQ(target.click, client) << n;
    EXPECT_EQ(target.key, client) << n;
    EXPECT_EQ(target.winx, kX - 100);
    EXPECT_LE(trips.waits, n == 1 ? 6u : 10u) << n;
    EXPECT_LE(trips.requests, 3u * static_cast<unsigned>(n) + 40) << n;
    XDestroyWindow(other, frame);
  }
}

// Where no window manager runs all of the windows are asked twice.
TEST_F(TargetCostTest, ManyWindowsWithoutAWindowManagerTakeFewWaits) {
  const Window top = MakeTop();
  testing::SetClass(other, top, "Class", "name");
  AddChildren(top, 1000);
  const Trips trips = Search(top);
  EXPECT_EQ(target.click, top);
  EXPECT_LE(trips.waits, 12u);
  EXPECT_LE(trips.requests, 7 * 1000u + 40);
}

// One after another in each other, the application the last of them: each level costs its waits.
TEST_F(TargetCostTest, DeepTreeTakesAtMostFourWaitsALevel) {
  for (const unsigned depth : {2u, 10u, 60u}) {
    const Window top = MakeTop();
    Window window = top;
    for (unsigned i = 1; i < depth; i++) window = Make(window, ButtonPressMask);
    testing::SetClass(other, window, "Deep", "deep");
    EXPECT_LE(Search(top).waits, 4 * depth);
    EXPECT_EQ(target.click, window) << depth;
    EXPECT_STREQ(target.cname.data(), "Deep.deep");
    XDestroyWindow(other, top);
  }
}

// A thousand windows nested at random, as a toolkit nests them.
TEST_F(TargetCostTest, ThousandNestedWindowsTakeAtMostSixtyWaits) {
  std::mt19937 random(1);
  for (int tree = 0; tree < 10; tree++) {
    const Window top = MakeTop();
    std::vector<Window> windows = {top};
    for (int i = 0; i < 1000; i++) {
      const size_t from = std::uniform_int_distribution<size_t>(0, windows.size() - 1)(random);
      windows.push_back(Make(windows[from], i % 3 == 0 ? ButtonPressMask : 0));
    }
    testing::SetClass(other, top, "Class", "name");
    EXPECT_LE(Search(top).waits, 60u);
    EXPECT_NE(target.click, 0u);
    XDestroyWindow(other, top);
  }
}

TEST_F(TargetCostTest, ClassTextAloneTakesAWaitALevelAndOne) {
  const Window frame = MakeTop();
  const Window client = Make(frame, 0);
  testing::SetClass(other, client, "Class", "name");
  Manage(client);
  AddChildren(client, 1000);
  XSync(other, False);
  const Trips trips = CountTrips([&] { target = FindApplication(frame, kX, kY); });
  EXPECT_STREQ(target.cname.data(), "Class.name");
  EXPECT_EQ(trips.waits, 3u);
  EXPECT_LE(trips.requests, 15u);
}

// A client with more windows than are searched: every press has a target all the same.
TEST_F(TargetCostTest, MoreWindowsThanAreSearchedLoseNoTarget) {
  const Window top = MakeTop();
  testing::SetClass(other, top, "Class", "name");
  AddTooMany(top);
  const Window target_window = Make(top, ButtonPressMask, 20, 20, 100);
  const Trips trips = Search(top);
  EXPECT_STREQ(target.cname.data(), "Class.name");
  EXPECT_EQ(target.click, target_window);
  EXPECT_EQ(target.key, target_window);
  EXPECT_EQ(target.winx, kX - 120);
  EXPECT_EQ(target.winy, kY - 120);
  EXPECT_LE(trips.waits, 30u);
  EXPECT_LE(trips.requests, 35000u);
}

// The same where the one with the class is behind them all.
TEST_F(TargetCostTest, ClassBehindMoreWindowsThanAreSearchedIsFound) {
  const Window top = MakeTop();
  AddTooMany(top);
  const Window client = Make(top, ButtonPressMask, 20, 20, 100);
  testing::SetClass(other, client, "Class", "name");
  Search(top);
  EXPECT_STREQ(target.cname.data(), "Class.name");
  EXPECT_EQ(target.click, client);
}

// Whichever wait a window vanishes in: the result has no window that was gone before the last wait.
TEST_F(TargetCostTest, WindowsThatVanishInAnyWaitAreNoTargets) {
  static int xerrors;
  xerrors = 0;
  XSetErrorHandler([](Display* display, XErrorEvent*) {
    if (display == dpy) xerrors++;
    return 0;
  });
  for (unsigned long wait = 1; wait <= 8; wait++) {
    for (int victim = 0; victim < 4; victim++) {
      const Window frame = MakeTop();
      const Window client = Make(frame, ButtonPressMask);
      testing::SetClass(other, client, "Class", "name");
      Manage(client);
      const Window inner = Make(client, ButtonReleaseMask);
      const Window deep = Make(inner, 0);
      Make(deep, 0);
      const std::array<Window, 4> windows = {frame, client, inner, deep};
      XSync(other, False);
      const Trips trips = CountTrips([&] { target = FindTargets(frame, kX, kY); },
                                     [&](unsigned long n) {
                                       if (n != wait) return;
                                       XDestroyWindow(other, windows[size_t(victim)]);
                                       XSync(other, False);
                                     });
      ASSERT_GT(trips.waits, 1u);
      SCOPED_TRACE("window " + std::to_string(victim) + " in wait " + std::to_string(wait) +
                   " of " + std::to_string(trips.waits));
      // What was sent before the wait may have been answered before the window went.
      const bool gone = wait < trips.waits;
      const bool appgone = gone && victim <= 1;
      EXPECT_TRUE(!appgone || target.app == None) << target.app;
      EXPECT_TRUE(!appgone || target.key == None);
      EXPECT_TRUE(!appgone || !target.named);
      EXPECT_TRUE(!(gone && victim <= 2) || target.click != inner);
      if (!gone && wait > trips.waits) {
        EXPECT_EQ(target.click, inner);
        EXPECT_EQ(target.key, client);
      }
      XDestroyWindow(other, frame);
    }
  }
  XSync(dpy, False);
  EXPECT_EQ(xerrors, 0);
}

}  // namespace
}  // namespace gromlit
