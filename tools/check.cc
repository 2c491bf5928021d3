#include "tools/check.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <map>
#include <string_view>
#include <system_error>

#include "core/option_files.h"
#include "core/plugin_files.h"
#include "core/strings.h"
#include "core/symbol_files.h"
#include "recognition/shadow.h"
#include "recognition/signature_match.h"
#include "tools/data_file.h"

namespace gromlit {
namespace {
namespace fs = std::filesystem;

// A text from a file in a line of output: nothing in it may end the line or reach a terminal raw.
std::string Quote(std::string_view text) {
  std::string quoted = "\"";
  for (const char c : text) quoted += static_cast<unsigned char>(c) < ' ' || c == '\x7f' ? '?' : c;
  return quoted + "\"";
}

class Checker {
 public:
  explicit Checker(const std::string& dir) : dir_(dir) {}

  std::vector<std::string> Run() {
    for (const std::string& name : Names(symbolDirectory)) CheckSymbolFile(name);
    for (const std::string& name : Names(pluginDirectory)) CheckPluginFile(name);
    Names(optionDirectory);
    CheckOptionsFile();
    return std::move(lines_);
  }

 private:
  void Report(const std::string& file, const std::string& problem) {
    const std::string quoted = Quote(file);
    lines_.push_back(quoted.substr(1, quoted.size() - 2) + ": " + problem);
  }

  // Names in a data directory, sorted; further directories are nobody's data and left out.
  std::vector<std::string> Names(const char* directory) {
    std::vector<std::string> names;
    std::error_code error;
    fs::directory_iterator it(dir_ + "/" + directory, error);
    for (; !error && it != fs::directory_iterator(); it.increment(error)) {
      std::error_code ignored;
      if (!it->is_directory(ignored))
        names.push_back(std::string(directory) + "/" + it->path().filename().string());
    }
    if (error) Report(directory, error.message());
    std::sort(names.begin(), names.end());
    return names;
  }

  // Reads the file and reports its damage; false when it is of no use to the program.
  bool Read(const std::string& name, Kind kind, DataFile* file) {
    std::string error;
    if (!ReadDataFile((dir_ + "/" + name).c_str(), file, &error)) {
      Report(name, error);
      return false;
    }
    if (file->kind != kind) {
      Report(name, "belongs into another directory: its header is of another kind");
      return false;
    }
    for (const std::string& damage : file->damage) Report(name, damage);
    return !file->unusable;
  }

  void CheckSymbol(const std::string& file, const std::string& where, GromlitSymbol* sym) {
    for (int k = 1; k <= sym->npoints; k++) {
      for (const int v : {sym->x[k], sym->y[k]}) {
        if (v < kGridMin || v > kGridMax) {
          Report(file, where + "coordinate " + std::to_string(v) + " of point " +
                           std::to_string(k) + " lies outside 16..264");
        }
      }
    }
    if (*SymbolSignature(sym) == '\0')
      Report(file, where + "symbol " + Quote(FieldText(sym->name)) + " has an empty signature");
  }

  void CheckSymbolFile(const std::string& name) {
    DataFile file;
    if (Read(name, Kind::kSymbol, &file)) CheckSymbol(name, "", &file.symbol);
  }

  void CheckPluginFile(const std::string& name) {
    DataFile file;
    if (!Read(name, Kind::kPlugin, &file)) return;
    const GromlitPlugin& plugin = file.plugin;
    std::vector<std::string> titles;
    for (int i = 0; i < plugin.nactions; i++) {
      GromlitAction* action = plugin.actions[i];
      titles.push_back("action " + std::to_string(i) + " " + Quote(FieldText(action->name)));
      CheckSymbol(name, titles.back() + ": ", &action->sym);
      for (int j = 0; j < i; j++) {
        if (!Shadows(SymbolSignature(&plugin.actions[j]->sym), SymbolSignature(&action->sym)))
          continue;
        Report(name, titles.back() + " can never run: " + titles[static_cast<size_t>(j)] +
                         " takes all its strokes");
        break;
      }
    }
    const std::string classname(FieldText(plugin.classname));
    const auto [first, fresh] = classes_.emplace(classname, name);
    if (!fresh) Report(name, "class " + Quote(classname) + " is also that of " + first->second);
  }

  void CheckOptionsFile() {
    const std::string name = std::string(optionDirectory) + "/" + defaultOptionFile;
    std::error_code ignored;
    // Absent until the user saves preferences for the first time.
    if (!fs::exists(fs::symlink_status(dir_ + "/" + name, ignored))) return;
    DataFile file;
    if (!Read(name, Kind::kOptions, &file)) return;
    const int button = EffectiveButton(&file.options);
    if (button != file.options.button) {
      Report(name, "draw button " + std::to_string(file.options.button) + " lies outside 1..5, " +
                       std::to_string(button) + " is used");
    }
  }

  const std::string& dir_;
  std::vector<std::string> lines_;
  std::map<std::string, std::string> classes_;  // class, file
};

}  // namespace

std::vector<std::string> CheckInstallation(const std::string& dir) {
  return Checker(dir).Run();
}

}  // namespace gromlit
