// The connection to the server breaks, as when the server is killed: between any two requests of
// start-up, of a gesture and of a save, and wherever the program waits. It ends at once, says why,
// leaves every file whole and what it started running.
//
// GROMLIT_SWEEP=all tries every request; otherwise some are tried.
#include "tests/e2e/front_end.h"

#include <X11/keysym.h>

#include <map>
#include <set>

#include "core/option_files.h"
#include "tests/support/x_proxy.h"

namespace gromlit {
namespace {

namespace fs = std::filesystem;
using testing::Built;
using testing::kRight;
using testing::Point;
using testing::ProbeClient;
using testing::Process;
using testing::ReadText;
using testing::Title;
using testing::WaitFor;
using testing::WriteText;
using testing::XProxy;

using Files = std::map<std::string, std::string>;  // names below the installation, and contents

// Numbers from 1 to `last`, all of them or `some`.
std::vector<unsigned long> Places(unsigned long last, unsigned long some) {
  if (testing::TriesAll() || some > last) some = last;
  std::set<unsigned long> places;
  for (unsigned long i = 1; i <= some; i++) places.insert(1 + (last - 1) * i / some);
  return {places.begin(), places.end()};
}

class CutConnectionTest : public testing::FrontEnd {
 protected:
  void SetUp() override {
    FrontEnd::SetUp();
    proxy_ = std::make_unique<XProxy>(server->name());
  }
  std::vector<std::string> Arguments() {
    return {"-path", install->path(), "-display", proxy_->name()};
  }
  // A connection of its own for each start; `before` may arrange its end.
  void LaunchBehindProxy() {
    proxy_ = std::make_unique<XProxy>(server->name());
    fs::remove(ErrFile());
    Launch(Arguments());
  }
  unsigned long Requests() { return proxy_->Counts(0).requests; }
  // Until the program has sent nothing for a while.
  unsigned long RequestsAtRest() {
    unsigned long seen = 0;
    auto since = std::chrono::steady_clock::now();
    EXPECT_TRUE(WaitFor([&] {
      const unsigned long now = Requests();
      if (now != seen) since = std::chrono::steady_clock::now();
      seen = now;
      return std::chrono::steady_clock::now() - since > std::chrono::milliseconds(250);
    }));
    return seen;
  }

  Files FilesNow() const {
    Files files;
    for (const char* part : {"plugins", "symbols", "options"})
      for (const auto& entry : fs::directory_iterator(*install / part))
        files[std::string(part) + "/" + entry.path().filename().string()] =
            ReadText(entry.path().string());
    for (const std::string& name : NamesIn(install->path()))
      if (name.starts_with(".gromlit-save")) files[name] = "";
    return files;
  }
  void ExpectWhole() {
    Process check({Built("gromlit-tool"), "check", install->path()}, *install / "check.log");
    EXPECT_EQ(check.Wait(), 0) << ReadText(*install / "check.log");
  }
  // The program ends by itself, soon, and says on its standard error what has happened.
  // `late` when the place of the cut is among the last ones, which need not come: how often a
  // window is drawn depends on the server's events. Then it is cut now.
  bool EndsWithAMessage(bool late = false) {
    if (late && !WaitFor([this] { return !gromlit->Running(); }, std::chrono::seconds(2)))
      proxy_->Cut(0);
    const int status = gromlit->Wait(std::chrono::seconds(15));
    EXPECT_EQ(status, 1) << WhereItStands();
    EXPECT_NE(Err(), "");
    EXPECT_TRUE(Err().find("X connection") != std::string::npos ||
                Err().find("XIO") != std::string::npos ||
                Err().find("unable to open display") != std::string::npos)
        << Err();
    return status == 1;
  }
  void LetEverythingGo() {
    for (int button = 1; button <= 3; button++) player->Release(button);
    EXPECT_TRUE(PointerBecomesFree());
  }

