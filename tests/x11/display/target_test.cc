#include "tests/support/x_fixture.h"

#include <X11/Xatom.h>
#include <X11/Xutil.h>

#include <algorithm>
#include <array>
#include <string>

#include "display/target.h"
#include "display/x_errors.h"

namespace gromlit {
namespace {

constexpr long kPress = ButtonPressMask;
constexpr long kRelease = ButtonReleaseMask;

class TargetTest : public testing::XFixture {
 protected:
  void SetUp() override {
    XFixture::SetUp();
    XSetErrorHandler(GromlitXErrorHandler);  // windows vanish on purpose here
  }

  // A mapped window of another client.
  Window Make(Window parent, int left, int top, unsigned width, unsigned height, long mask) {
    Display* other = player->display();
    const Window window = XCreateSimpleWindow(other, parent, left, top, width, height, 0, 0, 0);
    XSelectInput(other, window, mask);
    XMapWindow(other, window);
    XSync(other, False);
    return window;
  }
  Window Top(long mask = 0) { return Make(root, 100, 100, 200, 150, mask); }

  // WM_CLASS with exactly these bytes: name part, NUL, class part, NUL.
  void SetClassBytes(Window window, const std::string& bytes) {
    XChangeProperty(player->display(), window, XA_WM_CLASS, XA_STRING, 8, PropModeReplace,
                    reinterpret_cast<const unsigned char*>(bytes.data()),
                    static_cast<int>(bytes.size()));
    XSync(player->display(), False);
  }
  void SetClass(Window window, const std::string& classpart, const std::string& name) {
    SetClassBytes(window, name + std::string(1, '\0') + classpart + std::string(1, '\0'));
  }
  void SetName(Window window, const char* type, const std::string& text) {
    Display* other = player->display();
    const Atom atom = XInternAtom(other, type, False);
    XChangeProperty(other, window, XA_WM_NAME, atom, 8, PropModeReplace,
                    reinterpret_cast<const unsigned char*>(text.data()),
                    static_cast<int>(text.size()));
    XSync(other, False);
  }

  // The class text of the search; what the buffer held before is "before".
  Window App(Window window) {
    cname = {'b', 'e', 'f', 'o', 'r', 'e'};
    return GetXApp(window, cname);
  }
  std::string Class() const { return cname.data(); }

  // The searches at the position of the press.
  Window Click(Window window) { return GetXAppClick(window, at.x, at.y, &x, &y); }
  Window Key(Window window) { return GetXAppKey(window, at.x, at.y, &x, &y); }

  // As a window manager does with a window that it manages.
  void Manage(Window window) {
    const Atom state = XInternAtom(player->display(), "WM_STATE", False);
    XChangeProperty(player->display(), window, state, state, 32, PropModeReplace, nullptr, 0);
    XSync(player->display(), False);
  }
  // A window manager's frame that has a class of its own.
  Window Frame() {
    const Window frame = Top(kPress);
    SetClass(frame, "Frame", "frame");
    return frame;
  }
  Target AtPress(Window rootchild) { return FindTargets(rootchild, at.x, at.y); }

