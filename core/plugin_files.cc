#include "core/plugin_files.h"

#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>
#include <new>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "core/directory_files.h"
#include "core/files.h"
#include "core/plugin_image.h"
#include "core/plugin_names.h"
#include "core/record_codec.h"
#include "core/report.h"
#include "core/retired.h"
#include "core/set_aside.h"
#include "core/strings.h"

namespace gromlit {

GromlitPluginList* allPlugins = nullptr;

namespace {

constexpr size_t kRecordEnd = kHeaderSize + kPluginImageSize;

static_assert(kPluginHeader == GromlitPluginFileHeaderString);
static_assert(kPluginHeader.size() == kHeaderSize);

// A list that was never loaded is an empty one.
void EnsureList() {
  if (allPlugins == nullptr) allPlugins = new GromlitPluginList();
}

// The first node of this class, loaded or not; null for none.
GromlitPluginList* NodeOf(std::string_view classname) {
  EnsureList();
  for (auto* node = allPlugins; node->plugin != nullptr; node = node->next)
    if (FieldText(node->plugin->classname) == classname) return node;
  return nullptr;
}

// The part of a class text that fits into a record.
std::string_view StoredClass(const char* classname) {
  return std::string_view(classname).substr(0, kTextSize - 1);
}

void PrintReadError(PluginPart missing) {
  switch (missing) {
    case PluginPart::kAction:
      std::fputs("Error reading Plugin Actions\n", stdout);
      break;
    case PluginPart::kCommand:
      std::fputs("Error reading Plugin Command\n", stdout);
      break;
    case PluginPart::kText:
      std::fputs("Error reading plugin command text\n", stdout);
      break;
    case PluginPart::kNothing:
    case PluginPart::kRecord:
      break;
  }
}

void PrintWriteError(PluginPart part) {
  switch (part) {
    case PluginPart::kAction:
      std::fputs("Error writing Plugin Actions\n", stdout);
      break;
    case PluginPart::kCommand:
      std::fputs("Error writing Plugin Command\n", stdout);
      break;
    case PluginPart::kText:
      std::fputs("Error writing plugin command text\n", stdout);
      break;
    case PluginPart::kNothing:
    case PluginPart::kRecord:
      break;
  }
}

// A name that is too long for the record is not kept: such a plug-in is saved beside its file.
void KeepFile(GromlitPlugin* pin, std::string_view name) {
  CopyText(pin->storedfile, name.size() < sizeof pin->storedfile ? name : "");
}

// --- Saving -----------------------------------------------------------------------------------

// As ReadPluginActions; *error is why the system gave nothing to read, or 0.
GromlitPlugin* ReadActions(const char* fname, GromlitPlugin* pin, int* error) {
  std::vector<std::byte> file;
  *error = 0;
  if (!ReadFile(PluginPath(fname).c_str(), kMaxPluginFile, &file)) {
    *error = errno;
    return nullptr;
  }
  const PluginPart missing = DecodePluginFile(file, pin);
  if (missing == PluginPart::kRecord) return nullptr;
  KeepFile(pin, fname);
  if (missing == PluginPart::kNothing) return pin;
  PrintReadError(missing);
  pin->damagedfile = StrDup(fname);
  return nullptr;
}

// Reads the node's file into pin, once: whatever comes of it, the node then counts as loaded. The
// result is why the system gave nothing to read, or 0.
int ReadOnFirstUse(GromlitPluginList* node, GromlitPlugin& pin) {
  int error = 0;
  // Unreadable now though it was listed: the file may hold actions that the record lacks.
  if (ReadActions(node->filename, &pin, &error) == nullptr && pin.damagedfile == nullptr)
    pin.damagedfile = StrDup(node->filename);
  node->loaded = 1;
  return error;
}

// Reads the actions of a listed plug-in that nobody has looked up yet, keeping its record as the
// caller changed it. False with errno set when the file cannot be read now: a save would put a
// plug-in without actions in its place.
bool EnsureActions(GromlitPlugin* pin) {
  EnsureList();
  for (auto* node = allPlugins; node->plugin != nullptr; node = node->next) {
    if (node->plugin != pin || node->loaded != 0) continue;
    GromlitPlugin stored{};
    if (const int error = ReadOnFirstUse(node, stored); error != 0 && error != ENOENT) {
      node->loaded = 0;
      Retire(stored.damagedfile);
      errno = error;
      return false;
    }
    std::copy_n(stored.actions, kMaxActions, pin->actions);
    pin->nactions = stored.nactions;
    pin->damagedfile = stored.damagedfile;
    return true;
  }
  return true;
}

// Whether a regular file is there, or may be: the system does not say.
bool MayBeFile(const std::string& path) {
  struct stat st {};
  if (Uninterrupted([&] { return stat(path.c_str(), &st); }) == 0) return S_ISREG(st.st_mode);
  return errno != ENOENT;
}

// The plug-in whose file begins with these bytes; null when none does.
GromlitPlugin* NewPlugin(std::span<const std::byte> file, const char* fname) {
  auto plugin = std::make_unique<GromlitPlugin>();
  if (!DecodePluginRecord(file, plugin.get())) return nullptr;
  KeepFile(plugin.get(), fname);
  return plugin.release();
}

GromlitPlugin* SaveFailed() {
  ReportSystemError("Save Plugin");
  return nullptr;
}

}  // namespace

// --- Reading ----------------------------------------------------------------------------------

int LoadPlugins() {
  Retire(allPlugins);
  allPlugins = new GromlitPluginList();
  KeepSparePluginFiles({});
  DirectoryFiles files(std::string(GromlitPath) + "/" + pluginDirectory);
  std::array<std::byte, kRecordEnd> file;
  // Of each class the plug-in that counts, in directory order.
  std::vector<GromlitPlugin*> found;
  std::unordered_map<std::string_view, GromlitPlugin*> ofclass;  // keys lie in the plug-ins
  std::vector<SparePluginFile> spareFiles;
  while (const char* name = files.Next()) {
    GromlitPlugin* plugin = NewPlugin(files.Read(file), name);
    if (plugin == nullptr) continue;
    const std::string_view classname = FieldText(plugin->classname);
    const auto [known, fresh] = ofclass.try_emplace(classname, plugin);
    if (fresh) {
      found.push_back(plugin);
      continue;
    }
    GromlitPlugin* less = plugin;
    if (CountsBefore(classname, plugin->storedfile, known->second->storedfile)) {
      less = known->second;
      std::erase(found, less);
      found.push_back(plugin);
      ofclass.erase(known);
      ofclass.emplace(classname, plugin);
    }
    spareFiles.push_back({less->storedfile, "", less->classname});
    delete less;
  }
  GromlitPluginList* sentinel = allPlugins;
  for (GromlitPlugin* plugin : found) {
    sentinel->filename = StrDup(plugin->storedfile);
    sentinel->loaded = 0;
    sentinel->plugin = plugin;
    sentinel->next = new GromlitPluginList();
    sentinel = sentinel->next;
  }
  for (SparePluginFile& spare : spareFiles) spare.used = ofclass.at(spare.classname)->storedfile;
  KeepSparePluginFiles(std::move(spareFiles));
  return static_cast<int>(found.size());
}

GromlitPlugin* LoadPlugin(const char* fname) {
  auto plugin = std::make_unique<GromlitPlugin>();
  return ReadPluginHeader(fname, plugin.get()) == nullptr ? nullptr : plugin.release();
}

GromlitPlugin* ReadPluginHeader(const char* fname, GromlitPlugin* pin) {
  std::vector<std::byte> file;
  if (!ReadFile(PluginPath(fname).c_str(), kRecordEnd, &file)) return nullptr;
  if (!DecodePluginRecord(file, pin)) return nullptr;
  KeepFile(pin, fname);
  return pin;
}

GromlitPlugin* ReadPluginActions(const char* fname, GromlitPlugin* pin) {
  int unused = 0;
  return ReadActions(fname, pin, &unused);
}

// --- Writing ----------------------------------------------------------------------------------

GromlitPlugin* UnLoadPlugin(GromlitPlugin* pin, const char* fname) {
  if (!EnsureActions(pin)) return SaveFailed();
  const std::string name = StoredName(*pin, fname);
  if (name.empty()) return SaveFailed();
  const std::vector<std::byte> image = EncodePluginFile(pin);
  if (image.empty()) {
    errno = EFBIG;
    return SaveFailed();
  }
  if (pin->damagedfile != nullptr) {
    if (!SetAside(PluginPath(pin->damagedfile), damagedDirectory, pin->damagedfile))
      return SaveFailed();
    Retire(pin->damagedfile);
    pin->damagedfile = nullptr;
  }
  size_t wrote = kNoWrite;
  if (SaveFile(PluginPath(name).c_str(), image, &wrote)) {
    KeepFile(pin, name);
    return pin;
  }
  const int reason = errno;
  if (wrote != kNoWrite) PrintWriteError(PluginPartAt(*pin, wrote));
  errno = reason;
  return SaveFailed();
}

GromlitPlugin* PluginSave(GromlitPlugin* plugin, const char* name) {
  return UnLoadPlugin(plugin, name);
}

// --- The list ---------------------------------------------------------------------------------

GromlitPluginList* FindPluginNode(const char* classname) {
  GromlitPluginList* node = NodeOf(StoredClass(classname));
  if (node != nullptr && node->loaded == 0) ReadOnFirstUse(node, *node->plugin);
  return node;
}

GromlitPlugin* FindPlugin(const char* classname) {
  const GromlitPluginList* node = FindPluginNode(classname);
  return node == nullptr ? nullptr : node->plugin;
}

bool HandsOff(const GromlitPlugin* plugin) {
  return plugin != nullptr && (plugin->spare1 & kHandsOff) != 0;
}

bool AnyHandsOff() {
  EnsureList();
  for (const auto* node = allPlugins; node->plugin != nullptr; node = node->next)
    if (HandsOff(node->plugin)) return true;
  return false;
}

bool IsHandsOffClass(const char* classname) {
  const GromlitPluginList* node = NodeOf(StoredClass(classname));
  return HandsOff(node != nullptr ? node->plugin : DefaultPlugin);
}

bool IsListed(const GromlitPlugin* plugin) {
  if (plugin == nullptr) return false;
  EnsureList();
  const auto* node = allPlugins;
  while (node->plugin != nullptr && node->plugin != plugin) node = node->next;
  return node->plugin != nullptr;
}

GromlitPlugin* CreatePlugin(const char* appname, const char* classname, bool* saved) {
  if (saved != nullptr) *saved = true;
  if (GromlitPlugin* known = FindPlugin(classname)) return known;
  auto* plugin = new (std::nothrow) GromlitPlugin();
  if (plugin == nullptr) return nullptr;
  CopyText(plugin->appname, appname);
  CopyText(plugin->classname, classname);
  const std::string name = StoredName(*plugin, plugin->classname);
  if (!name.empty() && MayBeFile(PluginPath(name))) plugin->damagedfile = StrDup(name.c_str());
  allPlugins = new GromlitPluginList{StrDup(plugin->classname), 1, plugin, allPlugins};
  const bool written = UnLoadPlugin(plugin, plugin->classname) != nullptr;
  if (saved != nullptr) *saved = written;
  return plugin;
}

GromlitPlugin* GetDefaultPlugin() {
  DefaultPlugin = CreatePlugin(defaultPluginClassname, defaultPluginClassname);
  return DefaultPlugin;
}

int DropPlugin(const GromlitPlugin* killpin, const char* fname) {
  // An equal record stands for the listed one.
  const GromlitPlugin* stored = killpin;
  if (*killpin->storedfile == '\0')
    if (const GromlitPluginList* node = NodeOf(FieldText(killpin->classname)))
      stored = node->plugin;
  const std::string name = StoredName(*stored, fname);
  if (name.empty() && errno == EEXIST) errno = ENOENT;
  if (name.empty() || !RemoveFile(PluginPath(name).c_str())) {
    ReportSystemError("Delete Plugin");
    return 0;
  }
  EnsureList();
  const std::string_view classname = FieldText(killpin->classname);
  for (auto** link = &allPlugins; (*link)->plugin != nullptr; link = &(*link)->next) {
    if (FieldText((*link)->plugin->classname) != classname) continue;
    Retire(*link);
    *link = (*link)->next;
    break;
  }
  return 1;
}

}  // namespace gromlit
