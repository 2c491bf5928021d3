// The preferences on the built program: what the window shows, what its buttons store, the draw
// button that it changes, and saves that fail.
#include "tests/e2e/front_end.h"

#include <X11/keysym.h>
#include <sys/resource.h>
#include <unistd.h>

#include "core/option_files.h"
#include "core/strings.h"
#include "tests/e2e/stored_files.h"

namespace gromlit {
namespace {

namespace fs = std::filesystem;
using nlohmann::json;
using testing::Conditions;
using testing::kRight;
using testing::Point;
using testing::ProbeClient;
using testing::ReadText;
using testing::ShowFile;
using testing::Title;
using testing::WaitFor;
using testing::WriteText;

constexpr const char* kClass = "Probe.probe";
constexpr const char* kTaken = "Drawing Button used by another application.";
constexpr const char* kNotSaved = "The preferences hold until Gromlit ends, but were not saved.";

// A stroke to the right over the probe.
const std::vector<Point> kDrawRight = {{920, 200}, {1120, 200}};

enum ButtonRow { kRowRight, kRowMiddle, kRowLeft };
enum ToleranceRow { kRowLow, kRowMedium, kRowHigh };
// From the left; Help is the first one.
enum PushButton { kHelp = 16, kDefaults = 560 - 240, kOk = 560 - 160, kCancel = 560 - 80 };

class PreferencesTest : public testing::FrontEnd {
 protected:
  void SetUp() override {
    FrontEnd::SetUp();
    Store();
  }
  void TearDown() override {
    player->KeyUp(XK_Shift_L);
    for (const char* name : {"", "options"})
      if (testing::Exists(*install / name))
        fs::permissions(*install / name, fs::perms::owner_all, fs::perm_options::add);
    if (HasFailure()) Picture("failed");
    FrontEnd::TearDown();
  }
  void Picture(const std::string& name) {
    if (const char* directory = std::getenv("GROMLIT_SCREENSHOTS"))
      testing::SaveScreen(player->display(),
                          std::string(directory) + "/preferences-" + name + ".png");
  }

  // Stores options that differ from the defaults in what the window does not show.
  void Store(int button = 3, int tolerance = 3, const std::string& url = "recorder url %s",
             const std::string& snd = "recorder sound %s") {
    GromlitUserOptions options{};
    DefaultUserOptions(&options);
    options.button = button;
    options.tolerance = tolerance;
    options.splash = 0;
    options.showactions = 0;
    options.temp1 = 11;
    options.temp4 = -4;
    CopyText(options.urlcmd, url);
    CopyText(options.sndcmd, snd);
    CopyText(options.charspare2, "reserved");
    ASSERT_EQ(SaveUserOptions(&options, defaultOptionFile), 1);
  }
  json Stored() const { return ShowFile(OptionsFile()); }

  void StartProbe() {
    WritePlugin(kClass, {{"right", kRight, {{kRun, "touch " + MarkFile("marks/acted")}}}});
    fs::create_directory(*install / "marks");
    fs::permissions(*install / "marks", fs::perms::all);
    probe_ = std::make_unique<ProbeClient>(
        install->path(), std::vector<std::string>{"--class", "Probe", "probe", "--geometry",
                                                  "340x300+880+80", "--title", "Probe"});
  }
  void Start(Conditions conditions = {}) {
    conditions.environment = {"RECORDER_FILE=" + *install / "recorded"};
    LaunchInstalled(conditions);
    ASSERT_NE(WaitShown("Application"), Window{0});
  }
  // Opens the preferences by the menu and waits until they are drawn.
  void Open() {
    Choose(Title::kOptions, testing::kPreferences);
    window_ = WaitShown("Preferences");
    EXPECT_TRUE(WaitFor([this] { return Reads(window_, "a %s is replaced by the url."); }));
  }
  void StartAndOpen() {
    Start();
    Open();
  }
  Window At(PushButton button) { return WaitChild(window_, button, 364 - 40); }
  Window DrawButton() { return WaitChild(window_, 16, 100); }
  Window Tolerance() { return WaitChild(window_, 144, 100); }
  Window Sensitivity() { return WaitChild(window_, 16, TextHeight() + 140); }
  Window Splash() { return WaitChild(window_, 16, TextHeight() + 180); }
  Window Sound() { return WaitChild(window_, 16, 3 * TextHeight() + 196); }
  Window Browser() { return WaitChild(window_, 16, 3 * TextHeight() + 244); }

