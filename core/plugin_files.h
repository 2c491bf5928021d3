// Plug-in files: GromlitPath/plugins/CLASS.sla, the list of all plug-ins and the look-up by class.
#pragma once

#include <vector>

#include "core/gromlit.h"

namespace gromlit {

inline constexpr const char* pluginDirectory = "plugins";
inline constexpr const char* damagedDirectory = "damaged";
inline constexpr const char* GromlitPluginFileExt = ".sla";
inline constexpr const char* GromlitPluginFileHeaderString = "GromlitPlugin";
inline constexpr const char* defaultPluginClassname = "Default";

// Builds allPlugins from the plug-in directory (records only, no actions). Returns their number.
int LoadPlugins();

// New record filled by ReadPluginHeader; null, silently, when that fails.
GromlitPlugin* LoadPlugin(const char* fname);

// Reads header and plug-in record of GromlitPath/plugins/`fname` into pin. Returns pin or null.
GromlitPlugin* ReadPluginHeader(const char* fname, GromlitPlugin* pin);

// Reads the whole file into pin, actions and commands included. A truncated file prints one line
// on standard output, leaves nactions at the complete actions read and returns null.
GromlitPlugin* ReadPluginActions(const char* fname, GromlitPlugin* pin);

// Writes pin to GromlitPath/plugins/`fname`.sla (safe saving: core/files.h), each command's ntext
// set from its text first. A "/" in fname is stored as "_", and a file that belongs to another
// class is never overwritten: a free variation of the name is taken. A plug-in that was read
// damaged has its file copied to damaged/ before the first overwrite. Returns pin; or null after
// reporting "Save Plugin" with the system error, the old file left as it was.
GromlitPlugin* UnLoadPlugin(GromlitPlugin* pin, const char* fname);

// The same under the name that the editors use.
GromlitPlugin* PluginSave(GromlitPlugin* plugin, const char* name);

// The node of the plug-in of exactly this class, its actions loaded on first use; null when there
// is none. Classes longer than the record's field compare by what fits into it.
GromlitPluginList* FindPluginNode(const char* classname);

// The plug-in of that node, or null.
GromlitPlugin* FindPlugin(const char* classname);

// The plug-in of that class; when there is none, a new empty one, written at once and put at the
// head of allPlugins. Null only when memory runs out.
GromlitPlugin* CreatePlugin(const char* appname, const char* classname);

// Sets DefaultPlugin to the plug-in of class "Default", created when missing, and returns it.
GromlitPlugin* GetDefaultPlugin();

// File-and-list half of deleting a plug-in: deletes the file that the class `fname` gives and
// unlinks the first node of killpin's class. Returns 1; 0 after reporting "Delete Plugin" with the
// system error, the list as it was.
int DropPlugin(const GromlitPlugin* killpin, const char* fname);

// One menu of the chain that lists all plug-ins. Every page but the last begins with an item that
// leads to the next page, so it holds 19 plug-ins; the last holds up to 20.
struct PluginPage {
  bool more;  // begins with the item that leads to the next page
  std::vector<GromlitPlugin*> plugins;
};

// allPlugins split into the pages of the plug-ins menu, in list order; empty when there are none.
std::vector<PluginPage> PluginMenuPages();

// The memory behind the offer to make a plug-in for an unknown class: made once per class and run.
struct RememberFindNew {
  char* classname;  // heap
  int prompt;       // never used
  RememberFindNew* next;
};
extern RememberFindNew* RememberFindNewList;

// 1 when the class was already remembered in this run; else remembers it and returns 0.
int RememberClass(const char* classname);

}  // namespace gromlit
