#include "actions/character_keys.h"

#include <X11/XKBlib.h>
#include <X11/keysym.h>

#include <array>
#include <bit>
#include <memory>
#include <unordered_map>

#include "display/display.h"
#include "display/lock_modifiers.h"

namespace gromlit {
namespace {

constexpr KeySym kUnicodeSymbols = 0x01000000;  // plus the character
constexpr char32_t kNone = 0xFFFFFFFF;

struct Keyboard {
  bool known = false;
  std::unordered_map<char32_t, CharacterKey> keys;
  std::array<uint8_t, kKeyCodes> obeyed{};  // locks
};

Keyboard& TheKeyboard() {
  static auto* const keyboard = new Keyboard;
  return *keyboard;
}

struct KeyboardDeleter {
  void operator()(XkbDescPtr keyboard) const { XkbFreeKeyboard(keyboard, 0, True); }
};

// kNone for symbols that are no characters, and for those of the number pad: applications may have
// uses of their own for these.
char32_t CharacterOf(KeySym symbol) {
  if ((symbol >= 0x20 && symbol < 0x7F) || (symbol >= 0xA0 && symbol <= 0xFF)) {
    return static_cast<char32_t>(symbol);
  }
  if (symbol >= kUnicodeSymbols + 0x100 && symbol <= kUnicodeSymbols + 0x10FFFF) {
    return static_cast<char32_t>(symbol - kUnicodeSymbols);
  }
  switch (symbol) {
    case XK_Return:
      return '\n';
    case XK_Tab:
      return '\t';
    case XK_BackSpace:
      return '\b';
    case XK_Escape:
      return 0x1B;
    case XK_Delete:
      return 0x7F;
    case XK_EuroSign:
      return 0x20AC;
    default:
      return kNone;
  }
}

// Whether `better` is pressed rather than `than`: fewer modifiers, then the lower bits.
bool Simpler(unsigned better, unsigned than) {
  const int fewer = std::popcount(better) - std::popcount(than);
  return fewer != 0 ? fewer < 0 : better < than;
}

// The simplest modifiers that choose a level; false when none do that can be held down.
bool ModifiersOfLevel(const XkbKeyTypeRec& type, int level, unsigned usable, unsigned* modifiers) {
  bool found = false;
  // What no entry names is level 0, the bare key above all.
  if (level == 0) {
    found = true;
    *modifiers = 0;
  }
  for (int i = 0; i < type.map_count; i++) {
    const XkbKTMapEntryRec& entry = type.map[i];
    if (!entry.active || entry.level != level || (entry.mods.mask & ~usable) != 0) continue;
    if (found && !Simpler(entry.mods.mask, *modifiers)) continue;
    found = true;
    *modifiers = entry.mods.mask;
  }
  return found;
}

// Of a server without XKB: the bare keys and those with Shift.
void ReadCoreKeys(Keyboard* keyboard, bool shift) {
  int first;
  int last;
  XDisplayKeycodes(dpy, &first, &last);
  for (int level = 0; level <= (shift ? 1 : 0); level++) {
    for (int code = first; code <= last; code++) {
      const char32_t c = CharacterOf(SymbolOfKey(code, level));
      if (c == kNone) continue;
      const unsigned modifiers = level == 1 ? ShiftMask : 0;
      keyboard->keys.try_emplace(c, CharacterKey{static_cast<KeyCode>(code), modifiers});
    }
  }
}

void Read(Keyboard* keyboard) {
  keyboard->known = true;
  keyboard->keys.clear();
  keyboard->obeyed.fill(LockMask);
  const ModifierMap map = ReadModifierMap();
  // Control and Alt make commands of characters, whatever level they choose.
  unsigned usable = 0;
  for (const int modifier : {ShiftMapIndex, Mod2MapIndex, Mod3MapIndex, Mod4MapIndex, Mod5MapIndex})
    if (map.keys[static_cast<size_t>(modifier)] != 0) usable |= 1U << modifier;
  const std::unique_ptr<XkbDescRec, KeyboardDeleter> desc(
      XkbGetMap(dpy, XkbKeyTypesMask | XkbKeySymsMask, XkbUseCoreKbd));
  if (desc == nullptr) {
    ReadCoreKeys(keyboard, (usable & ShiftMask) != 0);
    return;
  }
  for (int code = desc->min_key_code; code <= desc->max_key_code; code++) {
    if (XkbKeyNumGroups(desc, code) == 0) continue;
    const XkbKeyTypeRec& type = *XkbKeyKeyType(desc, code, XkbGroup1Index);
    keyboard->obeyed[static_cast<size_t>(code)] = static_cast<uint8_t>(type.mods.mask & map.locks);
    for (int level = 0; level < type.num_levels; level++) {
      const char32_t c = CharacterOf(XkbKeySymEntry(desc, code, level, XkbGroup1Index));
      CharacterKey key{static_cast<KeyCode>(code), 0};
      if (c == kNone || !ModifiersOfLevel(type, level, usable, &key.modifiers)) continue;
      CharacterKey& known = keyboard->keys[c];
      if (known.keycode == 0 || Simpler(key.modifiers, known.modifiers)) known = key;
    }
  }
}

const Keyboard& KnownKeyboard() {
  Keyboard& keyboard = TheKeyboard();
  if (!keyboard.known) Read(&keyboard);
  return keyboard;
}

}  // namespace

CharacterKey KeyOfCharacter(char32_t c) {
  if (c == '\r') c = '\n';
  const Keyboard& keyboard = KnownKeyboard();
  const auto found = keyboard.keys.find(c);
  return found == keyboard.keys.end() ? CharacterKey{} : found->second;
}

unsigned LocksObeyed(int keycode) {
  return KnownKeyboard().obeyed[static_cast<size_t>(keycode)];
}

void ForgetCharacterKeys() {
  TheKeyboard().known = false;
}

KeySym SymbolOfCharacter(char32_t c) {
  if ((c >= 0x20 && c < 0x7F) || (c >= 0xA0 && c <= 0xFF)) return c;
  if (c < 0x100 || c > 0x10FFFF || (c >= 0xD800 && c < 0xE000)) return NoSymbol;
  if ((c & 0xFFFE) == 0xFFFE || (c >= 0xFDD0 && c < 0xFDF0)) return NoSymbol;
  return kUnicodeSymbols + c;
}

}  // namespace gromlit
