// First: the test library's headers do not stand Xlib's macros.
#include "tests/x11/toolkit/picture_draw.h"

#include <X11/extensions/XTest.h>
#include <X11/keysym.h>

#include "tests/x11/toolkit/request_cost.h"
#include "toolkit/text_editor.h"

namespace gromlit {
namespace {

using testing::Cost;
using testing::CostOf;
using testing::Picture;

constexpr int kX = 20;  // of the field in its parent
constexpr int kY = 30;
constexpr int kWidth = 200;

int completions = 0;
std::string completed;
void NoteCompletion(TextEditor* txt) {
  completions++;
  completed = txt->buffer;
}

class TextEditorTest : public testing::WidgetFixture {
 protected:
  void SetUp() override {
    WidgetFixture::SetUp();
    completions = 0;
    completed.clear();
    txt = MakeTextEditor(top, kX, kY, kWidth, kEditorHeight);
    TextEditorInit(txt, "");
    XMapWindow(dpy, txt->window);
    Pump();
  }

  void Enter() {
    MoveTo(kX + 150, kY + 10);
    Pump();
    ASSERT_EQ(txt->inside, 1);
  }
  void Leave() {
    MoveTo(kX + 150, kY + 100);
    Pump();
    ASSERT_EQ(txt->inside, 0);
  }
  void Type(KeySym key, int times = 1) {
    for (int i = 0; i < times; i++) player->Type(key);
    Pump();
  }
  void Type(const std::string& letters) {
    for (char c : letters) player->Type(static_cast<KeySym>(c));
    Pump();
  }
  void Control(KeySym key) {
    player->KeyDown(XK_Control_L);
    player->Type(key);
    player->KeyUp(XK_Control_L);
    Pump();
  }
  void StrikeAKeyThatChangesItsMeaning() {
    const KeyCode keycode = XKeysymToKeycode(dpy, XK_a);
    const auto mean = [&](KeySym lower, KeySym upper) {
      KeySym meanings[] = {lower, upper};
      XChangeKeyboardMapping(player->display(), keycode, 2, meanings, 1);
      XSync(player->display(), False);
      Pump();
    };
    const auto strike = [&] {
      XTestFakeKeyEvent(player->display(), keycode, True, CurrentTime);
      XTestFakeKeyEvent(player->display(), keycode, False, CurrentTime);
      XSync(player->display(), False);
      Pump();
    };
    Enter();
    strike();
    EXPECT_EQ(Text(), "a");
    mean(XK_w, XK_W);
    strike();
    EXPECT_EQ(Text(), "aw");
    mean(XK_7, XK_slash);
    strike();
    EXPECT_EQ(Text(), "aw7");
  }
  // Paints over the text, so that a redraw can be told from none.
  void Spoil() {
    XSetForeground(dpy, txt->gc, blue.pixel);
    XFillRectangle(dpy, txt->window, txt->gc, 3, 3, kWidth - 5, 19);
    XSync(dpy, False);
  }
  std::string Text() const { return {txt->buffer, static_cast<size_t>(txt->len)}; }

  enum Look { kUnfocused, kFocused, kTyped };
  // The field as it should look. kTyped: redrawn after a key, with or without the pointer in it.
  Picture Expected(const std::string& text, int index, Look look, unsigned long frame) {
    Picture picture(kWidth, kEditorHeight, kWhite);
    Outline(picture, kLightGrey, 0, 0, kWidth - 1, 23);
    picture.Bevel(kDarkGrey, kWhite, 1, 1, kWidth - 1, 23);
    if (frame != kNoFrame) Outline(picture, frame, 0, 0, kWidth, 23);
    Stamp(picture, txtFontinfo, 4, 16, text);
    const int x = XTextWidth(txtFontinfo, text.data(), index) + 3;
    if (look == kUnfocused) InvertFrame(picture, x, 4, 7, 16);
    if (look != kUnfocused) InvertFilled(picture, x, 4, 7, 16);
    return picture;
  }
  Picture Shown() { return Take(txt->window, 0, 0, kWidth, kEditorHeight); }

