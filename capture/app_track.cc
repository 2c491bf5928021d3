#include "capture/app_track.h"

#include "app/main_window/shown_plugin.h"
#include "app/tray/tray_icon.h"
#include "app/tray/tray_menu.h"
#include "display/display.h"
#include "display/modes.h"
#include "display/x_handles.h"
#include "toolkit/window_object.h"

namespace gromlit {
namespace {

// Any window id that no window has: the default entry is found through defaultWindowObj alone.
constexpr Window kNoWindow = 1;

}  // namespace

void CreateAppTrack() {
  defaultWindowObj = AllocWindowObj(kNoWindow, nullptr);
  SetHandler(defaultWindowObj, EnterNotify, GromlitAppTrackEnter);
  SetHandler(defaultWindowObj, CreateNotify, GromlitAppTrackCreate);
  XSelectInput(dpy, root, SubstructureNotifyMask | StructureNotifyMask | EnterWindowMask);
  Window rootwin;
  Window parent;
  Window* list = nullptr;
  unsigned count = 0;
  if (XQueryTree(dpy, root, &rootwin, &parent, &list, &count) == 0) return;
  const XData<Window> windows(list);
  for (unsigned i = 0; i < count; i++) {
    if (!IsOwnWindow(list[i])) XSelectInput(dpy, list[i], EnterWindowMask);
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
