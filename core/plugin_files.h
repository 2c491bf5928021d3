// Plug-in files: GromlitPath/plugins/, the list of all plug-ins and the look-up by class.
#pragma once

#include "core/gromlit.h"
#include "core/plugin_names.h"

namespace gromlit {

inline constexpr const char* damagedDirectory = "damaged";
inline constexpr const char* GromlitPluginFileHeaderString = "GromlitPlugin";
inline constexpr const char* defaultPluginClassname = "Default";

// Builds allPlugins from the plug-in directory (records only, no actions), in directory order and
// without a filter on the extension; what is no plug-in file is skipped silently. Of several files
// of one class one is listed (CountsBefore), the others are spare (SparePluginFiles). Returns
// the number of listed plug-ins; a missing directory gives an empty list.
int LoadPlugins();

// New record filled by ReadPluginHeader; null, silently, when that fails.
GromlitPlugin* LoadPlugin(const char* fname);

// Reads header and plug-in record of GromlitPath/plugins/`fname` into pin, which may be
// uninitialised: what it held is overwritten, not released. nactions is 0 and every action null
// until the actions are read. Returns pin; or null, pin untouched, when the file cannot be read,
// has a wrong header or is too short.
GromlitPlugin* ReadPluginHeader(const char* fname, GromlitPlugin* pin);

// Reads the whole file into pin, actions and commands included; like ReadPluginHeader it overwrites
// what pin held (the earlier actions stay allocated: an editor may show them). A truncated file,
// and one with more than kMaxActions actions or kMaxCommands commands, prints one line on standard
// output, leaves nactions at the complete actions read, sets damagedfile and returns null.
GromlitPlugin* ReadPluginActions(const char* fname, GromlitPlugin* pin);

// Writes pin to the file that it was read from or saved to before, else to
// GromlitPath/plugins/`fname`.sla (safe saving: core/files.h), each command's ntext set from its
// text first.
// - A "/" in fname is stored as "_", and a file that belongs to another class is never overwritten:
//   a free variation of the name (NAME_2.sla, ...) is taken, and kept from then on.
// - A plug-in that was read damaged has its file copied to damaged/ before the first overwrite; if
//   that copy fails, so does the save.
// - Of a plug-in in the list whose actions have not been read yet, they are read first; if the
//   system does not let them be read, the save fails.
// Returns pin; or null after reporting "Save Plugin" with the system error, which is left in errno,
// the old file left as it was. A write that ends early also prints on standard output which part it
// was.
GromlitPlugin* UnLoadPlugin(GromlitPlugin* pin, const char* fname);

// The same under the name that the editors use.
GromlitPlugin* PluginSave(GromlitPlugin* plugin, const char* name);

// The node of the plug-in of exactly this class, its actions loaded on first use; null when there
// is none. Classes longer than the record's field compare by what fits into it. A file whose
// actions cannot be read counts as loaded, too: it is read once.
GromlitPluginList* FindPluginNode(const char* classname);

// The plug-in of that node, or null.
GromlitPlugin* FindPlugin(const char* classname);

// `spare1` of a plug-in: bits. An unknown one does nothing and is kept.
enum PluginManners : uint8_t {
  kHandsOff = 1,  // over its application every press of the draw button goes to the application;
                  // of DefaultPlugin: over every application that has no plug-in
};
bool HandsOff(const GromlitPlugin* plugin);  // false for null

// Whether any plug-in in the list is hands off: while none is nobody needs to know where a press
// is.
bool AnyHandsOff();

// Whether gestures are off over applications of this class: by its plug-in, where it has one, else
// by DefaultPlugin. Reads no file.
bool IsHandsOffClass(const char* classname);

// Whether this very record is in allPlugins: a question about it or an editor may still be open
// when it is deleted. False for null.
bool IsListed(const GromlitPlugin* plugin);

// The plug-in of that class; when there is none, a new empty one, written at once and put at the
// head of allPlugins (also when writing it failed, which is reported as in UnLoadPlugin). Both
// names are cut to their fields. A file that has appeared under the new plug-in's name since the
// start is copied to damaged/ before it is overwritten. Null only when memory runs out. *saved (may
// be null) becomes false, with errno set, when a new plug-in could not be written; else true.
GromlitPlugin* CreatePlugin(const char* appname, const char* classname, bool* saved = nullptr);

// Sets DefaultPlugin to the plug-in of class "Default", created when missing, and returns it.
GromlitPlugin* GetDefaultPlugin();

// File-and-list half of deleting a plug-in: deletes the file that UnLoadPlugin would overwrite (its
// own, for one that has none that of `fname`; never one of another class) and unlinks the first
// node of killpin's class, if there is one. The record stays allocated. Returns 1; 0 after
// reporting "Delete Plugin" with the system error, which is left in errno, the list as it was.
int DropPlugin(const GromlitPlugin* killpin, const char* fname);

}  // namespace gromlit
