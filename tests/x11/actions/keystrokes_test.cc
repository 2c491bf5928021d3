// Before Xlib, whose macros would break GoogleTest.
#include "tests/support/x_fixture.h"

#include <X11/XKBlib.h>
#include <X11/keysym.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <random>
#include <string>
#include <vector>

#include "actions/character_keys.h"
#include "actions/keystrokes.h"
#include "actions/typing.h"
#include "display/lock_modifiers.h"
#include "tests/x11/actions/key_probe.h"
#include "tests/x11/actions/literal_key_tables.h"

namespace gromlit {
namespace {

using testing::KeyProbe;
using testing::KeySeen;
using testing::KeyTables;
using testing::LiteralKeyTables;
using testing::Process;
using testing::Strokes;

KeyTables BuiltTables() {
  KeyTables tables;
  std::copy_n(charTableKeycodes, kCharacters, tables.keycodes.begin());
  std::copy_n(charTableKeystates, kCharacters, tables.keystates.begin());
  return tables;
}

struct Key {
  int keycode;
  int state;
  bool operator==(const Key&) const = default;
};

std::ostream& operator<<(std::ostream& out, const Key& key) {
  return out << "key " << key.keycode << " state " << key.state;
}

Key KeyOf(int ch) {
  Key key{-1, -1};
  EXPECT_EQ(CharToKeycode(ch, &key.keycode, &key.state), key.keycode);
  return key;
}

constexpr Key kNoKey{0, 0};

// The keyboard is laid out by other clients before the program looks at it for the first time, as
// it is when the program starts.
class KeystrokesTest : public testing::XFixture {
 protected:
  void Layout(const std::string& layout, const std::string& variant = "") {
    Process setter(
        {"setxkbmap", "-model", "pc105", "-layout", layout, "-variant", variant, "-option", ""});
    ASSERT_EQ(setter.Wait(), 0) << "setxkbmap";
  }

  // A whole keyboard: the usual American one with these types and keys on top.
  void Keyboard(const std::string& types, const std::string& keys) {
    testing::WriteText(*install / "keyboard.xkb",
                       "xkb_keymap {\n"
                       "xkb_keycodes { include \"evdev+aliases(qwerty)\" };\n"
                       "xkb_types { include \"complete\"\n" +
                           types +
                           "};\n"
                           "xkb_compat { include \"complete\" };\n"
                           "xkb_symbols { include \"pc+us+inet(evdev)\"\n" +
                           keys +
                           "};\n"
                           "};\n");
    Process compiler({"xkbcomp", "-w", "0", *install / "keyboard.xkb", server->name()});
    ASSERT_EQ(compiler.Wait(), 0) << "xkbcomp";
  }

