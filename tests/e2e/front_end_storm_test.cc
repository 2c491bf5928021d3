// A user who presses everything: random clicks, drags and keys over all windows of the built
// program. Nothing ends it but its own Exit, the pointer always comes back, no file is damaged.
#include "tests/e2e/front_end.h"

#include <X11/keysym.h>

#include <map>
#include <random>

#include "core/option_files.h"
#include "core/strings.h"
#include "core/symbol_files.h"
#include "tests/e2e/stored_files.h"

namespace gromlit {
namespace {

namespace fs = std::filesystem;
using testing::Box;
using testing::kDown;
using testing::kEll;
using testing::kLeft;
using testing::kRight;
using testing::kUp;
using testing::Point;
using testing::ProbeClient;
using testing::Sanitized;
using testing::Title;
using testing::WaitFor;

struct Desk {
  const char* manager;  // window manager; empty for none
  int32_t manners;      // of menus, fields and dialogs
};

void PrintTo(const Desk& desk, std::ostream* out) {
  *out << (*desk.manager != '\0' ? desk.manager : "no manager")
       << (desk.manners == kModernManners ? ", today's manners" : "");
}

class FrontEndStormTest : public testing::FrontEnd, public ::testing::WithParamInterface<Desk> {
 protected:
  void SetUp() override {
    FrontEnd::SetUp();
    const char* given = std::getenv("GROMLIT_TEST_SEED");
    seed_ = given != nullptr ? static_cast<unsigned>(std::strtoul(given, nullptr, 10))
                             : std::random_device()();
    std::printf("seed %u\n", seed_);
    RecordProperty("seed", std::to_string(seed_));
    random_.seed(seed_);
    const Desk desk = GetParam();
    if (*desk.manager != '\0') StartWindowManager(desk.manager, testing::kClickToRaise);
    if (desk.manners != kPlainManners) {
      GromlitUserOptions options{};
      DefaultUserOptions(&options);
      options.temp4 = desk.manners;
      ASSERT_EQ(SaveUserOptions(&options, defaultOptionFile), 1);
    }
    probe_ = std::make_unique<ProbeClient>(
        install->path(), std::vector<std::string>{"--class", "Probe", "probe", "--geometry",
                                                  "340x300+880+80", "--events", "0"});
    // Actions that do nothing outside of the program.
    for (int i = 0; i < 22; i++)
      WritePlugin("Class" + std::to_string(i), {{"right", kRight, {{kRun, "system:sync"}}}});
    for (const char* name : {"A", "B", "C", "D", "E", "F"}) {
      GromlitSymbol sym{};
      CopyText(sym.name, name);
      sym.npoints = 2;
      for (int k = 1; k <= 2; k++) sym.x[k] = sym.y[k] = static_cast<int16_t>(16 + 240 * (k - 1));
      ASSERT_NE(UnLoadSymbol(&sym, name, GromlitSymbolFileExt), nullptr);
    }
    WritePlugin("Probe.probe", {{"right", kRight, {{kRun, "system:sync"}}},
                                {"down and right", kEll, {{kText, "text"}}},
                                {"up", kUp, {{kRun, "system:showgromlit"}}}});
    WritePlugin("Default", {{"left", kLeft, {{kRun, "system:showgromlit"}}},
                            {"down", kDown, {{kHotKey, "a", 38, 0}}}});
    Open();
    ASSERT_FALSE(HasFatalFailure());
    // Out of the way of the main window's menus.
    PutAside("SymbolEditor", Title::kSymbol, testing::kSymbolNew, {600, 440});
    PutAside("Preferences", Title::kOptions, testing::kPreferences, {20, 480});
    PutAside("ActionEditor", Title::kAction, testing::kActionNew, {500, 300});
  }
  void Open() {
    LaunchInstalled();
    main_ = WaitShown("Application");
    ASSERT_NE(main_, Window{0});
    bar_ = WaitChild(main_, 0, 0);
  }
  void PutAside(const char* name, Title title, int row, Point place) {
    Choose(title, row);
    const Window window = WaitShown(name);
    XMoveWindow(player->display(), window, place.x, place.y);
    EXPECT_TRUE(WaitFor([&] { return OriginOf(window).y > 200; }));
  }
  void TearDown() override {
    if (HasFailure()) {
      if (const char* directory = std::getenv("GROMLIT_SCREENSHOTS"))
        testing::SaveScreen(player->display(), std::string(directory) + "/front-end-storm.png");
    }
    FrontEnd::TearDown();
  }

  int Pick(int n) { return static_cast<int>(random_() % static_cast<unsigned>(n)); }

  // The windows of the program that are on the screen, inner ones too.
  std::vector<Window> OwnWindows() {
    constexpr int kClientBits = 21;  // of a window's number that tell the windows of a client apart
    std::vector<Window> own;
    std::vector<Window> left = Children(player->root());
    while (!left.empty()) {
      const Window window = left.back();
      left.pop_back();
      if (window >> kClientBits == main_ >> kClientBits && Viewable(window)) own.push_back(window);
      const std::vector<Window> inner = Children(window);
      left.insert(left.end(), inner.begin(), inner.end());
    }
    return own;
  }
  Point Inside(Window window) {
    const Box box = BoxOf(window);
    const Point origin = OriginOf(window);
    // Windows come and go meanwhile.
    return {origin.x + Pick(std::max(box.width, 1)), origin.y + Pick(std::max(box.height, 1))};
  }
  Window AnyOf(const std::vector<Window>& windows) {
    return windows[static_cast<size_t>(Pick(static_cast<int>(windows.size())))];
  }
  // A point of one of the program's windows; sometimes any point of the screen.
  Point Somewhere(const std::vector<Window>& windows) {
    if (windows.empty() || Pick(12) == 0) return {Pick(1280), Pick(1024)};
    return Inside(AnyOf(windows));
  }
  void MoveTo(Point to) { player->MoveTo(to.x, to.y); }
  // Holds a button and goes where it can: into a menu that it has opened, else anywhere.
  void Drag(const std::vector<Window>& windows, int button) {
    player->Press(button);
    for (int i = Pick(4); i >= 0; i--) {
      const std::vector<Window> overlays = Overlays();
      MoveTo(overlays.empty() || Pick(4) == 0 ? Somewhere(windows) : Inside(AnyOf(overlays)));
    }
    player->Release(button);
  }