  void Press(PushButton button) { ClickChild(window_, button, 364 - 40); }
  void Ok() {
    Press(kOk);
    EXPECT_TRUE(WaitHidden("Preferences"));
  }
  void Cancel() {
    Press(kCancel);
    EXPECT_TRUE(WaitHidden("Preferences"));
  }
  void ToggleSplash() {
    const Window box = Splash();
    const std::string before = Look(box);
    ClickIn(box, 6, 6);
    EXPECT_TRUE(WaitFor([&] { return Look(box) != before; })) << "the box does not turn";
  }
  // Gives every control another value than it has after Store().
  void ChangeEverything() {
    ChoosePulldown(DrawButton(), kRowMiddle);
    ChoosePulldown(Tolerance(), kRowHigh);
    Replace(Sensitivity(), "33");
    ToggleSplash();
    Replace(Sound(), "loud %s");
    Replace(Browser(), "browse %s");
    EXPECT_TRUE(WaitFor([this] { return Reads(Browser(), "browse %s"); }));
  }
  // The window's pixels with the pointer at a place where it changes nothing.
  std::string LookAtTheWindow() {
    EXPECT_TRUE(Over(window_, 280, 160));
    return Look(window_);
  }
  bool Shows(Window control, const std::string& text) {
    return WaitFor([&] { return Reads(control, text); });
  }

  // --- Which button draws ------------------------------------------------------------------------

  // Another client, the user's own connection, grabs the middle button.
  void TakeMiddleButton() {
    XGrabButton(player->display(), 2, AnyModifier, player->root(), False, ButtonPressMask,
                GrabModeAsync, GrabModeAsync, 0L, 0L);
    XSync(player->display(), False);
  }

  bool Draws(int button) {
    fs::remove(MarkFile("marks/acted"));
    Draw(kDrawRight, button);
    return Appears("marks/acted");
  }
  // The motion with a button held that the trail's windows ask for, seen while a stroke is drawn.
  long TrailMotion(int button) {
    Go(kDrawRight[0]);
    player->Press(button);
    Trace(kDrawRight);
    long events = 0;
    EXPECT_TRUE(WaitFor([&] { return !MappedOverlays().empty(); }));
    for (const Window window : MappedOverlays()) {
      XWindowAttributes attributes{};
      XGetWindowAttributes(player->display(), window, &attributes);
      events |= attributes.all_event_masks;
    }
    player->Release(button);
    EXPECT_TRUE(TrailIsGone());
    return events & (Button1MotionMask | Button2MotionMask | Button3MotionMask);
  }
  // Whether the probe gets this button's click as it is made: not sent on by the program.
  bool IsOrdinary(int button, const std::string& state = "0") {
    const std::string which = " window=main button=" + std::to_string(button) + " ";
    const std::string pressed = "ButtonPress" + which + "state=" + state + " ";
    const std::string released = "ButtonRelease" + which;
    const size_t presses = probe_->Lines(pressed).size();
    const size_t releases = probe_->Lines(released).size();
    ClickIn(probe_->window(), 40, 40, button);
    probe_->Wait(releases + 1, released);
    const auto lines = probe_->Lines(pressed);
    return lines.size() == presses + 1 && lines.back().ends_with("send_event=0");
  }
  // A press of the draw button that moves `length` pixels, and whether it came as a click.
  bool MoveIsAClick(int length, int button) {
    const std::string released = "ButtonRelease window=main button=" + std::to_string(button) + " ";
    const size_t before = probe_->Lines(released).size();
    Drag({{920, 200}, {920 + length, 200}}, button);
    const auto lines = probe_->Wait(before + 1, released);
    EXPECT_TRUE(TrailIsGone());
    return lines.size() == before + 1 && lines.back().ends_with("send_event=1");
  }

