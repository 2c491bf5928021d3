#include "fuzz/records.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <set>
#include <vector>

#include "actions/execute.h"
#include "actions/keystrokes.h"
#include "core/action_copy.h"
#include "core/plugin_files.h"
#include "core/retired.h"
#include "core/strings.h"
#include "display/display.h"
#include "fuzz/fake_server.h"
#include "fuzz/require.h"
#include "recognition/find_action.h"
#include "recognition/shape_match.h"
#include "recognition/signature_match.h"
#include "recognition/symbol_icon.h"
#include "toolkit/icon_window.h"
#include "toolkit/text.h"
#include "tools/command_words.h"
#include "tools/drawing.h"

namespace gromlit {
namespace {

std::vector<void*>& Retired() {
  static auto* const records = new std::vector<void*>;
  return *records;
}

}  // namespace

// In the place of the one that keeps records for ever.
void Retire(void* record) {
  if (record != nullptr) Retired().push_back(record);
}

}  // namespace gromlit

// Records come from new, texts from malloc; what is retired may be either.
extern "C" const char* __asan_default_options() {
  return "alloc_dealloc_mismatch=0:allocator_may_return_null=1";
}

namespace gromlit::fuzz {
namespace {

void CopyBytes(FuzzedDataProvider* data, char* field, size_t size) {
  const std::string bytes = data->ConsumeRandomLengthString(size);
  std::memcpy(field, bytes.data(), bytes.size());
}

GromlitCmd* MakeCmd(FuzzedDataProvider* data) {
  auto* cmd = new GromlitCmd{};
  cmd->type = data->ConsumeBool() ? data->ConsumeIntegralInRange<uint8_t>(0, 6)
                                  : data->ConsumeIntegral<uint8_t>();
  cmd->checked = data->ConsumeIntegralInRange<uint8_t>(0, 2);
  cmd->nkeys = data->ConsumeIntegralInRange<uint8_t>(0, 10);
  for (int i = 0; i < std::min<int>(cmd->nkeys, kMaxKeys); i++) {
    cmd->keycode[i] = data->ConsumeIntegral<uint16_t>();
    cmd->keystate[i] = data->ConsumeIntegral<uint16_t>();
  }
  cmd->spare = data->ConsumeIntegralInRange<int32_t>(-1, 1);
  const std::string text = AnyText(data, 300);
  if (!text.empty()) {
    cmd->text = strdup(text.c_str());
    cmd->ntext = static_cast<uint32_t>(text.size());
  }
  return cmd;
}

}  // namespace

std::string AnyText(FuzzedDataProvider* data, size_t limit) {
  std::string text = data->ConsumeRandomLengthString(limit);
  std::erase(text, '\0');
  return text;
}

void FillSymbol(FuzzedDataProvider* data, GromlitSymbol* sym) {
  CopyText(sym->name, AnyText(data, kNameSize + 4));
  sym->npoints = data->ConsumeIntegralInRange<uint8_t>(0, kMaxPoints);
  const bool grid = data->ConsumeBool();
  for (int i = 1; i <= sym->npoints; i++) {
    if (grid) {
      sym->x[i] = static_cast<uint16_t>(kGridMin + 8 * data->ConsumeIntegralInRange(0, 31));
      sym->y[i] = static_cast<uint16_t>(kGridMin + 8 * data->ConsumeIntegralInRange(0, 31));
    } else {
      sym->x[i] = data->ConsumeIntegral<uint16_t>();
      sym->y[i] = data->ConsumeIntegral<uint16_t>();
    }
  }
  if (data->ConsumeBool()) {
    for (uint32_t& row : sym->icon) row = data->ConsumeIntegral<uint32_t>();
  } else {
    VectorToBitmap(sym);
  }
  sym->spare = data->ConsumeIntegral<uint8_t>();
}

void FillPlugin(FuzzedDataProvider* data, GromlitPlugin* plugin) {
  CopyText(plugin->appname, AnyText(data, kTextSize + 4));
  CopyText(plugin->classname, AnyText(data, kTextSize + 4));
  plugin->spare1 = data->ConsumeIntegral<uint8_t>();
  plugin->spare3 = data->ConsumeIntegral<int8_t>();
  if (data->ConsumeBool()) {
    CopyBytes(data, plugin->chars1, sizeof plugin->chars1);
    CopyBytes(data, plugin->chars8, sizeof plugin->chars8);
  }
  const int nactions = data->ConsumeIntegralInRange(0, kMaxActions);
  for (int i = 0; i < nactions; i++) {
    auto* action = new GromlitAction{};
    plugin->actions[plugin->nactions++] = action;
    FillSymbol(data, &action->sym);
    CopyText(action->name, AnyText(data, kTextSize + 4));
    const int ncmds = data->ConsumeBool() ? data->ConsumeIntegralInRange(0, kMaxCommands)
                                          : data->ConsumeIntegralInRange(0, 3);
    for (int j = 0; j < ncmds; j++) {
      action->cmds[action->ncmds++] = MakeCmd(data);
      if (data->remaining_bytes() == 0) break;
    }
    // Nothing but empty actions would follow; a few of these do.
    if (data->remaining_bytes() == 0 && i > 8) break;
  }
}

void FillOptions(FuzzedDataProvider* data, GromlitUserOptions* options) {
  for (int32_t* number : {&options->button, &options->sensitivity, &options->tolerance,
                          &options->splash, &options->showactions, &options->temp1, &options->temp2,
                          &options->temp3, &options->temp4}) {
    *number = data->ConsumeBool() ? data->ConsumeIntegralInRange<int32_t>(-1, 8)
                                  : data->ConsumeIntegral<int32_t>();
  }
  CopyText(options->urlcmd, AnyText(data, kUrlCmdSize + 4));
  CopyText(options->sndcmd, AnyText(data, kTextSize + 4));
  CopyBytes(data, options->charspare2, sizeof options->charspare2);
}

Stroke MakeAnyStroke(FuzzedDataProvider* data) {
  Stroke stroke;
  const int n = data->ConsumeIntegralInRange(0, kMaxStrokePoints);
  const int way = data->ConsumeIntegralInRange(0, 2);
  int x = 500;
  int y = 500;
  for (int i = 0; i < n; i++) {
    if (way == 0) {  // steps of a hand
      x += data->ConsumeIntegral<int8_t>();
      y += data->ConsumeIntegral<int8_t>();
    } else if (way == 1) {  // anywhere
      x = data->ConsumeIntegral<int16_t>();
      y = data->ConsumeIntegral<int16_t>();
    } else {  // a small grid, on which coordinates are often equal
      x = data->ConsumeIntegralInRange(-2, 12);
      y = data->ConsumeIntegralInRange(-2, 12);
    }
    stroke.x[stroke.count] = static_cast<int16_t>(x);
    stroke.y[stroke.count] = static_cast<int16_t>(y);
    stroke.count++;
  }
  return stroke;
}

// --- Releasing --------------------------------------------------------------------------------

void ReleasePlugin(GromlitPlugin* plugin) {
  for (GromlitAction*& action : plugin->actions) {
    if (action == nullptr) continue;
    for (GromlitCmd* cmd : action->cmds) {
      if (cmd == nullptr) continue;
      std::free(cmd->text);
      delete cmd;
    }
    ReleaseFeatures(&action->sym);
    delete action;
    action = nullptr;
  }
  plugin->nactions = 0;
  std::free(plugin->damagedfile);
  plugin->damagedfile = nullptr;
}

void ReleaseLists() {
  while (allPlugins != nullptr) {
    GromlitPluginList* node = allPlugins;
    allPlugins = node->next;
    if (node->plugin != nullptr) ReleasePlugin(node->plugin);
    delete node->plugin;
    std::free(node->filename);
    delete node;
  }
  while (allSymbols != nullptr) {
    GromlitSymbolList* node = allSymbols;
    allSymbols = node->next;
    if (node->sym != nullptr) ReleaseFeatures(node->sym);
    delete node->sym;
    std::free(node->filename);
    delete node;
  }
  DefaultPlugin = nullptr;
  for (void* record : Retired()) std::free(record);
  Retired().clear();
}

// --- Looking ----------------------------------------------------------------------------------

void CheckSymbol(const GromlitSymbol& sym) {
  Require(sym.npoints <= kMaxPoints);
  Require(std::memchr(sym.name, '\0', sizeof sym.name) != nullptr);
}

void CheckPlugin(const GromlitPlugin& plugin) {
  Require(plugin.nactions <= kMaxActions);
  Require(std::memchr(plugin.appname, '\0', sizeof plugin.appname) != nullptr);
  Require(std::memchr(plugin.classname, '\0', sizeof plugin.classname) != nullptr);
  for (int i = 0; i < kMaxActions; i++) {
    Require((plugin.actions[i] != nullptr) == (i < plugin.nactions));
    if (i >= plugin.nactions) continue;
    const GromlitAction& action = *plugin.actions[i];
    CheckSymbol(action.sym);
    Require(std::memchr(action.name, '\0', sizeof action.name) != nullptr);
    Require(action.ncmds <= kMaxCommands);
    for (uint32_t j = 0; j < kMaxCommands; j++) {
      const GromlitCmd* cmd = action.cmds[j];
      Require((cmd != nullptr) == (j < action.ncmds));
      if (cmd == nullptr) continue;
      // A save shortens a text to its first NUL, which may leave nothing of it.
      Require(cmd->text != nullptr || cmd->ntext == 0);
      if (cmd->text != nullptr) Require(cmd->text[cmd->ntext] == '\0');
    }
  }
}

// --- Using ------------------------------------------------------------------------------------

void DrawSymbol(const GromlitSymbol& sym) {
  static GC const gc = XCreateGC(dpy, root, 0, nullptr);
  DrawSymbolIcon(root, gc, &sym, 4, 4);
  DrawText(root, gc, 4, 20, FieldText(sym.name));
  GromlitSymbol drawn = sym;
  DisownFeatures(&drawn);
  VectorToBitmap(&drawn);
  const auto count = [&] {
    int bits = 0;
    for (const uint32_t row : drawn.icon) bits += std::popcount(row);
    return bits;
  };
  // Two points or more leave a mark.
  Require((count() > 0) == (sym.npoints >= 2));
  AddArrowHead(&drawn);
  const std::string svg = SymbolDrawing(sym, 32, "");
  Require(svg.starts_with("<svg") && svg.find("nan") == svg.npos && svg.find("inf") == svg.npos);
}

void UsePlugin(GromlitPlugin* plugin, const Stroke& stroke) {
  for (int i = 0; i < plugin->nactions; i++) {
    GromlitAction& action = *plugin->actions[i];
    if (i < 16) DrawSymbol(action.sym);
    for (uint32_t j = 0; j < std::min<uint32_t>(action.ncmds, 8); j++) {
      WordsOf(*action.cmds[j]);
      for (int k = 0; k < kMaxKeys; k++) {
        char text[kKeyStrokeText];
        KeyStrokeToString(text, action.cmds[j]->keycode[k], action.cmds[j]->keystate[k]);
      }
    }
  }
  for (int i = 0; i < std::min<int>(plugin->nactions, 8); i++) {
    const GromlitAction& action = *plugin->actions[i];
    GromlitAction copy{};
    CopyAction(&copy, &action);
    Require(copy.ncmds == action.ncmds);
    ReleaseActionContents(&copy);
  }
  for (const int32_t way : {kBySignature, kByShape}) {
    const int found = FindAction(plugin, stroke, {way, 5});
    Require(found >= -1 && found < plugin->nactions);
    const int last = plugin->nactions - 1;
    if (last < 1) continue;
    const int taker = FindTaker(plugin, last, &plugin->actions[last]->sym, {way, 5});
    Require(taker >= -1 && taker < last);
  }
  if (user == nullptr) return;
  const size_t most = std::min<size_t>(plugin->nactions, 8);
  for (size_t i = 0; i < most; i++)
    ExecuteAction(plugin, plugin->actions[i], kRoot, kRoot, 1, 2, 3, 4);
}

}  // namespace gromlit::fuzz
