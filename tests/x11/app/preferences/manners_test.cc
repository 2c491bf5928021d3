// What today's manners change of widgets in their windows: the wheel, rows and pages of scrollbars,
// captions of check boxes. Each is tried with plain manners, too, where nothing of it happens.
// First: the test library's headers cannot bear Xlib's macros.
#include "tests/x11/app/main_window_fixture.h"

#include "app/action_editor/action_tabs.h"
#include "app/preferences/more_window.h"
#include "app/preferences/user_options_window.h"
#include "core/option_files.h"
#include "toolkit/check_box.h"
#include "toolkit/text.h"
#include "toolkit/text_list.h"

namespace gromlit {
namespace {

constexpr int kUp = 4;  // buttons of the wheel
constexpr int kDown = 5;

class MannersTest : public testing::MainWindowFixture {
 protected:
  void SetUp() override {
    MainWindowFixture::SetUp();
    if (HasFatalFailure()) return;
    GetUserOptions();
    DefaultUserOptions(user);
    user->temp4 = kModernManners;
  }
  void TearDown() override {
    user->temp4 = kPlainManners;
    MainWindowFixture::TearDown();
  }
  // The user turns the wheel, or clicks, over a point of a window.
  void PressOver(Window window, int x, int y, int button) {
    int rootx = 0;
    int rooty = 0;
    Window child;
    XTranslateCoordinates(dpy, window, root, x, y, &rootx, &rooty, &child);
    player->MoveTo(rootx, rooty);
    player->Click(button);
    Pump();
  }
  // Presses button 1 until the scrollbar has acted once: its handler comes back at the release.
  void ClickBar(XScrollbar* sb, int y) {
    player->Release(1);
    int rootx = 0;
    int rooty = 0;
    Window child;
    XTranslateCoordinates(dpy, sb->window, root, 7, y, &rootx, &rooty, &child);
    player->MoveTo(rootx, rooty);
    player->Click(1);
    Pump();
  }
  void GiveActions(int count) {
    GromlitPlugin* plugin = app->plugin;
    for (int i = plugin->nactions; i < count; i++) plugin->actions[i] = new GromlitAction{};
    plugin->nactions = static_cast<uint8_t>(count);
    UpdateGromlitScrollRange();
    RefreshGromlitApp();
    Pump();
  }
};

TEST_F(MannersTest, ANotchScrollsTheGridByARow) {
  GiveActions(60);  // ten rows, of which three are seen
  const int x = app->iconx + 20;
  const int y = app->icony + 20;
  PressOver(app->window, x, y, kDown);
  EXPECT_EQ(app->icontop, 6);
  PressOver(app->window, x, y, kDown);
  EXPECT_EQ(app->icontop, 12);
  PressOver(app->window, x, y, kUp);
  EXPECT_EQ(app->icontop, 6);
  for (int i = 0; i < 20; i++) PressOver(app->sbar->window, 7, 50, kDown);
  EXPECT_EQ(app->icontop, 42) << "the last three rows, with no empty one below them";
  for (int i = 0; i < 20; i++) PressOver(app->window, x, y, kUp);
  EXPECT_EQ(app->icontop, 0);
}

TEST_F(MannersTest, EveryRowOfALongGridIsReached) {
  GiveActions(kMaxActions);  // a pixel of the track is worth several pixels of content
  for (int row = 1; row <= 19; row++) {
    PressOver(app->window, app->iconx + 20, app->icony + 20, kDown);
    EXPECT_EQ(app->icontop, 6 * row);
  }
  PressOver(app->window, app->iconx + 20, app->icony + 20, kDown);
  EXPECT_EQ(app->icontop, 6 * 19) << "the end";
}

TEST_F(MannersTest, PlainManners) {
  GiveActions(60);
  user->temp4 = kPlainManners;
  PressOver(app->window, app->iconx + 20, app->icony + 20, kDown);
  PressOver(app->sbar->window, 7, 50, kDown);
  EXPECT_EQ(app->icontop, 0);
  ClickBar(app->sbar, app->sbar->height - 5);
  EXPECT_EQ(app->sbar->pos, 1) << "a pixel of the track";
  user->temp4 = 7;
  PressOver(app->window, app->iconx + 20, app->icony + 20, kDown);
  EXPECT_EQ(app->icontop, 0) << "a value that nobody knows counts as 0";
}

TEST_F(MannersTest, ArrowsMoveByARowAndTheTroughByAPage) {
  GiveActions(60);
  ClickBar(app->sbar, app->sbar->height - 5);
  EXPECT_EQ(app->icontop, 6);
  ClickBar(app->sbar, app->sbar->height - 20);
  EXPECT_EQ(app->icontop, 18) << "two rows: one of the three stays";
  ClickBar(app->sbar, 14);
  EXPECT_EQ(app->icontop, 6);
  ClickBar(app->sbar, 5);
  EXPECT_EQ(app->icontop, 0);
}

TEST_F(MannersTest, AThumbThatIsDraggedCountsAgainFromItsPlace) {
  GiveActions(60);
  PressOver(app->window, app->iconx + 20, app->icony + 20, kDown);
  app->sbar->pos = 0;
  UpdateScrollbar(app->sbar);
  EXPECT_EQ(app->icontop, 0);
}

TEST_F(MannersTest, ANotchScrollsTheListOfCommands) {
  XTextList* list = act->lst;
  std::vector<const char*> lines(40, "line");
  SetListItems(list, lines.data(), static_cast<int>(lines.size()));
  XMapRaised(dpy, act->window);
  Pump();
  PressOver(list->window, 20, 20, kDown);
  EXPECT_EQ(list->top, 1);
  for (int i = 0; i < 60; i++) PressOver(list->window, 20, 20, kDown);
  EXPECT_GE(list->top + list->visible, 40);
  EXPECT_LE(list->top + list->visible, 41);
  PressOver(list->window, 20, 20, kUp);
  EXPECT_LE(list->top + list->visible, 40);
  SetListItems(list, nullptr, 0);
}

TEST_F(MannersTest, ACaptionTurnsItsBox) {
  CreateUserOptions();
  mbPrefDraw(nullptr, nullptr);
  Pump();
  const int before = opt->dosplash->state;
  const int y = opt->dosplash->y + 6;
  PressOver(opt->window, 100, y, 1);
  EXPECT_NE(opt->dosplash->state, before);
  EXPECT_EQ(opt->usr.splash, opt->dosplash->state) << "the box has told its owner";
  PressOver(opt->window, 500, y, 1);
  PressOver(opt->window, 100, y + 40, 1);
  EXPECT_NE(opt->dosplash->state, before) << "beside the caption, and below it";
  PressOver(opt->window, 100, y, kDown);
  EXPECT_NE(opt->dosplash->state, before) << "the wheel turns nothing";

  moreClickOpen(nullptr);
  Pump();
  for (XCheckBox* box : more->boxes) {
    const int state = box->state;
    PressOver(more->window, 100, box->y + 2 + txtCharht, 1);
    EXPECT_NE(box->state, state) << "the sentence below the caption";
  }

  user->temp4 = kPlainManners;
  XUnmapWindow(dpy, opt->window);
  mbPrefDraw(nullptr, nullptr);
  Pump();
  const int state = opt->dosplash->state;
  PressOver(opt->window, 100, y, 1);
  EXPECT_EQ(opt->dosplash->state, state);
}

TEST_F(MannersTest, ACaptionGoesWithItsBox) {
  XMapRaised(dpy, act->window);
  Pump();
  XTabBar* tbar = act->tbar;
  auto* tab = static_cast<ActionTab*>(tbar->owner);
  tabText(tbar, tab, kTabSelected);
  Pump();
  const int y = tab->checkbox->y + 6;
  PressOver(tbar->window, 80, y, 1);
  EXPECT_EQ(tab->checkbox->state, 1);
  tabRun(tbar, tab, kTabSelected);
  tab->checkbox->state = 0;
  Pump();
  PressOver(tbar->window, 80, y, 1);
  EXPECT_EQ(tab->checkbox->state, 0) << "this page has none";
}

}  // namespace
}  // namespace gromlit
