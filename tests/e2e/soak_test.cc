// Hours of everything at once, in rounds: hands that press anything, strokes, screens, keyboards,
// pointers, window managers and trays that change, a program that starts again with other options.
// After each round the pointer and the keyboard are free, a stroke acts and a click arrives, files
// are whole, and nothing has piled up.
//
// GROMLIT_SOAK_MINUTES says how long; the suite has time for a few rounds only. GROMLIT_TEST_SEED
// and GROMLIT_SOAK_ROUND (the first round) repeat one. With GROMLIT_SCREENSHOTS, a picture and the
// installation directory of a failure are kept there.
#include <X11/XKBlib.h>
#include <X11/Xutil.h>
#include <X11/keysym.h>
#include <signal.h>

#include <array>
#include <filesystem>
#include <sstream>

#include "core/option_files.h"
#include "core/plugin_files.h"
#include "core/strings.h"
#include "core/symbol_files.h"
#include "tests/e2e/random_user.h"
#include "tests/e2e/usage.h"

namespace gromlit {
namespace {

namespace fs = std::filesystem;
using testing::Box;
using testing::kRight;
using testing::Player;
using testing::Point;
using testing::ProbeClient;
using testing::Process;
using testing::ReadText;
using testing::Usage;
using testing::WaitFor;

constexpr int kShortRounds = 4;  // in the suite
constexpr std::chrono::seconds kPatience{60};

int Given(const char* name, int otherwise) {
  const char* given = std::getenv(name);
  return given != nullptr ? std::atoi(given) : otherwise;
}

class SoakTest : public testing::RandomUser {
 protected:
  void SetUp() override {
    RandomUser::SetUp();
    AddSmallMode();
    StartWindowManager("openbox", testing::kClickToRaise);
    WriteLibrary();
    // Off the screen's edge, so that a small screen has it, too; above everything when it is shown.
    proof_ = std::make_unique<ProbeClient>(
        install->path(),
        std::vector<std::string>{"--class", "Proof", "proof", "--geometry", "260x140+500+420",
                                 "--override-redirect", "--events", "0xc"});
    XUnmapWindow(player->display(), proof_->window());
    StartProbe();
    Begin();
  }
  void TearDown() override {
    if (HasFailure()) Keep();
    tray_.reset();
    RandomUser::TearDown();
  }
  // What somebody needs who looks for the cause.
  void Keep() {
    const char* directory = std::getenv("GROMLIT_SCREENSHOTS");
    if (directory == nullptr) return;
    const std::string to = std::string(directory) + "/seed-" + std::to_string(seed_);
    testing::SaveScreen(player->display(), to + ".png");
    std::error_code ignored;
    fs::copy(install->path(), to, fs::copy_options::recursive | fs::copy_options::update_existing,
             ignored);
    fs::remove(to + "/windows");
    Process({"xwininfo", "-root", "-tree"}, to + "/windows").Wait();
    std::string answer;
    if (gromlit->Running()) Remote("status", &answer);
    std::printf("kept: %s.png, %s/; it says that it is %s\n", to.c_str(), to.c_str(),
                answer.c_str());
    for (const std::string& deed : deeds_) std::printf("%s\n", deed.c_str());
    if (!gromlit->Running()) return;
    std::printf("%s\n", WhereItStands().c_str());
    if (player->CanGrabPointer()) return;
    manager.reset();
    std::printf(
        "without the window manager the pointer %s\n",
        testing::WaitFor([&] { return player->CanGrabPointer(); }) ? "is free" : "stays grabbed");
  }

  // --- The desktop ---

