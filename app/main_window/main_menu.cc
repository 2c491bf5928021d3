#include "app/main_window/main_menu.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdlib>
#include <memory>
#include <span>

#include "actions/launch.h"
#include "actions/real_input.h"
#include "app/main_window/action_menu.h"
#include "app/main_window/shown_plugin.h"
#include "app/plugins/plugin_menu.h"
#include "app/preferences/user_options_window.h"
#include "app/symbols/symbol_commands.h"
#include "app/symbols/symbol_dialog.h"
#include "app/symbols/symbol_editor.h"
#include "app/windows/dialogs.h"
#include "core/plugin_files.h"
#include "core/strings.h"
#include "display/display.h"
#include "display/draw_button.h"
#include "toolkit/focus.h"

namespace gromlit {
namespace {

struct Entry {
  const char* label;
  MenuAction action;
};

struct Title {
  const char* label;
  std::span<const Entry> entries;
};

constexpr Entry kPluginEntries[] = {
    {"New", mbPluginNew},           {"Edit", mbPluginEdit},     {"Delete", mbPluginDelete},
    {"Download", mbPluginDownload}, {"Upload", mbPluginUpload}, {"Exit", mbPluginExit},
};
constexpr Entry kActionEntries[] = {
    {"New", popNewAction},
    {"Edit", popEditAction},
    {"Delete", popDeleteAction},
    {"Export", popExportAction},
};
constexpr Entry kSymbolEntries[] = {
    {"New", mbSymbolNew},
    {"Edit", mbSymbolEdit},
    {"Delete", mbSymbolDelete},
};
constexpr Entry kOptionsEntries[] = {{"Preferences", mbPrefDraw}};
constexpr Entry kHelpEntries[] = {{"Index", mbHelpIndex}, {"About", mbHelpAbout}};

constexpr Title kTitles[] = {
    {"Plug-In", kPluginEntries},  {"Action", kActionEntries}, {"Symbol", kSymbolEntries},
    {"Options", kOptionsEntries}, {"Help", kHelpEntries},
};

XMenu* MakeTitleMenu(std::span<const Entry> entries, GromlitApp* gromlit) {
  const int nitems = static_cast<int>(entries.size());
  const std::unique_ptr<XMenuItem*[]> items(MakeMenuItemArray(nitems));
  for (size_t i = 0; i < entries.size(); i++) {
    items[i] = MakeMenuItem(entries[i].label, entries[i].action, gromlit);
  }
  return MakeMenu(root, 0, 0, labelFontinfo, items.get(), nitems);
}

void Ask(const char* title, const char* const* msgs, void* arg, void (*yesfn)(XDialog* dlog)) {
  if (confirm == nullptr) return;
  confirm->msgs = msgs;
  confirm->arg = arg;
  confirm->yesfn = yesfn;
  MousePopUpDialog(confirm, title);
}

}  // namespace

XMenuBar* MakeGromlitMenuBar(GromlitApp* gromlit, Window parent, int x, int y, int width) {
  const int ntitles = static_cast<int>(std::size(kTitles));
  const std::unique_ptr<XPulldown*[]> pulldowns(MakePulldownArray(ntitles));
  for (size_t i = 0; i < std::size(kTitles); i++) {
    pulldowns[i] = MakePulldown(kTitles[i].label, MakeTitleMenu(kTitles[i].entries, gromlit));
  }
  return MakeMenuBar(parent, x, y, width, labelFontinfo, pulldowns.get(), ntitles);
}

// --- Plug-In ----------------------------------------------------------------------------------

void mbPluginNew(XMenu*, void*) {
  if (app->newdlog != nullptr) MousePopUpDialog(app->newdlog, labelNewPlugin);
}

void mbPluginEdit(XMenu*, void*) {
  GromlitPlugin* plugin = app->plugin;
  if (plugin == nullptr || editname == nullptr) return;
  auto* txt = static_cast<TextEditor*>(editname->child);
  editname->arg = plugin;
  TextEditorInit(txt, plugin->appname);
  // A dialog that is shown already gets no Expose event for its field.
  DrawTextEditor(txt);
  MousePopUpDialog(editname, plugin->appname);
}

void SaveNewPluginName(XDialog* dlog) {
  auto* plugin = static_cast<GromlitPlugin*>(dlog->arg);
  if (!IsListed(plugin)) {
    DialogYes(dlog);
    ShowFailure("This plug-in was deleted.\nIts new name was not saved.");
    return;
  }
  const auto former = std::to_array(plugin->appname);
  CopyText(plugin->appname, TextEditorText(static_cast<TextEditor*>(dlog->child)));
  if (UnLoadPlugin(plugin, plugin->classname) == nullptr) {
    const int reason = errno;
    std::copy(former.begin(), former.end(), plugin->appname);
    ShowSaveFailure("The plug-in's new name was not saved.", reason);
    return;
  }
  DialogYes(dlog);
  UpdatePluginsMenu();
  UpdateGromlitApp(app, plugin->classname, nullptr);
  DrawGromlitApp(app);
}

void mbPluginDelete(XMenu*, void*) {
  if (app->plugin == nullptr) return;
  Ask(app->plugin->appname, ConfirmDeletePluginMsg, app->plugin, YesDeletePlugin);
}

void YesDeletePlugin(XDialog* dlog) {
  auto* plugin = static_cast<GromlitPlugin*>(dlog->arg);
  DialogYes(dlog);
  if (IsListed(plugin)) DeletePlugin(plugin, plugin->classname);
}

void mbPluginDownload(XMenu*, void*) {
  LaunchBrowserURL(GromlitDownloadURLprefix);
}

void mbPluginUpload(XMenu*, void*) {
  LaunchBrowserURL(GromlitUploadURLprefix);
}

void mbPluginExit(XMenu*, void*) {
  Ask(labelExitGromlit, ConfirmExitMsg, nullptr, ConfirmExitGromlit);
}

void GiveBack() {
  LeaveDrawButton();
  XUngrabPointer(dpy, CurrentTime);
  XUngrabKeyboard(dpy, CurrentTime);
  // The end of the connection destroys the field that may have the keyboard, and would leave the
  // keyboard with nobody.
  RestoreFocus();
  ReleaseEverything();
}

void ConfirmExitGromlit(XDialog*) {
  GiveBack();
  std::exit(0);
}

// --- Symbol -----------------------------------------------------------------------------------

void mbSymbolNew(XMenu*, void*) {
  if (sed != nullptr) SymInit(sed, nullptr);
}

void mbSymbolEdit(XMenu*, void*) {
  ShowSymbolSelect(labelSelectSymboltoEdit, YesEditSymbol);
}

void popEditSymbol(XMenu* menu, void* arg) {
  mbSymbolEdit(menu, arg);
}

void mbSymbolDelete(XMenu*, void*) {
  // Nothing is deleted that was not chosen for it.
  if (SymbolDisplay* chooser = SymbolChooser(); chooser != nullptr) {
    chooser->selected = -1;
    DrawSymbolDisplay(chooser);
  }
  ShowSymbolSelect(labelSelectSymboltoDelete, YesDeleteSymbol);
}

// --- Help -------------------------------------------------------------------------------------

void mbHelpIndex(XMenu*, void*) {
  LaunchGromlitFileURL(GromlitHelpFile);
}

void mbHelpAbout(XMenu*, void*) {
  if (about != nullptr) MousePopUpDialog(about, labelAboutGromlit);
}

}  // namespace gromlit
