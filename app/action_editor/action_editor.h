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
//
// INV-ACTION-1: cmditems[i] shows action.cmds[i], ncmditems == action.ncmds <= kMaxCommands, and
//   the list has as many lines.
// INV-ACTION-2: the working copy shares nothing with the plug-in: its commands, their texts and its
//   signature are its own.
// INV-ACTION-3: OK writes only into a plug-in that is in allPlugins. A plug-in that was deleted
//   while the editor was open is neither changed nor written again, and an action that was deleted
//   meanwhile is not followed: the work becomes a new action.
#pragma once

#include <X11/Xlib.h>

#include "core/gromlit.h"
#include "toolkit/button.h"
#include "toolkit/icon_window.h"
#include "toolkit/logo.h"
#include "toolkit/scrollbar.h"
#include "toolkit/tab_bar.h"
#include "toolkit/text_editor.h"
#include "toolkit/text_list.h"
#include "toolkit/window_object.h"

namespace gromlit {

// Name of a new action.
inline constexpr const char* labelNewName = "New";

struct ActionEditor {
  WindowObj* wobj;
  Window window;
  GC gc;
  int width;  // pixels, as is height
  int height;
  GromlitAction action;   // the working copy
  GromlitAction* edit;    // the plug-in's action that is edited; null: a new one. Not followed
                          // before it was found in the plug-in again
  GromlitPlugin* plugin;  // whose action it is; null before the first opening. Not followed before
                          // it was found in allPlugins again
  XButton* bhelp;
  XButton* bcancel;
  XButton* bmoveup;
  XButton* bmovedown;
  XButton* bsave;
  XLogo* logo;
  TextEditor* txt;   // the action's name
  XScrollbar* sbar;  // of the command list
  XTabBar* tbar;     // its owner is the ActionTab (app/action_editor/action_tabs.h)
  XTextList* lst;    // the command list
  int ncmditems;
  char* cmditems[kMaxCommands];  // lines of the command list, heap, owned
  IconWindow* icon;              // of the working symbol
};

extern ActionEditor* act;  // null before CreateActionEditor

// Makes the editor, hidden; argc and argv become its WM_COMMAND. To be called once, at start-up.
void CreateActionEditor(int argc, char** argv);

// Open the editor on a new action of a plug-in, with the first symbol of the library and the name
// "New", or on one of its actions, with the first command selected. They do nothing before
// CreateActionEditor was called.
void EditNewAction(GromlitPlugin* plugin);
void EditAction(GromlitPlugin* plugin, GromlitAction* action);

// Shows the editor with what it held when it was closed. Does nothing before CreateActionEditor.
void ShowActionEditor();

}  // namespace gromlit