  static int Runs(const std::vector<std::string>& argv) {
    return Process(argv, "/dev/null").Wait();
  }
  void AddSmallMode() {
    ASSERT_EQ(Runs({"xrandr", "--newmode", "small", "40", "800", "840", "900", "1000", "600", "610",
                    "620", "650"}),
              0);
    ASSERT_EQ(Runs({"xrandr", "--addmode", "screen", "small"}), 0);
  }
  void StartProbe() {
    probe_ = nullptr;
    probe_ = std::make_unique<ProbeClient>(
        install->path(), std::vector<std::string>{"--class", "Probe", "probe", "--geometry",
                                                  "340x300+880+80", "--events", "0"});
  }
  void SetScreen(bool small) {
    if ((Screen().width <= 800) == small) return;
    EXPECT_EQ(Runs({"xrandr", "--output", "screen", "--mode", small ? "small" : "1280x1024"}), 0);
  }
  void ChangeScreen() { SetScreen(Screen().width > 800); }
  void ChangeKeyboard() {
    constexpr const char* kLayouts[] = {"us", "de", "fr", "ru,us", "us(dvorak)"};
    Runs({"setxkbmap", kLayouts[Pick(5)]});
  }
  void SetPointer(bool turned) {
    constexpr std::array<unsigned char, 9> kPlain = {1, 2, 3, 4, 5, 6, 7, 8, 9};
    constexpr std::array<unsigned char, 9> kTurned = {3, 2, 1, 5, 4, 6, 7, 8, 9};
    // Not while a button is down.
    const int count = XGetPointerMapping(player->display(), nullptr, 0);
    XSetPointerMapping(player->display(), (turned ? kTurned : kPlain).data(), std::min(count, 9));
    XSync(player->display(), False);
  }
  void ChangeManager() {
    manager->Kill(Pick(2) == 0 ? SIGTERM : SIGKILL);
    if (Pick(2) == 0) manager->Wait();
    RestartWindowManager();
  }
  // Whether the window manager, which may just have been started, puts windows into frames: then it
  // has done so with those that were there before.
  bool ManagerWorks() {
    Display* display = player->display();
    const Window window = XCreateSimpleWindow(display, player->root(), 0, 0, 8, 8, 0, 0, 0);
    XMapWindow(display, window);
    const bool works = WaitFor(
        [&] {
          // It ends at once where the server has not heard yet that the former one is gone.
          if (!manager->Running()) RestartWindowManager();
          return testing::ParentOf(display, window) != player->root() && Viewable(window);
        },
        std::chrono::seconds(20));
    XDestroyWindow(display, window);
    XSync(display, False);
    return works;
  }
  // One that stands still while nothing is held, but by a menu that may be open, is at fault
  // itself, and is started again.
  bool ManagerIsBack() {
    for (int i = 0; i < 3; i++) {
      if (ManagerWorks()) return true;
      const std::string file = *install / "manager.where";
      Process({"gdb", "-q", "-batch", "-p", std::to_string(manager->pid()), "-ex", "bt"}, file)
          .Wait(kPatience);
      std::printf("the window manager stands still:\n%s", ReadText(file).c_str());
      if (!player->CanGrabPointer() && !LetsThePointerGo()) return false;
      lost_managers_++;
      manager->Kill(SIGKILL);
      manager->Wait();
      RestartWindowManager();
    }
    return false;
  }
  void ChangeTray() {
    if (tray_ != nullptr) {
      tray_->Kill(Pick(2) == 0 ? SIGTERM : SIGKILL);
      tray_ = nullptr;
      return;
    }
    tray_ = std::make_unique<Process>(
        std::vector<std::string>{"trayer", "--edge", "bottom", "--align", "right", "--widthtype",
                                 "request", "--heighttype", "pixel", "--height", "32"},
        "/dev/null");
  }
  void Tell() {
    constexpr const char* kWords[] = {"show", "hide", "pause", "resume", "toggle", "status"};
    const char* word = Pick(60) == 0 ? "quit" : kWords[Pick(6)];
    told_.push_back(std::make_unique<Process>(
        std::vector<std::string>{testing::Built("gromlit"), "-remote", word}, "/dev/null"));
  }
  void ToggleLock() {
    constexpr KeySym kLocks[] = {XK_Caps_Lock, XK_Num_Lock, XK_Scroll_Lock};
    player->Type(kLocks[Pick(3)]);
  }
  // A stroke, or what begins as one, over whatever lies there.
  void Stroke() {
    const Box screen = Screen();
    const int button = Pick(3) == 0 ? 1 + Pick(5) : button_;
    Point at =
        Pick(2) == 0 ? Inside(probe_->window()) : Point{Pick(screen.width), Pick(screen.height)};
    MoveTo(at);
    player->Press(button);
    for (int corner = Pick(4); corner >= 0; corner--) {
      const int dx = Pick(3) - 1;
      const int dy = Pick(3) - 1;
      const int step = 1 + Pick(30);
      for (int k = Pick(12); k >= 0; k--) {
        at = {at.x + dx * step, at.y + dy * step};
        MoveTo(at);
      }
    }
    if (Pick(10) == 0) player->Click(1 + Pick(3));
    player->Release(button);
  }
  // One of the small windows that buttons are, so that dialogs and editors come to their end.
  void PressAButton(const std::vector<Window>& windows) {
    std::vector<Window> buttons;
    for (const Window window : windows) {
      const Box box = BoxOf(window);
      if (box.width >= 20 && box.width <= 200 && box.height <= 60) buttons.push_back(window);
    }
    if (buttons.empty()) return;
    MoveTo(Inside(AnyOf(buttons)));
    player->Click(1);
  }

