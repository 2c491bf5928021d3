// The main window's menus on the built program, entry by entry, and the dialogs behind them.
#include "tests/e2e/front_end.h"

#include <X11/Xutil.h>

#include <csignal>

#include "core/option_files.h"
#include "core/plugin_files.h"
#include "tests/e2e/stored_files.h"

namespace gromlit {
namespace {

namespace fs = std::filesystem;
using testing::Box;
using testing::Exists;
using testing::kDown;
using testing::kRight;
using testing::Point;
using testing::ProbeClient;
using testing::ReadText;
using testing::Title;
using testing::WaitFor;

constexpr const char* kClass = "Probe.probe";
const std::vector<Point> kDrawRight = {{920, 200}, {1120, 200}};

// The parameter is the window manager; empty for none.
class MenusTest : public testing::FrontEnd, public ::testing::WithParamInterface<const char*> {
 protected:
  void SetUp() override {
    FrontEnd::SetUp();
    if (*GetParam() != '\0') StartWindowManager(GetParam());
    probe_ = std::make_unique<ProbeClient>(
        install->path(), std::vector<std::string>{"--class", "Probe", "probe", "--geometry",
                                                  "340x300+880+80", "--title", "Probe"});
  }
  void TearDown() override {
    if (HasFailure()) {
      if (const char* directory = std::getenv("GROMLIT_SCREENSHOTS"))
        testing::SaveScreen(player->display(), std::string(directory) + "/menus-failed.png");
    }
    FrontEnd::TearDown();
  }
  void Open() {
    LaunchInstalled({.environment = {"RECORDER_FILE=" + *install / "recorded"}});
    ASSERT_NE(WaitShown("Application"), Window{0});
  }
  // A plug-in of the probe with two actions, shown in the main window.
  void OpenWithPlugin() {
    WritePlugin(kClass, {{"right", kRight, {Touch("right")}}, {"down", kDown, {Touch("down")}}});
    Open();
    ASSERT_TRUE(PassOver(probe_->window(), [this] { return HasName(0); }));
  }
  GromlitPlugin Header() {
    GromlitPlugin plugin{};
    const std::string name = std::string(kClass) + GromlitPluginFileExt;
    EXPECT_NE(ReadPluginHeader(name.c_str(), &plugin), nullptr);
    return plugin;
  }
  int StoredActions() {
    auto plugin = std::make_unique<GromlitPlugin>();
    const std::string name = std::string(kClass) + GromlitPluginFileExt;
    EXPECT_NE(ReadPluginActions(name.c_str(), plugin.get()), nullptr);
    const int count = plugin->nactions;
    for (int i = 0; i < count; i++) {
      for (uint32_t j = 0; j < plugin->actions[i]->ncmds; j++) {
        std::free(plugin->actions[i]->cmds[j]->text);
        delete plugin->actions[i]->cmds[j];
      }
      delete plugin->actions[i];
    }
    return count;
  }
  bool HasActions(int count) {
    return WaitFor([&] { return StoredActions() == count; });
  }
  bool Records(const std::string& text) {
    return WaitFor([&] { return ReadText(*install / "recorded").find(text) != std::string::npos; });
  }
  // Leaves an editor or the preferences by Cancel, which all have at the same place.
  void Cancel(const std::string& name) {
    const Window window = WaitShown(name);
    const Box box = BoxOf(window);
    ClickChild(window, box.width - 80, box.height - 40);
    EXPECT_TRUE(WaitHidden(name));
  }

