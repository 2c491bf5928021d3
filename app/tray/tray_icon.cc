#include "app/tray/tray_icon.h"

#include <X11/Xatom.h>
#include <X11/Xutil.h>

#include <algorithm>
#include <iterator>
#include <optional>
#include <string>
#include <string_view>

#include "app/main_window/main_window.h"
#include "app/tray/tray_menu.h"
#include "app/tray/tray_picture.h"
#include "core/option_files.h"
#include "display/calls_xlib.h"
#include "display/display.h"
#include "display/modes.h"
#include "display/pause.h"
#include "display/replies.h"
#include "display/scale.h"
#include "display/window_manager.h"
#include "toolkit/child_window.h"

namespace gromlit {

namespace {

constexpr int kUsualSize = 24;     // pixels; the tray says what it will be
constexpr int kLeastSize = 16;     // that it is still told apart from other icons
constexpr int kSquareSize = 48;    // up to which it asks to be as wide as high
constexpr int kMostSize = 256;     // of the picture, in the middle of what is larger
constexpr long kRequestDock = 0;   // opcode of the tray's protocol
constexpr long kXembedMapped = 1;  // the icon wants to be seen

// The question who is the tray, until it is answered.
std::optional<xcb_get_selection_owner_cookie_t> owner;

std::string SelectionName() {
  return "_NET_SYSTEM_TRAY_S" + std::to_string(screen);
}

void SetText(Window window, Atom name, Atom type, std::string_view text) {
  XChangeProperty(dpy, window, name, type, 8, PropModeReplace,
                  reinterpret_cast<const unsigned char*>(text.data()),
                  static_cast<int>(text.size()));
}

// Trays that do not say the size go by the least that an icon wants.
void AskForSize(Window window, int least) {
  XSizeHints size{};
  size.flags = PMinSize | PBaseSize;
  size.min_width = size.min_height = least;
  size.base_width = size.base_height = std::max(least, kUsualSize);
  XSetWMNormalHints(dpy, window, &size);
}

// What trays and their users are told: the name is what they show beside the pointer.
void DescribeIcon(Window window) {
  SetText(window, XA_WM_NAME, XA_STRING, "Gromlit");
  SetText(window, AtomOf("_NET_WM_NAME"), AtomOf("UTF8_STRING"), "Gromlit");
  using namespace std::literals;
  SetText(window, XA_WM_CLASS, XA_STRING, "Tray\0Gromlit\0"sv);
  AskForSize(window, kLeastSize);
  const long info[] = {0, kXembedMapped};  // version of the protocol, flags
  XChangeProperty(dpy, window, AtomOf("_XEMBED_INFO"), AtomOf("_XEMBED_INFO"), 32, PropModeReplace,
                  reinterpret_cast<const unsigned char*>(info), 2);
}

// Not framed by a window manager, should the tray let go of it: then it lies on the root window for
// a moment. Its background is a colour, as that of the tray may have another depth.
void MakeIconWindow(TrayIcon* icon) {
  XSetWindowAttributes unframed{};
  unframed.override_redirect = True;
  icon->window =
      MakeChildWindow(root, 0, 0, kUsualSize, kUsualSize, white.pixel,
                      ExposureMask | StructureNotifyMask | ButtonPressMask | ButtonReleaseMask,
                      CWOverrideRedirect, unframed);
  icon->width = icon->height = Device(kUsualSize);
  icon->pressed = 0;
  if (icon->wobj != nullptr) {
    // Entries cannot be given back.
    icon->wobj->window = icon->window;
  } else {
    icon->wobj = AllocWindowObj(icon->window, icon);
    icon->wobj->device = true;  // the tray, not the program, says how large it is
    icon->gc = MakeWindowGC(icon->window);
    On<Expose, DrawTrayIcon>(icon);
    On<ConfigureNotify, TrayIconResized>(icon);
    On<ReparentNotify, TrayIconMoved>(icon);
    On<DestroyNotify, TrayIconGone>(icon);
    On<ButtonPress, TrayIconPress>(icon);
    On<ButtonRelease, TrayIconRelease>(icon);
  }
  DescribeIcon(icon->window);
}

GROMLIT_CALLS_XLIB void ForgetPicture(TrayIcon* icon) {
  if (icon->picture != nullptr) XDestroyImage(icon->picture);
  icon->picture = nullptr;
}

// The window goes, if it is there still.
void DropIcon(TrayIcon* icon) {
  if (icon->window != None) XDestroyWindow(dpy, icon->window);
  icon->window = None;
  icon->tray = None;
  icon->docked = 0;
  ForgetPicture(icon);
}

// All at once: Xlib remembers them, and asks for each by itself else.
void MakeTrayAtoms() {
  const char* names[] = {"_NET_SYSTEM_TRAY_OPCODE", "_NET_WM_NAME", "UTF8_STRING", "_XEMBED_INFO",
                         "MANAGER"};
  Atom atoms[std::size(names)];
  XInternAtoms(dpy, const_cast<char**>(names), static_cast<int>(std::size(names)), False, atoms);
}

// Whether the tray is alive and will be missed when it is gone.
bool WatchTray(Window tray) {
  XWindowAttributes attributes;
  if (XGetWindowAttributes(dpy, tray, &attributes) == 0) return false;
  XSelectInput(dpy, tray, attributes.your_event_mask | StructureNotifyMask);
  // It may have gone before the request above, and say nothing any more.
  return XGetSelectionOwner(dpy, AtomOf(SelectionName().c_str())) == tray;
}

void Dock(TrayIcon* icon, Window tray) {
  if (!WatchTray(tray)) return;
  MakeTrayAtoms();
  if (icon->window == None) MakeIconWindow(icon);
  icon->tray = tray;
  TellWindow(tray, "_NET_SYSTEM_TRAY_OPCODE",
             {CurrentTime, kRequestDock, static_cast<long>(icon->window), 0, 0});
}

}  // namespace

void AskForTrays() {
  owner = xcb_get_selection_owner(XGetXCBConnection(dpy),
                                  static_cast<xcb_atom_t>(AtomOf(SelectionName().c_str())));
}

void WatchForTrays() {
  if (trayicon == nullptr) trayicon = new TrayIcon{};
  pauseChanged = RefreshTrayIcon;
  WindowObj* const rootentry = FindWindowObj(root);
  SetHandler(rootentry, ClientMessage, NoteTray);
  SetHandler(rootentry, DestroyNotify, NoteTrayGone);
  SetHandler(defaultWindowObj, DestroyNotify, NoteTrayGone);
  if (!owner) AskForTrays();
  const auto answer = AnswerTo(xcb_get_selection_owner_reply, *owner);
  owner.reset();
  if (answer != nullptr && answer->owner != None) Dock(trayicon, answer->owner);
}

bool IsTrayIcon(Window window) {
  return window != None && trayicon != nullptr && trayicon->window == window;
}

void ClickTrayIcon(const InputPlace& place, unsigned button) {
  XEvent event{};
  event.xbutton.button = button;
  PlaceInput(&event.xbutton, place, 0);
  for (const int type : {ButtonPress, ButtonRelease}) {
    event.type = type;
    XSendEvent(dpy, place.win, False, NoEventMask, &event);  // to who made the window, alone
  }
}

void RefreshTrayIcon() {
  if (trayicon == nullptr || trayicon->window == None) return;
  ForgetPicture(trayicon);
  if (trayicon->docked != 0) DrawTrayIcon(trayicon, nullptr);
}

void NoteTray(void*, XEvent* event) {
  const XClientMessageEvent& message = event->xclient;
  if (trayicon == nullptr || message.window != root || message.format != 32) return;
  if (message.message_type != AtomOf("MANAGER")) return;
  const Atom selection = AtomOf(SelectionName().c_str());
  if (static_cast<Atom>(message.data.l[1]) != selection) return;
  // Anybody may say so.
  const Window tray = XGetSelectionOwner(dpy, selection);
  if (tray == None || tray == trayicon->tray) return;
  if (trayicon->docked != 0) DropIcon(trayicon);
  Dock(trayicon, tray);
}

void NoteTrayGone(void*, XEvent* event) {
  const XDestroyWindowEvent& gone = event->xdestroywindow;
  if (gone.send_event != False || trayicon == nullptr || trayicon->tray == None) return;
  if (gone.window == trayicon->tray) DropIcon(trayicon);
}

void DrawTrayIcon(TrayIcon* icon, XEvent*) {
  if (icon->window == None) return;  // an exposure from before its end
  const int side = std::clamp(std::min(icon->width, icon->height), 1, kMostSize);
  if (icon->picture == nullptr) icon->picture = MakeTrayPicture(side, gesturesPaused != 0);
  if (icon->picture == nullptr) return;
  XPutImage(dpy, icon->window, icon->gc, icon->picture, 0, 0, (icon->width - side) / 2,
            (icon->height - side) / 2, static_cast<unsigned>(side), static_cast<unsigned>(side));
}

void TrayIconResized(TrayIcon* icon, XEvent* event) {
  const XConfigureEvent& now = event->xconfigure;
  if (now.window != icon->window || now.send_event != False) return;
  if (now.width == icon->width && now.height == icon->height) return;
  icon->width = now.width;
  icon->height = now.height;
  ForgetPicture(icon);
  const int larger = std::max(now.width, now.height);
  if (now.width != now.height && larger <= kSquareSize) AskForSize(icon->window, larger);
  // What stays of the former picture is not exposed.
  XClearArea(dpy, icon->window, 0, 0, 0, 0, True);
}

void TrayIconMoved(TrayIcon* icon, XEvent* event) {
  const XReparentEvent& moved = event->xreparent;
  if (moved.window != icon->window || moved.send_event != False) return;
  if (moved.parent == root) {
    DropIcon(icon);
  } else {
    icon->docked = 1;
  }
}

void TrayIconGone(TrayIcon* icon, XEvent* event) {
  const XDestroyWindowEvent& gone = event->xdestroywindow;
  if (gone.window != icon->window || gone.send_event != False) return;
  icon->window = None;
  DropIcon(icon);
}

void TrayIconPress(TrayIcon* icon, XEvent* event) {
  icon->pressed = event->xbutton.button;
}

void TrayIconRelease(TrayIcon* icon, XEvent* event) {
  const XButtonEvent& release = event->xbutton;
  const unsigned pressed = icon->pressed;
  icon->pressed = 0;
  if (pressed != release.button || release.x < 0 || release.y < 0 || release.x >= icon->width ||
      release.y >= icon->height) {
    return;
  }
  if (release.button == Button3 || static_cast<int>(release.button) == EffectiveButton(user)) {
    OpenTrayMenu(release.x_root, release.y_root);
  } else if (release.button == Button1) {
    if (GromlitIsShown()) {
      HideGromlit();
    } else {
      ShowGromlit();
    }
  }
}

}  // namespace gromlit
