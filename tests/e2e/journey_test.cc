// The whole journey of a user, by mouse and keyboard: from an empty installation directory to
// strokes that act, and back to an empty one.
#include "tests/e2e/front_end.h"

#include <X11/keysym.h>

#include "core/option_files.h"
#include "core/plugin_files.h"
#include "core/symbol_files.h"
#include "recognition/symbol_icon.h"

namespace gromlit {
namespace {

namespace fs = std::filesystem;
using testing::Exists;
using testing::kEll;
using testing::kRight;
using testing::Point;
using testing::ProbeClient;
using testing::ReadText;
using testing::Title;
using testing::WaitFor;

constexpr const char* kClass = "Probe.probe";

// Strokes over the probe, which match the shapes L and "to the right".
const std::vector<Point> kDrawEll = {{940, 150}, {940, 300}, {1090, 300}};
const std::vector<Point> kDrawRight = {{920, 200}, {1120, 200}};

class JourneyTest : public testing::FrontEnd {
 public:
  void SetUp() override {
    FrontEnd::SetUp();
    fs::remove(OptionsFile());
    StartWindowManager("openbox");
    probe_ = std::make_unique<ProbeClient>(
        install->path(), std::vector<std::string>{"--class", "Probe", "probe", "--geometry",
                                                  "340x300+880+80", "--title", "Probe"});
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

  GromlitUserOptions StoredOptions() {
    GromlitUserOptions options{};
    if (GromlitUserOptions* read = LoadUserOptions("default.user")) {
      options = *read;
      delete read;
    }
    return options;
  }
  struct Stored {
    GromlitPlugin plugin{};
    ~Stored() {
      for (int i = 0; i < plugin.nactions; i++) {
        for (uint32_t j = 0; j < plugin.actions[i]->ncmds; j++) {
          std::free(plugin.actions[i]->cmds[j]->text);
          delete plugin.actions[i]->cmds[j];
        }
        delete plugin.actions[i];
      }
    }
  };
  std::unique_ptr<Stored> StoredPlugin() {
    auto stored = std::make_unique<Stored>();
    const std::string name = std::string(kClass) + GromlitPluginFileExt;
    EXPECT_NE(ReadPluginActions(name.c_str(), &stored->plugin), nullptr);
    return stored;
  }
  // The types of an action's commands, as digits in their order.
  static std::string Types(const GromlitAction& action) {
    std::string types;
    for (uint32_t j = 0; j < action.ncmds; j++)
      types += static_cast<char>('0' + action.cmds[j]->type);
    return types;
  }
  static std::vector<Point> Corners(const GromlitSymbol& symbol) {
    std::vector<Point> corners;
    for (int k = 1; k <= symbol.npoints; k++) corners.push_back({symbol.x[k], symbol.y[k]});
    return corners;
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
  // Shows the application's actions in the main window, by passing over the application, and
  // selects the first one.
  void SelectAction() {
    EXPECT_TRUE(PassOver(probe_->window(), [this] { return HasIcon(0); }))
        << "the main window shows no action";
    SelectCell(0);
  }
  Window ActionEditor() { return WaitShown("ActionEditor"); }
  void Ok(Window editor) { ClickChild(editor, 560 - 160, BoxOf(editor).height - 40); }

  std::unique_ptr<ProbeClient> probe_;
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
  const GromlitUserOptions options = StoredOptions();
  EXPECT_STREQ(options.sndcmd, "recorder sound %s");
  EXPECT_STREQ(options.urlcmd, "recorder url %s");
  EXPECT_EQ(options.splash, 0);
  EXPECT_EQ(options.button, 3);
}

void JourneyTest::MakeTwoSymbols() {
  MakeSymbol("Ell", kEll, {{20, 5}, {0, 3}});
  MakeSymbol("Bar", kRight);
  EXPECT_EQ(NamesIn(*install / "symbols"), (std::vector<std::string>{"Bar.sls", "Ell.sls"}));
  const std::unique_ptr<GromlitSymbol> ell(LoadSymbol("Ell", GromlitSymbolFileExt));
  ASSERT_NE(ell, nullptr);
  EXPECT_STREQ(ell->name, "Ell");
  EXPECT_EQ(Corners(*ell), kEll);
  // One pixel was set and one of the vector's taken away.
  GromlitSymbol drawn = *ell;
  for (uint32_t& row : drawn.icon) row = 0;
  VectorToBitmap(&drawn);
  ASSERT_NE(iconGet(&drawn, 0, 3), 0);
  iconClr(&drawn, 0, 3);
  iconSet(&drawn, 20, 5);
  for (int row = 0; row < kIconSize; row++) EXPECT_EQ(ell->icon[row], drawn.icon[row]) << row;
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
  const auto stored = StoredPlugin();
  EXPECT_STREQ(stored->plugin.classname, kClass);
  EXPECT_STREQ(stored->plugin.appname, kClass);
  EXPECT_EQ(stored->plugin.nactions, 0);
}

void JourneyTest::MakeAnActionOfAllTypes() {
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

  const auto stored = StoredPlugin();
  ASSERT_EQ(stored->plugin.nactions, 1);
  const GromlitAction& action = *stored->plugin.actions[0];
  EXPECT_STREQ(action.name, "Everything");
  EXPECT_STREQ(action.sym.name, "Ell");
  EXPECT_EQ(Corners(action.sym), kEll);
  ASSERT_EQ(Types(action), "012345");
  EXPECT_STREQ(action.cmds[0]->text, "Control-s");
  EXPECT_STREQ(action.cmds[1]->text, "f");
  EXPECT_STREQ(action.cmds[2]->text, "Hi");
  EXPECT_STREQ(action.cmds[3]->text, "ding.wav");
  EXPECT_EQ(action.cmds[4]->text, "touch " + MarkFile("ran"));
  EXPECT_STREQ(action.cmds[5]->text, "example.org");
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

  const auto stored = StoredPlugin();
  ASSERT_EQ(stored->plugin.nactions, 1);
  EXPECT_EQ(Types(*stored->plugin.actions[0]), "103425");
  EXPECT_STREQ(stored->plugin.actions[0]->name, "Everything");
  EXPECT_STREQ(stored->plugin.actions[0]->sym.name, "Bar");
  EXPECT_EQ(Corners(stored->plugin.actions[0]->sym), kRight);

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
  ASSERT_TRUE(WaitFor([this] { return StoredPlugin()->plugin.nactions == 2; }));
  Choose(Title::kAction, testing::kActionDelete);
  ASSERT_TRUE(WaitFor([this] { return StoredPlugin()->plugin.nactions == 1; }));
  const auto stored = StoredPlugin();
  EXPECT_STREQ(stored->plugin.actions[0]->name, "Everything");
  EXPECT_EQ(Types(*stored->plugin.actions[0]), "103425");
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
  const GromlitUserOptions options = StoredOptions();
  EXPECT_EQ(options.button, 2);
  EXPECT_EQ(options.tolerance, 4);
  EXPECT_EQ(options.sensitivity, 7);
  EXPECT_EQ(options.splash, 0);
  EXPECT_STREQ(options.sndcmd, "recorder sound %s");
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
  EXPECT_TRUE(WaitFor([this] { return StoredPlugin()->plugin.nactions == 0; }));
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
    (this->*step)();
    Picture(std::string("after ") + name);
    ASSERT_FALSE(HasFailure());
  }
}

}  // namespace
}  // namespace gromlit