  std::array<char, kClassBuffer> cname{};
  struct {
    int x, y;
  } at{120, 130};
  int x = -7;
  int y = -7;
};

TEST_F(TargetTest, RootAndNoWindowAreTheDesktop) {
  EXPECT_EQ(App(root), root);
  EXPECT_EQ(Class(), "Desktop");
  EXPECT_EQ(App(0), root);
  EXPECT_EQ(Class(), "Desktop");
}

TEST_F(TargetTest, ClassTextIsClassPartDotNamePart) {
  const Window top = Top();
  SetClass(top, "XTerm", "xterm");
  EXPECT_EQ(App(top), top);
  EXPECT_EQ(Class(), "XTerm.xterm");
}

TEST_F(TargetTest, ClassHintWithOnlyANamePartGivesTheNameAlone) {
  const Window top = Top();
  SetClass(top, "", "lonely");
  EXPECT_EQ(App(top), top);
  EXPECT_EQ(Class(), "lonely");
}

TEST_F(TargetTest, ClassHintWithoutTheSecondTerminatorIsRead) {
  const Window top = Top();
  SetClassBytes(top, std::string("name\0Class", 10));
  EXPECT_EQ(App(top), top);
  EXPECT_EQ(Class(), "Class.name");
}

TEST_F(TargetTest, ClassHintWithOnlyAClassPartEndsWithADot) {
  const Window top = Top();
  SetClass(top, "Only", "");
  EXPECT_EQ(App(top), top);
  EXPECT_EQ(Class(), "Only.");
}

TEST_F(TargetTest, ClassTextIsCutToTheBuffer) {
  const Window top = Top();
  SetClass(top, std::string(5000, 'c'), "name");
  EXPECT_EQ(App(top), top);
  EXPECT_EQ(Class(), std::string(kClassBuffer - 1, 'c'));
}

TEST_F(TargetTest, PlainNameServesWhereThereIsNoClassHint) {
  const Window top = Top();
  SetName(top, "STRING", "plain name");
  EXPECT_EQ(App(top), top);
  EXPECT_EQ(Class(), "plain name");
}

TEST_F(TargetTest, LongPlainNameIsCutToTheBuffer) {
  const Window top = Top();
  SetName(top, "STRING", std::string(4000, 'n'));
  EXPECT_EQ(App(top), top);
  EXPECT_EQ(Class(), std::string(kClassBuffer - 1, 'n'));
}

TEST_F(TargetTest, NameInAnotherEncodingGivesNoWindowAndKeepsTheText) {
  for (const char* type : {"UTF8_STRING", "COMPOUND_TEXT"}) {
    const Window top = Top();
    SetName(top, type, "name");
    const Window found = App(top);
    EXPECT_NE(found, 0u) << type;
    EXPECT_NE(found, top) << type;
    EXPECT_EQ(Class(), "before") << type;
    EXPECT_EQ(Click(found), 0u) << type;
  }
}

TEST_F(TargetTest, FramesAreLookedThrough) {
  const Window frame = Top();
  const Window inner = Make(frame, 0, 0, 100, 100, 0);
  const Window client = Make(inner, 0, 0, 90, 90, 0);
  SetClass(client, "Deep", "deep");
  EXPECT_EQ(App(frame), client);
  EXPECT_EQ(Class(), "Deep.deep");
}

TEST_F(TargetTest, TheBottomMostNamedChildWins) {
  const Window frame = Top();
  const Window bottom = Make(frame, 0, 0, 50, 50, 0);
  const Window above = Make(frame, 0, 0, 50, 50, 0);
  SetClass(bottom, "Bottom", "b");
  SetClass(above, "Above", "a");
  EXPECT_EQ(App(frame), bottom);
  EXPECT_EQ(Class(), "Bottom.b");
}

TEST_F(TargetTest, WindowsWithoutAnyNameGiveNothing) {
  const Window frame = Top();
  Make(frame, 0, 0, 50, 50, 0);
  EXPECT_EQ(App(frame), 0u);
  EXPECT_EQ(Class(), "before");
}

TEST_F(TargetTest, DeadWindowGivesNothing) {
  const Window top = Top(kPress);
  XDestroyWindow(player->display(), top);
  XSync(player->display(), False);
  EXPECT_EQ(App(top), 0u);
  EXPECT_EQ(Click(top), 0u);
  EXPECT_EQ(Key(top), 0u);
  EXPECT_EQ(x, -7);
}

TEST_F(TargetTest, DeepestWindowThatTakesTheClickWins) {
  const Window top = Top(kPress);
  const Window child = Make(top, 10, 10, 100, 100, kPress);
  const Window deepest = Make(child, 10, 10, 50, 50, kPress);
  at = {130, 140};
  EXPECT_EQ(Click(top), deepest);
  EXPECT_EQ(x, 10);
  EXPECT_EQ(y, 20);
}

TEST_F(TargetTest, OfOverlappingSiblingsTheBottomMostWins) {
  const Window top = Top(kPress);
  const Window bottom = Make(top, 0, 0, 100, 100, kPress);
  Make(top, 0, 0, 100, 100, kPress);
  at = {120, 120};
  EXPECT_EQ(Click(top), bottom);
}

TEST_F(TargetTest, ReleasesAloneCountForClicksButNotForKeys) {
  const Window top = Top(kRelease);
  at = {120, 130};
  EXPECT_EQ(Click(top), top);
  EXPECT_EQ(x, 20);
  EXPECT_EQ(y, 30);
  x = y = -7;
  EXPECT_EQ(Key(top), 0u);
  EXPECT_EQ(x, -7);
  EXPECT_EQ(y, -7);
}

TEST_F(TargetTest, KeyWindowTakesPresses) {
  const Window top = Top(kPress);
  Make(top, 0, 0, 100, 100, kRelease);
  at = {120, 130};
  EXPECT_EQ(Key(top), top);
}

TEST_F(TargetTest, WindowThatNobodyListensOnIsNoTarget) {
  const Window top = Top(ExposureMask);
  at = {120, 130};
  EXPECT_EQ(Click(top), 0u);
}

TEST_F(TargetTest, RightAndBottomEdgeCountAsInside) {
  const Window top = Make(root, 100, 100, 200, 150, kPress);
  const struct {
    int rootx, rooty;
    bool inside;
  } cases[] = {
      {300, 250, true}, {100, 100, true}, {301, 250, false}, {300, 251, false}, {99, 100, false}};
  for (const auto& edge : cases) {
    at = {edge.rootx, edge.rooty};
    EXPECT_EQ(Click(top), edge.inside ? top : 0u) << edge.rootx << "," << edge.rooty;
  }
  at = {300, 250};
  EXPECT_EQ(Click(top), top);
  EXPECT_EQ(x, 200);
  EXPECT_EQ(y, 150);
}

TEST_F(TargetTest, UnmappedWindowIsNoTargetNorAnythingInIt) {
  const Window top = Top(kPress);
  const Window child = Make(top, 0, 0, 100, 100, kPress);
  Make(child, 0, 0, 100, 100, kPress);
  XUnmapWindow(player->display(), child);
  XSync(player->display(), False);
  at = {120, 130};
  EXPECT_EQ(Click(top), top);
}

TEST_F(TargetTest, ClientWithThousandsOfWindowsStillGetsItsClick) {
  const Window top = Top(kPress);
  for (int i = 0; i < 2500; i++) {
    XMapWindow(player->display(),
               XCreateSimpleWindow(player->display(), top, 150, 100, 10, 10, 0, 0, 0));
  }
  const Window target = Make(top, 0, 0, 50, 50, kPress);
  at = {120, 130};
  const unsigned long before = NextRequest(dpy);
  EXPECT_EQ(Click(top), target);
  EXPECT_EQ(x, 20);
  EXPECT_LT(NextRequest(dpy) - before, 10000u);
}

TEST_F(TargetTest, EndlessNestingIsCutShort) {
  const Window top = Top(kPress);
  Window window = top;
  for (int i = 0; i < 200; i++) window = Make(window, 0, 0, 100, 100, 0);
  SetClass(window, "Deep", "deep");
  at = {120, 130};
  EXPECT_EQ(App(top), 0u);
  EXPECT_EQ(Click(top), top);
}

TEST_F(TargetTest, FramesWithAClassOfTheirOwnAreLookedThrough) {
  const Window frame = Frame();
  const Window container = Make(frame, 0, 20, 200, 130, 0);
  const Window client = Make(container, 0, 0, 200, 130, kPress);
  SetClass(client, "Client", "client");
  EXPECT_EQ(AtPress(frame).app, frame) << "nobody manages it yet";
  Manage(client);
  const Target target = AtPress(frame);
  EXPECT_EQ(target.client, client);
  EXPECT_EQ(target.app, client);
  EXPECT_STREQ(target.cname.data(), "Client.client");
  EXPECT_TRUE(target.named);
  EXPECT_EQ(target.click, client);
  EXPECT_EQ(target.key, client);
  EXPECT_EQ(target.winx, 20);
  EXPECT_EQ(target.winy, 10);
}

TEST_F(TargetTest, TitleBelongsToTheOnlyClientOfItsFrame) {
  const Window frame = Frame();
  const Window client = Make(frame, 0, 50, 200, 100, kPress);
  SetClass(client, "Client", "client");
  Manage(client);
  const Target target = AtPress(frame);
  EXPECT_EQ(target.client, client);
  EXPECT_STREQ(target.cname.data(), "Client.client");
  EXPECT_EQ(target.click, 0u) << "the position is beside it";
}

TEST_F(TargetTest, TitleOfSeveralClientsIsTheFrames) {
  const Window frame = Frame();
  for (const int top : {50, 100}) {
    const Window client = Make(frame, 0, top, 200, 50, kPress);
    SetClass(client, "Client", "client");
    Manage(client);
  }
  const Target target = AtPress(frame);
  EXPECT_EQ(target.client, frame);
  EXPECT_STREQ(target.cname.data(), "Frame.frame");
  EXPECT_EQ(target.click, frame);
}

TEST_F(TargetTest, OfSeveralClientsTheTopmostAtThePositionCounts) {
  const Window frame = Frame();
  Window client = None;
  for (const char* name : {"lower", "upper", "beside"}) {
    const bool beside = std::string(name) == "beside";
    const Window made = Make(frame, beside ? 100 : 0, 0, 100, 100, kPress);
    SetClass(made, "Client", name);
    Manage(made);
    if (!beside) client = made;
  }
  EXPECT_EQ(AtPress(frame).client, client);
  EXPECT_STREQ(AtPress(frame).cname.data(), "Client.upper");
  XUnmapWindow(player->display(), client);
  XSync(player->display(), False);
  EXPECT_STREQ(AtPress(frame).cname.data(), "Client.lower");
}

TEST_F(TargetTest, ClientsAreLookedForToADepthOfEight) {
  for (const int depth : {8, 9}) {
    const Window frame = Frame();
    Window client = frame;
    for (int i = 0; i < depth; i++) client = Make(client, 0, 0, 200, 150, 0);
    SetClass(client, "Client", "client");
    Manage(client);
    EXPECT_EQ(AtPress(frame).client, depth == 8 ? client : frame);
    XDestroyWindow(player->display(), frame);
  }
}

TEST_F(TargetTest, TheDesktopIsItsOwnTarget) {
  for (const Window window : {Window{None}, root}) {
    const Target target = AtPress(window);
    EXPECT_EQ(target.client, root);
    EXPECT_EQ(target.app, root);
    EXPECT_EQ(target.click, root);
    EXPECT_EQ(target.key, root);
    EXPECT_STREQ(target.cname.data(), "Desktop");
    EXPECT_EQ(target.winx, at.x);
    EXPECT_EQ(target.winy, at.y);
  }
}

TEST_F(TargetTest, ThePointersPlaceDoesNotMatter) {
  const Window top = Top(kPress);
  SetClass(top, "Class", "name");
  player->MoveTo(900, 900);
  EXPECT_EQ(AtPress(top).click, top);
  EXPECT_EQ(AtPress(top).winx, 20);
  EXPECT_EQ(AtPress(top).winy, 30);
}

}  // namespace
}  // namespace gromlit
