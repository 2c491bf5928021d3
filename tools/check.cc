#include "tools/check.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <map>
#include <string_view>
#include <system_error>

#include "core/command_types.h"
#include "core/option_fields.h"
#include "core/option_files.h"
#include "core/plugin_files.h"
#include "core/plugin_names.h"
#include "core/printable.h"
#include "core/strings.h"
#include "core/symbol_files.h"
#include "core/value_names.h"
#include "recognition/shadow.h"
#include "recognition/shape_match.h"
#include "recognition/signature_match.h"
#include "tools/data_file.h"

namespace gromlit {
namespace {
namespace fs = std::filesystem;

// A text from a file in a line of output: nothing in it may end the line or reach a terminal raw.
std::string Quote(std::string_view text) {
  return "\"" + Printable(text) + "\"";
}

bool SameCommand(const GromlitCmd& one, const GromlitCmd& other) {
  const auto text = [](const GromlitCmd& cmd) {
    return std::string_view(cmd.text == nullptr ? "" : cmd.text,
                            cmd.text == nullptr ? 0 : cmd.ntext);
  };
  return one.type == other.type && one.nkeys == other.nkeys && one.checked == other.checked &&
         one.flag == other.flag && text(one) == text(other) &&
         std::equal(std::begin(one.keycode), std::end(one.keycode), other.keycode) &&
         std::equal(std::begin(one.keystate), std::end(one.keystate), other.keystate) &&
         std::equal(std::begin(one.buttons), std::end(one.buttons), other.buttons);
}

// Whether the later action gives the earlier one a further symbol: its name and its commands are
// the same, and the shapes differ. Whichever of them runs is then right, and matching by shape has
// use for both.
bool AnotherSymbolFor(GromlitAction* earlier, GromlitAction* later) {
  if (FieldText(earlier->name) != FieldText(later->name) || earlier->ncmds != later->ncmds)
    return false;
  for (uint32_t j = 0; j < later->ncmds; j++)
    if (!SameCommand(*earlier->cmds[j], *later->cmds[j])) return false;
  return !SameShape(*SymbolShape(&earlier->sym), *SymbolShape(&later->sym));
}

class Checker {
 public:
  Checker(const std::string& dir, ShapeCheck shape) : dir_(dir), shape_(shape) {}

  std::vector<std::string> Run() {
    if (shape_.on && shape_.tolerance == kOptionsTolerance) shape_.tolerance = OptionsTolerance();
    for (const std::string& name : Names(symbolDirectory)) CheckSymbolFile(name);
    for (const std::string& name : Names(pluginDirectory)) CheckPluginFile(name);
    ReportSparePlugins();
    Names(optionDirectory);
    CheckOptionsFile();
    return std::move(lines_);
  }

 private:
  void Report(const std::string& file, const std::string& problem) {
    lines_.push_back(Printable(file) + ": " + problem);
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
    if (HandsOff(&plugin)) {
      Report(name, FieldText(plugin.classname) == defaultPluginClassname
                       ? "hands off: no gestures over applications without a plug-in"
                       : "hands off: no gestures over " + Quote(FieldText(plugin.classname)));
    }
    std::vector<std::string> titles;
    for (int i = 0; i < plugin.nactions; i++) {
      GromlitAction* action = plugin.actions[i];
      titles.push_back("action " + std::to_string(i) + " " + Quote(FieldText(action->name)));
      CheckSymbol(name, titles.back() + ": ", &action->sym);
      CheckCommands(name, titles.back() + ": ", *action);
      for (int j = 0; j < i; j++) {
        GromlitAction* earlier = plugin.actions[j];
        if (!Shadows(SymbolSignature(&earlier->sym), SymbolSignature(&action->sym))) continue;
        if (AnotherSymbolFor(earlier, action)) continue;
        Report(name, titles.back() + " can never run: " + titles[static_cast<size_t>(j)] +
                         " takes all its strokes");
        break;
      }
    }
    if (shape_.on) CheckShapes(name, plugin, titles);
    classes_[std::string(FieldText(plugin.classname))].push_back(
        name.substr(std::string_view(pluginDirectory).size() + 1));
  }

