#include "toolkit/icon_window.h"

#include <bit>

#include "display/display.h"
#include "display/scale.h"
#include "toolkit/bevel.h"
#include "toolkit/child_window.h"
#include "toolkit/focus.h"
#include "toolkit/manners.h"
#include "toolkit/tab_order.h"

namespace gromlit {
namespace {

constexpr int kIconMargin = 4;  // pixels between the tile's edge and the icon
constexpr int kFocusInset = 2;  // of the frame that shows the keyboard, from each edge

}  // namespace

IconWindow* MakeIconWindow(Window parent, int x, int y, GromlitSymbol* sym, void* buttonarg) {
  const bool clickable = buttonarg != nullptr;
  auto* iw = new IconWindow{};
  iw->window = MakeChildWindow(
      parent, x, y, kIconWindowSize, kIconWindowSize, clickable ? lgrey.pixel : white.pixel,
      ExposureMask | (clickable ? ButtonPressMask | ButtonReleaseMask : NoEventMask));
  iw->gc = XCreateGC(dpy, iw->window, 0, nullptr);
  iw->sym = sym;
  iw->buttonarg = buttonarg;
  iw->wobj = AllocWindowObj(iw->window, iw);
  On<Expose, DrawIconWindow>(iw);
  On<ButtonRelease, IconWindowButtonRelease>(iw);
  if (!clickable) return iw;
  On<KeyPress, IconWindowKeyPress>(iw);
  On<FocusIn, IconWindowFocus>(iw);
  On<FocusOut, IconWindowFocus>(iw);
  SetHandler(iw->wobj, KeyRelease, NoteKeyRelease);
  SetTabStop(iw->wobj, nullptr);
  return iw;
}

void DrawIconWindow(IconWindow* iw, XEvent*) {
  XClearWindow(dpy, iw->window);
  if (iw->buttonarg != nullptr) {
    XDrawBevel(kRaised, iw->window, iw->gc, 0, 0, kIconWindowSize, kIconWindowSize);
  } else {
    XSetForeground(dpy, iw->gc, dgrey.pixel);
    ScaledDrawLine(iw->window, iw->gc, 0, 0, kIconWindowSize, 0);
    ScaledDrawLine(iw->window, iw->gc, 0, 0, 0, kIconWindowSize);
  }
  XSetForeground(dpy, iw->gc, blue.pixel);
  DrawSymbolIcon(iw->window, iw->gc, iw->sym, kIconMargin, kIconMargin);
  if (iw->focused != 0 && ModernManners())
    DrawOutline(iw->window, iw->gc, dgrey.pixel, kFocusInset, kFocusInset,
                kIconWindowSize - 2 * kFocusInset - 1, kIconWindowSize - 2 * kFocusInset - 1);
}

void IconWindowButtonRelease(IconWindow* iw, XEvent*) {
  // A passive tile can still be sent a release by another client.
  if (iw->buttonarg == nullptr || iw->action == nullptr) return;
  iw->action(iw->buttonarg);
}

void IconWindowKeyPress(IconWindow* iw, XEvent* event) {
  if (!ModernManners()) return;
  if (!IsPressingKey(&event->xkey)) {
    HandKeyUp(iw->window, event);
  } else if (!IsKeyRepeat(event->xkey)) {
    IconWindowButtonRelease(iw, event);
  }
}

void IconWindowFocus(IconWindow* iw, XEvent* event) {
  if (event->type == FocusOut) FocusLost(event->xfocus);
  if (!IsFocusMove(event->xfocus)) return;
  iw->focused = event->type == FocusIn ? 1 : 0;
  DrawIconWindow(iw);
}

void DrawSymbolIcon(Window w, GC gc, const GromlitSymbol* sym, int wx, int wy) {
  if (sym == nullptr) return;
  XPoint points[kIconSize * kIconSize];
  int npoints = 0;
  for (int y = 0; y < kIconSize; y++) {
    for (uint32_t bits = sym->icon[y]; bits != 0; bits &= bits - 1) {
      points[npoints++] = {static_cast<short>(wx + std::countr_zero(bits)),
                           static_cast<short>(wy + y)};
    }
  }
  if (npoints > 0) ScaledDrawPoints(w, gc, points, npoints);
}

}  // namespace gromlit
