// Command lines, addresses, keys and texts of strangers, as actions run them: the words of a
// command line, "%s", addresses for the browser, texts and files that are typed, keys by events and
// by XTEST. Nothing is started and nobody waits: what would be is recorded.
//
// A class text, which a window chose, never becomes more than one word of a command line and no
// option of a program.
#include <algorithm>
#include <cctype>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "actions/character_keys.h"
#include "actions/child.h"
#include "actions/execute.h"
#include "actions/keystrokes.h"
#include "actions/launch.h"
#include "actions/real_input.h"
#include "actions/spare_keys.h"
#include "core/args.h"
#include "core/option_files.h"
#include "core/strings.h"
#include "display/modes.h"
#include "fuzz/fake_server.h"
#include "fuzz/records.h"
#include "fuzz/require.h"
#include "fuzz/scratch.h"
#include "fuzz/target.h"

namespace gromlit::fuzz {
namespace {

bool IsSpace(char c) {
  return std::isspace(static_cast<unsigned char>(c)) != 0;
}

std::vector<std::string> Words(const std::string& line) {
  std::vector<char*> argv(static_cast<size_t>(ArgvSlots(line.c_str())));
  const int n = ParseArgs(line.c_str(), argv.data());
  Require(n >= 0 && static_cast<size_t>(n) + 1 == argv.size() && argv.back() == nullptr);
  std::vector<std::string> words;
  for (int i = 0; i < n; i++) {
    words.emplace_back(argv[static_cast<size_t>(i)]);
    std::free(argv[static_cast<size_t>(i)]);
  }
  return words;
}

// The judge: no byte is lost but white space, none of which is in a word.
void CheckWords(const std::string& line) {
  std::string joined;
  for (const std::string& word : Words(line)) {
    Require(!word.empty() && std::none_of(word.begin(), word.end(), IsSpace));
    joined += word;
  }
  std::string plain = line;
  std::erase_if(plain, IsSpace);
  Require(joined == plain);
}

// The judge of "%s" and "%%", letter by letter from behind.
std::string Expanded(const std::string& format, const std::string& argument) {
  std::string line;
  size_t used = 0;
  for (size_t i = 0; i < format.size(); i++) {
    const std::string two = format.substr(i, 2);
    if (two == "%s") line += used++ == 0 ? argument : "";
    if (two == "%%") line += "%";
    if (two == "%s" || two == "%%")
      i++;
    else
      line += format[i];
  }
  return line;
}

void CheckTexts(FuzzedDataProvider* data) {
  const std::string format = AnyText(data, 200);
  const std::string argument = AnyText(data, 200);
  CheckWords(format);
  const std::string line = ExpandCommand(format, argument);
  Require(line == Expanded(format, argument));
  CheckWords(line);
  const std::string encoded = EncodeForAddress(argument);
  Require(Words(encoded).size() == (argument.empty() ? 0 : 1));
  Require(encoded.find_first_of("\"'`\x7f") == encoded.npos);
  Require(std::all_of(encoded.begin(), encoded.end(),
                      [](char c) { return static_cast<unsigned char>(c) > ' '; }));
}

// What a class text did to the command line of the browser.
void CheckBrowser(const GromlitPlugin& plugin, const GromlitCmd& cmd, const std::string& line) {
  if (cmd.type != kInternet || cmd.checked == 0) return;
  GromlitPlugin plain = plugin;
  CopyText(plain.classname, "X");
  const std::string text = cmd.text != nullptr ? cmd.text : "";
  const std::string url = GromlitForumURLprefix + std::string("X&uargs=") + text;
  const std::string browser(FieldText(user->urlcmd));
  Require(Words(line).size() == Words(Expanded(browser, url)).size());
}

void RunAction(FuzzedDataProvider* data, GromlitPlugin* plugin) {
  FakeWindow window;
  window.mapped = data->ConsumeBool();
  const Window client = AddWindow(kRoot, window);
  currentStroke.client = data->ConsumeBool() ? client : kRoot;
  currentStroke.own = data->ConsumeBool();
  if (data->ConsumeBool()) Server().focus = client;
  if (data->ConsumeBool()) Server().doomed[data->ConsumeIntegralInRange(0, 30)] = client;
  for (int i = 0; i < plugin->nactions; i++) {
    GromlitAction* action = plugin->actions[i];
    Require(ExecuteAction(plugin, action, client, client, data->ConsumeIntegral<int16_t>(), 2, 3,
                          data->ConsumeIntegral<int16_t>()) == 1);
    for (uint32_t j = 0; j < action->ncmds; j++) {
      Server().started.clear();
      ExecuteCommand(plugin, action->cmds[j], client, client, 1, 2, 3, 4);
      Require(Server().started.size() <= 1);
      for (const std::string& line : Server().started) {
        CheckWords(line);
        CheckBrowser(*plugin, *action->cmds[j], line);
      }
    }
  }
  FinishInput();
  // Each press is followed by its release.
  const auto& sent = Server().sent;
  for (size_t i = 0; i < sent.size(); i++) {
    if (sent[i].type != KeyPress) continue;
    Require(i + 1 < sent.size() && sent[i + 1].type == KeyRelease);
    Require(sent[i].xkey.keycode == sent[i + 1].xkey.keycode);
    Require(sent[i].xkey.window != None && sent[i].xkey.window == sent[i + 1].xkey.window);
  }
  Require(Server().down.empty());
  currentStroke = {};
}

}  // namespace

void Run(FuzzedDataProvider* data) {
  const std::string& home = FreshInstallation();
  // Every input begins with the same keyboard: what was lent is taken back at the end of each.
  if (charTableKeycodes[0x61] == 0) BuildCharToKeycode();
  ForgetCharacterKeys();
  ForgetSpareKeys();
  GromlitUserOptions options{};
  FillOptions(data, &options);
  user = &options;
  CheckTexts(data);
  PutFile(home + "/typed", data->ConsumeRandomLengthString(40'000));
  GromlitPlugin plugin{};
  FillPlugin(data, &plugin);
  RunAction(data, &plugin);
  LaunchGromlitFileURL("help/index.html");
  PlaySoundFile(plugin.classname);
  ReturnKeys();
  ReleasePlugin(&plugin);
  user = nullptr;
}

}  // namespace gromlit::fuzz
