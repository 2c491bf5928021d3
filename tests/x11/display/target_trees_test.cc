// The searches against the literal ones on random window trees, and trees that vanish meanwhile.
#include "tests/support/x_fixture.h"

#include <X11/Xatom.h>

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "display/target.h"
#include "display/x_errors.h"
#include "tests/x11/display/literal_target.h"

namespace gromlit {
namespace {

using testing::LiteralTarget;

constexpr int kTrees = 400;
constexpr int kPositions = 4;  // looked at in each tree

unsigned Seed() {
  const char* given = std::getenv("GROMLIT_TEST_SEED");
  return given != nullptr ? static_cast<unsigned>(std::strtoul(given, nullptr, 10))
                          : std::random_device{}();
}

class TargetTreesTest : public testing::XFixture {
 protected:
  void SetUp() override {
    XFixture::SetUp();
    XSetErrorHandler(GromlitXErrorHandler);
    other = player->display();
  }

  // From 0 to n - 1.
  int OneOf(int n) { return std::uniform_int_distribution(0, n - 1)(random); }
  template <typename List>
  auto AnyOf(const List& list) {
    return list[static_cast<size_t>(OneOf(static_cast<int>(std::size(list))))];
  }
  bool Chance(int percent) { return OneOf(100) < percent; }

  void SetProperty(Window window, Atom property, const char* type, int format,
                   const std::string& bytes) {
    XChangeProperty(other, window, property, XInternAtom(other, type, False), format,
                    PropModeReplace, reinterpret_cast<const unsigned char*>(bytes.data()),
                    static_cast<int>(bytes.size()) / (format / 8));
  }

  void NameAtRandom(Window window) {
    static const std::string kNul(1, '\0');
    static const std::string kHints[] = {
        "name" + kNul + "Class" + kNul,
        "name" + kNul + kNul,
        kNul + "Class" + kNul,
        "name" + kNul + "Class",
        "name",
        "",
        kNul,
        std::string(1500, 'n') + kNul + "Behind" + kNul,
        "name" + kNul + std::string(2000, 'c') + kNul,
    };
    if (Chance(15)) {
      SetProperty(window, XA_WM_CLASS, Chance(85) ? "STRING" : "UTF8_STRING", 8, AnyOf(kHints));
    }
    if (Chance(12)) {
      static const char* const kTypes[] = {"STRING", "STRING", "UTF8_STRING", "COMPOUND_TEXT"};
      SetProperty(window, XA_WM_NAME, AnyOf(kTypes), Chance(90) ? 8 : 16,
                  Chance(80) ? "title" : std::string(400, 't'));
    }
  }

  Window MakeAtRandom(Window parent, bool top) {
    XSetWindowAttributes attributes{};
    static constexpr long kMasks[] = {
        0,           0, ButtonPressMask, ButtonReleaseMask, ButtonPressMask | ButtonReleaseMask,
        KeyPressMask};
    attributes.event_mask = AnyOf(kMasks);
    attributes.override_redirect = Chance(20) ? True : False;
    const bool inputonly = !top && Chance(12);
    const unsigned border = inputonly || Chance(60) ? 0 : static_cast<unsigned>(OneOf(9));
    const int reach = top ? 200 : 140;
    const Window window = XCreateWindow(
        other, parent, top ? 100 : OneOf(reach) - 40, top ? 100 : OneOf(reach) - 40,
        static_cast<unsigned>(1 + OneOf(reach)), static_cast<unsigned>(1 + OneOf(reach)), border,
        inputonly ? 0 : CopyFromParent, inputonly ? InputOnly : InputOutput, nullptr,
        CWOverrideRedirect | CWEventMask, &attributes);
    windows.push_back(window);
    if (!inputonly) parents.push_back(window);
    NameAtRandom(window);
    if (Chance(8)) SetProperty(window, XInternAtom(other, "WM_STATE", False), "WM_STATE", 32, "");
    if (top || Chance(88)) XMapWindow(other, window);
    return window;
  }

  Window MakeTree() {
    windows.clear();
    parents.clear();
    const Window top = MakeAtRandom(root, true);
    for (int n = OneOf(40); n > 0; n--) {
      // Of the last ones rather, so that trees become deep.
      const auto last = static_cast<int>(parents.size());
      const int from = Chance(50) ? std::max(0, last - 4) : 0;
      MakeAtRandom(parents[static_cast<size_t>(from + OneOf(last - from))], false);
    }
    XSync(other, False);
    return top;
  }

