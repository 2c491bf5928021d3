#include "toolkit/dialog_hands.h"

#include <X11/Xatom.h>
#include <X11/Xutil.h>
#include <X11/keysym.h>

#include <algorithm>
#include <string>

#include "display/display.h"
#include "display/modes.h"
#include "display/scale.h"
#include "display/window_manager.h"
#include "display/window_tree.h"
#include "display/x_handles.h"
#include "toolkit/focus.h"
#include "toolkit/key_lookup.h"
#include "toolkit/line_edit.h"
#include "toolkit/manners.h"
#include "toolkit/tab_order.h"
#include "toolkit/window_hints.h"

namespace gromlit {
namespace {

constexpr int kGap = 8;          // pixels between a dialog and what it asks about
constexpr int kFrameSides = 16;  // what a window manager's frame may add, both sides together
constexpr int kFrameEnds = 40;   // and above and below

constexpr long kHandEvents = kDialogEvents | KeyPressMask | KeyReleaseMask | FocusChangeMask |
                             StructureNotifyMask | PropertyChangeMask;

constexpr const char* kShown = "GROMLIT_SHOWN";

// Asks for the server's time: the notice of a property to which nothing is added has it.
void Stamp(XDialog* dlog) {
  XChangeProperty(dpy, dlog->window, AtomOf(kShown), XA_CARDINAL, 32, PropModeAppend, nullptr, 0);
}

// The first text field of a dialog, else the dialog itself.
Window FirstField(const XDialog* dlog) {
  for (const Window stop : TabStops(dlog->window)) {
    const WindowObj* entry = FindWindowObj(stop);
    if (entry != nullptr && ButtonOf(entry) == nullptr) return stop;
  }
  return dlog->window;
}

// What it asks, in one line.
std::string Question(const XDialog* dlog) {
  std::string text = dlog->title;
  if (dlog->show != None || dlog->msgs == nullptr) return text;
  const char* between = ": ";
  for (const char* const* line = dlog->msgs; *line != nullptr; line++) {
    if (**line == '\0') continue;
    text += between;
    text += *line;
    between = " ";
  }
  return text;
}

// The window that a dialog belongs to: the one that its user works in, where that is one that a
// window manager knows; else the main window. A menu closes, and the icon in the tray is none.
Window AskerOf(const XDialog* dlog) {
  if (lastpressed == None) return showWindow;
  const Window top = TopOf(lastpressed);
  const WindowObj* entry = FindWindowObj(top);
  if (top == dlog->window || entry == nullptr || entry->window != top ||
      entry->eh[ClientMessage] == NoHandler) {
    return showWindow;
  }
  XWindowAttributes at{};
  const bool seen = XGetWindowAttributes(dpy, top, &at) != 0 && at.map_state == IsViewable;
  return seen && at.override_redirect == False ? top : showWindow;
}

void TellManager(const XDialog* dlog, int x, int y, bool keyboard) {
  const Window window = dlog->window;
  XStoreName(dpy, window, Latin1Of(dlog->title).c_str());
  DescribeWindow(window, Question(dlog), WindowKind::kDialog);
  XSetWMProtocols(dpy, window, &wm_delete, 1);
  const Window asker = AskerOf(dlog);
  if (asker != None) XSetTransientForHint(dpy, window, asker);
  const XData<XSizeHints> size(XAllocSizeHints());
  if (size != nullptr) {
    size->flags = USPosition | PPosition | PMinSize | PMaxSize;
    size->x = Device(x);
    size->y = Device(y);
    size->min_width = size->max_width = Device(dlog->width);
    size->min_height = size->max_height = Device(dlog->height);
    XSetWMNormalHints(dpy, window, size.get());
  }
  XWMHints hints{};
  hints.flags = InputHint | StateHint;
  hints.input = True;
  hints.initial_state = NormalState;
  XSetWMHints(dpy, window, &hints);
  // Of what came without being asked for, the user's typing is not to be taken.
  const Atom usertime = AtomOf("_NET_WM_USER_TIME");
  const long never = 0;
  if (keyboard) {
    XDeleteProperty(dpy, window, usertime);
  } else {
    XChangeProperty(dpy, window, usertime, XA_CARDINAL, 32, PropModeReplace,
                    reinterpret_cast<const unsigned char*>(&never), 1);
  }
}

// The window of the screen that a window is or lies in.
Window FrameOf(Window window) {
  for (;;) {
    const Window parent = ParentOf(window);
    if (parent == None || parent == root) return window;
    window = parent;
  }
}

bool HasClass(Window window) {
  XClassHint hint{};
  if (XGetClassHint(dpy, window, &hint) == 0) return false;
  const XData<char> name(hint.res_name);
  const XData<char> classpart(hint.res_class);
  return true;
}

// Whether a window is the program's, or a frame around one that is. A menu, which has no class, is
// about to close.
bool HoldsOwn(Window window, int levels) {
  if (IsOwnWindow(window)) return HasClass(window);
  if (levels == 0) return false;
  Window rootwin;
  Window parent;
  Window* list = nullptr;
  unsigned count = 0;
  if (XQueryTree(dpy, window, &rootwin, &parent, &list, &count) == 0) return false;
  const XData<Window> children(list);
  for (unsigned i = 0; i < count; i++) {
    if (HoldsOwn(list[i], levels - 1)) return true;
  }
  return false;
}

void Press(const XButton* button) {
  if (button->state != kButtonInactive && button->action != nullptr) button->action(button->arg);
}

}  // namespace

void ShowDialogWithHands(XDialog* dlog, int x, int y, bool keyboard) {
  XWindowAttributes at{};
  const bool shown =
      XGetWindowAttributes(dpy, dlog->window, &at) != 0 && at.map_state != IsUnmapped;
  if (!shown) {
    dlog->managed = HasWindowManager() ? 1 : 0;
    XSetWindowAttributes attributes;
    attributes.override_redirect = dlog->managed != 0 ? False : True;
    attributes.event_mask = kHandEvents;
    XChangeWindowAttributes(dpy, dlog->window, CWOverrideRedirect | CWEventMask, &attributes);
  } else {
    XSelectInput(dpy, dlog->window, kHandEvents);
  }
  dlog->hands = 1;
  dlog->shown = 0;
  dlog->keyboard = keyboard ? 1 : 0;
  TellManager(dlog, x, y, keyboard);
  XClearArea(dpy, dlog->window, 0, 0, 0, 0, True);
  ScaledMoveWindow(dlog->window, x, y);
  XMapRaised(dpy, dlog->window);
  if (shown) Stamp(dlog);
  // A window manager gives it, when it has mapped the window.
  if (dlog->managed == 0 && keyboard) TakeKeys(FirstField(dlog));
}

void TakeHandsOff(XDialog* dlog) {
  XWindowAttributes at{};
  if (XGetWindowAttributes(dpy, dlog->window, &at) == 0 || at.map_state != IsUnmapped) return;
  XSetWindowAttributes attributes;
  attributes.override_redirect = True;
  attributes.event_mask = kDialogEvents;
  XChangeWindowAttributes(dpy, dlog->window, CWOverrideRedirect | CWEventMask, &attributes);
  dlog->hands = 0;
  dlog->managed = 0;
}

void PlaceBeside(const XDialog* dlog, Window child, int* x, int* y) {
  constexpr int kLevels = 3;  // of frames around a window
  Window beside = None;
  if (child != None && HoldsOwn(child, kLevels)) {
    beside = child;
  } else if (const Window asker = AskerOf(dlog); asker != None) {
    beside = FrameOf(asker);
  }
  XWindowAttributes at{};
  if (beside == None || beside == FrameOf(dlog->window) ||
      XGetWindowAttributes(dpy, beside, &at) == 0 || at.map_state != IsViewable) {
    return;
  }
  const bool framed = HasWindowManager();
  const int width = dlog->width + (framed ? kFrameSides : 0);
  const int height = dlog->height + (framed ? kFrameEnds : 0);
  const int x1 = Logical(at.x);
  const int y1 = Logical(at.y);
  const int right = LogicalLength(at.x + at.width + 2 * at.border_width) + kGap;
  const int below = LogicalLength(at.y + at.height + 2 * at.border_width) + kGap;
  const int left = x1 - kGap - width;
  const int above = y1 - kGap - height;
  if (*x >= right || *y >= below || *x + width <= x1 || *y + height <= y1) return;
  const int row = std::max(0, std::min(*y, LogicalScreenHeight() - height));
  const int column = std::max(0, std::min(*x, LogicalScreenWidth() - width));
  if (right + width <= LogicalScreenWidth()) {
    *x = right;
    *y = row;
  } else if (left >= 0) {
    *x = left;
    *y = row;
  } else if (below + height <= LogicalScreenHeight()) {
    *x = column;
    *y = below;
  } else if (above >= 0) {
    *x = column;
    *y = above;
  }
}

bool DialogTakesKey(void* dlog, const XKeyEvent& press) {
  const auto* asked = static_cast<const XDialog*>(dlog);
  if (asked->careful == 0) return true;
  return asked->shown != 0 && press.time - asked->shown >= kCareful;
}

void DialogKeyPress(XDialog* dlog, XEvent* event) {
  if (!ModernManners() || dlog->hands == 0) return;
  XKeyEvent* press = &event->xkey;
  char bytes[32];
  KeySym key = NoSymbol;
  LookupKey(press, bytes, sizeof bytes, &key);
  switch (WindowKeyOf(key, press->state)) {
    case WindowKey::kNext:
      FocusNext(press->window, false);
      return;
    case WindowKey::kBack:
      FocusNext(press->window, true);
      return;
    case WindowKey::kConfirm:
      if (IsKeyRepeat(*press) || !DialogTakesKey(dlog, *press)) return;
      Press(dlog->yes != nullptr ? dlog->yes : dlog->no);
      return;
    case WindowKey::kRefuse:
      if (!IsKeyRepeat(*press)) Press(dlog->no);
      return;
    case WindowKey::kNone:
      return;
  }
}

void DialogFocus(XDialog* dlog, XEvent* event) {
  if (event->type == FocusOut) {
    FocusLost(event->xfocus);
    return;
  }
  if (!ModernManners() || dlog->managed == 0 || !IsFocusMove(event->xfocus)) return;
  if (event->xfocus.detail == NotifyInferior) return;  // it comes from a field of the dialog
  const Window field = FirstField(dlog);
  if (field != dlog->window) TakeKeys(field);
}

void DialogMapped(XDialog* dlog, XEvent* event) {
  if (event->xmap.window == dlog->window && dlog->hands != 0) Stamp(dlog);
}

void DialogStamped(XDialog* dlog, XEvent* event) {
  const XPropertyEvent& news = event->xproperty;
  if (news.send_event == False && news.atom == AtomOf(kShown)) dlog->shown = news.time;
}

void DialogMessage(XDialog* dlog, XEvent* event) {
  const XClientMessageEvent& message = event->xclient;
  if (message.message_type != wm_protocols || message.format != 32 ||
      static_cast<Atom>(message.data.l[0]) != wm_delete) {
    return;
  }
  Press(dlog->no);
}

}  // namespace gromlit
