// The records as JSON documents and back.
//
// Fields carry the names of the records' fields. Absent keys are zero or empty, unknown and
// repeated keys are errors. A command of type "HotKey", so named, with a text and without "keys"
// gets the key of its text, such as "Control-Shift-t", on the keyboard pc105 us.
#pragma once

#include <string>

#include "core/gromlit.h"
#include "tools/json_text.h"

namespace gromlit {

// Whole documents, "kind" included.
Json SymbolDocument(const GromlitSymbol& sym);
Json PluginDocument(const GromlitPlugin& plugin);
Json OptionsDocument(const GromlitUserOptions& options);

// What a document's "kind" says: "symbol", "plugin" or "options". Throws JsonError when it says
// nothing of these.
std::string KindOf(const Json& document);

// Fill a zeroed record from a document, whose "kind" has been looked at. All throw JsonError; a
// record that was being filled then is incomplete. The actions, commands and texts of a plug-in are
// new heap records, owned by it.
void ReadSymbolDocument(const Json& document, GromlitSymbol* sym);
void ReadPluginDocument(const Json& document, GromlitPlugin* plugin);
void ReadOptionsDocument(const Json& document, GromlitUserOptions* options);

}  // namespace gromlit
