#include "tools/installation.h"

#include <algorithm>
#include <filesystem>
#include <system_error>

#include "core/option_files.h"
#include "core/plugin_names.h"
#include "core/symbol_files.h"

namespace gromlit {
namespace {
namespace fs = std::filesystem;

// The data files of one directory. Further directories in it are nobody's data.
bool ReadDirectory(const std::string& dir, const char* directory, Kind kind,
                   std::vector<FoundFile>* files, Installation* found, std::string* error) {
  std::vector<std::string> names;
  std::error_code code;
  fs::directory_iterator it(dir + "/" + directory, code);
  if (code == std::errc::no_such_file_or_directory) return true;
  for (; !code && it != fs::directory_iterator(); it.increment(code)) {
    std::error_code ignored;
    if (!it->is_directory(ignored))
      names.push_back(std::string(directory) + "/" + it->path().filename().string());
  }
  if (code) {
    *error = std::string(directory) + ": " + code.message();
    return false;
  }
  std::sort(names.begin(), names.end());
  const std::string below = dir + "/";
  for (const std::string& name : names) {
    FoundFile next = {name, std::make_unique<DataFile>()};
    std::string why;
    if (!ReadDataFile((below + name).c_str(), next.file.get(), &why)) {
      found->strangers.emplace_back(name, why);
    } else if (next.file->kind != kind) {
      found->strangers.emplace_back(name, "belongs into another directory");
    } else {
      files->push_back(std::move(next));
    }
  }
  return true;
}

}  // namespace

std::string OptionsName() {
  return std::string(optionDirectory) + "/" + defaultOptionFile;
}

bool ReadInstallation(const std::string& dir, Installation* found, std::string* error) {
  std::error_code code;
  if (!fs::is_directory(dir, code)) {
    *error = code ? code.message() : "no directory";
    return false;
  }
  std::vector<FoundFile> options;
  if (!ReadDirectory(dir, symbolDirectory, Kind::kSymbol, &found->symbols, found, error) ||
      !ReadDirectory(dir, pluginDirectory, Kind::kPlugin, &found->plugins, found, error) ||
      !ReadDirectory(dir, optionDirectory, Kind::kOptions, &options, found, error))
    return false;
  for (FoundFile& file : options)
    if (file.name == OptionsName()) found->options = std::make_unique<FoundFile>(std::move(file));
  // Whatever else lies beside the options, the program looks at that one file only.
  std::erase_if(found->strangers, [](const auto& stranger) {
    return stranger.first.starts_with(std::string(optionDirectory) + "/") &&
           stranger.first != OptionsName();
  });
  return true;
}

FoundFile* FileOfKey(std::vector<FoundFile>* files, const std::string& key) {
  FoundFile* best = nullptr;
  for (FoundFile& file : *files) {
    if (KeyOf(*file.file) != key) continue;
    const bool symbol = file.file->kind == Kind::kSymbol;
    const std::string own = std::string(symbol ? symbolDirectory : pluginDirectory) + "/" +
                            (symbol ? key : OwnFileName(key));
    if (file.name == own) return &file;
    if (best == nullptr) best = &file;
  }
  return best;
}

}  // namespace gromlit
