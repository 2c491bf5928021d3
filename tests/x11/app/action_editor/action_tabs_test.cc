// First: the test library's headers do not stand Xlib's macros.
#include "tests/x11/app/action_fixture.h"

#include <gmock/gmock.h>

#include <iterator>

#include "toolkit/text_editor.h"

namespace gromlit {
namespace {

using ::testing::ElementsAre;
using Strings = std::vector<std::string>;

class ActionTabsTest : public testing::ActionFixture {
 protected:
  void SetUp() override {
    ActionFixture::SetUp();
    if (HasFatalFailure()) return;
    EditNewAction(plugin);
    Pump();
    ASSERT_TRUE(Open());
  }

  // What the key handler of the field makes of Control-F: a hot key, or nothing to see.
  bool RecordsHotKeys() {
    ClearTabField(tab);
    MoveInto(tab->ed->window, 60, 12);
    Chord({XK_Control_L}, XK_f);
    const bool records = Field(tab->ed) == "Control-f";
    ClearTabField(tab);
    return records;
  }
  // Number of black pixels in a part of the bar.
  int Ink(int x, int y, int w, int h) {
    XSync(dpy, False);
    XImage* image = XGetImage(dpy, act->tbar->window, x, y, static_cast<unsigned>(w),
                              static_cast<unsigned>(h), AllPlanes, ZPixmap);
    if (image == nullptr) return -1;
    int ink = 0;
    for (int row = 0; row < h; row++) {
      for (int column = 0; column < w; column++) {
        if (XGetPixel(image, column, row) == black.pixel) ink++;
      }
    }
    XDestroyImage(image);
    return ink;
  }
  // Whether a help line stands there, and nothing right of it.
  bool Shows(const std::string& text, int x, int baseline) {
    return ShowsText(act->tbar->window, text, x, baseline, act->tbar->width - x - 4);
  }
  void ExpectHelp(const Strings& lines, int baseline) {
    for (const std::string& line : lines) {
      EXPECT_TRUE(Shows(line, 16, baseline)) << line;
      baseline += txtCharht;
    }
    // Nothing is left of another tab's help, down to the buttons.
    const int below = baseline - txtFontinfo->ascent;
    if (below < 140) {
      EXPECT_EQ(Ink(16, below, act->tbar->width - 32, 140 - below), 0);
    }
  }
  int UsualHelp() const { return 4 * txtCharht + 40; }
  int LowerHelp() const { return 5 * txtCharht + 40; }
};

TEST_F(ActionTabsTest, TheTabsAreTheCommandTypesInTheirOrder) {
  Strings labels;
  for (int i = 0; i < act->tbar->nitems; i++) labels.emplace_back(act->tbar->items[i]->label);
  EXPECT_THAT(labels, ElementsAre("HotKey", "Menu", "Text", "Sound", "Run", "Internet"));
  int width = 0;
  for (int i = 0; i < act->tbar->nitems; i++) width += act->tbar->itemwidth[i] + 16;
  EXPECT_EQ(act->tbar->width, width);
  EXPECT_EQ(act->tbar->height, 180);
}

TEST_F(ActionTabsTest, EveryTabShowsWhatItUsesAndItsHelp) {
  const struct {
    const char* name;
    const char* checkbox;
    Strings help;
    int baseline;
    bool hotkeys;
  } tabs[] = {
      {"hotkey",
       nullptr,
       {"Place the mouse in the text box", "and enter the keystroke to send."},
       UsualHelp(),
       true},
      {"menu",
       nullptr,
       {"Enter the letters corresponding to the", "active letters in the menu selection,",
        "for example, NN for New->Navigator"},
       UsualHelp(),
       false},
      {"text",
       "Use As Filename",
       {"Enter the text to insert or ", "check the box to specify a filename",
        "that contains the text."},
       LowerHelp(),
       false},
      {"sound", nullptr, {"Enter a sound file to play."}, UsualHelp(), false},
      {"run",
       nullptr,
       {"Enter the command to execute.", "Or system:minimize, maximize, fullscreen,",
        "above, close, desktop-next, -previous,", "window-to-desktop-next, -previous (Help)."},
       UsualHelp(),
       false},
      {"internet",
       "Goto Gromlit Forum",
       {"Enter the website, such as example.org", "or any URL.  Check Gromlit Forum for",
        "drawn-on application-specific forum."},
       LowerHelp(),
       false},
  };
  // The last one is visited first, so that the first is seen after another.
  for (int i : {5, 0, 1, 2, 3, 4, 5}) {
    const auto& wanted = tabs[i];
    SCOPED_TRACE(wanted.name);
    ClickTab(i);
    EXPECT_EQ(act->tbar->selected, i);
    EXPECT_TRUE(Viewable(tab->ed->window));
    EXPECT_FALSE(Mapped(tab->sys->window));
    EXPECT_EQ(Viewable(tab->checkbox->window), wanted.checkbox != nullptr);
    EXPECT_EQ(RecordsHotKeys(), wanted.hotkeys);
    if (wanted.checkbox != nullptr) {
      EXPECT_TRUE(Shows(wanted.checkbox, 32, 72 + txtCharht));
    }
    ExpectHelp(wanted.help, wanted.baseline);
    Picture(std::string("action_tab_") + wanted.name);
  }
}

TEST_F(ActionTabsTest, ARedrawnTabKeepsFieldAndCheckBox) {
  ClickTab(kText);
  Type(tab->ed, "notes");
  ClickCheckBox();
  ASSERT_EQ(tab->checkbox->state, 1);
  DrawTabBar(act->tbar, nullptr);
  Pump();
  EXPECT_EQ(Field(tab->ed), "notes");
  EXPECT_EQ(tab->checkbox->state, 1);
  EXPECT_TRUE(Shows("Use As Filename", 32, 72 + txtCharht));
}

TEST_F(ActionTabsTest, ClickingAnotherTabClearsFieldCheckBoxAndSelection) {
  Add(kText, "abc");
  ClickCheckBox();
  ClickLine(0);
  ASSERT_EQ(act->lst->selected, 0);
  tab->checkbox->state = 1;
  ClickTab(kInternet);
  EXPECT_EQ(Field(tab->ed), "");
  EXPECT_EQ(tab->checkbox->state, 0);
  EXPECT_EQ(act->lst->selected, -1);
  EXPECT_EQ(Buttons(), "00001");
}

TEST_F(ActionTabsTest, ClickingTheSelectedTabDoesNothing) {
  Add(kText, "abc");
  ASSERT_EQ(act->lst->selected, 0);
  ClickTab(kText);
  EXPECT_EQ(Field(tab->ed), "abc");
  EXPECT_EQ(act->lst->selected, 0);
  EXPECT_EQ(Buttons(), "11111");
}

TEST_F(ActionTabsTest, ClickingAnotherTabForgetsTheRecordedKey) {
  Record({XK_Control_L}, XK_a);
  ASSERT_NE(tab->ed->keycode, 0);
  ClickTab(kMenu);
  ClickTab(kHotKey);
  EXPECT_EQ(tab->ed->keycode, 0);
  EXPECT_EQ(tab->ed->keystate, 0);
}

// --- Hot keys -----------------------------------------------------------------------------------

TEST_F(ActionTabsTest, AHotKeyIsCapturedWithEachModifier) {
  // The third modifier has no key in the usual map: Scroll_Lock serves.
  XModifierKeymap* map = XGetModifierMapping(player->display());
  map = XInsertModifiermapEntry(map, XKeysymToKeycode(player->display(), XK_Scroll_Lock),
                                Mod3MapIndex);
  ASSERT_EQ(XSetModifierMapping(player->display(), map), MappingSuccess);
  XFreeModifiermap(map);
  Pump();

  const struct {
    KeySym held;
    int state;
    const char* text;
  } modifiers[] = {
      {XK_Shift_L, ShiftMask, "Shift-a"},
      {XK_Shift_R, ShiftMask, "Shift-a"},
      {XK_Control_L, ControlMask, "Control-a"},
      {XK_Control_R, ControlMask, "Control-a"},
      {XK_Alt_L, Mod1Mask, "Alt-a"},
      {XK_Num_Lock, Mod2Mask, "Mod2-a"},
      {XK_Scroll_Lock, Mod3Mask, "Mod3-a"},
      {XK_Super_L, Mod4Mask, "Mod4-a"},
      {XK_ISO_Level3_Shift, Mod5Mask, "Mod5-a"},
      {XK_Caps_Lock, LockMask, "a"},
  };
  const int a = XKeysymToKeycode(dpy, XK_a);
  for (const auto& modifier : modifiers) {
    SCOPED_TRACE(XKeysymToString(modifier.held));
    ClearTabField(tab);
    Record({modifier.held}, XK_a);
    EXPECT_EQ(Field(tab->ed), modifier.text);
    EXPECT_EQ(tab->ed->keycode, a);
    EXPECT_EQ(tab->ed->keystate, modifier.state);
    // Locks are on until their key is pressed again.
    if (modifier.held == XK_Num_Lock || modifier.held == XK_Caps_Lock ||
        modifier.held == XK_Scroll_Lock) {
      player->Type(modifier.held);
      Pump();
    }
  }
}

TEST_F(ActionTabsTest, AHotKeyWithTwoModifiersIsAddedAsItIsShown) {
  Record({XK_Control_L, XK_Shift_L}, XK_a);
  EXPECT_EQ(Field(tab->ed), "Control-Shift-a");
  ClickOn(tab->badd);
  ASSERT_EQ(act->action.ncmds, 1u);
  const GromlitCmd& command = *act->action.cmds[0];
  EXPECT_EQ(command.type, kHotKey);
  EXPECT_EQ(command.nkeys, 1);
  EXPECT_EQ(command.keycode[0], XKeysymToKeycode(dpy, XK_a));
  EXPECT_EQ(command.keystate[0], ControlMask | ShiftMask);
  EXPECT_STREQ(command.text, "Control-Shift-a");
  EXPECT_EQ(command.ntext, StrLength("Control-Shift-a"));
  EXPECT_THAT(Lines(), ElementsAre("HotKey: Control-Shift-a"));
}

TEST_F(ActionTabsTest, ReturnAndFunctionKeysAreHotKeysToo) {
  Record({}, XK_Return);
  EXPECT_EQ(Field(tab->ed), "Return");
  Record({XK_Alt_L}, XK_F5);
  EXPECT_EQ(Field(tab->ed), "Alt-F5");
  Record({}, XK_BackSpace);
  EXPECT_EQ(Field(tab->ed), "BackSpace");
}

TEST_F(ActionTabsTest, AModifierAloneIsStoredButNotShown) {
  Record({XK_Control_L}, XK_a);
  ASSERT_EQ(Field(tab->ed), "Control-a");
  Record({}, XK_Shift_L);
  EXPECT_EQ(Field(tab->ed), "Control-a");
  ClickOn(tab->badd);
  ASSERT_EQ(act->action.ncmds, 1u);
  EXPECT_EQ(act->action.cmds[0]->keycode[0], XKeysymToKeycode(dpy, XK_Shift_L));
  EXPECT_EQ(act->action.cmds[0]->keystate[0], 0);
  EXPECT_THAT(Lines(), ElementsAre("HotKey: Shift_L"));
}

TEST_F(ActionTabsTest, EveryKeysymOfAModifierLeavesTheTextAlone) {
  Record({}, XK_q);
  ASSERT_EQ(Field(tab->ed), "q");
  constexpr KeySym kModifiers[] = {XK_Shift_L,   XK_Shift_R,   XK_Control_L,
                                   XK_Control_R, XK_Caps_Lock, XK_Alt_L,
                                   XK_Super_L,   XK_Num_Lock,  XK_Mode_switch};
  for (const KeySym key : kModifiers) {
    SCOPED_TRACE(XKeysymToString(key));
    const KeyCode code = XKeysymToKeycode(dpy, key);
    ASSERT_NE(code, 0);
    XEvent event{};
    event.xkey.type = KeyPress;
    event.xkey.display = dpy;
    event.xkey.window = tab->ed->window;
    event.xkey.keycode = code;
    if (XLookupKeysym(&event.xkey, 0) != key) continue;  // reached with a modifier only
    ActionHotKeyPress(tab->ed, &event);
    EXPECT_EQ(Field(tab->ed), "q");
    EXPECT_EQ(tab->ed->keycode, code);
  }
}

TEST_F(ActionTabsTest, ASentKeyThatTheKeyboardDoesNotHaveDoesNoHarm) {
  XEvent event{};
  event.xkey.type = KeyPress;
  event.xkey.display = dpy;
  event.xkey.window = tab->ed->window;
  event.xkey.keycode = 3;
  ActionHotKeyPress(tab->ed, &event);
  EXPECT_EQ(Field(tab->ed), "");
  EXPECT_EQ(tab->ed->keycode, 3);
}

// --- The system commands ------------------------------------------------------------------------

TEST_F(ActionTabsTest, TheSystemCommandsAreBuiltAndHidden) {
  EXPECT_STREQ(tab->sys->label, "Select System Command");
  ASSERT_NE(tab->sys->menu, nullptr);
  Strings labels;
  for (int i = 0; i < tab->sys->menu->nitems; i++) {
    labels.emplace_back(tab->sys->menu->items[i]->label);
  }
  EXPECT_THAT(labels, ElementsAre("Close", "Minimize", "Maximize"));
  EXPECT_FALSE(Mapped(tab->sys->window));
}

TEST_F(ActionTabsTest, ChoosingASystemCommandShowsItOnTheButton) {
  ClickTab(kText);
  // It is on no tab: a tab has to be borrowed.
  act->tbar->items[kText]->action = tabSystem;
  DrawTabBar(act->tbar, nullptr);
  Pump();
  EXPECT_TRUE(Viewable(tab->sys->window));
  EXPECT_FALSE(Mapped(tab->ed->window));
  EXPECT_FALSE(Mapped(tab->checkbox->window));
  ExpectHelp({"Select which system command to perform."}, UsualHelp());
  MoveInto(tab->sys->window, 20, 10);
  player->Press(1);
  ASSERT_TRUE(PumpUntil([this] { return tab->sys->menu->open != 0; }));
  MoveInto(tab->sys->menu->window, 10, 5 + tab->sys->menu->itemheight * 3 / 2);
  player->Release(1);
  Pump();
  EXPECT_STREQ(tab->sys->label, "Minimize");
  // Any tab hides it again.
  ClickTab(kRun);
  EXPECT_FALSE(Mapped(tab->sys->window));
  EXPECT_TRUE(Viewable(tab->ed->window));
}

}  // namespace
}  // namespace gromlit