  // A position worth looking at: an edge of a window of the tree, or anywhere near.
  void GoAtRandom() {
    if (Chance(50)) {
      XWindowAttributes a;
      const Window window = AnyOf(windows);
      XGetWindowAttributes(other, window, &a);
      Window child;
      XTranslateCoordinates(other, window, root, Chance(50) ? a.width : OneOf(3) - 1,
                            Chance(50) ? a.height : OneOf(a.height + 2), &rootx, &rooty, &child);
    } else {
      rootx = 100 + OneOf(220);
      rooty = 100 + OneOf(220);
    }
    rootx = std::clamp(rootx, 0, 600);
    rooty = std::clamp(rooty, 0, 600);
    player->MoveTo(rootx, rooty);
  }

  Display* other = nullptr;
  std::mt19937 random;
  std::vector<Window> windows;
  std::vector<Window> parents;  // those that may have any children
  int rootx = 0;
  int rooty = 0;
};

TEST_F(TargetTreesTest, RandomTreesGiveWhatTheLiteralSearchGives) {
  const unsigned seed = Seed();
  SCOPED_TRACE("GROMLIT_TEST_SEED=" + std::to_string(seed));
  random.seed(seed);
  int clicks = 0;
  int keys = 0;
  int different = 0;
  int clients = 0;
  for (int tree = 0; tree < kTrees && !HasFailure(); tree++) {
    const Window top = MakeTree();
    for (int i = 0; i < kPositions; i++) {
      GoAtRandom();
      const LiteralTarget expected = testing::LiteralTargets(other, top, rootx, rooty);
      const Target found = FindTargets(top, rootx, rooty);
      SCOPED_TRACE("tree " + std::to_string(tree) + ", position " + std::to_string(i));
      EXPECT_EQ(found.client, expected.client);
      EXPECT_EQ(found.app, expected.app);
      EXPECT_EQ(found.cname.data(), expected.cname.substr(0, kClassBuffer - 1));
      EXPECT_EQ(found.named, expected.app > 1);
      EXPECT_EQ(found.click, expected.click);
      EXPECT_EQ(found.key, expected.key);
      EXPECT_EQ(found.winx, expected.winx);
      EXPECT_EQ(found.winy, expected.winy);
      // The searches from anywhere in the tree.
      const Window start = AnyOf(windows);
      int x = -7;
      int y = -7;
      int literalx = -7;
      int literaly = -7;
      EXPECT_EQ(GetXAppClick(start, rootx, rooty, &x, &y),
                testing::LiteralSearch(other, start, ButtonPressMask | ButtonReleaseMask, &literalx,
                                       &literaly));
      EXPECT_EQ(GetXAppKey(start, rootx, rooty, &x, &y),
                testing::LiteralSearch(other, start, ButtonPressMask, &literalx, &literaly));
      EXPECT_EQ(x, literalx);
      EXPECT_EQ(y, literaly);
      std::array<char, kClassBuffer> cname{};
      std::string literal;
      EXPECT_EQ(GetXApp(start, cname), testing::LiteralApp(other, start, &literal));
      EXPECT_EQ(cname.data(), literal.substr(0, kClassBuffer - 1));
      clicks += expected.click != 0;
      keys += expected.key != 0;
      different += expected.key != expected.click;
      clients += expected.client != top;
    }
    XDestroyWindow(other, top);
  }
  // The trees show something.
  EXPECT_GT(clicks, kTrees / 8);
  EXPECT_GT(keys, kTrees / 16);
  EXPECT_GT(different, kTrees / 40);
  EXPECT_GT(clients, kTrees / 8);
}

// Whatever is destroyed in the middle: no error, and no window that was gone before the search.
TEST_F(TargetTreesTest, WindowsThatVanishMeanwhileAreNoTargets) {
  const unsigned seed = Seed();
  SCOPED_TRACE("GROMLIT_TEST_SEED=" + std::to_string(seed));
  random.seed(seed);
  static std::atomic<int> xerrors;
  xerrors = 0;
  XSetErrorHandler([](Display* display, XErrorEvent*) {
    if (display == dpy) xerrors++;
    return 0;
  });
  int vanished = 0;
  for (int tree = 0; tree < 100; tree++) {
    const Window top = MakeTree();
    rootx = rooty = 120;
    std::vector<Window> doomed = windows;
    std::shuffle(doomed.begin(), doomed.end(), random);
    std::atomic<bool> go = false;
    std::thread destroyer([&] {
      while (!go) std::this_thread::yield();
      for (const Window window : doomed) {
        XDestroyWindow(other, window);
        XFlush(other);
      }
      XSync(other, False);
    });
    go = true;
    for (int i = 0; i < 20; i++) FindTargets(top, rootx, rooty);
    destroyer.join();
    const Target after = FindTargets(top, rootx, rooty);
    EXPECT_EQ(after.app, 0u);
    EXPECT_EQ(after.click, 0u);
    EXPECT_EQ(after.key, 0u);
    EXPECT_FALSE(after.named);
    vanished++;
  }
  XSync(dpy, False);
  EXPECT_EQ(xerrors, 0);
  EXPECT_EQ(vanished, 100);
}

}  // namespace
}  // namespace gromlit
