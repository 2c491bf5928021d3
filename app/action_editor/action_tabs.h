// The action editor's tab bar: one tab per command type, and below the titles the widgets in which
// a command's values are filled in. All tabs share one text field and one check box.
//
//   tab        text field's keys     check box            shown by
//   HotKey     ActionHotKeyPress     -                    tabHotKey
//   Menu       TextEditorKeyPress    -                    tabMenu
//   Text       TextEditorKeyPress    use as filename      tabText
//   Sound      TextEditorKeyPress    -                    tabSound
//   Run        TextEditorKeyPress    -                    tabRun
//   Internet   TextEditorKeyPress    forum                tabWebsite
//
// INV-TABS-1: the bar's selected tab is the CommandType that Add and Update give to a command.
#pragma once

#include <X11/Xlib.h>

#include "app/action_editor/action_editor_record.h"
#include "toolkit/menu.h"

namespace gromlit {

// Makes the bar with everything in it, not mapped; a width of 0 makes it as wide as its titles.
XTabBar* MakeActionTabBar(Window parent, int x, int y, int width, int height);

// Empties the text field and forgets the key recorded in it.
void ClearTabField(ActionTab* tab);

// Draw help lines (ended by a null pointer) into the bar, below baseline y, pixels; 0: below the
// text field.
void DoTabMsgs(XTabBar* tbar, const char* const* msgs, int y);

// Show a tab. `arg` is the ActionTab; `clear` is kTabSelected when the user chose the tab, which
// deselects the list's command and empties the field, else kTabRedrawn. tabSystem is on no tab.
void tabHotKey(XTabBar* tbar, void* arg, int clear);
void tabMenu(XTabBar* tbar, void* arg, int clear);
void tabText(XTabBar* tbar, void* arg, int clear);
void tabSound(XTabBar* tbar, void* arg, int clear);
void tabRun(XTabBar* tbar, void* arg, int clear);
void tabWebsite(XTabBar* tbar, void* arg, int clear);
void tabSystem(XTabBar* tbar, void* arg, int clear);

// Key handler of the field on the HotKey tab: records the key stroke and shows its text. A modifier
// alone is recorded without being shown.
void ActionHotKeyPress(TextEditor* txt, XEvent* event);

// The menu of the system commands, and what its items do: show their label on the button.
XMenu* MakeSystemActionsMenu();
void cmdSystemCommand(XMenu* menu, void* arg);
void SystemCommandUpdate(XButton* button, const char* label);

// The check box; its state is read when a command is added or updated.
void actClickFilebox(void* box, int newstate);

}  // namespace gromlit
