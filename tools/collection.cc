#include "tools/collection.h"

#include <algorithm>
#include <initializer_list>
#include <nlohmann/json.hpp>
#include <set>

#include "core/command_types.h"
#include "core/plugin_names.h"
#include "core/strings.h"
#include "core/symbol_files.h"
#include "recognition/symbol_icon.h"
#include "tools/record_json.h"
#include "tools/text_input.h"

namespace gromlit {
namespace {

constexpr const char* kCollectionKind = "collection";

// --- Writing ------------------------------------------------------------------------------------

// Whether an absent key would be read as this value. A list of lists says how many there are.
bool IsNothing(const Json& value) {
  if (value.is_array()) {
    return std::all_of(value.begin(), value.end(),
                       [](const Json& item) { return !item.is_structured() && IsNothing(item); });
  }
  if (value.is_string()) return value.get_ref<const std::string&>().empty();
  return value.is_number() && value == 0;
}

// Except those that are kept.
void DropNothings(Json* object, std::initializer_list<std::string_view> kept = {}) {
  for (auto it = object->begin(); it != object->end();) {
    const bool keep = std::find(kept.begin(), kept.end(), it.key()) != kept.end();
    it = !keep && IsNothing(it.value()) ? object->erase(it) : std::next(it);
  }
}

// `from` is the record that the document was made of.
void ShortenSymbol(const GromlitSymbol& from, Json* symbol) {
  GromlitSymbol drawn = from;
  const auto as_drawn = [&] { return std::equal(drawn.icon, drawn.icon + kIconSize, from.icon); };
  VectorToBitmap(&drawn);
  if (as_drawn()) {
    symbol->erase("icon");
  } else {
    AddArrowHead(&drawn);
    if (as_drawn()) (*symbol)["icon"] = "arrow";
  }
  DropNothings(symbol);
}

// An absent number of keys is that of the keys in the list. The list itself stays where there is a
// text, even if it is empty: of the text alone a reader may make a key.
void ShortenCommand(Json* command) {
  if ((*command)["nkeys"] == (*command)["keys"].size()) command->erase("nkeys");
  if (IsNothing((*command)["text"])) {
    DropNothings(command, {"nkeys"});
  } else {
    const bool hotkey = (*command)["type"] == CommandTypeOf(kHotKey)->name;
    DropNothings(command, {"nkeys", hotkey ? "keys" : "nkeys"});
  }
}

void ShortenPlugin(const GromlitPlugin& from, Json* plugin) {
  for (int i = 0; i < from.nactions; i++) {
    Json& action = (*plugin)["actions"][static_cast<size_t>(i)];
    ShortenSymbol(from.actions[i]->sym, &action["symbol"]);
    for (Json& command : action["commands"]) ShortenCommand(&command);
    DropNothings(&action);
  }
  DropNothings(plugin);
}

Json ItemOf(const DataFile& file) {
  Json item;
  switch (file.kind) {
    case Kind::kSymbol:
      item = SymbolDocument(file.symbol);
      ShortenSymbol(file.symbol, &item);
      break;
    case Kind::kPlugin:
      item = PluginDocument(file.plugin);
      ShortenPlugin(file.plugin, &item);
      break;
    case Kind::kOptions:
      item = OptionsDocument(file.options);  // whole: people look for what they can change
      break;
  }
  item.erase("kind");
  return item;
}

size_t CountValues(const Json& value) {
  size_t count = 1;
  if (value.is_structured())
    for (const Json& item : value) count += CountValues(item);
  return count;
}

Json ItemsOf(const DataFiles& files) {
  std::vector<const DataFile*> sorted;
  for (const auto& file : files) sorted.push_back(file.get());
  std::sort(sorted.begin(), sorted.end(),
            [](const DataFile* one, const DataFile* other) { return KeyOf(*one) < KeyOf(*other); });
  Json items = Json::array();
  for (const DataFile* file : sorted) items.push_back(ItemOf(*file));
  return items;
}

// --- Reading ------------------------------------------------------------------------------------

void ReadRecord(const Json& document, Kind kind, DataFile* file) {
  file->kind = kind;
  switch (kind) {
    case Kind::kSymbol:
      ReadSymbolDocument(document, &file->symbol);
      break;
    case Kind::kPlugin:
      ReadPluginDocument(document, &file->plugin);
      break;
    case Kind::kOptions:
      ReadOptionsDocument(document, &file->options);
      break;
  }
  if (!HasKey(*file)) {
    throw JsonError(kind == Kind::kSymbol ? "name: a symbol without a name has no file"
                                          : "classname: a plug-in without a class has no file");
  }
  if (FileImage(*file).empty()) throw JsonError("the file would be larger than 64 MB");
}

constexpr const char* NameOf(Kind kind) {
  switch (kind) {
    case Kind::kSymbol:
      return "symbol";
    case Kind::kPlugin:
      return "plugin";
    default:
      return "options";
  }
}

// An item of a collection; `where` is its place in messages.
std::unique_ptr<DataFile> ReadItem(const Json& item, Kind kind, const std::string& where) {
  auto file = std::make_unique<DataFile>();
  try {
    if (item.is_object() && item.contains("kind") && item["kind"] != NameOf(kind))
      throw JsonError(std::string("kind: \"") + NameOf(kind) + "\" expected here");
    ReadRecord(item, kind, file.get());
  } catch (const JsonError& e) {
    throw JsonError(where + ": " + e.what());
  }
  return file;
}

void ReadItems(const Json& list, Kind kind, const std::string& key, DataFiles* files) {
  if (!list.is_array()) throw JsonError(key + ": a list is expected");
  const size_t limit = kind == Kind::kSymbol ? kMaxSymbolItems : kMaxPluginItems;
  if (list.size() > limit)
    throw JsonError(key + ": more than " + std::to_string(limit) + " in one document");
  std::set<std::string> known;
  for (size_t i = 0; i < list.size(); i++) {
    const std::string where = key + "[" + std::to_string(i) + "]";
    files->push_back(ReadItem(list[i], kind, where));
    if (!known.insert(KeyOf(*files->back())).second) {
      throw JsonError(where +
                      (kind == Kind::kSymbol ? ": an earlier symbol has this file name, "
                                             : ": an earlier plug-in has this class, ") +
                      BytesToText(KeyOf(*files->back())));
    }
  }
}

}  // namespace

std::string KeyOf(const DataFile& file) {
  switch (file.kind) {
    case Kind::kSymbol: {
      std::string name(FieldText(file.symbol.name));
      std::replace(name.begin(), name.end(), '/', '_');
      return name + GromlitSymbolFileExt;
    }
    case Kind::kPlugin:
      return std::string(FieldText(file.plugin.classname));
    default:
      return "";
  }
}

bool HasKey(const DataFile& file) {
  switch (file.kind) {
    case Kind::kSymbol:
      return !FieldText(file.symbol.name).empty();
    case Kind::kPlugin:
      return !FieldText(file.plugin.classname).empty();
    default:
      return true;
  }
}

std::string CollectionText(const Collection& collection) {
  Json document = {{"kind", kCollectionKind}};
  if (!collection.symbols.empty()) document["symbols"] = ItemsOf(collection.symbols);
  if (!collection.plugins.empty()) document["plugins"] = ItemsOf(collection.plugins);
  if (collection.options != nullptr) document["options"] = ItemOf(*collection.options);
  std::string text;
  if (collection.symbols.size() <= kMaxSymbolItems &&
      collection.plugins.size() <= kMaxPluginItems && CountValues(document) <= kMaxJsonValues)
    text = PrintJson(document);
  if (text.empty() || text.size() > kMaxDocument)
    throw JsonError("too much for one document, export it in parts");
  return text;
}

void ReadCollection(std::string_view text, Collection* collection) {
  const Json document = ParseJson(text);
  if (!document.is_object() || !document.contains("kind") || document["kind"] != kCollectionKind) {
    std::string kind;
    try {
      kind = KindOf(document);
    } catch (const JsonError& e) {
      throw JsonError(std::string(e.what()) + "; \"collection\" would do, too");
    }
    auto file = std::make_unique<DataFile>();
    if (kind == NameOf(Kind::kSymbol)) {
      ReadRecord(document, Kind::kSymbol, file.get());
      collection->symbols.push_back(std::move(file));
    } else if (kind == NameOf(Kind::kPlugin)) {
      ReadRecord(document, Kind::kPlugin, file.get());
      collection->plugins.push_back(std::move(file));
    } else {
      ReadRecord(document, Kind::kOptions, file.get());
      collection->options = std::move(file);
    }
    return;
  }
  for (const auto& item : document.items()) {
    const std::string& key = item.key();
    if (key == "symbols") {
      ReadItems(item.value(), Kind::kSymbol, key, &collection->symbols);
    } else if (key == "plugins") {
      ReadItems(item.value(), Kind::kPlugin, key, &collection->plugins);
    } else if (key == "options") {
      collection->options = ReadItem(item.value(), Kind::kOptions, key);
    } else if (key != "kind") {
      throw JsonError("unknown key \"" + key.substr(0, kShownWord) + "\"");
    }
  }
}

}  // namespace gromlit
