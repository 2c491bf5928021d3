// First: the test library's headers cannot bear Xlib's macros.
#include "tests/support/x_fixture.h"

#include "app/preferences/user_options_window.h"

#include <X11/Xutil.h>
#include <X11/keysym.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <cstring>
#include <filesystem>
#include <memory>
#include <string>

#include "app/windows/dialogs.h"
#include "core/option_files.h"
#include "core/strings.h"
#include "display/draw_button.h"
#include "display/x_handles.h"
#include "tests/support/captured.h"
#include "tests/x11/app/window_identity.h"
#include "tests/x11/toolkit/request_cost.h"
#include "toolkit/child_window.h"

namespace gromlit {
namespace {

namespace fs = std::filesystem;
using testing::CaptureStderr;
using testing::CaptureStdout;
using testing::Cost;
using testing::CostOf;
using testing::GetCapturedStderr;
using testing::GetCapturedStdout;

int changes;         // calls of drawButtonChanged
int buttonatchange;  // user->button at the last one

void NoteChange() {
  changes++;
  buttonatchange = user->button;
}

class UserOptionsTest : public testing::XFixture {
 protected:
  void SetUp() override {
    XFixture::SetUp();
    if (HasFatalFailure()) return;
    GetUserOptions();
    *user = {};
    DefaultUserOptions(user);
    user->temp3 = 77;
    std::memcpy(user->charspare2, "\0raw", 4);
    ASSERT_TRUE(GrabDrawButton(user->button));
    changes = 0;
    drawButtonChanged = NoteChange;
    MakeAboutDialog();
    CreateUserOptions();
    UpdateUserOptions(user);
    Pump();
  }
  void TearDown() override {
    for (int button = 1; button <= 5; button++) player->Release(button);
    Pump();
    EXPECT_TRUE(player->CanGrabPointer()) << "the pointer was left grabbed";
    drawButtonChanged = nullptr;
    XFixture::TearDown();
  }

  void Open() {
    mbPrefDraw(nullptr, nullptr);
    Pump();
  }

  XWindowAttributes Attributes(Window window) {
    XWindowAttributes attributes{};
    EXPECT_NE(XGetWindowAttributes(dpy, window, &attributes), 0);
    return attributes;
  }
  bool Viewable(Window window) { return Attributes(window).map_state == IsViewable; }

  // The user's pointer goes to a point of a window, or clicks on it.
  void MoveTo(Window window, int x, int y) {
    int rootx;
    int rooty;
    Window child;
    XTranslateCoordinates(dpy, window, root, x, y, &rootx, &rooty, &child);
    player->MoveTo(rootx, rooty);
    Pump();
  }
  void Click(Window window, int x = 6, int y = 6, int button = 1) {
    MoveTo(window, x, y);
    player->Press(button);
    Pump();
    player->Release(button);
    Pump();
  }

  // Chooses a row of a pulldown by dragging with a mouse button held.
  void Choose(XButton* pulldown, int row) {
    MoveTo(pulldown->window, 6, 6);
    player->Press(1);
    Pump();
    XMenu* const menu = pulldown->menu;
    EXPECT_TRUE(Viewable(menu->window));
    MoveTo(menu->window, menu->width / 2, 4 + menu->itemheight * row + menu->itemheight / 2);
    EXPECT_EQ(menu->selected, row);
    player->Release(1);
    Pump();
    EXPECT_FALSE(Viewable(menu->window));
  }

  // Replaces a field's text by typing. Letters, digits and blanks only.
  void Type(TextEditor* field, const std::string& text) {
    MoveTo(field->window, 5, 5);
    player->KeyDown(XK_Control_L);
    player->Type(XK_a);
    player->Type(XK_k);
    player->KeyUp(XK_Control_L);
    for (const char c : text) player->Type(static_cast<KeySym>(c));
    Pump();
    ASSERT_EQ(TextEditorText(field), text.substr(0, kEditorTyped));
  }

  // What the user's choice of a command looks like in a field, without typing it.
  void Fill(TextEditor* field, const std::string& text) {
    TextEditorUpdate(field, text.c_str());
    Pump();
  }

  void CloseByWindowManager() {
    XEvent request{};
    request.xclient.type = ClientMessage;
    request.xclient.window = opt->window;
    request.xclient.message_type = wm_protocols;
    request.xclient.format = 32;
    request.xclient.data.l[0] = static_cast<long>(wm_delete);
    XSendEvent(player->display(), opt->window, False, 0, &request);
    XSync(player->display(), False);
    Pump();
  }