  std::unique_ptr<ProbeClient> probe_;
  Window window_ = 0;
};

// The parameter is the window manager; empty for none.
class ManagedPreferencesTest : public PreferencesTest,
                               public ::testing::WithParamInterface<const char*> {
 protected:
  void SetUp() override {
    PreferencesTest::SetUp();
    if (*GetParam() != '\0') StartWindowManager(GetParam());
  }
  void Shift() { player->KeyDown(XK_Shift_L); }
  void NoShift() { player->KeyUp(XK_Shift_L); }
  // The left button is an ordinary one before, and draws afterwards.
  void ChooseLeft() {
    StartProbe();
    StartAndOpen();
    ChoosePulldown(DrawButton(), kRowLeft);
    EXPECT_TRUE(Shows(DrawButton(), "Left"));
    Ok();
    EXPECT_EQ(Stored()["button"], 1);
  }
  // A click with the button that draws, on a button or any other window. What it does is there
  // after the release.
  void Tap(Window window) {
    const testing::Box box = BoxOf(window);
    if (Over(window, box.width / 2, box.height / 2)) player->Click(1);
  }
  void OpenWithShift() {
    Shift();
    Open();
    NoShift();
  }
};

INSTANTIATE_TEST_SUITE_P(Alone, ManagedPreferencesTest, ::testing::Values(""));
INSTANTIATE_TEST_SUITE_P(Openbox, ManagedPreferencesTest, ::testing::Values("openbox"));

// --- What is shown and what is stored ----------------------------------------------------------

TEST_F(PreferencesTest, StoredDrawButtonFiveShowsRightAndOKSavesThree) {
  Store(5);
  json expected = Stored();
  ASSERT_EQ(expected["button"], 5);
  StartAndOpen();
  EXPECT_TRUE(Shows(DrawButton(), "Right"));
  EXPECT_EQ(Stored()["button"], 5) << "opening stores nothing";
  Ok();
  expected["button"] = 3;
  EXPECT_EQ(Stored(), expected);
}

TEST_F(PreferencesTest, StoredDrawButtonFourThatDrewGivesWayToRightWithOK) {
  Store(4);
  StartProbe();
  Start();
  EXPECT_TRUE(Draws(4));
  Open();
  EXPECT_TRUE(Shows(DrawButton(), "Right"));
  Ok();
  EXPECT_EQ(Stored()["button"], 3);
  EXPECT_TRUE(Draws(3));
  EXPECT_TRUE(IsOrdinary(4));
}

TEST_F(PreferencesTest, StoredToleranceOneOrFiveShowsMediumAndOKSavesThree) {
  for (const int stored : {1, 5}) {
    SCOPED_TRACE(stored);
    Store(3, stored);
    json expected = Stored();
    ASSERT_EQ(expected["tolerance"], stored);
    StartAndOpen();
    EXPECT_TRUE(Shows(Tolerance(), "Medium"));
    Ok();
    expected["tolerance"] = 3;
    EXPECT_EQ(Stored(), expected);
    StopGromlit();
  }
}

TEST_F(PreferencesTest, EveryOfferedValueIsShownAndSaved) {
  json expected = Stored();
  Start();
  const struct {
    int row;
    const char* button;
    int buttonvalue;
    const char* tolerance;
    int tolerancevalue;
  } rows[] = {{0, "Right", 3, "Low", 2}, {1, "Middle", 2, "Medium", 3}, {2, "Left", 1, "High", 4}};
  for (const auto& row : rows) {
    SCOPED_TRACE(row.row);
    Open();
    ChoosePulldown(DrawButton(), row.row);
    EXPECT_TRUE(Shows(DrawButton(), row.button));
    ChoosePulldown(Tolerance(), row.row);
    EXPECT_TRUE(Shows(Tolerance(), row.tolerance));
    if (row.row == 0) Picture("window");
    Ok();
    expected["button"] = row.buttonvalue;
    expected["tolerance"] = row.tolerancevalue;
    EXPECT_EQ(Stored(), expected);
  }
}

TEST_F(PreferencesTest, DefaultsFollowedByCancelChangesNothing) {
  Store(2, 4);
  StartProbe();
  StartAndOpen();
  const std::string before = ReadText(OptionsFile());
  const std::string look = LookAtTheWindow();
  Press(kDefaults);
  EXPECT_TRUE(Shows(DrawButton(), "Right"));
  EXPECT_TRUE(Shows(Tolerance(), "Medium"));
  EXPECT_TRUE(Shows(Sensitivity(), "4"));
  EXPECT_TRUE(Shows(Sound(), "play %s"));
  EXPECT_TRUE(Shows(Browser(), "netscape %s"));
  EXPECT_EQ(ReadText(OptionsFile()), before) << "nothing is saved until OK";
  Cancel();
  EXPECT_EQ(ReadText(OptionsFile()), before);
  EXPECT_TRUE(Draws(2));
  EXPECT_TRUE(IsOrdinary(3));
  Open();
  EXPECT_TRUE(WaitFor([&] { return LookAtTheWindow() == look; }));
}

TEST_F(PreferencesTest, DefaultsAreSavedByOKAndKeepWhatHasNone) {
  Store(2, 4);
  json expected = Stored();
  StartAndOpen();
  Replace(Sensitivity(), "99");
  Press(kDefaults);
  EXPECT_TRUE(Shows(Sensitivity(), "4"));
  Ok();
  const json defaults = {{"button", 3},        {"sensitivity", 4}, {"tolerance", 3},
                         {"splash", 1},        {"showactions", 1}, {"urlcmd", "netscape %s"},
                         {"sndcmd", "play %s"}};
  expected.update(defaults);
  EXPECT_EQ(Stored(), expected);
}

TEST_F(PreferencesTest, SensitivityTwelvePxSavesTwelveAndIsInForceAtOnce) {
  json expected = Stored();
  StartProbe();
  StartAndOpen();
  Replace(Sensitivity(), "12px");
  Ok();
  expected["sensitivity"] = 12;
  EXPECT_EQ(Stored(), expected);
  EXPECT_TRUE(MoveIsAClick(10, 3));
  EXPECT_TRUE(Draws(3));
  Open();
  EXPECT_TRUE(Shows(Sensitivity(), "12"));
}

TEST_F(PreferencesTest, SensitivityAbcSavesZero) {
  json expected = Stored();
  StartAndOpen();
  Replace(Sensitivity(), "abc");
  Ok();
  expected["sensitivity"] = 0;
  EXPECT_EQ(Stored(), expected);
  Open();
  EXPECT_TRUE(Shows(Sensitivity(), "0"));
}

TEST_F(PreferencesTest, SplashToggledWithOKIsSavedAndWithCancelIsNot) {
  json expected = Stored();
  StartAndOpen();
  const std::string empty = Look(Splash());
  ToggleSplash();
  Cancel();
  EXPECT_EQ(Stored(), expected);
  Open();
  EXPECT_TRUE(WaitFor([&] { return Look(Splash()) == empty; })) << "Cancel dropped it";
  ToggleSplash();
  Ok();
  expected["splash"] = 1;
  EXPECT_EQ(Stored(), expected);
  Open();
  ToggleSplash();
  EXPECT_EQ(Look(Splash()), empty);
  Ok();
  expected["splash"] = 0;
  EXPECT_EQ(Stored(), expected);
}

TEST_F(PreferencesTest, HelpOpensItsPageInTheBrowserThatIsInForce) {
  StartAndOpen();
  Replace(Browser(), "recorder other %s");
  Press(kHelp);
  const std::string page = "file:" + install->path() + "/help/preferences.html";
  const auto recorded = [&](const std::string& word) {
    return WaitFor([&] {
      return ReadText(*install / "recorded").find("\"" + word + "\",\"" + page + "\"]") !=
             std::string::npos;
    });
  };
  EXPECT_TRUE(recorded("url"));
  EXPECT_NE(Shown("Preferences"), Window{0});
  Ok();
  Open();
  Press(kHelp);
  EXPECT_TRUE(recorded("other"));
}

TEST_P(ManagedPreferencesTest, ClosingByTheWindowManagerDropsTheEditsAndReopeningReloads) {
  StartProbe();
  StartAndOpen();
  const std::string before = ReadText(OptionsFile());
  const std::string look = LookAtTheWindow();
  ChangeEverything();
  EXPECT_NE(LookAtTheWindow(), look);
  Close(window_);
  EXPECT_TRUE(WaitHidden("Preferences"));
  EXPECT_EQ(ReadText(OptionsFile()), before);
  EXPECT_TRUE(Draws(3));
  EXPECT_TRUE(IsOrdinary(2));
  Open();
  EXPECT_TRUE(WaitFor([&] { return LookAtTheWindow() == look; }));
  Ok();
  EXPECT_EQ(ReadText(OptionsFile()), before);
}

// --- The lengths of the fields -----------------------------------------------------------------

TEST_F(PreferencesTest, LongestCommandsThatCanBeTypedEndInTime) {
  json expected = Stored();
  StartAndOpen();
  // Six more than a field takes.
  Replace(Sound(), std::string(64, 's') + "xxxxxx");
  Replace(Browser(), std::string(64, 'u') + "xxxxxx");
  Ok();
  expected["sndcmd"] = std::string(63, 's');
  expected["urlcmd"] = std::string(64, 'u');
  EXPECT_EQ(Stored(), expected) << "the fields behind them too";
  const std::string file = ReadText(OptionsFile());
  EXPECT_EQ(file.substr(49 + 64, 128 - 64), std::string(128 - 64, '\0'));
  EXPECT_EQ(file[177 + 63], '\0');
}

TEST_F(PreferencesTest, StoredCommandsLongerThanCanBeTypedStayUnlessTheyAreChanged) {
  const std::string url = "recorder " + std::string(115, 'u') + " %s";
  const std::string snd = "recorder " + std::string(51, 's') + " %s";
  ASSERT_EQ(url.size(), 127u);
  ASSERT_EQ(snd.size(), 63u);
  Store(3, 3, url, snd);
  json expected = Stored();
  StartAndOpen();
  Ok();
  EXPECT_EQ(Stored(), expected);
  // What is typed finds no room; what is taken away is gone.
  Open();
  Enter(Browser());
  TypeText("x");
  player->Type(XK_BackSpace);
  Enter(Sound());
  player->Type(XK_BackSpace);
  Ok();
  expected["urlcmd"] = url.substr(0, 126);
  expected["sndcmd"] = snd.substr(0, 62);
  EXPECT_EQ(Stored(), expected);
}

TEST_F(PreferencesTest, StoredCommandsWithoutAnEndAreCutToTheirFields) {
  std::string file = ReadText(OptionsFile());
  file.replace(49, 128, 128, 'u');
  file.replace(177, 64, 64, 's');
  WriteText(OptionsFile(), file);
  StartAndOpen();
  EXPECT_TRUE(Shows(Sound(), std::string(40, 's')));
  Cancel();
  EXPECT_EQ(ReadText(OptionsFile()), file);
  Open();
  Ok();
  // The bytes that are missing to an end are all that changes.
  file[49 + 127] = '\0';
  file[177 + 63] = '\0';
  EXPECT_EQ(ReadText(OptionsFile()), file);
}

// --- The draw button ---------------------------------------------------------------------------

TEST_P(ManagedPreferencesTest, NewDrawButtonDrawsAtOnceAndTheOldOneIsFree) {
  StartProbe();
  Start();
  EXPECT_EQ(TrailMotion(3), Button3MotionMask);
  Open();
  ChoosePulldown(DrawButton(), kRowMiddle);
  EXPECT_TRUE(Draws(3)) << "not before OK";
  Ok();
  EXPECT_TRUE(IsOrdinary(3));
  EXPECT_TRUE(Draws(2));
  EXPECT_EQ(TrailMotion(2), Button2MotionMask);
  EXPECT_TRUE(MoveIsAClick(0, 2));
  // And back.
  Open();
  ChoosePulldown(DrawButton(), kRowRight);
  Ok();
  EXPECT_TRUE(IsOrdinary(2));
  EXPECT_TRUE(Draws(3));
}

// INV-GRAB-1.
TEST_F(PreferencesTest, DrawButtonOfAnotherClientIsToldAndTheOldOneGoesOnDrawing) {
  json expected = Stored();
  StartProbe();
  Start();
  TakeMiddleButton();
  Open();
  ChoosePulldown(DrawButton(), kRowMiddle);
  Replace(Sensitivity(), "21");
  Press(kOk);
  const Window dialog = WaitDialog();
  EXPECT_TRUE(Shows(dialog, kTaken));
  EXPECT_EQ(Out(), std::string(kTaken) + "\n");
  EXPECT_EQ(Err(), "");
  Picture("taken");
  EXPECT_NE(Shown("Preferences"), Window{0});
  DialogRight();
  expected["sensitivity"] = 21;
  EXPECT_EQ(Stored(), expected) << "the button as it was, the rest as chosen";
  EXPECT_TRUE(Draws(3));
  EXPECT_TRUE(MoveIsAClick(16, 3));

  // The other client is through with it: OK once more.
  XUngrabButton(player->display(), 2, AnyModifier, player->root());
  XSync(player->display(), False);
  EXPECT_TRUE(Shows(DrawButton(), "Middle"));
  Ok();
  expected["button"] = 2;
  EXPECT_EQ(Stored(), expected);
  EXPECT_TRUE(Draws(2));
  EXPECT_TRUE(IsOrdinary(3));
}

TEST_F(PreferencesTest, TakenButtonAndFailedSaveAreToldTogetherAndAnotherChoiceEndsBoth) {
  json expected = Stored();
  StartProbe();
  Start();
  TakeMiddleButton();
  fs::remove(OptionsFile());
  fs::create_directory(OptionsFile());
  Open();
  ChoosePulldown(DrawButton(), kRowMiddle);
  ChoosePulldown(Tolerance(), kRowLow);
  Press(kOk);
  const Window dialog = WaitDialog();
  EXPECT_TRUE(Shows(dialog, kTaken));
  EXPECT_TRUE(Shows(dialog, kNotSaved));
  EXPECT_TRUE(Shows(dialog, "Is a directory."));
  EXPECT_EQ(Out(), std::string(kTaken) + "\n");
  EXPECT_EQ(Err(), "Save Options: Is a directory\n");
  Picture("both");
  DialogRight();
  EXPECT_TRUE(Draws(3));
  ChoosePulldown(DrawButton(), kRowRight);
  fs::remove(OptionsFile());
  Ok();
  expected["tolerance"] = 2;
  EXPECT_EQ(Stored(), expected);
  EXPECT_TRUE(Draws(3));
}

// --- Drawing with the left button --------------------------------------------------------------

TEST_P(ManagedPreferencesTest, WithLeftAClickWithShiftPassesUntouched) {
  ChooseLeft();
  EXPECT_TRUE(Draws(1));
  EXPECT_TRUE(IsOrdinary(3));
  EXPECT_TRUE(MoveIsAClick(0, 1)) << "without Shift it comes with the release";
  Shift();
  EXPECT_TRUE(IsOrdinary(1, "1"));
  // Held and moved it draws nothing.
  const std::string released = "ButtonRelease window=main button=1";
  const size_t before = probe_->Lines(released).size();
  fs::remove(MarkFile("marks/acted"));
  Go(kDrawRight[0]);
  player->Press(1);
  Trace(kDrawRight);
  EXPECT_TRUE(MappedOverlays().empty());
  player->Release(1);
  const auto lines = probe_->Wait(before + 1, released);
  EXPECT_TRUE(lines.back().find("x_root=1120") != std::string::npos) << lines.back();
  EXPECT_TRUE(lines.back().ends_with("send_event=0"));
  NoShift();
  EXPECT_FALSE(testing::Exists(MarkFile("marks/acted")));
  EXPECT_TRUE(Draws(1));
}

TEST_P(ManagedPreferencesTest, WithLeftThePreferencesStayUsable) {
  ChooseLeft();
  json expected = Stored();
  OpenWithShift();
  // By clicks alone: a box, a pulldown's value, a field, a button.
  ToggleSplash();
  Tap(Tolerance());
  Window menu = 0;
  ASSERT_TRUE(WaitFor([&] { return (menu = Menu()) != 0; }));
  const int row = BoxOf(menu).height / 3;
  Go({OriginOf(menu).x + 20, OriginOf(menu).y + 4 + row * kRowHigh + row / 2});
  player->Click(1);
  EXPECT_TRUE(WaitFor([&] { return !Viewable(menu); }));
  EXPECT_TRUE(Shows(Tolerance(), "High"));
  Replace(Sensitivity(), "6");
  Tap(At(kOk));
  EXPECT_TRUE(WaitHidden("Preferences"));
  expected["splash"] = 1;
  expected["tolerance"] = 4;
  expected["sensitivity"] = 6;
  EXPECT_EQ(Stored(), expected);
  // With Shift as with any other draw button: a pulldown dragged, a button held.
  OpenWithShift();
  Shift();
  ChoosePulldown(Tolerance(), kRowLow);
  Ok();
  NoShift();
  expected["tolerance"] = 2;
  EXPECT_EQ(Stored(), expected);
  EXPECT_TRUE(Draws(1));
}

TEST_P(ManagedPreferencesTest, WithLeftTheMainWindowStaysUsable) {
  ChooseLeft();
  const auto listed = [this] { return Reads(MainWindow(), "right"); };
  ASSERT_TRUE(PassOver(probe_->window(), listed));
  ClickCell(0);
  EXPECT_TRUE(IsSelected(0));
  // The right button is an ordinary one, held for as long as the popup is open.
  ASSERT_TRUE(Over(MainWindow(), Cell(0).x, Cell(0).y));
  player->Press(3);
  Window popup = 0;
  ASSERT_TRUE(WaitFor([&] { return (popup = Menu()) != 0; }));
  ReleaseOnRow(popup, testing::kPopupDelete, 0, 3);
  EXPECT_TRUE(WaitFor([&] { return !listed(); }));
  Shift();
  Choose(Title::kHelp, testing::kHelpAbout);
  NoShift();
  const Window dialog = WaitDialog();
  const testing::Box box = BoxOf(dialog);
  Tap(WaitChild(dialog, box.width - 72, box.height - 32));
  EXPECT_TRUE(WaitNoDialog());
  // A click on a title opens nothing that stays.
  Tap(WaitChild(MainWindow(), 0, 0));
  EXPECT_TRUE(PointerBecomesFree());
  EXPECT_EQ(Menu(), Window{0});
}

// Step by step as help/preferences.html says.
TEST_P(ManagedPreferencesTest, TheWayBackFromLeftIsAsTheHelpSays) {
  ChooseLeft();
  // "Hold Shift, press the left button on "Options" in the menu bar of the main window, go to
  // "Preferences" and let go of both."
  Shift();
  Choose(Title::kOptions, testing::kPreferences);
  NoShift();
  window_ = WaitShown("Preferences");
  EXPECT_TRUE(Shows(DrawButton(), "Left"));
  // "Hold Shift, press the left button on the button below "Draw Button:", go to "Right" and let
  // go."
  Shift();
  ChoosePulldown(DrawButton(), kRowRight);
  NoShift();
  EXPECT_TRUE(Shows(DrawButton(), "Right"));
  // "Click on OK."
  Tap(At(kOk));
  EXPECT_TRUE(WaitHidden("Preferences"));
  EXPECT_EQ(Stored()["button"], 3);
  EXPECT_TRUE(IsOrdinary(1));
  EXPECT_TRUE(Draws(3));
  // Everything as before, without Shift.
  Open();
  ToggleSplash();
  Cancel();
}

// --- Saves that fail ---------------------------------------------------------------------------

class FailingPreferencesTest : public PreferencesTest {
 protected:
  // The superuser is not kept out by permissions: the program then runs as another user.
  Conditions AsAnybody() {
    for (const char* name : {"", "options", "plugins"})
      fs::permissions(*install / name, fs::perms::all);
    if (testing::Exists(OptionsFile()))
      fs::permissions(OptionsFile(), static_cast<fs::perms>(0666));
    Conditions conditions;
    if (geteuid() == 0) conditions.through = "setpriv --reuid=65534 --regid=65534 --clear-groups";
    return conditions;
  }
  void LimitFiles(rlim_t bytes) {
    rlimit limit{};
    ASSERT_EQ(prlimit(gromlit->pid(), RLIMIT_FSIZE, nullptr, &limit), 0);
    limit.rlim_cur = bytes == 0 ? limit.rlim_max : bytes;
    ASSERT_EQ(prlimit(gromlit->pid(), RLIMIT_FSIZE, &limit, nullptr), 0);
  }
  std::string OldFile() {
    return fs::is_regular_file(OptionsFile()) ? ReadText(OptionsFile()) : "no file";
  }

