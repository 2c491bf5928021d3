#include "core/record_codec.h"

#include <algorithm>
#include <cstring>

#include "core/option_fields.h"
#include "core/strings.h"

namespace gromlit {
namespace {

using Image = std::span<const std::byte>;
using Out = std::span<std::byte>;

void Clear(Out image) {
  std::fill(image.begin(), image.end(), std::byte{0});
}

// Text: up to the first NUL in the field, at most all bytes but the last.
void GetText(Image image, Field f, std::span<char> dst) {
  char raw[kUrlCmdSize];
  std::memcpy(raw, image.data() + f.offset, f.size);
  CopyText(dst, FieldText({raw, f.size}));
}

// The image has been zeroed: what lies behind the text stays zero.
void PutText(Out image, Field f, std::span<const char> src) {
  const std::string_view text = FieldText(src);
  std::memcpy(image.data() + f.offset, text.data(), text.size());
}

void GetRaw(Image image, Field f, void* dst) {
  std::memcpy(dst, image.data() + f.offset, f.size);
}

void PutRaw(Out image, Field f, const void* src) {
  std::memcpy(image.data() + f.offset, src, f.size);
}

// Element i of an array field of u16 or u32.
size_t At16(Field f, int i) {
  return f.offset + 2 * static_cast<size_t>(i);
}
size_t At32(Field f, int i) {
  return f.offset + 4 * static_cast<size_t>(i);
}

}  // namespace

bool HasHeader(std::span<const std::byte> file, std::string_view header) {
  return file.size() >= header.size() &&
         std::memcmp(file.data(), header.data(), header.size()) == 0;
}

void PutHeader(std::span<std::byte> file, std::string_view header) {
  std::memcpy(file.data(), header.data(), header.size());
}

void DecodeSymbol(std::span<const std::byte> image, GromlitSymbol* sym) {
  namespace at = symbol_layout;
  GetText(image, at::kName, sym->name);
  sym->npoints = std::min(GetU8(image, at::kNpoints.offset), static_cast<uint8_t>(kMaxPoints));
  sym->x[0] = GetU16(image, at::kX.offset);
  sym->y[0] = 0;
  for (int k = 1; k < kMaxPoints; k++) {
    sym->x[k] = GetU16(image, At16(at::kX, k));
    sym->y[k] = GetU16(image, At16(at::kY, k));
  }
  sym->x[kMaxPoints] = GetU16(image, at::kX64.offset);
  sym->y[kMaxPoints] = 0;
  if (sym->npoints == kMaxPoints) sym->y[kMaxPoints] = GetU16(image, at::kY64.offset);
  for (int r = 0; r < kIconSize; r++) sym->icon[r] = GetU32(image, At32(at::kIcon, r));
  sym->spare = GetU32(image, at::kSpare.offset);
  DisownFeatures(sym);
}

void EncodeSymbol(const GromlitSymbol& sym, std::span<std::byte> image) {
  namespace at = symbol_layout;
  Clear(image);
  PutText(image, at::kName, sym.name);
  PutU8(image, at::kNpoints.offset, sym.npoints);
  PutU16(image, at::kX.offset, sym.x[0]);
  for (int k = 1; k < kMaxPoints; k++) {
    PutU16(image, At16(at::kX, k), sym.x[k]);
    PutU16(image, At16(at::kY, k), sym.y[k]);
  }
  PutU16(image, at::kX64.offset, sym.x[kMaxPoints]);
  if (sym.npoints == kMaxPoints) PutU16(image, at::kY64.offset, sym.y[kMaxPoints]);
  for (int r = 0; r < kIconSize; r++) PutU32(image, At32(at::kIcon, r), sym.icon[r]);
  PutU32(image, at::kSpare.offset, sym.spare);
}

void DecodeCmd(std::span<const std::byte> image, GromlitCmd* cmd) {
  namespace at = cmd_layout;
  cmd->type = GetU8(image, at::kType.offset);
  cmd->nkeys = GetU8(image, at::kNkeys.offset);
  for (int i = 0; i < kMaxKeys; i++) {
    cmd->keycode[i] = GetU16(image, At16(at::kKeycode, i));
    cmd->keystate[i] = GetU16(image, At16(at::kKeystate, i));
  }
  GetRaw(image, at::kButtons, cmd->buttons);
  cmd->flag = GetU8(image, at::kFlag.offset);
  cmd->checked = GetU8(image, at::kChecked.offset);
  cmd->spare = GetI32(image, at::kSpare.offset);
  cmd->ntext = GetU32(image, at::kNtext.offset);
  cmd->text = nullptr;
}

void EncodeCmd(const GromlitCmd& cmd, std::span<std::byte> image) {
  namespace at = cmd_layout;
  Clear(image);
  PutU8(image, at::kType.offset, cmd.type);
  PutU8(image, at::kNkeys.offset, cmd.nkeys);
  for (int i = 0; i < kMaxKeys; i++) {
    PutU16(image, At16(at::kKeycode, i), cmd.keycode[i]);
    PutU16(image, At16(at::kKeystate, i), cmd.keystate[i]);
  }
  PutRaw(image, at::kButtons, cmd.buttons);
  PutU8(image, at::kFlag.offset, cmd.flag);
  PutU8(image, at::kChecked.offset, cmd.checked);
  PutI32(image, at::kSpare.offset, cmd.spare);
  PutU32(image, at::kNtext.offset, cmd.ntext);
}

void DecodeAction(std::span<const std::byte> image, GromlitAction* action) {
  namespace at = action_layout;
  DecodeSymbol(image.subspan(at::kSym.offset, at::kSym.size), &action->sym);
  GetText(image, at::kName, action->name);
  action->spare = GetI32(image, at::kSpare.offset);
  action->ncmds = GetU32(image, at::kNcmds.offset);
  std::fill_n(action->cmds, kMaxCommands, nullptr);
}

void EncodeAction(const GromlitAction& action, std::span<std::byte> image) {
  namespace at = action_layout;
  Clear(image);
  EncodeSymbol(action.sym, image.subspan(at::kSym.offset, at::kSym.size));
  PutText(image, at::kName, action.name);
  PutI32(image, at::kSpare.offset, action.spare);
  PutU32(image, at::kNcmds.offset, action.ncmds);
}

void DecodePlugin(std::span<const std::byte> image, GromlitPlugin* plugin) {
  namespace at = plugin_layout;
  GetText(image, at::kAppname, plugin->appname);
  GetText(image, at::kClassname, plugin->classname);
  plugin->spare3 = GetI32(image, at::kSpare3.offset);
  plugin->spare4 = GetI32(image, at::kSpare4.offset);
  plugin->spare1 = GetU8(image, at::kSpare1.offset);
  plugin->spare2 = GetU8(image, at::kSpare2.offset);
  GetRaw(image, at::kChars1, plugin->chars1);
  GetRaw(image, at::kChars2, plugin->chars2);
  GetRaw(image, at::kChars3, plugin->chars3);
  GetRaw(image, at::kChars4, plugin->chars4);
  GetRaw(image, at::kChars5, plugin->chars5);
  GetRaw(image, at::kChars6, plugin->chars6);
  GetRaw(image, at::kChars7, plugin->chars7);
  GetRaw(image, at::kChars8, plugin->chars8);
  plugin->nactions = GetU8(image, at::kNactions.offset);
  std::fill_n(plugin->actions, kMaxActions, nullptr);
  CopyText(plugin->storedfile, "");
  plugin->damagedfile = nullptr;
}

void EncodePlugin(const GromlitPlugin& plugin, std::span<std::byte> image) {
  namespace at = plugin_layout;
  Clear(image);
  PutText(image, at::kAppname, plugin.appname);
  PutText(image, at::kClassname, plugin.classname);
  PutI32(image, at::kSpare3.offset, plugin.spare3);
  PutI32(image, at::kSpare4.offset, plugin.spare4);
  PutU8(image, at::kSpare1.offset, plugin.spare1);
  PutU8(image, at::kSpare2.offset, plugin.spare2);
  PutRaw(image, at::kChars1, plugin.chars1);
  PutRaw(image, at::kChars2, plugin.chars2);
  PutRaw(image, at::kChars3, plugin.chars3);
  PutRaw(image, at::kChars4, plugin.chars4);
  PutRaw(image, at::kChars5, plugin.chars5);
  PutRaw(image, at::kChars6, plugin.chars6);
  PutRaw(image, at::kChars7, plugin.chars7);
  PutRaw(image, at::kChars8, plugin.chars8);
  PutU8(image, at::kNactions.offset, plugin.nactions);
}

void DecodeOptions(std::span<const std::byte> image, GromlitUserOptions* options) {
  for (const OptionField& field : kOptionFields) {
    switch (field.kind) {
      case OptionKind::kNumber:
        OptionNumber(options, field) = GetI32(image, field.at.offset);
        break;
      case OptionKind::kText:
        GetText(image, field.at, OptionBytes(options, field));
        break;
      case OptionKind::kRaw:
        GetRaw(image, field.at, OptionBytes(options, field).data());
        break;
    }
  }
}

void EncodeOptions(const GromlitUserOptions& options, std::span<std::byte> image) {
  Clear(image);
  for (const OptionField& field : kOptionFields) {
    switch (field.kind) {
      case OptionKind::kNumber:
        PutI32(image, field.at.offset, OptionNumber(options, field));
        break;
      case OptionKind::kText:
        PutText(image, field.at, OptionBytes(options, field));
        break;
      case OptionKind::kRaw:
        PutRaw(image, field.at, OptionBytes(options, field).data());
        break;
    }
  }
}

}  // namespace gromlit
