// Fixture for the tests of the main window: the window as start-up makes it, shown at the top left
// of the screen, with plug-ins that the test makes.
//
// Every test ends with the proof that another client can grab the pointer.
#pragma once

#include "tests/x11/toolkit/widget_fixture.h"

#include <X11/extensions/XTest.h>
#include <sys/stat.h>

#include <memory>
#include <string>
#include <vector>

#include "app/action_editor/action_editor.h"
#include "app/main_window/action_menu.h"
#include "app/main_window/main_window.h"
#include "app/main_window/shown_plugin.h"
#include "app/plugins/plugin_actions.h"
#include "app/plugins/plugin_menu.h"
#include "app/windows/dialogs.h"
#include "core/action_copy.h"
#include "core/plugin_files.h"
#include "core/retired.h"
#include "core/strings.h"
#include "core/symbol_files.h"
#include "display/modes.h"
#include "toolkit/button.h"
#include "toolkit/image.h"
#include "toolkit/menu.h"
#include "toolkit/scrollbar.h"

namespace gromlit::testing {

class MainWindowFixture : public WidgetFixture {
 protected:
  // Of the window's inside: it is mapped at (0, 0) with a border of one pixel.
  static constexpr int kInsideX = 1;
  static constexpr int kInsideY = 1;

  void SetUp() override {
    XFixture::SetUp();
    if (HasFatalFailure()) return;
    editingPlugin = 0;
    AppLastClick = 0;
    DefaultPlugin = nullptr;
    MakeAboutDialog();
    Retire(app);  // of the test before
    app = nullptr;
    app = MakeGromlitApp(6, 3);
    LoadPlugins();
    app->plugin = GetDefaultPlugin();
    UpdatePluginsMenu();
    LoadSymbols();
    CreateActionEditor();
    UpdateGromlitApp(app, defaultPluginClassname, nullptr);
    cell = 2 * txtCharht + 40;
    XMapWindow(dpy, app->window);
    XSync(dpy, False);
    Pump();
  }

  void TearDown() override {
    for (int button = 1; button <= 3; button++) player->Release(button);
    Pump();
    EXPECT_TRUE(player->CanGrabPointer()) << "the pointer was left grabbed";
    editingPlugin = 0;
    WidgetFixture::TearDown();
  }

  // A stroke-like symbol whose icon is a frame with `n` in binary on its top rows.
  static GromlitSymbol Symbol(unsigned n) {
    GromlitSymbol sym{};
    CopyText(sym.name, "s" + std::to_string(n));
    sym.npoints = 2;
    sym.x[1] = sym.y[1] = sym.y[2] = 16;
    sym.x[2] = 264;
    for (unsigned row = 0; row < kIconSize; row++) sym.icon[row] = 0x80000001U;
    sym.icon[0] = sym.icon[31] = 0xffffffffU;
    sym.icon[8] |= n << 4;
    return sym;
  }

  static GromlitAction Action(const std::string& name, unsigned n = 0) {
    GromlitAction action{};
    action.sym = Symbol(n);
    CopyText(action.name, name);
    return action;
  }

  static GromlitCmd* Command(const char* text) {
    auto* cmd = new GromlitCmd{};
    cmd->type = kRun;
    cmd->ntext = static_cast<uint32_t>(StrLength(text));
    cmd->text = StrDup(text);
    return cmd;
  }

  // A plug-in with `nactions` actions of one command each, named a0, a1, ...; saved.
  static GromlitPlugin* Plugin(const std::string& appname, const std::string& classname,
                               int nactions) {
    GromlitPlugin* plugin = CreatePlugin(appname.c_str(), classname.c_str());
    for (int i = 0; i < nactions; i++) {
      auto* action =
          new GromlitAction(Action("a" + std::to_string(i), static_cast<unsigned>(i + 1)));
      action->ncmds = 1;
      action->cmds[0] = Command(("run" + std::to_string(i)).c_str());
      plugin->actions[plugin->nactions++] = action;
    }
    EXPECT_NE(UnLoadPlugin(plugin, classname.c_str()), nullptr);
    return plugin;
  }

  // Shows a plug-in in the main window.
  void Show(const GromlitPlugin* plugin) {
    UpdateGromlitApp(app, plugin->classname, nullptr);
    DrawGromlitApp(app);
    Pump();
  }

  // Makes a plug-in with so many actions and shows it.
  GromlitPlugin* ShowNew(int nactions) {
    GromlitPlugin* plugin = Plugin("Editor", "Edit.edit", nactions);
    Show(plugin);
    return plugin;
  }

  static std::vector<std::string> Names(const GromlitPlugin* plugin) {
    std::vector<std::string> names;
    for (int i = 0; i < plugin->nactions; i++) names.emplace_back(plugin->actions[i]->name);
    return names;
  }