  std::unique_ptr<ProbeClient> probe_;
};

TEST_P(MenusTest, PlugInEditChangesTheNameAndNotTheClass) {
  OpenWithPlugin();
  const std::string former = Look(PluginButton());
  Choose(Title::kPlugIn, testing::kPlugInEdit);
  Replace(DialogField(), "My renamed probe");
  DialogLeft();
  EXPECT_TRUE(WaitFor([this] { return std::string(Header().appname) == "My renamed probe"; }))
      << Header().appname;
  EXPECT_STREQ(Header().classname, kClass);
  EXPECT_EQ(StoredActions(), 2);
  // The pulldown button, bare again and with the pointer back from the application, says it.
  ASSERT_TRUE(WaitNoDialog());
  ASSERT_TRUE(PassOver(probe_->window(), [this] { return HasName(0); }));
  EXPECT_TRUE(WaitFor([&] { return Look(PluginButton()) != former; }));
  // The menu of all plug-ins is as wide as its widest name.
  const Window menu = PressPulldown(PluginButton());
  EXPECT_EQ(Rows(menu), 2);
  EXPECT_EQ(BoxOf(menu).width, LabelWidth("My renamed probe") + 16);
  Go({1270, 1000});
  player->Release(1);
  EXPECT_TRUE(WaitFor([this] { return Menu() == 0; }));
  // It still serves its application.
  Draw(kDrawRight);
  EXPECT_TRUE(Appears("right"));
}

TEST_P(MenusTest, ThePulldownShowsThePlugInChosen) {
  OpenWithPlugin();
  // Both plug-ins are listed; only one has actions.
  std::string shown;
  for (int row = 0; row < 2; row++) {
    ChoosePulldown(PluginButton(), row);
    // A dialog over the window, opened and closed: the choice was worked off before it.
    Choose(Title::kHelp, testing::kHelpAbout);
    DialogRight();
    shown += HasName(0) ? 'p' : 'd';
  }
  EXPECT_EQ(shown, "dp");
}

TEST_P(MenusTest, PlugInEditIsLeftByCancelWithoutAChange) {
  OpenWithPlugin();
  const std::string before = ReadText(PluginFile(kClass));
  Choose(Title::kPlugIn, testing::kPlugInEdit);
  DialogRight();
  EXPECT_EQ(ReadText(PluginFile(kClass)), before);
}

TEST_P(MenusTest, PlugInDeleteAsksAndNoKeepsTheFile) {
  OpenWithPlugin();
  Choose(Title::kPlugIn, testing::kPlugInDelete);
  DialogRight();
  EXPECT_EQ(StoredActions(), 2);
  Draw(kDrawRight);
  EXPECT_TRUE(Appears("right"));
}

TEST_P(MenusTest, PlugInDeleteRemovesTheFileAndShowsTheDefault) {
  OpenWithPlugin();
  Choose(Title::kPlugIn, testing::kPlugInDelete);
  DialogLeft();
  EXPECT_TRUE(WaitFor([this] { return !Exists(PluginFile(kClass)); }));
  EXPECT_TRUE(WaitFor([this] { return !HasName(0); }));
}

TEST_P(MenusTest, ExitAsksAndNoLeavesEverything) {
  OpenWithPlugin();
  Choose(Title::kPlugIn, testing::kExit);
  DialogRight();
  Draw(kDrawRight);
  EXPECT_TRUE(Appears("right"));
  EXPECT_TRUE(gromlit->Running());
}

TEST_P(MenusTest, ExitEndsTheProgramWithStatusZero) {
  Open();
  Choose(Title::kPlugIn, testing::kExit);
  const Box box = BoxOf(WaitDialog());
  ClickChild(WaitDialog(), box.width - 144, box.height - 32);
  EXPECT_EQ(gromlit->Wait(), 0);
}

TEST_P(MenusTest, PlugInNewMakesOneForTheApplicationClickedOn) {
  Open();
  StartPicking();
  ClickIn(probe_->window(), 150, 150);
  ASSERT_TRUE(WaitFor([this] { return Exists(PluginFile(kClass)); }));
  EXPECT_STREQ(Header().appname, kClass);
  EXPECT_STREQ(Header().classname, kClass);
  EXPECT_EQ(StoredActions(), 0);
  EXPECT_TRUE(probe_->Lines("Button").empty()) << "the click went to the application";
}

TEST_P(MenusTest, PlugInNewIsLeftByNoWithoutAPlugIn) {
  Open();
  Choose(Title::kPlugIn, testing::kPlugInNew);
  DialogRight();
  EXPECT_TRUE(PointerBecomesFree());
  EXPECT_EQ(NamesIn(*install / "plugins"), std::vector<std::string>{"Default.sla"});
}

TEST_P(MenusTest, DownloadUploadAndHelpOpenTheirPages) {
  Open();
  Choose(Title::kPlugIn, testing::kPlugInDownload);
  EXPECT_TRUE(Records("/s.smart?x=1&d=1&s=5&sv=5&sl=1&pl=1&ol=1&o=0&sva=1&svb=2&c=\"]"));
  Choose(Title::kPlugIn, testing::kPlugInUpload);
  EXPECT_TRUE(Records("/upload/plugin?\"]"));
  Choose(Title::kHelp, testing::kHelpIndex);
  EXPECT_TRUE(Records("\"file:" + install->path() + "/help/index.html\"]"));
}

TEST_P(MenusTest, AboutIsShownUntilOk) {
  Open();
  Choose(Title::kHelp, testing::kHelpAbout);
  DialogRight();
  EXPECT_EQ(Dialog(), Window{0});
}

TEST_P(MenusTest, ActionNewAndExportOpenTheActionEditor) {
  OpenWithPlugin();
  for (const int row : {testing::kActionNew, testing::kActionExport}) {
    Choose(Title::kAction, row);
    Cancel("ActionEditor");
  }
  EXPECT_EQ(StoredActions(), 2);
}

TEST_P(MenusTest, ActionEditNeedsASelection) {
  OpenWithPlugin();
  Choose(Title::kAction, testing::kActionEdit);
  // What comes next is worked off after it.
  Choose(Title::kHelp, testing::kHelpAbout);
  DialogRight();
  EXPECT_EQ(Shown("ActionEditor"), Window{0});
  SelectCell(1);
  Choose(Title::kAction, testing::kActionEdit);
  Cancel("ActionEditor");
}

TEST_P(MenusTest, ActionDeleteRemovesTheSelectedActionAtOnce) {
  OpenWithPlugin();
  SelectCell(0);
  Choose(Title::kAction, testing::kActionDelete);
  EXPECT_TRUE(HasActions(1));
  EXPECT_TRUE(WaitFor([this] { return !HasName(1); }));
  EXPECT_TRUE(IsSelected(0)) << "the next one takes its place";
}

TEST_P(MenusTest, DoubleClickOpensTheActionEditor) {
  OpenWithPlugin();
  OutwaitDoubleClick();
  const Point at = Cell(0);
  ASSERT_TRUE(Over(MainWindow(), at.x, at.y));
  player->Click(1);
  // A window manager that looks at every click first may swallow a second one that is there before
  // it is done with the first.
  EXPECT_TRUE(WaitFor([this] { return IsSelected(0); }));
  player->Click(1);
  Cancel("ActionEditor");
  EXPECT_EQ(StoredActions(), 2);
}

TEST_P(MenusTest, ButtonThreeOverTheGridOpensThePopup) {
  OpenWithPlugin();
  SelectCell(0);
  ChoosePopup(0, testing::kPopupCut);
  EXPECT_TRUE(HasActions(1));
  ChoosePopup(0, testing::kPopupPaste);
  EXPECT_TRUE(HasActions(2));
  SelectCell(0);
  ChoosePopup(0, testing::kPopupCopy);
  ChoosePopup(0, testing::kPopupPaste);
  EXPECT_TRUE(HasActions(3));
  ChoosePopup(0, testing::kPopupDelete);
  EXPECT_TRUE(HasActions(2));
}

TEST_P(MenusTest, ThePopupsOtherEntriesOpenTheirWindows) {
  OpenWithPlugin();
  SelectCell(0);
  for (const int row : {testing::kPopupEdit, testing::kPopupExport, testing::kPopupNew}) {
    ChoosePopup(0, row);
    Cancel("ActionEditor");
    // On its way out of the editor the pointer may have been over other applications.
    ASSERT_TRUE(PassOver(probe_->window(), [this] { return HasName(0); }));
    SelectCell(0);
  }
  ChoosePopup(0, testing::kPopupEditSymbol);
  DialogRight();
}

TEST_P(MenusTest, SymbolNewOpensTheEditorAndTheOthersTheChooser) {
  Open();
  Choose(Title::kSymbol, testing::kSymbolNew);
  Cancel("SymbolEditor");
  Choose(Title::kSymbol, testing::kSymbolEdit);
  DialogRight();
  Choose(Title::kSymbol, testing::kSymbolDelete);
  DialogRight();
  // OK without a choice edits a new symbol.
  Choose(Title::kSymbol, testing::kSymbolEdit);
  DialogLeft();
  Cancel("SymbolEditor");
}

TEST_P(MenusTest, PreferencesOpenAndCancelStoresNothing) {
  Open();
  const std::string before = ReadText(OptionsFile());
  Choose(Title::kOptions, testing::kPreferences);
  const Window window = WaitShown("Preferences");
  Replace(WaitChild(window, 16, TextHeight() + 140), "9");
  Cancel("Preferences");
  EXPECT_EQ(ReadText(OptionsFile()), before);
}

TEST_P(MenusTest, AnApplicationWithoutAPlugInIsOfferedOneOnce) {
  WritePlugin("Default", {{"right", kRight, {Touch("default")}}});
  Open();
  Draw(kDrawRight);
  DialogRight();
  EXPECT_FALSE(Exists(MarkFile("default")));
  Draw(kDrawRight);
  EXPECT_TRUE(Appears("default"));
  EXPECT_EQ(Dialog(), Window{0});
}

TEST_P(MenusTest, TheOffersYesOpensTheDownloadPageOfTheClass) {
  Open();
  Draw(kDrawRight);
  DialogLeft();
  EXPECT_TRUE(Records("&c=" + std::string(kClass) + "\"]"));
}

// --- Today's manners --------------------------------------------------------------------------

class ModernMenusTest : public testing::FrontEnd {
 protected:
  void SetUp() override {
    FrontEnd::SetUp();
    GromlitUserOptions options{};
    DefaultUserOptions(&options);
    options.splash = 0;
    options.temp2 = kActivateFirst;
    options.temp4 = kModernManners;
    ASSERT_EQ(SaveUserOptions(&options, defaultOptionFile), 1);
    StartWindowManager("openbox");
    // Before the main window, which openbox then gives the keyboard.
    probe_ = std::make_unique<ProbeClient>(
        install->path(),
        std::vector<std::string>{"--class", "Probe", "probe", "--geometry", "340x300+880+80"});
    LaunchInstalled();
    ASSERT_NE(WaitShown("Application"), Window{0});
  }
  void TearDown() override {
    if (HasFailure()) {
      if (const char* directory = std::getenv("GROMLIT_SCREENSHOTS"))
        testing::SaveScreen(player->display(), std::string(directory) + "/modern-failed.png");
    }
    FrontEnd::TearDown();
  }
  // Clicks on a title until the machine was quick enough for that to be a click.
  Window ClickTitle(Title title) {
    const Window bar = WaitChild(MainWindow(), 0, 0);
    int x = 8;
    const char* const kNames[] = {"Plug-In", "Action", "Symbol", "Options", "Help"};
    for (int i = 0; i < static_cast<int>(title); i++) x += LabelWidth(kNames[i]) + 16;
    Window menu = 0;
    EXPECT_TRUE(WaitFor([&] {
      if (!Over(bar, x + 4, ItemHeight() / 2)) return false;
      player->Click(1);
      // As long as it flashes at the most.
      if (!WaitFor([&] { return (menu = Menu()) != 0; }, std::chrono::seconds(2))) return false;
      return !WaitFor([&] { return Menu() != menu; }, std::chrono::milliseconds(300));
    })) << "no menu stays";
    return menu;
  }
  bool KeyboardIsFree() {
    Display* display = player->display();
    const bool granted = XGrabKeyboard(display, player->root(), False, GrabModeAsync, GrabModeAsync,
                                       CurrentTime) == GrabSuccess;
    XUngrabKeyboard(display, CurrentTime);
    XSync(display, False);
    return granted;
  }
  // The dialog comes, and goes again by Escape as soon as the window manager has given it the
  // keyboard.
  bool LeavesTheDialog() {
    if (!WaitFor([this] { return AsksSomething(player->root(), 3); })) return false;
    return WaitFor([this] {
      player->Type(XK_Escape);
      return WaitFor([this] { return !AsksSomething(player->root(), 3); },
                     std::chrono::milliseconds(300));
    });
  }
  // Whether a dialog is on the screen, framed or not; the dialog, or 0.
  Window AsksSomething(Window in, int levels) {
    for (const Window window : Children(in)) {
      XClassHint hint{};
      if (XGetClassHint(player->display(), window, &hint) != 0) {
        const bool dialog = std::string("Dialog") == hint.res_name;
        XFree(hint.res_name);
        XFree(hint.res_class);
        if (dialog && Viewable(window)) return window;
      }
      const Window inner = levels > 1 ? AsksSomething(window, levels - 1) : 0;
      if (inner != 0) return inner;
    }
    return 0;
  }
  // --- By the keyboard alone ---

