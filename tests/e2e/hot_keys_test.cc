// Hot keys on the built program: struck into the action editor's field, stored, and sent to the
// application when the stroke is drawn.
#include "tests/e2e/action_editor_run.h"

#include <X11/XKBlib.h>
#include <X11/keysym.h>

namespace gromlit {
namespace {

using nlohmann::json;
using testing::WaitFor;
using Strings = std::vector<std::string>;

struct Key {
  int keycode;
  int state;
  std::string text;  // as the editor shows it
};

class HotKeysTest : public testing::ActionEditorRun {
 protected:
  // Opens the program on an action without commands, and the editor on the action.
  void OpenEmpty() {
    Store({ActionOf("Keys", {})});
    Open();
    Edit(0);
    // Its list is empty, so no tab was opened by a selection.
    ClickTab(editor, kRun);
    ClickTab(editor, kHotKey);
  }
  int CodeOf(KeySym key) { return XKeysymToKeycode(player->display(), key); }
  // Presses these keys, this key code, and lets go of all again.
  void Strike(const std::vector<KeySym>& held, int keycode) {
    for (const KeySym key : held) player->KeyDown(key);
    Tap(keycode);
    for (auto key = held.rbegin(); key != held.rend(); ++key) player->KeyUp(*key);
  }
  // Strikes a key into the field and adds it as a command.
  void Capture(const std::vector<KeySym>& held, const Key& key) {
    SCOPED_TRACE(key.text);
    Enter(Field());
    Strike(held, key.keycode);
    // The caret stays where it was in the empty field.
    EXPECT_TRUE(FieldReads(Field(), key.text, 0));
    Press(kAdd);
    captured_.push_back(key);
  }
  // Closes the editor and compares the stored commands with what was captured.
  void ExpectStored() {
    Ok();
    const json commands = StoredAction()["commands"];
    ASSERT_EQ(commands.size(), captured_.size());
    for (size_t i = 0; i < captured_.size(); i++) {
      SCOPED_TRACE(i);
      const json& command = commands[i];
      EXPECT_EQ(command["type"], "HotKey");
      EXPECT_EQ(command["nkeys"], 1);
      EXPECT_EQ(command["keys"], json({{captured_[i].keycode, captured_[i].state}}));
      EXPECT_EQ(command["text"], captured_[i].text);
      EXPECT_EQ(command["checked"], 0);
    }
  }
  // Draws over the application, which must get exactly the captured keys, one after another.
  void ExpectSent() {
    FocusProbe();
    Draw(kStroke);
    const auto lines = probe->Wait(2 * captured_.size(), "Key");
    ASSERT_EQ(lines.size(), 2 * captured_.size());
    for (size_t i = 0; i < lines.size(); i++) {
      const Key& key = captured_[i / 2];
      const std::string expected = std::string(i % 2 == 0 ? "KeyPress" : "KeyRelease") +
                                   " window=main keycode=" + std::to_string(key.keycode) +
                                   " state=" + std::to_string(key.state) +
                                   " x=40 y=120 x_root=920 y_root=200 send_event=1";
      EXPECT_EQ(lines[i], expected) << key.text;
    }
  }

