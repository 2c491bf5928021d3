// The keyboard and XTEST: 248 keys, of which those from 8 + 32 to 8 + 126 give the characters of
// ASCII, three are modifiers and the rest mean nothing.
#include <X11/XKBlib.h>
#include <X11/Xutil.h>
#include <X11/extensions/XInput2.h>
#include <X11/extensions/XTest.h>
#include <X11/keysym.h>

#include <array>
#include <cstdlib>

#include "fuzz/fake_server.h"
#include "fuzz/require.h"

using namespace gromlit;
using namespace gromlit::fuzz;

namespace {

constexpr int kFirst = 8;
constexpr int kLast = 255;
constexpr int kWidth = 2;

std::array<KeySym, static_cast<size_t>(kLast + 1) * kWidth>& Symbols() {
  static auto* const symbols = [] {
    auto* made = new std::array<KeySym, static_cast<size_t>(kLast + 1) * kWidth>{};
    for (size_t c = 32; c < 127; c++) (*made)[(kFirst + c) * kWidth] = c;
    (*made)[200 * kWidth] = XK_Shift_L;
    (*made)[201 * kWidth] = XK_Caps_Lock;
    (*made)[202 * kWidth] = XK_Control_L;
    (*made)[203 * kWidth] = XK_Return;
    return made;
  }();
  return *symbols;
}

}  // namespace

extern "C" {

int XDisplayKeycodes(Display*, int* first, int* last) {
  *first = kFirst;
  *last = kLast;
  return 1;
}

KeySym XkbKeycodeToKeysym(Display*, KeyCode code, int, int level) {
  if (code < kFirst || level >= kWidth) return NoSymbol;
  return Symbols()[static_cast<size_t>(code) * kWidth + static_cast<size_t>(level)];
}

KeySym XLookupKeysym(XKeyEvent* event, int level) {
  return XkbKeycodeToKeysym(nullptr, static_cast<KeyCode>(event->keycode), 0, level);
}

int XLookupString(XKeyEvent* event, char* buffer, int size, KeySym* symbol, XComposeStatus*) {
  const KeySym sym = XkbKeycodeToKeysym(nullptr, static_cast<KeyCode>(event->keycode), 0, 0);
  if (symbol != nullptr) *symbol = sym;
  if (sym < 32 || sym > 126 || size < 1) return 0;
  *buffer = static_cast<char>(sym);
  return 1;
}

// No modifier changes what a key gives.
Bool XkbLookupKeySym(Display*, KeyCode code, unsigned, unsigned* looked, KeySym* symbol) {
  *looked = 0;
  *symbol = XkbKeycodeToKeysym(nullptr, code, 0, 0);
  return *symbol != NoSymbol ? True : False;
}

KeySym* XGetKeyboardMapping(Display*, KeyCode first, int count, int* width) {
  Require(first >= kFirst && count >= 0 && first + count <= kLast + 1);
  *width = kWidth;
  auto* symbols =
      static_cast<KeySym*>(std::calloc(static_cast<size_t>(count) * kWidth + 1, sizeof(KeySym)));
  for (int i = 0; i < count * kWidth; i++)
    symbols[i] = Symbols()[static_cast<size_t>(first) * kWidth + static_cast<size_t>(i)];
  return symbols;
}

int XChangeKeyboardMapping(Display*, int first, int width, KeySym* symbols, int count) {
  Require(first >= kFirst && count > 0 && first + count <= kLast + 1 && width == kWidth);
  for (int i = 0; i < count * width; i++)
    Symbols()[static_cast<size_t>(first * kWidth + i)] = symbols[i];
  return 0;
}

XModifierKeymap* XGetModifierMapping(Display*) {
  XModifierKeymap* map = XNewModifiermap(1);
  for (int i = 0; i < 8; i++) map->modifiermap[i] = 0;
  map->modifiermap[ShiftMapIndex] = 200;
  map->modifiermap[LockMapIndex] = 201;
  map->modifiermap[ControlMapIndex] = 202;
  return map;
}

int XQueryKeymap(Display*, char* down) {
  for (int i = 0; i < 32; i++) down[i] = 0;
  return 1;
}

// No map of the levels: the characters of ASCII come from the tables of the core protocol then.
XkbDescPtr XkbGetMap(Display*, unsigned, unsigned) {
  return nullptr;
}
Status XkbGetState(Display*, unsigned, XkbStatePtr state) {
  *state = {};
  return Success;
}
Bool XkbLockGroup(Display*, unsigned, unsigned) {
  return True;
}
Bool XkbLockModifiers(Display*, unsigned, unsigned, unsigned) {
  return True;
}
Bool XkbLatchModifiers(Display*, unsigned, unsigned, unsigned) {
  return True;
}

Bool XTestQueryExtension(Display*, int* event, int* error, int* major, int* minor) {
  *event = *error = 0;
  *major = 2;
  *minor = 2;
  return True;
}

int XTestFakeKeyEvent(Display*, unsigned code, Bool press, unsigned long) {
  Require(code >= kFirst && code <= kLast);
  if (press) {
    Server().typed.push_back(static_cast<int>(code));
    Require(Server().down.insert(code).second);
  } else {
    Server().down.erase(code);
  }
  return 1;
}

}  // extern "C"
