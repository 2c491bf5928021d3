#include "toolkit/tab_order.h"

#include <X11/Xutil.h>
#include <X11/keysym.h>

#include <algorithm>
#include <unordered_map>

#include "display/display.h"
#include "display/window_tree.h"
#include "display/x_handles.h"
#include "toolkit/focus.h"
#include "toolkit/key_lookup.h"
#include "toolkit/manners.h"
#include "toolkit/window_object.h"

namespace gromlit {
namespace {

constexpr int kSameRow = 12;  // pixels that the upper edges of one row differ by at most

// The last release of a key that NoteKeyRelease was told of.
struct {
  unsigned keycode = 0;
  Time time = 0;
} released;

struct Stop {
  Window window;
  int x, y;  // in the top-level window
};

using Ready = bool (*)(void* obj);

std::unordered_map<const WindowObj*, Ready>& Stops() {
  static auto* stops = new std::unordered_map<const WindowObj*, Ready>;
  return *stops;
}

bool TakesKeys(Window window) {
  const WindowObj* entry = FindWindowObj(window);
  const auto stop = Stops().find(entry);
  return stop != Stops().end() && (stop->second == nullptr || stop->second(entry->obj));
}

// Appends the stops in a window, whose corner is at (x, y) of the top-level window.
void Gather(Window window, int x, int y, std::vector<Stop>* stops) {
  Window rootwin;
  Window parent;
  Window* list = nullptr;
  unsigned count = 0;
  if (XQueryTree(dpy, window, &rootwin, &parent, &list, &count) == 0) return;
  const XData<Window> children(list);
  for (unsigned i = 0; i < count; i++) {
    XWindowAttributes at;
    if (XGetWindowAttributes(dpy, list[i], &at) == 0 || at.map_state != IsViewable) continue;
    if (TakesKeys(list[i])) stops->push_back({list[i], x + at.x, y + at.y});
    Gather(list[i], x + at.x, y + at.y, stops);
  }
}

}  // namespace

void SetTabStop(WindowObj* entry, bool (*ready)(void* obj)) {
  Stops()[entry] = ready;
}

WindowKey WindowKeyOf(KeySym key, unsigned state) {
  if ((state & (ControlMask | Mod1Mask | Mod4Mask)) != 0) return WindowKey::kNone;
  switch (PlainKey(key)) {
    case XK_Tab:
      return (state & ShiftMask) != 0 ? WindowKey::kBack : WindowKey::kNext;
    case XK_ISO_Left_Tab:
      return WindowKey::kBack;
    case XK_Return:
      return WindowKey::kConfirm;
    case XK_Escape:
      return WindowKey::kRefuse;
    default:
      return WindowKey::kNone;
  }
}

KeySym PlainKey(KeySym key) {
  switch (key) {
    case XK_KP_Left:
      return XK_Left;
    case XK_KP_Right:
      return XK_Right;
    case XK_KP_Up:
      return XK_Up;
    case XK_KP_Down:
      return XK_Down;
    case XK_KP_Home:
      return XK_Home;
    case XK_KP_End:
      return XK_End;
    case XK_KP_Delete:
      return XK_Delete;
    case XK_KP_Insert:
      return XK_Insert;
    case XK_KP_Enter:
      return XK_Return;
    case XK_KP_Tab:
      return XK_Tab;
    case XK_KP_Space:
      return XK_space;
    default:
      return key;
  }
}

bool IsPressingKey(XKeyEvent* press) {
  char bytes[32];
  KeySym key = NoSymbol;
  LookupKey(press, bytes, sizeof bytes, &key);
  key = PlainKey(key);
  return (press->state & (ControlMask | Mod1Mask | Mod4Mask)) == 0 &&
         (key == XK_space || key == XK_Return);
}

Window TopOf(Window window) {
  for (;;) {
    const Window parent = ParentOf(window);
    if (parent == None || parent == root || !IsOwnWindow(parent)) return window;
    window = parent;
  }
}

std::vector<Window> TabStops(Window top) {
  std::vector<Stop> stops;
  Gather(top, 0, 0, &stops);
  std::stable_sort(stops.begin(), stops.end(),
                   [](const Stop& a, const Stop& b) { return a.y < b.y; });
  std::vector<Window> windows;
  for (auto row = stops.begin(); row != stops.end();) {
    const auto end = std::find_if(row, stops.end(),
                                  [&](const Stop& stop) { return stop.y - row->y > kSameRow; });
    std::stable_sort(row, end, [](const Stop& a, const Stop& b) { return a.x < b.x; });
    for (; row != end; ++row) windows.push_back(row->window);
  }
  return windows;
}

void NoteKeyRelease(void*, XEvent* event) {
  released = {event->xkey.keycode, event->xkey.time};
}

bool IsKeyRepeat(const XKeyEvent& press) {
  return press.keycode == released.keycode && press.time - released.time <= 1;
}

void SelectKeys(Window window) {
  constexpr long kKeys = KeyPressMask | KeyReleaseMask | FocusChangeMask;
  XWindowAttributes at;
  if (XGetWindowAttributes(dpy, window, &at) == 0) return;
  if ((at.your_event_mask & kKeys) == kKeys) return;
  XSelectInput(dpy, window, at.your_event_mask | kKeys);
}

void TakeKeys(Window window) {
  SelectKeys(window);
  TakeFocus(window);
}

void FocusNext(Window from, bool back) {
  std::vector<Window> stops = TabStops(TopOf(from));
  if (stops.empty()) return;
  if (back) std::reverse(stops.begin(), stops.end());
  const auto now = std::find(stops.begin(), stops.end(), from);
  const bool last = now == stops.end() || now + 1 == stops.end();
  TakeKeys(last ? stops.front() : *(now + 1));
}

void HandKeyUp(Window window, XEvent* event) {
  char bytes[32];
  KeySym key = NoSymbol;
  LookupKey(&event->xkey, bytes, sizeof bytes, &key);
  const WindowKey meaning = WindowKeyOf(key, event->xkey.state);
  if (meaning == WindowKey::kNext || meaning == WindowKey::kBack) {
    FocusNext(window, meaning == WindowKey::kBack);
    return;
  }
  for (Window outer = ParentOf(window); outer != None && outer != root; outer = ParentOf(outer)) {
    const WindowObj* entry = FindWindowObj(outer);
    if (entry == nullptr || entry->obj == nullptr) return;  // a window manager's frame
    if (entry->eh[KeyPress] == NoHandler) continue;
    entry->eh[KeyPress](entry->obj, event);
    return;
  }
}

void TopLevelKeyPress(void*, XEvent* event) {
  if (!ModernManners()) return;
  char bytes[32];
  KeySym key = NoSymbol;
  LookupKey(&event->xkey, bytes, sizeof bytes, &key);
  const WindowKey meaning = WindowKeyOf(key, event->xkey.state);
  if (meaning != WindowKey::kNext && meaning != WindowKey::kBack) return;
  FocusNext(event->xkey.window, meaning == WindowKey::kBack);
}

}  // namespace gromlit
