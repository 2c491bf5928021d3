// Before Xlib, whose macros would break GoogleTest.
#include "tests/support/x_fixture.h"

#include <X11/XKBlib.h>
#include <X11/Xutil.h>
#include <X11/extensions/XInput.h>
#include <X11/extensions/XInput2.h>
#include <X11/extensions/XTest.h>
#include <X11/keysym.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <clocale>
#include <cstdlib>
#include <functional>
#include <random>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "actions/character_keys.h"
#include "actions/delivery.h"
#include "actions/execute.h"
#include "actions/keyboard_change.h"
#include "actions/keystrokes.h"
#include "actions/real_input.h"
#include "actions/spare_keys.h"
#include "actions/typing.h"
#include "core/option_files.h"
#include "display/lock_modifiers.h"
#include "tests/support/captured.h"
#include "tests/support/round_trips.h"
#include "tests/x11/actions/key_probe.h"

namespace gromlit {
namespace {

using std::chrono::milliseconds;
using testing::KeyProbe;
using testing::KeySeen;
using testing::Process;
using testing::WaitFor;

constexpr int kKeyA = 38;  // key codes of the usual keyboard
constexpr int kKeyC = 54;

constexpr int kStorm = 100;  // actions

std::string AllPrintable() {
  std::string text;
  for (char c = 0x20; c < 0x7f; c++) text += c;
  return text;
}

// What an application reads out of the keys that it gets, decoded when it gets to them.
class Reader {
 public:
  explicit Reader(KeyProbe* probe) : probe_(probe) {
    EXPECT_NE(std::setlocale(LC_CTYPE, "C.UTF-8"), nullptr);
    method_ = XOpenIM(probe_->display(), nullptr, nullptr, nullptr);
    context_ = XCreateIC(method_, XNInputStyle, XIMPreeditNothing | XIMStatusNothing,
                         XNClientWindow, probe_->window(), nullptr);
  }
  ~Reader() {
    XDestroyIC(context_);
    XCloseIM(method_);
  }
  Reader(const Reader&) = delete;
  Reader& operator=(const Reader&) = delete;

  std::string Read() {
    XSync(probe_->display(), False);
    while (XPending(probe_->display()) > 0) {
      XEvent event;
      XNextEvent(probe_->display(), &event);
      if (event.type == MappingNotify) XRefreshKeyboardMapping(&event.xmapping);
      if (event.type != KeyPress || XFilterEvent(&event, None)) continue;
      EXPECT_FALSE(event.xkey.send_event);
      std::array<char, 64> bytes;
      KeySym symbol;
      Status status;
      const int n =
          Xutf8LookupString(context_, &event.xkey, bytes.data(), bytes.size(), &symbol, &status);
      text_.append(bytes.data(), static_cast<size_t>(n));
    }
    return text_;
  }
  std::string Take() {
    Read();
    return std::exchange(text_, "");
  }

 private:
  KeyProbe* probe_;
  XIM method_;
  XIC context_;
  std::string text_;
};

// The server's own keyboard, as a device beside the one that XTEST moves: what the user has in
// front of them. A key that is down on one device may be released by another, as the program does.
class Board {
 public:
  explicit Board(Display* display) : display_(display) {
    int count;
    XDeviceInfo* const devices = XListInputDevices(display, &count);
    for (int i = 0; i < count; i++) {
      if (devices[i].use != IsXExtensionKeyboard || devices[i].name == nullptr) continue;
      if (std::string(devices[i].name).find("XTEST") != std::string::npos) continue;
      device_ = XOpenDevice(display, devices[i].id);
    }
    XFreeDeviceList(devices);
    if (device_ == nullptr) ADD_FAILURE() << "the server has no keyboard of its own";
  }
  ~Board() { XCloseDevice(display_, device_); }
  Board(const Board&) = delete;
  Board& operator=(const Board&) = delete;

  void Key(KeySym key, bool press) {
    XTestFakeDeviceKeyEvent(display_, device_, XKeysymToKeycode(display_, key), press, nullptr, 0,
                            CurrentTime);
    XSync(display_, False);
  }