  void Remap(int keycode, std::vector<KeySym> symbols) {
    XChangeKeyboardMapping(player->display(), keycode, static_cast<int>(symbols.size()),
                           symbols.data(), 1);
    XSync(player->display(), False);
  }
};

// --- The tables ---------------------------------------------------------------------------------

TEST_F(KeystrokesTest, TablesEqualTheLiteralSearchOnTheServersOwnKeyboard) {
  BuildCharToKeycode();
  EXPECT_EQ(BuiltTables(), LiteralKeyTables(dpy));
}

struct LayoutCase {
  const char* layout;
  const char* variant;
  Key at;  // of the character @
};

class LayoutTest : public KeystrokesTest, public ::testing::WithParamInterface<LayoutCase> {};

TEST_P(LayoutTest, TablesEqualTheLiteralSearch) {
  Layout(GetParam().layout, GetParam().variant);
  BuildCharToKeycode();
  EXPECT_EQ(BuiltTables(), LiteralKeyTables(dpy));
  EXPECT_EQ(KeyOf('@'), GetParam().at);
}

INSTANTIATE_TEST_SUITE_P(
    Layouts, LayoutTest,
    ::testing::Values(LayoutCase{"us", "", {11, 1}}, LayoutCase{"us", "dvorak", {11, 1}},
                      LayoutCase{"de", "", {24, 128}}, LayoutCase{"fr", "", {19, 128}},
                      LayoutCase{"gb", "", {48, 1}}, LayoutCase{"de", "neo", {48, 128}},
                      LayoutCase{"us,ru", ",", {11, 1}}, LayoutCase{"ru,us", ",", kNoKey}),
    [](const auto& instance) {
      std::string name = instance.param.layout;
      name += instance.param.variant;
      std::erase(name, ',');
      return name;
    });

// Where there is no keyboard extension the library looks keys up in another way.
TEST_F(KeystrokesTest, TablesEqualTheLiteralSearchWithoutTheKeyboardExtension) {
  Layout("de");
  Remap(108, {XK_Mode_switch});
  Remap(24, {XK_q, XK_Q, XK_at, XK_at});
  XModifierKeymap* const modifiers =
      XInsertModifiermapEntry(XGetModifierMapping(player->display()), 108, Mod3MapIndex);
  XSetModifierMapping(player->display(), modifiers);
  XFreeModifiermap(modifiers);
  XSync(player->display(), False);
  Display* const former = dpy;
  XkbIgnoreExtension(True);
  EXPECT_TRUE(OpenDisplay(server->name().c_str()));
  XkbIgnoreExtension(False);
  BuildCharToKeycode();
  EXPECT_EQ(BuiltTables(), LiteralKeyTables(dpy));
  EXPECT_EQ(KeyOf('@'), (Key{24, Mod3Mask}));
  XCloseDisplay(dpy);
  dpy = former;
}

TEST_F(KeystrokesTest, TablesEqualTheLiteralSearchOnRandomKeyboards) {
  const unsigned seed = std::random_device{}();
  SCOPED_TRACE("seed " + std::to_string(seed));
  std::mt19937 random(seed);
  for (int round = 0; round < 5; round++) {
    int first;
    int last;
    XDisplayKeycodes(player->display(), &first, &last);
    std::vector<KeySym> symbols;
    for (int i = 0; i < (last - first + 1) * 4; i++)
      symbols.push_back(random() % 3 == 0 ? NoSymbol : random() % 256);
    XChangeKeyboardMapping(player->display(), first, 4, symbols.data(), last - first + 1);
    XSync(player->display(), False);
    // A fresh connection has read nothing of the keyboard before.
    Display* const former = dpy;
    ASSERT_TRUE(OpenDisplay(server->name().c_str()));
    BuildCharToKeycode();
    EXPECT_EQ(BuiltTables(), LiteralKeyTables(dpy));
    XCloseDisplay(dpy);
    dpy = former;
  }
}

// Which modifiers a key looks at, and which of them it leaves to act on what it gives, is up to its
// type; each of its groups has one.
TEST_F(KeystrokesTest, TablesEqualTheLiteralSearchOnRandomTypes) {
  const unsigned seed = std::random_device{}();
  SCOPED_TRACE("seed " + std::to_string(seed));
  std::mt19937 random(seed);
  const char* const modifiers[] = {"Shift", "Lock", "Control", "Mod1", "Mod2", "Mod3", "Mod5"};
  const auto one = [&](const auto& of) { return of[random() % std::size(of)]; };
  for (int round = 0; round < 2; round++) {
    std::string types;
    for (int i = 0; i < 6; i++) {
      const std::string a = one(modifiers);
      std::string b = one(modifiers);
      while (b == a) b = one(modifiers);
      types += "type \"RANDOM" + std::to_string(i) + "\" { modifiers = " + a + "+" + b + "; map[" +
               a + "] = Level2; map[" + b + "] = Level3; preserve[" + b + "] = " + b + "; map[" +
               a + "+" + b + "] = Level4; preserve[" + a + "+" + b + "] = " + a +
               "; level_name[Level1] = \"Base\"; };\n";
    }
    std::string keys;
    for (int row = 0; row < 3; row++) {
      for (int i = 1; i <= 9; i++) {
        keys += std::string("key <A") + "DCB"[row] + "0" + std::to_string(i) + "> { ";
        for (const char* group : {"Group1", "Group2"}) {
          keys += std::string("type[") + group + "] = \"RANDOM" + std::to_string(random() % 6) +
                  "\", symbols[" + group + "] = [ ";
          for (int level = 0; level < 4; level++) {
            char symbol[20];
            // Letters that only other groups can make control characters of, and plain ones.
            std::snprintf(symbol, sizeof symbol, "%sU%04X", level > 0 ? ", " : "",
                          static_cast<unsigned>(random() % 2 == 0 ? 0x430 + random() % 32
                                                                  : 0x20 + random() % 95));
            keys += symbol;
          }
          keys += group[5] == '1' ? " ], " : " ] };\n";
        }
      }
    }
    Keyboard(types, keys);
    // A fresh connection has read nothing of the keyboard before.
    Display* const former = dpy;
    ASSERT_TRUE(OpenDisplay(server->name().c_str()));
    BuildCharToKeycode();
    EXPECT_EQ(BuiltTables(), LiteralKeyTables(dpy));
    XCloseDisplay(dpy);
    dpy = former;
  }
}

// With Control a key that gives no Latin letter is asked for one in its other groups, each with
// modifiers of its own.
TEST_F(KeystrokesTest, ControlCharactersAreFoundInOtherGroupsWithTheirModifiers) {
  Keyboard(
      "type \"WITHMod2\" { modifiers = Mod2; map[Mod2] = Level2; level_name[Level1] = \"Base\"; "
      "};\n",
      "key <AB02> { type[Group1] = \"TWO_LEVEL\", symbols[Group1] = [ Cyrillic_che, Cyrillic_CHE ],"
      " type[Group2] = \"WITHMod2\", symbols[Group2] = [ Cyrillic_che, x ] };\n");
  BuildCharToKeycode();
  EXPECT_EQ(KeyOf('X' - '@'), (Key{53, ControlMask | Mod2Mask}));
  EXPECT_EQ(BuiltTables(), LiteralKeyTables(dpy));
}

TEST_F(KeystrokesTest, TablesAreEmptiedBeforeTheyAreFilled) {
  std::memset(charTableKeycodes, 1, sizeof charTableKeycodes);
  std::memset(charTableKeystates, 1, sizeof charTableKeystates);
  BuildCharToKeycode();
  EXPECT_EQ(BuiltTables(), LiteralKeyTables(dpy));
  EXPECT_EQ(KeyOf('a'), (Key{38, 0}));
}

TEST_F(KeystrokesTest, UpperCaseLettersAreTypedWithShiftNeverWithLock) {
  BuildCharToKeycode();
  for (char c = 'A'; c <= 'Z'; c++) {
    EXPECT_EQ(KeyOf(c).state, ShiftMask) << c;
    EXPECT_NE(KeyOf(c).keycode, 0) << c;
  }
}

TEST_F(KeystrokesTest, CharactersOfBareKeysCarryNoModifier) {
  BuildCharToKeycode();
  for (const char c : std::string("abcdefghijklmnopqrstuvwxyz0123456789 -=[];',./\\`\t\r"))
    EXPECT_EQ(KeyOf(c).state, 0) << c;
}

TEST_F(KeystrokesTest, LowestKeyCodeWinsWithinAState) {
  Remap(200, {XK_a, XK_A});
  Remap(20, {XK_a, XK_A});
  BuildCharToKeycode();
  EXPECT_EQ(KeyOf('a'), (Key{20, 0}));
  EXPECT_EQ(KeyOf('A'), (Key{20, 1}));
}

// The modifiers of a third and fourth level are named by the key's type, one type per modifier.
TEST_F(KeystrokesTest, CharactersOfModifiersGetTheFirstStateAndPairsWithMod4OrMod5AreNotFound) {
  std::string types;
  for (const char* mod : {"2", "3", "4", "5"}) {
    const std::string m = std::string("Mod") + mod;
    types += "type \"WITH" + m + "\" { modifiers = Shift+" + m + "; map[Shift] = Level2; map[" + m +
             "] = Level3; map[Shift+" + m + "] = Level4; level_name[Level1] = \"Base\"; };\n";
  }
  Keyboard(types,
           // The keys that have the characters without such a modifier give them up.
           "key <TLDE> { [ a, A ] }; key <BKSL> { [ a, A ] }; key <AC11> { [ a, A ] };\n"
           "key <AD11> { [ a, A ] }; key <LSGT> { type[Group1] = \"TWO_LEVEL\", [ a, A ] };\n"
           "key <AD01> { type[Group1] = \"WITHMod2\", [ q, Q, grave, asciitilde ] };\n"
           "key <AD02> { type[Group1] = \"WITHMod3\", [ w, W, backslash, bar ] };\n"
           "key <AD03> { type[Group1] = \"WITHMod4\", [ e, E, apostrophe, quotedbl ] };\n"
           "key <AD04> { type[Group1] = \"WITHMod5\", [ r, R, bracketleft, braceleft ] };\n");
  BuildCharToKeycode();
  EXPECT_EQ(KeyOf('`'), (Key{24, Mod2Mask}));
  EXPECT_EQ(KeyOf('~'), (Key{24, Mod2Mask | ShiftMask}));
  EXPECT_EQ(KeyOf('\\'), (Key{25, Mod3Mask}));
  EXPECT_EQ(KeyOf('|'), (Key{25, Mod3Mask | ShiftMask}));
  EXPECT_EQ(KeyOf('\''), (Key{26, Mod4Mask}));
  EXPECT_EQ(KeyOf('"'), kNoKey);
  EXPECT_EQ(KeyOf('['), (Key{27, Mod5Mask}));
  EXPECT_EQ(KeyOf('{'), kNoKey);
  EXPECT_EQ(BuiltTables(), LiteralKeyTables(dpy));
}

TEST_F(KeystrokesTest, HighestKeyCodeIsNeverUsed) {
  Remap(49, {XK_a, XK_A});
  Remap(255, {XK_grave, XK_asciitilde});
  BuildCharToKeycode();
  EXPECT_EQ(KeyOf('`'), kNoKey);
  EXPECT_EQ(KeyOf('~'), kNoKey);
}

TEST_F(KeystrokesTest, KeyCodeBelowTheHighestIsUsed) {
  Remap(49, {XK_a, XK_A});
  Remap(254, {XK_grave, XK_asciitilde});
  BuildCharToKeycode();
  EXPECT_EQ(KeyOf('`'), (Key{254, 0}));
  EXPECT_EQ(KeyOf('~'), (Key{254, 1}));
}

TEST_F(KeystrokesTest, AccentedLettersHaveNoKeyEvenWhereTheKeyboardHasThem) {
  Layout("de");
  BuildCharToKeycode();
  for (int c = 128; c < 256; c++) EXPECT_EQ(KeyOf(c), kNoKey) << c;
  for (int c = -128; c < 0; c++) EXPECT_EQ(KeyOf(c), kNoKey) << c;
}

TEST_F(KeystrokesTest, LaterChangesOfTheKeyboardAreNotNoticed) {
  BuildCharToKeycode();
  const KeyTables before = BuiltTables();
  Remap(38, {XK_z, XK_Z});
  Pump();
  EXPECT_EQ(BuiltTables(), before);
}

// --- The text of a key stroke -------------------------------------------------------------------

TEST_F(KeystrokesTest, TextsOfKeyStrokes) {
  char buf[kKeyStrokeText];
  const auto text = [&](int keycode, int state) {
    std::memset(buf, 'x', sizeof buf);
    char* const result = KeyStrokeToString(buf, keycode, state);
    EXPECT_EQ(result, buf);
    return std::string(buf);
  };
  EXPECT_EQ(text(38, ControlMask | ShiftMask), "Control-Shift-a");
  EXPECT_EQ(text(71, Mod1Mask), "Alt-F5");
  EXPECT_EQ(text(36, 0), "Return");
  EXPECT_EQ(text(38, 0xff), "Control-Mod2-Mod3-Mod4-Mod5-Alt-Shift-a");
  EXPECT_EQ(text(38, LockMask), "a");
  EXPECT_EQ(text(38, Mod2Mask), "Mod2-a");
  EXPECT_EQ(text(38, Mod3Mask), "Mod3-a");
  EXPECT_EQ(text(38, Mod4Mask), "Mod4-a");
  EXPECT_EQ(text(38, Mod5Mask), "Mod5-a");
  EXPECT_EQ(text(38, 0xff00), "a");
}

TEST_F(KeystrokesTest, KeyWithoutANameHasNoText) {
  Remap(200, {NoSymbol});
  char buf[kKeyStrokeText];
  for (const int keycode : {200, 0, 7, 256 + 38, 65535, -1}) {
    std::strcpy(buf, "before");
    EXPECT_STREQ(KeyStrokeToString(buf, keycode, ControlMask), "") << keycode;
  }
}

TEST_F(KeystrokesTest, TextsOfAllKeysFitTheirBuffer) {
  char buf[kKeyStrokeText + 1];
  for (int keycode = 0; keycode < 256; keycode++) {
    std::memset(buf, 'x', sizeof buf);
    KeyStrokeToString(buf, keycode, 0xff);
    EXPECT_LT(std::strlen(buf), static_cast<size_t>(kKeyStrokeText));
    EXPECT_EQ(buf[kKeyStrokeText], 'x');
  }
}

// --- Sending ------------------------------------------------------------------------------------

TEST_F(KeystrokesTest, KeyIsSentAsOnePressAndOneReleaseWithEveryField) {
  KeyProbe probe(server->name(), 300, 200);
  SendHotKey(probe.window(), 12, 34, 38, 5, 312, 234);
  XSync(dpy, False);
  const KeySeen at{.type = 0,
                   .keycode = 0,
                   .state = 0,
                   .x = 12,
                   .y = 34,
                   .x_root = 312,
                   .y_root = 234,
                   .send_event = true,
                   .same_screen = true,
                   .subwindow = None};
  EXPECT_EQ(probe.Seen(), Strokes({{38, 5}}, at));
  EXPECT_EQ(probe.times, (std::vector<Time>{CurrentTime, CurrentTime}));
}

TEST_F(KeystrokesTest, NegativePositionsAndAnyStateAreSentAsTheyAre) {
  KeyProbe probe(server->name(), 300, 200);
  SendHotKey(probe.window(), -5, -6, 255, 0x20ff, -7, -8);
  XSync(dpy, False);
  const KeySeen at{
      .type = 0, .keycode = 0, .state = 0, .x = -5, .y = -6, .x_root = -7, .y_root = -8};
  EXPECT_EQ(probe.Seen(), Strokes({{255, 0x20ff}}, at));
}

TEST_F(KeystrokesTest, KeysTravelUpFromAWindowThatDoesNotListen) {
  KeyProbe probe(server->name(), 300, 200);
  SendHotKey(probe.MakeDeafChild(), 1, 2, 38, 0, 3, 4);
  XSync(dpy, False);
  const std::vector<KeySeen> seen = probe.Seen();
  ASSERT_EQ(seen.size(), 2u);
  EXPECT_EQ(seen[0].keycode, 38u);
  EXPECT_TRUE(seen[0].send_event);
}

TEST_F(KeystrokesTest, AWindowThatListensOnlyToOtherThingsGetsTheKeysToo) {
  // Every bit of the mask is set: selecting structure events is enough.
  KeyProbe probe(server->name(), 300, 200);
  XSelectInput(probe.display(), probe.window(), StructureNotifyMask);
  XSync(probe.display(), False);
  SendHotKey(probe.window(), 1, 2, 38, 0, 3, 4);
  XSync(dpy, False);
  EXPECT_EQ(probe.Seen().size(), 2u);
}

TEST_F(KeystrokesTest, SendingAsksNothingOfTheServer) {
  KeyProbe probe(server->name(), 300, 200);
  const unsigned long before = NextRequest(dpy);
  SendHotKey(probe.window(), 1, 2, 38, 0, 3, 4);
  // The two events and no request besides: nothing has a reply to wait for.
  EXPECT_EQ(NextRequest(dpy) - before, 2u);
  XSync(dpy, False);
  EXPECT_EQ(probe.Seen().size(), 2u);
}

// --- Texts and files ----------------------------------------------------------------------------

class TypingTest : public KeystrokesTest {
 protected:
  void SetUp() override {
    KeystrokesTest::SetUp();
    BuildCharToKeycode();
    probe = std::make_unique<KeyProbe>(server->name(), 300, 200);
    place = {probe->window(), 1, 2, 3, 4};
  }
  void TearDown() override {
    probe.reset();
    KeystrokesTest::TearDown();
  }

