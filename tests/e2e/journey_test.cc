// The whole journey of a user, by mouse and keyboard: from an empty installation directory to
// strokes that act, and back to an empty one.
#include "tests/e2e/front_end.h"

#include <X11/keysym.h>

#include "recognition/symbol_icon.h"
#include "tests/e2e/stored_files.h"
#include "tests/e2e/wandering_hand.h"

namespace gromlit {
namespace {

using Json = nlohmann::json;
namespace fs = std::filesystem;
using testing::Exists;
using testing::kEll;
using testing::kRight;
using testing::Point;
using testing::ProbeClient;
using testing::ReadText;
using testing::ShowFile;
using testing::Title;
using testing::WaitFor;

constexpr const char* kClass = "Probe.probe";

// Strokes over the probe, which match the shapes L and "to the right".
const std::vector<Point> kDrawEll = {{940, 150}, {940, 300}, {1090, 300}};
const std::vector<Point> kDrawRight = {{920, 200}, {1120, 200}};

// What lies on the way from window to window: another application, and the desktop.
constexpr Point kInOther = {1100, 800};
constexpr Point kOnDesktop = {640, 1000};

// The types of the six commands after their order was changed.
constexpr const char* kNewOrder = "Menu HotKey Sound Run Text Internet";

// Points as gromlit-tool shows them.
Json Points(const std::vector<Point>& points) {
  Json list = Json::array();
  for (const Point& point : points) list.push_back({point.x, point.y});
  return list;
}

// The icon that is drawn from a shape, as gromlit-tool shows it.
Json IconOf(const std::vector<Point>& corners) {
  GromlitSymbol sym{};
  for (const Point& corner : corners) {
    sym.npoints++;
    sym.x[sym.npoints] = static_cast<int16_t>(corner.x);
    sym.y[sym.npoints] = static_cast<int16_t>(corner.y);
  }
  VectorToBitmap(&sym);
  Json rows = Json::array();
  for (int y = 0; y < kIconSize; y++) {
    std::string row;
    for (int x = 0; x < kIconSize; x++) row += iconGet(&sym, x, y) != 0 ? '#' : '.';
    rows.push_back(row);
  }
  return rows;
}

char& At(Json& icon, int x, int y) {
  return icon[static_cast<size_t>(y)].get_ref<std::string&>()[static_cast<size_t>(x)];
}

class JourneyTest : public testing::FrontEnd {
 public:
  void SetUp() override {
    FrontEnd::SetUp();
    fs::remove(OptionsFile());
    StartWindowManager("openbox");
    probe_ = std::make_unique<ProbeClient>(
        install->path(), std::vector<std::string>{"--class", "Probe", "probe", "--geometry",
                                                  "340x300+880+80", "--title", "Probe"});
    other_ = std::make_unique<ProbeClient>(
        install->path(), std::vector<std::string>{"--class", "Other", "other", "--geometry",
                                                  "260x160+980+720", "--title", "Other"});
    hand_ = std::make_unique<testing::WanderingHand>(player.get(), other_->window(), kInOther,
                                                     kOnDesktop);
    move_hand = [this](Point to) { hand_->MoveTo(to); };
    Open();
  }
  void TearDown() override {
    if (::testing::Test::HasFailure()) Picture("failed");
    FrontEnd::TearDown();
  }
  void Picture(const std::string& name) {
    if (const char* directory = std::getenv("GROMLIT_SCREENSHOTS"))
      testing::SaveScreen(player->display(), std::string(directory) + "/journey-" + name + ".png");
  }
  std::string Recorded() const { return ReadText(*install / "recorded"); }
  bool Records(const std::string& text) {
    return WaitFor([&] { return Recorded().find(text) != std::string::npos; });
  }
  void Open() {
    LaunchInstalled({.environment = {"RECORDER_FILE=" + *install / "recorded"}});
    ASSERT_NE(WaitShown("Application"), Window{0});
    // The splash lies over the windows for a while. It has no windows inside, unlike a frame.
    ASSERT_TRUE(WaitFor(
        [this] {
          const auto overlays = Overlays();
          return std::none_of(overlays.begin(), overlays.end(), [this](Window window) {
            return BoxOf(window).width > 50 && Children(window).empty();
          });
        },
        std::chrono::seconds(30)));
  }
  void LeaveByTheMenu() {
    Choose(Title::kPlugIn, testing::kExit);
    const Window dialog = WaitDialog();
    const testing::Box box = BoxOf(dialog);
    ClickChild(dialog, box.width - 144, box.height - 32);
    EXPECT_EQ(gromlit->Wait(), 0);
    EXPECT_TRUE(WaitFor([this] { return !GromlitIsReady(); }));
  }

