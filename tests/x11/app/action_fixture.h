// Fixture for tests of the action editor: the editor, the symbol dialog, three symbols and one
// plug-in, and the user at the screen. No window manager: the editor lies at (0, 0).
#pragma once

#include "tests/support/x_fixture.h"

#include <X11/Xutil.h>
#include <X11/keysym.h>

#include <cstdlib>
#include <string>
#include <vector>

#include "actions/keystrokes.h"
#include "app/action_editor/action_editor.h"
#include "app/action_editor/action_tabs.h"
#include "app/action_editor/command_list.h"
#include "app/symbols/symbol_commands.h"
#include "app/symbols/symbol_dialog.h"
#include "app/windows/dialogs.h"
#include "core/plugin_files.h"
#include "core/retired.h"
#include "core/strings.h"
#include "core/symbol_files.h"
#include "display/modes.h"

namespace gromlit::testing {

class ActionFixture : public XFixture {
 protected:
  static constexpr const char* kClass = "Test.test";

  void SetUp() override {
    XFixture::SetUp();
    if (HasFatalFailure()) return;
    BuildCharToKeycode();
    MakeAboutDialog();
    for (const char* name : {"Line", "Corner", "Square"}) MakeSymbolFile(name);
    LoadSymbols();
    LoadPlugins();
    plugin = CreatePlugin("Test application", kClass);
    MakeSymbolSelect(YesEditSymbol);
    SymLastClick = 0;  // of another server's clock
    editingPlugin = 0;
    CreateActionEditor();
    tab = TabsOf(act->tbar);
    Pump();
  }

  void TearDown() override {
    if (player != nullptr) {
      for (int button : {1, 2, 3}) player->Release(button);
      Pump();
      EXPECT_TRUE(player->CanGrabPointer()) << "the pointer is still held";
    }
    act = nullptr;
    XFixture::TearDown();
  }

  // A symbol file whose points and icon differ from those of the other names.
  static void MakeSymbolFile(const char* name) {
    GromlitSymbol sym{};
    CopyText(sym.name, name);
    const auto n = static_cast<uint8_t>(StrLength(name));  // 4, 6
    sym.npoints = n;
    for (int i = 1; i <= n; i++) {
      sym.x[i] = static_cast<uint16_t>(16 + 16 * i);
      sym.y[i] = static_cast<uint16_t>(name[0] == 'C' ? 264 - 8 * i : 16 + 8 * i * (i % 2));
    }
    for (int row = 0; row < kIconSize; row++) {
      sym.icon[row] = static_cast<uint32_t>(name[0]) << (row % 8);
    }
    UnLoadSymbol(&sym, name, GromlitSymbolFileExt);
  }

  // --- The user ---

  void MoveInto(Window window, int x, int y) {
    int rootx = 0;
    int rooty = 0;
    Window child;
    XTranslateCoordinates(dpy, window, root, x, y, &rootx, &rooty, &child);
    player->MoveTo(rootx, rooty);
    Pump();
  }
  void ClickIn(Window window, int x, int y, int button = 1) {
    MoveInto(window, x, y);
    player->Click(button);
    Pump();
  }
  void ClickOn(const XButton* button) {
    ClickIn(button->window, button->width / 2, button->height / 2);
  }
  void ClickTab(int i) {
    const XTabBar* bar = act->tbar;
    ClickIn(bar->window, bar->itemx[i] + bar->itemwidth[i] / 2, bar->itemheight / 2);
  }
  void ClickLine(int row) {
    ClickIn(act->lst->window, 20, 4 + row * act->lst->itemheight + act->lst->itemheight / 2);
  }
  void ClickCheckBox() { ClickIn(tab->checkbox->window, 5, 5); }
  void Type(TextEditor* txt, const std::string& text) {
    MoveInto(txt->window, 60, 12);
    for (const char c : text) {
      int keycode = 0;
      int keystate = 0;
      ASSERT_NE(CharToKeycode(c, &keycode, &keystate), 0) << c;
      if ((keystate & ShiftMask) != 0) player->KeyDown(XK_Shift_L);
      player->Type(static_cast<KeySym>(static_cast<unsigned char>(c)));
      if ((keystate & ShiftMask) != 0) player->KeyUp(XK_Shift_L);
    }
    Pump();
  }
  // Presses a key while others are held, in the field under the pointer.
  void Chord(const std::vector<KeySym>& held, KeySym key) {
    for (const KeySym sym : held) player->KeyDown(sym);
    player->Type(key);
    for (const KeySym sym : held) player->KeyUp(sym);
    Pump();
  }
  // Records a key stroke in the text field of the tabs.
  void Record(const std::vector<KeySym>& held, KeySym key) {
    MoveInto(tab->ed->window, 60, 12);
    Chord(held, key);
  }
  void ClearName() {
    MoveInto(act->txt->window, 60, 12);
    Chord({XK_Control_L}, XK_a);
    Chord({XK_Control_L}, XK_k);
  }
  // Adds a command as a user does.
  void Add(CommandType type, const std::string& text) {
    if (act->tbar->selected != type) ClickTab(type);
    tabDeselectCommand();
    ClearTabField(tab);
    Type(tab->ed, text);
    ClickOn(tab->badd);
  }
  // A close request as a window manager sends it.
  void CloseByWindowManager() {
    XEvent event{};
    event.xclient.type = ClientMessage;
    event.xclient.window = act->window;
    event.xclient.message_type = wm_protocols;
    event.xclient.format = 32;
    event.xclient.data.l[0] = static_cast<long>(wm_delete);
    XSendEvent(player->display(), act->window, False, NoEventMask, &event);
    XSync(player->display(), False);
    EXPECT_TRUE(PumpUntil([this] { return !Open(); }));
  }