  // What a failure needs, to be told from where on something stayed down.
  void Note(const std::string& what) {
    const Player::Pointer pointer = player->Where();
    std::ostringstream line;
    line << what << ": pointer at " << pointer.x << "," << pointer.y << ", state " << pointer.state
         << (gromlit->Running() ? "" : ", it does not run");
    deeds_.push_back(line.str());
  }
  void Do(const std::vector<Window>& windows) {
    const int deed = Pick(60);
    Act(deed, windows);
    Note("deed " + std::to_string(deed));
  }
  void Act(int deed, const std::vector<Window>& windows) {
    switch (deed) {
      case 0:
        return ChangeScreen();
      case 1:
        return ChangeKeyboard();
      case 2:
        return SetPointer(Pick(2) == 0);
      case 3:
        if (Pick(3) == 0) ChangeManager();
        return;
      case 4:
        return ChangeTray();
      case 5:
      case 6:
        return Tell();
      case 7:
        return ToggleLock();
      case 8:
        gromlit->Kill(SIGSTOP);
        Stroke();
        Stroke();
        gromlit->Kill(SIGCONT);
        return;
      case 9:
        if (Pick(4) == 0) StartProbe();
        return;
      case 10:
      case 11:
      case 12:
      case 13:
      case 14:
        return Stroke();
      case 15:
      case 16:
      case 17:
      case 18:
      case 19:
      case 20:
      case 21:
        return PressAButton(windows);
      default:
        return DoSomething(windows);
    }
  }

  // --- The program ---

  std::string ProofFile() const { return *install / "proof"; }
  // A program that adds a line to that file.
  std::string ProofCommand() const {
    const std::string script = *install / "prove";
    if (!testing::Exists(script)) {
      testing::WriteText(script, "#!/bin/sh\necho stroke >>" + ProofFile() + "\n");
      fs::permissions(script, fs::perms::owner_all);
    }
    return script;
  }
  // Starts the program with other options than before, and with what the proof needs.
  void Begin() {
    GromlitUserOptions options{};
    DefaultUserOptions(&options);
    options.splash = Pick(8) == 0 ? 1 : 0;
    options.button = Pick(3) == 0 ? 1 + Pick(3) : 3;
    options.showactions = Pick(2);
    options.temp1 = Pick(2);
    options.temp2 = kDrawWithLocks | (Pick(32) & ~kActivateFirst);
    options.temp3 = Pick(2);
    options.temp4 = Pick(2);
    CopyText(options.urlcmd, "recorder url %s");
    CopyText(options.sndcmd, "recorder sound %s");
    ASSERT_EQ(SaveUserOptions(&options, defaultOptionFile), 1);
    WritePlugin("Proof.proof", {{"right", kRight, {{kRun, ProofCommand()}}}});
    proof_plugin_ = ReadText(PluginFile("Proof.proof"));
    scale_ = Pick(5) == 0 ? 2 : 1;
    Open({"-scale", std::to_string(scale_)});
    if (HasFatalFailure()) return;
    std::printf(
        "start %d: button %d, delivery %d, behaviour %d, matching %d, manners %d, scale %d\n",
        starts_++, options.button, options.temp1, options.temp2, options.temp3, options.temp4,
        scale_);
    life_ = 0;
  }
  void End() {
    gromlit->Kill(SIGTERM);
    const int status = gromlit->Wait(kPatience);
    ASSERT_TRUE(status == 0 || status == 128 + SIGTERM) << status << "\n" << Err();
  }
  // The button that draws, as the user of the program may have chosen it since the start.
  int DrawButton() {
    const auto options = Options();
    return options == nullptr ? button_ : EffectiveButton(options.get());
  }
  std::unique_ptr<GromlitUserOptions> Options() {
    std::unique_ptr<GromlitUserOptions> options(LoadUserOptions(defaultOptionFile));
    EXPECT_NE(options, nullptr) << "the options file cannot be read";
    return options;
  }
  // Whether a press that does not move is a click and the proof's stroke is one: with 0, which the
  // user may choose, every press is a stroke.
  bool TellsStrokesFromClicks() {
    const auto options = Options();
    return options != nullptr && options->sensitivity > 0 && options->sensitivity < 200;
  }

