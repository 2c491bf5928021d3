// Fixture for the tests of the symbol editor and the symbol chooser: the windows as start-up makes
// them, in an installation directory that is also the working directory.
//
// Every test ends with the proof that another client can grab the pointer.
#pragma once

#include "tests/x11/toolkit/widget_fixture.h"

#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <initializer_list>
#include <string>
#include <utility>
#include <vector>

#include "app/symbols/symbol_commands.h"
#include "app/symbols/symbol_dialog.h"
#include "app/symbols/symbol_display.h"
#include "app/symbols/symbol_editor.h"
#include "app/windows/dialogs.h"
#include "core/option_files.h"
#include "core/retired.h"
#include "core/strings.h"
#include "core/symbol_files.h"
#include "recognition/symbol_icon.h"

namespace gromlit::testing {

class SymbolFixture : public WidgetFixture {
 protected:
  void SetUp() override {
    WidgetFixture::SetUp();
    if (HasFatalFailure()) return;
    former_ = std::filesystem::current_path();
    std::filesystem::current_path(install->path());
    GetUserOptions();
    SymLastClick = 0;
  }

  void TearDown() override {
    player->MoveTo(1, 1);
    Pump();
    EXPECT_TRUE(player->CanGrabPointer()) << "somebody still holds the pointer";
    if (!former_.empty()) std::filesystem::current_path(former_);
    Retire(user);
    WidgetFixture::TearDown();
  }

  // The windows, with the symbols that are in the directory by now.
  void MakeWindows() {
    MakeAboutDialog();
    MakeConfirmDialog();
    // Of the test before, when several run in one process.
    Retire(sed);
    Retire(symselect);
    sed = nullptr;
    symselect = nullptr;
    CreateSymbolEditor();
    MakeSymbolSelect(YesEditSymbol);
    Pump();
  }

  using Points = std::initializer_list<std::pair<int, int>>;

  static GromlitSymbol Symbol(const std::string& name, Points points) {
    GromlitSymbol sym{};
    CopyText(sym.name, name);
    for (const auto& [x, y] : points) {
      sym.npoints++;
      sym.x[sym.npoints] = static_cast<uint16_t>(x);
      sym.y[sym.npoints] = static_cast<uint16_t>(y);
    }
    VectorToBitmap(&sym);
    return sym;
  }

  // Puts a symbol file into the directory.
  static void Store(const std::string& name, Points points = {{16, 16}, {264, 264}}) {
    GromlitSymbol sym = Symbol(name, points);
    ASSERT_NE(UnLoadSymbol(&sym, name.c_str(), GromlitSymbolFileExt), nullptr);
  }

  // The library's symbol of this name; null when there is none.
  static GromlitSymbol* Find(const std::string& name) {
    for (const auto* node = allSymbols; node->sym != nullptr; node = node->next) {
      if (name == node->sym->name) return node->sym;
    }
    return nullptr;
  }

  static std::vector<std::string> Names() {
    std::vector<std::string> names;
    for (const auto* node = allSymbols; node->sym != nullptr; node = node->next) {
      names.emplace_back(node->sym->name);
    }
    return names;
  }

  bool Shown(Window window) {
    XWindowAttributes attributes;
    XGetWindowAttributes(dpy, window, &attributes);
    return attributes.map_state == IsViewable;
  }

  void MoveIn(Window window, int x, int y) {
    XSync(dpy, False);
    int rootx = 0;
    int rooty = 0;
    Window child;
    XTranslateCoordinates(dpy, window, root, x, y, &rootx, &rooty, &child);
    player->MoveTo(rootx, rooty);
    Pump();
  }

  void ClickIn(Window window, int x, int y, int button = 1) {
    MoveIn(window, x, y);
    player->Press(button);
    Pump();
    player->Release(button);
    Pump();
  }

  void ClickOn(XButton* button) { ClickIn(button->window, button->width / 2, button->height / 2); }

  // A click below a scrollbar's thumb. Its handler returns only when the button is up, so that the
  // release must not wait for it.
  void Page(XScrollbar* sb) {
    MoveIn(sb->window, 7, sb->height - 16);
    player->Click(1);
    Pump();
  }

  // Presses and releases a key, with Control or Shift when wanted.
  void TypeKey(KeySym key, KeySym with = NoSymbol) {
    if (with != NoSymbol) player->KeyDown(with);
    player->Type(key);
    if (with != NoSymbol) player->KeyUp(with);
    Pump();
  }
  void TypeText(const std::string& text) {
    for (const char c : text) TypeKey(static_cast<KeySym>(c));
  }

  // Keeps a picture of the screen when somebody asked for it, to be looked at.
  void Shoot(const std::string& name) {
    const char* directory = std::getenv("GROMLIT_TEST_PICTURES");
    if (directory == nullptr) return;
    Pump();
    SaveScreen(player->display(), std::string(directory) + "/" + name + ".png");
  }

 private:
  std::filesystem::path former_;
};

}  // namespace gromlit::testing
