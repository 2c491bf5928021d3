#include "app/action_editor/command_list.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <string>
#include <utility>

#include "actions/keystrokes.h"
#include "app/windows/dialogs.h"
#include "core/command_types.h"
#include "core/strings.h"

namespace gromlit {
namespace {

constexpr int kShownText = 20;  // bytes of a command's text in the list, with "..." and NUL

int Count() {
  return static_cast<int>(act->action.ncmds);
}

bool IsCommand(int n) {
  return 0 <= n && n < Count();
}

const char* TextOf(const GromlitCmd& command) {
  return command.text != nullptr ? command.text : "";
}

void SetText(GromlitCmd* command, const char* text) {
  // The new text may be the old one.
  char* copy = StrDup(text);
  std::free(command->text);
  command->text = copy;
  command->ntext = static_cast<uint32_t>(StrLength(copy));
}

void SetHotKey(GromlitCmd* command, int keycode, int keystate) {
  command->keycode[0] = static_cast<uint16_t>(keycode);
  command->keystate[0] = static_cast<uint16_t>(keystate);
  command->nkeys = 1;
  char text[kKeyStrokeText];
  SetText(command, KeyStrokeToString(text, keycode, keystate));
}

// Every letter goes into the first pair, so that the last one stays: a menu is opened by one key.
void SetMenuKeys(GromlitCmd* command) {
  command->nkeys = static_cast<uint8_t>(StrLength(command->text));
  for (const char* c = command->text; *c != '\0'; c++) {
    int keycode;
    int keystate;
    CharToKeycode(*c, &keycode, &keystate);
    command->keycode[0] = static_cast<uint16_t>(keycode);
    command->keystate[0] = static_cast<uint16_t>(keystate | Mod1Mask);
  }
}

void SetLine(int n) {
  std::free(act->cmditems[n]);
  act->cmditems[n] = LineOfCommand(*act->action.cmds[n]);
}

void ShowCount() {
  act->ncmditems = Count();
  SetListCount(act->lst, Count());
}

// Scrolls the list as little as it takes to have line n in it.
void ScrollToLine(int n) {
  const XTextList* list = act->lst;
  XScrollbar* sb = act->sbar;
  const int last = list->top + list->visible - 1;
  if (n < 0 || (list->top <= n && n <= last)) return;
  // The thumb moves in whole pixels, each worth several lines of a long list: rounded so that the
  // line comes into view.
  const double ratio = std::min(1.0, static_cast<double>(sb->height - 26) / std::max(sb->range, 1));
  const bool above = n < list->top;
  const double place = (above ? n : n - list->visible + 1) * list->itemheight * ratio;
  sb->pos = static_cast<int>(above ? std::floor(place) : std::ceil(place));
  UpdateScrollbar(sb);
}

// The text that the user sees in the field is the beginning of this command's.
bool ShownCut(const GromlitCmd& command, const char* field) {
  const char* text = TextOf(command);
  return StrLength(text) >= kEditorBuffer && StrLength(field) == kEditorBuffer - 1 &&
         std::strncmp(text, field, kEditorBuffer - 1) == 0;
}

// Exchanges the selected command with the one `by` lines below it.
void MoveSelected(int by) {
  const int from = act->lst->selected;
  const int to = from + by;
  if (!IsCommand(from) || !IsCommand(to)) return;
  std::swap(act->cmditems[from], act->cmditems[to]);
  std::swap(act->action.cmds[from], act->action.cmds[to]);
  SetActionCommandSelected(act->lst, to);
  ShowCount();
  ScrollToLine(to);
}

void ShowFull() {
  const std::string text = "An action holds " + std::to_string(kMaxCommands) +
                           " commands.\nThis one is full: nothing was added.";
  ShowFailure(text.c_str());
}

}  // namespace

char* LineOfCommand(const GromlitCmd& command) {
  char keys[kKeyStrokeText];
  char* cut = nullptr;
  const CommandTypeInfo* type = CommandTypeOf(command.type);
  std::string line = type != nullptr ? type->prefix : "Unknown: ";
  if (command.type == kHotKey) {
    line += KeyStrokeToString(keys, command.keycode[0], command.keystate[0]);
  } else {
    cut = MaxStrCopy(TextOf(command), kShownText);
    line += cut;
  }
  std::free(cut);
  return StrDup(line.c_str());
}

void ListCommands() {
  act->action.ncmds = std::min<uint32_t>(act->action.ncmds, kMaxCommands);
  act->lst->selected = -1;
  SetActionCommandSelected(act->lst, -1);
  for (int n = 0; n < Count(); n++) SetLine(n);
  for (int n = Count(); n < act->ncmditems; n++) {
    std::free(act->cmditems[n]);
    act->cmditems[n] = nullptr;
  }
  act->sbar->pos = 0;
  ShowCount();
}

void ActionEditorAddCommand(int type, const char* text, int keycode, int keystate, int checkbox) {
  const int n = Count();
  if (n >= kMaxCommands) return;
  act->action.cmds[n] = new GromlitCmd{};
  act->action.ncmds++;
  SetActionCommandSelected(act->lst, n);
  ActionEditorUpdateCommand(n, type, text, keycode, keystate, checkbox);
  ScrollToLine(n);
}

void ActionEditorUpdateCommand(int n, int ntype, const char* cmdstr, int keycode, int keystate,
                               int checkbox) {
  if (!IsCommand(n)) return;
  GromlitCmd* command = act->action.cmds[n];
  command->type = static_cast<uint8_t>(ntype);
  if (ntype == kHotKey) {
    SetHotKey(command, keycode, keystate);
  } else {
    SetText(command, cmdstr != nullptr ? cmdstr : "");
  }
  if (ntype == kMenu) SetMenuKeys(command);
  if (HasCheckBox(ntype)) command->checked = static_cast<uint8_t>(checkbox);
  SetLine(n);
  ShowCount();
}

void SetActionCommandSelected(XTextList* list, int n) {
  if (list->selected != n) {
    list->selected = n;
    DrawTextList(list);
  }
  const ActionTab* tab = TabsOf(act->tbar);
  for (XButton* button : {act->bmoveup, act->bmovedown, tab->bupdate, tab->bdelete}) {
    button->state = n != -1 ? kButtonActive : kButtonInactive;
    DrawButton(button);
  }
  tab->badd->state = Count() < kMaxCommands ? kButtonActive : kButtonInactive;
  DrawButton(tab->badd);
}

void actCommandSelect(ActionEditor* editor) {
  const int n = editor->lst->selected;
  if (!IsCommand(n)) return;
  const GromlitCmd& command = *editor->action.cmds[n];
  ActionTab* tab = TabsOf(editor->tbar);
  SetActionCommandSelected(editor->lst, n);
  // A command of a type that has no tab keeps the tab that is there.
  if (CommandTypeOf(command.type) != nullptr) editor->tbar->selected = command.type;
  TextEditorInit(tab->ed, TextOf(command));
  if (command.type == kHotKey) {
    tab->ed->keycode = command.keycode[0];
    tab->ed->keystate = command.keystate[0];
  }
  DrawTextEditor(tab->ed);
  if (HasCheckBox(command.type)) {
    tab->checkbox->state = command.checked != 0 ? 1 : 0;
    DrawCheckBox(tab->checkbox);
  }
  DrawTabBar(editor->tbar, nullptr);
}

void tabDeselectCommand() {
  if (act == nullptr || act->lst == nullptr || act->lst->selected == -1) return;
  SetActionCommandSelected(act->lst, -1);
}

void tabcmdAdd(void*) {
  if (Count() >= kMaxCommands) {
    ShowFull();
    return;
  }
  ActionTab* tab = TabsOf(act->tbar);
  ActionEditorAddCommand(act->tbar->selected, TextEditorText(tab->ed), tab->ed->keycode,
                         tab->ed->keystate, tab->checkbox->state);
}

void tabcmdUpdate(void*) {
  const int n = act->lst->selected;
  if (!IsCommand(n)) return;
  ActionTab* tab = TabsOf(act->tbar);
  const char* text = TextEditorText(tab->ed);
  if (ShownCut(*act->action.cmds[n], text)) text = act->action.cmds[n]->text;
  ActionEditorUpdateCommand(n, act->tbar->selected, text, tab->ed->keycode, tab->ed->keystate,
                            tab->checkbox->state);
}

void tabcmdDelete(void*) {
  const int n = act->lst->selected;
  if (!IsCommand(n)) return;
  std::free(act->cmditems[n]);
  std::free(act->action.cmds[n]->text);
  delete act->action.cmds[n];
  const int last = Count() - 1;
  std::copy(act->cmditems + n + 1, act->cmditems + last + 1, act->cmditems + n);
  std::copy(act->action.cmds + n + 1, act->action.cmds + last + 1, act->action.cmds + n);
  act->cmditems[last] = nullptr;
  act->action.cmds[last] = nullptr;
  act->action.ncmds--;
  const int selected = n == last ? n - 1 : n;
  SetActionCommandSelected(act->lst, selected);
  ShowCount();
  ScrollToLine(selected);
  actCommandSelect(act);
}

void actClickMoveUp(void*) {
  MoveSelected(-1);
}

void actClickMoveDown(void*) {
  MoveSelected(1);
}

void AddButtonDown(XButton* button, XEvent* event) {
  if (Count() >= kMaxCommands) {
    ShowFull();
    return;
  }
  ButtonDown(button, event);
}

}  // namespace gromlit
