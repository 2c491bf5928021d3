// The action editor: binds a symbol to a list of commands for one plug-in.
//
// It edits a working copy; nothing reaches the plug-in before OK. While it is open (editingPlugin),
// gestures pass through, so that the keys and clicks meant for the editor are not taken for
// strokes.
//
//   state    event                        next     function
//   hidden   new, edit                    open     EditNewAction, EditAction
//   hidden   shown again                  open     ShowActionEditor, the work as it was left
//   open     new, edit                    open     EditNewAction, EditAction; the work is given up
//   open     OK without a name            open     actClickSave, nothing to do
//   open     OK, the save fails           open     actClickSave, which shows the reason
//   open     OK                           hidden   actClickSave
//   open     Cancel                       hidden   actClickCancel; the work is given up
//   open     closed by window manager     hidden   WMClientMessage; editingPlugin stays set until
//                                                  OK or Cancel of the next opening
#pragma once

#include "app/action_editor/action_editor_record.h"
#include "core/gromlit.h"

namespace gromlit {

// Name of a new action.
inline constexpr const char* labelNewName = "New";

// Makes the editor, hidden. To be called once, at start-up.
void CreateActionEditor();

// Open the editor on a new action of a plug-in, with the first symbol of the library and the name
// "New", or on one of its actions, with the first command selected. They do nothing before
// CreateActionEditor was called.
void EditNewAction(GromlitPlugin* plugin);
void EditAction(GromlitPlugin* plugin, GromlitAction* action);

// Shows the editor with what it held when it was closed. Does nothing before CreateActionEditor.
void ShowActionEditor();

}  // namespace gromlit
