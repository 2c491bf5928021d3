#include <gmock/gmock.h>

#include "tests/x11/app/command_fixture.h"

#include "app/windows/dialogs.h"
#include "tests/support/captured.h"

#include <cerrno>
#include <cstring>

namespace gromlit::testing {
namespace {

using testing::CaptureStderr;
using ::testing::ElementsAre;
using testing::GetCapturedStderr;
using ::testing::HasSubstr;

class Dialogs : public CommandFixture {
 protected:
  static XWindowAttributes Is(Window window) {
    XWindowAttributes is{};
    XGetWindowAttributes(dpy, window, &is);
    return is;
  }
};

TEST_F(Dialogs, AreMadeHiddenWithTheirTitlesAndAnswers) {
  for (const XDialog* dlog : {about, confirm, editname, notice, app->dlog, app->newdlog}) {
    EXPECT_FALSE(Viewable(dlog->window)) << dlog->title;
  }
  EXPECT_STREQ(about->title, "About Gromlit");
  EXPECT_EQ(about->yes, nullptr) << "a notice has one button";
  EXPECT_STREQ(confirm->title, "Confirm");
  EXPECT_THAT(Lines(confirm), ElementsAre("Sure you want to delete this Symbol?"));
  EXPECT_EQ(confirm->yesfn, DialogYes);
  EXPECT_STREQ(editname->title, "Plugin Update");
  EXPECT_EQ(editname->yesfn, SaveNewPluginName);
  EXPECT_STREQ(editname->yes->label, "OK");
  EXPECT_STREQ(editname->no->label, "Cancel");
  EXPECT_STREQ(app->dlog->title, "Plugin Update");
  EXPECT_EQ(app->dlog->yesfn, YesDownloadPlugin);
  EXPECT_STREQ(app->newdlog->title, "New Plugin");
  EXPECT_EQ(app->newdlog->yesfn, YesNewPlugin);
}

TEST_F(Dialogs, LinesAreThoseThatAreKnown) {
  const std::vector<std::string> offer = Lines(app->dlog);
  ASSERT_EQ(offer.size(), 4U);
  EXPECT_EQ(offer[0], "There is not a Plugin for this Application.");
  EXPECT_THAT(offer[1], HasSubstr("web service"));
  EXPECT_EQ(offer[2], "");
  EXPECT_EQ(offer[3], "Would you like to download one?");
  EXPECT_THAT(
      Lines(app->newdlog),
      ElementsAre("After clicking on OK,", "Click on the Application to create a plugin for it.",
                  "", "Would you like to create one now?"));
}

TEST_F(Dialogs, AboutNamesProductVersionRightsAndContact) {
  const std::vector<std::string> lines = Lines(about);
  ASSERT_EQ(lines.size(), 4U);
  EXPECT_THAT(lines[0], ::testing::MatchesRegex("Gromlit, version [0-9]+\\.[0-9]+\\.[0-9]+"));
  EXPECT_THAT(lines[2], HasSubstr("Gromlit developers"));
  EXPECT_THAT(lines[3], HasSubstr("feedback@gromlit.localhost"));
}

TEST_F(Dialogs, LinesFitBetweenTheBannerAndTheButtons) {
  const auto fits = [](const XDialog* dlog, const char* const* msgs) {
    int baseline = logoImage->height + 24;
    for (const char* const* line = msgs; *line != nullptr; line++) {
      EXPECT_LE(TextWidth(txtFontinfo, *line), dlog->width - 8) << *line;
      EXPECT_LT(baseline + txtFontinfo->descent, dlog->height - 32) << *line;
      baseline += txtCharht + 2;
    }
  };
  for (const XDialog* dlog : {about, editname, app->dlog, app->newdlog}) fits(dlog, dlog->msgs);
  for (const char* const* msgs : {ConfirmDeleteSymbolMsg, ConfirmDeletePluginMsg, ConfirmExitMsg}) {
    fits(confirm, msgs);
  }
}

TEST_F(Dialogs, NameFieldLiesBelowItsQuestion) {
  const auto* txt = static_cast<TextEditor*>(editname->child);
  const XWindowAttributes is = Is(txt->window);
  EXPECT_EQ(is.x, 50);
  EXPECT_EQ(is.y, logoImage->height + txtCharht + 24);
  EXPECT_EQ(is.width, 200);
  EXPECT_EQ(is.height, 24);
  EXPECT_NE(is.map_state, IsUnmapped);
  EXPECT_EQ(editname->width, 332);
  EXPECT_EQ(editname->height, logoImage->height + txtCharht + 98);
  EXPECT_EQ(about->width, 332);
  EXPECT_EQ(about->height, logoImage->height + txtCharht + 98);
}

// --- ShowFailure ------------------------------------------------------------------------------

TEST_F(Dialogs, FailureIsShownAtThePointerUntilOk) {
  player->MoveTo(640, 500);
  ShowFailure("A line.\nAnd one more.");
  Pump();
  EXPECT_EQ(ShownFailure(), "A line./And one more.");
  const XPoint middle = Middle(notice->window);
  EXPECT_NEAR(middle.x, 640, 1);
  EXPECT_NEAR(middle.y, 500, 1);
  ClickOn(notice->no->window);
  EXPECT_EQ(ShownFailure(), "");
}

TEST_F(Dialogs, FailureIsAsLargeAsItsLinesNeed) {
  ShowFailure("Short.");
  Pump();
  const XWindowAttributes small = Is(notice->window);
  EXPECT_EQ(small.width, logoImage->width + TextWidth(labelFontinfo, notice->title) + 32)
      << "room for the title";
  EXPECT_EQ(small.height, logoImage->height + txtCharht + 48 + txtCharht + 2);
  const std::string longer(60, 'x');
  ShowFailure((longer + "\nShort.").c_str());
  Pump();
  const XWindowAttributes large = Is(notice->window);
  EXPECT_EQ(large.width, TextWidth(txtFontinfo, longer.c_str()) + 32);
  EXPECT_EQ(large.height, logoImage->height + txtCharht + 48 + 2 * (txtCharht + 2));
  EXPECT_EQ(Is(notice->no->window).x, large.width - 72);
  EXPECT_EQ(Is(notice->no->window).y, large.height - 32);
}

TEST_F(Dialogs, FailureKeepsToSixLinesOfHundredBytes) {
  std::string text(300, 'y');
  for (int i = 2; i <= 9; i++) text += "\nline " + std::to_string(i);
  ShowFailure(text.c_str());
  Pump();
  EXPECT_EQ(ShownFailure(), std::string(100, 'y') + "/line 2/line 3/line 4/line 5/line 6");
}

TEST_F(Dialogs, FailureOfASaveSaysWhy) {
  ShowSaveFailure("The plug-in was not saved.", ENOSPC);
  Pump();
  EXPECT_EQ(ShownFailure(),
            std::string("The plug-in was not saved./") + std::strerror(ENOSPC) + ".");
}

TEST_F(Dialogs, FailureWithoutADialogGoesToTheErrorStream) {
  notice = nullptr;
  CaptureStderr();
  ShowFailure("Too early.");
  EXPECT_EQ(GetCapturedStderr(), "Too early.\n");
}

}  // namespace
}  // namespace gromlit::testing
