#include "app/tray/tray_menu.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <string>
#include <vector>

#include "app/main_window/main_menu.h"
#include "app/main_window/main_window.h"
#include "app/main_window/shown_plugin.h"
#include "app/plugins/plugin_menu.h"
#include "app/preferences/user_options_window.h"
#include "app/tray/tray_record.h"
#include "app/windows/dialogs.h"
#include "core/hands_off.h"
#include "core/plugin_files.h"
#include "core/strings.h"
#include "display/display.h"
#include "display/modes.h"
#include "display/monitors.h"
#include "display/pause.h"
#include "display/scale.h"
#include "display/x_handles.h"
#include "toolkit/menu.h"

namespace gromlit {
namespace {

// Whether the icon lies below one of these windows.
bool HoldsIcon(Window rootchild, Window client) {
  constexpr int kMaxDepth = 16;
  Window window = trayicon->docked != 0 ? trayicon->window : None;
  for (int depth = 0; depth < kMaxDepth && window != None && window != root; depth++) {
    Window rootwin;
    Window parent = None;
    Window* list = nullptr;
    unsigned count = 0;
    if (XQueryTree(dpy, window, &rootwin, &parent, &list, &count) == 0) return false;
    const XData<Window> children(list);
    if (parent == rootchild || parent == client) return true;
    window = parent;
  }
  return false;
}

// What the item says; "" where it is left out.
std::string HandsOffLabel() {
  if (trayicon->entered[0] == '\0') return "";
  const GromlitPlugin* plugin = FindPlugin(trayicon->entered.data());
  if (plugin == nullptr) {
    // The form that the record would keep.
    std::array<char, kTextSize> name;
    CopyText(name, trayicon->entered.data());
    return HandsOff(DefaultPlugin) ? "" : "No gestures in " + std::string(name.data());
  }
  const std::string name(FieldText(plugin->appname));
  return HandsOff(plugin) ? "Gestures in " + name + " again" : "No gestures in " + name;
}

// Puts the menu's corner to the click; beyond the click where there is no room behind it.
int Along(int at, int length, int start, int end) {
  return std::max(at + length > end ? at - length : at, start);
}

// To be called by an action before it shows or hides anything. The menu goes, and with it from
// under the pointer: what lies below has not been entered.
void CloseBefore(XMenu* menu) {
  if (menu == nullptr) return;
  KeepShownPlugin();
  PullUpMenu(menu);
}

void ShowPluginOf(const char* classname) {
  UpdatePluginsMenu();
  UpdateGromlitApp(app, classname, nullptr);
  DrawGromlitApp(app);
}

void TurnGesturesOn(GromlitPlugin* plugin) {
  if (IsUnused(plugin)) {
    DeletePlugin(plugin, plugin->classname);
    return;
  }
  if (SetHandsOff(plugin, false)) {
    ShowPluginOf(plugin->classname);
  } else {
    ShowSaveFailure("Gestures stay off: the plug-in was not saved.", errno);
  }
}

void TurnGesturesOff(GromlitPlugin* plugin, const char* classname) {
  const bool off =
      plugin != nullptr ? SetHandsOff(plugin, true) : CreateHandsOffPlugin(classname) != nullptr;
  if (off) {
    ShowPluginOf(classname);
  } else {
    ShowSaveFailure("Gestures stay on: the plug-in was not saved.", errno);
  }
}

}  // namespace

void OpenTrayMenu(int x, int y) {
  std::vector<XMenuItem*> items = {
      MakeMenuItem(GromlitIsShown() ? "Hide Gromlit" : "Show Gromlit", trayShowOrHide, nullptr),
      MakeMenuItem(gesturesPaused != 0 ? "Resume gestures" : "Pause gestures", trayPauseOrResume,
                   nullptr)};
  trayicon->handsofflabel = HandsOffLabel();
  trayicon->offered = trayicon->entered;
  if (!trayicon->handsofflabel.empty()) {
    items.push_back(MakeMenuItem(trayicon->handsofflabel.c_str(), trayHandsOff, nullptr));
  }
  items.push_back(MakeMenuItem("Preferences", trayPreferences, nullptr));
  items.push_back(MakeMenuItem("Exit", trayExit, nullptr));
  const int nitems = static_cast<int>(items.size());
  if (trayicon->menu == nullptr) {
    trayicon->menu = MakeMenu(root, 0, 0, labelFontinfo, items.data(), nitems);
  } else {
    RemakeMenu(trayicon->menu, labelFontinfo, items.data(), nitems);
  }
  // Trays lie at the edges.
  const XRectangle area = LogicalArea(MonitorAt(x, y));
  PopUpMenuGrabbed(Along(Logical(x), trayicon->menu->width, area.x, area.x + area.width),
                   Along(Logical(y), trayicon->menu->height, area.y, area.y + area.height),
                   trayicon->menu);
}

void NoteEntered(const Target& entered, Window rootchild) {
  if (trayicon == nullptr || entered.client == root) return;
  if (HoldsIcon(rootchild, entered.client)) {
    trayicon->holder = entered.cname;
    // Entered by another of its windows, before.
    if (StrCmp(trayicon->entered.data(), trayicon->holder.data()) == 0) trayicon->entered = {};
    return;
  }
  if (trayicon->holder[0] != '\0' && StrCmp(entered.cname.data(), trayicon->holder.data()) == 0)
    return;
  trayicon->entered = entered.cname;
}

void trayShowOrHide(XMenu* menu, void*) {
  CloseBefore(menu);
  if (app == nullptr) return;
  if (GromlitIsShown()) {
    HideGromlit();
  } else {
    ShowGromlit();
  }
}

void trayPauseOrResume(XMenu* menu, void*) {
  CloseBefore(menu);
  PauseGestures(gesturesPaused == 0);
}

void trayHandsOff(XMenu* menu, void*) {
  CloseBefore(menu);
  if (app == nullptr || trayicon->offered[0] == '\0') return;
  GromlitPlugin* plugin = FindPlugin(trayicon->offered.data());
  if (HandsOff(plugin)) {
    TurnGesturesOn(plugin);
  } else {
    TurnGesturesOff(plugin, trayicon->offered.data());
  }
}

void trayPreferences(XMenu* menu, void* arg) {
  CloseBefore(menu);
  if (opt != nullptr) mbPrefDraw(menu, arg);
}

void trayExit(XMenu* menu, void* arg) {
  CloseBefore(menu);
  mbPluginExit(menu, arg);
}

}  // namespace gromlit