  // --- What is looked at after a round ---

  // Has the program answer to a word; false when it does not.
  bool Remote(const char* word, std::string* answer = nullptr) {
    const std::string file = *install / "answer";
    fs::remove(file);
    Process call({testing::Built("gromlit"), "-remote", word}, file);
    const bool answers = call.Wait(kPatience) == 0;
    if (answer != nullptr) *answer = ReadText(file);
    return answers;
  }

  void LetGo() {
    gromlit->Kill(SIGCONT);
    SetPointer(false);
    // What is to be closed may lie where no screen is any more.
    SetScreen(false);
    ASSERT_TRUE(ManagerIsBack());
    Note("after the round");
    ASSERT_TRUE(LetsThePointerGo()) << "the pointer does not come back\n" << WhereItStands();
    // What the program has yet to work off may open another menu, which wants another click; an
    // answer comes after all of that.
    const auto stays_free = [this] {
      if (!gromlit->Running()) return true;
      if (Remote("status") && player->CanGrabPointer()) return true;
      LetsThePointerGo();
      return false;
    };
    ASSERT_TRUE(WaitFor(stays_free, kPatience)) << "the pointer does not stay free\n"
                                                << WhereItStands();
    for (const auto& told : told_) {
      told->Wait(kPatience);
      ASSERT_FALSE(told->Running()) << "-remote gets no answer\n" << WhereItStands();
    }
    told_.clear();
    Note("the pointer is free");
    BeginAfterExit();
  }
  // A question may have been whether to exit.
  void BeginAfterExit() {
    if (gromlit->Running()) return;
    const int status = gromlit->Wait();
    ASSERT_EQ(status, 0) << Err();
    exits_++;
    Note("it has left");
    Begin();
    Note("it runs again");
  }
  void Answers() {
    ASSERT_TRUE(Remote("resume")) << WhereItStands();
    std::string answer;
    ASSERT_TRUE(Remote("status", &answer)) << WhereItStands();
    ASSERT_EQ(answer, "running\n");
  }
  // A dialog with one or two buttons, whatever the manners and the scale; 0 when none is open.
  Window OpenDialog(Point* button) {
    for (const Window window : OwnWindows()) {
      const Box box = BoxOf(window);
      const Window inner = ChildAt(window, box.width - 72 * scale_, box.height - 32 * scale_);
      if (inner == 0 || window == main_) continue;
      const Box size = BoxOf(inner);
      if (size.width != 64 * scale_ || size.height != 24 * scale_) continue;
      XClassHint hint{};
      if (XGetClassHint(player->display(), window, &hint) == 0) continue;
      const std::string name = hint.res_name;
      XFree(hint.res_name);
      XFree(hint.res_class);
      if (name != "Dialog") continue;
      const Point origin = OriginOf(window);
      // The left one of two in half of the cases: some questions are whether to go on.
      const int left = Pick(2) == 0 ? 72 : 0;
      *button = {origin.x + box.width - (40 + left) * scale_, origin.y + box.height - 20 * scale_};
      return window;
    }
    return 0;
  }
  // While an action is edited no stroke acts, and a question wants its answer first.
  bool NothingIsOpen() {
    Point button{};
    if (const Window dialog = OpenDialog(&button)) {
      XRaiseWindow(player->display(), dialog);
      MoveTo(button);
      player->Click(1);
      return false;
    }
    bool open = false;
    for (const char* name : {"ActionEditor", "SymbolEditor", "Preferences", "MorePreferences"}) {
      const Window window = Shown(name);
      if (window == 0) continue;
      open = true;
      if (std::string(name) != "ActionEditor") {
        Close(window);
        continue;
      }
      // Closed by the window manager it would keep strokes off until it is shown again.
      if (OriginOf(window).x + BoxOf(window).width > Screen().width ||
          OriginOf(window).y + BoxOf(window).height > Screen().height)
        XMoveWindow(player->display(), window, 0, 0);
      XRaiseWindow(player->display(), window);
      const Box box = BoxOf(window);
      const Point origin = OriginOf(window);
      MoveTo({origin.x + box.width - 40 * scale_, origin.y + box.height - 20 * scale_});
      player->Click(1);
      return false;
    }
    return !open;
  }
  void CloseAll() {
    for (int i = 0; i < 60; i++) {
      ASSERT_NO_FATAL_FAILURE(BeginAfterExit());
      // An answer may have been to pick an application, which a click beside all of them ends.
      if (!player->CanGrabPointer()) LetsThePointerGo();
      // One that answers no more is about to end.
      const bool answers = Remote("status");
      Note("closing");
      if (!answers) WaitFor([this] { return !gromlit->Running(); }, kPatience);
      if (answers && NothingIsOpen() && Remote("status") && NothingIsOpen()) return;
      Point button{};
      WaitFor([&] { return OpenDialog(&button) != 0; }, std::chrono::milliseconds(300));
    }
    FAIL() << "a window or a question stays open\n" << WhereItStands();
  }
  void NothingIsHeld() {
    ASSERT_TRUE(WaitFor([this] {
      std::array<char, 32> keys;
      XQueryKeymap(player->display(), keys.data());
      return std::all_of(keys.begin(), keys.end(), [](char bits) { return bits == 0; });
    })) << "a key stays down";
    ASSERT_TRUE(WaitFor([this] {
      constexpr unsigned kHeld = ShiftMask | ControlMask | Mod1Mask | Mod4Mask | Button1Mask |
                                 Button2Mask | Button3Mask | Button4Mask | Button5Mask;
      return (player->Where().state & kHeld) == 0;
    })) << "a modifier or button stays down: "
        << player->Where().state;
    ASSERT_TRUE(WaitFor([this] {
      const int status = XGrabKeyboard(player->display(), player->root(), False, GrabModeAsync,
                                       GrabModeAsync, CurrentTime);
      if (status == GrabSuccess) XUngrabKeyboard(player->display(), CurrentTime);
      XSync(player->display(), False);
      return status == GrabSuccess;
    })) << "the keyboard stays grabbed";
    XkbLockModifiers(player->display(), XkbUseCoreKbd, 0xff, 0);
    XkbLockGroup(player->display(), XkbUseCoreKbd, 0);
    XSync(player->display(), False);
  }
  // Frames of some window managers look like overlays, too.
  bool NoTrail() {
    const auto overlays = MappedOverlays();
    return std::none_of(overlays.begin(), overlays.end(),
                        [this](Window window) { return window >> 21 == main_ >> 21; });
  }
  // Whether an action counts as edited. Nothing of that can be seen when the user has closed the
  // editor by its frame: strokes are kept off until it is opened again and left.
  bool IsEditing() {
    const std::string file = *install / "editing";
    fs::remove(file);
    Process({"gdb", "-q", "-batch", "-p", std::to_string(gromlit->pid()), "-ex",
             "print (int)'gromlit::editingPlugin'"},
            file)
        .Wait(kPatience);
    return ReadText(file).find("$1 = 1") != std::string::npos;
  }
  // A stroke over the proof's application, from this point on; false when the application gets the
  // press, as it does while an action is edited.
  bool ProofActs(Point from, size_t presses) {
    player->Press(button_);
    Trace({from, {from.x + 200, from.y}}, 4 + Pick(30));
    player->Release(button_);
    const auto acted = [&] { return !ReadText(ProofFile()).empty(); };
    const auto passed = [&] { return proof_->Lines("ButtonPress").size() > presses; };
    EXPECT_TRUE(WaitFor([&] { return acted() || passed(); }, kPatience))
        << "a stroke with button " << button_ << " does not act\n"
        << WhereItStands();
    return !passed();
  }
  void BeginAnew() {
    lost_proofs_++;
    ASSERT_NO_FATAL_FAILURE(End());
    ASSERT_NO_FATAL_FAILURE(Begin());
  }
  // A stroke acts once, and a click arrives once where it was made.
  void Works() {
    if (ReadText(PluginFile("Proof.proof")) != proof_plugin_ || !TellsStrokesFromClicks()) {
      // The user has changed or deleted that, which is up to him.
      ASSERT_NO_FATAL_FAILURE(BeginAnew());
    }
    SetScreen(Pick(4) == 0);
    button_ = DrawButton();
    XMapRaised(player->display(), proof_->window());
    const size_t presses = proof_->Lines("ButtonPress").size();
    fs::remove(ProofFile());
    const Point from{520, 440 + Pick(100)};
    MoveTo(from);
    ASSERT_TRUE(WaitFor(
        [&] {
          XRaiseWindow(player->display(), proof_->window());
          return UnderPointer() == proof_->window() && player->Where().x == from.x;
        },
        kPatience))
        << "something lies over the application, or the pointer does not move";
    if (!ProofActs(from, presses)) {
      ASSERT_TRUE(IsEditing()) << "a stroke with button " << button_ << " reaches the application\n"
                               << WhereItStands();
      XUnmapWindow(player->display(), proof_->window());
      ASSERT_NO_FATAL_FAILURE(BeginAnew());
      return Works();
    }
    ASSERT_TRUE(WaitFor([this] { return NoTrail(); })) << "a trail stays";
    MoveTo({from.x + 10, from.y});
    player->Click(button_);
    ASSERT_TRUE(WaitFor([&] { return proof_->Lines("ButtonRelease").size() > presses; }, kPatience))
        << "a click does not arrive\n"
        << WhereItStands();
    ASSERT_EQ(ReadText(ProofFile()), "stroke\n");
    const auto lines = proof_->Lines("ButtonPress");
    ASSERT_EQ(lines.size(), presses + 1) << "the click arrives more than once";
    ASSERT_NE(lines.back().find("x_root=" + std::to_string(from.x + 10) +
                                " y_root=" + std::to_string(from.y)),
              std::string::npos)
        << lines.back();
    XUnmapWindow(player->display(), proof_->window());
  }
  // Only what the user may have brought about by himself.
  void FilesAreRight() {
    const std::string file = *install / "check";
    fs::remove(file);
    Process check({testing::Built("gromlit-tool"), "check", install->path()}, file);
    const int status = check.Wait(kPatience);
    ASSERT_TRUE(status == 0 || status == 1) << ReadText(file);
    std::istringstream lines(ReadText(file));
    for (std::string line; std::getline(lines, line);) {
      bool known = false;
      for (const char* usual : {"can never run", "hands off: ", "has an empty signature"})
        known = known || line.find(usual) != std::string::npos;
      EXPECT_TRUE(known) << line;
    }
    for (const char* part : {"symbols", "plugins", "options"})
      for (const std::string& name : NamesIn(*install / part))
        EXPECT_TRUE(name.ends_with(GromlitSymbolFileExt) || name.ends_with(GromlitPluginFileExt) ||
                    name == defaultOptionFile)
            << "a stray file: " << part << "/" << name;
  }
  // The first look is at a program that has built all its windows.
  void NothingPilesUp() {
    Usage now;
    ASSERT_TRUE(WaitFor([&] {
      now = testing::UsageOf(gromlit->pid(), player->display(), main_);
      return now.children == 0;
    })) << Describe(now);
    std::printf("  %s\n", Describe(now).c_str());
    EXPECT_EQ(now.threads, 1);
    if (++life_ == kSettled) settled_ = now;
    if (life_ <= kSettled) return;
    EXPECT_LE(now.descriptors, settled_.descriptors + 1) << Describe(settled_);
    // The user makes plug-ins, whose menus take windows, and the desktop more or fewer frames and a
    // tray, which are watched.
    EXPECT_LE(now.Resources(), settled_.Resources() + kMoreResources) << Describe(settled_);
    if (settled_.private_kb > 0) {
      EXPECT_LE(now.private_kb, settled_.private_kb + kMoreMemory) << Describe(settled_);
    }
  }
  void Round(int round) {
    random_.seed(seed_ + 7919U * static_cast<unsigned>(round));
    deeds_.clear();
    if (Pick(life_ > 2 * kSettled ? 15 : 60) == 0) {
      ASSERT_NO_FATAL_FAILURE(End());
      ASSERT_NO_FATAL_FAILURE(Begin());
    }
    std::vector<Window> windows;
    for (int i = 0; i < 40 && gromlit->Running(); i++) {
      if (i % 5 == 0) windows = OwnWindows();
      Do(windows);
    }
    ASSERT_NO_FATAL_FAILURE(LetGo());
    ASSERT_NO_FATAL_FAILURE(CloseAll());
    ASSERT_NO_FATAL_FAILURE(Answers());
    ASSERT_NO_FATAL_FAILURE(NothingIsHeld());
    ASSERT_NO_FATAL_FAILURE(Works());
    ASSERT_NO_FATAL_FAILURE(FilesAreRight());
    ASSERT_NO_FATAL_FAILURE(NothingPilesUp());
    const std::string errors = Err();
    ASSERT_EQ(errors.find("Sanitizer"), std::string::npos) << errors;
    ASSERT_EQ(errors.find("runtime error:"), std::string::npos) << errors;
    if (!Viewable(main_)) XMapWindow(player->display(), main_);
  }

