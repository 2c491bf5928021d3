// Several data files in one document: what people exchange and keep under version control.
//
//   {"kind": "collection",
//    "symbols": [{"name": "L", "points": [...]}, ...],
//    "plugins": [{"appname": ..., "classname": ..., "actions": [...]}, ...],
//    "options": {"button": 3, ...}}
//
// Each item is a document of its kind (tools/record_json.h), without the "kind"; what is zero,
// empty or follows from the rest is left out. No two symbols have one name and no two plug-ins one
// class, and none of these is empty.
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "tools/data_file.h"

namespace gromlit {

// Most symbols and plug-ins of one document. A few bytes of it may stand for a record of thousands:
// without limits a small document would take a lot of memory.
inline constexpr size_t kMaxSymbolItems = 10'000;
inline constexpr size_t kMaxPluginItems = 1'000;

using DataFiles = std::vector<std::unique_ptr<DataFile>>;

struct Collection {
  DataFiles symbols;
  DataFiles plugins;
  std::unique_ptr<DataFile> options;  // null for none
};

// What tells a symbol or plug-in from the others of its kind, in the collection and in an
// installation directory: for a symbol the name of its file, for a plug-in the class text.
std::string KeyOf(const DataFile& file);

// Whether that key is one: neither the name nor the class is empty. Options need none.
bool HasKey(const DataFile& file);

// The document, the same text for the same collection: symbols in byte order of their names,
// plug-ins of their classes, actions as they are matched. Throws JsonError when it would have more
// items, values or bytes than can be read again.
std::string CollectionText(const Collection& collection);

// Reads such a document, or one of a single symbol, plug-in or options, into an empty collection.
// Throws JsonError for all that no document of ours has; the collection is then incomplete.
void ReadCollection(std::string_view text, Collection* collection);

}  // namespace gromlit
