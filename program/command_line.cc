#include "program/command_line.h"

#include <unistd.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

#include "core/printable.h"
#include "core/strings.h"
#include "display/scale_choice.h"
#include "program/remote_call.h"

namespace gromlit {

const char* ProgramName = "gromlit";

namespace {

constexpr const char* kOptionText[] = {
    "    -display displayname   X server to contact",
    "    -path path             Directory where gromlit installed",
    "",
};

// What else the help says. The usage, which answers a wrong call, stays short.
constexpr const char* kFurtherText[] = {
    "    -help, -h, --help      Print this text",
    "    --version              Print the version",
    "    -scale n               Draw windows in their size (1) or twice as large (2)",
    "    -remote word           Have the running gromlit obey the word:",
};

void PrintHelp() {
  std::printf("usage:  %s [-options ...]\n", ProgramName);
  std::printf("where options include:\n");
  for (const char* line : kOptionText) {
    if (*line != '\0') std::printf("%s\n", line);
  }
  for (const char* line : kFurtherText) std::printf("%s\n", line);
  std::printf("%27s%s\n", "", RemoteWordList().c_str());
}

// Words that count as a whole, before an option's letter does: these print and end the program.
void ObeyWholeWord(std::string_view word) {
  if (word == "-h" || word == "-help" || word == "--help") {
    PrintHelp();
    std::exit(0);
  }
  if (word == "--version") {
    std::printf("gromlit %s\n", GROMLIT_VERSION);
    std::exit(0);
  }
}

RemoteWord RemoteWordOrExit(const char* name) {
  if (name == nullptr) {
    std::fprintf(stderr, "-remote needs a word: %s\n", RemoteWordList().c_str());
    std::exit(kRemoteWrong);
  }
  const std::optional<RemoteWord> word = FindRemoteWord(name);
  if (!word) {
    std::fprintf(stderr, "unknown word '%s' after -remote; there are: %s\n",
                 Printable(name).c_str(), RemoteWordList().c_str());
    std::exit(kRemoteWrong);
  }
  return *word;
}

int ScaleOrUsage(const char* value) {
  const std::optional<int> scale = ScaleOfText(value);
  if (!scale) usage();
  return *scale;
}

}  // namespace

void usage() {
  std::fprintf(stderr, "usage:  %s [-options ...]\n", ProgramName);
  std::fprintf(stderr, "where options include:\n");
  for (const char* line : kOptionText) std::fprintf(stderr, "%s\n", line);
  std::exit(1);
}

CommandLine ParseCommandLine(int argc, char** argv) {
  CommandLine line{
      .display = nullptr, .path = nullptr, .remote = {}, .scale = 0, .argc = argc, .argv = argv};
  if (argc > 0) ProgramName = argv[0];
  for (int i = 1; i < argc; i++) {
    const char* option = argv[i];
    ObeyWholeWord(option);
    if (StrCmp(option, "-remote") == 0) {
      i++;
      line.remote = RemoteWordOrExit(i < argc ? argv[i] : nullptr);
      continue;
    }
    if (StrCmp(option, "-scale") == 0) {
      i++;
      line.scale = ScaleOrUsage(i < argc ? argv[i] : "");
      continue;
    }
    if (option[0] != '-') usage();
    const char* ignored;
    const char** value;
    switch (option[1]) {
      case 'd':
        value = &line.display;
        break;
      case 'p':
        value = &line.path;
        break;
      case 'n':
        value = &ignored;
        break;
      default:
        usage();
    }
    if (++i == argc) usage();
    *value = argv[i];
  }
  return line;
}

const char* FindInstallation(const CommandLine& line) {
  const char* path = defaultGromlitPath;
  if (const char* environment = std::getenv("GROMLIT"); environment != nullptr) path = environment;
  if (line.path != nullptr) path = line.path;
  std::array<char, 256> directory;  // outlives the pointer to it
  if (StrCmp(path, defaultGromlitPath) == 0) {
    if (getcwd(directory.data(), directory.size()) != nullptr) path = directory.data();
  }
  return StrDup(path);
}

}  // namespace gromlit
