#include "toolkit/menu_hand.h"

#include <X11/keysym.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "display/display.h"
#include "display/monitors.h"
#include "display/scale.h"
#include "toolkit/key_lookup.h"
#include "toolkit/menu_leaving.h"
#include "toolkit/menu_parts.h"
#include "toolkit/open_menus.h"
#include "toolkit/press_time.h"
#include "toolkit/type_ahead.h"

namespace gromlit {
namespace {

using Clock = std::chrono::steady_clock;

constexpr uint32_t kQuick = 300;  // milliseconds within which a press and its release are a click
constexpr int kTremble = 4;       // pixels that a hand has moved that means to move
constexpr auto kRowPause = std::chrono::milliseconds(60);  // between two rows of a rested menu
constexpr long kPointerEvents = ButtonReleaseMask | PointerMotionMask;
constexpr unsigned kButtons = Button1Mask | Button2Mask | Button3Mask;

struct Hand {
  XMenu* menu;               // the first one; null while none is open
  XMenuBar* bar;             // that it hangs on; or null
  const MenuTitles* titles;  // of the bar
  XRectangle area;           // that the menus are to stay in
  bool keyboard;             // is grabbed
  bool standing;             // the menus stay without a button; false: the opening press is held
  bool pressed;              // a press on a menu awaits its release
  bool moved;                // the pointer has left the opening press
  int pressx;                // of that press
  int pressy;
  uint32_t presstime;
  int x;  // where the pointer was last, as far as is known
  int y;
  XMenu* resting;  // whose arrow the pointer is on; or null
  int step;        // rows that it scrolls by
  Clock::time_point next;
  TypeAhead ahead;
};

Hand hand{};  // NOLINT(cert-err58-cpp): zeros, constants

// Closes the menus, and keeps the pointer until the button that is down goes up.
void Leave() {
  XMenu* menu = hand.menu;
  if (KeepPointerFromAll()) {
    PassMenuGrab(nullptr);
    EndMenuHand(menu);
  }
  PopDownMenu(menu);
}

// --- Submenus -----------------------------------------------------------------------------------

// Places a menu, gives its window the size that it has there, and shows it.
template <typename Place>
void Open(XMenu* menu, Place place) {
  const int height = menu->height;
  place();
  if (menu->height != height) ResizeMenu(menu);
  ShowMenu(menu);
}

// Opens the submenu of the highlighted item. False when it has none.
bool OpenSelected(XMenu* menu) {
  const XMenuItem* item = SelectedItem(menu);
  if (item == nullptr || item->submenu == nullptr) return false;
  if (OpenSubmenu(menu) == item->submenu) return true;
  XMenu* submenu = item->submenu;
  Open(submenu, [&] { PlaceBeside(submenu, menu, menu->selected, hand.area); });
  menu->submenu = submenu;
  return true;
}

bool OpenTitle(int i, const XButtonEvent* press) {
  return hand.titles->open(hand.bar, i, press);
}

// --- The pointer ------------------------------------------------------------------------------

void RestOn(XMenu* menu, int step) {
  if (hand.resting == menu && hand.step == step) return;
  hand.resting = menu;
  hand.step = step;
  hand.next = Clock::now();
}

// The bar's title at a position; -1 for none.
int TitleAtPointer(int x, int y) {
  return hand.bar != nullptr ? hand.titles->at(hand.bar, x, y) : -1;
}

// Follows the pointer.
void PointAt(int x, int y) {
  hand.x = x;
  hand.y = y;
  const Spot spot = SpotAt(hand.menu, x, y);
  RestOn(spot.arrow != 0 ? spot.menu : nullptr, spot.arrow);
  if (spot.arrow != 0) return;
  if (spot.item >= 0) {
    // The pointer has come back from a submenu.
    if (XMenu* submenu = OpenSubmenu(spot.menu); submenu != nullptr) SelectItem(submenu, -1);
    SelectItem(spot.menu, spot.item);
    // One that would cover the items that the hand is on its way to waits for a click.
    const XMenu* submenu = spot.menu->items[spot.item]->submenu;
    if (submenu != nullptr && FitsBeside(submenu, spot.menu, hand.area)) OpenSelected(spot.menu);
    return;
  }
  const int title = spot.menu == nullptr ? TitleAtPointer(x, y) : -1;
  if (title >= 0 && title != hand.titles->selected(hand.bar)) {
    OpenTitle(title, nullptr);
  } else if (OpenSubmenu(DeepestMenu(hand.menu)) == nullptr) {
    SelectItem(DeepestMenu(hand.menu), -1);
  }
}

bool HasMoved(int x, int y) {
  hand.moved =
      hand.moved || std::abs(x - hand.pressx) >= kTremble || std::abs(y - hand.pressy) >= kTremble;
  return hand.moved;
}

// A release or Return on the highlighted item of a menu.
void Choose(XMenu* menu) {
  if (SelectedItem(menu) == nullptr) return;
  if (OpenSelected(menu)) return;
  RunMenu(hand.menu);
}

void Hold(const XButtonEvent& press) {
  hand.standing = false;
  hand.pressed = false;
  hand.moved = false;
  hand.pressx = press.x_root;
  hand.pressy = press.y_root;
  hand.presstime = PressTime(press);
  hand.x = press.x_root;
  hand.y = press.y_root;
}

// --- Opening ----------------------------------------------------------------------------------

void Place(XMenu* menu, const MenuAnchor& anchor) {
  if (anchor.width == 0 && anchor.height == 0) {
    PlaceAtPoint(menu, anchor.x, anchor.y, hand.area);
  } else {
    PlaceBelow(menu, anchor, hand.area);
  }
}

}  // namespace

bool OpenMenuByHand(XMenu* menu, const MenuAnchor& anchor, const XButtonEvent* press, XMenuBar* bar,
                    const MenuTitles* titles) {
  EndLeaving();
  XMenu* former = MenuWithPointer();
  const bool follows = bar != nullptr && hand.menu != nullptr && hand.bar == bar;
  if (former != nullptr && !follows) PopDownMenu(former);
  const Hand before = follows ? hand : Hand{};
  hand.area = before.menu != nullptr
                  ? before.area
                  : LogicalArea(MonitorAt(
                        Device(press != nullptr ? press->x_root : anchor.x + anchor.width / 2),
                        Device(press != nullptr ? press->y_root : anchor.y + anchor.height / 2)));
  Open(menu, [&] { Place(menu, anchor); });
  if (!GrabPointerFor(menu, kPointerEvents, follows)) {
    // The former menu has the pointer no more, or will not know what became of it.
    if (follows) PopDownMenu(former);
    PopDownMenu(menu);
    return false;
  }
  hand.menu = menu;
  hand.bar = bar;
  hand.titles = titles;
  hand.resting = nullptr;
  hand.ahead = {};
  hand.keyboard =
      (!follows || before.keyboard) && XGrabKeyboard(dpy, menu->window, False, GrabModeAsync,
                                                     GrabModeAsync, CurrentTime) == GrabSuccess;
  if (press != nullptr) {
    Hold(*press);
    // Its release has no time and goes to the window that it was sent to.
    hand.standing = press->send_event != False;
  } else if (!follows) {
    hand.standing = true;
    hand.pressed = false;
    hand.x = hand.y = -1;
    SelectByKey(menu, 0);
  }
  // Not before the new one has the pointer: the server would take it from a window that is gone.
  if (follows && former != menu) PopDownMenu(former);
  return true;
}

bool PopUpMenuByHand(int x, int y, XMenu* menu, const XButtonEvent* press) {
  return OpenMenuByHand(menu, {x, y, 0, 0, false}, press);
}

XMenu* MenuInHand() {
  return hand.menu;
}

XMenuBar* BarInHand() {
  return hand.menu != nullptr ? hand.bar : nullptr;
}

void EndMenuHand(const XMenu* menu) {
  if (hand.menu != menu || menu == nullptr) return;
  const Hand ended = hand;
  hand = {};
  if (ended.keyboard) XUngrabKeyboard(dpy, CurrentTime);
  if (ended.bar != nullptr) ended.titles->letgo(ended.bar);
}

void HandPress(const XButtonEvent& press) {
  const int title = SpotAt(hand.menu, press.x_root, press.y_root).menu == nullptr
                        ? TitleAtPointer(press.x_root, press.y_root)
                        : -1;
  if (title >= 0 && title != hand.titles->selected(hand.bar)) {
    OpenTitle(title, &press);
  } else if (SpotAt(hand.menu, press.x_root, press.y_root).menu == nullptr) {
    Leave();
  } else {
    hand.standing = true;
    hand.pressed = true;
    PointAt(press.x_root, press.y_root);
  }
}

void HandRelease(const XButtonEvent& release) {
  const int x = release.x_root;
  const int y = release.y_root;
  if (!hand.standing) {
    const bool moved = HasMoved(x, y);
    if (!moved && PressTime(release) - hand.presstime <= kQuick) {
      hand.standing = true;
      return;
    }
    const Spot spot = SpotAt(hand.menu, x, y);
    if (!moved || spot.item < 0) {
      PopDownMenu(hand.menu);
      return;
    }
  } else if (!hand.pressed) {
    return;
  }
  hand.standing = true;
  hand.pressed = false;
  PointAt(x, y);
  if (const Spot spot = SpotAt(hand.menu, x, y); spot.item >= 0) Choose(spot.menu);
}

void HandMotion(const XMotionEvent& motion) {
  if (!hand.standing) {
    // The release was over before the menu opened.
    if ((motion.state & kButtons) == 0) hand.standing = true;
    if (!HasMoved(motion.x_root, motion.y_root) && !hand.standing) return;
  }
  PointAt(motion.x_root, motion.y_root);
}

void HandKey(XKeyEvent* key) {
  char bytes[32];
  KeySym sym;
  const int count = LookupKey(key, bytes, sizeof bytes, &sym);
  XMenu* menu = MenuOfKeys(hand.menu);
  const int last = menu->nitems - 1;
  const int page = std::max(menu->visible - 1, 1);
  // Shows the neighbour of the open title.
  const auto turn = [](int by) {
    if (hand.bar == nullptr) return;
    const int title = hand.titles->beside(hand.bar, by);
    if (title >= 0 && OpenTitle(title, nullptr)) SelectByKey(hand.menu, 0);
  };
  switch (sym) {
    case XK_Down:
    case XK_KP_Down:
      SelectByKey(menu, menu->selected < last ? menu->selected + 1 : 0);
      return;
    case XK_Up:
    case XK_KP_Up:
      SelectByKey(menu, menu->selected > 0 ? menu->selected - 1 : last);
      return;
    case XK_Home:
    case XK_KP_Home:
      SelectByKey(menu, 0);
      return;
    case XK_End:
    case XK_KP_End:
      SelectByKey(menu, last);
      return;
    case XK_Page_Down:
    case XK_KP_Page_Down:
      SelectByKey(menu, std::min(menu->selected + page, last));
      return;
    case XK_Page_Up:
    case XK_KP_Page_Up:
      SelectByKey(menu, std::max(menu->selected - page, 0));
      return;
    case XK_Right:
    case XK_KP_Right:
      if (OpenSelected(menu)) {
        SelectByKey(OpenSubmenu(menu), 0);
      } else {
        turn(1);
      }
      return;
    case XK_Left:
    case XK_KP_Left:
      if (XMenu* parent = MenuAbove(hand.menu, menu); parent != nullptr) {
        CloseSubmenu(parent);
      } else if (OpenSubmenu(menu) != nullptr) {
        CloseSubmenu(menu);
      } else {
        turn(-1);
      }
      return;
    case XK_Return:
    case XK_KP_Enter:
    case XK_ISO_Enter:
      Choose(menu);
      if (hand.menu != nullptr && OpenSubmenu(menu) != nullptr) SelectByKey(OpenSubmenu(menu), 0);
      return;
    case XK_Escape:
    case XK_F10:
      PopDownMenu(hand.menu);
      return;
    default:
      break;
  }
  if (!TakeLetter(&hand.ahead, *key, {bytes, static_cast<size_t>(count)})) return;
  const int found = FirstTyped(hand.ahead, menu->nitems,
                               [&](int i) { return std::string_view(menu->items[i]->label); });
  if (found >= 0) SelectByKey(menu, found);
}

void MenuWheel(XMenu* menu, int rows) {
  if (hand.menu == nullptr || menu != hand.menu || menu->open == 0) return;
  XMenu* scrolled = SpotAt(hand.menu, hand.x, hand.y).menu;
  if (scrolled == nullptr || scrolled->scrolls == 0) {
    scrolled = nullptr;
    for (XMenu* at = hand.menu; at != nullptr; at = OpenSubmenu(at)) {
      if (at->scrolls != 0) scrolled = at;
    }
  }
  if (scrolled == nullptr) return;
  hand.standing = true;
  ScrollMenu(scrolled, rows);
  PointAt(hand.x, hand.y);
}

int MenuScrollWait() {
  if (hand.resting == nullptr) return -1;
  const XMenu* menu = hand.resting;
  const bool ended = menu->open == 0 ||
                     (hand.step < 0 ? menu->top <= 0 : menu->top + menu->visible >= menu->nitems);
  if (ended) return -1;
  const auto left = std::chrono::ceil<std::chrono::milliseconds>(hand.next - Clock::now()).count();
  return static_cast<int>(std::max<decltype(left)>(left, 0));
}

void ScrollRestedMenu() {
  if (MenuScrollWait() != 0) return;
  hand.next = Clock::now() + kRowPause;
  ScrollMenu(hand.resting, hand.step);
}

}  // namespace gromlit