  std::string Path() { return *install / "options/default.user"; }
  std::unique_ptr<GromlitUserOptions> Saved() {
    return std::unique_ptr<GromlitUserOptions>(LoadUserOptions("default.user"));
  }

  // Whether the text stands in the window, black on light grey in the text font.
  ::testing::AssertionResult Shows(const char* text, int x, int baseline) {
    const int width = XTextWidth(txtFontinfo, text, static_cast<int>(std::strlen(text)));
    const int top = baseline - txtFontinfo->ascent;
    const Pixmap paper = XCreatePixmap(dpy, opt->window, static_cast<unsigned>(width),
                                       static_cast<unsigned>(txtCharht),
                                       static_cast<unsigned>(DefaultDepth(dpy, screen)));
    const GC pen = MakeWindowGC(opt->window, txtFont);
    XSetForeground(dpy, pen, lgrey.pixel);
    XFillRectangle(dpy, paper, pen, 0, 0, static_cast<unsigned>(width),
                   static_cast<unsigned>(txtCharht));
    XSetForeground(dpy, pen, black.pixel);
    XDrawString(dpy, paper, pen, 0, txtFontinfo->ascent, text, static_cast<int>(std::strlen(text)));
    const auto take = [&](Drawable from, int left, int upper) {
      return XGetImage(dpy, from, left, upper, static_cast<unsigned>(width),
                       static_cast<unsigned>(txtCharht), AllPlanes, ZPixmap);
    };
    XImage* const expected = take(paper, 0, 0);
    XImage* const seen = take(opt->window, x, top);
    int different = 0;
    for (int row = 0; row < txtCharht; row++) {
      for (int column = 0; column < width; column++) {
        different += XGetPixel(expected, column, row) != XGetPixel(seen, column, row) ? 1 : 0;
      }
    }
    XDestroyImage(expected);
    XDestroyImage(seen);
    XFreePixmap(dpy, paper);
    XFreeGC(dpy, pen);
    if (different == 0) return ::testing::AssertionSuccess();
    return ::testing::AssertionFailure() << '"' << text << "\" is not at " << x << ", " << baseline
                                         << ": " << different << " pixels differ";
  }
};

// --- The window -------------------------------------------------------------------------------

TEST_F(UserOptionsTest, StartsHiddenWithItsNamesForWindowManagers) {
  const XWindowAttributes is = Attributes(opt->window);
  EXPECT_EQ(is.map_state, IsUnmapped);
  EXPECT_EQ(is.width, 560);
  EXPECT_EQ(is.height, 364);
  EXPECT_EQ(is.border_width, 1);
  EXPECT_EQ(is.backing_store, WhenMapped);
  EXPECT_EQ(is.your_event_mask, ExposureMask);
  testing::ExpectIdentity(opt->window, {.title = "Gromlit: Preferences",
                                        .icontitle = "Gromlit: Preferences",
                                        .name = "Preferences",
                                        .width = opt->width,
                                        .height = opt->height});
}

TEST_F(UserOptionsTest, ControlsHaveTheirPlaces) {
  const auto place = [&](Window window) {
    const XWindowAttributes is = Attributes(window);
    return std::array{is.x, is.y, is.width, is.height};
  };
  using Place = std::array<int, 4>;
  const int line = txtCharht;
  EXPECT_EQ(place(opt->logo->window), (Place{16, 16, 528, opt->logo->height}));
  EXPECT_STREQ(opt->logo->title, "P r e f e r e n c e s");
  EXPECT_EQ(place(opt->bhelp->window), (Place{16, 324, 64, 24}));
  EXPECT_EQ(place(opt->bdefaults->window), (Place{320, 324, 64, 24}));
  EXPECT_EQ(place(opt->bsave->window), (Place{400, 324, 64, 24}));
  EXPECT_EQ(place(opt->bcancel->window), (Place{480, 324, 64, 24}));
  EXPECT_STREQ(opt->bhelp->label, "Help");
  EXPECT_STREQ(opt->bdefaults->label, "Defaults");
  EXPECT_STREQ(opt->bsave->label, "OK");
  EXPECT_STREQ(opt->bcancel->label, "Cancel");
  EXPECT_EQ(place(opt->button->window), (Place{16, 100, 96, 24}));
  EXPECT_EQ(place(opt->tolerance->window), (Place{144, 100, 96, 24}));
  EXPECT_EQ(place(opt->txt->window), (Place{16, line + 140, 32, 24}));
  EXPECT_EQ(place(opt->dosplash->window), (Place{16, line + 180, 12, 12}));
  EXPECT_EQ(place(opt->snd->window), (Place{16, 3 * line + 196, 300, 24}));
  EXPECT_EQ(place(opt->url->window), (Place{16, 3 * line + 244, 300, 24}));
  Open();
  for (const Window window :
       {opt->logo->window, opt->bhelp->window, opt->bdefaults->window, opt->bsave->window,
        opt->bcancel->window, opt->button->window, opt->tolerance->window, opt->txt->window,
        opt->dosplash->window, opt->snd->window, opt->url->window}) {
    EXPECT_TRUE(Viewable(window));
  }
}

TEST_F(UserOptionsTest, DrawsItsTexts) {
  Open();
  const int line = txtCharht;
  EXPECT_TRUE(Shows("Draw Button:", 16, 96));
  EXPECT_TRUE(Shows("Symbol Match Tolerance:", 144, 96));
  EXPECT_TRUE(Shows("Draw Sensitivity Pixels:", 16, line + 136));
  EXPECT_TRUE(Shows("Enable Gromlit Splash Screen", 34, 2 * line + 176));
  EXPECT_TRUE(Shows("Play Sound Command:", 16, 3 * line + 192));
  EXPECT_TRUE(Shows("Browser Command Line:", 16, 5 * line + 216));
  const char* const help[] = {
      "Select your options for drawing.",    "When specifying a sound command, ",
      "a %s is replaced by the sound file.", "When specifying a browser command, ",
      "a %s is replaced by the url.",
  };
  int y = 2 * line + 148;
  for (const char* text : help) {
    EXPECT_TRUE(Shows(text, 332, y));
    y += line;
  }
}

TEST_F(UserOptionsTest, PulldownsOfferTheirValuesInOrder) {
  const auto labels = [](const XMenu* menu) {
    std::vector<std::string> found;
    for (int i = 0; i < menu->nitems; i++) found.emplace_back(menu->items[i]->label);
    return found;
  };
  EXPECT_EQ(labels(opt->button->menu), (std::vector<std::string>{"Right", "Middle", "Left"}));
  EXPECT_EQ(labels(opt->tolerance->menu), (std::vector<std::string>{"Low", "Medium", "High"}));
}

TEST_F(UserOptionsTest, OpensOnTheOptionsInForce) {
  user->button = 2;
  user->tolerance = 4;
  user->sensitivity = 17;
  user->splash = 0;
  CopyText(user->sndcmd, "aplay %s");
  CopyText(user->urlcmd, "firefox %s");
  Open();
  EXPECT_TRUE(Viewable(opt->window));
  EXPECT_STREQ(opt->button->label, "Middle");
  EXPECT_STREQ(opt->tolerance->label, "High");
  EXPECT_STREQ(TextEditorText(opt->txt), "17");
  EXPECT_EQ(opt->dosplash->state, 0);
  EXPECT_STREQ(TextEditorText(opt->snd), "aplay %s");
  EXPECT_STREQ(TextEditorText(opt->url), "firefox %s");
  EXPECT_EQ(std::memcmp(&opt->usr, user, sizeof *user), 0);
}

TEST_F(UserOptionsTest, OpeningItAgainLoadsAndRaisesIt) {
  Open();
  Type(opt->txt, "99");
  XSetWindowAttributes unframed{};
  unframed.override_redirect = True;
  const Window over =
      MakeChildWindow(root, 0, 0, 600, 400, black.pixel, 0, CWOverrideRedirect, unframed);
  XMapRaised(dpy, over);
  Open();
  EXPECT_STREQ(TextEditorText(opt->txt), "4");
  EXPECT_EQ(PixelOf(opt->window, 8, 60), 0xc0c0c0UL) << "still below";
}

TEST_F(UserOptionsTest, MiscAndAdvancedOpenTheSameWindow) {
  for (const auto command : {mbPrefMisc, mbPrefAdvanced}) {
    Open();
    Type(opt->txt, "99");
    Click(opt->bcancel->window);
    ASSERT_FALSE(Viewable(opt->window));
    command(nullptr, nullptr);
    Pump();
    EXPECT_TRUE(Viewable(opt->window));
    EXPECT_STREQ(TextEditorText(opt->txt), "4");
  }
}

TEST_F(UserOptionsTest, WhatTheWindowManagersCloseAbandonsDoesNotComeBack) {
  Open();
  Choose(opt->button, 1);
  Type(opt->snd, "abc");
  Click(opt->dosplash->window);
  CloseByWindowManager();
  EXPECT_FALSE(Viewable(opt->window));
  EXPECT_EQ(user->button, 3);
  EXPECT_FALSE(testing::Exists(Path()));
  Open();
  EXPECT_STREQ(opt->button->label, "Right");
  EXPECT_STREQ(TextEditorText(opt->snd), "play %s");
  EXPECT_EQ(opt->dosplash->state, 1);
}

// --- Values -----------------------------------------------------------------------------------

TEST_F(UserOptionsTest, StoredDrawButtonFiveIsShownAsRightAndSavedAsThree) {
  for (const int stored : {5, 4, 0, -1}) {
    user->button = stored;
    Open();
    EXPECT_STREQ(opt->button->label, "Right") << stored;
    Click(opt->bsave->window);
    EXPECT_EQ(user->button, 3) << stored;
    ASSERT_NE(Saved(), nullptr);
    EXPECT_EQ(Saved()->button, 3) << stored;
    EXPECT_EQ(GrabbedDrawButton(), 3);
  }
}

TEST_F(UserOptionsTest, StoredToleranceThatIsNotOfferedIsSavedAsThree) {
  for (const int stored : {1, 5}) {
    user->tolerance = stored;
    Open();
    EXPECT_STREQ(opt->tolerance->label, "Medium") << stored;
    Click(opt->bsave->window);
    EXPECT_EQ(user->tolerance, 3) << stored;
    EXPECT_EQ(Saved()->tolerance, 3) << stored;
  }
}

TEST_F(UserOptionsTest, EachToleranceIsShownAndSaved) {
  const std::pair<const char*, int> offered[] = {{"Low", 2}, {"Medium", 3}, {"High", 4}};
  for (int row = 0; row < 3; row++) {
    Open();
    Choose(opt->tolerance, row);
    EXPECT_STREQ(opt->tolerance->label, offered[row].first);
    Click(opt->bsave->window);
    EXPECT_EQ(user->tolerance, offered[row].second);
    EXPECT_EQ(Saved()->tolerance, offered[row].second);
  }
}

TEST_F(UserOptionsTest, SensitivityIsTheNumberThatTheFieldBeginsWith) {
  const std::pair<const char*, int> typed[] = {
      {"12px", 12}, {"abc", 0}, {"", 0}, {"7", 7}, {"0", 0}, {"99999999999999999999", INT_MAX}};
  for (const auto& [text, value] : typed) {
    Open();
    Type(opt->txt, text);
    Click(opt->bsave->window);
    EXPECT_EQ(user->sensitivity, value) << '"' << text << '"';
    EXPECT_EQ(Saved()->sensitivity, value) << '"' << text << '"';
  }
}

TEST_F(UserOptionsTest, SplashBoxIsSavedByOKAndDroppedByCancel) {
  Open();
  Click(opt->dosplash->window);
  EXPECT_EQ(opt->dosplash->state, 0);
  Click(opt->bcancel->window);
  EXPECT_EQ(user->splash, 1);
  EXPECT_FALSE(testing::Exists(Path()));
  Open();
  EXPECT_EQ(opt->dosplash->state, 1);
  Click(opt->dosplash->window);
  Click(opt->bsave->window);
  EXPECT_EQ(user->splash, 0);
  EXPECT_EQ(Saved()->splash, 0);
  Open();
  Click(opt->dosplash->window);
  Click(opt->bsave->window);
  EXPECT_EQ(Saved()->splash, 1);
}

TEST_F(UserOptionsTest, CommandsAreSavedAsTyped) {
  Open();
  Type(opt->snd, "loud player");
  Type(opt->url, "my browser");
  Click(opt->bsave->window);
  EXPECT_STREQ(user->sndcmd, "loud player");
  EXPECT_STREQ(user->urlcmd, "my browser");
  EXPECT_STREQ(Saved()->sndcmd, "loud player");
  EXPECT_STREQ(Saved()->urlcmd, "my browser");
}

TEST_F(UserOptionsTest, SoundCommandOfSixtyFourLettersIsCutToItsField) {
  Open();
  const std::string typed(64, 'w');
  Type(opt->snd, typed + "x");
  Click(opt->bsave->window);
  EXPECT_EQ(user->sndcmd, typed.substr(0, 63));
  EXPECT_EQ(Saved()->sndcmd, typed.substr(0, 63));
  EXPECT_EQ(std::memcmp(user->charspare2, "\0raw", 4), 0) << "the field behind it";
}

TEST_F(UserOptionsTest, FieldsFullToTheBrimOverrunNothing) {
  Open();
  Fill(opt->snd, std::string(127, 's'));
  Fill(opt->url, std::string(127, 'u'));
  Click(opt->bsave->window);
  EXPECT_EQ(user->sndcmd, std::string(63, 's'));
  EXPECT_EQ(user->urlcmd, std::string(127, 'u'));
  EXPECT_EQ(std::memcmp(user->charspare2, "\0raw", 4), 0);
  EXPECT_EQ(Saved()->urlcmd, std::string(127, 'u'));
}

TEST_F(UserOptionsTest, LongestStoredCommandsSurviveAnOKThatDidNotTouchThem) {
  const std::string url = std::string(124, 'b') + " %s";
  const std::string snd = std::string(60, 'p') + " %s";
  CopyText(user->urlcmd, url);
  CopyText(user->sndcmd, snd);
  Open();
  Type(opt->txt, "9");
  Click(opt->bsave->window);
  EXPECT_EQ(Saved()->urlcmd, url);
  EXPECT_EQ(Saved()->sndcmd, snd);
  EXPECT_EQ(Saved()->sensitivity, 9);
}

TEST_F(UserOptionsTest, WhatTheWindowDoesNotShowIsKept) {
  user->showactions = 0;
  Open();
  Click(opt->bsave->window);
  EXPECT_FALSE(Viewable(opt->window));
  const auto saved = Saved();
  ASSERT_NE(saved, nullptr);
  EXPECT_EQ(saved->showactions, 0);
  EXPECT_EQ(saved->temp3, 77);
  EXPECT_EQ(std::memcmp(saved->charspare2, "\0raw", 4), 0);
  EXPECT_EQ(fs::file_size(Path()), 305U);
}

// --- Defaults, Cancel, Help -------------------------------------------------------------------

TEST_F(UserOptionsTest, DefaultsFollowedByCancelLeavesTheOptionsInForce) {
  user->button = 2;
  user->tolerance = 2;
  user->sensitivity = 30;
  user->splash = 0;
  CopyText(user->sndcmd, "mine");
  CopyText(user->urlcmd, "my own");
  const GromlitUserOptions before = *user;
  Open();
  XSelectInput(player->display(), opt->window, StructureNotifyMask);
  XSync(player->display(), True);
  Click(opt->bdefaults->window);
  XEvent event;
  EXPECT_FALSE(XCheckTypedEvent(player->display(), UnmapNotify, &event))
      << "a window manager may not show it again";
  EXPECT_TRUE(Viewable(opt->window));
  EXPECT_STREQ(opt->button->label, "Right");
  EXPECT_STREQ(opt->tolerance->label, "Medium");
  EXPECT_STREQ(TextEditorText(opt->txt), "4");
  EXPECT_EQ(opt->dosplash->state, 1);
  EXPECT_STREQ(TextEditorText(opt->snd), "play %s");
  EXPECT_STREQ(TextEditorText(opt->url), "netscape %s");
  EXPECT_TRUE(Shows("Draw Button:", 16, 96)) << "drawn again";
  Click(opt->bcancel->window);
  EXPECT_FALSE(Viewable(opt->window));
  EXPECT_EQ(std::memcmp(user, &before, sizeof before), 0);
  EXPECT_FALSE(testing::Exists(Path()));
}

TEST_F(UserOptionsTest, DefaultsAreSavedByOK) {
  user->sensitivity = 30;
  user->tolerance = 4;
  Open();
  Click(opt->bdefaults->window);
  EXPECT_FALSE(testing::Exists(Path())) << "nothing is saved until OK";
  Click(opt->bsave->window);
  EXPECT_EQ(user->sensitivity, 4);
  EXPECT_EQ(Saved()->sensitivity, 4);
  EXPECT_EQ(Saved()->tolerance, 3);
  EXPECT_EQ(Saved()->temp3, 77);
}

TEST_F(UserOptionsTest, CancelDropsEverything) {
  const GromlitUserOptions before = *user;
  Open();
  Choose(opt->button, 2);
  Choose(opt->tolerance, 0);
  Type(opt->txt, "50");
  Click(opt->dosplash->window);
  Type(opt->snd, "a");
  Type(opt->url, "b");
  Click(opt->bcancel->window);
  EXPECT_FALSE(Viewable(opt->window));
  EXPECT_EQ(std::memcmp(user, &before, sizeof before), 0);
  EXPECT_EQ(GrabbedDrawButton(), 3);
  EXPECT_FALSE(testing::Exists(Path()));
}

TEST_F(UserOptionsTest, HelpOpensItsPageInTheBrowserInForce) {
  const std::string browser = *install / "browser";
  const std::string seen = *install / "seen";
  testing::WriteText(
      browser, "#!/bin/sh\necho \"$@\" > " + seen + ".new; mv " + seen + ".new " + seen + "\n");
  ASSERT_EQ(chmod(browser.c_str(), 0755), 0);
  CopyText(user->urlcmd, browser + " %s");
  Open();
  Type(opt->url, "not this one");
  Click(opt->bhelp->window);
  ASSERT_TRUE(PumpUntil([&] { return testing::Exists(seen); }));
  EXPECT_EQ(testing::ReadText(seen), "file:" + install->path() + "/help/preferences.html\n");
  EXPECT_TRUE(Viewable(opt->window));
}

// --- The draw button --------------------------------------------------------------------------

TEST_F(UserOptionsTest, NewDrawButtonIsGrabbedAtOnce) {
  const std::pair<const char*, int> offered[] = {{"Left", 1}, {"Middle", 2}, {"Right", 3}};
  for (const auto& [label, button] : offered) {
    Open();
    // The button that draws does not reach the window here: no capture hands it on. Any other does.
    const int mouse = GrabbedDrawButton() == 1 ? 2 : 1;
    MoveTo(opt->button->window, 6, 6);
    player->Press(mouse);
    Pump();
    XMenu* const menu = opt->button->menu;
    MoveTo(menu->window, menu->width / 2, 4 + menu->itemheight * (3 - button) + 4);
    player->Release(mouse);
    Pump();
    EXPECT_STREQ(opt->button->label, label);
    const int before = changes;
    Click(opt->bsave->window, 6, 6, mouse);
    EXPECT_EQ(user->button, button);
    EXPECT_EQ(Saved()->button, button);
    EXPECT_EQ(GrabbedDrawButton(), button);
    EXPECT_EQ(changes, before + 1);
    EXPECT_EQ(buttonatchange, button);
    EXPECT_FALSE(Viewable(opt->window));
    // On the server too: the new button's press comes to the root window, frozen.
    player->MoveTo(900, 900);
    player->Press(button);
    XEvent press{};
    EXPECT_TRUE(testing::WaitFor(
        [&] { return XCheckTypedWindowEvent(dpy, root, ButtonPress, &press) != 0; }));
    EXPECT_EQ(press.xbutton.button, static_cast<unsigned>(button));
    XAllowEvents(dpy, AsyncPointer, CurrentTime);
    XSync(dpy, False);
    player->Release(button);
    Pump();
  }
}

TEST_F(UserOptionsTest, SameDrawButtonIsNotGrabbedAnew) {
  Open();
  Click(opt->bsave->window);
  EXPECT_EQ(GrabbedDrawButton(), 3);
  EXPECT_EQ(changes, 0);
}

TEST_F(UserOptionsTest, NobodyNeedsToHearOfTheNewDrawButton) {
  drawButtonChanged = nullptr;
  Open();
  Choose(opt->button, 1);
  Click(opt->bsave->window);
  EXPECT_EQ(GrabbedDrawButton(), 2);
}

// INV-GRAB-1.
TEST_F(UserOptionsTest, DrawButtonOfAnotherClientIsToldAndTheOldOneStays) {
  // Any modifier and frozen, so that the other client's grab stands in the way of this one.
  XGrabButton(player->display(), 2, 0, player->root(), False, ButtonPressMask, GrabModeAsync,
              GrabModeAsync, 0L, 0L);
  XSync(player->display(), False);
  Open();
  Choose(opt->button, 1);
  Type(opt->txt, "21");
  CaptureStdout();
  Click(opt->bsave->window);
  EXPECT_EQ(GetCapturedStdout(), "Drawing Button used by another application.\n");
  EXPECT_TRUE(Viewable(notice->window));
  EXPECT_STREQ(notice->msgs[0], "Drawing Button used by another application.");
  EXPECT_TRUE(Viewable(opt->window)) << "so that another button can be chosen";
  EXPECT_EQ(GrabbedDrawButton(), 3);
  EXPECT_EQ(user->button, 3) << "a start with the other one would end at once";
  EXPECT_EQ(changes, 0);
  ASSERT_NE(Saved(), nullptr);
  EXPECT_EQ(Saved()->button, 3);
  EXPECT_EQ(Saved()->sensitivity, 21) << "the rest holds";
  Click(notice->no->window);
  EXPECT_FALSE(Viewable(notice->window));

  // The other client is through: OK once more is enough.
  EXPECT_STREQ(opt->button->label, "Middle");
  XUngrabButton(player->display(), 2, 0, player->root());
  XSync(player->display(), False);
  Click(opt->bsave->window);
  EXPECT_FALSE(Viewable(opt->window));
  EXPECT_EQ(GrabbedDrawButton(), 2);
  EXPECT_EQ(Saved()->button, 2);
  EXPECT_EQ(changes, 1);
}

// --- Saves that fail --------------------------------------------------------------------------

// Something that keeps the options file from being written, and its end.
struct Obstacle {
  const char* name;
  std::string reason;
  void (*raise)(const std::string& path);
  void (*remove)(const std::string& path);
  bool keepsold;  // there is a file before, which must stay
};

std::ostream& operator<<(std::ostream& out, const Obstacle& obstacle) {
  return out << obstacle.name;
}

const Obstacle kObstacles[] = {
    {"no options directory", strerror(ENOENT),
     [](const std::string& path) { fs::remove_all(fs::path(path).parent_path()); },
     [](const std::string& path) { fs::create_directory(fs::path(path).parent_path()); }, false},
    {"a directory in the file's place", strerror(EISDIR),
     [](const std::string& path) { fs::create_directory(path); },
     [](const std::string& path) { fs::remove(path); }, false},
    {"a file that may not be written", strerror(EACCES),
     [](const std::string& path) {
       chmod(path.c_str(), 0444);
       // Permission bits do not bind the superuser.
       EXPECT_TRUE(geteuid() != 0 || seteuid(65534) == 0);
     },
     [](const std::string& path) {
       EXPECT_TRUE(getuid() != 0 || seteuid(0) == 0);
       chmod(path.c_str(), 0644);
     },
     true},
    {"a full disk", strerror(EFBIG),
     [](const std::string&) {
       rlimit limit;
       getrlimit(RLIMIT_FSIZE, &limit);
       limit.rlim_cur = 200;
       std::signal(SIGXFSZ, SIG_IGN);
       setrlimit(RLIMIT_FSIZE, &limit);
     },
     [](const std::string&) {
       rlimit limit;
       getrlimit(RLIMIT_FSIZE, &limit);
       limit.rlim_cur = limit.rlim_max;
       setrlimit(RLIMIT_FSIZE, &limit);
     },
     true},
};

class FailingSave : public UserOptionsTest, public ::testing::WithParamInterface<Obstacle> {};

TEST_P(FailingSave, KeepsTheWindowAndTheChangesInForceAndSaysWhy) {
  const Obstacle& obstacle = GetParam();
  std::vector<std::byte> old;
  if (obstacle.keepsold) {
    Open();
    Click(opt->bsave->window);
    old = testing::ReadBytes(Path());
    ASSERT_EQ(old.size(), 305U);
  }
  Open();
  Type(opt->txt, "33");
  Choose(opt->button, 1);
  CaptureStderr();
  obstacle.raise(Path());
  Click(opt->bsave->window);
  const bool shown = Viewable(notice->window);
  const bool open = Viewable(opt->window);
  obstacle.remove(Path());
  EXPECT_EQ(GetCapturedStderr(), "Save Options: " + obstacle.reason + "\n");
  EXPECT_TRUE(shown);
  EXPECT_TRUE(open);
  std::string told;
  for (const char* const* line = notice->msgs; *line != nullptr; line++) told += *line;
  EXPECT_NE(told.find("not saved"), std::string::npos) << told;
  EXPECT_NE(told.find(obstacle.reason), std::string::npos) << told;
  // In force until the program ends.
  EXPECT_EQ(user->sensitivity, 33);
  EXPECT_EQ(user->button, 2);
  EXPECT_EQ(GrabbedDrawButton(), 2);
  if (obstacle.keepsold) {
    EXPECT_EQ(testing::ReadBytes(Path()), old);
  } else {
    EXPECT_EQ(Saved(), nullptr);
  }
  // The work is still there, and OK once more saves it.
  Click(notice->no->window);
  EXPECT_STREQ(TextEditorText(opt->txt), "33");
  EXPECT_STREQ(opt->button->label, "Middle");
  Click(opt->bsave->window);
  EXPECT_FALSE(Viewable(opt->window));
  ASSERT_NE(Saved(), nullptr);
  EXPECT_EQ(Saved()->sensitivity, 33);
  EXPECT_EQ(Saved()->button, 2);
}

INSTANTIATE_TEST_SUITE_P(UserOptions, FailingSave, ::testing::ValuesIn(kObstacles),
                         [](const auto& test) {
                           std::string name = test.param.name;
                           bool upper = true;
                           std::string joined;
                           for (const char c : name) {
                             if (std::isalnum(static_cast<unsigned char>(c)) == 0) {
                               upper = true;
                               continue;
                             }
                             joined += upper ? static_cast<char>(std::toupper(c)) : c;
                             upper = false;
                           }
                           return joined;
                         });

TEST_F(UserOptionsTest, BothFailuresAreToldTogether) {
  XGrabButton(player->display(), 2, 0, player->root(), False, ButtonPressMask, GrabModeAsync,
              GrabModeAsync, 0L, 0L);
  XSync(player->display(), False);
  fs::remove_all(fs::path(Path()).parent_path());
  Open();
  Choose(opt->button, 1);
  CaptureStdout();
  CaptureStderr();
  Click(opt->bsave->window);
  EXPECT_EQ(GetCapturedStdout(), "Drawing Button used by another application.\n");
  EXPECT_EQ(GetCapturedStderr(), std::string("Save Options: ") + strerror(ENOENT) + "\n");
  EXPECT_TRUE(Viewable(notice->window));
  EXPECT_STREQ(notice->msgs[0], "Drawing Button used by another application.");
  ASSERT_NE(notice->msgs[1], nullptr);
  EXPECT_NE(std::string(notice->msgs[1]).find("not saved"), std::string::npos);
  EXPECT_TRUE(Viewable(opt->window));
}

// --- The rest ---------------------------------------------------------------------------------

TEST_F(UserOptionsTest, CopyingLeavesTheSplashAndTheReservedFields) {
  GromlitUserOptions src{};
  src.button = 1;
  src.sensitivity = 2;
  src.tolerance = 4;
  src.splash = 1;
  src.showactions = 5;
  src.temp1 = 6;
  CopyText(src.urlcmd, "u");
  CopyText(src.sndcmd, "s");
  CopyText(src.charspare2, "c");
  GromlitUserOptions dst{};
  dst.splash = 9;
  CopyUserOptions(&dst, &src);
  EXPECT_EQ(dst.button, 1);
  EXPECT_EQ(dst.sensitivity, 2);
  EXPECT_EQ(dst.tolerance, 4);
  EXPECT_EQ(dst.showactions, 5);
  EXPECT_STREQ(dst.urlcmd, "u");
  EXPECT_STREQ(dst.sndcmd, "s");
  EXPECT_EQ(dst.splash, 9);
  EXPECT_EQ(dst.temp1, 0);
  EXPECT_STREQ(dst.charspare2, "");
}

TEST_F(UserOptionsTest, DrawingAndOpeningDoNotWaitForTheServer) {
  Open();
  DrawUserOptions(opt);
  EXPECT_EQ(CostOf([] { DrawUserOptions(opt); }).roundtrips, 0U);
  EXPECT_EQ(CostOf([] { DrawUserOptions(opt); }).requests, 12U) << "cleared and eleven texts";
  Click(opt->bcancel->window);
  EXPECT_EQ(CostOf([] { mbPrefDraw(nullptr, nullptr); }).roundtrips, 0U);
}

}  // namespace
}  // namespace gromlit
