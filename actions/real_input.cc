#include "actions/real_input.h"

#include <X11/XKBlib.h>
#include <X11/extensions/XTest.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <span>
#include <string_view>
#include <vector>

#include <poll.h>

#include "actions/character_keys.h"
#include "actions/keystrokes.h"
#include "actions/spare_keys.h"
#include "actions/users_keys.h"
#include "core/utf8.h"
#include "display/display.h"
#include "display/end_signals.h"
#include "display/keyboard_state.h"
#include "display/lock_modifiers.h"

namespace gromlit {
namespace {

// After so many strokes the server is waited for, so that a long text neither fills the way to it
// nor runs over what the user does meanwhile.
constexpr int kStrokesAhead = 16;

// How often a user who presses and releases without a pause is followed.
constexpr int kMaxRounds = 100;

// From the first key of an action to its end.
class Hands {
 public:
  bool busy() const { return busy_; }
  void Prepare() { users_.Prepare(); }
  void Begin();
  void Stroke(int keycode, unsigned state);
  void End();
  // What the user does meanwhile: a modifier that is pressed now is let go as well.
  void Watch();

 private:
  void Fake(int keycode, bool press);
  void LetGo(int keycode);
  void SetLocks(unsigned wanted, unsigned among);
  void GiveBackHeld();

