// gromlit-session, the launcher: the directory that it makes and keeps, and the program that it
// starts.
#include <sys/file.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <map>

#include "core/choices.h"
#include "core/option_files.h"
#include "tests/e2e/gromlit_run.h"

namespace gromlit {
namespace {

namespace fs = std::filesystem;
using testing::Exists;
using testing::FindClient;
using testing::IsShown;
using testing::Process;
using testing::ReadText;
using testing::TempDir;
using testing::WaitFor;
using testing::WriteText;

const std::string kLauncher = testing::Built("gromlit-session");
const std::string kSkeleton = testing::Built("share/gromlit");

// The files below a directory, by path relative to it.
std::map<std::string, std::string> FilesOf(const std::string& directory) {
  std::map<std::string, std::string> files;
  std::error_code error;
  for (const auto& entry : fs::recursive_directory_iterator(directory, error)) {
    if (entry.is_regular_file())
      files[entry.path().lexically_relative(directory)] = ReadText(entry.path());
  }
  return files;
}

std::map<std::string, std::string> WithoutOwn(std::map<std::string, std::string> files) {
  files.erase("manifest");
  files.erase("options/default.user");
  files.erase("notice");
  return files;
}

struct Ending {
  int status;
  std::string out;
  std::string err;
};

// Runs the launcher in a home of its own.
struct Home {
  explicit Home(std::string display = "") : display_name(std::move(display)) {
    fs::create_directories(root / "bin");
  }

  std::vector<std::string> Environment(const std::vector<std::string>& more = {}) const {
    std::vector<std::string> all = {"HOME=" + (root / "home"),
                                    "PATH=" + (root / "bin"),
                                    "GROMLIT",
                                    "XDG_DATA_HOME",
                                    "XDG_CONFIG_HOME",
                                    display_name.empty() ? "DISPLAY" : "DISPLAY=" + display_name};
    all.insert(all.end(), more.begin(), more.end());
    return all;
  }

  std::unique_ptr<Process> Start(const std::vector<std::string>& arguments,
                                 const std::vector<std::string>& environment = {},
                                 const std::function<void()>& prepare = {},
                                 const std::string& launcher = kLauncher) const {
    std::vector<std::string> argv = {launcher};
    argv.insert(argv.end(), arguments.begin(), arguments.end());
    return std::make_unique<Process>(testing::ProcessStart{.argv = argv,
                                                           .output = root / "out",
                                                           .error = root / "err",
                                                           .environment = Environment(environment),
                                                           .directory = root.path(),
                                                           .prepare = prepare});
  }

  Ending Run(const std::vector<std::string>& arguments,
             const std::vector<std::string>& environment = {},
             const std::function<void()>& prepare = {},
             const std::string& launcher = kLauncher) const {
    fs::remove(root / "out");
    fs::remove(root / "err");
    const auto process = Start(arguments, environment, prepare, launcher);
    const int status = process->Wait();
    return {status, ReadText(root / "out"), ReadText(root / "err")};
  }

  // A program of PATH that writes its arguments down.
  void AddProgram(const std::string& name) const {
    const std::string path = root / "bin/" + name;
    WriteText(path, "#!/bin/sh\necho \"$@\" >>" + (root / name) + ".ran\n");
    fs::permissions(path, fs::perms::owner_all);
  }

  // A starter library that may be changed.
  std::string CopySkeleton() const {
    const std::string copy = root / "library";
    fs::copy(kSkeleton, copy, fs::copy_options::recursive);
    return copy;
  }

  std::string Data() const { return root / "home/.local/share/gromlit"; }

