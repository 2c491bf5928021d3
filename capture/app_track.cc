#include "capture/app_track.h"

#include <optional>
#include <span>

#include "app/main_window/shown_plugin.h"
#include "app/tray/tray_icon.h"
#include "app/tray/tray_menu.h"
#include "display/display.h"
#include "display/modes.h"
#include "display/replies.h"
#include "toolkit/window_object.h"

namespace gromlit {
namespace {

// Any window id that no window has: the default entry is found through defaultWindowObj alone.
constexpr Window kNoWindow = 1;

// The question which windows there are, until it is answered.
std::optional<xcb_query_tree_cookie_t> windows;

}  // namespace

void AskForWindows() {
  XSelectInput(dpy, root, SubstructureNotifyMask | StructureNotifyMask | EnterWindowMask);
  windows = xcb_query_tree(XGetXCBConnection(dpy), static_cast<xcb_window_t>(root));
}

void CreateAppTrack() {
  defaultWindowObj = AllocWindowObj(kNoWindow, nullptr);
  SetHandler(defaultWindowObj, EnterNotify, GromlitAppTrackEnter);
  SetHandler(defaultWindowObj, CreateNotify, GromlitAppTrackCreate);
  if (!windows) AskForWindows();
  const auto tree = AnswerTo(xcb_query_tree_reply, *windows);
  windows.reset();
  if (tree == nullptr) return;
  for (const Window window :
       std::span(xcb_query_tree_children(tree.get()), static_cast<size_t>(tree->children_len))) {
    if (!IsOwnWindow(window)) XSelectInput(dpy, window, EnterWindowMask);
  }
}

bool IsOwnTarget(const Target& target) {
  // The root window has a window object, too, which makes nothing there ours.
  return target.client != root &&
         (IsOwnWindow(target.client) || IsOwnWindow(target.app) || IsTrayIcon(target.click));
}

void GromlitAppTrackEnter(void*, XEvent* event) {
  const XCrossingEvent& crossing = event->xcrossing;
  // The pointer is where the server says; what others send would make the program ask about their
  // windows as often as they like.
  if (crossing.send_event) return;
  if (crossing.mode == NotifyGrab || editingPlugin != 0) return;
  // An editor or a dialog lay over this window: the plug-in that was changed by it, or whose action
  // it was about, would go as soon as the work is done.
  if (IsUncovering(crossing)) return;
  const Target entered = FindApplication(crossing.window, crossing.x_root, crossing.y_root);
  // The program's own windows are found inside a window manager's frames. On the way to one of them
  // the main window must keep what its menus are about to act on.
  if (IsOwnTarget(entered)) return;
  NoteEntered(entered, crossing.window);
  if (entered.app == None) return;
  int updated = 0;
  UpdateGromlitApp(app, entered.cname.data(), &updated);
  if (updated != 0) DrawGromlitApp(app);
}

void GromlitAppTrackCreate(void*, XEvent* event) {
  if (event->xcreatewindow.send_event) return;
  const Window window = event->xcreatewindow.window;
  if (!IsOwnWindow(window)) XSelectInput(dpy, window, EnterWindowMask);
}

void GromlitAppTrackUnmap(void*, XEvent* event) {
  if (app != nullptr) NoteFrameGone(event->xunmap);
}

}  // namespace gromlit
