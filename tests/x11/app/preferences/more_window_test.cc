// First: the test library's headers cannot bear Xlib's macros.
#include "tests/support/x_fixture.h"

#include "app/preferences/more_window.h"

#include <cstdlib>
#include <filesystem>
#include <iterator>
#include <memory>
#include <optional>

#include "app/preferences/user_options_window.h"
#include "app/windows/dialogs.h"
#include "app/windows/top_level.h"
#include "core/choices.h"
#include "core/option_files.h"
#include "display/display.h"
#include "display/draw_button.h"
#include "toolkit/text.h"

namespace gromlit {
namespace {

class MoreWindowTest : public testing::XFixture {
 protected:
  void SetUp() override {
    XFixture::SetUp();
    if (HasFatalFailure()) return;
    GetUserOptions();
    *user = {};
    DefaultUserOptions(user);
    // As a start does: what an earlier test of this process has chosen would still count.
    RenewDrawLocks();
    MakeAboutDialog();
    CreateUserOptions();
    mbPrefDraw(nullptr, nullptr);
    Pump();
  }

  void Click(Window window) {
    int rootx;
    int rooty;
    Window child;
    XTranslateCoordinates(dpy, window, root, 6, 6, &rootx, &rooty, &child);
    player->MoveTo(rootx, rooty);
    Pump();
    player->Press(1);
    Pump();
    player->Release(1);
    Pump();
  }
  void Open() {
    Click(opt->bmore->window);
    ASSERT_TRUE(Viewable());
  }
  bool Viewable() {
    XWindowAttributes attributes{};
    XGetWindowAttributes(dpy, more->window, &attributes);
    return attributes.map_state == IsViewable;
  }
};

TEST_F(MoreWindowTest, OKPutsAChoiceInForceIntoTheFileAndIntoThePreferences) {
  Open();
  EXPECT_EQ(more->boxes[0]->state, 0);
  Click(more->boxes[0]->window);
  EXPECT_EQ(user->temp3, 0) << "before OK";
  Click(more->bsave->window);
  EXPECT_FALSE(Viewable());
  EXPECT_EQ(user->temp3, kByShape);
  EXPECT_EQ(opt->usr.temp3, kByShape);
  const std::unique_ptr<GromlitUserOptions> stored(LoadUserOptions(defaultOptionFile));
  ASSERT_NE(stored, nullptr);
  EXPECT_EQ(stored->temp3, kByShape);
  Click(opt->bdefaults->window);
  EXPECT_EQ(opt->usr.temp3, kByShape) << "Defaults leaves the choices";
  Click(opt->bsave->window);
  EXPECT_EQ(user->temp3, kByShape) << "the preferences' own OK undoes nothing";
  const std::unique_ptr<GromlitUserOptions> again(LoadUserOptions(defaultOptionFile));
  ASSERT_NE(again, nullptr);
  EXPECT_EQ(again->temp3, kByShape);
}

TEST_F(MoreWindowTest, CancelChangesNothingAndTheBoxesComeAnew) {
  Open();
  Click(more->boxes[0]->window);
  Click(more->bcancel->window);
  EXPECT_FALSE(Viewable());
  EXPECT_EQ(user->temp3, 0);
  Open();
  EXPECT_EQ(more->boxes[0]->state, 0);
}

TEST_F(MoreWindowTest, RecommendedTurnsTheBoxesAndNothingElse) {
  Open();
  Click(more->brecommended->window);
  for (size_t i = 0; i < Choices().size(); i++)
    EXPECT_EQ(more->boxes[i]->state, Choices()[i].recommended ? 1 : 0);
  EXPECT_EQ(user->temp3, 0);
}

TEST_F(MoreWindowTest, EveryBoxIsAnOptionOfItsOwn) {
  struct Expected {
    const char* caption;
    int32_t temp1, temp2, temp3, temp4;
  };
  constexpr Expected kExpected[] = {
      {"Match by Shape", 0, 0, kByShape, 0},
      {"Real Input", kRealInput, 0, 0, 0},
      {"Draw with Locks On", 0, kDrawWithLocks, 0, 0},
      {"Fall Back to Default", 0, kFallBack, 0, 0},
      {"Activate the Window First", 0, kActivateFirst, 0, 0},
      {"Open Web Pages Directly", 0, kOpenDirectly, 0, 0},
      {"Menus and Fields as on Today's Desktops", 0, 0, 0, kModernManners},
      {"Name the Action while Drawing", 0, kNameWhileDrawing, 0, 0},
  };
  ASSERT_EQ(Choices().size(), std::size(kExpected));
  for (size_t i = 0; i < std::size(kExpected); i++) {
    SCOPED_TRACE(kExpected[i].caption);
    EXPECT_STREQ(Choices()[i].caption, kExpected[i].caption);
    Open();
    Click(more->boxes[i]->window);
    Click(more->bsave->window);
    EXPECT_EQ(user->temp1, kExpected[i].temp1);
    EXPECT_EQ(user->temp2, kExpected[i].temp2);
    EXPECT_EQ(user->temp3, kExpected[i].temp3);
    EXPECT_EQ(user->temp4, kExpected[i].temp4);
    Open();
    EXPECT_EQ(more->boxes[i]->state, 1);
    Click(more->boxes[i]->window);
    Click(more->bsave->window);
    EXPECT_EQ(user->temp1, 0);
    EXPECT_EQ(user->temp2, 0);
    EXPECT_EQ(user->temp3, 0);
    EXPECT_EQ(user->temp4, 0);
  }
}

// A variable with another value while the object lives.
class Environment {
 public:
  Environment(const char* name, const std::string& value) : name_(name) {
    if (const char* former = std::getenv(name); former != nullptr) former_ = former;
    setenv(name, value.c_str(), 1);
  }
  ~Environment() {
    if (former_.has_value())
      setenv(name_, former_->c_str(), 1);
    else
      unsetenv(name_);
  }
  Environment(const Environment&) = delete;
  Environment& operator=(const Environment&) = delete;