  Window Focus() {
    Window focus = 0;
    int revert;
    XGetInputFocus(player->display(), &focus, &revert);
    return focus;
  }
  // Goes on with Tab until a widget has the keyboard, one step after the other.
  bool TabTo(Window widget) {
    for (int tabs = 0; tabs < 30; tabs++) {
      const Window before = Focus();
      if (before == widget) return true;
      player->Type(XK_Tab);
      WaitFor([&] { return Focus() != before; }, std::chrono::seconds(2));
    }
    return Focus() == widget;
  }
  // Chooses from a menu: F10, so many titles to the right, the first letter, Return. The window
  // manager may give the main window the keyboard a moment after a dialog has gone.
  void ChooseByKeys(Title title, KeySym letter) {
    Window opened = 0;
    ASSERT_TRUE(WaitFor([&] {
      player->Type(XK_F10);
      return WaitFor([&] { return (opened = Menu()) != 0; }, std::chrono::seconds(2));
    }));
    for (int i = 0; i < static_cast<int>(title); i++) {
      player->Type(XK_Right);
      ASSERT_TRUE(WaitFor([&] { return Menu() != 0 && Menu() != opened; }));
      opened = Menu();
    }
    player->Type(letter);
    player->Type(XK_Return);
  }
  // The text field in a window that is on the screen.
  Window FieldIn(Window window) {
    for (const Window child : Children(window))
      if (Viewable(child) && BoxOf(child).height == 24 && BoxOf(child).width > 100) return child;
    return 0;
  }

