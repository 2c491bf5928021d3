// Every way in which the program changes a file of its own, for tests that disturb it.
#pragma once

#include <unistd.h>

#include <array>
#include <functional>
#include <ostream>
#include <string>
#include <vector>

#include "core/files.h"
#include "core/gromlit.h"
#include "core/hands_off.h"
#include "core/option_files.h"
#include "core/plugin_files.h"
#include "core/strings.h"
#include "core/symbol_files.h"
#include "tests/support/disk_model.h"
#include "tests/support/temp_install.h"
#include "tests/unit/core/plugin_sample.h"

namespace gromlit::testing {

struct SaveKind {
  std::string name;
  // Makes the installation as it is before; it is empty then.
  std::function<void(const TempInstall&)> prepare;
  // The save; false when it says that it failed.
  std::function<bool()> save;
  // What the program did before, beside loading the lists.
  std::function<void()> before = {};
  // A failed save leaves what could not be saved in the list, for the user to try again.
  bool kept = false;
  // What may be found beside the old and the new tree: true for a sound state between two saves.
  std::function<bool(const Tree& tree, const Tree& old, const Tree& wanted)> between = {};
  // Called for each stop beside what the test does there.
  std::function<void(Stop&)> always = {};
};

inline void PrintTo(const SaveKind& kind, std::ostream* out) {
  *out << kind.name;
}

// What the lists in memory hold, and how it compares with their records.
inline std::string Lists() {
  std::string text = "symbols:";
  if (allSymbols != nullptr) {
    for (const auto* node = allSymbols; node->sym != nullptr; node = node->next)
      text += " " + std::string(node->sym->name) + "/" + std::to_string(node->sym->npoints);
  }
  text += " plug-ins:";
  if (allPlugins != nullptr) {
    for (const auto* node = allPlugins; node->plugin != nullptr; node = node->next) {
      const GromlitPlugin& plugin = *node->plugin;
      text += " " + std::string(plugin.classname) + "/" + plugin.appname + "/" +
              std::to_string(plugin.nactions) + "/" + std::to_string(plugin.spare1);
    }
  }
  return text;
}

// What a start finds in the installation directory, actions and all.
inline std::string FreshLoad() {
  LoadSymbols();
  LoadPlugins();
  for (const auto* node = allPlugins; node->plugin != nullptr; node = node->next)
    FindPlugin(node->plugin->classname);
  const std::unique_ptr<GromlitUserOptions> options(LoadUserOptions(defaultOptionFile));
  return Lists() + " options: " + (options == nullptr ? "none" : std::to_string(options->button));
}

inline void WriteSamplePlugin(const TempInstall& install) {
  WriteBytes(install / "plugins/XTerm.sla", SampleFile().bytes());
}

inline void WriteSymbol(const TempInstall& install, const char* name, uint8_t npoints) {
  (void)install;
  GromlitSymbol sym{};
  CopyText(sym.name, name);
  sym.npoints = npoints;
  UnLoadSymbol(&sym, name, GromlitSymbolFileExt);
}

// The kinds of the program's own saves.
inline std::vector<SaveKind> SaveKinds() {
  std::vector<SaveKind> kinds;
  kinds.push_back({.name = "symbol replaced",
                   .prepare =
                       [](const TempInstall& install) {
                         WriteSymbol(install, "L", 2);
                         WriteSymbol(install, "M", 3);
                       },
                   .save =
                       [] {
                         GromlitSymbol sym{};
                         sym.npoints = 5;
                         return StoreSymbol(&sym, "L") == 1;
                       }});
  kinds.push_back({.name = "new symbol",
                   .prepare = [](const TempInstall& install) { WriteSymbol(install, "M", 3); },
                   .save =
                       [] {
                         GromlitSymbol sym{};
                         sym.npoints = 5;
                         return StoreSymbol(&sym, "L") == 1;
                       }});
  kinds.push_back({.name = "symbol removed",
                   .prepare =
                       [](const TempInstall& install) {
                         WriteSymbol(install, "L", 2);
                         WriteSymbol(install, "M", 3);
                       },
                   .save =
                       [] {
                         const auto* node = allSymbols;
                         while (std::string(node->sym->name) != "L") node = node->next;
                         return DropSymbol(node->sym, "L") == 1;
                       }});
  kinds.push_back({.name = "options",
                   .prepare =
                       [](const TempInstall&) {
                         GromlitUserOptions options{};
                         DefaultUserOptions(&options);
                         options.button = 3;
                         SaveUserOptions(&options, defaultOptionFile);
                       },
                   .save =
                       [] {
                         GromlitUserOptions options{};
                         DefaultUserOptions(&options);
                         options.button = 2;
                         return SaveUserOptions(&options, defaultOptionFile) == 1;
                       }});
  kinds.push_back({.name = "plug-in replaced",
                   .prepare = WriteSamplePlugin,
                   .save =
                       [] {
                         GromlitPlugin* plugin = FindPlugin("XTerm");
                         plugin->nactions = 1;
                         if (UnLoadPlugin(plugin, "XTerm") != nullptr) return true;
                         plugin->nactions = 3;
                         return false;
                       },
                   .before = [] { FindPlugin("XTerm"); }});
  kinds.push_back({.name = "plug-in replaced before its actions were read",
                   .prepare = WriteSamplePlugin,
                   .save = [] {
                     GromlitPlugin* plugin = allPlugins->plugin;
                     CopyText(plugin->appname, "changed");
                     if (UnLoadPlugin(plugin, "XTerm") != nullptr) return true;
                     CopyText(plugin->appname, "Terminal");
                     // They may have been read by then.
                     if (plugin->nactions == 3) plugin->nactions = 0;
                     return false;
                   }});
  kinds.push_back({.name = "new plug-in",
                   .prepare = WriteSamplePlugin,
                   .save =
                       [] {
                         bool saved = false;
                         CreatePlugin("New", "New", &saved);
                         return saved;
                       },
                   .kept = true});
  kinds.push_back({.name = "new plug-in beside another class's file of its name",
                   .prepare =
                       [](const TempInstall& install) {
                         WriteBytes(install / "plugins/New.sla", SampleFile().bytes());
                       },
                   .save =
                       [] {
                         bool saved = false;
                         CreatePlugin("New", "New", &saved);
                         return saved;
                       },
                   .kept = true});
  kinds.push_back({.name = "plug-in removed", .prepare = WriteSamplePlugin, .save = [] {
                     return DropPlugin(allPlugins->plugin, "XTerm") == 1;
                   }});
  kinds.push_back({.name = "new plug-in that is hands off",
                   .prepare = WriteSamplePlugin,
                   .save = [] { return CreateHandsOffPlugin("New") != nullptr; },
                   .between =
                       [](const Tree& tree, const Tree& old, const Tree& wanted) {
                         // The plug-in without the mark yet.
                         Tree plain = wanted;
                         std::string& file = plain["plugins/New.sla"];
                         const std::string marked = file;
                         file[kRecord + 136] = '\0';
                         return file != marked && tree == plain && tree != old;
                       }});
  kinds.push_back({.name = "damaged plug-in",
                   .prepare =
                       [](const TempInstall& install) {
                         WriteBytes(install / "plugins/XTerm.sla", SampleFile().bytes());
                         const std::string whole = ReadText(install / "plugins/XTerm.sla");
                         WriteText(install / "plugins/XTerm.sla", whole.substr(0, 2600));
                         // The copy of another accident.
                         std::filesystem::create_directory(install / "damaged");
                         WriteText(install / "damaged/XTerm.sla", "an earlier one");
                       },
                   .save = [] { return UnLoadPlugin(FindPlugin("XTerm"), "XTerm") != nullptr; },
                   .before = [] { FindPlugin("XTerm"); },
                   .between =
                       [](const Tree& tree, const Tree& old, const Tree& wanted) {
                         Tree copied = old;
                         copied["damaged/XTerm.sla.2"] = wanted.at("damaged/XTerm.sla.2");
                         return tree == copied;
                       }});
  kinds.push_back({.name = "damaged plug-in, the first one",
                   .prepare =
                       [](const TempInstall& install) {
                         WriteBytes(install / "plugins/XTerm.sla", SampleFile().bytes());
                         const std::string whole = ReadText(install / "plugins/XTerm.sla");
                         WriteText(install / "plugins/XTerm.sla", whole.substr(0, 2600));
                       },
                   .save = [] { return UnLoadPlugin(FindPlugin("XTerm"), "XTerm") != nullptr; },
                   .before = [] { FindPlugin("XTerm"); },
                   .between =
                       [](const Tree& tree, const Tree& old, const Tree& wanted) {
                         Tree copied = old;
                         copied["damaged/"];
                         if (tree == copied) return true;
                         copied["damaged/XTerm.sla"] = wanted.at("damaged/XTerm.sla");
                         return tree == copied;
                       }});
  kinds.push_back({.name = "through a symbolic link",
                   .prepare =
                       [](const TempInstall& install) {
                         std::filesystem::create_directory(install / "elsewhere");
                         WriteText(install / "elsewhere/real", "old");
                         std::filesystem::create_symlink(install / "elsewhere/real",
                                                         install / "options/default.user");
                       },
                   .save =
                       [] {
                         GromlitUserOptions options{};
                         DefaultUserOptions(&options);
                         return SaveUserOptions(&options, defaultOptionFile) == 1;
                       }});
  return kinds;
}

// Saves where no temporary can be made, as in an installation directory of somebody else's: in
// place, so that only a program that fails, not one that is killed, leaves the old contents.
inline std::vector<SaveKind> SavesInPlace() {
  const auto refuse = [](Stop& stop) {
    if (stop.entering && stop.OnFiles() && stop.Path().find("/.gromlit-save-") != std::string::npos)
      stop.Fail(EACCES);
  };
  std::vector<SaveKind> kinds;
  for (const size_t size : {size_t{0}, size_t{10}, size_t{3000}, size_t{9000}}) {
    kinds.push_back({.name = "in place of " + std::to_string(size) + " bytes",
                     .prepare =
                         [size](const TempInstall& install) {
                           if (size != 0)
                             WriteText(install / "symbols/L.sls", std::string(size, 'o'));
                         },
                     .save =
                         [] {
                           static const std::array<std::byte, 3000> image{std::byte{'n'}};
                           return SaveFile(DataPath(symbolDirectory, "L.sls").c_str(), image);
                         },
                     .always = refuse});
  }
  return kinds;
}

}  // namespace gromlit::testing
