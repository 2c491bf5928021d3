// What the Action menu and the main window's popup do with the actions of the shown plug-in.
//
// All commands act on `app`, on the plug-in that it shows and on the action selected there; without
// one of these they do nothing. They have the form of menu actions; the arguments are not looked
// at.
#pragma once

#include "core/gromlit.h"

namespace gromlit {

struct XMenu;

// Copies the selected action to the clipboard; Cut deletes it then.
void popCutAction(XMenu* menu, void* arg);
void popCopyAction(XMenu* menu, void* arg);

// Adds the clipboard's action, if it has one, at the end of the plug-in, and saves the plug-in.
void popPasteAction(XMenu* menu, void* arg);

// Deletes the selected action and saves the plug-in. When that fails, the action stays and the user
// is told.
void popDeleteAction(XMenu* menu, void* arg);

// Opens the action editor: on the selected action; on a new action; as it is.
void popEditAction(XMenu* menu, void* arg);
void popNewAction(XMenu* menu, void* arg);
void popExportAction(XMenu* menu, void* arg);

// Copies an action into a record, commands and their texts included; what dst held is overwritten,
// not released. The copied symbol has no signature (INV-SYMBOL-1).
void CopyAction(GromlitAction* dst, const GromlitAction* src);

// Releases the commands of an action, their texts, and the signature of its symbol; ncmds is 0
// afterwards. REQUIRES: nobody else points to them.
void ReleaseActionContents(GromlitAction* action);

// Adds a copy of an action, under this name, at the end of a plug-in and saves the plug-in. Nothing
// is added, and null returned, when the name is empty, the plug-in null or full (kMaxActions), or
// the save fails; the last two tell the user. Returns the new action.
GromlitAction* PluginNewAction(GromlitPlugin* plugin, const GromlitAction* action,
                               const char* name);

}  // namespace gromlit
