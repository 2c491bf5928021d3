#include "launcher/start.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cctype>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string_view>

#include "core/args.h"
#include "core/gromlit.h"
#include "core/option_files.h"
#include "core/printable.h"
#include "core/strings.h"
#include "places/places.h"

namespace gromlit {
namespace {

// Pointers for exec; they lead into the words.
std::vector<char*> Argv(const std::vector<std::string>& words) {
  std::vector<char*> argv;
  argv.reserve(words.size() + 1);
  for (const std::string& word : words) argv.push_back(const_cast<char*>(word.c_str()));
  argv.push_back(nullptr);
  return argv;
}

// The address of a file, which stays one word of a command line and one address.
std::string FileAddress(std::string_view path) {
  std::string address = "file://";
  for (const char c : path) {
    if (std::isalnum(static_cast<unsigned char>(c)) != 0 || std::strchr("/-._~", c) != nullptr) {
      address += c;
    } else {
      char code[4];
      std::snprintf(code, sizeof code, "%%%02X", static_cast<unsigned char>(c));
      address += code;
    }
  }
  return address;
}

// The words of a command line, the first "%s" among them replaced.
std::vector<std::string> CommandWords(const std::string& line, const std::string& value) {
  std::vector<char*> argv(static_cast<size_t>(ArgvSlots(line.c_str())));
  const int count = ParseArgs(line.c_str(), argv.data());
  std::vector<std::string> words;
  bool replaced = false;
  for (int i = 0; i < count; i++) {
    const std::unique_ptr<char, decltype(&std::free)> owned(argv[static_cast<size_t>(i)],
                                                            &std::free);
    std::string word = owned.get();
    if (const size_t at = word.find("%s"); !replaced && at != std::string::npos) {
      word.replace(at, 2, value);
      replaced = true;
    }
    words.push_back(word);
  }
  return words;
}

}  // namespace

Running ShowRunning(const std::string& program, const char* display) {
  std::vector<std::string> words = {program};
  if (display != nullptr) words.insert(words.end(), {"-display", display});
  words.insert(words.end(), {"-remote", "show"});
  const std::vector<char*> argv = Argv(words);
  const pid_t child = fork();
  if (child < 0) return Running::kNone;
  if (child == 0) {
    // That nothing runs is the usual case and no news.
    if (const int quiet = open("/dev/null", O_WRONLY | O_CLOEXEC); quiet >= 0)
      (void)dup2(quiet, STDERR_FILENO);
    execv(argv[0], argv.data());
    _exit(1);
  }
  int status = 0;
  while (waitpid(child, &status, 0) < 0 && errno == EINTR) {
  }
  if (!WIFEXITED(status)) return Running::kNone;
  switch (WEXITSTATUS(status)) {
    case 0:
      return Running::kShown;
    case 2:
      return Running::kNoDisplay;
    default:
      return Running::kNone;
  }
}

void OpenPage(const std::string& directory, const char* page) {
  const char* former = GromlitPath;
  GromlitPath = directory.c_str();
  const std::unique_ptr<GromlitUserOptions> options(LoadUserOptions(defaultOptionFile));
  GromlitPath = former;
  if (options == nullptr) return;
  std::vector<std::string> words =
      CommandWords(std::string(FieldText(options->urlcmd)), FileAddress(directory + "/" + page));
  if (words.empty() || FindInPath(words[0]).empty()) return;
  words[0] = FindInPath(words[0]);
  const std::vector<char*> argv = Argv(words);
  // A child of a child is nobody's to wait for: the program that this one becomes knows of none.
  const pid_t child = fork();
  if (child == 0) {
    if (fork() == 0) {
      setsid();
      execv(argv[0], argv.data());
    }
    _exit(0);
  }
  while (child > 0 && waitpid(child, nullptr, 0) < 0 && errno == EINTR) {
  }
}

std::string Become(const std::string& program, const std::string& directory,
                   const std::vector<std::string>& arguments) {
  // Removing a symbol uses a path relative to the working directory.
  if (chdir(directory.c_str()) != 0) return Printable(directory) + ": " + std::strerror(errno);
  setenv("GROMLIT", directory.c_str(), 1);
  std::vector<std::string> words = {program, "-path", directory};
  words.insert(words.end(), arguments.begin(), arguments.end());
  const std::vector<char*> argv = Argv(words);
  execv(argv[0], argv.data());
  return Printable(program) + ": " + std::strerror(errno);
}

}  // namespace gromlit
