#include "tests/e2e/shell_run.h"

#include <X11/Xutil.h>
#include <X11/keysym.h>
#include <sys/stat.h>

#include <chrono>
#include <fstream>
#include <sstream>

#include "core/option_files.h"
#include "core/strings.h"
#include "tests/support/recording.h"

namespace gromlit {
namespace {

namespace fs = std::filesystem;
using testing::Action;
using testing::Command;
using testing::Exists;
using testing::kDown;
using testing::kRight;
using testing::Point;
using testing::ProbeClient;
using testing::ReadText;
using testing::Recording;
using testing::RecordOf;
using testing::WaitFor;
using testing::WriteText;

constexpr int kKeyA = 38;  // key codes of the usual keymap
constexpr int kKeyF = 41;

// A stroke of the probe's plug-in, away from its edges.
const std::vector<Point> kStroke = {{400, 400}, {600, 400}};

class ExecutionTest : public testing::ShellRun {
 protected:
  // A window of the class "Probe.probe" that covers (300, 250) to (900, 750).
  std::unique_ptr<ProbeClient> StartProbe(std::vector<std::string> more = {}) {
    std::vector<std::string> options = {"--class", "Probe", "probe", "--geometry",
                                        "600x500+300+250"};
    options.insert(options.end(), more.begin(), more.end());
    return std::make_unique<ProbeClient>(install->path(), options);
  }
  std::unique_ptr<ProbeClient> StartOther(std::vector<std::string> more = {}) {
    std::vector<std::string> options = {"--class", "Other", "other", "--geometry",
                                        "200x150+950+50"};
    options.insert(options.end(), more.begin(), more.end());
    return std::make_unique<ProbeClient>(install->path(), options);
  }
  // The recorder's file, made without letting its directory become the installation directory.
  std::unique_ptr<Recording> Record(bool state = false) {
    auto recording = std::make_unique<Recording>(state);
    GromlitPath = install->path().c_str();
    return recording;
  }
  // The probe's plug-in: these commands, then a file "done" as a sign that all have been run.
  void WriteCommands(std::vector<Command> commands) {
    commands.push_back(Touch("done"));
    WritePlugin("Probe.probe", {{"right", kRight, commands}});
  }
  // Draws the stroke and waits until its action is through.
  void DrawIt() {
    fs::remove(MarkFile("done"));
    Draw(kStroke);
    EXPECT_TRUE(Appears("done"));
    EXPECT_TRUE(TrailIsGone());
  }
  void Focus(Window window) {
    XSetInputFocus(player->display(), window, RevertToPointerRoot, CurrentTime);
    XSync(player->display(), False);
  }

  struct Key {
    int keycode;
    int state;
  };
  // The lines of a probe that got these keys, each pressed and released, in a window at `origin`.
  static std::vector<std::string> KeyLines(const std::vector<Key>& keys, Point origin,
                                           const std::string& window = "main") {
    std::vector<std::string> lines;
    for (const Key& key : keys) {
      for (const char* type : {"KeyPress", "KeyRelease"}) {
        char line[200];
        std::snprintf(line, sizeof line,
                      "%s window=%s keycode=%d state=%d x=%d y=%d x_root=%d y_root=%d send_event=1",
                      type, window.c_str(), key.keycode, key.state, kStroke[0].x - origin.x,
                      kStroke[0].y - origin.y, kStroke[0].x, kStroke[0].y);
        lines.emplace_back(line);
      }
    }
    return lines;
  }
  // The keys that type this text: letters, digits, blanks.
  std::vector<Key> KeysOf(const std::string& text) {
    std::vector<Key> keys;
    for (const char c : text) {
      const bool upper = c >= 'A' && c <= 'Z';
      const auto symbol = static_cast<KeySym>(upper ? c - 'A' + 'a' : c);
      keys.push_back({XKeysymToKeycode(player->display(), symbol), upper ? ShiftMask : 0});
    }
    return keys;
  }
  static constexpr Point kOrigin = {300, 250};

