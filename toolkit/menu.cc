#include "toolkit/menu.h"

#include <algorithm>

#include "display/display.h"
#include "display/scale.h"
#include "toolkit/bevel.h"
#include "toolkit/child_window.h"
#include "toolkit/image.h"
#include "toolkit/manners.h"
#include "toolkit/menu_leaving.h"
#include "toolkit/menu_parts.h"
#include "toolkit/pointer_hold.h"
#include "toolkit/release_watch.h"
#include "toolkit/text.h"
#include "toolkit/title_row.h"

namespace gromlit {
namespace {

constexpr int kArrowMargin = 4;  // pixels between caption or edge and a submenu's arrow
constexpr int kCaptionX = 6;
constexpr int kSideRoom = 16;  // pixels that a menu is wider than its widest item
constexpr int kFrame = 6;      // and higher than its rows

// The menu that holds the pointer (INV-MENU-1).
XMenu* grabbed = nullptr;

int ArrowWidth() {
  constexpr int kUsualWidth = 11;
  return rightmenuImage != nullptr ? rightmenuImage->width : kUsualWidth;
}

// The one way to close a menu's window.
void CloseMenu(XMenu* menu) {
  EndMenuGrab(menu);
  menu->open = 0;
  XUnmapWindow(dpy, menu->window);
}

// Takes the items over and measures them.
void FillMenu(XMenu* menu, XFontStruct* fontinfo, XMenuItem** items, int nitems) {
  const int kept = std::clamp(nitems, 0, kMaxMenuItems);
  for (int i = kept; i < nitems; i++) delete items[i];
  int widest = 0;
  for (int i = 0; i < kept; i++) {
    menu->items[i] = items[i];
    int width = TextWidth(fontinfo, items[i]->label);
    if (items[i]->submenu != nullptr) width += ArrowWidth() + kArrowMargin;
    widest = std::max(widest, width);
  }
  menu->nitems = kept;
  menu->visible = kept;
  menu->top = 0;
  menu->scrolls = 0;
  menu->selected = -1;
  menu->submenu = nullptr;
  menu->itemheight = RowHeight(fontinfo);
  menu->width = widest + kSideRoom;
  menu->height = menu->itemheight * kept + kFrame;
}

// Releases a menu's items but those that are among the `nkept` first of `kept`.
void ReleaseItems(XMenu* menu, XMenuItem* const* kept, int nkept) {
  // cppcheck-suppress nullPointerArithmetic  ; no items are a null pointer and 0
  std::vector<XMenuItem*> sorted(kept, kept + std::max(nkept, 0));
  std::sort(sorted.begin(), sorted.end());
  for (int i = 0; i < menu->nitems; i++) {
    if (!std::binary_search(sorted.begin(), sorted.end(), menu->items[i])) delete menu->items[i];
    menu->items[i] = nullptr;
  }
  menu->nitems = 0;
  menu->visible = 0;
  menu->nremakes++;
}

}  // namespace

XMenu* MenuWithPointer() {
  return grabbed;
}

bool GrabPointerFor(XMenu* menu, long events, bool inherited) {
  if (!(inherited ? InheritPointer : HoldPointer)(menu->window, events)) return false;
  grabbed = menu;
  ReleaseGoesElsewhere();
  return true;
}

void EndMenuGrab(const XMenu* menu) {
  if (grabbed != menu) return;
  grabbed = nullptr;
  GivePointerBack();
  EndMenuHand(menu);
}

void PassMenuGrab(XMenu* menu) {
  grabbed = menu;
}

void CloseSubmenu(XMenu* menu) {
  if (menu->submenu == nullptr) return;
  PopDownMenu(menu->submenu);
  menu->submenu = nullptr;
}

void DrawMenuHighlight(XMenu* menu, int up, int row) {
  XDrawBevel(up, menu->window, menu->gc, 2, row * menu->itemheight + 2, menu->width - 4,
             menu->itemheight + 2);
}

XMenuItem** MakeMenuItemArray(int n) {
  return new XMenuItem* [static_cast<size_t>(std::max(n, 0))] {};
}

XMenuItem* MakeMenuItem(const char* label, MenuAction action, void* arg) {
  return new XMenuItem{label, arg, action, nullptr};
}

XMenu* MakeMenu(Window parent, int x, int y, XFontStruct* fontinfo, XMenuItem** items, int nitems) {
  auto* menu = new XMenu{};
  FillMenu(menu, fontinfo, items, nitems);
  menu->x = x;
  menu->y = y;
  menu->parent = parent;
  XSetWindowAttributes unframed{};
  unframed.override_redirect = True;
  menu->window = MakeChildWindow(
      parent, x, y, menu->width, menu->height, lgrey.pixel,
      ExposureMask | Button1MotionMask | ButtonPressMask | KeyPressMask | KeyReleaseMask,
      CWOverrideRedirect, unframed);
  menu->gc = MakeWindowGC(menu->window, fontinfo->fid);
  menu->wobj = AllocWindowObj(menu->window, menu);
  On<Expose, DrawMenu>(menu);
  On<ButtonPress, MenuButtonPress>(menu);
  On<ButtonRelease, MenuButtonRelease>(menu);
  On<MotionNotify, MenuMotionNotify>(menu);
  On<KeyPress, MenuKeyPress>(menu);
  OnWheel<MenuWheel>(menu);
  return menu;
}

void RemakeMenu(XMenu* menu, XFontStruct* fontinfo, XMenuItem** items, int nitems) {
  PopDownMenu(menu);
  ReleaseItems(menu, items, nitems);
  const int width = menu->width;
  const int height = menu->height;
  FillMenu(menu, fontinfo, items, nitems);
  if (fontinfo->fid != None) XSetFont(dpy, menu->gc, fontinfo->fid);
  if (menu->width == width && menu->height == height) return;
  ResizeMenu(menu);
}

void ResizeMenu(XMenu* menu) {
  ScaledResizeWindow(menu->window, menu->width, menu->height);
}

void SpareMenus(XMenuPool* pool, XMenu* menu) {
  if (menu == nullptr) return;
  // A menu that hangs on two items comes here twice.
  if (std::find(pool->spare.begin(), pool->spare.end(), menu) != pool->spare.end()) return;
  PopDownMenu(menu);
  const std::vector<XMenuItem*> items(menu->items, menu->items + menu->nitems);
  for (const XMenuItem* item : items) SpareMenus(pool, item->submenu);
  ReleaseItems(menu, nullptr, 0);
  menu->pulldown = nullptr;
  pool->spare.push_back(menu);
}

XMenu* TakeMenu(XMenuPool* pool, XFontStruct* fontinfo, XMenuItem** items, int nitems) {
  if (pool->spare.empty()) return MakeMenu(root, 0, 0, fontinfo, items, nitems);
  XMenu* menu = pool->spare.back();
  pool->spare.pop_back();
  RemakeMenu(menu, fontinfo, items, nitems);
  return menu;
}

void ShowMenu(XMenu* menu) {
  // The submenu of the last time: a release would run the item that was chosen in it then.
  CloseSubmenu(menu);
  menu->selected = -1;
  menu->open = 1;
  ScaledMoveRaised(menu->window, menu->x, menu->y);
  XMapWindow(dpy, menu->window);
}

void PopUpMenu(int x, int y, XMenu* menu) {
  // The manners may have changed since it was open last.
  if (UnfoldMenu(menu)) ResizeMenu(menu);
  menu->x = x;
  menu->y = y;
  ShowMenu(menu);
}

void PullDownMenu(int x, int y, XMenu* menu) {
  PopUpMenu(x, y, menu);
}

bool PopUpMenuGrabbed(int x, int y, XMenu* menu, const XButtonEvent* press) {
  if (ModernManners()) return PopUpMenuByHand(x, y, menu, press);
  EndLeaving();
  // It may itself be open with today's manners, of which nothing must be left.
  if (grabbed != nullptr && (grabbed != menu || MenuInHand() != nullptr)) PopDownMenu(grabbed);
  PopUpMenu(x, y, menu);
  // Only a release ends the interaction. When the menu opens after all buttons went up, which is so
  // for a click that was handed on, that is the next click's.
  if (GrabPointerFor(menu, ButtonReleaseMask | PointerMotionMask)) return true;
  PopDownMenu(menu);
  return false;
}

bool MenuHoldsPointer() {
  return grabbed != nullptr || HandIsLeaving();
}

void CloseGrabbedMenu() {
  EndLeaving();
  if (grabbed != nullptr) PopDownMenu(grabbed);
}

void PullUpMenu(XMenu* menu) {
  menu->selected = -1;
  CloseMenu(menu);
}

void PopDownMenu(XMenu* menu) {
  CloseSubmenu(menu);
  menu->selected = -1;
  CloseMenu(menu);
}

void DrawMenu(XMenu* menu, XEvent*) {
  XClearWindow(dpy, menu->window);
  XDrawBevel(kRaised, menu->window, menu->gc, 0, 0, menu->width, menu->height);
  XSetForeground(dpy, menu->gc, black.pixel);
  DrawMenuArrows(menu);
  int baseline = menu->itemheight * (1 + MenuRow(menu, menu->top));
  for (int row = 0; row < menu->visible; row++) {
    const int i = menu->top + row;
    if (i < 0 || i >= menu->nitems) continue;
    const XMenuItem* item = menu->items[i];
    DrawText(menu->window, menu->gc, kCaptionX, baseline - 3, item->label);
    if (item->submenu != nullptr && rightmenuImage != nullptr) {
      PutImage(menu->window, menu->gc, rightmenuImage,
               menu->width - kArrowMargin - rightmenuImage->width,
               baseline + 3 + (menu->itemheight - rightmenuImage->height) / 2 - menu->itemheight);
    }
    if (i == menu->selected) {
      DrawMenuHighlight(menu, kRaised, MenuRow(menu, i));
      XSetForeground(dpy, menu->gc, black.pixel);
    }
    baseline += menu->itemheight;
  }
}

void MenuButtonPress(XMenu* menu, XEvent* event) {
  if (menu->open == 0) return;
  if (MenuInHand() != nullptr) {
    HandPress(event->xbutton);
  } else if (grabbed != menu) {
    MenuTrackMouse(menu, event);
  }
}

void MenuMotionNotify(XMenu* menu, XEvent* event) {
  if (menu->open == 0) return;
  if (MenuInHand() != nullptr) {
    HandMotion(event->xmotion);
  } else {
    MenuTrackMouse(menu, event);
  }
}

void MenuButtonRelease(XMenu* menu, XEvent* event) {
  // It was on its way when the press that closed the menu was read.
  if (menu->open == 0) EndLeaving();
  if (menu->open == 0) return;
  if (MenuInHand() != nullptr) {
    HandRelease(event->xbutton);
  } else {
    RunMenu(menu);
  }
}

void MenuKeyPress(XMenu* menu, XEvent* event) {
  if (menu->open != 0 && MenuInHand() != nullptr) HandKey(&event->xkey);
}

void RunMenu(XMenu* menu) {
  if (menu->open == 0) return;
  // Before any action: it may take its time, or need the pointer.
  EndMenuGrab(menu);
  const bool chosen = menu->selected >= 0 && menu->selected < menu->nitems;
  const XMenuItem item = chosen ? *menu->items[menu->selected] : XMenuItem{};
  const int nremakes = menu->nremakes;
  if (menu->submenu != nullptr) RunMenu(menu->submenu);
  if (item.action != nullptr && menu->nremakes == nremakes) item.action(menu, item.arg);
  CloseMenu(menu);
}

void MenuTrackMouse(XMenu* menu, XEvent* event) {
  XButtonEvent& e = event->xbutton;  // motion events hold their position in the same place
  // The division rounds towards zero: rows above the first would come out as the first.
  const int i = (e.y - 4) / menu->itemheight;
  const bool onitem = e.y >= 1 && i >= 0 && i < menu->nitems && e.x >= 0 && e.x < menu->width;
  if (onitem) {
    if (i == menu->selected) return;
    if (menu->selected >= 0) {
      if (menu->selected <= menu->visible) DrawMenuHighlight(menu, kFlat, menu->selected);
      CloseSubmenu(menu);
    }
    menu->selected = i;
    DrawMenuHighlight(menu, kRaised, i);
    menu->submenu = menu->items[i]->submenu;
    // Level with the menu's top, not with the item.
    if (menu->submenu != nullptr) PopUpMenu(menu->x + menu->width, menu->y, menu->submenu);
    return;
  }
  if (menu->submenu != nullptr) {
    XMenu* submenu = menu->submenu;
    if (submenu->parent == root) {
      // Its place is known, and asking the server at every step of the pointer, once per level,
      // would make a deep chain crawl.
      e.x = e.x_root - submenu->x;
      e.y = e.y_root - submenu->y;
    } else {
      ScaledTranslate(root, submenu->window, e.x_root, e.y_root, &e.x, &e.y);
    }
    MenuTrackMouse(submenu, event);
    return;
  }
  if (menu->selected >= 0) {
    DrawMenuHighlight(menu, kFlat, menu->selected);
    menu->selected = -1;
  }
}

}  // namespace gromlit
