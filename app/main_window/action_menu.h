// What the Action menu and the main window's popup do with the actions of the shown plug-in.
//
// All commands act on `app`, on the plug-in that it shows and on the action selected there; without
// one of these they do nothing. They have the form of menu actions; the arguments are not looked
// at.
#pragma once

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

}  // namespace gromlit
