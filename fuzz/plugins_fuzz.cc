// Plug-in files of strangers, under any names, through everything that is done with them: listed,
// read, drawn, matched, executed, saved, set aside, created, deleted and read again.
//
// Whatever the directory holds: all records are within their limits; a save touches its own class's
// file and nothing of another class's, leaves no temporary, and what it wrote reads back the same;
// a damaged file is set aside before it is overwritten; nothing beside the directory changes.
#include <sys/stat.h>
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "core/hands_off.h"
#include "core/plugin_files.h"
#include "core/plugin_image.h"
#include "core/plugin_pages.h"
#include "core/record_codec.h"
#include "core/strings.h"
#include "fuzz/fake_server.h"
#include "fuzz/fake_system.h"
#include "fuzz/records.h"
#include "fuzz/require.h"
#include "fuzz/scratch.h"
#include "fuzz/target.h"

namespace gromlit::fuzz {
namespace {

std::string BytesOf(const std::vector<std::byte>& bytes) {
  return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

// A plug-in file: whole, damaged, or bytes behind a header.
std::string MakeFile(FuzzedDataProvider* data) {
  switch (data->ConsumeIntegralInRange(0, 3)) {
    case 0:
      return data->ConsumeRandomLengthString(100'000);
    case 1: {  // records are mostly zero, which a fuzzer does not find by itself
      std::string file("GromlitPlugin");
      file.resize(kHeaderSize + kPluginImageSize);
      for (int n = data->ConsumeIntegralInRange(0, 32); n > 0; n--) {
        file += data->ConsumeRandomLengthString(300);
        file.append(data->ConsumeIntegralInRange<size_t>(0, 1100), '\0');
      }
      file[kHeaderSize + 650] = data->ConsumeIntegral<char>();
      return file;
    }
    default: {
      GromlitPlugin plugin{};
      FillPlugin(data, &plugin);
      std::string file = BytesOf(EncodePluginFile(&plugin));
      ReleasePlugin(&plugin);
      if (data->ConsumeBool()) {
        for (int n = data->ConsumeIntegralInRange(0, 3); n > 0; n--)
          file[data->ConsumeIntegralInRange<size_t>(0, file.size() - 1)] =
              data->ConsumeIntegral<char>();
        file.resize(data->ConsumeIntegralInRange<size_t>(0, file.size()));
      }
      return file;
    }
  }
}

std::string MakeName(FuzzedDataProvider* data) {
  std::string name = AnyText(data, 255);
  std::erase(name, '/');
  if (name.empty() || name == "." || name == "..") name = "Some.sla";
  return name;
}

// Puts files, links, pipes and directories where plug-ins are looked for.
void FillDirectory(FuzzedDataProvider* data, const std::string& home) {
  const std::string directory = home + "/plugins/";
  for (int n = data->ConsumeIntegralInRange(0, 4); n > 0; n--) {
    const std::string path = directory + MakeName(data);
    switch (data->ConsumeIntegralInRange(0, 9)) {
      case 0:
        mkdir(path.c_str(), 0700);
        break;
      case 1:
        mkfifo(path.c_str(), 0600);
        break;
      case 2: {
        const std::string target = AnyText(data, 40);
        // Where a link leads a save follows: not out of the directory, that is the user's wish.
        if (target.find('/') == target.npos && target != "..")
          (void)!symlink(target.c_str(), path.c_str());
        break;
      }
      default:
        PutFile(path, MakeFile(data));
    }
  }
}

std::string ClassOf(const std::string& file) {
  GromlitPlugin record;
  const auto* bytes = reinterpret_cast<const std::byte*>(file.data());
  return DecodePluginRecord({bytes, file.size()}, &record)
             ? std::string(FieldText(record.classname))
             : std::string();
}

// Compares what there was with what there is after a save of a class or a deletion.
void CheckOthers(const Files& before, const Files& after, const std::string& classname) {
  for (const auto& [name, bytes] : before) {
    const auto now = after.find(name);
    if (now != after.end() && now->second == bytes) continue;
    // Gone or another: only a file of this class, or one that is no plug-in.
    const std::string owner = ClassOf(bytes);
    Require(name.starts_with("plugins/") && (owner.empty() || owner == classname));
  }
  for (const auto& [name, bytes] : after) {
    if (before.contains(name)) continue;
    Require(!name.starts_with(".gromlit-save-"));
    Require(name.starts_with("damaged/") ||
            (name.starts_with("plugins/") && ClassOf(bytes) == classname));
  }
}

GromlitPlugin* Pick(FuzzedDataProvider* data) {
  std::vector<GromlitPlugin*> all;
  for (auto* node = allPlugins; node->plugin != nullptr; node = node->next)
    all.push_back(node->plugin);
  return all.empty() ? nullptr : data->PickValueInArray<GromlitPlugin*>({all.front(), all.back()});
}

// Saves a plug-in; what was read damaged must be kept.
void Save(GromlitPlugin* plugin, const std::string& home) {
  const std::string classname(FieldText(plugin->classname));
  FindPlugin(classname.c_str());
  const std::string damaged =
      plugin->damagedfile != nullptr ? FileBytes(home + "/plugins/" + plugin->damagedfile) : "";
  const Files before = FilesBelow(home);
  // Some are saved in place.
  const TemporariesRefused refused(classname.size() % 4 == 3);
  if (UnLoadPlugin(plugin, plugin->classname) == nullptr) {
    Require(FilesBelow(home) == before || !damaged.empty());
    return;
  }
  const Files after = FilesBelow(home);
  CheckOthers(before, after, classname);
  Require(*plugin->storedfile != '\0');
  const std::string written = FileBytes(home + "/plugins/" + plugin->storedfile);
  Require(written == BytesOf(EncodePluginFile(plugin)));
  if (!damaged.empty()) {
    bool kept = false;
    for (const auto& [name, bytes] : after)
      kept |= name.starts_with("damaged/") && bytes == damaged;
    Require(kept);
  }
  auto again = std::make_unique<GromlitPlugin>();
  Require(ReadPluginActions(plugin->storedfile, again.get()) != nullptr);
  CheckPlugin(*again);
  Require(BytesOf(EncodePluginFile(again.get())) == written);
  ReleasePlugin(again.get());
}

void Step(FuzzedDataProvider* data, const std::string& home, const Stroke& stroke) {
  GromlitPlugin* plugin = Pick(data);
  switch (data->ConsumeIntegralInRange(0, 6)) {
    case 0:
      if (plugin != nullptr) Save(plugin, home);
      break;
    case 1:
      if (plugin != nullptr) {
        FindPluginNode(plugin->classname);
        UsePlugin(plugin, stroke);
      }
      break;
    case 2:
      if (plugin != nullptr) SetHandsOff(plugin, data->ConsumeBool());
      break;
    case 3: {
      if (plugin == nullptr) break;
      const std::string classname(FieldText(plugin->classname));
      auto* node = FindPluginNode(classname.c_str());
      GromlitPlugin* listed = node->plugin;
      char* filename = node->filename;
      const Files before = FilesBelow(home);
      if (DropPlugin(plugin, plugin->classname) == 0) break;
      CheckOthers(before, FilesBelow(home), classname);
      Require(!IsListed(listed));
      ReleasePlugin(listed);
      delete listed;
      std::free(filename);
      break;
    }
    case 4: {
      const std::string classname = AnyText(data, 200);
      const Files before = FilesBelow(home);
      bool saved = false;
      GromlitPlugin* made = CreatePlugin(AnyText(data, 80).c_str(), classname.c_str(), &saved);
      Require(made != nullptr && IsListed(made));
      if (saved) CheckOthers(before, FilesBelow(home), std::string(FieldText(made->classname)));
      Require(FindPlugin(classname.c_str()) == made);
      IsUnused(made);
      break;
    }
    case 5:
      IsHandsOffClass(AnyText(data, 80).c_str());
      AnyHandsOff();
      PluginMenuPages();
      break;
    default:
      ReleaseLists();
      LoadPlugins();
  }
}

}  // namespace

void Run(FuzzedDataProvider* data) {
  const std::string& home = FreshInstallation();
  GromlitUserOptions options{};
  FillOptions(data, &options);
  user = &options;
  FillDirectory(data, home);
  const Files before = FilesBelow(home);
  const int listed = LoadPlugins();
  Require(listed >= 0 && static_cast<size_t>(listed) <= before.size() + 4);
  const Stroke stroke = MakeAnyStroke(data);
  for (auto* node = allPlugins; node->plugin != nullptr; node = node->next) {
    const std::string classname(FieldText(node->plugin->classname));
    Require(FindPlugin(classname.c_str()) == node->plugin);
    CheckPlugin(*node->plugin);
  }
  Require(FilesBelow(home) == before);
  for (int n = data->ConsumeIntegralInRange(0, 8); n > 0; n--) Step(data, home, stroke);
  for (auto* node = allPlugins; node->plugin != nullptr; node = node->next)
    CheckPlugin(*node->plugin);
  ReleaseLists();
  user = nullptr;
  CheckOutside();
}

}  // namespace gromlit::fuzz
