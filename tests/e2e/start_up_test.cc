#include "tests/e2e/shell_run.h"

#include <X11/Xatom.h>
#include <X11/Xutil.h>
#include <fcntl.h>
#include <sys/inotify.h>
#include <sys/stat.h>

#include <chrono>
#include <filesystem>
#include <thread>

#include "core/option_files.h"

namespace gromlit {
namespace {

namespace fs = std::filesystem;
using testing::Conditions;
using testing::Exists;
using testing::kDown;
using testing::kRight;
using testing::ReadText;
using testing::WaitFor;
using testing::WriteText;
using testing::XServer;

constexpr const char* kNoDisplay = ":9999";
const char* const kFontMessages =
    "Text font -*-helvetica-medium-r-normal--12-*1 not found, using fixed."
    "Text font -*-helvetica-bold-r-normal--18-*1 not found, using fixed.";

class StartUpTest : public testing::ShellRun {
 protected:
  void UseServer(const std::vector<std::string>& more) {
    player.reset();
    server.reset();
    server = std::make_unique<XServer>("1280x1024x24", more);
    player = std::make_unique<testing::Player>(server->name());
    player->MoveTo(1, 1);
  }

  // The program prints its usage for these words, whether or not there is a display.
  void ExpectUsage(const std::vector<std::string>& arguments) {
    std::string line;
    for (const std::string& argument : arguments) line += " '" + argument + "'";
    SCOPED_TRACE("gromlit" + line);
    for (const char* before : {"", "unset DISPLAY;"}) {
      const Ending ending = RunToEnd(arguments, {.before = before});
      EXPECT_EQ(ending.status, 1);
      EXPECT_EQ(ending.out, "");
      EXPECT_EQ(ending.err, "usage:  " + Binary() +
                                " [-options ...]\n"
                                "where options include:\n"
                                "    -display displayname   X server to contact\n"
                                "    -path path             Directory where gromlit installed\n"
                                "\n");
    }
  }
  void ExpectNoDisplay(const std::vector<std::string>& arguments, const std::string& name,
                       const std::string& before = "") {
    SCOPED_TRACE(arguments.empty() ? "" : arguments[0]);
    const Ending ending = RunToEnd(arguments, {.before = before});
    EXPECT_EQ(ending.status, 1);
    EXPECT_EQ(ending.out, "");
    EXPECT_EQ(ending.err, "unable to open display '" + name + "'\n");
  }

