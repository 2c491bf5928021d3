#include "app/action_editor/action_tabs.h"

#include <X11/keysym.h>

#include <iterator>
#include <memory>

#include "actions/keystrokes.h"
#include "app/action_editor/command_list.h"
#include "core/command_types.h"
#include "core/strings.h"
#include "display/display.h"
#include "display/scale.h"
#include "toolkit/bevel.h"
#include "toolkit/manners.h"
#include "toolkit/pulldown_button.h"
#include "toolkit/tab_order.h"
#include "toolkit/text.h"

namespace gromlit {
namespace {

constexpr int kMargin = 16;       // pixels from the bar's left edge to field, check box and help
constexpr int kFieldY = 40;       // of the text field and of what stands in its place
constexpr int kCheckBoxY = 72;    // below the field
constexpr int kCheckLabelX = 32;  // right of the check box
constexpr int kHelpEdge = 4;      // the help's area keeps off the bar's bevel
constexpr int kButtonStep = 72;   // from one button to the next
constexpr int kButtonRise = 32;   // from the bar's bottom edge to the top of the buttons

constexpr const char* kSystemLabel = "Select System Command";
constexpr const char* kSystemCommands[] = {"Close", "Minimize", "Maximize"};

constexpr const char* kHotKeyMsgs[] = {"Place the mouse in the text box",
                                       "and enter the keystroke to send.", nullptr};
constexpr const char* kMenuMsgs[] = {"Enter the letters corresponding to the",
                                     "active letters in the menu selection,",
                                     "for example, NN for New->Navigator", nullptr};
constexpr const char* kTextMsgs[] = {"Enter the text to insert or ",
                                     "check the box to specify a filename",
                                     "that contains the text.", nullptr};
constexpr const char* kSoundMsgs[] = {"Enter a sound file to play.", nullptr};
constexpr const char* kRunMsgs[] = {
    "Enter the command to execute.", "Or system:minimize, maximize, fullscreen,",
    "above, close, desktop-next, -previous,", "window-to-desktop-next, -previous (Help).", nullptr};
constexpr const char* kWebsiteMsgs[] = {"Enter the website, such as example.org",
                                        "or any URL.  Check Gromlit Forum for",
                                        "drawn-on application-specific forum.", nullptr};
constexpr const char* kSystemMsgs[] = {"Select which system command to perform.", nullptr};

// What a tab uses beside the text field.
struct TabPage {
  bool hotkeys;          // the field records key strokes
  const char* checkbox;  // label of the check box; null hides it
  const char* const* msgs;
  int helpline;  // text lines above the help; 0: the usual place
};

void ShowPage(XTabBar* tbar, ActionTab* tab, int clear, const TabPage& page) {
  XUnmapWindow(dpy, tab->sys->window);
  if (page.checkbox == nullptr) HideCheckBox(tab->checkbox);
  if (clear != kTabRedrawn) {
    tabDeselectCommand();
    ClearTabField(tab);
    if (page.checkbox != nullptr) tab->checkbox->state = 0;
  }
  tab->ed->recordskeys = page.hotkeys ? 1 : 0;
  if (page.hotkeys) {
    On<KeyPress, ActionHotKeyPress>(tab->ed);
  } else {
    On<KeyPress, TextEditorKeyPress>(tab->ed);
  }
  XMapWindow(dpy, tab->ed->window);
  DoTabMsgs(tbar, page.msgs, page.helpline > 0 ? page.helpline * txtCharht + kFieldY : 0);
  if (page.checkbox == nullptr) return;
  XMapWindow(dpy, tab->checkbox->window);
  DrawCheckBox(tab->checkbox);
  // After the help, which clears the ground.
  DrawText(tbar->window, txtgc, kCheckLabelX, tab->checkbox->y + txtCharht, page.checkbox);
  PlaceCaption(tab->checkbox, kCheckLabelX + TextWidth(txtFontinfo, page.checkbox),
               tab->checkbox->y - 2, tab->checkbox->y + txtCharht + 4);
}

// Keysyms of keys that only change what other keys mean.
bool IsModifier(KeySym key) {
  return (key >= XK_Shift_L && key <= XK_Hyper_R) || key == XK_Mode_switch || key == XK_Num_Lock;
}

}  // namespace

XTabBar* MakeActionTabBar(Window parent, int x, int y, int width, int height) {
  // What shows the tab of each type; the tabs stand in the order of the types.
  constexpr struct {
    CommandType type;
    TabAction show;
  } kTabs[] = {{kHotKey, tabHotKey}, {kMenu, tabMenu}, {kText, tabText},
               {kSound, tabSound},   {kRun, tabRun},   {kInternet, tabWebsite}};
  static_assert(std::size(kTabs) == kCommandTypeCount);

  auto* tab = new ActionTab{};
  const std::unique_ptr<XTabItem*[]> items(MakeTabItemArray(kCommandTypeCount));
  for (const auto& [type, show] : kTabs)
    items[type] = MakeTabItem(kCommandTypes[type].name, show, tab);
  XTabBar* tbar =
      MakeTabBar(parent, x, y, width, height, labelFontinfo, items.get(), kCommandTypeCount);
  tbar->owner = tab;
  tab->tbar = tbar;

  const int inner = tbar->width - 2 * kMargin;
  tab->ed = MakeTextEditor(tbar->window, kMargin, kFieldY, inner, kEditorHeight);
  tab->ed->owner = tab;
  tab->ed->recordskeys = 1;
  // What is typed goes into the list, which OK of the window saves.
  tab->ed->complete = [](TextEditor*) {
    if (!ModernManners()) return;
    if (act->lst->selected >= 0) {
      tabcmdUpdate(nullptr);
    } else {
      tabcmdAdd(nullptr);
    }
  };
  On<KeyPress, ActionHotKeyPress>(tab->ed);
  tab->checkbox = MakeCheckBox(tab, tbar->window, actClickFilebox, kMargin, kCheckBoxY);
  tab->checkbox->state = 0;
  XUnmapWindow(dpy, tab->checkbox->window);
  tab->sys = MakePulldownButton(tab, tbar->window, kSystemLabel, kMargin, kFieldY, inner,
                                MakeSystemActionsMenu());
  XUnmapWindow(dpy, tab->sys->window);

  const int buttony = tbar->height - kButtonRise;
  const int right = tbar->width;
  tab->bdelete =
      MakeButton(tab, tbar->window, "Delete", tabcmdDelete, right - kButtonStep, buttony);
  tab->bupdate =
      MakeButton(tab, tbar->window, "Update", tabcmdUpdate, right - 2 * kButtonStep, buttony);
  tab->badd = MakeButton(tab, tbar->window, "Add", tabcmdAdd, right - 3 * kButtonStep, buttony);
  tab->bdelete->state = kButtonInactive;
  tab->bupdate->state = kButtonInactive;
  On<ButtonPress, AddButtonDown>(tab->badd);
  return tbar;
}

void ClearTabField(ActionTab* tab) {
  // A key that stayed recorded behind an empty field would be added unseen.
  TextEditorInit(tab->ed, "");
  DrawTextEditor(tab->ed);
}

void DoTabMsgs(XTabBar* tbar, const char* const* msgs, int y) {
  int baseline = y != 0 ? y : 4 * txtCharht + kFieldY;
  XSetForeground(dpy, txtgc, black.pixel);
  ScaledClearArea(tbar->window, kHelpEdge, kFieldY, tbar->width - 8, tbar->height - 80);
  for (; *msgs != nullptr; msgs++, baseline += txtCharht) {
    DrawText(tbar->window, txtgc, kMargin, baseline, *msgs);
  }
}

void tabHotKey(XTabBar* tbar, void* arg, int clear) {
  ShowPage(tbar, static_cast<ActionTab*>(arg), clear,
           {.hotkeys = true, .checkbox = nullptr, .msgs = kHotKeyMsgs, .helpline = 0});
}

void tabMenu(XTabBar* tbar, void* arg, int clear) {
  ShowPage(tbar, static_cast<ActionTab*>(arg), clear,
           {.hotkeys = false, .checkbox = nullptr, .msgs = kMenuMsgs, .helpline = 0});
}

void tabText(XTabBar* tbar, void* arg, int clear) {
  ShowPage(tbar, static_cast<ActionTab*>(arg), clear,
           {.hotkeys = false, .checkbox = "Use As Filename", .msgs = kTextMsgs, .helpline = 5});
}

void tabSound(XTabBar* tbar, void* arg, int clear) {
  ShowPage(tbar, static_cast<ActionTab*>(arg), clear,
           {.hotkeys = false, .checkbox = nullptr, .msgs = kSoundMsgs, .helpline = 0});
}

void tabRun(XTabBar* tbar, void* arg, int clear) {
  ShowPage(tbar, static_cast<ActionTab*>(arg), clear,
           {.hotkeys = false, .checkbox = nullptr, .msgs = kRunMsgs, .helpline = 0});
}

void tabWebsite(XTabBar* tbar, void* arg, int clear) {
  ShowPage(
      tbar, static_cast<ActionTab*>(arg), clear,
      {.hotkeys = false, .checkbox = "Goto Gromlit Forum", .msgs = kWebsiteMsgs, .helpline = 5});
}

void tabSystem(XTabBar* tbar, void* arg, int) {
  auto* tab = static_cast<ActionTab*>(arg);
  XUnmapWindow(dpy, tab->ed->window);
  HideCheckBox(tab->checkbox);
  SystemCommandUpdate(tab->sys, kSystemLabel);
  tabDeselectCommand();
  XMapWindow(dpy, tab->sys->window);
  DoTabMsgs(tbar, kSystemMsgs, 0);
}

void ActionHotKeyPress(TextEditor* txt, XEvent* event) {
  static_assert(kKeyStrokeText <= kEditorBuffer, "the text of a key stroke must fit the field");
  char bytes[32];
  KeySym key = NoSymbol;
  LookupKey(&event->xkey, bytes, sizeof bytes, &key);
  // The way on for a hand that stays on the keyboard: Tab is recorded in an empty field alone.
  const WindowKey meaning = WindowKeyOf(key, event->xkey.state);
  if (ModernManners() && txt->len > 0 &&
      (meaning == WindowKey::kNext || meaning == WindowKey::kBack)) {
    FocusNext(txt->window, meaning == WindowKey::kBack);
    return;
  }
  txt->keycode = static_cast<int>(event->xkey.keycode);
  txt->keystate = static_cast<int>(event->xkey.state);
  if (IsModifier(key)) return;
  KeyStrokeToString(txt->buffer, txt->keycode, txt->keystate);
  txt->len = static_cast<int>(StrLength(txt->buffer));
  RedrawTextEditorLine(txt);
}

XMenu* MakeSystemActionsMenu() {
  constexpr size_t kItems = std::size(kSystemCommands);
  const std::unique_ptr<XMenuItem*[]> items(MakeMenuItemArray(static_cast<int>(kItems)));
  for (size_t i = 0; i < kItems; i++) {
    items[i] = MakeMenuItem(kSystemCommands[i], cmdSystemCommand,
                            const_cast<char*>(kSystemCommands[i]));  // only ever read
  }
  return MakeMenu(root, 0, 0, labelFontinfo, items.get(), static_cast<int>(kItems));
}

void cmdSystemCommand(XMenu* menu, void* arg) {
  if (menu->pulldown != nullptr) SystemCommandUpdate(menu->pulldown, static_cast<char*>(arg));
}

void SystemCommandUpdate(XButton* button, const char* label) {
  UpdatePulldownButton(button, label);
}

void actClickFilebox(void*, int) {}

}  // namespace gromlit