  bool GivesBack() {
    return WaitFor([this] { return Menu() == 0 && player->CanGrabPointer() && KeyboardIsFree(); });
  }

  std::unique_ptr<ProbeClient> probe_;
};

TEST_F(ModernMenusTest, TheMenuBarIsWorkedByClicksAndByKeys) {
  // One click opens, the next chooses.
  const Window menu = ClickTitle(Title::kHelp);
  ASSERT_NE(menu, Window{0});
  GoToRow(menu, testing::kHelpAbout);
  player->Click(1);
  ASSERT_TRUE(LeavesTheDialog());
  ASSERT_TRUE(GivesBack());
  // The draw button closes a menu, and the pointer goes on.
  ASSERT_NE(ClickTitle(Title::kOptions), Window{0});
  Go({900, 700});
  player->Click(3);
  ASSERT_TRUE(GivesBack());
  Go({905, 705});
  // The same by the keyboard alone, which openbox has given to the main window.
  Go({1200, 900});
  Window opened = 0;
  EXPECT_TRUE(WaitFor([&] {
    player->Type(XK_F10);
    return WaitFor([&] { return (opened = Menu()) != 0; }, std::chrono::seconds(2));
  }));
  EXPECT_FALSE(player->CanGrabPointer());
  player->Type(XK_Left);
  ASSERT_TRUE(WaitFor([&] { return Menu() != 0 && Menu() != opened; }));
  EXPECT_EQ(Rows(Menu()), 2) << "the last title is Help";
  player->Type(XK_a);
  player->Type(XK_Return);
  ASSERT_TRUE(LeavesTheDialog());
  ASSERT_TRUE(GivesBack());
  // A signal that ends the program finds it with a menu open.
  ASSERT_NE(ClickTitle(Title::kPlugIn), Window{0});
  EXPECT_FALSE(player->CanGrabPointer());
  gromlit->Kill(SIGTERM);
  EXPECT_TRUE(GivesBack());
}

// From an empty directory to a stroke that acts; the pointer draws, and picks the application.
TEST_F(ModernMenusTest, AGestureIsMadeWithThePointerForDrawingAndPickingAlone) {
  ChooseByKeys(Title::kSymbol, XK_n);
  if (HasFailure()) return;
  const Window symbol = WaitShown("SymbolEditor");
  const Point area = OriginOf(WaitChild(symbol, 16, 100));
  Draw({{area.x + 40, area.y + 40}, {area.x + 40, area.y + 200}, {area.x + 200, area.y + 200}});
  Window next = WaitChild(symbol, 400, 414);
  ASSERT_TRUE(TabTo(next));
  player->Type(XK_space);
  Window finish = 0;
  ASSERT_TRUE(WaitFor([&] {
    finish = ChildAt(symbol, 400, 414);
    return finish != 0 && finish != next;
  }));
  ASSERT_TRUE(TabTo(finish));
  player->Type(XK_space);
  Window field = 0;
  ASSERT_TRUE(WaitFor([&] { return (field = FieldIn(symbol)) != 0; }));
  ASSERT_TRUE(TabTo(field));
  TypeText("Tick");
  player->Type(XK_Return);
  ASSERT_TRUE(WaitHidden("SymbolEditor"));
  ASSERT_EQ(NamesIn(*install / "symbols"), std::vector<std::string>{"Tick.sls"});

  ChooseByKeys(Title::kPlugIn, XK_n);
  if (HasFailure()) return;
  Window question = 0;
  ASSERT_TRUE(WaitFor([&] { return (question = AsksSomething(player->root(), 3)) != 0; }));
  EXPECT_TRUE(WaitFor([&] {
    player->Type(XK_Return);
    return WaitFor([&] { return AsksSomething(player->root(), 3) == 0; },
                   std::chrono::milliseconds(300));
  }));
  ASSERT_TRUE(WaitFor([this] { return PickLabel() != 0; }));
  ClickIn(probe_->window(), 20, 250);
  ASSERT_TRUE(WaitFor([this] { return Exists(PluginFile("Probe.probe")); }));

  ChooseByKeys(Title::kAction, XK_n);
  if (HasFailure()) return;
  const Window editor = WaitShown("ActionEditor");
  const Window bar = TabBar(editor);
  ASSERT_TRUE(TabTo(TabField(editor)));
  Chord(XK_Control_L, XK_s);
  ASSERT_TRUE(FieldReads(TabField(editor), "Control-s", 0));
  ASSERT_TRUE(TabTo(WaitChild(bar, BoxOf(bar).width - 216, BoxOf(bar).height - 32)));
  player->Type(XK_space);
  // Another tab, and what its field types.
  ASSERT_TRUE(TabTo(bar));
  player->Type(XK_Right);
  player->Type(XK_Right);
  ASSERT_TRUE(TabTo(TabField(editor)));
  TypeText("yes");
  player->Type(XK_Return);
  const int width = BoxOf(bar).width;
  ASSERT_TRUE(TabTo(WaitChild(editor, width + 28, 100)));
  Chord(XK_Control_L, XK_a);
  TypeText("Sign");
  const Window icon = WaitChild(editor, width + 128 + 48, 100);
  ASSERT_TRUE(TabTo(icon));
  player->Type(XK_space);
  Window chooser = 0;
  ASSERT_TRUE(WaitFor([&] { return (chooser = AsksSomething(player->root(), 3)) != 0; }));
  // The window manager gives the dialog the keyboard, and that its grid; the letter selects.
  constexpr int kBelowLogo = 65;
  const Window grid = WaitChild(chooser, 4, kBelowLogo);
  ASSERT_TRUE(WaitFor([&] { return Focus() == grid; }));
  player->Type(XK_t);
  player->Type(XK_Return);
  ASSERT_TRUE(WaitFor([&] { return AsksSomething(player->root(), 3) == 0; }));
  ASSERT_TRUE(TabTo(WaitChild(editor, 560 - 160, BoxOf(editor).height - 40)));
  player->Type(XK_space);
  ASSERT_TRUE(WaitHidden("ActionEditor"));

  const auto action = testing::ShowFile(PluginFile("Probe.probe"))["actions"][0];
  EXPECT_EQ(action["name"], "Sign");
  EXPECT_EQ(action["symbol"]["name"], "Tick");
  ASSERT_EQ(action["commands"].size(), 2u);
  EXPECT_EQ(action["commands"][0]["text"], "Control-s");
  EXPECT_EQ(action["commands"][1]["text"], "yes");

  const Point on = OriginOf(probe_->window());
  Draw({{on.x + 40, on.y + 40}, {on.x + 40, on.y + 200}, {on.x + 200, on.y + 200}});
  EXPECT_EQ(probe_->Wait(4, "KeyPress").size(), 4u) << "Control-s, y, e, s";
}

INSTANTIATE_TEST_SUITE_P(Alone, MenusTest, ::testing::Values(""));
INSTANTIATE_TEST_SUITE_P(Openbox, MenusTest, ::testing::Values("openbox"));
INSTANTIATE_TEST_SUITE_P(Twm, MenusTest, ::testing::Values("twm"));

}  // namespace
}  // namespace gromlit