  std::unique_ptr<XProxy> proxy_;
};

// --- Between any two requests -------------------------------------------------------------------

TEST_F(CutConnectionTest, AtAnyRequestOfStartUp) {
  DesktopTouches("acted");
  const Files before = FilesNow();
  LaunchBehindProxy();
  const unsigned long last = RequestsAtRest();
  const Files after = FilesNow();
  StopGromlit();
  EXPECT_GT(last, 100u);
  for (const unsigned long number : Places(last, 10)) {
    SCOPED_TRACE("request " + std::to_string(number) + " of " + std::to_string(last));
    for (const auto& [name, text] : after)
      if (!before.contains(name)) fs::remove(*install / name);
    proxy_ = std::make_unique<XProxy>(server->name());
    if (number % 2 == 0) {
      proxy_->CutBeforeRequest(0, number);
    } else {
      proxy_->CutAfterRequest(0, number);
    }
    fs::remove(ErrFile());
    gromlit = Start(Arguments());
    ASSERT_TRUE(EndsWithAMessage(number > last * 3 / 4));
    for (const auto& [name, text] : FilesNow()) {
      ASSERT_TRUE(after.contains(name)) << name;
      EXPECT_EQ(text, after.at(name)) << name;
    }
    for (const auto& [name, text] : before) EXPECT_TRUE(testing::Exists(*install / name)) << name;
    LetEverythingGo();
  }
  ExpectWhole();
  // None of it stands in the way of a start.
  LaunchBehindProxy();
  EXPECT_TRUE(DesktopActs("acted"));
}

TEST_F(CutConnectionTest, AtAnyRequestOfAGesture) {
  WriteText(*install / "late", "sleep 0.3; echo done >> " + MarkFile("late.out"));
  const int x = XKeysymToKeycode(player->display(), XK_x);
  WritePlugin("Probe.probe", {{"right",
                               kRight,
                               {Touch("acted"),
                                {kRun, "sh " + *install / "late"},
                                {kText, "Some text, as it is typed \u00e4 \u65e5"},
                                {kHotKey, "", x, ControlMask}}}});
  GromlitUserOptions options{};
  DefaultUserOptions(&options);
  options.splash = 0;
  options.temp1 = kRealInput;
  ASSERT_EQ(SaveUserOptions(&options, defaultOptionFile), 1);
  ProbeClient probe(install->path(),
                    {"--class", "Probe", "probe", "--geometry", "400x200+800+700", "--focus"});
  const auto draw = [this] {
    player->MoveTo(850, 800);
    player->Press(3);
    for (int at = 860; at <= 1150; at += 10) player->MoveTo(at, 800);
    player->Release(3);
  };
  LaunchBehindProxy();
  const unsigned long first = RequestsAtRest();
  draw();
  ASSERT_TRUE(Appears("late.out"));
  const unsigned long last = RequestsAtRest() - first;
  const Files files = FilesNow();
  StopGromlit();
  int started = 0;
  for (const unsigned long number : Places(last, 4)) {
    SCOPED_TRACE("request " + std::to_string(number) + " of " + std::to_string(last));
    for (const char* name : {"acted", "late.out"}) fs::remove(MarkFile(name));
    LaunchBehindProxy();
    const unsigned long from = RequestsAtRest();
    proxy_->CutAfterRequest(0, from + number);
    draw();
    ASSERT_TRUE(EndsWithAMessage(number > last * 3 / 4));
    EXPECT_EQ(FilesNow(), files);
    LetEverythingGo();
    // A key that was down when the connection went is the server's to hold.
    for (const KeySym key : {XK_Shift_L, XK_Control_L, XK_ISO_Level3_Shift, XK_x})
      player->KeyUp(key);
    // What it had started goes on.
    if (!testing::Exists(MarkFile("acted"))) continue;
    started++;
  }
  EXPECT_GT(started, 0);
  EXPECT_TRUE(Appears("late.out")) << "a child has gone with the program";
  // Key codes that it had lent come back with the next start.
  LaunchBehindProxy();
  fs::remove(MarkFile("late.out"));
  draw();
  EXPECT_TRUE(Appears("late.out"));
  probe.Wait(1, "KeyPress window=main keycode=" + std::to_string(x) + " state=4");
}

TEST_F(CutConnectionTest, AtAnyRequestOfASave) {
  Point ok{};
  const auto open = [&] {
    LaunchBehindProxy();
    Choose(Title::kOptions, testing::kPreferences);
    const Window window = WaitShown("Preferences");
    const Window splash = WaitChild(window, 16, TextHeight() + 180);
    const std::string plain = Look(splash);
    ClickIn(splash, 6, 6);
    ASSERT_TRUE(WaitFor([&] { return Look(splash) != plain; }));
    const Window button = WaitChild(window, 560 - 160, BoxOf(window).height - 40);
    ASSERT_TRUE(Over(button, 30, 12));
    ok = OriginOf(button);
  };
  const std::string old = ReadText(OptionsFile());
  open();
  const unsigned long first = RequestsAtRest();
  player->Click(1);
  ASSERT_TRUE(WaitHidden("Preferences"));
  const unsigned long last = RequestsAtRest() - first;
  const std::string saved = ReadText(OptionsFile());
  ASSERT_NE(saved, old);
  StopGromlit();
  int kept = 0;
  const std::vector<unsigned long> places = Places(last, 4);
  for (const unsigned long number : places) {
    SCOPED_TRACE("request " + std::to_string(number) + " of " + std::to_string(last));
    WriteText(OptionsFile(), old);
    open();
    if (HasFailure()) return;
    proxy_->CutAfterRequest(0, RequestsAtRest() + number);
    player->Click(1);
    ASSERT_TRUE(EndsWithAMessage(number > last * 3 / 4));
    const std::string now = ReadText(OptionsFile());
    EXPECT_TRUE(now == old || now == saved);
    kept += now == saved ? 1 : 0;
    for (const std::string& name : NamesIn(*install / "options")) EXPECT_EQ(name, "default.user");
    LetEverythingGo();
  }
  EXPECT_GT(kept, 0) << "not even the last one was saved";
  ExpectWhole();
}

// --- Wherever it waits --------------------------------------------------------------------------

class CutWhileTest : public CutConnectionTest, public ::testing::WithParamInterface<const char*> {
 protected:
  void Reach(const std::string& standing) {
    if (standing == "Menu") {
      PressTitle(Title::kHelp);
    } else if (standing == "Popup") {
      OpenPopup(0);
    } else if (standing == "Dialog") {
      Choose(Title::kPlugIn, testing::kExit);
      WaitDialog();
    } else if (standing == "Pick") {
      StartPicking();
    } else if (standing == "SymbolEditor") {
      Choose(Title::kSymbol, testing::kSymbolNew);
      WaitShown("SymbolEditor");
    } else if (standing == "ActionEditor") {
      SelectCell(0);
      Choose(Title::kAction, testing::kActionEdit);
      WaitShown("ActionEditor");
    } else if (standing == "Preferences") {
      Choose(Title::kOptions, testing::kPreferences);
      WaitShown("Preferences");
    } else if (standing == "Press" || standing == "Stroke") {
      Go({800, 900});
      player->Press(3);
      if (standing == "Press") return;
      Trace({{800, 900}, {900, 900}});
      EXPECT_TRUE(WaitFor([&] { return !MappedOverlays().empty(); }));
    } else if (standing == "Action") {
      DrawOnly({{800, 900}, {1100, 900}});
      EXPECT_TRUE(Appears("started"));
    }
  }
};

TEST_P(CutWhileTest, EndsAndLeavesThePointerAndTheChildren) {
  WriteText(*install / "late", "sleep 1; touch " + MarkFile("late.out"));
  std::vector<testing::Command> commands = {{kRun, "sh " + *install / "late"}, Touch("started")};
  commands.insert(commands.end(), 40, {kRun, "system:wait"});
  for (const char* name : {"Default", "Desktop"}) WritePlugin(name, {{"right", kRight, commands}});
  const Files before = FilesNow();
  LaunchBehindProxy();
  Reach(GetParam());
  if (HasFailure()) return;
  proxy_->Cut(0);
  EndsWithAMessage();
  LetEverythingGo();
  EXPECT_EQ(FilesNow(), before);
  ExpectWhole();
  if (std::string(GetParam()) == "Action") {
    EXPECT_TRUE(Appears("late.out")) << "a child has gone with the program";
  }
  EXPECT_TRUE(MappedOverlays().empty());
}

INSTANTIATE_TEST_SUITE_P(Standing, CutWhileTest,
                         ::testing::Values("Idle", "Menu", "Popup", "Dialog", "Pick",
                                           "SymbolEditor", "ActionEditor", "Preferences", "Press",
                                           "Stroke", "Action"));

// --- The server itself --------------------------------------------------------------------------

using ServerTest = testing::ShellRun;

TEST_F(ServerTest, ThatIsKilledOrResetEndsTheProgram) {
  for (const int signal : {SIGKILL, SIGTERM, SIGHUP}) {
    SCOPED_TRACE(signal);
    if (server == nullptr) {
      server = std::make_unique<testing::XServer>();
      player = std::make_unique<testing::Player>(server->name());
    }
    std::filesystem::remove(ErrFile());
    LaunchInstalled();
    player.reset();
    server->Kill(signal);
    EXPECT_EQ(gromlit->Wait(std::chrono::seconds(15)), 1);
    EXPECT_NE(Err().find("X"), std::string::npos) << Err();
    server.reset();
  }
  // For the end of the fixture.
  server = std::make_unique<testing::XServer>();
  player = std::make_unique<testing::Player>(server->name());
}

TEST_F(ServerTest, ThatDoesNotAnswerAtStartKeepsNoSignalFromEndingTheProgram) {
  for (const int signal : {SIGTERM, SIGINT}) {
    server->Kill(SIGSTOP);
    auto started = Start({"-path", install->path()});
    const pid_t pid = started->pid();
    // It waits for the server; there is nothing else that it could wait for.
    EXPECT_TRUE(WaitFor([&] {
      const std::string call = ReadText("/proc/" + std::to_string(pid) + "/syscall");
      const std::string name = ReadText("/proc/" + std::to_string(pid) + "/comm");
      return name.starts_with("gromlit") && (call.starts_with("7 ") || call.starts_with("42 "));
    }));
    started->Kill(signal);
    EXPECT_EQ(started->Wait(std::chrono::seconds(10)), 128 + signal);
    server->Kill(SIGCONT);
  }
}

TEST_F(ServerTest, ThatHasNoRoomForAnotherClientIsNamed) {
  player.reset();
  server.reset();
  server = std::make_unique<testing::XServer>("1280x1024x24",
                                              std::vector<std::string>{"-maxclients", "64"});
  player = std::make_unique<testing::Player>(server->name());
  std::vector<Display*> others;
  while (Display* other = XOpenDisplay(server->name().c_str())) others.push_back(other);
  ASSERT_GT(others.size(), 20u);
  const Ending ending = RunToEnd({"-path", install->path()});
  EXPECT_EQ(ending.status, 1);
  EXPECT_NE(ending.err.find("unable to open display '" + server->name() + "'\n"), std::string::npos)
      << ending.err;
  for (Display* other : others) XCloseDisplay(other);
}

TEST_F(ServerTest, ThatRefusesTheCookieIsNamed) {
  const std::string cookies = *install / "cookies";
  const std::string wrong = *install / "wrong";
  const auto cookie = [](const std::string& value) {
    // Any address, display "", a name and 16 bytes.
    std::string text("\xff\xff\0\0\0\0\0\x12", 8);
    return text + "MIT-MAGIC-COOKIE-1" + std::string("\0\x10", 2) + value;
  };
  WriteText(cookies, cookie("0123456789abcdef"));
  WriteText(wrong, cookie("fedcba9876543210"));
  player.reset();
  server.reset();
  setenv("XAUTHORITY", cookies.c_str(), 1);
  server = std::make_unique<testing::XServer>("1280x1024x24",
                                              std::vector<std::string>{"-auth", cookies});
  player = std::make_unique<testing::Player>(server->name());
  for (const std::string& file : {wrong, std::string("/nowhere")}) {
    const Ending ending =
        RunToEnd({"-path", install->path()}, {.environment = {"XAUTHORITY=" + file}});
    EXPECT_EQ(ending.status, 1) << file;
    EXPECT_NE(ending.err.find("unable to open display '" + server->name() + "'\n"),
              std::string::npos)
        << ending.err;
  }
  DesktopTouches("acted");
  LaunchInstalled();
  EXPECT_TRUE(DesktopActs("acted"));
  unsetenv("XAUTHORITY");
}

}  // namespace
}  // namespace gromlit
