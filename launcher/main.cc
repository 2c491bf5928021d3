// gromlit-session: makes the user's installation directory ready and starts Gromlit in it.
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <new>
#include <string>
#include <string_view>
#include <vector>

#include "core/printable.h"
#include "launcher/directory.h"
#include "launcher/start.h"
#include "launcher/user_keys.h"
#include "places/autostart.h"
#include "places/places.h"

namespace gromlit {
namespace {

enum Status { kSuccess = 0, kTrouble = 1, kWrongUsage = 2 };

constexpr const char* kHelp =
    "usage: gromlit-session [OPTION...] [OPTION OF GROMLIT...]\n"
    "Makes the directory with your symbols, plug-ins and options ready and starts\n"
    "gromlit in it; shows the window of a gromlit that runs already.\n"
    "  -path DIR              the directory; else $GROMLIT, else gromlit below\n"
    "                         $XDG_DATA_HOME or ~/.local/share\n"
    "  --prepare              only make the directory ready\n"
    "  --no-help              do not open the first page of the help, which a first\n"
    "                         start does\n"
    "  --skeleton DIR         the starter library, where it is not the installed one\n"
    "  --autostart on|off     start with the desktop, or not\n"
    "  --autostart status     print whether it does; status 0 for on, 1 for off\n"
    "  -h, --help, --version  print this text, the version\n"
    "All other options go to gromlit.\n"
    "Status: 0 success; 1 something was not done; 2 wrong usage.\n";

constexpr const char* kFirstPage = "help/journey.html";

struct Call {
  const char* path = nullptr;
  const char* display = nullptr;
  std::string skeleton;
  std::string autostart;
  bool prepare = false;
  bool help = true;
  std::vector<std::string> further;  // for gromlit
};

// NOLINTNEXTLINE(cert-dcl50-cpp): the compiler holds the values against the format
[[gnu::format(printf, 1, 2)]] void Say(const char* format, ...) {
  va_list values;
  va_start(values, format);
  std::fputs("gromlit-session: ", stderr);
  std::vfprintf(stderr, format, values);
  std::fputs("\n", stderr);
  va_end(values);
}

int Complain(Status status, const std::string& what) {
  Say("%s", what.c_str());
  return status;
}

// Reads the arguments. False when the program is done, with *status.
bool ReadCall(int argc, char** argv, Call* call, int* status) {
  for (int i = 1; i < argc; i++) {
    const std::string_view word = argv[i];
    if (word == "-h" || word == "-help" || word == "--help" || word == "--version") {
      std::fputs(word == "--version" ? "gromlit-session " GROMLIT_VERSION "\n" : kHelp, stdout);
      const bool written = std::fflush(stdout) == 0;
      *status = written ? kSuccess : Complain(kTrouble, std::strerror(errno));
      return false;
    }
    if (word == "--prepare") {
      call->prepare = true;
      continue;
    }
    if (word == "--no-help") {
      call->help = false;
      continue;
    }
    // Of gromlit's own options the second character counts; these three have a value.
    const bool valued = word.size() > 1 && word[0] == '-' &&
                        std::string_view("pdn").find(word[1]) != std::string_view::npos;
    const bool own = word == "--skeleton" || word == "--autostart";
    if (!valued && !own) {
      call->further.emplace_back(word);
      continue;
    }
    if (++i == argc) {
      *status = Complain(kWrongUsage, Printable(word) + " needs a value; --help tells more");
      return false;
    }
    if (word == "--skeleton") {
      call->skeleton = argv[i];
    } else if (word == "--autostart") {
      call->autostart = argv[i];
    } else if (word[1] == 'p') {
      call->path = argv[i];
    } else {
      if (word[1] == 'd') call->display = argv[i];
      call->further.insert(call->further.end(), {std::string(word), argv[i]});
    }
  }
  return true;
}

int Autostart(const Call& call) {
  std::string folder;
  std::string error;
  if (!FindAutostart(&folder, &error)) return Complain(kTrouble, error);
  if (call.autostart == "status") {
    const bool on = IsAutostartOn(folder);
    std::puts(on ? "on" : "off");
    return on ? 0 : 1;
  }
  if (call.autostart == "off")
    return TurnAutostartOff(folder, &error) ? kSuccess : Complain(kTrouble, error);
  if (call.autostart != "on")
    return Complain(kWrongUsage, "--autostart is on, off or status; --help tells more");
  std::string directory;
  if (call.path != nullptr && !FindDirectory(call.path, &directory, &error))
    return Complain(kTrouble, error);
  const std::string own = OwnFolder() + "/gromlit-session";
  return TurnAutostartOn(folder, own, directory, &error) ? kSuccess : Complain(kTrouble, error);
}

// Tells what was done. False when the directory is not to be used.
bool Report(const std::string& directory, const Preparation& done) {
  const std::string shown = Printable(directory);
  if (done.made) Say("made %s from the starter library", shown.c_str());
  if (done.damaged)
    Say("%s: the manifest was damaged; what is not as in the starter library counts as your own",
        shown.c_str());
  if (done.added + done.renewed > 0)
    Say("%s: %d starter files are new, %d were renewed", shown.c_str(), done.added, done.renewed);
  if (!done.error.empty())
    Say("%s: %s", done.usable ? "the directory was not brought up to date" : "no directory",
        done.error.c_str());
  return done.usable;
}

// A server that resets itself when its last client leaves refuses connections for a moment: one
// refusal is not believed.
Running AskRunning(const std::string& program, const char* display) {
  constexpr int kTries = 3;
  constexpr useconds_t kPause = 300'000;
  Running answer = ShowRunning(program, display);
  for (int i = 1; i < kTries && answer == Running::kNoDisplay; i++) {
    usleep(kPause);
    answer = ShowRunning(program, display);
  }
  return answer;
}

int Start(const Call& call) {
  std::string directory;
  std::string error;
  if (!FindDirectory(call.path, &directory, &error)) return Complain(kTrouble, error);
  const std::string program = FindCompanion("gromlit");
  if (!call.prepare) {
    if (program.empty()) return Complain(kTrouble, "gromlit is neither beside me nor in PATH");
    // First of all: what runs has its files open.
    switch (AskRunning(program, call.display)) {
      case Running::kShown:
        return kSuccess;
      case Running::kNoDisplay:
        return Complain(kTrouble, "no display answers");
      case Running::kNone:
        break;
    }
  }
  const std::string skeleton = call.skeleton.empty() ? FindSkeleton() : call.skeleton;
  if (skeleton.empty()) return Complain(kTrouble, "the starter library is not installed");
  const Preparation done =
      PrepareDirectory(directory, skeleton, [&] { return KeymapOfDisplay(call.display); });
  if (!Report(directory, done)) return kTrouble;
  if (call.prepare) return done.error.empty() ? kSuccess : kTrouble;
  if (done.made && call.help) OpenPage(directory, kFirstPage);
  return Complain(kTrouble, Become(program, directory, call.further));
}

int Main(int argc, char** argv) {
  Call call;
  int status = kSuccess;
  if (!ReadCall(argc, argv, &call, &status)) return status;
  return call.autostart.empty() ? Start(call) : Autostart(call);
}

}  // namespace
}  // namespace gromlit

int main(int argc, char** argv) {
  // A limit on the size of files is then the error of one write, which takes its temporary away.
  std::signal(SIGXFSZ, SIG_IGN);
  try {
    return gromlit::Main(argc, argv);
  } catch (const std::bad_alloc&) {
    std::fputs("gromlit-session: out of memory\n", stderr);
    return 1;
  }
}
