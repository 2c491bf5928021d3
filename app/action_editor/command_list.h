// The command list of the action editor: adding, changing, moving and showing the commands of its
// working copy (`act`).
#pragma once

#include <X11/Xlib.h>

#include "app/action_editor/action_editor_record.h"

namespace gromlit {

// Line of the command list for a command, such as "HotKey: Control-a"; heap, the caller's.
char* LineOfCommand(const GromlitCmd& command);

// Makes the list show the commands of the working copy as they are, none of them selected.
void ListCommands();

// Adds a command at the end and selects its line; nothing when there are kMaxCommands. Values as in
// ActionEditorUpdateCommand.
void ActionEditorAddCommand(int type, const char* text, int keycode, int keystate, int checkbox);

// Fills command n of the working copy and its line: type and text, which is copied; for a HotKey
// the key instead of the text; for Text and Internet the state of the check box. Everything else in
// the record stays as it was. Nothing when there is no command n.
void ActionEditorUpdateCommand(int n, int ntype, const char* cmdstr, int keycode, int keystate,
                               int checkbox);

// Selects line n, -1 for none, and enables the buttons that go with it. Add stays enabled while
// there is room.
void SetActionCommandSelected(XTextList* list, int n);

// Shows the selected command in the tabs.
void actCommandSelect(ActionEditor* editor);

// Gives up the selection, if there is one.
void tabDeselectCommand();

// The buttons; their argument is not used. Add with kMaxCommands there adds nothing and says so;
// Update and Delete need a selected line. A text that the field shows cut is not changed by Update
// as long as the user left the field alone.
void tabcmdAdd(void* button);
void tabcmdUpdate(void* button);
void tabcmdDelete(void* button);
void actClickMoveUp(void* button);
void actClickMoveDown(void* button);

// Press handler of Add: with kMaxCommands there the button is disabled, and a press on it says why.
void AddButtonDown(XButton* button, XEvent* event);

}  // namespace gromlit
