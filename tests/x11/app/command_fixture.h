// Fixture for the tests of the menu bar's commands and of the dialogs: the main window with all
// dialogs and editors that start-up makes, a browser that writes down what it is asked to open, and
// a user who works with menus and dialogs.
#pragma once

#include "tests/x11/app/main_window_fixture.h"

#include <X11/Xutil.h>

#include <algorithm>
#include <fstream>
#include <string>
#include <vector>

#include "app/main_window/main_menu.h"
#include "app/plugins/new_plugin.h"
#include "app/preferences/user_options_window.h"
#include "app/symbols/symbol_commands.h"
#include "app/symbols/symbol_dialog.h"
#include "app/symbols/symbol_editor.h"
#include "app/windows/dialogs.h"
#include "core/offer_memory.h"
#include "core/option_files.h"
#include "toolkit/menu_bar.h"

namespace gromlit::testing {

class CommandFixture : public MainWindowFixture {
 protected:
  void SetUp() override {
    // Of the test before, on a display that is gone.
    about = confirm = editname = notice = symselect = nullptr;
    sed = nullptr;
    opt = nullptr;
    MainWindowFixture::SetUp();
    if (HasFatalFailure()) return;
    Retire(RememberFindNewList);  // of the test before
    RememberFindNewList = nullptr;
    user = &options;
    options = {};
    MakeBrowser();
    MakeConfirmDialog();
    MakeEditNameDialog(SaveNewPluginName);
    app->dlog = MakeDownloadDialog();
    app->newdlog = MakeNewPluginDialog();
    CreateSymbolEditor();
    MakeSymbolSelect(YesEditSymbol);
    CreateUserOptions();
    UpdateUserOptions(user);
    Pump();
  }

  // A browser command that appends its argument to a file.
  void MakeBrowser() {
    const std::string script = *install / "browser";
    WriteText(script, "#!/bin/sh\nprintf '%s\\n' \"$1\" >>'" + *install / "opened" + "'\n");
    ASSERT_EQ(chmod(script.c_str(), 0755), 0);
    CopyText(options.urlcmd, script + " %s");
  }
  // Whether the browser was asked to open exactly this, and nothing else.
  bool Opened(const std::string& url) {
    return WaitFor([&] {
      const std::string file = *install / "opened";
      return Exists(file) && ReadText(file) == url + "\n";
    });
  }

  // The user opens title `t` of the menu bar, keeping the button down.
  void OpenTitle(int t) {
    MoveInApp(app->mbar->itemx[t] + 4, app->mbar->height / 2);
    player->Press(1);
    Pump();
  }
  // The user chooses item `i` of the title's menu.
  void Choose(int t, int i) {
    OpenTitle(t);
    const XMenuBar* bar = app->mbar;
    MoveInApp(bar->itemx[t] + 8, bar->height + 4 + i * bar->itemheight + bar->itemheight / 2);
    Pump();
    player->Release(1);
    Pump();
  }

  // Where the middle of a window is on the screen.
  static XPoint Middle(Window window) {
    XWindowAttributes is;
    XGetWindowAttributes(dpy, window, &is);
    int x = 0;
    int y = 0;
    Window child;
    XTranslateCoordinates(dpy, window, root, is.width / 2, is.height / 2, &x, &y, &child);
    return {static_cast<short>(x), static_cast<short>(y)};
  }
  void PressOn(Window window) {
    const XPoint at = Middle(window);
    player->MoveTo(at.x, at.y);
    player->Press(1);
    Pump();
  }
  void ClickOn(Window window) {
    PressOn(window);
    player->Release(1);
    Pump();
  }

  // The user empties the field of the rename dialog and types another name.
  void TypeName(const std::string& name) {
    auto* txt = static_cast<TextEditor*>(editname->child);
    const XPoint at = Middle(txt->window);
    player->MoveTo(at.x, at.y);
    Pump();
    while (*TextEditorText(txt) != '\0') {
      player->Type(XK_BackSpace);
      Pump();
    }
    for (const char letter : name) {
      const bool capital = letter >= 'A' && letter <= 'Z';
      if (capital) player->KeyDown(XK_Shift_L);
      player->Type(static_cast<KeySym>(letter));
      if (capital) player->KeyUp(XK_Shift_L);
      Pump();
    }
  }

  static std::vector<std::string> Lines(const XDialog* dlog) {
    std::vector<std::string> lines;
    for (const char* const* line = dlog->msgs; *line != nullptr; line++) lines.emplace_back(*line);
    return lines;
  }

  // The plug-ins on the menu of the main window's pulldown button.
  static std::vector<std::string> Menu() {
    std::vector<std::string> labels;
    const XMenu* menu = app->txt->menu;
    for (int i = 0; menu != nullptr && i < menu->nitems; i++) {
      labels.emplace_back(menu->items[i]->label);
    }
    return labels;
  }

  // A mapped window of another client, with a class hint unless `classpart` is empty.
  Window Client(int x, int y, int w, int h, const std::string& classpart = "",
                const std::string& name = "") {
    Display* display = player->display();
    XSetWindowAttributes attributes{};
    attributes.override_redirect = True;
    attributes.background_pixel = 0x336699;
    attributes.event_mask = ButtonPressMask;
    const Window window =
        XCreateWindow(display, player->root(), x, y, static_cast<unsigned>(w),
                      static_cast<unsigned>(h), 0, CopyFromParent, InputOutput, nullptr,
                      CWOverrideRedirect | CWBackPixel | CWEventMask, &attributes);
    if (!classpart.empty()) testing::SetClass(display, window, classpart, name);
    XMapRaised(display, window);
    XSync(display, False);
    return window;
  }

  // Saves a picture of the screen where a person wants to look at it: PICTURES names the directory.
  void Shoot(const std::string& name) {
    const char* directory = std::getenv("PICTURES");
    if (directory == nullptr) return;
    Pump();
    SaveScreen(player->display(), std::string(directory) + "/" + name + ".png");
  }

  GromlitUserOptions options{};
};

}  // namespace gromlit::testing