  // Names of the actions in a plug-in's file.
  static std::vector<std::string> NamesInFile(const GromlitPlugin* plugin) {
    GromlitPlugin stored{};
    const std::string file = std::string(plugin->classname) + GromlitPluginFileExt;
    if (ReadPluginActions(file.c_str(), &stored) == nullptr) return {"unreadable"};
    std::vector<std::string> names = Names(&stored);
    for (int i = 0; i < stored.nactions; i++) {
      ReleaseActionContents(stored.actions[i]);
      delete stored.actions[i];
    }
    return names;
  }

  std::string FileOf(const GromlitPlugin* plugin) const {
    return *install / ("plugins/" + std::string(plugin->classname) + GromlitPluginFileExt);
  }

  // Puts a directory in the place of a plug-in's file: even the superuser can neither write nor
  // delete that like a file. GiveFileBack ends it.
  void BlockFile(const GromlitPlugin* plugin) const {
    ASSERT_EQ(std::rename(FileOf(plugin).c_str(), (FileOf(plugin) + ".kept").c_str()), 0);
    ASSERT_EQ(mkdir(FileOf(plugin).c_str(), 0777), 0);
  }
  void GiveFileBack(const GromlitPlugin* plugin) const {
    ASSERT_EQ(std::remove(FileOf(plugin).c_str()), 0);
    ASSERT_EQ(std::rename((FileOf(plugin) + ".kept").c_str(), FileOf(plugin).c_str()), 0);
  }

  // The user moves in the main window.
  void MoveInApp(int x, int y) const { player->MoveTo(kInsideX + x, kInsideY + y); }
  // Top-left corner of a cell of the grid; its number counts from the first visible action.
  int CellX(int n) const { return 8 + n % 6 * 72; }
  int CellY(int n) const { return app->icony + n / 6 * cell; }

  void ClickIn(int x, int y, int button = 1) {
    MoveInApp(x, y);
    player->Press(button);
    Pump();
    player->Release(button);
    Pump();
  }
  // A single click on a cell.
  void ClickCell(int n) {
    AppLastClick = 0;  // long ago, however fast the test is
    ClickIn(CellX(n) + 32, CellY(n) + 20);
  }

  // A press that reaches the main window with this server time.
  void PressAt(int x, int y, Time time, unsigned button = Button1) {
    XEvent event{};
    event.xbutton.type = ButtonPress;
    event.xbutton.window = app->window;
    event.xbutton.time = time;
    event.xbutton.button = button;
    event.xbutton.x = x;
    event.xbutton.y = y;
    DispatchEvent(&event);
  }
  void PressCell(int n, Time time) { PressAt(CellX(n) + 32, CellY(n) + 20, time); }

  // Whether a cell has its highlight: its icon's background is then black instead of white.
  bool Highlighted(int n) {
    return PixelOf(app->window, CellX(n) + 4, CellY(n) + 8) == kBlack &&
           PixelOf(app->window, CellX(n) + 60, CellY(n) + 8 + 33) == kBlack;
  }
  // Numbers of the visible cells with a highlight.
  std::vector<int> AllHighlighted() {
    std::vector<int> all;
    for (int n = 0; n < 18; n++) {
      if (Highlighted(n)) all.push_back(n);
    }
    return all;
  }

  static bool Viewable(Window window) {
    XWindowAttributes is;
    return XGetWindowAttributes(dpy, window, &is) != 0 && is.map_state == IsViewable;
  }

  // The user chooses an item of a menu that is open.
  void MoveToItem(const XMenu* menu, int i) {
    player->MoveTo(menu->x + menu->width / 2,
                   menu->y + 4 + i * menu->itemheight + menu->itemheight / 2);
    Pump();
  }

  // Opens the popup over the grid, keeping the button down.
  void OpenPopup() {
    MoveInApp(app->iconx + 30, app->icony + 30);
    player->Press(3);
    Pump();
  }
  void ChooseFromPopup(int i) {
    OpenPopup();
    MoveToItem(app->popup, i);
    player->Release(3);
    Pump();
  }

  int cell = 0;  // height of a cell, pixels
};

// Lines that the failure dialog shows, joined by "/"; empty when it is not shown.
inline std::string ShownFailure() {
  XWindowAttributes is;
  if (notice == nullptr || XGetWindowAttributes(dpy, notice->window, &is) == 0 ||
      is.map_state != IsViewable) {
    return "";
  }
  std::string text;
  for (const char* const* line = notice->msgs; *line != nullptr; line++) {
    text += (text.empty() ? "" : "/") + std::string(*line);
  }
  return text;
}

}  // namespace gromlit::testing