  std::vector<KeySeen> Seen() {
    XSync(dpy, False);
    return probe->Seen();
  }

  // The strokes of a text, each byte looked up in the judge's tables.
  std::vector<KeySeen> Typed(const std::string& text) {
    const KeyTables tables = LiteralKeyTables(dpy);
    std::vector<std::pair<unsigned, unsigned>> keys;
    for (const char c : text) {
      const auto byte = static_cast<unsigned char>(c);
      if (tables.keycodes[byte] != 0)
        keys.emplace_back(tables.keycodes[byte], tables.keystates[byte]);
    }
    return Strokes(keys,
                   {.type = 0, .keycode = 0, .state = 0, .x = 1, .y = 2, .x_root = 3, .y_root = 4});
  }

  std::unique_ptr<KeyProbe> probe;
  InputPlace place{};
};

TEST_F(TypingTest, AccentedLettersAreSkippedAndTheRestIsTyped) {
  const std::string text = "a\xe9\xff\x80z";
  TypeText(place, text.data(), text.size());
  EXPECT_EQ(Seen(), Typed("az"));
}

TEST_F(TypingTest, FileOfManyBlocksIsTypedWhole) {
  for (const size_t size : {1u, 255u, 256u, 257u, 512u, 1000u}) {
    std::string text;
    for (size_t i = 0; i < size; i++) text += static_cast<char>('a' + i % 26);
    testing::WriteText(*install / "text", text);
    TypeFile(place, (*install / "text").c_str());
    EXPECT_EQ(Seen(), Typed(text)) << size;
  }
}

TEST_F(TypingTest, EveryByteOfAFileIsLookedUp) {
  std::string text;
  for (int i = 0; i < 256; i++) text += static_cast<char>(i);
  testing::WriteText(*install / "bytes", text);
  TypeFile(place, (*install / "bytes").c_str());
  EXPECT_EQ(Seen(), Typed(text));
}

TEST_F(TypingTest, EmptyFileSendsNothing) {
  testing::WriteText(*install / "empty", "");
  TypeFile(place, (*install / "empty").c_str());
  EXPECT_EQ(Seen(), std::vector<KeySeen>{});
}

TEST_F(TypingTest, WhatIsNoReadableFileSendsNothing) {
  ASSERT_EQ(mkfifo((*install / "fifo").c_str(), 0666), 0);
  for (const std::string& name : {*install / "missing", *install / "fifo", install->path(),
                                  std::string("/dev/zero"), std::string()}) {
    TypeFile(place, name.c_str());
    EXPECT_EQ(Seen(), std::vector<KeySeen>{}) << name;
  }
}

TEST_F(TypingTest, DescriptorZeroDoesNotCountAsOpened) {
  testing::WriteText(*install / "text", "abc");
  const int saved = fcntl(STDIN_FILENO, F_DUPFD_CLOEXEC, 3);
  close(STDIN_FILENO);
  TypeFile(place, (*install / "text").c_str());
  const bool free = fcntl(STDIN_FILENO, F_GETFD) == -1;
  dup2(saved, STDIN_FILENO);
  close(saved);
  EXPECT_TRUE(free) << "the file stays open on descriptor 0";
  EXPECT_EQ(Seen(), std::vector<KeySeen>{});
}

TEST_F(TypingTest, FilesAreClosedAfterTyping) {
  testing::WriteText(*install / "text", "abc");
  const auto descriptors = [] {
    return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {});
  };
  const auto before = descriptors();
  for (int i = 0; i < 10; i++) TypeFile(place, (*install / "text").c_str());
  EXPECT_EQ(descriptors(), before);
  EXPECT_EQ(Seen().size(), 60u);
}

// To Xlib this server has no XKB.
class CoreKeyboardTest : public testing::XFixture {
 protected:
  void SetUp() override {
    setenv("XKB_DISABLE", "1", 1);
    XFixture::SetUp();
    ForgetCharacterKeys();
  }
  void TearDown() override {
    XFixture::TearDown();
    unsetenv("XKB_DISABLE");
    ForgetCharacterKeys();
  }
};

TEST_F(CoreKeyboardTest, KeysHaveTheirSymbolsModifiersAndCharacters) {
  ASSERT_EQ(XkbKeycodeToKeysym(dpy, XKeysymToKeycode(dpy, XK_x), 0, 0), KeySym{NoSymbol});
  char name[kKeyStrokeText];
  const KeyCode x = XKeysymToKeycode(dpy, XK_x);
  EXPECT_STREQ(KeyStrokeToString(name, x, ControlMask), "Control-x");
  const ModifierMap map = ReadModifierMap();
  EXPECT_EQ(map.keys[ControlMapIndex], XKeysymToKeycode(dpy, XK_Control_L));
  EXPECT_EQ(map.keys[ShiftMapIndex], XKeysymToKeycode(dpy, XK_Shift_L));
  EXPECT_NE(map.locks & Mod2Mask, 0u) << "Num Lock";
  for (const auto& [c, modifiers] : {std::pair{U'x', 0U}, std::pair{U'X', unsigned{ShiftMask}}}) {
    EXPECT_EQ(KeyOfCharacter(c).keycode, x);
    EXPECT_EQ(KeyOfCharacter(c).modifiers, modifiers);
  }
}

}  // namespace
}  // namespace gromlit