  static constexpr int kSettled = 10;  // rounds
  static constexpr int kMoreResources = 60;
  static constexpr int kMoreMemory = 1024;  // kilobytes
  int button_ = 3;
  int scale_ = 1;
  int starts_ = 0;
  int exits_ = 0;          // that the hands asked for
  int lost_proofs_ = 0;    // the hands had changed what the proof needs
  int lost_managers_ = 0;  // window managers that stood still
  int life_ = 0;           // rounds since the start
  Usage settled_;
  std::string proof_plugin_;
  std::unique_ptr<ProbeClient> probe_;
  std::unique_ptr<ProbeClient> proof_;
  std::unique_ptr<Process> tray_;
  std::vector<std::unique_ptr<Process>> told_;
  std::vector<std::string> deeds_;  // of this round
};

TEST_F(SoakTest, NothingIsLostDamagedHeldOrPiledUp) {
  const int minutes = Given("GROMLIT_SOAK_MINUTES", 0);
  const auto end = std::chrono::steady_clock::now() + std::chrono::minutes(minutes);
  const auto goes_on = [&](int done) {
    return minutes > 0 ? std::chrono::steady_clock::now() < end : done < kShortRounds;
  };
  const int first = Given("GROMLIT_SOAK_ROUND", 0);
  int done = 0;
  for (; goes_on(done); done++) {
    SCOPED_TRACE("round " + std::to_string(first + done) + ", seed " + std::to_string(seed_));
    std::printf("round %d\n", first + done);
    std::fflush(stdout);
    Round(first + done);
    if (HasFailure()) return;
  }
  std::printf(
      "%d rounds, %d starts, %d exits by hand, %d times the proof was changed by hand, %d window "
      "managers that stood still\n",
      done, starts_, exits_, lost_proofs_, lost_managers_);
}

}  // namespace
}  // namespace gromlit
