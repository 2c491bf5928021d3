// Reading a large installation: what start-up pays for each plug-in, and what the first look-up of
// the largest possible plug-in costs.
#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>

#include "core/files.h"
#include "core/gromlit.h"
#include "core/plugin_files.h"
#include "core/plugin_image.h"
#include "core/strings.h"

namespace gromlit {
namespace {

constexpr int kPlugins = 1000;

// An installation directory of this run's own, gone at its end.
class Installation {
 public:
  Installation() : former_(GromlitPath) {
    std::string pattern =
        (std::filesystem::temp_directory_path() / "gromlit-bench-XXXXXX").string();
    if (mkdtemp(pattern.data()) == nullptr) std::abort();
    path_ = pattern;
    std::filesystem::create_directory(path_ + "/" + pluginDirectory);
    GromlitPath = path_.c_str();
  }
  ~Installation() {
    GromlitPath = former_;
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  Installation(const Installation&) = delete;
  Installation& operator=(const Installation&) = delete;

 private:
  std::string path_;
  const char* former_;
};

// A plug-in of this many actions with as many commands each, every command with a text.
std::unique_ptr<GromlitPlugin> Sample(const std::string& classname, int actions, int commands) {
  auto plugin = std::make_unique<GromlitPlugin>();
  CopyText(plugin->appname, classname);
  CopyText(plugin->classname, classname);
  plugin->nactions = static_cast<uint8_t>(actions);
  for (int i = 0; i < actions; i++) {
    plugin->actions[i] = new GromlitAction();
    CopyText(plugin->actions[i]->name, "Action");
    plugin->actions[i]->ncmds = static_cast<uint32_t>(commands);
    for (int j = 0; j < commands; j++) {
      plugin->actions[i]->cmds[j] = new GromlitCmd();
      plugin->actions[i]->cmds[j]->type = kText;
      plugin->actions[i]->cmds[j]->text = StrDup("the text of one command");
    }
  }
  return plugin;
}

void Release(GromlitPlugin* plugin) {
  for (int i = 0; i < plugin->nactions; i++) {
    for (uint32_t j = 0; j < plugin->actions[i]->ncmds; j++) {
      std::free(plugin->actions[i]->cmds[j]->text);
      delete plugin->actions[i]->cmds[j];
    }
    delete plugin->actions[i];
  }
}

void WritePlugin(const std::string& name, GromlitPlugin* plugin) {
  const auto image = EncodePluginFile(plugin);
  std::FILE* out = std::fopen(DataPath(pluginDirectory, name.c_str()).c_str(), "wb");
  if (out == nullptr || std::fwrite(image.data(), 1, image.size(), out) != image.size())
    std::abort();
  std::fclose(out);
}

void LoadThousandPluginHeaders(benchmark::State& state) {
  const Installation installation;
  for (int i = 0; i < kPlugins; i++) {
    const std::string name = "Class" + std::to_string(i);
    const auto plugin = Sample(name, 8, 2);
    WritePlugin(name + GromlitPluginFileExt, plugin.get());
    Release(plugin.get());
  }
  for (auto _ : state) {
    if (LoadPlugins() != kPlugins) std::abort();
    state.PauseTiming();
    // The records live for a whole run in the program; here there are many runs.
    for (GromlitPluginList* node = allPlugins; node != nullptr;) {
      GromlitPluginList* next = node->next;
      std::free(node->filename);
      delete node->plugin;
      delete node;
      node = next;
    }
    allPlugins = nullptr;
    state.ResumeTiming();
  }
  state.SetItemsProcessed(state.iterations() * kPlugins);
}
BENCHMARK(LoadThousandPluginHeaders)->Unit(benchmark::kMillisecond);

void LoadLargestPlugin(benchmark::State& state) {
  const Installation installation;
  const std::string name = std::string("Large") + GromlitPluginFileExt;
  {
    const auto plugin = Sample("Large", kMaxActions, kMaxCommands);
    WritePlugin(name, plugin.get());
    Release(plugin.get());
  }
  for (auto _ : state) {
    GromlitPlugin plugin{};
    if (ReadPluginActions(name.c_str(), &plugin) == nullptr) std::abort();
    benchmark::DoNotOptimize(plugin);
    state.PauseTiming();
    Release(&plugin);
    state.ResumeTiming();
  }
  state.SetItemsProcessed(state.iterations() * kMaxActions * kMaxCommands);
}
BENCHMARK(LoadLargestPlugin)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace gromlit