 private:
  const char* name_;
  std::optional<std::string> former_;
};

TEST_F(MoreWindowTest, StartingWithTheDesktopIsAFileOfTheDesktops) {
  const testing::TempDir home;
  const Environment config("XDG_CONFIG_HOME", home.path());
  const Environment path("PATH", home / "bin");
  const std::string entry = home / "autostart/gromlit.desktop";
  Open();
  EXPECT_EQ(more->autostart->state, 0);
  Click(more->autostart->window);
  EXPECT_FALSE(testing::Exists(entry)) << "before OK";
  Click(more->bsave->window);
  EXPECT_TRUE(Viewable()) << "without a launcher";
  EXPECT_FALSE(testing::Exists(entry));
  HideTopLevel(notice->window);

  std::filesystem::create_directory(home / "bin");
  testing::WriteText(home / "bin/gromlit-session", "");
  std::filesystem::permissions(home / "bin/gromlit-session", std::filesystem::perms::owner_all);
  Click(more->brecommended->window);
  EXPECT_EQ(more->autostart->state, 1);
  Click(more->bsave->window);
  EXPECT_FALSE(Viewable());
  EXPECT_NE(testing::ReadText(entry).find("/bin/gromlit-session\" -path \"" +
                                          std::string(GromlitPath) + "\"\n"),
            std::string::npos)
      << testing::ReadText(entry);
  Open();
  EXPECT_EQ(more->autostart->state, 1);
  Click(more->autostart->window);
  Click(more->bcancel->window);
  EXPECT_TRUE(testing::Exists(entry));
  Open();
  Click(more->autostart->window);
  Click(more->bsave->window);
  EXPECT_FALSE(testing::Exists(entry));
}

TEST_F(MoreWindowTest, EveryTextFitsTheWindow) {
  for (const Choice& choice : Choices()) {
    EXPECT_LE(TextWidth(txtFontinfo, choice.caption), more->width - 50) << choice.caption;
    EXPECT_LE(TextWidth(txtFontinfo, choice.sentence), more->width - 50) << choice.sentence;
  }
}

TEST_F(MoreWindowTest, LocksCountAsSoonAsOKIsPressed) {
  ASSERT_TRUE(GrabDrawButton(3));
  ASSERT_EQ(DrawLocks(), 0u);
  Open();
  Click(more->boxes[2]->window);
  EXPECT_EQ(DrawLocks(), 0u) << "before OK";
  Click(more->bsave->window);
  EXPECT_NE(DrawLocks() & LockMask, 0u);
  Open();
  Click(more->boxes[2]->window);
  Click(more->bsave->window);
  EXPECT_EQ(DrawLocks(), 0u);
}

TEST_F(MoreWindowTest, RecommendedIsWhatMakesItWorkWithEverything) {
  Open();
  Click(more->brecommended->window);
  Click(more->bsave->window);
  EXPECT_EQ(user->temp1, kRealInput);
  EXPECT_EQ(user->temp2, kDrawWithLocks | kFallBack | kActivateFirst | kOpenDirectly);
  EXPECT_EQ(user->temp3, kByShape);
  EXPECT_EQ(user->temp4, kModernManners);
}

TEST_F(MoreWindowTest, AValueOfALaterVersionStaysUnlessTheBoxIsTurned) {
  user->temp3 = 77;
  Open();
  EXPECT_EQ(more->boxes[0]->state, 0) << "an unknown value acts as 0";
  Click(more->bsave->window);
  EXPECT_EQ(user->temp3, 77);
}

TEST(Choices, BitsBesideABitStay) {
  const Choice choice{"", "", &GromlitUserOptions::temp2, 4, true, false};
  GromlitUserOptions options{};
  options.temp2 = 64 | 2;
  TurnChoice(&options, choice, true);
  EXPECT_EQ(options.temp2, 64 | 4 | 2);
  TurnChoice(&options, choice, false);
  EXPECT_EQ(options.temp2, 64 | 2);
}

}  // namespace
}  // namespace gromlit
