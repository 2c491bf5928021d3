// Before Xlib, whose macros would break GoogleTest.
#include "tests/support/x_fixture.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/time.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <deque>
#include <filesystem>
#include <string>
#include <thread>
#include <vector>

#include "actions/child.h"
#include "actions/execute.h"
#include "actions/keystrokes.h"
#include "core/option_files.h"
#include "core/strings.h"
#include "display/draw_button.h"
#include "display/input_focus.h"
#include "display/modes.h"
#include "tests/support/captured.h"
#include "tests/support/recording.h"
#include "tests/x11/actions/key_probe.h"

namespace gromlit {
namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;
using testing::Captured;
using testing::KeyProbe;
using testing::KeySeen;
using testing::Recording;
using testing::RecordOf;
using testing::Strokes;

constexpr const char* kRedirect =
    "http://" GROMLIT_WEB_HOST "/s.smart?x=2&d=1&s=5&sv=5&sl=1&pl=1&ol=1&o=0&sva=1&svb=2&web=";
constexpr const char* kForum =
    "http://" GROMLIT_WEB_HOST "/s.smart?x=0&d=1&s=5&sv=5&sl=1&pl=1&ol=1&o=0&sva=1&svb=2&c=";

// Contents of a file below /proc; empty when its process has gone, even while it is being read.
std::string ProcText(const std::filesystem::path& path) {
  char text[1024];
  const int fd = open(path.c_str(), O_RDONLY | O_CLOEXEC);
  if (fd < 0) return "";
  const ssize_t n = read(fd, text, sizeof text);
  close(fd);
  return n < 0 ? "" : std::string(text, static_cast<size_t>(n));
}

// Ids of the processes whose parent this one is, zombies included.
std::vector<pid_t> Children() {
  std::vector<pid_t> children;
  for (const auto& entry : std::filesystem::directory_iterator("/proc")) {
    const std::string id = entry.path().filename();
    if (id.find_first_not_of("0123456789") != std::string::npos) continue;
    // id (name) state parent ...; the name may hold anything.
    const std::string stat = ProcText(entry.path() / "stat");
    const size_t name = stat.rfind(')');
    if (name == std::string::npos || std::stoi(stat.substr(name + 4)) != getpid()) continue;
    children.push_back(std::stoi(id));
  }
  std::sort(children.begin(), children.end());
  return children;
}

class ExecuteTest : public testing::XFixture {
 protected:
  void SetUp() override {
    XFixture::SetUp();
    sigaction(SIGCHLD, nullptr, &chld_);
    user = &options_;
    CopyText(options_.sndcmd, "recorder %s");
    CopyText(options_.urlcmd, "recorder %s");
    CopyText(plugin.classname, "Navigator");
    BuildCharToKeycode();
    probe = std::make_unique<KeyProbe>(server->name(), 300, 200);
    probe->FocusOn(PointerRoot);
    servers = Children();
  }
  void TearDown() override {
    user = nullptr;
    showWindow = None;
    sigaction(SIGCHLD, &chld_, nullptr);
    if (dpy != nullptr) XSync(dpy, False);
    probe.reset();
    XFixture::TearDown();
  }

  GromlitCmd* Command(uint8_t type, const char* text, int checked = 0) {
    GromlitCmd cmd{};
    cmd.type = type;
    cmd.checked = static_cast<uint8_t>(checked);
    texts_.emplace_back(text != nullptr ? text : "");
    if (text != nullptr) {
      cmd.text = texts_.back().data();
      cmd.ntext = static_cast<uint32_t>(texts_.back().size());
    }
    commands_.push_back(cmd);
    return &commands_.back();
  }

  GromlitCmd* Keys(uint8_t type, const std::vector<std::pair<uint16_t, uint16_t>>& keys) {
    GromlitCmd* const cmd = Command(type, nullptr);
    cmd->nkeys = static_cast<uint8_t>(keys.size());
    for (size_t i = 0; i < keys.size(); i++) {
      cmd->keycode[i] = keys[i].first;
      cmd->keystate[i] = keys[i].second;
    }
    return cmd;
  }

