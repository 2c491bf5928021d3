#include "app/action_editor/action_editor.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>

#include "actions/launch.h"
#include "app/action_editor/action_tabs.h"
#include "app/action_editor/command_list.h"
#include "app/plugins/plugin_actions.h"
#include "app/plugins/plugin_view.h"
#include "app/symbols/symbol_dialog.h"
#include "app/windows/dialogs.h"
#include "app/windows/top_level.h"
#include "core/action_copy.h"
#include "core/plugin_files.h"
#include "core/retired.h"
#include "core/strings.h"
#include "display/display.h"
#include "display/modes.h"
#include "recognition/find_action.h"
#include "recognition/signature_match.h"
#include "toolkit/bevel.h"
#include "toolkit/child_window.h"
#include "toolkit/manners.h"
#include "toolkit/text.h"

namespace gromlit {

namespace {

constexpr int kWidth = 560;
constexpr int kHeight = 454;
constexpr int kMargin = 16;
constexpr int kTop = 100;        // of tab bar, name field and symbol
constexpr int kTabHeight = 180;  // of the tab bar with its panel
constexpr int kNameWidth = 128;
constexpr int kListHeight = 84;
constexpr int kMoveWidth = 84;
constexpr int kNameGap = 6;      // before and behind the plug-in's name
constexpr int kButtonRise = 40;  // from the bottom edge to the top of the buttons
constexpr const char* kTitle = "Gromlit: Action Editor";
constexpr const char* kLogoTitle = "A c t i o n    E d i t o r";
constexpr const char* kHeading = "Edit PlugIn Action:";
constexpr const char* kHelpFile = "help/action_editor.html";

constexpr const char* ActionEditorMsgs[] = {"Click on the symbol",
                                            "to change the action symbol.",
                                            "",
                                            "Click on the tabs to add",
                                            "a command of that type.",
                                            "Fill in the values,",
                                            "and click on Add to add it.",
                                            "",
                                            "To edit an existing command,",
                                            "click on it in the",
                                            "list of commands.",
                                            nullptr};

// Where the parts that depend on the widths of the tab bar and the name field begin, pixels.
int NameX(const ActionEditor* editor) {
  return kMargin + editor->tbar->width + 12;
}
int SymbolX(const ActionEditor* editor) {
  return editor->tbar->width + editor->txt->width + 32 + kMargin;
}
int ListY(const ActionEditor* editor) {
  return editor->tbar->height + 124;
}

// --- The plug-in ---------------------------------------------------------------------------------

// Looks for an action before this one in the plug-in that leaves it no stroke.
void FindTakerOfStrokes() {
  act->taken = 0;
  if (!IsListed(act->plugin) || user == nullptr) return;
  const GromlitPlugin* plugin = act->plugin;
  const auto* end = plugin->actions + plugin->nactions;
  const auto before = std::find(plugin->actions, end, act->edit) - plugin->actions;
  // A copy: the signature that is found belongs to the symbol as it is now.
  GromlitSymbol sym = act->action.sym;
  DisownFeatures(&sym);
  const int taker = FindTaker(plugin, static_cast<int>(before), &sym, MatchingOf(*user));
  ForgetSignature(&sym);
  if (taker < 0) return;
  act->taken = 1;
  CopyText(act->taker, FieldText(plugin->actions[taker]->name));
}

// The name of the plug-in that the action goes to, behind the heading, as far as there is room.
void DrawPluginName(ActionEditor* editor, const char* heading) {
  if (!IsListed(editor->plugin)) return;
  const int x = kMargin + TextWidth(txtFontinfo, heading) + kNameGap;
  const int room = editor->tbar->width + 32 - kNameGap - x;
  DrawText(editor->window, editor->gc, x, kTop - 4,
           FittingText(txtFontinfo, FieldText(editor->plugin->appname), room));
}

// Below the help lines, before OK.
void DrawNotice(ActionEditor* editor, int x, int baseline) {
  if (editor->taken == 0) return;
  const int room = kWidth - kMargin - x;
  const std::string name = "\"" + std::string(FieldText(editor->taker)) + "\"";
  for (const std::string& line : {std::string("This action will never run:"), name,
                                  std::string("before it takes all its strokes.")}) {
    DrawText(editor->window, editor->gc, x, baseline, FittingText(txtFontinfo, line, room));
    baseline += txtCharht;
  }
}

// --- The symbol -------------------------------------------------------------------------------

// Gives the working copy another shape.
void TakeSymbol(const GromlitSymbol* sym) {
  CopyGromlitSymbol(&act->action.sym, sym);
  // The last corner point is a whole one only with its y.
  act->action.sym.y[kMaxPoints] = sym->y[kMaxPoints];
  DisownFeatures(&act->action.sym);
  FindTakerOfStrokes();
}

// OK of the symbol dialog. Without a selected symbol the action keeps the one that it has.
void YesActSelectSymbol(XDialog* dlog) {
  if (const GromlitSymbol* sym = ChosenSymbol()) {
    TakeSymbol(sym);
    XClearArea(dpy, act->window, 0, 0, 0, 0, True);
  }
  DialogYes(dlog);
  DrawIconWindow(act->icon);
}

// Release on the symbol's tile.
int actSelectSymbol(void*) {
  return ShowSymbolSelect(labelSelectSymbol, YesActSelectSymbol) ? 1 : 0;
}

// --- Opening and closing ----------------------------------------------------------------------

// A symbol chosen later would go into whatever action is edited then.
void CloseChooser() {
  CloseSymbolSelect(YesActSelectSymbol);
}

void ShowAction(const char* name) {
  CloseChooser();
  FindTakerOfStrokes();
  // Open already it still names the plug-in of the action before.
  XClearArea(dpy, act->window, 0, 0, 0, 0, True);
  DrawIconWindow(act->icon);
  TextEditorUpdate(act->txt, name);
  ClearTabField(TabsOf(act->tbar));
  ListCommands();
}

void CloseActionEditor() {
  CloseChooser();
  HideTopLevel(act->window);
  editingPlugin = 0;
}

// --- OK, Cancel, Help -------------------------------------------------------------------------

bool HasAction(const GromlitPlugin* plugin, const GromlitAction* action) {
  const auto* end = plugin->actions + plugin->nactions;
  return action != nullptr && std::find(plugin->actions, end, action) != end;
}

// Writes the working copy into the edited action and saves the plug-in. False, with the action as
// it was and the user told, when it cannot be saved.
bool SaveEdited(const char* name) {
  const GromlitAction former = *act->edit;
  CopyAction(act->edit, &act->action);
  CopyText(act->edit->name, name);
  if (UnLoadPlugin(act->plugin, act->plugin->classname) == nullptr) {
    const int error = errno;
    ReleaseActionContents(act->edit);
    *act->edit = former;
    ShowSaveFailure("The action was not saved.", error);
    return false;
  }
  Retire(former.sym.signature);
  Retire(former.sym.shape);
  for (uint32_t i = 0; i < former.ncmds; i++) Retire(former.cmds[i]);
  return true;
}

void actClickSave(void*) {
  const char* name = TextEditorText(act->txt);
  if (StrLength(name) == 0) return;
  if (!IsListed(act->plugin)) {
    ShowFailure(act->plugin != nullptr
                    ? "The plug-in of this action was deleted.\nThe action was not saved."
                    : "This action belongs to no plug-in.\nIt was not saved.");
    return;
  }
  if (HasAction(act->plugin, act->edit)) {
    if (!SaveEdited(name)) return;
  } else {
    if (PluginNewAction(act->plugin, &act->action, name) == nullptr) return;
  }
  CloseActionEditor();
  if (pluginview != nullptr) pluginview->actionschanged();
}

void actClickCancel(void*) {
  CloseActionEditor();
}

void actClickHelp(void*) {
  LaunchGromlitFileURL(kHelpFile);
}

// --- Construction -----------------------------------------------------------------------------

void DrawActionEditor(ActionEditor* editor, XEvent* event) {
  // The rest of the window is drawn with the last of the exposed rectangles.
  if (event->xexpose.count > 0) return;
  XClearWindow(dpy, editor->window);
  const int tabwidth = editor->tbar->width;
  XSetForeground(dpy, editor->gc, black.pixel);
  DrawText(editor->window, editor->gc, kMargin, kTop - 4, kHeading);
  DrawPluginName(editor, kHeading);
  DrawText(editor->window, editor->gc, tabwidth + 32, kTop - 4, "Name: ");
  DrawText(editor->window, editor->gc, SymbolX(editor), kTop - 4, "Symbol: ");
  DrawText(editor->window, editor->gc, kMargin, ListY(editor) - 4, "Commands: ");
  int baseline = 2 * txtCharht + 148;
  for (const char* const* line = ActionEditorMsgs; *line != nullptr; line++) {
    DrawText(editor->window, editor->gc, tabwidth + 32, baseline, *line);
    baseline += txtCharht;
  }
  DrawNotice(editor, tabwidth + 32, baseline + txtCharht);
}

ActionEditor* MakeActionEditor() {
  auto* editor = new ActionEditor{};
  editor->width = kWidth;
  editor->height = kHeight;
  editor->window = MakeEditorWindow({.title = kTitle,
                                     .icontitle = kTitle,
                                     .name = "ActionEditor",
                                     .width = kWidth,
                                     .height = kHeight});
  editor->gc = MakeWindowGC(editor->window, txtFont);
  editor->logo =
      MakeLogo(editor->window, kMargin, kMargin, kWidth - 2 * kMargin, nullptr, kLogoTitle);
  editor->wobj = AllocTopLevelObj(editor->window, editor);
  On<Expose, DrawActionEditor>(editor);
  return editor;
}

void MakeActionEditorButtons(ActionEditor* editor) {
  const int y = editor->height - kButtonRise;
  const int tabwidth = editor->tbar->width;
  const Window window = editor->window;
  editor->bhelp = MakeButton(editor, window, "Help", actClickHelp, kMargin, y);
  editor->bmoveup =
      MakeButtonSized(editor, window, "Move Up", actClickMoveUp, tabwidth - 168, y, kMoveWidth);
  editor->bmovedown =
      MakeButtonSized(editor, window, "Move Down", actClickMoveDown, tabwidth - 68, y, kMoveWidth);
  editor->bmoveup->state = kButtonInactive;
  editor->bmovedown->state = kButtonInactive;
  editor->bsave = MakeButton(editor, window, labelOK, actClickSave, kWidth - 160, y);
  editor->bcancel = MakeButton(editor, window, labelCancel, actClickCancel, kWidth - 80, y);
}

void MakeNameAndSymbol(ActionEditor* editor) {
  editor->txt = MakeTextEditor(editor->window, NameX(editor), kTop, kNameWidth, kEditorHeight);
  editor->txt->owner = editor;
  editor->txt->limit = sizeof(GromlitAction::name) - 1;
  // End completes with plain manners, too.
  editor->txt->complete = [](TextEditor*) {
    if (ModernManners()) actClickSave(nullptr);
  };
  XMapWindow(dpy, editor->txt->window);
  editor->icon = MakeIconWindow(editor->window, SymbolX(editor), kTop, &editor->action.sym, editor);
  editor->icon->action = actSelectSymbol;
  XMapWindow(dpy, editor->icon->window);
}

void MakeCommandList(ActionEditor* editor) {
  const int tabwidth = editor->tbar->width;
  const int y = ListY(editor);
  editor->lst = MakeTextList(editor->window, kMargin, y, tabwidth - 23, kListHeight, txtFontinfo);
  editor->sbar = MakeScrollbar(editor->window, tabwidth + 1, y, kListHeight);
  editor->lst->sb = editor->sbar;
  editor->lst->selectarg = editor;
  editor->lst->select = [](void* arg, const char*) {
    actCommandSelect(static_cast<ActionEditor*>(arg));
  };
  editor->sbar->scrollarg = editor->lst;
  editor->sbar->scroll = [](void* arg, int offset) {
    ListScrollUp(static_cast<XTextList*>(arg), offset);
  };
  XMapWindow(dpy, editor->lst->window);
  XMapWindow(dpy, editor->sbar->window);
  SetListItems(editor->lst, editor->cmditems, 0);
}

}  // namespace

void CreateActionEditor() {
  act = MakeActionEditor();
  act->tbar = MakeActionTabBar(act->window, kMargin, kTop, 0, kTabHeight);
  XMapWindow(dpy, act->tbar->window);
  MakeActionEditorButtons(act);
  MakeNameAndSymbol(act);
  MakeCommandList(act);
}

void EditNewAction(GromlitPlugin* plugin) {
  if (act == nullptr) return;
  act->plugin = plugin;
  act->edit = nullptr;
  ReleaseActionContents(&act->action);
  act->action = GromlitAction{};
  if (allSymbols != nullptr && allSymbols->sym != nullptr) TakeSymbol(allSymbols->sym);
  ShowAction(labelNewName);
  act->tbar->selected = kHotKey;
  DrawTabBar(act->tbar, nullptr);
  ShowActionEditor();
}

void EditAction(GromlitPlugin* plugin, GromlitAction* action) {
  if (act == nullptr) return;
  act->plugin = plugin;
  act->edit = action;
  ReleaseActionContents(&act->action);
  CopyAction(&act->action, action);
  ShowAction(action->name);
  if (act->action.ncmds > 0) {
    SetActionCommandSelected(act->lst, 0);
    actCommandSelect(act);
  }
  ShowActionEditor();
}

void ShowActionEditor() {
  if (act == nullptr) return;
  editingPlugin = 1;
  ShowTopLevel(act->window);
}

}  // namespace gromlit