  // An installation directory whose plug-in for the desktop makes the file NAME.
  std::string MakeActing(const std::string& name) {
    const std::string directory = MakeDirectory(name);
    DesktopTouches("by-" + name);
    fs::rename(*install / "plugins/Desktop.sla", directory + "/plugins/Desktop.sla");
    return directory;
  }
  // The directory in use is the one of this name: its plug-in acts and the default plug-in was made
  // in it.
  void ExpectInUse(const std::string& name) {
    EXPECT_TRUE(DesktopActs("by-" + name));
    EXPECT_TRUE(Exists(*install / name + "/plugins/Default.sla"));
    fs::remove(*install / name + "/plugins/Default.sla");
    fs::remove(MarkFile("by-" + name));
  }
  void ExpectNotInUse(const std::string& name) {
    EXPECT_EQ(NamesIn(*install / name + "/plugins"), std::vector<std::string>{"Desktop.sla"});
  }
};

// --- Command line ------------------------------------------------------------------------------

TEST_F(StartUpTest, BareWordPrintsTheUsage) {
  ExpectUsage({"word"});
  ExpectUsage({""});
  ExpectUsage({"-path", install->path(), "word"});
}

TEST_F(StartUpTest, UnknownLetterPrintsTheUsage) {
  ExpectUsage({"-x"});
  // Near to the words that are taken as a whole, and none of them.
  for (const char* word : {"-helpme", "--h", "-H", "-version", "--versions", "--remote", "-r"}) {
    ExpectUsage({word});
  }
  ExpectUsage({"--display", server->name()});
  ExpectUsage({"-D", server->name()});
  ExpectUsage({"-path", install->path(), "-q"});
}

TEST_F(StartUpTest, HelpIsPrintedWhereItCanBeRead) {
  for (const char* word : {"-h", "-help", "--help"}) {
    SCOPED_TRACE(word);
    for (const char* before : {"", "unset DISPLAY;"}) {
      // Also behind other options, but for what is the value of one.
      const Ending ending = RunToEnd({"-n", "-x", "-path", "/nowhere", word}, {.before = before});
      EXPECT_EQ(ending.status, 0);
      EXPECT_EQ(ending.err, "");
      for (const char* part :
           {" [-options ...]\n", "-display displayname", "-path path", "--version"})
        EXPECT_NE(ending.out.find(part), std::string::npos) << part << " in\n" << ending.out;
      EXPECT_LT(std::count(ending.out.begin(), ending.out.end(), '\n'), 15);
    }
  }
  ExpectNoDisplay({"-display", "-help"}, "-help");
  EXPECT_TRUE(NamesIn(*install / "plugins").empty());
}

TEST_F(StartUpTest, VersionIsPrinted) {
  const Ending ending = RunToEnd({"--version"}, {.before = "unset DISPLAY;"});
  EXPECT_EQ(ending.status, 0);
  EXPECT_TRUE(ending.out.starts_with("gromlit 1.")) << ending.out;
  EXPECT_EQ(std::count(ending.out.begin(), ending.out.end(), '\n'), 1);
  EXPECT_EQ(ending.err, "");
}

TEST_F(StartUpTest, LoneDashPrintsTheUsage) {
  ExpectUsage({"-"});
  ExpectUsage({"-", "-path", install->path()});
}

TEST_F(StartUpTest, MissingValuePrintsTheUsage) {
  for (const char* option : {"-d", "-display", "-p", "-path", "-n", "-name"}) {
    ExpectUsage({option});
    ExpectUsage({"-path", install->path(), option});
  }
}

TEST_F(StartUpTest, UsageNamesTheProgramAsItWasCalled) {
  fs::create_symlink(Binary(), *install / "strokes");
  // The shell starts the other name and gives its status on.
  const Ending ending = RunToEnd({}, {.before = "./strokes word >\"$OUT\" 2>\"$ERR\"; exit $?;"});
  EXPECT_EQ(ending.status, 1);
  EXPECT_TRUE(ending.err.starts_with("usage:  ./strokes [-options ...]\n")) << ending.err;
}

TEST_F(StartUpTest, AnyWordWhoseSecondLetterIsDNamesTheDisplay) {
  for (const char* option : {"-d", "-display", "-dim", "-d-"})
    ExpectNoDisplay({option, kNoDisplay}, kNoDisplay);
  DesktopTouches("acted");
  Launch({"-path", install->path(), "-depth", server->name()}, {.before = "unset DISPLAY;"});
  EXPECT_TRUE(DesktopActs("acted"));
}

TEST_F(StartUpTest, AnyWordWhoseSecondLetterIsPNamesTheDirectory) {
  for (const char* option : {"-p", "-path", "-port", "-p="}) {
    SCOPED_TRACE(option);
    const std::string directory = MakeActing("elsewhere");
    Launch({option, directory});
    ExpectInUse("elsewhere");
    StopGromlit();
  }
}

TEST_F(StartUpTest, AnyWordWhoseSecondLetterIsNTakesAWordAndIgnoresIt) {
  DesktopTouches("acted");
  // The words that are passed over would print the usage or name a display that is not there.
  Launch({"-n", "word", "-nice", "-x", "-name", "-display", "-none", "", "-path", install->path()});
  EXPECT_TRUE(DesktopActs("acted"));
  EXPECT_EQ(Out() + Err(), "");
}

TEST_F(StartUpTest, ValueMayLookLikeAnOption) {
  ExpectNoDisplay({"-display", "-path"}, "-path");
  const std::string directory = MakeActing("-n");
  Launch({"-path", "-n", "-n", "-path"});
  ExpectInUse("-n");
}

TEST_F(StartUpTest, LaterOptionsWin) {
  MakeActing("first");
  const std::string directory = MakeActing("second");
  Launch(
      {"-display", kNoDisplay, "-path", *install / "first", "-d", server->name(), "-p", directory});
  ExpectInUse("second");
  ExpectNotInUse("first");
  ExpectNoDisplay({"-d", server->name(), "-d", kNoDisplay}, kNoDisplay);
}

TEST_F(StartUpTest, ProgramsThatActionsStartUseTheDisplayOfTheOption) {
  // The display of the environment is another one, or there is none.
  WritePlugin("Desktop", {{"right", kRight, {{kRun, "env"}, Touch("acted")}}});
  for (const std::string& before : {std::string("DISPLAY=") + kNoDisplay + "; export DISPLAY;",
                                    std::string("unset DISPLAY;")}) {
    Launch({"-display", server->name(), "-path", install->path()}, {.before = before});
    EXPECT_TRUE(DesktopActs("acted"));
    EXPECT_TRUE(WaitFor([this] {
      return ("\n" + Out()).find("\nDISPLAY=" + server->name() + "\n") != std::string::npos;
    })) << Out();
    StopGromlit();
    fs::remove(MarkFile("acted"));
    fs::remove(OutFile());
  }
}

TEST_F(StartUpTest, DisplayThatCannotBeOpenedIsNamed) {
  ExpectNoDisplay({"-display", kNoDisplay}, kNoDisplay);
  ExpectNoDisplay({}, kNoDisplay, std::string("DISPLAY=") + kNoDisplay + "; export DISPLAY;");
  ExpectNoDisplay({}, "", "unset DISPLAY;");
  EXPECT_TRUE(NamesIn(*install / "plugins").empty()) << "nothing is written before the display";
}

// --- Installation directory --------------------------------------------------------------------

TEST_F(StartUpTest, WorkingDirectoryIsTheInstallationDirectoryWhenNothingElseIsSaid) {
  const std::string here = MakeActing("here");
  Launch({}, {.before = "unset GROMLIT;", .directory = here});
  ExpectInUse("here");
}

TEST_F(StartUpTest, EnvironmentWinsOverTheWorkingDirectory) {
  const std::string here = MakeActing("here");
  const std::string set = MakeActing("set");
  Launch({}, {.directory = here, .environment = {"GROMLIT=" + set}});
  ExpectInUse("set");
  ExpectNotInUse("here");
}

TEST_F(StartUpTest, PathOptionWinsOverTheEnvironment) {
  const std::string here = MakeActing("here");
  const std::string set = MakeActing("set");
  const std::string given = MakeActing("given");
  Launch({"-path", given}, {.directory = here, .environment = {"GROMLIT=" + set}});
  ExpectInUse("given");
  ExpectNotInUse("here");
  ExpectNotInUse("set");
}

TEST_F(StartUpTest, DotIsSpelledOutInFull) {
  // A plug-in's actions are read when they are first needed. Until then the working directory gets
  // another name and another directory takes its place: the name decides, not the directory.
  struct Way {
    std::vector<std::string> arguments;
    std::string before;
  };
  const Way ways[] = {{{}, "unset GROMLIT;"},
                      {{}, "GROMLIT=.; export GROMLIT;"},
                      {{"-path", "."}, "GROMLIT=/nowhere; export GROMLIT;"}};
  for (const Way& way : ways) {
    SCOPED_TRACE(way.before);
    const std::string here = MakeActing("here");
    Launch(way.arguments, {.before = way.before, .directory = here});
    fs::rename(here, *install / "moved");
    MakeDirectory("here");
    DesktopTouches("by-name");
    fs::rename(*install / "plugins/Desktop.sla", here + "/plugins/Desktop.sla");
    EXPECT_TRUE(DesktopActs("by-name"));
    EXPECT_FALSE(Exists(MarkFile("by-here")));
    StopGromlit();
    fs::remove(MarkFile("by-name"));
    fs::remove_all(here);
    fs::remove_all(*install / "moved");
  }
}

TEST_F(StartUpTest, WorkingDirectoryOf256BytesStaysADot) {
  std::string name = "deep";
  while ((*install / name).size() < 256) name += "/" + std::string(60, 'd');
  MakeDirectory(name);
  DesktopTouches("acted");
  fs::rename(*install / "plugins/Desktop.sla", *install / name + "/plugins/Desktop.sla");
  Launch({}, {.before = "unset GROMLIT;", .directory = *install / name});
  EXPECT_TRUE(DesktopActs("acted"));
  EXPECT_TRUE(Exists(*install / name + "/plugins/Default.sla"));
}

// --- The server --------------------------------------------------------------------------------

TEST_F(StartUpTest, OrdinaryStartPrintsNothing) {
  DesktopTouches("acted");
  LaunchInstalled();
  EXPECT_TRUE(DesktopActs("acted"));
  EXPECT_EQ(Out(), "");
  EXPECT_EQ(Err(), "");
}

TEST_F(StartUpTest, MissingFontsAreReportedAndReplaced) {
  UseServer({"-fp", "built-ins"});
  DesktopTouches("acted");
  LaunchInstalled();
  // Seen at once, while the program goes on.
  EXPECT_EQ(Out(), kFontMessages);
  EXPECT_EQ(Err(), "");
  EXPECT_TRUE(DesktopActs("acted"));
  EXPECT_NE(MainWindow(), 0u);
}

TEST_F(StartUpTest, OptionsAreReadBeforeFontsAreLoaded) {
  UseServer({"-fp", "built-ins"});
  ASSERT_TRUE(Exists(*install / "options/default.user"));
  // The first missing font is reported into a full pipe: there the program waits.
  ASSERT_EQ(mkfifo(OutFile().c_str(), 0666), 0);
  const int pipe = open(OutFile().c_str(), O_RDWR | O_NONBLOCK | O_CLOEXEC);
  ASSERT_GE(pipe, 0);
  const std::string block(4096, '.');
  for (const size_t size : {block.size(), size_t{1}})
    while (write(pipe, block.data(), size) > 0) continue;
  const int watch = inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
  ASSERT_GE(inotify_add_watch(watch, (*install / "options").c_str(), IN_OPEN | IN_ONLYDIR), 0);

  gromlit = Start({"-path", install->path()});
  const auto opened = [&] {
    alignas(inotify_event) char events[4096];
    const ssize_t size = read(watch, events, sizeof events);
    for (ssize_t at = 0; at < size;) {
      const auto* event = reinterpret_cast<const inotify_event*>(events + at);
      if (event->len > 0 && std::string(event->name) == "default.user") return true;
      at += static_cast<ssize_t>(sizeof *event + event->len);
    }
    return false;
  };
  EXPECT_TRUE(WaitFor(opened, std::chrono::seconds(30)));
  EXPECT_FALSE(GromlitIsReady());

  EXPECT_TRUE(WaitFor(
      [&] {
        char printed[4096];
        while (read(pipe, printed, sizeof printed) > 0) continue;
        return GromlitIsReady();
      },
      std::chrono::seconds(60)));
  close(watch);
  close(pipe);
}

TEST_F(StartUpTest, ServerWithoutTheFixedFontIsServedToo) {
  UseServer({});
  const std::string fonts = *install / "fonts";
  fs::create_directory(fonts);
  // What is left is the font that cursors are made from.
  const char* const cursors = "/usr/share/fonts/X11/misc/cursor.pcf.gz";
  ASSERT_TRUE(Exists(cursors));
  fs::copy_file(cursors, fonts + "/cursor.pcf.gz");
  WriteText(fonts + "/fonts.dir", "1\ncursor.pcf.gz cursor\n");
  char* path[] = {const_cast<char*>(fonts.c_str())};
  XSetFontPath(player->display(), path, 1);
  XSync(player->display(), False);
  ASSERT_EQ(XLoadQueryFont(player->display(), "fixed"), nullptr);
  DesktopTouches("acted");
  LaunchInstalled();
  EXPECT_EQ(Out(), std::string("Text font fixed not found, using fixed.") + kFontMessages);
  EXPECT_TRUE(DesktopActs("acted"));
}

TEST_F(StartUpTest, ServerWithoutAnyFontIsServedToo) {
  UseServer({});
  const std::string fonts = *install / "fonts";
  fs::create_directory(fonts);
  WriteText(fonts + "/fonts.dir", "0\n");
  char* path[] = {const_cast<char*>(fonts.c_str())};
  XSetFontPath(player->display(), path, 1);
  XSync(player->display(), False);
  DesktopTouches("acted");
  LaunchInstalled();
  EXPECT_EQ(Err(), "");
  EXPECT_TRUE(DesktopActs("acted"));
  EXPECT_NE(MainWindow(), 0u);
}

// How often the program went to sleep: each time it had been woken.
TEST_F(StartUpTest, NothingWakesItWhileThePointerRestsOrMovesInsideOneWindow) {
  const testing::ProbeClient probe(install->path(), {"--class", "Rest", "rest", "--geometry",
                                                     "400x400+700+500", "--override-redirect"});
  LaunchInstalled();
  const auto sleeps = [this] {
    const std::string text = ReadText("/proc/" + std::to_string(gromlit->pid()) + "/status");
    const std::string word = "\nvoluntary_ctxt_switches:";
    const size_t at = text.find(word);
    return at == std::string::npos ? 0 : std::strtoul(text.c_str() + at + word.size(), nullptr, 10);
  };
  // What the start and the way into the window bring is over when nothing has come for a while.
  const auto at_rest = [&](std::chrono::milliseconds time) {
    const unsigned long before = sleeps();
    std::this_thread::sleep_for(time);
    return before > 0 && sleeps() == before;
  };
  player->MoveTo(800, 600);
  ASSERT_TRUE(WaitFor([&] { return at_rest(std::chrono::milliseconds(300)); }));
  EXPECT_TRUE(at_rest(std::chrono::milliseconds(700)));
  const unsigned long before = sleeps();
  for (int i = 0; i < 300; i++) player->MoveTo(750 + i, 600 + i % 50);
  EXPECT_TRUE(at_rest(std::chrono::milliseconds(100)));
  EXPECT_EQ(sleeps(), before);
  // It would be seen.
  player->MoveTo(1, 1);
  EXPECT_TRUE(WaitFor([&] { return sleeps() > before; }));
}

// Nobody waits for what is read or made for windows that only come when they are asked for.
TEST_F(StartUpTest, MainWindowComesBeforeThePluginsMenuAndTheEditors) {
  // A client that is told of the root's windows in the order of the requests, and at the end that
  // the program can be called.
  Display* const watcher = XOpenDisplay(server->name().c_str());
  XSelectInput(watcher, DefaultRootWindow(watcher), SubstructureNotifyMask | StructureNotifyMask);
  XSync(watcher, True);
  gromlit = Start({"-path", install->path()});
  bool mapped = false;
  bool done = false;
  int menus = 0;
  std::vector<std::string> later;
  const auto look = [&] {
    while (!done && XPending(watcher) > 0) {
      XEvent event;
      XNextEvent(watcher, &event);
      if (event.type == MapNotify) mapped = true;
      if (event.type == ClientMessage) done = true;
      if (event.type != CreateNotify || !mapped) continue;
      char* name = nullptr;
      if (event.xcreatewindow.override_redirect != 0)
        menus++;
      else if (XFetchName(watcher, event.xcreatewindow.window, &name) != 0)
        later.emplace_back(name);
      XFree(name);
    }
    return done;
  };
  EXPECT_TRUE(WaitFor(look, std::chrono::seconds(60))) << Err();
  XCloseDisplay(watcher);
  EXPECT_GE(menus, 1);
  EXPECT_THAT(later, ::testing::Contains("Gromlit: Symbol Editor"));
}

TEST_F(StartUpTest, SecondInstanceEndsAndTheFirstGoesOn) {
  DesktopTouches("acted");
  LaunchInstalled();
  // What the first one may be writing right now is not a leftover to the second.
  WriteText(*install / ".gromlit-save-abcdef", "half a file");
  const std::string other = MakeDirectory("other");
  const Conditions apart{.redirection = ">\"$OUT.2\" 2>\"$ERR.2\""};
  for (const std::string& directory : {install->path(), other}) {
    const auto second = Start({"-path", directory}, apart);
    EXPECT_EQ(second->Wait(std::chrono::seconds(60)), 0);
    EXPECT_EQ(ReadText(OutFile() + ".2"), "Drawing Button used by another application.\n");
    EXPECT_EQ(ReadText(ErrFile() + ".2"), "");
  }
  EXPECT_TRUE(Exists(*install / ".gromlit-save-abcdef"));
  EXPECT_TRUE(NamesIn(other + "/plugins").empty());
  EXPECT_TRUE(gromlit->Running());
  EXPECT_TRUE(DesktopActs("acted"));
}

TEST_F(StartUpTest, SecondInstanceWithAnotherButtonRunsBesideTheFirst) {
  DesktopTouches("by-first");
  LaunchInstalled();
  const std::string other = MakeActing("other");
  GromlitUserOptions options{};
  DefaultUserOptions(&options);
  options.splash = 0;
  options.button = 2;
  ASSERT_EQ(SaveUserOptions(&options, defaultOptionFile), 1);
  fs::rename(*install / "options/default.user", other + "/options/default.user");
  DesktopTouches("by-first");
  const auto second = Start({"-path", other}, {.redirection = ">\"$OUT.2\" 2>\"$ERR.2\""});
  ASSERT_TRUE(WaitFor([&] { return Exists(other + "/plugins/Default.sla"); }));
  // The button is grabbed before that file is made; the press waits for the program.
  Drag({{800, 900}, {1100, 900}}, 2);
  EXPECT_TRUE(Appears("by-other"));
  EXPECT_TRUE(TrailIsGone());
  EXPECT_FALSE(Exists(MarkFile("by-first")));
  EXPECT_TRUE(DesktopActs("by-first"));
}

TEST_F(StartUpTest, WindowManagerThatStartsLaterClosesTheWindowAndNotTheProgram) {
  // Nobody has asked for these names on this server yet.
  ASSERT_EQ(XInternAtom(player->display(), "WM_DELETE_WINDOW", True), Atom{0});
  ASSERT_EQ(XInternAtom(player->display(), "WM_PROTOCOLS", True), Atom{0});
  DesktopTouches("acted");
  LaunchInstalled();
  const Window main = MainWindow();
  ASSERT_NE(main, 0u);
  Atom* protocols = nullptr;
  int count = 0;
  ASSERT_NE(XGetWMProtocols(player->display(), main, &protocols, &count), 0);
  ASSERT_EQ(count, 1);
  EXPECT_EQ(protocols[0], XInternAtom(player->display(), "WM_DELETE_WINDOW", True));
  XFree(protocols);

  StartWindowManager("openbox");
  XWindowAttributes attributes{};
  const auto viewable = [&] {
    return XGetWindowAttributes(player->display(), main, &attributes) != 0 &&
           attributes.map_state == IsViewable;
  };
  // Managed: the window manager has said so on the window.
  const Atom state = XInternAtom(player->display(), "WM_STATE", False);
  ASSERT_TRUE(WaitFor([&] {
    Atom type = 0;
    int format;
    unsigned long n;
    unsigned long left;
    unsigned char* data = nullptr;
    XGetWindowProperty(player->display(), main, state, 0, 2, False, AnyPropertyType, &type, &format,
                       &n, &left, &data);
    if (data != nullptr) XFree(data);
    return type != 0 && viewable();
  }));
  XEvent close{};
  close.xclient.type = ClientMessage;
  close.xclient.window = main;
  close.xclient.message_type = XInternAtom(player->display(), "_NET_CLOSE_WINDOW", False);
  close.xclient.format = 32;
  close.xclient.data.l[1] = 2;  // asked for by the user
  XSendEvent(player->display(), player->root(), False,
             SubstructureNotifyMask | SubstructureRedirectMask, &close);
  EXPECT_TRUE(WaitFor([&] { return !viewable(); }));
  EXPECT_TRUE(DesktopActs("acted"));
  EXPECT_TRUE(gromlit->Running());
  EXPECT_NE(XGetWindowAttributes(player->display(), main, &attributes), 0) << "window destroyed";
}

// --- Damaged and missing data ------------------------------------------------------------------

TEST_F(StartUpTest, WhatIsNoPluginIsPassedOver) {
  DesktopTouches("acted");
  const std::string plugins = *install / "plugins/";
  const std::string good = ReadText(plugins + "Desktop.sla");
  // None of these may stand in for the desktop's plug-in, whatever the order of the directory.
  WriteText(plugins + "Empty.sla", "");
  WriteText(plugins + "Head.sla", "GromlitPlugi");
  WriteText(plugins + "Header.sla", "GromlitPlugin");
  WriteText(plugins + "Short.sla", good.substr(0, 1176));
  WriteText(plugins + "Other.sla", "GromlitPlugiN" + good.substr(13));
  WriteText(plugins + "notes.txt", "nothing to do with plug-ins\n");
  fs::create_directory(plugins + "Directory.sla");
  fs::create_symlink("nowhere", plugins + "Dangling.sla");
  fs::create_symlink("Loop.sla", plugins + "Loop.sla");
  ASSERT_EQ(mkfifo((plugins + "Pipe.sla").c_str(), 0666), 0);
  LaunchInstalled();
  EXPECT_TRUE(DesktopActs("acted"));
  EXPECT_EQ(Out(), "");
  EXPECT_EQ(Err(), "");
}

TEST_F(StartUpTest, TruncatedPluginIsReportedAndServesWithWhatItHas) {
  struct Cut {
    size_t missing;  // bytes from the end
    const char* message;
  };
  const std::string file = *install / "plugins/Desktop.sla";
  // The second action has one command with a text of three bytes.
  for (const Cut& cut :
       {Cut{2, "Error reading plugin command text\n"}, Cut{3 + 1, "Error reading Plugin Command\n"},
        Cut{3 + 56 + 1, "Error reading Plugin Actions\n"}}) {
    SCOPED_TRACE(cut.message);
    WritePlugin("Desktop", {{"right", kRight, {Touch("acted")}}, {"down", kDown, {{kRun, "abc"}}}});
    fs::resize_file(file, fs::file_size(file) - cut.missing);
    LaunchInstalled();
    EXPECT_EQ(Out(), "") << "actions are read when they are needed";
    EXPECT_TRUE(DesktopActs("acted"));
    // Reported at once, and once.
    EXPECT_TRUE(DesktopActs("acted"));
    EXPECT_EQ(Out(), cut.message);
    StopGromlit();
    fs::remove(MarkFile("acted"));
  }
}

TEST_F(StartUpTest, LeftoversOfBrokenSavesAreRemoved) {
  DesktopTouches("acted");
  WriteText(*install / ".gromlit-save-a1B2c3", "half a file");
  WriteText(*install / ".gromlit-save-XXXXXX", "");
  // Not leftovers: other names, other places, other kinds.
  WriteText(*install / ".gromlit-save-a1B2c3d", "mine");
  WriteText(*install / ".gromlit-save-", "mine");
  WriteText(*install / "gromlit-save-a1B2c3", "mine");
  WriteText(*install / "symbols/.gromlit-save-a1B2c3", "mine");
  fs::create_directory(*install / ".gromlit-save-direct");
  fs::create_symlink("gromlit-save-a1B2c3", *install / ".gromlit-save-linked");
  LaunchInstalled();
  EXPECT_FALSE(Exists(*install / ".gromlit-save-a1B2c3"));
  EXPECT_FALSE(Exists(*install / ".gromlit-save-XXXXXX"));
  EXPECT_TRUE(Exists(*install / ".gromlit-save-a1B2c3d"));
  EXPECT_TRUE(Exists(*install / ".gromlit-save-"));
  EXPECT_TRUE(Exists(*install / "gromlit-save-a1B2c3"));
  EXPECT_TRUE(Exists(*install / "symbols/.gromlit-save-a1B2c3"));
  EXPECT_TRUE(Exists(*install / ".gromlit-save-direct"));
  EXPECT_TRUE(Exists(*install / ".gromlit-save-linked"));
  EXPECT_TRUE(DesktopActs("acted"));
}

TEST_F(StartUpTest, MissingPluginDirectoryIsSurvived) {
  fs::remove_all(*install / "plugins");
  LaunchInstalled();
  EXPECT_EQ(Out(), "");
  EXPECT_EQ(Err(), "Save Plugin: No such file or directory\n");
  EXPECT_FALSE(Exists(*install / "plugins"));
  DrawOnDesktop();
  DrawOnDesktop();
  EXPECT_TRUE(PointerBecomesFree());
  EXPECT_TRUE(gromlit->Running());
  EXPECT_NE(MainWindow(), 0u);
}

TEST_F(StartUpTest, MissingInstallationDirectoryIsSurvived) {
  Launch({"-path", "/nonexistent/gromlit"});
  EXPECT_EQ(Err(), "Save Plugin: No such file or directory\n");
  DrawOnDesktop();
  EXPECT_TRUE(PointerBecomesFree());
  EXPECT_TRUE(gromlit->Running());
}

// --- Outputs and limits ------------------------------------------------------------------------

// Standard output into a pipe that nobody reads any more.
const char* const kBrokenPipe = "mkfifo broken; exec 3<>broken 4>broken 3<&-;";

TEST_F(StartUpTest, OutputThatNobodyReadsDoesNotEndTheProgram) {
  UseServer({"-fp", "built-ins"});  // makes the start print something
  DesktopTouches("acted");
  LaunchInstalled({.before = kBrokenPipe, .redirection = ">&4 2>\"$ERR\""});
  EXPECT_TRUE(DesktopActs("acted"));
  EXPECT_EQ(Err(), "");
}

TEST_F(StartUpTest, ChildrenOfAProgramWithABrokenOutputAreEndedByIt) {
  // The program puts up with it; programs that it starts meet their usual end. Otherwise a pipeline
  // below it would never stop.
  WriteText(*install / "shout", "for i in $(seq 10000); do echo aloud; done\n");
  WritePlugin("Desktop", {{"right", kRight, {{kRun, "sh shout"}, Touch("acted")}}});
  LaunchInstalled({.before = kBrokenPipe, .redirection = ">&4 2>\"$ERR\""});
  EXPECT_TRUE(DesktopActs("acted"));
  const std::string children = "/proc/" + std::to_string(gromlit->pid()) + "/task/" +
                               std::to_string(gromlit->pid()) + "/children";
  ASSERT_TRUE(Exists(children));
  EXPECT_TRUE(WaitFor([&] { return ReadText(children).empty(); }));
  EXPECT_EQ(Err(), "") << "a shell that lives on complains about each line";
}

TEST_F(StartUpTest, ClosedDescriptorsAreNotTakenForTheOutputs) {
  // Otherwise the connection to the server takes the number of an output, and what is printed goes
  // into the middle of the requests.
  UseServer({"-fp", "built-ins"});
  WritePlugin("Desktop", {{"right", kRight, {{kRun, "/nonexistent/program"}, Touch("acted")}}});
  for (const char* closed :
       {">&- 2>\"$ERR\"", ">\"$OUT\" 2>&-", "<&- >\"$OUT\" 2>\"$ERR\"", "<&- >&- 2>&-"}) {
    SCOPED_TRACE(closed);
    LaunchInstalled({.redirection = closed});
    for (int i = 0; i < 3; i++) {
      EXPECT_TRUE(DesktopActs("acted"));
      fs::remove(MarkFile("acted"));
    }
    ASSERT_TRUE(gromlit->Running());
    StopGromlit();
  }
}

TEST_F(StartUpTest, FileSizeLimitDoesNotEndTheProgram) {
  DesktopTouches("acted");
  // 512 bytes: enough for the messages, not for a plug-in.
  LaunchInstalled({.before = "ulimit -f 1;"});
  EXPECT_EQ(Err(), "Save Plugin: File too large\n");
  EXPECT_TRUE(DesktopActs("acted"));
  EXPECT_EQ(NamesIn(*install / "plugins"), std::vector<std::string>{"Desktop.sla"});
}

}  // namespace
}  // namespace gromlit