  // Runs a command on the probe, as a gesture at (12, 34) in it would.
  void Run(const GromlitCmd* cmd) {
    ExecuteCommand(&plugin, cmd, root, probe->window(), 12, 34, 312, 234);
  }

  int RunAction(const std::vector<GromlitCmd*>& cmds) {
    action.ncmds = static_cast<uint32_t>(cmds.size());
    std::copy(cmds.begin(), cmds.end(), action.cmds);
    return ExecuteAction(&plugin, &action, root, probe->window(), 12, 34, 312, 234);
  }

  std::vector<KeySeen> Seen() { return Seen(*probe); }
  std::vector<KeySeen> Seen(KeyProbe& by) {
    XSync(dpy, False);
    return by.Seen();
  }

  static std::vector<KeySeen> Sent(const std::vector<std::pair<unsigned, unsigned>>& keys) {
    return Strokes(
        keys,
        {.type = 0, .keycode = 0, .state = 0, .x = 12, .y = 34, .x_root = 312, .y_root = 234});
  }

  // Requests that running the command puts on the connection.
  unsigned long RequestsOf(const GromlitCmd* cmd) {
    XNoOp(dpy);  // which the command waits for
    const unsigned long before = NextRequest(dpy);
    Run(cmd);
    return NextRequest(dpy) - before;
  }

  // System calls that write, of this process.
  static unsigned long Writes() {
    const std::string text = ProcText("/proc/self/io");
    const size_t at = text.find("syscw: ");
    EXPECT_NE(at, std::string::npos);
    return at == std::string::npos ? 0 : std::stoul(text.substr(at + 7));
  }

  // Ends a grab, whose record outlives the connection, as the program does.
  static void LeaveDrawButton() {
    static auto* const left = new std::vector<DrawButtonLifted*>;
    left->push_back(new DrawButtonLifted);
  }

  // Nothing but the X server was started.
  void ExpectNoChild() { EXPECT_EQ(Children(), servers); }

  bool Viewable(Window window) {
    XWindowAttributes attributes;
    XGetWindowAttributes(dpy, window, &attributes);
    return attributes.map_state == IsViewable;
  }

  GromlitPlugin plugin{};
  GromlitAction action{};
  std::unique_ptr<KeyProbe> probe;
  std::vector<pid_t> servers;  // the X server