  // Options with these outside programs.
  void WriteCommandLines(const std::string& url, const std::string& sound) {
    GromlitUserOptions options{};
    DefaultUserOptions(&options);
    options.splash = 0;
    CopyText(options.urlcmd, url);
    CopyText(options.sndcmd, sound);
    ASSERT_EQ(SaveUserOptions(&options, defaultOptionFile), 1);
  }
  // The web service that the program was built for.
  static std::string WebService() {
    std::ifstream cache(testing::Built("CMakeCache.txt"));
    const std::string entry = "GROMLIT_WEB_HOST:STRING=";
    for (std::string line; std::getline(cache, line);)
      if (line.starts_with(entry)) return "http://" + line.substr(entry.size());
    ADD_FAILURE() << "no GROMLIT_WEB_HOST";
    return "";
  }
  static std::string Redirect() {
    return WebService() + "/s.smart?x=2&d=1&s=5&sv=5&sl=1&pl=1&ol=1&o=0&sva=1&svb=2&web=";
  }
  static std::string Forum() {
    return WebService() + "/s.smart?x=0&d=1&s=5&sv=5&sl=1&pl=1&ol=1&o=0&sva=1&svb=2&c=";
  }
  // Children of the program that exist now, zombies included.
  std::vector<pid_t> Children() {
    const std::string pid = std::to_string(gromlit->pid());
    std::istringstream list(ReadText("/proc/" + pid + "/task/" + pid + "/children"));
    std::vector<pid_t> children;
    for (pid_t child; list >> child;) children.push_back(child);
    return children;
  }
};

// --- Keys --------------------------------------------------------------------------------------

TEST_F(ExecutionTest, HotKeyIsPressedAndReleasedInTheFocusWindow) {
  WriteCommands({{kHotKey, "Control-Shift-a", kKeyA, ControlMask | ShiftMask}});
  const auto probe = StartProbe({"--focus"});
  LaunchInstalled();
  DrawIt();
  probe->Wait(2, "Key");
  EXPECT_EQ(probe->Lines("Key"), KeyLines({{kKeyA, 5}}, kOrigin));
}

TEST_F(ExecutionTest, MenuLetterIsSentWithAlt) {
  WriteCommands({{kMenu, "f", kKeyF, Mod1Mask}});
  const auto probe = StartProbe({"--focus"});
  LaunchInstalled();
  DrawIt();
  probe->Wait(2, "Key");
  EXPECT_EQ(probe->Lines("Key"), KeyLines({{kKeyF, 8}}, kOrigin));
}

TEST_F(ExecutionTest, StoredKeyPairsAreSentAsTheyAre) {
  WriteCommands({{kMenu, "fa", kKeyF, Mod1Mask}});
  // A second pair with a state and a key that no table would give. More pairs than the record has
  // are never sent.
  const std::string file = *install / "plugins/Probe.probe.sla";
  constexpr size_t kCommand = 13 + 1164 + 1012;
  constexpr size_t kStates = kCommand + 18;
  std::string bytes = ReadText(file);
  for (size_t i = 0; i < 8; i++) {
    bytes[kCommand + 2 + 2 * i] = static_cast<char>(10 + i);
    bytes[kStates + 2 * i] = static_cast<char>(i == 7 ? 0 : 1 << i);
  }
  for (const int nkeys : {0, 2, 8, 9, 255}) {
    SCOPED_TRACE(nkeys);
    bytes[kCommand + 1] = static_cast<char>(nkeys);
    WriteText(file, bytes);
    const auto probe = StartProbe({"--focus"});
    LaunchInstalled();
    DrawIt();
    std::vector<Key> keys;
    for (int i = 0; i < std::min(nkeys, 8); i++) keys.push_back({10 + i, i == 7 ? 0 : 1 << i});
    probe->Wait(2 * keys.size(), "Key");
    EXPECT_EQ(probe->Lines("Key"), KeyLines(keys, kOrigin));
    StopGromlit();
  }
}

TEST_F(ExecutionTest, TextIsTypedLetterByLetter) {
  WriteCommands({{kText, "aB 1 Zz"}});
  const auto probe = StartProbe({"--focus"});
  LaunchInstalled();
  DrawIt();
  probe->Wait(14, "Key");
  EXPECT_EQ(probe->Lines("Key"), KeyLines(KeysOf("aB 1 Zz"), kOrigin));
}

TEST_F(ExecutionTest, BytesWithoutAKeyAreSkipped) {
  // Latin-1 and UTF-8 letters, and a control character that no key gives.
  WriteCommands({{kText,
                  "a\xe9"
                  "b\xc3\xa9"
                  "c\xff\x01"}});
  const auto probe = StartProbe({"--focus"});
  LaunchInstalled();
  DrawIt();
  probe->Wait(6, "Key");
  auto lines = probe->Lines("Key");
  // Control-a does give the last one.
  ASSERT_GE(lines.size(), 6u);
  EXPECT_EQ(std::vector(lines.begin(), lines.begin() + 6), KeyLines(KeysOf("abc"), kOrigin));
  lines.erase(lines.begin(), lines.begin() + 6);
  EXPECT_EQ(lines, KeyLines({{kKeyA, ControlMask}}, kOrigin));
}

TEST_F(ExecutionTest, TextFromAFileIsTypedWhole) {
  // Longer than two blocks of reading, and not a multiple of one.
  std::string text;
  for (int i = 0; text.size() < 601; i++)
    text += static_cast<char>(i % 7 == 6 ? ' ' : 'a' + i % 26);
  WriteText(*install / "letter.txt", text);
  for (const std::string& name : {*install / "letter.txt", std::string("letter.txt")}) {
    SCOPED_TRACE(name);  // a relative name starts from the working directory
    WriteCommands({{kText, name, 0, 0, 1}});
    const auto probe = StartProbe({"--focus"});
    LaunchInstalled();
    DrawIt();
    probe->Wait(2 * text.size(), "Key");
    EXPECT_EQ(probe->Lines("Key"), KeyLines(KeysOf(text), kOrigin));
    StopGromlit();
  }
}

TEST_F(ExecutionTest, FileThatCannotBeTypedIsPassedOver) {
  WriteText(*install / "empty", "");
  ASSERT_EQ(mkfifo((*install / "pipe").c_str(), 0666), 0);
  WriteCommands({{kText, "missing", 0, 0, 1},
                 {kText, "empty", 0, 0, 1},
                 {kText, "plugins", 0, 0, 1},
                 {kText, "pipe", 0, 0, 1},
                 {kText, "", 0, 0, 1},
                 {kText, "", 0, 0, 0},
                 {kHotKey, "a", kKeyA, 0}});
  const auto probe = StartProbe({"--focus"});
  LaunchInstalled();
  DrawIt();
  probe->Wait(2, "Key");
  EXPECT_EQ(probe->Lines("Key"), KeyLines({{kKeyA, 0}}, kOrigin));
  EXPECT_EQ(Out() + Err(), "");
}

// --- Who gets the keys -------------------------------------------------------------------------

TEST_F(ExecutionTest, KeysGoToTheFocusOfAnotherApplication) {
  WriteCommands({{kHotKey, "a", kKeyA, 0}, {kText, "b"}});
  const auto probe = StartProbe();
  const auto other = StartOther({"--focus"});
  LaunchInstalled();
  DrawIt();
  other->Wait(4, "Key");
  // The coordinates stay those of the stroke in the window under the pointer.
  std::vector<Key> keys = {{kKeyA, 0}};
  keys.push_back(KeysOf("b")[0]);
  EXPECT_EQ(other->Lines("Key"), KeyLines(keys, kOrigin));
  EXPECT_TRUE(probe->Lines("Key").empty());
}

TEST_F(ExecutionTest, WithoutAFocusWindowKeysGoToTheWindowUnderThePointer) {
  WriteCommands({{kHotKey, "a", kKeyA, 0}});
  for (const Window focus : {Window{PointerRoot}, Window{0}}) {
    SCOPED_TRACE(focus);
    const auto probe = StartProbe();
    const auto other = StartOther();
    Focus(focus);
    LaunchInstalled();
    DrawIt();
    probe->Wait(2, "Key");
    EXPECT_EQ(probe->Lines("Key"), KeyLines({{kKeyA, 0}}, kOrigin));
    EXPECT_TRUE(other->Lines("Key").empty());
    StopGromlit();
  }
}

TEST_F(ExecutionTest, WindowUnderThePointerIsTheDeepestThatTakesPresses) {
  WriteCommands({{kHotKey, "a", kKeyA, 0}});
  // Around the stroke's start: the first child takes presses and keys, the second, above it,
  // neither.
  const auto probe = StartProbe({"--child", "300x300+50+60", "--child", "100x100+60+70,0,1"});
  Focus(PointerRoot);
  LaunchInstalled();
  DrawIt();
  probe->Wait(2, "Key");
  EXPECT_EQ(probe->Lines("Key"), KeyLines({{kKeyA, 0}}, {350, 310}, "child1"));
}

TEST_F(ExecutionTest, FocusThatMovesBetweenTwoCommandsIsFollowed) {
  const auto probe = StartProbe({"--focus"});
  const auto other = StartOther();
  // The program asks for the focus once per command: a command in the middle moves it.
  WriteText(*install / "moved", "");
  WriteCommands({{kHotKey, "a", kKeyA, 0},
                 {kRun, "system:wait"},
                 {kRun, "system:wait"},
                 {kRun, "system:wait"},
                 {kRun, "system:wait"},
                 {kHotKey, "f", kKeyF, 0}});
  LaunchInstalled();
  Drag(kStroke);
  probe->Wait(2, "Key");
  Focus(other->window());
  EXPECT_TRUE(Appears("done"));
  other->Wait(2, "Key");
  EXPECT_EQ(probe->Lines("Key"), KeyLines({{kKeyA, 0}}, kOrigin));
  EXPECT_EQ(other->Lines("Key"), KeyLines({{kKeyF, 0}}, kOrigin));
}

// --- Children ----------------------------------------------------------------------------------

TEST_F(ExecutionTest, SoundStartsThePlayerWithTheFile) {
  const auto recording = Record();
  WriteCommands({{kSound, "chime.wav"}});
  const auto probe = StartProbe();
  LaunchInstalled();
  DrawIt();
  EXPECT_EQ(recording->Wait(1), std::vector{RecordOf({"recorder", "sound", "chime.wav"})});
}

TEST_F(ExecutionTest, SoundFileWithABlankIsTwoArguments) {
  const auto recording = Record();
  WriteCommandLines("recorder %s", "recorder -q %s 100%% --end");
  WriteCommands({{kSound, "the chime.wav"}});
  const auto probe = StartProbe();
  LaunchInstalled();
  DrawIt();
  EXPECT_EQ(recording->Wait(1),
            std::vector{RecordOf({"recorder", "-q", "the", "chime.wav", "100%", "--end"})});
}

TEST_F(ExecutionTest, WebsiteIsReachedThroughTheWebService) {
  const auto recording = Record();
  WriteCommands({{kInternet, "example.org"}});
  const auto probe = StartProbe();
  LaunchInstalled();
  DrawIt();
  EXPECT_EQ(recording->Wait(1),
            std::vector{RecordOf({"recorder", "url", Redirect() + "example.org"})});
}

TEST_F(ExecutionTest, PercentSignsOfAnAddressAreNotACommandLines) {
  const auto recording = Record();
  WriteCommands({{kInternet, "http://example.org/a%20b%s%n?c=d&e"}});
  const auto probe = StartProbe();
  LaunchInstalled();
  DrawIt();
  EXPECT_EQ(recording->Wait(1),
            std::vector{
                RecordOf({"recorder", "url", Redirect() + "http://example.org/a%20b%s%n?c=d&e"})});
}

TEST_F(ExecutionTest, ForumNamesTheApplicationsClass) {
  const auto recording = Record();
  WriteCommands({{kInternet, "topic=7", 0, 0, 1}});
  const auto probe = StartProbe();
  LaunchInstalled();
  DrawIt();
  EXPECT_EQ(recording->Wait(1),
            std::vector{RecordOf({"recorder", "url", Forum() + "Probe.probe&uargs=topic=7"})});
}

TEST_F(ExecutionTest, BrowserWithoutAPlaceForTheAddressGetsNone) {
  const auto recording = Record();
  WriteCommandLines("recorder --home", "recorder %s");
  WriteCommands({{kInternet, "example.org"}});
  const auto probe = StartProbe();
  LaunchInstalled();
  DrawIt();
  EXPECT_EQ(recording->Wait(1), std::vector{RecordOf({"recorder", "--home"})});
}

TEST_F(ExecutionTest, CommandLineIsSplitAtBlanksAndNowhereElse) {
  const auto recording = Record();
  const std::string word(600, 'w');
  WriteCommands({{kRun, "  recorder\t\"a b\" 'c' \\d $HOME *.sla >out | & ; " + word + " \n"}});
  const auto probe = StartProbe();
  LaunchInstalled();
  DrawIt();
  EXPECT_EQ(recording->Wait(1),
            std::vector{RecordOf({"recorder", "\"a", "b\"", "'c'", "\\d", "$HOME", "*.sla", ">out",
                                  "|", "&", ";", word})});
  EXPECT_FALSE(Exists(*install / "out"));
}

TEST_F(ExecutionTest, EveryCommandOfAnActionStartsItsProgram) {
  const auto recording = Record();
  WriteCommands({{kRun, "recorder run"},
                 {kSound, "chime.wav"},
                 {kInternet, "example.org"},
                 {static_cast<CommandType>(6), "recorder six"},
                 {static_cast<CommandType>(255), "recorder 255"},
                 {kRun, "recorder again"}});
  const auto probe = StartProbe();
  LaunchInstalled();
  DrawIt();
  auto lines = recording->Wait(4);
  // Started in this order, they may write in any.
  std::sort(lines.begin(), lines.end());
  std::vector<std::string> expected = {RecordOf({"recorder", "run"}),
                                       RecordOf({"recorder", "again"}),
                                       RecordOf({"recorder", "sound", "chime.wav"}),
                                       RecordOf({"recorder", "url", Redirect() + "example.org"})};
  std::sort(expected.begin(), expected.end());
  EXPECT_EQ(lines, expected);
}

TEST_F(ExecutionTest, ChildStartsWithACleanSlate) {
  const auto recording = Record(true);
  WriteCommands({{kRun, "recorder"}});
  const auto probe = StartProbe();
  LaunchInstalled({.redirection = "</dev/null >\"$OUT\" 2>\"$ERR\""});
  DrawIt();
  const std::string line = recording->Wait(1)[0];
  EXPECT_NE(line.find("\"ignored\":[],\"blocked\":[],\"cwd\":\"" + install->path() + "\""),
            std::string::npos)
      << line;
  EXPECT_NE(line.find("\"fds\":[\"0 /dev/null\",\"1 " + OutFile() + "\",\"2 " + ErrFile() + "\""),
            std::string::npos)
      << line;
  EXPECT_EQ(line.find("socket:"), std::string::npos) << "the connection to the server: " << line;
}

TEST_F(ExecutionTest, MissingProgramsAreReportedAndTheActionGoesOn) {
  WriteCommandLines("/nonexistent/browser %s", "/nonexistent/player %s");
  WriteText(*install / "plain", "not a program");
  const struct {
    Command command;
    const char* message;
  } cases[] = {
      {{kRun, "/nonexistent/program word"}, "Error in System Command: No such file or directory\n"},
      {{kRun, *install / "plain"}, "Error in System Command: Permission denied\n"},
      {{kRun, ""}, "Error in System Command: No such file or directory\n"},
      {{kRun, " \t "}, "Error in System Command: No such file or directory\n"},
      {{kSound, "chime.wav"}, "Error in Sound Command: No such file or directory\n"},
      {{kInternet, "example.org"}, "Error in Website Command: No such file or directory\n"}};
  for (const auto& wrong : cases) {
    SCOPED_TRACE(wrong.command.text);
    WriteCommands({wrong.command});
    const auto probe = StartProbe();
    LaunchInstalled();
    DrawIt();
    EXPECT_TRUE(WaitFor([&] { return Err().size() >= std::string(wrong.message).size(); }));
    EXPECT_EQ(Err(), wrong.message);
    EXPECT_EQ(Out(), "");
    EXPECT_TRUE(gromlit->Running());
    StopGromlit();
  }
}

TEST_F(ExecutionTest, FinishedChildrenLeaveNoZombies) {
  const auto recording = Record();
  std::vector<Command> commands;
  for (int i = 0; i < 20; i++) commands.push_back({kRun, "recorder " + std::to_string(i)});
  commands.push_back({kRun, "/nonexistent/program"});
  WriteCommands(commands);
  const auto probe = StartProbe();
  LaunchInstalled();
  DrawIt();
  recording->Wait(20);
  // All have been seen to run; a zombie would stay.
  EXPECT_TRUE(WaitFor([this] { return Children().empty(); }));
}

TEST_F(ExecutionTest, ChildOutlivesTheProgram) {
  WriteText(*install / "stay",
            "echo $$ >pid.new; mv pid.new pid\n"
            "while [ ! -e stop ]; do sleep 0.05; done\n"
            "touch outlived\n");
  WriteCommands({{kRun, "sh stay"}});
  const auto probe = StartProbe();
  LaunchInstalled();
  DrawIt();
  ASSERT_TRUE(Appears("pid"));
  const pid_t child = std::stoi(ReadText(*install / "pid"));
  // The one behind it, which makes the mark, may not be over yet.
  EXPECT_TRUE(WaitFor([&] { return Children() == std::vector{child}; }));
  StopGromlit();
  EXPECT_EQ(kill(child, 0), 0);
  WriteText(*install / "stop", "");
  EXPECT_TRUE(Appears("outlived"));
}

// --- Keywords ----------------------------------------------------------------------------------

TEST_F(ExecutionTest, WaitBetweenTwoKeysTakesAQuarterSecondEach) {
  for (const int waits : {1, 8}) {
    SCOPED_TRACE(waits);
    std::vector<Command> commands = {{kHotKey, "a", kKeyA, 0}};
    for (int i = 0; i < waits; i++)
      commands.push_back({kRun, i % 2 ? "now system:wait!" : "system:wait"});
    commands.push_back({kHotKey, "f", kKeyF, 0});
    WriteCommands(commands);
    const auto probe = StartProbe({"--focus"});
    LaunchInstalled();
    Go(kStroke[0]);
    player->Press(3);
    Trace(kStroke);
    // Measured from before the first key, so that a late look never makes it too short.
    const auto start = std::chrono::steady_clock::now();
    player->Release(3);
    probe->Wait(4, "Key");
    const auto took = std::chrono::steady_clock::now() - start;
    EXPECT_GE(took, waits * std::chrono::milliseconds(250));
    EXPECT_LT(took, waits * std::chrono::milliseconds(250) + std::chrono::seconds(5));
    EXPECT_EQ(probe->Lines("Key"), KeyLines({{kKeyA, 0}, {kKeyF, 0}}, kOrigin));
    EXPECT_TRUE(Appears("done"));
    StopGromlit();
    fs::remove(MarkFile("done"));
  }
}

TEST_F(ExecutionTest, KeysBeforeAWaitArriveBeforeIt) {
  WriteCommands({{kHotKey, "a", kKeyA, 0},
                 {kRun, "system:wait"},
                 {kRun, "system:wait"},
                 {kRun, "system:wait"},
                 {kRun, "system:wait"},
                 {kRun, "system:wait"},
                 {kRun, "system:wait"},
                 {kRun, "system:wait"},
                 {kRun, "system:wait"}});
  const auto probe = StartProbe({"--focus"});
  LaunchInstalled();
  Drag(kStroke);
  probe->Wait(2, "Key");
  EXPECT_FALSE(Exists(MarkFile("done"))) << "two seconds have not passed";
  EXPECT_TRUE(Appears("done"));
}

TEST_F(ExecutionTest, KeywordAnywhereInACommandLineStartsNothing) {
  const auto recording = Record();
  WriteCommands({{kRun, "recorder system:sync"},
                 {kRun, "recorder system:wait"},
                 {kRun, "recorder system:showgromlit"},
                 {kRun, "recorder system:other"}});
  const auto probe = StartProbe();
  LaunchInstalled();
  DrawIt();
  EXPECT_EQ(recording->Wait(1), std::vector{RecordOf({"recorder", "system:other"})});
  EXPECT_TRUE(WaitFor([this] { return Children().empty(); }));
  EXPECT_EQ(recording->Lines().size(), 1u);
}

TEST_F(ExecutionTest, HiddenMainWindowIsShownOnTop) {
  WriteCommands({{kRun, "system:showgromlit"}});
  LaunchInstalled();
  const Window main = MainWindow();
  ASSERT_NE(main, 0u);
  XUnmapWindow(player->display(), main);
  const auto probe = StartProbe();
  DrawIt();
  XWindowAttributes attributes{};
  EXPECT_TRUE(WaitFor([&] {
    return XGetWindowAttributes(player->display(), main, &attributes) != 0 &&
           attributes.map_state == IsViewable;
  }));
  // Above the probe that was mapped after it was hidden: what is seen where both are is its own.
  Window rootwin;
  Window parent;
  Window* list = nullptr;
  unsigned count = 0;
  ASSERT_NE(XQueryTree(player->display(), player->root(), &rootwin, &parent, &list, &count), 0);
  const std::vector<Window> order(list, list + count);  // bottom-most first
  XFree(list);
  EXPECT_GT(std::find(order.begin(), order.end(), main),
            std::find(order.begin(), order.end(), probe->window()));
}

}  // namespace
}  // namespace gromlit
