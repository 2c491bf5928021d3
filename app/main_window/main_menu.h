// The main window's menu bar and the commands behind it.
//
// All commands have the form of menu actions; their arguments are not looked at, they act on `app`.
// A command whose dialog or editor was not made does nothing.
#pragma once

#include "app/main_window/gromlit_app.h"
#include "toolkit/dialog.h"
#include "toolkit/menu_bar.h"

namespace gromlit {

inline constexpr const char* GromlitHelpFile =
    "help/index.html";  // below the installation directory
inline constexpr const char* labelExitGromlit = "Exit Gromlit";
inline constexpr const char* labelNewPlugin = "New Plugin";
inline constexpr const char* labelSelectSymboltoEdit = "Select Symbol to Edit";
inline constexpr const char* labelSelectSymboltoDelete = "Select Symbol to Delete";

// Makes the menu bar of five pulldowns with their menus, not mapped; `width` pixels wide at (x, y)
// of the parent. Does not store it in the main window's record.
XMenuBar* MakeGromlitMenuBar(GromlitApp* gromlit, Window parent, int x, int y, int width);

// --- Plug-In ----------------------------------------------------------------------------------

// Shows the dialog that leads to a new plug-in.
void mbPluginNew(XMenu* menu, void* arg);

// Asks for another name for the shown plug-in; nothing when none is shown.
void mbPluginEdit(XMenu* menu, void* arg);

// What the OK of that question (editname) does: gives the plug-in the name, cut to its field, and
// saves it. The class, and so the application that it serves, stays. When the save fails, the
// plug-in keeps its old name, the dialog stays open and the user is told. A plug-in that was
// deleted meanwhile is left alone, and the user is told.
void SaveNewPluginName(XDialog* dlog);

// Asks whether to delete the shown plug-in; nothing when none is shown.
void mbPluginDelete(XMenu* menu, void* arg);
void YesDeletePlugin(XDialog* dlog);

// Open the web service's pages in the browser.
void mbPluginDownload(XMenu* menu, void* arg);
void mbPluginUpload(XMenu* menu, void* arg);

// Gives back what the user would miss if the program just ended: pointer, keyboard, the keys that
// it holds down, and the keyboard to the window that had it. The server itself gives back what is
// grabbed, but not all of it, and only when it notices that the connection is gone.
void GiveBack();

// Asks whether to end the program. ConfirmExitGromlit ends it, with status 0: the one normal exit.
void mbPluginExit(XMenu* menu, void* arg);
[[noreturn]] void ConfirmExitGromlit(XDialog* dlog);

// --- Symbol -----------------------------------------------------------------------------------

// Opens the symbol editor on a new symbol.
void mbSymbolNew(XMenu* menu, void* arg);

// Let the user choose a symbol to edit, or to delete. popEditSymbol is the main window's popup item
// that does what mbSymbolEdit does.
void mbSymbolEdit(XMenu* menu, void* arg);
void popEditSymbol(XMenu* menu, void* arg);
void mbSymbolDelete(XMenu* menu, void* arg);

// --- Help -------------------------------------------------------------------------------------

// Opens the help pages in the browser.
void mbHelpIndex(XMenu* menu, void* arg);

// Shows what the program is.
void mbHelpAbout(XMenu* menu, void* arg);

}  // namespace gromlit
