// First: the test library's headers cannot bear Xlib's macros.
#include "tests/support/x_fixture.h"

#include "app/preferences/more_window.h"

#include <memory>

#include "app/preferences/choices.h"
#include "app/preferences/user_options_window.h"
#include "app/windows/dialogs.h"
#include "core/option_files.h"

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
