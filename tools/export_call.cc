#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <span>

#include "core/strings.h"
#include "tools/collection.h"
#include "tools/installation.h"
#include "tools/output_file.h"
#include "tools/record_json.h"
#include "tools/sharing_calls.h"
#include "tools/tool_io.h"

namespace gromlit {
namespace {

// The collection that is being made, and the status of making it.
struct Export {
  Collection collection;
  int status = kSuccess;

  // A file whose damage, if any, is told; what can be read of it is taken over.
  void Add(const std::string& path, std::unique_ptr<DataFile> file) {
    if (WarnOfDamage(path, *file) != kSuccess) status = kTrouble;
    if (file->unusable) return;
    if (!HasKey(*file)) {
      LeaveOut(path, file->kind == Kind::kSymbol ? "it has no name" : "it has no class");
      return;
    }
    if (file->kind == Kind::kOptions) {
      if (collection.options == nullptr) {
        collection.options = std::move(file);
      } else if (FileImage(*collection.options) != FileImage(*file)) {
        LeaveOut(path, "there are other options before it");
      }
      return;
    }
    DataFiles& files = file->kind == Kind::kSymbol ? collection.symbols : collection.plugins;
    const std::string key = KeyOf(*file);
    const auto known = std::find_if(files.begin(), files.end(),
                                    [&](const auto& other) { return KeyOf(*other) == key; });
    if (known == files.end()) {
      files.push_back(std::move(file));
    } else if (FileImage(**known) != FileImage(*file)) {
      LeaveOut(path, file->kind == Kind::kSymbol ? "there is another symbol of its name"
                                                 : "there is another plug-in of its class");
    }
  }

  void AddDirectory(const std::string& dir) {
    Installation found;
    std::string error;
    if (!ReadInstallation(dir, &found, &error)) {
      status = Complain(dir, error);
      return;
    }
    const std::string below = dir + "/";
    for (const auto& [name, why] : found.strangers) status = Complain(below + name, why);
    // The files that the program uses come first: others of the same key are then left out.
    for (auto* files : {&found.symbols, &found.plugins}) {
      const auto used = [files](const FoundFile& file) {
        return FileOfKey(files, KeyOf(*file.file)) == &file;
      };
      std::vector<bool> first;
      for (const FoundFile& file : *files) first.push_back(used(file));
      for (const bool turn : {true, false})
        for (size_t i = 0; i < files->size(); i++)
          if (first[i] == turn) Add(below + (*files)[i].name, std::move((*files)[i].file));
    }
    if (found.options != nullptr) Add(below + found.options->name, std::move(found.options->file));
  }

  void LeaveOut(const std::string& path, const std::string& why) {
    Complain(path, "left out, " + why);
    if (status == kSuccess) status = kNegative;
  }
};

}  // namespace

int ExportFiles(const std::vector<std::string>& paths, const std::string& output) {
  Export made;
  for (const std::string& path : paths) {
    std::error_code ignored;
    if (std::filesystem::is_directory(path, ignored)) {
      made.AddDirectory(path);
      continue;
    }
    auto file = std::make_unique<DataFile>();
    std::string error;
    if (ReadDataFile(path.c_str(), file.get(), &error)) {
      made.Add(path, std::move(file));
    } else {
      made.status = Complain(path, error);
    }
  }
  const Collection& collection = made.collection;
  if (collection.symbols.empty() && collection.plugins.empty() && collection.options == nullptr)
    return Complain(paths.front(), "holds nothing to export");
  std::string text;
  try {
    text = CollectionText(collection);
  } catch (const JsonError& e) {
    return Complain(output, e.what());
  }
  if (output == "-") {
    Write(text);
  } else if (!WriteOutputFile(output, std::as_bytes(std::span(text)))) {
    return Complain(output, std::strerror(errno));
  }
  return made.status;
}

}  // namespace gromlit
