#include "tools/sheet.h"

#include <algorithm>
#include <tuple>

#include "core/plugin_files.h"
#include "core/strings.h"

namespace gromlit {
namespace {

constexpr std::string_view kDesktopClassname = "Desktop";

// Default, Desktop, then everything else.
int RankOf(std::string_view classname) {
  if (classname == defaultPluginClassname) return 0;
  return classname == kDesktopClassname ? 1 : 2;
}

std::string WhereOf(const GromlitPlugin& plugin) {
  const std::string_view classname = FieldText(plugin.classname);
  std::string where = "windows of the class " + std::string(classname);
  if (RankOf(classname) == 0) where = "every application without gestures of its own";
  if (RankOf(classname) == 1) where = "the bare background of the screen";
  if (HandsOff(&plugin)) where += "; hands off: no gestures there";
  return where;
}

SheetEntry EntryOf(const GromlitAction& action) {
  SheetEntry entry = {std::string(FieldText(action.name)), {}, {&action.sym}};
  for (uint32_t j = 0; j < action.ncmds; j++) entry.does.push_back(WordsOf(*action.cmds[j]));
  return entry;
}

}  // namespace

size_t ShownDrawings(const SheetEntry& entry) {
  return std::min(entry.drawings.size(), kShownDrawings);
}

std::string OtherDrawings(const SheetEntry& entry) {
  const size_t others = entry.drawings.size() - ShownDrawings(entry);
  if (others == 0) return "";
  return "and " + std::to_string(others) + (others == 1 ? " more way" : " more ways") +
         " to draw it";
}

std::vector<SheetSection> SheetOf(Installation* found) {
  std::vector<const GromlitPlugin*> plugins;
  for (const FoundFile& file : found->plugins) {
    if (file.file->unusable || FileOfKey(&found->plugins, KeyOf(*file.file)) != &file) continue;
    plugins.push_back(&file.file->plugin);
  }
  const auto order = [](const GromlitPlugin* plugin) {
    const std::string_view classname = FieldText(plugin->classname);
    return std::tuple(RankOf(classname), FieldText(plugin->appname), classname);
  };
  std::sort(plugins.begin(), plugins.end(),
            [&](const auto* one, const auto* other) { return order(one) < order(other); });
  std::vector<SheetSection> sections;
  for (const GromlitPlugin* plugin : plugins) {
    const std::string_view name = FieldText(plugin->appname);
    SheetSection section = {
        std::string(name.empty() ? FieldText(plugin->classname) : name), WhereOf(*plugin), {}};
    for (int i = 0; i < plugin->nactions; i++) {
      SheetEntry entry = EntryOf(*plugin->actions[i]);
      const auto same = std::find_if(section.entries.begin(), section.entries.end(),
                                     [&](const SheetEntry& other) {
                                       return other.name == entry.name && other.does == entry.does;
                                     });
      if (same == section.entries.end()) {
        section.entries.push_back(std::move(entry));
      } else {
        same->drawings.push_back(entry.drawings.front());
      }
    }
    sections.push_back(std::move(section));
  }
  return sections;
}

}  // namespace gromlit