  // --- What is stored ---

  Json Options() { return ShowFile(OptionsFile()); }
  Json Plugin() { return ShowFile(PluginFile(kClass)); }
  size_t Actions() { return Plugin()["actions"].size(); }
  // The types of an action's commands, in their order.
  static std::string Types(const Json& action) {
    std::string types;
    for (const Json& command : action["commands"])
      types += (types.empty() ? "" : " ") + command["type"].get<std::string>();
    return types;
  }
  // Every file below the three directories, with its bytes.
  std::string Everything() {
    std::string all;
    for (const char* part : {"symbols", "plugins", "options"})
      for (const std::string& name : NamesIn(*install / part))
        all += std::string(part) + "/" + name + ":" + ReadText(*install / part + "/" + name);
    return all;
  }

  // --- The steps ---

  void SetSoundAndBrowserCommands();
  void MakeTwoSymbols();
  void MakeThePlugIn();
  void MakeAnActionOfAllTypes();
  void DrawAndSeeAllSixAct();
  void ChangeOrderAndSymbol();
  void CopyAndDeleteAnAction();
  void ChangePreferences();
  void FindEverythingAfterARestart();
  void DeleteEverything();

  // Gives the keyboard to the application, as a click into it does.
  void FocusProbe() {
    ClickIn(probe_->window(), 20, 250);
    EXPECT_TRUE(WaitFor([this] {
      Window focus = 0;
      int revert;
      XGetInputFocus(player->display(), &focus, &revert);
      return focus == probe_->window();
    }));
  }
  // Shows the application's actions in the main window, which shows those of what the pointer has
  // come across since.
  void ShowThePlugIn() {
    Over(PluginButton(), 12, 12);
    EXPECT_TRUE(WaitFor([this] { return !Reads(PluginButton(), kClass); }))
        << "the pointer has come across nothing";
    // One row is the application's, the other one that of the default.
    for (int row = 0; row < 2 && !Reads(PluginButton(), kClass); row++) {
      ChoosePulldown(PluginButton(), row);
      WaitFor([this] { return Reads(PluginButton(), kClass); }, std::chrono::seconds(1));
    }
    EXPECT_TRUE(Reads(PluginButton(), kClass));
  }
  // Selects the application's first action.
  void SelectAction() {
    ShowThePlugIn();
    EXPECT_TRUE(WaitFor([this] { return HasIcon(0); })) << "the main window shows no action";
    SelectCell(0);
  }
  Window ActionEditor() { return WaitShown("ActionEditor"); }
  void Ok(Window editor) { ClickChild(editor, 560 - 160, BoxOf(editor).height - 40); }