 private:
  GromlitUserOptions options_{};
  std::deque<GromlitCmd> commands_;
  std::deque<std::string> texts_;
  struct sigaction chld_ {};
};

// --- Keys ---------------------------------------------------------------------------------------

TEST_F(ExecuteTest, HotKeySendsItsStoredPair) {
  Run(Keys(kHotKey, {{46, ControlMask | ShiftMask}}));
  EXPECT_EQ(Seen(), Sent({{46, 5}}));
}

TEST_F(ExecuteTest, HotKeySendsPairsThatAreInNoTable) {
  Run(Keys(kHotKey, {{255, 0}, {8, 0xff}, {38, 0x2000}}));
  EXPECT_EQ(Seen(), Sent({{255, 0}, {8, 0xff}, {38, 0x2000}}));
}

TEST_F(ExecuteTest, MenuCommandOfTwoLettersSendsPairOneAsTheRecordHoldsIt) {
  // The editor writes every letter into pair 0 and counts two keys.
  int keycode;
  int keystate;
  CharToKeycode('N', &keycode, &keystate);
  GromlitCmd* const cmd = Command(kMenu, "NN");
  cmd->nkeys = 2;
  cmd->keycode[0] = static_cast<uint16_t>(keycode);
  cmd->keystate[0] = static_cast<uint16_t>(keystate + Mod1Mask);
  cmd->keycode[1] = 71;
  cmd->keystate[1] = 64;
  Run(cmd);
  EXPECT_EQ(Seen(), Sent({{57, ShiftMask | Mod1Mask}, {71, 64}}));
}

TEST_F(ExecuteTest, MenuCommandOfOneLetterSendsAltAndTheLetter) {
  Run(Keys(kMenu, {{41, Mod1Mask}}));
  EXPECT_EQ(Seen(), Sent({{41, 8}}));
}

TEST_F(ExecuteTest, MoreKeysThanPairsSendEightPairs) {
  GromlitCmd* const cmd =
      Keys(kMenu, {{30, 0}, {31, 1}, {32, 2}, {33, 3}, {34, 4}, {35, 5}, {36, 6}, {37, 7}});
  const auto eight = Sent({{30, 0}, {31, 1}, {32, 2}, {33, 3}, {34, 4}, {35, 5}, {36, 6}, {37, 7}});
  for (const int n : {8, 9, 255}) {
    cmd->nkeys = static_cast<uint8_t>(n);
    Run(cmd);
    EXPECT_EQ(Seen(), eight) << n;
  }
}

TEST_F(ExecuteTest, NoKeysSendNothing) {
  Run(Keys(kHotKey, {}));
  EXPECT_EQ(Seen(), std::vector<KeySeen>{});
}

TEST_F(ExecuteTest, TextIsTypedByteByByte) {
  Run(Command(kText, "aA1!\t"));
  EXPECT_EQ(Seen(), Sent({{38, 0}, {38, 1}, {10, 0}, {10, 1}, {23, 0}}));
}

TEST_F(ExecuteTest, TextSkipsAccentedLettersAndContinues) {
  Run(Command(kText, "a\xe9z"));
  EXPECT_EQ(Seen(), Sent({{38, 0}, {52, 0}}));
}

TEST_F(ExecuteTest, TextFromAFileTypesTheFile) {
  std::string text;
  std::vector<std::pair<unsigned, unsigned>> keys;
  for (int i = 0; i < 700; i++) {
    text += i % 2 == 0 ? 'a' : 'S';
    keys.emplace_back(i % 2 == 0 ? 38 : 39, i % 2 == 0 ? 0 : 1);
  }
  testing::WriteText(*install / "typed.txt", text);
  // Any value but 0 means "checked".
  for (const int checked : {1, 2, 255}) {
    Run(Command(kText, (*install / "typed.txt").c_str(), checked));
    EXPECT_EQ(Seen(), Sent(keys)) << checked;
  }
}

TEST_F(ExecuteTest, TextFileNameIsRelativeToTheWorkingDirectory) {
  testing::WriteText(*install / "typed.txt", "a");
  const std::filesystem::path here = std::filesystem::current_path();
  std::filesystem::current_path(install->path());
  Run(Command(kText, "typed.txt", 1));
  std::filesystem::current_path(here);
  EXPECT_EQ(Seen(), Sent({{38, 0}}));
}

TEST_F(ExecuteTest, UncheckedTextThatNamesAFileIsTypedItself) {
  const std::filesystem::path here = std::filesystem::current_path();
  std::filesystem::current_path(install->path());
  testing::WriteText("a", "zzz");
  Run(Command(kText, "a", 0));
  std::filesystem::current_path(here);
  EXPECT_EQ(Seen(), Sent({{38, 0}}));
}

TEST_F(ExecuteTest, EmptyOrMissingTextFileSendsNothing) {
  testing::WriteText(*install / "empty", "");
  const Captured error(STDERR_FILENO);
  for (const std::string& name : {*install / "empty", *install / "missing", std::string()}) {
    Run(Command(kText, name.c_str(), 1));
    EXPECT_EQ(Seen(), std::vector<KeySeen>{}) << name;
  }
  EXPECT_EQ(error.Text(), "");
}

TEST_F(ExecuteTest, LongTextArrivesWhole) {
  const std::string text(50'000, 'a');
  Run(Command(kText, text.c_str()));
  const std::vector<KeySeen> seen = Seen();
  ASSERT_EQ(seen.size(), 100'000u);
  EXPECT_EQ(seen, Sent(std::vector<std::pair<unsigned, unsigned>>(text.size(), {38, 0})));
}

TEST_F(ExecuteTest, FocusIsAskedOncePerCommand) {
  // One request for both the wait before the command and the focus, then two events per key.
  EXPECT_EQ(RequestsOf(Command(kText, "hello world")), 1u + 2 * 11);
  EXPECT_EQ(RequestsOf(Keys(kHotKey, {{38, 0}, {39, 0}, {40, 0}})), 1u + 2 * 3);
  EXPECT_EQ(RequestsOf(Keys(kMenu, {})), 1u);
  testing::WriteText(*install / "text", std::string(1000, 'a'));
  EXPECT_EQ(RequestsOf(Command(kText, (*install / "text").c_str(), 1)), 1u + 2 * 1000);
  EXPECT_EQ(RequestsOf(Command(kRun, "system:sync")), 2u);
}

TEST_F(ExecuteTest, FirstKeysGoWhereTheFocusWasWhenTheGrabWasLifted) {
  ASSERT_TRUE(GrabDrawButton(3));
  KeyProbe other(server->name(), 600, 600);
  other.Focus();
  XSync(dpy, False);
  unsigned long before = NextRequest(dpy);
  RunAction({Keys(kHotKey, {{38, 0}})});
  // The grab lifted, the question for the focus, two keys, the grab put back and waited for.
  EXPECT_EQ(NextRequest(dpy) - before, 6u);
  EXPECT_EQ(Seen(other), Sent({{38, 0}}));
  // What comes behind a command that is none of keys asks again.
  before = NextRequest(dpy);
  RunAction({Command(200, ""), Keys(kHotKey, {{39, 0}})});
  EXPECT_EQ(NextRequest(dpy) - before, 7u);
  EXPECT_EQ(Seen(other), Sent({{39, 0}}));
  LeaveDrawButton();
}

TEST_F(ExecuteTest, ATextIsOneWrite) {
  ASSERT_TRUE(GrabDrawButton(3));
  const auto writes = [&](int texts) {
    const unsigned long before = Writes();
    RunAction(std::vector<GromlitCmd*>(static_cast<size_t>(texts), Command(kText, "0123456789")));
    return Writes() - before;
  };
  const unsigned long one = writes(1);
  EXPECT_GT(one, 0u);
  EXPECT_LE(writes(11), one + 10);
  EXPECT_EQ(Seen().size(), 2u * 12 * 10);
  LeaveDrawButton();
}

TEST_F(ExecuteTest, CommandDoesNotWaitForWhatIsDone) {
  XSync(dpy, False);
  const unsigned long before = NextRequest(dpy);
  Run(Command(200, "recorder"));
  EXPECT_EQ(NextRequest(dpy), before);
  XMapWindow(dpy, root);
  Run(Command(200, "recorder"));
  EXPECT_EQ(LastKnownRequestProcessed(dpy) + 1, NextRequest(dpy));
  EXPECT_EQ(NextRequest(dpy), before + 2);
}

// --- Focus --------------------------------------------------------------------------------------

TEST_F(ExecuteTest, FocusOnPointerRootSendsKeysToTheGesturesWindow) {
  probe->FocusOn(PointerRoot);
  Run(Keys(kHotKey, {{38, 0}}));
  EXPECT_EQ(Seen(), Sent({{38, 0}}));
  EXPECT_EQ(KeyTarget(FinishAndFindFocus(), 1234), 1234u);
}

TEST_F(ExecuteTest, FocusOnNoneSendsKeysToTheGesturesWindow) {
  probe->FocusOn(None);
  Run(Keys(kMenu, {{38, 0}}));
  EXPECT_EQ(Seen(), Sent({{38, 0}}));
  EXPECT_EQ(KeyTarget(FinishAndFindFocus(), 1234), 1234u);
}

TEST_F(ExecuteTest, FocusOnARealWindowOfAnotherClientGetsTheKeys) {
  KeyProbe other(server->name(), 600, 600);
  other.Focus();
  EXPECT_EQ(KeyTarget(FinishAndFindFocus(), 1234), other.window());
  testing::WriteText(*install / "text", "d");
  Run(Keys(kHotKey, {{38, 0}}));
  Run(Keys(kMenu, {{39, 8}}));
  Run(Command(kText, "d"));
  Run(Command(kText, (*install / "text").c_str(), 1));
  // The positions stay those of the gesture.
  EXPECT_EQ(Seen(other), Sent({{38, 0}, {39, 8}, {40, 0}, {40, 0}}));
  EXPECT_EQ(Seen(), std::vector<KeySeen>{});
}

TEST_F(ExecuteTest, WindowThatIsGoneTakesNothingDown) {
  const Window gone = XCreateSimpleWindow(probe->display(), root, 0, 0, 10, 10, 0, 0, 0);
  XDestroyWindow(probe->display(), gone);
  XSync(probe->display(), False);
  ExecuteCommand(&plugin, Command(kText, "ab"), gone, gone, 0, 0, 0, 0);
  XSync(dpy, False);
  EXPECT_EQ(errors, 4);
  errors = 0;
  Run(Keys(kHotKey, {{38, 0}}));
  EXPECT_EQ(Seen(), Sent({{38, 0}}));
}

// --- Programs -----------------------------------------------------------------------------------

TEST_F(ExecuteTest, SoundRunsTheSoundCommandForTheFile) {
  const Recording record;
  Run(Command(kSound, "/sounds/ding.wav"));
  EXPECT_EQ(record.Wait(1)[0], RecordOf({"recorder", "/sounds/ding.wav"}));
}

TEST_F(ExecuteTest, SoundNameWithABlankIsTwoArguments) {
  const Recording record;
  Run(Command(kSound, "my sound.wav"));
  EXPECT_EQ(record.Wait(1)[0], RecordOf({"recorder", "my", "sound.wav"}));
}

TEST_F(ExecuteTest, RunStartsTheCommandLineWithoutAnyQuoting) {
  const Recording record;
  Run(Command(kRun, "recorder  -x 'a b' \"$HOME\" *.c %s\t~"));
  EXPECT_EQ(record.Wait(1)[0],
            RecordOf({"recorder", "-x", "'a", "b'", "\"$HOME\"", "*.c", "%s", "~"}));
}

TEST_F(ExecuteTest, InternetOpensThePageItselfWhereThatIsChosen) {
  Recording record;
  user->temp2 = kOpenDirectly;
  Run(Command(kInternet, "example.org/a?b=c"));
  EXPECT_EQ(record.Wait(1)[0], RecordOf({"recorder", "http://example.org/a?b=c"}));
  Run(Command(kInternet, "https://example.org"));
  EXPECT_EQ(record.Wait(2)[1], RecordOf({"recorder", "https://example.org"}));
  // A forum is a page of the service.
  Run(Command(kInternet, "topic=7", 1));
  EXPECT_EQ(record.Wait(3)[2],
            RecordOf({"recorder", std::string(kForum) + "Navigator&uargs=topic=7"}));
}

TEST_F(ExecuteTest, InternetOpensTheRedirectPageForTheAddress) {
  const Recording record;
  Run(Command(kInternet, "example.org"));
  EXPECT_EQ(record.Wait(1)[0], RecordOf({"recorder", std::string(kRedirect) + "example.org"}));
}

TEST_F(ExecuteTest, InternetOpensTheForumOfTheClass) {
  const Recording record;
  Run(Command(kInternet, "topic=1", 1));
  EXPECT_EQ(record.Wait(1)[0],
            RecordOf({"recorder", std::string(kForum) + "Navigator&uargs=topic=1"}));
  Run(Command(kInternet, "", 255));
  EXPECT_EQ(record.Wait(2)[1], RecordOf({"recorder", std::string(kForum) + "Navigator&uargs="}));
}

TEST_F(ExecuteTest, InternetKeepsTheClassInOneWordOfTheAddress) {
  // A class text is what a window says: it must not add options to the browser's command line.
  const Recording record;
  CopyText(plugin.classname,
           "a --x\t\n'\"`%s\x7f"
           "b.C%20&");
  Run(Command(kInternet, "my topic", 1));
  EXPECT_EQ(
      record.Wait(1)[0],
      RecordOf({"recorder", std::string(kForum) + "a%20--x%09%0A%27%22%60%25s%7Fb.C%2520&&uargs=my",
                "topic"}))
      << "the command's own text stays as it was typed";
}

TEST_F(ExecuteTest, InternetAddressOfAnyLengthIsNotCutAndNotEncoded) {
  const Recording record;
  const std::string address = "https://h:8080/%20%s?&" + std::string(5000, 'u');
  Run(Command(kInternet, address.c_str()));
  EXPECT_EQ(record.Wait(1)[0], RecordOf({"recorder", kRedirect + address}));
}

TEST_F(ExecuteTest, ProgramsGetNoConnectionToTheServer) {
  const Recording record(true);
  // The judge of the judge: a descriptor that is passed on does show up.
  const int passed = dup(ConnectionNumber(dpy));
  const std::string socket =
      std::filesystem::read_symlink("/proc/self/fd/" + std::to_string(passed)).string();
  Run(Command(kRun, "recorder"));
  EXPECT_NE(record.Wait(1)[0].find(socket), std::string::npos);
  close(passed);
  Run(Command(kRun, "recorder"));
  Run(Command(kSound, "a"));
  Run(Command(kInternet, "a"));
  const std::vector<std::string> lines = record.Wait(4);
  for (size_t i = 1; i < 4; i++) EXPECT_EQ(lines[i].find(socket), std::string::npos) << lines[i];
}

TEST_F(ExecuteTest, ProgramsThatCannotStartAreReportedAndTheRestRuns) {
  CopyText(user->sndcmd, "/nonexistent/player %s");
  CopyText(user->urlcmd, "/nonexistent/browser %s");
  const Captured error(STDERR_FILENO);
  const Recording record;
  EXPECT_EQ(RunAction({Command(kRun, "/nonexistent/program"), Command(kSound, "a.wav"),
                       Command(kInternet, "example.org"), Command(kRun, "recorder after"),
                       Keys(kHotKey, {{38, 0}})}),
            1);
  EXPECT_EQ(Seen(), Sent({{38, 0}}));
  EXPECT_EQ(record.Wait(1)[0], RecordOf({"recorder", "after"}));
  // The three that failed say so themselves and end with 255, the one that was found with 0.
  int failed = 0;
  for (const pid_t pid : Children()) {
    if (std::count(servers.begin(), servers.end(), pid) != 0) continue;
    int status = 0;
    ASSERT_EQ(waitpid(pid, &status, 0), pid);
    ASSERT_TRUE(WIFEXITED(status));
    if (WEXITSTATUS(status) == 255) failed++;
  }
  EXPECT_EQ(failed, 3);
  const std::string text = error.Text();
  for (const char* line : {"Error in System Command: No such file or directory\n",
                           "Error in Sound Command: No such file or directory\n",
                           "Error in Website Command: No such file or directory\n"})
    EXPECT_NE(text.find(line), std::string::npos) << text;
}

TEST_F(ExecuteTest, RunWithoutWordsStartsNothingAndSaysSo) {
  for (const char* text : {static_cast<const char*>(nullptr), "", "  \t"}) {
    const Captured error(STDERR_FILENO);
    Run(Command(kRun, text));
    EXPECT_EQ(error.Text(), "Error in System Command: No such file or directory\n");
    ExpectNoChild();
  }
}

TEST_F(ExecuteTest, FinishedProgramsLeaveNoZombies) {
  ReapChildrenSilently();
  const Recording record;
  for (int i = 0; i < 10; i++) {
    Run(Command(kRun, "recorder run"));
    Run(Command(kSound, "a.wav"));
    Run(Command(kInternet, "example.org"));
  }
  record.Wait(30);
  EXPECT_TRUE(testing::WaitFor([this] { return Children() == servers; }));
}

// --- Keywords -----------------------------------------------------------------------------------

milliseconds TimeOf(const std::function<void()>& run) {
  const auto start = steady_clock::now();
  run();
  return std::chrono::duration_cast<milliseconds>(steady_clock::now() - start);
}

TEST_F(ExecuteTest, WaitTakesAQuarterSecondAndNoMoreThanTwentyMillisecondsOnTop) {
  const GromlitCmd* const wait = Command(kRun, "system:wait");
  // The machine may take its time now and then; the program must not.
  milliseconds best = milliseconds::max();
  for (int i = 0; i < 5; i++) {
    const milliseconds taken = TimeOf([&] { Run(wait); });
    EXPECT_GE(taken, milliseconds(250));
    best = std::min(best, taken);
  }
  EXPECT_LE(best, milliseconds(270));
}

TEST_F(ExecuteTest, WaitIsNeitherShortenedNorLengthenedBySignals) {
  struct sigaction action_now {};
  struct sigaction former {};
  action_now.sa_handler = [](int) {};
  sigaction(SIGALRM, &action_now, &former);
  const itimerval often{{0, 7000}, {0, 7000}};
  const itimerval never{};
  const GromlitCmd* const wait = Command(kRun, "system:wait");
  milliseconds best = milliseconds::max();
  for (int i = 0; i < 5; i++) {
    setitimer(ITIMER_REAL, &often, nullptr);
    const milliseconds taken = TimeOf([&] { Run(wait); });
    setitimer(ITIMER_REAL, &never, nullptr);
    EXPECT_GE(taken, milliseconds(250));
    best = std::min(best, taken);
  }
  sigaction(SIGALRM, &former, nullptr);
  EXPECT_LE(best, milliseconds(270));
}

TEST_F(ExecuteTest, WaitBetweenTwoHotKeysPausesAfterTheFirstHasArrived) {
  // The probe's own thread stamps each key as it comes; its connection is used by nobody else.
  std::vector<std::pair<unsigned, steady_clock::time_point>> arrivals;
  std::thread watch([&] {
    Display* const display = probe->display();
    const auto end = steady_clock::now() + std::chrono::seconds(10);
    while (arrivals.size() < 4 && steady_clock::now() < end) {
      pollfd input{ConnectionNumber(display), POLLIN, 0};
      if (XPending(display) == 0) {
        poll(&input, 1, 100);
        continue;
      }
      XEvent event;
      XNextEvent(display, &event);
      if (event.type == KeyPress || event.type == KeyRelease)
        arrivals.emplace_back(event.xkey.keycode, steady_clock::now());
    }
  });
  RunAction({Keys(kHotKey, {{38, 0}}), Command(kRun, "system:wait"), Keys(kHotKey, {{39, 0}})});
  XSync(dpy, False);
  watch.join();
  ASSERT_EQ(arrivals.size(), 4u);
  EXPECT_EQ(arrivals[1].first, 38u);
  EXPECT_EQ(arrivals[2].first, 39u);
  // A stamp is late by what the thread needs to wake up.
  EXPECT_GE(arrivals[2].second - arrivals[1].second, milliseconds(230));
}

TEST_F(ExecuteTest, KeywordAnywhereInTheTextStartsNothing) {
  const Recording record;
  for (const char* text : {"recorder system:sync", "system:sync recorder", "xsystem:syncx"}) {
    Run(Command(kRun, text));
    ExpectNoChild();
  }
  EXPECT_TRUE(record.Lines().empty());
}

TEST_F(ExecuteTest, KeywordsAreCaseSensitiveAndWhole) {
  const Recording record;
  Run(Command(kRun, "recorder System:sync system: sync system:syn"));
  EXPECT_EQ(record.Wait(1)[0],
            RecordOf({"recorder", "System:sync", "system:", "sync", "system:syn"}));
}

TEST_F(ExecuteTest, FirstKeywordInTheirOwnOrderDecides) {
  showWindow = XCreateSimpleWindow(dpy, root, 0, 0, 50, 50, 0, 0, white.pixel);
  EXPECT_GE(TimeOf([&] { Run(Command(kRun, "system:showgromlit system:sync system:wait")); }),
            milliseconds(250));
  EXPECT_FALSE(Viewable(showWindow));
  EXPECT_EQ(RequestsOf(Command(kRun, "system:showgromlit system:sync")), 2u);
  EXPECT_FALSE(Viewable(showWindow));
  XDestroyWindow(dpy, showWindow);
}

TEST_F(ExecuteTest, ShowGromlitMapsAndRaisesTheMainWindow) {
  showWindow = XCreateSimpleWindow(dpy, root, 0, 0, 50, 50, 0, 0, white.pixel);
  Run(Command(kRun, "system:showgromlit"));
  EXPECT_TRUE(Viewable(showWindow));
  // Covered by another window, it comes to the top again.
  const Window cover = XCreateSimpleWindow(dpy, root, 0, 0, 50, 50, 0, 0, black.pixel);
  XMapRaised(dpy, cover);
  EXPECT_EQ(PixelOf(cover, 5, 5), 0x000000u);
  Run(Command(kRun, "please system:showgromlit now"));
  EXPECT_EQ(PixelOf(showWindow, 5, 5), 0xffffffu);
  ExpectNoChild();
  XDestroyWindow(dpy, cover);
  XDestroyWindow(dpy, showWindow);
}

TEST_F(ExecuteTest, ShowGromlitWithoutAMainWindowDoesNothing) {
  showWindow = None;
  EXPECT_EQ(RequestsOf(Command(kRun, "system:showgromlit")), 1u);
  ExpectNoChild();
}

// --- Anything else ------------------------------------------------------------------------------

TEST_F(ExecuteTest, UnknownTypesDoNothing) {
  GromlitCmd* const cmd = Command(0, "recorder");
  cmd->nkeys = 1;
  cmd->keycode[0] = 38;
  const Captured error(STDERR_FILENO);
  for (int type = 6; type < 256; type++) {
    cmd->type = static_cast<uint8_t>(type);
    EXPECT_EQ(RequestsOf(cmd), 1u) << type;  // the wait before every command
  }
  EXPECT_EQ(Seen(), std::vector<KeySeen>{});
  ExpectNoChild();
  EXPECT_EQ(error.Text(), "");
}

TEST_F(ExecuteTest, CommandWithoutTextIsOneWithAnEmptyText) {
  const Recording record;
  Run(Command(kHotKey, nullptr));
  Run(Command(kMenu, nullptr));
  Run(Command(kText, nullptr));
  Run(Command(kText, nullptr, 1));
  EXPECT_EQ(Seen(), std::vector<KeySeen>{});
  Run(Command(kSound, nullptr));
  EXPECT_EQ(record.Wait(1)[0], RecordOf({"recorder"}));
  Run(Command(kInternet, nullptr));
  EXPECT_EQ(record.Wait(2)[1], RecordOf({"recorder", kRedirect}));
  Run(Command(kInternet, nullptr, 1));
  EXPECT_EQ(record.Wait(3)[2], RecordOf({"recorder", std::string(kForum) + "Navigator&uargs="}));
}

// --- Actions ------------------------------------------------------------------------------------

TEST_F(ExecuteTest, ActionRunsItsCommandsInTheirOrder) {
  EXPECT_EQ(RunAction({Command(kText, "a"), Keys(kHotKey, {{71, 4}}), Command(77, "ignored"),
                       Command(kText, "s")}),
            1);
  EXPECT_EQ(Seen(), Sent({{38, 0}, {71, 4}, {39, 0}}));
}

TEST_F(ExecuteTest, ActionWithoutCommandsDoesNothing) {
  const unsigned long before = NextRequest(dpy);
  EXPECT_EQ(RunAction({}), 1);
  EXPECT_EQ(NextRequest(dpy), before);
}

TEST_F(ExecuteTest, ActionRunsNoMoreCommandsThanItCanHold) {
  GromlitCmd* const cmd = Keys(kHotKey, {{38, 0}});
  RunAction(std::vector<GromlitCmd*>(kMaxCommands, cmd));
  EXPECT_EQ(Seen().size(), 2u * kMaxCommands);
  action.ncmds = 0xffffffff;
  action.cmds[5] = nullptr;
  ExecuteAction(&plugin, &action, root, probe->window(), 12, 34, 312, 234);
  EXPECT_EQ(Seen().size(), 2u * (kMaxCommands - 1));
}

std::vector<GromlitPlugin*> executing;

TEST_F(ExecuteTest, ExecutingPluginIsSetWhileTheActionRunsAndNullAfterIt) {
  ASSERT_EQ(ExecutingPlugin, nullptr);
  executing.clear();
  // Called by Xlib in the midst of every command: at least after each request that has a reply.
  XSetAfterFunction(dpy, [](Display*) {
    executing.push_back(ExecutingPlugin);
    return 0;
  });
  RunAction({Keys(kHotKey, {{38, 0}}), Command(kText, "a")});
  XSetAfterFunction(dpy, nullptr);
  EXPECT_EQ(ExecutingPlugin, nullptr);
  EXPECT_GE(executing.size(), 4u);
  EXPECT_EQ(std::count(executing.begin(), executing.end(), &plugin),
            static_cast<ptrdiff_t>(executing.size()));
}

}  // namespace
}  // namespace gromlit