  TempDir root;
  std::string display_name;
};

GromlitUserOptions OptionsIn(const std::string& directory) {
  const char* former = GromlitPath;
  GromlitPath = directory.c_str();
  const std::unique_ptr<GromlitUserOptions> options(LoadUserOptions(defaultOptionFile));
  GromlitPath = former;
  EXPECT_NE(options, nullptr) << directory;
  return options == nullptr ? GromlitUserOptions{} : *options;
}

// --- The directory ------------------------------------------------------------------------------

TEST(LauncherTest, FillsADirectoryFromTheStarterLibrary) {
  const Home home;
  const Ending ending = home.Run({"--prepare"});
  EXPECT_EQ(ending.status, 0);
  EXPECT_EQ(ending.out, "");
  EXPECT_EQ(ending.err, "gromlit-session: made " + home.Data() + " from the starter library\n");
  EXPECT_EQ(WithoutOwn(FilesOf(home.Data())), FilesOf(kSkeleton));
  EXPECT_TRUE(Exists(home.Data() + "/manifest"));
  EXPECT_FALSE(Exists(home.Data() + "/notice")) << "a new user has the choices already";
  struct stat info {};
  ASSERT_EQ(stat((home.root / "home/.local/share").c_str(), &info), 0);
  EXPECT_EQ(info.st_mode & 0777u, 0700u);
  // Once is enough.
  const auto before = FilesOf(home.Data());
  EXPECT_EQ(home.Run({"--prepare"}).err, "");
  EXPECT_EQ(FilesOf(home.Data()), before);
}

TEST(LauncherTest, FindsTheDirectoryByOptionVariableAndHome) {
  const Home home;
  const auto makes = [&](const std::vector<std::string>& arguments,
                         const std::vector<std::string>& environment, const std::string& where) {
    const Ending ending = home.Run(arguments, environment);
    EXPECT_EQ(ending.status, 0) << ending.err;
    EXPECT_TRUE(Exists(home.root / where + "/manifest")) << where << ": " << ending.err;
  };
  const std::string data = "XDG_DATA_HOME=" + (home.root / "data");
  const std::string own = "GROMLIT=" + (home.root / "own");
  makes({"--prepare", "-path", home.root / "given"}, {own, data}, "given");
  makes({"--prepare", "-path", "relative"}, {}, "relative");
  makes({"--prepare"}, {own, data}, "own");
  makes({"--prepare"}, {"GROMLIT=", data, "HOME"}, "data/gromlit");
  EXPECT_FALSE(Exists(home.Data()));
  makes({"--prepare"}, {"XDG_DATA_HOME=relative"}, "home/.local/share/gromlit");

  for (const char* odd : {"HOME", "HOME=", "HOME=relative"}) {
    const Ending ending = home.Run({"--prepare"}, {odd});
    EXPECT_EQ(ending.status, 1) << odd;
    EXPECT_NE(ending.err.find("XDG_DATA_HOME"), std::string::npos) << ending.err;
  }
}

TEST(LauncherTest, GivesANewUserWhatTheMachineHasAndTheRecommendedChoices) {
  const auto options = [](const std::vector<std::string>& programs) {
    const Home home;
    for (const std::string& name : programs) home.AddProgram(name);
    EXPECT_EQ(home.Run({"--prepare"}).status, 0);
    return OptionsIn(home.Data());
  };
  const GromlitUserOptions all = options({"xdg-open", "play", "aplay", "paplay", "pw-play"});
  EXPECT_STREQ(all.urlcmd, "xdg-open %s");
  EXPECT_STREQ(all.sndcmd, "pw-play %s");
  EXPECT_EQ(all.button, 3);
  EXPECT_EQ(MatchingWayOf(&all), kByShape);
  for (const Choice& choice : Choices())
    EXPECT_EQ(IsOn(all, choice), choice.recommended) << choice.caption;
  EXPECT_STREQ(options({"play", "aplay"}).sndcmd, "aplay %s");
  const GromlitUserOptions none = options({});
  EXPECT_STREQ(none.urlcmd, "netscape %s");
  EXPECT_STREQ(none.sndcmd, "play %s");
}

TEST(LauncherTest, LeavesADirectoryOfAnEarlierUserAndTellsOfTheChoicesOnce) {
  const Home home;
  const std::string directory = home.root / "own";
  fs::create_directories(directory + "/symbols");
  WriteText(directory + "/symbols/Up.sls", "mine");
  const auto before = FilesOf(directory);
  const Ending ending = home.Run({"--prepare", "-path", directory});
  EXPECT_EQ(ending.status, 0);
  EXPECT_EQ(ending.err, "");
  EXPECT_EQ(WithoutOwn(FilesOf(directory)), before);
  EXPECT_FALSE(Exists(directory + "/options"));
  EXPECT_TRUE(fs::remove(directory + "/notice"));
  EXPECT_EQ(home.Run({"--prepare", "-path", directory}).status, 0);
  EXPECT_FALSE(Exists(directory + "/notice"));
}

TEST(LauncherTest, AnUpgradeBringsWhatIsNewAndKeepsWhatIsTheUsers) {
  // INV-STARTER-1
  const Home home;
  const std::string library = home.CopySkeleton();
  const std::vector<std::string> prepare = {"--prepare", "--skeleton", library};
  ASSERT_EQ(home.Run(prepare).status, 0);
  const std::string& data = home.Data();
  WriteText(data + "/symbols/Up.sls", "mine");
  WriteText(data + "/help/mine.html", "mine");
  WriteText(data + "/help/coming.html", "mine too");
  fs::remove(data + "/symbols/Down.sls");
  fs::remove_all(data + "/help/pictures");
  fs::create_symlink("/nowhere", data + "/help/link.html");

  for (const char* name : {"symbols/Up.sls", "symbols/Down.sls", "symbols/Left.sls",
                           "help/coming.html", "help/link.html", "help/new/page.html"}) {
    fs::create_directories(fs::path(library + "/" + name).parent_path());
    WriteText(library + "/" + name, "second version");
  }
  auto expected = FilesOf(data);
  expected["symbols/Left.sls"] = expected["help/new/page.html"] = "second version";
  const Ending ending = home.Run(prepare);
  EXPECT_EQ(ending.status, 0);
  EXPECT_EQ(ending.err, "gromlit-session: " + data + ": 1 starter files are new, 1 were renewed\n");
  expected["manifest"] = ReadText(data + "/manifest");
  EXPECT_EQ(FilesOf(data), expected);
  EXPECT_TRUE(fs::is_symlink(data + "/help/link.html"));

  // What was the user's own when it came stays deleted, too; and a renewed file is renewed again.
  fs::remove(data + "/help/coming.html");
  WriteText(library + "/symbols/Left.sls", "third version");
  EXPECT_EQ(home.Run(prepare).status, 0);
  EXPECT_FALSE(Exists(data + "/help/coming.html"));
  EXPECT_FALSE(Exists(data + "/symbols/Down.sls"));
  EXPECT_FALSE(Exists(data + "/help/pictures"));
  EXPECT_EQ(ReadText(data + "/symbols/Left.sls"), "third version");
  EXPECT_EQ(ReadText(data + "/symbols/Up.sls"), "mine");
  EXPECT_FALSE(Exists(data + "/notice"));
}

TEST(LauncherTest, AnUpgradeBringsNoPluginForAnApplicationThatHasOne) {
  const Home home;
  const std::string library = home.CopySkeleton();
  fs::rename(library + "/plugins/XTerm.xterm.sla", library + "/xterm");
  const std::vector<std::string> prepare = {"--prepare", "--skeleton", library};
  ASSERT_EQ(home.Run(prepare).status, 0);
  const std::string own = home.Data() + "/plugins/mine.sla";
  fs::copy(library + "/xterm", own);
  fs::rename(library + "/xterm", library + "/plugins/XTerm.xterm.sla");
  EXPECT_EQ(home.Run(prepare).err, "");
  EXPECT_FALSE(Exists(home.Data() + "/plugins/XTerm.xterm.sla"));
  fs::remove(own);
  EXPECT_EQ(home.Run(prepare).err, "");
  EXPECT_FALSE(Exists(home.Data() + "/plugins/XTerm.xterm.sla")) << "it was not wanted then";
}

TEST(LauncherTest, ADamagedManifestLeavesEverythingAsItIs) {
  const Home home;
  const std::string library = home.CopySkeleton();
  const std::vector<std::string> prepare = {"--prepare", "--skeleton", library};
  ASSERT_EQ(home.Run(prepare).status, 0);
  const std::string manifest = ReadText(home.Data() + "/manifest");
  WriteText(library + "/symbols/Left.sls", "second version");
  WriteText(library + "/symbols/New.sls", "second version");
  std::string turned = manifest;
  turned[manifest.size() / 2] ^= 1;
  for (const std::string& damaged :
       {std::string(), std::string("\0\xff", 2), turned, manifest.substr(0, manifest.size() / 2),
        manifest.substr(0, manifest.rfind("sum ")), manifest + manifest}) {
    WriteText(home.Data() + "/manifest", damaged);
    const auto before = FilesOf(home.Data());
    const Ending ending = home.Run(prepare);
    EXPECT_EQ(ending.status, 0);
    EXPECT_NE(ending.err.find("damaged"), std::string::npos) << ending.err;
    auto after = FilesOf(home.Data());
    after["manifest"] = damaged;
    EXPECT_EQ(after, before);
    EXPECT_EQ(home.Run(prepare).err, "") << "the manifest that was made anew is sound";
  }
}

TEST(LauncherTest, FillsOnWhereItBrokeOff) {
  const Home home;
  const auto limited = [] {
    const rlimit limit = {50'000, 50'000};  // smaller than the sound
    setrlimit(RLIMIT_FSIZE, &limit);
  };
  const Ending broken = home.Run({"--prepare"}, {}, limited);
  EXPECT_EQ(broken.status, 1);
  EXPECT_NE(broken.err.find("no directory: "), std::string::npos) << broken.err;
  EXPECT_NE(broken.err.find("TheGromlitSound.wav: File too large"), std::string::npos);
  EXPECT_FALSE(Exists(home.Data() + "/options/default.user"));
  EXPECT_EQ(home.Run({"--prepare"}).status, 0);
  EXPECT_EQ(WithoutOwn(FilesOf(home.Data())), FilesOf(kSkeleton));
  EXPECT_FALSE(LacksRecommended(OptionsIn(home.Data())));
}

TEST(LauncherTest, SaysWhyThereIsNoDirectory) {
  const Home home;
  WriteText(home.root / "file", "");
  const std::string below = home.root / "file/gromlit";
  const Ending ending = home.Run({"--prepare", "-path", below});
  EXPECT_EQ(ending.status, 1);
  EXPECT_EQ(ending.err, "gromlit-session: no directory: " + below + ": Not a directory\n");
  EXPECT_EQ(home.Run({"--prepare", "-path", "/proc/gromlit"}).status, 1);
  // One that is there stays as it is without a library.
  ASSERT_EQ(home.Run({"--prepare"}).status, 0);
  const auto before = FilesOf(home.Data());
  EXPECT_EQ(home.Run({"--prepare", "--skeleton", "/nowhere"}).status, 1);
  EXPECT_EQ(FilesOf(home.Data()), before);
  EXPECT_EQ(home.Run({"--prepare", "-path"}).status, 2);
  for (const char* word : {"--help", "-h", "--version"}) EXPECT_EQ(home.Run({word}).status, 0);
}

TEST(LauncherTest, OnlyOneIsAtWorkOnADirectory) {
  const Home home;
  fs::create_directories(home.Data());
  const int held = open(home.Data().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  ASSERT_EQ(flock(held, LOCK_EX), 0);
  const auto first = home.Start({"--prepare"});
  const auto second = home.Start({"--prepare"});
  const auto waits = [](const Process& process) {
    return ReadText("/proc/" + std::to_string(process.pid()) + "/syscall")
        .starts_with("73 ");  // flock
  };
  (void)WaitFor([&] { return waits(*first) && waits(*second); }, std::chrono::seconds(2));
  EXPECT_TRUE(FilesOf(home.Data()).empty());
  EXPECT_TRUE(first->Running() && second->Running());
  close(held);
  EXPECT_EQ(first->Wait(), 0);
  EXPECT_EQ(second->Wait(), 0);
  EXPECT_EQ(WithoutOwn(FilesOf(home.Data())), FilesOf(kSkeleton));
  const std::string said = ReadText(home.root / "err");
  EXPECT_EQ(std::count(said.begin(), said.end(), '\n'), 1) << said;
}

TEST(LauncherTest, TurnsAutostartOnAndOff) {
  const Home home;
  const std::string entry = home.root / "home/.config/autostart/gromlit.desktop";
  EXPECT_EQ(home.Run({"--autostart", "status"}).out, "off\n");
  EXPECT_EQ(home.Run({"--autostart", "on"}).status, 0);
  EXPECT_NE(ReadText(entry).find("\nExec=\"" + kLauncher + "\"\n"), std::string::npos);
  EXPECT_NE(ReadText(entry).find("\nTryExec=" + kLauncher + "\n"), std::string::npos);
  const Ending on = home.Run({"--autostart", "status"});
  EXPECT_EQ(on.out, "on\n");
  EXPECT_EQ(on.status, 0);
  EXPECT_EQ(home.Run({"--autostart", "on", "-path", "/a b$\"%\\"}).status, 0);
  EXPECT_NE(ReadText(entry).find("\" -path \"/a b\\\\$\\\\\"%%\\\\\\\\\"\n"), std::string::npos)
      << ReadText(entry);
  EXPECT_EQ(home.Run({"--autostart", "off"}).status, 0);
  EXPECT_EQ(home.Run({"--autostart", "off"}).status, 0);
  EXPECT_FALSE(Exists(entry));
  EXPECT_EQ(home.Run({"--autostart", "status"}).status, 1);
  const std::string config = "XDG_CONFIG_HOME=" + (home.root / "config");
  EXPECT_EQ(home.Run({"--autostart", "on"}, {config}).status, 0);
  EXPECT_TRUE(Exists(home.root / "config/autostart/gromlit.desktop"));
  EXPECT_EQ(home.Run({"--autostart", "perhaps"}).status, 2);
  EXPECT_FALSE(Exists(home.Data())) << "the directory is not made by this";
}

// A copy of the launcher beside a program of this name that writes its words down and ends with one
// status when it is to show a window, with 7 else.
std::string InstallBeside(const Home& home, int status_of_show) {
  const std::string folder = home.root / "installed";
  fs::create_directories(folder);
  fs::copy_file(testing::Built("gromlit-session"), folder + "/gromlit-session",
                fs::copy_options::overwrite_existing);
  WriteText(folder + "/gromlit", "#!/bin/sh\ncase \"$*\" in *'-remote show') exit " +
                                     std::to_string(status_of_show) + " ;; esac\n" +
                                     "echo \"$PWD $GROMLIT $*\" >>" + (home.root / "started") +
                                     "\nexit 7\n");
  fs::permissions(folder + "/gromlit", fs::perms::owner_all);
  return folder + "/gromlit-session";
}

TEST(LauncherTest, StartsTheProgramWithItsOptionsAndOpensTheHelpAtTheFirstStart) {
  const Home home;
  home.AddProgram("xdg-open");
  const std::string launcher = InstallBeside(home, 1);
  const auto start = [&](std::vector<std::string> arguments) {
    arguments.insert(arguments.end(), {"--skeleton", kSkeleton});
    return home.Run(arguments, {}, {}, launcher).status;
  };
  const std::string dir = home.root / "a b";
  const std::string line = dir + " " + dir + " -path " + dir;
  EXPECT_EQ(start({"-display", ":77", "-path", dir, "-name", "--prepare", "-further"}), 7);
  EXPECT_EQ(ReadText(home.root / "started"), line + " -display :77 -name --prepare -further\n");
  const std::string page = "file://" + (home.root / "a%20b/help/journey.html\n");
  EXPECT_TRUE(WaitFor([&] { return ReadText(home.root / "xdg-open.ran") == page; }));
  EXPECT_EQ(start({"-path", dir}), 7);
  EXPECT_EQ(start({"--no-help", "-path", home.root / "quiet"}), 7);
  EXPECT_TRUE(Exists(home.root / "quiet/manifest"));
  // What is started by now has had the time of two starts; one that was started for a third
  // directory came behind it.
  EXPECT_EQ(start({"-path", home.root / "last"}), 7);
  EXPECT_TRUE(WaitFor(
      [&] { return ReadText(home.root / "xdg-open.ran").ends_with("/last/help/journey.html\n"); }));
  EXPECT_EQ(ReadText(home.root / "xdg-open.ran"),
            page + "file://" + (home.root / "last/help/journey.html\n"));
}

TEST(LauncherTest, MakesNothingWhereAProgramRunsOrNoDisplayAnswers) {
  for (const int status : {0, 2}) {
    const Home home;
    const std::string launcher = InstallBeside(home, status);
    const Ending ending = home.Run({"--skeleton", kSkeleton}, {}, {}, launcher);
    EXPECT_EQ(ending.status, status == 0 ? 0 : 1);
    EXPECT_EQ(ending.err, status == 0 ? "" : "gromlit-session: no display answers\n");
    EXPECT_FALSE(Exists(home.Data()));
    EXPECT_FALSE(Exists(home.root / "started"));
    fs::remove(home.root / "installed/gromlit");
    EXPECT_EQ(home.Run({"--skeleton", kSkeleton}, {}, {}, launcher).status, 1);
    EXPECT_EQ(home.Run({}, {}, {}, launcher).status, 1);
  }
}

// --- On a display -------------------------------------------------------------------------------

class LauncherRun : public testing::GromlitRun {
 protected:
  // Starts it with this home; returns when the program that it has become is ready.
  void Launch(const Home& home, const std::vector<std::string>& arguments = {}) {
    gromlit = home.Start(arguments);
    ASSERT_TRUE(WaitFor([this] { return GromlitIsReady() || !gromlit->Running(); },
                        std::chrono::seconds(30)));
    ASSERT_TRUE(gromlit->Running()) << ReadText(home.root / "err");
  }
  void Stop() {
    gromlit->Kill(SIGTERM);
    gromlit->Wait();
    ASSERT_TRUE(WaitFor([this] { return !GromlitIsReady(); }));
  }
  Window Dialog() { return FindClient(player->display(), "Gromlit.Dialog"); }
};

TEST_F(LauncherRun, FindsTheHotKeysOnTheUsersKeyboardAndLeavesThemThere) {
  const Home home(server->name());
  const auto key_of = [&](const std::string& text) {
    const std::string shown = home.root / "shown";
    Process tool({"gromlit-tool", "show", home.Data() + "/plugins/Default.sla"}, shown,
                 {"PATH=" + testing::Built("")});
    EXPECT_EQ(tool.Wait(), 0);
    const std::string all = ReadText(shown);
    fs::remove(shown);
    const size_t at = all.find("\"text\": \"" + text + "\"");
    const size_t keys = all.rfind("\"keys\": ", at);
    if (at == std::string::npos || keys == std::string::npos) return "no " + text;
    return all.substr(keys + 8, all.find('\n', keys) - keys - 9);
  };
  const auto use = [](const char* layout) {
    Process setter({"setxkbmap", "-model", "pc105", "-layout", layout, "-option", ""});
    EXPECT_EQ(setter.Wait(), 0) << "setxkbmap";
  };
  use("de");
  ASSERT_EQ(home.Run({"--prepare"}).status, 0);
  EXPECT_EQ(key_of("Control-z"), "[[29,4]]");
  EXPECT_EQ(key_of("Control-Shift-z"), "[[29,5]]");
  EXPECT_EQ(key_of("Control-minus"), "[[61,4]]");
  EXPECT_EQ(key_of("Control-c"), "[[54,4]]");
  use("us");
  const auto before = FilesOf(home.Data());
  EXPECT_EQ(home.Run({"--prepare"}).err, "");
  EXPECT_EQ(FilesOf(home.Data()), before);
  // A newer one of what was written for one keyboard is written for the other.
  const std::string library = home.CopySkeleton();
  fs::copy_file(library + "/plugins/Desktop.sla", library + "/plugins/Default.sla",
                fs::copy_options::overwrite_existing);
  EXPECT_NE(home.Run({"--prepare", "--skeleton", library}).err.find("1 were renewed"),
            std::string::npos);
  EXPECT_NE(home.Run({"--prepare"}).err.find("1 were renewed"), std::string::npos);
  EXPECT_EQ(key_of("Control-z"), "[[52,4]]");
}

TEST_F(LauncherRun, BecomesTheProgramAndShowsItsWindowAtTheNextStart) {
  const Home home(server->name());
  home.AddProgram("xdg-open");
  home.AddProgram("play");
  Launch(home);
  const std::string proc = "/proc/" + std::to_string(gromlit->pid());
  EXPECT_EQ(fs::read_symlink(proc + "/exe"), testing::Built("gromlit"));
  EXPECT_EQ(fs::read_symlink(proc + "/cwd"), home.Data());
  // The first page of the help, once.
  const std::string page = "file://" + home.Data() + "/help/journey.html\n";
  EXPECT_TRUE(WaitFor([&] { return ReadText(home.root / "xdg-open.ran") == page; }));

  const Window main = HideMainWindow();
  fs::remove(home.Data() + "/manifest");
  const Ending second = home.Run({});
  EXPECT_EQ(second.status, 0);
  EXPECT_EQ(second.err, "");
  EXPECT_TRUE(WaitFor([&] { return IsShown(player->display(), main); }));
  EXPECT_FALSE(Exists(home.Data() + "/manifest")) << "what runs has its files open";
}

TEST_F(LauncherRun, TheMainWindowTellsOfRecommendedChoicesOnce) {
  const auto start = [this] {
    StartGromlit();
    EXPECT_TRUE(WaitFor([this] { return MainWindow() != 0; }));
  };
  start();
  EXPECT_EQ(Dialog(), 0u);
  Stop();
  WriteText(*install / kNewsFile, "");
  start();
  EXPECT_TRUE(WaitFor([this] { return Dialog() != 0; }));
  EXPECT_FALSE(Exists(*install / kNewsFile));
  Stop();
  start();
  EXPECT_EQ(Dialog(), 0u);
}

}  // namespace
}  // namespace gromlit