  bool busy_ = false;
  int ahead_ = 0;
  UsersKeys users_;
  ModifierMap map_{};
  Keys held_;             // modifiers that the user holds and the program has let go
  Keys letgo_;            // modifiers that the program has let go, whoever holds them
  Keys others_;           // other keys that the user held at the beginning
  Keys restored_;         // pressed again by the program at the end of an earlier action
  unsigned found_ = 0;    // locks that were on
  unsigned locks_ = 0;    // locks that are on
  unsigned touched_ = 0;  // locks that the program has changed
  int group_ = 0;         // layout that was locked
};

Hands& TheHands() {
  static auto* const hands = new Hands;
  return *hands;
}

void Hands::Fake(int keycode, bool press) {
  XTestFakeKeyEvent(dpy, static_cast<unsigned>(keycode), press ? True : False, CurrentTime);
  users_.Own(keycode, press);
}

void Hands::LetGo(int keycode) {
  Fake(keycode, false);
  held_.set(static_cast<size_t>(keycode));
  letgo_.set(static_cast<size_t>(keycode));
}

void Hands::Begin() {
  busy_ = true;
  ahead_ = 0;
  touched_ = 0;
  held_.reset();
  letgo_.reset();
  const Keys late = users_.Late();
  users_.Listen();
  if (late.any()) {
    // If it has thawed since, what was late has come unheard.
    for (size_t code = 0; code < kKeyCodes; code++) {
      if (late[code]) Fake(static_cast<int>(code), false);
    }
    users_.Poll();
    users_.ForgetIfTold();
  }
  const KeyboardState state = ReadKeyboardState();
  map_ = state.map;
  found_ = locks_ = state.locked & map_.locks;
  // What happened before is in the answer.
  users_.IgnoreUntil(state.serial);
  // The server's test keyboard takes a key that it pressed for pressed until it releases it itself,
  // whatever the user's keyboard has done since, and would not press it a second time.
  for (size_t code = 0; code < kKeyCodes; code++) {
    const bool isdown = state.down[code];
    others_.set(code, isdown && !map_.any[code]);
    if (isdown && map_.any[code]) LetGo(static_cast<int>(code));
    if (!isdown && restored_[code]) Fake(static_cast<int>(code), false);
  }
  restored_.reset();
  // A key whose press locks would lock again.
  held_ &= map_.holding;
  // Whether these are the user's cannot be told; what is pressed for nobody would stay down.
  held_ &= ~late;
  letgo_ &= map_.holding;
  group_ = state.lockedgroup;
  if (group_ != 0) XkbLockGroup(dpy, XkbUseCoreKbd, 0);
  if (state.latched != 0) XkbLatchModifiers(dpy, XkbUseCoreKbd, state.latched, 0);
}

void Hands::SetLocks(unsigned wanted, unsigned among) {
  const unsigned change = (locks_ ^ wanted) & among;
  if (change == 0) return;
  XkbLockModifiers(dpy, XkbUseCoreKbd, change, wanted & change);
  locks_ ^= change;
  touched_ |= change;
}

void Hands::Stroke(int keycode, unsigned state) {
  SetLocks(state & map_.locks, LocksObeyed(keycode) & map_.locks);
  std::array<KeyCode, kModifiers> pressed{};
  size_t count = 0;
  for (size_t i = 0; i < kModifiers; i++) {
    const KeyCode key = map_.keys[i];
    if ((state & 1U << i) == 0 || key == 0 || key == keycode) continue;
    Fake(key, true);
    pressed[count++] = key;
  }
  if (others_[static_cast<size_t>(keycode)]) {
    Fake(keycode, false);
    others_.reset(static_cast<size_t>(keycode));
  }
  Fake(keycode, true);
  Fake(keycode, false);
  while (count > 0) Fake(pressed[--count], false);
  XFlush(dpy);  // INV-REAL-1
  if (++ahead_ == kStrokesAhead) Watch();
}

void Hands::Watch() {
  ahead_ = 0;
  for (const KeyChange& change : users_.Poll()) {
    const auto code = static_cast<size_t>(change.keycode);
    if (!change.press) {
      held_.reset(code);
    } else if (map_.holding[code]) {
      LetGo(change.keycode);
    }
  }
  XFlush(dpy);
}

void Hands::End() {
  if (!busy_) return;
  Watch();
  XkbStateRec state{};
  XkbGetState(dpy, XkbUseCoreKbd, &state);
  // A lock that the user has pressed meanwhile is the other way round than the program left it, and
  // shall be the other way round than it was found.
  const unsigned pressed = (state.locked_mods & map_.locks) ^ locks_;
  locks_ ^= pressed;
  SetLocks(found_ ^ pressed, touched_);
  if (group_ != 0 && state.locked_group == 0) {
    XkbLockGroup(dpy, XkbUseCoreKbd, static_cast<unsigned>(group_));
  }
  // Who does not know whether the user still holds a key leaves it up: a hand presses it again.
  if (!users_.Known() || users_.Late().any()) held_.reset();
  GiveBackHeld();
  users_.StopListening();
  busy_ = false;
}

// Presses what the user still holds. What the user does before a press or release of the program's
// comes to the server would be undone by it, so this is looked at until nothing has happened.
void Hands::GiveBackHeld() {
  for (size_t code = 0; code < kKeyCodes; code++) {
    if (!held_[code]) continue;
    Fake(static_cast<int>(code), false);  // always told of: shows whether the keyboard is frozen
    Fake(static_cast<int>(code), true);
  }
  restored_ = held_;
  for (int round = 0; round < kMaxRounds && letgo_.any(); round++) {
    Keys changed;
    Keys down;
    for (const KeyChange& change : users_.Poll()) {
      const auto code = static_cast<size_t>(change.keycode);
      changed.set(code, letgo_[code]);
      down.set(code, change.press);
    }
    if (users_.Late().any()) {
      // What the user does now will be told too late.
      for (size_t code = 0; code < kKeyCodes; code++) {
        if (letgo_[code]) Fake(static_cast<int>(code), false);
      }
      restored_.reset();
      break;
    }
    if (changed.none()) break;
    for (size_t code = 0; code < kKeyCodes; code++) {
      if (changed[code]) Fake(static_cast<int>(code), down[code]);
    }
  }
  held_.reset();
}

Hands& BusyHands() {
  Hands& hands = TheHands();
  if (!hands.busy()) hands.Begin();
  return hands;
}

bool ServerHas(int keycode) {
  int first;
  int last;
  XDisplayKeycodes(dpy, &first, &last);
  return keycode >= first && keycode <= last;
}

void TypeCharacter(char32_t c) {
  EndIfSignalled();
  CharacterKey key = KeyOfCharacter(c);
  if (key.keycode == 0) key.keycode = LentKey(c);
  if (key.keycode == 0 && c < 0x80) {
    // A control character is a letter's key with Control.
    int keycode;
    int keystate;
    CharToKeycode(static_cast<int>(c), &keycode, &keystate);
    key = {static_cast<KeyCode>(keycode), static_cast<unsigned>(keystate)};
  }
  if (key.keycode == 0) return;
  BusyHands().Stroke(key.keycode, key.modifiers);
  NoteKeysPressed();
}

// Until applications have had their time to read the keys with lent codes.
void WaitForReaders() {
  for (int left = SpareKeysWait(); left > 0; left = SpareKeysWait()) {
    constexpr int kStep = 50;
    EndIfSignalled();
    poll(nullptr, 0, std::min(left, kStep));
    if (TheHands().busy()) TheHands().Watch();
  }
}

void TypeCharacters(std::span<const char32_t> text) {
  while (!text.empty()) {
    size_t n = LendKeys(text);
    if (n == 0) {
      if (SpareKeysWait() >= 0) {
        WaitForReaders();
        ReturnKeys();
        continue;
      }
      n = 1;  // the keyboard has no codes to lend
    }
    for (const char32_t c : text.first(n)) TypeCharacter(c);
    text = text.subspan(n);
  }
}

}  // namespace

bool CanMakeInput() {
  static Display* asked = nullptr;
  static bool can = false;
  if (asked != dpy) {
    int opcode;
    int error;
    int major;
    int minor;
    asked = dpy;
    can = XTestQueryExtension(dpy, &opcode, &error, &major, &minor) != 0;
    if (!can) {
      std::fprintf(stderr, "The X server has no XTEST; keys and clicks are sent to windows.\n");
    }
  }
  return can;
}

void PrepareInput() {
  PrepareKeyboardState();
  TheHands().Prepare();
  LocksObeyed(0);  // reads the keyboard when it has changed
}

void MakeStroke(const InputPlace&, int keycode, int keystate) {
  if (!ServerHas(keycode)) return;
  BusyHands().Stroke(keycode, static_cast<unsigned>(keystate));
}

size_t MakeText(const InputPlace&, std::string_view text, bool more) {
  std::vector<char32_t> characters;
  size_t taken;
  const Utf8 how = DecodeUtf8(text, &characters, &taken);
  if (how == Utf8::kNot || (how == Utf8::kCut && !more)) {
    characters.clear();
    for (const char c : text) characters.push_back(static_cast<unsigned char>(c));
    taken = text.size();
  }
  // The two together end one line.
  const auto ends = std::ranges::adjacent_find(
      characters, [](char32_t a, char32_t b) { return a == '\r' && b == '\n'; });
  if (ends != characters.end()) {
    std::vector<char32_t> lines;
    for (size_t i = 0; i < characters.size(); i++) {
      const bool pair =
          i + 1 < characters.size() && characters[i] == '\r' && characters[i + 1] == '\n';
      if (!pair) lines.push_back(characters[i]);
    }
    characters.swap(lines);
  }
  TypeCharacters(characters);
  return taken;
}

void FinishInput() {
  TheHands().End();
}

void ReleaseEverything() {
  FinishInput();
  ReturnKeys();
  XSync(dpy, False);
}

}  // namespace gromlit