  static constexpr unsigned long kNoFrame = 1;
  TextEditor* txt = nullptr;
};

TEST_F(TextEditorTest, NewFieldIsEmptyUnmappedAndCompletesNothing) {
  TextEditor* fresh = MakeTextEditor(top, 20, 100, 100, kEditorHeight);
  EXPECT_EQ(fresh->len, 0);
  EXPECT_EQ(fresh->index, 0);
  EXPECT_EQ(fresh->width, 100);
  EXPECT_EQ(fresh->complete, txtNoComplete);
  EXPECT_EQ(fresh->wobj->obj, fresh);
  EXPECT_EQ(fresh->wobj->window, fresh->window);
  XWindowAttributes attributes;
  XGetWindowAttributes(dpy, fresh->window, &attributes);
  EXPECT_EQ(attributes.map_state, IsUnmapped);
  EXPECT_EQ(attributes.x, 20);
  EXPECT_EQ(attributes.y, 100);
  EXPECT_EQ(attributes.height, 24);
}

TEST_F(TextEditorTest, InitSetsTextAndForgetsTheRecordedKey) {
  txt->keycode = 38;
  txt->keystate = 4;
  TextEditorInit(txt, "New");
  EXPECT_STREQ(txt->buffer, "New");
  EXPECT_EQ(txt->len, 3);
  EXPECT_EQ(txt->index, 3);
  EXPECT_EQ(txt->keycode, 0);
  EXPECT_EQ(txt->keystate, 0);
}

TEST_F(TextEditorTest, InitDoesNotDrawAndUpdateDoes) {
  const Picture empty = Shown();
  TextEditorInit(txt, "New");
  EXPECT_EQ(Shown(), empty);
  TextEditorUpdate(txt, "Other");
  EXPECT_EQ(Shown(), Expected("Other", 5, kUnfocused, kNoFrame));
}

TEST_F(TextEditorTest, UpdateKeepsTheRecordedKey) {
  txt->keycode = 38;
  txt->keystate = 4;
  TextEditorUpdate(txt, "Other");
  EXPECT_EQ(txt->keycode, 38);
  EXPECT_EQ(txt->keystate, 4);
}

TEST_F(TextEditorTest, ProgramSetTextIsCutAt127Bytes) {
  const std::string longest(127, 'a');
  TextEditorUpdate(txt, (longest + "bcdef").c_str());
  EXPECT_EQ(Text(), longest);
  EXPECT_EQ(txt->buffer[127], '\0');
  EXPECT_EQ(txt->index, 127);
  TextEditorInit(txt, std::string(5000, 'x').c_str());
  EXPECT_EQ(txt->len, 127);
  TextEditorInit(txt, nullptr);
  EXPECT_EQ(txt->len, 0);
}

TEST_F(TextEditorTest, SettingAFieldToItsOwnTextKeepsIt) {
  TextEditorInit(txt, "abcdef");
  TextEditorUpdate(txt, txt->buffer + 2);
  EXPECT_STREQ(txt->buffer, "cdef");
}

TEST_F(TextEditorTest, EnteringTakesFocusAndDrawsFrameAndSolidCaret) {
  TextEditorUpdate(txt, "abc");
  EXPECT_EQ(Shown(), Expected("abc", 3, kUnfocused, kNoFrame));
  Enter();
  EXPECT_EQ(Shown(), Expected("abc", 3, kFocused, kBlack));
  Window focus;
  int revert;
  XGetInputFocus(dpy, &focus, &revert);
  EXPECT_EQ(focus, txt->window);
  EXPECT_EQ(revert, RevertToNone);
}

TEST_F(TextEditorTest, LeavingTakesTheFrameAwayAndKeepsTheFocus) {
  TextEditorUpdate(txt, "abc");
  Enter();
  Leave();
  EXPECT_EQ(Shown(), Expected("abc", 3, kUnfocused, kLightGrey));
  Window focus;
  int revert;
  XGetInputFocus(dpy, &focus, &revert);
  EXPECT_EQ(focus, txt->window);
  Type("d");
  EXPECT_EQ(Text(), "abcd");
}

TEST_F(TextEditorTest, EnteringAfterTypingOutsideStillShowsASolidCaret) {
  Enter();
  Leave();
  Type("ab");
  EXPECT_EQ(Shown(), Expected("ab", 2, kTyped, kLightGrey));
  Enter();
  EXPECT_EQ(Shown(), Expected("ab", 2, kFocused, kBlack));
  Leave();
  EXPECT_EQ(Shown(), Expected("ab", 2, kUnfocused, kLightGrey));
}

TEST_F(TextEditorTest, ExposeUnderThePointerKeepsFrameAndSolidCaret) {
  TextEditorUpdate(txt, "abc");
  Enter();
  XClearArea(dpy, txt->window, 0, 0, 0, 0, True);
  Pump();
  EXPECT_EQ(Shown(), Expected("abc", 3, kFocused, kBlack));
  Leave();
  EXPECT_EQ(Shown(), Expected("abc", 3, kUnfocused, kLightGrey));
}

TEST_F(TextEditorTest, TextSetWithoutDrawingLeavesNoCaretBehind) {
  TextEditorUpdate(txt, "abc");
  TextEditorInit(txt, "abcdefgh");  // the screen still shows the caret after "abc"
  Enter();
  Leave();
  EXPECT_EQ(Shown(), Expected("abc", 3, kUnfocused, kLightGrey));
}

TEST_F(TextEditorTest, TypingInsertsAtTheCaretAndRedraws) {
  Enter();
  Type("ac");
  Type(XK_Left);
  Type("b");
  EXPECT_STREQ(txt->buffer, "abc");
  EXPECT_EQ(txt->len, 3);
  EXPECT_EQ(txt->index, 2);
  EXPECT_EQ(Shown(), Expected("abc", 2, kTyped, kBlack));
}

TEST_F(TextEditorTest, CapitalsAndBlanksAreTyped) {
  Enter();
  player->KeyDown(XK_Shift_L);
  player->Type(XK_a);
  player->KeyUp(XK_Shift_L);
  Type(XK_space);
  Type("1");
  EXPECT_EQ(Text(), "A 1");
}

TEST_F(TextEditorTest, The65thCharacterIsDropped) {
  Enter();
  const std::string full(64, 'm');
  TextEditorUpdate(txt, std::string(63, 'm').c_str());
  Type("m");
  EXPECT_EQ(Text(), full);
  Type("n");
  EXPECT_EQ(Text(), full);
  EXPECT_STREQ(txt->buffer, full.c_str());
  EXPECT_EQ(txt->index, 64);
}

TEST_F(TextEditorTest, TextLongerThanTheKeyboardLimitTakesNoKeyButCanBeShortened) {
  Enter();
  TextEditorUpdate(txt, std::string(100, 'm').c_str());
  Type("n");
  EXPECT_EQ(txt->len, 100);
  Type(XK_BackSpace);
  EXPECT_EQ(txt->len, 99);
}

TEST_F(TextEditorTest, BackspaceRemovesBeforeTheCaret) {
  Enter();
  Type("abcd");
  Type(XK_Left);
  Type(XK_BackSpace);
  EXPECT_STREQ(txt->buffer, "abd");
  EXPECT_EQ(txt->index, 2);
}

TEST_F(TextEditorTest, BackspaceAtTheStartAndDeleteAtTheEndOnlyRedraw) {
  Enter();
  Type("ab");
  Spoil();
  Type(XK_Delete);
  EXPECT_EQ(Text(), "ab");
  EXPECT_EQ(Shown(), Expected("ab", 2, kTyped, kBlack));
  Control(XK_a);
  Spoil();
  Type(XK_BackSpace);
  EXPECT_EQ(Text(), "ab");
  EXPECT_EQ(txt->index, 0);
  EXPECT_EQ(Shown(), Expected("ab", 0, kTyped, kBlack));
}

TEST_F(TextEditorTest, DeleteRemovesAtTheCaret) {
  Enter();
  Type("abcd");
  Control(XK_a);
  Type(XK_Delete);
  EXPECT_STREQ(txt->buffer, "bcd");
  EXPECT_EQ(txt->index, 0);
}

TEST_F(TextEditorTest, ClearEmptiesTheField) {
  // No key of the usual keyboard gives Clear: the user's key 24 does.
  KeySym clear = XK_Clear;
  XChangeKeyboardMapping(player->display(), 24, 1, &clear, 1);
  XSync(player->display(), False);
  TextEditorUpdate(txt, "abc");
  Enter();
  XTestFakeKeyEvent(player->display(), 24, True, CurrentTime);
  XTestFakeKeyEvent(player->display(), 24, False, CurrentTime);
  XSync(player->display(), False);
  Pump();
  EXPECT_EQ(txt->len, 0);
  EXPECT_EQ(txt->index, 0);
  EXPECT_EQ(Shown(), Expected("", 0, kTyped, kBlack));
}

TEST_F(TextEditorTest, LeftAndRightStopAtTheEnds) {
  Enter();
  Type("ab");
  Type(XK_Right);
  EXPECT_EQ(txt->index, 2);
  Type(XK_Left, 5);
  EXPECT_EQ(txt->index, 0);
  Type(XK_Right);
  EXPECT_EQ(txt->index, 1);
}

TEST_F(TextEditorTest, ControlKeysMoveTheCaret) {
  Enter();
  Type("abcd");
  Control(XK_a);
  EXPECT_EQ(txt->index, 0);
  Control(XK_b);
  EXPECT_EQ(txt->index, 0);
  Control(XK_f);
  EXPECT_EQ(txt->index, 1);
  Control(XK_e);
  EXPECT_EQ(txt->index, 4);
  Control(XK_f);
  EXPECT_EQ(txt->index, 4);
  Control(XK_b);
  EXPECT_EQ(txt->index, 3);
  EXPECT_EQ(Shown(), Expected("abcd", 3, kTyped, kBlack));
}

TEST_F(TextEditorTest, ControlDRemovesAtTheCaret) {
  Enter();
  Type("abc");
  Control(XK_d);
  EXPECT_EQ(Text(), "abc");
  Control(XK_a);
  Control(XK_d);
  EXPECT_EQ(Text(), "bc");
  EXPECT_EQ(txt->index, 0);
}

TEST_F(TextEditorTest, ControlKCutsFromTheCaretToTheEnd) {
  Enter();
  Type("abcdef");
  Type(XK_Left, 3);
  Control(XK_k);
  EXPECT_EQ(Text(), "abc");
  EXPECT_EQ(txt->index, 3);
  EXPECT_EQ(Shown(), Expected("abc", 3, kTyped, kBlack));
  EXPECT_STREQ(txt->buffer, "abcdef") << "the key writes no end into the buffer";
  EXPECT_STREQ(TextEditorText(txt), "abc");
}

TEST_F(TextEditorTest, ReturnAndEndCompleteOnceWithTheTextEnded) {
  txt->complete = NoteCompletion;
  Enter();
  Type("abcdef");
  Type(XK_Left, 3);
  Control(XK_k);
  Type(XK_Return);
  EXPECT_EQ(completions, 1);
  EXPECT_EQ(completed, "abc");
  Control(XK_a);
  Control(XK_f);
  Control(XK_k);
  Type(XK_End);
  EXPECT_EQ(completions, 2);
  EXPECT_EQ(completed, "a");
  EXPECT_EQ(txt->index, 1);
}

TEST_F(TextEditorTest, RedrawAfterReturnShowsWhatTheCompletionSet) {
  txt->complete = [](TextEditor* field) { TextEditorUpdate(field, "done"); };
  Enter();
  Type("abc");
  Type(XK_Return);
  EXPECT_EQ(Text(), "done");
  EXPECT_EQ(Shown(), Expected("done", 4, kTyped, kBlack));
}

TEST_F(TextEditorTest, AccentedCharactersAreIgnored) {
  KeySym eacute = XK_eacute;
  XChangeKeyboardMapping(player->display(), 24, 1, &eacute, 1);
  XSync(player->display(), False);
  Enter();
  Spoil();
  const Picture before = Shown();
  XTestFakeKeyEvent(player->display(), 24, True, CurrentTime);
  XTestFakeKeyEvent(player->display(), 24, False, CurrentTime);
  XSync(player->display(), False);
  Pump();
  EXPECT_EQ(txt->len, 0);
  EXPECT_EQ(Shown(), before) << "a key that is ignored redraws nothing";
}

TEST_F(TextEditorTest, OtherControlKeysAndModifiersAreIgnoredWithoutARedraw) {
  Enter();
  Type("ab");
  Spoil();
  const Picture before = Shown();
  Control(XK_g);
  Type(XK_Tab);
  Type(XK_Escape);
  Type(XK_F1);
  Type(XK_Shift_L);
  Type(XK_Up);
  EXPECT_EQ(Text(), "ab");
  EXPECT_EQ(Shown(), before);
}

TEST_F(TextEditorTest, AClickDoesNothing) {
  Enter();
  Type("ab");
  const Picture before = Shown();
  player->Click(1);
  Pump();
  EXPECT_EQ(txt->index, 2);
  EXPECT_EQ(Shown(), before);
}

TEST_F(TextEditorTest, SynthesizedKeyCodesOutOfRangeAreIgnored) {
  TextEditorUpdate(txt, "ab");
  for (int sent : {0, 1, 7, 255}) {
    XEvent event{};
    event.xkey.type = KeyPress;
    event.xkey.window = txt->window;
    event.xkey.root = root;
    event.xkey.keycode = static_cast<unsigned>(sent);
    event.xkey.state = 0xffff;
    XSendEvent(player->display(), txt->window, False, KeyPressMask, &event);
  }
  XSync(player->display(), False);
  Pump();
  EXPECT_EQ(Text(), "ab");
  XEvent wild{};
  wild.xkey.type = KeyPress;
  wild.xkey.display = dpy;
  for (unsigned keycode : {256u + XKeysymToKeycode(dpy, XK_a), 100000u, ~0u}) {
    wild.xkey.keycode = keycode;
    TextEditorKeyPress(txt, &wild);
  }
  EXPECT_EQ(Text(), "ab");
}

TEST_F(TextEditorTest, AKeyThatChangedItsMeaningTypesItsNewCharacter) {
  StrikeAKeyThatChangesItsMeaning();
}

// Without the keyboard extension Xlib does not notice a change by itself.
class CoreKeyboardTest : public TextEditorTest {
 protected:
  void SetUp() override {
    setenv("XKB_DISABLE", "1", 1);
    TextEditorTest::SetUp();
    unsetenv("XKB_DISABLE");
  }
};

TEST_F(CoreKeyboardTest, AKeyThatChangedItsMeaningTypesItsNewCharacter) {
  StrikeAKeyThatChangesItsMeaning();
}

TEST_F(TextEditorTest, BoundsAnOwnerBrokeAreMended) {
  TextEditorUpdate(txt, "abc");
  txt->index = 900;
  txt->len = 2;
  Enter();
  Type("z");
  EXPECT_EQ(Text(), "abz");
  txt->len = -4;
  txt->index = -9;
  Type("y");
  EXPECT_EQ(Text(), "y");
}

TEST_F(TextEditorTest, DrawingCostsNoRoundTrip) {
  Enter();
  Type("abc");  // the keyboard mapping has been fetched
  Leave();
  DrawTextEditor(txt);
  EXPECT_EQ(CostOf([&] { DrawTextEditor(txt); }), (Cost{11, 0}));
  EXPECT_EQ(CostOf([&] { TextEditorUpdate(txt, "abcd"); }), (Cost{11, 0}));
  EXPECT_EQ(CostOf([&] { RedrawTextEditorLine(txt); }), (Cost{6, 0}));
  EXPECT_EQ(CostOf([&] { TextEditorLeave(txt, nullptr); }), (Cost{5, 0}));
}

TEST_F(TextEditorTest, EnteringAndKeysCostAsMuchAsStated) {
  Enter();
  Type("abc");
  Leave();
  DrawTextEditor(txt);
  MoveTo(kX + 150, kY + 10);
  // Where the window is viewable, and who has the focus.
  EXPECT_EQ(CostOf([&] { TextEditorEnter(txt, nullptr); }), (Cost{9, 2}));
  XEvent event{};
  event.xkey.type = KeyPress;
  event.xkey.display = dpy;
  event.xkey.keycode = XKeysymToKeycode(dpy, XK_a);
  TextEditorKeyPress(txt, &event);
  EXPECT_EQ(CostOf([&] { TextEditorKeyPress(txt, &event); }), (Cost{6, 0}));
  EXPECT_EQ(CostOf([&] { MakeTextEditor(top, 20, 200, 100, kEditorHeight); }), (Cost{2, 0}));
}

}  // namespace
}  // namespace gromlit
