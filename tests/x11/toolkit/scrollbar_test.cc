// First: the test library's headers do not stand Xlib's macros.
#include "tests/x11/toolkit/picture_draw.h"

#include <X11/keysym.h>

#include <chrono>
#include <climits>
#include <functional>
#include <thread>

#include "tests/x11/toolkit/request_cost.h"
#include "toolkit/image.h"
#include "toolkit/scrollbar.h"

namespace gromlit {
namespace {

using testing::Cost;
using testing::CostOf;
using testing::Picture;

constexpr int kX = 50;  // of the scrollbar in its parent
constexpr int kY = 40;
constexpr int kHeight = 126;  // a track of 100

// The handler of a press returns only when the button is up, so the user acts in the callback: the
// n-th call does what the test wants to happen after n updates.
struct Scrolled {
  std::vector<int> offsets;
  std::vector<std::chrono::steady_clock::time_point> times;
  std::function<void(size_t calls)> act;
};
Scrolled* scrolled = nullptr;
int expectedarg = 0;

void NoteScroll(void* arg, int offset) {
  EXPECT_EQ(arg, &expectedarg);
  scrolled->offsets.push_back(offset);
  scrolled->times.push_back(std::chrono::steady_clock::now());
  if (scrolled->act) scrolled->act(scrolled->offsets.size());
}

struct Probe {
  WindowObj* wobj;
  int keys;
};
void ProbeKey(Probe* probe, XEvent*) {
  probe->keys++;
}

class ScrollbarTest : public testing::WidgetFixture {
 protected:
  void SetUp() override {
    WidgetFixture::SetUp();
    MakeImages();
    scrolled = &calls;
    sb = MakeScrollbar(top, kX, kY, kHeight);
    sb->scroll = NoteScroll;
    sb->scrollarg = &expectedarg;
    sb->range = 400;  // a thumb of 25 pixels, 4 units for each
    XMapWindow(dpy, sb->window);
    Pump();
    calls.offsets.clear();
    calls.times.clear();
  }
  void TearDown() override {
    if (player) {
      for (int button : {1, 2, 3}) player->Release(button);
    }
    WidgetFixture::TearDown();
    scrolled = nullptr;
  }

  void ReleaseAfter(size_t n) {
    calls.act = [this, n](size_t count) {
      if (count == n) player->Release(1);
    };
  }
  // Presses button 1 at y and handles it to its end.
  void PressAt(int y, int button = 1) {
    MoveTo(kX + 7, kY + y);
    player->Press(button);
    Pump();
  }
  // Sets the thumb without the test's noticing the callback.
  void PutThumb(int pos) {
    const auto act = calls.act;
    calls.act = nullptr;
    sb->pos = pos;
    UpdateScrollbar(sb);
    calls.offsets.clear();
    calls.times.clear();
    calls.act = act;
  }
  Picture Expected(int pos, int size) {
    Picture picture(kScrollbarWidth, kHeight, kGrey);
    picture.Bevel(kDarkGrey, kWhite, 0, 0, kScrollbarWidth, kHeight);
    Paste(picture, upscrollImage, 2, 2);
    Paste(picture, downscrollImage, 2, kHeight - 13);
    picture.Fill(kGrey, 2, 12, 11, kHeight - 24);
    picture.Fill(kLightGrey, 2, pos + 13, 11, size);
    picture.Bevel(kWhite, kDarkGrey, 2, pos + 13, 11, size);
    return picture;
  }
  Picture Shown() { return Take(sb->window, 0, 0, kScrollbarWidth, kHeight); }

