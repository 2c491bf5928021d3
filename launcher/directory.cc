#include "launcher/directory.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

#include "core/choices.h"
#include "core/files.h"
#include "core/gromlit.h"
#include "core/option_files.h"
#include "core/plugin_files.h"
#include "core/plugin_image.h"
#include "core/printable.h"
#include "core/strings.h"
#include "core/symbol_files.h"
#include "launcher/first_options.h"
#include "launcher/manifest.h"
#include "launcher/user_keys.h"
#include "places/places.h"

namespace gromlit {
namespace {
namespace fs = std::filesystem;

using Bytes = std::vector<std::byte>;

constexpr const char* kDataDirectories[] = {symbolDirectory, pluginDirectory, optionDirectory};
constexpr size_t kMaxStarterFile = kMaxPluginFile;
constexpr mode_t kUsual = 0777;  // less the umask

std::string Reason(const std::string& what, int error) {
  return Printable(what) + ": " + std::strerror(error);
}

// Whether there is anything, also a link that leads nowhere.
bool IsThere(const std::string& path) {
  struct stat info {};
  return lstat(path.c_str(), &info) == 0;
}

// Holds the directory against other launchers until the object goes. A file system without locks is
// worked on without.
class Lock {
 public:
  explicit Lock(const std::string& directory)
      : fd_(open(directory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)) {
    while (fd_ >= 0 && flock(fd_, LOCK_EX) != 0 && errno == EINTR) {
    }
  }
  ~Lock() {
    if (fd_ >= 0) close(fd_);
  }
  Lock(const Lock&) = delete;
  Lock& operator=(const Lock&) = delete;
  bool ok() const { return fd_ >= 0; }

 private:
  const int fd_;
};

// Makes the core's saves and options speak of this directory while the object lives.
class PathInUse {
 public:
  explicit PathInUse(const std::string& directory) : former_(GromlitPath) {
    GromlitPath = directory.c_str();
  }
  ~PathInUse() { GromlitPath = former_; }
  PathInUse(const PathInUse&) = delete;
  PathInUse& operator=(const PathInUse&) = delete;

