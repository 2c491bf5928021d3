#include "core/plugin_files.h"

#include <dirent.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>
#include <new>
#include <string>
#include <string_view>

#include "core/files.h"
#include "core/plugin_image.h"
#include "core/record_codec.h"
#include "core/report.h"
#include "core/retired.h"
#include "core/strings.h"

namespace gromlit {

GromlitPluginList* allPlugins = nullptr;

namespace {

constexpr size_t kRecordEnd = kHeaderSize + kPluginImageSize;
constexpr int kNameVariations = 32;

static_assert(kPluginHeader == GromlitPluginFileHeaderString);
static_assert(kPluginHeader.size() == kHeaderSize);

std::string PluginPath(const std::string& name) {
  return DataPath(pluginDirectory, name.c_str());
}

// A list that was never loaded is an empty one.
void EnsureList() {
  if (allPlugins == nullptr) allPlugins = new GromlitPluginList();
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

// --- File names -------------------------------------------------------------------------------

enum class Owner { kNone, kThisClass, kOtherClass };

// Whose plug-in lies under this name; kNone for no file and for one that is no plug-in.
Owner OwnerOf(const std::string& name, std::string_view classname) {
  std::vector<std::byte> file;
  GromlitPlugin record;
  if (!ReadFile(PluginPath(name).c_str(), kRecordEnd, &file)) return Owner::kNone;
  if (!DecodePluginRecord(file, &record)) return Owner::kNone;
  return FieldText(record.classname) == classname ? Owner::kThisClass : Owner::kOtherClass;
}

// The name under which a plug-in of this class is stored for `fname`: the first variation that
// already is this class's, else the first that is nobody's. Empty when all belong to others.
// A class text comes from a stranger's window: with a "/" it would leave the directory.
std::string StoredName(const GromlitPlugin& pin, const char* fname) {
  const std::string_view classname = FieldText(pin.classname);
  std::string base = fname;
  std::replace(base.begin(), base.end(), '/', '_');
  std::string unowned;
  for (int n = 1; n <= kNameVariations; n++) {
    const std::string number = n == 1 ? "" : "_" + std::to_string(n);
    std::string name = base + number + GromlitPluginFileExt;
    const Owner owner = OwnerOf(name, classname);
    if (owner == Owner::kThisClass) return name;
    if (owner == Owner::kNone && unowned.empty()) unowned = name;
  }
  return unowned;
}

// --- Saving -----------------------------------------------------------------------------------

// Copies a file of the plug-in directory to a name in damaged/ that is not in use. False with errno
// set. A file that is gone needs no copy.
bool SetAside(const char* fname) {
  std::vector<std::byte> contents;
  const std::string source = PluginPath(fname);
  struct stat st {};
  if (stat(source.c_str(), &st) != 0) return errno == ENOENT;
  // One byte more than allowed tells a file that is too large to be kept whole.
  if (!ReadFile(source.c_str(), kMaxPluginFile + 1, &contents)) return false;
  if (contents.size() > kMaxPluginFile) {
    errno = EFBIG;
    return false;
  }
  const std::string directory = std::string(GromlitPath) + "/" + damagedDirectory;
  if (mkdir(directory.c_str(), 0777) != 0 && errno != EEXIST) return false;
  std::string name = fname;
  std::replace(name.begin(), name.end(), '/', '_');
  std::string copy = DataPath(damagedDirectory, name.c_str());
  struct stat taken {};
  for (int n = 2; lstat(copy.c_str(), &taken) == 0; n++)
    copy = DataPath(damagedDirectory, (name + "." + std::to_string(n)).c_str());
  if (!SaveFile(copy.c_str(), contents)) return false;
  (void)chmod(copy.c_str(), st.st_mode & 0777);  // as private as the original
  return true;
}

// Reads the node's file into pin, once: whatever comes of it, the node then counts as loaded.
void ReadOnFirstUse(GromlitPluginList* node, GromlitPlugin* pin) {
  // Unreadable now though it was listed: the file may hold actions that the record lacks.
  if (ReadPluginActions(node->filename, pin) == nullptr && pin->damagedfile == nullptr)
    pin->damagedfile = StrDup(node->filename);
  node->loaded = 1;
}

// Reads the actions of a listed plug-in that nobody has looked up yet, keeping its record as the
// caller changed it.
void EnsureActions(GromlitPlugin* pin) {
  EnsureList();
  for (auto* node = allPlugins; node->plugin != nullptr; node = node->next) {
    if (node->plugin != pin || node->loaded != 0) continue;
    GromlitPlugin stored{};
    ReadOnFirstUse(node, &stored);
    std::copy_n(stored.actions, kMaxActions, pin->actions);
    pin->nactions = stored.nactions;
    pin->damagedfile = stored.damagedfile;
    return;
  }
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
  const std::string path = std::string(GromlitPath) + "/" + pluginDirectory;
  const std::unique_ptr<DIR, int (*)(DIR*)> directory(opendir(path.c_str()), closedir);
  if (directory == nullptr) return 0;
  int count = 0;
  GromlitPluginList* sentinel = allPlugins;
  while (const dirent* entry = readdir(directory.get())) {
    GromlitPlugin* plugin = LoadPlugin(entry->d_name);
    if (plugin == nullptr) continue;
    count++;
    sentinel->filename = StrDup(entry->d_name);
    sentinel->loaded = 0;
    sentinel->plugin = plugin;
    sentinel->next = new GromlitPluginList();
    sentinel = sentinel->next;
  }
  return count;
}

GromlitPlugin* LoadPlugin(const char* fname) {
  auto plugin = std::make_unique<GromlitPlugin>();
  return ReadPluginHeader(fname, plugin.get()) == nullptr ? nullptr : plugin.release();
}

GromlitPlugin* ReadPluginHeader(const char* fname, GromlitPlugin* pin) {
  std::vector<std::byte> file;
  if (!ReadFile(PluginPath(fname).c_str(), kRecordEnd, &file)) return nullptr;
  return DecodePluginRecord(file, pin) ? pin : nullptr;
}

GromlitPlugin* ReadPluginActions(const char* fname, GromlitPlugin* pin) {
  std::vector<std::byte> file;
  if (!ReadFile(PluginPath(fname).c_str(), kMaxPluginFile, &file)) return nullptr;
  const PluginPart missing = DecodePluginFile(file, pin);
  if (missing == PluginPart::kNothing) return pin;
  if (missing == PluginPart::kRecord) return nullptr;
  PrintReadError(missing);
  pin->damagedfile = StrDup(fname);
  return nullptr;
}

// --- Writing ----------------------------------------------------------------------------------

GromlitPlugin* UnLoadPlugin(GromlitPlugin* pin, const char* fname) {
  EnsureActions(pin);
  const std::string name = StoredName(*pin, fname);
  if (name.empty()) {
    errno = EEXIST;
    return SaveFailed();
  }
  const std::vector<std::byte> image = EncodePluginFile(pin);
  if (image.empty()) {
    errno = EFBIG;
    return SaveFailed();
  }
  if (pin->damagedfile != nullptr) {
    if (!SetAside(pin->damagedfile)) return SaveFailed();
    Retire(pin->damagedfile);
    pin->damagedfile = nullptr;
  }
  size_t wrote = kNoWrite;
  if (SaveFile(PluginPath(name).c_str(), image, &wrote)) return pin;
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
  EnsureList();
  const std::string_view wanted = StoredClass(classname);
  for (auto* node = allPlugins; node->plugin != nullptr; node = node->next) {
    if (FieldText(node->plugin->classname) != wanted) continue;
    if (node->loaded == 0) ReadOnFirstUse(node, node->plugin);
    return node;
  }
  return nullptr;
}

GromlitPlugin* FindPlugin(const char* classname) {
  const GromlitPluginList* node = FindPluginNode(classname);
  return node == nullptr ? nullptr : node->plugin;
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
  struct stat st {};
  if (!name.empty() && stat(PluginPath(name).c_str(), &st) == 0 && S_ISREG(st.st_mode))
    plugin->damagedfile = StrDup(name.c_str());
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
  const std::string name = StoredName(*killpin, fname);
  if (name.empty()) errno = ENOENT;
  if (name.empty() || unlink(PluginPath(name).c_str()) != 0) {
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
