#include "actions/window_actions.h"

#include <X11/Xutil.h>

#include <algorithm>
#include <cstdio>
#include <string>

#include "display/display.h"
#include "display/modes.h"
#include "display/window_manager.h"
#include "display/x_handles.h"

namespace gromlit {
namespace {

// The user's own wish, not an application's, which a manager may refuse.
constexpr long kFromUser = 2;

constexpr long kRemove = 0;
constexpr long kAdd = 1;

constexpr unsigned long kEveryDesktop = 0xFFFFFFFF;

// Each answers whether the window manager can. `window` is None over the bare desktop.

bool Minimize(Window window) {
  if (!HasWindowManager()) return false;
  if (window != None) XIconifyWindow(dpy, window, screen);
  return true;
}

bool TakesDelete(Window window) {
  Atom* list = nullptr;
  int count = 0;
  if (XGetWMProtocols(dpy, window, &list, &count) == 0) return false;
  const XData<Atom> protocols(list);
  return std::find(list, list + count, wm_delete) != list + count;
}

bool Close(Window window) {
  const bool asks = ManagerSupports("_NET_CLOSE_WINDOW");
  if (window == None) return asks || HasWindowManager();
  if (asks) {
    AskManager(window, "_NET_CLOSE_WINDOW", {CurrentTime, kFromUser, 0, 0, 0});
    return true;
  }
  // What a window manager would do itself.
  if (!TakesDelete(window)) return false;
  TellWindow(window, "WM_PROTOCOLS", {static_cast<long>(wm_delete), CurrentTime, 0, 0, 0});
  return true;
}

bool HasState(Window window, const char* state) {
  const auto states = Numbers(window, "_NET_WM_STATE");
  return std::ranges::find(states, AtomOf(state)) != states.end();
}

// Switches a state on; or off, when all of it is on. `second` may be null.
bool Switch(Window window, const char* first, const char* second) {
  if (!ManagerSupports("_NET_WM_STATE") || !ManagerSupports(first)) return false;
  if (window == None) return true;
  const bool on = HasState(window, first) && (second == nullptr || HasState(window, second));
  AskManager(window, "_NET_WM_STATE",
             {on ? kRemove : kAdd, static_cast<long>(AtomOf(first)),
              second != nullptr ? static_cast<long>(AtomOf(second)) : 0, kFromUser, 0});
  return true;
}

bool Maximize(Window window) {
  return Switch(window, "_NET_WM_STATE_MAXIMIZED_VERT", "_NET_WM_STATE_MAXIMIZED_HORZ");
}

bool Fullscreen(Window window) {
  return Switch(window, "_NET_WM_STATE_FULLSCREEN", nullptr);
}

bool KeepAbove(Window window) {
  return Switch(window, "_NET_WM_STATE_ABOVE", nullptr);
}

struct Desktops {
  unsigned long count = 0;  // 0: the manager does not tell
  unsigned long current = 0;

  long Beside(unsigned long desktop, bool next) const {
    return static_cast<long>((desktop + (next ? 1 : count - 1)) % count);
  }
};

Desktops ReadDesktops(const char* message) {
  Desktops desktops;
  if (!ManagerSupports(message)) return desktops;
  const auto count = Numbers(root, "_NET_NUMBER_OF_DESKTOPS");
  const auto current = Numbers(root, "_NET_CURRENT_DESKTOP");
  if (count.empty() || current.empty() || current[0] >= count[0]) return desktops;
  desktops.count = count[0];
  desktops.current = current[0];
  return desktops;
}

bool ShowDesktop(bool next) {
  const Desktops desktops = ReadDesktops("_NET_CURRENT_DESKTOP");
  if (desktops.count == 0) return false;
  AskManager(root, "_NET_CURRENT_DESKTOP",
             {desktops.Beside(desktops.current, next), CurrentTime, 0, 0, 0});
  return true;
}

bool MoveToDesktop(Window window, bool next) {
  const Desktops desktops = ReadDesktops("_NET_WM_DESKTOP");
  if (desktops.count == 0) return false;
  if (window == None) return true;
  const auto at = Numbers(window, "_NET_WM_DESKTOP");
  const unsigned long from =
      at.empty() || at[0] == kEveryDesktop || at[0] >= desktops.count ? desktops.current : at[0];
  AskManager(window, "_NET_WM_DESKTOP", {desktops.Beside(from, next), kFromUser, 0, 0, 0});
  return true;
}

constexpr struct {
  std::string_view keyword;
  bool (*run)(Window window);
} kActions[] = {
    {"system:minimize", Minimize},
    {"system:maximize", Maximize},
    {"system:close", Close},
    {"system:fullscreen", Fullscreen},
    {"system:above", KeepAbove},
    {"system:desktop-next", [](Window) { return ShowDesktop(true); }},
    {"system:desktop-previous", [](Window) { return ShowDesktop(false); }},
    {"system:window-to-desktop-next", [](Window window) { return MoveToDesktop(window, true); }},
    {"system:window-to-desktop-previous",
     [](Window window) { return MoveToDesktop(window, false); }},
};

}  // namespace

bool RunWindowAction(std::string_view text) {
  for (const auto& action : kActions) {
    if (text != action.keyword) continue;
    const Window client = currentStroke.client;
    if (!action.run(client == root ? Window{None} : client)) {
      std::fprintf(stderr, "The window manager cannot do %s.\n", std::string(text).c_str());
    }
    XFlush(dpy);
    return true;
  }
  return false;
}

}  // namespace gromlit
