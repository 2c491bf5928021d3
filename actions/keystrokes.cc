#include "actions/keystrokes.h"

#include <X11/XKBlib.h>
#include <X11/Xutil.h>

#include <algorithm>
#include <cstring>

#include "display/display.h"
#include "display/lock_modifiers.h"
#include "display/sent_input.h"

namespace gromlit {

uint8_t charTableKeycodes[kCharacters];
uint8_t charTableKeystates[kCharacters];

namespace {

// Only 7-bit characters have keys: what XLookupString gives for the others depends on the locale.
constexpr int kTypeable = 128;

// The states that are tried, in order of preference: every combination of the first six modifiers,
// then the last two alone. No modifier comes first, so a character that a bare key gives never
// carries one, and Shift (1) comes before Lock (2).
constexpr int kStates = 66;
constexpr unsigned StateAt(int i) {
  return i < kStates - 1 ? static_cast<unsigned>(i) : Mod5Mask;
}
static_assert(StateAt(64) == Mod4Mask);
static_assert(StateAt(65) == Mod5Mask);

constexpr int kKeys = 256;

// The modifiers that can change what XLookupString gives for a key: those that the key looks at in
// any group (with Control a letter is sought in the others, too), and the two that are applied to
// what it gives.
unsigned ModifiersThatMatter(int key) {
  unsigned matter = ControlMask | LockMask;
  for (unsigned group = 0; group < XkbNumKbdGroups; group++) {
    unsigned looked = 0;
    KeySym unused;
    XkbLookupKeySym(dpy, static_cast<KeyCode>(key), XkbBuildCoreState(0U, group), &looked, &unused);
    matter |= looked;
  }
  return matter;
}

}  // namespace

void BuildCharToKeycode() {
  std::memset(charTableKeycodes, 0, sizeof charTableKeycodes);
  std::memset(charTableKeystates, 0, sizeof charTableKeystates);

  XKeyEvent event{};
  event.type = KeyPress;
  event.display = dpy;
  event.window = root;
  event.root = root;

  int first;
  int last;
  XDisplayKeycodes(dpy, &first, &last);
  unsigned matter[kKeys] = {};
  for (int k = first; k < last; k++) matter[k] = ModifiersThatMatter(k);
  for (int i = 0; i < kStates; i++) {
    event.state = StateAt(i);
    for (int k = first; k < last; k++) {
      // The state without the others was tried before and gave the same.
      if ((event.state & ~matter[k]) != 0) continue;
      event.keycode = static_cast<unsigned>(k);
      char text[32];
      if (XLookupString(&event, text, sizeof text, nullptr, nullptr) != 1) continue;
      const auto c = static_cast<unsigned char>(text[0]);
      // A slot in use was filled by an earlier state or a lower key code, which win. Key codes
      // start at 8, so 0 is free to mean "none yet".
      if (c >= kTypeable || charTableKeycodes[c] != 0) continue;
      charTableKeycodes[c] = static_cast<uint8_t>(k);
      charTableKeystates[c] = static_cast<uint8_t>(event.state);
    }
  }
}

int CharToKeycode(int ch, int* keycode, int* keystate) {
  const auto c = static_cast<signed char>(ch);
  *keycode = c < 0 ? 0 : charTableKeycodes[c];
  *keystate = c < 0 ? 0 : charTableKeystates[c];
  return *keycode;
}

char* KeyStrokeToString(char* buf, int keycode, int keystate) {
  struct Label {
    int mask;
    const char* text;
  };
  static constexpr Label kLabels[] = {
      {ControlMask, "Control-"}, {Mod2Mask, "Mod2-"}, {Mod3Mask, "Mod3-"},   {Mod4Mask, "Mod4-"},
      {Mod5Mask, "Mod5-"},       {Mod1Mask, "Alt-"},  {ShiftMask, "Shift-"},
  };

  buf[0] = '\0';
  // Stored key codes have 16 bits; Xlib would look at the low eight only and name another key.
  if (keycode < 0 || keycode > 255) return buf;
  const KeySym symbol = SymbolOfKey(keycode, 0);
  const char* name = symbol == NoSymbol ? nullptr : XKeysymToString(symbol);
  if (name == nullptr) return buf;

  size_t length = 0;
  const auto append = [&](const char* text) {
    const size_t n = std::min(std::strlen(text), kKeyStrokeText - 1 - length);
    std::memcpy(buf + length, text, n);
    length += n;
    buf[length] = '\0';
  };
  for (const Label& label : kLabels) {
    if ((keystate & label.mask) != 0) append(label.text);
  }
  append(name);
  return buf;
}

void SendHotKey(Window win, int winx, int winy, int keycode, int keystate, int rootx, int rooty) {
  XEvent event{};
  event.xkey.keycode = static_cast<unsigned>(keycode);
  PlaceInput(&event.xkey, {win, winx, winy, rootx, rooty}, static_cast<unsigned>(keystate));
  SendPressAndRelease(&event, KeyPress, KeyRelease);
}

Window KeyTarget(Window focus, Window kwin) {
  return focus != None && focus != PointerRoot ? focus : kwin;
}

void SendStroke(const InputPlace& place, int keycode, int keystate) {
  SendHotKey(place.win, place.winx, place.winy, keycode, keystate, place.rootx, place.rooty);
}

size_t SendText(const InputPlace& place, std::string_view text, bool /*more*/) {
  for (const char c : text) {
    int keycode;
    int keystate;
    if (CharToKeycode(c, &keycode, &keystate) != 0) SendStroke(place, keycode, keystate);
  }
  return text.size();
}

}  // namespace gromlit
