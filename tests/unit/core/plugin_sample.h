// A small plug-in, as a record and as its file put together by hand.
#pragma once

#include <cstdlib>
#include <memory>
#include <string>
#include <string_view>

#include "core/gromlit.h"
#include "core/strings.h"
#include "tests/unit/core/golden.h"

namespace gromlit::testing {

// Releases a plug-in's actions with the record; in the program they live for the whole run.
struct PluginDelete {
  void operator()(GromlitPlugin* plugin) const {
    for (GromlitAction* action : plugin->actions) {
      if (action == nullptr) continue;
      for (GromlitCmd* cmd : action->cmds) {
        if (cmd == nullptr) continue;
        std::free(cmd->text);
        delete cmd;
      }
      delete action;
    }
    std::free(plugin->damagedfile);
    delete plugin;
  }
};
using OwnedPlugin = std::unique_ptr<GromlitPlugin, PluginDelete>;

inline OwnedPlugin NewPlugin(std::string_view appname = "", std::string_view classname = "") {
  OwnedPlugin plugin(new GromlitPlugin());
  CopyText(plugin->appname, appname);
  CopyText(plugin->classname, classname);
  return plugin;
}

inline GromlitAction* AddAction(GromlitPlugin* plugin, std::string_view name) {
  auto* action = new GromlitAction();
  CopyText(action->name, name);
  plugin->actions[plugin->nactions++] = action;
  return action;
}

inline GromlitCmd* AddCommand(GromlitAction* action, uint8_t type, const char* text) {
  auto* cmd = new GromlitCmd();
  cmd->type = type;
  cmd->text = StrDup(text);
  cmd->ntext = text == nullptr ? 0 : static_cast<uint32_t>(std::string_view(text).size());
  action->cmds[action->ncmds++] = cmd;
  return cmd;
}

// Where the parts of SampleFile begin, in bytes from the start of the file.
inline constexpr size_t kRecord = 13;
inline constexpr size_t kAction1 = 13 + 1164;
inline constexpr size_t kCommand1 = kAction1 + 1012;  // with the text "Control-l"
inline constexpr size_t kText1 = kCommand1 + 56;
inline constexpr size_t kCommand2 = kText1 + 9;     // without a text
inline constexpr size_t kAction2 = kCommand2 + 56;  // without commands
inline constexpr size_t kAction3 = kAction2 + 1012;
inline constexpr size_t kCommand3 = kAction3 + 1012;  // with the text "ls"
inline constexpr size_t kText3 = kCommand3 + 56;
inline constexpr size_t kSampleSize = kText3 + 2;

inline Golden SampleFile() {
  return Golden(kSampleSize)
      .Put(0, "GromlitPlugin")
      .Put(kRecord, "Terminal")
      .Put(kRecord + 64, "XTerm")
      .Put(kRecord + 128, {1, 0, 0, 0})
      .Put(kRecord + 138, "reserved")
      .Put(kRecord + 650, {3})
      .Put(kAction1, "L")
      .Put(kAction1 + 32, {2})
      .Put(kAction1 + 36, {16, 0, 0x08, 0x01})
      .Put(kAction1 + 164, {24, 0, 32, 0})
      .Put(kAction1 + 428, "Clear")
      .Put(kAction1 + 496, {2})
      .Put(kCommand1, {0, 1, 46, 0})
      .Put(kCommand1 + 18, {4, 0})
      .Put(kCommand1 + 48, {9})
      .Put(kText1, "Control-l")
      .Put(kCommand2, {4})
      .Put(kCommand2 + 41, {1})
      .Put(kAction2 + 428, "Nothing")
      .Put(kAction3 + 428, "List")
      .Put(kAction3 + 496, {1})
      .Put(kCommand3, {2})
      .Put(kCommand3 + 48, {2})
      .Put(kText3, "ls");
}

inline OwnedPlugin SamplePlugin() {
  OwnedPlugin plugin = NewPlugin("Terminal", "XTerm");
  plugin->spare3 = 1;
  CopyText(plugin->chars1, "reserved");
  GromlitAction* clear = AddAction(plugin.get(), "Clear");
  CopyText(clear->sym.name, "L");
  clear->sym.npoints = 2;
  clear->sym.x[1] = 16;
  clear->sym.x[2] = 264;
  clear->sym.y[1] = 24;
  clear->sym.y[2] = 32;
  GromlitCmd* key = AddCommand(clear, kHotKey, "Control-l");
  key->nkeys = 1;
  key->keycode[0] = 46;
  key->keystate[0] = 4;
  AddCommand(clear, kRun, nullptr)->checked = 1;
  AddAction(plugin.get(), "Nothing");
  AddCommand(AddAction(plugin.get(), "List"), kText, "ls");
  return plugin;
}

}  // namespace gromlit::testing
