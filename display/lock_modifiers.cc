#include "display/lock_modifiers.h"

#include <X11/XKBlib.h>
#include <X11/Xutil.h>
#include <X11/keysym.h>

#include <memory>

#include "display/display.h"

namespace gromlit {
namespace {

struct ModifierMapDeleter {
  void operator()(XModifierKeymap* map) const { XFreeModifiermap(map); }
};

// Pressing such a key may leave something on.
bool IsLock(KeySym symbol) {
  switch (symbol) {
    case XK_Caps_Lock:
    case XK_Shift_Lock:
    case XK_Num_Lock:
    case XK_Scroll_Lock:
    case XK_ISO_Lock:
      return true;
    default:
      return false;
  }
}

}  // namespace

KeySym SymbolOfKey(int keycode, int level) {
  const auto code = static_cast<KeyCode>(keycode);
  const KeySym symbol = XkbKeycodeToKeysym(dpy, code, 0, level);
  if (symbol != NoSymbol) return symbol;
  // Where the server has no XKB, that knows no symbol; what looks into an event still does.
  XKeyEvent key{};
  key.type = KeyPress;
  key.display = dpy;
  key.keycode = code;
  return XLookupKeysym(&key, level);
}

ModifierMap ReadModifierMap() {
  ModifierMap found{LockMask, {}, {}, {}};
  const std::unique_ptr<XModifierKeymap, ModifierMapDeleter> map(XGetModifierMapping(dpy));
  if (map == nullptr) return found;
  const KeyCode* code = map->modifiermap;
  for (int modifier = 0; modifier < kModifiers; modifier++) {
    for (int i = 0; i < map->max_keypermod; i++, code++) {
      if (*code == 0) continue;
      found.any.set(*code);
      const KeySym symbol = SymbolOfKey(*code, 0);
      if (IsLock(symbol)) {
        // Shift and Control are none, though a key with such a symbol may have been given to them.
        if (modifier >= Mod1MapIndex) found.locks |= 1U << modifier;
        continue;
      }
      if (modifier == LockMapIndex) continue;
      found.holding.set(*code);
      // A key that has no meaning of its own stands for a modifier that another key gives.
      KeyCode& key = found.keys[static_cast<size_t>(modifier)];
      if (key == 0 && symbol != NoSymbol) key = *code;
    }
  }
  for (int modifier = 0; modifier < kModifiers; modifier++) {
    if ((found.locks & 1U << modifier) != 0) found.keys[static_cast<size_t>(modifier)] = 0;
  }
  return found;
}

}  // namespace gromlit