  void DoSomething(const std::vector<Window>& windows) {
    constexpr KeySym kKeys[] = {XK_a,      XK_b,    XK_c,     XK_1,    XK_slash,  XK_BackSpace,
                                XK_Delete, XK_Left, XK_Right, XK_Home, XK_Return, XK_Tab,
                                XK_Up,     XK_Down, XK_End,   XK_F10,  XK_Escape, XK_Menu};
    // Most ways begin in the menu bar.
    if (Pick(4) == 0) {
      MoveTo(Inside(bar_));
      Drag(windows, 1);
    }
    MoveTo(Somewhere(windows));
    switch (Pick(8)) {
      case 0:
      case 1:
      case 2:
        player->Click(1);
        break;
      case 3:
        player->Click(1);
        player->Click(1);
        break;
      case 4:
        player->Click(Pick(3) == 0 ? 1 + Pick(5) : 3);
        break;
      case 5:
        Drag(windows, Pick(4) == 0 ? 3 : 1);
        break;
      case 6:
        for (int i = Pick(6); i >= 0; i--)
          player->Type(kKeys[static_cast<size_t>(Pick(static_cast<int>(std::size(kKeys))))]);
        break;
      default:
        constexpr KeySym kChords[] = {XK_a, XK_k, XK_c, XK_v, XK_x, XK_Right};
        Chord(XK_Control_L,
              kChords[static_cast<size_t>(Pick(static_cast<int>(std::size(kChords))))]);
    }
  }

  void TakeNote() {
    for (const char* name : {"SymbolEditor", "ActionEditor", "Preferences"})
      if (Shown(name) != 0) seen_[name]++;
    if (Dialog() != 0) seen_["a dialog"]++;
  }

  // Whether the program still runs or was told to exit; starts it again then.
  ::testing::AssertionResult GoesOn() {
    if (gromlit->Running()) return ::testing::AssertionSuccess();
    const int status = gromlit->Wait();
    if (status != 0) return ::testing::AssertionFailure() << "status " << status << "\n" << Err();
    Open();
    exits_++;
    return ::testing::AssertionSuccess();
  }
  // A menu keeps the pointer until something is chosen or the user clicks beside it, and so does
  // the picker of an application.
  bool LetsThePointerGo() {
    for (int i = 0; i < 20; i++) {
      MoveTo({1279, 1023 - i});
      player->Click(1);
      if (WaitFor([this] { return player->CanGrabPointer(); }, std::chrono::milliseconds(500)))
        return true;
      if (!gromlit->Running()) return true;
    }
    return false;
  }

  unsigned seed_ = 0;
  std::mt19937 random_;
  Window main_ = 0;
  Window bar_ = 0;  // its menu bar
  int exits_ = 0;
  std::map<std::string, int> seen_;  // how often a window was there when it was looked for
  std::unique_ptr<ProbeClient> probe_;
};

TEST_P(FrontEndStormTest, RandomClicksAndKeysEndNothingAndDamageNoFile) {
  const char* wanted = std::getenv("GROMLIT_ROUNDS");
  const int rounds = wanted != nullptr ? std::atoi(wanted) : Sanitized() ? 10 : 20;
  for (int round = 0; round < rounds; round++) {
    SCOPED_TRACE("round " + std::to_string(round) + ", seed " + std::to_string(seed_));
    std::vector<Window> windows;
    for (int i = 0; i < 25; i++) {
      if (i % 5 == 0) windows = OwnWindows();
      if (i % 10 == 4) TakeNote();
      DoSomething(windows);
    }
    ASSERT_TRUE(LetsThePointerGo());
    ASSERT_TRUE(GoesOn());
    // A hidden main window is brought back by some stroke of the day; the storm does not wait.
    if (!Viewable(main_)) XMapWindow(player->display(), main_);
  }
  // What the program has yet to work off may open another menu, which wants another click.
  EXPECT_TRUE(WaitFor([this] {
    return LetsThePointerGo() &&
           !WaitFor([this] { return !player->CanGrabPointer(); }, std::chrono::seconds(1));
  })) << "the pointer does not stay free";
  // Whatever was stored can be read, whole.
  for (const char* part : {"symbols", "plugins", "options"})
    for (const std::string& name : NamesIn(*install / part))
      EXPECT_FALSE(testing::ShowFile(*install / part + "/" + name).is_null()) << name;
  int total = 0;
  for (const char* name : {"SymbolEditor", "ActionEditor", "Preferences", "a dialog"}) {
    std::printf("%s seen %d times\n", name, seen_[name]);
    total += seen_[name];
  }
  EXPECT_GE(total, 10) << "the storm did not get far";
  std::printf("%zu symbols, %zu plug-ins, %d exits\n", NamesIn(*install / "symbols").size(),
              NamesIn(*install / "plugins").size(), exits_);
}

constexpr Desk kDesks[] = {{"", kPlainManners},
                           {"openbox", kPlainManners},
                           {"", kModernManners},
                           {"openbox", kModernManners}};
INSTANTIATE_TEST_SUITE_P(Desks, FrontEndStormTest, ::testing::ValuesIn(kDesks));

}  // namespace
}  // namespace gromlit
