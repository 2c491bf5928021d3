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

std::string Reason(const std::string& what, int error) {
  return Printable(what) + ": " + std::strerror(error);
}

// Whether there is anything, also a link that leads nowhere; nothing with errno set when the system
// does not tell.
std::optional<bool> IsThere(const std::string& path) {
  struct stat info {};
  if (Uninterrupted([&] { return lstat(path.c_str(), &info); }) == 0) return true;
  if (errno == ENOENT) return false;
  return std::nullopt;
}

// Holds the directory against other launchers until the object goes. A file system without locks is
// worked on without.
class Lock {
 public:
  explicit Lock(const std::string& directory)
      : fd_(Uninterrupted(
            [&] { return open(directory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC); })) {
    if (fd_ >= 0) Uninterrupted([&] { return flock(fd_, LOCK_EX); });
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

// What a path of the user holds. kUnknown with errno set: the system does not tell now, and what is
// noted must not be a guess.
enum class Found { kNothing, kFile, kOther, kUnknown };

// Errors that say something of the path, and will say it again.
bool IsLasting(int error) {
  return error == ENOTDIR || error == ELOOP || error == ENAMETOOLONG || error == EACCES;
}

Found Look(const std::string& path, Bytes* contents) {
  struct stat info {};
  if (Uninterrupted([&] { return lstat(path.c_str(), &info); }) != 0) {
    if (errno == ENOENT) return Found::kNothing;
    return IsLasting(errno) ? Found::kOther : Found::kUnknown;
  }
  if (!S_ISREG(info.st_mode)) return Found::kOther;
  if (ReadFile(path.c_str(), kMaxStarterFile, contents)) return Found::kFile;
  return IsLasting(errno) ? Found::kOther : Found::kUnknown;
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
    if (!MakeDirectory((directory + "/" + name.substr(0, slash)).c_str())) return false;
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
  if (what == Found::kUnknown) {
    Fail(work, PathIn(*work, name), errno);
  } else if (what != Found::kNothing) {
    Adopt(work, name, source, what, found);
  } else if (WriteStarterFile(work, name, source, ForTheUser(work, name, source))) {
    work->result->added++;
  }
}

void Renew(Work* work, const std::string& name, const Bytes& source, ManifestEntry* entry) {
  if (entry->source == Checksum(source)) return;  // no newer one; not for another keyboard either
  Bytes found;
  if (!entry->written.has_value()) return;
  const Found what = Look(PathIn(*work, name), &found);
  if (what == Found::kUnknown) Fail(work, PathIn(*work, name), errno);
  if (what != Found::kFile) return;
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
  const std::optional<bool> there = IsThere(path);
  if (!there.has_value()) Fail(work, path, errno);
  if (there.value_or(true)) return;
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
  if (!work->result->error.empty()) return;  // directories without it would count as the user's
  for (const char* name : kDataDirectories) {
    const std::string path = PathIn(*work, name);
    if (!MakeDirectory(path.c_str())) Fail(work, path, errno);
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

// The classes that the user's plug-ins serve, whatever the names of their files. What cannot be
// read now is told as a failure: a starter plug-in might take the place of it.
std::set<std::string> ServedClasses(Work* work) {
  std::set<std::string> classes;
  std::error_code error;
  const std::string folder = PathIn(*work, pluginDirectory);
  fs::directory_iterator at(folder, error);
  for (; !error && at != fs::directory_iterator(); at.increment(error)) {
    Bytes file;
    if (ReadFile(at->path().c_str(), kMaxStarterFile, &file))
      classes.insert(ClassOf(file));
    else if (errno != ENOENT && errno != EISDIR && errno != EINVAL && !IsLasting(errno))
      Fail(work, at->path().string(), errno);
  }
  if (error && error != std::errc::no_such_file_or_directory) Fail(work, folder, error.value());
  return classes;
}

void Upgrade(Work* work, const std::map<std::string, Bytes>& files) {
  std::optional<std::set<std::string>> served;
  for (const auto& [name, source] : files) {
    if (const auto known = work->manifest.files.find(name); known != work->manifest.files.end()) {
      Renew(work, name, source, &known->second);
      continue;
    }
    const std::optional<bool> there = IsThere(PathIn(*work, name));
    if (!there.has_value()) {
      Fail(work, PathIn(*work, name), errno);
      continue;
    }
    if (IsPlugin(name) && !*there) {
      // The user has one for this application under another name, which the new file, named after
      // the class, would take the place of.
      if (!served.has_value()) served = ServedClasses(work);
      if (!work->result->error.empty()) continue;
      if (served->contains(ClassOf(source))) {
        Adopt(work, name, source, Found::kNothing, {});
        continue;
      }
    }
    BringNew(work, name, source);
  }
}

// Whether the directory is anybody's yet; nothing with errno set when the system does not tell.
std::optional<bool> HasData(const std::string& directory) {
  int why = 0;
  for (const char* name : kDataDirectories) {
    const std::optional<bool> there = IsThere(directory + "/" + name);
    if (!there.has_value()) why = errno;
    if (there.value_or(false)) return true;
  }
  if (why == 0) return false;
  errno = why;
  return std::nullopt;
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
  if (state == ManifestState::kUnreadable) Fail(&work, directory + "/" + kManifestFile, errno);
  const std::optional<bool> has_data = HasData(directory);
  if (!has_data.has_value()) Fail(&work, directory, errno);
  if (!result.error.empty()) {
    result.usable = has_data.value_or(false);
    return result;
  }
  const bool fresh = state == ManifestState::kSound ? !work.manifest.made
                                                    : state == ManifestState::kAbsent && !*has_data;
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
      if (what == Found::kUnknown) {
        Fail(&work, PathIn(work, name), errno);
        return result;
      }
      Adopt(&work, name, source, what, found);
    }
    work.manifest.made = true;
  }
  LeaveNews(&work);
  if (work.manifest != before) SaveManifest(&work);
  return result;
}

}  // namespace gromlit
