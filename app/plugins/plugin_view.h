// Where plug-ins are shown: what is asked of the main window, which lies above this room.
#pragma once

namespace gromlit {

struct XButton;
struct PluginMenus;

struct PluginView {
  XButton* button;     // pulldown button that names the shown plug-in and opens the menu of all
  PluginMenus* menus;  // windows of that menu; null, then made and used by MakePluginsMenu

  // Shows the plug-in of this class, the default one when there is none, and draws it.
  void (*show)(const char* classname);

  // To be called right before a menu or dialog goes from the screen, after which a certain plug-in
  // is to be shown: what the pointer is on then does not change that.
  void (*keepshown)();

  // To be called when a plug-in has got more, fewer or other actions: draws the shown ones.
  void (*actionschanged)();
};

// Set by the main window when it is made; null before.
inline PluginView* pluginview = nullptr;

}  // namespace gromlit
