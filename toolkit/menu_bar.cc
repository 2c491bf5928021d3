#include "toolkit/menu_bar.h"

#include <algorithm>

#include "display/display.h"
#include "display/scale.h"
#include "toolkit/bevel.h"
#include "toolkit/child_window.h"
#include "toolkit/manners.h"
#include "toolkit/menu_hand.h"
#include "toolkit/release_watch.h"

namespace gromlit {
namespace {

// The bar that was pressed last, until all buttons are up; or null.
XMenuBar* heldbar = nullptr;

// The bevel around a title, two pixels below the bar's top.
void DrawTitleBevel(XMenuBar* bar, int up, int i) {
  XDrawBevel(up, bar->window, bar->gc, bar->itemx[i] - kTitleMargin, 2,
             bar->itemwidth[i] + 2 * kTitleMargin, bar->itemheight + 2);
}

void ShutTitle(XMenuBar* bar) {
  XMenu* menu = bar->items[bar->selected]->menu;
  if (menu != nullptr) {
    // PullUpMenu leaves submenus on the screen, and nothing here would come back to them.
    if (menu->submenu != nullptr) PopDownMenu(menu->submenu);
    menu->submenu = nullptr;
    PullUpMenu(menu);
  }
  DrawTitleBevel(bar, kFlat, bar->selected);
}

void OpenTitle(XMenuBar* bar, int i) {
  bar->selected = i;
  DrawTitleBevel(bar, kRaised, i);
  if (bar->items[i]->menu == nullptr) return;
  int x;
  int y;
  ScaledTranslate(bar->window, root, bar->itemx[i] - kTitleMargin, bar->itemheight + 4, &x, &y);
  PullDownMenu(x, y, bar->items[i]->menu);
}

// The open title's menu when the pointer is below the bar, else null.
XMenu* MenuBelow(const XMenuBar* bar, int y) {
  return bar->selected >= 0 && y > bar->height ? bar->items[bar->selected]->menu : nullptr;
}

// Whether buttons besides the one released are down.
bool OthersDown(const XButtonEvent& release) {
  // Of the others no release comes here.
  constexpr unsigned kButtons = Button1Mask | Button2Mask | Button3Mask;
  const unsigned own = release.button >= Button1 && release.button <= kLastPressingButton
                           ? unsigned{Button1Mask} << (release.button - 1)
                           : 0U;
  return (release.state & kButtons & ~own) != 0;
}

void LetGo(XMenuBar* bar) {
  bar->held = 0;
  if (heldbar != bar) return;
  heldbar = nullptr;
  ForgetRelease();
}

// Its release will not come any more.
void ShutHeldBar() {
  XMenuBar* bar = heldbar;
  if (bar == nullptr) return;
  LetGo(bar);
  if (bar->selected >= 0) ShutTitle(bar);
  bar->selected = -1;
}

// --- What menus with today's manners ask of the bar ---

int OpenTitleOf(const XMenuBar* bar) {
  return bar->selected;
}

// As long as the bar stays where it was when a title was opened.
int TitleWithMenuAt(const XMenuBar* bar, int x, int y) {
  if (y < bar->rooty || y >= bar->rooty + bar->height) return -1;
  if (x < bar->rootx || x >= bar->rootx + bar->width) return -1;
  const int i = TitleAt(bar->itemx, bar->itemwidth, bar->nitems, x - bar->rootx);
  return i >= 0 && bar->items[i]->menu != nullptr ? i : -1;
}

int TitleBeside(const XMenuBar* bar, int by) {
  const int n = bar->nitems;
  for (int i = 1; i < n; i++) {
    const int title = ((bar->selected + by * i) % n + n) % n;
    if (bar->items[title]->menu != nullptr) return title;
  }
  return -1;
}

void LetTitleGo(XMenuBar* bar) {
  if (bar->selected >= 0) DrawTitleBevel(bar, kFlat, bar->selected);
  bar->selected = -1;
}

constexpr MenuTitles kTitles = {.open = MenuBarOpenByHand,
                                .selected = OpenTitleOf,
                                .at = TitleWithMenuAt,
                                .beside = TitleBeside,
                                .letgo = LetTitleGo};

}  // namespace

XPulldown** MakePulldownArray(int n) {
  return new XPulldown* [static_cast<size_t>(std::max(n, 0))] {};
}

XPulldown* MakePulldown(const char* label, XMenu* menu) {
  return new XPulldown{label, menu};
}

XMenuBar* MakeMenuBar(Window parent, int x, int y, int width, XFontStruct* fontinfo,
                      XPulldown** items, int nitems) {
  auto* bar = new XMenuBar{};
  const int needed = TakeTitles(bar, fontinfo, items, nitems) + kTitleMargin;
  bar->x = x;
  bar->y = y;
  bar->width = width != 0 ? width : needed;
  bar->height = bar->itemheight + 6;
  bar->selected = -1;
  XSetWindowAttributes under{};
  under.save_under = True;
  bar->window = MakeChildWindow(parent, x, y, bar->width, bar->height, lgrey.pixel,
                                ExposureMask | ButtonPressMask | ButtonReleaseMask |
                                    ButtonMotionMask | KeyPressMask | KeyReleaseMask,
                                CWSaveUnder, under);
  bar->gc = MakeWindowGC(bar->window, fontinfo->fid);
  bar->wobj = AllocWindowObj(bar->window, bar);
  On<Expose, DrawMenuBar>(bar);
  On<ButtonPress, MenuBarButtonPress>(bar);
  On<ButtonRelease, MenuBarButtonRelease>(bar);
  On<MotionNotify, MenuBarMotionNotify>(bar);
  On<KeyPress, MenuBarKeyPress>(bar);
  return bar;
}

void DrawMenuBar(XMenuBar* bar, XEvent*) {
  const int right = bar->width - 1;
  const int bottom = bar->height - 1;
  XSegment light[] = {Segment(0, 0, right, 0), Segment(0, 0, 0, bottom)};
  XSegment dark[] = {Segment(1, bottom, right, bottom), Segment(right, 1, right, bottom)};
  XClearWindow(dpy, bar->window);
  XSetForeground(dpy, bar->gc, white.pixel);
  ScaledDrawSegments(bar->window, bar->gc, light, 2);
  XSetForeground(dpy, bar->gc, dgrey.pixel);
  ScaledDrawSegments(bar->window, bar->gc, dark, 2);
  XSetForeground(dpy, bar->gc, black.pixel);
  DrawTitles(bar);
  if (bar->selected < 0) return;
  DrawTitleBevel(bar, kRaised, bar->selected);
  const XMenu* menu = bar->items[bar->selected]->menu;
  if (menu != nullptr && menu->open != 0) XMapWindow(dpy, menu->window);
}

void MenuBarButtonPress(XMenuBar* bar, XEvent* event) {
  // The bar would stay open: it would not see the release.
  if (MenuHoldsPointer()) return;
  if (ModernManners()) {
    MenuBarOpenByHand(bar, TitleAt(bar->itemx, bar->itemwidth, bar->nitems, event->xbutton.x),
                      &event->xbutton);
    return;
  }
  bar->held = 1;
  heldbar = bar;
  AwaitRelease(ShutHeldBar);
  MenuBarTrackMouse(bar, event);
}

void MenuBarMotionNotify(XMenuBar* bar, XEvent* event) {
  if (bar->held == 0 || BarInHand() == bar) return;
  XMotionEvent& e = event->xmotion;
  if (XMenu* menu = MenuBelow(bar, e.y); menu != nullptr) {
    // The menu begins 8 pixels further left and 2 higher than this says; submenus are found by
    // the position on the screen and are not affected.
    e.y -= bar->height;
    e.x -= bar->itemx[bar->selected];
    if (menu->open != 0) MenuTrackMouse(menu, event);
    return;
  }
  if (e.y < bar->height) MenuBarTrackMouse(bar, event);
}

void MenuBarButtonRelease(XMenuBar* bar, XEvent* event) {
  // That of a press which was sent to the bar.
  if (BarInHand() == bar) return;
  XButtonEvent& e = event->xbutton;
  if (XMenu* menu = MenuBelow(bar, e.y); menu != nullptr) {
    e.y -= bar->height;
    MenuButtonRelease(menu, event);
  }
  if (!OthersDown(e)) LetGo(bar);
  e.x = -1;  // on no title: closes the one that is open
  MenuBarTrackMouse(bar, event);
}

void MenuBarKeyPress(XMenuBar* bar, XEvent* event) {
  if (bar->key != nullptr) bar->key(bar->keyarg, event);
}

bool MenuBarOpenByHand(XMenuBar* bar, int i, const XButtonEvent* press) {
  if (i < 0 || i >= bar->nitems || bar->items[i]->menu == nullptr) return false;
  // Of a press when the manners were plain, whose release comes here no more.
  LetGo(bar);
  if (bar->selected >= 0 && BarInHand() != bar) {
    ShutTitle(bar);
  } else if (bar->selected >= 0) {
    DrawTitleBevel(bar, kFlat, bar->selected);
  }
  bar->selected = i;
  DrawTitleBevel(bar, kRaised, i);
  ScaledTranslate(bar->window, root, 0, 0, &bar->rootx, &bar->rooty);
  const MenuAnchor title = {bar->rootx + bar->itemx[i] - kTitleMargin, bar->rooty,
                            bar->itemwidth[i] + 2 * kTitleMargin, bar->itemheight + 4, false};
  if (OpenMenuByHand(bar->items[i]->menu, title, press, bar, &kTitles)) return true;
  LetTitleGo(bar);
  return false;
}

void ShutHiddenMenuBar() {
  const XMenuBar* inhand = BarInHand();
  if (inhand != nullptr && !CanBeSeen(inhand->window)) CloseGrabbedMenu();
  if (heldbar != nullptr && !CanBeSeen(heldbar->window)) ShutHeldBar();
}

void MenuBarTrackMouse(XMenuBar* mbar, XEvent* event) {
  const int i = TitleAt(mbar->itemx, mbar->itemwidth, mbar->nitems, event->xbutton.x);
  if (i == mbar->selected) return;
  if (mbar->selected >= 0) ShutTitle(mbar);
  mbar->selected = -1;
  if (i >= 0) OpenTitle(mbar, i);
}

}  // namespace gromlit