  std::unique_ptr<ProbeClient> probe_;
  std::unique_ptr<ProbeClient> other_;
  std::unique_ptr<testing::WanderingHand> hand_;
};

void JourneyTest::SetSoundAndBrowserCommands() {
  Choose(Title::kOptions, testing::kPreferences);
  const Window window = WaitShown("Preferences");
  const int line = TextHeight();
  Replace(WaitChild(window, 16, 3 * line + 196), "recorder sound %s");
  Replace(WaitChild(window, 16, 3 * line + 244), "recorder url %s");
  ClickIn(WaitChild(window, 16, line + 180), 6, 6);
  Picture("preferences");
  Ok(window);
  ASSERT_TRUE(WaitHidden("Preferences"));
  const Json options = Options();
  EXPECT_EQ(options["sndcmd"], "recorder sound %s");
  EXPECT_EQ(options["urlcmd"], "recorder url %s");
  EXPECT_EQ(options["splash"], 0);
  EXPECT_EQ(options["button"], 3);
}

void JourneyTest::MakeTwoSymbols() {
  MakeSymbol("Ell", kEll, {{20, 5}, {0, 3}});
  MakeSymbol("Bar", kRight);
  EXPECT_EQ(NamesIn(*install / "symbols"), (std::vector<std::string>{"Bar.sls", "Ell.sls"}));
  const Json ell = ShowFile(SymbolFile("Ell"));
  EXPECT_EQ(ell["name"], "Ell");
  EXPECT_EQ(ell["points"], Points(kEll));
  // One pixel was set and one of the vector's taken away.
  Json icon = IconOf(kEll);
  ASSERT_EQ(At(icon, 0, 3), '#');
  At(icon, 0, 3) = '.';
  ASSERT_EQ(At(icon, 20, 5), '.');
  At(icon, 20, 5) = '#';
  EXPECT_EQ(ell["icon"], icon);
}

void JourneyTest::MakeThePlugIn() {
  Choose(Title::kPlugIn, testing::kPlugInNew);
  const std::vector<Window> before = Overlays();
  DialogLeft();
  // A label lies under the pointer while the program waits for the click.
  ASSERT_TRUE(WaitFor([&] {
    const std::vector<Window> now = Overlays();
    return std::any_of(now.begin(), now.end(), [&](Window window) {
      return std::find(before.begin(), before.end(), window) == before.end();
    });
  }));
  ClickIn(probe_->window(), 150, 150);
  ASSERT_TRUE(WaitFor([this] { return Exists(PluginFile(kClass)); }));
  const Json stored = Plugin();
  EXPECT_EQ(stored["classname"], kClass);
  EXPECT_EQ(stored["appname"], kClass);
  EXPECT_TRUE(stored["actions"].empty());
}

void JourneyTest::MakeAnActionOfAllTypes() {
  ShowThePlugIn();
  Choose(Title::kAction, testing::kActionNew);
  const Window editor = ActionEditor();
  AddCommand(editor, kHotKey, "s");
  AddCommand(editor, kMenu, "f");
  AddCommand(editor, kText, "Hi");
  AddCommand(editor, kSound, "ding.wav");
  AddCommand(editor, kRun, "touch " + MarkFile("ran"));
  AddCommand(editor, kInternet, "example.org");
  const int width = BoxOf(TabBar(editor)).width;
  Replace(WaitChild(editor, width + 28, 100), "Everything");
  ClickIn(WaitChild(editor, width + 128 + 48, 100), 20, 20);
  ChooseSymbol(1);  // the symbol made last comes first
  Picture("action");
  Ok(editor);
  ASSERT_TRUE(WaitHidden("ActionEditor"));

  const Json stored = Plugin()["actions"];
  ASSERT_EQ(stored.size(), 1u);
  const Json& action = stored[0];
  EXPECT_EQ(action["name"], "Everything");
  EXPECT_EQ(action["symbol"]["name"], "Ell");
  EXPECT_EQ(action["symbol"]["points"], Points(kEll));
  ASSERT_EQ(Types(action), "HotKey Menu Text Sound Run Internet");
  const Json& commands = action["commands"];
  EXPECT_EQ(commands[0]["text"], "Control-s");
  EXPECT_EQ(commands[1]["text"], "f");
  EXPECT_EQ(commands[2]["text"], "Hi");
  EXPECT_EQ(commands[3]["text"], "ding.wav");
  EXPECT_EQ(commands[4]["text"], "touch " + MarkFile("ran"));
  EXPECT_EQ(commands[5]["text"], "example.org");
}

void JourneyTest::DrawAndSeeAllSixAct() {
  FocusProbe();
  Draw(kDrawEll);
  const auto key = [this](KeySym sym, unsigned state) {
    return "KeyPress window=main keycode=" +
           std::to_string(XKeysymToKeycode(player->display(), sym)) +
           " state=" + std::to_string(state) + " ";
  };
  const std::vector<std::string> expected = {key(XK_s, ControlMask), key(XK_f, Mod1Mask),
                                             key(XK_h, ShiftMask), key(XK_i, 0)};
  const std::vector<std::string> keys = probe_->Wait(expected.size(), "KeyPress");
  ASSERT_EQ(keys.size(), expected.size());
  for (size_t i = 0; i < keys.size(); i++) {
    EXPECT_EQ(keys[i].find(expected[i]), 0u) << keys[i] << "\nis not\n" << expected[i];
    EXPECT_NE(keys[i].find("send_event=1"), std::string::npos);
  }
  EXPECT_TRUE(Records(R"("sound","ding.wav"])")) << Recorded();
  EXPECT_TRUE(Appears("ran"));
  EXPECT_TRUE(Records(R"(&web=example.org"])")) << Recorded();
}

void JourneyTest::ChangeOrderAndSymbol() {
  SelectAction();
  Choose(Title::kAction, testing::kActionEdit);
  const Window editor = ActionEditor();
  const int width = BoxOf(TabBar(editor)).width;
  const int row = BoxOf(editor).height - 40;
  ClickCommand(editor, 2);  // the text goes two down, behind the program
  ClickChild(editor, width - 68, row);
  ClickChild(editor, width - 68, row);
  ClickCommand(editor, 1);  // the menu letter comes first
  ClickChild(editor, width - 168, row);
  ClickIn(WaitChild(editor, width + 128 + 48, 100), 20, 20);
  ChooseSymbol(0);
  Ok(editor);
  ASSERT_TRUE(WaitHidden("ActionEditor"));

  const Json stored = Plugin()["actions"];
  ASSERT_EQ(stored.size(), 1u);
  EXPECT_EQ(Types(stored[0]), kNewOrder);
  EXPECT_EQ(stored[0]["name"], "Everything");
  EXPECT_EQ(stored[0]["symbol"]["name"], "Bar");
  EXPECT_EQ(stored[0]["symbol"]["points"], Points(kRight));

  // The new shape acts, in the new order; the old one does not any more.
  FocusProbe();
  const size_t keys = probe_->Lines("KeyPress").size();
  fs::remove(MarkFile("ran"));
  Draw(kDrawEll);
  Draw(kDrawRight);
  EXPECT_TRUE(Appears("ran"));
  const auto lines = probe_->Wait(keys + 4, "KeyPress");
  ASSERT_EQ(lines.size(), keys + 4) << "the old shape still acts";
  const int f = XKeysymToKeycode(player->display(), XK_f);
  EXPECT_NE(lines[keys].find("keycode=" + std::to_string(f) + " state=8 "), std::string::npos)
      << lines[keys];
}

void JourneyTest::CopyAndDeleteAnAction() {
  SelectAction();
  ChoosePopup(0, testing::kPopupCopy);
  ChoosePopup(0, testing::kPopupPaste);
  ASSERT_TRUE(WaitFor([this] { return Actions() == 2; }));
  Choose(Title::kAction, testing::kActionDelete);
  ASSERT_TRUE(WaitFor([this] { return Actions() == 1; }));
  const Json stored = Plugin()["actions"];
  EXPECT_EQ(stored[0]["name"], "Everything");
  EXPECT_EQ(Types(stored[0]), kNewOrder);
  // The copy acts in the place of the deleted one.
  FocusProbe();
  fs::remove(MarkFile("ran"));
  Draw(kDrawRight);
  EXPECT_TRUE(Appears("ran"));
}

void JourneyTest::ChangePreferences() {
  Choose(Title::kOptions, testing::kPreferences);
  const Window window = WaitShown("Preferences");
  ChoosePulldown(WaitChild(window, 16, 100), 1);   // Middle
  ChoosePulldown(WaitChild(window, 144, 100), 2);  // High
  Replace(WaitChild(window, 16, TextHeight() + 140), "7");
  Ok(window);
  ASSERT_TRUE(WaitHidden("Preferences"));
  const Json options = Options();
  EXPECT_EQ(options["button"], 2);
  EXPECT_EQ(options["tolerance"], 4);
  EXPECT_EQ(options["sensitivity"], 7);
  EXPECT_EQ(options["splash"], 0);
  EXPECT_EQ(options["sndcmd"], "recorder sound %s");
  // The other button draws at once.
  FocusProbe();
  fs::remove(MarkFile("ran"));
  Draw(kDrawRight, 2);
  EXPECT_TRUE(Appears("ran"));
}

void JourneyTest::FindEverythingAfterARestart() {
  const std::string before = Everything();
  LeaveByTheMenu();
  EXPECT_EQ(Everything(), before);
  Open();
  FocusProbe();
  fs::remove(MarkFile("ran"));
  Draw(kDrawRight, 2);
  EXPECT_TRUE(Appears("ran"));
  // What the windows hold is what was stored: saved again, the files are the same.
  fs::remove(OptionsFile());
  Choose(Title::kOptions, testing::kPreferences);
  Ok(WaitShown("Preferences"));
  ASSERT_TRUE(WaitHidden("Preferences"));
  SelectAction();
  Choose(Title::kAction, testing::kActionEdit);
  Ok(ActionEditor());
  ASSERT_TRUE(WaitHidden("ActionEditor"));
  EXPECT_EQ(Everything(), before);
}

void JourneyTest::DeleteEverything() {
  SelectAction();
  Choose(Title::kAction, testing::kActionDelete);
  EXPECT_TRUE(WaitFor([this] { return Actions() == 0; }));
  Choose(Title::kPlugIn, testing::kPlugInDelete);
  DialogLeft();
  EXPECT_TRUE(WaitFor([this] { return !Exists(PluginFile(kClass)); }));
  for (int left = 1; left >= 0; left--) {
    Choose(Title::kSymbol, testing::kSymbolDelete);
    ChooseSymbol(0);
    ASSERT_TRUE(WaitFor([this] { return Dialog() != 0; }));
    DialogLeft();
    EXPECT_TRUE(
        WaitFor([&] { return NamesIn(*install / "symbols").size() == static_cast<size_t>(left); }));
  }
  // What the program itself had made at its first start is left.
  EXPECT_EQ(NamesIn(*install / "plugins"), std::vector<std::string>{"Default.sla"});
}

TEST_F(JourneyTest, FromAnEmptyInstallationToStrokesThatActAndBack) {
  using Step = void (JourneyTest::*)();
  const std::pair<const char*, Step> steps[] = {
      {"sound and browser commands", &JourneyTest::SetSoundAndBrowserCommands},
      {"symbols", &JourneyTest::MakeTwoSymbols},
      {"plug-in", &JourneyTest::MakeThePlugIn},
      {"action", &JourneyTest::MakeAnActionOfAllTypes},
      {"strokes", &JourneyTest::DrawAndSeeAllSixAct},
      {"order and symbol", &JourneyTest::ChangeOrderAndSymbol},
      {"copy and delete", &JourneyTest::CopyAndDeleteAnAction},
      {"preferences", &JourneyTest::ChangePreferences},
      {"restart", &JourneyTest::FindEverythingAfterARestart},
      {"deleting", &JourneyTest::DeleteEverything},
  };
  for (const auto& [name, step] : steps) {
    SCOPED_TRACE(name);
    const int before = hand_->detours();
    (this->*step)();
    EXPECT_GT(hand_->detours(), before) << "the pointer stayed in the program's windows";
    Picture(std::string("after ") + name);
    ASSERT_FALSE(HasFailure());
  }
}

}  // namespace
}  // namespace gromlit
