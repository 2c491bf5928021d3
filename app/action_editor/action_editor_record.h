// What the parts of the action editor share: its record and that of its tab bar.
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
#include "toolkit/check_box.h"
#include "toolkit/icon_window.h"
#include "toolkit/logo.h"
#include "toolkit/scrollbar.h"
#include "toolkit/tab_bar.h"
#include "toolkit/text_editor.h"
#include "toolkit/text_list.h"
#include "toolkit/window_object.h"

namespace gromlit {

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
  XTabBar* tbar;     // its owner is the ActionTab
  XTextList* lst;    // the command list
  int ncmditems;
  char* cmditems[kMaxCommands];             // lines of the command list, heap, owned
  IconWindow* icon;                         // of the working symbol
  char taker[sizeof(GromlitAction::name)];  // name of an earlier action that takes all strokes of
  int taken;                                // the working symbol, when taken is non-zero
};

inline ActionEditor* act = nullptr;  // null before CreateActionEditor

// Owner record of the tab bar.
struct ActionTab {
  TextEditor* ed;       // the text field; in keycode and keystate the recorded hot key
  XButton* sys;         // pulldown of system commands; no tab shows it
  XCheckBox* checkbox;  // of Text and Internet
  GC gc;                // not set
  XTabBar* tbar;
  XButton* bdelete;
  XButton* bupdate;
  XButton* badd;
};

// The owner record of the editor's bar.
inline ActionTab* TabsOf(XTabBar* tbar) {
  return static_cast<ActionTab*>(tbar->owner);
}

}  // namespace gromlit