 private:
  const char* former_;
};

// What a path of the user holds.
enum class Found { kNothing, kFile, kOther };

Found Look(const std::string& path, Bytes* contents) {
  struct stat info {};
  if (lstat(path.c_str(), &info) != 0) return errno == ENOENT ? Found::kNothing : Found::kOther;
  if (!S_ISREG(info.st_mode) || !ReadFile(path.c_str(), kMaxStarterFile, contents))
    return Found::kOther;
  return Found::kFile;
}

// One run over a directory.
struct Work {
  const std::string& directory;
  const std::string& skeleton;
  const std::function<Keymap()>& keyboard;
  Preparation* result;
  Manifest manifest = {};
  bool asked = false;  // the keyboard was
  Keymap map = nullptr;
};

std::string PathIn(const Work& work, const std::string& name) {
  return work.directory + "/" + name;
}

void Fail(Work* work, const std::string& what, int error) {
  if (work->result->error.empty()) work->result->error = Reason(what, error);
}

bool IsPlugin(std::string_view name) {
  return name.starts_with(std::string(pluginDirectory) + "/");
}

// What is written for a starter file.
Bytes ForTheUser(Work* work, const std::string& name, const Bytes& source) {
  if (!IsPlugin(name)) return source;
  if (!std::exchange(work->asked, true)) work->map = work->keyboard();
  return work->map == nullptr ? source : WithKeysOf(work->map.get(), source);
}

// The directories above a file of the installation directory.
bool MakeParents(const std::string& directory, const std::string& name) {
  for (size_t slash = name.find('/'); slash != std::string::npos; slash = name.find('/', slash + 1))
    if (mkdir((directory + "/" + name.substr(0, slash)).c_str(), kUsual) != 0 && errno != EEXIST)
      return false;
  return true;
}

bool WriteStarterFile(Work* work, const std::string& name, const Bytes& source,
                      const Bytes& contents) {
  const std::string path = PathIn(*work, name);
  if (!MakeParents(work->directory, name) || !SaveFile(path.c_str(), contents)) {
    Fail(work, path, errno);
    return false;
  }
  work->manifest.files[name] = {Checksum(source), Checksum(contents)};
  return true;
}

// Notes what a path of the user holds, whose history is not known.
void Adopt(Work* work, const std::string& name, const Bytes& source, Found what,
           const Bytes& found) {
  ManifestEntry entry{Checksum(source), std::nullopt};
  if (what == Found::kFile && (found == source || found == ForTheUser(work, name, source)))
    entry.written = Checksum(found);
  work->manifest.files[name] = entry;
}

// A starter file that the manifest knows nothing of. What is there is the user's own, or written by
// a launcher that was killed before it could note it.
void BringNew(Work* work, const std::string& name, const Bytes& source) {
  Bytes found;
  const Found what = Look(PathIn(*work, name), &found);
  if (what != Found::kNothing) {
    Adopt(work, name, source, what, found);
  } else if (WriteStarterFile(work, name, source, ForTheUser(work, name, source))) {
    work->result->added++;
  }
}

void Renew(Work* work, const std::string& name, const Bytes& source, ManifestEntry* entry) {
  if (entry->source == Checksum(source)) return;  // no newer one; not for another keyboard either
  Bytes found;
  if (!entry->written.has_value() || Look(PathIn(*work, name), &found) != Found::kFile) return;
  const Bytes contents = ForTheUser(work, name, source);
  if (found == contents) {
    *entry = {Checksum(source), Checksum(contents)};
  } else if (Checksum(found) == *entry->written) {
    if (WriteStarterFile(work, name, source, contents)) work->result->renewed++;
  }
}

// The starter files by their paths relative to the library; false when one cannot be read.
bool ReadSkeleton(Work* work, std::map<std::string, Bytes>* files) {
  std::error_code error;
  fs::recursive_directory_iterator at(work->skeleton, error);
  for (; !error && at != fs::recursive_directory_iterator(); at.increment(error)) {
    if (!at->is_regular_file(error)) continue;
    const std::string name = at->path().lexically_relative(work->skeleton).string();
    // The manifest has a line for each.
    if (name.find('\n') != std::string::npos) continue;
    if (!ReadFile(at->path().c_str(), kMaxStarterFile, &(*files)[name])) {
      Fail(work, at->path().string(), errno);
      return false;
    }
  }
  if (error) Fail(work, work->skeleton, error.value());
  return !error;
}

void WriteOptions(Work* work) {
  const std::string path = DataPath(optionDirectory, defaultOptionFile);
  if (IsThere(path)) return;
  const GromlitUserOptions options = FirstOptions();
  if (SaveUserOptions(&options, defaultOptionFile) == 0) Fail(work, path, errno);
}

// Leaves word for the main window where there is something new for this user.
void LeaveNews(Work* work) {
  if (work->manifest.choices >= RecommendedChoices()) return;
  const std::unique_ptr<GromlitUserOptions> saved(LoadUserOptions(defaultOptionFile));
  GromlitUserOptions options{};
  if (saved != nullptr)
    options = *saved;
  else
    DefaultUserOptions(&options);
  if (LacksRecommended(options)) {
    constexpr std::string_view kText = "recommended choices\n";
    const std::string path = work->directory + "/" + kNewsFile;
    if (!SaveFile(path.c_str(), std::as_bytes(std::span(kText)))) {
      Fail(work, path, errno);
      return;
    }
  }
  work->manifest.choices = RecommendedChoices();
}

void SaveManifest(Work* work) {
  if (!WriteManifest(work->directory, work->manifest))
    Fail(work, work->directory + "/" + kManifestFile, errno);
}

// Fills a directory. The manifest comes first, so that a directory that was not filled to the end
// is known by it.
void Fill(Work* work, const std::map<std::string, Bytes>& files) {
  SaveManifest(work);
  for (const char* name : kDataDirectories) {
    const std::string path = PathIn(*work, name);
    if (mkdir(path.c_str(), kUsual) != 0 && errno != EEXIST) Fail(work, path, errno);
  }
  for (const auto& [name, source] : files) {
    if (!work->result->error.empty()) return;
    BringNew(work, name, source);
  }
  if (work->result->error.empty()) WriteOptions(work);
  if (!work->result->error.empty()) return;
  work->manifest.made = true;
  work->manifest.choices = RecommendedChoices();
  SaveManifest(work);
  work->result->made = work->result->error.empty();
  work->result->added = 0;
}

// The class that a plug-in file serves; empty for any other file.
std::string ClassOf(const Bytes& file) {
  const auto plugin = std::make_unique<GromlitPlugin>();
  return DecodePluginRecord(file, plugin.get()) ? std::string(FieldText(plugin->classname)) : "";
}

// The classes that the user's plug-ins serve, whatever the names of their files.
std::set<std::string> ServedClasses(const Work& work) {
  std::set<std::string> classes;
  std::error_code error;
  fs::directory_iterator at(PathIn(work, pluginDirectory), error);
  for (; !error && at != fs::directory_iterator(); at.increment(error)) {
    Bytes file;
    if (ReadFile(at->path().c_str(), kMaxStarterFile, &file)) classes.insert(ClassOf(file));
  }
  return classes;
}

void Upgrade(Work* work, const std::map<std::string, Bytes>& files) {
  std::optional<std::set<std::string>> served;
  for (const auto& [name, source] : files) {
    if (const auto known = work->manifest.files.find(name); known != work->manifest.files.end()) {
      Renew(work, name, source, &known->second);
      continue;
    }
    if (IsPlugin(name) && !IsThere(PathIn(*work, name))) {
      // The user has one for this application under another name, which the new file, named after
      // the class, would take the place of.
      if (!served.has_value()) served = ServedClasses(*work);
      if (served->contains(ClassOf(source))) {
        Adopt(work, name, source, Found::kNothing, {});
        continue;
      }
    }
    BringNew(work, name, source);
  }
}

// Whether the directory is anybody's yet.
bool HasData(const std::string& directory) {
  return std::any_of(std::begin(kDataDirectories), std::end(kDataDirectories),
                     [&](const char* name) { return IsThere(directory + "/" + name); });
}

}  // namespace

Preparation PrepareDirectory(const std::string& directory, const std::string& skeleton,
                             const std::function<Keymap()>& keyboard) {
  Preparation result;
  if (!MakeDirectories(directory)) {
    result.error = Reason(directory, errno);
    return result;
  }
  const Lock lock(directory);
  if (!lock.ok()) {
    result.error = Reason(directory, errno);
    return result;
  }
  const PathInUse path(directory);
  Work work{.directory = directory, .skeleton = skeleton, .keyboard = keyboard, .result = &result};
  const ManifestState state = ReadManifest(directory, &work.manifest);
  const bool fresh = state == ManifestState::kSound
                         ? !work.manifest.made
                         : state == ManifestState::kAbsent && !HasData(directory);
  result.usable = !fresh;
  std::map<std::string, Bytes> files;
  if (!ReadSkeleton(&work, &files)) return result;
  if (fresh) {
    Fill(&work, files);
    result.usable = result.made;
    return result;
  }
  const Manifest before = work.manifest;
  result.damaged = state == ManifestState::kDamaged;
  if (state == ManifestState::kSound) {
    Upgrade(&work, files);
  } else {
    for (const auto& [name, source] : files) {
      Bytes found;
      const Found what = Look(PathIn(work, name), &found);
      Adopt(&work, name, source, what, found);
    }
    work.manifest.made = true;
  }
  LeaveNews(&work);
  if (work.manifest != before) SaveManifest(&work);
  return result;
}

}  // namespace gromlit