  // --- What there is to see ---

  static bool Viewable(Window window) {
    XWindowAttributes attributes;
    return XGetWindowAttributes(dpy, window, &attributes) != 0 &&
           attributes.map_state == IsViewable;
  }
  static bool Mapped(Window window) {
    XWindowAttributes attributes;
    return XGetWindowAttributes(dpy, window, &attributes) != 0 &&
           attributes.map_state != IsUnmapped;
  }
  bool Open() { return Viewable(act->window); }
  static std::string Field(TextEditor* txt) { return TextEditorText(txt); }
  static std::vector<std::string> Lines() {
    return {act->cmditems, act->cmditems + act->lst->nitems};
  }
  // The corner points of a symbol, for comparisons.
  static std::vector<int> Points(const GromlitSymbol& sym) {
    std::vector<int> points;
    for (int i = 1; i <= sym.npoints; i++) points.insert(points.end(), {sym.x[i], sym.y[i]});
    return points;
  }
  // The states of Move Up, Move Down, Update, Delete and Add, such as "00001".
  std::string Buttons() const {
    std::string states;
    for (const XButton* button :
         {act->bmoveup, act->bmovedown, tab->bupdate, tab->bdelete, tab->badd}) {
      states += static_cast<char>('0' + button->state);
    }
    return states;
  }
  bool Told() const { return notice != nullptr && Viewable(notice->window); }
  // The lines of the dialog that tells of failures.
  static std::string Notice() {
    std::string text;
    for (const char* const* line = notice->msgs; *line != nullptr; line++) {
      text += std::string(*line) + "\n";
    }
    return text;
  }
  void CloseNotice() {
    ClickOn(notice->no);
    EXPECT_FALSE(Told());
  }
  // Whether a text stands at x with this baseline, in the text font, and nothing else in a field
  // `width` pixels wide that begins there.
  static bool ShowsText(Window window, const std::string& text, int x, int baseline, int width) {
    const auto w = static_cast<unsigned>(width);
    const auto h = static_cast<unsigned>(txtCharht);
    const Pixmap paper =
        XCreatePixmap(dpy, root, w, h, static_cast<unsigned>(DefaultDepth(dpy, screen)));
    XGCValues values;
    values.foreground = lgrey.pixel;
    values.font = txtFont;
    const GC gc = XCreateGC(dpy, paper, GCForeground | GCFont, &values);
    XFillRectangle(dpy, paper, gc, 0, 0, w, h);
    XSetForeground(dpy, gc, black.pixel);
    XDrawString(dpy, paper, gc, 0, txtFontinfo->ascent, text.c_str(),
                static_cast<int>(text.size()));
    XImage* wanted = XGetImage(dpy, paper, 0, 0, w, h, AllPlanes, ZPixmap);
    XImage* shown =
        XGetImage(dpy, window, x, baseline - txtFontinfo->ascent, w, h, AllPlanes, ZPixmap);
    bool same = wanted != nullptr && shown != nullptr;
    for (int row = 0; same && row < txtCharht; row++) {
      for (int column = 0; same && column < width; column++) {
        same = XGetPixel(wanted, column, row) == XGetPixel(shown, column, row);
      }
    }
    if (wanted != nullptr) XDestroyImage(wanted);
    if (shown != nullptr) XDestroyImage(shown);
    XFreePixmap(dpy, paper);
    XFreeGC(dpy, gc);
    return same;
  }
  // A picture of the screen for a person, when a directory for them is given.
  void Picture(const std::string& name) {
    Pump();
    if (const char* directory = std::getenv("GROMLIT_SCREENSHOTS")) {
      SaveScreen(player->display(), std::string(directory) + "/" + name + ".png");
    }
  }

  // --- What is stored ---

  std::string PluginFile() const {
    return *install / (std::string(pluginDirectory) + "/" + kClass + GromlitPluginFileExt);
  }
  // The plug-in as a new start of the program would read it.
  static GromlitPlugin* Stored() {
    auto* stored = new GromlitPlugin{};
    Retire(stored);
    const std::string name = std::string(kClass) + GromlitPluginFileExt;
    EXPECT_NE(ReadPluginActions(name.c_str(), stored), nullptr);
    return stored;
  }
  // An action in the plug-in's list, not in its file.
  GromlitAction* Have(const char* name, const std::vector<GromlitCmd>& commands) {
    auto* action = new GromlitAction{};
    CopyText(action->name, name);
    CopyGromlitSymbol(&action->sym, allSymbols->sym);
    for (const GromlitCmd& command : commands) {
      action->cmds[action->ncmds++] = new GromlitCmd(command);
    }
    plugin->actions[plugin->nactions++] = action;
    return action;
  }
  static GromlitCmd Command(CommandType type, const char* text, int checked = 0) {
    GromlitCmd command{};
    command.type = type;
    command.text = StrDup(text);
    command.ntext = static_cast<uint32_t>(StrLength(text));
    command.checked = static_cast<uint8_t>(checked);
    return command;
  }

  GromlitPlugin* plugin = nullptr;
  ActionTab* tab = nullptr;
};

}  // namespace gromlit::testing