  // Changes preferences in the running program while something keeps the file from being written.
  // `expected` is what is stored once `remove` has taken that away.
  void ExpectFailedSave(const std::string& reason, json expected,
                        const std::function<void()>& remove) {
    const std::string before = OldFile();
    const auto names = NamesIn(install->path());
    const auto options = testing::Exists(*install / "options") ? NamesIn(*install / "options")
                                                               : std::vector<std::string>{};
    Open();
    ChoosePulldown(DrawButton(), kRowMiddle);
    Replace(Sensitivity(), "33");
    Press(kOk);
    const Window dialog = WaitDialog();
    EXPECT_TRUE(Shows(dialog, kNotSaved));
    EXPECT_TRUE(Shows(dialog, reason + "."));
    const std::string line = "Save Options: " + reason + "\n";
    EXPECT_EQ(Err(), line);
    EXPECT_EQ(Out(), "");
    Picture("not-saved");
    EXPECT_NE(Shown("Preferences"), Window{0}) << "the work is still there";
    EXPECT_EQ(OldFile(), before);
    DialogRight();
    // In force all the same.
    EXPECT_TRUE(Draws(2));
    EXPECT_TRUE(MoveIsAClick(30, 2));
    EXPECT_TRUE(IsOrdinary(3));
    EXPECT_EQ(NamesIn(install->path()), names) << "no temporary stays behind";
    if (!options.empty()) {
      EXPECT_EQ(NamesIn(*install / "options"), options);
    }
    EXPECT_TRUE(Shows(DrawButton(), "Middle"));
    EXPECT_TRUE(Shows(Sensitivity(), "33"));

    remove();
    Ok();
    expected["button"] = 2;
    expected["sensitivity"] = 33;
    EXPECT_EQ(Stored(), expected);
    EXPECT_EQ(Err(), line);
    EXPECT_EQ(Dialog(), Window{0});
    EXPECT_TRUE(Draws(2));
  }
};

TEST_F(FailingPreferencesTest, FileThatMayNotBeWrittenIsToldAndTheChangesHold) {
  const json expected = Stored();
  StartProbe();
  Start(AsAnybody());
  fs::permissions(OptionsFile(), static_cast<fs::perms>(0444));
  ExpectFailedSave("Permission denied", expected,
                   [this] { fs::permissions(OptionsFile(), static_cast<fs::perms>(0666)); });
}

TEST_F(FailingPreferencesTest, DirectoryThatMayNotBeWrittenIsToldAndTheChangesHold) {
  const json expected = Stored();
  StartProbe();
  Start(AsAnybody());
  // Where there is a file, it is written in its place.
  fs::permissions(*install / "options", static_cast<fs::perms>(0555));
  Open();
  Ok();
  EXPECT_EQ(Stored(), expected);
  EXPECT_EQ(Err(), "");
  fs::permissions(*install / "options", static_cast<fs::perms>(0777));
  fs::remove(OptionsFile());
  fs::permissions(*install / "options", static_cast<fs::perms>(0555));
  ExpectFailedSave("Permission denied", expected,
                   [this] { fs::permissions(*install / "options", static_cast<fs::perms>(0777)); });
}

TEST_F(FailingPreferencesTest, FullDiskIsToldAndTheChangesHold) {
  const json expected = Stored();
  StartProbe();
  Start();
  // A limit stands for the disk; the messages still fit.
  LimitFiles(200);
  ExpectFailedSave("File too large", expected, [this] { LimitFiles(0); });
}

TEST_F(FailingPreferencesTest, DirectoryInTheFilesPlaceIsToldAndTheChangesHold) {
  const json expected = Stored();
  StartProbe();
  Start();
  fs::remove(OptionsFile());
  fs::create_directory(OptionsFile());
  ExpectFailedSave("Is a directory", expected, [this] {
    EXPECT_TRUE(fs::is_empty(OptionsFile()));
    fs::remove(OptionsFile());
  });
}

TEST_F(FailingPreferencesTest, WithoutAnOptionsDirectoryTheDefaultsHoldWithTheChanges) {
  json expected = Stored();
  fs::remove_all(*install / "options");
  StartProbe();
  Start();
  // Reserved bytes of options that were never stored.
  expected.update({{"splash", 1},
                   {"showactions", 1},
                   {"urlcmd", "netscape %s"},
                   {"sndcmd", "play %s"},
                   {"temp1", 0},
                   {"temp4", 0},
                   {"charspare2", ""}});
  // The splash lies over the windows for a while. It has no windows inside, unlike a frame.
  ASSERT_TRUE(WaitFor([this] {
    const auto overlays = Overlays();
    return std::none_of(overlays.begin(), overlays.end(), [this](Window window) {
      return BoxOf(window).width > 50 && Children(window).empty();
    });
  }));
  ExpectFailedSave("No such file or directory", expected,
                   [this] { fs::create_directory(*install / "options"); });
}

}  // namespace
}  // namespace gromlit