 private:
  Display* display_;
  XDevice* device_ = nullptr;
};

class RealInput : public testing::XFixture {
 protected:
  void SetUp() override {
    XFixture::SetUp();
    DefaultUserOptions(&options_);
    options_.temp1 = kRealInput;
    user = &options_;
    // Another server than that of the test before has another keyboard.
    ForgetCharacterKeys();
    ForgetSpareKeys();
    BuildCharToKeycode();
    // With this Xlib asks to be told of changes, which is to reach the server before one.
    XSync(dpy, False);
    keyboardChanged = KeyboardChanged;
    probe = std::make_unique<KeyProbe>(server->name(), 300, 200);
    probe->Focus();
    reader = std::make_unique<Reader>(probe.get());
    before_ = Keyboard();
  }
  void TearDown() override {
    if (dpy != nullptr) ReleaseEverything();
    EXPECT_EQ(KeysDown(), std::vector<int>{});
    EXPECT_EQ(Keyboard() == before_, !changed_);
    user = nullptr;
    keyboardChanged = nullptr;
    reader.reset();
    probe.reset();
    XFixture::TearDown();
  }

  void Layout(const std::string& layout, const std::string& option = "") {
    Process setter({"setxkbmap", "-model", "pc105", "-layout", layout, "-option", option});
    ASSERT_EQ(setter.Wait(), 0) << "setxkbmap";
    changed_ = true;
    Pump();
  }

  // What every key of the server means.
  std::vector<KeySym> Keyboard() {
    int first;
    int last;
    int width;
    XDisplayKeycodes(player->display(), &first, &last);
    KeySym* symbols = XGetKeyboardMapping(player->display(), static_cast<KeyCode>(first),
                                          last - first + 1, &width);
    std::vector<KeySym> keyboard;
    for (int i = 0; i <= last - first; i++)
      for (int level = 0; level < 4; level++)
        keyboard.push_back(level < width ? symbols[i * width + level] : NoSymbol);
    XFree(symbols);
    return keyboard;
  }

  std::vector<int> KeysDown() {
    std::array<char, 32> map;
    XQueryKeymap(player->display(), map.data());
    std::vector<int> down;
    for (size_t code = 0; code < 256; code++)
      if (map[code / 8] & 1 << code % 8) down.push_back(static_cast<int>(code));
    return down;
  }
  unsigned Locked() {
    XkbStateRec state{};
    XkbGetState(player->display(), XkbUseCoreKbd, &state);
    return state.locked_mods;
  }
  int Group() {
    XkbStateRec state{};
    XkbGetState(player->display(), XkbUseCoreKbd, &state);
    return state.locked_group;
  }

  // One action of one command.
  void Act(GromlitCmd cmd, std::string text = "") {
    cmd.text = text.data();
    cmd.ntext = static_cast<uint32_t>(text.size());
    GromlitAction action{};
    GromlitCmd* commands[kMaxCommands] = {&cmd};
    action.ncmds = 1;
    std::copy_n(commands, 1, action.cmds);
    ExecuteAction(&plugin_, &action, probe->window(), probe->window(), 5, 5, 305, 205);
    XSync(dpy, False);
  }
  void Type(const std::string& text) {
    GromlitCmd cmd{};
    cmd.type = kText;
    Act(cmd, text);
  }
  void TypeFileOf(const std::string& text) {
    testing::WriteText(*install / "text", text);
    GromlitCmd cmd{};
    cmd.type = kText;
    cmd.checked = 1;
    Act(cmd, *install / "text");
  }
  void HotKey(int keycode, int keystate) {
    GromlitCmd cmd{};
    cmd.type = kHotKey;
    cmd.nkeys = 1;
    cmd.keycode[0] = static_cast<uint16_t>(keycode);
    cmd.keystate[0] = static_cast<uint16_t>(keystate);
    Act(cmd);
  }

  // What the probe gets, modifiers left out: key code and state of presses of other keys.
  std::vector<std::pair<unsigned, unsigned>> Pressed() {
    const ModifierMap map = ReadModifierMap();
    std::vector<std::pair<unsigned, unsigned>> pressed;
    for (const KeySeen& key : probe->Seen()) {
      EXPECT_FALSE(key.send_event);
      if (key.type == KeyPress && !map.any[key.keycode])
        pressed.emplace_back(key.keycode, key.state);
    }
    return pressed;
  }

  // Events that wait for the program, one line each.
  std::string Waiting() {
    std::string waiting;
    XEvent event;
    while (XPending(dpy) > 0) {
      XNextEvent(dpy, &event);
      waiting += "type " + std::to_string(event.type);
      if (event.type == MappingNotify)
        waiting += " request " + std::to_string(event.xmapping.request) + " first " +
                   std::to_string(event.xmapping.first_keycode) + " count " +
                   std::to_string(event.xmapping.count);
      waiting += "\n";
    }
    return waiting;
  }

