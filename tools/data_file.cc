#include "tools/data_file.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <span>

#include "core/files.h"
#include "core/option_fields.h"
#include "core/option_files.h"
#include "core/plugin_image.h"
#include "core/printable.h"
#include "core/record_codec.h"
#include "core/record_layout.h"
#include "core/symbol_files.h"
#include "recognition/signature_match.h"

namespace gromlit {
namespace {

using Bytes = std::span<const std::byte>;
using Damage = std::vector<std::string>;

void ReportCutText(Bytes image, Field field, const std::string& what, Damage* damage) {
  const Bytes text = image.subspan(field.offset, field.size);
  if (std::find(text.begin(), text.end(), std::byte{0}) == text.end()) {
    damage->push_back(what + " has no end in its field, cut to " + std::to_string(field.size - 1) +
                      " bytes");
  }
}

// `where` begins each text.
void ReportSymbol(Bytes image, const std::string& where, Damage* damage) {
  ReportCutText(image, symbol_layout::kName, where + "symbol name", damage);
  const int npoints = GetU8(image, symbol_layout::kNpoints.offset);
  if (npoints > kMaxPoints)
    damage->push_back(where + std::to_string(npoints) + " points, cut to the possible 64");
}

void ReportOptions(Bytes image, Damage* damage) {
  for (const OptionField& field : kOptionFields)
    if (field.kind == OptionKind::kText) ReportCutText(image, field.at, field.name, damage);
}

// Looks again at what the decoder has read: the cut texts, and the counts that the complete actions
// do not reach.
void ReportPlugin(Bytes file, const GromlitPlugin& plugin, PluginPart missing, Damage* damage) {
  const Bytes record = file.subspan(kHeaderSize, kPluginImageSize);
  ReportCutText(record, plugin_layout::kAppname, "appname", damage);
  ReportCutText(record, plugin_layout::kClassname, "classname", damage);
  size_t at = kHeaderSize + kPluginImageSize;
  for (int i = 0; i < plugin.nactions; i++) {
    const GromlitAction& action = *plugin.actions[i];
    const std::string where = "action " + std::to_string(i) + ": ";
    const Bytes image = file.subspan(at, kActionImageSize);
    ReportSymbol(image.first(kSymbolImageSize), where, damage);
    ReportCutText(image, action_layout::kName, where + "action name", damage);
    at += kActionImageSize;
    for (uint32_t j = 0; j < action.ncmds; j++) at += kCmdImageSize + action.cmds[j]->ntext;
  }
  if (missing == PluginPart::kNothing) return;
  const int stored = GetU8(record, plugin_layout::kNactions.offset);
  const std::string counts =
      ", " + std::to_string(plugin.nactions) + " of " + std::to_string(stored) + " actions read";
  if (stored > kMaxActions && plugin.nactions == kMaxActions) {
    damage->push_back("more actions than the possible 128" + counts);
    return;
  }
  if (at + kActionImageSize <= file.size()) {
    const uint32_t ncmds = GetU32(file, at + action_layout::kNcmds.offset);
    if (ncmds > kMaxCommands) {
      damage->push_back("action " + std::to_string(plugin.nactions) + ": " + std::to_string(ncmds) +
                        " commands, more than the possible 128" + counts);
      return;
    }
  }
  const char* what = missing == PluginPart::kAction    ? "an action"
                     : missing == PluginPart::kCommand ? "a command"
                                                       : "a command's text";
  damage->push_back(std::string("ends within ") + what + counts);
}

// The record behind the header, filled up with zeros where the file ends too early.
std::vector<std::byte> Record(Bytes file, size_t size, DataFile* out) {
  std::vector<std::byte> image(file.begin() + kHeaderSize, file.end());
  if (image.size() < size) {
    out->unusable = true;
    out->damage.push_back("ends after " + std::to_string(file.size()) + " of " +
                          std::to_string(kHeaderSize + size) +
                          " bytes, the missing ones are shown as zeros");
  }
  image.resize(size);
  return image;
}

void ReadPlugin(Bytes file, DataFile* out) {
  const PluginPart missing = DecodePluginFile(file, &out->plugin);
  if (missing != PluginPart::kRecord) {
    ReportPlugin(file, out->plugin, missing, &out->damage);
    return;
  }
  const std::vector<std::byte> image = Record(file, kPluginImageSize, out);
  DecodePlugin(image, &out->plugin);
  out->plugin.nactions = 0;
}

bool FitKind(Bytes file, Kind* kind) {
  if (file.size() < kHeaderSize) return false;
  if (HasHeader(file, GromlitSymbolFileHeaderString)) {
    *kind = Kind::kSymbol;
  } else if (HasHeader(file, kPluginHeader)) {
    *kind = Kind::kPlugin;
  } else if (HasHeader(file, GromlitOptionFileHeaderString)) {
    *kind = Kind::kOptions;
  } else {
    return false;
  }
  return true;
}

size_t LargestFile(Kind kind) {
  switch (kind) {
    case Kind::kSymbol:
      return kHeaderSize + kSymbolImageSize;
    case Kind::kOptions:
      return kHeaderSize + kOptionsImageSize;
    case Kind::kPlugin:
      break;
  }
  return kMaxPluginFile;
}

}  // namespace

// The records may be incomplete, after a document that broke off: the pointers count, not the
// counts.
DataFile::~DataFile() {
  ForgetSignature(&symbol);
  for (GromlitAction* action : plugin.actions) {
    if (action == nullptr) break;
    for (GromlitCmd* cmd : action->cmds) {
      if (cmd == nullptr) break;
      std::free(cmd->text);
      delete cmd;
    }
    ForgetSignature(&action->sym);
    delete action;
  }
}

bool ReadDataFile(const char* path, DataFile* file, std::string* error) {
  std::vector<std::byte> bytes;
  // The header first: it says how much of the file is of interest.
  if (!ReadFile(path, kHeaderSize, &bytes)) {
    *error = errno == EINVAL ? "no regular file" : std::strerror(errno);
    return false;
  }
  if (!FitKind(bytes, &file->kind)) {
    *error =
        "no symbol, plug-in or options file: it does not begin with the header of one, but "
        "with \"" +
        Printable({reinterpret_cast<const char*>(bytes.data()), bytes.size()}) + "\"";
    return false;
  }
  if (!ReadFile(path, LargestFile(file->kind), &bytes)) {
    *error = std::strerror(errno);
    return false;
  }
  // It may have been replaced in the meantime.
  Kind again = file->kind;
  if (!FitKind(bytes, &again) || again != file->kind) {
    *error = "changed while it was read";
    return false;
  }
  switch (file->kind) {
    case Kind::kSymbol: {
      const std::vector<std::byte> image = Record(bytes, kSymbolImageSize, file);
      DecodeSymbol(image, &file->symbol);
      ReportSymbol(image, "", &file->damage);
      break;
    }
    case Kind::kOptions: {
      const std::vector<std::byte> image = Record(bytes, kOptionsImageSize, file);
      DecodeOptions(image, &file->options);
      ReportOptions(image, &file->damage);
      break;
    }
    case Kind::kPlugin:
      ReadPlugin(bytes, file);
      break;
  }
  return true;
}

std::vector<std::byte> FileImage(const DataFile& file) {
  std::vector<std::byte> image;
  switch (file.kind) {
    case Kind::kSymbol:
      image.resize(kHeaderSize + kSymbolImageSize);
      PutHeader(image, GromlitSymbolFileHeaderString);
      EncodeSymbol(file.symbol, std::span(image).subspan(kHeaderSize));
      break;
    case Kind::kOptions:
      image.resize(kHeaderSize + kOptionsImageSize);
      PutHeader(image, GromlitOptionFileHeaderString);
      EncodeOptions(file.options, std::span(image).subspan(kHeaderSize));
      break;
    case Kind::kPlugin:
      image = EncodePluginRecords(file.plugin);
      break;
  }
  return image;
}

}  // namespace gromlit
