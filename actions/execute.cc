#include "actions/execute.h"

#include <time.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <iterator>
#include <optional>
#include <string>

#include "actions/activate.h"
#include "actions/child.h"
#include "actions/delivery.h"
#include "actions/keystrokes.h"
#include "actions/launch.h"
#include "actions/typing.h"
#include "actions/window_actions.h"
#include "core/command_types.h"
#include "core/option_files.h"
#include "core/strings.h"
#include "display/display.h"
#include "display/draw_button.h"
#include "display/end_signals.h"
#include "display/input_focus.h"
#include "display/modes.h"

namespace gromlit {
namespace {

constexpr long kWaitNanoseconds = 250'000'000;

// A quarter second. Counted to a point in time, so that a signal neither shortens nor lengthens it;
// one that ends the program does so at once.
void Wait() {
  timespec until{};
  clock_gettime(CLOCK_MONOTONIC, &until);
  until.tv_nsec += kWaitNanoseconds;
  if (until.tv_nsec >= 1'000'000'000) {
    until.tv_nsec -= 1'000'000'000;
    until.tv_sec++;
  }
  do {
    EndIfSignalled();
  } while (clock_nanosleep(CLOCK_MONOTONIC, TIMER_ABSTIME, &until, nullptr) == EINTR);
}

// The keywords of Run commands. Each may stand anywhere in the text; the first in this order that
// does decides.
struct Keyword {
  const char* text;
  void (*run)();
};

constexpr Keyword kKeywords[] = {
    {"system:wait",
     [] {
       XSync(dpy, False);
       Wait();
     }},
    {"system:sync", [] { XSync(dpy, False); }},
    {"system:showgromlit",
     [] {
       if (showWindow != None) XMapRaised(dpy, showWindow);
     }},
};

// A command as it is run.
struct Running {
  const GromlitPlugin* pin;
  const GromlitCmd* cmd;
  const char* text;  // the command's, empty where it has none
  Window focus;      // where the input focus is; None where the keys take another way
  Window kwin;       // for keys where no window has the input focus
  int winx, winy;    // pointer in that window and on the root, pixels
  int rootx, rooty;
};

InputPlace KeyPlace(const Running& r) {
  return {KeyTarget(r.focus, r.kwin), r.winx, r.winy, r.rootx, r.rooty};
}

void SendKeys(const Running& r) {
  SendKeyPairs(KeyPlace(r), r.cmd);
}

void Type(const Running& r) {
  if (r.cmd->checked != 0) {
    TypeFile(KeyPlace(r), r.text);
  } else {
    TypeText(KeyPlace(r), r.text, std::strlen(r.text));
  }
}

void Play(const Running& r) {
  PlaySoundFile(r.text);
}

void Run(const Running& r) {
  const char* text = r.text;
  for (const Keyword& keyword : kKeywords) {
    if (std::strstr(text, keyword.text) == nullptr) continue;
    keyword.run();
    return;
  }
  if (RunWindowAction(text)) return;
  StartCommandLine(text, "Error in System Command");
}

// Every address goes through the web service, which redirects to the site, unless the options
// choose otherwise; a forum is a page of that service. What the user typed is not encoded; the
// class, which a window chose, is.
void Browse(const Running& r) {
  std::string url;
  if (r.cmd->checked != 0) {
    url = GromlitForumURLprefix;
    url += EncodeForAddress(FieldText(r.pin->classname));
    url += "&uargs=";
  } else if (!Chosen(user, kOpenDirectly)) {
    url = GromlitRedirectURLprefix;
  }
  url += r.text;
  LaunchBrowserURL(url.c_str());
}

// What running a command of each type does, and whether that is pressing keys; the types:
// core/command_types.h.
// NOLINTNEXTLINE(clang-analyzer-optin.performance.Padding): six of them, read as the table below.
constexpr struct {
  CommandType type;
  void (*run)(const Running&);
  bool keys = false;
} kRuns[] = {
    {kHotKey, SendKeys, true},
    {kMenu, SendKeys, true},
    {kText, Type, true},
    {kSound, Play},
    {kRun, Run},
    {kInternet, Browse},
};
static_assert(std::size(kRuns) == kCommandTypeCount);

const char* TextOf(const GromlitCmd* cmd) {
  return cmd->text != nullptr ? cmd->text : "";
}

// `focus` is where the input focus is, if that is known already and nothing has happened since.
void RunCommand(Running r, std::optional<Window> focus) {
  const auto* const row =
      std::ranges::find_if(kRuns, [&](const auto& a) { return a.type == r.cmd->type; });
  const bool found = row != std::end(kRuns);
  // The keys of the command before must have reached the server: programs started here and the
  // focus asked for see what they caused. One question does for both.
  if (!found || !row->keys || !ChosenKeyWay().to_focus) {
    FinishRequests();
  } else {
    r.focus = focus ? *focus : FinishAndFindFocus();
  }
  EndIfSignalled();
  if (found) row->run(r);
}

}  // namespace

int ExecuteAction(GromlitPlugin* pin, GromlitAction* sa, Window /*mwin*/, Window kwin, int winx,
                  int winy, int rootx, int rooty) {
  // An action may take seconds; a press of the draw button in that time must not freeze the pointer
  // until it is over.
  const DrawButtonLifted lifted;
  // Whoever waits for the first key need not wait for the same answer twice.
  std::optional<Window> focus = lifted.focus();
  ExecutingPlugin = pin;
  // The program's own windows are not for keys, and hear of their focus themselves.
  if (Chosen(user, kActivateFirst) && !currentStroke.own) {
    Activate(currentStroke.client);
    focus.reset();
  }
  const uint32_t n = std::min<uint32_t>(sa->ncmds, kMaxCommands);
  for (uint32_t i = 0; i < n; i++) {
    if (sa->cmds[i] == nullptr) continue;
    const GromlitCmd* const cmd = sa->cmds[i];
    RunCommand({pin, cmd, TextOf(cmd), None, kwin, winx, winy, rootx, rooty}, focus);
    focus.reset();
  }
  ExecutingPlugin = nullptr;
  FinishKeys();
  return 1;
}

void ExecuteCommand(GromlitPlugin* pin, const GromlitCmd* cmd, Window /*mwin*/, Window kwin,
                    int winx, int winy, int rootx, int rooty) {
  RunCommand({pin, cmd, TextOf(cmd), None, kwin, winx, winy, rootx, rooty}, {});
}

}  // namespace gromlit