  void CheckCommands(const std::string& file, const std::string& where,
                     const GromlitAction& action) {
    for (uint32_t j = 0; j < action.ncmds; j++) {
      const GromlitCmd& cmd = *action.cmds[j];
      const std::string command = where + "command " + std::to_string(j) + ": ";
      if (CommandTypeOf(cmd.type) == nullptr)
        Report(file, command + "type " + std::to_string(cmd.type) + " is unknown, it does nothing");
      if (cmd.nkeys > kMaxKeys) {
        Report(file, command + std::to_string(cmd.nkeys) + " keys, the possible " +
                         std::to_string(kMaxKeys) + " are sent");
      }
    }
  }

  // Of several files of one class the program uses one and leaves the others alone.
  void ReportSparePlugins() {
    for (const auto& [classname, names] : classes_) {
      std::string used = names.front();
      for (const std::string& name : names)
        if (CountsBefore(classname, name, used)) used = name;
      const std::string directory = std::string(pluginDirectory) + "/";
      for (const std::string& name : names) {
        if (name == used) continue;
        Report(directory + name, "not used: class " + Quote(classname) + " is also that of " +
                                     Printable(directory + used) + ", which counts");
      }
    }
  }

  // Reports pairs of actions of which a stroke drawn exactly as the one is near enough to run the
  // other, were the one not there. Further symbols for one action need not be kept apart.
  void CheckShapes(const std::string& name, const GromlitPlugin& plugin,
                   const std::vector<std::string>& titles) {
    // At the highest tolerance everything is near enough; then it is the next one's line that
    // tells.
    const int32_t tolerance = shape_.tolerance == 5 ? 4 : shape_.tolerance;
    for (int i = 0; i < plugin.nactions; i++) {
      const Shape* shape = SymbolShape(&plugin.actions[i]->sym);
      for (int j = 0; j < i; j++) {
        const Shape* earlier = SymbolShape(&plugin.actions[j]->sym);
        const float score = std::max(ShapeScore(*shape, *earlier), ShapeScore(*earlier, *shape));
        if (score < ShapeThreshold(tolerance)) continue;
        if (AnotherSymbolFor(plugin.actions[j], plugin.actions[i])) continue;
        char text[32];
        std::snprintf(text, sizeof text, "%.4f", static_cast<double>(score));
        Report(name, titles[static_cast<size_t>(j)] + " and " + titles[static_cast<size_t>(i)] +
                         " look alike: " + text);
      }
    }
  }

  // The tolerance of the options file; medium without one.
  int32_t OptionsTolerance() {
    const std::string path = dir_ + "/" + optionDirectory + "/" + defaultOptionFile;
    DataFile file;
    std::string error;
    const bool read =
        ReadDataFile(path.c_str(), &file, &error) && file.kind == Kind::kOptions && !file.unusable;
    return read ? file.options.tolerance : 3;
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
    for (const OptionField& field : kOptionFields) {
      if (NamingOf(field.name) != Naming::kValues) continue;
      const int32_t value = OptionNumber(file.options, field);
      if (!IsNamedValue(field.name, value))
        Report(name, field.name + (" " + std::to_string(value)) + " is unknown, 0 is used");
    }
    // Nobody but matching by shape asks for it.
    const int32_t tolerance = file.options.tolerance;
    if (MatchingWayOf(&file.options) == kByShape && (tolerance < 1 || tolerance > 5))
      Report(name, "tolerance " + std::to_string(tolerance) + " lies outside 1..5, 3 is used");
  }

  const std::string& dir_;
  ShapeCheck shape_;
  std::vector<std::string> lines_;
  std::map<std::string, std::vector<std::string>> classes_;  // class, files in byte order
};

}  // namespace

std::vector<std::string> CheckInstallation(const std::string& dir, ShapeCheck shape) {
  return Checker(dir, shape).Run();
}

}  // namespace gromlit
