#include "toolkit/window_object.h"

#include <algorithm>
#include <cstdio>
#include <vector>

#include "display/display.h"
#include "display/scale.h"
#include "toolkit/manners.h"
#include "toolkit/pointer_hold.h"

namespace gromlit {

WindowObj WindowObjects[kWindowObjects];
int nWindowObjects = 0;
WindowObj* defaultWindowObj = nullptr;
void (*keyboardChanged)(const XMappingEvent& event) = nullptr;

namespace {

// Blocks behind the first. They are never moved or freed: widgets keep pointers to their entries.
std::vector<WindowObj*>& MoreBlocks() {
  static auto* blocks = new std::vector<WindowObj*>;
  return *blocks;
}

std::vector<Window>& ClaimedWindows() {
  static auto* windows = new std::vector<Window>;
  return *windows;
}

WindowObj* EntryAt(int i) {
  if (i < kWindowObjects) return &WindowObjects[i];
  return &MoreBlocks()[static_cast<size_t>(i / kWindowObjects) - 1][i % kWindowObjects];
}

// Whether an event is of a button that presses nothing. The root window's are left alone: one of
// these may be the button that draws, whose press has to be answered.
bool IsNotch(const XEvent& event) {
  return (event.type == ButtonPress || event.type == ButtonRelease) &&
         event.xbutton.button > kLastPressingButton && event.xbutton.window != root;
}

// Scrolls what the wheel is turned over. A notch that another client sent counts like its clicks.
void TurnWheel(const XButtonEvent& notch) {
  if (notch.type != ButtonPress || !ModernManners()) return;
  if (notch.button != Button4 && notch.button != Button5) return;
  const WindowObj* entry = FindWindowObj(notch.window);
  if (entry == nullptr || entry->wheel == nullptr) return;
  entry->wheel(entry->obj, notch.button == Button5 ? 1 : -1);
}

bool TakesPressOf(Window window, unsigned button) {
  const WindowObj* entry = FindWindowObj(window);
  if (entry == nullptr || entry == defaultWindowObj) return false;
  if (button > kLastPressingButton) return entry->wheel != nullptr;
  return entry->eh[ButtonPress] != NoHandler;
}

int TableSize() {
  return kWindowObjects * (1 + static_cast<int>(MoreBlocks().size()));
}

}  // namespace

WindowObj* AllocWindowObj(Window window, void* obj) {
  if (nWindowObjects == TableSize()) MoreBlocks().push_back(new WindowObj[kWindowObjects]());
  WindowObj* entry = EntryAt(nWindowObjects++);
  entry->window = window;
  entry->obj = obj;
  entry->wheel = nullptr;
  entry->device = false;
  for (EventHandler& handler : entry->eh) handler = NoHandler;
  return entry;
}

void SetHandler(WindowObj* entry, int type, EventHandler handler) {
  if (type < kFirstEvent || type > kLastEvent) return;
  entry->eh[type] = handler;
}

WindowObj* HasWindowObj(Window window) {
  for (int i = 0; i < TableSize(); i++) {
    WindowObj* entry = EntryAt(i);
    if (entry->window == window) return entry;
  }
  return nullptr;
}

void ClaimWindow(Window window) {
  ClaimedWindows().push_back(window);
}

void DisclaimWindow(Window window) {
  std::erase(ClaimedWindows(), window);
}

bool IsOwnWindow(Window window) {
  const std::vector<Window>& claimed = ClaimedWindows();
  if (std::find(claimed.begin(), claimed.end(), window) != claimed.end()) return true;
  // The default entry, which stands for the windows of all others, has no owner.
  const WindowObj* entry = HasWindowObj(window);
  return entry != nullptr && entry->obj != nullptr;
}

WindowObj* FindWindowObj(Window window) {
  // Backwards: of two entries for one window the later-made one wins.
  for (int i = nWindowObjects - 1; i >= 0; i--) {
    WindowObj* entry = EntryAt(i);
    if (entry->window == window) return entry;
  }
  return defaultWindowObj;
}

void DispatchEvent(XEvent* event) {
  // No window asks for these, all clients get them. Without the keyboard extension Xlib goes on
  // with the meanings that the keys had before until it is told. One that another client sent says
  // nothing about the keyboard, and its numbers could reach the server unchecked.
  if (event->type == MappingNotify && event->xmapping.send_event == False) {
    XRefreshKeyboardMapping(&event->xmapping);
    if (keyboardChanged != nullptr) keyboardChanged(event->xmapping);
  }
  // The handler is kept together with the owner that it was installed for: any client may send an
  // event of an unknown type to any window, and a handler must never see another kind's record.
  static EventHandler handler = NoHandler;
  static void* owner = nullptr;
  if (event->type < kFirstEvent || event->type > kLastEvent) {
    std::printf("Unknown event type %d\n", event->type);
  } else {
    if (!ReaddressLatePress(event, TakesPressOf)) return;
    if (IsNotch(*event)) {
      TurnWheel(event->xbutton);
      return;
    }
    const WindowObj* entry = FindWindowObj(event->xany.window);
    const bool press = event->type == KeyPress || event->type == ButtonPress;
    if (press && event->xany.window != root) lastpressed = event->xany.window;
    handler = entry != nullptr ? entry->eh[event->type] : NoHandler;
    owner = entry != nullptr ? entry->obj : nullptr;
    if (entry != nullptr && entry != defaultWindowObj && entry->window != root && !entry->device)
      MakeLogical(event);
  }
  handler(owner, event);
}

void NoHandler(void*, XEvent* event) {
  noprintf("no handler for %s\n", EventName(event->type));
}

const char* EventName(int type) {
  static constexpr const char* kNames[kEventTypes] = {
      nullptr,          nullptr,          "KeyPress",         "KeyRelease",
      "ButtonPress",    "ButtonRelease",  "MotionNotify",     "EnterNotify",
      "LeaveNotify",    "FocusIn",        "FocusOut",         "KeymapNotify",
      "Expose",         "GraphicsExpose", "NoExpose",         "VisibilityNotify",
      "CreateNotify",   "DestroyNotify",  "UnmapNotify",      "MapNotify",
      "MapRequest",     "ReparentNotify", "ConfigureNotify",  "ConfigureRequest",
      "GravityNotify",  "ResizeRequest",  "CirculateNotify",  "CirculateRequest",
      "PropertyNotify", "SelectionClear", "SelectionRequest", "SelectionNotify",
      "ColormapNotify", "ClientMessage",  "MappingNotify"};
  return type >= kFirstEvent && type <= kLastEvent ? kNames[type] : "Unknown";
}

void noprintf(const char*, ...) {}  // NOLINT(cert-dcl50-cpp): takes what printf takes

void HideWindow(Window window) {
  if (beforehiding != nullptr) beforehiding();
  XUnmapWindow(dpy, window);
}

void WMClientMessage(void*, XEvent* event) {
  const XClientMessageEvent& message = event->xclient;
  if (message.message_type == wm_protocols && static_cast<Atom>(message.data.l[0]) == wm_delete) {
    HideWindow(message.window);
  }
}

}  // namespace gromlit
