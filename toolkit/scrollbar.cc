#include "toolkit/scrollbar.h"

#include <sys/select.h>

#include <algorithm>
#include <climits>
#include <cmath>
#include <cstdint>
#include <cstdlib>

#include "display/display.h"
#include "display/end_signals.h"
#include "display/scale.h"
#include "toolkit/bevel.h"
#include "toolkit/child_window.h"
#include "toolkit/image.h"
#include "toolkit/manners.h"

namespace gromlit {
namespace {

constexpr int kArrowEnd = 12;      // where an arrow ends and the trough begins, from both ends
constexpr int kTrackStart = 13;    // and the track of the thumb, likewise
constexpr int kTroughX = 2;        // left edge of arrows, trough and thumb
constexpr int kTroughWidth = 11;   // their width
constexpr int kFirstWaits = 25;    // waits before a held button repeats
constexpr int kFirstWait = 10000;  // microseconds of each
constexpr int kStepWait = 20000;   // microseconds from one step of a held arrow to the next
constexpr int kPageWait = 100000;  // and of a held trough: it is read what passes by
constexpr int kRowWait = 80000;    // and of a held arrow that moves by rows
constexpr int kDragWait = 10000;   // microseconds between two looks at a pointer that stands still

int Track(const XScrollbar* sb) {
  return std::max(sb->height - 2 * kTrackStart, 0);
}

// Pixels of track per unit of content. Never above 1, so that short content has a thumb that fills
// the track, and never 0 or less.
double Ratio(const XScrollbar* sb) {
  const int track = Track(sb);
  if (sb->range <= track || track == 0) return 1.0;
  return static_cast<double>(track) / sb->range;
}

// Content offset of the thumb's place.
int Offset(const XScrollbar* sb, double ratio) {
  if (sb->pos == sb->rowpos && sb->rowoffset > 0) return sb->rowoffset;
  const double offset = 1.0 / ratio * sb->pos;
  return offset < INT_MAX ? static_cast<int>(offset) : INT_MAX;
}

// Adds to pos. The owner may have set pos and page to anything.
void MoveThumb(XScrollbar* sb, int64_t by) {
  sb->pos = static_cast<int>(std::clamp<int64_t>(sb->pos + by, 0, Track(sb)));
  UpdateScrollbar(sb);
}

// What the events that have arrived say of the press that is being handled.
struct Ending {
  Window window;  // the scrollbar's
  bool over;      // its release is there, or a later press that the draw button's grab holds back
  bool released;  // its release is there, at y
  int y;
};

// While a press is held back the pointer is frozen with the button down, for everybody and until it
// is answered, which nobody does while the scrollbar waits for the button to come up.
Ending EndingOfPress(const XScrollbar* sb) {
  Ending ending{sb->window, false, false, 0};
  const auto look = [](Display*, XEvent* event, XPointer arg) {
    auto* found = reinterpret_cast<Ending*>(arg);
    const XButtonEvent& button = event->xbutton;
    if (event->type == ButtonRelease && button.window == found->window &&
        button.button <= kLastPressingButton && !found->released) {
      found->over = found->released = true;
      found->y = Logical(button.y);
    }
    if (event->type == ButtonPress && button.window == root) found->over = true;
    return False;  // every event stays where it is
  };
  XEvent event;
  XCheckIfEvent(dpy, &event, look, reinterpret_cast<XPointer>(&ending));
  return ending;
}

// Whether button 1 is down since the press that is being handled, and where the pointer is in the
// window. False also when the server does not tell: a window that is gone would otherwise never see
// its release.
bool Held(const XScrollbar* sb, int* y) {
  EndIfSignalled();
  int x;
  unsigned state;
  if (!ScaledQueryPointer(sb->window, &x, y, &state)) return false;
  return (state & Button1Mask) != 0 && !EndingOfPress(sb).over;
}

template <typename Move>
void Repeat(XScrollbar* sb, Move move, int wait) {
  int y;
  move();
  for (int i = 0; i < kFirstWaits; i++) {
    if (!Held(sb, &y)) return;
    ScrollWait(kFirstWait);
  }
  // As fast as the server answers it would be at the end before the hand can let go, and keep a
  // processor busy.
  while (Held(sb, &y)) {
    move();
    ScrollWait(wait);
  }
}

// A press on an arrow or in the trough, downwards when `direction` is 1, upwards when it is -1.
void PressStep(XScrollbar* sb, int direction) {
  if (ModernManners() && sb->row > 0) {
    Repeat(
        sb, [=] { ScrollRows(sb, direction); }, kRowWait);
  } else {
    Repeat(
        sb, [=] { MoveThumb(sb, direction); }, kStepWait);
  }
}

void PressTrough(XScrollbar* sb, int direction) {
  if (ModernManners() && sb->row > 0) {
    // A row of what was there stays, for the eye.
    const int rows = std::max(sb->height / sb->row - 1, 1);
    Repeat(
        sb, [=] { ScrollRows(sb, direction * rows); }, kPageWait);
  } else {
    Repeat(
        sb, [=] { MoveThumb(sb, direction * static_cast<int64_t>(sb->page)); }, kPageWait);
  }
}

void Drag(XScrollbar* sb, int pressed) {
  // Always from where it was taken hold of, never from the step before: a pointer that went beyond
  // an end and comes back would find the thumb in another place, and one that is quick would leave
  // it behind.
  const int taken = sb->pos;
  int last = pressed;
  const auto follow = [&](int y) {
    if (y == last) return false;
    last = y;
    sb->pos = std::clamp(taken + (y - pressed), 0, Track(sb));
    UpdateScrollbar(sb);
    return true;
  };
  int y;
  while (Held(sb, &y)) {
    if (!follow(y)) ScrollWait(kDragWait);
  }
  // The way between the last look and the release.
  const Ending ending = EndingOfPress(sb);
  if (ending.released) follow(ending.y);
}

}  // namespace

XScrollbar* MakeScrollbar(Window parent, int x, int y, int height) {
  auto* sb = new XScrollbar{};
  sb->height = std::clamp(height, 0, SHRT_MAX);
  sb->range = 4 * sb->height;
  sb->page = sb->range > 0 ? sb->height * sb->height / sb->range : 0;
  sb->window =
      MakeChildWindow(parent, x, y, kScrollbarWidth, sb->height, grey.pixel,
                      ExposureMask | ButtonPressMask | ButtonReleaseMask | PointerMotionMask);
  sb->gc = MakeWindowGC(sb->window);
  sb->wobj = AllocWindowObj(sb->window, sb);
  On<Expose, DrawScrollbar>(sb);
  On<ButtonPress, ScrollButtonPress>(sb);
  OnWheel<ScrollRows>(sb);
  return sb;
}

void DrawScrollbar(XScrollbar* sb, XEvent*) {
  XClearWindow(dpy, sb->window);
  XDrawBevel(kSunken, sb->window, sb->gc, 0, 0, kScrollbarWidth, sb->height);
  PutImage(sb->window, sb->gc, upscrollImage, kTroughX, 2);
  PutImage(sb->window, sb->gc, downscrollImage, kTroughX, sb->height - kTrackStart);
  UpdateScrollbar(sb);
}

void UpdateScrollbar(XScrollbar* sb) {
  FillRectangle(sb->window, sb->gc, grey.pixel, kTroughX, kArrowEnd, kTroughWidth,
                sb->height - 2 * kArrowEnd);
  const int track = Track(sb);
  const double ratio = Ratio(sb);
  sb->size = static_cast<int>(track * ratio);
  sb->pos = std::clamp(sb->pos, 0, track - sb->size);
  FillRectangle(sb->window, sb->gc, lgrey.pixel, kTroughX, sb->pos + kTrackStart, kTroughWidth,
                sb->size);
  XDrawBevel(kRaised, sb->window, sb->gc, kTroughX, sb->pos + kTrackStart, kTroughWidth, sb->size);
  if (sb->pos != sb->rowpos) sb->rowoffset = 0;
  if (sb->scroll != nullptr) sb->scroll(sb->scrollarg, Offset(sb, ratio));
}

void ScrollRows(XScrollbar* sb, int rows) {
  if (sb->row <= 0) return;
  const double ratio = Ratio(sb);
  const int track = Track(sb);
  const int size = static_cast<int>(track * ratio);
  const int from = Offset(sb, ratio) / sb->row;
  // The row that the thumb shows first at the end of its track: that is shorter than the content's
  // window, in which the last row is seen then.
  const double last = 1.0 / ratio * (track - size);
  const int end = static_cast<int>(last / sb->row);
  const int64_t to = std::clamp<int64_t>(int64_t{from} + rows, 0, std::max(end, 0));
  const double offset = static_cast<double>(to) * sb->row;
  sb->pos = std::clamp(static_cast<int>(std::lround(offset * ratio)), 0, track - size);
  sb->rowpos = sb->pos;
  sb->rowoffset = offset < INT_MAX ? static_cast<int>(offset) : INT_MAX;
  UpdateScrollbar(sb);
}

void UpdateScrollbarRange(XScrollbar* sb, int rng) {
  if (sb->range != rng) sb->rowoffset = 0;
  sb->range = rng;
  DrawScrollbar(sb);
}

void ScrollButtonPress(XScrollbar* sb, XEvent* event) {
  const int y = event->xbutton.y;
  const int thumb = sb->pos + kTrackStart;
  if (y < kArrowEnd) {
    PressStep(sb, -1);
  } else if (y > sb->height - kArrowEnd) {
    PressStep(sb, 1);
  } else if (y < thumb) {
    PressTrough(sb, -1);
  } else if (y > thumb + sb->size) {
    PressTrough(sb, 1);
  } else {
    Drag(sb, y);
  }
}

void ScrollWait(int usec) {
  if (usec <= 0) return;
  timeval time{usec / 1000000, usec % 1000000};
  select(0, nullptr, nullptr, nullptr, &time);
}

}  // namespace gromlit
