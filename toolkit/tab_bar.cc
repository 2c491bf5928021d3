#include "toolkit/tab_bar.h"

#include <X11/keysym.h>

#include <algorithm>

#include "display/display.h"
#include "display/scale.h"
#include "toolkit/bevel.h"
#include "toolkit/child_window.h"
#include "toolkit/focus.h"
#include "toolkit/key_lookup.h"
#include "toolkit/manners.h"
#include "toolkit/tab_order.h"

namespace gromlit {
namespace {

// Whether there is a selected tab: a bar without titles has none.
bool HasSelected(const XTabBar* tbar) {
  return tbar->selected >= 0 && tbar->selected < tbar->nitems;
}

void DrawSelected(XTabBar* tbar, int up) {
  const int i = tbar->selected;
  XDrawTabBevel(up, tbar->window, tbar->gc, tbar->itemx[i] - kTitleMargin, 2,
                tbar->itemwidth[i] + 2 * kTitleMargin, tbar->itemheight + 2, tbar->width - 1);
}

// The line below the selected title.
void DrawFocus(XTabBar* tbar, unsigned long pixel) {
  if (!HasSelected(tbar)) return;
  FillRectangle(tbar->window, tbar->gc, pixel, tbar->itemx[tbar->selected], tbar->itemheight + 1,
                tbar->itemwidth[tbar->selected], 1);
}

bool ShowsFocus(const XTabBar* tbar) {
  return tbar->focused != 0 && ModernManners();
}

void CallBack(XTabBar* tbar, int flag) {
  const XTabItem* item = tbar->items[tbar->selected];
  if (item->action != nullptr) item->action(tbar, item->arg, flag);
}

void SelectTab(XTabBar* tbar, int i) {
  if (i == tbar->selected) return;
  if (ShowsFocus(tbar)) DrawFocus(tbar, lgrey.pixel);
  if (HasSelected(tbar)) DrawSelected(tbar, kFlat);
  tbar->selected = i;
  DrawSelected(tbar, kRaised);
  if (ShowsFocus(tbar)) DrawFocus(tbar, dgrey.pixel);
  CallBack(tbar, kTabSelected);
}

}  // namespace

XTabItem** MakeTabItemArray(int n) {
  return new XTabItem* [static_cast<size_t>(std::max(n, 0))] {};
}

XTabItem* MakeTabItem(const char* label, TabAction action, void* arg) {
  auto* item = new XTabItem{};
  item->label = label;
  item->action = action;
  item->arg = arg;
  return item;
}

XTabBar* MakeTabBar(Window parent, int x, int y, int width, int height, XFontStruct* fontinfo,
                    XTabItem** items, int nitems) {
  auto* tbar = new XTabBar{};
  const int needed = TakeTitles(tbar, fontinfo, items, nitems);
  tbar->width = width != 0 ? width : needed;
  tbar->height = height;
  XSetWindowAttributes under{};
  under.save_under = True;
  tbar->window = MakeChildWindow(parent, x, y, tbar->width, tbar->height, lgrey.pixel,
                                 ExposureMask | ButtonPressMask | ButtonReleaseMask |
                                     Button1MotionMask | KeyPressMask | KeyReleaseMask,
                                 CWSaveUnder, under);
  tbar->gc = MakeWindowGC(tbar->window, fontinfo->fid);
  tbar->wobj = AllocWindowObj(tbar->window, tbar);
  On<Expose, DrawTabBar>(tbar);
  On<ButtonPress, TabBarButtonPress>(tbar);
  On<ButtonRelease, TabBarButtonRelease>(tbar);
  On<MotionNotify, TabBarMotionNotify>(tbar);
  On<KeyPress, TabBarKeyPress>(tbar);
  On<FocusIn, TabBarFocus>(tbar);
  On<FocusOut, TabBarFocus>(tbar);
  SetTabStop(tbar->wobj, nullptr);
  return tbar;
}

void XDrawTabBevel(int up, Window win, GC gc, int x, int y, int w, int h, int fullw) {
  const BevelColours colours = ColoursOfBevel(up);
  const int r = x + w - 1;
  const int b = y + h - 1;
  XSegment right[] = {Segment(r, y + 1, r, b), Segment(r - 1, y + 2, r - 1, b)};
  // The light lines come second and take the corner at the top right; the edge right of the tab
  // begins one pixel further left in its second row, on the tab's dark side.
  XSegment rest[] = {Segment(x, y, r, y),
                     Segment(x, y, x, b),
                     Segment(x + 1, y + 1, r - 1, y + 1),
                     Segment(x + 1, y, x + 1, b),
                     Segment(0, b - 1, x, b - 1),
                     Segment(0, b, x, b),
                     Segment(x + w, b - 1, fullw, b - 1),
                     Segment(r, b, fullw - 1, b)};
  const bool edgeright = fullw - (x + w) > 1;
  XSetForeground(dpy, gc, colours.lower);
  ScaledDrawSegments(win, gc, right, 2);
  XSetForeground(dpy, gc, colours.upper);
  ScaledDrawSegments(win, gc, rest, edgeright ? 8 : 6);
}

void DrawTabBar(XTabBar* tbar, XEvent*) {
  const int ih = tbar->itemheight;
  const int w = tbar->width;
  const int h = tbar->height;
  XSegment light[] = {Segment(0, ih + 2, 0, h - 1), Segment(1, ih + 2, 1, h - 1)};
  XSegment dark[] = {Segment(w - 1, ih + 2, w - 1, h - 1), Segment(w - 2, ih + 3, w - 2, h - 1),
                     Segment(2, h - 2, w - 1, h - 2), Segment(1, h - 1, w - 1, h - 1)};
  XClearWindow(dpy, tbar->window);
  XSetForeground(dpy, tbar->gc, white.pixel);
  ScaledDrawSegments(tbar->window, tbar->gc, light, 2);
  XSetForeground(dpy, tbar->gc, dgrey.pixel);
  ScaledDrawSegments(tbar->window, tbar->gc, dark, 4);
  XSetForeground(dpy, tbar->gc, black.pixel);
  DrawTitles(tbar);
  if (!HasSelected(tbar)) return;
  DrawSelected(tbar, kRaised);
  if (ShowsFocus(tbar)) DrawFocus(tbar, dgrey.pixel);
  CallBack(tbar, kTabRedrawn);
}

void TabBarButtonPress(XTabBar* tbar, XEvent* event) {
  TabBarTrackMouse(tbar, event);
}

void TabBarButtonRelease(XTabBar*, XEvent*) {}

void TabBarMotionNotify(XTabBar* tbar, XEvent* event) {
  XMotionEvent& e = event->xmotion;
  if (HasSelected(tbar) && e.y > tbar->height) {
    // Below the panel: translated as for a page there, and dropped.
    e.y -= tbar->height;
    e.x -= tbar->itemx[tbar->selected];
    return;
  }
  if (e.y < tbar->height) TabBarTrackMouse(tbar, event);
}

void TabBarTrackMouse(XTabBar* tbar, XEvent* event) {
  const XButtonEvent& e = event->xbutton;
  if (e.y > tbar->itemheight) return;
  const int i = TitleAt(tbar->itemx, tbar->itemwidth, tbar->nitems, e.x);
  if (i >= 0) SelectTab(tbar, i);
}

void TabBarKeyPress(XTabBar* tbar, XEvent* event) {
  if (!ModernManners()) return;
  char bytes[32];
  KeySym key = NoSymbol;
  LookupKey(&event->xkey, bytes, sizeof bytes, &key);
  key = PlainKey(key);
  const int last = tbar->nitems - 1;
  // What the field and the buttons of a page have no use for comes here, too.
  const bool moves = key == XK_Left || key == XK_Right || key == XK_Home || key == XK_End;
  if (tbar->focused == 0 || !moves || last < 0) {
    HandKeyUp(tbar->window, event);
    return;
  }
  const int to = key == XK_Home   ? 0
                 : key == XK_End  ? last
                 : key == XK_Left ? tbar->selected - 1
                                  : tbar->selected + 1;
  SelectTab(tbar, std::clamp(to, 0, last));
}

void TabBarFocus(XTabBar* tbar, XEvent* event) {
  if (event->type == FocusOut) FocusLost(event->xfocus);
  if (!IsFocusMove(event->xfocus)) return;
  tbar->focused = event->type == FocusIn ? 1 : 0;
  DrawFocus(tbar, ShowsFocus(tbar) ? dgrey.pixel : lgrey.pixel);
}

}  // namespace gromlit