  std::vector<Key> captured_;
};

TEST_F(HotKeysTest, ShiftAloneAfterControlAIsStoredThoughTheFieldShowsControlA) {
  OpenEmpty();
  Enter(Field());
  Strike({XK_Control_L}, CodeOf(XK_a));
  EXPECT_TRUE(FieldReads(Field(), "Control-a", 0));
  Strike({}, CodeOf(XK_Shift_L));
  Press(kAdd);
  EXPECT_TRUE(Lists({"HotKey: Shift_L"}, 0));
  EXPECT_TRUE(FieldReads(Field(), "Control-a", 0));
  Picture("shift-alone");
  captured_ = {{CodeOf(XK_Shift_L), 0, "Shift_L"}};
  ExpectStored();
  ExpectSent();
}

TEST_F(HotKeysTest, KeysAreCapturedWithEachModifierStoredAndSent) {
  OpenEmpty();
  const int a = CodeOf(XK_a);
  const struct {
    std::vector<KeySym> held;
    int state;
    const char* text;
  } strokes[] = {
      {{}, 0, "a"},
      {{XK_Shift_L}, ShiftMask, "Shift-a"},
      {{XK_Shift_R}, ShiftMask, "Shift-a"},
      {{XK_Control_L}, ControlMask, "Control-a"},
      {{XK_Control_R}, ControlMask, "Control-a"},
      {{XK_Alt_L}, Mod1Mask, "Alt-a"},
      {{XK_Super_L}, Mod4Mask, "Mod4-a"},
      {{XK_ISO_Level3_Shift}, Mod5Mask, "Mod5-a"},
      {{XK_Control_L, XK_Shift_L}, ControlMask | ShiftMask, "Control-Shift-a"},
      {{XK_Alt_L, XK_Control_L}, Mod1Mask | ControlMask, "Control-Alt-a"},
      {{XK_Super_L, XK_Shift_R}, Mod4Mask | ShiftMask, "Mod4-Shift-a"},
      {{XK_Super_L, XK_Alt_L, XK_Control_R, XK_Shift_L},
       Mod4Mask | Mod1Mask | ControlMask | ShiftMask,
       "Control-Mod4-Alt-Shift-a"},
  };
  for (const auto& stroke : strokes) Capture(stroke.held, {a, stroke.state, stroke.text});
  Picture("modifiers");
  // Locks stay on until their key is pressed again, which would be the next key captured.
  const struct {
    KeySym key;
    int state;
    const char* text;
  } locks[] = {{XK_Caps_Lock, LockMask, "a"}, {XK_Num_Lock, Mod2Mask, "Mod2-a"}};
  for (const auto& [lock, state, text] : locks) {
    Enter(Field());
    Strike({}, CodeOf(lock));
    Capture({}, {a, state, text});
    if (lock == XK_Caps_Lock)
      Capture({XK_Control_L, XK_Shift_L},
              {a, LockMask | ControlMask | ShiftMask, "Control-Shift-a"});
    Enter(Field());
    Strike({}, CodeOf(lock));
    ASSERT_TRUE(WaitFor([this] { return player->Where().state == 0; }));
  }
  ExpectStored();
  ExpectSent();
}

TEST_F(HotKeysTest, KeysThatAreNoLettersAreCapturedStoredAndSent) {
  OpenEmpty();
  const KeySym keys[] = {XK_F1,   XK_F5,     XK_F12,    XK_Escape, XK_Return,   XK_BackSpace,
                         XK_Tab,  XK_Delete, XK_Insert, XK_Home,   XK_End,      XK_Page_Up,
                         XK_Left, XK_Right,  XK_Up,     XK_Down,   XK_KP_Enter, XK_KP_Add,
                         XK_KP_7, XK_space,  XK_1,      XK_Menu,   XK_Print};
  for (const KeySym key : keys) {
    const int code = CodeOf(key);
    ASSERT_NE(code, 0) << XKeysymToString(key);
    // The name is that of the key without modifiers: of KP_7 it is KP_Home.
    const KeySym plain = XkbKeycodeToKeysym(player->display(), static_cast<KeyCode>(code), 0, 0);
    Capture({}, {code, 0, XKeysymToString(plain)});
  }
  Capture({XK_Alt_L}, {CodeOf(XK_F4), Mod1Mask, "Alt-F4"});
  Capture({XK_Control_L, XK_Alt_L},
          {CodeOf(XK_Delete), ControlMask | Mod1Mask, "Control-Alt-Delete"});
  Capture({XK_Shift_L}, {CodeOf(XK_Tab), ShiftMask, "Shift-Tab"});
  Capture({XK_Control_L}, {CodeOf(XK_k), ControlMask, "Control-k"});  // edits any other field
  Capture({XK_Super_L}, {CodeOf(XK_KP_Enter), Mod4Mask, "Mod4-KP_Enter"});
  Picture("other-keys");
  ExpectStored();
  ExpectSent();
}

TEST_F(HotKeysTest, KeysWithoutANameAreCapturedStoredAndSent) {
  OpenEmpty();
  std::vector<int> nameless;
  int lowest;
  int highest;
  XDisplayKeycodes(player->display(), &lowest, &highest);
  for (int code = lowest; code <= highest; code++)
    if (XkbKeycodeToKeysym(player->display(), static_cast<KeyCode>(code), 0, 0) == NoSymbol)
      nameless.push_back(code);
  ASSERT_GE(nameless.size(), 2u);
  Capture({XK_Control_L}, {CodeOf(XK_a), ControlMask, "Control-a"});
  Capture({}, {nameless.front(), 0, ""});
  Capture({XK_Control_L}, {nameless.back(), ControlMask, ""});
  EXPECT_TRUE(Lists({"HotKey: Control-a", "HotKey: ", "HotKey: "}, 2));
  // Shown again they are still there.
  ClickCommand(editor, 1);
  EXPECT_TRUE(FieldReads(Field(), ""));
  Press(kUpdate);
  ExpectStored();
  ExpectSent();
}

TEST_F(HotKeysTest, UpdateTakesTheKeyThatWasStruckLastAndElseKeepsTheOldOne) {
  OpenEmpty();
  Capture({XK_Control_L}, {CodeOf(XK_a), ControlMask, "Control-a"});
  Capture({XK_Alt_L}, {CodeOf(XK_b), Mod1Mask, "Alt-b"});
  ClickCommand(editor, 0);
  EXPECT_TRUE(FieldReads(Field(), "Control-a"));
  Press(kUpdate);
  EXPECT_TRUE(Lists({"HotKey: Control-a", "HotKey: Alt-b"}, 0));
  ClickCommand(editor, 1);
  Enter(Field());
  Strike({XK_Super_L}, CodeOf(XK_c));
  Strike({XK_Shift_L}, CodeOf(XK_F2));
  EXPECT_TRUE(FieldReads(Field(), "Shift-F2", 5));
  Press(kUpdate);
  EXPECT_TRUE(Lists({"HotKey: Control-a", "HotKey: Shift-F2"}, 1));
  captured_[1] = {CodeOf(XK_F2), ShiftMask, "Shift-F2"};
  // An open tab clicked away takes the recorded key with it.
  ClickTab(editor, kSound);
  ClickTab(editor, kHotKey);
  Press(kAdd);
  EXPECT_TRUE(Lists({"HotKey: Control-a", "HotKey: Shift-F2", "HotKey: "}, 2));
  Press(kDelete);
  ExpectStored();
  ExpectSent();
}

}  // namespace
}  // namespace gromlit