  Scrolled calls;
  XScrollbar* sb = nullptr;
};

TEST_F(ScrollbarTest, NewScrollbarShowsAQuarter) {
  XScrollbar* fresh = MakeScrollbar(top, 10, 20, 200);
  EXPECT_EQ(fresh->height, 200);
  EXPECT_EQ(fresh->range, 800);
  EXPECT_EQ(fresh->page, 50);
  EXPECT_EQ(fresh->pos, 0);
  EXPECT_EQ(fresh->scroll, nullptr);
  EXPECT_EQ(MakeScrollbar(top, 10, 20, 90)->page, 22) << "truncated";
  XWindowAttributes attributes;
  XGetWindowAttributes(dpy, fresh->window, &attributes);
  EXPECT_EQ(attributes.map_state, IsUnmapped);
  EXPECT_EQ(attributes.width, 15);
  EXPECT_EQ(attributes.height, 200);
}

TEST_F(ScrollbarTest, DrawsArrowsTroughAndThumb) {
  EXPECT_EQ(sb->size, 25);
  EXPECT_EQ(Shown(), Expected(0, 25));
  PutThumb(30);
  EXPECT_EQ(Shown(), Expected(30, 25));
  PutThumb(1000);
  EXPECT_EQ(sb->pos, 75);
  EXPECT_EQ(Shown(), Expected(75, 25));
}

TEST_F(ScrollbarTest, ExposeCallsBackWithTheOffset) {
  PutThumb(10);
  XClearArea(dpy, sb->window, 0, 0, 0, 0, True);
  Pump();
  EXPECT_EQ(calls.offsets, (std::vector<int>{40}));
}

TEST_F(ScrollbarTest, OffsetIsTruncated) {
  UpdateScrollbarRange(sb, 333);
  calls.offsets.clear();
  EXPECT_EQ(sb->size, 30);
  sb->pos = 10;
  UpdateScrollbar(sb);
  EXPECT_EQ(calls.offsets, (std::vector<int>{33}));
}

TEST_F(ScrollbarTest, ContentSmallerThanTheTrackFillsItWithTheThumb) {
  UpdateScrollbarRange(sb, 60);
  EXPECT_EQ(sb->size, 100);
  EXPECT_EQ(Shown(), Expected(0, 100));
  sb->pos = 20;
  UpdateScrollbar(sb);
  EXPECT_EQ(sb->pos, 0);
  EXPECT_EQ(calls.offsets.back(), 0);
}

TEST_F(ScrollbarTest, RangesThatMakeNoSenseAreSafe) {
  for (int range : {0, -1, -1000, INT_MIN, 100}) {
    UpdateScrollbarRange(sb, range);
    EXPECT_EQ(sb->size, 100) << range;
    EXPECT_EQ(calls.offsets.back(), 0) << range;
  }
  UpdateScrollbarRange(sb, INT_MAX);
  EXPECT_EQ(sb->size, 0);
  sb->pos = INT_MAX;
  UpdateScrollbar(sb);
  EXPECT_EQ(sb->pos, 100);
  EXPECT_EQ(calls.offsets.back(), INT_MAX);
  sb->pos = INT_MIN;
  UpdateScrollbar(sb);
  EXPECT_EQ(sb->pos, 0);
  EXPECT_EQ(calls.offsets.back(), 0);
}

TEST_F(ScrollbarTest, HeightsWithoutATrackAreSafe) {
  for (int height : {-5, 0, 1, 12, 25, 26, 27, 70000}) {
    XScrollbar* odd = MakeScrollbar(top, 10, 20, height);
    odd->scroll = NoteScroll;
    odd->scrollarg = &expectedarg;
    for (int range : {-3, 0, 5, 1000}) {
      UpdateScrollbarRange(odd, range);
      EXPECT_GE(odd->size, 0) << height;
      EXPECT_GE(odd->pos, 0) << height;
      EXPECT_EQ(calls.offsets.back(), 0) << height;
    }
  }
}

TEST_F(ScrollbarTest, NullCallbackIsSafe) {
  sb->scroll = nullptr;
  UpdateScrollbarRange(sb, 200);
  EXPECT_EQ(sb->size, 50);
}

TEST_F(ScrollbarTest, WildPageAndPositionStayInTheTrack) {
  sb->page = INT_MAX;
  sb->pos = 10;
  ReleaseAfter(1);
  PressAt(80);
  EXPECT_EQ(sb->pos, 75);
  sb->page = INT_MIN;
  calls.offsets.clear();
  PressAt(20);
  EXPECT_EQ(sb->pos, 75) << "minus the page, which is negative";
}

TEST_F(ScrollbarTest, ArrowsStepOnePixel) {
  ReleaseAfter(1);
  PressAt(kHeight - 11);
  EXPECT_EQ(sb->pos, 1);
  EXPECT_EQ(calls.offsets, (std::vector<int>{4}));
  EXPECT_EQ(Shown(), Expected(1, 25));
  calls.offsets.clear();
  PressAt(11);
  EXPECT_EQ(sb->pos, 0);
  EXPECT_EQ(calls.offsets, (std::vector<int>{0}));
}

TEST_F(ScrollbarTest, UpArrowAtTheTopStaysThereAndCallsBack) {
  ReleaseAfter(3);
  PressAt(2);
  EXPECT_EQ(sb->pos, 0);
  EXPECT_EQ(calls.offsets, (std::vector<int>{0, 0, 0}));
}

TEST_F(ScrollbarTest, TroughMovesByAPage) {
  PutThumb(40);
  EXPECT_EQ(sb->page, kHeight / 4);
  ReleaseAfter(1);
  PressAt(20);
  EXPECT_EQ(sb->pos, 9);
  calls.offsets.clear();
  PressAt(100);
  EXPECT_EQ(sb->pos, 40);
}

// The thumb begins at pos + 13 and, as far as a press goes, ends at pos + size + 13.
TEST_F(ScrollbarTest, BordersOfArrowTroughAndThumb) {
  struct Case {
    int y;
    int expected;
  };
  ReleaseAfter(1);
  for (const Case& at :
       {Case{11, 39}, Case{12, 9}, Case{52, 9}, Case{79, 71}, Case{114, 71}, Case{115, 41}}) {
    PutThumb(40);
    PressAt(at.y);
    EXPECT_EQ(sb->pos, at.expected) << at.y;
  }
  // On the thumb nothing moves until the pointer does.
  for (int y : {53, 78}) {
    PutThumb(40);
    player->MoveTo(kTopX + kX + 7, kTopY + kY + y);
    player->Press(1);
    XSync(dpy, False);
    player->Release(1);
    Pump();
    EXPECT_EQ(sb->pos, 40) << y;
    EXPECT_TRUE(calls.offsets.empty()) << y;
  }
}

TEST_F(ScrollbarTest, HeldArrowStepsOncePausesAndThenRepeats) {
  ReleaseAfter(40);
  PressAt(kHeight - 5);
  ASSERT_EQ(calls.offsets.size(), 40u);
  EXPECT_EQ(sb->pos, 40);
  for (size_t i = 0; i < 40; i++) EXPECT_EQ(calls.offsets[i], 4 * (static_cast<int>(i) + 1));
  EXPECT_GE(calls.times[1] - calls.times[0], std::chrono::milliseconds(250));
  for (size_t i = 2; i < 40; i++) {
    EXPECT_GE(calls.times[i] - calls.times[i - 1], std::chrono::milliseconds(20)) << i;
  }
  // Far less than another pause each; the bound allows for a busy machine.
  EXPECT_LT(calls.times[39] - calls.times[1], 38 * std::chrono::milliseconds(250));
}

TEST_F(ScrollbarTest, HeldTroughTurnsPagesThatCanBeRead) {
  ReleaseAfter(4);
  PressAt(100);
  ASSERT_EQ(calls.offsets.size(), 4u);
  EXPECT_GE(calls.times[1] - calls.times[0], std::chrono::milliseconds(250));
  for (size_t i = 2; i < 4; i++) {
    EXPECT_GE(calls.times[i] - calls.times[i - 1], std::chrono::milliseconds(100)) << i;
  }
}

// What is asked of the server bounds what a processor can spend, on a busy machine, too.
TEST_F(ScrollbarTest, AHeldScrollbarLeavesTheProcessorAlone) {
  for (const int y : {20, 2}) {  // the thumb; an arrow past its pause
    PutThumb(0);
    calls.act = nullptr;
    std::thread hand([this] {
      testing::Player other(server->name());
      const auto start = std::chrono::steady_clock::now();
      testing::WaitFor([&] {
        return std::chrono::steady_clock::now() - start > std::chrono::milliseconds(600);
      });
      other.Release(1);
    });
    MoveTo(kX + 7, kY + y);
    player->Press(1);
    const unsigned long first = NextRequest(dpy);
    const auto start = std::chrono::steady_clock::now();
    Pump();
    hand.join();
    const auto took = std::chrono::duration_cast<std::chrono::milliseconds>(
        std::chrono::steady_clock::now() - start);
    const auto requests = static_cast<long>(NextRequest(dpy) - first);
    // A query each 10 ms, and the nine requests of a step each 20 ms.
    EXPECT_LE(requests, 60 + took.count() * 6 / 10) << y << ": in " << took.count() << " ms";
    EXPECT_GE(requests, 10) << y;
  }
}

TEST_F(ScrollbarTest, ReleaseDuringThePauseEndsAtOnce) {
  ReleaseAfter(1);
  PressAt(kHeight - 5);
  EXPECT_EQ(calls.offsets.size(), 1u);
}

TEST_F(ScrollbarTest, ReleaseDuringTheRepeatEndsAtOnce) {
  ReleaseAfter(7);
  PressAt(kHeight - 5);
  EXPECT_EQ(calls.offsets.size(), 7u);
}

TEST_F(ScrollbarTest, HeldTroughPagesToTheEnd) {
  ReleaseAfter(5);
  PressAt(100);
  EXPECT_EQ(sb->pos, 75);
  EXPECT_EQ(calls.offsets, (std::vector<int>{124, 248, 300, 300, 300}));
}

TEST_F(ScrollbarTest, OtherButtonsMoveOnce) {
  for (int button : {2, 3}) {
    PutThumb(0);
    PressAt(kHeight - 5, button);  // returns though the button is down
    EXPECT_EQ(sb->pos, 1) << button;
    EXPECT_EQ(calls.offsets.size(), 1u) << button;
    player->Release(button);
    Pump();
  }
}

TEST_F(ScrollbarTest, OtherButtonsDoNotDrag) {
  PressAt(20, 3);
  MoveTo(kX + 7, kY + 60);
  Pump();
  EXPECT_EQ(sb->pos, 0);
  EXPECT_TRUE(calls.offsets.empty());
}

// The pointer has moved before the press is handled, so the drag sees it in its first round.
TEST_F(ScrollbarTest, DraggingFollowsThePointer) {
  PutThumb(10);
  MoveTo(kX + 7, kY + 30);
  player->Press(1);
  MoveTo(kX + 7, kY + 37);
  calls.act = [this](size_t n) {
    if (n == 1) MoveTo(kX + 7, kY + 27);
    if (n == 2) MoveTo(kX + 300, kY + 40);  // beside the scrollbar
    if (n == 3) player->Release(1);
  };
  Pump();
  EXPECT_EQ(calls.offsets, (std::vector<int>{68, 28, 80}));
  EXPECT_EQ(sb->pos, 20);
  EXPECT_EQ(Shown(), Expected(20, 25));
}

TEST_F(ScrollbarTest, DraggingAboveTheTrackGoesToTheTop) {
  PutThumb(30);
  MoveTo(kX + 7, kY + 50);
  player->Press(1);
  MoveTo(kX + 7, kY - 35);
  ReleaseAfter(1);
  Pump();
  EXPECT_EQ(sb->pos, 0);
  EXPECT_EQ(calls.offsets, (std::vector<int>{0}));
}

TEST_F(ScrollbarTest, DraggingBelowTheTrackStopsAtTheBottom) {
  PutThumb(30);
  MoveTo(kX + 7, kY + 50);
  player->Press(1);
  MoveTo(kX + 7, kY + 250);
  ReleaseAfter(1);
  Pump();
  EXPECT_EQ(sb->pos, 75);
  EXPECT_EQ(calls.offsets, (std::vector<int>{300}));
}

TEST_F(ScrollbarTest, DraggingBackFromAboveFindsTheThumbWhereItWasTaken) {
  PutThumb(30);
  MoveTo(kX + 7, kY + 50);  // the upper limit is 20
  player->Press(1);
  MoveTo(kX + 7, kY + 19);
  calls.act = [this](size_t n) {
    if (n == 1) MoveTo(kX + 7, kY + 25);
    if (n == 2) player->Release(1);
  };
  Pump();
  EXPECT_EQ(calls.offsets, (std::vector<int>{0, 20}));
}

// Few places on the way are seen of a quick hand.
TEST_F(ScrollbarTest, AQuickDragBelowTheBottomEndsThere) {
  for (const int below : {109, 115, 120, 126, 250}) {  // the lower limit is 95
    PutThumb(30);
    calls.act = nullptr;
    MoveTo(kX + 7, kY + 50);
    player->Press(1);
    MoveTo(kX + 7, kY + 90);
    calls.act = [&](size_t n) {
      if (n == 1) MoveTo(kX + 7, kY + below);
      if (n == 2) player->Release(1);
    };
    Pump();
    EXPECT_EQ(sb->pos, 75) << below;
    EXPECT_EQ(calls.offsets.back(), 300) << below;
  }
}

TEST_F(ScrollbarTest, ADragThatIsOverBeforeItIsSeenMovesTheThumb) {
  PutThumb(10);
  MoveTo(kX + 7, kY + 30);
  player->Press(1);
  MoveTo(kX + 7, kY + 47);
  player->Release(1);
  MoveTo(kX + 7, kY + 100);
  Pump();
  EXPECT_EQ(sb->pos, 27);
  EXPECT_EQ(calls.offsets, (std::vector<int>{108}));
}

TEST_F(ScrollbarTest, MovingAboveTheUpperLimitKeepsItAtTheTop) {
  PutThumb(30);
  MoveTo(kX + 7, kY + 50);  // the upper limit is 20
  player->Press(1);
  MoveTo(kX + 7, kY - 35);
  calls.act = [this](size_t n) {
    if (n == 1) MoveTo(kX + 7, kY + 10);
    if (n == 2) player->Release(1);
  };
  Pump();
  EXPECT_EQ(calls.offsets, (std::vector<int>{0, 0}));
}

TEST_F(ScrollbarTest, MovingBelowTheLowerLimitKeepsItAtTheBottom) {
  PutThumb(30);
  MoveTo(kX + 7, kY + 50);  // the lower limit is 108
  player->Press(1);
  MoveTo(kX + 7, kY + 250);
  calls.act = [this](size_t n) {
    if (n == 1) MoveTo(kX + 7, kY + 200);
    if (n == 2) player->Release(1);
  };
  Pump();
  EXPECT_EQ(calls.offsets, (std::vector<int>{300, 300}));
}

// Button 1 may be the draw button: its clicks are sent, and before one is handled the next press
// may be down and hold the pointer until it is answered.
TEST_F(ScrollbarTest, PressHeldBackForTheDrawButtonDoesNotKeepASentClickDown) {
  const auto mask = static_cast<unsigned>(Button1MotionMask | ButtonReleaseMask);
  XGrabButton(dpy, 1, 0, root, False, mask, GrabModeSync, GrabModeAsync, 0, 0);
  for (const bool released : {true, false}) {
    for (const int y : {kHeight - 5, 100, 20}) {  // arrow, trough, thumb
      SCOPED_TRACE(y);
      PutThumb(0);
      calls.offsets.clear();
      // Whatever happens, the test must end.
      calls.act = [&](size_t n) {
        if (n < 5) return;
        XAllowEvents(dpy, AsyncPointer, CurrentTime);
        player->Release(1);
      };
      MoveTo(kX + 7, kY + y);
      XEvent event{};
      event.xbutton.window = sb->window;
      event.xbutton.button = 1;
      event.xbutton.x = 7;
      event.xbutton.y = y;
      event.type = ButtonPress;
      XSendEvent(dpy, sb->window, False, ButtonPressMask, &event);
      event.type = ButtonRelease;
      if (released) XSendEvent(dpy, sb->window, False, ButtonReleaseMask, &event);
      XSync(dpy, False);
      player->Press(1);
      // Looked at one by one: what comes for the root window stays for its own handler.
      ASSERT_TRUE(XCheckWindowEvent(dpy, sb->window, ButtonPressMask, &event));
      DispatchEvent(&event);
      EXPECT_LE(calls.offsets.size(), 1u);
      ASSERT_TRUE(XCheckWindowEvent(dpy, root, ButtonPressMask, &event)) << "was not held back";
      XAllowEvents(dpy, AsyncPointer, event.xbutton.time);
      player->Release(1);
      Pump();
    }
  }
}

TEST_F(ScrollbarTest, NothingElseRunsWhileTheButtonIsHeld) {
  const Window window = XCreateSimpleWindow(dpy, top, 200, 200, 20, 20, 0, 0, 0);
  XSelectInput(dpy, window, KeyPressMask);
  Probe probe{nullptr, 0};
  probe.wobj = AllocWindowObj(window, &probe);
  On<KeyPress, ProbeKey>(&probe);
  XMapWindow(dpy, window);
  Pump();
  calls.act = [&](size_t n) {
    if (n == 1) {
      XEvent event{};
      event.xkey.type = KeyPress;
      event.xkey.window = window;
      event.xkey.keycode = 38;
      XSendEvent(player->display(), window, False, KeyPressMask, &event);
      XSync(player->display(), False);
    }
    EXPECT_EQ(probe.keys, 0);
    if (n == 10) player->Release(1);
  };
  MoveTo(kX + 7, kY + kHeight - 5);
  player->Press(1);
  Pump();
  EXPECT_EQ(calls.offsets.size(), 10u);
  EXPECT_EQ(probe.keys, 1) << "handled once the button is up";
}

TEST_F(ScrollbarTest, DestroyedDuringTheRepeatEndsThoughTheButtonIsDown) {
  calls.act = [this](size_t n) {
    if (n != 4) return;
    XDestroyWindow(player->display(), sb->window);
    XSync(player->display(), False);
  };
  PressAt(kHeight - 5);
  EXPECT_EQ(calls.offsets.size(), 4u);
  EXPECT_GT(errors, 0);
  errors = 0;  // the query that failed
}

TEST_F(ScrollbarTest, DestroyedDuringThePauseEndsThoughTheButtonIsDown) {
  calls.act = [this](size_t) {
    XDestroyWindow(player->display(), sb->window);
    XSync(player->display(), False);
  };
  PressAt(kHeight - 5);
  EXPECT_EQ(calls.offsets.size(), 1u);
  errors = 0;  // the query that failed
}

TEST_F(ScrollbarTest, DestroyedDuringADragEndsThoughTheButtonIsDown) {
  MoveTo(kX + 7, kY + 30);
  player->Press(1);
  MoveTo(kX + 7, kY + 35);
  calls.act = [this](size_t) {
    XDestroyWindow(player->display(), sb->window);
    XSync(player->display(), False);
  };
  Pump();
  EXPECT_EQ(calls.offsets.size(), 1u);
  errors = 0;  // the query that failed
}

TEST_F(ScrollbarTest, ForgedPressMovesOnce) {
  XEvent event{};
  event.xbutton.type = ButtonPress;
  event.xbutton.window = sb->window;
  event.xbutton.button = 1;
  event.xbutton.y = 32767;
  XSendEvent(player->display(), sb->window, False, ButtonPressMask, &event);
  event.xbutton.y = -32768;
  XSendEvent(player->display(), sb->window, False, ButtonPressMask, &event);
  XSync(player->display(), False);
  Pump();
  EXPECT_EQ(calls.offsets, (std::vector<int>{4, 0}));
}

TEST_F(ScrollbarTest, WaitsAtLeastAsLongAsAsked) {
  const auto start = std::chrono::steady_clock::now();
  ScrollWait(20000);
  EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(20));
  ScrollWait(0);
  ScrollWait(INT_MIN);
}

// A query before each of the 25 waits, one before each step of the repeat.
TEST_F(ScrollbarTest, EachWaitAndEachRepeatAsksOnce) {
  XEvent event{};
  event.xbutton.y = kHeight - 5;
  MoveTo(kX + 7, kY + kHeight - 5);
  for (const auto& [releaseafter, roundtrips] : {std::pair{1, 1}, {2, 27}, {6, 31}}) {
    PutThumb(0);
    ReleaseAfter(static_cast<size_t>(releaseafter));
    player->Press(1);
    const Cost cost = CostOf([&] { ScrollButtonPress(sb, &event); });
    EXPECT_EQ(cost.roundtrips, static_cast<unsigned long>(roundtrips));
    EXPECT_EQ(sb->pos, releaseafter);
    XSync(dpy, True);  // the events of this press, which was handled by hand
  }
}

TEST_F(ScrollbarTest, DraggingAsksOnceForEachStep) {
  PutThumb(10);
  MoveTo(kX + 7, kY + 30);
  player->Press(1);
  MoveTo(kX + 7, kY + 37);
  calls.act = [this](size_t n) {
    if (n < 5) MoveTo(kX + 7, kY + 37 + static_cast<int>(n));
    if (n == 5) player->Release(1);
  };
  XEvent event{};
  event.xbutton.y = 30;
  // Five updates, and the query that finds the button up.
  EXPECT_EQ(CostOf([&] { ScrollButtonPress(sb, &event); }), (Cost{5 * 9 + 1, 6}));
  EXPECT_EQ(sb->pos, 21);
}

TEST_F(ScrollbarTest, DrawingCostsNoRoundTripAndAStepCostsOne) {
  DrawScrollbar(sb);
  EXPECT_EQ(CostOf([&] { DrawScrollbar(sb); }), (Cost{14, 0}));
  EXPECT_EQ(CostOf([&] { UpdateScrollbar(sb); }), (Cost{8, 0}));
  EXPECT_EQ(CostOf([&] { MakeScrollbar(top, 10, 20, 200); }), (Cost{2, 0}));
  // One update, then the query that finds the button up.
  XEvent event{};
  event.xbutton.y = 5;
  EXPECT_EQ(CostOf([&] { ScrollButtonPress(sb, &event); }), (Cost{9, 1}));
}

}  // namespace
}  // namespace gromlit
