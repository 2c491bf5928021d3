#include "program/start_up.h"

#include <X11/Xlib.h>
#include <fcntl.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "actions/child.h"
#include "actions/keyboard_change.h"
#include "actions/keystrokes.h"
#include "actions/spare_keys.h"
#include "app/action_editor/action_editor.h"
#include "app/main_window/main_menu.h"
#include "app/main_window/main_window.h"
#include "app/main_window/shown_plugin.h"
#include "app/plugins/new_plugin.h"
#include "app/plugins/plugin_menu.h"
#include "app/plugins/spare_plugins.h"
#include "app/preferences/news.h"
#include "app/preferences/user_options_window.h"
#include "app/symbols/symbol_commands.h"
#include "app/symbols/symbol_dialog.h"
#include "app/symbols/symbol_editor.h"
#include "app/tray/tray_icon.h"
#include "app/windows/dialogs.h"
#include "app/windows/splash.h"
#include "app/windows/top_level.h"
#include "capture/app_track.h"
#include "capture/gromlit_draw.h"
#include "capture/stroke_log.h"
#include "core/files.h"
#include "core/option_files.h"
#include "core/plugin_files.h"
#include "core/plugin_names.h"
#include "display/display.h"
#include "display/draw_button.h"
#include "display/end_signals.h"
#include "display/scale.h"
#include "display/scale_choice.h"
#include "display/sent_events.h"
#include "display/x_errors.h"
#include "program/command_line.h"
#include "program/remote_service.h"
#include "toolkit/event_loop.h"
#include "toolkit/manners.h"
#include "toolkit/pulldown_button.h"
#include "toolkit/resources.h"
#include "toolkit/window_object.h"

namespace gromlit {
namespace {

// A file-size limit or a closed output must show up as the error of one write, not end the program.
void IgnoreWriteSignals() {
  std::signal(SIGXFSZ, SIG_IGN);
  std::signal(SIGPIPE, SIG_IGN);
}

// The program prints a few lines in days of running. Each must be there when it is due and not when
// the program ends, also where the output goes to a log.
void PrintAtOnce() {
  (void)std::setvbuf(stdout, nullptr, _IONBF, 0);
}

// What actions start is to appear where the program is, too.
void OpenDisplayOrExit(const char* name) {
  if (OpenDisplay(name)) {
    if (name != nullptr) setenv("DISPLAY", name, 1);
    return;
  }
  std::fprintf(stderr, "unable to open display '%s'\n", XDisplayName(name));
  std::exit(1);
}

void GrabDrawButtonOrExit() {
  RenewDrawLocks();
  if (GrabDrawButton(EffectiveButton(user))) return;
  std::printf("%s\n", kDrawButtonTaken);
  std::exit(0);
}

// The overlay lives as long as the program; the preferences reach it through a plain function.
GromlitDraw* overlay = nullptr;

void RenewOverlay() {
  RenewDrawEvents(overlay);
}

void MakeOverlayAndMainWindow() {
  overlay = MakeGromlitDraw();
  drawButtonChanged = RenewOverlay;
  app = MakeGromlitApp(6, 3);
  overlay->app = app;
}

void ReadPlugins() {
  LoadPlugins();
  app->plugin = GetDefaultPlugin();
  UpdatePluginsMenu();
}

void MakeNewPluginDialogs() {
  app->dlog = MakeDownloadDialog();
  app->newdlog = MakeNewPluginDialog();
}

void MakeEditors() {
  CreateSymbolEditor();  // reads the symbol library as well
  MakeSymbolSelect(YesEditSymbol);
  CreateActionEditor();
  CreateUserOptions();
  UpdateUserOptions(user);
}

// On its way to the screen, and into its frame, while the files are read that it shows: nothing
// that is done to it is looked at before the event loop.
void ShowMainWindow() {
  MapTopLevel(app->window);
  XFlush(dpy);
}

void FillMainWindow() {
  UpdateGromlitApp(app, defaultPluginClassname, nullptr);
  DrawGromlitApp(app);
  if (!HandsOff(DefaultPlugin)) UpdatePulldownButton(app->txt, defaultPluginClassname);
  TellOfSparePlugins();
  TellOfNews(!SparePluginFiles().empty());
}

}  // namespace

void HoldStandardDescriptors() {
  for (int fd = STDIN_FILENO; fd <= STDERR_FILENO; fd++) {
    // The lowest free number is the missing one, since those below it are held by now.
    if (fcntl(fd, F_GETFD) < 0 && open("/dev/null", O_RDWR) < 0) return;
  }
}

void StartUp(const CommandLine& line) {
  IgnoreWriteSignals();
  PrintAtOnce();
  OpenStrokeLog();
  ReapChildrenSilently();
  KeepCommandLine(line.argc, line.argv);
  OpenDisplayOrExit(line.display);
  ForgetSentInput();
  GromlitPath = FindInstallation(line);
  GetUserOptions();
  UseScale(ChooseScale(line.scale, std::getenv(kScaleVariable),
                       ModernManners() ? DpiOfDesktop() : std::string()));
  MakeResources();
  if (user->splash != 0) DoSplash();
  keyboardChanged = [](const XMappingEvent& event) {
    KeyboardChanged(event);
    RenewDrawLocks();
  };
  GrabDrawButtonOrExit();
  // Not before the grab: an instance that runs may be saving, or typing.
  RemoveStaleTemporaries();
  Defer({SpareKeysWait, ReturnKeys});
  MakeAboutDialog();
  MakeOverlayAndMainWindow();
  MakeConfirmDialog();
  MakeEditNameDialog(SaveNewPluginName);
  MakeNewPluginDialogs();
  CatchEndSignals(GiveBack);
  // From here on windows are asked about that another client may have destroyed already, the shown
  // one among them.
  XSetErrorHandler(GromlitXErrorHandler);
  ShowMainWindow();
  ReadPlugins();
  FillMainWindow();
  MakeEditors();
  // Asked for here, answered while the next step waits.
  AskForLoans();
  AskForWindows();
  AskForTrays();
  ServeRemote();
  ReturnKeysOfTheDead();
  // With what the keys mean from now on.
  BuildCharToKeycode();
  CreateAppTrack();
  WatchForTrays();
  MakeCursors();
}

}  // namespace gromlit
