#include "core/plugin_names.h"

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <utility>

#include "core/files.h"
#include "core/plugin_image.h"
#include "core/record_layout.h"
#include "core/strings.h"

namespace gromlit {
namespace {

constexpr int kNameVariations = 32;

std::vector<SparePluginFile> spareFiles;

// A class text comes from a stranger's window: with a "/" it would leave the directory.
std::string WithoutSlashes(std::string_view text) {
  std::string name(text);
  std::replace(name.begin(), name.end(), '/', '_');
  return name;
}

bool IsSpare(const std::string& name) {
  const auto& spare = SparePluginFiles();
  return std::any_of(spare.begin(), spare.end(),
                     [&](const SparePluginFile& file) { return file.name == name; });
}

}  // namespace

const std::vector<SparePluginFile>& SparePluginFiles() {
  return spareFiles;
}

void KeepSparePluginFiles(std::vector<SparePluginFile> files) {
  std::sort(files.begin(), files.end(),
            [](const auto& one, const auto& other) { return one.name < other.name; });
  spareFiles = std::move(files);
}

std::string PluginPath(const std::string& name) {
  return DataPath(pluginDirectory, name.c_str());
}

FileOwner OwnerOf(const std::string& name, std::string_view classname) {
  std::vector<std::byte> file;
  GromlitPlugin record;
  if (!ReadFile(PluginPath(name).c_str(), kHeaderSize + kPluginImageSize, &file)) {
    // Nothing there, or a directory or another thing that no plug-in is in.
    const bool none = errno == ENOENT || errno == ENOTDIR || errno == EISDIR || errno == EINVAL;
    return none ? FileOwner::kNone : FileOwner::kUnknown;
  }
  if (!DecodePluginRecord(file, &record)) return FileOwner::kNone;
  return FieldText(record.classname) == classname ? FileOwner::kThisClass : FileOwner::kOtherClass;
}

std::string OwnFileName(std::string_view classname) {
  return WithoutSlashes(classname) + GromlitPluginFileExt;
}

bool CountsBefore(std::string_view classname, std::string_view name, std::string_view other) {
  const std::string own = OwnFileName(classname);
  if (name == own || other == own) return name == own;
  return name < other;
}

std::string StoredName(const GromlitPlugin& pin, const char* fname) {
  const std::string_view classname = FieldText(pin.classname);
  std::string stored(FieldText(pin.storedfile));
  if (!stored.empty() && OwnerOf(stored, classname) != FileOwner::kOtherClass) return stored;
  const std::string base = WithoutSlashes(fname);
  std::string unowned;
  for (int n = 1; n <= kNameVariations; n++) {
    const std::string number = n == 1 ? "" : "_" + std::to_string(n);
    std::string name = base + number + GromlitPluginFileExt;
    const FileOwner owner = OwnerOf(name, classname);
    if (owner == FileOwner::kUnknown) return "";
    if (owner == FileOwner::kThisClass && !IsSpare(name)) return name;
    if (owner == FileOwner::kNone && unowned.empty()) unowned = name;
  }
  if (unowned.empty()) errno = EEXIST;
  return unowned;
}

}  // namespace gromlit
