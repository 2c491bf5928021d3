#include "tools/record_json.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <nlohmann/json.hpp>
#include <optional>
#include <span>
#include <type_traits>

#include "core/command_types.h"
#include "core/option_fields.h"
#include "core/strings.h"
#include "keymap/key_strokes.h"
#include "recognition/symbol_icon.h"
#include "tools/object_reader.h"

namespace gromlit {
namespace {

// The reserved text fields chars1..chars8 of a plug-in, in order.
template <typename Plugin>
auto CharsFields(Plugin* p) {
  using Chars = std::conditional_t<std::is_const_v<Plugin>, const char, char>;
  using Span = std::span<Chars, kTextSize>;
  return std::array<Span, 8>{Span(p->chars1), Span(p->chars2), Span(p->chars3), Span(p->chars4),
                             Span(p->chars5), Span(p->chars6), Span(p->chars7), Span(p->chars8)};
}

// --- Writing ------------------------------------------------------------------------------------

std::string NameText(std::span<const char> field) {
  return BytesToText(FieldText(field));
}

// A reserved field keeps all its bytes; only trailing NULs are left out.
std::string RawText(std::span<const char> field) {
  size_t n = field.size();
  while (n > 0 && field[n - 1] == '\0') n--;
  return BytesToText({field.data(), n});
}

void PutSymbol(const GromlitSymbol& sym, Json* out) {
  (*out)["name"] = NameText(sym.name);
  Json& points = (*out)["points"] = Json::array();
  for (int k = 1; k <= std::min<int>(sym.npoints, kMaxPoints); k++)
    points.push_back(Json::array({sym.x[k], sym.y[k]}));
  Json& icon = (*out)["icon"] = Json::array();
  for (const uint32_t bits : sym.icon) {
    std::string row(kIconSize, '.');
    for (unsigned column = 0; column < kIconSize; column++)
      if ((bits >> column & 1) != 0) row[column] = '#';
    icon.push_back(row);
  }
  (*out)["spare"] = sym.spare;
}

Json CommandObject(const GromlitCmd& cmd) {
  Json out = Json::object();
  if (const CommandTypeInfo* type = CommandTypeOf(cmd.type)) {
    out["type"] = type->name;
  } else {
    out["type"] = cmd.type;
  }
  out["nkeys"] = cmd.nkeys;
  int used = kMaxKeys;
  while (used > 0 && cmd.keycode[used - 1] == 0 && cmd.keystate[used - 1] == 0) used--;
  Json& keys = out["keys"] = Json::array();
  for (int i = 0; i < used; i++) keys.push_back(Json::array({cmd.keycode[i], cmd.keystate[i]}));
  out["text"] = cmd.text == nullptr ? "" : BytesToText({cmd.text, cmd.ntext});
  out["checked"] = cmd.checked;
  out["buttons"] = cmd.buttons;
  out["flag"] = cmd.flag;
  out["spare"] = cmd.spare;
  return out;
}

Json ActionObject(const GromlitAction& action) {
  Json out = Json::object();
  out["name"] = NameText(action.name);
  out["spare"] = action.spare;
  PutSymbol(action.sym, &(out["symbol"] = Json::object()));
  Json& commands = out["commands"] = Json::array();
  for (uint32_t j = 0; j < action.ncmds; j++) commands.push_back(CommandObject(*action.cmds[j]));
  return out;
}

// --- Reading ------------------------------------------------------------------------------------

void ReadIcon(const Json& icon, const std::string& where, GromlitSymbol* sym) {
  if (!icon.is_array() || icon.size() != kIconSize)
    FailExpected(where, "\"auto\", \"arrow\" or 32 rows are", icon);
  for (size_t r = 0; r < kIconSize; r++) {
    const std::string row = ObjectReader::ToBytes(icon[r], Item(where, r));
    if (row.size() != kIconSize || row.find_first_not_of("#.") != std::string::npos)
      FailExpected(Item(where, r), "32 characters \"#\" or \".\" are", icon[r]);
    for (unsigned column = 0; column < kIconSize; column++)
      if (row[column] == '#') sym->icon[r] |= uint32_t{1} << column;
  }
}

// The keys of a symbol, except those of the object around it.
void ReadSymbol(ObjectReader* in, GromlitSymbol* sym) {
  in->Name("name", sym->name);
  in->Number("spare", &sym->spare);
  if (const Json* points = in->List("points", kMaxPoints)) {
    for (size_t k = 1; k <= points->size(); k++) {
      ObjectReader::ToPair((*points)[k - 1], Item(in->Where("points"), k - 1), &sym->x[k],
                           &sym->y[k]);
    }
    sym->npoints = static_cast<uint8_t>(points->size());
  }
  const Json* icon = in->Find("icon");
  if (icon == nullptr || *icon == "auto") {
    VectorToBitmap(sym);
  } else if (*icon == "arrow") {
    VectorToBitmap(sym);
    AddArrowHead(sym);
  } else {
    ReadIcon(*icon, in->Where("icon"), sym);
  }
}

uint8_t ReadType(const Json& type, const std::string& where) {
  if (type.is_number()) return ObjectReader::ToNumber<uint8_t>(type, where);
  const std::string name = ObjectReader::ToBytes(type, where);
  for (const CommandTypeInfo& known : kCommandTypes)
    if (name == known.name) return known.type;
  Fail(where, Shown(type) + " is no command type and no number 0..255");
}

// The key of a hot key that is given as text alone, on the keyboard that the library is packed for.
void ResolveKeys(const std::string& text, const std::string& where, GromlitCmd* cmd) {
  static const Keymap map = PackingKeymap();
  if (map == nullptr) Fail(where, "needs the system's data of keyboards (xkb-data), or \"keys\"");
  const std::optional<KeyStroke> stroke = FindKeyStroke(map.get(), text);
  if (!stroke.has_value())
    Fail(where, "no key stroke of the keyboard pc105 us: " + Shown(Json(BytesToText(text))));
  cmd->keycode[0] = stroke->keycode;
  cmd->keystate[0] = stroke->state;
  cmd->nkeys = 1;
}

void ReadCommand(const Json& object, const std::string& where, GromlitCmd* cmd) {
  ObjectReader in(object, where);
  const Json* type = in.Find("type");
  if (type != nullptr) cmd->type = ReadType(*type, in.Where("type"));
  if (const Json* keys = in.List("keys", kMaxKeys)) {
    for (size_t i = 0; i < keys->size(); i++) {
      ObjectReader::ToPair((*keys)[i], Item(in.Where("keys"), i), &cmd->keycode[i],
                           &cmd->keystate[i]);
    }
    cmd->nkeys = static_cast<uint8_t>(keys->size());
  }
  const std::string text = in.Bytes("text");
  // A number is what a record holds, whatever it is; the name is what an author means.
  const bool named = type != nullptr && type->is_string() && cmd->type == kHotKey;
  if (named && in.Find("keys") == nullptr && !text.empty())
    ResolveKeys(text, in.Where("text"), cmd);
  in.Number("nkeys", &cmd->nkeys);
  if (!text.empty()) {
    // Not a string function: the text may hold NULs.
    cmd->text = static_cast<char*>(std::calloc(text.size() + 1, 1));
    if (cmd->text == nullptr) throw std::bad_alloc();
    std::copy(text.begin(), text.end(), cmd->text);
    cmd->ntext = static_cast<uint32_t>(text.size());
  }
  in.Number("checked", &cmd->checked);
  if (const Json* buttons = in.List("buttons", std::size(cmd->buttons))) {
    for (size_t i = 0; i < buttons->size(); i++)
      cmd->buttons[i] =
          ObjectReader::ToNumber<uint8_t>((*buttons)[i], Item(in.Where("buttons"), i));
  }
  in.Number("flag", &cmd->flag);
  in.Number("spare", &cmd->spare);
  in.NoOtherKeys();
}

void ReadAction(const Json& object, const std::string& where, GromlitAction* action) {
  ObjectReader in(object, where);
  in.Name("name", action->name);
  in.Number("spare", &action->spare);
  if (const Json* symbol = in.Find("symbol")) {
    ObjectReader sym(*symbol, in.Where("symbol"));
    ReadSymbol(&sym, &action->sym);
    sym.NoOtherKeys();
  }
  if (const Json* commands = in.List("commands", kMaxCommands)) {
    for (size_t j = 0; j < commands->size(); j++) {
      action->cmds[j] = new GromlitCmd{};
      action->ncmds = static_cast<uint32_t>(j + 1);
      ReadCommand((*commands)[j], Item(in.Where("commands"), j), action->cmds[j]);
    }
  }
  in.NoOtherKeys();
}

}  // namespace

Json SymbolDocument(const GromlitSymbol& sym) {
  Json out = Json::object();
  out["kind"] = "symbol";
  PutSymbol(sym, &out);
  return out;
}

Json PluginDocument(const GromlitPlugin& plugin) {
  Json out = Json::object();
  out["kind"] = "plugin";
  out["appname"] = NameText(plugin.appname);
  out["classname"] = NameText(plugin.classname);
  out["spare1"] = plugin.spare1;
  out["spare2"] = plugin.spare2;
  out["spare3"] = plugin.spare3;
  out["spare4"] = plugin.spare4;
  Json& chars = out["chars"] = Json::array();
  for (const auto field : CharsFields(&plugin)) chars.push_back(RawText(field));
  Json& actions = out["actions"] = Json::array();
  for (int i = 0; i < plugin.nactions; i++) actions.push_back(ActionObject(*plugin.actions[i]));
  return out;
}

Json OptionsDocument(const GromlitUserOptions& options) {
  Json out = Json::object();
  out["kind"] = "options";
  for (const OptionField& field : kOptionFields) {
    Json& value = out[field.name];
    switch (field.kind) {
      case OptionKind::kNumber:
        value = OptionNumber(options, field);
        break;
      case OptionKind::kText:
        value = NameText(OptionBytes(options, field));
        break;
      case OptionKind::kRaw:
        value = RawText(OptionBytes(options, field));
        break;
    }
  }
  return out;
}

std::string KindOf(const Json& document) {
  constexpr const char* kExpected = "an object with a \"kind\" is";
  if (!document.is_object()) FailExpected("", kExpected, document);
  const auto kind = document.find("kind");
  if (kind == document.end()) Fail("", std::string(kExpected) + " expected, the key is missing");
  for (const char* known : {"symbol", "plugin", "options"})
    if (*kind == known) return known;
  FailExpected("kind", "\"symbol\", \"plugin\" or \"options\" is", *kind);
}

void ReadSymbolDocument(const Json& document, GromlitSymbol* sym) {
  ObjectReader in(document, "");
  in.Find("kind");
  ReadSymbol(&in, sym);
  in.NoOtherKeys();
}

void ReadPluginDocument(const Json& document, GromlitPlugin* plugin) {
  ObjectReader in(document, "");
  in.Find("kind");
  in.Name("appname", plugin->appname);
  in.Name("classname", plugin->classname);
  in.Named("spare1", &plugin->spare1);
  in.Number("spare2", &plugin->spare2);
  in.Number("spare3", &plugin->spare3);
  in.Number("spare4", &plugin->spare4);
  const auto fields = CharsFields(plugin);
  if (const Json* chars = in.List("chars", fields.size())) {
    for (size_t i = 0; i < chars->size(); i++)
      ObjectReader::ToRaw(&(*chars)[i], Item("chars", i), fields[i]);
  }
  if (const Json* actions = in.List("actions", kMaxActions)) {
    for (size_t i = 0; i < actions->size(); i++) {
      plugin->actions[i] = new GromlitAction{};
      plugin->nactions = static_cast<uint8_t>(i + 1);
      ReadAction((*actions)[i], Item("actions", i), plugin->actions[i]);
    }
  }
  in.NoOtherKeys();
}

void ReadOptionsDocument(const Json& document, GromlitUserOptions* options) {
  ObjectReader in(document, "");
  in.Find("kind");
  for (const OptionField& field : kOptionFields) {
    switch (field.kind) {
      case OptionKind::kNumber:
        in.Named(field.name, &OptionNumber(options, field));
        break;
      case OptionKind::kText:
        in.Name(field.name, OptionBytes(options, field));
        break;
      case OptionKind::kRaw:
        in.Raw(field.name, OptionBytes(options, field));
        break;
    }
  }
  in.NoOtherKeys();
}

}  // namespace gromlit