  std::unique_ptr<KeyProbe> probe;
  std::unique_ptr<Reader> reader;

 private:
  GromlitUserOptions options_{};
  GromlitPlugin plugin_{};
  std::vector<KeySym> before_;
  bool changed_ = false;
};

using Strokes = std::vector<std::pair<unsigned, unsigned>>;

TEST_F(RealInput, HotKeysComeWithTheirModifiers) {
  for (const int state : {0, 1, 4, 5, 8, 9, 12, 13, 64, 69, 128}) {
    HotKey(kKeyC, state);
    EXPECT_EQ(Pressed(), (Strokes{{kKeyC, static_cast<unsigned>(state)}})) << state;
    EXPECT_EQ(KeysDown(), std::vector<int>{});
  }
}

TEST_F(RealInput, KeyCodesThatNoServerHasPressNothing) {
  for (const int code : {0, 7, 256, 65535}) HotKey(code, 5);
  EXPECT_TRUE(Pressed().empty());
}

TEST_F(RealInput, PrintableTextArrives) {
  Type(AllPrintable());
  EXPECT_EQ(reader->Take(), AllPrintable());
  EXPECT_EQ(SpareKeysWait(), -1) << "every character is on a key";
}

TEST_F(RealInput, TextArrivesOnAGermanKeyboard) {
  Layout("de");
  Type(AllPrintable() + "Gr\u00fc\u00dfe \u20ac");
  EXPECT_EQ(reader->Take(), AllPrintable() + "Gr\u00fc\u00dfe \u20ac");
}

TEST_F(RealInput, CharactersOnNoKeyArrive) {
  Type("Gr\u00fc\u00dfe, \u65e5\u672c, \u20ac \U0001F600");
  EXPECT_EQ(reader->Take(), "Gr\u00fc\u00dfe, \u65e5\u672c, \u20ac \U0001F600");
  EXPECT_GT(SpareKeysWait(), 1000);
}

TEST_F(RealInput, BytesThatAreNoUtf8AreLatin1) {
  Type(
      "Gr\xfc\xdf"
      "e");
  EXPECT_EQ(reader->Take(), "Gr\u00fc\u00dfe");
}

TEST_F(RealInput, LinesEndWithReturn) {
  Type("a\nb\r\nc\rd\te");
  EXPECT_EQ(reader->Take(), "a\rb\rc\rd\te");
}

TEST_F(RealInput, LentKeysAreReturnedWhenTheirTimeIsOver) {
  const auto before = Keyboard();
  Type("\u65e5\u672c");
  EXPECT_NE(Keyboard(), before);
  EXPECT_TRUE(WaitFor([] { return SpareKeysWait() == 0; }));
  ReturnKeys();
  EXPECT_EQ(SpareKeysWait(), -1);
  EXPECT_EQ(Keyboard(), before);
}

TEST_F(RealInput, LoansAreUsedAgainWhileTheyLast) {
  Type("\u65e5\u672c");
  const auto lent = Keyboard();
  Type("\u672c\u65e5");
  EXPECT_EQ(Keyboard(), lent);
  EXPECT_EQ(reader->Take(), "\u65e5\u672c\u672c\u65e5");
}

TEST_F(RealInput, OwnLoansAreNoNewsOfTheKeyboard) {
  Type("a");  // the server tells of another keyboard when keys come from another device
  Pump();
  Type("\u65e5\u672c");
  EXPECT_EQ(Waiting(), "");
  EXPECT_TRUE(WaitFor([] { return SpareKeysWait() == 0; }));
  ReturnKeys();
  XSync(dpy, False);
  EXPECT_EQ(Waiting(), "");
}

TEST_F(RealInput, MoreCharactersThanCodesGoInBatches) {
  const size_t spare = SpareKeys();
  ASSERT_GE(spare, 4u);
  std::string text;
  std::vector<char32_t> characters;
  for (size_t i = 0; i < spare + 5; i++) {
    const unsigned c = 0x4e00 + static_cast<unsigned>(i);
    text += static_cast<char>(0xe0 | c >> 12);
    text += static_cast<char>(0x80 | (c >> 6 & 0x3f));
    text += static_cast<char>(0x80 | (c & 0x3f));
  }
  text += "done";
  // Read while it is typed, as an application would.
  std::string got;
  std::thread typing([&] { Type(text); });
  EXPECT_TRUE(WaitFor([&] { return reader->Read().size() >= text.size(); }));
  typing.join();
  EXPECT_EQ(reader->Take(), text);
}

TEST_F(RealInput, LoansOfAKilledRunAreReturned) {
  const auto before = Keyboard();
  Type("\u65e5\u672c");
  ASSERT_NE(Keyboard(), before);
  // As a new run would find them: it knows of none.
  Display* const killed = dpy;
  dpy = XOpenDisplay(server->name().c_str());
  ReturnKeysOfTheDead();
  XSync(dpy, False);
  EXPECT_EQ(Keyboard(), before);
  XCloseDisplay(dpy);
  dpy = killed;
}

TEST_F(RealInput, LocksDoNotChangeWhatIsTyped) {
  for (const KeySym key : {XK_Caps_Lock, XK_Num_Lock}) player->Type(key);
  ASSERT_EQ(Locked(), LockMask | Mod2Mask);
  Type("abcABC123 Gr\u00fc\u00dfe");
  EXPECT_EQ(reader->Take(), "abcABC123 Gr\u00fc\u00dfe");
  EXPECT_EQ(Locked(), LockMask | Mod2Mask);
  probe->Seen();
  HotKey(kKeyC, ControlMask);
  EXPECT_EQ(Pressed(), (Strokes{{kKeyC, ControlMask | Mod2Mask}})) << "Num Lock is no matter";
  EXPECT_EQ(Locked(), LockMask | Mod2Mask);
}

TEST_F(RealInput, SecondLayoutDoesNotChangeWhatIsTyped) {
  Layout("us,de");
  XkbLockGroup(player->display(), XkbUseCoreKbd, 1);
  XSync(player->display(), False);
  Type("xyz");
  EXPECT_EQ(reader->Take(), "xyz");
  EXPECT_EQ(Group(), 1);
}

TEST_F(RealInput, HeldModifiersDoNotChangeWhatIsTyped) {
  Board board(player->display());
  board.Key(XK_Control_L, true);
  board.Key(XK_Shift_R, true);
  const auto held = KeysDown();
  ASSERT_EQ(held.size(), 2u);
  probe->Seen();
  Type("ab");
  EXPECT_EQ(Pressed(), (Strokes{{kKeyA, 0}, {56, 0}}));
  EXPECT_EQ(KeysDown(), held) << "the user still holds them";
  board.Key(XK_Control_L, false);
  board.Key(XK_Shift_R, false);
  EXPECT_EQ(KeysDown(), std::vector<int>{});
  // And once more: what the program has pressed again is no obstacle.
  HotKey(kKeyC, ControlMask | ShiftMask);
  EXPECT_EQ(Pressed(), (Strokes{{kKeyC, ControlMask | ShiftMask}}));
}

TEST_F(RealInput, HeldKeyIsTypedAllTheSame) {
  player->KeyDown(XK_a);
  probe->Seen();
  Type("aa");
  EXPECT_EQ(Pressed(), (Strokes{{kKeyA, 0}, {kKeyA, 0}}));
  player->KeyUp(XK_a);
}

// The user lets a modifier go, or takes another one, while an action waits between its keys.
TEST_F(RealInput, ModifiersLetGoMeanwhileStayUp) {
  Board board(player->display());
  board.Key(XK_Control_L, true);
  board.Key(XK_Shift_L, true);
  MakeStroke({}, kKeyA, 0);
  board.Key(XK_Control_L, false);
  board.Key(XK_Alt_L, true);
  MakeStroke({}, kKeyA, 0);
  FinishInput();
  XSync(dpy, False);
  EXPECT_EQ(KeysDown(), (std::vector<int>{50, 64}));
  board.Key(XK_Shift_L, false);
  board.Key(XK_Alt_L, false);
}

TEST_F(RealInput, LockPressedMeanwhileCounts) {
  player->Type(XK_Caps_Lock);
  MakeStroke({}, kKeyA, 0);
  XSync(dpy, False);
  EXPECT_EQ(Locked(), 0u) << "the key obeys it";
  player->Type(XK_Caps_Lock);
  FinishInput();
  XSync(dpy, False);
  EXPECT_EQ(Locked(), 0u) << "it was on, and the user has switched it";
}

// INV-REAL-1
TEST_F(RealInput, NothingIsDownWhenRequestsHaveLeft) {
  for (int i = 0; i < 40; i++) {
    MakeStroke({}, kKeyC, ControlMask | ShiftMask | Mod1Mask);
    // The server need not have come to them yet; nothing else that is ours would let go of a key.
    EXPECT_TRUE(testing::WaitFor([&] { return KeysDown().empty(); }));
  }
  FinishInput();
}

TEST_F(RealInput, DevicesAreListenedToOnlyMeanwhile) {
  Type("a");
  Pump();
  player->Type(XK_b);
  XSync(dpy, False);
  EXPECT_EQ(Waiting(), "");
}

TEST_F(RealInput, LongTextArrivesWhole) {
  std::string text;
  while (text.size() < 30'000)
    text += "The quick brown fox, Gr\u00fc\u00dfe aus \u65e5\u672c f\u00fcr 5 \u20ac! {" +
            std::to_string(text.size()) + "}\r";
  std::thread typing([&] { TypeFileOf(text); });
  EXPECT_TRUE(
      WaitFor([&] { return reader->Read().size() >= text.size(); }, std::chrono::seconds(60)));
  typing.join();
  EXPECT_EQ(reader->Take(), text);
}

class NoXtest : public testing::XFixture {
 protected:
  void SetUp() override {
    server = std::make_unique<testing::XServer>("640x480x24",
                                                std::vector<std::string>{"-extension", "XTEST"});
    // Where the connection of the test before lay, which was asked for the extension already.
    former_ = XOpenDisplay(server->name().c_str());
    XFixture::SetUp();
  }
  void TearDown() override {
    if (former_ != nullptr) XCloseDisplay(former_);
    XFixture::TearDown();
  }

 private:
  Display* former_ = nullptr;
};

TEST_F(NoXtest, KeysAreSentAndOneLineSaysSo) {
  GromlitUserOptions options{};
  options.temp1 = kRealInput;
  user = &options;
  BuildCharToKeycode();
  KeyProbe probe(server->name(), 100, 100);
  probe.Focus();
  testing::CaptureStderr();
  for (int i = 0; i < 2; i++) TypeText({probe.window(), 1, 2, 101, 102}, "a", 1);
  EXPECT_EQ(testing::GetCapturedStderr(),
            "The X server has no XTEST; keys and clicks are sent to windows.\n");
  EXPECT_FALSE(MakesClicks());
  XSync(dpy, False);
  const std::vector<KeySeen> seen = probe.Seen();
  EXPECT_EQ(seen, testing::Strokes({{kKeyA, 0}, {kKeyA, 0}}, {0, 0, 0, 1, 2, 101, 102}));
  user = nullptr;
}

// The layout changes between two actions, and a third client changes it while codes are lent.
TEST_F(RealInput, KeyboardIsReadAgainWhenItChanges) {
  Type("y@\u20ac\u65e5");
  reader->Read();
  Layout("de");
  int keycode;
  int keystate;
  EXPECT_EQ(CharToKeycode('y', &keycode, &keystate), 52);
  EXPECT_EQ(CharToKeycode('@', &keycode, &keystate), 24);
  EXPECT_EQ(keystate, Mod5Mask);
  Type("y@\u20ac\u65e5");
  EXPECT_EQ(LentKey(0x20ac), 0) << "it is on a key now";
  EXPECT_EQ(reader->Take(), "y@\u20ac\u65e5y@\u20ac\u65e5");
}

// Another client that watches for a key and, when it comes, freezes the keyboard until it has made
// up its mind, as window managers do with their hot keys. The program's stroke is then frozen in
// the middle: the server has taken its modifiers, but not their releases.
class Freezer {
 public:
  Freezer(Display* display, int keycode) : display_(display) {
    XGrabKey(display_, keycode, AnyModifier, DefaultRootWindow(display_), False, GrabModeAsync,
             GrabModeSync);
    XSync(display_, False);
  }
  void Thaw() {
    XUngrabKey(display_, AnyKey, AnyModifier, DefaultRootWindow(display_));
    XUngrabKeyboard(display_, CurrentTime);
    XSync(display_, False);
  }

 private:
  Display* display_;
};

// For every moment at which the program waits for the server: the keyboard thaws then.
void AtEveryWait(const std::function<void()>& op, Display* display, int keycode,
                 const std::function<void(unsigned long)>& after) {
  for (unsigned long at = 1, waits = at; at <= waits + 1; at++) {
    Freezer freezer(display, keycode);
    waits = testing::CountTrips([&] { op(); },
                                [&](unsigned long wait) {
                                  if (wait == at) freezer.Thaw();
                                })
                .waits;
    freezer.Thaw();
    after(at);
  }
}

TEST_F(RealInput, FrozenKeyboardLeavesNothingDown) {
  const auto strokes = [] {
    for (int i = 0; i < 3; i++) {
      MakeStroke({}, kKeyC, ControlMask | ShiftMask);
      FinishInput();
    }
  };
  AtEveryWait(strokes, player->display(), kKeyC, [&](unsigned long at) {
    EXPECT_EQ(KeysDown(), std::vector<int>{}) << "thawed at wait " << at;
    HotKey(kKeyA, ShiftMask);
    EXPECT_EQ(KeysDown(), std::vector<int>{}) << "thawed at wait " << at;
  });
}

TEST_F(RealInput, FrozenKeyboardLeavesNothingDownOfALongText) {
  std::string text = "C";
  for (int i = 0; i < 20; i++) text += "aB";
  AtEveryWait(
      [&] {
        MakeText({}, text, false);
        FinishInput();
      },
      player->display(), kKeyC,
      [&](unsigned long at) {
        EXPECT_EQ(KeysDown(), std::vector<int>{}) << "thawed at wait " << at;
      });
}

// The user holds keys when it freezes, and lets one go before it thaws.
TEST_F(RealInput, KeysLetGoWhileTheKeyboardIsFrozenStayUp) {
  Board board(player->display());
  const auto strokes = [&] {
    board.Key(XK_Control_L, true);
    board.Key(XK_Shift_L, true);
    MakeStroke({}, kKeyC, ControlMask | ShiftMask);
    XSync(dpy, False);
    board.Key(XK_Control_L, false);
    FinishInput();
    MakeStroke({}, kKeyA, 0);
    board.Key(XK_Shift_L, false);
    FinishInput();
  };
  AtEveryWait(strokes, player->display(), kKeyC, [&](unsigned long at) {
    EXPECT_EQ(KeysDown(), std::vector<int>{}) << "thawed at wait " << at;
  });
}

// After a keyboard that was frozen for a while, the keys that the user holds are given back again.
TEST_F(RealInput, HeldModifiersComeBackWhenTheKeyboardHasThawed) {
  Board board(player->display());
  {
    Freezer freezer(player->display(), kKeyC);
    HotKey(kKeyC, ControlMask | ShiftMask);
    freezer.Thaw();
  }
  HotKey(kKeyC, ControlMask | ShiftMask);  // the same keys as those that came unheard
  board.Key(XK_Control_L, true);
  board.Key(XK_Shift_L, true);
  const auto held = KeysDown();
  HotKey(kKeyA, 0);
  EXPECT_EQ(KeysDown(), held);
  board.Key(XK_Control_L, false);
  board.Key(XK_Shift_L, false);
}

// Another client has taken away the device that the program's keys come from when the program lets
// go of a modifier: that is down for the server ever after, and would be taken for the user's.
TEST_F(RealInput, KeyboardThatWasTakenAwayLeavesNothingDownAfterTheNextAction) {
  Display* const other = player->display();
  int count = 0;
  XIDeviceInfo* const devices = XIQueryDevice(other, XIAllDevices, &count);
  int tester = 0;
  for (int i = 0; i < count; i++)
    if (std::string(devices[i].name).ends_with("XTEST keyboard")) tester = devices[i].deviceid;
  XIFreeDeviceInfo(devices);
  ASSERT_NE(tester, 0);
  HotKey(kKeyA, 0);
  player->KeyDown(XK_Shift_L);
  std::array<unsigned char, 4> bits{};
  XIEventMask mask{tester, static_cast<int>(bits.size()), bits.data()};
  ASSERT_EQ(XIGrabDevice(other, tester, player->root(), CurrentTime, None, XIGrabModeAsync,
                         XIGrabModeAsync, False, &mask),
            GrabSuccess);
  HotKey(kKeyA, 0);
  XIUngrabDevice(other, tester, CurrentTime);
  XSync(other, False);
  for (int i = 0; i < 2; i++) {
    HotKey(kKeyA, 0);
    EXPECT_EQ(KeysDown(), std::vector<int>{});
  }
}

// A pointer and a keyboard that another client makes, with the board, and that the program and the
// user work with from then on. The program's keys come from a device then that was not there
// before.
class SecondKeyboard {
 public:
  SecondKeyboard(Display* display, Window programs) : display_(display) {
    char name[] = "second";
    XIAnyHierarchyChangeInfo change{};
    change.add = {XIAddMaster, name, True, True};
    XIChangeHierarchy(display_, &change, 1);
    change.attach = {XIAttachSlave, Find("Xvfb keyboard"), Find("second keyboard")};
    XIChangeHierarchy(display_, &change, 1);
    for (const Window client : {programs, Window{None}})
      XISetClientPointer(display_, client, Find("second pointer"));
    XSync(display_, False);
  }
  ~SecondKeyboard() {
    XIAnyHierarchyChangeInfo change{};
    change.remove = {XIRemoveMaster, Find("second pointer"), XIAttachToMaster,
                     Find("Virtual core pointer"), Find("Virtual core keyboard")};
    XIChangeHierarchy(display_, &change, 1);
    XSync(display_, False);
  }
  SecondKeyboard(const SecondKeyboard&) = delete;
  SecondKeyboard& operator=(const SecondKeyboard&) = delete;

 private:
  int Find(const std::string& name) {
    int count = 0;
    XIDeviceInfo* devices = XIQueryDevice(display_, XIAllDevices, &count);
    int found = 0;
    for (int i = 0; i < count; i++)
      if (devices[i].name == name) found = devices[i].deviceid;
    XIFreeDeviceInfo(devices);
    EXPECT_NE(found, 0) << name;
    return found;
  }

  Display* display_;
};

TEST_F(RealInput, HeldModifiersComeBackOnAKeyboardThatCameLater) {
  Board board(player->display());
  HotKey(kKeyC, ControlMask);  // the program has looked at what devices there are
  const Window own = XCreateSimpleWindow(dpy, root, 0, 0, 1, 1, 0, 0, 0);
  XSync(dpy, False);
  const SecondKeyboard second(player->display(), own);
  board.Key(XK_Control_L, true);
  board.Key(XK_Shift_L, true);
  const auto held = KeysDown();
  EXPECT_EQ(held.size(), 2u);
  for (int i = 0; i < 3; i++) {
    HotKey(kKeyC, ControlMask | ShiftMask);
    EXPECT_EQ(KeysDown(), held);
  }
  board.Key(XK_Control_L, false);
  board.Key(XK_Shift_L, false);
  EXPECT_EQ(KeysDown(), std::vector<int>{});
  HotKey(kKeyC, ControlMask | ShiftMask);
  EXPECT_EQ(KeysDown(), std::vector<int>{});
}

// Modifiers go down and up around the actions and during them, by another connection.
TEST_F(RealInput, StormOfModifiersLeavesNothingDown) {
  const char* const given = std::getenv("GROMLIT_TEST_SEED");
  const unsigned seed =
      given != nullptr ? static_cast<unsigned>(std::stoul(given)) : std::random_device()();
  std::printf("GROMLIT_TEST_SEED=%u\n", seed);
  std::mt19937 random(seed);
  SCOPED_TRACE(seed);
  const std::array<KeySym, 6> keys = {XK_Control_L, XK_Shift_L, XK_Shift_R,
                                      XK_Alt_L,     XK_Super_L, XK_ISO_Level3_Shift};
  std::array<bool, 6> down{};
  Board board(player->display());
  const auto flip = [&] {
    const size_t i = random() % keys.size();
    down[i] = !down[i];
    board.Key(keys[i], down[i]);
  };
  for (int i = 0; i < kStorm; i++) {
    std::atomic<bool> over = false;
    std::thread storm([&] {
      while (!over) flip();
    });
    Type(i % 3 == 0 ? "Hello \u65e5" : "aB");
    over = true;
    storm.join();
    probe->Seen();
    std::vector<int> expected;
    for (size_t k = 0; k < keys.size(); k++)
      if (down[k]) expected.push_back(XKeysymToKeycode(player->display(), keys[k]));
    std::ranges::sort(expected);
    ASSERT_EQ(KeysDown(), expected) << i;
  }
  for (size_t k = 0; k < keys.size(); k++)
    if (down[k]) board.Key(keys[k], false);
}

}  // namespace
}  // namespace gromlit
